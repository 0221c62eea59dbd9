#include "map/levels.h"

#include <cstdint>

#include "util/settingsstore.h"

namespace orv {

namespace {
// Field in arc minutes and limits in hundredths of a magnitude, as stored.
struct StoredLevel {
    std::uint32_t fieldArcmin;
    std::int16_t starMagLimit, starMagBright, dsMagLimit, dsSizeLimit, scrollMode;
};
constexpr StoredLevel kStoredDefaults[kLevelCount] = {
    {5400, 500, 100, 700, 0, 0},  {2700, 550, 100, 800, 0, 0},  {960, 800, 300, 900, 0, 0},
    {480, 900, 400, 1000, 0, 1},  {240, 1000, 500, 1150, 0, 1}, {120, 1150, 600, 1300, 0, 1},
    {60, 1300, 700, 1500, 0, 1},  {30, 1500, 800, 0, 0, 1},     {15, 1600, 900, 0, 0, 1},
    {5, 1600, 900, 0, 0, 1},
};

std::array<LevelRecord, kLevelCount> MakeDefaults()
{
    std::array<LevelRecord, kLevelCount> out{};
    for (int i = 0; i < kLevelCount; ++i) {
        const StoredLevel& s = kStoredDefaults[i];
        out[static_cast<std::size_t>(i)] = LevelRecord{s.fieldArcmin / 60.0, s.starMagLimit, s.starMagBright,
                                                       s.dsMagLimit, s.dsSizeLimit, s.scrollMode};
    }
    return out;
}
}  // namespace

const std::array<LevelRecord, kLevelCount>& DefaultLevels()
{
    static const std::array<LevelRecord, kLevelCount> defaults = MakeDefaults();
    return defaults;
}

CLevelTable::CLevelTable() : m_levels(DefaultLevels()) {}

std::string CLevelTable::SectionName(int level) { return "Level" + std::to_string(level + 1); }

void CLevelTable::Load(const CSettingsStore& store)
{
    for (int i = 0; i < kLevelCount; ++i) {
        const std::string section = SectionName(i);
        const StoredLevel& d = kStoredDefaults[i];
        LevelRecord& r = m_levels[static_cast<std::size_t>(i)];
        // The field is an unsigned 32-bit value: a negative stored integer is
        // taken modulo 2^32, as the registry would hand it back.
        const std::uint32_t fieldArcmin = static_cast<std::uint32_t>(store.GetInt(section, "Field", static_cast<int>(d.fieldArcmin)));
        // A field of nothing, or wider than the whole sky, is not one a chart
        // can show: the level keeps its built-in field.
        r.fieldDeg = (fieldArcmin >= 1 && fieldArcmin <= 180u * 60u ? fieldArcmin : d.fieldArcmin) / 60.0;
        r.starMagLimit = static_cast<std::int16_t>(store.GetInt(section, "StarMagLimit", d.starMagLimit));
        r.starMagBright = static_cast<std::int16_t>(store.GetInt(section, "StarMagBright", d.starMagBright));
        r.dsMagLimit = static_cast<std::int16_t>(store.GetInt(section, "DSMagLimit", d.dsMagLimit));
        r.dsSizeLimit = static_cast<std::int16_t>(store.GetInt(section, "DSSizeLimit", d.dsSizeLimit));
        r.scrollMode = static_cast<std::int16_t>(store.GetInt(section, "ScrollMode", d.scrollMode));
    }
}

void CLevelTable::Save(CSettingsStore& store) const
{
    for (int i = 0; i < kLevelCount; ++i) {
        const std::string section = SectionName(i);
        const LevelRecord& r = m_levels[static_cast<std::size_t>(i)];
        const double arcmin = r.fieldDeg * 60.0 + 0.5;
        store.SetInt(section, "Field", static_cast<int>(static_cast<std::uint32_t>(arcmin)));
        store.SetInt(section, "StarMagLimit", r.starMagLimit);
        store.SetInt(section, "StarMagBright", r.starMagBright);
        store.SetInt(section, "DSMagLimit", r.dsMagLimit);
        store.SetInt(section, "DSSizeLimit", r.dsSizeLimit);
        store.SetInt(section, "ScrollMode", r.scrollMode);
    }
}

int CLevelTable::LevelForField(double fieldDeg) const
{
    int walked = 0;
    while (walked < kLevelCount && !(m_levels[static_cast<std::size_t>(walked)].fieldDeg < fieldDeg)) ++walked;
    const int level = walked - 1;
    return level < 0 ? 0 : level;
}

std::string LevelStatusText(int level) { return "Lvl " + std::to_string(level + 1); }

}  // namespace orv
