#include "util/angles.h"

#include <cmath>
#include <limits>

namespace orv {

double mod2pi(double angleRad)
{
    if (!std::isfinite(angleRad)) return angleRad;
    double r = std::fmod(angleRad, kTwoPi);
    if (r < 0.0) r += kTwoPi;
    // fmod of a tiny negative number plus 2π rounds to exactly 2π.
    if (r >= kTwoPi) r = 0.0;
    return r;
}

double mod360(double angleDeg)
{
    if (!std::isfinite(angleDeg)) return angleDeg;
    double r = std::fmod(angleDeg, 360.0);
    if (r < 0.0) r += 360.0;
    if (r >= 360.0) r = 0.0;
    return r;
}

double AngularDistance(double lon1Rad, double lat1Rad, double lon2Rad, double lat2Rad)
{
    const double dLon = lon2Rad - lon1Rad;
    const double sinDLon = std::sin(dLon), cosDLon = std::cos(dLon);
    const double sin1 = std::sin(lat1Rad), cos1 = std::cos(lat1Rad);
    const double sin2 = std::sin(lat2Rad), cos2 = std::cos(lat2Rad);
    const double a = cos2 * sinDLon;
    const double b = cos1 * sin2 - sin1 * cos2 * cosDLon;
    const double c = sin1 * sin2 + cos1 * cos2 * cosDLon;
    return std::atan2(std::hypot(a, b), c);
}

int NearestInt(double x)
{
    if (std::isnan(x)) return 0;
    const double r = std::round(x);
    if (r >= static_cast<double>(std::numeric_limits<int>::max())) return std::numeric_limits<int>::max();
    if (r <= static_cast<double>(std::numeric_limits<int>::min())) return std::numeric_limits<int>::min();
    return static_cast<int>(r);
}

Sexagesimal SplitSexagesimal(double value, int secondDecimals)
{
    Sexagesimal s;
    s.negative = value < 0.0;
    double v = std::fabs(value);
    const double scale = std::pow(10.0, secondDecimals);
    // Work in rounded units of the last printed decimal of the seconds so that
    // the carry from seconds into minutes and units is exact.
    const double totalTicks = std::round(v * 3600.0 * scale);
    const double ticksPerMinute = 60.0 * scale;
    const double ticksPerUnit = 3600.0 * scale;
    const double units = std::floor(totalTicks / ticksPerUnit);
    const double rest = totalTicks - units * ticksPerUnit;
    const double minutes = std::floor(rest / ticksPerMinute);
    const double seconds = (rest - minutes * ticksPerMinute) / scale;
    s.units = static_cast<int>(units);
    s.minutes = static_cast<int>(minutes);
    s.seconds = seconds;
    return s;
}

}  // namespace orv
