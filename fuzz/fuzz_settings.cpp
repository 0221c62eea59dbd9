// A settings file damaged by a crash of another program, an editor or a
// disk: the whole INI file read through QSettings into the settings store,
// then every section the program reads loaded into fresh objects the way
// the program starts up. Nothing may crash or hang, and what was loaded
// must be usable: a site on the Earth, finite chart centre and field, a
// level table of positive fields, eclipse years in the tables' span.
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "app/qtsettingsstore.h"
#include "eclipse/eclipsesearch.h"
#include "fuzzsupport.h"
#include "map/levels.h"
#include "map/mapdoc.h"
#include "map/mapfile.h"
#include "map/mapview.h"
#include "satellite/satsettings.h"
#include "solarsystem/planets.h"
#include "util/settingsstore.h"

namespace {

void Check(bool ok)
{
    if (!ok) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace orv;
    // One name for every input (QSettings keeps parsed files in a cache
    // keyed by name: new names would grow it, and make every input look
    // like a leak to the sanitizer), with a time stamp of its own so that
    // QSettings, which checks the time stamp and size, reads each afresh.
    static long long serial = 0;
    const std::string path = fuzz::WriteScratch("settings.ini", {data, size});
    std::error_code ec;
    std::filesystem::last_write_time(
        path, std::filesystem::file_time_type(std::chrono::seconds(1000000000 + ++serial)), ec);
    {
        const CQtSettingsStore store(path);

        CLevelTable levels;
        levels.Load(store);
        for (int i = 0; i < kLevelCount; ++i) Check(std::isfinite(levels[i].fieldDeg) && levels[i].fieldDeg > 0.0);

        CMapDoc doc(store);
        CMapView view(doc, store, levels);
        Check(std::isfinite(doc.observer.LatitudeRad()) && std::abs(doc.observer.LatitudeRad()) <= 1.5707963268);
        Check(std::isfinite(doc.observer.LongitudeRad()) && std::isfinite(doc.observer.HeightM()));
        Check(std::isfinite(view.coordinates.FieldDeg()) && view.coordinates.FieldDeg() > 0.0);
        view.coordinates.Update(doc.observer);
        view.FollowField();
        // What was loaded goes into a map file and must read back.
        const std::vector<std::uint8_t> bytes = WriteMapBytes(view);
        CMapDoc again(store);
        CMapView againView(again, store, levels);
        Check(ReadMapBytes(bytes, againView, KeepTitle::No).status == MapFileStatus::Ok);

        CPlanets planets;
        planets.LoadSettings(store);
        Check(std::isfinite(planets.GreatRedSpotLongitudeDeg()));

        sat::CEarthSatSettings satellites;
        satellites.Load(store);
        Check(satellites.passDurationDays >= 1 && satellites.passDurationDays <= 365);
        Check(satellites.groundTrackLengthMin >= 1 && satellites.groundTrackIntervalMin >= 1);

        EclipseSearchSettings search;
        search.Load(store);
        Check(search.startYear >= -1999 && search.endYear <= 3000);
        EclipseBrowsePosition solar, lunar;
        solar.Load(store, EclipseKind::Solar);
        lunar.Load(store, EclipseKind::Lunar);

        // Every real setting the file holds reads as a finite number or
        // falls back to its default.
        for (const char* section : {"Observer", "AreaMap", "Planet", "Level1", "Satellite"})
            for (const char* key : {"Latitude", "Longitude", "Height", "TimeZone", "GRSLong", "Field"})
                Check(std::isfinite(store.GetReal(section, key, 1.0)));
    }
    return 0;
}
