// orvane-cli phenomena and almanac: the events of a span for chosen bodies,
// and every event of a year, printed through the shared table printer.

#include <QJsonObject>
#include <QString>

#include <cmath>
#include <string>
#include <vector>

#include "cli/chartassembly.h"
#include "cli/cli.h"
#include "cli/options.h"
#include "cli/tableprinter.h"
#include "map/skyobjects.h"
#include "observer/observer.h"
#include "phenomena/almanac.h"
#include "phenomena/phenomena.h"
#include "solarsystem/minorbodies.h"
#include "solarsystem/planets.h"
#include "util/settingsstore.h"

namespace orv::cli {

namespace {

std::string KindList()
{
    std::string list;
    for (int k = 0; k < kPhenomenonKindCount; ++k)
        list += (k ? ", " : "") + std::string(PhenomenonKindKey(static_cast<PhenomenonKind>(k)));
    return list;
}

// A body by name: the Sun, the Moon, a planet or "Earth"; a catalogued comet
// or asteroid; else (where the kind allows it) a star or deep-sky object.
bool ResolveBody(Context& ctx, const CObserverDoc& observer, CMinorCatalogs& minor, PhenomenonKind kind,
                 const std::string& name, PhenomenonBody& body, int& rc)
{
    if (name == "Earth" || name == "earth") {
        body = PhenomenonBody::Planet(kBodyEarth);
        body.name = "Earth";
        return true;
    }
    if (const auto planet = BodyFromName(name)) {
        body = PhenomenonBody::Planet(*planet);
        return true;
    }
    minor.EnsureLoaded();
    const auto asteroids = minor.FindAsteroids(name);
    const auto comets = minor.FindComets(name);
    if (asteroids.size() + comets.size() == 1) {
        std::optional<TwoBodyOrbit> orbit;
        body = PhenomenonBody{};
        body.type = PhenomenonBody::Type::Minor;
        if (!asteroids.empty()) {
            const AsteroidElements& a = minor.Asteroids()[asteroids.front()];
            orbit = OrbitOf(a);
            body.name = AsteroidDesignation(a);
        } else {
            const CometElements& c = minor.Comets()[comets.front()];
            orbit = OrbitOf(c);
            body.name = c.name;
        }
        if (!orbit) {
            rc = Fail(ctx, "the elements of \"" + body.name + "\" make no orbit");
            return false;
        }
        body.orbit = *orbit;
        return true;
    }
    if (asteroids.size() + comets.size() > 1) {
        rc = Fail(ctx, "\"" + name + "\" names " + std::to_string(asteroids.size() + comets.size()) +
                           " comets and asteroids: give the full designation");
        return false;
    }
    if (!PhenomenonAllowsFixedTarget(kind)) {
        rc = UsageError(ctx, "\"" + name + "\" is not the Sun, the Moon, a planet or a catalogued comet or asteroid");
        return false;
    }
    const FindResult found = ChartComponents().objects.Resolve(name, observer);
    if (found.status != FindStatus::Found) {
        rc = Fail(ctx, found.message);
        return false;
    }
    body = PhenomenonBody{};
    body.type = PhenomenonBody::Type::Fixed;
    body.raJ2000Rad = found.matches.front().raJ2000Rad;
    body.decJ2000Rad = found.matches.front().decJ2000Rad;
    body.name = found.matches.front().designation;
    return true;
}

int RunPhenomena(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames}, {"kind", "body", "from", "days", "step", "asteroids", "comets"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    const auto kindText = ctx.args.Get("kind");
    if (!kindText) return UsageError(ctx, "You must select the type of event to search for. (--kind " + KindList() + ")");
    const auto kind = PhenomenonKindFromText(*kindText);
    if (!kind) return UsageError(ctx, "Unknown search type! \"" + *kindText + "\" is not one of " + KindList());

    CObserverDoc observer;
    observer.LoadSettings(ctx.settings);
    // The site: only the Moon's close passes use it (what the site sees).
    std::string siteError;
    if (!ApplySiteOptions(ctx, observer, siteError)) return UsageError(ctx, siteError);
    PhenomenaRequest request;
    request.kind = *kind;
    const auto fromText = ctx.args.Get("from");
    CivilDateTime from;
    if (!fromText || !ParseDate(*fromText, from))
        return UsageError(ctx, "--from needs a date as YYYY-MM-DD (0h UT)");
    from.hour = 0;
    from.minute = 0;
    from.second = 0.0;
    request.jdUTStart = JulianDateFromCivil(from);
    std::string error;
    const auto days = ctx.args.GetNumber("days", error);
    if (!error.empty()) return UsageError(ctx, error);
    request.durationDays = days.value_or(365.0);
    const auto step = ctx.args.GetNumber("step", error);
    if (!error.empty()) return UsageError(ctx, error);
    request.stepHours = step.value_or(1.0);

    // Each --body is a body, a comma-separated list of them, or "planets"
    // (Mercury ... Pluto): a two-body kind takes two (every body of the
    // first against every body of the second), a one-body kind one or more.
    const std::vector<std::string> options = ctx.args.GetAll("body");
    const int needed = PhenomenonBodyCount(*kind);
    const bool countOk = needed == 2 ? options.size() == 2 : needed == 1 ? !options.empty() : options.empty();
    if (!countOk)
        return UsageError(ctx, "--kind " + std::string(PhenomenonKindKey(*kind)) + " takes " +
                                   (needed == 2 ? "two --body options" : needed == 1 ? "one or more --body options"
                                                                                     : "no --body option"));
    CMinorCatalogs minor;
    minor.SetPaths(ctx.args.Get("asteroids").value_or(ctx.settings.GetString("Paths", "AsteroidCat", "")),
                   ctx.args.Get("comets").value_or(ctx.settings.GetString("Paths", "CometCat", "")));
    std::vector<PhenomenonBody> lists[2];
    for (std::size_t i = 0; i < options.size(); ++i) {
        std::vector<PhenomenonBody>& list = lists[needed == 2 ? i : 0];
        std::size_t begin = 0;
        const std::string& text = options[i];
        while (begin <= text.size()) {
            std::size_t end = text.find(',', begin);
            if (end == std::string::npos) end = text.size();
            std::string name = text.substr(begin, end - begin);
            while (!name.empty() && name.front() == ' ') name.erase(name.begin());
            while (!name.empty() && name.back() == ' ') name.pop_back();
            begin = end + 1;
            if (name.empty()) return UsageError(ctx, "--body \"" + text + "\" has an empty name in its list");
            if (name == "planets" || name == "Planets") {
                const std::vector<PhenomenonBody> all = AllPlanetBodies();
                list.insert(list.end(), all.begin(), all.end());
                continue;
            }
            PhenomenonBody body;
            int rc = 0;
            if (!ResolveBody(ctx, observer, minor, *kind, name, body, rc)) return rc;
            list.push_back(std::move(body));
        }
    }
    const std::vector<PhenomenaRequest> requests = PhenomenaPairs(request, lists[0], lists[1]);
    if (requests.empty()) return UsageError(ctx, "the --body lists make no pair of two different bodies");

    // Every request shares the kind and span: the first stands for them in
    // the checks.
    const PhenomenaBatchOutcome out = SearchPhenomenaSections(observer, requests);
    if (out.status == PhenomenaStatus::BadDuration || out.status == PhenomenaStatus::BadStep ||
        out.status == PhenomenaStatus::TooManySamples || out.status == PhenomenaStatus::BadBodies ||
        out.status == PhenomenaStatus::NoKind)
        return UsageError(ctx, PhenomenaStatusMessage(out.status));
    if (out.status != PhenomenaStatus::Ok) return Fail(ctx, PhenomenaStatusMessage(out.status));
    if (out.eventCount == 0 && !ctx.json) ctx.err << "No events were found in the specified time period.\n";
    const ResultTable table = out.sections.empty() ? MakePhenomenaTable(requests.front(), {})
                                                   : MakePhenomenaTable(out.sections);
    QJsonObject extra;
    extra["kind"] = QString::fromLatin1(PhenomenonKindKey(*kind).data(), static_cast<int>(PhenomenonKindKey(*kind).size()));
    extra["kindNumber"] = static_cast<int>(*kind);
    extra["fromJdUT"] = request.jdUTStart;
    extra["durationDays"] = request.durationDays;
    extra["stepHours"] = request.stepHours;
    PrintTable(ctx, table, extra);
    return 0;
}

int RunAlmanac(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames}, {});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    if (ctx.args.Positional().size() != 1) return UsageError(ctx, "give one year, e.g. orvane-cli almanac 2026");
    const std::string& yearText = ctx.args.Positional().front();
    char* end = nullptr;
    const long year = std::strtol(yearText.c_str(), &end, 10);
    if (end == yearText.c_str() || *end != '\0' || year < -1999 || year > 3000)
        return UsageError(ctx, "the year must be a whole number from -1999 to 3000, not \"" + yearText + "\"");
    CObserverDoc observer;
    observer.LoadSettings(ctx.settings);
    std::string error;
    if (!ApplySiteOptions(ctx, observer, error)) return UsageError(ctx, error);
    // The bright stars the Moon can occult, from the installed catalogues.
    std::vector<PhenomenonBody> stars;
    for (const char* name : kAlmanacStarNames) {
        const FindResult found = ChartComponents().objects.Resolve(name, observer);
        if (found.status != FindStatus::Found) continue;
        PhenomenonBody star;
        star.type = PhenomenonBody::Type::Fixed;
        star.raJ2000Rad = found.matches.front().raJ2000Rad;
        star.decJ2000Rad = found.matches.front().decJ2000Rad;
        star.name = name;
        stars.push_back(star);
    }
    const AlmanacOutcome out = MakeAlmanac(observer, static_cast<int>(year), {}, stars);
    if (out.status != PhenomenaStatus::Ok) return Fail(ctx, PhenomenaStatusMessage(out.status));
    if (out.eclipseTablesMissing && !ctx.json)
        ctx.err << "The eclipse tables are not installed: the almanac lists no eclipses (tools/build-data.sh builds them).\n";
    QJsonObject extra;
    extra["year"] = static_cast<int>(year);
    extra["site"] = QString::fromStdString(observer.SiteName());
    PrintTable(ctx, MakeAlmanacTable(static_cast<int>(year), out.entries), extra);
    return 0;
}

}  // namespace

ORV_CLI_COMMAND("phenomena", "conjunctions, oppositions, phases, equinoxes and other events of a span",
                "orvane-cli phenomena --kind NAME [--body A [--body B]] --from YYYY-MM-DD [--days N] [--step HOURS]\n"
                "                     [--asteroids FILE --comets FILE] [--lat DEG --lon DEG --height M] [--json | --csv]\n\n"
                "  --kind NAME     conjunction, conjunction-ra, min-separation, opposition, opposition-ra,\n"
                "                  max-separation, min-distance, max-distance, equinoxes, quadrature, quadrature-ra,\n"
                "                  moon-phases, stationary, stationary-ra, declination, perihelion (0-15), and\n"
                "                  elongation (greatest elongation from the Sun), apsides (perigee and apogee),\n"
                "                  appulse (closest approaches, occultations and transits flagged) (16-18)\n"
                "  --body NAME     Sun, Moon, Mercury ... Pluto, Earth (perihelion), a catalogued comet or asteroid;\n"
                "                  for the conjunction, opposition, quadrature, separation and appulse kinds also a\n"
                "                  star or deep-sky object. Two-body kinds take two, equinoxes and moon-phases none.\n"
                "                  A --body may list several (\"Venus,Mars\") or say \"planets\" (Mercury ... Pluto):\n"
                "                  every body of the first against every body of the second, or each body of a\n"
                "                  one-body kind, each pair in a section of its own (a \"bodies\" column in JSON/CSV).\n"
                "  --from DATE     start, 0h UT; --days N the span in days (default 365); --step HOURS the\n"
                "                  sampling interval (default 1); each event is refined to the second.\n"
                "Columns (by kind): date (UT), event, separation (deg), distance from the Earth (AU; the Moon km),\n"
                "elongation (deg), declination, distance from the Sun (AU), information, and where the Moon passes within\n"
                "1.6 deg of the body what the site (--lat, --lon, --height or the stored site) sees: the UT times the\n"
                "body disappears and reappears, or the least topocentric separation. JSON keys: dateJdUT, bodies,\n"
                "event, separationDeg, distanceAU (distanceKm), elongationDeg, declinationDeg, sunDistanceAU, info, site.\n",
                RunPhenomena);

ORV_CLI_COMMAND("almanac", "every event of a year: phases, seasons, apsides, conjunctions, oppositions, eclipses",
                "orvane-cli almanac YEAR [--lat DEG --lon DEG --height M --zone H --dst 0|1] [--json | --csv]\n\n"
                "  YEAR            -1999 ... 3000 (0 is 1 BC); the events of its UT calendar year\n"
                "Lists the Moon's phases, perigees and apogees, the equinoxes and solstices, the Earth's perihelion\n"
                "and aphelion, the planets' conjunctions with the Sun, oppositions and stationary points, the greatest\n"
                "elongations of Mercury and Venus, the Moon's conjunctions with the bright planets and with\n"
                "Aldebaran, Regulus, Spica, Antares and the Pleiades (occultations named) and the year's solar and lunar eclipses (greatest eclipse) from the eclipse tables.\n"
                "Columns: date (UT), event, details. JSON keys: dateJdUT, event, details.\n",
                RunAlmanac);

}  // namespace orv::cli
