// The VSOP87D series as built into "Data\VSOP87.idx" and "Data\VSOP87.dat"
// against the check values distributed with the theory (Bretagnon & Francou
// 1988, CDS VI/81, file vsop87.chk): l, b (rad) and r (AU) of each planet at
// ten dates from 2000 back to 1100, printed to 1e-10. With every term of the
// series kept the evaluation reproduces them to their last digit; the
// tolerance, 2e-10 rad (0.04 mas) and 2e-10 AU (30 m), allows one unit of the
// printed rounding and the summation's rounding over some 1,500 terms.
#include <gtest/gtest.h>

#include <algorithm>

#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "solarsystem/vsop87.h"
#include "support/compare.h"
#include "util/datapath.h"

using namespace orv;
using orv::test::kArcsecFromRad;
using orv::test::kSame;

namespace {

struct CheckValue {
    int body = 0;
    double jd = 0.0;
    double l = 0.0, b = 0.0, r = 0.0;
};

int BodyOfCheckName(const std::string& name)
{
    static const char* const kNames[8] = {"MERCURY", "VENUS", "EARTH", "MARS", "JUPITER", "SATURN", "URANUS", "NEPTUNE"};
    for (int i = 0; i < 8; ++i)
        if (name == kNames[i]) return i + 1;
    return 0;
}

// The VSOP87D blocks of vsop87.chk: " VSOP87D  MERCURY     JD2451545.0 …"
// followed by " l   4.4293481036 rad       b   -.0527573409 rad       r    .4664714751  au".
std::vector<CheckValue> ReadCheckValues(const std::string& path)
{
    std::vector<CheckValue> out;
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream head(line);
        std::string version, name, jd;
        if (!(head >> version >> name >> jd) || version != "VSOP87D" || jd.rfind("JD", 0) != 0) continue;
        CheckValue v;
        v.body = BodyOfCheckName(name);
        v.jd = std::stod(jd.substr(2));
        std::string values;
        if (!std::getline(in, values)) break;
        std::istringstream fields(values);
        std::string l, unitL, b, unitB, r, unitR;
        fields >> l >> v.l >> unitL >> b >> v.b >> unitB >> r >> v.r >> unitR;
        if (v.body != 0 && l == "l" && b == "b" && r == "r") out.push_back(v);
    }
    return out;
}

class Vsop87Files : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (m_series.Open() != Vsop87Status::Ok)
            GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath()
                         << "): run tools/build-data.sh (data step 30-planets) first";
    }
    CVsop87D m_series;
};

}  // namespace

TEST_F(Vsop87Files, HoldEveryTermOfThePublishedSeries)
{
    // The terms the package carries for each planet, less the four
    // separators it writes as [NaN, NaN, NaN] where a list runs on into the
    // next power of t (Uranus 3990 − 1, Neptune 1932 − 3): a separator read
    // as a term, or a term dropped, changes a count.
    const int expected[8] = {6827, 1682, 2425, 5483, 3483, 5759, 3989, 1929};
    for (int body = 1; body <= 8; ++body) EXPECT_EQ(m_series.TermCount(body), expected[body - 1]) << "body " << body;
}

TEST_F(Vsop87Files, ReproduceThePublishedCheckValues)
{
    ORV_REQUIRE_REFERENCE("vsop87/vsop87.chk");
    const std::vector<CheckValue> checks = ReadCheckValues(test::ReferenceDir() + "/vsop87/vsop87.chk");
    ASSERT_EQ(checks.size(), 80u) << "ten dates for each of the eight planets";
    for (const CheckValue& c : checks) {
        SCOPED_TRACE("body " + std::to_string(c.body) + " JD " + std::to_string(c.jd));
        const SphericalLBR p = m_series.EvaluateOfDate(c.body, c.jd);
        EXPECT_ANGLE_NEAR(c.l, p.lRad, 2e-10, kArcsecFromRad);
        EXPECT_NEAR_UNIT(c.b, p.bRad, 2e-10, kArcsecFromRad);
        EXPECT_NEAR_UNIT(c.r, p.rAU, 2e-10, kSame);
    }
}

TEST_F(Vsop87Files, RefuseWhatTheyCannotAnswer)
{
    EXPECT_TRUE(std::isnan(m_series.EvaluateOfDate(0, 2451545.0).lRad));
    EXPECT_TRUE(std::isnan(m_series.EvaluateOfDate(9, 2451545.0).rAU));
    EXPECT_TRUE(std::isnan(m_series.EvaluateOfDate(3, std::nan("")).bRad));
}

// The larger terms of the Earth, as the eclipse tables use them: the error
// against the whole series stays within the bound of the omitted terms and
// within the figures the eclipse code relies on (0.36″ in longitude, 0.18″
// in latitude over −2000 … +3000 for the 325 larger terms, 0.06″ and
// 0.04″ for the 903, measured when the subsets were chosen).
TEST_F(Vsop87Files, SubsetOfTheLargerTermsStaysWithinItsBound)
{
    // The eclipse tables' two grades: 325 terms (1e-7 rad) and 903 (1e-8).
    struct Grade {
        double minTermRad;
        int terms;
        double worstLArcsec, worstBArcsec, worstRAU;
    };
    for (const Grade& g : {Grade{1e-7, 325, 0.40, 0.20, 2e-6}, Grade{1e-8, 903, 0.07, 0.04, 4e-7}}) {
        SCOPED_TRACE(g.minTermRad);
        CVsop87Subset subset;
        ASSERT_TRUE(subset.Build(m_series, 3, g.minTermRad, 4.0));
        EXPECT_EQ(subset.TermCount(), g.terms);
        double worstL = 0.0, worstB = 0.0, worstR = 0.0;
        for (double jd = 991000.5; jd < 2817000.0; jd += 487.3) {
            const SphericalLBR full = m_series.EvaluateOfDate(3, jd);
            const SphericalLBR part = subset.EvaluateOfDate(jd);
            worstL = std::max(worstL, std::fabs(full.lRad - part.lRad));
            worstB = std::max(worstB, std::fabs(full.bRad - part.bRad));
            worstR = std::max(worstR, std::fabs(full.rAU - part.rAU));
        }
        constexpr double kArcsec = 3.14159265358979323846 / 648000.0;
        EXPECT_LT(worstL, g.worstLArcsec * kArcsec);
        EXPECT_LT(worstB, g.worstBArcsec * kArcsec);
        EXPECT_LT(worstR, g.worstRAU);
        EXPECT_LT(worstL, subset.OmittedBound()[0]);
        EXPECT_LT(worstB, subset.OmittedBound()[1]);
        EXPECT_LT(worstR, subset.OmittedBound()[2]);
    }
    // With no term left out it is the series itself.
    CVsop87Subset all;
    ASSERT_TRUE(all.Build(m_series, 3, 0.0, 4.0));
    EXPECT_EQ(all.TermCount(), m_series.TermCount(3));
    const SphericalLBR a = m_series.EvaluateOfDate(3, 2460000.5), b = all.EvaluateOfDate(2460000.5);
    EXPECT_DOUBLE_EQ(a.lRad, b.lRad);
    EXPECT_DOUBLE_EQ(a.rAU, b.rAU);
    EXPECT_FALSE(CVsop87Subset().Build(m_series, 9, 1e-7, 4.0));
    EXPECT_TRUE(std::isnan(CVsop87Subset().EvaluateOfDate(2451545.0).lRad));
}

TEST(Vsop87Damaged, IndexNamingTermsPastTheEndIsRefused)
{
    const std::string dir = test::MakeTempDir();
    {
        std::ofstream idx(dir + "/VSOP87.idx", std::ios::binary);
        std::vector<char> bytes(kVsop87IndexBytes, 0);
        bytes[2] = 5;  // Mercury L0: five terms
        idx.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        std::ofstream dat(dir + "/VSOP87.dat", std::ios::binary);
        std::vector<char> terms(4 * kVsop87TermBytes, 0);  // four terms only
        dat.write(terms.data(), static_cast<std::streamsize>(terms.size()));
    }
    CVsop87D series;
    EXPECT_EQ(series.OpenFiles(dir + "/VSOP87.idx", dir + "/VSOP87.dat"), Vsop87Status::Damaged);
    EXPECT_FALSE(series.IsOpen());
    EXPECT_EQ(series.OpenFiles(dir + "/none.idx", dir + "/VSOP87.dat"), Vsop87Status::Missing);
}
