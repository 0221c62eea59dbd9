// The small world map of the ground-track page, "Data\WorldSmall.dat": land
// outlines as polylines of longitude/latitude points, each tagged with the
// region it belongs to. The file layout is described in docs/worldmap-file.md;
// tools/worldmap builds it from a public coastline data set.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orv::sat {

// Data file name, found through LocateDataFile.
inline constexpr const char* kWorldMapFileName = "Data\\WorldSmall.dat";

// Regions of the map (the ground-track page can draw them separately).
enum class WorldRegion : std::uint8_t {
    Europe = 0,
    Asia = 1,
    Africa = 2,
    NAmer = 3,
    SAmer = 4,
    Oceania = 5,
    Antarctica = 6,
};
inline constexpr int kWorldRegionCount = 7;
// "Europe", "Asia", "Africa", "NAmer", "SAmer", "Oceania", "Antarctica".
const char* WorldRegionName(WorldRegion region);

// Region of a coastline point (degrees; east longitude, north latitude): the
// continents' conventional limits (Ural, Caucasus, Bosporus, Suez and the Red
// Sea, Panama, Wallace's line east of Timor) drawn as longitude/latitude
// boxes. Good to a few tens of kilometres near the limits.
WorldRegion ClassifyWorldPoint(double longitudeDeg, double latitudeDeg);

// One point, in hundredths of a degree.
struct WorldPoint {
    std::int16_t longitudeCentideg;  // −18000 … 18000, east positive
    std::int16_t latitudeCentideg;   // −9000 … 9000
};
static_assert(sizeof(WorldPoint) == 4);

struct WorldPolyline {
    WorldRegion region = WorldRegion::Europe;
    std::vector<WorldPoint> points;
};

enum class WorldMapStatus { Ok, CannotOpen, NotAWorldMap, Truncated, CannotWrite };

// Serialises polylines (polylines of more than 65535 points are split).
std::vector<std::uint8_t> EncodeWorldMap(const std::vector<WorldPolyline>& polylines);
// Writes the file atomically.
WorldMapStatus WriteWorldMap(const std::string& path, const std::vector<WorldPolyline>& polylines);

class CWorldMap {
public:
    // Reads the whole file; on failure the map is left empty.
    WorldMapStatus Load(const std::string& path);
    // Decodes bytes already in memory (every count checked against the size).
    WorldMapStatus Decode(std::span<const std::uint8_t> bytes);
    // Finds "Data\WorldSmall.dat" in the data folders and loads it.
    WorldMapStatus LoadFromDataFolder();

    const std::vector<WorldPolyline>& Polylines() const { return m_polylines; }
    std::size_t PointCount() const;

private:
    std::vector<WorldPolyline> m_polylines;
};

}  // namespace orv::sat
