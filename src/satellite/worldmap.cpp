#include "satellite/worldmap.h"

#include <algorithm>
#include <cstring>

#include "util/atomicfile.h"
#include "util/binaryio.h"
#include "util/datapath.h"
#include "util/mappedfile.h"

namespace orv::sat {

namespace {

constexpr char kMagic[8] = {'O', 'R', 'V', 'W', 'M', 'A', 'P', '1'};
constexpr std::size_t kHeaderSize = 16;
constexpr std::size_t kDirectoryEntrySize = 8;
constexpr std::size_t kPointSize = 4;
constexpr std::size_t kMaxPointsPerPolyline = 65535;

}  // namespace

const char* WorldRegionName(WorldRegion region)
{
    switch (region) {
    case WorldRegion::Europe: return "Europe";
    case WorldRegion::Asia: return "Asia";
    case WorldRegion::Africa: return "Africa";
    case WorldRegion::NAmer: return "NAmer";
    case WorldRegion::SAmer: return "SAmer";
    case WorldRegion::Oceania: return "Oceania";
    case WorldRegion::Antarctica: return "Antarctica";
    }
    return "";
}

WorldRegion ClassifyWorldPoint(double lon, double lat)
{
    if (lat < -60.0) return WorldRegion::Antarctica;
    // The Americas, with Greenland; Hawaii and the Pacific go to Oceania.
    if (lat >= 67.0 && lon < -10.0 && lon > -75.0) return WorldRegion::NAmer;  // Greenland's east coast
    if (lon < -25.0 && lon > -140.0) return lat >= 8.0 ? WorldRegion::NAmer : WorldRegion::SAmer;
    if (lon <= -140.0) return lat < 30.0 ? WorldRegion::Oceania : WorldRegion::NAmer;
    // Africa: the Mediterranean coasts, Suez, the Red Sea and the Gulf of Aden.
    if (lon >= -26.0 && lon < 52.0 && lat < 37.4) {
        bool africa = false;
        if (lon < -6.0) africa = lat < 35.8;
        else if (lon < 0.0) africa = lat < 35.97;
        else if (lon < 11.5) africa = lat < 37.4;
        else if (lon < 32.5) africa = lat < 34.0;
        else if (lat < 12.3) africa = true;
        else if (lat < 30.0) africa = lon < 32.5 + (30.0 - lat) * 0.6207;  // west of the Red Sea's axis
        if (africa) return WorldRegion::Africa;
    }
    // Europe: west of the Urals and the Ural river, north of the Caucasus,
    // west of the Bosporus and the Aegean's Asian shore.
    if (lon >= -26.0 && lon < 66.0) {
        if (lat >= 66.0) return WorldRegion::Europe;
        if (lat >= 51.0 && lon < 60.0) return WorldRegion::Europe;
        if (lat >= 43.0 && lon < 51.8) return WorldRegion::Europe;
        if (lon < 29.0 && !(lon >= 26.2 && lat > 36.0 && lat < 40.8)) return WorldRegion::Europe;
    }
    // Oceania: Australia, New Guinea, New Zealand and the Pacific islands.
    if ((lon >= 112.0 && lat <= -11.0) || (lon >= 130.8 && lat < -0.5) || (lon >= 155.0 && lat < 30.0))
        return WorldRegion::Oceania;
    return WorldRegion::Asia;
}

std::vector<std::uint8_t> EncodeWorldMap(const std::vector<WorldPolyline>& polylines)
{
    // Split long polylines so that every count fits 16 bits (the pieces share
    // their joining point).
    std::vector<std::pair<WorldRegion, std::span<const WorldPoint>>> pieces;
    for (const WorldPolyline& p : polylines) {
        std::span<const WorldPoint> rest(p.points);
        while (rest.size() > kMaxPointsPerPolyline) {
            pieces.emplace_back(p.region, rest.first(kMaxPointsPerPolyline));
            rest = rest.subspan(kMaxPointsPerPolyline - 1);
        }
        if (rest.size() >= 2) pieces.emplace_back(p.region, rest);
    }
    std::uint32_t total = 0;
    for (const auto& piece : pieces) total += static_cast<std::uint32_t>(piece.second.size());

    CByteWriter out;
    out.Bytes(std::span<const std::uint8_t>(reinterpret_cast<const std::uint8_t*>(kMagic), sizeof kMagic));
    out.U32(static_cast<std::uint32_t>(pieces.size()));
    out.U32(total);
    std::uint32_t first = 0;
    for (const auto& [region, points] : pieces) {
        out.U32(first);
        out.U16(static_cast<std::uint16_t>(points.size()));
        out.U8(static_cast<std::uint8_t>(region));
        out.U8(0);
        first += static_cast<std::uint32_t>(points.size());
    }
    for (const auto& piece : pieces)
        for (const WorldPoint& pt : piece.second) {
            out.I16(pt.longitudeCentideg);
            out.I16(pt.latitudeCentideg);
        }
    return std::move(out.Data());
}

WorldMapStatus WriteWorldMap(const std::string& path, const std::vector<WorldPolyline>& polylines)
{
    const std::vector<std::uint8_t> bytes = EncodeWorldMap(polylines);
    return WriteFileAtomically(path, bytes).ok ? WorldMapStatus::Ok : WorldMapStatus::CannotWrite;
}

WorldMapStatus CWorldMap::Decode(std::span<const std::uint8_t> bytes)
{
    m_polylines.clear();
    if (bytes.size() < kHeaderSize || std::memcmp(bytes.data(), kMagic, sizeof kMagic) != 0)
        return WorldMapStatus::NotAWorldMap;
    const std::uint32_t count = LoadLE<std::uint32_t>(bytes.data() + 8);
    const std::uint32_t total = LoadLE<std::uint32_t>(bytes.data() + 12);
    const std::size_t directoryEnd = kHeaderSize + static_cast<std::size_t>(count) * kDirectoryEntrySize;
    if (directoryEnd > bytes.size() || bytes.size() - directoryEnd < static_cast<std::size_t>(total) * kPointSize)
        return WorldMapStatus::Truncated;
    const std::uint8_t* points = bytes.data() + directoryEnd;
    std::vector<WorldPolyline> polylines;
    polylines.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint8_t* entry = bytes.data() + kHeaderSize + static_cast<std::size_t>(i) * kDirectoryEntrySize;
        const std::uint32_t first = LoadLE<std::uint32_t>(entry);
        const std::uint16_t n = LoadLE<std::uint16_t>(entry + 4);
        const std::uint8_t region = entry[6];
        if (first > total || n > total - first || region >= kWorldRegionCount) return WorldMapStatus::NotAWorldMap;
        WorldPolyline line;
        line.region = static_cast<WorldRegion>(region);
        line.points.resize(n);
        for (std::uint16_t k = 0; k < n; ++k) {
            const std::uint8_t* p = points + (static_cast<std::size_t>(first) + k) * kPointSize;
            line.points[k] = WorldPoint{LoadLE<std::int16_t>(p), LoadLE<std::int16_t>(p + 2)};
        }
        polylines.push_back(std::move(line));
    }
    m_polylines = std::move(polylines);
    return WorldMapStatus::Ok;
}

WorldMapStatus CWorldMap::Load(const std::string& path)
{
    m_polylines.clear();
    CMappedFile file;
    if (!file.Open(path)) return WorldMapStatus::CannotOpen;
    return Decode(file.Bytes());
}

WorldMapStatus CWorldMap::LoadFromDataFolder()
{
    std::string path;
    if (!LocateDataFile(kWorldMapFileName, path)) {
        m_polylines.clear();
        return WorldMapStatus::CannotOpen;
    }
    return Load(path);
}

std::size_t CWorldMap::PointCount() const
{
    std::size_t n = 0;
    for (const auto& p : m_polylines) n += p.points.size();
    return n;
}

}  // namespace orv::sat
