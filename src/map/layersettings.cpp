#include "map/layersettings.h"

#include "map/horizonprofile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace orv {

namespace {

void LoadRange(const CSettingsStore& store, std::string_view section, const char* lowKey, const char* highKey,
               LevelRange& r, LevelRange def)
{
    r.low = store.GetInt(section, lowKey, def.low);
    r.high = store.GetInt(section, highKey, def.high);
}

void SaveRange(CSettingsStore& store, std::string_view section, const char* lowKey, const char* highKey,
               const LevelRange& r)
{
    store.SetInt(section, lowKey, r.low);
    store.SetInt(section, highKey, r.high);
}

void WriteRange(CByteWriter& out, const LevelRange& r)
{
    out.I16(static_cast<std::int16_t>(r.low));
    out.I16(static_cast<std::int16_t>(r.high));
}

void ReadRange(CByteReader& in, LevelRange& r)
{
    in.I16Into(r.low);
    in.I16Into(r.high);
}

double FiniteOr(double value, double fallback) { return std::isfinite(value) ? value : fallback; }

}  // namespace

// ------------------------------------------------------------------ Grids

const char* GridSection(GridKind kind)
{
    switch (kind) {
    case GridKind::RaDec: return "RADecGrid";
    case GridKind::AltAz: return "AltAzGrid";
    case GridKind::Ecliptic: return "EclipticGrid";
    case GridKind::Galactic: return "GalacticGrid";
    }
    return "RADecGrid";
}

namespace {
struct GridDefaults {
    int interval1, interval2;
    int visible;
    LevelRange first, second;
};
GridDefaults DefaultsFor(GridKind kind)
{
    switch (kind) {
    // Equatorial grid: faint on the wide horizon-centred levels, solid from level 4.
    case GridKind::RaDec: return {60, 600, 1, {3, 9}, {0, 2}};
    // Horizon grid: on the wide levels where the chart is held in altitude and azimuth.
    case GridKind::AltAz: return {600, 600, 1, {0, 2}, {-1, -1}};
    case GridKind::Ecliptic: return {600, 600, 0, {0, 9}, {-1, -1}};
    case GridKind::Galactic: return {600, 600, 0, {0, 9}, {-1, -1}};
    }
    return {60, 600, 1, {0, 9}, {-1, -1}};
}
}  // namespace

CGridData::CGridData(GridKind k) : kind(k)
{
    const GridDefaults d = DefaultsFor(k);
    interval1 = d.interval1;
    interval2 = d.interval2;
}

const char* CGridData::Interval1Key() const
{
    switch (kind) {
    case GridKind::RaDec: return "RAInterval";
    case GridKind::AltAz: return "AzInterval";
    default: return "LongInterval";
    }
}

const char* CGridData::Interval2Key() const
{
    switch (kind) {
    case GridKind::RaDec: return "DecInterval";
    case GridKind::AltAz: return "AltInterval";
    default: return "LatInterval";
    }
}

void CGridData::Load(const CSettingsStore& store)
{
    const GridDefaults d = DefaultsFor(kind);
    const char* section = GridSection(kind);
    labelVisible = store.GetInt(section, "LabelVisible", 1);
    method = store.GetInt(section, "Method", 0);
    interval1 = store.GetInt(section, Interval1Key(), d.interval1);
    interval2 = store.GetInt(section, Interval2Key(), d.interval2);
}

void CGridData::Save(CSettingsStore& store) const
{
    const char* section = GridSection(kind);
    store.SetInt(section, "LabelVisible", labelVisible);
    store.SetInt(section, "Method", method);
    store.SetInt(section, Interval1Key(), interval1);
    store.SetInt(section, Interval2Key(), interval2);
}

void CGridData::Write(CByteWriter& out) const
{
    out.I16(static_cast<std::int16_t>(labelVisible));
    out.I16(static_cast<std::int16_t>(method));
    out.I16(static_cast<std::int16_t>(interval1));
    out.I16(static_cast<std::int16_t>(interval2));
}

void CGridData::Read(CMapFileReader& in)
{
    CByteReader& r = in.Bytes();
    r.I16Into(labelVisible);
    r.I16Into(method);
    r.I16Into(interval1);
    r.I16Into(interval2);
}

CGridDisplay::CGridDisplay(GridKind k) : kind(k)
{
    const GridDefaults d = DefaultsFor(k);
    visible = d.visible;
    first = d.first;
    second = d.second;
    solidHorizonLevels = LevelRange{0, 2};
}

void CGridDisplay::Load(const CSettingsStore& store)
{
    const GridDefaults d = DefaultsFor(kind);
    const char* section = GridSection(kind);
    visible = store.GetInt(section, "Visible", d.visible);
    LoadRange(store, section, "LevelLow", "LevelHigh", first, d.first);
    LoadRange(store, section, "LevelLow2", "LevelHigh2", second, d.second);
    if (kind == GridKind::AltAz)
        LoadRange(store, section, "SolidHorizonLevelLow", "SolidHorizonLevelHigh", solidHorizonLevels, {0, 2});
}

void CGridDisplay::Save(CSettingsStore& store) const
{
    const char* section = GridSection(kind);
    store.SetInt(section, "Visible", visible);
    SaveRange(store, section, "LevelLow", "LevelHigh", first);
    SaveRange(store, section, "LevelLow2", "LevelHigh2", second);
    if (kind == GridKind::AltAz)
        SaveRange(store, section, "SolidHorizonLevelLow", "SolidHorizonLevelHigh", solidHorizonLevels);
}

void CGridDisplay::Write(CByteWriter& out) const
{
    out.I16(static_cast<std::int16_t>(visible));
    WriteRange(out, first);
    WriteRange(out, second);
    if (kind == GridKind::AltAz) {
        out.I16(solidHorizon != 0 ? 1 : 0);
        WriteRange(out, solidHorizonLevels);
    }
}

void CGridDisplay::Read(CMapFileReader& in)
{
    CByteReader& r = in.Bytes();
    r.I16Into(visible);
    ReadRange(r, first);
    ReadRange(r, second);
    if (kind == GridKind::AltAz) {
        r.I16Into(solidHorizon);
        ReadRange(r, solidHorizonLevels);
    }
}

void CGridDisplay::OnLevelChange(int level)
{
    state = visible != 0 ? TwoRangeState(first, second, level) : 0;
    if (kind == GridKind::AltAz) solidHorizon = solidHorizonLevels.Contains(level) ? 1 : 0;
}

// ------------------------------------------------ Scale line, compass, shadow

namespace {
struct OverlayDefaults {
    const char* section;
    int visible;
    LevelRange levels;
};
OverlayDefaults DefaultsFor(OverlayKind kind)
{
    switch (kind) {
    case OverlayKind::ScaleLine: return {"ScaleLine", 1, {3, 9}};
    case OverlayKind::Compass: return {"Compass", 1, {0, 9}};
    case OverlayKind::Shadow: return {"Shadow", 0, {0, 4}};
    }
    return {"ScaleLine", 1, {0, 9}};
}
}  // namespace

COverlayBlock::COverlayBlock(OverlayKind k) : kind(k)
{
    const OverlayDefaults d = DefaultsFor(k);
    visible = d.visible;
    levels = d.levels;
}

const char* COverlayBlock::Section() const { return DefaultsFor(kind).section; }

void COverlayBlock::Load(const CSettingsStore& store)
{
    const OverlayDefaults d = DefaultsFor(kind);
    visible = store.GetInt(d.section, "Visible", d.visible);
    LoadRange(store, d.section, "LevelLow", "LevelHigh", levels, d.levels);
}

void COverlayBlock::Save(CSettingsStore& store) const
{
    store.SetInt(Section(), "Visible", visible);
    SaveRange(store, Section(), "LevelLow", "LevelHigh", levels);
}

void COverlayBlock::Write(CByteWriter& out) const
{
    out.I16(visible != 0 ? 1 : 0);
    WriteRange(out, levels);
}

void COverlayBlock::Read(CMapFileReader& in)
{
    in.Bytes().I16Into(visible);
    ReadRange(in.Bytes(), levels);
}

// ------------------------------------------------------------ Solar system

void CSolarSystemData::Load(const CSettingsStore& store)
{
    const std::string text = store.GetString("Planet", "GRSLong", "80");
    grsLongitudeDeg = ParseRealSetting(text).value_or(80.0);
    jupiterBelts = store.GetInt("Planet", "JupiterBelts", 1) != 0;
}

void CSolarSystemData::Save(CSettingsStore& store) const
{
    char buf[64];
    std::snprintf(buf, sizeof buf, "%f", grsLongitudeDeg);
    store.SetString("Planet", "GRSLong", buf);
    store.SetInt("Planet", "JupiterBelts", jupiterBelts ? 1 : 0);
}

void CSolarSystemData::Write(CByteWriter& out) const { out.F64(grsLongitudeDeg); }

void CSolarSystemData::Read(CMapFileReader& in)
{
    in.Bytes().F64(grsLongitudeDeg);
    grsLongitudeDeg = FiniteOr(grsLongitudeDeg, 80.0);
}

CBodyDisplay::CBodyDisplay(std::string sectionName, LevelRange defaultLevels, LevelRange defaultLabels,
                           int defaultMagLimit)
    : section(std::move(sectionName)),
      levels(defaultLevels),
      labelLevels(defaultLabels),
      magLimit(defaultMagLimit),
      m_defaultLevels(defaultLevels),
      m_defaultLabels(defaultLabels),
      m_defaultMagLimit(defaultMagLimit)
{
}

void CBodyDisplay::Load(const CSettingsStore& store)
{
    visible = store.GetInt(section, "Visible", 1);
    LoadRange(store, section, "LevelLow", "LevelHigh", levels, m_defaultLevels);
    LoadRange(store, section, "LabelLevelLow", "LabelLevelHigh", labelLevels, m_defaultLabels);
    magLimit = store.GetInt(section, "MagLimit", m_defaultMagLimit);
    labelMag = store.GetInt(section, "LabelMag", 0);
}

void CBodyDisplay::Save(CSettingsStore& store) const
{
    store.SetInt(section, "Visible", visible);
    SaveRange(store, section, "LevelLow", "LevelHigh", levels);
    SaveRange(store, section, "LabelLevelLow", "LabelLevelHigh", labelLevels);
    store.SetInt(section, "MagLimit", magLimit);
    store.SetInt(section, "LabelMag", labelMag);
}

void CBodyDisplay::Write(CByteWriter& out) const
{
    out.I16(static_cast<std::int16_t>(visible));
    WriteRange(out, levels);
    WriteRange(out, labelLevels);
    out.I16(static_cast<std::int16_t>(magLimit));
    out.I16(static_cast<std::int16_t>(labelMag));
}

void CBodyDisplay::Read(CMapFileReader& in)
{
    CByteReader& r = in.Bytes();
    r.I16Into(visible);
    ReadRange(r, levels);
    ReadRange(r, labelLevels);
    r.I16Into(magLimit);
    r.I16Into(labelMag);
}

void CCometCatalogSettings::Load(const CSettingsStore& store)
{
    filterMode = store.GetInt("Comet", "FilterMode", 1);
    filterDays = store.GetReal("Comet", "FilterDays", 730.0);
}

void CCometCatalogSettings::Save(CSettingsStore& store) const
{
    store.SetInt("Comet", "FilterMode", filterMode);
    store.SetReal("Comet", "FilterDays", filterDays);
}

void CCometCatalogSettings::Write(CByteWriter& out) const
{
    out.I16(static_cast<std::int16_t>(filterMode));
    out.F64(filterDays);
}

void CCometCatalogSettings::Read(CMapFileReader& in)
{
    in.Bytes().I16Into(filterMode);
    in.Bytes().F64(filterDays);
    filterDays = FiniteOr(filterDays, 730.0);
}

void CAsteroidCatalogSettings::Load(const CSettingsStore& store)
{
    filterMode = store.GetInt("Asteroid", "FilterMode", 1);
    filterNumber = store.GetInt("Asteroid", "FilterNumber", 1000);
    filterHMin = store.GetReal("Asteroid", "FilterHMin", -5.0);
    filterHMax = store.GetReal("Asteroid", "FilterHMax", 11.0);
}

void CAsteroidCatalogSettings::Save(CSettingsStore& store) const
{
    store.SetInt("Asteroid", "FilterMode", filterMode);
    store.SetInt("Asteroid", "FilterNumber", filterNumber);
    store.SetReal("Asteroid", "FilterHMin", filterHMin);
    store.SetReal("Asteroid", "FilterHMax", filterHMax);
}

void CAsteroidCatalogSettings::Write(CByteWriter& out) const
{
    out.I16(static_cast<std::int16_t>(filterMode));
    out.I32(filterNumber);
    out.F64(filterHMin);
    out.F64(filterHMax);
}

void CAsteroidCatalogSettings::Read(CMapFileReader& in)
{
    CByteReader& r = in.Bytes();
    r.I16Into(filterMode);
    std::int32_t n = filterNumber;
    r.I32(n);
    filterNumber = n;
    r.F64(filterHMin);
    r.F64(filterHMax);
    filterHMin = FiniteOr(filterHMin, -5.0);
    filterHMax = FiniteOr(filterHMax, 11.0);
}

// ------------------------------------------------------------------ Tracks

void CTrackData::Load(const CSettingsStore& store)
{
    interval = store.GetInt("Track", "Interval", 1);
    points = store.GetInt("Track", "Points", 24);
    markInterval = store.GetInt("Track", "MarkInterval", 4);
}

void CTrackData::Save(CSettingsStore& store) const
{
    store.SetInt("Track", "Interval", interval);
    store.SetInt("Track", "Points", points);
    store.SetInt("Track", "MarkInterval", markInterval);
}

void CTrackData::Write(CByteWriter& out) const
{
    out.I16(static_cast<std::int16_t>(interval));
    out.I16(static_cast<std::int16_t>(points));
    out.I16(static_cast<std::int16_t>(markInterval));
}

void CTrackData::Read(CMapFileReader& in)
{
    CByteReader& r = in.Bytes();
    r.I16Into(interval);
    r.I16Into(points);
    r.I16Into(markInterval);
}

void CTrackDisplay::Load(const CSettingsStore& store)
{
    visible = store.GetInt("Track", "Visible", 1);
    LoadRange(store, "Track", "LevelLow", "LevelHigh", levels, {0, 9});
    labelMag = store.GetInt("Track", "LabelMag", 1);
}

void CTrackDisplay::Save(CSettingsStore& store) const
{
    store.SetInt("Track", "Visible", visible);
    SaveRange(store, "Track", "LevelLow", "LevelHigh", levels);
    store.SetInt("Track", "LabelMag", labelMag);
}

void CTrackDisplay::Write(CByteWriter& out) const
{
    out.I16(static_cast<std::int16_t>(visible));
    WriteRange(out, levels);
    out.I16(static_cast<std::int16_t>(labelMag));
}

void CTrackDisplay::Read(CMapFileReader& in)
{
    in.Bytes().I16Into(visible);
    ReadRange(in.Bytes(), levels);
    in.Bytes().I16Into(labelMag);
}

// ------------------------------------------------------------- Annotations

void CAnnotationList::Load(const CSettingsStore& store)
{
    visible = store.GetInt("Annotation", "Visible", 1);
    LoadRange(store, "Annotation", "LevelLow", "LevelHigh", levels, {0, 9});
}

void CAnnotationList::Save(CSettingsStore& store) const
{
    store.SetInt("Annotation", "Visible", visible);
    SaveRange(store, "Annotation", "LevelLow", "LevelHigh", levels);
}

void CAnnotationList::Write(CByteWriter& out) const
{
    out.I16(static_cast<std::int16_t>(visible));
    WriteRange(out, levels);
    const std::size_t count = std::min<std::size_t>(items.size(), 32767);
    out.I16(static_cast<std::int16_t>(count));
    for (std::size_t i = 0; i < count; ++i) {
        const Annotation& a = items[i];
        out.I16(static_cast<std::int16_t>(a.kind));
        out.F64(a.raJ2000Rad);
        out.F64(a.decJ2000Rad);
        out.F64(a.size1ArcminOrRaEndRad);
        out.F64(a.size2ArcminOrDecEndRad);
        out.F64(a.angleRad);
        out.CountedString(a.text);
    }
}

void CAnnotationList::Read(CMapFileReader& in)
{
    CByteReader& r = in.Bytes();
    r.I16Into(visible);
    ReadRange(r, levels);
    std::int16_t count = 0;
    r.I16(count);
    items.clear();
    // Each record takes at least 44 bytes: a damaged count cannot make the
    // reader run on past the end of the file.
    for (int i = 0; i < count && r.Remaining() >= 44; ++i) {
        Annotation a;
        std::int16_t kind = 0;
        r.I16(kind);
        a.kind = static_cast<AnnotationKind>(std::clamp<std::int16_t>(kind, 0, 4));
        r.F64(a.raJ2000Rad);
        r.F64(a.decJ2000Rad);
        r.F64(a.size1ArcminOrRaEndRad);
        r.F64(a.size2ArcminOrDecEndRad);
        r.F64(a.angleRad);
        r.CountedString(a.text);
        items.push_back(std::move(a));
    }
}

// ------------------------------------------------------------------ Horizon

void CHorizonData::Load(const CSettingsStore& store)
{
    fileName = store.GetString("Horizon", "Filename", "");
    useForEvents = store.GetInt("Horizon", "UseForEvents", 0);
    // The profile in use is read at start; a missing or damaged file leaves
    // the flat horizon (the editor reports why when the file is opened there).
    if (!fileName.empty()) ReadHorizonFile(fileName, altitudeDeg);
}

void CHorizonData::Save(CSettingsStore& store) const { store.SetString("Horizon", "Filename", fileName); }

void CHorizonData::Write(CByteWriter& out) const
{
    out.CountedString(fileName);
    for (const std::int8_t a : altitudeDeg) out.I8(a);
}

void CHorizonData::Read(CMapFileReader& in)
{
    CByteReader& r = in.Bytes();
    r.CountedString(fileName);
    for (std::int8_t& a : altitudeDeg) r.I8(a);
}

void CHorizonDisplay::Load(const CSettingsStore& store)
{
    visible = store.GetInt("Horizon", "Visible", 1);
    LoadRange(store, "Horizon", "LevelLow", "LevelHigh", levels, {0, 2});
}

void CHorizonDisplay::Save(CSettingsStore& store) const
{
    store.SetInt("Horizon", "Visible", visible);
    SaveRange(store, "Horizon", "LevelLow", "LevelHigh", levels);
}

void CHorizonDisplay::Write(CByteWriter& out) const
{
    out.I16(static_cast<std::int16_t>(visible));
    WriteRange(out, levels);
}

void CHorizonDisplay::Read(CMapFileReader& in)
{
    in.Bytes().I16Into(visible);
    ReadRange(in.Bytes(), levels);
}

// ------------------------------------------- Quick catalogue and target list

void CObjectListSettings::Load(const CSettingsStore& store)
{
    visible = store.GetInt(section, "Visible", 1);
    LoadRange(store, section, "LevelLow", "LevelHigh", levels, {0, 9});
    file = store.GetString(section, "File", "");
}

void CObjectListSettings::Save(CSettingsStore& store) const
{
    store.SetInt(section, "Visible", visible);
    SaveRange(store, section, "LevelLow", "LevelHigh", levels);
    store.SetString(section, "File", file);
}

}  // namespace orv
