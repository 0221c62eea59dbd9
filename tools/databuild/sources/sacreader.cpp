#include "sources/sacreader.h"

#include <cmath>

#include "common/linereader.h"
#include "common/textfields.h"
#include "util/objecttype.h"

namespace orv::databuild {

namespace {

constexpr int kFieldCount = 19;

// The quoted fields of a line.
bool SplitQuoted(std::string_view line, std::vector<std::string_view>& fields)
{
    fields.clear();
    std::size_t at = 0;
    while (at < line.size()) {
        if (line[at] != '"') return false;
        const std::size_t end = line.find('"', at + 1);
        if (end == std::string_view::npos) return false;
        fields.push_back(line.substr(at + 1, end - at - 1));
        at = end + 1;
        if (at < line.size() && line[at] == ',') ++at;
        while (at < line.size() && (line[at] == '\r' || line[at] == ' ')) ++at;
    }
    return true;
}

// "NGC    5" → "NGC 5": runs of blanks become one.
std::string Squeezed(std::string_view s)
{
    std::string out;
    for (char c : Trim(s)) {
        if (c == ' ' && !out.empty() && out.back() == ' ') continue;
        out.push_back(c);
    }
    return out;
}

// "   1.5 m" → arc minutes; blank → 0.
bool ParseSize(std::string_view text, double& arcmin)
{
    arcmin = 0.0;
    const std::string_view t = Trim(text);
    if (t.empty()) return true;
    const char unit = t.back();
    double value = 0.0;
    if (ParseNumber(Trim(t.substr(0, t.size() - 1)), value) != FieldState::Ok) return false;
    switch (unit) {
    case 'm': arcmin = value; return true;
    case 's': arcmin = value / 60.0; return true;
    case 'd': arcmin = value * 60.0; return true;
    default: return false;
    }
}

}  // namespace

int SacSystemType(std::string_view type)
{
    struct Word {
        std::string_view word;
        ObjectType code;
    };
    static constexpr Word kWords[] = {
        {"GALXY", ObjectType::Galaxy},        {"GX+DN", ObjectType::Galaxy},          {"GX+GC", ObjectType::Galaxy},
        {"G+C+N", ObjectType::Galaxy},        {"GALCL", ObjectType::GalaxyCluster},   {"OPNCL", ObjectType::OpenCluster},
        {"CL+NB", ObjectType::OpenCluster},   {"ASTER", ObjectType::OpenCluster},     {"LMCOC", ObjectType::OpenCluster},
        {"SMCOC", ObjectType::OpenCluster},   {"LMCCN", ObjectType::OpenCluster},     {"SMCCN", ObjectType::OpenCluster},
        {"GLOCL", ObjectType::GlobularCluster}, {"LMCGC", ObjectType::GlobularCluster}, {"SMCGC", ObjectType::GlobularCluster},
        {"PLNNB", ObjectType::PlanetaryNebula}, {"BRTNB", ObjectType::BrightNebula},   {"LMCDN", ObjectType::DarkNebula},
        {"SMCDN", ObjectType::DarkNebula},    {"DRKNB", ObjectType::DarkNebula},      {"SNREM", ObjectType::SupernovaRemnant},
        {"QUASR", ObjectType::Quasar},        {"1STAR", ObjectType::Star},            {"2STAR", ObjectType::Star},
        {"3STAR", ObjectType::Star},          {"4STAR", ObjectType::Star},            {"8STAR", ObjectType::Star},
    };
    for (const Word& w : kWords)
        if (w.word == type) return static_cast<int>(w.code);
    return static_cast<int>(ObjectType::Unknown);
}

bool ParseSacLine(std::string_view line, BuildSacObject& o, std::string& why)
{
    std::vector<std::string_view> f;
    if (!SplitQuoted(line, f) || f.size() < kFieldCount) {
        why = "not " + std::to_string(kFieldCount) + " quoted fields";
        return false;
    }
    o = BuildSacObject{};
    o.designation = Squeezed(f[0]);
    o.other = Squeezed(f[1]);
    o.type = std::string(Trim(f[2]));
    // Right ascension "HH MM.m", declination "+DD MM".
    const std::string_view ra = Trim(f[4]), dec = Trim(f[5]);
    double h = 0, m = 0, d = 0, dm = 0;
    if (ra.size() < 4 || dec.size() < 4 || ParseNumber(ra.substr(0, 2), h) != FieldState::Ok ||
        ParseNumber(ra.substr(2), m) != FieldState::Ok || ParseNumber(dec.substr(1, 2), d) != FieldState::Ok ||
        ParseNumber(dec.substr(3), dm) != FieldState::Ok || (dec[0] != '+' && dec[0] != '-') || h >= 24 || m >= 60 ||
        d > 90 || dm >= 60) {
        why = "bad position \"" + std::string(ra) + "\" \"" + std::string(dec) + "\"";
        return false;
    }
    o.raMas = std::llround((h + m / 60.0) * 15.0 * 3'600'000.0);
    o.decMas = std::llround((dec[0] == '-' ? -1.0 : 1.0) * (d + dm / 60.0) * 3'600'000.0);
    if (ParseNumber(Trim(f[6]), o.magnitude) == FieldState::Bad) {
        why = "bad magnitude";
        return false;
    }
    if (!ParseSize(f[10], o.majorArcmin) || !ParseSize(f[11], o.minorArcmin)) {
        why = "bad size";
        return false;
    }
    std::int64_t pa = -1;
    if (ParseInteger(Trim(f[12]), pa) == FieldState::Bad) {
        why = "bad position angle";
        return false;
    }
    o.paDeg = pa >= 0 && pa < 360 ? static_cast<int>(pa) : -1;
    o.objectClass = std::string(Trim(f[13]));
    return true;
}

bool ReadSac(const std::string& path, std::vector<BuildSacObject>& out, const Progress& progress, std::string& error)
{
    const bool ok = ReadLines(
        path,
        [&](std::string_view line, std::size_t, std::string& why) {
            if (Trim(line).empty()) return true;
            BuildSacObject o;
            if (!ParseSacLine(line, o, why)) return false;
            out.push_back(std::move(o));
            return true;
        },
        error);
    if (ok) progress("read " + std::to_string(out.size()) + " SAC objects from " + path);
    return ok;
}

}  // namespace orv::databuild
