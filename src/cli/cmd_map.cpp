// orvane-cli map new | map info

#include <cmath>
#include <iostream>

#include "app/strings.h"
#include "cli/cli.h"
#include "cli/mapoptions.h"
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
        PrintJson(ctx.out, CamelCaseKeys(blocks));
    else
        PrintBlocks(ctx.out, blocks);
}

int MapNew(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames, &kMapOptionNames}, {"out", "title", "default"});
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
    if (!ApplyMapOptions(ctx, view, MapSource::NewMap, error)) return UsageError(ctx, error);

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
    ORV_CLI_MAP_OPTIONS_USAGE
    "  --default             save as the default map file (settings \"Paths\", \"MainFile\")\n"
    "  (the instant is the present moment unless given)";

constexpr const char* kInfoUsage =
    "orvane-cli map info FILE.ovm\n"
    "  Every setting of a map file, block by block, in the order of the file.";

}  // namespace

ORV_CLI_COMMAND("map new", "create a map file from the stored defaults", kNewUsage, MapNew);
ORV_CLI_COMMAND("map info", "show every setting of a map file", kInfoUsage, MapInfo);

}  // namespace orv::cli
