#include "support/compare.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <mutex>
#include <numbers>
#include <random>
#include <sstream>
#include <vector>

namespace orv::test {

namespace {

::testing::AssertionResult Report(bool ok, const char* expectedExpr, const char* actualExpr, const char* tolExpr,
                                  double expected, double actual, double diff, double tolerance, Unit unit)
{
    if (ok) return ::testing::AssertionSuccess();
    std::ostringstream s;
    s << std::setprecision(12) << actualExpr << " vs " << expectedExpr << "\n  expected:   "
      << expected << "\n  actual:     " << actual << "\n  difference: " << diff * unit.perValue << ' '
      << unit.name << "\n  tolerance:  " << tolerance * unit.perValue << ' ' << unit.name << " (" << tolExpr
      << ')';
    return ::testing::AssertionFailure() << s.str();
}

}  // namespace

::testing::AssertionResult NearWithUnit(const char* expectedExpr, const char* actualExpr, const char* tolExpr,
                                        const char*, double expected, double actual, double tolerance, Unit unit)
{
    const double diff = actual - expected;
    const bool ok = std::isfinite(actual) && std::isfinite(expected) && std::fabs(diff) <= tolerance;
    return Report(ok, expectedExpr, actualExpr, tolExpr, expected, actual, diff, tolerance, unit);
}

::testing::AssertionResult AngleNearWithUnit(const char* expectedExpr, const char* actualExpr, const char* tolExpr,
                                             const char*, double expectedRad, double actualRad,
                                             double toleranceRad, Unit unit)
{
    double diff = std::remainder(actualRad - expectedRad, 2.0 * std::numbers::pi);
    const bool ok = std::isfinite(actualRad) && std::isfinite(expectedRad) && std::fabs(diff) <= toleranceRad;
    return Report(ok, expectedExpr, actualExpr, tolExpr, expectedRad, actualRad, diff, toleranceRad, unit);
}

std::string ReferenceDir()
{
    const char* env = std::getenv("ORVANE_REFERENCE_DIR");
    if (env == nullptr || *env == '\0') return {};
    std::error_code ec;
    if (!std::filesystem::is_directory(env, ec)) return {};
    return env;
}

std::string TestDataDir()
{
    const char* env = std::getenv("ORVANE_TEST_DATA");
    return env != nullptr ? std::string(env) : std::string(ORVANE_TEST_DATA_DIR);
}

namespace {
struct TempDirs {
    std::mutex mutex;
    std::vector<std::filesystem::path> paths;
    ~TempDirs()
    {
        std::error_code ec;
        for (const auto& p : paths) std::filesystem::remove_all(p, ec);
    }
};
TempDirs g_tempDirs;
}  // namespace

std::string MakeTempDir()
{
    std::random_device rd;
    std::filesystem::path p;
    std::error_code ec;
    do {
        p = std::filesystem::temp_directory_path() / ("orvane-test-" + std::to_string(rd()));
    } while (!std::filesystem::create_directory(p, ec));
    std::lock_guard lock(g_tempDirs.mutex);
    g_tempDirs.paths.push_back(p);
    return p.string();
}

std::string ReadFileBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace orv::test
