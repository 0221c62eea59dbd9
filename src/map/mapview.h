// CMapView: the display side of one sky map, without any window — the
// chart's projection (`Coordinates` block), the current level, the view's
// own settings (section "AreaMap") and one display block per layer. The
// desktop program's map widget wraps one of these; the command line and the
// tests use it directly.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "map/coordinates.h"
#include "map/layersettings.h"
#include "map/levels.h"
#include "map/mapdoc.h"

namespace orv {

// The unit of one automatic time step ("TimeUnit").
enum class TimeUnit : int { Second = 0, Minute = 1, Hour = 2, Day = 3, Week = 4, Month = 5, Year = 6, SiderealDay = 7 };
// What the main frame's timer does with the map time ("TimeMode").
enum class TimeMode : int {
    Fixed = 0,     // the map keeps its instant
    RealTime = 1,  // the map follows the computer clock
    Stepping = 2,  // the map advances by TimeNumber × TimeUnit every TimeUpdateInterval seconds
};

// Length of one time step in days (months and years as calendar steps are
// handled by the caller; their length here is the mean one).
double TimeUnitDays(TimeUnit unit);

struct CMapViewSettings {
    int printTitle, printKey, printStatus, printMono;
    int printTopMargin, printBottomMargin, printLeftMargin, printRightMargin;  // 0.001 inch
    int printScale;
    int timeMode, timeUnit, timeNumber, timeUpdateInterval;  // interval in seconds
    int varyLighting, moonlight;
    int minMoonAlt;     // degrees
    int minMoonPhase;   // per cent illuminated
    int lowerTwilight;  // degrees of Sun depression where the sky starts to darken
    int upperTwilight;  // degrees of Sun depression where it is fully dark
    int lightingLevelLow, lightingLevelHigh;
    int autoTrack;
    std::string freeText1, freeText2;  // the map's two free texts (map file only)

    CMapViewSettings();
    void Load(const CSettingsStore& store);  // section "AreaMap"
    void Save(CSettingsStore& store) const;
    static std::span<const IntSetting<CMapViewSettings>> Fields();
};

// What each catalogue layer shows at the current level.
struct StarLevelState {
    bool shown = false;
    int magLimit = 0;   // faintest magnitude at this level, 0.01 mag
    int magBright = 0;  // brightest magnitude at this level, 0.01 mag
    bool properNames = false, bayer = false, flamsteed = false;
    bool colour = false, magnitudes = false, distances = false, properMotion = false;
};

struct DeepSkyLevelState {
    bool ngcic = false, sac = false, leda = false, strasbourg = false, dark = false;
    int magLimit = 0;   // 0 = none at this level
    int sizeLimit = 0;
};

struct ConstellationLevelState {
    bool figures = false, names = false, boundaries = false, abbreviated = false, cornerName = false;
};

class CMapView {
public:
    // Display settings from the stored defaults; the level follows the field.
    CMapView(CMapDoc& doc, const CSettingsStore& store, const CLevelTable& levels);

    CMapDoc& Doc() { return *m_doc; }
    const CMapDoc& Doc() const { return *m_doc; }
    const CLevelTable& Levels() const { return m_levels; }
    // A changed level table (the "View Levels" dialog); the level is re-derived.
    void SetLevels(const CLevelTable& levels);

    void SaveSettings(CSettingsStore& store) const;

    // --- Level ---------------------------------------------------------------
    int Level() const { return m_level; }
    // Makes `level` current; with TakeField::Yes the field becomes the level's
    // field. The centring mode becomes the level's scroll mode (the centre is
    // kept where it is), and every layer is told the new level.
    enum class TakeField { No, Yes };
    void SetLevel(int level, TakeField takeField);
    // After the field changed: enters the level that the field belongs to.
    void FollowField();
    // Field change through zooming: the level follows (see FollowField).
    void SetField(double fieldDeg);

    // --- Time ---------------------------------------------------------------
    // Moves the map's instant and updates the centre accordingly.
    void SetJulianDate(double jdUT);
    // One step of TimeNumber × TimeUnit, forwards (+1) or backwards (−1).
    void StepTime(int direction);

    // --- File blocks written by the view ---------------------------------------
    // The view header after the title record (the print settings, free texts,
    // time stepping and sky lighting).
    void WriteHeader(CByteWriter& out) const;
    void ReadHeader(CMapFileReader& in);

    CMapViewSettings settings;
    CCoordinates coordinates;
    COverlayBlock scaleLine{OverlayKind::ScaleLine};
    COverlayBlock compass{OverlayKind::Compass};
    COverlayBlock shadow{OverlayKind::Shadow};
    CGridDisplay raDecGrid{GridKind::RaDec};
    CGridDisplay altAzGrid{GridKind::AltAz};
    CGridDisplay eclipticGrid{GridKind::Ecliptic};
    CGridDisplay galacticGrid{GridKind::Galactic};
    CBodyDisplay planets{"Planet", {0, 9}, {0, 9}, 1000};
    CBodyDisplay comets{"Comet", {2, 9}, {3, 9}, 1400};
    CBodyDisplay asteroids{"Asteroid", {2, 9}, {4, 9}, 1400};
    CTrackDisplay track;
    CHorizonDisplay horizon;

    StarLevelState starState;
    DeepSkyLevelState deepSkyState;
    ConstellationLevelState constellationState;
    bool lightingShown = false;

    int loadedFromFile = 0;  // set to 1 by the file reader

private:
    void NotifyLevel();

    CMapDoc* m_doc;
    CLevelTable m_levels;
    int m_level = 0;
};

}  // namespace orv
