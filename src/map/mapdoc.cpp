#include "map/mapdoc.h"

#include "util/settingsstore.h"

namespace orv {

CMapDoc::CMapDoc(const CSettingsStore& store)
{
    observer.LoadSettings(store);
    observer.SetToNow();
    solarSystem.Load(store);
    stars.Load(store);
    deepSky.Load(store);
    constellations.Load(store);
    raDecGrid.Load(store);
    altAzGrid.Load(store);
    eclipticGrid.Load(store);
    galacticGrid.Load(store);
    comets.Load(store);
    asteroids.Load(store);
    track.Load(store);
    annotations.Load(store);
    horizon.Load(store);
    quickCat.Load(store);
    targetList.Load(store);
}

void CMapDoc::SaveSettings(CSettingsStore& store) const
{
    observer.SaveSettings(store);
    solarSystem.Save(store);
    stars.Save(store);
    deepSky.Save(store);
    constellations.Save(store);
    raDecGrid.Save(store);
    altAzGrid.Save(store);
    eclipticGrid.Save(store);
    galacticGrid.Save(store);
    comets.Save(store);
    asteroids.Save(store);
    track.Save(store);
    annotations.Save(store);
    horizon.Save(store);
    quickCat.Save(store);
    targetList.Save(store);
}

void CMapDoc::Write(CByteWriter& out) const
{
    out.I16(0);
    solarSystem.Write(out);
    observer.FileSave(out);
    track.Write(out);
    raDecGrid.Write(out);
    altAzGrid.Write(out);
    eclipticGrid.Write(out);
    galacticGrid.Write(out);
    annotations.Write(out);
    horizon.Write(out);
}

void CMapDoc::Read(CMapFileReader& in)
{
    std::int16_t ignored = 0;
    in.Bytes().I16(ignored);
    solarSystem.Read(in);
    observer.FileLoad(in.Bytes());
    track.Read(in);
    raDecGrid.Read(in);
    altAzGrid.Read(in);
    eclipticGrid.Read(in);
    galacticGrid.Read(in);
    annotations.Read(in);
    horizon.Read(in);
}

}  // namespace orv
