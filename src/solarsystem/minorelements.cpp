#include "solarsystem/minorelements.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <unordered_map>

#include "observer/observer.h"
#include "util/atomicfile.h"
#include "util/text.h"

namespace orv {

namespace {

std::string_view Columns(std::string_view line, std::size_t first, std::size_t last)
{
    if (first >= line.size()) return {};
    return line.substr(first, std::min(last + 1, line.size()) - first);
}

bool ReadDouble(std::string_view field, double& out)
{
    field = TrimBlanks(field);
    if (field.empty()) return false;
    if (field.front() == '+') field.remove_prefix(1);
    const auto [ptr, ec] = std::from_chars(field.data(), field.data() + field.size(), out);
    return ec == std::errc() && ptr == field.data() + field.size() && std::isfinite(out);
}

bool ReadInt(std::string_view field, int& out)
{
    field = TrimBlanks(field);
    if (field.empty()) return false;
    const auto [ptr, ec] = std::from_chars(field.data(), field.data() + field.size(), out);
    return ec == std::errc() && ptr == field.data() + field.size();
}

std::string Truncated(std::string_view name)
{
    name = TrimBlanks(name);
    return std::string(name.substr(0, kMinorNameChars));
}

void Say(std::string* why, std::string text)
{
    if (why) *why = std::move(text);
}

// The elements common to both kinds, checked for what an orbit needs.
bool CheckShape(double q, double e, double incl, std::string* why)
{
    if (!(q > 0.0)) {
        Say(why, "the perihelion distance or semi-major axis is not positive");
        return false;
    }
    if (!(e >= 0.0)) {
        Say(why, "the eccentricity is negative");
        return false;
    }
    if (!(incl >= 0.0 && incl <= 180.0)) {
        Say(why, "the inclination is outside 0–180°");
        return false;
    }
    return true;
}

bool CheckDate(int year, int month, double day, std::string* why)
{
    if (month < 1 || month > 12 || !(day >= 0.0 && day < 32.0) || year < -4000 || year > 9999) {
        Say(why, "the date is not a calendar date");
        return false;
    }
    return true;
}

// Lines of a text, each with its line number; a line end is LF or CR LF.
template <class F>
void ForEachLine(std::string_view text, F f)
{
    int number = 0;
    std::size_t pos = 0;
    while (pos < text.size()) {
        std::size_t end = text.find('\n', pos);
        if (end == std::string_view::npos) end = text.size();
        std::string_view line = text.substr(pos, end - pos);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        ++number;
        if (!f(number, line, end)) return;
        pos = end + 1;
    }
}

bool ReadWholeFile(const std::string& path, std::string& text, std::string& error)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = "cannot open \"" + path + "\"";
        return false;
    }
    std::ostringstream buffer;
    buffer << in.rdbuf();
    text = std::move(buffer).str();
    return true;
}

// A packed digit: '0'–'9', then 'A'–'Z' for 10–35 and 'a'–'z' for 36–61.
int PackedDigit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'Z') return c - 'A' + 10;
    if (c >= 'a' && c <= 'z') return c - 'a' + 36;
    return -1;
}

std::optional<int> PackedCentury(char c)
{
    // I, J, K for the 1800s, 1900s, 2000s (and A–H for earlier centuries).
    if (c < 'A' || c > 'L') return std::nullopt;
    return (c - 'A' + 10) * 100;
}

}  // namespace

std::string AsteroidDesignation(const AsteroidElements& a)
{
    if (a.number <= 0) return a.name;
    return "(" + std::to_string(a.number) + ") " + a.name;
}

// -------------------------------------------------------- catalogue lines

bool ParseAsteroidLine(std::string_view line, AsteroidElements& out, std::string* why)
{
    Say(why, "");
    if (line.size() > kCatalogLineChars) line = line.substr(0, kCatalogLineChars);
    if (!line.empty() && line.front() == ';') return false;
    if (line.size() <= 40) {
        Say(why, "the line is too short for the elements (they start at column 41)");
        return false;
    }
    AsteroidElements a;
    a.flag = line[0];
    int number = 0;
    if (!TrimBlanks(Columns(line, 1, 6)).empty() && !ReadInt(Columns(line, 1, 6), number)) {
        Say(why, "the number in columns 2–7 is not a whole number");
        return false;
    }
    a.number = std::max(0, number);
    a.name = Truncated(Columns(line, 8, 38));
    const std::string rest(line.substr(40));
    short year = 0, month = 0;
    double day, m0, axis, e, w, node, incl, h, g;
    if (std::sscanf(rest.c_str(), "%hd %hd %lf %lf %lf %lf %lf %lf %lf %lf %lf", &year, &month, &day, &m0, &axis, &e, &w,
                    &node, &incl, &h, &g) != 11) {
        Say(why, "fewer than the 11 values year, month, day, M, a, e, ω, Ω, i, H, G after column 40");
        return false;
    }
    for (double v : {day, m0, axis, e, w, node, incl, h, g})
        if (!std::isfinite(v)) {
            Say(why, "a value is not a finite number");
            return false;
        }
    if (!CheckDate(year, month, day, why)) return false;
    if (!CheckShape(axis, e, incl, why)) return false;
    if (e >= 1.0) {
        Say(why, "an asteroid's eccentricity must be below 1");
        return false;
    }
    a.epochYear = year;
    a.epochMonth = month;
    a.epochDay = day;
    a.epochJdTT = CObserverDoc::JulianDate(year, month, day);
    a.meanAnomalyDeg = m0;
    a.aAU = axis;
    a.e = e;
    a.argPerihelionDeg = w;
    a.nodeDeg = node;
    a.inclinationDeg = incl;
    a.absoluteH = h;
    a.slopeG = g;
    out = std::move(a);
    return true;
}

bool ParseCometLine(std::string_view line, CometElements& out, std::string* why)
{
    Say(why, "");
    if (line.size() > kCatalogLineChars) line = line.substr(0, kCatalogLineChars);
    if (!line.empty() && line.front() == ';') return false;
    if (line.size() <= 45) {
        Say(why, "the line is too short for the elements (they start at column 46)");
        return false;
    }
    CometElements c;
    c.name = Truncated(Columns(line, 0, 30));
    const std::string rest(line.substr(45));
    char flag = ' ';
    short year = 0, month = 0;
    double day, q, e, w, node, incl, g, k;
    if (std::sscanf(rest.c_str(), "%c %hd %hd %lf %lf %lf %lf %lf %lf %lf %lf", &flag, &year, &month, &day, &q, &e, &w,
                    &node, &incl, &g, &k) != 11) {
        Say(why, "fewer than the flag and 10 values year, month, day, q, e, ω, Ω, i, g, k after column 45");
        return false;
    }
    for (double v : {day, q, e, w, node, incl, g, k})
        if (!std::isfinite(v)) {
            Say(why, "a value is not a finite number");
            return false;
        }
    if (!CheckDate(year, month, day, why)) return false;
    if (!CheckShape(q, e, incl, why)) return false;
    c.flag = flag;
    c.perihelionYear = year;
    c.perihelionMonth = month;
    c.perihelionDay = day;
    c.perihelionJdTT = CObserverDoc::JulianDate(year, month, day);
    c.qAU = q;
    c.e = e;
    c.argPerihelionDeg = w;
    c.nodeDeg = node;
    c.inclinationDeg = incl;
    c.absoluteG = g;
    c.slopeK = k;
    out = std::move(c);
    return true;
}

std::string FormatAsteroidLine(const AsteroidElements& a)
{
    char head[64];
    std::snprintf(head, sizeof head, "%c%6d %-31.31s ", a.flag == '\0' ? ' ' : a.flag, a.number, a.name.c_str());
    char tail[200];
    std::snprintf(tail, sizeof tail, "%1d %02d %6.3lf %10.6lf %10.7lf %10.8lf %10.6lf %10.6lf %10.6lf %6.2lf %5.2lf\n",
                  a.epochYear, a.epochMonth, a.epochDay, a.meanAnomalyDeg, a.aAU, a.e, a.argPerihelionDeg, a.nodeDeg,
                  a.inclinationDeg, a.absoluteH, a.slopeG);
    return std::string(head) + tail;
}

std::string FormatCometLine(const CometElements& c)
{
    std::string line(45, ' ');
    const std::string name = c.name.substr(0, kMinorNameChars);
    line.replace(0, name.size(), name);
    char tail[200];
    std::snprintf(tail, sizeof tail, "%c %1d %02d %7.4lf %.7lf %.7lf %8.4lf %8.4lf %8.4lf %4.1lf %4.1lf\n",
                  c.flag == '\0' ? ' ' : c.flag, c.perihelionYear, c.perihelionMonth, c.perihelionDay, c.qAU, c.e,
                  c.argPerihelionDeg, c.nodeDeg, c.inclinationDeg, c.absoluteG, c.slopeK);
    return line + tail;
}

// ------------------------------------------------------------- filters

bool AsteroidFilter::Accept(const AsteroidElements& a, bool& stopAfter) const
{
    stopAfter = false;
    switch (mode) {
    case 0:
        return a.flag == 'A';
    case 1:
        stopAfter = a.number >= numberLimit;
        return true;
    case 2: {
        const float h = static_cast<float>(a.absoluteH);
        return hMin <= h && h <= hMax;
    }
    default:
        return true;
    }
}

bool CometFilter::Accept(const CometElements& c) const
{
    switch (mode) {
    case 0:
        return c.flag == 'A';
    case 1:
        return std::fabs(c.perihelionJdTT - jdTT) <= days;
    case 2:
        return false;
    default:
        return true;
    }
}

std::vector<std::uint32_t> SelectAsteroids(const std::vector<AsteroidElements>& list, const AsteroidFilter& filter)
{
    std::vector<std::uint32_t> kept;
    kept.reserve(filter.mode == 0 || filter.mode == 1 ? std::min<std::size_t>(list.size(), 4096) : list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        bool stop = false;
        if (filter.Accept(list[i], stop)) kept.push_back(static_cast<std::uint32_t>(i));
        if (stop) break;
    }
    return kept;
}

std::vector<std::uint32_t> SelectComets(const std::vector<CometElements>& list, const CometFilter& filter)
{
    std::vector<std::uint32_t> kept;
    for (std::size_t i = 0; i < list.size(); ++i)
        if (filter.Accept(list[i])) kept.push_back(static_cast<std::uint32_t>(i));
    return kept;
}

std::string DescribeFilter(const AsteroidFilter& f)
{
    char text[160];
    switch (f.mode) {
    case 0:
        return "mode 0: entries marked A";
    case 1:
        std::snprintf(text, sizeof text, "mode 1: in file order up to number %d", f.numberLimit);
        return text;
    case 2:
        std::snprintf(text, sizeof text, "mode 2: H from %.1f to %.1f", static_cast<double>(f.hMin),
                      static_cast<double>(f.hMax));
        return text;
    default:
        return "every entry";
    }
}

std::string DescribeFilter(const CometFilter& f)
{
    char text[160];
    switch (f.mode) {
    case 0:
        return "mode 0: entries marked A";
    case 1:
        std::snprintf(text, sizeof text, "mode 1: perihelion within %.0f days of the map's date", f.days);
        return text;
    case 2:
        return "mode 2: none";
    default:
        return "every entry";
    }
}

// ----------------------------------------------------------- catalogues

void CatalogOtherLines::EntryErased(std::size_t index)
{
    for (Line& l : lines)
        if (l.beforeEntry > index) --l.beforeEntry;
}

CatalogReadResult ParseAsteroidCatalog(std::string_view text, const AsteroidFilter& filter,
                                       std::vector<AsteroidElements>& out, CatalogOtherLines* others)
{
    CatalogReadResult result;
    result.opened = true;
    const std::size_t first = out.size();
    ForEachLine(text, [&](int number, std::string_view line, std::size_t) {
        if (TrimBlanks(line).empty()) return true;
        if (line.front() == ';') {
            if (others) others->lines.push_back({out.size() - first, std::string(line)});
            return true;
        }
        AsteroidElements a;
        std::string why;
        if (!ParseAsteroidLine(line, a, &why)) {
            result.refused.push_back({number, why});
            if (others) others->lines.push_back({out.size() - first, std::string(line)});
            return true;
        }
        bool stop = false;
        if (filter.Accept(a, stop)) {
            out.push_back(std::move(a));
            ++result.accepted;
        } else {
            ++result.filteredOut;
        }
        if (stop) result.stoppedAtLine = number;
        return !stop;
    });
    return result;
}

CatalogReadResult ParseCometCatalog(std::string_view text, const CometFilter& filter, std::vector<CometElements>& out,
                                    CatalogOtherLines* others)
{
    CatalogReadResult result;
    result.opened = true;
    const std::size_t first = out.size();
    ForEachLine(text, [&](int number, std::string_view line, std::size_t) {
        if (TrimBlanks(line).empty()) return true;
        if (line.front() == ';') {
            if (others) others->lines.push_back({out.size() - first, std::string(line)});
            return true;
        }
        // A one-character name ends the list (how the old files were closed);
        // what follows is not read, but kept for saving.
        if (TrimBlanks(Columns(line, 0, 30)).size() == 1) {
            if (others) {
                const std::size_t start = static_cast<std::size_t>(line.data() - text.data());
                others->tail = std::string(text.substr(start));
                if (!others->tail.empty() && others->tail.back() != '\n') others->tail += '\n';
            }
            return false;
        }
        CometElements c;
        std::string why;
        if (!ParseCometLine(line, c, &why)) {
            result.refused.push_back({number, why});
            if (others) others->lines.push_back({out.size() - first, std::string(line)});
            return true;
        }
        if (filter.Accept(c)) {
            out.push_back(std::move(c));
            ++result.accepted;
        } else {
            ++result.filteredOut;
        }
        return true;
    });
    return result;
}

CatalogReadResult ReadAsteroidCatalog(const std::string& path, const AsteroidFilter& filter,
                                      std::vector<AsteroidElements>& out, CatalogOtherLines* others)
{
    std::string text, error;
    if (!ReadWholeFile(path, text, error)) {
        CatalogReadResult r;
        r.error = error;
        return r;
    }
    return ParseAsteroidCatalog(text, filter, out, others);
}

CatalogReadResult ReadCometCatalog(const std::string& path, const CometFilter& filter, std::vector<CometElements>& out,
                                   CatalogOtherLines* others)
{
    std::string text, error;
    if (!ReadWholeFile(path, text, error)) {
        CatalogReadResult r;
        r.error = error;
        return r;
    }
    return ParseCometCatalog(text, filter, out, others);
}

namespace {

template <class List, class Format>
std::optional<std::string> WriteCatalog(const std::string& path, const List& list, std::string_view header, Format f,
                                        const CatalogOtherLines* others = nullptr)
{
    std::string text;
    text.reserve(list.size() * 120 + header.size() + 4);
    if (!header.empty()) {
        std::istringstream lines{std::string(header)};
        std::string line;
        while (std::getline(lines, line)) text += "; " + line + "\n";
    }
    // The file's other lines go back before the entries they preceded (they
    // are in file order); those after the last entry, then the tail, last.
    std::size_t next = 0;
    auto putOthersBefore = [&](std::size_t entry) {
        if (!others) return;
        for (; next < others->lines.size() && others->lines[next].beforeEntry <= entry; ++next)
            text += others->lines[next].text + "\n";
    };
    for (std::size_t i = 0; i < list.size(); ++i) {
        putOthersBefore(i);
        text += f(list[i]);
    }
    putOthersBefore(static_cast<std::size_t>(-1));
    if (others) text += others->tail;
    const AtomicWriteResult r =
        WriteFileAtomically(path, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    if (!r.ok) return "cannot write \"" + path + "\": " + r.error;
    return std::nullopt;
}

}  // namespace

std::optional<std::string> WriteAsteroidCatalog(const std::string& path, const std::vector<AsteroidElements>& list,
                                                std::string_view header)
{
    return WriteCatalog(path, list, header, FormatAsteroidLine);
}

std::optional<std::string> WriteCometCatalog(const std::string& path, const std::vector<CometElements>& list,
                                             std::string_view header)
{
    return WriteCatalog(path, list, header, FormatCometLine);
}

std::optional<std::string> WriteAsteroidCatalog(const std::string& path, const std::vector<AsteroidElements>& list,
                                                const CatalogOtherLines& others)
{
    return WriteCatalog(path, list, {}, FormatAsteroidLine, &others);
}

std::optional<std::string> WriteCometCatalog(const std::string& path, const std::vector<CometElements>& list,
                                             const CatalogOtherLines& others)
{
    return WriteCatalog(path, list, {}, FormatCometLine, &others);
}

// ---------------------------------------------------------- MPC formats

std::optional<PackedDate> UnpackEpoch(std::string_view p)
{
    if (p.size() != 5) return std::nullopt;
    const std::optional<int> century = PackedCentury(p[0]);
    if (!century || !std::isdigit(static_cast<unsigned char>(p[1])) || !std::isdigit(static_cast<unsigned char>(p[2])))
        return std::nullopt;
    PackedDate d;
    d.year = *century + (p[1] - '0') * 10 + (p[2] - '0');
    d.month = PackedDigit(p[3]);
    d.day = PackedDigit(p[4]);
    if (d.month < 1 || d.month > 12 || d.day < 1 || d.day > 31) return std::nullopt;
    return d;
}

std::optional<int> UnpackNumber(std::string_view p)
{
    p = TrimBlanks(p);
    if (p.size() != 5) return std::nullopt;
    if (p[0] == '~') {
        // Numbers from 620,000: base 62 in the four characters after the tilde.
        long long v = 0;
        for (std::size_t i = 1; i < 5; ++i) {
            const int d = PackedDigit(p[i]);
            if (d < 0) return std::nullopt;
            v = v * 62 + d;
        }
        return static_cast<int>(620000 + v);
    }
    const int lead = PackedDigit(p[0]);
    if (lead < 0) return std::nullopt;
    int rest = 0;
    if (!ReadInt(p.substr(1), rest) || rest < 0 || !std::all_of(p.begin() + 1, p.end(), [](char c) {
            return std::isdigit(static_cast<unsigned char>(c));
        }))
        return std::nullopt;
    return lead * 10000 + rest;
}

std::optional<std::string> UnpackProvisional(std::string_view p)
{
    p = TrimBlanks(p);
    if (p.size() != 7) return std::nullopt;
    const std::optional<int> century = PackedCentury(p[0]);
    if (!century || !std::isdigit(static_cast<unsigned char>(p[1])) || !std::isdigit(static_cast<unsigned char>(p[2])))
        return std::nullopt;
    const int year = *century + (p[1] - '0') * 10 + (p[2] - '0');
    const char halfMonth = p[3];
    if (halfMonth < 'A' || halfMonth > 'Y') return std::nullopt;
    const int high = PackedDigit(p[4]);
    if (high < 0 || !std::isdigit(static_cast<unsigned char>(p[5]))) return std::nullopt;
    const int cycle = high * 10 + (p[5] - '0');
    std::string text = std::to_string(year) + " " + halfMonth;
    const char last = p[6];
    if (std::isupper(static_cast<unsigned char>(last))) {
        // An asteroid: the second letter, then the cycle count when not zero.
        text += last;
        if (cycle > 0) text += std::to_string(cycle);
    } else {
        // A comet: the number within the half-month, then a fragment letter.
        text += std::to_string(cycle);
        if (last != '0') {
            if (!std::islower(static_cast<unsigned char>(last))) return std::nullopt;
            text += '-';
            text += static_cast<char>(std::toupper(static_cast<unsigned char>(last)));
        }
    }
    return text;
}

bool ParseMpcorbLine(std::string_view line, AsteroidElements& out, std::string* why)
{
    Say(why, "");
    if (line.size() < 103) {
        Say(why, "shorter than the 103 characters of an MPCORB element line");
        return false;
    }
    AsteroidElements a;
    a.flag = ' ';
    const std::string_view packed = TrimBlanks(Columns(line, 0, 6));
    const std::optional<PackedDate> epoch = UnpackEpoch(Columns(line, 20, 24));
    if (!epoch) {
        Say(why, "the packed epoch in columns 21–25 (\"" + std::string(Columns(line, 20, 24)) + "\") is not readable");
        return false;
    }
    struct Field {
        std::size_t first, last;
        double* value;
        const char* name;
    };
    double m0, w, node, incl, e, axis;
    const Field fields[] = {{26, 34, &m0, "mean anomaly"},  {37, 45, &w, "argument of perihelion"},
                            {48, 56, &node, "node"},        {59, 67, &incl, "inclination"},
                            {70, 78, &e, "eccentricity"},   {92, 102, &axis, "semi-major axis"}};
    for (const Field& f : fields)
        if (!ReadDouble(Columns(line, f.first, f.last), *f.value)) {
            Say(why, std::string("the ") + f.name + " in columns " + std::to_string(f.first + 1) + "–" +
                         std::to_string(f.last + 1) + " is not a number");
            return false;
        }
    double h = 0.0, g = 0.0;
    if (!TrimBlanks(Columns(line, 8, 12)).empty() && !ReadDouble(Columns(line, 8, 12), h)) {
        Say(why, "the absolute magnitude H in columns 9–13 is not a number");
        return false;
    }
    if (!TrimBlanks(Columns(line, 14, 18)).empty() && !ReadDouble(Columns(line, 14, 18), g)) {
        Say(why, "the slope parameter G in columns 15–19 is not a number");
        return false;
    }
    if (!CheckShape(axis, e, incl, why)) return false;
    if (e >= 1.0) {
        Say(why, "the eccentricity is 1 or more: not an elliptic orbit");
        return false;
    }
    // Number and name from the readable designation, "(1) Ceres" or
    // "2014 AA"; from the packed designation when the line stops short.
    const std::string_view readable = TrimBlanks(Columns(line, 166, 193));
    if (!readable.empty() && readable.front() == '(') {
        const std::size_t close = readable.find(')');
        int number = 0;
        if (close == std::string_view::npos || !ReadInt(readable.substr(1, close - 1), number)) {
            Say(why, "the designation \"" + std::string(readable) + "\" is not readable");
            return false;
        }
        a.number = number;
        a.name = Truncated(readable.substr(close + 1));
    } else if (!readable.empty()) {
        a.name = Truncated(readable);
        if (const std::optional<int> n = UnpackNumber(packed)) a.number = *n;
    } else if (const std::optional<int> n = UnpackNumber(packed)) {
        a.number = *n;
        a.name = std::to_string(*n);
    } else if (const std::optional<std::string> p = UnpackProvisional(packed)) {
        a.name = *p;
    } else {
        Say(why, "the packed designation \"" + std::string(packed) + "\" is not readable");
        return false;
    }
    if (a.name.empty()) a.name = std::to_string(a.number);
    a.absoluteH = h == 0.0 ? 49.9 : h;
    a.slopeG = g == 0.0 ? 0.15 : g;
    a.epochYear = static_cast<std::int16_t>(epoch->year);
    a.epochMonth = static_cast<std::int16_t>(epoch->month);
    a.epochDay = epoch->day;
    a.epochJdTT = CObserverDoc::JulianDate(epoch->year, epoch->month, epoch->day);
    a.meanAnomalyDeg = m0;
    a.aAU = axis;
    a.e = e;
    a.argPerihelionDeg = w;
    a.nodeDeg = node;
    a.inclinationDeg = incl;
    out = std::move(a);
    return true;
}

bool ParseMpcCometLine(std::string_view line, CometElements& out, std::string* why)
{
    Say(why, "");
    if (line.size() < 79) {
        Say(why, "shorter than the 79 characters of an MPC comet element line");
        return false;
    }
    CometElements c;
    c.flag = ' ';
    int year = 0, month = 0;
    double day, q, e, w, node, incl;
    if (!ReadInt(Columns(line, 14, 17), year) || !ReadInt(Columns(line, 19, 20), month) ||
        !ReadDouble(Columns(line, 22, 28), day)) {
        Say(why, "the perihelion date in columns 15–29 is not readable");
        return false;
    }
    struct Field {
        std::size_t first, last;
        double* value;
        const char* name;
    };
    const Field fields[] = {{30, 38, &q, "perihelion distance"}, {41, 48, &e, "eccentricity"},
                            {51, 58, &w, "argument of perihelion"}, {61, 68, &node, "node"},
                            {71, 78, &incl, "inclination"}};
    for (const Field& f : fields)
        if (!ReadDouble(Columns(line, f.first, f.last), *f.value)) {
            Say(why, std::string("the ") + f.name + " in columns " + std::to_string(f.first + 1) + "–" +
                         std::to_string(f.last + 1) + " is not a number");
            return false;
        }
    if (!CheckDate(year, month, day, why) || !CheckShape(q, e, incl, why)) return false;
    double g = 0.0, k = 0.0;
    const bool haveG = ReadDouble(Columns(line, 90, 94), g);
    const bool haveK = ReadDouble(Columns(line, 95, 99), k);
    c.absoluteG = haveG ? g : 99.0;  // no magnitude: never drawn
    c.slopeK = haveK ? k : 4.0;
    std::string name(TrimBlanks(Columns(line, 102, 157)));
    if (name.empty()) {
        // The designation from the packed columns: periodic number and type,
        // or type and provisional designation.
        const std::string_view periodic = TrimBlanks(Columns(line, 0, 3));
        const char type = line[4];
        if (!periodic.empty()) {
            int n = 0;
            if (ReadInt(periodic, n)) name = std::to_string(n) + type;
        } else if (const std::optional<std::string> p = UnpackProvisional(Columns(line, 5, 11))) {
            name = std::string(1, type) + "/" + *p;
        }
    }
    if (name.empty()) {
        Say(why, "the line carries no designation");
        return false;
    }
    c.name = Truncated(name);
    c.perihelionYear = static_cast<std::int16_t>(year);
    c.perihelionMonth = static_cast<std::int16_t>(month);
    c.perihelionDay = day;
    c.perihelionJdTT = CObserverDoc::JulianDate(year, month, day);
    c.qAU = q;
    c.e = e;
    c.argPerihelionDeg = w;
    c.nodeDeg = node;
    c.inclinationDeg = incl;
    out = std::move(c);
    return true;
}

namespace {

template <class Parse>
CatalogReadResult ImportLines(std::string_view text, bool skipToRule, const ProgressFn& progress, Parse parse)
{
    CatalogReadResult result;
    result.opened = true;
    // The MPC's MPCORB.DAT opens with a page of text ended by a rule of
    // dashes; an extract of element lines has none.
    const bool hasRule = text.rfind("-----", 0) == 0 || text.find("\n-----") != std::string_view::npos;
    bool inData = !skipToRule || !hasRule;
    const double total = static_cast<double>(std::max<std::size_t>(text.size(), 1));
    ForEachLine(text, [&](int number, std::string_view line, std::size_t end) {
        if (!inData) {
            if (line.size() > 5 && line.substr(0, 4) == "----") inData = true;
            return true;
        }
        if (progress && number % 4096 == 0 && progress(static_cast<double>(end) / total) == ProgressAnswer::Cancel) {
            result.cancelled = true;
            return false;
        }
        if (TrimBlanks(line).empty()) return true;
        std::string why;
        bool stop = false;
        switch (parse(line, why, stop)) {
        case 1:
            ++result.accepted;
            break;
        case 0:
            ++result.filteredOut;
            break;
        default:
            result.refused.push_back({number, why});
            break;
        }
        if (stop) result.stoppedAtLine = number;
        return !stop;
    });
    if (progress && !result.cancelled) progress(1.0);
    return result;
}

}  // namespace

CatalogReadResult ImportMpcorb(std::string_view text, const AsteroidFilter& filter, std::vector<AsteroidElements>& out,
                               const ProgressFn& progress)
{
    return ImportLines(
        text, true, progress,
        [&](std::string_view line, std::string& why, bool& stop) {
            AsteroidElements a;
            if (!ParseMpcorbLine(line, a, &why)) return -1;
            if (!filter.Accept(a, stop)) return 0;
            out.push_back(std::move(a));
            return 1;
        });
}

CatalogReadResult ImportMpcComets(std::string_view text, const CometFilter& filter, std::vector<CometElements>& out,
                                  const ProgressFn& progress)
{
    return ImportLines(
        text, false, progress,
        [&](std::string_view line, std::string& why, bool&) {
            CometElements c;
            if (!ParseMpcCometLine(line, c, &why)) return -1;
            if (!filter.Accept(c)) return 0;
            out.push_back(std::move(c));
            return 1;
        });
}

namespace {

bool LooksLikeMpcorb(std::string_view line)
{
    return line.size() >= 103 && UnpackEpoch(Columns(line, 20, 24)).has_value() && line[25] == ' ';
}

bool LooksLikeMpcComet(std::string_view line)
{
    if (line.size() < 79) return false;
    const char type = line[4];
    if (std::strchr("CPDXIA", type) == nullptr || type == '\0') return false;
    int year = 0;
    return ReadInt(Columns(line, 14, 17), year) && line[18] == ' ';
}

}  // namespace

std::optional<PastedElements> ParsePastedLine(std::string_view line, std::string* why)
{
    while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) line.remove_suffix(1);
    std::string reason;
    if (LooksLikeMpcorb(line)) {
        AsteroidElements a;
        if (ParseMpcorbLine(line, a, &reason)) return a;
        Say(why, "MPCORB line: " + reason);
        return std::nullopt;
    }
    if (LooksLikeMpcComet(line)) {
        CometElements c;
        if (ParseMpcCometLine(line, c, &reason)) return c;
        Say(why, "MPC comet line: " + reason);
        return std::nullopt;
    }
    CometElements c;
    if (line.size() > 45 && ParseCometLine(line, c, &reason)) return c;
    AsteroidElements a;
    if (line.size() > 40 && ParseAsteroidLine(line, a, &reason)) return a;
    Say(why, "not an element line of the MPCORB, MPC comet, asteroid catalogue or comet catalogue format");
    return std::nullopt;
}

ElementFileKind DetectElementFile(std::string_view text)
{
    ElementFileKind kind = ElementFileKind::Unknown;
    int looked = 0;
    ForEachLine(text, [&](int, std::string_view line, std::size_t) {
        if (TrimBlanks(line).empty() || line.front() == ';') return true;
        if (line.substr(0, 5) == "-----") {
            kind = ElementFileKind::Mpcorb;
            return false;
        }
        if (LooksLikeMpcorb(line)) {
            kind = ElementFileKind::Mpcorb;
            return false;
        }
        if (LooksLikeMpcComet(line)) {
            kind = ElementFileKind::MpcComets;
            return false;
        }
        CometElements c;
        AsteroidElements a;
        if (line.size() > 45 && ParseCometLine(line, c)) {
            kind = ElementFileKind::CometCatalog;
            return false;
        }
        if (line.size() > 40 && ParseAsteroidLine(line, a)) {
            kind = ElementFileKind::AsteroidCatalog;
            return false;
        }
        return ++looked < 200;  // the MPC file's header runs some 40 lines
    });
    return kind;
}

int MergeAsteroids(std::vector<AsteroidElements>& list, const std::vector<AsteroidElements>& incoming)
{
    std::unordered_map<int, std::size_t> byNumber;
    std::unordered_map<std::string, std::size_t> byName;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i].number > 0) byNumber.emplace(list[i].number, i);
        else byName.emplace(list[i].name, i);
    }
    int replaced = 0;
    for (const AsteroidElements& a : incoming) {
        std::size_t at = list.size();
        if (a.number > 0) {
            if (auto it = byNumber.find(a.number); it != byNumber.end()) at = it->second;
        } else if (auto it = byName.find(a.name); it != byName.end()) {
            at = it->second;
        }
        if (at < list.size()) {
            const char flag = list[at].flag;
            list[at] = a;
            list[at].flag = flag;  // the user's choice for display stays
            ++replaced;
        } else {
            if (a.number > 0) byNumber.emplace(a.number, list.size());
            else byName.emplace(a.name, list.size());
            list.push_back(a);
        }
    }
    return replaced;
}

int MergeComets(std::vector<CometElements>& list, const std::vector<CometElements>& incoming)
{
    std::unordered_map<std::string, std::size_t> byName;
    for (std::size_t i = 0; i < list.size(); ++i) byName.emplace(list[i].name, i);
    int replaced = 0;
    for (const CometElements& c : incoming) {
        if (auto it = byName.find(c.name); it != byName.end()) {
            const char flag = list[it->second].flag;
            list[it->second] = c;
            list[it->second].flag = flag;
            ++replaced;
        } else {
            byName.emplace(c.name, list.size());
            list.push_back(c);
        }
    }
    return replaced;
}

}  // namespace orv
