#include "satellite/sattime.h"

#include <cmath>

#include "satellite/wgs72.h"
#include "util/angles.h"

namespace orv::sat {

double GmstIau1982Rad(double jdUT)
{
    if (!std::isfinite(jdUT)) return jdUT;
    const double jd0 = std::floor(jdUT - 0.5) + 0.5;
    const double fraction = jdUT - jd0;
    const double t = (jd0 - 2451545.0) / 36525.0;
    double seconds = 24110.54841 + t * (8640184.812866 + t * (0.093104 - t * 6.2e-6)) +
                     kSiderealTurnsPerSolarDay * 86400.0 * fraction;
    seconds = std::fmod(seconds, 86400.0);
    if (seconds < 0.0) seconds += 86400.0;
    return mod2pi(seconds * kTwoPi / 86400.0);
}

double JulianDateFromSatCivil(int year, int month, int day, int hour, int minute, double second)
{
    int y = year;
    int m = month;
    if (m <= 2) {
        y -= 1;
        m += 12;
    }
    const int a = static_cast<int>(std::floor(y / 100.0));
    const int b = 2 - a + static_cast<int>(std::floor(a / 4.0));
    const double dayFraction = (hour + (minute + second / 60.0) / 60.0) / 24.0;
    return std::floor(365.25 * (y + 4716)) + std::floor(30.6001 * (m + 1)) + day + dayFraction + b - 1524.5;
}

SatCivilTime SatCivilFromJulianDate(double jd)
{
    SatCivilTime out;
    if (!std::isfinite(jd)) return out;
    // Round to the whole second first so that carries reach the date.
    const double totalSeconds = std::round((jd + 0.5) * 86400.0);
    const double dayNumber = std::floor(totalSeconds / 86400.0);
    int secondsOfDay = static_cast<int>(totalSeconds - dayNumber * 86400.0);
    const double z = dayNumber;
    double a = z;
    if (z >= 2299161.0) {
        const double alpha = std::floor((z - 1867216.25) / 36524.25);
        a = z + 1 + alpha - std::floor(alpha / 4.0);
    }
    const double b = a + 1524.0;
    const double c = std::floor((b - 122.1) / 365.25);
    const double d = std::floor(365.25 * c);
    const double e = std::floor((b - d) / 30.6001);
    out.day = static_cast<int>(b - d - std::floor(30.6001 * e));
    out.month = static_cast<int>(e < 14 ? e - 1 : e - 13);
    out.year = static_cast<int>(out.month > 2 ? c - 4716 : c - 4715);
    out.hour = secondsOfDay / 3600;
    secondsOfDay %= 3600;
    out.minute = secondsOfDay / 60;
    out.second = secondsOfDay % 60;
    return out;
}

const char* MonthAbbreviation(int month)
{
    static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    if (month < 1 || month > 12) return "";
    return kMonths[month - 1];
}

double LocalMiddayJd(int year, int month, int day, double localOffsetHours)
{
    return JulianDateFromSatCivil(year, month, day, 12, 0, 0.0) - localOffsetHours / 24.0;
}

}  // namespace orv::sat
