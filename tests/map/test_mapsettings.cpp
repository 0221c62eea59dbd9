#include <gtest/gtest.h>

#include "map/mapview.h"
#include "support/compare.h"
#include "util/angles.h"
#include "util/settingsstore.h"

using namespace orv;

TEST(MapSettings, EverySectionRoundTripsThroughTheStore)
{
    CMemorySettingsStore store;
    CLevelTable levels;
    CMapDoc doc(store);
    CMapView view(doc, store, levels);
    doc.stars.bv3 = 444;
    doc.deepSky.magAdjust[7] = -50;
    doc.deepSky.nameFilter = "NGC 7*";
    doc.constellations.cornerLabel = 1032;
    doc.solarSystem.grsLongitudeDeg = 62.25;
    doc.comets.filterDays = 90.5;
    doc.altAzGrid.interval1 = 1200;
    view.settings.timeUpdateInterval = 60;
    view.altAzGrid.solidHorizonLevels = {1, 3};
    view.compass.visible = 0;
    view.planets.labelLevels = {2, 7};
    doc.SaveSettings(store);
    view.SaveSettings(store);

    // The conventions of the store: reals as "%lf" text, angles in degrees,
    // the Great Red Spot longitude with "%f".
    EXPECT_EQ(store.GetString("Planet", "GRSLong", ""), "62.250000");
    EXPECT_EQ(store.GetString("Coordinates", "InitField", ""), "90.000000");
    EXPECT_EQ(store.GetInt("AltAzGrid", "AzInterval", 0), 1200);
    EXPECT_EQ(store.GetInt("AltAzGrid", "SolidHorizonLevelHigh", 0), 3);
    EXPECT_EQ(store.GetInt("DeepSky", "MagAdjust7", 0), -50);

    CMapDoc doc2(store);
    CMapView view2(doc2, store, levels);
    EXPECT_EQ(doc2.stars.bv3, 444);
    EXPECT_EQ(doc2.deepSky.magAdjust[7], -50);
    EXPECT_EQ(doc2.deepSky.nameFilter, "NGC 7*");
    EXPECT_EQ(doc2.constellations.cornerLabel, 1032);
    EXPECT_DOUBLE_EQ(doc2.solarSystem.grsLongitudeDeg, 62.25);
    EXPECT_DOUBLE_EQ(doc2.comets.filterDays, 90.5);
    EXPECT_EQ(doc2.altAzGrid.interval1, 1200);
    EXPECT_EQ(view2.settings.timeUpdateInterval, 60);
    EXPECT_EQ(view2.compass.visible, 0);
    EXPECT_EQ(view2.planets.labelLevels.high, 7);
}

TEST(MapSettings, CoordinatesStoreAnglesInDegrees)
{
    CMemorySettingsStore store;
    store.SetReal("Coordinates", "InitAlt", 30.0);
    store.SetReal("Coordinates", "InitAz", 270.0);
    store.SetReal("Coordinates", "InitField", 16.0);
    store.SetInt("Coordinates", "FlipHorizontal", -1);
    CCoordinates c;
    c.LoadSettings(store);
    EXPECT_NEAR(c.CentreAltRad(), 30.0 * kRadPerDeg, 1e-12);
    EXPECT_NEAR(c.CentreAzRad(), 270.0 * kRadPerDeg, 1e-12);
    EXPECT_DOUBLE_EQ(c.FieldDeg(), 16.0);
    EXPECT_EQ(c.FlipHorizontal(), -1);
    EXPECT_EQ(c.FlipVertical(), 1);
}

TEST(MapSettings, CornerLabelDigitsFillTheSlotsFromTheLeastSignificant)
{
    CConstellationSettings c;
    EXPECT_EQ(c.CornerSlots(), (std::array<int, 4>{0, 1, 2, 3}));
    c.cornerLabel = 1234;
    EXPECT_EQ(c.CornerSlots(), (std::array<int, 4>{4, 3, 2, 1}));
    c.SetCornerSlots({2, 0, 3, 1});
    EXPECT_EQ(c.cornerLabel, 1302);
}

TEST(MapSettings, LevelChangesReachEveryLayer)
{
    CMemorySettingsStore store;
    CLevelTable levels;
    CMapDoc doc(store);
    CMapView view(doc, store, levels);
    view.SetLevel(0, CMapView::TakeField::Yes);
    EXPECT_DOUBLE_EQ(view.coordinates.FieldDeg(), 90.0);
    EXPECT_EQ(view.coordinates.CentringMode(), Centring::AltAz);
    EXPECT_EQ(view.altAzGrid.state, 2);
    EXPECT_EQ(view.altAzGrid.solidHorizon, 1);
    EXPECT_EQ(view.raDecGrid.state, 1);  // faint form on the wide levels
    EXPECT_TRUE(view.constellationState.figures);
    EXPECT_FALSE(view.starState.bayer);
    EXPECT_EQ(view.starState.magLimit, 500);

    view.SetField(3.0);  // zooming in: level 5
    EXPECT_EQ(view.Level(), 4);
    EXPECT_EQ(view.coordinates.CentringMode(), Centring::RaDec);
    EXPECT_EQ(view.altAzGrid.state, 0);
    EXPECT_EQ(view.altAzGrid.solidHorizon, 0);
    EXPECT_EQ(view.raDecGrid.state, 2);
    EXPECT_TRUE(view.starState.bayer);
    EXPECT_TRUE(view.starState.flamsteed);
    EXPECT_TRUE(view.constellationState.figures);  // figures up to level 5
    EXPECT_TRUE(view.deepSkyState.leda);
    EXPECT_FALSE(view.deepSkyState.dark);
    EXPECT_EQ(view.starState.magLimit, 1000);
    view.SetField(1.5);  // level 6
    EXPECT_EQ(view.Level(), 5);
    EXPECT_FALSE(view.constellationState.figures);
    EXPECT_TRUE(view.deepSkyState.dark);
}

TEST(MapSettings, TimeStepsByCalendarMonths)
{
    CMemorySettingsStore store;
    CLevelTable levels;
    CMapDoc doc(store);
    CMapView view(doc, store, levels);
    view.SetJulianDate(JulianDateFromCivil({2024, 11, 15, 20, 0, 0.0}));
    view.settings.timeUnit = static_cast<int>(TimeUnit::Month);
    view.settings.timeNumber = 3;
    view.StepTime(+1);
    CivilDateTime t = doc.observer.UniversalTime();
    EXPECT_EQ(t.year, 2025);
    EXPECT_EQ(t.month, 2);
    EXPECT_EQ(t.day, 15);
    view.StepTime(-1);
    view.StepTime(-1);
    t = doc.observer.UniversalTime();
    EXPECT_EQ(t.year, 2024);
    EXPECT_EQ(t.month, 8);
    EXPECT_EQ(t.hour, 20);
}
