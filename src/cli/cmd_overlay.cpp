// orvane-cli overlay check: parses a map overlay file and reports its
// errors, or what it holds. orvane-cli horizon import / show: horizon
// profiles from text lists, and what a ".hzn" file holds.

#include <QJsonArray>

#include <algorithm>
#include <sstream>

#include "cli/cli.h"
#include "cli/options.h"
#include "map/horizonprofile.h"
#include "overlay/overlayfile.h"
#include "util/angles.h"

namespace orv::cli {

namespace {

const char* SeverityName(OverlayDiagnostic::Severity s)
{
    return s == OverlayDiagnostic::Severity::Error ? "error" : "warning";
}

int OverlayCheck(Context& ctx)
{
    if (const auto unknown = ctx.args.Unknown(OptionNames({}, {})); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    if (ctx.args.Positional().size() != 1) return UsageError(ctx, "overlay check takes one overlay file");
    const std::string path = ctx.args.Positional().front();
    const COverlay o = ParseOverlayFile(path);
    if (!o.opened) return Fail(ctx, "Unable to open file\n\"" + path + "\"");
    const std::size_t errors = o.ErrorCount();
    std::size_t moves = 0, draws = 0;
    for (const OverlayCommand& c : o.commands) {
        if (c.op == OverlayOp::Move) ++moves;
        if (c.op == OverlayOp::Draw) ++draws;
    }
    if (ctx.json) {
        QJsonArray diagnostics;
        for (const OverlayDiagnostic& d : o.diagnostics)
            diagnostics.append(QJsonObject{{"line", d.line},
                                           {"severity", SeverityName(d.severity)},
                                           {"message", QString::fromStdString(d.message)}});
        QJsonObject out{{"path", QString::fromStdString(path)},
                        {"errors", static_cast<int>(errors)},
                        {"diagnostics", diagnostics},
                        {"points", static_cast<qint64>(o.PointCount())},
                        {"moves", static_cast<qint64>(moves)},
                        {"draws", static_cast<qint64>(draws)},
                        {"texts", static_cast<qint64>(o.TextCount())},
                        {"fonts", static_cast<int>(o.fonts.size())},
                        {"lines", static_cast<int>(o.lines.size())},
                        {"colours", static_cast<int>(o.colours.size())}};
        if (!o.bounds.empty)
            out["boundingBox"] = QJsonObject{{"raMinHours", o.bounds.raMinRad * kDegPerRad / 15.0},
                                             {"raMaxHours", o.bounds.raMaxRad * kDegPerRad / 15.0},
                                             {"decMinDeg", o.bounds.decMinRad * kDegPerRad},
                                             {"decMaxDeg", o.bounds.decMaxRad * kDegPerRad}};
        PrintJson(ctx.out, out);
        return errors ? 1 : 0;
    }
    for (const OverlayDiagnostic& d : o.diagnostics)
        (d.severity == OverlayDiagnostic::Severity::Error ? ctx.err : ctx.out)
            << path << ':' << d.line << ": " << SeverityName(d.severity) << ": " << d.message << '\n';
    if (errors) {
        ctx.err << path << ": " << errors << (errors == 1 ? " line was" : " lines were")
                << " skipped; the rest of the overlay is drawn\n";
        return 1;
    }
    ctx.out << path << ": " << o.PointCount() << " points (" << moves << " moves, " << draws << " draw steps), "
            << o.TextCount() << " texts, " << o.fonts.size() << " fonts, " << o.lines.size() << " lines, "
            << o.colours.size() << " colours\n";
    if (o.bounds.empty) {
        ctx.out << "bounding box: empty\n";
    } else {
        ctx.out << "bounding box: RA " << FormatHms(o.bounds.raMinRad, 0) << " to " << FormatHms(o.bounds.raMaxRad, 0)
                << ", Dec " << FormatDms(o.bounds.decMinRad, 0, true) << " to "
                << FormatDms(o.bounds.decMaxRad, 0, true) << '\n';
    }
    return 0;
}

constexpr const char* kOverlayCheckUsage =
    "orvane-cli overlay check FILE [--json]\n"
    "  Parses a map overlay file (docs/overlay-files.md) and prints each line it skipped or\n"
    "  drew with a default, as FILE:LINE: error|warning: what was expected. Without errors it\n"
    "  prints the counts of points, texts, fonts, lines and colours and the bounding box of the\n"
    "  coordinates (in the file's own equinox). Exit code 1 when a line had to be skipped.";

int HorizonImport(Context& ctx)
{
    if (const auto unknown = ctx.args.Unknown(OptionNames({}, {"out"})); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    const auto out = ctx.args.Get("out");
    if (ctx.args.Positional().size() != 1 || !out) return UsageError(ctx, "horizon import takes TEXT --out FILE.hzn");
    HorizonProfile profile{};
    const HorizonFileResult r = ImportHorizonText(ctx.args.Positional().front(), profile);
    if (!r.ok) return Fail(ctx, r.message);
    const HorizonFileResult w = WriteHorizonFile(*out, profile);
    if (!w.ok) return Fail(ctx, w.message);
    const auto [lo, hi] = std::minmax_element(profile.begin(), profile.end());
    if (ctx.json) {
        PrintJson(ctx.out, QJsonObject{{"path", QString::fromStdString(*out)},
                                       {"minAltitudeDeg", *lo},
                                       {"maxAltitudeDeg", *hi}});
    } else {
        ctx.out << "wrote " << *out << " (altitudes " << int(*lo) << "° to " << int(*hi) << "°)\n";
    }
    return 0;
}

constexpr const char* kHorizonImportUsage =
    "orvane-cli horizon import TEXT --out FILE.hzn\n"
    "  Makes a horizon file from a text list: lines of \"azimuth altitude\" in degrees at any\n"
    "  spacing, or lines of one altitude each spread evenly round the sky from north through east\n"
    "  (\"#\" starts a comment). The points are joined in azimuth (across north too) and sampled at\n"
    "  every whole degree. Errors name the file and the line.";

int HorizonShow(Context& ctx)
{
    if (const auto unknown = ctx.args.Unknown(OptionNames({}, {})); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    if (ctx.args.Positional().size() != 1) return UsageError(ctx, "horizon show takes one .hzn file");
    HorizonProfile profile{};
    const HorizonFileResult r = ReadHorizonFile(ctx.args.Positional().front(), profile);
    if (!r.ok) return Fail(ctx, r.message);
    if (!r.message.empty()) ctx.err << "orvane-cli: warning: " << r.message << '\n';
    if (ctx.json) {
        QJsonArray alts;
        for (const std::int8_t a : profile) alts.append(int(a));
        PrintJson(ctx.out, QJsonObject{{"altitudeDeg", alts}});
        return 0;
    }
    for (int k = 0; k < kHorizonFileBytes; k += 10) {
        ctx.out << (k < 10 ? "  " : k < 100 ? " " : "") << k << "°:";
        for (int i = k; i < k + 10; ++i) ctx.out << ' ' << int(profile[i]);
        ctx.out << '\n';
    }
    return 0;
}

constexpr const char* kHorizonShowUsage =
    "orvane-cli horizon show FILE.hzn [--json]\n"
    "  Prints the altitude of the horizon at every degree of azimuth, ten to a line.";

}  // namespace

ORV_CLI_COMMAND("overlay check", "parse a map overlay file and report its errors or counts", kOverlayCheckUsage,
                OverlayCheck);
ORV_CLI_COMMAND("horizon import", "make a horizon file from a text list of azimuths and altitudes",
                kHorizonImportUsage, HorizonImport);
ORV_CLI_COMMAND("horizon show", "print the altitudes of a horizon file", kHorizonShowUsage, HorizonShow);

}  // namespace orv::cli
