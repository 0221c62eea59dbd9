// Searches over several bodies, the report of their sections, and what an
// observer's site sees of the Moon's close passes.
//
// The lunar occultation of Mars of 2022 December 8 (UT; the evening of
// December 7 in North America), at Mars's opposition and the full Moon:
// J. L. Hunt, "2022, December 7: Rare Occultation at Mars Opposition"
// (When the Curves Line Up, 2022 November 9) gives for Chicago the
// disappearance at 9:10 p.m. CST and the reappearance at 10:04 p.m. CST,
// and describes the event as visible across the United States except the
// Southeast. Those local times are published to the minute and are for the
// planet's disc (17″, some 35 s to cover), so they are compared to two
// minutes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "observer/observer.h"
#include "phenomena/phenomena.h"
#include "solarsystem/planets.h"
#include "phenomena/phenomenasupport.h"
#include "support/compare.h"
#include "util/angles.h"
#include "util/datapath.h"
#include "util/resulttable.h"

namespace orv {
namespace {

using test::kSecondsFromDays;


using test::HaveEphemeris;
using test::JdUT;
using test::kMinute;

// The Moon's appulse to Mars on 2022 December 8 seen from a site.
PhenomenonEvent MarsOccultationFrom(double latDeg, double lonDeg)
{
    CObserverDoc observer;
    observer.SetSite("test", latDeg * kRadPerDeg, lonDeg * kRadPerDeg, 200.0);
    PhenomenaRequest r;
    r.kind = PhenomenonKind::Appulse;
    r.bodies = {PhenomenonBody::Planet(kBodyMoon), PhenomenonBody::Planet(kBodyMars)};
    r.jdUTStart = JdUT(2022, 12, 7, 0, 0);
    r.durationDays = 2.0;
    const PhenomenaOutcome out = SearchPhenomena(observer, r);
    EXPECT_EQ(out.events.size(), 1u);
    return out.events.empty() ? PhenomenonEvent{} : out.events.front();
}

TEST(PhenomenaSite, LunarOccultationOfMars2022)
{
    REQUIRE_EPHEMERIS();
    // Chicago (41.88° N, 87.63° W): 9:10 and 10:04 p.m. CST are 03:10 and
    // 04:04 UT on December 8.
    const PhenomenonEvent chicago = MarsOccultationFrom(41.88, -87.63);
    ASSERT_TRUE(chicago.siteChecked);
    EXPECT_TRUE(chicago.siteOccultation) << chicago.siteInfo;
    EXPECT_NEAR_UNIT(JdUT(2022, 12, 8, 3, 10), chicago.siteBeginJdUT, 2.0 * kMinute, kSecondsFromDays);
    EXPECT_NEAR_UNIT(JdUT(2022, 12, 8, 4, 4), chicago.siteEndJdUT, 2.0 * kMinute, kSecondsFromDays);
    EXPECT_EQ(chicago.siteInfo.rfind("Occultation 03:1", 0), 0u) << chicago.siteInfo;

    // Miami (25.76° N, 80.19° W), in the Southeast the occultation missed:
    // the Moon passes close by, up in the sky, without covering Mars.
    const PhenomenonEvent miami = MarsOccultationFrom(25.76, -80.19);
    ASSERT_TRUE(miami.siteChecked);
    EXPECT_FALSE(miami.siteOccultation) << miami.siteInfo;
    EXPECT_TRUE(miami.siteMoonUp);
    EXPECT_GT(miami.siteClosestSeparationRad, 0.0);
    EXPECT_LT(miami.siteClosestSeparationRad, 1.0 * kRadPerDeg);

    // Sydney (33.87° S, 151.21° E): mid-afternoon there, the full Moon
    // below the horizon; the geocentric event is the same for every site.
    const PhenomenonEvent sydney = MarsOccultationFrom(-33.87, 151.21);
    ASSERT_TRUE(sydney.siteChecked);
    EXPECT_FALSE(sydney.siteOccultation) << sydney.siteInfo;
    EXPECT_FALSE(sydney.siteMoonUp);
    EXPECT_EQ(sydney.occultation, chicago.occultation);
    EXPECT_NEAR(sydney.jdUT, chicago.jdUT, 1e-9);
}

TEST(PhenomenaSections, EveryPlanetAgainstTheSun)
{
    REQUIRE_EPHEMERIS();
    PhenomenaRequest base;
    base.kind = PhenomenonKind::OppositionLongitude;
    base.jdUTStart = JdUT(2023, 1, 1, 0, 0);
    base.durationDays = 365.0;
    base.stepHours = 6.0;
    const std::vector<PhenomenonBody> sun = {PhenomenonBody::Planet(kBodySun)};
    const auto requests = PhenomenaPairs(base, AllPlanetBodies(), sun);
    ASSERT_EQ(requests.size(), 8u);  // Mercury … Pluto, without the Earth
    // The same body twice, and a pair met again the other way round, once.
    const std::vector<PhenomenonBody> inner = {PhenomenonBody::Planet(kBodyVenus), PhenomenonBody::Planet(kBodyMars)};
    EXPECT_EQ(PhenomenaPairs(base, inner, inner).size(), 1u);

    CObserverDoc observer;
    const PhenomenaBatchOutcome batch = SearchPhenomenaSections(observer, requests);
    ASSERT_EQ(batch.status, PhenomenaStatus::Ok);
    // The searches share their samples' nodes: each must find what it finds
    // alone, to the same second.
    for (const PhenomenaSection& s : batch.sections) {
        const PhenomenaOutcome alone = SearchPhenomena(observer, s.request);
        ASSERT_EQ(alone.events.size(), s.events.size()) << s.request.bodies[0].name;
        for (std::size_t i = 0; i < alone.events.size(); ++i)
            EXPECT_NEAR_UNIT(alone.events[i].jdUT, s.events[i].jdUT, 1.0 / 86400.0, kSecondsFromDays);
    }
    // USNO planetary phenomena 2023 (UT, to the hour): Saturn at opposition
    // on August 27 08h, Jupiter on November 3 05h. Half an hour (the rounding).
    const auto find = [&](int body) {
        return std::find_if(batch.sections.begin(), batch.sections.end(), [&](const PhenomenaSection& s) {
            return s.request.bodies[0].name == BodyName(body);
        });
    };
    ASSERT_NE(find(kBodyJupiter), batch.sections.end());
    ASSERT_EQ(find(kBodyJupiter)->events.size(), 1u);
    EXPECT_NEAR_UNIT(JdUT(2023, 11, 3, 5, 0), find(kBodyJupiter)->events[0].jdUT, 30.0 * kMinute, kSecondsFromDays);
    ASSERT_NE(find(kBodySaturn), batch.sections.end());
    ASSERT_EQ(find(kBodySaturn)->events.size(), 1u);
    EXPECT_NEAR_UNIT(JdUT(2023, 8, 27, 8, 0), find(kBodySaturn)->events[0].jdUT, 30.0 * kMinute, kSecondsFromDays);

    // The table: the heading alone as its title, a bodies column, and in the
    // report each section under its own title.
    const ResultTable t = MakePhenomenaTable(batch.sections);
    EXPECT_EQ(t.title, "Opposition in longitude between");
    ASSERT_GE(t.columns.size(), 3u);
    EXPECT_EQ(t.columns[1].key, "bodies");
    const std::string report = ReportText(t, LineEnding::Lf);
    EXPECT_NE(report.find("Opposition in longitude between Jupiter and Sun\n\n"), std::string::npos);
    EXPECT_NE(report.find("Opposition in longitude between Saturn and Sun\n\n"), std::string::npos);
}

// The sampling interpolates the Moon from one-day nodes, the planets from
// half-day ones, and the refinement recomputes the samples about each root:
// over six years neither may lose a root nor add one. The Moon's extremes of declination and of distance must
// alternate, and its phases run in order, with the spacing the lunar
// months allow (the anomalistic month 27.55 days, the tropical 27.32, the
// synodic 29.53; the half-periods vary by a few days with the Sun's
// perturbations). A false pair of roots would break the alternation, a lost
// one the spacing.
TEST(PhenomenaSearch, SixYearsOfEventsAlternate)
{
    REQUIRE_EPHEMERIS();
    CObserverDoc observer;
    const auto search = [&](PhenomenonKind kind, std::vector<PhenomenonBody> bodies) {
        PhenomenaRequest r;
        r.kind = kind;
        r.bodies = std::move(bodies);
        r.jdUTStart = JdUT(2020, 1, 1, 0, 0);
        r.durationDays = 2191.5;
        return SearchPhenomena(observer, r);
    };
    struct Case {
        PhenomenaOutcome out;
        std::vector<std::string> cycle;
        double minDays, maxDays;  // between consecutive events
    };
    const PhenomenonBody moon = PhenomenonBody::Planet(kBodyMoon);
    const PhenomenonBody mercury = PhenomenonBody::Planet(kBodyMercury);
    const Case cases[] = {
        {search(PhenomenonKind::DeclinationExtremes, {moon}), {"Maximum", "Minimum"}, 12.0, 15.5},
        {search(PhenomenonKind::ApogeePerigee, {moon}), {"Perigee", "Apogee"}, 10.0, 18.0},
        {search(PhenomenonKind::MoonPhases, {}), {"New Moon", "First Quarter", "Full Moon", "Last Quarter"}, 6.0, 8.7},
        // Mercury, from half-day nodes: retrograde for about three weeks of
        // each 116-day synodic period; greatest elongations 36 to 80 days
        // apart.
        {search(PhenomenonKind::StationaryLongitude, {mercury}), {"Retrograde", "Direct"}, 18.0, 110.0},
        {search(PhenomenonKind::GreatestElongation, {mercury}), {"East", "West"}, 30.0, 85.0},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(c.out.status, PhenomenaStatus::Ok);
        ASSERT_GT(c.out.events.size(), 30u);
        const auto first = std::find(c.cycle.begin(), c.cycle.end(), c.out.events.front().name);
        ASSERT_NE(first, c.cycle.end()) << c.out.events.front().name;
        std::size_t k = static_cast<std::size_t>(first - c.cycle.begin());
        for (std::size_t i = 1; i < c.out.events.size(); ++i) {
            k = (k + 1) % c.cycle.size();
            const PhenomenonEvent& e = c.out.events[i];
            ASSERT_EQ(e.name, c.cycle[k]) << FormatPhenomenonDate(e.jdUT);
            const double gap = e.jdUT - c.out.events[i - 1].jdUT;
            EXPECT_GT(gap, c.minDays) << FormatPhenomenonDate(e.jdUT) << " " << e.name;
            EXPECT_LT(gap, c.maxDays) << FormatPhenomenonDate(e.jdUT) << " " << e.name;
        }
    }
}

TEST(PhenomenaReport, SectionsAndEntries)
{
    // The layout: the title and "\n\n", then each entry and "\r\n\r\n";
    // nothing else, whatever line ending the caller asks for.
    PhenomenaRequest r;
    r.kind = PhenomenonKind::EquinoxesSolstices;
    PhenomenonEvent e;
    e.jdUT = JdUT(2024, 3, 20, 3, 6);
    e.name = "Vernal Equinox";
    e.decRad = 0.0;
    const ResultTable t = MakePhenomenaTable(r, {e});
    const std::string expected = "Equinoxes and solstices\n\n 2024 Mar 20 03:06  Vernal Equinox  +00 00'\r\n\r\n";
    EXPECT_EQ(ReportText(t, LineEnding::Lf), expected);
    EXPECT_EQ(ReportText(t, LineEnding::CrLf), expected);
    // Other tables keep the shared layout.
    ResultTable plain;
    plain.title = "Passes";
    plain.rows.push_back({{"a", "b"}});
    EXPECT_EQ(ReportText(plain, LineEnding::Lf), "Passes\n\na\tb\n");
}

}  // namespace
}  // namespace orv
