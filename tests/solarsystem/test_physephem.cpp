// Jupiter's and Saturn's physical ephemerides and their satellites against
// the worked examples of Meeus, Astronomical Algorithms, 2nd ed. (1998):
//   example 43.a  Jupiter, 1992 December 16.0 UT (JDE 2448972.50068): DS = −2.20°, DE = −2.48°,
//                 ω1 = 268.06°, ω2 = 72.74°, P = 24.80°;
//   example 42.a  Mars, 1992 November 9.0 UT (JDE 2448935.500683):
//                 DE = +12.44°, DS = −2.76°, ω = 111.55°, P = 347.64°;
//   example 45.a  Saturn's ring, 1992 December 16.0 TD: B = 16.442°,
//                 B′ = 14.679°, ΔU = 4.198°, P = 6.741°, a = 35.87″, b = 10.15″;
//   example 44.b  the Galilean satellites by E5, 1992 December 16.0 UT
//                 (JDE 2448972.50068): X, Y to 0.0001 Jupiter radius;
//   example 46.a  Saturn's satellites, 1999 October 2.0 UT
//                 (JDE 2451439.50074): X, Y to 0.001 Saturn radius.
// Meeus takes the planets from VSOP87 (his truncation in the appendix for
// ch. 43 and 45) and the IAU 1980 nutation; with the full VSOP87 and the
// IAU 2000A nutation here, the planet's place moves by a few arcseconds at
// most, which turns P by under 0.002° and moves a satellite by well under
// 0.001 planet radius.
#include <gtest/gtest.h>

#include <cmath>

#include "observer/observer.h"
#include "solarsystem/physephem.h"
#include "solarsystem/planetmoons.h"
#include "solarsystem/planets.h"
#include "support/compare.h"
#include "util/datapath.h"

using namespace orv;
using orv::test::kArcsecFromRad;
using orv::test::kDegFromRad;
using orv::test::kSame;

namespace {

constexpr double kDeg = 3.14159265358979323846 / 180.0;
constexpr double kArcsec = kDeg / 3600.0;
const orv::test::Unit kRadii{1.0, "planet radii"};
const orv::test::Unit kMinutesFromDays{1440.0, "min"};

class PhysicalEphemeris : public ::testing::Test {
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

}  // namespace

TEST_F(PhysicalEphemeris, JupiterOfMeeusExample43a)
{
    const auto j = JupiterPhysicalMeeus(m_planets, m_observer, 2448972.50068);
    ASSERT_TRUE(j.has_value());
    // Printed to 0.01° (the central meridians turn 0.01° in a second).
    EXPECT_NEAR_UNIT(-2.20 * kDeg, j->sunDeclinationRad, 0.006 * kDeg, kDegFromRad);
    EXPECT_NEAR_UNIT(-2.48 * kDeg, j->earthDeclinationRad, 0.006 * kDeg, kDegFromRad);
    EXPECT_ANGLE_NEAR(268.06 * kDeg, j->centralMeridian1Rad, 0.006 * kDeg, kDegFromRad);
    EXPECT_ANGLE_NEAR(72.74 * kDeg, j->centralMeridian2Rad, 0.006 * kDeg, kDegFromRad);
    EXPECT_ANGLE_NEAR(24.80 * kDeg, j->poleAngleRad, 0.006 * kDeg, kDegFromRad);
}

TEST_F(PhysicalEphemeris, MarsOfMeeusExample42a)
{
    const auto m = MarsPhysicalMeeus(m_planets, m_observer, 2448935.500683);
    ASSERT_TRUE(m.has_value());
    // Printed to 0.01° (ω turns 0.01° in 2.5 s).
    EXPECT_NEAR_UNIT(12.44 * kDeg, m->earthDeclinationRad, 0.006 * kDeg, kDegFromRad);
    EXPECT_NEAR_UNIT(-2.76 * kDeg, m->sunDeclinationRad, 0.006 * kDeg, kDegFromRad);
    EXPECT_ANGLE_NEAR(111.55 * kDeg, m->centralMeridianRad, 0.006 * kDeg, kDegFromRad);
    EXPECT_ANGLE_NEAR(347.64 * kDeg, m->poleAngleRad, 0.006 * kDeg, kDegFromRad);
}

TEST_F(PhysicalEphemeris, SaturnRingOfMeeusExample45a)
{
    const auto s = SaturnRingViewMeeus(m_planets, m_observer, 2448972.5);
    ASSERT_TRUE(s.has_value());
    // Printed to 0.001° and 0.01″; ΔU carries the difference of the full
    // series from Meeus's truncated Saturn (up to 0.003°).
    EXPECT_NEAR_UNIT(16.442 * kDeg, s->earthTiltRad, 0.002 * kDeg, kDegFromRad);
    EXPECT_NEAR_UNIT(14.679 * kDeg, s->sunTiltRad, 0.002 * kDeg, kDegFromRad);
    EXPECT_NEAR_UNIT(4.198 * kDeg, s->deltaURad, 0.003 * kDeg, kDegFromRad);
    EXPECT_NEAR_UNIT(6.741 * kDeg, s->poleAngleRad, 0.002 * kDeg, kDegFromRad);
    EXPECT_NEAR_UNIT(35.87 * kArcsec, s->majorAxisRad, 0.006 * kArcsec, kArcsecFromRad);
    EXPECT_NEAR_UNIT(10.15 * kArcsec, s->minorAxisRad, 0.006 * kArcsec, kArcsecFromRad);
}

TEST_F(PhysicalEphemeris, GalileanSatellitesOfMeeusExample44b)
{
    const auto moons = GalileanSatellitesE5(m_planets, m_observer, 2448972.50068);
    ASSERT_TRUE(moons.has_value());
    const double x[4] = {-3.4502, +7.4418, +1.2011, +7.0720};
    const double y[4] = {+0.2137, +0.2753, +0.5900, +1.0291};
    // Printed to 0.0001 radius; held to 0.0003 radius (21 km).
    for (int k = 0; k < 4; ++k) {
        SCOPED_TRACE(k);
        EXPECT_NEAR_UNIT(x[k], (*moons)[k].xRadii, 3e-4, kRadii);
        EXPECT_NEAR_UNIT(y[k], (*moons)[k].yRadii, 3e-4, kRadii);
    }
}

// Meeus ch. 44, the exercise of p. 314: on 1988 November 23 Ganymede passes
// the line through Jupiter's centre (X = 0) at 7h28m UT and Callisto at
// 5h15m UT (ΔT = 56 s). Ganymede's X changes 0.009 radius a minute there and
// Callisto's 0.007: held to 0.012 radius, a minute and a half of time.
TEST_F(PhysicalEphemeris, GalileanConjunctionsOfMeeusExercise44)
{
    const double day = 2447488.5, deltaT = 56.0 / 86400.0;
    const auto at728 = GalileanSatellitesE5(m_planets, m_observer, day + (7.0 + 28.0 / 60.0) / 24.0 + deltaT);
    const auto at515 = GalileanSatellitesE5(m_planets, m_observer, day + (5.0 + 15.0 / 60.0) / 24.0 + deltaT);
    ASSERT_TRUE(at728 && at515);
    EXPECT_NEAR_UNIT(0.0, (*at728)[2].xRadii, 0.012, kRadii);
    EXPECT_NEAR_UNIT(0.0, (*at515)[3].xRadii, 0.012, kRadii);
    // Ganymede an hour either side is well off the line, on opposite sides.
    const auto before = GalileanSatellitesE5(m_planets, m_observer, day + 6.47 / 24.0 + deltaT);
    const auto after = GalileanSatellitesE5(m_planets, m_observer, day + 8.47 / 24.0 + deltaT);
    ASSERT_TRUE(before && after);
    EXPECT_LT((*before)[2].xRadii * (*after)[2].xRadii, -0.1);
}

TEST_F(PhysicalEphemeris, SaturnSatellitesOfMeeusExample46a)
{
    const auto moons = SaturnSatellitesMeeus(m_planets, m_observer, 2451439.50074);
    ASSERT_TRUE(moons.has_value());
    // Mimas … Iapetus, printed to 0.001 radius; held to 0.002 radius (120 km).
    const double x[8] = {+3.102, +3.823, +4.027, -5.365, -0.972, +14.568, -18.001, -48.760};
    const double y[8] = {-0.204, +0.318, -1.061, -1.148, -3.136, +4.738, -5.328, +4.137};
    for (int k = 0; k < 8; ++k) {
        SCOPED_TRACE(k);
        EXPECT_NEAR_UNIT(x[k], (*moons)[k].xRadii, 2e-3, kRadii);
        EXPECT_NEAR_UNIT(y[k], (*moons)[k].yRadii, 2e-3, kRadii);
    }
}

TEST_F(PhysicalEphemeris, GreatRedSpotTransitsWhenTheCentralMeridianReachesIt)
{
    // With the spot at the System II longitude of Meeus's example 43.a
    // (72.74° at 1992 December 16.0 UT) it transits then; at 72.74° + 30°
    // it comes 30/870.27 of a day (49.6 min) later, and it stands on the
    // following (east) side of the disc at the first instant.
    const double jd = 2448972.50068;
    const auto now = NextGreatRedSpotTransitJdTT(m_planets, m_observer, jd - 0.01, 72.74);
    ASSERT_TRUE(now.has_value());
    EXPECT_NEAR_UNIT(jd, *now, 1.5 / 1440.0, kMinutesFromDays);  // Meeus's ω2 is rounded to 0.01° (1 s)
    const auto later = NextGreatRedSpotTransitJdTT(m_planets, m_observer, jd, 102.74);
    ASSERT_TRUE(later.has_value());
    EXPECT_NEAR_UNIT(jd + 30.0 / 870.27, *later, 1.5 / 1440.0, kMinutesFromDays);

    const auto j = JupiterPhysicalMeeus(m_planets, m_observer, jd);
    ASSERT_TRUE(j.has_value());
    const GreatRedSpotPlace spot = GreatRedSpotOnDisc(*j, 102.74);
    EXPECT_TRUE(spot.visible);
    EXPECT_NEAR_UNIT(std::cos(22.5 * kDeg) * 0.5, spot.xRadii, 1e-3, kRadii);
    EXPECT_LT(spot.yRadii, -0.3);  // south of the equator
    EXPECT_FALSE(GreatRedSpotOnDisc(*j, 72.74 + 180.0).visible);
}

TEST(SatelliteOffsets, PoleAngleTurnsMeeusAxesOntoTheSky)
{
    // With the pole at P = 0 the planet's west is celestial west; at P = 90°
    // (pole toward the east) the satellite's X toward the equator's west end
    // points north.
    double east = 0.0, north = 0.0;
    SatelliteSkyOffset({2.0, 1.0, 0.0}, 0.0, east, north);
    EXPECT_NEAR_UNIT(-2.0, east, 1e-12, kSame);
    EXPECT_NEAR_UNIT(1.0, north, 1e-12, kSame);
    SatelliteSkyOffset({2.0, 1.0, 0.0}, 90.0 * kDeg, east, north);
    EXPECT_NEAR_UNIT(1.0, east, 1e-12, kSame);
    EXPECT_NEAR_UNIT(2.0, north, 1e-12, kSame);
    EXPECT_EQ(ChartSatelliteFromName("TITAN"), 9);
    EXPECT_EQ(ChartSatelliteFromName("io"), 0);
    EXPECT_FALSE(ChartSatelliteFromName("Hyperion").has_value());
}

// The satellites are set on the sky at their Meeus offsets times the
// planet's apparent radius, whatever the planet's declination: Titan from
// Saturn at −22° (2017 June 15) and Callisto from Jupiter at +22° (2026
// January 10), the great-circle separation against √(X² + Y²) radii, to
// 0.1 % (the offsets are laid off in the tangent plane).
TEST_F(PhysicalEphemeris, SatellitesStandAtTheirOffsetsOnTheSky)
{
    for (const double jdTT : {2457919.5, 2461050.5}) {
        SCOPED_TRACE(jdTT);
        double ra = 0.0, dec = 0.0;
        ASSERT_EQ(m_planets.ApparentPosition(m_observer, kBodyJupiter, jdTT, ra, dec, PlaceCentre::Geocentric),
                  PositionStatus::Ok);
        ASSERT_EQ(m_planets.ApparentPosition(m_observer, kBodySaturn, jdTT, ra, dec, PlaceCentre::Geocentric),
                  PositionStatus::Ok);
        const auto j = JupiterPhysicalMeeus(m_planets, m_observer, jdTT);
        const auto s = SaturnRingViewMeeus(m_planets, m_observer, jdTT);
        ASSERT_TRUE(j && s);
        const SatellitePlaces places = PlaceChartSatellites(m_planets, m_observer, jdTT, j->poleAngleRad, s->poleAngleRad);
        for (const int k : {3, 9}) {  // Callisto, Titan
            const SatellitePlace& p = places.satellites[static_cast<std::size_t>(k)];
            ASSERT_TRUE(p.valid);
            const PlanetRecord& planet = m_planets.Record(ChartSatellite(k).planet);
            const double separation =
                std::acos(std::sin(p.decRad) * std::sin(planet.decRad) +
                          std::cos(p.decRad) * std::cos(planet.decRad) * std::cos(p.raRad - planet.raRad));
            const double expected = std::hypot(p.xyz.xRadii, p.xyz.yRadii) * 0.5 * planet.apparentDiameterRad;
            EXPECT_NEAR_UNIT(expected, separation, 1e-3 * expected, kArcsecFromRad);
        }
    }
}
