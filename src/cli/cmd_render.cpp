// orvane-cli render: a chart drawn headless to a picture or vector file.

#include <QJsonArray>

#include <cmath>
#include <iostream>

#include "app/qtsettingsstore.h"
#include "catalog/stars/starsource.h"
#include "cli/chartassembly.h"
#include "cli/cli.h"
#include "cli/mapoptions.h"
#include "cli/options.h"
#include "map/chartexport.h"
#include "map/horizonprofile.h"
#include "map/mapfile.h"
#include "map/mapview.h"
#include "util/angles.h"
#include "util/datapath.h"

namespace orv::cli {

namespace {

bool ParseScheme(const std::string& text, ColourScheme& scheme)
{
    if (text == "normal") scheme = ColourScheme::Normal;
    else if (text == "red" || text == "night") scheme = ColourScheme::RedNightVision;
    else if (text == "black-on-white" || text == "print") scheme = ColourScheme::BlackOnWhite;
    else return false;
    return true;
}

const char* SchemeName(ColourScheme scheme)
{
    switch (scheme) {
    case ColourScheme::Normal: return "normal";
    case ColourScheme::RedNightVision: return "red";
    case ColourScheme::BlackOnWhite: return "black-on-white";
    }
    return "normal";
}

int ListFormats(Context& ctx)
{
    if (ctx.json) {
        QJsonArray list;
        for (const ExportFormat& f : ExportFormats()) {
            QJsonObject o;
            o["name"] = QString::fromStdString(f.name);
            o["description"] = QString::fromStdString(f.description);
            QJsonArray ext;
            for (const auto& e : f.extensions) ext.append(QString::fromStdString(e));
            o["extensions"] = ext;
            list.append(o);
        }
        QJsonObject out;
        out["formats"] = list;
        out["filter"] = QString::fromStdString(ExportFileFilter());
        PrintJson(ctx.out, out);
    } else {
        for (const ExportFormat& f : ExportFormats()) {
            ctx.out << f.name << std::string(f.name.size() < 8 ? 8 - f.name.size() : 1, ' ');
            for (std::size_t i = 0; i < f.extensions.size(); ++i) ctx.out << (i ? " ." : ".") << f.extensions[i];
            ctx.out << "  " << f.description << '\n';
        }
    }
    return 0;
}

// A whole number of pixels within what the option allows.
bool SizeOption(Context& ctx, const char* name, int& value, std::string& error)
{
    const auto v = ctx.args.GetNumber(name, error);
    if (!error.empty()) return false;
    if (!v) return true;
    if (!(*v >= 1.0 && *v <= 1.0e6) || *v != std::floor(*v)) {
        error = std::string("--") + name + " takes a whole number of pixels from 1 to 1000000";
        return false;
    }
    value = static_cast<int>(*v);
    return true;
}

int Render(Context& ctx)
{
    if (ctx.args.Has("list-formats")) return ListFormats(ctx);
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames, &kMapOptionNames},
                                   {"out", "width", "height", "dpi", "scheme", "mono", "quality", "list-formats",
                                    "rotate", "flip", "overlay", "no-overlays", "horizon"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    const std::string out = ctx.args.Get("out").value_or("");
    if (out.empty()) return UsageError(ctx, "render needs --out FILE (the format follows the extension)");
    if (ctx.args.Positional().size() > 1) return UsageError(ctx, "render takes at most one map file");

    ExportRequest request;
    request.path = out;
    std::string error;
    if (!SizeOption(ctx, "width", request.widthPx, error) || !SizeOption(ctx, "height", request.heightPx, error))
        return UsageError(ctx, error);
    if (auto dpi = ctx.args.GetNumber("dpi", error)) {
        if (!(*dpi >= 10.0 && *dpi <= 4800.0)) return UsageError(ctx, "--dpi takes 10 to 4800");
        request.dpi = *dpi;
    } else if (!error.empty()) {
        return UsageError(ctx, error);
    }
    if (auto q = ctx.args.GetNumber("quality", error)) {
        if (!(*q >= 1.0 && *q <= 100.0)) return UsageError(ctx, "--quality takes 1 to 100");
        request.jpegQuality = static_cast<int>(*q);
    } else if (!error.empty()) {
        return UsageError(ctx, error);
    }
    RenderOptions options;
    if (auto s = ctx.args.Get("scheme"); s && !ParseScheme(*s, options.scheme))
        return UsageError(ctx, "--scheme takes normal, red or black-on-white, not \"" + *s + "\"");
    options.monochrome = ctx.args.Has("mono");
    if (ExportFormatForFile(out) == nullptr)
        return UsageError(ctx, "no picture format has the extension of \"" + out +
                                   "\" (orvane-cli render --list-formats shows them)");

    CLevelTable levels;
    levels.Load(ctx.settings);
    CMapDoc doc(ctx.settings);
    CMapView view(doc, ctx.settings, levels);
    MapSource source = MapSource::NewMap;
    if (!ctx.args.Positional().empty()) {
        const MapFileResult r = LoadMapFile(ctx.args.Positional().front(), view);
        if (!r.Ok()) return Fail(ctx, r.Message());
        source = MapSource::MapFile;
    } else {
        doc.title = "Sky chart";
    }
    if (!ApplyMapOptions(ctx, view, source, error)) return UsageError(ctx, error);
    if (auto rot = ctx.args.GetNumber("rotate", error)) {
        if (!std::isfinite(*rot) || std::fabs(*rot) > 3600.0) return UsageError(ctx, "--rotate takes degrees");
        view.coordinates.SetRotation(mod2pi(*rot * kRadPerDeg));
    } else if (!error.empty()) {
        return UsageError(ctx, error);
    }
    if (auto flip = ctx.args.Get("flip")) {
        const bool h = flip->find('h') != std::string::npos, v = flip->find('v') != std::string::npos;
        if (flip->find_first_not_of("hv") != std::string::npos || flip->empty())
            return UsageError(ctx, "--flip takes h, v or hv");
        view.coordinates.SetFlips(h ? -1 : 1, v ? -1 : 1);
    }

    if (auto hzn = ctx.args.Get("horizon")) {
        const HorizonFileResult h = ReadHorizonFile(*hzn, doc.horizon.altitudeDeg);
        if (!h.ok) return Fail(ctx, h.message);
        if (!h.message.empty()) ctx.err << "orvane-cli: warning: " << h.message << '\n';
        doc.horizon.fileName = *hzn;
    }
    // The user's overlay list, as the program draws it: its active entries
    // (and those whose range of levels holds the chart's level).
    if (!ctx.args.Has("no-overlays")) LoadStartupOverlayList(OverlayStore(), UserOverlayListPath(ctx.settings));
    if (auto overlay = ctx.args.Get("overlay")) {
        const COverlay o = ParseOverlayFile(*overlay);
        if (!o.opened) return Fail(ctx, "Unable to open file\n\"" + *overlay + "\"");
        // A bad line is reported and skipped; the rest of the overlay is drawn.
        for (const OverlayDiagnostic& d : o.diagnostics)
            if (d.severity == OverlayDiagnostic::Severity::Error)
                ctx.err << *overlay << ':' << d.line << ": error: " << d.message << '\n';
        OverlayStore().extraFiles.push_back(*overlay);
    }

    const CChartComponents& components = ChartComponents();
    CChartRenderer renderer(components);
    const ExportResult result = ExportChart(renderer, view, options, request);
    if (!result.Ok()) return Fail(ctx, result.Message());
    const RenderStats& stats = renderer.LastStats();

    if (ctx.json) {
        QJsonObject o;
        o["path"] = QString::fromStdString(result.path);
        o["format"] = QString::fromStdString(result.format);
        o["widthPx"] = result.widthPx;
        o["heightPx"] = result.heightPx;
        o["dpi"] = request.dpi;
        o["scheme"] = SchemeName(options.scheme);
        o["monochrome"] = options.monochrome;
        o["level"] = view.Level() + 1;
        o["fieldDeg"] = view.coordinates.FieldDeg();
        o["centreRaJ2000Deg"] = view.coordinates.CentreRaJ2000Rad() / kRadPerDeg;
        o["centreDecJ2000Deg"] = view.coordinates.CentreDecJ2000Rad() / kRadPerDeg;
        o["jdUT"] = doc.observer.JulianDate();
        o["starCatalogue"] = ChartComponents().objects.SourceOf<CStarObjectSource>() != nullptr &&
                             ChartComponents().objects.SourceOf<CStarObjectSource>()->Available();
        o["starsDrawn"] = stats.starsDrawn;
        o["labelsDrawn"] = stats.labelsDrawn;
        PrintJson(ctx.out, o);
    } else {
        ctx.out << "wrote " << result.path << " (" << result.format << ", " << result.widthPx << " x "
                << result.heightPx << " pixels, level " << view.Level() + 1 << ", " << stats.starsDrawn
                << " stars)\n";
        const auto* stars = ChartComponents().objects.SourceOf<CStarObjectSource>();
        if (stars == nullptr || !stars->Available())
            ctx.out << "note: no star catalogue in the data folder " << GetDataPath() << "; the chart has no stars\n";
    }
    return 0;
}

constexpr const char* kRenderUsage =
    "orvane-cli render [MAP.ovm] --out FILE [options]\n"
    "  Draws a map file, or a map described by the options, to a picture (any format of --list-formats),\n"
    "  a PDF or an SVG file. Without a map file the map starts from the stored defaults at the present moment.\n"
    "  --out FILE            the file to write; its extension chooses the format (.png, .jpg, .tif, .pdf, .svg ...)\n"
    "  --width PX --height PX  picture size (default 1920 x 1080); PDF and SVG pages take it at --dpi\n"
    "  --dpi D               resolution the chart is drawn for (default 96): star discs and text are sized in inches\n"
    "  --scheme normal|red|black-on-white   colour scheme (default normal)\n"
    "  --mono                monochrome\n"
    "  --quality Q           JPEG quality 1-100 (default 90)\n"
    "  --rotate DEG          rotate the chart; --flip h|v|hv mirrors it\n"
    "  --overlay FILE        draw a map overlay file (docs/overlay-files.md) over the sky, besides the\n"
    "                        active overlays of the user's list \"overlay.dat\"\n"
    "  --no-overlays         leave out the overlays of the user's list (--overlay files are still drawn)\n"
    "  --horizon FILE.hzn    the horizon profile drawn on alt-azimuth charts (instead of the map's)\n"
    ORV_CLI_MAP_OPTIONS_USAGE
    "  --list-formats        list the formats that can be written";

}  // namespace

ORV_CLI_COMMAND("render", "draw a chart to a picture, PDF or SVG file", kRenderUsage, Render);

}  // namespace orv::cli
