// orvane-cli minor: a comet or an asteroid of the catalogues at an instant
// (apparent place, distances, magnitude, elongation, phase angle,
// constellation, the epoch of its elements), and "minor import", which
// brings the Minor Planet Center's element files into the catalogues.

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <tuple>
#include <ostream>
#include <string>

#include "catalog/constellations/drawconstellations.h"
#include "catalog/deepsky/drawdeepsky.h"
#include "catalog/stars/drawstars.h"
#include "cli/cli.h"
#include "cli/mapoptions.h"
#include "cli/options.h"
#include "map/chartexport.h"
#include "map/mapdoc.h"
#include "map/mapview.h"
#include "solarsystem/drawminor.h"
#include "solarsystem/drawplanets.h"
#include "observer/observer.h"
#include "solarsystem/minorsource.h"
#include "util/angles.h"
#include "util/datapath.h"
#include "util/mappedfile.h"
#include "util/settingsstore.h"

namespace orv::cli {

namespace {

QString Q(const std::string& s) { return QString::fromStdString(s); }

std::string KindName(ElementFileKind kind)
{
    switch (kind) {
    case ElementFileKind::Mpcorb:
        return "MPCORB asteroid elements";
    case ElementFileKind::MpcComets:
        return "MPC comet elements";
    case ElementFileKind::AsteroidCatalog:
        return "asteroid catalogue";
    case ElementFileKind::CometCatalog:
        return "comet catalogue";
    default:
        return "unknown";
    }
}

int RunMinorImport(Context& ctx)
{
    const auto known = OptionNames({}, {"catalog", "all"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    if (ctx.args.Positional().size() > 1) return UsageError(ctx, "give one element file to import");
    // Without a file, the MPC's export where the program has always looked
    // for it: "data\mpcorb.dat" in the data folders.
    std::string path;
    if (!ctx.args.Positional().empty()) path = ctx.args.Positional().front();
    else if (!LocateDataFile("data\\mpcorb.dat", path))
        return Fail(ctx, "no element file given, and no \"data\\mpcorb.dat\" in the data folder (" + GetDataPath() + ")");
    // Mapped, not read: the MPC's full file is some 280 MB.
    CMappedFile file;
    if (!file.Open(path)) return Fail(ctx, "cannot open \"" + path + "\"");
    const std::string_view text(reinterpret_cast<const char*>(file.Data()), file.Size());

    const ElementFileKind kind = DetectElementFile(text);
    if (kind == ElementFileKind::Unknown)
        return Fail(ctx, "\"" + path + "\" holds no element lines of the MPCORB, MPC comet, asteroid catalogue or "
                                       "comet catalogue formats");
    const bool asteroids = kind == ElementFileKind::Mpcorb || kind == ElementFileKind::AsteroidCatalog;
    const MinorKind target = asteroids ? MinorKind::Asteroid : MinorKind::Comet;
    CMinorCatalogs catalogs;
    const std::string catalogPath = ctx.args.Get("catalog").value_or(DefaultCatalogPath(target));
    catalogs.SetPaths(asteroids ? catalogPath : DefaultCatalogPath(MinorKind::Asteroid),
                      asteroids ? DefaultCatalogPath(MinorKind::Comet) : catalogPath);
    catalogs.Reload();

    // The load filter of the settings (sections "Asteroid" and "Comet", as
    // new maps take them; comets within the day count of now) chooses what
    // is imported, as it chooses what a catalogue loads; --all takes every
    // line. Entries already in the catalogue stay whatever the filter.
    AsteroidFilter asteroidFilter = AllAsteroids();
    CometFilter cometFilter = AllComets();
    if (!ctx.args.Has("all")) {
        CAsteroidCatalogSettings a;
        CCometCatalogSettings c;
        a.Load(ctx.settings);
        c.Load(ctx.settings);
        CObserverDoc now;
        now.SetToNow();
        LoadFiltersOf(a, c, now.JulianDateTDT(), asteroidFilter, cometFilter);
    }
    CatalogReadResult result;
    int replaced = 0;
    if (asteroids) {
        std::vector<AsteroidElements> incoming;
        result = kind == ElementFileKind::Mpcorb ? ImportMpcorb(text, asteroidFilter, incoming)
                                                 : ParseAsteroidCatalog(text, asteroidFilter, incoming);
        replaced = MergeAsteroids(catalogs.Asteroids(), incoming);
    } else {
        std::vector<CometElements> incoming;
        result = kind == ElementFileKind::MpcComets ? ImportMpcComets(text, cometFilter, incoming)
                                                    : ParseCometCatalog(text, cometFilter, incoming);
        replaced = MergeComets(catalogs.Comets(), incoming);
    }
    const std::string filterText = asteroids ? DescribeFilter(asteroidFilter) : DescribeFilter(cometFilter);
    if (result.accepted > 0) {
        catalogs.MarkChanged(target);
        if (const auto error = catalogs.Save(target)) return Fail(ctx, *error);
    }
    const std::size_t total = asteroids ? catalogs.Asteroids().size() : catalogs.Comets().size();
    if (ctx.json) {
        QJsonArray refused;
        for (const RefusedLine& r : result.refused)
            refused.append(QJsonObject{{"line", r.lineNumber}, {"reason", Q(r.reason)}});
        PrintJson(ctx.out, QJsonObject{{"file", Q(path)},
                                       {"format", Q(KindName(kind))},
                                       {"catalog", Q(catalogPath)},
                                       {"accepted", result.accepted},
                                       {"replaced", replaced},
                                       {"added", result.accepted - replaced},
                                       {"filteredOut", result.filteredOut},
                                       {"stoppedAtLine", result.stoppedAtLine},
                                       {"loadFilter", Q(filterText)},
                                       {"refusedCount", static_cast<int>(result.refused.size())},
                                       {"refused", refused},
                                       {"entries", static_cast<double>(total)}});
        return 0;
    }
    ctx.out << path << ": " << KindName(kind) << '\n';
    ctx.out << result.accepted << " lines accepted (" << replaced << " replaced, " << result.accepted - replaced
            << " added), " << result.refused.size() << " refused\n";
    if (result.filteredOut > 0)
        ctx.out << result.filteredOut << " lines left out by the load filter (" << filterText
                << "; --all imports every line)\n";
    if (result.stoppedAtLine > 0)
        ctx.out << "reading stopped at line " << result.stoppedAtLine << ", the limit of the load filter ("
                << filterText << "; --all imports every line)\n";
    for (const RefusedLine& r : result.refused) ctx.out << "  line " << r.lineNumber << ": " << r.reason << '\n';
    ctx.out << catalogPath << ": " << total << (asteroids ? " asteroids" : " comets") << '\n';
    return 0;
}

int RunMinor(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames}, {"topocentric", "asteroids", "comets"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    if (ctx.args.Positional().empty()) return UsageError(ctx, "give a comet or an asteroid: \"Ceres\", \"1\", \"C/2020 F3\"");
    std::string name;
    for (const std::string& w : ctx.args.Positional()) name += (name.empty() ? "" : " ") + w;

    CObserverDoc doc;
    doc.LoadSettings(ctx.settings);
    std::string error;
    if (!ApplySiteOptions(ctx, doc, error)) return UsageError(ctx, error);
    if (!ApplyTimeOptions(ctx, doc, error)) return UsageError(ctx, error);
    const PlaceCentre centre = ctx.args.Has("topocentric") ? PlaceCentre::Topocentric : PlaceCentre::Geocentric;

    // The catalogues: the options', else the program's ("Paths", "AsteroidCat"
    // and "CometCat"), else those of the data folder.
    CMinorCatalogs catalogs;
    catalogs.SetPaths(ctx.args.Get("asteroids").value_or(ctx.settings.GetString("Paths", "AsteroidCat", "")),
                      ctx.args.Get("comets").value_or(ctx.settings.GetString("Paths", "CometCat", "")));
    catalogs.Reload();
    std::vector<std::pair<MinorKind, std::size_t>> found;
    for (std::size_t i : catalogs.FindAsteroids(name)) found.emplace_back(MinorKind::Asteroid, i);
    for (std::size_t i : catalogs.FindComets(name)) found.emplace_back(MinorKind::Comet, i);
    if (found.empty()) {
        if (catalogs.Asteroids().empty() && catalogs.Comets().empty())
            return Fail(ctx, "no comet or asteroid catalogue is installed (\"asteroid.cat\", \"comet.cat\": "
                             "tools/build-data.sh builds them, \"orvane-cli minor import\" adds to them)");
        return Fail(ctx, "\"" + name + "\" is in neither the asteroid nor the comet catalogue");
    }
    if (found.size() > 1) {
        std::string list;
        for (const auto& [kind, i] : found)
            list += "\n  " + (kind == MinorKind::Asteroid ? AsteroidDesignation(catalogs.Asteroids()[i])
                                                          : catalogs.Comets()[i].name);
        return Fail(ctx, "\"" + name + "\" names " + std::to_string(found.size()) + " objects:" + list);
    }
    const auto [kind, index] = found.front();
    MinorObjectState s;
    if (!ComputeMinorObject(catalogs, kind, index, doc, centre, s))
        return Fail(ctx, "no position: the planetary series \"Data\\VSOP87.idx\" and \"Data\\VSOP87.dat\" are not "
                         "installed, or the elements make no orbit");
    const bool asteroid = kind == MinorKind::Asteroid;
    const std::string epoch = asteroid ? EpochText(catalogs.Asteroids()[index]) : EpochText(catalogs.Comets()[index]);
    const double epochJd = asteroid ? catalogs.Asteroids()[index].epochJdTT : catalogs.Comets()[index].perihelionJdTT;
    const bool stale = std::fabs(s.elementAgeDays) > kElementAgeWarningDays;
    char warning[160] = "";
    if (stale)
        std::snprintf(warning, sizeof warning, "the elements are %.1f years from this date; the position may be degraded",
                      std::fabs(s.elementAgeDays) / 365.25);

    if (ctx.json) {
        QJsonObject o;
        o["designation"] = Q(s.designation);
        o["kind"] = asteroid ? "asteroid" : "comet";
        o["centre"] = centre == PlaceCentre::Topocentric ? "topocentric" : "geocentric";
        o["jdUT"] = doc.JulianDate();
        o["jdTT"] = doc.JulianDateTDT();
        o["raDeg"] = s.place.raRad * kDegPerRad;
        o["decDeg"] = s.place.decRad * kDegPerRad;
        o["ra"] = Q(FormatHms(s.place.raRad, 2));
        o["dec"] = Q(FormatDms(s.place.decRad, 1, true));
        o["raJ2000Deg"] = s.raJ2000Rad * kDegPerRad;
        o["decJ2000Deg"] = s.decJ2000Rad * kDegPerRad;
        o["earthDistanceAU"] = s.place.earthDistanceAU;
        o["sunDistanceAU"] = s.place.sunDistanceAU;
        o["lightTimeSeconds"] = s.place.lightTimeSeconds;
        o["magnitude"] = s.place.magnitudeCenti * 0.01;
        o["elongationDeg"] = s.place.elongationRad * kDegPerRad;
        o["phaseAngleDeg"] = s.place.phaseAngleRad * kDegPerRad;
        if (!s.constellation.empty()) o["constellation"] = Q(s.constellation);
        o[asteroid ? "epochJdTT" : "perihelionJdTT"] = epochJd;
        o["epoch"] = Q(epoch);
        o["elementAgeDays"] = s.elementAgeDays;
        if (stale) o["warning"] = warning;
        PrintJson(ctx.out, o);
        return 0;
    }
    char line[200];
    ctx.out << s.designation << (centre == PlaceCentre::Topocentric ? ", topocentric" : ", geocentric")
            << " apparent place of date\n";
    std::snprintf(line, sizeof line, "JD UT %.6f   JD TT %.6f", doc.JulianDate(), doc.JulianDateTDT());
    ctx.out << line << '\n';
    ctx.out << "RA          " << FormatHms(s.place.raRad, 2) << '\n';
    ctx.out << "Dec         " << FormatDms(s.place.decRad, 1, true) << '\n';
    std::snprintf(line, sizeof line, "Distance    %.6f AU (light time %.1f min)\nFrom Sun    %.6f AU",
                  s.place.earthDistanceAU, s.place.lightTimeSeconds / 60.0, s.place.sunDistanceAU);
    ctx.out << line << '\n';
    std::snprintf(line, sizeof line, "Magnitude   %.1f\nElongation  %.1f deg\nPhase angle %.1f deg",
                  s.place.magnitudeCenti * 0.01, s.place.elongationRad * kDegPerRad, s.place.phaseAngleRad * kDegPerRad);
    ctx.out << line << '\n';
    if (!s.constellation.empty()) ctx.out << "Constellation " << s.constellation << '\n';
    ctx.out << epoch << '\n';
    if (stale) ctx.out << "Warning: " << warning << '\n';
    return 0;
}

// One comet or asteroid by name; fails with the user's message otherwise.
struct Found {
    MinorKind kind = MinorKind::Asteroid;
    std::size_t index = 0;
};
std::optional<Found> FindOne(Context& ctx, const CMinorCatalogs& catalogs, const std::string& name, int& rc)
{
    std::vector<Found> found;
    for (std::size_t i : catalogs.FindAsteroids(name)) found.push_back({MinorKind::Asteroid, i});
    for (std::size_t i : catalogs.FindComets(name)) found.push_back({MinorKind::Comet, i});
    if (found.size() == 1) return found.front();
    if (found.empty()) {
        if (catalogs.Asteroids().empty() && catalogs.Comets().empty())
            rc = Fail(ctx, "no comet or asteroid catalogue is installed (\"asteroid.cat\", \"comet.cat\": "
                           "tools/build-data.sh builds them, \"orvane-cli minor import\" adds to them)");
        else
            rc = Fail(ctx, "\"" + name + "\" is in neither the asteroid nor the comet catalogue");
        return std::nullopt;
    }
    std::string list;
    for (const Found& f : found)
        list += "\n  " + (f.kind == MinorKind::Asteroid ? AsteroidDesignation(catalogs.Asteroids()[f.index])
                                                       : catalogs.Comets()[f.index].name);
    rc = Fail(ctx, "\"" + name + "\" names " + std::to_string(found.size()) + " objects:" + list);
    return std::nullopt;
}

int RunMinorChart(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames, &kMapOptionNames},
                                   {"out", "width", "height", "days", "step", "label-every", "asteroids", "comets"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    const std::string out = ctx.args.Get("out").value_or("");
    if (out.empty()) return UsageError(ctx, "minor chart needs --out FILE (the format follows the extension)");
    if (ExportFormatForFile(out) == nullptr) return UsageError(ctx, "no picture format has the extension of \"" + out + "\"");
    if (ctx.args.Positional().empty()) return UsageError(ctx, "give a comet or an asteroid: \"C/2020 F3\", \"Ceres\"");
    std::string name;
    for (const std::string& w : ctx.args.Positional()) name += (name.empty() ? "" : " ") + w;
    std::string error;
    double days = 30.0, step = 1.0, labelEvery = 5.0;
    for (auto [key, value, low, high] : {std::tuple{"days", &days, 0.0, 36525.0}, std::tuple{"step", &step, 0.001, 3650.0},
                                         std::tuple{"label-every", &labelEvery, 0.0, 1000.0}}) {
        if (auto v = ctx.args.GetNumber(key, error)) {
            if (!(*v >= low && *v <= high))
                return UsageError(ctx, std::string("--") + key + " takes " + std::to_string(low) + " to " + std::to_string(high));
            *value = *v;
        } else if (!error.empty()) {
            return UsageError(ctx, error);
        }
    }
    ExportRequest request;
    request.path = out;
    for (auto [key, value] : {std::pair{"width", &request.widthPx}, std::pair{"height", &request.heightPx}}) {
        if (auto v = ctx.args.GetNumber(key, error)) {
            if (!(*v >= 16 && *v <= 20000)) return UsageError(ctx, std::string("--") + key + " takes 16 to 20000 pixels");
            *value = static_cast<int>(*v);
        } else if (!error.empty()) {
            return UsageError(ctx, error);
        }
    }

    auto handle = std::make_shared<CMinorCatalogHandle>();
    handle->Unloaded().SetPaths(ctx.args.Get("asteroids").value_or(ctx.settings.GetString("Paths", "AsteroidCat", "")),
                                ctx.args.Get("comets").value_or(ctx.settings.GetString("Paths", "CometCat", "")));
    CMinorCatalogs& catalogs = handle->Get();
    int rc = 0;
    const std::optional<Found> f = FindOne(ctx, catalogs, name, rc);
    if (!f) return rc;

    CLevelTable levels;
    levels.Load(ctx.settings);
    CMapDoc doc(ctx.settings);
    doc.title = "Sky chart";
    CMapView view(doc, ctx.settings, levels);
    const bool fieldGiven = ctx.args.Has("field") || ctx.args.Has("level");
    if (!ApplyMapOptions(ctx, view, MapSource::NewMap, error)) return UsageError(ctx, error);
    if (!fieldGiven) view.SetField(30.0);
    MinorObjectState s;
    if (!ComputeMinorObject(catalogs, f->kind, f->index, doc.observer, PlaceCentre::Topocentric, s))
        return Fail(ctx, "no position: the planetary series \"Data\\VSOP87.idx\" and \"Data\\VSOP87.dat\" are not installed");
    if (!ctx.args.Has("ra") && !ctx.args.Has("alt")) {
        view.coordinates.SetCentringMode(Centring::RaDec);
        view.coordinates.SetCentreRaDec(doc.observer, s.raJ2000Rad, s.decJ2000Rad);
    }
    // Both kinds shown at every level, with labels, whatever the stored
    // display settings say, down to half a magnitude fainter than the body
    // itself: the body and whatever comparable bodies share its field, not
    // every faint numbered asteroid of the catalogue with its label.
    const int targetCenti = s.place.magnitudeCenti;
    for (CBodyDisplay* d : {&view.comets, &view.asteroids}) {
        d->visible = 1;
        d->levels = {0, 9};
        d->labelLevels = {0, 9};
        d->magLimit = targetCenti < 9999 ? targetCenti + 50 : 3000;
    }
    // A finder chart shows the body wherever it is: a comet under the
    // horizon at the chart's instant (in daylight, say) would otherwise lie
    // hidden under the filled ground. The horizon line still shows where
    // the ground is.
    view.altAzGrid.solidHorizonLevels = LevelRange{};
    view.SetLevel(view.Level(), CMapView::TakeField::No);
    const double jdTT = doc.observer.JulianDateTDT();
    MinorPathRequest path;
    path.kind = f->kind;
    path.index = f->index;
    path.startJdTT = jdTT - 0.5 * days;
    path.endJdTT = jdTT + 0.5 * days;
    path.stepDays = step;
    path.labelEvery = static_cast<int>(labelEvery);
    catalogs.SetOrbitPaths({path});

    CChartComponents components;
    RegisterMapLayers(components.layers);
    auto stars = std::make_shared<CStarCatalogueHandle>();
    RegisterStarCatalogue(components, stars);
    RegisterConstellations(components, stars);
    RegisterDeepSkyCatalogues(components, std::make_shared<CDeepSkyCatalogueHandle>());
    RegisterPlanets(components);
    RegisterMinorBodies(components, handle);
    CChartRenderer renderer(components);
    const ExportResult result = ExportChart(renderer, view, RenderOptions{}, request);
    if (!result.Ok()) return Fail(ctx, result.Message());
    if (ctx.json) {
        PrintJson(ctx.out, QJsonObject{{"file", Q(out)},
                                       {"designation", Q(s.designation)},
                                       {"raJ2000Deg", s.raJ2000Rad * kDegPerRad},
                                       {"decJ2000Deg", s.decJ2000Rad * kDegPerRad},
                                       {"pathDays", days},
                                       {"stepDays", step}});
        return 0;
    }
    ctx.out << out << ": " << s.designation << " with its path over " << days << " days\n";
    return 0;
}

}  // namespace

ORV_CLI_COMMAND("minor", "apparent place, distances and magnitude of a comet or an asteroid of the catalogues",
                "orvane-cli minor NAME [--jd JD | --date YYYY-MM-DD --time HH:MM[:SS] [--utc]]\n"
                "                 [--lat DEG --lon DEG --height M --zone H --dst 0|1] [--topocentric]\n"
                "                 [--asteroids CATALOG] [--comets CATALOG] [--json]\n\n"
                "  NAME            \"Ceres\", \"(1) Ceres\", \"1\", \"2004 MN4\", \"C/2020 F3\", \"12P\", \"Halley\"\n"
                "  --topocentric   the place seen from the site rather than from the Earth's centre\n"
                "  --asteroids, --comets  the catalogues to search (default: \"asteroid.cat\", \"comet.cat\")\n"
                "JSON keys: designation, kind, raDeg, decDeg (true equator and equinox of date), raJ2000Deg,\n"
                "decJ2000Deg, earthDistanceAU, sunDistanceAU, lightTimeSeconds, magnitude, elongationDeg,\n"
                "phaseAngleDeg, constellation, epochJdTT (comets: perihelionJdTT), elementAgeDays, warning\n"
                "(when the elements are more than a year from the date).\n",
                RunMinor);

ORV_CLI_COMMAND("minor chart", "draw a chart centred on a comet or an asteroid with its tail and orbit path",
                "orvane-cli minor chart NAME --out FILE.png|.pdf|.svg [--days N] [--step D] [--label-every K]\n"
                "                       [--field DEG | --level N] [--ra HOURS --dec DEG] [--width PX --height PX]\n"
                "                       [site, time] [--asteroids CATALOG] [--comets CATALOG] [--json]\n\n"
                "  --days N        the path's span, centred on the chart's instant (default 30)\n"
                "  --step D        days between the path's ticks (default 1)\n"
                "  --label-every K a date at every K-th tick (default 5; 0 for none)\n"
                "The chart is centred on the body (30° field unless --field or --level is given). The ground is\n"
                "not filled, so that a body under the horizon still shows; other comets and asteroids are drawn\n"
                "and labelled down to half a magnitude fainter than the body.\n",
                RunMinorChart);

ORV_CLI_COMMAND("minor import", "add the elements of an MPC file (MPCORB, CometEls.txt) or a catalogue to the catalogues",
                "orvane-cli minor import [FILE] [--catalog PATH] [--json]\n\n"
                "  FILE            MPCORB.DAT (or an extract), CometEls.txt, or an asteroid or comet catalogue;\n"
                "                  the format is recognised from its lines (default: \"data\\mpcorb.dat\" in the\n"
                "                  data folder)\n"
                "  --catalog PATH  the catalogue to update (default: \"asteroid.cat\" or \"comet.cat\" in the data folder)\n"
                "Entries with the same number (numbered asteroids) or name replace the old ones; the catalogue is\n"
                "written atomically. Every refused line is named with its line number and the reason.\n"
                "JSON keys: format, catalog, accepted, replaced, added, refusedCount, refused [{line, reason}], entries.\n",
                RunMinorImport);

}  // namespace orv::cli
