// The ephemeris table and the rise, transit and set of a body:
//   - each row of the table is the single-instant computation of its date;
//   - Meeus, Astronomical Algorithms, 2nd ed., example 15.a: Venus at
//     Boston (42°20′N, 71°05′W) on 1988 March 20: rise 12h25m26s, transit
//     19h40m18s, set 2h54m40s UT (his m1, m0, m2 from daily places
//     interpolated, ΔT = 56 s). Held to 40 s: his places are interpolated
//     from three days a day apart, and a 1′ error of place moves Venus's
//     rise by about 5 s.
#include <gtest/gtest.h>

#include <cmath>

#include "observer/observer.h"
#include "solarsystem/planetephemeris.h"
#include "solarsystem/planets.h"
#include "support/compare.h"
#include "util/datapath.h"

using namespace orv;
using orv::test::kSame;

namespace {

constexpr double kDeg = 3.14159265358979323846 / 180.0;
const orv::test::Unit kSecondsFromDays{86400.0, "s"};

class Ephemeris : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!SharedVsop87D().IsOpen())
            GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath()
                         << "): run tools/build-data.sh (data step 30-planets) first";
    }
};

}  // namespace

TEST_F(Ephemeris, RowsAreTheSingleInstantPlaces)
{
    CObserverDoc site;
    site.SetSite("Boston", 42.3333 * kDeg, -71.0833 * kDeg, 0.0);
    site.SetTimeZone(-5.0, false);
    EphemerisRequest request;
    request.body = kBodyMars;
    request.jdUTFrom = 2460676.5;  // 2025 January 1
    request.jdUTTo = request.jdUTFrom + 10.0;
    request.stepDays = 2.5;
    request.centre = PlaceCentre::Topocentric;
    std::vector<EphemerisRow> rows;
    ASSERT_EQ(ComputeEphemeris(site, request, rows), EphemerisStatus::Ok);
    ASSERT_EQ(rows.size(), 5u);  // both ends included
    for (const EphemerisRow& row : rows) {
        CObserverDoc at = site;
        at.SetJulianDate(row.jdUT);
        CPlanets planets;
        double ra = 0.0, dec = 0.0;
        ASSERT_EQ(planets.ApparentPosition(at, kBodyMars, at.JulianDateTDT(), ra, dec, PlaceCentre::Topocentric),
                  PositionStatus::Ok);
        EXPECT_EQ(ra, row.raRad);
        EXPECT_EQ(dec, row.decRad);
        EXPECT_EQ(planets.Record(kBodyMars).earthDistance, row.distanceAU);
        EXPECT_NEAR(planets.Record(kBodyMars).magnitudeCenti * 0.01, row.magnitude, 1e-12);
        // Mars in January 2025 stands in Cancer and Gemini.
        EXPECT_TRUE(row.constellation.empty() || row.constellation == "Cnc" || row.constellation == "Gem")
            << row.constellation;
    }
    // The table carries every row, with the date's Julian date as its value.
    const ResultTable table = MakeEphemerisTable(kBodyMars, rows, site.LocalOffsetHours(), site.SiteName());
    ASSERT_EQ(table.rows.size(), rows.size());
    ASSERT_EQ(table.columns.size(), 13u);
    EXPECT_EQ(table.timeBase, "UT-5");
    EXPECT_EQ(table.rows[0].cells[0].text, "31 Dec 2024 19:00");
    EXPECT_DOUBLE_EQ(table.rows[0].cells[0].value, rows[0].jdUT);
    EXPECT_EQ(table.Cell(0, 1).value, rows[0].raRad * 57.29577951308232);

    request.stepDays = 0.0;
    EXPECT_EQ(ComputeEphemeris(site, request, rows), EphemerisStatus::InvalidInput);
    request.stepDays = 1e-3;
    request.jdUTTo = request.jdUTFrom + 100.0;
    EXPECT_EQ(ComputeEphemeris(site, request, rows), EphemerisStatus::TooManyRows);
}

TEST_F(Ephemeris, VenusRisesTransitsAndSetsAsInMeeusExample15a)
{
    CObserverDoc boston;
    boston.SetSite("Boston", 42.3333 * kDeg, -71.0833 * kDeg, 0.0);
    boston.SetTimeZone(0.0, false);
    const double day = 2447240.5;  // 1988 March 20, 0h UT
    EXPECT_EQ(LocalDayStartJdUT(boston, day + 0.7), day);
    const RiseTransitSet e = BodyRiseTransitSet(boston, kBodyVenus, day);
    ASSERT_EQ(e.kind, RiseTransitSet::Kind::Normal);
    ASSERT_TRUE(e.riseJdUT && e.transitJdUT && e.setJdUT);
    auto hms = [](double h, double m, double s) { return (h + m / 60.0 + s / 3600.0) / 24.0; };
    EXPECT_NEAR_UNIT(day + hms(12, 25, 26), *e.riseJdUT, 40.0 / 86400.0, kSecondsFromDays);
    EXPECT_NEAR_UNIT(day + hms(19, 40, 18), *e.transitJdUT, 40.0 / 86400.0, kSecondsFromDays);
    EXPECT_NEAR_UNIT(day + hms(2, 54, 40), *e.setJdUT, 40.0 / 86400.0, kSecondsFromDays);
}

TEST_F(Ephemeris, PathMarksFallOnTheirDates)
{
    CObserverDoc site;
    BodyPath path;
    const double from = 2460676.5;
    ASSERT_EQ(ComputeBodyPath(site, kBodyMars, from, from + 20.0, 5.0, path), EphemerisStatus::Ok);
    std::vector<double> marks;
    for (const BodyPathPoint& p : path.points)
        if (p.tick) marks.push_back(p.jdUT);
    ASSERT_EQ(marks.size(), 5u);
    for (std::size_t i = 0; i < marks.size(); ++i) EXPECT_DOUBLE_EQ(from + 5.0 * i, marks[i]);
    EXPECT_GE(path.points.size(), 20u);
    EXPECT_EQ(BodyPathDateLabel(path, 0, true), "01 Jan 2025");
    EXPECT_EQ(ComputeBodyPath(site, kBodyMars, from, from - 1.0, 5.0, path), EphemerisStatus::InvalidInput);
}
