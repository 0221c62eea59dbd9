// Two-body orbits of comets and asteroids against worked examples:
//   Meeus, Astronomical Algorithms, 2nd ed. (1998):
//     example 30.a  Kepler's equation, e = 0.1, M = 5°: E = 5.554589°;
//     example 33.a  comet Encke (a = 2.2091404 AU, e = 0.8502196,
//                   i = 11.94524°, Ω = 334.75006°, ω = 186.23352°, T = 1990
//                   October 28.54502 TD) on 1990 October 6.0 TD:
//                   heliocentric ecliptic J2000 l = 66°51′57.8″,
//                   b = 11°56′14.4″ (geometric); geocentric astrometric
//                   J2000 α = 158.558965°, δ = +19.158496° (light time
//                   included, the Sun from VSOP87), elongation 40.51°;
//     example 34.a  parabola q = 1.487469 AU, T = 1998 April 14.4358 TD,
//                   on 1998 August 5.0: ν = 66.78862°, r = 2.133911 AU;
//     chapter 35    near-parabolic cases: q = 0.5871018, e = 0.9672746,
//                   t − T = 20 d: ν = 52.85331°, r = 0.729116 AU;
//                   q = 3.363943, e = 1.05731, t − T = 1237.1 d:
//                   ν = 109.40598°, r = 10.668551 AU.
// Meeus prints five decimals of a degree and six of an AU: tolerances are
// half a unit of his last digit unless said otherwise.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "observer/observer.h"
#include "solarsystem/minorbodies.h"
#include "solarsystem/orbits.h"
#include "support/compare.h"
#include "util/datapath.h"

using namespace orv;
using orv::test::kArcsecFromRad;
using orv::test::kDegFromRad;
using orv::test::kSame;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDeg = kPi / 180.0;
constexpr double kArcsec = kDeg / 3600.0;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

double Dms(double d, double m, double s) { return (d + m / 60.0 + s / 3600.0) * kDeg; }

// Meeus example 33.a: comet Encke.
TwoBodyOrbit Encke()
{
    const double a = 2.2091404, e = 0.8502196;
    const double T = CObserverDoc::JulianDate(1990, 10, 28.54502);
    return *OrbitFromPerihelion(a * (1.0 - e), e, T, 186.23352, 334.75006, 11.94524);
}

// J2000 equatorial to ecliptic with the same obliquity the orbits use.
void ToEcliptic(const Vector3& v, double& lon, double& lat)
{
    const double c = 0.91748206, s = 0.39777716;
    const double y = v.y * c + v.z * s, z = v.z * c - v.y * s;
    lon = std::atan2(y, v.x);
    if (lon < 0) lon += 2 * kPi;
    lat = std::atan2(z, std::hypot(v.x, y));
}

}  // namespace

TEST(MinorKepler, MeeusExample30a)
{
    const std::optional<double> E = SolveKeplerElliptic(5.0 * kDeg, 0.1);
    ASSERT_TRUE(E);
    EXPECT_NEAR_UNIT(5.554589 * kDeg, *E, 0.0000005 * kDeg, kDegFromRad);
}

// Every eccentricity from the circle to the edge of the parabola, and mean
// anomalies over several revolutions both ways: the solution must satisfy
// Kepler's equation to 1e-12 rad (0.2 µas) and stay within e of M.
TEST(MinorKepler, EllipticGridSatisfiesTheEquation)
{
    const double eccentricities[] = {0.0, 1e-9, 0.01, 0.1, 0.3, 0.5, 0.7, 0.9, 0.97, 0.99, 0.999, 0.99999, 1.0 - 1e-9,
                                     1.0 - 1e-14};
    int cases = 0;
    for (double e : eccentricities) {
        for (int i = -400; i <= 400; ++i) {
            const double M = i * 0.0314159 + (i % 7) * 1e-7;  // about ±4π, irregular steps
            const std::optional<double> E = SolveKeplerElliptic(M, e);
            ASSERT_TRUE(E) << "e = " << e << ", M = " << M;
            const double residual = *E - e * std::sin(*E) - M;
            EXPECT_LE(std::fabs(residual), 1e-12 * std::max(1.0, std::fabs(M))) << "e = " << e << ", M = " << M;
            EXPECT_LE(std::fabs(*E - M), e + 1e-12) << "e = " << e << ", M = " << M;
            ++cases;
        }
        // Tiny mean anomalies near perihelion, where e → 1 is hardest.
        for (double M : {1e-15, 1e-12, 1e-9, 1e-6, 1e-3}) {
            const std::optional<double> E = SolveKeplerElliptic(M, e);
            ASSERT_TRUE(E);
            // (1 − e)E + e(E − sin E) = M in relative terms, E − sin E by
            // its series (E is below 0.2 here) so that the check itself
            // keeps the digits.
            const double x = *E, x2 = x * x;
            const double xMinusSin = x * x2 / 6.0 * (1.0 - x2 / 20.0 * (1.0 - x2 / 42.0 * (1.0 - x2 / 72.0 * (1.0 - x2 / 110.0))));
            const double lhs = (1.0 - e) * x + e * xMinusSin;
            EXPECT_NEAR(lhs, M, 1e-9 * M + 1e-20) << "e = " << e << ", M = " << M;
        }
    }
    EXPECT_GT(cases, 10000);
}

TEST(MinorKepler, HyperbolicGridUpToE100)
{
    const double eccentricities[] = {1.0 + 1e-12, 1.0 + 1e-9, 1.000001, 1.001, 1.05731, 1.5, 2.0, 5.0, 10.0, 30.0, 100.0};
    const double anomalies[] = {1e-12, 1e-8, 1e-4, 0.01, 0.1, 0.5, 1.0, 3.0, 10.0, 100.0, 1e4, 1e6, 1e9};
    for (double e : eccentricities)
        for (double M : anomalies)
            for (double sign : {1.0, -1.0}) {
                const std::optional<double> H = SolveKeplerHyperbolic(sign * M, e);
                ASSERT_TRUE(H) << "e = " << e << ", M = " << sign * M;
                EXPECT_EQ(*H < 0.0, sign < 0.0);
                const double h = std::fabs(*H);
                const double lhs = (e - 1.0) * std::sinh(h) + (std::sinh(h) - h);
                // sinh H − H loses digits for tiny H; the function's own
                // series keeps them, so the check allows for the test's loss.
                const double tolerance = 1e-12 * M + (h < 0.5 ? 1e-16 * h : 0.0) + 4e-16 * std::sinh(h) * e;
                EXPECT_NEAR(lhs, M, tolerance) << "e = " << e << ", M = " << M;
            }
}

TEST(MinorKepler, RefusesWhatItCannotSolve)
{
    EXPECT_FALSE(SolveKeplerElliptic(kNaN, 0.5));
    EXPECT_FALSE(SolveKeplerElliptic(kInf, 0.5));
    EXPECT_FALSE(SolveKeplerElliptic(1.0, kNaN));
    EXPECT_FALSE(SolveKeplerElliptic(1.0, 1.0));
    EXPECT_FALSE(SolveKeplerElliptic(1.0, -0.1));
    EXPECT_FALSE(SolveKeplerHyperbolic(kNaN, 2.0));
    EXPECT_FALSE(SolveKeplerHyperbolic(1.0, 1.0));
    EXPECT_FALSE(SolveKeplerHyperbolic(-kInf, 2.0));
    EXPECT_TRUE(std::isnan(SolveBarker(kNaN)));
    EXPECT_FALSE(ConicPlaceAt(0.0, 0.5, 10.0));
    EXPECT_FALSE(ConicPlaceAt(1.0, 0.5, kInf));
    EXPECT_FALSE(OrbitFromPerihelion(1.0, kNaN, 2451545.0, 0, 0, 0));
}

TEST(MinorConic, MeeusExample34aParabola)
{
    const double T = CObserverDoc::JulianDate(1998, 4, 14.4358);
    const double t = CObserverDoc::JulianDate(1998, 8, 5.0);
    const std::optional<ConicPlace> p = ConicPlaceAt(1.487469, 1.0, t - T);
    ASSERT_TRUE(p);
    EXPECT_NEAR_UNIT(66.78862 * kDeg, p->trueAnomalyRad, 0.000005 * kDeg, kDegFromRad);
    EXPECT_NEAR_UNIT(2.133911, p->radiusAU, 0.0000005, kSame);
    // Barker's equation itself: s³ + 3s = W.
    for (double w : {-1e6, -10.0, -1e-9, 0.0, 1e-12, 0.5, 2.26, 1e3, 1e9}) {
        const double s = SolveBarker(w);
        EXPECT_NEAR(s * s * s + 3.0 * s, w, 1e-14 * std::max(1.0, std::fabs(w))) << "W = " << w;
    }
}

TEST(MinorConic, MeeusChapter35NearParabolic)
{
    const std::optional<ConicPlace> a = ConicPlaceAt(0.5871018, 0.9672746, 20.0);
    ASSERT_TRUE(a);
    EXPECT_NEAR_UNIT(52.85331 * kDeg, a->trueAnomalyRad, 0.000005 * kDeg, kDegFromRad);
    EXPECT_NEAR_UNIT(0.729116, a->radiusAU, 0.0000005, kSame);
    const std::optional<ConicPlace> b = ConicPlaceAt(3.363943, 1.05731, 1237.1);
    ASSERT_TRUE(b);
    EXPECT_NEAR_UNIT(109.40598 * kDeg, b->trueAnomalyRad, 0.000005 * kDeg, kDegFromRad);
    EXPECT_NEAR_UNIT(10.668551, b->radiusAU, 0.0000005, kSame);
}

// The three branches meet: orbits a hair either side of the parabola give
// its place to well under a milliarcsecond of ν over years from perihelion.
// e = 1 exactly is the parabola; 1.0000001 already the hyperbola.
TEST(MinorConic, BranchesAgreeAcrossTheParabola)
{
    for (double days : {-3000.0, -200.0, -5.0, -0.01, 0.0, 0.01, 1.0, 40.0, 365.0, 5000.0}) {
        const ConicPlace parabola = *ConicPlaceAt(0.8, 1.0, days);
        for (double e : {1.0 - 1e-10, 1.0 + 1e-10}) {
            const std::optional<ConicPlace> near = ConicPlaceAt(0.8, e, days);
            ASSERT_TRUE(near) << "e = " << e << ", t − T = " << days;
            // dν/de is of order ν's own size; 1e-10 in e moves ν ~1e-10 rad.
            EXPECT_NEAR_UNIT(parabola.trueAnomalyRad, near->trueAnomalyRad, 1e-8, kArcsecFromRad)
                << "e = " << e << ", t − T = " << days;
            EXPECT_NEAR(parabola.radiusAU, near->radiusAU, 1e-8 * parabola.radiusAU);
        }
    }
    const ConicPlace parabola = *ConicPlaceAt(1.0, 1.0, 100.0);
    const ConicPlace hyperbola = *ConicPlaceAt(1.0, 1.0000001, 100.0);
    EXPECT_NE(parabola.radiusAU, hyperbola.radiusAU);
    EXPECT_NEAR(parabola.radiusAU, hyperbola.radiusAU, 1e-6);
}

TEST(MinorOrbit, EnckeHeliocentricMeeus33a)
{
    const TwoBodyOrbit orbit = Encke();
    Vector3 r;
    ASSERT_TRUE(HeliocentricJ2000(orbit, CObserverDoc::JulianDate(1990, 10, 6.0), r));
    double lon = 0.0, lat = 0.0;
    ToEcliptic(r, lon, lat);
    // Meeus prints a tenth of an arcsecond.
    EXPECT_ANGLE_NEAR(Dms(66, 51, 57.8), lon, 0.1 * kArcsec, kArcsecFromRad);
    EXPECT_ANGLE_NEAR(Dms(11, 56, 14.4), lat, 0.1 * kArcsec, kArcsecFromRad);
}

// Asteroid elements given by the mean anomaly at an epoch and the same orbit
// given by its perihelion time place the body alike.
TEST(MinorOrbit, MeanAnomalyAndPerihelionFormsAgree)
{
    // Ceres, MPCORB elements at 2020 May 31.0 TT.
    const double epoch = 2459000.5, a = 2.7676569, e = 0.0775571, m0 = 162.68631;
    const TwoBodyOrbit byM = *OrbitFromMeanAnomaly(m0, epoch, a, e, 73.73161, 80.28698, 10.58862);
    const double n = kGaussK / (a * std::sqrt(a)) / kDeg;
    const TwoBodyOrbit byT = *OrbitFromPerihelion(a * (1 - e), e, epoch - m0 / n, 73.73161, 80.28698, 10.58862);
    for (double dt : {-4000.0, -30.0, 0.0, 12.5, 900.0}) {
        Vector3 p, q;
        ASSERT_TRUE(HeliocentricJ2000(byM, epoch + dt, p));
        ASSERT_TRUE(HeliocentricJ2000(byT, epoch + dt, q));
        EXPECT_NEAR(p.x, q.x, 1e-9);
        EXPECT_NEAR(p.y, q.y, 1e-9);
        EXPECT_NEAR(p.z, q.z, 1e-9);
    }
}

TEST(MinorMagnitude, PhaseLawsAtOpposition)
{
    // At zero phase both phase functions are 1: m = H + 5 log10(rΔ).
    EXPECT_NEAR(AsteroidMagnitudeHG(3.4, 0.15, 2.0, 1.0, 0.0), 3.4 + 5.0 * std::log10(2.0), 1e-12);
    // The H, G law dims with phase: Bowell et al.'s Φ at β = 20°, G = 0.15:
    // −2.5 log10(0.85 Φ1 + 0.15 Φ2) with Φ1 = exp(−3.33 tan(10°)^0.63).
    const double t = std::tan(10.0 * kDeg);
    const double expected = 5.0 - 2.5 * std::log10(0.85 * std::exp(-3.33 * std::pow(t, 0.63)) +
                                                    0.15 * std::exp(-1.87 * std::pow(t, 1.22)));
    EXPECT_NEAR(AsteroidMagnitudeHG(5.0, 0.15, 1.0, 1.0, 20.0 * kDeg), expected, 1e-12);
    EXPECT_GT(expected - 5.0, 0.7);  // some 0.8 mag fainter than at opposition
    // Comet: g + 5 log Δ + 2.5 k log r; Hale-Bopp's g = −2.0, k = 4.0 at
    // r = Δ = 1 AU shines at −2.0.
    EXPECT_NEAR(CometMagnitudeGK(-2.0, 4.0, 1.0, 1.0), -2.0, 1e-12);
    EXPECT_NEAR(CometMagnitudeGK(-2.0, 4.0, 10.0, 1.0), 8.0, 1e-12);
    // Stored in hundredths, rounded to the nearest the same way either side
    // of zero: Hale-Bopp's −2.0 above stays −2.00.
    EXPECT_EQ(MagnitudeCenti(5.123), 512);
    EXPECT_EQ(MagnitudeCenti(5.126), 513);
    EXPECT_EQ(MagnitudeCenti(-5.126), -513);
    EXPECT_EQ(MagnitudeCenti(-1.004), -100);
    EXPECT_EQ(MagnitudeCenti(CometMagnitudeGK(-2.0, 4.0, 1.0, 1.0)), -200);
    EXPECT_EQ(MagnitudeCenti(kNaN), 9999);
}

class MinorApparent : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!SharedVsop87D().IsOpen())
            GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath()
                         << "): run tools/build-data.sh (data step 30-planets) first";
    }
    CObserverDoc m_observer;
    CPlanets m_planets;
};

// Meeus's astrometric place: the comet at t − τ seen from the Earth at t,
// on the J2000 equator, no aberration.
TEST_F(MinorApparent, EnckeAstrometricMeeus33a)
{
    const TwoBodyOrbit orbit = Encke();
    const double jd = CObserverDoc::JulianDate(1990, 10, 6.0);
    Vector3 earth;
    ASSERT_EQ(m_planets.HeliocentricPosition(m_observer, kBodyEarth, jd, nullptr, &earth), PositionStatus::Ok);
    Vector3 r;
    double tau = 0.0;
    for (int pass = 0; pass < 3; ++pass) {
        ASSERT_TRUE(HeliocentricJ2000(orbit, jd - tau, r));
        tau = std::sqrt((r.x - earth.x) * (r.x - earth.x) + (r.y - earth.y) * (r.y - earth.y) +
                        (r.z - earth.z) * (r.z - earth.z)) /
              kLightAUPerDay;
    }
    const Vector3 g{r.x - earth.x, r.y - earth.y, r.z - earth.z};
    const double ra = std::atan2(g.y, g.x) + (g.y < 0 ? 2 * kPi : 0.0);
    const double dec = std::atan2(g.z, std::hypot(g.x, g.y));
    // Meeus prints a millionth of a degree; his J2000 is FK5, ours the ICRS
    // (the frame bias is 0.02″), so 0.1″.
    EXPECT_ANGLE_NEAR(158.558965 * kDeg, ra, 0.1 * kArcsec, kArcsecFromRad);
    EXPECT_ANGLE_NEAR(19.158496 * kDeg, dec, 0.1 * kArcsec, kArcsecFromRad);

    // The same through the shared reduction: the apparent place referred
    // back to J2000 differs from the astrometric one by the annual
    // aberration (at most 20.5″) and the Sun's light bending (milliarcseconds
    // at 40° elongation).
    ApparentFrame frame;
    ASSERT_EQ(m_planets.PrepareApparentFrame(m_observer, jd, PlaceCentre::Geocentric, frame), PositionStatus::Ok);
    MinorPlace place;
    ASSERT_EQ(MinorPlaceAt(frame, orbit, place), PositionStatus::Ok);
    EXPECT_NEAR_UNIT(40.51 * kDeg, place.elongationRad, 0.005 * kDeg, kDegFromRad);
    // Back to J2000 through the frame's rotation (its transpose).
    const auto& m = frame.j2000ToDate;
    const double u[3] = {std::cos(place.decRad) * std::cos(place.raRad), std::cos(place.decRad) * std::sin(place.raRad),
                         std::sin(place.decRad)};
    double v[3];
    for (int j = 0; j < 3; ++j) v[j] = m[0][j] * u[0] + m[1][j] * u[1] + m[2][j] * u[2];
    const double ra2 = std::atan2(v[1], v[0]);
    const double dec2 = std::atan2(v[2], std::hypot(v[0], v[1]));
    const double separation = std::acos(std::min(
        1.0, std::sin(dec) * std::sin(dec2) + std::cos(dec) * std::cos(dec2) * std::cos(ra - ra2)));
    EXPECT_LT(separation, 21.0 * kArcsec);
    EXPECT_GT(separation, 5.0 * kArcsec);  // the aberration is there
    EXPECT_NEAR(place.lightTimeSeconds / 86400.0, tau, 1e-7);
}

// The planets' apparent places go through the same reduction: the frame
// and the body route agree to the last digits.
TEST_F(MinorApparent, SharedReductionMatchesThePlanets)
{
    const double jd = 2455197.5;
    double ra = 0.0, dec = 0.0;
    ASSERT_EQ(m_planets.ApparentPosition(m_observer, kBodyMars, jd, ra, dec, PlaceCentre::Geocentric),
              PositionStatus::Ok);
    ApparentFrame frame;
    ASSERT_EQ(m_planets.PrepareApparentFrame(m_observer, jd, PlaceCentre::Geocentric, frame), PositionStatus::Ok);
    ApparentPlace place;
    CPlanets other;
    ASSERT_EQ(ApparentPlaceOf(
                  frame,
                  [&](double t, Vector3& out) {
                      return other.HeliocentricPosition(m_observer, kBodyMars, t, nullptr, &out) == PositionStatus::Ok;
                  },
                  SolarGravity::Apply, place),
              PositionStatus::Ok);
    EXPECT_ANGLE_NEAR(ra, place.raRad, 1e-6 * kArcsec, kArcsecFromRad);
    EXPECT_ANGLE_NEAR(dec, place.decRad, 1e-6 * kArcsec, kArcsecFromRad);
}
