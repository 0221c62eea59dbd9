#include "map/mapview.h"

#include <algorithm>
#include <cmath>

#include "observer/observer.h"

namespace orv {

double TimeUnitDays(TimeUnit unit)
{
    switch (unit) {
    case TimeUnit::Second: return 1.0 / 86400.0;
    case TimeUnit::Minute: return 1.0 / 1440.0;
    case TimeUnit::Hour: return 1.0 / 24.0;
    case TimeUnit::Day: return 1.0;
    case TimeUnit::Week: return 7.0;
    case TimeUnit::Month: return 365.2425 / 12.0;
    case TimeUnit::Year: return 365.2425;
    // One rotation of the Earth relative to the equinox (IERS Conventions 2010).
    case TimeUnit::SiderealDay: return 0.99726956633;
    }
    return 1.0;
}

// ---------------------------------------------------------------- settings

namespace {
using V = CMapViewSettings;
constexpr IntSetting<V> kViewFields[] = {
    {"PrintTitle", &V::printTitle, 1},
    {"PrintKey", &V::printKey, 1},
    {"PrintStatus", &V::printStatus, 1},
    {"PrintMono", &V::printMono, 1},
    {"PrintTopMargin", &V::printTopMargin, 500},
    {"PrintBottomMargin", &V::printBottomMargin, 500},
    {"PrintLeftMargin", &V::printLeftMargin, 500},
    {"PrintRightMargin", &V::printRightMargin, 500},
    {"PrintScale", &V::printScale, 0},
    {"TimeMode", &V::timeMode, 0},
    {"TimeUnit", &V::timeUnit, 3},
    {"TimeNumber", &V::timeNumber, 1},
    {"TimeUpdateInterval", &V::timeUpdateInterval, 10},
    {"VaryLighting", &V::varyLighting, 1},
    {"Moonlight", &V::moonlight, 1},
    {"MinMoonAlt", &V::minMoonAlt, 10},
    {"MinMoonPhase", &V::minMoonPhase, 25},
    {"LowerTwilight", &V::lowerTwilight, 6},
    {"UpperTwilight", &V::upperTwilight, 18},
    {"LightingLevelLow", &V::lightingLevelLow, 0},
    {"LightingLevelHigh", &V::lightingLevelHigh, 2},
    {"AutoTrack", &V::autoTrack, 0},
};
}  // namespace

std::span<const IntSetting<CMapViewSettings>> CMapViewSettings::Fields() { return kViewFields; }
CMapViewSettings::CMapViewSettings() { ResetIntSettings(*this, Fields()); }
void CMapViewSettings::Load(const CSettingsStore& store) { LoadIntSettings(store, "AreaMap", *this, Fields()); }
void CMapViewSettings::Save(CSettingsStore& store) const { SaveIntSettings(store, "AreaMap", *this, Fields()); }

// ---------------------------------------------------------------- view

CMapView::CMapView(CMapDoc& doc, const CSettingsStore& store, const CLevelTable& levels)
    : m_doc(&doc), m_levels(levels)
{
    settings.Load(store);
    coordinates.LoadSettings(store);
    scaleLine.Load(store);
    compass.Load(store);
    shadow.Load(store);
    raDecGrid.Load(store);
    altAzGrid.Load(store);
    eclipticGrid.Load(store);
    galacticGrid.Load(store);
    planets.Load(store);
    comets.Load(store);
    asteroids.Load(store);
    track.Load(store);
    horizon.Load(store);
    coordinates.SetCentreAltAz(doc.observer, coordinates.CentreAltRad(), coordinates.CentreAzRad());
    FollowField();
}

void CMapView::SaveSettings(CSettingsStore& store) const
{
    settings.Save(store);
    coordinates.SaveSettings(store);
    scaleLine.Save(store);
    compass.Save(store);
    shadow.Save(store);
    raDecGrid.Save(store);
    altAzGrid.Save(store);
    eclipticGrid.Save(store);
    galacticGrid.Save(store);
    planets.Save(store);
    comets.Save(store);
    asteroids.Save(store);
    track.Save(store);
    horizon.Save(store);
}

void CMapView::SetLevels(const CLevelTable& levels)
{
    m_levels = levels;
    FollowField();
}

void CMapView::SetLevel(int level, TakeField takeField)
{
    m_level = CLevelTable::Clamp(level);
    const LevelRecord& rec = m_levels[m_level];
    if (takeField == TakeField::Yes) coordinates.SetFieldDeg(rec.fieldDeg);
    const Centring mode = rec.scrollMode != 0 ? Centring::RaDec : Centring::AltAz;
    if (mode != coordinates.CentringMode()) {
        // The chart stays where it is; only what is held fixed changes.
        coordinates.SetCentringMode(mode);
        if (mode == Centring::RaDec)
            coordinates.SetCentreRaDec(m_doc->observer, coordinates.CentreRaJ2000Rad(), coordinates.CentreDecJ2000Rad());
        else
            coordinates.SetCentreAltAz(m_doc->observer, coordinates.CentreAltRad(), coordinates.CentreAzRad());
    }
    NotifyLevel();
}

void CMapView::FollowField() { SetLevel(m_levels.LevelForField(coordinates.FieldDeg()), TakeField::No); }

void CMapView::SetField(double fieldDeg)
{
    coordinates.SetFieldDeg(fieldDeg);
    FollowField();
}

void CMapView::NotifyLevel()
{
    const int L = m_level;
    const LevelRecord& rec = m_levels[L];
    const CMapDoc& doc = *m_doc;

    planets.OnLevelChange(L);

    const CStarSettings& s = doc.stars;
    starState.shown = s.visible != 0;
    starState.magLimit = rec.starMagLimit;
    starState.magBright = rec.starMagBright;
    starState.properNames = s.ProperLevels().Contains(L);
    starState.bayer = s.BayerLevels().Contains(L);
    starState.flamsteed = s.FlamsteedLevels().Contains(L);
    starState.colour = s.showColour != 0 && s.ColourLevels().Contains(L);
    starState.magnitudes = s.labelMag != 0 && s.MagLevels().Contains(L);
    starState.distances = s.DistLevels().Contains(L);
    starState.properMotion = s.PMLevels().Contains(L);

    comets.OnLevelChange(L);
    asteroids.OnLevelChange(L);

    const CDeepSkySettings& d = doc.deepSky;
    const bool ds = d.visible != 0;
    deepSkyState.ngcic = ds && LevelRange{d.levelLowNGCIC, d.levelHighNGCIC}.Contains(L);
    deepSkyState.sac = ds && LevelRange{d.levelLowSAC, d.levelHighSAC}.Contains(L);
    deepSkyState.leda = ds && LevelRange{d.levelLowLEDA, d.levelHighLEDA}.Contains(L);
    deepSkyState.strasbourg = ds && LevelRange{d.levelLowStras, d.levelHighStras}.Contains(L);
    deepSkyState.dark = ds && LevelRange{d.darkLevelLow, d.darkLevelHigh}.Contains(L);
    deepSkyState.magLimit = rec.dsMagLimit;
    deepSkyState.sizeLimit = rec.dsSizeLimit;

    const CConstellationSettings& c = doc.constellations;
    constellationState.figures = c.conFigureVisible != 0 && LevelRange{c.levelFigureLow, c.levelFigureHigh}.Contains(L);
    constellationState.names = c.conNameVisible != 0 && LevelRange{c.levelNameLow, c.levelNameHigh}.Contains(L);
    constellationState.boundaries =
        c.conBoundaryVisible != 0 && LevelRange{c.levelBoundaryLow, c.levelBoundaryHigh}.Contains(L);
    constellationState.abbreviated = L >= c.levelAbbrev;
    constellationState.cornerName = LevelRange{c.levelCornerNameLow, c.levelCornerNameHigh}.Contains(L);

    m_doc->quickCat.OnLevelChange(L);
    m_doc->targetList.OnLevelChange(L);

    raDecGrid.OnLevelChange(L);
    altAzGrid.OnLevelChange(L);
    eclipticGrid.OnLevelChange(L);
    galacticGrid.OnLevelChange(L);
    scaleLine.OnLevelChange(L);
    compass.OnLevelChange(L);
    shadow.OnLevelChange(L);
    track.OnLevelChange(L);
    horizon.OnLevelChange(L);
    lightingShown = settings.varyLighting != 0 &&
                    LevelRange{settings.lightingLevelLow, settings.lightingLevelHigh}.Contains(L);
}

void CMapView::SetJulianDate(double jdUT)
{
    if (!std::isfinite(jdUT)) return;
    m_doc->observer.SetJulianDate(jdUT);
    coordinates.Update(m_doc->observer);
}

void CMapView::StepTime(int direction)
{
    const CivilDateTime now = m_doc->observer.UniversalTime();
    const int n = settings.timeNumber * (direction < 0 ? -1 : 1);
    const auto unit = static_cast<TimeUnit>(std::clamp(settings.timeUnit, 0, 7));
    if (unit == TimeUnit::Month || unit == TimeUnit::Year) {
        // Calendar steps keep the day of the month and the time of day.
        CivilDateTime next = now;
        const int months = unit == TimeUnit::Month ? n : 12 * n;
        const int total = next.year * 12 + (next.month - 1) + months;
        next.year = total >= 0 ? total / 12 : -((-total + 11) / 12);
        next.month = total - next.year * 12 + 1;
        SetJulianDate(JulianDateFromCivil(next));
    } else {
        SetJulianDate(m_doc->observer.JulianDate() + n * TimeUnitDays(unit));
    }
}

// ---------------------------------------------------------------- file header

void CMapView::WriteHeader(CByteWriter& out) const
{
    const CMapViewSettings& s = settings;
    const auto i16 = [&out](int v) { out.I16(static_cast<std::int16_t>(v)); };
    i16(s.printKey);
    i16(s.printMono);
    // The status flag comes before the title flag in the file.
    i16(s.printStatus);
    i16(s.printTitle);
    i16(s.printTopMargin);
    i16(s.printBottomMargin);
    i16(s.printLeftMargin);
    i16(s.printRightMargin);
    out.CountedString(s.freeText1);
    out.CountedString(s.freeText2);
    i16(s.timeUnit);
    i16(s.timeNumber);
    i16(s.timeUpdateInterval);
    out.I32(s.varyLighting);
    out.I32(s.moonlight);
    i16(s.minMoonAlt);
    i16(s.minMoonPhase);
    i16(s.lowerTwilight);
    i16(s.upperTwilight);
    i16(s.lightingLevelLow);
    i16(s.lightingLevelHigh);
}

void CMapView::ReadHeader(CMapFileReader& in)
{
    CMapViewSettings& s = settings;
    CByteReader& r = in.Bytes();
    const int V = in.Version();
    r.I16Into(s.printKey);
    r.I16Into(s.printMono);
    if (V > 2) {
        r.I16Into(s.printStatus);
        r.I16Into(s.printTitle);
        r.I16Into(s.printTopMargin);
        r.I16Into(s.printBottomMargin);
        r.I16Into(s.printLeftMargin);
        r.I16Into(s.printRightMargin);
        r.CountedString(s.freeText1);
        r.CountedString(s.freeText2);
        r.I16Into(s.timeUnit);
        r.I16Into(s.timeNumber);
    }
    if (V > 9) r.I16Into(s.timeUpdateInterval);
    if (V > 4) {
        std::int32_t vary = s.varyLighting, moon = s.moonlight;
        r.I32(vary);
        r.I32(moon);
        s.varyLighting = vary;
        s.moonlight = moon;
        r.I16Into(s.minMoonAlt);
        r.I16Into(s.minMoonPhase);
        r.I16Into(s.lowerTwilight);
        r.I16Into(s.upperTwilight);
        r.I16Into(s.lightingLevelLow);
        r.I16Into(s.lightingLevelHigh);
    }
}

}  // namespace orv
