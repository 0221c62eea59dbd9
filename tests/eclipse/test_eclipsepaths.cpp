// The paths of the world map against the local circumstances computed
// independently for points on them (round trip through the Earth's
// ellipsoid and rotation): on an umbral limit totality lasts no time, on
// the central line the site is central with the Moon's centre on the Sun's.
// And the place of greatest eclipse of 2024 April 8: 25.3° N, 104.1° W
// (NASA's Besselian elements page for the eclipse).
#include <gtest/gtest.h>

#include <cmath>

#include "eclipse/eclipsefinder.h"
#include "eclipse/eclipsepaths.h"
#include "eclipse/localcircumstances.h"
#include "observer/observer.h"
#include "solarsystem/planets.h"
#include "support/compare.h"
#include "util/datapath.h"

namespace orv {
namespace {

constexpr double kDeg = 3.14159265358979323846 / 180.0;

TEST(EclipsePaths, TotalEclipse2024April)
{
    SunMoonPlaces probe;
    if (!SunMoonAt(2451545.0, probe)) GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath() << ")";
    const auto e = EclipseAtSyzygyNear(JulianDateFromCivil(CivilDateTime{2024, 4, 8, 18, 0, 0.0}), EclipseKind::Solar);
    ASSERT_TRUE(e);
    BesselianElements b;
    ASSERT_TRUE(ComputeBesselianElements(e->jdTT, b));
    const SolarEclipsePaths paths = ComputeSolarEclipsePaths(b, e->jdTT);
    ASSERT_TRUE(paths.hasGreatest);
    // 0.1° is the precision of the published figure.
    EXPECT_NEAR(25.3, paths.greatest.latitudeDeg, 0.1);
    EXPECT_NEAR(-104.1, paths.greatest.longitudeDeg, 0.1);
    ASSERT_EQ(1u, paths.central.size());
    ASSERT_FALSE(paths.umbraNorth.empty());
    ASSERT_FALSE(paths.umbraSouth.empty());

    // Every 20th point of the central line: central there, the axis within
    // 1 km of the site at local greatest eclipse (magnitude = diameter ratio).
    int checked = 0;
    for (std::size_t i = 20; i + 20 < paths.central.front().size(); i += 20) {
        const GeoPoint& p = paths.central.front()[i];
        const SolarLocalCircumstances c = SolarLocal(b, {p.latitudeDeg * kDeg, p.longitudeDeg * kDeg, 0.0});
        ASSERT_TRUE(c.eclipsed);
        EXPECT_EQ('T', c.localType) << p.latitudeDeg << " " << p.longitudeDeg;
        EXPECT_GT(c.centralDurationSeconds, 60.0);
        ++checked;
    }
    EXPECT_GT(checked, 5);
    // Points of the limits: totality shorter than 10 s (the limit is where
    // it shrinks to nothing; 10 s is about 0.3 km across the path).
    for (const auto* limit : {&paths.umbraNorth.front(), &paths.umbraSouth.front()}) {
        for (std::size_t i = 30; i + 30 < limit->size(); i += 30) {
            const GeoPoint& p = (*limit)[i];
            const SolarLocalCircumstances c = SolarLocal(b, {p.latitudeDeg * kDeg, p.longitudeDeg * kDeg, 0.0});
            ASSERT_TRUE(c.eclipsed);
            EXPECT_LT(c.centralDurationSeconds, 10.0) << p.latitudeDeg << " " << p.longitudeDeg;
            EXPECT_GT(c.magnitude, 0.99);
        }
    }
}

// The hybrid eclipse of 2023 April 20: greatest eclipse at 9.6° S,
// 125.8° E (NASA, as quoted in the eclipse's encyclopaedia article); total
// there, annular where the path begins and ends at sunrise and sunset.
TEST(EclipsePaths, HybridEclipse2023April)
{
    SunMoonPlaces probe;
    if (!SunMoonAt(2451545.0, probe)) GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath() << ")";
    const auto e = EclipseAtSyzygyNear(JulianDateFromCivil(CivilDateTime{2023, 4, 20, 4, 0, 0.0}), EclipseKind::Solar);
    ASSERT_TRUE(e);
    ASSERT_EQ('H', e->type);
    BesselianElements b;
    ASSERT_TRUE(ComputeBesselianElements(e->jdTT, b));
    const SolarEclipsePaths paths = ComputeSolarEclipsePaths(b, e->jdTT);
    ASSERT_TRUE(paths.hasGreatest);
    EXPECT_NEAR(-9.6, paths.greatest.latitudeDeg, 0.1);
    EXPECT_NEAR(125.8, paths.greatest.longitudeDeg, 0.1);
    const SolarLocalCircumstances atGreatest =
        SolarLocal(b, {paths.greatest.latitudeDeg * kDeg, paths.greatest.longitudeDeg * kDeg, 0.0});
    EXPECT_EQ('T', atGreatest.localType);
    ASSERT_EQ(1u, paths.central.size());
    // Where the path meets the limb (ζ = 0) the umbra's radius is l2 itself:
    // positive, annular, at both ends.
    double tStart = 99.0, tEnd = -99.0;
    for (int m = -240; m <= 240; ++m) {
        const double t = m / 60.0;
        if (std::hypot(b.X(t), b.Y(t)) < 0.997) {
            tStart = std::min(tStart, t);
            tEnd = std::max(tEnd, t);
        }
    }
    ASSERT_LT(tStart, tEnd);
    EXPECT_GT(b.L2(tStart), 0.0);
    EXPECT_GT(b.L2(tEnd), 0.0);
}

TEST(EclipsePaths, MoonUpRegion)
{
    SunMoonPlaces probe;
    if (!SunMoonAt(2451545.0, probe)) GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath() << ")";
    // 2022 November 8, greatest eclipse 10:59:08 UT + ΔT 69.2 s (gamma
    // 0.257): the Moon stood within 0.3° of the antisolar point, which is
    // found here from the chart's own apparent Sun and ERFA's sidereal time.
    const double jdTT = JulianDateFromCivil(CivilDateTime{2022, 11, 8, 11, 0, 17.0});
    LunarVisibilityRegion r;
    ASSERT_TRUE(ComputeLunarVisibilityRegion(jdTT, r));
    CObserverDoc observer;
    CPlanets planets;
    double sunRa = 0.0, sunDec = 0.0;
    ASSERT_EQ(PositionStatus::Ok, planets.ApparentPosition(observer, kBodySun, jdTT, sunRa, sunDec, PlaceCentre::Geocentric));
    const double jdUT = jdTT - 69.2 / 86400.0;
    double antiLon = std::fmod((sunRa + 3.14159265358979323846 - GreenwichApparentSiderealTimeRad(jdUT, jdTT)) / kDeg, 360.0);
    if (antiLon > 180.0) antiLon -= 360.0;
    if (antiLon <= -180.0) antiLon += 360.0;
    EXPECT_NEAR(-sunDec / kDeg, r.subLunar.latitudeDeg, 0.5);
    EXPECT_NEAR(antiLon, r.subLunar.longitudeDeg, 0.5);
    // Every horizon point 90° from the sub-lunar point.
    for (const GeoPoint& p : r.horizon) {
        const double c = std::sin(p.latitudeDeg * kDeg) * std::sin(r.subLunar.latitudeDeg * kDeg) +
                         std::cos(p.latitudeDeg * kDeg) * std::cos(r.subLunar.latitudeDeg * kDeg) *
                             std::cos((p.longitudeDeg - r.subLunar.longitudeDeg) * kDeg);
        EXPECT_NEAR(0.0, c, 1e-9);
    }
}

}  // namespace
}  // namespace orv
