#include "overlay/overlayfile.h"

#include <erfa.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <fstream>
#include <sstream>

#include "util/angles.h"
#include "util/atomicfile.h"
#include "util/datapath.h"
#include "util/dataproblems.h"
#include "util/text.h"

namespace orv {

namespace {

constexpr std::size_t kMaxLineChars = 1023;
// One step of a split `draw` for each 0.017 rad of right ascension.
constexpr double kDrawStepsPerRad = 58.8235294117647;

std::string Trim(const std::string& s)
{
    const auto b = s.find_first_not_of(" \t\r\n");
    if (b == std::string::npos) return {};
    const auto e = s.find_last_not_of(" \t\r\n");
    return s.substr(b, e - b + 1);
}

// The first word of `s` (blanks and tabs separate words) and the rest after it.
std::string TakeWord(const std::string& s, std::string& rest)
{
    const auto b = s.find_first_not_of(" \t");
    if (b == std::string::npos) {
        rest.clear();
        return {};
    }
    const auto e = s.find_first_of(" \t", b);
    if (e == std::string::npos) {
        rest.clear();
        return s.substr(b);
    }
    rest = s.substr(e);
    return s.substr(b, e - b);
}

std::vector<std::string> SplitCommas(const std::string& s)
{
    std::vector<std::string> out;
    std::string::size_type start = 0;
    while (true) {
        const auto comma = s.find(',', start);
        out.push_back(Trim(s.substr(start, comma == std::string::npos ? std::string::npos : comma - start)));
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    return out;
}

bool ToDouble(const std::string& token, double& v)
{
    const char* first = token.data();
    const char* last = first + token.size();
    if (first != last && *first == '+') ++first;
    const auto [ptr, ec] = std::from_chars(first, last, v);
    return ec == std::errc() && ptr == last && std::isfinite(v);
}

bool ToInt(const std::string& token, int& v)
{
    double d = 0.0;
    if (!ToDouble(token, d) || d != std::floor(d) || std::fabs(d) > 1e9) return false;
    v = static_cast<int>(d);
    return true;
}

// "a", "a b" or "a b c" as a + b/60 + c/3600 (the leading parts whole numbers).
std::optional<double> ReadSexagesimal(const std::string& token)
{
    std::istringstream in(token);
    std::vector<std::string> parts;
    for (std::string p; in >> p;) parts.push_back(p);
    if (parts.empty() || parts.size() > 3) return std::nullopt;
    double value = 0.0, scale = 1.0;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        double v = 0.0;
        if (!ToDouble(parts[i], v)) return std::nullopt;
        if (i + 1 < parts.size() && v != std::floor(v)) return std::nullopt;  // only the last part has decimals
        if (i > 0 && (v < 0.0 || v >= 60.0)) return std::nullopt;
        value += v / scale;
        scale *= 60.0;
    }
    return value;
}

const OverlayColour* FindColour(const COverlay& o, const std::string& name, OverlayColour& builtIn)
{
    const std::string key = AsciiLower(Trim(name));
    if (const auto it = o.colours.find(key); it != o.colours.end()) return &it->second;
    if (const auto c = BuiltInOverlayColour(key)) {
        builtIn = *c;
        return &builtIn;
    }
    return nullptr;
}

class CParser {
public:
    explicit CParser(COverlay& out) : m_out(out) {}

    void Line(std::string line, int lineNo)
    {
        m_line = lineNo;
        if (!line.empty() && line.back() == '\n') line.pop_back();
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.size() > kMaxLineChars) {
            line.resize(kMaxLineChars);
            Warn("the line is longer than 1023 characters; the rest is ignored");
        }
        if (line.empty() || line[0] == ';' || Trim(line).empty()) return;
        std::string rest;
        const std::string command = AsciiLower(TakeWord(line, rest));
        if (command == "move") Point(rest, false);
        else if (command == "draw") Point(rest, true);
        else if (command == "text") Text(rest);
        else if (command == "epoch") Epoch(rest);
        else if (command == "define") Define(rest);
        else if (command == "select") Select(rest);
        else Warn("unknown command \"" + command + "\"; expected move, draw, text, epoch, define or select");
    }

private:
    void Error(const std::string& m) { m_out.diagnostics.push_back({OverlayDiagnostic::Severity::Error, m_line, m}); }
    void Warn(const std::string& m) { m_out.diagnostics.push_back({OverlayDiagnostic::Severity::Warning, m_line, m}); }

    // Reads "RA, Dec" from the fields; false (with the error) when unreadable.
    bool Position(const std::vector<std::string>& f, double& raRad, double& decRad)
    {
        if (f.size() < 2 || f[0].empty() || f[1].empty()) {
            Error("expected a position \"RA, Dec\" (hours, degrees)");
            return false;
        }
        const auto hours = ParseOverlayHours(f[0]);
        if (!hours || *hours < 0.0 || *hours > 24.0) {
            Error("expected a right ascension of 0 to 24 hours, found \"" + f[0] + "\"");
            return false;
        }
        const auto deg = ParseOverlayDegrees(f[1]);
        if (!deg || *deg < -90.0 || *deg > 90.0) {
            Error("expected a declination of -90 to +90 degrees, found \"" + f[1] + "\"");
            return false;
        }
        raRad = *hours * 15.0 * kRadPerDeg;
        decRad = *deg * kRadPerDeg;
        return true;
    }

    void Bound(double raRad, double decRad)
    {
        OverlayBounds& b = m_out.bounds;
        if (b.empty) {
            b = {false, raRad, raRad, decRad, decRad};
            return;
        }
        b.raMinRad = std::min(b.raMinRad, raRad);
        b.raMaxRad = std::max(b.raMaxRad, raRad);
        b.decMinRad = std::min(b.decMinRad, decRad);
        b.decMaxRad = std::max(b.decMaxRad, decRad);
    }

    std::uint32_t AddPoint(double raRad, double decRad)
    {
        double v[3] = {std::cos(decRad) * std::cos(raRad), std::cos(decRad) * std::sin(raRad), std::sin(decRad)};
        if (m_epochJd) {
            // Mean equator and equinox of the epoch → J2000 (GCRS): the
            // transpose of the IAU 2006 bias-precession matrix at that date.
            const double (*m)[3] = m_epochMatrix;
            const double j[3] = {m[0][0] * v[0] + m[1][0] * v[1] + m[2][0] * v[2],
                                 m[0][1] * v[0] + m[1][1] * v[1] + m[2][1] * v[2],
                                 m[0][2] * v[0] + m[1][2] * v[1] + m[2][2] * v[2]};
            v[0] = j[0], v[1] = j[1], v[2] = j[2];
        }
        const auto index = static_cast<std::uint32_t>(m_out.points.size() / 3);
        m_out.points.insert(m_out.points.end(), v, v + 3);
        return index;
    }

    void Emit(OverlayOp op, std::uint32_t index, std::uint32_t text = 0)
    {
        OverlayCommand c;
        c.op = op;
        c.frame = m_epochJd ? OverlayFrame::J2000 : OverlayFrame::MapEpoch;
        c.index = index;
        c.text = text;
        m_out.commands.push_back(c);
    }

    void Point(const std::string& rest, bool draw)
    {
        double ra = 0.0, dec = 0.0;
        if (!Position(SplitCommas(rest), ra, dec)) return;
        Bound(ra, dec);
        if (!draw || !m_havePoint) {
            // A draw with no point before it starts the line there.
            if (draw) Warn("draw without a point before it; taken as a move");
            Emit(OverlayOp::Move, AddPoint(ra, dec));
        } else {
            double dRa = ra - m_ra;
            if (dRa > kPi) dRa -= kTwoPi;
            else if (dRa < -kPi) dRa += kTwoPi;
            const double dDec = dec - m_dec;
            const int n = static_cast<int>(std::fabs(dRa) * kDrawStepsPerRad + 1.0);
            for (int i = 1; i <= n; ++i)
                Emit(OverlayOp::Draw, AddPoint(m_ra + i * dRa / n, m_dec + i * dDec / n));
        }
        m_ra = ra;
        m_dec = dec;
        m_havePoint = true;
    }

    void Text(const std::string& rest)
    {
        const auto c1 = rest.find(',');
        const auto c2 = c1 == std::string::npos ? std::string::npos : rest.find(',', c1 + 1);
        if (c2 == std::string::npos) {
            if (c1 == std::string::npos) {
                Error("expected \"RA, Dec, text\"");
                return;
            }
        }
        const std::vector<std::string> f{Trim(rest.substr(0, c1)),
                                         Trim(rest.substr(c1 + 1, c2 == std::string::npos ? std::string::npos
                                                                                          : c2 - c1 - 1))};
        double ra = 0.0, dec = 0.0;
        if (!Position(f, ra, dec)) return;
        const std::string text = c2 == std::string::npos ? std::string() : Trim(rest.substr(c2 + 1));
        if (text.empty()) {
            Error("expected a text after \"RA, Dec,\"");
            return;
        }
        Bound(ra, dec);
        m_out.texts.push_back(text);
        Emit(OverlayOp::Text, AddPoint(ra, dec), static_cast<std::uint32_t>(m_out.texts.size() - 1));
    }

    void Epoch(const std::string& rest)
    {
        const std::string word = Trim(rest);
        const auto jd = OverlayEpochJd(word);
        if (!jd) {
            Error("expected an epoch such as J2000.0 or B1950.0, found \"" + word + "\"");
            return;
        }
        m_epochJd = *jd;
        eraPmat06(*jd, 0.0, m_epochMatrix);
    }

    OverlayColour ColourField(const std::string& name, const OverlayColour& fallback)
    {
        OverlayColour builtIn;
        if (const OverlayColour* c = FindColour(m_out, name, builtIn)) return *c;
        Warn("unknown colour \"" + name + "\"; the default is kept");
        return fallback;
    }

    void Define(const std::string& rest)
    {
        std::string afterKind;
        const std::string kind = AsciiLower(TakeWord(rest, afterKind));
        std::string afterName;
        const std::string name = AsciiLower(Trim(TakeWord(afterKind, afterName)));
        if (kind != "colour" && kind != "color" && kind != "font" && kind != "line") {
            Error("expected \"define colour\", \"define font\" or \"define line\"");
            return;
        }
        if (name.empty()) {
            Error("expected a name after \"define " + kind + "\"");
            return;
        }
        const std::vector<std::string> f = SplitCommas(afterName);
        auto has = [&](std::size_t i) { return i < f.size() && !f[i].empty(); };
        if (kind == "colour" || kind == "color") {
            int rgb[3] = {0, 0, 0};
            for (int i = 0; i < 3; ++i) {
                if (!has(i) || !ToInt(f[i], rgb[i]) || rgb[i] < 0 || rgb[i] > 255) {
                    Error("expected \"define colour NAME red, green, blue\" with three whole numbers 0 to 255");
                    return;
                }
            }
            m_out.colours[name] = OverlayColour{static_cast<std::uint8_t>(rgb[0]), static_cast<std::uint8_t>(rgb[1]),
                                                static_cast<std::uint8_t>(rgb[2])};
            return;
        }
        if (kind == "font") {
            OverlayFont font;
            if (has(0)) font.face = f[0];
            double size = 0.0;
            int flag = 0;
            if (has(1)) {
                if (ToDouble(f[1], size) && size > 0.0 && size <= 500.0) font.sizePt = size;
                else Warn("expected a font size in points, found \"" + f[1] + "\"; 10 is used");
            }
            if (has(2)) {
                if (ToInt(f[2], flag) && (flag == 0 || flag == 1)) font.bold = flag != 0;
                else Warn("expected bold 0 or 1, found \"" + f[2] + "\"");
            }
            if (has(3)) {
                if (ToInt(f[3], flag) && (flag == 0 || flag == 1)) font.italic = flag != 0;
                else Warn("expected italic 0 or 1, found \"" + f[3] + "\"");
            }
            if (has(4)) font.first = ColourField(f[4], font.first);
            if (has(5)) font.second = ColourField(f[5], font.second);
            m_fontIndex[name] = static_cast<std::uint32_t>(m_out.fonts.size());
            m_out.fonts.push_back(font);
            return;
        }
        OverlayLine line;
        if (has(0)) {
            const std::string style = AsciiLower(f[0]);
            if (style == "dash") line.style = OverlayLineStyle::Dash;
            else if (style == "dot") line.style = OverlayLineStyle::Dot;
            else if (style == "dashdot") line.style = OverlayLineStyle::DashDot;
            else if (style == "dashdotdot") line.style = OverlayLineStyle::DashDotDot;
            else if (style != "solid") Warn("unknown line style \"" + f[0] + "\"; solid is used");
        }
        if (has(1)) {
            int w = 0;
            if (ToInt(f[1], w) && w >= 0 && w <= 400) line.widthQuarterPt = w;
            else Warn("expected a line width in quarter points, found \"" + f[1] + "\"");
        }
        if (has(2)) line.first = ColourField(f[2], line.first);
        if (has(3)) line.second = ColourField(f[3], line.second);
        m_lineIndex[name] = static_cast<std::uint32_t>(m_out.lines.size());
        m_out.lines.push_back(line);
    }

    static int AlignWord(const std::string& w, const char* low, const char* high)
    {
        const std::string s = AsciiLower(Trim(w));
        if (s == low) return 1;
        if (s == high) return 3;
        return 2;  // centre, center, missing or unknown
    }

    void Select(const std::string& rest)
    {
        std::string afterKind;
        const std::string kind = AsciiLower(TakeWord(rest, afterKind));
        const std::string name = AsciiLower(Trim(afterKind));
        if (kind == "font" || kind == "line") {
            const auto& index = kind == "font" ? m_fontIndex : m_lineIndex;
            const auto it = index.find(name);
            if (it == index.end()) {
                Warn("no " + kind + " \"" + name + "\" is defined above this line; the select is ignored");
                return;
            }
            Emit(kind == "font" ? OverlayOp::SelectFont : OverlayOp::SelectLine, it->second);
            return;
        }
        if (kind == "textalign") {
            const std::vector<std::string> f = SplitCommas(afterKind);
            const int h = AlignWord(f.size() > 0 ? f[0] : std::string(), "left", "right");
            const int v = AlignWord(f.size() > 1 ? f[1] : std::string(), "top", "bottom");
            Emit(OverlayOp::TextAlign, static_cast<std::uint32_t>(h * 16 + v));
            return;
        }
        Error("expected \"select font\", \"select line\" or \"select textalign\"");
    }

    COverlay& m_out;
    int m_line = 0;
    bool m_havePoint = false;
    double m_ra = 0.0, m_dec = 0.0;
    std::optional<double> m_epochJd;
    double m_epochMatrix[3][3] = {};
    std::map<std::string, std::uint32_t> m_fontIndex, m_lineIndex;
};

std::string Folder(const std::string& path)
{
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash);
}

}  // namespace

std::optional<OverlayColour> BuiltInOverlayColour(const std::string& name)
{
    static const std::map<std::string, OverlayColour> kColours{
        {"black", {0, 0, 0}},          {"white", {255, 255, 255}},   {"red", {255, 0, 0}},
        {"dkred", {128, 0, 0}},        {"green", {0, 255, 0}},       {"dkgreen", {0, 128, 0}},
        {"blue", {0, 0, 255}},         {"dkblue", {0, 0, 128}},      {"yellow", {255, 255, 0}},
        {"dkyellow", {128, 128, 0}},   {"cyan", {0, 255, 255}},      {"dkcyan", {0, 128, 128}},
        {"magenta", {255, 0, 255}},    {"dkmagenta", {128, 0, 128}}, {"grey", {128, 128, 128}},
        {"gray", {128, 128, 128}},     {"dkgrey", {64, 64, 64}},     {"dkgray", {64, 64, 64}},
        {"ltgrey", {192, 192, 192}},   {"ltgray", {192, 192, 192}},
    };
    const auto it = kColours.find(AsciiLower(Trim(name)));
    if (it == kColours.end()) return std::nullopt;
    return it->second;
}

std::size_t COverlay::ErrorCount() const
{
    return static_cast<std::size_t>(std::count_if(diagnostics.begin(), diagnostics.end(), [](const auto& d) {
        return d.severity == OverlayDiagnostic::Severity::Error;
    }));
}

std::optional<double> OverlayEpochJd(const std::string& word)
{
    if (word.size() < 2) return std::nullopt;
    double year = 0.0;
    if (!ToDouble(word.substr(1), year)) return std::nullopt;
    // The precession model holds for some ten thousand years either side of
    // J2000; an equinox beyond ±100 000 years is a typing error, and one of
    // 1e308 would carry infinities into every point.
    if (!std::isfinite(year) || std::abs(year) > 100000.0) return std::nullopt;
    if (word[0] == 'B' || word[0] == 'b') return (year - 1950.0) * 365.2421988 + 2433282.4235;
    if (word[0] == 'J' || word[0] == 'j') return (year - 2000.0) * 365.25 + 2451545.0;
    return std::nullopt;
}

std::optional<double> ParseOverlayHours(const std::string& token) { return ReadSexagesimal(Trim(token)); }

std::optional<double> ParseOverlayDegrees(const std::string& token)
{
    std::string t = Trim(token);
    double sign = 1.0;
    if (!t.empty() && (t[0] == '-' || t[0] == '+')) {
        if (t[0] == '-') sign = -1.0;
        t = Trim(t.substr(1));
    }
    if (!t.empty() && (t[0] == '-' || t[0] == '+')) return std::nullopt;
    const auto v = ReadSexagesimal(t);
    if (!v) return std::nullopt;
    return sign * *v;
}

COverlay ParseOverlayText(const std::string& text, const std::string& name)
{
    COverlay out;
    out.path = name;
    out.opened = true;
    CParser parser(out);
    std::istringstream in(text);
    std::string line;
    int lineNo = 0;
    while (std::getline(in, line)) parser.Line(line, ++lineNo);
    IndexOverlayBlocks(out);
    return out;
}

void IndexOverlayBlocks(COverlay& o)
{
    constexpr std::size_t kBlockCommands = 32;
    constexpr double kMaxRadiusRad = 40.0 * 3.14159265358979323846 / 180.0;
    o.blocks.clear();
    const std::size_t n = o.commands.size();
    auto isPoint = [&](std::size_t i) {
        return o.commands[i].op == OverlayOp::Move || o.commands[i].op == OverlayOp::Draw;
    };
    auto point = [&](std::size_t i) { return &o.points[3 * static_cast<std::size_t>(o.commands[i].index)]; };
    std::size_t i = 0;
    while (i < n) {
        if (!isPoint(i)) {
            ++i;
            continue;
        }
        OverlayBlock b;
        b.firstCommand = static_cast<std::uint32_t>(i);
        b.frame = o.commands[i].frame;
        std::size_t end = i;
        while (end < n && end - i < kBlockCommands && isPoint(end) && o.commands[end].frame == b.frame) ++end;
        b.endCommand = static_cast<std::uint32_t>(end);
        // The point a leading draw starts from: the last point command before
        // the run (texts and styles do not move the pen).
        std::optional<std::size_t> from;
        if (o.commands[i].op == OverlayOp::Draw) {
            for (std::size_t k = i; k-- > 0;)
                if (isPoint(k)) {
                    from = k;
                    break;
                }
        }
        bool cullable = !from || o.commands[*from].frame == b.frame;
        double c[3] = {0.0, 0.0, 0.0};
        auto add = [&](const double* q) {
            for (int j = 0; j < 3; ++j) c[j] += q[j];
        };
        for (std::size_t k = i; k < end; ++k) add(point(k));
        if (from) add(point(*from));
        const double norm = std::sqrt(c[0] * c[0] + c[1] * c[1] + c[2] * c[2]);
        if (cullable && norm > 1e-9) {
            for (double& x : c) x /= norm;
            double minCos = 1.0;
            auto widen = [&](const double* q) { minCos = std::min(minCos, c[0] * q[0] + c[1] * q[1] + c[2] * q[2]); };
            for (std::size_t k = i; k < end; ++k) widen(point(k));
            if (from) widen(point(*from));
            const double radius = std::acos(std::clamp(minCos, -1.0, 1.0));
            if (radius <= kMaxRadiusRad) {
                for (int j = 0; j < 3; ++j) b.centre[j] = c[j];
                // A hair more for the rounding of the points' vectors.
                b.radiusRad = radius + 1e-9;
            }
        }
        o.blocks.push_back(b);
        i = end;
    }
}

COverlay ParseOverlayFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        COverlay empty;
        empty.path = path;
        return empty;
    }
    std::ostringstream text;
    text << in.rdbuf();
    return ParseOverlayText(text.str(), path);
}

// ---------------------------------------------------------------- The list

OverlayListResult ReadOverlayList(const std::string& path, std::vector<OverlayListEntry>& entries)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) return {false, "Unable to open file\n\"" + path + "\""};
    std::vector<OverlayListEntry> out;
    std::string line;
    int lineNo = 0;
    const std::filesystem::path folder = Folder(path);
    while (std::getline(in, line)) {
        ++lineNo;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (Trim(line).empty() || Trim(line)[0] == '#') continue;
        std::vector<std::string> f;
        std::string::size_type start = 0;
        for (int i = 0; i < 3; ++i) {
            const auto tab = line.find('\t', start);
            if (tab == std::string::npos) break;
            f.push_back(line.substr(start, tab - start));
            start = tab + 1;
        }
        int active = 0, lo = 0, hi = 0;
        // A list cut short or of another kind is refused whole (the
        // previous list stays) and named to the user.
        auto refuse = [&](const std::string& what) -> OverlayListResult {
            const std::string reason = "line " + std::to_string(lineNo) + ": " + what;
            ReportDataFileProblem(path, reason);
            return {false, path + ", " + reason};
        };
        if (f.size() != 3 || !ToInt(Trim(f[0]), active) || !ToInt(Trim(f[1]), lo) || !ToInt(Trim(f[2]), hi) ||
            lo < 0 || lo > 10 || hi < 0 || hi > 10)
            return refuse("expected \"active<TAB>lowest level<TAB>highest level<TAB>file\" with levels 0 to 10");
        OverlayListEntry e;
        e.active = active != 0 ? 1 : 0;
        e.minLevel = static_cast<std::int16_t>(lo);
        e.maxLevel = static_cast<std::int16_t>(hi);
        std::filesystem::path file = Trim(line.substr(start));
        if (file.empty()) return refuse("expected a file name");
        if (file.is_relative()) file = folder / file;
        e.path = file.lexically_normal().string();
        out.push_back(std::move(e));
    }
    entries = std::move(out);
    return {true, {}};
}

OverlayListResult WriteOverlayList(const std::string& path, const std::vector<OverlayListEntry>& entries)
{
    std::string text = "# Orvane map overlays: active, lowest and highest level (1-10, both 0: none), file\n";
    for (const OverlayListEntry& e : entries)
        text += std::to_string(e.active ? 1 : 0) + '\t' + std::to_string(e.minLevel) + '\t' +
                std::to_string(e.maxLevel) + '\t' + e.path + '\n';
    const AtomicWriteResult r =
        WriteFileAtomically(path, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    if (!r.ok) return {false, "Unable to create file\n\"" + path + "\""};
    return {true, {}};
}

namespace {

// An overlay drawn on the charts with lines that were skipped: a file of
// another kind under an overlay's name (nothing of it is drawn), or one cut
// short or mistyped (the rest is drawn). The charts name it to the user
// once; the overlay dialog lists every line.
void ReportSkippedOverlayLines(const COverlay& overlay)
{
    if (!overlay.opened) return;
    // Lines not drawn: those refused, and those of no known command.
    const auto skipped = [](const OverlayDiagnostic& d) {
        return d.severity == OverlayDiagnostic::Severity::Error || d.message.rfind("unknown command", 0) == 0;
    };
    const std::size_t count =
        static_cast<std::size_t>(std::count_if(overlay.diagnostics.begin(), overlay.diagnostics.end(), skipped));
    if (count == 0) return;
    const auto first = std::find_if(overlay.diagnostics.begin(), overlay.diagnostics.end(), skipped);
    const std::string where = "line " + std::to_string(first->line) + ": " + first->message;
    if (overlay.commands.empty())
        ReportDataFileProblem(overlay.path, "none of its lines is an overlay command, so nothing of it is drawn (a "
                                            "file of another kind?); " + where);
    else
        ReportDataFileProblem(overlay.path, std::to_string(count) + (count == 1 ? " line was" : " lines were") +
                                                " skipped (a file cut short or mistyped?); " + where);
}

}  // namespace

std::shared_ptr<const COverlay> COverlayStore::Get(const std::string& path)
{
    std::error_code ec;
    const auto time = std::filesystem::last_write_time(path, ec);
    const auto size = ec ? 0 : std::filesystem::file_size(path, ec);
    Cached& c = m_cache[path];
    if (c.overlay && !ec && c.time == time && c.size == size) return c.overlay;
    COverlay parsed = ParseOverlayFile(path);
    ReportSkippedOverlayLines(parsed);
    c.overlay = std::make_shared<const COverlay>(std::move(parsed));
    c.time = ec ? std::filesystem::file_time_type{} : time;
    c.size = size;
    return c.overlay;
}

void COverlayStore::LoadDrawn()
{
    for (const OverlayListEntry& e : entries)
        if (e.active != 0 || e.HasLevelRange()) Get(e.path);
    for (const std::string& f : extraFiles) Get(f);
}

bool LoadStartupOverlayList(COverlayStore& store, const std::string& userListPath)
{
    std::vector<OverlayListEntry> entries;
    std::string shipped;
    const bool read = (!userListPath.empty() && ReadOverlayList(userListPath, entries).ok) ||
                      (LocateDataFile("overlay.dat", shipped) && ReadOverlayList(shipped, entries).ok);
    store.entries = std::move(entries);
    ++store.generation;
    return read;
}

}  // namespace orv
