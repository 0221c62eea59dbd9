// Rising, transit and setting: Meeus's Example 15.a, and fixed stars whose
// events follow in closed form from the hour angle of rising (Meeus eq. 15.1).

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "observer/observer.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using orv::test::kArcsecFromRad;
using orv::test::kSecondsFromDays;

namespace {

constexpr double kOneSecond = 1.0 / 86400.0;
// The sidereal rate: radians of hour angle per day of UT.
constexpr double kSiderealRadPerDay = kTwoPi * 1.00273790935;

double Hms(int h, int m, double s) { return (h + m / 60.0 + s / 3600.0) * 15.0 * kRadPerDeg; }
double Dms(int d, int m, double s) { return (d + m / 60.0 + s / 3600.0) * kRadPerDeg; }

ApparentPositionFn FixedStar(double raRad, double decRad)
{
    return [raRad, decRad](double, double& ra, double& dec) {
        ra = raRad;
        dec = decRad;
    };
}

// The instant after jdStart at which the star's hour angle is `hourAngleRad`,
// by Newton's method on the observer's sidereal time.
double WhenHourAngle(const CObserverDoc& doc, double raRad, double hourAngleRad, double jdStart)
{
    double jd = jdStart;
    for (int i = 0; i < 20; ++i) {
        const double jdTT = jd + DeltaTSeconds(jd) / 86400.0;
        const double h = doc.LAST(jdTT) * kRadPerHour - raRad;
        double error = std::remainder(h - hourAngleRad, kTwoPi);
        if (i == 0 && error > 0.0) error -= kTwoPi;  // the next occurrence, not the last
        jd -= error / kSiderealRadPerDay;
    }
    return jd;
}

// Hour angle of rising and setting for altitude h0 (Meeus eq. 15.1).
double SemiDiurnalArc(double latRad, double decRad, double h0Rad)
{
    return std::acos((std::sin(h0Rad) - std::sin(latRad) * std::sin(decRad)) / (std::cos(latRad) * std::cos(decRad)));
}

CObserverDoc Greenwich()
{
    CObserverDoc doc;
    doc.SetSite("Greenwich", Dms(51, 28, 38.0), -0.0015 * kRadPerDeg, 46.0);
    doc.SetJulianDate(2460325.5);
    return doc;
}

}  // namespace

TEST(RiseTransitSet, VenusAtBostonMeeusExample15a)
{
    // Venus from Boston (42°20′ N, 71°05′ W) on 1988 March 20, with Meeus's
    // apparent places at 0h TD of March 19, 20 and 21 interpolated (his eq.
    // 3.3) as the position function. Meeus's results: rising 12h25m26s,
    // transit 19h40m30s, setting 2h54m40s UT (m = 0.51766, 0.81980, 0.12130).
    // He gives m to 0.00001 day (0.9 s) and works with ΔT = 56 s instead of
    // 56.184 s; his corrections to m are a second-order interpolation. The
    // search here agrees to 0.5 s: tolerance 3 s.
    const double day0TT = 2447240.5;  // 1988 March 20, 0h
    const double ra[3] = {Hms(2, 42, 43.25), Hms(2, 46, 55.51), Hms(2, 51, 7.69)};
    const double dec[3] = {Dms(18, 2, 51.4), Dms(18, 26, 27.3), Dms(18, 49, 38.7)};
    const auto interpolate = [](const double y[3], double n) {
        const double a = y[1] - y[0], b = y[2] - y[1], c = b - a;
        return y[1] + 0.5 * n * (a + b + n * c);
    };
    const ApparentPositionFn venus = [&](double jdUT, double& raRad, double& decRad) {
        const double n = jdUT + DeltaTSeconds(jdUT) / 86400.0 - day0TT;
        raRad = interpolate(ra, n);
        decRad = interpolate(dec, n);
    };
    CObserverDoc doc;
    doc.SetSite("Boston", Dms(42, 20, 0.0), -Dms(71, 5, 0.0), 0.0);
    const RiseTransitSet r = doc.FindRiseTransitSet(venus, day0TT, 1.0, kRiseAltitudeStarRad);
    ASSERT_EQ(RiseTransitSet::Kind::Normal, r.kind);
    ASSERT_TRUE(r.riseJdUT && r.transitJdUT && r.setJdUT);
    const double tolerance = 3.0 * kOneSecond;
    EXPECT_NEAR_UNIT(day0TT + 0.51766, *r.riseJdUT, tolerance, kSecondsFromDays);
    EXPECT_NEAR_UNIT(day0TT + 0.81980, *r.transitJdUT, tolerance, kSecondsFromDays);
    EXPECT_NEAR_UNIT(day0TT + 0.12130, *r.setJdUT, tolerance, kSecondsFromDays);
    // At the found instants the body is at h0 to within what a second of
    // motion changes (15″ at most).
    double a, d;
    venus(*r.riseJdUT, a, d);
    EXPECT_NEAR_UNIT(kRiseAltitudeStarRad, doc.AltitudeOf(a, d, *r.riseJdUT), 15.0 * kRadPerArcsec, kArcsecFromRad);
    // Transit altitude: 90° − φ + δ at the meridian.
    venus(*r.transitJdUT, a, d);
    EXPECT_NEAR_UNIT(kHalfPi - Dms(42, 20, 0.0) + d, r.transitAltitudeRad, 0.1 * kRadPerArcsec, kArcsecFromRad);
}

TEST(RiseTransitSet, FixedStarMatchesTheHourAngleOfRising)
{
    // Sirius from Greenwich, January 2024: rising and setting at hour angles
    // ∓H0 of eq. 15.1, transit at 0; bisection to 1 s.
    const CObserverDoc doc = Greenwich();
    const double ra = Hms(6, 46, 13.0), dec = -Dms(16, 44, 49.0);
    const double h0 = SemiDiurnalArc(doc.LatitudeRad(), dec, kRiseAltitudeStarRad);
    const double start = doc.JulianDate();
    const RiseTransitSet r = doc.FindRiseTransitSet(FixedStar(ra, dec), start, 1.0, kRiseAltitudeStarRad);
    ASSERT_EQ(RiseTransitSet::Kind::Normal, r.kind);
    ASSERT_TRUE(r.riseJdUT && r.transitJdUT && r.setJdUT);
    EXPECT_NEAR_UNIT(WhenHourAngle(doc, ra, -h0, start), *r.riseJdUT, kOneSecond, kSecondsFromDays);
    EXPECT_NEAR_UNIT(WhenHourAngle(doc, ra, 0.0, start), *r.transitJdUT, kOneSecond, kSecondsFromDays);
    EXPECT_NEAR_UNIT(WhenHourAngle(doc, ra, h0, start), *r.setJdUT, kOneSecond, kSecondsFromDays);
    EXPECT_NEAR_UNIT(kHalfPi - doc.LatitudeRad() + dec, r.transitAltitudeRad, 0.01 * kRadPerArcsec, kArcsecFromRad);

    // The next-crossing service finds the same instants.
    const auto rise = doc.FindNextCrossing(FixedStar(ra, dec), start, 1.0, kRiseAltitudeStarRad, true);
    const auto set = doc.FindNextCrossing(FixedStar(ra, dec), start, 1.0, kRiseAltitudeStarRad, false);
    ASSERT_TRUE(rise && set);
    EXPECT_NEAR_UNIT(*r.riseJdUT, *rise, 1e-3 * kOneSecond, kSecondsFromDays);
    EXPECT_NEAR_UNIT(*r.setJdUT, *set, 1e-3 * kOneSecond, kSecondsFromDays);
    // Starting just after the rise finds the next day's, one sidereal day on.
    const auto nextRise =
        doc.FindNextCrossing(FixedStar(ra, dec), *rise + 60.0 * kOneSecond, 2.0, kRiseAltitudeStarRad, true);
    ASSERT_TRUE(nextRise);
    EXPECT_NEAR_UNIT(*rise + kTwoPi / kSiderealRadPerDay, *nextRise, 2.0 * kOneSecond, kSecondsFromDays);
}

TEST(RiseTransitSet, CircumpolarAndNeverRising)
{
    const CObserverDoc doc = Greenwich();
    // Polaris never sets at 51.5° N; it culminates north of the zenith, at
    // altitude 90° − (δ − φ).
    const double polarisDec = Dms(89, 15, 51.0);
    const RiseTransitSet up =
        doc.FindRiseTransitSet(FixedStar(Hms(2, 31, 49.0), polarisDec), doc.JulianDate(), 1.0, kRiseAltitudeStarRad);
    EXPECT_EQ(RiseTransitSet::Kind::AlwaysAbove, up.kind);
    EXPECT_FALSE(up.riseJdUT || up.setJdUT);
    ASSERT_TRUE(up.transitJdUT);
    EXPECT_NEAR_UNIT(kHalfPi - (polarisDec - doc.LatitudeRad()), up.transitAltitudeRad, 0.01 * kRadPerArcsec,
                     kArcsecFromRad);
    // σ Octantis never rises there.
    const RiseTransitSet down = doc.FindRiseTransitSet(FixedStar(Hms(21, 8, 46.0), -Dms(88, 57, 23.0)),
                                                       doc.JulianDate(), 1.0, kRiseAltitudeStarRad);
    EXPECT_EQ(RiseTransitSet::Kind::AlwaysBelow, down.kind);
    EXPECT_FALSE(down.riseJdUT || down.setJdUT);
    EXPECT_FALSE(doc.FindNextCrossing(FixedStar(Hms(21, 8, 46.0), -Dms(88, 57, 23.0)), doc.JulianDate(), 1.0,
                                      kRiseAltitudeStarRad, true));
}

TEST(RiseTransitSet, GrazingPassesBetweenSamplesAreFound)
{
    const CObserverDoc doc = Greenwich();
    const double phi = doc.LatitudeRad();
    const double h0 = kRiseAltitudeStarRad;
    const double start = doc.JulianDate();
    const double ra = 1.0;
    // A star that culminates 0.0005° (1.8″) above h0 is up for under three
    // minutes, well inside one 10-minute sample step.
    const double decHigh = h0 + 0.0005 * kRadPerDeg - kHalfPi + phi;
    const RiseTransitSet r = doc.FindRiseTransitSet(FixedStar(ra, decHigh), start, 1.0, h0);
    ASSERT_EQ(RiseTransitSet::Kind::Normal, r.kind);
    ASSERT_TRUE(r.riseJdUT && r.setJdUT && r.transitJdUT);
    const double halfArc = SemiDiurnalArc(phi, decHigh, h0) / kSiderealRadPerDay;
    EXPECT_LT(2.0 * halfArc, 3.0 / 1440.0);
    EXPECT_NEAR_UNIT(*r.transitJdUT - halfArc, *r.riseJdUT, 2.0 * kOneSecond, kSecondsFromDays);
    EXPECT_NEAR_UNIT(*r.transitJdUT + halfArc, *r.setJdUT, 2.0 * kOneSecond, kSecondsFromDays);

    // A circumpolar star whose lower culmination dips 0.0005° below h0 sets
    // and rises again within three minutes.
    const double decLow = kHalfPi + h0 - 0.0005 * kRadPerDeg - phi;
    const RiseTransitSet dip = doc.FindRiseTransitSet(FixedStar(ra, decLow), start, 1.0, h0);
    ASSERT_EQ(RiseTransitSet::Kind::Normal, dip.kind);
    ASSERT_TRUE(dip.riseJdUT && dip.setJdUT);
    EXPECT_GT(*dip.riseJdUT, *dip.setJdUT);
    EXPECT_LT(*dip.riseJdUT - *dip.setJdUT, 3.0 / 1440.0);
    const double lowerTransit = WhenHourAngle(doc, ra, kPi, start);
    EXPECT_NEAR_UNIT(lowerTransit, 0.5 * (*dip.riseJdUT + *dip.setJdUT), 2.0 * kOneSecond, kSecondsFromDays);
}

TEST(RiseTransitSet, EventsOutsideTheWindowAreNotReported)
{
    const CObserverDoc doc = Greenwich();
    const auto sirius = FixedStar(Hms(6, 46, 13.0), -Dms(16, 44, 49.0));
    const auto rise = doc.FindNextCrossing(sirius, doc.JulianDate(), 1.0, kRiseAltitudeStarRad, true);
    ASSERT_TRUE(rise);
    const auto set = doc.FindNextCrossing(sirius, *rise, 1.0, kRiseAltitudeStarRad, false);
    ASSERT_TRUE(set);
    // A window from just after the rise to just before the set: the star is
    // up throughout it.
    const double from = *rise + 10.0 * kOneSecond;
    const double length = *set - from - 10.0 * kOneSecond;
    const RiseTransitSet up = doc.FindRiseTransitSet(sirius, from, length, kRiseAltitudeStarRad);
    EXPECT_EQ(RiseTransitSet::Kind::AlwaysAbove, up.kind);
    EXPECT_FALSE(up.riseJdUT || up.setJdUT);
    EXPECT_TRUE(up.transitJdUT);
    // The window is half-open: a window ending exactly at the set does not
    // report it, one ending a second later does.
    EXPECT_FALSE(doc.FindNextCrossing(sirius, from, *set - from - 2.0 * kOneSecond, kRiseAltitudeStarRad, false));
    EXPECT_TRUE(doc.FindNextCrossing(sirius, from, *set - from + 2.0 * kOneSecond, kRiseAltitudeStarRad, false));
}

TEST(RiseTransitSet, RefusesInputItCannotSearch)
{
    const CObserverDoc doc = Greenwich();
    const auto star = FixedStar(1.0, 0.2);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    using Kind = RiseTransitSet::Kind;
    EXPECT_EQ(Kind::InvalidInput, doc.FindRiseTransitSet(star, nan, 1.0, kRiseAltitudeStarRad).kind);
    EXPECT_EQ(Kind::InvalidInput, doc.FindRiseTransitSet(star, 2451545.0, inf, kRiseAltitudeStarRad).kind);
    EXPECT_EQ(Kind::InvalidInput, doc.FindRiseTransitSet(star, 2451545.0, 0.0, kRiseAltitudeStarRad).kind);
    EXPECT_EQ(Kind::InvalidInput, doc.FindRiseTransitSet(star, 2451545.0, -1.0, kRiseAltitudeStarRad).kind);
    EXPECT_EQ(Kind::InvalidInput, doc.FindRiseTransitSet(star, 2451545.0, 1e6, kRiseAltitudeStarRad).kind);
    EXPECT_EQ(Kind::InvalidInput, doc.FindRiseTransitSet(star, 2451545.0, 1.0, nan).kind);
    EXPECT_EQ(Kind::InvalidInput, doc.FindRiseTransitSet(ApparentPositionFn{}, 2451545.0, 1.0, 0.0).kind);
    EXPECT_EQ(Kind::InvalidInput, doc.FindRiseTransitSet(FixedStar(nan, 0.2), 2451545.0, 1.0, 0.0).kind);
    EXPECT_FALSE(doc.FindNextCrossing(star, nan, 1.0, 0.0, true));
    EXPECT_FALSE(doc.FindNextCrossing(FixedStar(nan, nan), 2451545.0, 1.0, 0.0, true));
    EXPECT_TRUE(std::isnan(doc.AltitudeOf(nan, 0.0, 2451545.0)));
}
