#include "minorbuild.h"

#include <zlib.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <variant>
#include <vector>

#include "solarsystem/minorelements.h"

namespace orv::databuild {

namespace {

namespace fs = std::filesystem;

// Just enough JSON for the two element files: objects, arrays, strings
// (with the common escapes), numbers, true/false/null.
struct JsonValue;
using JsonArray = std::vector<JsonValue>;
using JsonObject = std::map<std::string, JsonValue>;
struct JsonValue {
    std::variant<std::nullptr_t, bool, double, std::string, std::shared_ptr<JsonArray>, std::shared_ptr<JsonObject>> v;
    bool IsNull() const { return std::holds_alternative<std::nullptr_t>(v); }
    const JsonArray* Array() const
    {
        auto p = std::get_if<std::shared_ptr<JsonArray>>(&v);
        return p ? p->get() : nullptr;
    }
    const JsonObject* Object() const
    {
        auto p = std::get_if<std::shared_ptr<JsonObject>>(&v);
        return p ? p->get() : nullptr;
    }
    // A number, or a string holding one (the JPL query quotes its numbers).
    bool Number(double& out) const
    {
        if (auto d = std::get_if<double>(&v)) {
            out = *d;
            return true;
        }
        if (auto s = std::get_if<std::string>(&v)) {
            if (s->empty()) return false;
            char* end = nullptr;
            out = std::strtod(s->c_str(), &end);
            return end == s->c_str() + s->size() && std::isfinite(out);
        }
        return false;
    }
    std::string Text() const
    {
        if (auto s = std::get_if<std::string>(&v)) return *s;
        return {};
    }
};

class JsonParser {
public:
    explicit JsonParser(const std::string& text) : m_text(text) {}
    bool Parse(JsonValue& out, std::string& error)
    {
        if (!Value(out, 0)) {
            error = "JSON syntax error near byte " + std::to_string(m_pos);
            return false;
        }
        return true;
    }

private:
    void Skip()
    {
        while (m_pos < m_text.size() && std::isspace(static_cast<unsigned char>(m_text[m_pos]))) ++m_pos;
    }
    bool Literal(const char* word)
    {
        const std::size_t n = std::char_traits<char>::length(word);
        if (m_text.compare(m_pos, n, word) != 0) return false;
        m_pos += n;
        return true;
    }
    bool String(std::string& out)
    {
        if (m_text[m_pos] != '"') return false;
        ++m_pos;
        while (m_pos < m_text.size() && m_text[m_pos] != '"') {
            char c = m_text[m_pos++];
            if (c == '\\' && m_pos < m_text.size()) {
                const char e = m_text[m_pos++];
                switch (e) {
                case 'n': c = '\n'; break;
                case 't': c = '\t'; break;
                case 'u':
                    // Element files are ASCII; a \u escape becomes '?'.
                    m_pos = std::min(m_text.size(), m_pos + 4);
                    c = '?';
                    break;
                default: c = e; break;
                }
            }
            out += c;
        }
        if (m_pos >= m_text.size()) return false;
        ++m_pos;
        return true;
    }
    bool Value(JsonValue& out, int depth)
    {
        if (depth > 32) return false;
        Skip();
        if (m_pos >= m_text.size()) return false;
        const char c = m_text[m_pos];
        if (c == '{') {
            ++m_pos;
            auto object = std::make_shared<JsonObject>();
            Skip();
            if (m_pos < m_text.size() && m_text[m_pos] == '}') {
                ++m_pos;
                out.v = object;
                return true;
            }
            for (;;) {
                Skip();
                std::string key;
                if (m_pos >= m_text.size() || !String(key)) return false;
                Skip();
                if (m_pos >= m_text.size() || m_text[m_pos++] != ':') return false;
                JsonValue value;
                if (!Value(value, depth + 1)) return false;
                (*object)[key] = std::move(value);
                Skip();
                if (m_pos >= m_text.size()) return false;
                if (m_text[m_pos] == ',') { ++m_pos; continue; }
                if (m_text[m_pos] == '}') { ++m_pos; break; }
                return false;
            }
            out.v = object;
            return true;
        }
        if (c == '[') {
            ++m_pos;
            auto array = std::make_shared<JsonArray>();
            Skip();
            if (m_pos < m_text.size() && m_text[m_pos] == ']') {
                ++m_pos;
                out.v = array;
                return true;
            }
            for (;;) {
                JsonValue value;
                if (!Value(value, depth + 1)) return false;
                array->push_back(std::move(value));
                Skip();
                if (m_pos >= m_text.size()) return false;
                if (m_text[m_pos] == ',') { ++m_pos; continue; }
                if (m_text[m_pos] == ']') { ++m_pos; break; }
                return false;
            }
            out.v = array;
            return true;
        }
        if (c == '"') {
            std::string s;
            if (!String(s)) return false;
            out.v = std::move(s);
            return true;
        }
        if (Literal("null")) { out.v = nullptr; return true; }
        if (Literal("true")) { out.v = true; return true; }
        if (Literal("false")) { out.v = false; return true; }
        char* end = nullptr;
        const double d = std::strtod(m_text.c_str() + m_pos, &end);
        if (end == m_text.c_str() + m_pos) return false;
        m_pos = static_cast<std::size_t>(end - m_text.c_str());
        out.v = d;
        return true;
    }

    const std::string& m_text;
    std::size_t m_pos = 0;
};

bool ReadFile(const std::string& path, std::string& text, std::string& error)
{
    if (path.size() > 3 && path.compare(path.size() - 3, 3, ".gz") == 0) {
        gzFile f = gzopen(path.c_str(), "rb");
        if (!f) {
            error = "cannot open " + path;
            return false;
        }
        char buffer[65536];
        int n = 0;
        while ((n = gzread(f, buffer, sizeof buffer)) > 0) text.append(buffer, static_cast<std::size_t>(n));
        const bool ok = n == 0;
        gzclose(f);
        if (!ok) error = "cannot decompress " + path;
        return ok;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = "cannot open " + path;
        return false;
    }
    std::ostringstream s;
    s << in.rdbuf();
    text = std::move(s).str();
    return true;
}

// Gregorian calendar date of a Julian date (Meeus, Astronomical Algorithms,
// ch. 7), the day with its fraction.
void CalendarOf(double jd, int& year, int& month, double& day)
{
    const double z = std::floor(jd + 0.5), f = jd + 0.5 - z;
    double a = z;
    if (z >= 2299161.0) {
        const double alpha = std::floor((z - 1867216.25) / 36524.25);
        a = z + 1.0 + alpha - std::floor(alpha / 4.0);
    }
    const double b = a + 1524.0, c = std::floor((b - 122.1) / 365.25), d = std::floor(365.25 * c),
                 e = std::floor((b - d) / 30.6001);
    day = b - d - std::floor(30.6001 * e) + f;
    month = static_cast<int>(e < 14.0 ? e - 1.0 : e - 13.0);
    year = static_cast<int>(month > 2 ? c - 4716.0 : c - 4715.0);
}

}  // namespace

bool SplitJplFullName(const std::string& fullName, int& number, std::string& name)
{
    std::string s = fullName;
    const auto notSpace = [](char c) { return !std::isspace(static_cast<unsigned char>(c)); };
    s.erase(s.begin(), std::find_if(s.begin(), s.end(), notSpace));
    s.erase(std::find_if(s.rbegin(), s.rend(), notSpace).base(), s.end());
    number = 0;
    if (s.empty()) return false;
    if (s.front() == '(' && s.back() == ')') {
        // Unnumbered: the provisional designation in parentheses.
        name = s.substr(1, s.size() - 2);
        return !name.empty();
    }
    std::size_t i = 0;
    while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) ++i;
    if (i == 0) return false;
    number = std::atoi(s.substr(0, i).c_str());
    std::string rest = s.substr(i);
    rest.erase(rest.begin(), std::find_if(rest.begin(), rest.end(), notSpace));
    // The name, then the first provisional designation in parentheses.
    const std::size_t paren = rest.find(" (");
    if (paren != std::string::npos) rest.resize(paren);
    if (!rest.empty() && rest.front() == '(' && rest.back() == ')') rest = rest.substr(1, rest.size() - 2);
    name = rest.empty() ? std::to_string(number) : rest;
    return true;
}

bool RunMinorBuild(const MinorBuildOptions& options, const std::function<void(const std::string&)>& progress,
                   MinorBuildCounts& counts, std::string& error)
{
    const fs::path dir(options.kstarsDir);
    // --- Asteroids: the JPL query ------------------------------------------------
    std::string text;
    if (!ReadFile((dir / "asteroids.dat").string(), text, error)) return false;
    JsonValue root;
    if (!JsonParser(text).Parse(root, error)) {
        error = "asteroids.dat: " + error;
        return false;
    }
    const JsonObject* object = root.Object();
    const JsonArray* fields = object && object->count("fields") ? object->at("fields").Array() : nullptr;
    const JsonArray* rows = object && object->count("data") ? object->at("data").Array() : nullptr;
    if (!fields || !rows) {
        error = "asteroids.dat: no \"fields\" and \"data\" arrays";
        return false;
    }
    std::map<std::string, std::size_t> column;
    for (std::size_t i = 0; i < fields->size(); ++i) column[(*fields)[i].Text()] = i;
    for (const char* f : {"full_name", "H", "G", "epoch_mjd", "e", "a", "i", "om", "w", "ma"})
        if (!column.count(f)) {
            error = std::string("asteroids.dat: no field \"") + f + "\"";
            return false;
        }
    std::vector<AsteroidElements> asteroids;
    for (const JsonValue& rowValue : *rows) {
        const JsonArray* row = rowValue.Array();
        if (!row || row->size() < fields->size()) {
            ++counts.asteroidsRefused;
            continue;
        }
        auto at = [&](const char* f) -> const JsonValue& { return (*row)[column.at(f)]; };
        AsteroidElements a;
        double mjd, h = 0.0, g = 0.15;
        if (!SplitJplFullName(at("full_name").Text(), a.number, a.name) || !at("epoch_mjd").Number(mjd) ||
            !at("e").Number(a.e) || !at("a").Number(a.aAU) || !at("i").Number(a.inclinationDeg) ||
            !at("om").Number(a.nodeDeg) || !at("w").Number(a.argPerihelionDeg) || !at("ma").Number(a.meanAnomalyDeg) ||
            a.e >= 1.0 || a.aAU <= 0.0) {
            ++counts.asteroidsRefused;
            continue;
        }
        if (!at("H").Number(h)) h = 49.9;  // unknown: never drawn
        if (!at("G").Number(g)) g = 0.15;  // the IAU's default slope
        a.absoluteH = h;
        a.slopeG = g;
        a.name = a.name.substr(0, kMinorNameChars);
        a.epochJdTT = mjd + 2400000.5;
        int year = 0, month = 0;
        CalendarOf(a.epochJdTT, year, month, a.epochDay);
        a.epochYear = static_cast<std::int16_t>(year);
        a.epochMonth = static_cast<std::int16_t>(month);
        // Numbered asteroids brighter than H = 11 shown on a fresh map
        // (filter mode 0 shows the entries flagged 'A').
        a.flag = a.number > 0 && h <= 11.0 ? 'A' : ' ';
        asteroids.push_back(std::move(a));
    }
    counts.asteroids = static_cast<int>(asteroids.size());
    progress(std::to_string(counts.asteroids) + " asteroids from asteroids.dat");

    // --- Comets: the MPC's elements ----------------------------------------------
    text.clear();
    if (!ReadFile((dir / "cometels.json.gz").string(), text, error)) return false;
    JsonValue cometRoot;
    if (!JsonParser(text).Parse(cometRoot, error)) {
        error = "cometels.json.gz: " + error;
        return false;
    }
    const JsonArray* list = cometRoot.Array();
    if (!list) {
        error = "cometels.json.gz: not an array of comets";
        return false;
    }
    std::vector<CometElements> comets;
    for (const JsonValue& v : *list) {
        const JsonObject* o = v.Object();
        auto number = [&](const char* key, double& out) { return o && o->count(key) && o->at(key).Number(out); };
        CometElements c;
        double year, month;
        if (!o || !o->count("Designation_and_name") || !number("Year_of_perihelion", year) ||
            !number("Month_of_perihelion", month) || !number("Day_of_perihelion", c.perihelionDay) ||
            !number("Perihelion_dist", c.qAU) || !number("e", c.e) || !number("Peri", c.argPerihelionDeg) ||
            !number("Node", c.nodeDeg) || !number("i", c.inclinationDeg) || c.qAU <= 0.0 || c.e < 0.0) {
            ++counts.cometsRefused;
            continue;
        }
        if (!number("H", c.absoluteG)) c.absoluteG = 99.0;
        if (!number("G", c.slopeK)) c.slopeK = 4.0;
        c.name = o->at("Designation_and_name").Text().substr(0, kMinorNameChars);
        c.perihelionYear = static_cast<std::int16_t>(year);
        c.perihelionMonth = static_cast<std::int16_t>(month);
        c.flag = 'A';
        comets.push_back(std::move(c));
    }
    counts.comets = static_cast<int>(comets.size());
    progress(std::to_string(counts.comets) + " comets from cometels.json.gz");

    const std::string header =
        "Asteroid elements of the JPL Small-Body Database as kstars-data carries them (asteroids.dat);\n"
        "each set osculating at its own epoch, ecliptic and equinox J2000.0.\n"
        "flag number name  year month day  M  a  e  peri  node  incl  H  G";
    if (auto e = WriteAsteroidCatalog((fs::path(options.outputDir) / "asteroid.cat").string(), asteroids, header)) {
        error = *e;
        return false;
    }
    const std::string cometHeader =
        "Comet elements of the Minor Planet Center as kstars-data carries them (cometels.json.gz, epoch 2022 Aug 24);\n"
        "ecliptic and equinox J2000.0.\n"
        "name  flag  perihelion year month day  q  e  peri  node  incl  g  k";
    if (auto e = WriteCometCatalog((fs::path(options.outputDir) / "comet.cat").string(), comets, cometHeader)) {
        error = *e;
        return false;
    }
    return true;
}

}  // namespace orv::databuild
