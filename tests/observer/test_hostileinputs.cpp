// NaN, infinities, huge and negative numbers given to every public
// computation of the observer: time scales, calendar, sidereal time,
// precession, nutation, refraction, rise/transit/set. Each must refuse
// (an error value, the state it had) or give a finite answer, and return:
// a test that finishes shows that no loop ran without end.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "observer/observer.h"

using namespace orv;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
const std::vector<double> kHostile{kNaN, kInf, -kInf, 1e308, -1e308, 1e18, -1e18, -1.0, 0.0,
                                   std::numeric_limits<double>::denorm_min()};

bool FiniteOrNaN(double v) { return std::isfinite(v) || std::isnan(v); }

}  // namespace

TEST(HostileObserver, CalendarAndTimeScales)
{
    for (const double jd : kHostile) {
        const CivilDateTime c = CivilFromJulianDate(jd);
        EXPECT_TRUE(c.month >= 1 && c.month <= 12) << jd;
        EXPECT_TRUE(std::isfinite(JulianDateFromCivil(c))) << jd;
        // ΔT and the year: finite for finite dates; a non-finite date may
        // give NaN but never hangs.
        const double dt = DeltaTSeconds(jd);
        const double year = DecimalYearFromJulianDate(jd);
        if (std::isfinite(jd) && std::abs(jd) < 1e9) {
            EXPECT_TRUE(std::isfinite(dt)) << jd;
            EXPECT_TRUE(std::isfinite(year)) << jd;
        }
        DeltaTEspenakMeeusSeconds(jd);  // a polynomial: infinite for an infinite year
        TaiMinusUtcSeconds(jd);
    }
    CivilDateTime bad;
    bad.year = 2026;
    bad.month = 13;
    bad.day = 40;
    bad.hour = -5;
    EXPECT_FALSE(IsValidCivilDateTime(bad));
    bad.month = 0;
    EXPECT_FALSE(IsValidCivilDateTime(bad));
}

TEST(HostileObserver, InstantsTheObserverRefuses)
{
    CObserverDoc o;
    o.SetJulianDate(2451545.0);
    for (const double jd : {kNaN, kInf, -kInf, 1e308, -1e308}) {
        o.SetJulianDate(jd);
        EXPECT_TRUE(std::isfinite(o.JulianDate())) << "the observer took the instant " << jd;
        EXPECT_TRUE(std::isfinite(o.JulianDateTDT()));
        EXPECT_TRUE(std::isfinite(o.LAST()) && o.LAST() >= 0.0 && o.LAST() < 24.0);
    }
    // A site of NaN or beyond the poles and a zone of infinite hours are
    // not taken.
    o.SetSite("Here", 0.5, 0.1, 100.0);
    o.SetSite("Nowhere", kNaN, 0.0, 0.0);
    o.SetSite("Nowhere", 0.0, kInf, 0.0);
    o.SetSite("Nowhere", 0.0, 0.0, -kInf);
    EXPECT_EQ(o.SiteName(), "Here");
    EXPECT_DOUBLE_EQ(o.LatitudeRad(), 0.5);
    o.SetTimeZone(kNaN, false);
    EXPECT_TRUE(std::isfinite(o.TimeZoneHours()));
    o.SetTimeZone(1e308, true);
    EXPECT_TRUE(std::isfinite(o.LocalOffsetHours()));
}

TEST(HostileObserver, SiderealTimePrecessionNutation)
{
    const CObserverDoc o;
    for (const double jd : kHostile) {
        const double gmst = GreenwichMeanSiderealTimeRad(jd, jd);
        const double gast = GreenwichApparentSiderealTimeRad(jd, jd);
        EXPECT_TRUE(FiniteOrNaN(gmst) && FiniteOrNaN(gast)) << jd;
        EXPECT_TRUE(FiniteOrNaN(o.LAST(jd)));
        double v[3] = {1.0, 0.0, 0.0};
        o.PrecessXYZ(v, jd, 1);
        o.PrecessXYZ(v, jd, -1);
        o.NutateXYZ(v, jd);
        double dPsi = 0.0, dEps = 0.0;
        o.NutationTerms(jd, dPsi, dEps);
        EXPECT_TRUE(FiniteOrNaN(dPsi) && FiniteOrNaN(dEps));
        o.MeanObliquity(jd);
        if (std::isfinite(jd) && std::abs(jd) < 1e9) {
            // For any finite date within the calendar's reach the rotation
            // stays a rotation: the unit vector keeps its length.
            EXPECT_NEAR(std::hypot(v[0], v[1], v[2]), 1.0, 1e-12) << jd;
            EXPECT_TRUE(std::isfinite(gmst)) << jd;
        }
    }
    // A vector of NaN through precession neither hangs nor throws.
    double bad[3] = {kNaN, kInf, -kInf};
    o.PrecessXYZ(bad, 1);
    o.NutateXYZ(bad);
    o.UnnutateXYZ(bad);
}

TEST(HostileObserver, Refraction)
{
    const CObserverDoc o;
    for (const double h : kHostile) {
        const double r = o.Refraction(h);
        const double back = o.InverseRefraction(h);
        if (std::isfinite(h)) {
            EXPECT_TRUE(std::isfinite(r) && r >= 0.0) << h;
            EXPECT_TRUE(std::isfinite(back) && back >= 0.0) << h;
        } else {
            // NaN, or no refraction at ±infinity (beyond the zenith or far
            // below the horizon).
            EXPECT_TRUE((std::isnan(r) || r == 0.0) && (std::isnan(back) || back == 0.0)) << h;
        }
    }
}

TEST(HostileObserver, RiseTransitSetRefusesOrAnswers)
{
    CObserverDoc o;
    o.SetSite("Greenwich", 51.4769 * 0.017453292519943295, 0.0, 46.0);
    const ApparentPositionFn fixed = [](double, double& ra, double& dec) {
        ra = 1.0;
        dec = 0.3;
    };
    for (const double x : kHostile) {
        // Start, window and h0 each hostile in turn; a window that is not a
        // positive finite number of at most ten years is refused.
        const auto start = o.FindRiseTransitSet(fixed, x, 1.0, -0.01);
        if (!std::isfinite(x)) { EXPECT_EQ(start.kind, RiseTransitSet::Kind::InvalidInput) << "start " << x; }
        const auto window = o.FindRiseTransitSet(fixed, 2451545.0, x, -0.01);
        if (!(std::isfinite(x) && x > 0.0 && x <= 3660.0)) {
            EXPECT_EQ(window.kind, RiseTransitSet::Kind::InvalidInput) << "window " << x;
        }
        const auto h0 = o.FindRiseTransitSet(fixed, 2451545.0, 1.0, x);
        if (!std::isfinite(x)) { EXPECT_EQ(h0.kind, RiseTransitSet::Kind::InvalidInput) << "h0 " << x; }
        EXPECT_FALSE(o.FindNextCrossing(fixed, 2451545.0, x, -0.01, true) && !std::isfinite(x));
        EXPECT_TRUE(FiniteOrNaN(o.AltitudeOf(x, x, x)));
    }
    // A position function that answers NaN, or a horizon of infinities.
    const ApparentPositionFn broken = [](double, double& ra, double& dec) {
        ra = kNaN;
        dec = kInf;
    };
    EXPECT_EQ(o.FindRiseTransitSet(broken, 2451545.0, 1.0, -0.01).kind, RiseTransitSet::Kind::InvalidInput);
    const LocalHorizonFn wall = [](double) { return kInf; };
    const auto behindWall = o.FindRiseTransitSet(fixed, 2451545.0, 1.0, -0.01, wall);
    EXPECT_TRUE(behindWall.kind == RiseTransitSet::Kind::InvalidInput ||
                behindWall.kind == RiseTransitSet::Kind::AlwaysBelow);
}
