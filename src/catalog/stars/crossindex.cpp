#include "catalog/stars/crossindex.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "catalog/stars/tycho2catalogue.h"
#include "catalog/stars/tycho2format.h"
#include "util/binaryio.h"
#include "util/datapath.h"
#include "util/mappedfile.h"
#include "util/sortedindex.h"

namespace orv {

using namespace tycho2;

namespace {

const char* FileStem(CrossCatalogue c)
{
    switch (c) {
    case CrossCatalogue::Hip: return "hip";
    case CrossCatalogue::Sao: return "sao";
    case CrossCatalogue::Hd: return "hd";
    case CrossCatalogue::Ppm: return "ppm";
    case CrossCatalogue::Cd: return "cd";
    case CrossCatalogue::Cpd: return "cpd";
    case CrossCatalogue::Bsc: return "bsc";
    }
    return "";
}

bool MapIndex(const std::string& name, CMappedFile& file)
{
    std::string path;
    return LocateDataFile("star\\Tycho2\\" + name, path) && file.Open(path);
}

// Payload (bytes 8-11 as one uint32) of the 12-byte entry with `key`, or −1.
std::int64_t LookupCross(const std::string& name, std::int64_t key)
{
    CMappedFile file;
    if (!MapIndex(name, file)) return -1;
    const std::int64_t at = FindKey64Entry(file.Bytes(), kCrossEntrySize, key);
    if (at < 0) return -1;
    return LoadLE<std::uint32_t>(file.Data() + static_cast<std::size_t>(at) * kCrossEntrySize + 8);
}

std::string FixedText(const std::uint8_t* p, std::size_t width)
{
    const char* s = reinterpret_cast<const char*>(p);
    return std::string(s, strnlen(s, width));
}

}  // namespace

std::int64_t FindStarByNumber(CrossCatalogue catalogue, std::int64_t number)
{
    return LookupCross(std::string(FileStem(catalogue)) + ".idx", number);
}

std::int64_t FindTychoIdByNumber(const CTycho2Catalogue& stars, CrossCatalogue catalogue, std::int64_t number)
{
    StarRecord s;
    if (!stars.ReadRecord(FindStarByNumber(catalogue, number), s)) return -1;
    return s.TychoId();
}

std::int64_t FindNumberOfStar(CrossCatalogue catalogue, std::int64_t tychoId)
{
    return LookupCross("t2" + std::string(FileStem(catalogue)) + ".idx", tychoId);
}

std::int64_t FindTychoIdByDurchmusterung(const DurchmusterungNumber& bd)
{
    // Entries: int64 Tycho identifier, uint8 zone, int8 sign, int16 number,
    // sorted by ((zone << 16) + number) << 8 + sign as an unsigned 32-bit value.
    CMappedFile file;
    if (!MapIndex("bd.idx", file)) return -1;
    const auto composite = [](std::uint8_t zone, std::int8_t sign, std::int16_t number) {
        const std::uint32_t zn = (static_cast<std::uint32_t>(zone) << 16) + static_cast<std::uint32_t>(number);
        return (zn << 8) + static_cast<std::uint32_t>(static_cast<std::int32_t>(sign));
    };
    const std::uint8_t* base = file.Data();
    const std::int64_t at =
        SortedIndexFind(file.Size() / kCrossEntrySize, composite(bd.zone, bd.sign, bd.number), [&](std::size_t i) {
            const std::uint8_t* e = base + i * kCrossEntrySize;
            return composite(e[8], static_cast<std::int8_t>(e[9]), LoadLE<std::int16_t>(e + 10));
        });
    if (at < 0) return -1;
    return LoadLE<std::int64_t>(base + static_cast<std::size_t>(at) * kCrossEntrySize);
}

std::optional<DurchmusterungNumber> FindDurchmusterungOfStar(std::int64_t tychoId)
{
    CMappedFile file;
    if (!MapIndex("t2bd.idx", file)) return std::nullopt;
    const std::int64_t at = FindKey64Entry(file.Bytes(), kCrossEntrySize, tychoId);
    if (at < 0) return std::nullopt;
    const std::uint8_t* e = file.Data() + static_cast<std::size_t>(at) * kCrossEntrySize;
    return DurchmusterungNumber{e[8], static_cast<std::int8_t>(e[9]), LoadLE<std::int16_t>(e + 10)};
}

std::optional<VariableStarInfo> FindVariableStar(std::int64_t tychoId)
{
    CMappedFile file;
    if (!MapIndex("gcvs.idx", file)) return std::nullopt;
    const std::int64_t at = FindKey64Entry(file.Bytes(), gcvs::kEntrySize, tychoId);
    if (at < 0) return std::nullopt;
    const std::uint8_t* e = file.Data() + static_cast<std::size_t>(at) * gcvs::kEntrySize;
    VariableStarInfo v;
    v.name = FixedText(e + gcvs::kName, 12);
    v.type = FixedText(e + gcvs::kType, 12);
    v.band = FixedText(e + gcvs::kBand, 3);
    v.maxMagCenti = LoadLE<std::int16_t>(e + gcvs::kMaxMag);
    const std::int16_t minMag = LoadLE<std::int16_t>(e + gcvs::kMinMag);
    if (minMag != gcvs::kNoMag) v.minMagCenti = minMag;
    v.minIsLimit = e[gcvs::kMinKind] == gcvs::kMinIsLimit;
    v.periodDays = LoadLE<float>(e + gcvs::kPeriodDays);
    return v;
}

std::string DoubleStarInfo::Designation() const
{
    if (code.empty()) return {};
    char buf[48];
    std::snprintf(buf, sizeof buf, "%s %1d", code.c_str(), number);
    return buf;
}

std::optional<DoubleStarInfo> FindDoubleStar(std::uint32_t recordNumber)
{
    CMappedFile file;
    if (!MapIndex("wds.idx", file) || file.Size() < kWdsEntrySize) return std::nullopt;
    const std::uint8_t* base = file.Data();
    if (LoadLE<std::uint32_t>(base) != kWdsMagic) return std::nullopt;
    const std::size_t total = file.Size() / kWdsEntrySize;
    const std::uint32_t codes = LoadLE<std::uint32_t>(base + 4);
    if (codes >= total) return std::nullopt;
    const std::size_t first = 1 + codes;
    const std::int64_t at = SortedIndexFind(total - first, recordNumber, [&](std::size_t i) {
        return LoadLE<std::uint32_t>(base + (first + i) * kWdsEntrySize);
    });
    if (at < 0) return std::nullopt;
    const std::uint8_t* e = base + (first + static_cast<std::size_t>(at)) * kWdsEntrySize;
    DoubleStarInfo d;
    const std::uint16_t code = LoadLE<std::uint16_t>(e + 4);
    if (code != kWdsNoCode && code >= 1 && code <= codes) {
        d.code = FixedText(base + static_cast<std::size_t>(code) * kWdsEntrySize, kWdsEntrySize);
        d.number = LoadLE<std::uint16_t>(e + 6);
    }
    return d;
}

}  // namespace orv
