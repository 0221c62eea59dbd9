#include "catalog/deepsky/deepskycatalogue.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <fstream>

#include "map/skyframes.h"
#include "util/angles.h"
#include "util/binaryio.h"
#include "util/datafiles.h"
#include "util/datapath.h"
#include "util/dataproblems.h"
#include "util/text.h"

namespace orv {

namespace {


struct CatalogueFiles {
    std::string_view records, bounds, names;
    std::size_t recordSize, nameEntrySize, nameWidth;
};

constexpr std::array<CatalogueFiles, kDeepSkyCatalogueCount> kFiles{{
    {deepsky::kNgcIcFile, deepsky::kNgcIcBoundsFile, deepsky::kNgcIcNameFile, deepsky::kNgcIcRecordSize,
     deepsky::kNgcIcNameEntrySize, deepsky::kNgcIcNameWidth},
    {deepsky::kSacFile, deepsky::kSacBoundsFile, deepsky::kSacNameFile, deepsky::kSacRecordSize,
     deepsky::kSacNameEntrySize, deepsky::kSacNameWidth},
    {deepsky::kLedaFile, deepsky::kLedaBoundsFile, deepsky::kLedaNameFile, deepsky::kLedaRecordSize,
     deepsky::kLedaNameEntrySize, deepsky::kLedaNameWidth},
    {deepsky::kPlanetaryFile, deepsky::kPlanetaryBoundsFile, {}, deepsky::kPlanetaryRecordSize, 0, 0},
}};

std::string FixedString(const std::uint8_t* p, std::size_t width)
{
    const auto* c = reinterpret_cast<const char*>(p);
    return std::string(c, strnlen(c, width));
}

// The object type code of a record: 255 stands for "Unknown" (9999),
// which does not fit the byte.
ObjectType TypeFromByte(std::uint8_t b) { return b == 255 ? ObjectType::Unknown : static_cast<ObjectType>(b); }

}  // namespace

bool CDeepSkyCatalogues::Open() { return OpenFiles(CDataFolderFiles()); }

bool CDeepSkyCatalogues::OpenFolder(const std::string& folder) { return OpenFiles(CDataFolderFiles(folder)); }

bool CDeepSkyCatalogues::OpenFiles(const CDataFiles& files)
{
    for (std::size_t i = 0; i < kFiles.size(); ++i) {
        const CatalogueFiles& spec = kFiles[i];
        FileSet& f = m_files[i];
        f = FileSet{};
        if (spec.recordSize == 0) continue;  // no reader for this catalogue's layout
        if (!files.Map(spec.records, f.records) || !files.Map(spec.bounds, f.bounds)) {
            f = FileSet{};
            continue;
        }
        const std::string& records = f.records.Path();
        const std::string& bounds = f.bounds.Path();
        // A file cut short or of another layout is left out, and said so.
        const std::size_t regions = static_cast<std::size_t>(deepsky::RegionCount());
        if (f.records.Size() % spec.recordSize != 0) {
            ReportDataFileProblem(records, "its size, " + std::to_string(f.records.Size()) +
                                               " bytes, is not a whole number of " + std::to_string(spec.recordSize) +
                                               "-byte records");
            f = FileSet{};
            continue;
        }
        if (f.bounds.Size() != regions * deepsky::kBoundsEntrySize) {
            ReportDataFileProblem(bounds, "it holds " + std::to_string(f.bounds.Size()) + " bytes instead of " +
                                              std::to_string(regions * deepsky::kBoundsEntrySize));
            f = FileSet{};
            continue;
        }
        f.recordSize = spec.recordSize;
        f.nameEntrySize = spec.nameEntrySize;
        f.nameWidth = spec.nameWidth;
        if (!spec.names.empty()) files.Map(spec.names, f.names);
        ComputeRegionCircles(f);
    }
    // The popular names and labels are looked up through the name indexes,
    // so they are read once those are open. Missing lists are no error.
    for (NameList& list : m_popularNames) list.clear();
    m_sacLabels.clear();
    std::vector<std::uint8_t> bytes;
    if (files.Read(deepsky::kLedaPopularFile, bytes))
        LoadNameList(DeepSkyCatalogueId::Leda, bytes, m_popularNames[static_cast<std::size_t>(DeepSkyCatalogueId::Leda)]);
    if (files.Read(deepsky::kSacPopularFile, bytes))
        LoadNameList(DeepSkyCatalogueId::Sac, bytes, m_popularNames[static_cast<std::size_t>(DeepSkyCatalogueId::Sac)]);
    if (files.Read(deepsky::kSacLabelFile, bytes)) LoadNameList(DeepSkyCatalogueId::Sac, bytes, m_sacLabels);
    return AnyOpen();
}

void CDeepSkyCatalogues::LoadNameList(DeepSkyCatalogueId c, std::span<const std::uint8_t> bytes, NameList& out) const
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    // A line longer than any name list holds is not one of ours: stop
    // rather than keep an unbounded line.
    constexpr std::size_t kLongestLine = 4096;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = text.find('\n', at);
        if (end == std::string_view::npos) end = text.size();
        std::string_view line = text.substr(at, end - at);
        at = end + 1;
        if (line.size() > kLongestLine) break;
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (line.empty() || line[0] == '#') continue;
        const std::size_t bar = line.find(deepsky::kNameListSeparator);
        if (bar == std::string_view::npos || bar == 0 || bar + 1 >= line.size()) continue;
        if (const auto record = FindName(c, line.substr(0, bar))) out[*record] = std::string(line.substr(bar + 1));
    }
}

std::string CDeepSkyCatalogues::SacLabel(std::uint32_t record) const
{
    const auto it = m_sacLabels.find(record);
    return it == m_sacLabels.end() ? std::string() : it->second;
}

bool CDeepSkyCatalogues::AnyOpen() const
{
    return std::any_of(m_files.begin(), m_files.end(), [](const FileSet& f) { return f.records.IsOpen(); });
}

std::size_t CDeepSkyCatalogues::Count(DeepSkyCatalogueId c) const
{
    const FileSet& f = File(c);
    return f.records.IsOpen() && f.recordSize > 0 ? f.records.Size() / f.recordSize : 0;
}

void CDeepSkyCatalogues::ComputeRegionCircles(FileSet& f)
{
    const std::size_t n = f.bounds.Size() / deepsky::kBoundsEntrySize;
    f.regionCircles.assign(n, {0.0, 0.0, 1.0, -1.0});
    for (std::size_t r = 0; r < n; ++r) {
        const std::uint8_t* e = f.bounds.Data() + r * deepsky::kBoundsEntrySize;
        const double raMin = LoadLE<std::int32_t>(e + deepsky::bnd::kRaMin) * kRadPerMas;
        const double raMax = LoadLE<std::int32_t>(e + deepsky::bnd::kRaMax) * kRadPerMas;
        const double decMin = LoadLE<std::int32_t>(e + deepsky::bnd::kDecMin) * kRadPerMas;
        const double decMax = LoadLE<std::int32_t>(e + deepsky::bnd::kDecMax) * kRadPerMas;
        const double reach = LoadLE<std::int32_t>(e + deepsky::bnd::kReach) * kRadPerMas;
        const double raC = 0.5 * (raMin + raMax), decC = 0.5 * (decMin + decMax);
        double radius = 0.0;
        // The cell's farthest point: a corner, or on a polar cap the pole.
        for (double ra : {raMin, raC, raMax})
            for (double dec : {decMin, decMax}) radius = std::max(radius, AngularDistance(raC, decC, ra, dec));
        double v[3];
        SphericalToVector(raC, decC, v);
        f.regionCircles[r] = {v[0], v[1], v[2], radius + reach};
    }
}

bool CDeepSkyCatalogues::Object(DeepSkyCatalogueId c, std::uint32_t record, DeepSkyObject& o) const
{
    const FileSet& f = File(c);
    if (record >= Count(c)) return false;
    const std::uint8_t* r = f.records.Data() + static_cast<std::size_t>(record) * f.recordSize;
    o = DeepSkyObject{};
    o.catalogue = c;
    o.record = record;
    // Every record holds the same fields at its own offsets; planetary
    // nebulae keep their axes in 0.1″, the others in 0.1′.
    struct Fields {
        std::size_t ra, dec, mag, major, minor, pa, type, flags;
        float arcminPerUnit;
    };
    static constexpr std::size_t kNone = ~std::size_t{0};
    const Fields fields = [c] {
        switch (c) {
        case DeepSkyCatalogueId::NgcIc: {
            namespace g = deepsky::ngc;
            return Fields{g::kRa, g::kDec, g::kMag, g::kMajor, g::kMinor, g::kPa, g::kSystemType, kNone, 0.1f};
        }
        case DeepSkyCatalogueId::Leda: {
            namespace g = deepsky::leda;
            return Fields{g::kRa, g::kDec, g::kMag, g::kMajor, g::kMinor, g::kPa, g::kSystemType, g::kFlags, 0.1f};
        }
        case DeepSkyCatalogueId::Strasbourg: {
            namespace g = deepsky::pln;
            return Fields{g::kRa, g::kDec, g::kMag, g::kMajor, g::kMinor, g::kPa, kNone, g::kFlags, 1.0f / 600.0f};
        }
        case DeepSkyCatalogueId::Sac: break;
        }
        namespace g = deepsky::sac;
        return Fields{g::kRa, g::kDec, g::kMag, g::kMajor, g::kMinor, g::kPa, g::kSystemType, g::kFlags, 0.1f};
    }();
    o.raJ2000Rad = LoadLE<std::int32_t>(r + fields.ra) * kRadPerMas;
    o.decJ2000Rad = LoadLE<std::int32_t>(r + fields.dec) * kRadPerMas;
    o.magCenti = LoadLE<std::int16_t>(r + fields.mag);
    o.majorArcmin = LoadLE<std::uint16_t>(r + fields.major) * fields.arcminPerUnit;
    o.minorArcmin = LoadLE<std::uint16_t>(r + fields.minor) * fields.arcminPerUnit;
    o.paDeg = LoadLE<std::int16_t>(r + fields.pa);
    o.type = fields.type != kNone ? TypeFromByte(r[fields.type]) : ObjectType::PlanetaryNebula;
    o.inNgcIc = fields.flags != kNone && (r[fields.flags] & deepsky::ledaflag::kInNgcIc) != 0;
    if (c == DeepSkyCatalogueId::NgcIc) o.ngcType = r[deepsky::ngc::kType];
    return true;
}

bool CDeepSkyCatalogues::Texts(DeepSkyCatalogueId c, std::uint32_t record, DeepSkyTexts& t) const
{
    const FileSet& f = File(c);
    if (record >= Count(c)) return false;
    const std::uint8_t* r = f.records.Data() + static_cast<std::size_t>(record) * f.recordSize;
    t = DeepSkyTexts{};
    switch (c) {
    case DeepSkyCatalogueId::NgcIc: {
        namespace g = deepsky::ngc;
        t.designation = FixedString(r + g::kDesignation, 16);
        if (r[g::kMessier] != 0) t.messier = "M " + std::to_string(r[g::kMessier]);
        if (r[g::kCaldwell] != 0) t.caldwell = "C " + std::to_string(r[g::kCaldwell]);
        t.morphology = FixedString(r + g::kMorphology, 16);
        t.names = FixedString(r + g::kCommonName, 64);
        t.otherIds = FixedString(r + g::kOtherIds, 102);
        break;
    }
    case DeepSkyCatalogueId::Leda:
        t.designation = "LEDA " + std::to_string(LoadLE<std::uint32_t>(r + deepsky::leda::kPgc));
        t.morphology = FixedString(r + deepsky::leda::kMorphology, 10);
        break;
    case DeepSkyCatalogueId::Strasbourg:
        t.designation = "PN G" + FixedString(r + deepsky::pln::kPng, 16);
        t.otherIds = FixedString(r + deepsky::pln::kOtherId, 16);
        break;
    case DeepSkyCatalogueId::Sac:
        t.designation = FixedString(r + deepsky::sac::kDesignation, 18);
        t.otherIds = FixedString(r + deepsky::sac::kOther, 18);
        t.morphology = FixedString(r + deepsky::sac::kClass, 10);
        break;
    }
    const NameList& popular = m_popularNames[static_cast<std::size_t>(c)];
    if (const auto it = popular.find(record); it != popular.end()) t.names = it->second;
    if (c == DeepSkyCatalogueId::Sac) t.label = SacLabel(record);
    return true;
}

std::optional<std::uint32_t> CDeepSkyCatalogues::FindName(DeepSkyCatalogueId c, std::string_view name) const
{
    const FileSet& f = File(c);
    if (!f.names.IsOpen() || f.nameEntrySize == 0 || name.empty() || name.size() >= f.nameWidth) return {};
    char key[32] = {};
    std::memcpy(key, name.data(), name.size());
    const std::uint8_t* base = f.names.Data();
    const std::size_t count = f.names.Size() / f.nameEntrySize;
    // The plain binary search of the sorted index files, comparing the
    // zero-padded names byte by byte.
    std::int64_t low = 0, high = static_cast<std::int64_t>(count) - 1;
    while (high >= low) {
        const std::int64_t middle = (low + high) / 2;
        const std::uint8_t* e = base + static_cast<std::size_t>(middle) * f.nameEntrySize;
        const int cmp = std::memcmp(key, e, f.nameWidth);
        if (cmp == 0) {
            const std::uint8_t* number = e + f.nameWidth;
            const std::int64_t record = f.nameEntrySize - f.nameWidth == 2
                                            ? static_cast<std::int64_t>(LoadLE<std::int16_t>(number))
                                            : static_cast<std::int64_t>(LoadLE<std::uint32_t>(number));
            if (record < 0 || static_cast<std::size_t>(record) >= Count(c)) return {};
            return static_cast<std::uint32_t>(record);
        }
        if (cmp < 0)
            high = middle - 1;
        else
            low = middle + 1;
    }
    return {};
}

std::optional<std::uint32_t> CDeepSkyCatalogues::FindPlanetary(std::string_view png) const
{
    const std::size_t n = Count(DeepSkyCatalogueId::Strasbourg);
    const FileSet& f = File(DeepSkyCatalogueId::Strasbourg);
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint8_t* r = f.records.Data() + i * f.recordSize;
        if (FixedString(r + deepsky::pln::kPng, 16) == png) return static_cast<std::uint32_t>(i);
    }
    return {};
}

namespace {

// True when one of the "; "-separated names of `names` (lower case) is `wanted`.
bool HasName(const std::string& names, const std::string& wanted)
{
    std::size_t at = 0;
    while (at <= names.size()) {
        const std::size_t end = std::min(names.find("; ", at), names.size());
        if (names.compare(at, end - at, wanted) == 0) return true;
        at = end + 2;
    }
    return false;
}

}  // namespace

std::vector<std::pair<DeepSkyCatalogueId, std::uint32_t>> CDeepSkyCatalogues::FindCommonName(
    std::string_view name) const
{
    std::vector<std::pair<DeepSkyCatalogueId, std::uint32_t>> found;
    const std::string wanted = AsciiLower(name);
    if (wanted.empty()) return found;
    const std::size_t n = Count(DeepSkyCatalogueId::NgcIc);
    const FileSet& f = File(DeepSkyCatalogueId::NgcIc);
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint8_t* r = f.records.Data() + i * f.recordSize;
        if (r[deepsky::ngc::kCommonName] == 0) continue;
        if (HasName(AsciiLower(FixedString(r + deepsky::ngc::kCommonName, 64)), wanted))
            found.emplace_back(DeepSkyCatalogueId::NgcIc, static_cast<std::uint32_t>(i));
    }
    for (const DeepSkyCatalogueId c : {DeepSkyCatalogueId::Leda, DeepSkyCatalogueId::Sac}) {
        std::vector<std::uint32_t> records;
        for (const auto& [record, names] : m_popularNames[static_cast<std::size_t>(c)])
            if (HasName(AsciiLower(names), wanted)) records.push_back(record);
        // The map's order is arbitrary; a stable answer lists records in order.
        std::sort(records.begin(), records.end());
        for (const std::uint32_t r : records) found.emplace_back(c, r);
    }
    return found;
}

void CDeepSkyCatalogues::Gather(DeepSkyCatalogueId c, double raJ2000Rad, double decJ2000Rad, double radiusRad,
                                std::vector<DeepSkyObject>& out) const
{
    const FileSet& f = File(c);
    if (!f.records.IsOpen()) return;
    double centre[3];
    SphericalToVector(raJ2000Rad, decJ2000Rad, centre);
    const std::size_t total = Count(c);
    const double cosAll = std::cos(std::min(radiusRad, kPi));
    for (std::size_t r = 0; r < f.regionCircles.size(); ++r) {
        const auto& circle = f.regionCircles[r];
        if (circle[3] < 0.0) continue;
        const double cosD = std::clamp(centre[0] * circle[0] + centre[1] * circle[1] + centre[2] * circle[2], -1.0, 1.0);
        if (std::acos(cosD) > radiusRad + circle[3]) continue;
        const std::uint8_t* e = f.bounds.Data() + r * deepsky::kBoundsEntrySize;
        const std::size_t first = LoadLE<std::uint32_t>(e + deepsky::bnd::kFirst);
        const std::size_t count = LoadLE<std::uint32_t>(e + deepsky::bnd::kCount);
        if (first > total || count > total - first) continue;  // a damaged bounds entry
        for (std::size_t i = first; i < first + count; ++i) {
            DeepSkyObject o;
            if (!Object(c, static_cast<std::uint32_t>(i), o)) continue;
            double v[3];
            SphericalToVector(o.raJ2000Rad, o.decJ2000Rad, v);
            const double cosObj = v[0] * centre[0] + v[1] * centre[1] + v[2] * centre[2];
            if (cosObj < cosAll) {
                // Outside the circle: kept only when its extent reaches in.
                const double reach = o.majorArcmin * 0.5 / 60.0 * kPi / 180.0;
                if (std::acos(std::clamp(cosObj, -1.0, 1.0)) > radiusRad + reach) continue;
            }
            out.push_back(o);
        }
    }
}

std::string NormaliseDeepSkyName(std::string_view text)
{
    std::string s;
    for (char ch : text)
        if (ch != ' ' && ch != '\t') s.push_back(static_cast<char>(std::toupper(static_cast<unsigned char>(ch))));
    struct Prefix {
        std::string_view typed, written;
    };
    // Longest prefixes first, so that "IC" is not read as "I" and "PGC" as "P".
    static constexpr Prefix kPrefixes[] = {{"LEDA", "LEDA"}, {"NGC", "NGC"}, {"PGC", "LEDA"}, {"UGC", "UGC"},
                                           {"IC", "IC"},     {"M", "M"},     {"C", "C"}};
    for (const Prefix& p : kPrefixes) {
        if (s.size() <= p.typed.size() || s.compare(0, p.typed.size(), p.typed) != 0) continue;
        const std::string number = s.substr(p.typed.size());
        if (!std::all_of(number.begin(), number.end(), [](char ch) { return std::isdigit(static_cast<unsigned char>(ch)); }))
            continue;
        // Leading zeros are not written ("M 042" is "M 42").
        const std::size_t nz = std::min(number.find_first_not_of('0'), number.size() - 1);
        return std::string(p.written) + " " + number.substr(nz);
    }
    return {};
}

std::string_view NgcTypeWords(std::uint8_t ngcType)
{
    static constexpr std::string_view kWords[] = {"",
                                                  "Galaxy",
                                                  "Part of galaxy",
                                                  "Open cluster",
                                                  "Planetary nebula",
                                                  "Globular cluster",
                                                  "Dark nebula",
                                                  "Emission nebula",
                                                  "Reflection nebula",
                                                  "Star",
                                                  "Supernova remnant"};
    return ngcType < std::size(kWords) ? kWords[ngcType] : std::string_view{};
}

}  // namespace orv
