#include "cli/options.h"

#include <cmath>
#include <cstdio>

#include "observer/observer.h"
#include "util/angles.h"

namespace orv::cli {

const std::vector<std::string> kSiteOptionNames{"lat", "lon", "height", "site", "zone", "dst"};
const std::vector<std::string> kTimeOptionNames{"jd", "date", "time", "utc"};
const std::vector<std::string> kGlobalOptionNames{"json", "settings", "data", "help"};

std::vector<std::string> OptionNames(std::initializer_list<const std::vector<std::string>*> lists,
                                     std::initializer_list<const char*> more)
{
    std::vector<std::string> out = kGlobalOptionNames;
    for (const auto* l : lists) out.insert(out.end(), l->begin(), l->end());
    for (const char* m : more) out.emplace_back(m);
    return out;
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
        if (!ParseAngle(*v, AngleUnit::Degrees, lat) || std::fabs(lat) > kHalfPi) {
            error = "--lat needs a latitude between -90 and +90 degrees, not \"" + *v + "\"";
            return false;
        }
        name = ctx.args.Get("site").value_or("");
    }
    if (auto v = ctx.args.Get("lon")) {
        if (!ParseAngle(*v, AngleUnit::Degrees, lon) || std::fabs(lon) > kPi + 1e-12) {
            error = "--lon needs a longitude between -180 and +180 degrees (east positive), not \"" + *v + "\"";
            return false;
        }
        name = ctx.args.Get("site").value_or("");
    }
    if (auto v = ctx.args.GetNumber("height", error)) {
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
