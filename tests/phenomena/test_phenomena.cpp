// The phenomena search against published instants: Meeus, Astronomical
// Algorithms (2nd ed., 1998), worked examples 27.a (the June solstice of
// 1962), 49.a and 49.b (new moon of 1977 February, first quarter of 2044
// January) and the VSOP87 instant Meeus quotes after example 36.a (Mercury's
// inferior conjunction of 1993 November 6), all in dynamical time; and the
// US Naval Observatory's published "Earth's Seasons and Apsides" and
// "Phases of the Moon" tables (UT, to the minute), and its list of planetary
// phenomena (UT, to the hour). The search is at one-hour steps unless said.
#include <gtest/gtest.h>

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

using test::kSame;
using test::kSecondsFromDays;


using test::HaveEphemeris;
using test::JdUT;
using test::kMinute;

PhenomenaOutcome Search(PhenomenonKind kind, std::vector<PhenomenonBody> bodies, double jdUTStart, double days,
                        double stepHours = 1.0)
{
    CObserverDoc observer;
    PhenomenaRequest r;
    r.kind = kind;
    r.bodies = std::move(bodies);
    r.jdUTStart = jdUTStart;
    r.durationDays = days;
    r.stepHours = stepHours;
    return SearchPhenomena(observer, r);
}

// The event of that name nearest to jdUT; nullptr when none.
const PhenomenonEvent* Nearest(const PhenomenaOutcome& out, const std::string& name, double jdUT)
{
    const PhenomenonEvent* best = nullptr;
    for (const PhenomenonEvent& e : out.events)
        if (e.name == name && (!best || std::abs(e.jdUT - jdUT) < std::abs(best->jdUT - jdUT))) best = &e;
    return best;
}

// The events as text, for failure messages.
std::string Dump(const PhenomenaOutcome& out)
{
    std::string text = "status " + std::to_string(static_cast<int>(out.status)) + ":";
    for (const PhenomenonEvent& e : out.events) text += "\n  " + FormatPhenomenonDate(e.jdUT) + " " + e.name;
    return text;
}

double TT(double jdUT) { return jdUT + DeltaTSeconds(jdUT) / 86400.0; }

TEST(PhenomenaSearch, EquinoxesAndSolsticesAgainstMeeusAndUsno)
{
    REQUIRE_EPHEMERIS();
    // Meeus ex. 27.a: the June solstice of 1962, JDE 2437837.39245 (TD); one minute.
    {
        const auto out = Search(PhenomenonKind::EquinoxesSolstices, {}, JdUT(1962, 6, 1, 0, 0), 30.0);
        ASSERT_EQ(out.status, PhenomenaStatus::Ok);
        ASSERT_EQ(out.events.size(), 1u);
        EXPECT_EQ(out.events[0].name, "Summer Solstice");
        EXPECT_NEAR_UNIT(2437837.39245, TT(out.events[0].jdUT), kMinute, kSecondsFromDays);
    }
    // USNO, Earth's Seasons, 2000 and 2024 (UT to the minute): one minute
    // (the rounding of the table included).
    struct Season {
        int y, mo, d, h, mi;
        const char* name;
    };
    const Season seasons[] = {
        {2000, 3, 20, 7, 35, "Vernal Equinox"},   {2000, 6, 21, 1, 48, "Summer Solstice"},
        {2000, 9, 22, 17, 27, "Autumnal Equinox"}, {2000, 12, 21, 13, 37, "Winter Solstice"},
        {2024, 3, 20, 3, 6, "Vernal Equinox"},    {2024, 6, 20, 20, 51, "Summer Solstice"},
        {2024, 9, 22, 12, 44, "Autumnal Equinox"}, {2024, 12, 21, 9, 21, "Winter Solstice"},
    };
    for (int year : {2000, 2024}) {
        const auto out = Search(PhenomenonKind::EquinoxesSolstices, {}, JdUT(year, 1, 1, 0, 0), 366.0);
        ASSERT_EQ(out.status, PhenomenaStatus::Ok);
        EXPECT_EQ(out.events.size(), 4u) << year;
        for (const Season& s : seasons) {
            if (s.y != year) continue;
            const double expected = JdUT(s.y, s.mo, s.d, s.h, s.mi);
            const PhenomenonEvent* e = Nearest(out, s.name, expected);
            ASSERT_NE(e, nullptr) << s.name << " " << year;
            EXPECT_NEAR_UNIT(expected, e->jdUT, kMinute, kSecondsFromDays) << s.name << " " << year;
        }
    }
}

TEST(PhenomenaSearch, MoonPhasesAgainstMeeusAndUsno)
{
    REQUIRE_EPHEMERIS();
    // Meeus ex. 49.a: new moon 1977 February 18, JDE 2443192.65118.
    {
        const auto out = Search(PhenomenonKind::MoonPhases, {}, JdUT(1977, 2, 1, 0, 0), 28.0);
        ASSERT_EQ(out.status, PhenomenaStatus::Ok);
        const PhenomenonEvent* e = Nearest(out, "New Moon", 2443192.65118);
        ASSERT_NE(e, nullptr);
        EXPECT_NEAR_UNIT(2443192.65118, TT(e->jdUT), kMinute, kSecondsFromDays);
        // Four phases, each once, in a lunation.
        EXPECT_EQ(out.events.size(), 4u);
    }
    // Meeus ex. 49.b: the first last quarter of 2044, January 21, JDE 2467636.49186.
    {
        const auto out = Search(PhenomenonKind::MoonPhases, {}, JdUT(2044, 1, 1, 0, 0), 31.0);
        EXPECT_EQ(out.events.size(), 4u) << Dump(out);
        const PhenomenonEvent* e = Nearest(out, "Last Quarter", 2467636.49186);
        ASSERT_NE(e, nullptr) << Dump(out);
        EXPECT_NEAR_UNIT(2467636.49186, TT(e->jdUT), kMinute, kSecondsFromDays);
    }
    // USNO Phases of the Moon, 2024 (UT).
    {
        const auto out = Search(PhenomenonKind::MoonPhases, {}, JdUT(2024, 1, 1, 0, 0), 366.0);
        EXPECT_GE(out.events.size(), 49u);
        EXPECT_LE(out.events.size(), 50u);
        struct Phase {
            int mo, d, h, mi;
            const char* name;
        };
        const Phase phases[] = {{1, 11, 11, 57, "New Moon"}, {1, 25, 17, 54, "Full Moon"},
                                {4, 8, 18, 21, "New Moon"},  {9, 18, 2, 34, "Full Moon"}};
        for (const Phase& p : phases) {
            const double expected = JdUT(2024, p.mo, p.d, p.h, p.mi);
            const PhenomenonEvent* e = Nearest(out, p.name, expected);
            ASSERT_NE(e, nullptr);
            EXPECT_NEAR_UNIT(expected, e->jdUT, kMinute, kSecondsFromDays) << p.name << " " << p.mo << "/" << p.d;
        }
    }
}

TEST(PhenomenaSearch, ConjunctionOfMoonAndSunIgnoresTheWrapAtOpposition)
{
    REQUIRE_EPHEMERIS();
    // In a lunation the difference of longitudes crosses zero once (new
    // moon) and jumps from +π to −π once (full moon): only the first is a
    // conjunction. Meeus ex. 49.a gives its instant.
    const auto out = Search(PhenomenonKind::ConjunctionLongitude,
                            {PhenomenonBody::Planet(kBodyMoon), PhenomenonBody::Planet(kBodySun)},
                            JdUT(1977, 2, 1, 0, 0), 28.0);
    ASSERT_EQ(out.status, PhenomenaStatus::Ok);
    ASSERT_EQ(out.events.size(), 1u);
    EXPECT_EQ(out.events[0].name, "Conjunction");
    EXPECT_NEAR_UNIT(2443192.65118, TT(out.events[0].jdUT), kMinute, kSecondsFromDays);
    // And the opposition search finds the full moon, not the new one.
    const auto opp = Search(PhenomenonKind::OppositionLongitude,
                            {PhenomenonBody::Planet(kBodyMoon), PhenomenonBody::Planet(kBodySun)},
                            JdUT(1977, 2, 1, 0, 0), 28.0);
    ASSERT_EQ(opp.events.size(), 1u);
    EXPECT_GT(std::abs(opp.events[0].jdUT - 2443192.65118), 10.0);
}

TEST(PhenomenaSearch, PlanetaryConjunctionsAndOppositions)
{
    REQUIRE_EPHEMERIS();
    // The transit of Mercury of 1993 November 6 (Espenak, NASA transit
    // catalogue "Transits of Mercury 1601-2300"): greatest transit at 03:57 UT
    // with 928″ between the centres. Closest approach to two minutes and 3″;
    // the conjunction in longitude, an inferior one, falls within the transit.
    {
        const std::vector<PhenomenonBody> pair = {PhenomenonBody::Planet(kBodyMercury), PhenomenonBody::Planet(kBodySun)};
        const auto closest = Search(PhenomenonKind::Appulse, pair, JdUT(1993, 10, 20, 0, 0), 30.0);
        const PhenomenonEvent* e = Nearest(closest, "Transit", JdUT(1993, 11, 6, 3, 57));
        ASSERT_NE(e, nullptr) << Dump(closest);
        EXPECT_NEAR_UNIT(JdUT(1993, 11, 6, 3, 57), e->jdUT, 2.0 * kMinute, kSecondsFromDays);
        EXPECT_NEAR_UNIT(928.0, e->separationRad * 206264.806, 3.0, kSame);
        const auto conj = Search(PhenomenonKind::ConjunctionLongitude, pair, JdUT(1993, 10, 20, 0, 0), 30.0);
        ASSERT_EQ(conj.events.size(), 1u) << Dump(conj);
        EXPECT_EQ(conj.events[0].name, "Inferior");
        EXPECT_NEAR_UNIT(JdUT(1993, 11, 6, 3, 57), conj.events[0].jdUT, 50.0 * kMinute, kSecondsFromDays);
    }
    // USNO planetary phenomena 2023 (UT, to the hour): Saturn at opposition
    // August 27 08h, Jupiter November 3 05h. Half an hour (the rounding).
    {
        const auto saturn = Search(PhenomenonKind::OppositionLongitude,
                                   {PhenomenonBody::Planet(kBodySaturn), PhenomenonBody::Planet(kBodySun)},
                                   JdUT(2023, 1, 1, 0, 0), 365.0);
        ASSERT_EQ(saturn.events.size(), 1u);
        EXPECT_NEAR_UNIT(JdUT(2023, 8, 27, 8, 0), saturn.events[0].jdUT, 30.0 * kMinute, kSecondsFromDays);
        const auto jupiter = Search(PhenomenonKind::OppositionLongitude,
                                    {PhenomenonBody::Planet(kBodyJupiter), PhenomenonBody::Planet(kBodySun)},
                                    JdUT(2023, 1, 1, 0, 0), 365.0, 6.0);
        ASSERT_EQ(jupiter.events.size(), 1u);
        EXPECT_NEAR_UNIT(JdUT(2023, 11, 3, 5, 0), jupiter.events[0].jdUT, 30.0 * kMinute, kSecondsFromDays);
    }
}

TEST(PhenomenaSearch, PerihelionAphelionAndElongations)
{
    REQUIRE_EPHEMERIS();
    // USNO Earth's apsides 2024: perihelion January 3 00:39 UT, aphelion
    // July 5 05:06 UT. The Earth's distance is flat at the extremes (a minute
    // of time changes it by under 1e-9 AU), so five minutes.
    const auto out = Search(PhenomenonKind::PerihelionAphelion, {PhenomenonBody::Planet(kBodyEarth)},
                            JdUT(2024, 1, 1, 0, 0), 366.0);
    ASSERT_EQ(out.status, PhenomenaStatus::Ok);
    const PhenomenonEvent* peri = Nearest(out, "Perihelion", JdUT(2024, 1, 3, 0, 39));
    const PhenomenonEvent* aph = Nearest(out, "Aphelion", JdUT(2024, 7, 5, 5, 6));
    ASSERT_TRUE(peri && aph);
    EXPECT_NEAR_UNIT(JdUT(2024, 1, 3, 0, 39), peri->jdUT, 5.0 * kMinute, kSecondsFromDays);
    EXPECT_NEAR_UNIT(JdUT(2024, 7, 5, 5, 6), aph->jdUT, 5.0 * kMinute, kSecondsFromDays);
    EXPECT_NEAR_UNIT(0.983307, peri->sunDistanceAU, 2e-6, kSame);  // USNO's 0.9833 AU, to its last figure
    // USNO 2020: Venus at greatest elongation east, 46.1°, March 24 22h UT.
    // The elongation is flat at its greatest: the day, and 0.1° in angle.
    const auto venus = Search(PhenomenonKind::GreatestElongation, {PhenomenonBody::Planet(kBodyVenus)},
                              JdUT(2020, 1, 1, 0, 0), 366.0);
    const PhenomenonEvent* east = Nearest(venus, "East", JdUT(2020, 3, 24, 22, 0));
    ASSERT_NE(east, nullptr);
    EXPECT_NEAR_UNIT(JdUT(2020, 3, 24, 22, 0), east->jdUT, 0.5, kSecondsFromDays);
    EXPECT_NEAR_UNIT(46.1, east->elongationRad * 57.29577951308232, 0.06, kSame);
}

TEST(PhenomenaSearch, MercuryGreatestElongations2024)
{
    REQUIRE_EPHEMERIS();
    // Mercury's greatest elongations of 2024 as the almanacs list them (date
    // and elongation to 0.1°; USNO Astronomical Phenomena 2024). The
    // elongation is flat at its greatest, so the instant is checked to the
    // day (within 0.75 d of the date's noon) and the angle to 0.06°.
    struct Elongation {
        int mo, d;
        const char* side;
        double deg;
    };
    const Elongation published[] = {{1, 12, "West", 23.5}, {3, 24, "East", 18.7}, {5, 9, "West", 26.4},
                                    {7, 22, "East", 26.9}, {9, 5, "West", 18.1},  {11, 16, "East", 22.5},
                                    {12, 25, "West", 22.0}};
    const auto out = Search(PhenomenonKind::GreatestElongation, {PhenomenonBody::Planet(kBodyMercury)},
                            JdUT(2024, 1, 1, 0, 0), 366.0, 6.0);
    ASSERT_EQ(out.events.size(), 7u) << Dump(out);
    for (const Elongation& p : published) {
        const double noon = JdUT(2024, p.mo, p.d, 12, 0);
        const PhenomenonEvent* e = Nearest(out, p.side, noon);
        ASSERT_NE(e, nullptr);
        EXPECT_NEAR_UNIT(noon, e->jdUT, 0.75, kSecondsFromDays) << p.mo << "/" << p.d;
        EXPECT_NEAR_UNIT(p.deg, e->elongationRad * 57.29577951308232, 0.06, kSame) << p.mo << "/" << p.d;
    }
}

TEST(PhenomenaSearch, RefusesBadRequests)
{
    CObserverDoc observer;
    PhenomenaRequest r;
    r.kind = PhenomenonKind::EquinoxesSolstices;
    r.jdUTStart = 2451545.0;
    r.durationDays = 0.0;
    EXPECT_EQ(SearchPhenomena(observer, r).status, PhenomenaStatus::BadDuration);
    EXPECT_EQ(PhenomenaStatusMessage(PhenomenaStatus::BadDuration),
              "You must specify a positive duration for the search");
    r.durationDays = -5.0;
    EXPECT_EQ(SearchPhenomena(observer, r).status, PhenomenaStatus::BadDuration);
    r.durationDays = std::nan("");
    EXPECT_EQ(SearchPhenomena(observer, r).status, PhenomenaStatus::BadDuration);
    r.durationDays = 10.0;
    for (double step : {0.0, -1.0, std::nan(""), -HUGE_VAL}) {
        r.stepHours = step;
        EXPECT_EQ(SearchPhenomena(observer, r).status, PhenomenaStatus::BadStep) << step;
    }
    EXPECT_EQ(PhenomenaStatusMessage(PhenomenaStatus::BadStep), "You must specify a positive calculation interval.");
    r.stepHours = 1e-9;  // far too many samples: refused before any loop
    EXPECT_EQ(SearchPhenomena(observer, r).status, PhenomenaStatus::TooManySamples);
    r.stepHours = 1.0;
    r.durationDays = HUGE_VAL;
    EXPECT_EQ(SearchPhenomena(observer, r).status, PhenomenaStatus::BadDuration);
    r.durationDays = 10.0;
    r.kind = static_cast<PhenomenonKind>(40);
    EXPECT_EQ(SearchPhenomena(observer, r).status, PhenomenaStatus::NoKind);
    r.kind = PhenomenonKind::ConjunctionLongitude;  // two bodies needed, none given
    EXPECT_EQ(SearchPhenomena(observer, r).status, PhenomenaStatus::BadBodies);
    r.kind = PhenomenonKind::PerihelionAphelion;  // the Moon has no perihelion of its own
    r.bodies = {PhenomenonBody::Planet(kBodyMoon)};
    EXPECT_EQ(SearchPhenomena(observer, r).status, PhenomenaStatus::BadBodies);
}

TEST(PhenomenaSearch, CancelStopsTheSearch)
{
    CObserverDoc observer;
    PhenomenaRequest r;
    r.kind = PhenomenonKind::MoonPhases;
    r.jdUTStart = 2451545.0;
    r.durationDays = 36525.0;
    int calls = 0;
    const auto out = SearchPhenomena(observer, r, [&](double) { return ++calls < 3; });
    EXPECT_EQ(out.status, PhenomenaStatus::Cancelled);
    EXPECT_EQ(calls, 3);
}

TEST(PhenomenaTable, TitleColumnsAndDataTable)
{
    REQUIRE_EPHEMERIS();
    PhenomenaRequest r;
    r.kind = PhenomenonKind::ConjunctionLongitude;
    r.bodies = {PhenomenonBody::Planet(kBodyVenus), PhenomenonBody::Planet(kBodyJupiter)};
    r.jdUTStart = JdUT(2023, 1, 1, 0, 0);
    r.durationDays = 365.0;
    CObserverDoc observer;
    const auto out = SearchPhenomena(observer, r);
    ASSERT_FALSE(out.events.empty());
    const ResultTable t = MakePhenomenaTable(r, out.events);
    EXPECT_EQ(t.title, "Conjunction in longitude between Venus and Jupiter");
    ASSERT_EQ(t.columns.size(), 7u);
    // Venus passed about half a degree north of Jupiter on 2023 March 1–2.
    const PhenomenonEvent* e = Nearest(out, "Conjunction", JdUT(2023, 3, 2, 0, 0));
    ASSERT_NE(e, nullptr);
    EXPECT_NEAR_UNIT(JdUT(2023, 3, 2, 0, 0), e->jdUT, 1.0, kSecondsFromDays);
    EXPECT_NEAR_UNIT(0.5, e->separationRad * 57.29577951308232, 0.1, kSame);
    EXPECT_EQ(e->info.rfind("Venus 0.", 0), 0u) << e->info;
    EXPECT_EQ(FormatPhenomenonDate(JdUT(2023, 3, 2, 10, 0)), " 2023 Mar 02 10:00");
    const std::string tbl = DataTableText(t);
    EXPECT_EQ(tbl.rfind("TABLE\n", 0), 0u);
    EXPECT_NE(tbl.find("TITLE Conjunction in longitude between Venus and Jupiter\n"), std::string::npos);
    EXPECT_NE(tbl.find("COLHELP The date and time at which the event occurs. \n"), std::string::npos);
    EXPECT_NE(tbl.find("TIMEBASE UT\n"), std::string::npos);
    EXPECT_EQ(tbl.substr(tbl.size() - 4), "END\n");
}

}  // namespace
}  // namespace orv
