// Map levels: the ten coarse zoom steps that decide what a chart shows.
//
// A level is an index 0-9 (shown to the user as levels 1-10). Each level has
// a nominal field, star and deep-sky limits and the way the chart centre is
// held while scrolling. Every drawable item carries one or two inclusive
// ranges of level indices; −1, −1 means never shown.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace orv {

class CSettingsStore;
class CByteReader;
class CByteWriter;
class CMapFileReader;

inline constexpr int kLevelCount = 10;

// How the chart centre is held when the map time changes or the map scrolls.
enum class Centring : std::int32_t {
    AltAz = 0,  // centre fixed in altitude and azimuth (wide levels)
    RaDec = 1,  // centre fixed in right ascension and declination
};

struct LevelRecord {
    double fieldDeg = 90.0;             // angular distance centre → top edge
    std::int16_t starMagLimit = 500;    // 0.01 mag
    std::int16_t starMagBright = 100;   // 0.01 mag
    std::int16_t dsMagLimit = 700;      // 0.01 mag; 0 = no deep-sky magnitude limit
    std::int16_t dsSizeLimit = 0;       // arc minutes × 10; 0 = no size limit
    std::int16_t scrollMode = 0;        // a Centring value
};

class CLevelTable {
public:
    CLevelTable();  // the built-in defaults

    // Section "Level%1d" (index + 1): "Field" (arc minutes, read as an
    // unsigned 32-bit integer), "StarMagLimit", "StarMagBright", "DSMagLimit",
    // "DSSizeLimit", "ScrollMode". A field outside 1′ … 180° (a damaged
    // file) leaves the level's built-in field.
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;

    const LevelRecord& operator[](int level) const { return m_levels[static_cast<std::size_t>(Clamp(level))]; }
    LevelRecord& operator[](int level) { return m_levels[static_cast<std::size_t>(Clamp(level))]; }

    // The narrowest level whose field is still at least `fieldDeg`: a field
    // wider than level 1's gives 0, one narrower than level 10's gives 9, and
    // a field equal to a level's field selects that level.
    int LevelForField(double fieldDeg) const;

    static int Clamp(int level) { return level < 0 ? 0 : (level >= kLevelCount ? kLevelCount - 1 : level); }
    static std::string SectionName(int level);  // "Level1" … "Level10"

private:
    std::array<LevelRecord, kLevelCount> m_levels;
};

// The default level table as the settings store gives it when empty.
const std::array<LevelRecord, kLevelCount>& DefaultLevels();

// An inclusive range of level indices.
struct LevelRange {
    int low = -1;
    int high = -1;
    bool Contains(int level) const { return low <= level && level <= high; }
};

// Visible state of an item with two level ranges: 2 in the first range,
// otherwise 1 in the second, otherwise 0.
inline int TwoRangeState(const LevelRange& first, const LevelRange& second, int level)
{
    if (first.Contains(level)) return 2;
    if (second.Contains(level)) return 1;
    return 0;
}

// The status bar text of a level index: "Lvl 1" … "Lvl 10".
std::string LevelStatusText(int level);

}  // namespace orv
