// NaN, infinities, huge and negative numbers in the eclipse computations:
// the search over years, the eclipse at a syzygy, Besselian elements, local
// circumstances, paths and the table search. Each refuses or answers with
// finite numbers, and returns: a year of a billion must not start a walk of
// twelve billion lunations.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include "eclipse/eclipsefinder.h"
#include "eclipse/eclipsegeometry.h"
#include "eclipse/eclipsepaths.h"
#include "eclipse/eclipsesearch.h"
#include "eclipse/localcircumstances.h"

using namespace orv;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
const std::vector<double> kHostile{kNaN, kInf, -kInf, 1e308, -1e308, 1e18, -1e18, -1.0, 0.0};

bool EphemerisPresent()
{
    SunMoonPlaces probe;
    return SunMoonAt(2451545.0, probe);
}

}  // namespace

TEST(HostileEclipses, YearsOutsideTheSpanAreRefused)
{
    if (!EphemerisPresent()) GTEST_SKIP() << "no VSOP87 files in the data folder";
    for (const auto& [first, last] : std::vector<std::pair<int, int>>{
             {INT_MIN, INT_MAX}, {-1000000000, 2000}, {2000, 1000000000}, {2030, 2000}, {INT_MAX, INT_MAX}}) {
        const EclipseList list = FindEclipses(first, last, EclipseKinds::Both);
        EXPECT_TRUE(list.events.empty()) << first << " … " << last;
    }
    // Within the span the search still answers: 2024 had the total solar
    // eclipse of April 8 (NASA, Five Millennium Canon, greatest eclipse
    // 18:17 TD) among its four eclipses.
    const EclipseList y2024 = FindEclipses(2024, 2024, EclipseKinds::Both);
    EXPECT_EQ(y2024.events.size(), 4u);
}

TEST(HostileEclipses, InstantsAndSites)
{
    if (!EphemerisPresent()) GTEST_SKIP() << "no VSOP87 files in the data folder";
    for (const double x : kHostile) {
        for (const EclipseKind kind : {EclipseKind::Solar, EclipseKind::Lunar}) {
            const auto e = EclipseAtSyzygyNear(x, kind);
            if (!std::isfinite(x)) { EXPECT_FALSE(e) << x; }
        }
        SunMoonPlaces places;
        if (!std::isfinite(x)) { EXPECT_FALSE(SunMoonAt(x, places)) << x; }
        BesselianElements elements;
        const bool have = ComputeBesselianElements(x, elements);
        if (!std::isfinite(x)) { EXPECT_FALSE(have) << x; }
        if (have) {
            ComputeSolarEclipsePaths(elements, x);
            GeoPoint g;
            FundamentalPlaneToGeo(elements, x, x, x, g);
        }
        LunarVisibilityRegion region;
        if (!std::isfinite(x)) { EXPECT_FALSE(ComputeLunarVisibilityRegion(x, region)) << x; }
        const auto lunar = LunarLocal(x, EclipseSite{0.9, 0.0, 0.0});
        if (!std::isfinite(x)) { EXPECT_FALSE(lunar) << x; }
        const double o = DiscObscuration(x, 1.0, 0.5);
        EXPECT_TRUE(std::isnan(o) || (o >= 0.0 && o <= 1.0)) << x;
    }

    // The total solar eclipse of 2024 April 8 seen from hostile sites.
    BesselianElements april;
    ASSERT_TRUE(ComputeBesselianElements(2460409.263, april));
    for (const double x : kHostile) {
        for (const EclipseSite site : {EclipseSite{x, 0.0, 0.0}, EclipseSite{0.5, x, 0.0}, EclipseSite{0.5, -1.7, x}}) {
            const SolarLocalCircumstances c = SolarLocal(april, site);
            if (c.eclipsed) {
                EXPECT_TRUE(std::isfinite(c.magnitude) && std::isfinite(c.obscuration)) << x;
                EXPECT_TRUE(std::isfinite(c.greatest.jdTT)) << x;
            }
            const auto lunar = LunarLocal(2460394.5, site);
            if (lunar) { EXPECT_TRUE(std::isfinite(lunar->umbralMagnitude) || std::isnan(x)) << x; }
        }
    }
}

TEST(HostileEclipses, TableSearchOfHostileSettings)
{
    // Years far outside the tables are refused by the dialog's check, and
    // a search run anyway ends (at most the five files are read).
    for (const int year : {INT_MIN, -1000000, 1000000, INT_MAX}) {
        EclipseSearchSettings s;
        s.startYear = year;
        EXPECT_TRUE(ValidateEclipseSearch(s)) << year;
        s.startYear = 2000;
        s.endYear = year;
        EXPECT_TRUE(ValidateEclipseSearch(s)) << year;
        s.startYear = year;
        RunEclipseSearch(s, EclipseSite{0.9, 0.0, 0.0}, EclipseVisibility::FromSite, {}, {});
        EXPECT_GE(EclipseSearchProgressRange(s), 0) << year;
    }
    EclipseSearchSettings s;
    RunEclipseSearch(s, EclipseSite{kNaN, kInf, -kInf}, EclipseVisibility::FromSite, {}, {});
}
