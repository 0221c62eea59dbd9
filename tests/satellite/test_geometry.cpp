// Sidereal time, the Sun, the site's state, look angles, the sub-satellite
// point, refraction and illumination.
#include <gtest/gtest.h>

#include <erfa.h>

#include <cmath>
#include <limits>

#include "satellite/sattime.h"
#include "satellite/topocentric.h"
#include "satellite/wgs72.h"
#include "support/compare.h"
#include "util/angles.h"

namespace orv::sat {
namespace {

using orv::test::kArcsecFromRad;
using orv::test::kDegFromRad;
using orv::test::kSame;

constexpr double kSecondsOfTimeRad = kTwoPi / 86400.0;
// ERFA's reference-ellipsoid number of WGS-72 (eraEform: 1 WGS84, 2 GRS80, 3 WGS72).
constexpr int kErfaWgs72 = 3;

TEST(SiderealTime, MeeusExamples12aAnd12b)
{
    // Meeus, Astronomical Algorithms, 2nd ed.: 1987 April 10, 0h UT:
    // 13h10m46.3668s; 19h21m00s UT: 8h34m57.0896s. Tolerance 1 ms of time.
    EXPECT_ANGLE_NEAR((13 * 3600 + 10 * 60 + 46.3668) * kSecondsOfTimeRad, GmstIau1982Rad(2446895.5),
                      0.001 * kSecondsOfTimeRad, kArcsecFromRad);
    EXPECT_ANGLE_NEAR((8 * 3600 + 34 * 60 + 57.0896) * kSecondsOfTimeRad, GmstIau1982Rad(2446896.30625),
                      0.001 * kSecondsOfTimeRad, kArcsecFromRad);
    EXPECT_TRUE(std::isnan(GmstIau1982Rad(std::numeric_limits<double>::quiet_NaN())));
}

TEST(SiderealTime, AgreesWithErfaIau1982)
{
    // ERFA's eraGmst82 implements the same IAU 1982 expression; the split at
    // 0h and the rounded rate keep them within 1e-9 rad over 1957-2056.
    for (double jd : {2436116.31, 2451545.0, 2458640.25, 2471733.5}) {
        EXPECT_ANGLE_NEAR(eraGmst82(jd, 0.0), GmstIau1982Rad(jd), 1e-9, kArcsecFromRad);
    }
}

TEST(Calendar, RoundTripAndMonthNames)
{
    // Meeus ex. 7.a: 1957 October 4.81 = JD 2436116.31.
    EXPECT_NEAR(JulianDateFromSatCivil(1957, 10, 4, 19, 26, 24.0), 2436116.31, 1e-8);
    const SatCivilTime t = SatCivilFromJulianDate(2436116.31);
    EXPECT_EQ(t.year, 1957);
    EXPECT_EQ(t.month, 10);
    EXPECT_EQ(t.day, 4);
    EXPECT_EQ(t.hour, 19);
    EXPECT_EQ(t.minute, 26);
    EXPECT_EQ(t.second, 24);
    // 23:59:59.6 rounds into the next day.
    const SatCivilTime c = SatCivilFromJulianDate(JulianDateFromSatCivil(2019, 12, 31, 23, 59, 59.6));
    EXPECT_EQ(c.year, 2020);
    EXPECT_EQ(c.month, 1);
    EXPECT_EQ(c.day, 1);
    EXPECT_EQ(c.hour, 0);
    EXPECT_STREQ(MonthAbbreviation(3), "Mar");
    EXPECT_STREQ(MonthAbbreviation(13), "");
}

TEST(LowPrecisionSun, MeeusExample25a)
{
    // Meeus, Astronomical Algorithms, ex. 25.a, 1992 October 13.0 TD: apparent
    // α = 198.38083°, δ = −7.78507°, R = 0.99766 AU. The low-precision theory
    // is good to about 0.01°; ET − UT is its own 58 s.
    const std::array<double, 3> s = ComputeSunVectorKm(2448908.5 - 58.0 / 86400.0);
    const double r = std::sqrt(s[0] * s[0] + s[1] * s[1] + s[2] * s[2]);
    EXPECT_ANGLE_NEAR(198.38083 * kRadPerDeg, std::atan2(s[1], s[0]), 0.01 * kRadPerDeg, kDegFromRad);
    EXPECT_NEAR_UNIT(-7.78507 * kRadPerDeg, std::asin(s[2] / r), 0.01 * kRadPerDeg, kDegFromRad);
    EXPECT_NEAR(r / kAstronomicalUnitKm, 0.99766, 1e-4);
}

// ECEF position (km) rotated into TEME by GMST.
std::array<double, 3> EcefToTeme(const double ecefKm[3], double jd)
{
    const double g = GmstIau1982Rad(jd);
    return {ecefKm[0] * std::cos(g) - ecefKm[1] * std::sin(g), ecefKm[0] * std::sin(g) + ecefKm[1] * std::cos(g),
            ecefKm[2]};
}

TEST(ObserverState, MatchesErfaGeodeticToGeocentricOnWgs72)
{
    const double jd = 2458640.25;
    for (const SatelliteSite site : {SatelliteSite{0.6981317, -1.3089969, 0.0}, SatelliteSite{-0.5, 2.5, 3.2},
                                     SatelliteSite{1.5, 0.1, 0.046}}) {
        double xyzM[3];
        ASSERT_EQ(eraGd2gc(kErfaWgs72, site.longitudeRad, site.latitudeRad, site.heightKm * 1000.0, xyzM), 0);
        const double ecefKm[3] = {xyzM[0] / 1000, xyzM[1] / 1000, xyzM[2] / 1000};
        const std::array<double, 3> expected = EcefToTeme(ecefKm, jd);
        const ObserverStateKm obs = ComputeObserverState(site, jd);
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(obs.positionKm[i], expected[i], 1e-6);  // 1 mm
        // Velocity: Earth's rotation, |v| = ω ρ with ρ the distance from the axis.
        const double rho = std::hypot(ecefKm[0], ecefKm[1]);
        EXPECT_NEAR(std::hypot(obs.velocityKmPerS[0], obs.velocityKmPerS[1]), 7.292115855e-5 * rho, 1e-9);
    }
}

TEST(SubSatellitePoint, InvertsErfaGeocentricToGeodetic)
{
    const double jd = 2451545.0;
    for (const double latDeg : {0.0, 12.5, 51.4769, -33.9, 89.9999, -90.0}) {
        for (const double heightKm : {0.0, 420.0, 35786.0}) {
            double xyzM[3];
            ASSERT_EQ(eraGd2gc(kErfaWgs72, 1.2345, latDeg * kRadPerDeg, heightKm * 1000.0, xyzM), 0);
            const double ecefKm[3] = {xyzM[0] / 1000, xyzM[1] / 1000, xyzM[2] / 1000};
            const SubSatellitePoint p = ComputeSubSatellitePoint(EcefToTeme(ecefKm, jd), jd);
            EXPECT_NEAR_UNIT(latDeg * kRadPerDeg, p.latitudeRad, 1e-9, kArcsecFromRad);
            if (std::fabs(latDeg) < 89.0) {
                EXPECT_ANGLE_NEAR(1.2345, p.longitudeRad, 1e-9, kArcsecFromRad);
            }
            EXPECT_NEAR(p.heightKm, heightKm, 1e-6);
        }
    }
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const SubSatellitePoint bad = ComputeSubSatellitePoint({nan, 1.0, 1.0}, jd);
    EXPECT_TRUE(std::isnan(bad.latitudeRad));
    const SubSatellitePoint infinite = ComputeSubSatellitePoint({1.0, std::numeric_limits<double>::infinity(), 1.0}, jd);
    EXPECT_TRUE(std::isnan(infinite.heightKm));
}

TEST(Refraction, SaemundssonAboveTheHorizonOnly)
{
    // At the horizon Sæmundsson's formula gives 28.98' (Meeus, ch. 16: about
    // 29'); at 10°, 5.41'. Tolerance 0.01'.
    RefractedElevation h0 = ApplyRefraction(0.0);
    EXPECT_EQ(h0.horizon, Horizon::Above);
    EXPECT_NEAR(h0.elevationRad * kDegPerRad * 60.0, 28.98, 0.01);
    RefractedElevation h10 = ApplyRefraction(10.0 * kRadPerDeg);
    EXPECT_NEAR((h10.elevationRad * kDegPerRad - 10.0) * 60.0, 5.41, 0.01);
    // −1° geometric: refraction would give −0.35°, still below: kept at −1°.
    RefractedElevation below = ApplyRefraction(-1.0 * kRadPerDeg);
    EXPECT_EQ(below.horizon, Horizon::Below);
    EXPECT_DOUBLE_EQ(below.elevationRad, -1.0 * kRadPerDeg);
    // −0.4° geometric is lifted above the horizon (R ≈ 0.56°).
    EXPECT_EQ(ApplyRefraction(-0.4 * kRadPerDeg).horizon, Horizon::Above);
    // Near the formula's pole at −5.11° nothing is lifted.
    for (double h : {-5.2, -5.11, -5.1, -5.054, -5.0, -4.0, -3.0})
        EXPECT_EQ(ApplyRefraction(h * kRadPerDeg).horizon, Horizon::Below) << h;
    EXPECT_EQ(ApplyRefraction(std::numeric_limits<double>::quiet_NaN()).horizon, Horizon::Below);
}

TEST(LookAngles, GeometryOfZenithEastAndNorth)
{
    const double jd = 2458640.25;
    const SatelliteSite site{40.0 * kRadPerDeg, -75.0 * kRadPerDeg, 0.1};
    const ObserverStateKm obs = ComputeObserverState(site, jd);
    // Unit vectors of the site's horizon in TEME.
    const double sl = std::sin(site.latitudeRad), cl = std::cos(site.latitudeRad);
    const double st = std::sin(obs.localSiderealRad), ct = std::cos(obs.localSiderealRad);
    const std::array<double, 3> up{cl * ct, cl * st, sl}, east{-st, ct, 0.0}, north{-sl * ct, -sl * st, cl};
    auto at = [&](const std::array<double, 3>& dir, double km) {
        TemeStateKm s;
        for (int i = 0; i < 3; ++i) {
            s.positionKm[i] = obs.positionKm[i] + km * dir[i];
            s.velocityKmPerS[i] = obs.velocityKmPerS[i] + 2.0 * dir[i];  // receding at 2 km/s
        }
        return ComputeLookAngles(s, site, jd);
    };
    const LookAngles zenith = at(up, 1000.0);
    // Sæmundsson's formula gives −0.0019' at the zenith.
    EXPECT_NEAR_UNIT(kHalfPi - 0.0019 / 60 * kRadPerDeg, zenith.elevationRad, 0.0002 / 60 * kRadPerDeg,
                     kArcsecFromRad);
    EXPECT_NEAR(zenith.rangeKm, 1000.0, 1e-6);
    EXPECT_NEAR(zenith.rangeRateKmPerS, 2.0, 1e-9);
    EXPECT_EQ(zenith.horizon, Horizon::Above);
    // Due east, 10° up: azimuth 90°.
    std::array<double, 3> e10{};
    for (int i = 0; i < 3; ++i) e10[i] = std::cos(10 * kRadPerDeg) * east[i] + std::sin(10 * kRadPerDeg) * up[i];
    const LookAngles east10 = at(e10, 2000.0);
    EXPECT_ANGLE_NEAR(kHalfPi, east10.azimuthRad, 1e-9, kArcsecFromRad);
    EXPECT_NEAR_UNIT(10.0 * kRadPerDeg + 5.41 / 60 * kRadPerDeg, east10.elevationRad, 0.01 / 60 * kRadPerDeg,
                     kArcsecFromRad);
    // North-west, 30° below the horizon: azimuth 315°, geometric elevation kept.
    std::array<double, 3> nw{};
    for (int i = 0; i < 3; ++i)
        nw[i] = std::cos(-30 * kRadPerDeg) * (north[i] - east[i]) / std::sqrt(2.0) + std::sin(-30 * kRadPerDeg) * up[i];
    const LookAngles below = at(nw, 3000.0);
    EXPECT_ANGLE_NEAR(315.0 * kRadPerDeg, below.azimuthRad, 1e-9, kArcsecFromRad);
    EXPECT_NEAR_UNIT(-30.0 * kRadPerDeg, below.elevationRad, 1e-9, kArcsecFromRad);
    EXPECT_EQ(below.horizon, Horizon::Below);
}

TEST(Illumination, UmbraPenumbraAndSunlitAtTheShadowEdge)
{
    // Sun on the +x axis at 1 AU; a satellite 7000 km behind the Earth at a
    // distance y from the axis. The shadow's edge (θ = θE) is at y = R.
    const std::array<double, 3> sun{kAstronomicalUnitKm, 0.0, 0.0};
    EXPECT_EQ(ComputeIllumination({7000.0, 0.0, 0.0}, sun), Illumination::Sunlit);
    EXPECT_EQ(ComputeIllumination({-7000.0, 0.0, 0.0}, sun), Illumination::Umbra);
    EXPECT_EQ(ComputeIllumination({-7000.0, kEarthRadiusKm - 100.0, 0.0}, sun), Illumination::Umbra);
    EXPECT_EQ(ComputeIllumination({-7000.0, kEarthRadiusKm, 0.0}, sun), Illumination::Penumbra);
    EXPECT_EQ(ComputeIllumination({-7000.0, kEarthRadiusKm + 100.0, 0.0}, sun), Illumination::Sunlit);
    // Inside the Earth counts as umbra.
    EXPECT_EQ(ComputeIllumination({100.0, 0.0, 0.0}, sun), Illumination::Umbra);
    // Beyond the umbra's tip (1.4 million km) the Earth seen from the axis
    // lies wholly inside the solar disc: that counts as sunlit.
    EXPECT_EQ(ComputeIllumination({-2.0e6, 0.0, 0.0}, sun), Illumination::Sunlit);
    EXPECT_EQ(ComputeIllumination({-2.0e6, 3000.0, 0.0}, sun), Illumination::Penumbra);
}

TEST(SunElevation, NoonAndMidnightAtGreenwich)
{
    // 2019 June 21 (solstice), Greenwich: the Sun culminates near 12:02 UT at
    // 90 − 51.48 + 23.44 = 61.96° (+ refraction 0.5'), and is 15° below the
    // northern horizon at midnight. Tolerance 0.1°.
    const SatelliteSite greenwich{51.4769 * kRadPerDeg, 0.0, 0.046};
    const double noon = JulianDateFromSatCivil(2019, 6, 21, 12, 2, 0);
    EXPECT_NEAR(ComputeSunElevationRad(greenwich, noon) * kDegPerRad, 61.96, 0.1);
    EXPECT_NEAR(ComputeSunElevationRad(greenwich, noon + 0.5) * kDegPerRad, -15.04, 0.1);
}

}  // namespace
}  // namespace orv::sat
