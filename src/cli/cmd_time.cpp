// orvane-cli time: the time scales and sidereal times of an instant.

#include <QJsonObject>
#include <QString>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/cli.h"
#include "observer/observer.h"
#include "util/angles.h"

namespace orv::cli {

namespace {

// Reads an integer filling the whole of `text` (an optional sign first).
bool ParseInt(std::string_view text, int& value)
{
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    if (text.empty()) return false;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    return ec == std::errc() && end == text.data() + text.size();
}

// "YYYY-MM-DD", the year astronomical and possibly signed ("-0043-03-15" is
// 44 BC).
bool ParseDate(const std::string& text, CivilDateTime& c)
{
    const std::size_t monthDash = text.find('-', 1);
    if (monthDash == std::string::npos) return false;
    const std::size_t dayDash = text.find('-', monthDash + 1);
    if (dayDash == std::string::npos) return false;
    const std::string_view all(text);
    return ParseInt(all.substr(0, monthDash), c.year) &&
           ParseInt(all.substr(monthDash + 1, dayDash - monthDash - 1), c.month) &&
           ParseInt(all.substr(dayDash + 1), c.day);
}

// "HH:MM" or "HH:MM:SS" with optional decimals of the second.
bool ParseTime(const std::string& text, CivilDateTime& c)
{
    const std::size_t first = text.find(':');
    if (first == std::string::npos) return false;
    const std::size_t second = text.find(':', first + 1);
    const std::string_view all(text);
    if (!ParseInt(all.substr(0, first), c.hour)) return false;
    if (second == std::string::npos) {
        c.second = 0.0;
        return ParseInt(all.substr(first + 1), c.minute);
    }
    if (!ParseInt(all.substr(first + 1, second - first - 1), c.minute)) return false;
    const std::string secondsText = text.substr(second + 1);
    if (secondsText.empty() || secondsText.front() == '-' || secondsText.front() == '+') return false;
    char* end = nullptr;
    c.second = std::strtod(secondsText.c_str(), &end);
    return *end == '\0' && std::isfinite(c.second);
}

std::string FormatCivil(const CivilDateTime& c)
{
    char buf[64];
    const char* sign = c.year < 0 ? "-" : "";
    std::snprintf(buf, sizeof buf, "%s%04d-%02d-%02d %02d:%02d:%06.3f", sign, std::abs(c.year), c.month, c.day, c.hour,
                  c.minute, c.second);
    return buf;
}

// Hours in [0, 24) as "13h 10m 46.367s".
std::string FormatHms(double hours)
{
    Sexagesimal s = SplitSexagesimal(hours, 3);
    if (s.units >= 24) s.units -= 24;  // 23h59m59.9996s rounds to the next day
    char buf[48];
    std::snprintf(buf, sizeof buf, "%02dh %02dm %06.3fs", s.units, s.minutes, s.seconds);
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

int RunTime(Context& ctx)
{
    const auto unknown = ctx.args.Unknown({"date", "time", "zone", "utc", "jd", "longitude", "json", "settings", "data"});
    if (!unknown.empty()) return UsageError(ctx, "unknown option --" + unknown.front());
    if (!ctx.args.Positional().empty()) return UsageError(ctx, "unexpected \"" + ctx.args.Positional().front() + "\"");

    // The default site and zone are the user's ("Observer" settings).
    CObserverDoc doc;
    doc.LoadSettings(ctx.settings);

    std::string error;
    if (const auto longitudeDeg = ctx.args.GetNumber("longitude", error)) {
        if (*longitudeDeg < -180.0 || *longitudeDeg > 360.0)
            return Fail(ctx, "--longitude must lie between -180 and 360 degrees (east positive)");
        doc.SetSite(doc.SiteName(), doc.LatitudeRad(), *longitudeDeg * kRadPerDeg, doc.HeightM());
    }
    if (!error.empty()) return Fail(ctx, error);
    if (const auto zone = ctx.args.GetNumber("zone", error)) {
        if (std::fabs(*zone) > 14.0) return Fail(ctx, "--zone must lie between -14 and +14 hours");
        doc.SetTimeZone(*zone, false);
    }
    if (!error.empty()) return Fail(ctx, error);

    const bool hasDate = ctx.args.Has("date");
    const bool hasTime = ctx.args.Has("time");
    if (ctx.args.Has("jd")) {
        if (hasDate || hasTime) return UsageError(ctx, "give either --jd or --date/--time, not both");
        const auto jd = ctx.args.GetNumber("jd", error);
        if (!jd) return Fail(ctx, error.empty() ? "--jd needs a Julian date" : error);
        if (std::fabs(*jd) > 1e8) return Fail(ctx, "--jd is outside the range of dates Orvane handles");
        doc.SetJulianDate(*jd);
    } else if (hasDate) {
        CivilDateTime civil{};
        if (!ParseDate(ctx.args.Get("date").value_or(""), civil))
            return Fail(ctx, "--date must be YYYY-MM-DD, not \"" + ctx.args.Get("date").value_or("") + "\"");
        if (hasTime && !ParseTime(ctx.args.Get("time").value_or(""), civil))
            return Fail(ctx, "--time must be HH:MM or HH:MM:SS, not \"" + ctx.args.Get("time").value_or("") + "\"");
        if (!IsValidCivilDateTime(civil))
            return Fail(ctx, "no such date or time: " + FormatCivil(civil) +
                                 (civil.year == 1582 && civil.month == 10 ? " (1582 October 5-14 were skipped)" : ""));
        if (civil.year < -100000 || civil.year > 100000)
            return Fail(ctx, "--date is outside the range of dates Orvane handles");
        if (ctx.args.Has("utc"))
            doc.SetUniversalTime(civil);
        else
            doc.SetLocalTime(civil);
    } else if (hasTime) {
        return UsageError(ctx, "--time needs --date");
    } else {
        doc.SetToNow();
    }

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
        o["gmst"] = QString::fromStdString(FormatHms(doc.GMST()));
        o["gast"] = QString::fromStdString(FormatHms(doc.GAST()));
        o["lmst"] = QString::fromStdString(FormatHms(doc.LMST()));
        o["last"] = QString::fromStdString(FormatHms(doc.LAST()));
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
    ctx.out << "GMST        " << FormatHms(doc.GMST()) << '\n';
    ctx.out << "GAST        " << FormatHms(doc.GAST()) << '\n';
    ctx.out << "LMST        " << FormatHms(doc.LMST()) << '\n';
    ctx.out << "LAST        " << FormatHms(doc.LAST()) << '\n';
    return 0;
}

}  // namespace

ORV_CLI_COMMAND("time", "civil time, Julian dates, Delta T and sidereal times of an instant",
                "orvane-cli time [--date YYYY-MM-DD [--time HH:MM[:SS]]] [--zone H | --utc] [--jd JD]\n"
                "                [--longitude DEG] [--json]\n\n"
                "  --date, --time  the instant as a civil date and time (years astronomical: -0043 is 44 BC;\n"
                "                  Julian calendar before 1582 October 15); local time unless --utc\n"
                "  --zone H        time zone in hours east of Greenwich (default: the Observer settings)\n"
                "  --utc           the date and time given are UT\n"
                "  --jd JD         the instant as a Julian date (UT)\n"
                "  --longitude D   site longitude in degrees, east positive (default: the Observer settings)\n"
                "  without --date or --jd: now",
                RunTime);

}  // namespace orv::cli
