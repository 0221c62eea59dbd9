// The built-in Pluto series, the compact fitted ephemeris "Data\Ephem96.dat"
// and the choice of source by date.
//
// Published values:
//   Meeus, Astronomical Algorithms, 2nd ed. (1998), example 37.a, Pluto at
//   1992 October 13.0 TD (JDE 2448908.5): heliocentric l = 232.74071°,
//   b = 14.58782°, r = 29.711111 AU (ecliptic and equinox J2000.0), and the
//   astrometric place α2000 = 15h31m43.8s, δ2000 = −4°27′29″ as reproduced to
//   0.1 s and 1″ by implementations of his method.
// The compact ephemeris is held against its own sources (VSOP87D with every
// term, the Pluto series): 0.05″ in geocentric direction is the limit the
// data builder enforces on a dense grid; here it is checked again at random
// instants, away from that grid.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "observer/observer.h"
#include "solarsystem/earthoffset.h"
#include "solarsystem/ephem96.h"
#include "solarsystem/moonseries.h"
#include "solarsystem/planets.h"
#include "solarsystem/pluto.h"
#include "support/compare.h"
#include "util/binaryio.h"
#include "util/datapath.h"

using namespace orv;
using orv::test::kArcsecFromRad;
using orv::test::kSame;

namespace {

constexpr double kDeg = 3.14159265358979323846 / 180.0;
constexpr double kArcsec = kDeg / 3600.0;
constexpr double kAuKm = 149597870.7;

double Hms(double h, double m, double s) { return (h + m / 60.0 + s / 3600.0) * 15.0 * kDeg; }
double Dms(double sign, double d, double m, double s) { return sign * (d + m / 60.0 + s / 3600.0) * kDeg; }

Vector3 Minus(const Vector3& a, const Vector3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
double Norm(const Vector3& a) { return std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z); }
double Angle(const Vector3& a, const Vector3& b)
{
    const Vector3 c{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    return std::atan2(Norm(c), a.x * b.x + a.y * b.y + a.z * b.z);
}

}  // namespace

TEST(PlutoSeries, HeliocentricPlaceOfMeeusExample37a)
{
    double l, b, r;
    ASSERT_TRUE(PlutoEclipticJ2000(2448908.5, l, b, r));
    // Printed to 1e-5° (0.036″) and 1e-6 AU.
    EXPECT_NEAR_UNIT(232.74071 * kDeg, l, 0.04 * kArcsec, kArcsecFromRad);
    EXPECT_NEAR_UNIT(14.58782 * kDeg, b, 0.04 * kArcsec, kArcsecFromRad);
    EXPECT_NEAR_UNIT(29.711111, r, 1e-6, kSame);
}

// The astrometric place: Pluto at t − τ (light time) less the Earth at t, in
// the J2000 frame, no aberration or deflection. Within 0.1 s of time
// (1.5″) in α and 1″ in δ, the precision of the printed figures.
TEST(PlutoSeries, AstrometricPlaceOfMeeusExample37a)
{
    const CVsop87D& vsop87 = SharedVsop87D();
    if (!vsop87.IsOpen()) GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath() << ")";
    const double jd = 2448908.5;
    double earth[3];
    ASSERT_TRUE(Vsop87Heliocentric(vsop87, 3, jd, nullptr, earth));
    double p[3];
    double tau = 0.0;
    for (int pass = 0; pass < 3; ++pass) {
        ASSERT_TRUE(PlutoEquatorialJ2000(jd - tau, p));
        tau = std::hypot(p[0] - earth[0], p[1] - earth[1], p[2] - earth[2]) / kLightAUPerDay;
    }
    const double x = p[0] - earth[0], y = p[1] - earth[1], z = p[2] - earth[2];
    const double ra = std::atan2(y, x) + 2.0 * 3.14159265358979323846;
    const double dec = std::atan2(z, std::hypot(x, y));
    EXPECT_ANGLE_NEAR(Hms(15, 31, 43.8), ra, 1.5 * kArcsec, kArcsecFromRad);
    EXPECT_NEAR_UNIT(Dms(-1, 4, 27, 29), dec, 1.0 * kArcsec, kArcsecFromRad);
}

TEST(PlutoSeries, RefusesDatesOutsideMeeussSpan)
{
    double l, b, r;
    EXPECT_TRUE(PlutoEclipticJ2000(kPlutoSeriesFirstJd, l, b, r));
    EXPECT_FALSE(PlutoEclipticJ2000(kPlutoSeriesFirstJd - 0.5, l, b, r));
    EXPECT_FALSE(PlutoEclipticJ2000(kPlutoSeriesEndJd, l, b, r));
    EXPECT_FALSE(PlutoEclipticJ2000(std::nan(""), l, b, r));
    // Through the planets: Pluto has a place on either side of the compact
    // ephemeris's span as long as the series answers, none beyond.
    CPlanets planets(SharedVsop87D(), nullptr);
    CObserverDoc observer;
    Vector3 v;
    EXPECT_EQ(planets.HeliocentricPosition(observer, kBodyPluto, 2410000.5, nullptr, &v), PositionStatus::Ok);
    EXPECT_EQ(planets.HeliocentricPosition(observer, kBodyPluto, 2488000.5, nullptr, &v), PositionStatus::Ok);
    EXPECT_EQ(planets.HeliocentricPosition(observer, kBodyPluto, 2500000.5, nullptr, &v), PositionStatus::NoSource);
}

// The built-in table against the lunar series it was fitted to: the
// barycentre lies μ/(1 + μ) of the way to the Moon, 4,670 km on average.
// The fit's residual is under 3 km in each coordinate (the builder prints
// it); 5 km here over 1900–2100.
TEST(EarthOffsetTable, FollowsTheLunarSeriesScaledByTheMassRatio)
{
    double worstKm = 0.0;
    for (double jd = 2415020.5; jd < 2488070.0; jd += 97.3) {
        const MoonEclipticPlace moon = EvaluateMoonBlock(MoonDataBlock(), jd);
        double offset[3];
        EarthBarycentreOffset(jd, offset);
        const double lengthKm = std::hypot(offset[0], offset[1], offset[2]) * kAuKm;
        worstKm = std::max(worstKm, std::fabs(lengthKm - moon.distanceKm * kMoonMassFractionOfEarthMoon));
    }
    EXPECT_NEAR_UNIT(0.0, worstKm, 5.0, kSame);
}

class CompactEphemeris : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!SharedVsop87D().IsOpen() || !SharedEphem96().IsOpen())
            GTEST_SKIP() << "no VSOP87 or Ephem96 files in the data folder (" << GetDataPath()
                         << "): run tools/build-data.sh (data steps 30-planets, 35-ephem96) first";
    }
    const CEphem96& m_ephem = SharedEphem96();
    CPlanets m_compact{SharedVsop87D(), &SharedEphem96()};
    CPlanets m_series{SharedVsop87D(), nullptr};
    CObserverDoc m_observer;
};

// Each body's geocentric direction from the fit (its position less the
// fitted Earth) against the same from VSOP87 and the Pluto series, at 1,000
// random instants of 1900–2099: within 0.05″; the Sun (the Earth's own
// error) likewise. Geocentric distances within 1e-7 AU for the Sun and the
// planets to Mars, whose distances the chart shows to that precision.
TEST_F(CompactEphemeris, FollowsItsSourcesAtRandomInstants)
{
    std::mt19937_64 random(1992);
    std::uniform_real_distribution<double> dates(kEphem96FirstJd, kEphem96EndJd);
    double worstArcsec[10] = {};
    double worstDistanceAU = 0.0;
    for (int n = 0; n < 1000; ++n) {
        const double jd = dates(random);
        Vector3 earthFit, earthSource;
        ASSERT_EQ(m_compact.HeliocentricPosition(m_observer, kBodyEarth, jd, nullptr, &earthFit), PositionStatus::Ok);
        ASSERT_EQ(m_series.HeliocentricPosition(m_observer, kBodyEarth, jd, nullptr, &earthSource), PositionStatus::Ok);
        worstArcsec[kBodySun] = std::max(worstArcsec[kBodySun], Angle(earthFit, earthSource) * kArcsecFromRad.perValue);
        for (int body = 1; body <= 9; ++body) {
            if (body == kBodyEarth) continue;
            Vector3 fit, source;
            ASSERT_EQ(m_compact.HeliocentricPosition(m_observer, body, jd, nullptr, &fit), PositionStatus::Ok);
            ASSERT_EQ(m_series.HeliocentricPosition(m_observer, body, jd, nullptr, &source), PositionStatus::Ok);
            const Vector3 a = Minus(fit, earthFit), b = Minus(source, earthSource);
            double& worst = worstArcsec[body];
            worst = std::max(worst, Angle(a, b) * kArcsecFromRad.perValue);
            if (body <= kBodyMars) worstDistanceAU = std::max(worstDistanceAU, std::fabs(Norm(a) - Norm(b)));
        }
    }
    for (int body = 1; body <= 9; ++body) {
        SCOPED_TRACE(BodyName(body));
        EXPECT_NEAR_UNIT(0.0, worstArcsec[body], 0.05, kSame);
    }
    EXPECT_NEAR_UNIT(0.0, worstDistanceAU, 1e-7, kSame);
}

// The span's ends: 2415020.5 is the compact ephemeris's first instant,
// 2487980.5 already VSOP87's (and the Pluto series').
TEST_F(CompactEphemeris, SourceIsChosenByDateAtTheSpansEnds)
{
    CObserverDoc observer;
    for (int body : {kBodyMercury, kBodyJupiter, kBodyPluto}) {
        SCOPED_TRACE(BodyName(body));
        double direct[3];
        Vector3 v, series;
        m_ephem.Evaluate(body, kEphem96FirstJd, direct);
        ASSERT_EQ(m_compact.HeliocentricPosition(observer, body, kEphem96FirstJd, nullptr, &v), PositionStatus::Ok);
        EXPECT_EQ(direct[0], v.x);
        EXPECT_EQ(direct[2], v.z);
        ASSERT_EQ(m_series.HeliocentricPosition(observer, body, kEphem96FirstJd, nullptr, &series), PositionStatus::Ok);
        EXPECT_NE(series.x, v.x);  // a fit, not the series itself

        ASSERT_EQ(m_compact.HeliocentricPosition(observer, body, kEphem96EndJd, nullptr, &v), PositionStatus::Ok);
        ASSERT_EQ(m_series.HeliocentricPosition(observer, body, kEphem96EndJd, nullptr, &series), PositionStatus::Ok);
        EXPECT_EQ(series.x, v.x);
        EXPECT_EQ(series.z, v.z);
        // Just before the end, still the fit, and the two agree there to
        // the fit's precision (under 100 km for every body).
        const double before = kEphem96EndJd - 1e-4;
        ASSERT_EQ(m_compact.HeliocentricPosition(observer, body, before, nullptr, &v), PositionStatus::Ok);
        m_ephem.Evaluate(body, before, direct);
        EXPECT_EQ(direct[1], v.y);
        ASSERT_EQ(m_series.HeliocentricPosition(observer, body, before, nullptr, &series), PositionStatus::Ok);
        EXPECT_NEAR_UNIT(series.y, v.y, 100.0 / kAuKm, kSame);
    }
    // Every body's coverage includes the whole span, as the format's
    // unchecked evaluation requires.
    for (int body = 1; body <= 9; ++body) {
        EXPECT_TRUE(m_ephem.Covers(body, kEphem96FirstJd)) << body;
        EXPECT_TRUE(m_ephem.Covers(body, kEphem96EndJd - 1e-6)) << body;
    }
}

// At an interval's first instant τ = −1: the value is the polynomial and the
// Poisson terms at τ = −1 (s = −Δ/2) of that interval, not the previous
// interval's τ = +1; the two differ only by the fit's error, which this
// evaluation by hand from the file's bytes tells apart exactly.
TEST_F(CompactEphemeris, IntervalStartIsTauMinusOneOfThatInterval)
{
    const Ephem96Body& mars = m_ephem.Body(kBodyMars);
    const int k = mars.intervals / 3;
    const double start = mars.t0 + k * mars.lengthDays;
    auto byHand = [&](int interval, double tau, int c) {
        const Ephem96Body::Interval& d = mars.descriptors[static_cast<std::size_t>(interval)];
        const double s = tau * mars.lengthDays / 2.0;
        double v = 0.0, power = 1.0;
        for (int i = 0; i < 4; ++i, power *= tau) v += LoadLE<double>(d.poly[c] + 8 * i) * power;
        power = 1.0;
        for (int order = 0; order < 3; ++order, power *= tau)
            for (int j = 0; j < mars.termCount[order]; ++j) {
                const double w = LoadLE<double>(mars.omega[order] + 8 * j);
                v += power * (LoadLE<double>(d.cosAmp[c][order] + 8 * j) * std::cos(w * s) +
                              LoadLE<double>(d.sinAmp[c][order] + 8 * j) * std::sin(w * s));
            }
        return v * 1e-10;
    };
    double xyz[3];
    m_ephem.Evaluate(kBodyMars, start, xyz);
    for (int c = 0; c < 3; ++c) {
        EXPECT_NEAR_UNIT(byHand(k, -1.0, c), xyz[c], 1e-15, kSame);
        // The previous interval's end: the same place to the fit's precision
        // (Mars's fit error is a few km), not bit for bit.
        EXPECT_NEAR_UNIT(byHand(k - 1, 1.0, c), xyz[c], 1e-7, kSame);
    }
}

TEST(CompactEphemerisFile, DamagedOrMissingIsRefused)
{
    CEphem96 ephem;
    EXPECT_EQ(ephem.OpenFile("/nonexistent/Ephem96.dat"), Ephem96Status::Missing);
    EXPECT_FALSE(ephem.IsOpen());
    // A header promising intervals that are not there.
    CByteWriter w;
    w.F64(kEphem96FirstJd);
    w.F64(32.0);
    w.I16(10);
    w.I16(0);
    w.I16(0);
    w.I16(0);
    EXPECT_EQ(ephem.OpenBytes(w.Data()), Ephem96Status::Damaged);
    EXPECT_FALSE(ephem.IsOpen());
    EXPECT_FALSE(ephem.Covers(1, 2451545.0));
}

// Without the compact ephemeris every body still has a place in its span
// (VSOP87 and the Pluto series answer instead).
TEST(CompactEphemerisFile, MissingFileFallsBackToTheSeries)
{
    if (!SharedVsop87D().IsOpen()) GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath() << ")";
    CPlanets planets(SharedVsop87D(), nullptr);
    CObserverDoc observer;
    observer.SetJulianDate(2451545.0);
    planets.ComputeAll(observer, PlaceCentre::Geocentric);
    for (int body = 0; body < kBodyCount; ++body) EXPECT_TRUE(planets.Record(body).valid) << BodyName(body);
}
