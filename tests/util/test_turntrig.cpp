// Sine and cosine of angles in turns (util/turntrig.h) against the C library
// in extended precision: the lunar and Earth-offset series sum a thousand of
// them per date, so each must be good to a few parts in 1e16 for the sums to
// stay below 1e-12 of their largest term. Reference: the fractional part of
// the angle (exact in double) times 2π, sinl/cosl in long double.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "util/turntrig.h"

using namespace orv;

namespace {

// Absolute error of SinCosTurns at `turns` against the extended-precision reference.
void Errors(double turns, double& sinError, double& cosError)
{
    const long double fraction = static_cast<long double>(turns - std::floor(turns));
    const long double angle = fraction * 6.283185307179586476925286766559005768L;
    double s, c;
    SinCosTurns(turns, s, c);
    sinError = static_cast<double>(std::fabs(static_cast<long double>(s) - std::sin(angle)));
    cosError = static_cast<double>(std::fabs(static_cast<long double>(c) - std::cos(angle)));
}

}  // namespace

TEST(TurnTrig, WithinFourUnitsOfTheLastPlaceOverTheSeriesRange)
{
    // Angles from 0 to ±2e5 turns (the Moon's fastest argument over ±150
    // centuries), a pseudo-random spread plus the quarter turns, where the
    // reduction changes quadrant.
    double worstSin = 0.0, worstCos = 0.0;
    std::uint64_t state = 0x9E3779B97F4A7C15ull;
    for (int k = 0; k < 200000; ++k) {
        state = state * 6364136223846793005ull + 1442695040888963407ull;
        const double unit = static_cast<double>(state >> 11) * 0x1.0p-53;  // [0, 1)
        const double turns = (unit - 0.5) * 4e5;
        double es, ec;
        Errors(turns, es, ec);
        worstSin = std::max(worstSin, es);
        worstCos = std::max(worstCos, ec);
    }
    for (int q = -8; q <= 8; ++q) {
        for (double eps : {0.0, 1e-17, -1e-17, 1e-9, -1e-9}) {
            double es, ec;
            Errors(0.25 * q + eps, es, ec);
            worstSin = std::max(worstSin, es);
            worstCos = std::max(worstCos, ec);
        }
    }
    EXPECT_LT(worstSin, 4.5e-16);  // measured 3.5e-16
    EXPECT_LT(worstCos, 4.5e-16);
}

TEST(TurnTrig, ExactAtTheQuarterTurns)
{
    double s, c;
    SinCosTurns(0.0, s, c);
    EXPECT_EQ(0.0, s);
    EXPECT_EQ(1.0, c);
    SinCosTurns(0.25, s, c);
    EXPECT_EQ(1.0, s);
    EXPECT_EQ(0.0, c);
    SinCosTurns(-0.5, s, c);
    EXPECT_EQ(-1.0, c);
    SinCosTurns(1000.75, s, c);
    EXPECT_EQ(-1.0, s);
}

TEST(TurnTrig, PairsGiveTheSingleAnglesResultsExactly)
{
    // The two-lane form must round exactly as the scalar one in every
    // quadrant, negative angles and quarter turns included.
    for (int k = -4000; k <= 4000; ++k) {
        const double a = k * 0.125 + 1e-3 * k, b = -0.25 * k - 7e-4 * k;
        double sa, ca, sb, cb;
        SinCosTurns(a, sa, ca);
        SinCosTurns(b, sb, cb);
        Double2 s2, c2;
        SinCosTurns2(Double2{a, b}, s2, c2);
        ASSERT_EQ(sa, s2[0]) << a;
        ASSERT_EQ(ca, c2[0]) << a;
        ASSERT_EQ(sb, s2[1]) << b;
        ASSERT_EQ(cb, c2[1]) << b;
    }
}
