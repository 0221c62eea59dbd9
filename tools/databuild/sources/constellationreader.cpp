#include "sources/constellationreader.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/strings.h"
#include "common/linereader.h"
#include "common/textfields.h"

namespace orv::databuild {

namespace {

std::string Upper(std::string_view s)
{
    std::string u(s);
    for (char& c : u) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return u;
}

// Whitespace-separated words of a line.
std::vector<std::string_view> Words(std::string_view line)
{
    std::vector<std::string_view> words;
    std::size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && std::isspace(static_cast<unsigned char>(line[i]))) ++i;
        const std::size_t start = i;
        while (i < line.size() && !std::isspace(static_cast<unsigned char>(line[i]))) ++i;
        if (i > start) words.push_back(line.substr(start, i - start));
    }
    return words;
}

// "h:mm:ss" → seconds of time, "±dd:mm" → arc minutes.
bool ParseSexagesimal(std::string_view text, int parts, std::int32_t& out)
{
    bool negative = false;
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        negative = text[0] == '-';
        text.remove_prefix(1);
    }
    std::int64_t total = 0;
    for (int p = 0; p < parts; ++p) {
        const auto colon = text.find(':');
        const std::string_view field = p + 1 < parts ? text.substr(0, colon) : text;
        if (p + 1 < parts && colon == std::string_view::npos) return false;
        std::uint32_t v = 0;
        if (!ParseUnsigned(field, v) || (p > 0 && v >= 60)) return false;
        total = total * 60 + v;
        if (p + 1 < parts) text.remove_prefix(colon + 1);
    }
    out = static_cast<std::int32_t>(negative ? -total : total);
    return true;
}

}  // namespace

int ConstellationOfAbbreviation(std::string_view abbreviation)
{
    const std::string u = Upper(Trim(abbreviation));
    if (u == "SER1" || u == "SER2") return FindConstellation("Ser");
    if (u.size() != 3) return -1;
    return FindConstellation(u);
}

bool ParseFigureLine(std::string_view line, ConstellationFigure& out, std::string& why)
{
    const auto words = Words(line);
    if (words.size() < 2) return Fail(why, "expected \"Abr N hip hip …\"");
    out.constellation = ConstellationOfAbbreviation(words[0]);
    if (out.constellation < 0) return Fail(why, "unknown constellation " + std::string(words[0]));
    std::uint32_t n = 0;
    if (!ParseUnsigned(words[1], n) || n == 0) return Fail(why, "bad line count " + std::string(words[1]));
    if (words.size() != 2 + 2 * static_cast<std::size_t>(n))
        return Fail(why, "expected " + std::to_string(2 * n) + " HIP numbers, found " +
                             std::to_string(words.size() - 2));
    out.lines.clear();
    for (std::uint32_t i = 0; i < n; ++i) {
        FigureLine l;
        if (!ParseUnsigned(words[2 + 2 * i], l.hipA) || !ParseUnsigned(words[3 + 2 * i], l.hipB) || l.hipA == 0 ||
            l.hipB == 0)
            return Fail(why, "bad HIP number in line " + std::to_string(i + 1));
        out.lines.push_back(l);
    }
    return true;
}

bool ParseNameLine(std::string_view line, ConstellationNames& out, std::string& why)
{
    std::string_view parts[2];
    if (Split(line, '\t', parts, 2) != 2) return Fail(why, "expected Abr<tab>\"Name\"");
    out.constellation = ConstellationOfAbbreviation(parts[0]);
    if (out.constellation < 0) return Fail(why, "unknown constellation " + std::string(parts[0]));
    const std::string_view rest = Trim(parts[1]);
    const auto close = rest.find('"', 1);
    if (rest.empty() || rest[0] != '"' || close == std::string_view::npos) return Fail(why, "expected a quoted name");
    out.abbreviation = std::string(ConstellationAbbreviation(out.constellation));
    out.name = std::string(rest.substr(1, close - 1));
    if (out.name.empty()) return Fail(why, "empty name");
    return true;
}

bool ParseRomanStrip(std::string_view line, RomanStrip& out, std::string& why)
{
    const auto words = Words(line);
    if (words.size() != 4) return Fail(why, "expected \"h:mm:ss h:mm:ss dd:mm Abr\"");
    if (!ParseSexagesimal(words[0], 3, out.raLowSecTime) || !ParseSexagesimal(words[1], 3, out.raHighSecTime) ||
        out.raLowSecTime < 0 || out.raHighSecTime > 86400 || out.raLowSecTime >= out.raHighSecTime)
        return Fail(why, "bad right ascension range");
    if (!ParseSexagesimal(words[2], 2, out.decLowArcmin) || out.decLowArcmin < -5400 || out.decLowArcmin > 5400)
        return Fail(why, "bad declination " + std::string(words[2]));
    out.constellation = ConstellationOfAbbreviation(words[3]);
    if (out.constellation < 0) return Fail(why, "unknown constellation " + std::string(words[3]));
    return true;
}

bool ParseNamePosition(std::string_view line, NamePosition& out, std::string& why)
{
    // "012000+410000And ANDROMEDA": hhmmss, ±ddmmss, abbreviation, name.
    if (line.size() < 17) return Fail(why, "line too short");
    const std::string_view abbrev = Trim(line.substr(13, 3));
    if (abbrev.empty()) return false;  // an unnamed figure of another culture
    std::uint32_t h = 0, m = 0, s = 0, d = 0, am = 0, as = 0;
    if (!ParseUnsigned(line.substr(0, 2), h) || !ParseUnsigned(line.substr(2, 2), m) ||
        !ParseUnsigned(line.substr(4, 2), s) || h >= 24 || m >= 60 || s >= 60)
        return Fail(why, "bad right ascension");
    if ((line[6] != '+' && line[6] != '-') || !ParseUnsigned(line.substr(7, 2), d) ||
        !ParseUnsigned(line.substr(9, 2), am) || !ParseUnsigned(line.substr(11, 2), as) || d > 90 || am >= 60 ||
        as >= 60)
        return Fail(why, "bad declination");
    // kstars-data writes Serpens' two parts as SCp and SCd.
    const std::string u = Upper(abbrev);
    out.constellation = (u == "SCP" || u == "SCD") ? FindConstellation("Ser") : ConstellationOfAbbreviation(abbrev);
    if (out.constellation < 0) return Fail(why, "unknown constellation " + std::string(abbrev));
    out.raJ2000Deg = 15.0 * (h + m / 60.0 + s / 3600.0);
    out.decJ2000Deg = (line[6] == '-' ? -1.0 : 1.0) * (d + am / 60.0 + as / 3600.0);
    return true;
}

bool ParseBoundarySegments(std::string_view text, std::vector<BoundarySegment>& out, std::string& why)
{
    // Tokens with the line each starts on.
    std::vector<std::pair<std::string_view, std::size_t>> tokens;
    std::size_t line = 1;
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == '\n') ++line;
        if (std::isspace(static_cast<unsigned char>(text[i]))) {
            ++i;
            continue;
        }
        const std::size_t start = i;
        while (i < text.size() && !std::isspace(static_cast<unsigned char>(text[i]))) ++i;
        tokens.emplace_back(text.substr(start, i - start), line);
    }
    std::size_t t = 0;
    auto fail = [&](std::size_t at, const std::string& msg) {
        return Fail(why, "line " + std::to_string(at) + ": " + msg);
    };
    while (t < tokens.size()) {
        BoundarySegment seg;
        seg.line = tokens[t].second;
        std::uint32_t n = 0;
        if (!ParseUnsigned(tokens[t].first, n) || n < 2) return fail(seg.line, "bad point count");
        ++t;
        if (t + 2 * n + 3 > tokens.size()) return fail(seg.line, "segment cut short");
        for (std::uint32_t k = 0; k < n; ++k, t += 2) {
            double ra = 0.0, dec = 0.0;
            if (ParseNumber(tokens[t].first, ra) != FieldState::Ok ||
                ParseNumber(tokens[t + 1].first, dec) != FieldState::Ok || ra < -24.0 || ra > 48.0 || dec < -90.0 ||
                dec > 90.0)
                return fail(tokens[t].second, "bad point");
            seg.pointsJ2000Deg.emplace_back(ra * 15.0, dec);
        }
        if (tokens[t].first != "2") return fail(tokens[t].second, "expected the two constellations");
        seg.left = ConstellationOfAbbreviation(tokens[t + 1].first);
        seg.right = ConstellationOfAbbreviation(tokens[t + 2].first);
        if (seg.left < 0 || seg.right < 0) return fail(tokens[t].second, "unknown constellation");
        t += 3;
        out.push_back(std::move(seg));
    }
    return true;
}

ConstellationSourcePaths LocateConstellationSources(const std::string& stellariumDir, const std::string& kstarsDir)
{
    namespace fs = std::filesystem;
    const fs::path s(stellariumDir);
    ConstellationSourcePaths p;
    p.figures = (s / "skycultures" / "western" / "constellationship.fab").string();
    p.names = (s / "skycultures" / "western" / "constellation_names.eng.fab").string();
    p.strips = (s / "data" / "constellations_spans.dat").string();
    p.boundaries = (s / "data" / "constellation_boundaries.dat").string();
    p.namePositions = (fs::path(kstarsDir) / "cnames.dat").string();
    return p;
}

bool ReadConstellationSources(const ConstellationSourcePaths& paths, ConstellationSources& out,
                              const Progress& progress, std::string& error)
{
    for (const std::string* p : {&paths.figures, &paths.names, &paths.strips, &paths.boundaries, &paths.namePositions})
        if (!std::filesystem::is_regular_file(*p)) return Fail(error, "missing source " + *p);

    progress("reading " + paths.figures);
    if (!ReadLines(paths.figures, [&](std::string_view line, std::size_t, std::string& why) {
            if (IsComment(line)) return true;
            ConstellationFigure f;
            if (!ParseFigureLine(line, f, why)) return false;
            out.figures.push_back(std::move(f));
            return true;
        }, error))
        return false;

    progress("reading " + paths.names);
    if (!ReadLines(paths.names, [&](std::string_view line, std::size_t, std::string& why) {
            if (IsComment(line)) return true;
            ConstellationNames n;
            if (!ParseNameLine(line, n, why)) return false;
            // The genitives are the IAU's (Transactions of the IAU, 1922),
            // as the program's string table holds them.
            n.genitive = std::string(ConstellationGenitive(n.constellation));
            out.names.push_back(std::move(n));
            return true;
        }, error))
        return false;

    progress("reading " + paths.strips);
    if (!ReadLines(paths.strips, [&](std::string_view line, std::size_t, std::string& why) {
            if (IsComment(line)) return true;
            RomanStrip s;
            if (!ParseRomanStrip(line, s, why)) return false;
            out.strips.push_back(s);
            return true;
        }, error))
        return false;

    progress("reading " + paths.namePositions);
    bool western = false;
    if (!ReadLines(paths.namePositions, [&](std::string_view line, std::size_t, std::string& why) {
            if (IsComment(line)) return true;
            if (line.size() >= 2 && line[0] == 'C' && line[1] == ' ') {
                western = Trim(line.substr(2)) == "Western";
                return true;
            }
            if (!western) return true;
            NamePosition p;
            if (!ParseNamePosition(line, p, why)) return why.empty();
            out.namePositions.push_back(p);
            return true;
        }, error))
        return false;

    progress("reading " + paths.boundaries);
    std::ifstream in(paths.boundaries, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    if (!in.good() && !in.eof()) return Fail(error, "cannot read " + paths.boundaries);
    std::string why;
    if (!ParseBoundarySegments(text.str(), out.segments, why)) return Fail(error, paths.boundaries + ", " + why);
    progress("  " + std::to_string(out.figures.size()) + " figures, " + std::to_string(out.names.size()) +
             " names, " + std::to_string(out.namePositions.size()) + " name places, " +
             std::to_string(out.strips.size()) + " strips, " + std::to_string(out.segments.size()) +
             " boundary segments");
    return true;
}

}  // namespace orv::databuild
