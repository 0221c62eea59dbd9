// CMapDoc: the data side of one sky map — the observer (site and time) and
// the data settings of every layer. Its view, CMapView, holds the display
// side. Both are plain objects usable without a window.
#pragma once

#include <string>

#include "map/catalogsettings.h"
#include "map/layersettings.h"
#include "observer/observer.h"

namespace orv {

class CSettingsStore;

// Map file type codes.
inline constexpr int kMapTypeSky = 2;
inline constexpr int kMapTypeSecondKind = 3;

class CMapDoc {
public:
    // Every member from the stored defaults; the instant is the present.
    explicit CMapDoc(const CSettingsStore& store);

    // Writes every member's defaults back to the store.
    void SaveSettings(CSettingsStore& store) const;

    // The document's blocks of the map file: an i16 0, the solar-system data,
    // the observer, the track data, the four grid data blocks (equatorial,
    // horizon, ecliptic, galactic), the annotations and the horizon data.
    void Write(CByteWriter& out) const;
    void Read(CMapFileReader& in);

    // Members, in declaration order of the map's data model.
    CObserverDoc observer;
    CSolarSystemData solarSystem;
    CStarSettings stars;
    CDeepSkySettings deepSky;
    CConstellationSettings constellations;
    CGridData raDecGrid{GridKind::RaDec};
    CGridData altAzGrid{GridKind::AltAz};
    CGridData eclipticGrid{GridKind::Ecliptic};
    CGridData galacticGrid{GridKind::Galactic};
    CCometCatalogSettings comets;
    CAsteroidCatalogSettings asteroids;
    CTrackData track;
    CAnnotationList annotations;
    CHorizonData horizon;
    CObjectListSettings quickCat{"QuickCat"};
    CObjectListSettings targetList{"TargetList"};

    int loadedFromFile = 0;  // set to 1 by the file reader

    // The title shown on the window and stored in the file, and the file the
    // map was read from or last saved to (empty for a new map).
    std::string title;
    std::string pathName;
    bool modified = false;
};

}  // namespace orv
