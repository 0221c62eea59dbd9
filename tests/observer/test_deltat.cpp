// ΔT = TT − UT against the IERS leap seconds, the measured ΔT of the US
// Naval Observatory, and the historical values the long-term expressions were
// fitted to.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "observer/observer.h"
#include "support/compare.h"

using namespace orv;
using orv::test::kSame;

namespace {

// NTP seconds (since 1900 January 1, 0h UTC) to a Julian date.
double JdFromNtp(double ntpSeconds) { return 2415020.5 + ntpSeconds / 86400.0; }

struct LeapSecondRow {
    double jdUTC;
    double taiMinusUtc;
};

std::vector<LeapSecondRow> ReadLeapSeconds(const std::string& path)
{
    std::vector<LeapSecondRow> rows;
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream s(line);
        double ntp = 0.0, offset = 0.0;
        if (s >> ntp >> offset) rows.push_back({JdFromNtp(ntp), offset});
    }
    return rows;
}

}  // namespace

TEST(DeltaT, LeapSecondEraIsTTMinusUTC)
{
    const auto rows = ReadLeapSeconds(orv::test::TestDataDir() + "/deltat/leap-seconds.txt");
    ASSERT_EQ(28u, rows.size());
    const double oneMinute = 60.0 / 86400.0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "leap second at JD " << std::fixed << rows[i].jdUTC);
        // From the instant it takes effect, exactly 32.184 s + TAI − UTC.
        EXPECT_EQ(32.184 + rows[i].taiMinusUtc, DeltaTSeconds(rows[i].jdUTC));
        EXPECT_EQ(32.184 + rows[i].taiMinusUtc, DeltaTSeconds(rows[i].jdUTC + 100.0 * oneMinute));
        ASSERT_TRUE(TaiMinusUtcSeconds(rows[i].jdUTC).has_value());
        EXPECT_EQ(rows[i].taiMinusUtc, *TaiMinusUtcSeconds(rows[i].jdUTC));
        // A minute before, the previous value (one second less).
        if (i > 0) {
            EXPECT_EQ(31.184 + rows[i].taiMinusUtc, DeltaTSeconds(rows[i].jdUTC - oneMinute));
        }
    }
    EXPECT_FALSE(TaiMinusUtcSeconds(rows.front().jdUTC - oneMinute).has_value());
}

TEST(DeltaT, CompiledTableIsAsRecentAsTheSharedIersList)
{
    ORV_REQUIRE_REFERENCE("deltat/leap-seconds.list");
    std::ifstream in(orv::test::ReferenceDir() + "/deltat/leap-seconds.list");
    ASSERT_TRUE(in.good());
    std::string line;
    double expiryNtp = 0.0;
    std::vector<LeapSecondRow> rows;
    while (std::getline(in, line)) {
        if (line.rfind("#@", 0) == 0) expiryNtp = std::stod(line.substr(2));
        if (line.empty() || line[0] == '#') continue;
        std::istringstream s(line);
        double ntp = 0.0, offset = 0.0;
        if (s >> ntp >> offset) rows.push_back({JdFromNtp(ntp), offset});
    }
    ASSERT_GT(expiryNtp, 0.0);
    // A newer list than the compiled table means the table needs its update.
    EXPECT_GE(LeapSecondTableEndJdUTC(), JdFromNtp(expiryNtp));
    for (const auto& row : rows) EXPECT_EQ(row.taiMinusUtc, TaiMinusUtcSeconds(row.jdUTC).value_or(-1.0));
}

TEST(DeltaT, MatchesMeasuredValuesWithinUT1MinusUTC)
{
    // ΔT here is TT − UTC; the measured ΔT is TT − UT1, and |UT1 − UTC| is kept
    // below 0.9 s by the leap seconds: tolerance 1 s. (The test data hold
    // January 1 of 1974–2020; the shared reference has every month.)
    struct Row {
        int year, month;
        double deltaT;
    };
    std::vector<Row> rows;
    {
        std::ifstream in(orv::test::TestDataDir() + "/deltat/deltat-january.txt");
        int year = 0;
        double value = 0.0;
        while (in >> year >> value) rows.push_back({year, 1, value});
    }
    ASSERT_EQ(47u, rows.size());
    if (!orv::test::ReferenceDir().empty()) {
        std::ifstream in(orv::test::ReferenceDir() + "/deltat/deltat.data");
        int year = 0, month = 0, day = 0;
        double value = 0.0;
        while (in >> year >> month >> day >> value) rows.push_back({year, month, value});
        EXPECT_GT(rows.size(), 500u);
    }
    for (const Row& r : rows) {
        SCOPED_TRACE(testing::Message() << r.year << '-' << r.month);
        EXPECT_NEAR_UNIT(r.deltaT, DeltaTSeconds(CObserverDoc::JulianDate(r.year, r.month, 1.0)), 1.0, kSame);
    }
}

TEST(DeltaT, HistoricalValues)
{
    // Before 1972 ΔT comes from the Espenak–Meeus expressions. Against the
    // values at the beginning of the year in Meeus, Astronomical Algorithms,
    // 2nd ed., Table 10.A (1900–1970), which they follow to a few tenths of a
    // second: tolerance 0.5 s. Against Morrison & Stephenson, J. Hist.
    // Astron. 35, 327 (2004), Table 1 (0–1800), to which they were fitted
    // within 4 s (the values themselves are uncertain by up to hundreds of
    // seconds): tolerance 5 s.
    const struct {
        int year;
        double deltaT, tolerance;
    } rows[] = {{1900, -2.8, 0.5},   {1920, 21.2, 0.5},  {1940, 24.3, 0.5},   {1950, 29.1, 0.5},
                {1960, 33.2, 0.5},   {1970, 40.2, 0.5},  {0, 10580.0, 5.0},   {500, 5710.0, 5.0},
                {1000, 1570.0, 5.0}, {1500, 200.0, 5.0}, {1600, 120.0, 5.0},  {1700, 9.0, 5.0},
                {1800, 14.0, 5.0}};
    for (const auto& r : rows) {
        SCOPED_TRACE(r.year);
        EXPECT_NEAR_UNIT(r.deltaT, DeltaTSeconds(CObserverDoc::JulianDate(r.year, 1, 1.0)), r.tolerance, kSame);
    }
    // Outside −1999 … +3000 the parabola −20 + 32 u², u = (y − 1820)/100.
    const double y = DecimalYearFromJulianDate(CObserverDoc::JulianDate(-3000, 1, 1.0));
    const double u = (y - 1820.0) / 100.0;
    EXPECT_NEAR_UNIT(-20.0 + 32.0 * u * u, DeltaTSeconds(CObserverDoc::JulianDate(-3000, 1, 1.0)), 1e-6, kSame);
}

TEST(DeltaT, ContinuousWhereTheLeapSecondTableBeginsAndEnds)
{
    const double oneSecond = 1.0 / 86400.0;
    const double start = CObserverDoc::JulianDate(1972, 1, 1.0);
    // Across 1972 January 1 the change is at most what ΔT does in a second.
    EXPECT_NEAR_UNIT(DeltaTSeconds(start), DeltaTSeconds(start - oneSecond), 1e-6, kSame);
    const double end = LeapSecondTableEndJdUTC();
    EXPECT_NEAR_UNIT(DeltaTSeconds(end - oneSecond), DeltaTSeconds(end), 1e-6, kSame);
    // Past the end the value climbs smoothly into the expressions: no step
    // anywhere in the fade and at its end, and never faster than 1.35 s/yr.
    double previous = DeltaTSeconds(end);
    for (double jd = end + 1.0; jd < end + 15.0 * 365.25; jd += 1.0) {
        const double value = DeltaTSeconds(jd);
        ASSERT_GE(value, previous) << jd;
        ASSERT_LT(value - previous, 1.35 / 365.25) << jd;
        previous = value;
    }
    const double fadeEnd = CObserverDoc::JulianDate(2040, 1, 1.0);
    EXPECT_NEAR_UNIT(DeltaTEspenakMeeusSeconds(DecimalYearFromJulianDate(fadeEnd)), DeltaTSeconds(fadeEnd), 1e-9,
                     kSame);
}

TEST(DeltaT, NoJumpsWithinTheExpressionsOutsideTheirOwnJoins)
{
    // Day by day from −2500 to 3500 (outside the leap-second era) the only
    // steps larger than a day's drift (0.05 s at −2500) are the joins between
    // Espenak and Meeus's pieces, the largest 0.25 s at 1600.
    double previous = DeltaTSeconds(CObserverDoc::JulianDate(-2500, 1, 1.0));
    double largestStep = 0.0;
    for (double jd = CObserverDoc::JulianDate(-2500, 1, 2.0); jd < CObserverDoc::JulianDate(3500, 1, 1.0); jd += 1.0) {
        const double value = DeltaTSeconds(jd);
        ASSERT_TRUE(std::isfinite(value));
        if (!TaiMinusUtcSeconds(jd)) largestStep = std::max(largestStep, std::fabs(value - previous));
        previous = value;
    }
    EXPECT_LT(largestStep, 0.3);
}

TEST(DeltaT, ObserverGivesTTFromUT)
{
    CObserverDoc doc;
    doc.SetJulianDate(2460000.5);  // 2023 Feb 25: TAI − UTC = 37 s
    EXPECT_EQ(69.184, doc.DeltaT());
    EXPECT_NEAR_UNIT(2460000.5 + 69.184 / 86400.0, doc.JulianDateTDT(), 1e-6 / 86400.0, orv::test::kSecondsFromDays);
    EXPECT_TRUE(std::isnan(DeltaTSeconds(std::nan(""))));
}
