#include "writers/deepsky.h"

#include <algorithm>
#include <cmath>
#include <cctype>
#include <cstring>
#include <unordered_map>
#include <utility>

#include "catalog/deepsky/deepskyformat.h"

namespace orv::databuild {

namespace {

std::int16_t MagnitudeCenti(double mag)
{
    if (!(mag < 90.0)) return deepsky::kNoMagnitude;
    return static_cast<std::int16_t>(std::clamp(std::lround(mag * 100.0), -3000L, 3000L));
}

std::uint16_t TenthsClamped(double value)
{
    return static_cast<std::uint16_t>(std::clamp(std::lround(value * 10.0), 0L, 65535L));
}

std::int16_t PositionAngle(int paDeg)
{
    return paDeg >= 0 ? static_cast<std::int16_t>(paDeg) : deepsky::kNoPositionAngle;
}

// The designations of other catalogues, for the identify read-out.
std::string OtherIds(const BuildDeepSkyObject& o, bool withPgc)
{
    std::string s;
    auto add = [&](const std::string& id) { s += s.empty() ? id : "; " + id; };
    if (o.ngc != 0 && o.ic != 0) add("IC " + std::to_string(o.ic));
    if (o.sh2 != 0) add("Sh2-" + std::to_string(o.sh2));
    if (o.barnard != 0) add("B " + std::to_string(o.barnard));
    if (o.lbn != 0) add("LBN " + std::to_string(o.lbn));
    if (o.ldn != 0) add("LDN " + std::to_string(o.ldn));
    if (o.collinder != 0) add("Cr " + std::to_string(o.collinder));
    if (o.melotte != 0) add("Mel " + std::to_string(o.melotte));
    if (!o.png.empty()) add("PN G" + o.png);
    if (withPgc && o.pgc != 0) add("PGC " + std::to_string(o.pgc));
    if (o.ugc != 0) add("UGC " + std::to_string(o.ugc));
    return s;
}

// The names that fit a field of `width` bytes with its terminator: whole
// names only, never one cut short.
std::string WholeNames(const std::string& names, std::size_t width)
{
    if (names.size() < width) return names;
    const std::size_t cut = names.rfind("; ", width - 1);
    return cut == std::string::npos ? names.substr(0, width - 1) : names.substr(0, cut);
}

// Name index entries sorted byte by byte, as the reader's binary search
// compares them.
template <class Entry>
void SortByName(std::vector<Entry>& entries)
{
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        return std::memcmp(a.first.data(), b.first.data(), a.first.size()) < 0;
    });
}

template <std::size_t Width>
std::array<char, Width> FixedName(const std::string& name)
{
    std::array<char, Width> a{};
    std::memcpy(a.data(), name.data(), std::min(name.size(), Width - 1));
    return a;
}

}  // namespace

std::string NgcIcDesignation(const BuildDeepSkyObject& o)
{
    if (o.ngc != 0) return "NGC " + std::to_string(o.ngc);
    if (o.ic != 0) return "IC " + std::to_string(o.ic);
    if (o.messier != 0) return "M " + std::to_string(o.messier);
    return "C " + std::to_string(o.caldwell);
}

OutputFile WriteNgcIcRecords(const DeepSkyCatalogue& ngcIc)
{
    namespace f = deepsky::ngc;
    std::vector<std::uint8_t> bytes(ngcIc.objects.size() * deepsky::kNgcIcRecordSize, 0);
    for (std::size_t i = 0; i < ngcIc.objects.size(); ++i) {
        const BuildDeepSkyObject& o = ngcIc.objects[i];
        std::uint8_t* r = bytes.data() + i * deepsky::kNgcIcRecordSize;
        auto text = [&](std::size_t at, std::size_t width, const std::string& s) {
            std::memcpy(r + at, s.data(), std::min(s.size(), width - 1));
        };
        text(f::kDesignation, 16, NgcIcDesignation(o));
        StoreLE<std::int32_t>(r + f::kRa, static_cast<std::int32_t>(o.raMas));
        StoreLE<std::int32_t>(r + f::kDec, static_cast<std::int32_t>(o.decMas));
        StoreLE<std::int16_t>(r + f::kMag, MagnitudeCenti(o.Magnitude()));
        StoreLE<std::uint16_t>(r + f::kNumber, static_cast<std::uint16_t>(o.ngc != 0 ? o.ngc : o.ic));
        StoreLE<std::uint16_t>(r + f::kMajor, TenthsClamped(o.majorArcmin));
        StoreLE<std::uint16_t>(r + f::kMinor, TenthsClamped(o.minorArcmin));
        StoreLE<std::int16_t>(r + f::kPa, PositionAngle(o.paDeg));
        r[f::kMessier] = static_cast<std::uint8_t>(std::min<std::uint32_t>(o.messier, 255));
        r[f::kCaldwell] = static_cast<std::uint8_t>(std::min<std::uint32_t>(o.caldwell, 255));
        r[f::kCatalogue] = o.ngc != 0 ? 1 : (o.ic != 0 ? 2 : 0);
        r[f::kSystemType] = static_cast<std::uint8_t>(std::min(SystemTypeOf(o.type), 255));
        r[f::kType] = NgcTypeOf(o.type);
        text(f::kMorphology, 16, o.morphology);
        text(f::kCommonName, 64, WholeNames(o.commonName, 64));
        StoreLE<std::uint32_t>(r + f::kPgc, o.pgc);
        text(f::kOtherIds, 102, WholeNames(OtherIds(o, true), 102));
    }
    return {std::string(deepsky::kNgcIcDiskName), std::move(bytes)};
}

OutputFile WriteNgcIcNames(const DeepSkyCatalogue& ngcIc)
{
    using Entry = std::pair<std::array<char, deepsky::kNgcIcNameWidth>, std::int16_t>;
    std::vector<Entry> entries;
    for (std::size_t i = 0; i < ngcIc.objects.size() && i <= 32767; ++i) {
        const BuildDeepSkyObject& o = ngcIc.objects[i];
        const auto record = static_cast<std::int16_t>(i);
        auto add = [&](const std::string& name) {
            entries.emplace_back(FixedName<deepsky::kNgcIcNameWidth>(name), record);
        };
        if (o.ngc != 0) add("NGC " + std::to_string(o.ngc));
        if (o.ic != 0) add("IC " + std::to_string(o.ic));
        if (o.messier != 0) add("M " + std::to_string(o.messier));
        if (o.caldwell != 0) add("C " + std::to_string(o.caldwell));
    }
    SortByName(entries);
    // A number the catalogue gives twice (a galaxy and a faint companion
    // filed under the same NGC number) names the Messier object if either
    // is one, else the brighter.
    auto rank = [&](std::int16_t record) {
        const BuildDeepSkyObject& o = ngcIc.objects[static_cast<std::size_t>(record)];
        return std::make_pair(o.messier == 0, o.Magnitude());
    };
    std::vector<Entry> unique;
    for (const Entry& e : entries) {
        if (!unique.empty() && unique.back().first == e.first) {
            if (rank(e.second) < rank(unique.back().second)) unique.back().second = e.second;
            continue;
        }
        unique.push_back(e);
    }
    CByteWriter w;
    for (const Entry& e : unique) {
        w.Bytes({reinterpret_cast<const std::uint8_t*>(e.first.data()), e.first.size()});
        w.I16(e.second);
    }
    return {std::string(deepsky::kNgcIcNameDiskName), std::move(w.Data())};
}

OutputFile WriteLedaRecords(const DeepSkyCatalogue& leda)
{
    namespace f = deepsky::leda;
    std::vector<std::uint8_t> bytes(leda.objects.size() * deepsky::kLedaRecordSize, 0);
    for (std::size_t i = 0; i < leda.objects.size(); ++i) {
        const BuildDeepSkyObject& o = leda.objects[i];
        std::uint8_t* r = bytes.data() + i * deepsky::kLedaRecordSize;
        StoreLE<std::uint32_t>(r + f::kPgc, o.pgc);
        StoreLE<std::int32_t>(r + f::kRa, static_cast<std::int32_t>(o.raMas));
        StoreLE<std::int32_t>(r + f::kDec, static_cast<std::int32_t>(o.decMas));
        StoreLE<std::int16_t>(r + f::kMag, MagnitudeCenti(o.Magnitude()));
        StoreLE<std::uint16_t>(r + f::kMajor, TenthsClamped(o.majorArcmin));
        StoreLE<std::uint16_t>(r + f::kMinor, TenthsClamped(o.minorArcmin));
        StoreLE<std::int16_t>(r + f::kPa, PositionAngle(o.paDeg));
        r[f::kSystemType] = static_cast<std::uint8_t>(std::min(SystemTypeOf(o.type), 255));
        const bool inNgcIc = o.ngc != 0 || o.ic != 0 || o.messier != 0 || o.caldwell != 0;
        r[f::kFlags] = inNgcIc ? deepsky::ledaflag::kInNgcIc : 0;
        std::memcpy(r + f::kMorphology, o.morphology.data(), std::min<std::size_t>(o.morphology.size(), 9));
    }
    return {std::string(deepsky::kLedaDiskName), std::move(bytes)};
}

OutputFile WriteLedaNames(const DeepSkyCatalogue& leda)
{
    using Entry = std::pair<std::array<char, deepsky::kLedaNameWidth>, std::uint32_t>;
    std::vector<Entry> entries;
    for (std::size_t i = 0; i < leda.objects.size(); ++i) {
        const BuildDeepSkyObject& o = leda.objects[i];
        const auto record = static_cast<std::uint32_t>(i);
        entries.emplace_back(FixedName<deepsky::kLedaNameWidth>("LEDA " + std::to_string(o.pgc)), record);
        if (o.ugc != 0)
            entries.emplace_back(FixedName<deepsky::kLedaNameWidth>("UGC " + std::to_string(o.ugc)), record);
    }
    SortByName(entries);
    CByteWriter w;
    for (const Entry& e : entries) {
        w.Bytes({reinterpret_cast<const std::uint8_t*>(e.first.data()), e.first.size()});
        w.U32(e.second);
    }
    return {std::string(deepsky::kLedaNameDiskName), std::move(w.Data())};
}

OutputFile WriteLedaPopularNames(const DeepSkyCatalogue& leda)
{
    std::string text = "# Popular names of LEDA galaxies: designation|names\n";
    for (const BuildDeepSkyObject& o : leda.objects) {
        // Those the NGC/IC holds are named there; naming them twice would
        // make their names ambiguous in the find box.
        const bool inNgcIc = o.ngc != 0 || o.ic != 0 || o.messier != 0 || o.caldwell != 0;
        if (o.commonName.empty() || inNgcIc) continue;
        text += "LEDA " + std::to_string(o.pgc) + deepsky::kNameListSeparator + o.commonName + "\n";
    }
    return {std::string(deepsky::kLedaPopularDiskName), {text.begin(), text.end()}};
}

OutputFile WritePlanetaryRecords(const DeepSkyCatalogue& planetary)
{
    namespace f = deepsky::pln;
    std::vector<std::uint8_t> bytes(planetary.objects.size() * deepsky::kPlanetaryRecordSize, 0);
    for (std::size_t i = 0; i < planetary.objects.size(); ++i) {
        const BuildDeepSkyObject& o = planetary.objects[i];
        std::uint8_t* r = bytes.data() + i * deepsky::kPlanetaryRecordSize;
        std::memcpy(r + f::kPng, o.png.data(), std::min<std::size_t>(o.png.size(), 15));
        StoreLE<std::int32_t>(r + f::kRa, static_cast<std::int32_t>(o.raMas));
        StoreLE<std::int32_t>(r + f::kDec, static_cast<std::int32_t>(o.decMas));
        StoreLE<std::int16_t>(r + f::kMag, MagnitudeCenti(o.Magnitude()));
        StoreLE<std::uint16_t>(r + f::kMajor, TenthsClamped(o.majorArcmin * 60.0));
        StoreLE<std::uint16_t>(r + f::kMinor, TenthsClamped(o.minorArcmin * 60.0));
        StoreLE<std::int16_t>(r + f::kPa, PositionAngle(o.paDeg));
        const bool inNgcIc = o.ngc != 0 || o.ic != 0 || o.messier != 0;
        r[f::kFlags] = inNgcIc ? deepsky::ledaflag::kInNgcIc : 0;
        std::string other;
        if (o.messier != 0)
            other = "M " + std::to_string(o.messier);
        else if (inNgcIc)
            other = NgcIcDesignation(o);
        else if (!o.pk.empty())
            other = "PK " + o.pk;
        std::memcpy(r + f::kOtherId, other.data(), std::min<std::size_t>(other.size(), 15));
    }
    return {std::string(deepsky::kPlanetaryDiskName), std::move(bytes)};
}

OutputFile WriteDeepSkyBounds(const DeepSkyCatalogue& catalogue, std::string_view diskName)
{
    CByteWriter w;
    for (const DeepSkyRegionBounds& b : catalogue.regions) {
        w.I32(b.raMinMas);
        w.I32(b.raMaxMas);
        w.I32(b.decMinMas);
        w.I32(b.decMaxMas);
        w.I32(b.reachMas);
        w.U32(b.first);
        w.U32(b.count);
    }
    return {std::string(diskName), std::move(w.Data())};
}

namespace {

// "Ngc 224" → "NGC 224": the prefix of a designation in capitals, as
// stellarium's name list files its keys.
std::string NameKey(std::string_view designation)
{
    std::string key(designation);
    const std::size_t space = key.find(' ');
    for (std::size_t i = 0; i < std::min(space, key.size()); ++i)
        key[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(key[i])));
    return key;
}

// The designations of a SAC object: its own, then those of its "other"
// field ("UGC 174;IC 1539").
std::vector<std::string> SacDesignations(const BuildSacObject& o)
{
    std::vector<std::string> ids{o.designation};
    std::size_t at = 0;
    while (at < o.other.size()) {
        const std::size_t end = std::min(o.other.find(';', at), o.other.size());
        std::string id = o.other.substr(at, end - at);
        while (!id.empty() && id.front() == ' ') id.erase(0, 1);
        while (!id.empty() && id.back() == ' ') id.pop_back();
        if (!id.empty()) ids.push_back(std::move(id));
        at = end + 1;
    }
    return ids;
}

std::string SacLabelLines(const std::vector<BuildSacObject>& objects)
{
    // A SAC object that is a Messier object is labelled with its Messier
    // number, as atlases do; the others keep their designation.
    std::string text = "# Chart labels of SAC objects: designation|label\n";
    for (const BuildSacObject& o : objects)
        for (const std::string& id : SacDesignations(o))
            if (id.size() > 2 && id.rfind("M ", 0) == 0 && id != o.designation) {
                text += o.designation + deepsky::kNameListSeparator + id + "\n";
                break;
            }
    return text;
}

std::string SacPopularLines(const std::vector<BuildSacObject>& objects, const std::vector<DsoNameLine>& names)
{
    std::unordered_map<std::string, std::vector<const std::string*>> byKey;
    for (const DsoNameLine& n : names) byKey[n.prefix + " " + n.id].push_back(&n.name);
    std::string text = "# Popular names of SAC objects: designation|names\n";
    for (const BuildSacObject& o : objects) {
        std::string all;
        for (const std::string& id : SacDesignations(o)) {
            const auto it = byKey.find(NameKey(id));
            if (it == byKey.end()) continue;
            for (const std::string* name : it->second)
                if (("; " + all + "; ").find("; " + *name + "; ") == std::string::npos)
                    all += all.empty() ? *name : "; " + *name;
        }
        if (!all.empty()) text += o.designation + deepsky::kNameListSeparator + all + "\n";
    }
    return text;
}

}  // namespace

std::vector<OutputFile> WriteSacFiles(std::vector<BuildSacObject> objects, const std::vector<DsoNameLine>& popularNames)
{
    namespace f = deepsky::sac;
    DeepSkyCatalogue bounds;
    bounds.regions = OrderObjectsByRegion(objects, [](const BuildSacObject& o) { return o.magnitude; });
    std::vector<std::uint8_t> bytes(objects.size() * deepsky::kSacRecordSize, 0);
    using Entry = std::pair<std::array<char, deepsky::kSacNameWidth>, std::int16_t>;
    std::vector<Entry> names;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        const BuildSacObject& o = objects[i];
        std::uint8_t* r = bytes.data() + i * deepsky::kSacRecordSize;
        std::memcpy(r + f::kDesignation, o.designation.data(), std::min<std::size_t>(o.designation.size(), 17));
        std::memcpy(r + f::kOther, o.other.data(), std::min<std::size_t>(o.other.size(), 17));
        StoreLE<std::int32_t>(r + f::kRa, static_cast<std::int32_t>(o.raMas));
        StoreLE<std::int32_t>(r + f::kDec, static_cast<std::int32_t>(o.decMas));
        StoreLE<std::int16_t>(r + f::kMag, o.HasMagnitude() ? MagnitudeCenti(o.magnitude) : deepsky::kNoMagnitude);
        StoreLE<std::uint16_t>(r + f::kMajor, TenthsClamped(o.majorArcmin));
        StoreLE<std::uint16_t>(r + f::kMinor, TenthsClamped(o.minorArcmin));
        StoreLE<std::int16_t>(r + f::kPa, PositionAngle(o.paDeg));
        r[f::kSystemType] = static_cast<std::uint8_t>(std::min(SacSystemType(o.type), 255));
        // The NGC, IC and Messier objects of the database are drawn from the
        // NGC/IC catalogue when it is on the chart.
        const bool inNgcIc = o.designation.rfind("NGC ", 0) == 0 || o.designation.rfind("IC ", 0) == 0 ||
                             o.designation.rfind("M ", 0) == 0;
        r[f::kFlags] = inNgcIc ? deepsky::ledaflag::kInNgcIc : 0;
        std::memcpy(r + f::kClass, o.objectClass.data(), std::min<std::size_t>(o.objectClass.size(), 9));
        if (i <= 32767) names.emplace_back(FixedName<deepsky::kSacNameWidth>(o.designation), static_cast<std::int16_t>(i));
    }
    SortByName(names);
    CByteWriter w;
    for (const Entry& e : names) {
        w.Bytes({reinterpret_cast<const std::uint8_t*>(e.first.data()), e.first.size()});
        w.I16(e.second);
    }
    std::vector<OutputFile> files;
    files.push_back({std::string(deepsky::kSacDiskName), std::move(bytes)});
    files.push_back({std::string(deepsky::kSacNameDiskName), std::move(w.Data())});
    files.push_back(WriteDeepSkyBounds(bounds, deepsky::kSacBoundsDiskName));
    const std::string labels = SacLabelLines(objects);
    files.push_back({std::string(deepsky::kSacLabelDiskName), {labels.begin(), labels.end()}});
    const std::string popular = SacPopularLines(objects, popularNames);
    files.push_back({std::string(deepsky::kSacPopularDiskName), {popular.begin(), popular.end()}});
    return files;
}

std::vector<OutputFile> WriteDeepSkyFiles(const DeepSkyCatalogues& c)
{
    std::vector<OutputFile> files;
    files.push_back(WriteNgcIcRecords(c.ngcIc));
    files.push_back(WriteNgcIcNames(c.ngcIc));
    files.push_back(WriteDeepSkyBounds(c.ngcIc, deepsky::kNgcIcBoundsDiskName));
    files.push_back(WriteLedaRecords(c.leda));
    files.push_back(WriteLedaNames(c.leda));
    files.push_back(WriteLedaPopularNames(c.leda));
    files.push_back(WriteDeepSkyBounds(c.leda, deepsky::kLedaBoundsDiskName));
    files.push_back(WritePlanetaryRecords(c.planetary));
    files.push_back(WriteDeepSkyBounds(c.planetary, deepsky::kPlanetaryBoundsDiskName));
    return files;
}

}  // namespace orv::databuild
