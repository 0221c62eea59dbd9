// orvane-cli time: the time scales and sidereal times of an instant.

#include <QJsonObject>
#include <QString>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <string>

#include "cli/cli.h"
#include "cli/options.h"
#include "observer/observer.h"
#include "util/angles.h"

namespace orv::cli {

namespace {

std::string FormatCivil(const CivilDateTime& c)
{
    char buf[64];
    const char* sign = c.year < 0 ? "-" : "";
    std::snprintf(buf, sizeof buf, "%s%04d-%02d-%02d %02d:%02d:%06.3f", sign, std::abs(c.year), c.month, c.day, c.hour,
                  c.minute, c.second);
    return buf;
}

std::string FormatOffset(double hours)
{
    const Sexagesimal s = SplitSexagesimal(hours, 0);
    char buf[32];
    if (s.minutes == 0)
        std::snprintf(buf, sizeof buf, "UT%c%d", s.negative ? '-' : '+', s.units);
    else
        std::snprintf(buf, sizeof buf, "UT%c%d:%02d", s.negative ? '-' : '+', s.units, s.minutes);
    return buf;
}

// Sidereal time in hours as "13h10m46.370s".
std::string FormatSidereal(double hours) { return FormatHms(hours * kRadPerHour, 3); }

int RunTime(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames}, {"longitude"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    if (!ctx.args.Positional().empty()) return UsageError(ctx, "unexpected \"" + ctx.args.Positional().front() + "\"");
    if (ctx.args.Has("longitude") && ctx.args.Has("lon")) return UsageError(ctx, "give either --longitude or --lon");

    // The default site and zone are the user's ("Observer" settings).
    CObserverDoc doc;
    doc.LoadSettings(ctx.settings);
    std::string error;
    if (!ApplySiteOptions(ctx, doc, error)) return UsageError(ctx, error);
    if (const auto text = ctx.args.Get("longitude")) {
        double longitudeRad = 0.0;
        if (!ParseDegreesOption("longitude", *text, 180.0, longitudeRad, error)) return UsageError(ctx, error);
        doc.SetSite(ctx.args.Get("site").value_or(""), doc.LatitudeRad(), longitudeRad, doc.HeightM());
    }
    if (!ApplyTimeOptions(ctx, doc, error)) return UsageError(ctx, error);
    if (std::fabs(doc.JulianDate() - 2451545.0) > 1e8)
        return UsageError(ctx, "the instant is outside the range of dates Orvane handles");

    const CivilDateTime ut = doc.UniversalTime();
    const CivilDateTime local = doc.LocalTime();
    const double longitudeDeg = doc.LongitudeRad() * kDegPerRad;
    if (ctx.json) {
        QJsonObject o;
        o["site"] = QString::fromStdString(doc.SiteName());
        o["longitudeDeg"] = longitudeDeg;
        o["zoneHours"] = doc.TimeZoneHours();
        o["daylightSaving"] = doc.DaylightSaving();
        o["ut"] = QString::fromStdString(FormatCivil(ut));
        o["local"] = QString::fromStdString(FormatCivil(local));
        o["jdUT"] = doc.JulianDate();
        o["jdTT"] = doc.JulianDateTDT();
        o["deltaTSeconds"] = doc.DeltaT();
        o["gmstHours"] = doc.GMST();
        o["gastHours"] = doc.GAST();
        o["lmstHours"] = doc.LMST();
        o["lastHours"] = doc.LAST();
        o["gmst"] = QString::fromStdString(FormatSidereal(doc.GMST()));
        o["gast"] = QString::fromStdString(FormatSidereal(doc.GAST()));
        o["lmst"] = QString::fromStdString(FormatSidereal(doc.LMST()));
        o["last"] = QString::fromStdString(FormatSidereal(doc.LAST()));
        PrintJson(ctx.out, o);
        return 0;
    }
    char line[128];
    std::snprintf(line, sizeof line, "%.6f deg %s", std::fabs(longitudeDeg), longitudeDeg < 0.0 ? "W" : "E");
    ctx.out << "Site        " << doc.SiteName() << ", longitude " << line << '\n';
    ctx.out << "UT          " << FormatCivil(ut) << '\n';
    ctx.out << "Local       " << FormatCivil(local) << " (" << FormatOffset(doc.LocalOffsetHours()) << ")\n";
    std::snprintf(line, sizeof line, "%.8f", doc.JulianDate());
    ctx.out << "JD UT       " << line << '\n';
    std::snprintf(line, sizeof line, "%.8f", doc.JulianDateTDT());
    ctx.out << "JD TT       " << line << '\n';
    std::snprintf(line, sizeof line, "%.3f s", doc.DeltaT());
    ctx.out << "Delta T     " << line << '\n';
    ctx.out << "GMST        " << FormatSidereal(doc.GMST()) << '\n';
    ctx.out << "GAST        " << FormatSidereal(doc.GAST()) << '\n';
    ctx.out << "LMST        " << FormatSidereal(doc.LMST()) << '\n';
    ctx.out << "LAST        " << FormatSidereal(doc.LAST()) << '\n';
    return 0;
}

}  // namespace

ORV_CLI_COMMAND("time", "civil time, Julian dates, Delta T and sidereal times of an instant",
                "orvane-cli time [--date YYYY-MM-DD] [--time HH:MM[:SS]] [--utc] [--jd JD]\n"
                "                [--longitude DEG] [--lat DEG --lon DEG --zone H --dst 0|1] [--json]\n\n"
                "  --date, --time  the instant as a civil date and time (years astronomical: -0043 is 44 BC;\n"
                "                  Julian calendar before 1582 October 15); local time at the zone unless --utc;\n"
                "                  --time alone is today\n"
                "  --utc           the date and time given are UT\n"
                "  --jd JD         the instant as a Julian date (UT)\n"
                "  --longitude D   site longitude in degrees, east positive (the same as --lon)\n"
                "  --zone H        time zone in hours east of Greenwich; --dst 1 adds an hour\n"
                "  site and zone default to the Observer settings; without --date, --time or --jd: now",
                RunTime);

}  // namespace orv::cli
