// orvane-cli map new | map info

#include <cmath>
#include <iostream>

#include "app/strings.h"
#include "cli/cli.h"
#include "cli/mapsummary.h"
#include "cli/options.h"
#include "map/mapfile.h"
#include "map/mapview.h"
#include "util/angles.h"
#include "util/settingsstore.h"

namespace orv::cli {

namespace {

int CheckUnknown(Context& ctx, const std::vector<std::string>& known)
{
    const auto unknown = ctx.args.Unknown(known);
    if (!unknown.empty()) return UsageError(ctx, "unknown option --" + unknown.front());
    return 0;
}

// Prints the map block by block; `read` is the result of reading it from a file.
void Report(Context& ctx, const CMapView& view, const MapFileResult* read)
{
    QJsonObject blocks = DescribeMap(view);
    if (read != nullptr) {
        QJsonObject m = blocks["Map"].toObject();
        m["FileVersion"] = read->version;
        if (read->truncated) m["Warning"] = "the file ends early; settings after the end keep their defaults";
        blocks["Map"] = m;
    }
    if (ctx.json)
        PrintJson(ctx.out, blocks);
    else
        PrintBlocks(ctx.out, blocks);
}

int MapNew(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames},
                                   {"out", "title", "ra", "dec", "alt", "az", "field", "level", "default"});
    if (int rc = CheckUnknown(ctx, known)) return rc;
    std::string path = ctx.args.Get("out").value_or("");
    if (path.empty() && !ctx.args.Positional().empty()) path = ctx.args.Positional().front();
    if (path.empty() && !ctx.args.Has("default"))
        return UsageError(ctx, "map new needs --out FILE.ovm (or --default for the default map file)");

    CLevelTable levels;
    levels.Load(ctx.settings);
    CMapDoc doc(ctx.settings);
    CMapView view(doc, ctx.settings, levels);
    doc.title = ctx.args.Get("title").value_or(path.empty() ? "Default" : MapTitleFromPath(path));

    std::string error;
    if (!ApplySiteOptions(ctx, doc.observer, error) || !ApplyTimeOptions(ctx, doc.observer, error))
        return UsageError(ctx, error);

    // Field or level first: entering a level sets how the centre is held.
    if (auto level = ctx.args.GetNumber("level", error)) {
        if (*level < 1 || *level > 10) return UsageError(ctx, "--level takes 1 to 10");
        view.SetLevel(static_cast<int>(*level) - 1, CMapView::TakeField::Yes);
    } else if (!error.empty()) {
        return UsageError(ctx, error);
    }
    if (auto field = ctx.args.GetNumber("field", error)) {
        if (!(*field > 0.0 && *field < 180.0)) return UsageError(ctx, "--field takes degrees between 0 and 180");
        view.SetField(*field);
    } else if (!error.empty()) {
        return UsageError(ctx, error);
    }

    const auto ra = ctx.args.Get("ra"), dec = ctx.args.Get("dec");
    const auto alt = ctx.args.Get("alt"), az = ctx.args.Get("az");
    if ((ra || dec) && (alt || az)) return UsageError(ctx, "give the centre either as --ra/--dec or as --alt/--az");
    if (ra || dec) {
        double raRad = 0.0, decRad = 0.0;
        if (!ra || !dec) return UsageError(ctx, "--ra and --dec go together");
        if (!ParseAngle(*ra, AngleUnit::Hours, raRad)) return UsageError(ctx, "--ra is not an angle: " + *ra);
        if (!ParseAngle(*dec, AngleUnit::Degrees, decRad) || std::fabs(decRad) > kHalfPi)
            return UsageError(ctx, "--dec is not a declination: " + *dec);
        view.coordinates.SetCentringMode(Centring::RaDec);
        view.coordinates.SetCentreRaDec(doc.observer, raRad, decRad);
    } else if (alt || az) {
        double altRad = 0.0, azRad = 0.0;
        if (!alt || !az) return UsageError(ctx, "--alt and --az go together");
        if (!ParseAngle(*alt, AngleUnit::Degrees, altRad) || std::fabs(altRad) > kHalfPi)
            return UsageError(ctx, "--alt is not an altitude: " + *alt);
        if (!ParseAngle(*az, AngleUnit::Degrees, azRad)) return UsageError(ctx, "--az is not an azimuth: " + *az);
        view.coordinates.SetCentringMode(Centring::AltAz);
        view.coordinates.SetCentreAltAz(doc.observer, altRad, azRad);
    } else {
        view.coordinates.Update(doc.observer);
    }

    if (ctx.args.Has("default")) {
        const std::string mainFile = ctx.settings.GetString("Paths", "MainFile", "");
        if (path.empty()) path = mainFile;
        if (path.empty()) return Fail(ctx, "no default map file is set (settings \"Paths\", \"MainFile\")");
    }
    const MapFileResult saved =
        SaveMapFile(view, path, ctx.args.Has("default") ? SaveTarget::DefaultMapFile : SaveTarget::DocumentPath);
    if (!saved.Ok()) return Fail(ctx, saved.Message() + (saved.systemReason.empty() ? "" : " (" + saved.systemReason + ")"));
    doc.title = ctx.args.Get("title").value_or(doc.title);
    Report(ctx, view, nullptr);
    return 0;
}

int MapInfo(Context& ctx)
{
    if (int rc = CheckUnknown(ctx, OptionNames({}))) return rc;
    if (ctx.args.Positional().empty()) return UsageError(ctx, "map info needs a map file");
    const std::string path = ctx.args.Positional().front();
    CLevelTable levels;
    levels.Load(ctx.settings);
    CMapDoc doc(ctx.settings);
    CMapView view(doc, ctx.settings, levels);
    const MapFileResult r = LoadMapFile(path, view);
    if (!r.Ok()) return Fail(ctx, r.Message());
    Report(ctx, view, &r);
    return 0;
}

constexpr const char* kNewUsage =
    "orvane-cli map new --out FILE.ovm [options]\n"
    "  A map from the stored defaults, saved as FILE.ovm, then described block by block.\n"
    "  --title TEXT          map title (default: the file's base name)\n"
    "  --ra ANGLE --dec ANGLE  centre, J2000 (\"5h35m17s\", \"83.82d\", \"-5:23:28\"); holds the centre in RA/Dec\n"
    "  --alt DEG --az DEG    centre in altitude and azimuth (azimuth from north through east)\n"
    "  --field DEG           degrees from the centre to the top edge (the level follows)\n"
    "  --level N             level 1-10 with its field\n"
    "  --lat DEG --lon DEG --height M --site NAME --zone H --dst 0|1   observing site\n"
    "  --date YYYY-MM-DD --time HH:MM[:SS] [--utc] | --jd JD            instant (default now)\n"
    "  --default             save as the default map file (settings \"Paths\", \"MainFile\")";

constexpr const char* kInfoUsage =
    "orvane-cli map info FILE.ovm\n"
    "  Every setting of a map file, block by block, in the order of the file.";

}  // namespace

ORV_CLI_COMMAND("map new", "create a map file from the stored defaults", kNewUsage, MapNew);
ORV_CLI_COMMAND("map info", "show every setting of a map file", kInfoUsage, MapInfo);

}  // namespace orv::cli
