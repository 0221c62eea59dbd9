// The almanac of a year, assembled from phenomena searches and the eclipse
// tables.

#include "phenomena/almanac.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "eclipse/eclipsefinder.h"
#include "eclipse/eclipsetables.h"
#include "observer/observer.h"
#include "solarsystem/planets.h"
#include "util/datapath.h"

namespace orv {

namespace {

// One search of the almanac and how its events read.
struct AlmanacSearch {
    PhenomenonKind kind;
    std::vector<int> bodies;  // CPlanets body numbers
    // Steps: one or two hours for the Moon's events; six hours for the
    // Sun and the planets, whose quantities are smooth enough over that
    // step that the three-point refinement is good to a second (twelve hours
    // would cost Mercury a minute).
    double stepHours;
};

std::string Name(int body) { return std::string(BodyName(body)); }

std::string DistanceText(double km)
{
    char buf[48];
    std::snprintf(buf, sizeof buf, "%.0lf km", km);
    return buf;
}

// The entry of an event of a search.
AlmanacEntry EntryOf(const AlmanacSearch& s, const PhenomenonEvent& e, const std::string& secondName)
{
    AlmanacEntry a;
    a.jdUT = e.jdUT;
    const std::string first = s.bodies.empty() ? std::string() : Name(s.bodies[0]);
    char buf[96];
    switch (s.kind) {
    case PhenomenonKind::MoonPhases:
    case PhenomenonKind::EquinoxesSolstices: a.event = e.name; break;
    case PhenomenonKind::PerihelionAphelion:
        a.event = "Earth at " + std::string(e.name == "Perihelion" ? "perihelion" : "aphelion");
        std::snprintf(buf, sizeof buf, "%.6lf AU from the Sun", e.sunDistanceAU);
        a.details = buf;
        break;
    case PhenomenonKind::ApogeePerigee:
        a.event = first + " at " + (e.name == "Perigee" ? "perigee" : "apogee");
        a.details = DistanceText(e.distance);
        break;
    case PhenomenonKind::ConjunctionLongitude:
        if (s.bodies[0] == kBodyMoon) {
            a.event = e.occultation ? "Occultation of " + secondName + " by the Moon"
                                    : "Moon in conjunction with " + secondName;
            a.details = e.info;
            if (e.siteChecked) a.details += "; at the site: " + e.siteInfo;
        } else {
            a.event = first + (e.name == "Inferior"   ? " in inferior conjunction"
                               : e.name == "Superior" ? " in superior conjunction"
                                                      : " in conjunction with the Sun");
            std::snprintf(buf, sizeof buf, "%.1lf° from the Sun", e.separationRad * 57.29577951308232);
            a.details = buf;
        }
        break;
    case PhenomenonKind::OppositionLongitude:
        a.event = first + " at opposition";
        std::snprintf(buf, sizeof buf, "%.4lf AU from the Earth", e.distance);
        a.details = buf;
        break;
    case PhenomenonKind::GreatestElongation:
        a.event = first + " at greatest elongation " + (e.name == "East" ? "east" : "west");
        a.details = e.info;
        break;
    case PhenomenonKind::StationaryLongitude:
        a.event = first + " stationary" + (e.name == "Retrograde" ? ", retrograde motion begins" : ", direct motion resumes");
        break;
    default: a.event = first + " " + e.name; break;
    }
    return a;
}

}  // namespace

AlmanacOutcome MakeAlmanac(const CObserverDoc& observer, int year, const PhenomenaProgressFn& progress,
                           const std::vector<PhenomenonBody>& stars)
{
    AlmanacOutcome out;
    if (year < -1999 || year > 3000) return {PhenomenaStatus::BadDuration, {}, false};
    const double jdStart = CObserverDoc::JulianDate(year, 1, 1.0);
    const double jdEnd = CObserverDoc::JulianDate(year + 1, 1, 1.0);

    std::vector<AlmanacSearch> searches = {
        {PhenomenonKind::MoonPhases, {}, 1.0},
        {PhenomenonKind::EquinoxesSolstices, {}, 6.0},
        {PhenomenonKind::PerihelionAphelion, {kBodyEarth}, 6.0},
        {PhenomenonKind::ApogeePerigee, {kBodyMoon}, 1.0},
        {PhenomenonKind::GreatestElongation, {kBodyMercury}, 6.0},
        {PhenomenonKind::GreatestElongation, {kBodyVenus}, 6.0},
    };
    for (int body : {kBodyMercury, kBodyVenus, kBodyMars, kBodyJupiter, kBodySaturn, kBodyUranus, kBodyNeptune})
        searches.push_back({PhenomenonKind::ConjunctionLongitude, {body, kBodySun}, 6.0});
    for (int body : {kBodyMars, kBodyJupiter, kBodySaturn, kBodyUranus, kBodyNeptune})
        searches.push_back({PhenomenonKind::OppositionLongitude, {body, kBodySun}, 6.0});
    for (int body : {kBodyMercury, kBodyVenus, kBodyMars, kBodyJupiter, kBodySaturn})
        searches.push_back({PhenomenonKind::StationaryLongitude, {body}, 6.0});
    for (int body : {kBodyMercury, kBodyVenus, kBodyMars, kBodyJupiter, kBodySaturn})
        searches.push_back({PhenomenonKind::ConjunctionLongitude, {kBodyMoon, body}, 2.0});

    // The Moon and each star: a search of its own (the star is no CPlanets body).
    const std::size_t planetSearches = searches.size();
    for (std::size_t i = 0; i < stars.size(); ++i) searches.push_back({PhenomenonKind::ConjunctionLongitude, {kBodyMoon}, 2.0});
    std::vector<PhenomenaRequest> requests;
    for (std::size_t i = 0; i < searches.size(); ++i) {
        const AlmanacSearch& s = searches[i];
        PhenomenaRequest r;
        r.kind = s.kind;
        for (int b : s.bodies) r.bodies.push_back(PhenomenonBody::Planet(b));
        if (i >= planetSearches) r.bodies.push_back(stars[i - planetSearches]);
        if (s.kind == PhenomenonKind::PerihelionAphelion) r.bodies[0].name = "Earth";
        r.jdUTStart = jdStart;
        r.durationDays = jdEnd - jdStart;
        r.stepHours = s.stepHours;
        requests.push_back(std::move(r));
    }
    const std::vector<PhenomenaOutcome> found = SearchPhenomenaBatch(observer, requests, progress);
    for (std::size_t i = 0; i < searches.size(); ++i) {
        if (found[i].status == PhenomenaStatus::Cancelled) return {PhenomenaStatus::Cancelled, {}, false};
        if (found[i].status != PhenomenaStatus::Ok) continue;  // no positions for that body in that year
        const PhenomenaRequest& r = requests[i];
        for (const PhenomenonEvent& e : found[i].events)
            out.entries.push_back(EntryOf(searches[i], e, r.bodies.size() > 1 ? r.bodies[1].name : std::string()));
    }

    // The eclipses of the year from the tables (greatest eclipse, TT).
    for (EclipseKind kind : {EclipseKind::Solar, EclipseKind::Lunar}) {
        std::string path;
        const auto records = LocateDataFile(EclipseFileName(kind, EclipseFileNumber(year)), path)
                                 ? ReadEclipseFile(path)
                                 : std::nullopt;
        if (!records) {
            out.eclipseTablesMissing = true;
            continue;
        }
        for (const EclipseRecord& rec : *records) {
            if (rec.year != year) continue;
            const double jdTT = RecordJulianDateTT(rec);
            const double jdUT = jdTT - observer.DeltaT(jdTT) / 86400.0;
            char buf[48];
            std::snprintf(buf, sizeof buf, "magnitude %.2lf", rec.extra / 100.0);
            out.entries.push_back({jdUT, EclipseTypeText(kind, rec.type) + " eclipse", buf});
        }
    }
    std::stable_sort(out.entries.begin(), out.entries.end(),
                     [](const AlmanacEntry& a, const AlmanacEntry& b) { return a.jdUT < b.jdUT; });
    if (progress) progress(1.0);
    return out;
}

ResultTable MakeAlmanacTable(int year, const std::vector<AlmanacEntry>& entries)
{
    ResultTable t;
    t.title = "Almanac for " + std::to_string(year);
    t.timeBase = "UT";
    t.reportHeadings = HeadingLine::Include;
    t.columns.push_back({"Date (UT)", "dateJdUT", "", CellAlign::Left, " 2000 Jan 01 00:00", "YYYYY MMM DD hh:mm",
                         {"The date and time at which the event occurs. ", "This is always in UTC."}});
    t.columns.push_back({"Event", "event", "", CellAlign::Left, "Mercury at greatest elongation west", "",
                         {"The event."}});
    t.columns.push_back({"Details", "details", "", CellAlign::Left, "", "",
                         {"Additional information about the event."}});
    for (const AlmanacEntry& e : entries) {
        ResultRow row;
        row.cells.push_back(ResultCell::Number(e.jdUT, FormatPhenomenonDate(e.jdUT)));
        row.cells.emplace_back(e.event);
        row.cells.emplace_back(e.details);
        t.rows.push_back(std::move(row));
    }
    return t;
}

}  // namespace orv
