// The one comparison helper of the test suite: prints expected, actual,
// difference and tolerance in the unit given, handles angle wrap-around and
// fails on NaN.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace orv::test {

// Scale of a unit relative to the value's own unit, and its printed name.
struct Unit {
    double perValue;  // how many of this unit one value unit holds
    const char* name;
};

inline constexpr Unit kArcsecFromRad{206264.80624709636, "arcsec"};
inline constexpr Unit kMasFromRad{206264806.24709636, "mas"};
inline constexpr Unit kDegFromRad{57.29577951308232, "deg"};
inline constexpr Unit kSecondsFromDays{86400.0, "s"};
inline constexpr Unit kSame{1.0, ""};

::testing::AssertionResult NearWithUnit(const char* expectedExpr, const char* actualExpr, const char* tolExpr,
                                        const char* unitExpr, double expected, double actual, double tolerance,
                                        Unit unit);
// As above, for angles in radians: the difference is taken modulo 2π into (−π, π].
::testing::AssertionResult AngleNearWithUnit(const char* expectedExpr, const char* actualExpr, const char* tolExpr,
                                             const char* unitExpr, double expectedRad, double actualRad,
                                             double toleranceRad, Unit unit);

// Folder of the shared reference data (ORVANE_REFERENCE_DIR), or empty when
// it is not on this machine.
std::string ReferenceDir();
// Folder of the test data kept in the repository (tests/data).
std::string TestDataDir();
// A fresh empty folder below the system's temporary folder, removed when the
// process ends.
std::string MakeTempDir();
// The whole of a file, byte for byte (empty when it cannot be read).
std::string ReadFileBytes(const std::string& path);

}  // namespace orv::test

// EXPECT_NEAR_UNIT(expected, actual, tolerance, unit): the values and the
// tolerance in the values' own unit; `unit` only scales the report (e.g.
// radians reported in arcseconds).
#define EXPECT_NEAR_UNIT(expected, actual, tolerance, unit) \
    EXPECT_PRED_FORMAT4(::orv::test::NearWithUnit, expected, actual, tolerance, unit)
#define ASSERT_NEAR_UNIT(expected, actual, tolerance, unit) \
    ASSERT_PRED_FORMAT4(::orv::test::NearWithUnit, expected, actual, tolerance, unit)
#define EXPECT_ANGLE_NEAR(expectedRad, actualRad, toleranceRad, unit) \
    EXPECT_PRED_FORMAT4(::orv::test::AngleNearWithUnit, expectedRad, actualRad, toleranceRad, unit)

// Skips the current test with a clear message when the shared reference data
// is absent.
#define ORV_REQUIRE_REFERENCE(relativePath)                                                                   \
    do {                                                                                                      \
        if (::orv::test::ReferenceDir().empty())                                                              \
            GTEST_SKIP() << "shared reference data not found (set ORVANE_REFERENCE_DIR); needs " relativePath; \
    } while (0)
