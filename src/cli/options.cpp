#include "cli/options.h"

#include <cmath>
#include <cstdio>

#include "observer/observer.h"
#include "util/angles.h"

namespace orv::cli {

const std::vector<std::string> kSiteOptionNames{"lat", "lon", "height", "site", "zone", "dst"};
const std::vector<std::string> kTimeOptionNames{"jd", "date", "time", "utc"};
const std::vector<std::string> kGlobalOptionNames{"json", "csv", "settings", "data", "help"};

std::vector<std::string> OptionNames(std::initializer_list<const std::vector<std::string>*> lists,
                                     std::initializer_list<const char*> more)
{
    std::vector<std::string> out = kGlobalOptionNames;
    for (const auto* l : lists) out.insert(out.end(), l->begin(), l->end());
    for (const char* m : more) out.emplace_back(m);
    return out;
}

namespace {

// An "h" anywhere marks hours; degree options refuse it rather than read
// "5h" as 5 degrees.
bool HasHourMark(const std::string& text) { return text.find_first_of("hH") != std::string::npos; }

}  // namespace

bool ParseRightAscensionOption(const std::string& option, const std::string& text, double& raRad,
                               std::string& error)
{
    const std::string forms = "hours as 5h35m17s, 5:35:17 or 5.588, or degrees as 83.8d";
    double rad = 0.0;
    if (!ParseAngle(text, AngleUnit::Hours, rad)) {
        error = "--" + option + " is not a right ascension: \"" + text + "\" (give " + forms + ")";
        return false;
    }
    if (rad < 0.0) {
        error = "--" + option + " " + text + ": a right ascension runs from 0 to 24 hours (give " + forms + ")";
        return false;
    }
    // Checked in the unit the user wrote: 24 hours is 360 degrees.
    if (rad > kTwoPi * (1.0 + 1e-15)) {
        const bool degrees = text.find_first_of("dD") != std::string::npos || text.find("\xC2\xB0") != std::string::npos;
        error = "--" + option + " " + text + " is more than " + (degrees ? "360 degrees" : "24 hours") +
                ": a right ascension is read as hours unless marked as degrees (give " + forms + ")";
        return false;
    }
    raRad = mod2pi(rad);
    return true;
}

bool ParseDegreesOption(const std::string& option, const std::string& text, double limitDeg, double& angleRad,
                        std::string& error)
{
    double rad = 0.0;
    if (HasHourMark(text) || !ParseAngle(text, AngleUnit::Degrees, rad) || std::fabs(rad) > limitDeg * kRadPerDeg * (1.0 + 1e-15)) {
        char limit[32];
        std::snprintf(limit, sizeof limit, "%g", limitDeg);
        error = "--" + option + " needs degrees between -" + limit + " and +" + limit + " (as -5.39, -5:23:28 or -5d23m28s), not \"" + text + "\"";
        return false;
    }
    angleRad = rad;
    return true;
}

bool ParseDate(const std::string& text, CivilDateTime& date)
{
    int y = 0, m = 0, d = 0;
    char tail = 0;
    const char* s = text.c_str();
    int sign = 1;
    if (*s == '-') {
        sign = -1;
        ++s;
    }
    if (std::sscanf(s, "%d-%d-%d%c", &y, &m, &d, &tail) != 3) return false;
    if (m < 1 || m > 12 || d < 1 || d > 31) return false;
    date.year = sign * y;
    date.month = m;
    date.day = d;
    return true;
}

bool ParseTimeOfDay(const std::string& text, CivilDateTime& date)
{
    int h = 0, mi = 0;
    double sec = 0.0;
    char tail = 0;
    const int n = std::sscanf(text.c_str(), "%d:%d:%lf%c", &h, &mi, &sec, &tail);
    if (n != 2 && n != 3) return false;
    if (h < 0 || h > 23 || mi < 0 || mi > 59 || !(sec >= 0.0 && sec < 61.0)) return false;
    date.hour = h;
    date.minute = mi;
    date.second = n == 3 ? sec : 0.0;
    return true;
}

bool ApplySiteOptions(const Context& ctx, CObserverDoc& observer, std::string& error)
{
    double lat = observer.LatitudeRad(), lon = observer.LongitudeRad(), height = observer.HeightM();
    std::string name = observer.SiteName();
    if (auto v = ctx.args.Get("lat")) {
        if (!ParseDegreesOption("lat", *v, 90.0, lat, error)) return false;
        name = ctx.args.Get("site").value_or("");
    }
    if (auto v = ctx.args.Get("lon")) {
        if (!ParseDegreesOption("lon", *v, 180.0, lon, error)) return false;
        name = ctx.args.Get("site").value_or("");
    }
    if (auto v = ctx.args.GetNumber("height", error)) {
        // (render shares the name for the picture's height in pixels, so
        // only numbers no site could have are refused here)
        if (!(std::fabs(*v) <= 1.0e6)) {
            error = "--height needs the site's height in metres";
            return false;
        }
        height = *v;
    } else if (!error.empty()) {
        return false;
    }
    if (auto v = ctx.args.Get("site")) name = *v;
    observer.SetSite(name, lat, lon, height);
    double zone = observer.TimeZoneHours();
    bool dst = observer.DaylightSaving();
    if (auto v = ctx.args.GetNumber("zone", error)) {
        if (std::fabs(*v) > 14.0) {
            error = "--zone needs hours east of Greenwich between -14 and +14";
            return false;
        }
        zone = *v;
    } else if (!error.empty()) {
        return false;
    }
    if (auto v = ctx.args.Get("dst")) dst = *v != "0";
    observer.SetTimeZone(zone, dst);
    return true;
}

bool ApplyTimeOptions(const Context& ctx, CObserverDoc& observer, std::string& error)
{
    if (ctx.args.Has("jd") && (ctx.args.Has("date") || ctx.args.Has("time"))) {
        error = "give either --jd or --date/--time, not both";
        return false;
    }
    if (auto jd = ctx.args.GetNumber("jd", error)) {
        observer.SetJulianDate(*jd);
        return true;
    }
    if (!error.empty()) return false;
    const auto dateText = ctx.args.Get("date");
    const auto timeText = ctx.args.Get("time");
    if (!dateText && !timeText) {
        observer.SetToNow();
        return true;
    }
    CivilDateTime t = ctx.args.Has("utc") ? observer.UniversalTime() : observer.LocalTime();
    if (dateText && !ParseDate(*dateText, t)) {
        error = "--date needs YYYY-MM-DD, not \"" + *dateText + "\"";
        return false;
    }
    if (timeText) {
        if (!ParseTimeOfDay(*timeText, t)) {
            error = "--time needs HH:MM or HH:MM:SS, not \"" + *timeText + "\"";
            return false;
        }
    } else {
        t.hour = 0;
        t.minute = 0;
        t.second = 0.0;
    }
    CivilDateTime day = t;
    day.second = 0.0;  // a leap second's 60.x is allowed
    if (!IsValidCivilDateTime(day)) {
        error = "no such date: \"" + dateText.value_or("") + "\"";
        if (t.year == 1582 && t.month == 10) error += " (1582 October 5-14 were skipped)";
        return false;
    }
    if (ctx.args.Has("utc"))
        observer.SetUniversalTime(t);
    else
        observer.SetLocalTime(t);
    return true;
}

}  // namespace orv::cli
