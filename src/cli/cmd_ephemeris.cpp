// orvane-cli ephemeris: a table of the Sun, the Moon or a planet over a span
// of dates, printed through the shared table printer.

#include <QJsonObject>
#include <QString>

#include <cmath>
#include <string>

#include "cli/bodyargument.h"
#include "cli/cli.h"
#include "cli/options.h"
#include "cli/tableprinter.h"
#include "observer/observer.h"
#include "solarsystem/planetephemeris.h"
#include "solarsystem/planets.h"

namespace orv::cli {

namespace {

// A date option: local civil midnight at the site's zone, or 0h UT with --utc.
bool ReadDateOption(const Context& ctx, const CObserverDoc& site, const char* name, double& jdUT, std::string& error)
{
    const auto text = ctx.args.Get(name);
    if (!text) {
        error = std::string("give --") + name + " YYYY-MM-DD";
        return false;
    }
    CivilDateTime date;
    if (!ParseDate(*text, date)) {
        error = std::string("--") + name + " needs a date as YYYY-MM-DD, not \"" + *text + "\"";
        return false;
    }
    date.hour = 0;
    date.minute = 0;
    date.second = 0.0;
    CObserverDoc o = site;
    if (ctx.args.Has("utc"))
        o.SetUniversalTime(date);
    else
        o.SetLocalTime(date);
    jdUT = o.JulianDate();
    return true;
}

int RunEphemeris(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames}, {"from", "to", "step", "topocentric", "utc"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    std::string bodyError;
    const std::optional<int> body = BodyArgument(ctx, bodyError);
    if (!body) return UsageError(ctx, bodyError);

    CObserverDoc site;
    site.LoadSettings(ctx.settings);
    std::string error;
    if (!ApplySiteOptions(ctx, site, error)) return UsageError(ctx, error);
    EphemerisRequest request;
    request.body = *body;
    if (!ReadDateOption(ctx, site, "from", request.jdUTFrom, error) || !ReadDateOption(ctx, site, "to", request.jdUTTo, error))
        return UsageError(ctx, error);
    request.stepDays = 1.0;
    if (ctx.args.Get("step")) {
        const auto step = ctx.args.GetNumber("step", error);
        if (!step || !(*step > 0.0)) return UsageError(ctx, "--step needs a number of days above 0, e.g. 1 or 0.25");
        request.stepDays = *step;
    }
    request.centre = ctx.args.Has("topocentric") ? PlaceCentre::Topocentric : PlaceCentre::Geocentric;

    std::vector<EphemerisRow> rows;
    const EphemerisStatus status = ComputeEphemeris(site, request, rows);
    if (status == EphemerisStatus::InvalidInput || status == EphemerisStatus::TooManyRows)
        return UsageError(ctx, EphemerisStatusMessage(status, *body));
    if (status != EphemerisStatus::Ok) return Fail(ctx, EphemerisStatusMessage(status, *body));
    const double offset = ctx.args.Has("utc") ? 0.0 : site.LocalOffsetHours();
    const ResultTable table = MakeEphemerisTable(*body, rows, offset, site.SiteName());
    QJsonObject extra;
    extra["body"] = QString::fromLatin1(BodyName(*body).data(), static_cast<int>(BodyName(*body).size()));
    extra["centre"] = request.centre == PlaceCentre::Topocentric ? "topocentric" : "geocentric";
    extra["site"] = QString::fromStdString(site.SiteName());
    extra["latitudeDeg"] = site.LatitudeRad() * 57.29577951308232;
    extra["longitudeDeg"] = site.LongitudeRad() * 57.29577951308232;
    extra["fromJdUT"] = request.jdUTFrom;
    extra["toJdUT"] = request.jdUTTo;
    extra["stepDays"] = request.stepDays;
    PrintTable(ctx, table, extra);
    return 0;
}

}  // namespace

ORV_CLI_COMMAND("ephemeris", "a table of the Sun, the Moon or a planet over a span of dates",
                "orvane-cli ephemeris NAME --from YYYY-MM-DD --to YYYY-MM-DD [--step DAYS] [--utc] [--topocentric]\n"
                "                  [--lat DEG --lon DEG --height M --zone H --dst 0|1] [--json | --csv]\n\n"
                "  NAME            Sun, Moon, Mercury, Venus, Mars, Jupiter, Saturn, Uranus, Neptune, Pluto (any case)\n"
                "  --from, --to    first and last date, from local midnight at the site's zone (0h UT with --utc);\n"
                "                  the rows run from --from to --to inclusive\n"
                "  --step DAYS     days between rows (default 1; 0.25 for every six hours)\n"
                "  --topocentric   places seen from the site rather than from the Earth's centre\n"
                "Columns: date, RA and Dec (apparent, of date), distance (AU; the Moon km), magnitude, elongation,\n"
                "phase angle, illuminated percentage, apparent diameter (arcsec), constellation, and the rise,\n"
                "transit and set of the row's local day (\"up\"/\"down\" when the body stays above/below the horizon).\n"
                "JSON keys: dateJdUT, raDeg, decDeg, distanceAU (distanceKm), magnitude, elongationDeg, phaseAngleDeg,\n"
                "illuminatedPercent, diameterArcsec, constellation, riseJdUT, transitJdUT, setJdUT.\n",
                RunEphemeris);

}  // namespace orv::cli
