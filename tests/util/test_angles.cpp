#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using orv::test::kArcsecFromRad;
using orv::test::kSame;

TEST(Angles, Mod2piStaysInHalfOpenRange)
{
    EXPECT_DOUBLE_EQ(mod2pi(0.0), 0.0);
    EXPECT_DOUBLE_EQ(mod2pi(kTwoPi), 0.0);
    EXPECT_NEAR(mod2pi(-kPi / 2), 1.5 * kPi, 1e-15);
    EXPECT_NEAR(mod2pi(7 * kTwoPi + 1.0), 1.0, 1e-12);
    // A tiny negative angle must not come back as exactly 2π.
    const double r = mod2pi(-1e-18);
    EXPECT_GE(r, 0.0);
    EXPECT_LT(r, kTwoPi);
    EXPECT_TRUE(std::isnan(mod2pi(std::numeric_limits<double>::quiet_NaN())));
}

TEST(Angles, Mod360StaysInHalfOpenRange)
{
    EXPECT_DOUBLE_EQ(mod360(360.0), 0.0);
    EXPECT_DOUBLE_EQ(mod360(-90.0), 270.0);
    EXPECT_DOUBLE_EQ(mod360(725.5), 5.5);
    const double r = mod360(-1e-15);
    EXPECT_GE(r, 0.0);
    EXPECT_LT(r, 360.0);
}

// Meeus, Astronomical Algorithms (2nd ed.), Example 17.a: Arcturus
// (α 213.9154°, δ +19.1825°) to Spica (α 201.2983°, δ −11.1614°) is 32.7930°.
TEST(Angles, AngularDistanceMeeusExample17a)
{
    const double d = AngularDistance(213.9154 * kRadPerDeg, 19.1825 * kRadPerDeg, 201.2983 * kRadPerDeg,
                                     -11.1614 * kRadPerDeg);
    EXPECT_NEAR_UNIT(32.7930 * kRadPerDeg, d, 0.0001 * kRadPerDeg, kArcsecFromRad);
}

TEST(Angles, AngularDistanceWellConditionedAtBothEnds)
{
    // One milliarcsecond apart in declination near the pole: the plain
    // cosine formula loses this entirely.
    const double dec = 89.9 * kRadPerDeg;
    const double d = AngularDistance(1.0, dec, 1.0, dec + kRadPerMas);
    EXPECT_NEAR_UNIT(kRadPerMas, d, 1e-6 * kRadPerMas, kArcsecFromRad);
    // Antipodes.
    EXPECT_NEAR_UNIT(kPi, AngularDistance(0.3, 0.2, 0.3 + kPi, -0.2), 1e-12, kArcsecFromRad);
    // Across right ascension 0.
    EXPECT_NEAR_UNIT(2 * kRadPerDeg, AngularDistance(kTwoPi - kRadPerDeg, 0.0, kRadPerDeg, 0.0), 1e-12,
                     kArcsecFromRad);
}

TEST(Angles, NearestIntRoundsHalvesAwayFromZero)
{
    EXPECT_EQ(NearestInt(2.5), 3);
    EXPECT_EQ(NearestInt(-2.5), -3);
    EXPECT_EQ(NearestInt(2.4999), 2);
    EXPECT_EQ(NearestInt(-0.4), 0);
    EXPECT_EQ(NearestInt(1e300), std::numeric_limits<int>::max());
    EXPECT_EQ(NearestInt(-1e300), std::numeric_limits<int>::min());
}

TEST(Angles, SexagesimalCarriesRoundedSeconds)
{
    // 9.99999999 h must print as 10h 00m 00.0s, not 9h 59m 60.0s.
    const Sexagesimal s = SplitSexagesimal(9.99999999, 1);
    EXPECT_EQ(s.units, 10);
    EXPECT_EQ(s.minutes, 0);
    EXPECT_NEAR_UNIT(0.0, s.seconds, 1e-9, kSame);
    const Sexagesimal t = SplitSexagesimal(-12.5125, 0);  // −12° 30′ 45″
    EXPECT_TRUE(t.negative);
    EXPECT_EQ(t.units, 12);
    EXPECT_EQ(t.minutes, 30);
    EXPECT_NEAR_UNIT(45.0, t.seconds, 1e-9, kSame);
}

TEST(Angles, ParsesTheWaysObserversWriteAngles)
{
    double a = 0.0;
    ASSERT_TRUE(ParseAngle("5h35m17.3s", AngleUnit::Hours, a));
    EXPECT_NEAR_UNIT((5 + 35 / 60.0 + 17.3 / 3600.0) * 15 * kRadPerDeg, a, 1e-12, kArcsecFromRad);
    ASSERT_TRUE(ParseAngle("05:35:17.3", AngleUnit::Hours, a));
    EXPECT_NEAR_UNIT((5 + 35 / 60.0 + 17.3 / 3600.0) * 15 * kRadPerDeg, a, 1e-12, kArcsecFromRad);
    ASSERT_TRUE(ParseAngle("83.633d", AngleUnit::Hours, a));  // degrees where hours are expected
    EXPECT_NEAR_UNIT(83.633 * kRadPerDeg, a, 1e-12, kArcsecFromRad);
    ASSERT_TRUE(ParseAngle("-5d23m28s", AngleUnit::Degrees, a));
    EXPECT_NEAR_UNIT(-(5 + 23 / 60.0 + 28 / 3600.0) * kRadPerDeg, a, 1e-12, kArcsecFromRad);
    ASSERT_TRUE(ParseAngle("-0 30 00", AngleUnit::Degrees, a));  // the sign of a zero-degree angle
    EXPECT_NEAR_UNIT(-0.5 * kRadPerDeg, a, 1e-12, kArcsecFromRad);
    ASSERT_TRUE(ParseAngle("+22\xC2\xB0" "00\xE2\x80\xB2" "52\xE2\x80\xB3", AngleUnit::Degrees, a));
    EXPECT_NEAR_UNIT((22 + 52 / 3600.0) * kRadPerDeg, a, 1e-12, kArcsecFromRad);
    EXPECT_FALSE(ParseAngle("", AngleUnit::Degrees, a));
    EXPECT_FALSE(ParseAngle("abc", AngleUnit::Degrees, a));
    EXPECT_FALSE(ParseAngle("10:75:00", AngleUnit::Degrees, a));  // 75 minutes
}

TEST(Angles, FormatsWithCarriedRounding)
{
    EXPECT_EQ(FormatHms((5 + 35 / 60.0 + 17.3 / 3600.0) * 15 * kRadPerDeg, 1), "05h35m17.3s");
    EXPECT_EQ(FormatHms(kTwoPi - 1e-10, 1), "00h00m00.0s");
    EXPECT_EQ(FormatDms(-(5 + 23 / 60.0 + 28 / 3600.0) * kRadPerDeg, 0, true), "-05d23m28s");
    EXPECT_EQ(FormatDms(-0.1 * kRadPerArcsec, 1, true), "-00d00m00.1s");
}
