// The Moon from the built-in lunar series block.
//   Meeus, Astronomical Algorithms, 2nd ed., example 47.a, 1992 April 12.0
//   TD: λ = 133.162655°, β = −3.229126°, Δ = 368409.7 km (geometric, mean
//   equinox of date), apparent α = 134.688470°, δ = 13.768368°. Meeus's
//   chapter-47 series is itself a truncation of ELP-2000/82 good to about
//   10″ in longitude and 4″ in latitude, so these are the tolerances. His
//   distance series is cut at about 1 km per term and differs from the full
//   ELP/MPP02 here by 4.2 km (full series 368405.54 km, λ 133.162324°,
//   β −3.229203°); the distance is held to the full series' value to 0.1 km,
//   the block's own truncation error (at most 0.53 km over 1900–2100).
// The block against the full ELP/MPP02 series is checked by the data
// builder when it writes the block (docs/moon-series.md).
#include <gtest/gtest.h>

#include <cmath>

#include "observer/observer.h"
#include "solarsystem/moonseries.h"
#include "solarsystem/planets.h"
#include "support/compare.h"

using namespace orv;
using orv::test::kArcsecFromRad;
using orv::test::kSame;

namespace {
constexpr double kDeg = 3.14159265358979323846 / 180.0;
constexpr double kArcsec = kDeg / 3600.0;
}  // namespace

TEST(MoonSeries, EclipticPlaceOfMeeusExample47a)
{
    const MoonEclipticPlace moon = EvaluateMoonBlock(MoonDataBlock(), 2448724.5);
    EXPECT_ANGLE_NEAR(133.162655 * kDeg, moon.lonDeg * kDeg, 10.0 * kArcsec, kArcsecFromRad);
    EXPECT_NEAR_UNIT(-3.229126 * kDeg, moon.latDeg * kDeg, 4.0 * kArcsec, kArcsecFromRad);
    EXPECT_NEAR_UNIT(368405.54, moon.distanceKm, 0.1, kSame);
}

TEST(MoonSeries, ApparentPlaceOfMeeusExample47a)
{
    CObserverDoc observer;
    CPlanets planets;
    double ra = 0.0, dec = 0.0, km = 0.0;
    ASSERT_EQ(planets.MoonPosition(observer, 2448724.5, ra, dec, km, PlaceCentre::Geocentric), PositionStatus::Ok);
    EXPECT_ANGLE_NEAR(134.688470 * kDeg, ra, 10.0 * kArcsec, kArcsecFromRad);
    EXPECT_NEAR_UNIT(13.768368 * kDeg, dec, 5.0 * kArcsec, kArcsecFromRad);
    EXPECT_EQ(planets.PlanetInfoText(kBodyMoon).rfind("Moon\nPhase: ", 0), 0u);
}

TEST(MoonSeries, BlockIsRefusedWhenShortOrDateNotFinite)
{
    const auto block = MoonDataBlock();
    ASSERT_EQ(block.size(), kMoonDataBytes);
    EXPECT_TRUE(std::isnan(EvaluateMoonBlock(block.first(100), 2451545.0).lonDeg));
    EXPECT_TRUE(std::isnan(EvaluateMoonBlock(block, std::nan("")).distanceKm));
}
