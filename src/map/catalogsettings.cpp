#include "map/catalogsettings.h"

namespace orv {

// ---------------------------------------------------------------- Stars

namespace {
using S = CStarSettings;
constexpr IntSetting<S> kStarFields[] = {
    {"MagLimit", &S::magLimit, 600},
    {"StarMagBright", &S::starMagBright, 200},
    {"StarRadBright", &S::starRadBright, 625},
    {"StarRadFaint", &S::starRadFaint, 0},
    {"Visible", &S::visible, 1},
    {"LevelProperLow", &S::levelProperLow, -1},
    {"LevelProperHigh", &S::levelProperHigh, -1},
    {"LevelBayerLow", &S::levelBayerLow, 2},
    {"LevelBayerHigh", &S::levelBayerHigh, 9},
    {"LevelFlamsteedLow", &S::levelFlamsteedLow, 3},
    {"LevelFlamsteedHigh", &S::levelFlamsteedHigh, 9},
    {"StarLabelMagFilter", &S::starLabelMagFilter, 0},
    {"StarLabelMagLimit", &S::starLabelMagLimit, 400},
    {"StarGSCShowAllObjects", &S::starGSCShowAllObjects, 1},
    {"GSCHideTycho", &S::gscHideTycho, 1},
    {"StarShowSize", &S::starShowSize, 1},
    {"StarDotRadius", &S::starDotRadius, 208},
    {"ShowDoubles", &S::showDoubles, 1},
    {"ShowVariables", &S::showVariables, 1},
    {"ShowFlamsteedWithBayer", &S::showFlamsteedWithBayer, 1},
    {"ShowColour", &S::showColour, 1},
    {"LevelColourLow", &S::levelColourLow, 0},
    {"LevelColourHigh", &S::levelColourHigh, 9},
    {"LevelMagLow", &S::levelMagLow, -1},
    {"LevelMagHigh", &S::levelMagHigh, -1},
    {"LabelMag", &S::labelMag, 0},
    {"LabelMagVar", &S::labelMagVar, 1},
    {"LabelMagOption", &S::labelMagOption, 1},
    {"LabelMagBright", &S::labelMagBright, 500},
    {"LabelMagBetween1", &S::labelMagBetween1, 500},
    {"LabelMagBetween2", &S::labelMagBetween2, 700},
    {"LabelMagFaint", &S::labelMagFaint, 700},
    {"LevelDistLow", &S::levelDistLow, 7},
    {"LevelDistHigh", &S::levelDistHigh, 9},
    {"LevelPMLow", &S::levelPMLow, -1},
    {"LevelPMHigh", &S::levelPMHigh, -1},
    {"PMLine", &S::pmLine, 100},
    {"BV1", &S::bv1, -500},
    {"BV2", &S::bv2, 100},
    {"BV3", &S::bv3, 500},
    {"BV4", &S::bv4, 2000},
    {"StarLabelAbbrev", &S::labelAbbreviated, 1},
};
}  // namespace

std::span<const IntSetting<CStarSettings>> CStarSettings::Fields() { return kStarFields; }
CStarSettings::CStarSettings() { ResetIntSettings(*this, Fields()); }
void CStarSettings::Load(const CSettingsStore& store) { LoadIntSettings(store, kSection, *this, Fields()); }
void CStarSettings::Save(CSettingsStore& store) const { SaveIntSettings(store, kSection, *this, Fields()); }
void CStarSettings::Write(CByteWriter& out) const { WriteI16Fields(out, *this, Fields()); }
void CStarSettings::Read(CMapFileReader& in) { ReadI16Fields(in.Bytes(), *this, Fields()); }

// ---------------------------------------------------------------- Deep sky

namespace {
using D = CDeepSkySettings;
constexpr IntSetting<D> kDeepSkyFields[] = {
    {"Visible", &D::visible, 1},
    {"ObjectTypes", &D::objectTypes, 1},
    {"DSMagnitude", &D::dsMagnitude, 0},
    {"MagLimit", &D::magLimit, 1200},
    {"DSSize", &D::dsSize, 0},
    {"DSSizeLimit", &D::dsSizeLimit, 600},
    {"LevelLowNGCIC", &D::levelLowNGCIC, 2},
    {"LevelHighNGCIC", &D::levelHighNGCIC, 9},
    {"LevelLowSAC", &D::levelLowSAC, 2},
    {"LevelHighSAC", &D::levelHighSAC, 9},
    {"LevelLowLEDA", &D::levelLowLEDA, 4},
    {"LevelHighLEDA", &D::levelHighLEDA, 9},
    {"LevelLowStras", &D::levelLowStras, 4},
    {"LevelHighStras", &D::levelHighStras, 9},
    {"DarkLevelLow", &D::darkLevelLow, 5},
    {"DarkLevelHigh", &D::darkLevelHigh, 9},
    {"LabelOption", &D::labelOption, 0},
};

std::string MagAdjustKey(int type) { return "MagAdjust" + std::to_string(type); }
}  // namespace

std::span<const IntSetting<CDeepSkySettings>> CDeepSkySettings::Fields() { return kDeepSkyFields; }

CDeepSkySettings::CDeepSkySettings() { ResetIntSettings(*this, Fields()); }

void CDeepSkySettings::Load(const CSettingsStore& store)
{
    LoadIntSettings(store, kSection, *this, Fields());
    for (int t = 0; t < kDeepSkyTypeCount; ++t)
        magAdjust[static_cast<std::size_t>(t)] = store.GetInt(kSection, MagAdjustKey(t), 0);
    nameFilter = store.GetString(kSection, "NameFilter", "");
}

void CDeepSkySettings::Save(CSettingsStore& store) const
{
    SaveIntSettings(store, kSection, *this, Fields());
    for (int t = 0; t < kDeepSkyTypeCount; ++t)
        store.SetInt(kSection, MagAdjustKey(t), magAdjust[static_cast<std::size_t>(t)]);
    store.SetString(kSection, "NameFilter", nameFilter);
}

void CDeepSkySettings::Write(CByteWriter& out) const
{
    WriteI16Fields(out, *this, Fields());
    for (const int a : magAdjust) out.I16(static_cast<std::int16_t>(a));
    out.CountedString(nameFilter);
}

void CDeepSkySettings::Read(CMapFileReader& in)
{
    CByteReader& r = in.Bytes();
    ReadI16Fields(r, *this, Fields());
    for (int& a : magAdjust) r.I16Into(a);
    r.CountedString(nameFilter);
}

// ---------------------------------------------------------------- Constellations

namespace {
using C = CConstellationSettings;
constexpr IntSetting<C> kConstellationFields[] = {
    {"ConFigureVisible", &C::conFigureVisible, 1},
    {"ConNameVisible", &C::conNameVisible, 1},
    {"ConBoundaryVisible", &C::conBoundaryVisible, 0},
    {"ConstellationLevelAbbrev", &C::levelAbbrev, 2},
    {"ConstellationLevelBoundaryLow", &C::levelBoundaryLow, 2},
    {"ConstellationLevelBoundaryHigh", &C::levelBoundaryHigh, 9},
    {"ConstellationLevelFigureLow", &C::levelFigureLow, 0},
    {"ConstellationLevelFigureHigh", &C::levelFigureHigh, 4},
    {"ConstellationLevelNameLow", &C::levelNameLow, 0},
    {"ConstellationLevelNameHigh", &C::levelNameHigh, 3},
    {"CornerNameAbbrev", &C::cornerNameAbbrev, 0},
    {"LevelCornerNameLow", &C::levelCornerNameLow, 4},
    {"LevelCornerNameHigh", &C::levelCornerNameHigh, 9},
    {"CornerLabel", &C::cornerLabel, 3210},
};
}  // namespace

std::span<const IntSetting<CConstellationSettings>> CConstellationSettings::Fields() { return kConstellationFields; }
CConstellationSettings::CConstellationSettings() { ResetIntSettings(*this, Fields()); }

void CConstellationSettings::Load(const CSettingsStore& store)
{
    LoadIntSettings(store, kSection, *this, Fields());
    cornerNameAbbrev = cornerNameAbbrev != 0 ? 1 : 0;
}

void CConstellationSettings::Save(CSettingsStore& store) const { SaveIntSettings(store, kSection, *this, Fields()); }
void CConstellationSettings::Write(CByteWriter& out) const { WriteI16Fields(out, *this, Fields()); }
void CConstellationSettings::Read(CMapFileReader& in) { ReadI16Fields(in.Bytes(), *this, Fields()); }

std::array<int, 4> CConstellationSettings::CornerSlots() const
{
    std::array<int, 4> slots{};
    int v = cornerLabel < 0 ? -cornerLabel : cornerLabel;
    for (int& s : slots) {
        s = v % 10;
        v /= 10;
    }
    return slots;
}

void CConstellationSettings::SetCornerSlots(const std::array<int, 4>& slots)
{
    int v = 0;
    for (int i = 3; i >= 0; --i) v = v * 10 + (slots[static_cast<std::size_t>(i)] % 10);
    cornerLabel = v;
}

}  // namespace orv
