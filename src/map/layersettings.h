// Settings of the map's other layers: grids, the small overlays (scale line,
// compass, Earth's shadow), the solar system, comets and asteroids, tracks,
// annotations, the horizon, and the quick catalogue and target list.
//
// "Data" blocks belong to the map document, "display" blocks to the map view
// (which also keeps each display block's visible state for the current
// level). Every block loads and saves its own settings section and writes a
// fixed field sequence to the map file; docs/map-file-format.md lists them.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "map/levels.h"
#include "map/mapfileio.h"

namespace orv {

// ------------------------------------------------------------------ Grids

enum class GridKind { RaDec, AltAz, Ecliptic, Galactic };
const char* GridSection(GridKind kind);  // "RADecGrid", "AltAzGrid", "EclipticGrid", "GalacticGrid"

// Spacing of grid lines: 0 chosen from the field, 1 the stored intervals.
struct CGridData {
    GridKind kind = GridKind::RaDec;
    int labelVisible = 1;  // "LabelVisible"
    int method = 0;        // "Method"
    // "RAInterval" (minutes of time) / "DecInterval" (arc minutes) for the
    // equatorial grid, "AzInterval" / "AltInterval" for the horizon grid,
    // "LongInterval" / "LatInterval" (arc minutes) for the ecliptic and
    // galactic grids.
    int interval1 = 60;
    int interval2 = 600;

    explicit CGridData(GridKind k = GridKind::RaDec);
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void Write(CByteWriter& out) const;  // LabelVisible, Method, interval 1, interval 2 (i16)
    void Read(CMapFileReader& in);
    const char* Interval1Key() const;
    const char* Interval2Key() const;
};

struct CGridDisplay {
    GridKind kind = GridKind::RaDec;
    int visible = 1;  // "Visible"
    LevelRange first;   // "LevelLow" / "LevelHigh": solid lines
    LevelRange second;  // "LevelLow2" / "LevelHigh2": faint lines
    // Horizon grid only: the filled ground below the horizon.
    int solidHorizon = 0;  // state at the current level, written to the file
    LevelRange solidHorizonLevels;  // "SolidHorizonLevelLow" / "SolidHorizonLevelHigh"
    // Visible state at the current level: 2 first form, 1 second form, 0 none.
    int state = 0;

    explicit CGridDisplay(GridKind k = GridKind::RaDec);
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    // Visible, LevelLow, LevelHigh, LevelLow2, LevelHigh2 (i16); the horizon
    // grid adds the solid-horizon flag and its level pair.
    void Write(CByteWriter& out) const;
    void Read(CMapFileReader& in);
    void OnLevelChange(int level);
};

// ------------------------------------------------ Scale line, compass, shadow

enum class OverlayKind { ScaleLine, Compass, Shadow };

struct COverlayBlock {
    OverlayKind kind = OverlayKind::ScaleLine;
    int visible = 1;
    LevelRange levels;
    bool shown = false;  // at the current level

    explicit COverlayBlock(OverlayKind k = OverlayKind::ScaleLine);
    const char* Section() const;  // "ScaleLine", "Compass", "Shadow"
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void Write(CByteWriter& out) const;  // Visible (0/1), LevelLow, LevelHigh (i16)
    void Read(CMapFileReader& in);
    void OnLevelChange(int level) { shown = visible != 0 && levels.Contains(level); }
};

// ------------------------------------------------------------ Solar system

// Document side of the planets: the longitude of Jupiter's Great Red Spot
// (System II, degrees), section "Planet", key "GRSLong" (text, "%f").
struct CSolarSystemData {
    double grsLongitudeDeg = 80.0;
    // Jupiter's dark belts drawn on its disc at deep levels: section
    // "Planet", key "JupiterBelts" (0/1, default 1). A setting of the
    // program, not kept in map files.
    bool jupiterBelts = true;
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void Write(CByteWriter& out) const;  // f64
    void Read(CMapFileReader& in);
};

// A simple display block: shown within one level range, labelled within
// another. Planets ("Planet"), comets ("Comet"), asteroids ("Asteroid").
struct CBodyDisplay {
    std::string section;
    int visible = 1;             // "Visible"
    LevelRange levels{0, 9};     // "LevelLow" / "LevelHigh"
    LevelRange labelLevels{0, 9};  // "LabelLevelLow" / "LabelLevelHigh"
    int magLimit = 1400;         // "MagLimit": faintest drawn, 0.01 mag
    int labelMag = 0;            // "LabelMag": magnitude labels
    bool shown = false;
    bool labelled = false;

    CBodyDisplay(std::string sectionName, LevelRange defaultLevels, LevelRange defaultLabels, int defaultMagLimit);
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void Write(CByteWriter& out) const;  // Visible, LevelLow, LevelHigh, LabelLevelLow, LabelLevelHigh, MagLimit, LabelMag (i16)
    void Read(CMapFileReader& in);
    void OnLevelChange(int level)
    {
        shown = visible != 0 && levels.Contains(level);
        labelled = shown && labelLevels.Contains(level);
    }

private:
    LevelRange m_defaultLevels, m_defaultLabels;
    int m_defaultMagLimit;
};

// Which entries of a comet catalogue are loaded: 0 those flagged "A",
// 1 those whose perihelion is within `filterDays` of the map's date,
// 2 none. Section "Comet": "FilterMode", "FilterDays" (text).
struct CCometCatalogSettings {
    int filterMode = 1;
    double filterDays = 730.0;
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void Write(CByteWriter& out) const;  // FilterMode (i16), FilterDays (f64)
    void Read(CMapFileReader& in);
};

// Which entries of an asteroid catalogue are loaded: 0 those flagged "A",
// 1 in file order up to and including number `filterNumber`, 2 those with
// filterHMin ≤ H ≤ filterHMax. Section "Asteroid": "FilterMode",
// "FilterNumber", "FilterHMin", "FilterHMax" (text).
struct CAsteroidCatalogSettings {
    int filterMode = 1;
    int filterNumber = 1000;
    double filterHMin = -5.0;
    double filterHMax = 11.0;
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void Write(CByteWriter& out) const;  // FilterMode (i16), FilterNumber (i32), HMin, HMax (f64)
    void Read(CMapFileReader& in);
};

// ------------------------------------------------------------------ Tracks

// Section "Track": a tracked object is drawn at `points` positions
// `interval` time units apart, every `markInterval`-th position labelled.
struct CTrackData {
    int interval = 1;      // "Interval", in the map's time unit
    int points = 24;       // "Points"
    int markInterval = 4;  // "MarkInterval"
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void Write(CByteWriter& out) const;  // Interval, Points, MarkInterval (i16)
    void Read(CMapFileReader& in);
};

struct CTrackDisplay {
    int visible = 1;            // "Visible"
    LevelRange levels{0, 9};    // "LevelLow" / "LevelHigh"
    int labelMag = 1;           // "LabelMag": magnitudes at the marks ("Mag:%.1f")
    bool shown = false;
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void Write(CByteWriter& out) const;  // Visible, LevelLow, LevelHigh, LabelMag (i16)
    void Read(CMapFileReader& in);
    void OnLevelChange(int level) { shown = visible != 0 && levels.Contains(level); }
};

// ------------------------------------------------------------- Annotations

enum class AnnotationKind : std::int16_t { Eyepiece = 0, Finder = 1, Frame = 2, Text = 3, Line = 4 };

// One annotation, anchored in catalogue coordinates so that it stays on its
// object when the map's date changes.
struct Annotation {
    AnnotationKind kind = AnnotationKind::Text;
    double raJ2000Rad = 0.0;
    double decJ2000Rad = 0.0;
    double size1ArcminOrRaEndRad = 0.0;  // circle diameter / frame width (arcmin); line end RA (rad)
    double size2ArcminOrDecEndRad = 0.0; // frame height (arcmin); line end Dec (rad)
    double angleRad = 0.0;               // position angle of frames and texts
    std::string text;
};

// Section "Annotation": "Visible", "LevelLow", "LevelHigh"; the list itself
// is only in the map file.
struct CAnnotationList {
    int visible = 1;
    LevelRange levels{0, 9};
    std::vector<Annotation> items;
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    // Visible, LevelLow, LevelHigh, count (i16); per item kind (i16), five
    // f64, text (counted string). At most 32767 items.
    void Write(CByteWriter& out) const;
    void Read(CMapFileReader& in);
};

// ------------------------------------------------------------------ Horizon

inline constexpr int kHorizonPoints = 360;

// The horizon profile in use: altitude in whole degrees at each whole degree
// of azimuth. Section "Horizon", key "Filename".
struct CHorizonData {
    std::string fileName;
    std::array<std::int8_t, kHorizonPoints> altitudeDeg{};
    // "UseForEvents": objects behind the profile count as below the horizon
    // (not drawn on the ground, not in the visible lists). Settings only.
    int useForEvents = 0;
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void Write(CByteWriter& out) const;  // file name (counted string), 360 × i8
    void Read(CMapFileReader& in);
};

struct CHorizonDisplay {
    int visible = 1;          // "Visible"
    LevelRange levels{0, 2};  // "LevelLow" / "LevelHigh"
    bool shown = false;
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void Write(CByteWriter& out) const;  // Visible, LevelLow, LevelHigh (i16)
    void Read(CMapFileReader& in);
    void OnLevelChange(int level) { shown = visible != 0 && levels.Contains(level); }
};

// ------------------------------------------- Quick catalogue and target list

// Sections "QuickCat" and "TargetList" (not in the map file): "Visible",
// "LevelLow", "LevelHigh", "File".
struct CObjectListSettings {
    std::string section;
    int visible = 1;
    LevelRange levels{0, 9};
    std::string file;
    bool shown = false;
    explicit CObjectListSettings(std::string sectionName) : section(std::move(sectionName)) {}
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void OnLevelChange(int level) { shown = visible != 0 && levels.Contains(level); }
};

}  // namespace orv
