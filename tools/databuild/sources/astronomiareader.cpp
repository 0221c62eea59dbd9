#include "sources/astronomiareader.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>

#include "common/textfields.h"

namespace orv::databuild {

namespace {

// The subset of a JavaScript object literal the package uses: objects with
// bare or quoted keys, arrays, numbers and strings.
struct JsValue {
    enum class Kind { Number, String, Array, Object } kind = Kind::Number;
    double number = 0.0;
    std::string text;
    std::vector<JsValue> items;
    std::map<std::string, JsValue> members;

    const JsValue* Member(const std::string& key) const
    {
        const auto it = members.find(key);
        return it == members.end() ? nullptr : &it->second;
    }
};

class CJsLiteralParser {
public:
    explicit CJsLiteralParser(std::string_view text) : m_text(text) {}

    bool Parse(JsValue& out, std::string& error)
    {
        // The literal starts at the first brace ("const m = {").
        m_pos = m_text.find('{');
        if (m_pos == std::string_view::npos) return Fail(error, "no object literal found");
        return Value(out, error, 0);
    }

private:
    void SkipSpace()
    {
        while (m_pos < m_text.size()) {
            if (std::isspace(static_cast<unsigned char>(m_text[m_pos]))) {
                ++m_pos;
            } else if (m_text.compare(m_pos, 2, "//") == 0) {
                while (m_pos < m_text.size() && m_text[m_pos] != '\n') ++m_pos;
            } else if (m_text.compare(m_pos, 2, "/*") == 0) {
                const auto end = m_text.find("*/", m_pos + 2);
                m_pos = end == std::string_view::npos ? m_text.size() : end + 2;
            } else {
                break;
            }
        }
    }
    bool Where(std::string& error, const std::string& what)
    {
        return Fail(error, what + " at byte " + std::to_string(m_pos));
    }
    bool String(std::string& out, std::string& error)
    {
        const char quote = m_text[m_pos++];
        const auto end = m_text.find(quote, m_pos);
        if (end == std::string_view::npos) return Where(error, "unterminated string");
        out.assign(m_text.substr(m_pos, end - m_pos));
        m_pos = end + 1;
        return true;
    }
    bool Key(std::string& out, std::string& error)
    {
        SkipSpace();
        if (m_pos >= m_text.size()) return Where(error, "unexpected end");
        if (m_text[m_pos] == '"' || m_text[m_pos] == '\'') return String(out, error);
        const std::size_t start = m_pos;
        while (m_pos < m_text.size() &&
               (std::isalnum(static_cast<unsigned char>(m_text[m_pos])) || m_text[m_pos] == '_'))
            ++m_pos;
        if (m_pos == start) return Where(error, "expected a key");
        out.assign(m_text.substr(start, m_pos - start));
        return true;
    }
    bool Value(JsValue& out, std::string& error, int depth)
    {
        if (depth > 16) return Where(error, "nesting too deep");
        SkipSpace();
        if (m_pos >= m_text.size()) return Where(error, "unexpected end");
        const char c = m_text[m_pos];
        if (c == '{' || c == '[') {
            const bool object = c == '{';
            const char close = object ? '}' : ']';
            out.kind = object ? JsValue::Kind::Object : JsValue::Kind::Array;
            ++m_pos;
            for (;;) {
                SkipSpace();
                if (m_pos >= m_text.size()) return Where(error, "unexpected end");
                if (m_text[m_pos] == close) {
                    ++m_pos;
                    return true;
                }
                if (object) {
                    std::string key;
                    if (!Key(key, error)) return false;
                    SkipSpace();
                    if (m_pos >= m_text.size() || m_text[m_pos] != ':') return Where(error, "expected ':'");
                    ++m_pos;
                    if (!Value(out.members[key], error, depth + 1)) return false;
                } else {
                    out.items.emplace_back();
                    if (!Value(out.items.back(), error, depth + 1)) return false;
                }
                SkipSpace();
                if (m_pos < m_text.size() && m_text[m_pos] == ',') ++m_pos;
                else if (m_pos >= m_text.size() || m_text[m_pos] != close)
                    return Where(error, "expected ',' or closing bracket");
            }
        }
        if (c == '"' || c == '\'') {
            out.kind = JsValue::Kind::String;
            return String(out.text, error);
        }
        if (m_text.compare(m_pos, 3, "NaN") == 0) {
            out.kind = JsValue::Kind::Number;
            out.number = std::numeric_limits<double>::quiet_NaN();
            m_pos += 3;
            return true;
        }
        // A number: its characters gathered, since from_chars takes neither a
        // leading '+' nor a bare leading '.' (".0479" in the package's data).
        std::string token;
        while (m_pos < m_text.size() && (std::isdigit(static_cast<unsigned char>(m_text[m_pos])) ||
                                         std::strchr(".eE+-", m_text[m_pos]) != nullptr))
            token.push_back(m_text[m_pos++]);
        if (!token.empty() && token[0] == '+') token.erase(0, 1);
        const std::size_t sign = !token.empty() && token[0] == '-' ? 1 : 0;
        if (token.size() > sign && token[sign] == '.') token.insert(sign, "0");
        out.kind = JsValue::Kind::Number;
        const auto result = std::from_chars(token.data(), token.data() + token.size(), out.number);
        if (token.empty() || result.ec != std::errc() || result.ptr != token.data() + token.size() ||
            !std::isfinite(out.number))
            return Where(error, "expected a number");
        return true;
    }

    std::string_view m_text;
    std::size_t m_pos = 0;
};

bool ReadText(const std::string& path, std::string& out, std::string& error)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) return Fail(error, "cannot open " + path);
    std::ostringstream s;
    s << in.rdbuf();
    out = s.str();
    return true;
}

bool IsNaNTerm(const JsValue& v)
{
    if (v.kind != JsValue::Kind::Array || v.items.empty()) return false;
    for (const JsValue& item : v.items)
        if (item.kind != JsValue::Kind::Number || !std::isnan(item.number)) return false;
    return true;
}

// The numbers of an array of finite numbers; false unless it holds exactly `count`.
bool Numbers(const JsValue& v, std::size_t count, double* out)
{
    if (v.kind != JsValue::Kind::Array || v.items.size() != count) return false;
    for (std::size_t i = 0; i < count; ++i) {
        if (v.items[i].kind != JsValue::Kind::Number || !std::isfinite(v.items[i].number)) return false;
        out[i] = v.items[i].number;
    }
    return true;
}

}  // namespace

bool ParseVsop87DLiteral(std::string_view text, Vsop87Planet& out, std::string& error)
{
    JsValue root;
    if (!CJsLiteralParser(text).Parse(root, error)) return false;
    static const char* const kCoordinates[3] = {"L", "B", "R"};
    out = Vsop87Planet{};
    for (int c = 0; c < 3; ++c) {
        const JsValue* coordinate = root.Member(kCoordinates[c]);
        if (!coordinate || coordinate->kind != JsValue::Kind::Object)
            return Fail(error, std::string("no series for ") + kCoordinates[c]);
        for (int power = 0; power < 6; ++power) {
            const JsValue* series = coordinate->Member(std::to_string(power));
            if (!series) continue;  // an empty series is left out of the literal
            if (series->kind != JsValue::Kind::Array)
                return Fail(error, std::string("series ") + kCoordinates[c] + std::to_string(power) + " is not a list");
            // The package's lists of Uranus L4, Neptune L4 and Neptune B3 run
            // on into the series of the next power of t, the two separated
            // by a term written [NaN, NaN, NaN] (the published VSOP87D.ura
            // and VSOP87D.nep have Uranus L5 and Neptune L5, B4 and B5 of
            // one term each, which the package otherwise lacks). Each
            // separator therefore moves the terms after it one power up.
            int into = power;
            for (const JsValue& item : series->items) {
                if (IsNaNTerm(item)) {
                    if (++into > 5)
                        return Fail(error, std::string("series ") + kCoordinates[c] + std::to_string(power) +
                                               " runs past the fifth power");
                    continue;
                }
                double abc[3];
                if (!Numbers(item, 3, abc))
                    return Fail(error, std::string("a term of ") + kCoordinates[c] + std::to_string(power) +
                                           " is not three numbers");
                out.series[c][into].push_back({abc[0], abc[1], abc[2]});
            }
        }
    }
    return true;
}

bool ReadVsop87D(const std::string& packageDir, std::array<Vsop87Planet, 8>& out, std::string& error)
{
    for (std::size_t i = 0; i < kVsop87PlanetFiles.size(); ++i) {
        const std::string path = packageDir + "/data/vsop87D" + std::string(kVsop87PlanetFiles[i]) + ".js";
        std::string text;
        if (!ReadText(path, text, error)) return false;
        if (!ParseVsop87DLiteral(text, out[i], error)) return Fail(error, path + ": " + error);
    }
    return true;
}

bool ParseElpLiteral(std::string_view text, ElpSeries& out, std::string& error)
{
    JsValue root;
    if (!CJsLiteralParser(text).Parse(root, error)) return false;
    const JsValue* w1 = root.Member("W1");
    if (!w1 || !Numbers(*w1, 5, out.w1.data())) return Fail(error, "no mean longitude W1 of five numbers");
    static const char* const kCoordinates[3] = {"L", "B", "R"};
    for (int c = 0; c < 3; ++c) {
        const JsValue* coordinate = root.Member(kCoordinates[c]);
        if (!coordinate || coordinate->kind != JsValue::Kind::Object)
            return Fail(error, std::string("no series for ") + kCoordinates[c]);
        for (int power = 0; power < 4; ++power) {
            std::vector<ElpTerm>& terms = out.series[c][power];
            terms.clear();
            const JsValue* series = coordinate->Member(std::to_string(power));
            if (!series) continue;
            if (series->kind != JsValue::Kind::Array)
                return Fail(error, std::string("series ") + kCoordinates[c] + std::to_string(power) + " is not a list");
            for (const JsValue& item : series->items) {
                double v[6];
                if (!Numbers(item, 6, v))
                    return Fail(error, std::string("a term of ") + kCoordinates[c] + std::to_string(power) +
                                           " is not six numbers");
                terms.push_back({v[0], {v[1], v[2], v[3], v[4], v[5]}});
            }
        }
    }
    return true;
}

bool ReadElpMpp02(const std::string& packageDir, ElpSeries& out, std::string& error)
{
    const std::string path = packageDir + "/data/elpMppDeFull.js";
    std::string text;
    if (!ReadText(path, text, error)) return false;
    if (!ParseElpLiteral(text, out, error)) return Fail(error, path + ": " + error);
    return true;
}

}  // namespace orv::databuild
