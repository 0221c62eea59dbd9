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

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace orv {

namespace {

// Splits "5h35m17.3s", "5:35:17.3", "5 35 17.3", "-5°23′28″" into up to three
// numbers and notes the unit letter of the first.
bool SplitParts(std::string_view text, bool& negative, std::vector<double>& parts, char& firstMark)
{
    std::string s;
    // Unicode degree, prime and double prime become ASCII marks.
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) == 0xB0) {
            s.push_back('d');
            ++i;
        } else if (c == 0xE2 && i + 2 < text.size() && static_cast<unsigned char>(text[i + 1]) == 0x80 &&
                   (static_cast<unsigned char>(text[i + 2]) == 0xB2 || static_cast<unsigned char>(text[i + 2]) == 0xB3)) {
            s.push_back(static_cast<unsigned char>(text[i + 2]) == 0xB2 ? 'm' : 's');
            i += 2;
        } else {
            s.push_back(static_cast<char>(std::tolower(c)));
        }
    }
    std::size_t i = 0;
    while (i < s.size() && std::isspace(static_cast<unsigned char>(s[i]))) ++i;
    negative = false;
    if (i < s.size() && (s[i] == '-' || s[i] == '+')) {
        negative = s[i] == '-';
        ++i;
    }
    firstMark = 0;
    parts.clear();
    while (i < s.size()) {
        while (i < s.size() && (std::isspace(static_cast<unsigned char>(s[i])) || s[i] == ':')) ++i;
        if (i >= s.size()) break;
        const char* begin = s.c_str() + i;
        char* end = nullptr;
        const double v = std::strtod(begin, &end);
        if (end == begin || v < 0.0 || !std::isfinite(v)) return false;
        parts.push_back(v);
        i = static_cast<std::size_t>(end - s.c_str());
        while (i < s.size() && std::isspace(static_cast<unsigned char>(s[i]))) ++i;
        if (i < s.size() && std::isalpha(static_cast<unsigned char>(s[i]))) {
            if (parts.size() == 1) firstMark = s[i];
            if (s[i] != 'h' && s[i] != 'd' && s[i] != 'm' && s[i] != 's' && s[i] != '\'' && s[i] != '"') return false;
            ++i;
        } else if (i < s.size() && (s[i] == '\'' || s[i] == '"')) {
            ++i;
        }
        if (parts.size() > 3) return false;
    }
    return !parts.empty();
}

}  // namespace

bool ParseAngle(std::string_view text, AngleUnit unit, double& angleRad)
{
    bool negative = false;
    std::vector<double> parts;
    char mark = 0;
    if (!SplitParts(text, negative, parts, mark)) return false;
    double value = parts[0];
    if (parts.size() > 1) value += parts[1] / 60.0;
    if (parts.size() > 2) value += parts[2] / 3600.0;
    // Minutes and seconds must be below 60.
    for (std::size_t k = 1; k < parts.size(); ++k)
        if (parts[k] >= 60.0) return false;
    const bool hours = unit == AngleUnit::Hours && mark != 'd';
    const double rad = (hours ? value * 15.0 : value) * kRadPerDeg;
    angleRad = negative ? -rad : rad;
    return true;
}

std::string FormatHms(double angleRad, int secondDecimals)
{
    const Sexagesimal s = SplitSexagesimal(mod2pi(angleRad) / kRadPerHour, secondDecimals);
    char buf[64];
    std::snprintf(buf, sizeof buf, "%02dh%02dm%0*.*fs", s.units % 24, s.minutes,
                  secondDecimals > 0 ? secondDecimals + 3 : 2, secondDecimals, s.seconds);
    return buf;
}

std::string FormatDms(double angleRad, int secondDecimals, bool asciiOnly)
{
    const Sexagesimal s = SplitSexagesimal(angleRad / kRadPerDeg, secondDecimals);
    char buf[64];
    if (asciiOnly)
        std::snprintf(buf, sizeof buf, "%c%02dd%02dm%0*.*fs", s.negative ? '-' : '+', s.units, s.minutes,
                      secondDecimals > 0 ? secondDecimals + 3 : 2, secondDecimals, s.seconds);
    else
        std::snprintf(buf, sizeof buf, "%c%02d\xC2\xB0%02d\xE2\x80\xB2%0*.*f\xE2\x80\xB3", s.negative ? '-' : '+',
                      s.units, s.minutes, secondDecimals > 0 ? secondDecimals + 3 : 2, secondDecimals, s.seconds);
    return buf;
}

}  // namespace orv
