// orvane-cli eclipses: the solar and lunar eclipses of a span of years from
// the eclipse tables, all of them or those seen from the site; and
// orvane-cli eclipse: one eclipse's global figures and its local
// circumstances at the site.

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <string>

#include "cli/cli.h"
#include "cli/options.h"
#include "cli/tableprinter.h"
#include "eclipse/eclipsefinder.h"
#include "eclipse/eclipsesearch.h"
#include "eclipse/eclipsetables.h"
#include "eclipse/localcircumstances.h"
#include "eclipse/eclipsemapexport.h"
#include "satellite/worldmap.h"
#include "observer/observer.h"
#include "util/datapath.h"

namespace orv::cli {

namespace {

constexpr double kRadToDeg = 57.29577951308232;

// "YYYY-MM-DD hh:mm:ss" of a Julian date (astronomical year).
std::string FormatJulianDateText(double jd)
{
    const CivilDateTime c = CivilFromJulianDate(jd);
    char text[48];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", c.year, c.month, c.day, c.hour, c.minute,
                  static_cast<int>(c.second));
    return text;
}

EclipseSite SiteOf(const CObserverDoc& doc) { return {doc.LatitudeRad(), doc.LongitudeRad(), doc.HeightM()}; }

bool ParseYear(const Context& ctx, const char* name, int& year, std::string& error)
{
    const auto text = ctx.args.Get(name);
    if (!text) {
        error = std::string("--") + name + " YEAR is needed (astronomical numbering: 0 is 1 BC, -1 is 2 BC)";
        return false;
    }
    char* end = nullptr;
    const long v = std::strtol(text->c_str(), &end, 10);
    if (text->empty() || *end != '\0') {
        error = std::string("--") + name + " needs a whole year, not \"" + *text + "\"";
        return false;
    }
    year = static_cast<int>(v);
    return true;
}

int RunEclipses(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames}, {"from", "to", "solar", "lunar", "visible", "partial"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    EclipseSearchSettings settings;
    std::string error;
    if (!ParseYear(ctx, "from", settings.startYear, error) || !ParseYear(ctx, "to", settings.endYear, error))
        return UsageError(ctx, error);
    const bool solarOnly = ctx.args.Has("solar"), lunarOnly = ctx.args.Has("lunar");
    settings.solar = solarOnly || !lunarOnly;
    settings.lunar = lunarOnly || !solarOnly;
    // The dialog wants the end after the start; the command line also takes
    // a single year (--from Y --to Y).
    EclipseSearchSettings check = settings;
    if (check.endYear == check.startYear && check.startYear < 3000) ++check.endYear;
    if (const auto message = ValidateEclipseSearch(check)) {
        std::string m = *message;
        for (char& c : m)
            if (c == '\n') c = ' ';
        return UsageError(ctx, m);
    }
    CObserverDoc doc;
    doc.LoadSettings(ctx.settings);
    if (!ApplySiteOptions(ctx, doc, error)) return UsageError(ctx, error);
    const EclipseVisibility visibility =
        ctx.args.Has("visible") ? EclipseVisibility::FromSite : EclipseVisibility::Anywhere;

    EclipseSearchOutcome outcome = RunEclipseSearch(settings, SiteOf(doc), visibility, {}, {});
    // The scan gives solar eclipses first, then lunar ones; a listing reads
    // better in order of date.
    std::stable_sort(outcome.results.begin(), outcome.results.end(),
                     [](const EclipseSearchResult& a, const EclipseSearchResult& b) {
                         return RecordJulianDateTT(a.record) < RecordJulianDateTT(b.record);
                     });
    if (outcome.tablesMissing)
        return Fail(ctx, "the eclipse tables \"data\\solar1.dat\" … \"data\\lunar5.dat\" are not installed "
                         "(tools/build-data.sh builds them)");
    ResultTable table = MakeEclipseResultTable(settings, outcome.results);
    if (visibility == EclipseVisibility::Anywhere) {
        char title[96];
        std::snprintf(title, sizeof title, "Eclipses from %d to %d", settings.startYear, settings.endYear);
        table.title = title;
    }
    QJsonObject extra;
    extra["site"] = QString::fromStdString(doc.SiteName());
    extra["latitudeDeg"] = doc.LatitudeRad() * kRadToDeg;
    extra["longitudeDeg"] = doc.LongitudeRad() * kRadToDeg;
    extra["fromYear"] = settings.startYear;
    extra["toYear"] = settings.endYear;
    extra["visibleOnly"] = visibility == EclipseVisibility::FromSite;
    if (outcome.results.empty() && !ctx.json) {
        ctx.out << "No eclipses are visible during the specified time period.\n";
        return 0;
    }
    PrintTable(ctx, table, extra);
    return 0;
}

QJsonObject ContactJson(const EclipseContact& c)
{
    QJsonObject o;
    o["jdTT"] = c.jdTT;
    o["jdUT"] = c.jdUT;
    o["utc"] = QString::fromStdString(FormatJulianDateText(c.jdUT));
    o["altitudeDeg"] = c.altitudeRad * kRadToDeg;
    o["azimuthDeg"] = c.azimuthRad * kRadToDeg;
    return o;
}

void PrintContact(std::ostream& out, const char* name, const EclipseContact& c, bool withAzimuth)
{
    char line[160];
    if (!c.valid) {
        std::snprintf(line, sizeof line, "  %-18s -\n", name);
    } else if (withAzimuth) {
        std::snprintf(line, sizeof line, "  %-18s %s UT   alt %6.1f°  az %6.1f°\n", name,
                      FormatJulianDateText(c.jdUT).c_str(), c.altitudeRad * kRadToDeg, c.azimuthRad * kRadToDeg);
    } else {
        std::snprintf(line, sizeof line, "  %-18s %s UT   alt %6.1f°\n", name, FormatJulianDateText(c.jdUT).c_str(),
                      c.altitudeRad * kRadToDeg);
    }
    out << line;
}

int RunEclipse(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames}, {"solar", "lunar", "map", "width", "height-px"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    if (ctx.args.Positional().size() != 1) return UsageError(ctx, "give the eclipse's date: YYYY-MM-DD (UT or TT)");
    CivilDateTime date;
    if (!ParseDate(ctx.args.Positional().front(), date))
        return UsageError(ctx, "\"" + ctx.args.Positional().front() + "\" is not a date YYYY-MM-DD");
    CObserverDoc doc;
    doc.LoadSettings(ctx.settings);
    std::string error;
    if (!ApplySiteOptions(ctx, doc, error)) return UsageError(ctx, error);
    const EclipseSite site = SiteOf(doc);

    // The eclipse whose greatest phase falls on that date (TT), solar first.
    const double jdNoon = JulianDateFromCivil(CivilDateTime{date.year, date.month, date.day, 12, 0, 0.0});
    std::optional<EclipseEvent> event;
    for (const EclipseKind kind : {EclipseKind::Solar, EclipseKind::Lunar}) {
        if ((kind == EclipseKind::Solar && ctx.args.Has("lunar")) || (kind == EclipseKind::Lunar && ctx.args.Has("solar")))
            continue;
        const auto e = EclipseAtSyzygyNear(jdNoon, kind);
        if (!e) continue;
        const CivilDateTime when = CivilFromJulianDate(e->jdTT);
        if (when.year == date.year && when.month == date.month && when.day == date.day) {
            event = e;
            break;
        }
    }
    SunMoonPlaces probe;
    if (!SunMoonAt(jdNoon, probe))
        return Fail(ctx, "the planetary series \"Data\\VSOP87.idx\" and \"Data\\VSOP87.dat\" are not installed "
                         "(tools/build-data.sh builds them)");
    if (!event) return Fail(ctx, "no eclipse on " + ctx.args.Positional().front());

    const bool solar = event->kind == EclipseKind::Solar;
    if (const auto mapPath = ctx.args.Get("map")) {
        // The world map of the eclipse as a picture.
        const auto width = ctx.args.GetNumber("width", error);
        const auto height = ctx.args.GetNumber("height-px", error);
        if (!error.empty()) return UsageError(ctx, error);
        const double wd = width.value_or(1600), hd = height.value_or(900);
        if (!(wd >= 200 && wd <= 20000 && hd >= 120 && hd <= 20000))
            return UsageError(ctx, "--width takes 200 to 20000 pixels and --height-px 120 to 20000");
        const int w = static_cast<int>(wd), h = static_cast<int>(hd);
        sat::CWorldMap world;
        world.LoadFromDataFolder();  // without it the map has no land, the paths are still drawn
        const std::vector<sat::WorldOutline> land = sat::JoinWorldOutlines(world.Polylines());
        const EclipseRecord rec = RecordFromEvent(*event);
        if (const auto failure =
                ExportEclipseMap(*mapPath, w, h, land, *event,
                                 EclipseTypeText(event->kind, event->type) + " Eclipse of " + ResultDateText(rec) + " TT"))
            return Fail(ctx, *failure);
    }
    const std::string typeText = EclipseTypeText(event->kind, event->type);
    QJsonObject o;
    o["kind"] = solar ? "solar" : "lunar";
    o["type"] = QString::fromStdString(typeText);
    o["greatestJdTT"] = event->jdTT;
    o["greatestTT"] = QString::fromStdString(FormatJulianDateText(event->jdTT));
    o["deltaTSeconds"] = DeltaTSeconds(event->jdTT);
    o["gamma"] = event->gamma;
    o["magnitude"] = event->magnitude;
    if (!solar) o["penumbralMagnitude"] = event->penumbralMagnitude;
    o["site"] = QString::fromStdString(doc.SiteName());
    o["latitudeDeg"] = site.latitudeRad * kRadToDeg;
    o["longitudeDeg"] = site.longitudeRad * kRadToDeg;
    o["heightM"] = site.heightM;

    std::ostream& out = ctx.out;
    char line[200];
    if (!ctx.json) {
        std::snprintf(line, sizeof line, "%s eclipse, greatest %s TT (ΔT %.1f s), gamma %+.4f, magnitude %.4f",
                      typeText.c_str(), FormatJulianDateText(event->jdTT).c_str(), DeltaTSeconds(event->jdTT),
                      event->gamma, event->magnitude);
        out << line << '\n';
        if (!solar) {
            std::snprintf(line, sizeof line, "Penumbral magnitude %.4f", event->penumbralMagnitude);
            out << line << '\n';
        }
        std::snprintf(line, sizeof line, "Seen from %s (%.4f°, %.4f°, %.0f m):", doc.SiteName().c_str(),
                      site.latitudeRad * kRadToDeg, site.longitudeRad * kRadToDeg, site.heightM);
        out << line << '\n';
    }
    if (solar) {
        BesselianElements elements;
        if (!ComputeBesselianElements(event->jdTT, elements)) return Fail(ctx, "the eclipse cannot be computed");
        const SolarLocalCircumstances local = SolarLocal(elements, site);
        if (ctx.json) {
            QJsonObject l;
            l["eclipsed"] = local.eclipsed;
            l["visible"] = local.visible;
            if (local.eclipsed) {
                l["localType"] = QString(QChar(local.localType));
                l["magnitude"] = local.magnitude;
                l["obscuration"] = local.obscuration;
                l["centralDurationSeconds"] = local.centralDurationSeconds;
                if (local.first.valid) l["firstContact"] = ContactJson(local.first);
                if (local.second.valid) l["secondContact"] = ContactJson(local.second);
                l["greatest"] = ContactJson(local.greatest);
                if (local.third.valid) l["thirdContact"] = ContactJson(local.third);
                if (local.last.valid) l["lastContact"] = ContactJson(local.last);
            }
            o["local"] = l;
            QJsonObject b;
            b["t0JdTT"] = elements.t0JdTT;
            auto arr = [](const std::array<double, 4>& c) { return QJsonArray{c[0], c[1], c[2], c[3]}; };
            b["x"] = arr(elements.x);
            b["y"] = arr(elements.y);
            b["dDeg"] = arr(elements.dDeg);
            b["l1"] = arr(elements.l1);
            b["l2"] = arr(elements.l2);
            b["muDeg"] = arr(elements.muDeg);
            b["tanF1"] = elements.tanF1;
            b["tanF2"] = elements.tanF2;
            o["besselianElements"] = b;
            PrintJson(out, o);
            return 0;
        }
        if (!local.eclipsed) {
            out << "  The eclipse is not seen from this site.\n";
            return 0;
        }
        PrintContact(out, "First contact", local.first, true);
        if (local.second.valid) PrintContact(out, "Second contact", local.second, true);
        PrintContact(out, "Greatest eclipse", local.greatest, true);
        if (local.third.valid) PrintContact(out, "Third contact", local.third, true);
        PrintContact(out, "Last contact", local.last, true);
        std::snprintf(line, sizeof line, "  Magnitude %.4f, obscuration %.4f%s", local.magnitude, local.obscuration,
                      local.visible ? "" : " (the Sun is below the horizon throughout)");
        out << line << '\n';
        if (local.centralDurationSeconds > 0.0) {
            out << "  Duration of " << (local.localType == 'T' ? "totality" : "annularity") << " "
                << FormatEclipseDuration(local.centralDurationSeconds) << '\n';
        }
        return 0;
    }

    const auto local = LunarLocal(event->jdTT, site);
    if (!local) return Fail(ctx, "the eclipse cannot be computed");
    if (ctx.json) {
        QJsonObject l;
        l["visible"] = local->visible;
        l["penumbralMagnitude"] = local->penumbralMagnitude;
        l["umbralMagnitude"] = local->umbralMagnitude;
        const std::pair<const char*, const EclipseContact*> phases[] = {
            {"p1", &local->p1}, {"u1", &local->u1}, {"u2", &local->u2}, {"greatest", &local->greatest},
            {"u3", &local->u3}, {"u4", &local->u4}, {"p4", &local->p4}};
        for (const auto& [name, c] : phases)
            if (c->valid) l[name] = ContactJson(*c);
        o["local"] = l;
        PrintJson(out, o);
        return 0;
    }
    PrintContact(out, "P1 penumbra in", local->p1, false);
    PrintContact(out, "U1 partial begins", local->u1, false);
    PrintContact(out, "U2 total begins", local->u2, false);
    PrintContact(out, "Greatest eclipse", local->greatest, false);
    PrintContact(out, "U3 total ends", local->u3, false);
    PrintContact(out, "U4 partial ends", local->u4, false);
    PrintContact(out, "P4 penumbra out", local->p4, false);
    std::snprintf(line, sizeof line, "  Penumbral magnitude %.4f, umbral magnitude %.4f; the Moon is %s", local->penumbralMagnitude,
                  local->umbralMagnitude, local->visible ? "up during the eclipse" : "below the horizon throughout");
    out << line << '\n';
    return 0;
}

}  // namespace

ORV_CLI_COMMAND("eclipses", "the solar and lunar eclipses of a span of years, or those seen from the site",
                "orvane-cli eclipses --from YEAR --to YEAR [--solar] [--lunar] [--visible]\n"
                "                    [--lat DEG --lon DEG --height M] [--json | --csv]\n\n"
                "  --from, --to    astronomical years -1999 ... 3000 (0 is 1 BC)\n"
                "  --solar, --lunar  only that kind (both when neither or both are given)\n"
                "  --visible       only the eclipses seen from the site: some phase with the Sun (or the\n"
                "                  Moon) above the horizon; the site is the stored one unless --lat/--lon\n"
                "Reads the tables data\\solar1-5.dat and data\\lunar1-5.dat. Columns: Date (greatest eclipse,\n"
                "TT), Type, local greatest eclipse (UT), magnitude (solar: at the site; lunar: umbral, penumbral\n"
                "for penumbral eclipses), altitude, obscuration, duration of totality or annularity at the site.\n"
                "JSON keys: greatestJdTT, type, localGreatestJdUT, magnitude, altitudeDeg, obscuration,\n"
                "centralDurationSeconds.\n",
                RunEclipses);

ORV_CLI_COMMAND("eclipse", "one eclipse: greatest eclipse, gamma, magnitude and the local circumstances at the site",
                "orvane-cli eclipse YYYY-MM-DD [--solar | --lunar] [--lat DEG --lon DEG --height M] [--json]\n"
                "                   [--map FILE.png|.pdf|.svg [--width PX --height-px PX]]\n\n"
                "  YYYY-MM-DD      the date of greatest eclipse (astronomical year; Julian calendar before\n"
                "                  1582 October 15)\n"
                "Solar: first, second, third and last contacts with the Sun's altitude and azimuth, magnitude,\n"
                "obscuration, duration of totality or annularity, and the Besselian elements (JSON).\n"
                "Lunar: P1, U1, U2, greatest, U3, U4, P4 with the Moon's altitude, the magnitudes.\n"
                "--map writes the world map of the eclipse (the path with its limits, or where the Moon is up),\n"
                "a picture or, for .pdf and .svg, a vector page.\n"
                "JSON keys: kind, type, greatestJdTT, deltaTSeconds, gamma, magnitude, local {firstContact ...\n"
                "{jdTT, jdUT, utc, altitudeDeg, azimuthDeg}}, besselianElements {t0JdTT, x, y, dDeg, l1, l2,\n"
                "muDeg, tanF1, tanF2}.\n",
                RunEclipse);

}  // namespace orv::cli
