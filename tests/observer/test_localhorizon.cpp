// Rising and setting over the observer's own horizon: the event is where the
// body's apparent altitude (true altitude lifted by refraction) meets the
// horizon's altitude at the body's azimuth.

#include <gtest/gtest.h>

#include <cmath>

#include "observer/observer.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using orv::test::kArcsecFromRad;
using orv::test::kSecondsFromDays;

namespace {

constexpr double kOneSecond = 1.0 / 86400.0;

// Azimuth from north through east and true altitude of a fixed star (Meeus
// eq. 13.5 and 13.6, with the observer's apparent sidereal time).
void AzAlt(const CObserverDoc& doc, double ra, double dec, double jdUT, double& az, double& alt)
{
    const double jdTT = jdUT + DeltaTSeconds(jdUT) / 86400.0;
    const double h = doc.LAST(jdTT) * kRadPerHour - ra;
    const double phi = doc.LatitudeRad();
    az = mod2pi(std::atan2(std::sin(h), std::cos(h) * std::sin(phi) - std::tan(dec) * std::cos(phi)) + kPi);
    alt = std::asin(std::sin(phi) * std::sin(dec) + std::cos(phi) * std::cos(dec) * std::cos(h));
}

TEST(LocalHorizon, RisingBehindAWallIsWhereTheStarClearsIt)
{
    // Sirius from Greenwich in January 2024; it rises in the south-east
    // (azimuth about 117°) and sets in the south-west (about 243°). A wall
    // 10° high stands from azimuth 90° to 180°.
    CObserverDoc doc;
    doc.SetSite("Greenwich", (51.0 + 28.0 / 60 + 38.0 / 3600) * kRadPerDeg, -0.0015 * kRadPerDeg, 46.0);
    doc.SetJulianDate(2460325.5);
    const double ra = (6.0 + 46.0 / 60 + 13.0 / 3600) * 15.0 * kRadPerDeg;
    const double dec = -(16.0 + 44.0 / 60 + 49.0 / 3600) * kRadPerDeg;
    const ApparentPositionFn sirius = [&](double, double& r, double& d) {
        r = ra;
        d = dec;
    };
    const LocalHorizonFn wall = [](double azRad) {
        const double az = azRad * kDegPerRad;
        return az >= 90.0 && az <= 180.0 ? 10.0 * kRadPerDeg : 0.0;
    };
    const double start = doc.JulianDate();
    const RiseTransitSet plain = doc.FindRiseTransitSet(sirius, start, 1.0, kRiseAltitudeStarRad);
    const RiseTransitSet walled = doc.FindRiseTransitSet(sirius, start, 1.0, kRiseAltitudeStarRad, wall);
    ASSERT_TRUE(plain.riseJdUT && plain.setJdUT && walled.riseJdUT && walled.setJdUT);

    // At the new rising the star stands at the wall's top: its apparent
    // altitude is 10° within the 1 s of the search (about 8″ of altitude),
    // offset by what the conventional h0 (−34′) differs from the
    // refraction model at the horizon (about 28″).
    double az = 0.0, alt = 0.0;
    AzAlt(doc, ra, dec, *walled.riseJdUT, az, alt);
    EXPECT_GT(az * kDegPerRad, 90.0);
    EXPECT_LT(az * kDegPerRad, 180.0);
    const double h0Offset = kRiseAltitudeStarRad + doc.InverseRefraction(0.0);
    EXPECT_LT(std::fabs(h0Offset), 40.0 * kRadPerArcsec);
    EXPECT_NEAR_UNIT(10.0 * kRadPerDeg + h0Offset, alt + doc.Refraction(alt), 10.0 * kRadPerArcsec, kArcsecFromRad);
    // Ten degrees of altitude take the star over an hour at this slant.
    EXPECT_GT(*walled.riseJdUT - *plain.riseJdUT, 1.0 / 24.0);
    // The setting, in the open south-west, is unchanged.
    EXPECT_NEAR_UNIT(*plain.setJdUT, *walled.setJdUT, kOneSecond, kSecondsFromDays);

    // A flat horizon at 0° is the mathematical one.
    const RiseTransitSet flat =
        doc.FindRiseTransitSet(sirius, start, 1.0, kRiseAltitudeStarRad, [](double) { return 0.0; });
    ASSERT_TRUE(flat.riseJdUT);
    EXPECT_NEAR_UNIT(*plain.riseJdUT, *flat.riseJdUT, kOneSecond, kSecondsFromDays);
}

}  // namespace
