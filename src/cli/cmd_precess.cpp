// orvane-cli precess: a position between equinoxes, and from the catalogue
// to the apparent place of a date and the horizon of a site.

#include <cmath>
#include <cstdlib>

#include "cli/cli.h"
#include "cli/options.h"
#include "map/skyframes.h"
#include "observer/observer.h"
#include "util/angles.h"

namespace orv::cli {

namespace {

// "J2000", "2050.5", "J1875" (Julian epochs) or "2025-11-19" (a date, 0h TT)
// to a Julian date on the TT scale.
bool ParseEpoch(const std::string& text, double& jdTT)
{
    std::string t = text;
    if (!t.empty() && (t[0] == 'J' || t[0] == 'j')) t.erase(0, 1);
    if (t.find('-', 1) != std::string::npos) {
        CivilDateTime d;
        if (!ParseDate(t, d)) return false;
        jdTT = JulianDateFromCivil(d);
        return true;
    }
    char* end = nullptr;
    const double year = std::strtod(t.c_str(), &end);
    if (end == t.c_str() || *end != '\0' || !std::isfinite(year)) return false;
    // Julian epoch: Lieske (1979), J = 2000.0 + (JD − 2451545.0) / 365.25.
    jdTT = 2451545.0 + (year - 2000.0) * 365.25;
    return true;
}

QJsonObject Position(double raRad, double decRad)
{
    return QJsonObject{{"ra", QString::fromStdString(FormatHms(raRad, 3))},
                       {"dec", QString::fromStdString(FormatDms(decRad, 2, true))},
                       {"raDeg", raRad * kDegPerRad},
                       {"decDeg", decRad * kDegPerRad}};
}

int Precess(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames}, {"ra", "dec", "from", "to", "apparent"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    const auto raText = ctx.args.Get("ra"), decText = ctx.args.Get("dec");
    if (!raText || !decText) return UsageError(ctx, "precess needs --ra and --dec");
    double ra = 0.0, dec = 0.0;
    std::string error;
    if (!ParseRightAscensionOption("ra", *raText, ra, error) || !ParseDegreesOption("dec", *decText, 90.0, dec, error))
        return UsageError(ctx, error);
    double jdFrom = 2451545.0, jdTo = 2451545.0;
    if (auto f = ctx.args.Get("from"); f && !ParseEpoch(*f, jdFrom))
        return UsageError(ctx, "--from needs an epoch such as J2000, 1950.0 or 2025-11-19");
    const auto toText = ctx.args.Get("to");
    if (toText && !ParseEpoch(*toText, jdTo))
        return UsageError(ctx, "--to needs an epoch such as J2050, 2100.5 or 2025-11-19");

    CObserverDoc observer;
    observer.LoadSettings(ctx.settings);
    if (!ApplySiteOptions(ctx, observer, error) || !ApplyTimeOptions(ctx, observer, error))
        return UsageError(ctx, error);

    // Mean place: from the equinox of --from back to J2000, then on to --to.
    // A J2000 position is taken as catalogue (ICRS) coordinates, the way
    // modern catalogues give them, so no frame bias is applied to it.
    double v[3];
    SphericalToVector(ra, dec, v);
    if (jdFrom != 2451545.0) observer.PrecessXYZ(v, jdFrom, +1);
    double raJ2000 = 0.0, decJ2000 = 0.0;
    VectorToSpherical(v, raJ2000, decJ2000);
    if (jdTo != 2451545.0) observer.PrecessXYZ(v, jdTo, -1);
    double raTo = 0.0, decTo = 0.0;
    VectorToSpherical(v, raTo, decTo);

    QJsonObject out;
    out["input"] = Position(mod2pi(ra), dec);
    out["inputEquinoxJdTT"] = jdFrom;
    out["j2000"] = Position(raJ2000, decJ2000);
    out["mean"] = Position(raTo, decTo);
    out["meanEquinoxJdTT"] = jdTo;

    const bool apparent = ctx.args.Has("apparent") || ctx.args.Has("date") || ctx.args.Has("jd") || !toText;
    if (apparent) {
        double raApp = raJ2000, decApp = decJ2000;
        CatalogueToDate(observer, raApp, decApp, Place::Apparent);
        QJsonObject app = Position(raApp, decApp);
        app["jdUT"] = observer.JulianDate();
        app["jdTT"] = observer.JulianDateTDT();
        out["apparent"] = app;
        double alt = 0.0, az = 0.0;
        EquatorialToHorizontal(observer, raApp, decApp, alt, az);
        out["horizon"] = QJsonObject{{"site", QString::fromStdString(observer.SiteName())},
                                     {"altitudeDeg", alt * kDegPerRad},
                                     {"azimuthDeg", az * kDegPerRad},
                                     {"refracted", true}};
    }

    if (ctx.json) {
        PrintJson(ctx.out, out);
        return 0;
    }
    const auto line = [&](const char* label, const QJsonObject& p) {
        ctx.out << label << p["ra"].toString().toStdString() << "  " << p["dec"].toString().toStdString() << '\n';
    };
    line("input              ", out["input"].toObject());
    line("J2000 (ICRS)       ", out["j2000"].toObject());
    ctx.out << "mean, equinox JD " << QString::number(jdTo, 'f', 3).toStdString() << "\n";
    line("                   ", out["mean"].toObject());
    if (apparent) {
        const QJsonObject a = out["apparent"].toObject();
        ctx.out << "apparent, JD " << QString::number(observer.JulianDate(), 'f', 5).toStdString() << " UT\n";
        line("                   ", a);
        const QJsonObject h = out["horizon"].toObject();
        ctx.out << "altitude " << QString::number(h["altitudeDeg"].toDouble(), 'f', 4).toStdString() << "°  azimuth "
                << QString::number(h["azimuthDeg"].toDouble(), 'f', 4).toStdString() << "° (refracted)\n";
    }
    return 0;
}

constexpr const char* kUsage =
    "orvane-cli precess --ra HOURS --dec DEG [--from EPOCH] [--to EPOCH] [--apparent] [site and time options]\n"
    "  --from EPOCH   equinox of the input position (default J2000; \"J1950\", \"2025.5\", \"2025-11-19\")\n"
    "  --to EPOCH     equinox of the output mean position (IAU 2006 precession)\n"
    "  --apparent     also the apparent place at --date/--time or --jd (aberration, precession,\n"
    "                 nutation) and the refracted altitude and azimuth at the site";

}  // namespace

ORV_CLI_COMMAND("precess", "precess a position; catalogue to apparent place", kUsage, Precess);

}  // namespace orv::cli
