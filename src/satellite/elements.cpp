#include "satellite/elements.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>

#include "satellite/wgs72.h"
#include "util/angles.h"
#include "util/text.h"

namespace orv::sat {

namespace {

// Byte offsets of the three areas of the element buffer.
constexpr std::size_t kNameArea = 0;
constexpr std::size_t kNameAreaSize = 32;
constexpr std::size_t kLine1Area = 32;
constexpr std::size_t kLine2Area = 112;
constexpr std::size_t kLineAreaSize = 80;
constexpr std::size_t kBufferSize = 192;

using ElementBuffer = std::array<char, kBufferSize>;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string_view TrimTrailingBlanks(std::string_view s)
{
    while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
    return s;
}

// The text of element-line columns [first, last] (1-based, inclusive) of the
// line laid at `area`, up to the first zero byte.
std::string Columns(const ElementBuffer& buffer, std::size_t area, std::size_t first, std::size_t last)
{
    std::string out;
    for (std::size_t c = first; c <= last; ++c) {
        const char ch = buffer[area + c - 1];
        if (ch == '\0') break;
        out.push_back(ch);
    }
    return out;
}

// The longest prefix of `text` (after leading blanks) that reads as a decimal
// number: sign, digits, fraction, exponent. Empty when there is none. This is
// the C library's decimal conversion without its extensions (hexadecimal,
// "inf", "nan"), which no element field can legitimately hold.
std::string DecimalPrefix(std::string_view text, bool allowFraction)
{
    std::size_t i = 0;
    while (i < text.size() && IsBlank(text[i])) ++i;
    const std::size_t start = i;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
    std::size_t digits = 0;
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i, ++digits;
    if (allowFraction && i < text.size() && text[i] == '.') {
        ++i;
        while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i, ++digits;
    }
    if (digits == 0) return {};
    if (allowFraction && i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        std::size_t j = i + 1;
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) ++j;
        const std::size_t expStart = j;
        while (j < text.size() && std::isdigit(static_cast<unsigned char>(text[j]))) ++j;
        if (j > expStart) i = j;
    }
    return std::string(text.substr(start, i - start));
}

double ToDouble(std::string_view text)
{
    const std::string number = DecimalPrefix(text, true);
    if (number.empty()) return 0.0;
    return std::strtod(number.c_str(), nullptr);
}

long long ToInteger(std::string_view text)
{
    const std::string number = DecimalPrefix(text, false);
    if (number.empty()) return 0;
    errno = 0;
    const long long v = std::strtoll(number.c_str(), nullptr, 10);
    return v;
}

int ToInt32(std::string_view text)
{
    const long long v = ToInteger(text);
    return static_cast<int>(std::clamp<long long>(v, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

void LayLine(ElementBuffer& buffer, std::size_t area, std::size_t areaSize, std::string_view line)
{
    // Text-mode reading: a carriage return before the line end is not part of
    // the line.
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    const std::size_t n = std::min(line.size(), areaSize);
    std::copy_n(line.data(), n, buffer.begin() + static_cast<std::ptrdiff_t>(area));
}

}  // namespace

int ExpandTwoDigitYear(int yy) { return yy < 57 ? 2000 + yy : 1900 + yy; }

double JulianDateOfJanuary0(int year)
{
    const int y = year - 1;
    const int a = y / 100;
    const int b = 2 - a + a / 4;
    return std::floor(365.25 * y) + 428.0 + 1720994.5 + b;
}

double OrbitalPeriodMinutes(double meanMotionRadPerMin, double eccentricity, double inclinationRad)
{
    if (!(meanMotionRadPerMin > 0.0) || !(eccentricity >= 0.0 && eccentricity < 1.0) ||
        !std::isfinite(meanMotionRadPerMin) || !std::isfinite(inclinationRad))
        return 0.0;
    const double n0 = meanMotionRadPerMin;
    const double cosi = std::cos(inclinationRad);
    const double beta0Cubed = std::pow(1.0 - eccentricity * eccentricity, 1.5);
    const double k = 1.5 * kK2 * (3.0 * cosi * cosi - 1.0) / beta0Cubed;
    const double a1 = std::pow(kKe / n0, 2.0 / 3.0);
    const double delta1 = k / (a1 * a1);
    const double a0 = a1 * (1.0 - delta1 * (1.0 / 3.0 + delta1 * (1.0 + 134.0 / 81.0 * delta1)));
    const double delta0 = k / (a0 * a0);
    return kTwoPi / (n0 / (1.0 + delta0));
}

SatelliteRecord ParseElementSet(std::string_view nameLine, std::string_view line1, std::string_view line2)
{
    ElementBuffer buffer{};
    // The name area keeps at most 31 characters and a terminator.
    LayLine(buffer, kNameArea, kNameAreaSize - 1, TrimTrailingBlanks(nameLine));
    LayLine(buffer, kLine1Area, kLineAreaSize, line1);
    LayLine(buffer, kLine2Area, kLineAreaSize, line2);

    SatelliteRecord r;
    r.name = std::string(buffer.data() + kNameArea);
    r.catalogNumber = ToInt32(Columns(buffer, kLine1Area, 3, 7));
    r.internationalDesignator = Columns(buffer, kLine1Area, 10, 17);

    const int yy = ToInt32(Columns(buffer, kLine1Area, 19, 20));
    const double dayOfYear = ToDouble(Columns(buffer, kLine1Area, 21, 32));
    r.epochCode = yy * 1000.0 + dayOfYear;
    r.epochJd = JulianDateOfJanuary0(ExpandTwoDigitYear(yy)) + dayOfYear;

    // B*: an implied-decimal mantissa ("-11606" is -0.11606) and a power of ten.
    const double mantissa = ToDouble(Columns(buffer, kLine1Area, 54, 59)) * 1e-5;
    const int exponent = ToInt32(Columns(buffer, kLine1Area, 60, 61));
    r.bstarPerEarthRadius = mantissa * std::pow(10.0, exponent);
    r.elementSetNumber = ToInt32(Columns(buffer, kLine1Area, 65, 68));

    r.inclinationRad = ToDouble(Columns(buffer, kLine2Area, 9, 16)) * kRadPerDeg;
    r.raanRad = ToDouble(Columns(buffer, kLine2Area, 18, 25)) * kRadPerDeg;
    r.eccentricity = static_cast<double>(ToInteger(Columns(buffer, kLine2Area, 27, 33))) * 1e-7;
    r.argumentOfPerigeeRad = ToDouble(Columns(buffer, kLine2Area, 35, 42)) * kRadPerDeg;
    r.meanAnomalyRad = ToDouble(Columns(buffer, kLine2Area, 44, 51)) * kRadPerDeg;
    r.meanMotionRadPerMin = ToDouble(Columns(buffer, kLine2Area, 53, 63)) * kTwoPi / kMinutesPerDay;
    r.periodMinutes = OrbitalPeriodMinutes(r.meanMotionRadPerMin, r.eccentricity, r.inclinationRad);
    return r;
}

void CSatelliteList::LoadFromText(std::string_view text)
{
    m_records.clear();
    std::size_t pos = 0;
    // Next line without its terminator; false at the end of the text.
    auto nextLine = [&](std::string_view& line) {
        if (pos >= text.size()) return false;
        const std::size_t end = text.find('\n', pos);
        if (end == std::string_view::npos) {
            line = text.substr(pos);
            pos = text.size();
        } else {
            line = text.substr(pos, end - pos);
            pos = end + 1;
        }
        return true;
    };
    for (;;) {
        std::string_view name, line1, line2;
        if (!nextLine(name)) break;
        name = TrimTrailingBlanks(name);
        if (name.empty()) break;
        if (!nextLine(line1) || !nextLine(line2)) break;
        m_records.push_back(ParseElementSet(name, line1, line2));
    }
}

bool CSatelliteList::Load(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    std::ostringstream text;
    text << in.rdbuf();
    LoadFromText(text.str());
    m_fileName = path;
    return true;
}

int CSatelliteList::Find(std::string_view nameOrNumber) const
{
    while (!nameOrNumber.empty() && IsBlank(nameOrNumber.front())) nameOrNumber.remove_prefix(1);
    nameOrNumber = TrimTrailingBlanks(nameOrNumber);
    if (nameOrNumber.empty()) return -1;
    for (std::size_t i = 0; i < m_records.size(); ++i) {
        std::string_view n = m_records[i].name;
        while (!n.empty() && IsBlank(n.front())) n.remove_prefix(1);
        if (EqualIgnoringCase(n, nameOrNumber)) return static_cast<int>(i);
    }
    const bool numeric = std::all_of(nameOrNumber.begin(), nameOrNumber.end(),
                                     [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; });
    if (numeric) {
        const long long number = ToInteger(nameOrNumber);
        for (std::size_t i = 0; i < m_records.size(); ++i)
            if (m_records[i].catalogNumber == number) return static_cast<int>(i);
    }
    // Last, the first name that begins with the text.
    for (std::size_t i = 0; i < m_records.size(); ++i) {
        std::string_view n = m_records[i].name;
        while (!n.empty() && IsBlank(n.front())) n.remove_prefix(1);
        if (n.size() > nameOrNumber.size() && EqualIgnoringCase(n.substr(0, nameOrNumber.size()), nameOrNumber))
            return static_cast<int>(i);
    }
    return -1;
}

}  // namespace orv::sat
