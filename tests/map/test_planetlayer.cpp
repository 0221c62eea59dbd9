// The planet layer on a chart: the Moon drawn where its topocentric place
// falls, as a phase disc to its apparent size, recorded in the scene under
// the planets' source, and found by name at the chart's centre.
#include <gtest/gtest.h>

#include <cmath>

#include "catalog/stars/stardisplay.h"
#include "map/chartframe.h"
#include "map/drawcontext.h"
#include "renderfixture.h"
#include "solarsystem/planets.h"
#include "solarsystem/planetsource.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;

TEST(PlanetLayer, MoonIsDrawnAtItsTopocentricPlaceAndFoundByName)
{
    test::CSmallCatalogueChart chart(800, 600);
    CObserverDoc& observer = chart.Doc().observer;
    // 2026 November 17, 18h UT, near first quarter, from Greenwich.
    observer.SetJulianDate(2461362.25);
    const FindResult found = chart.Components().objects.Resolve("moon", observer);
    ASSERT_EQ(found.status, FindStatus::Found) << found.message;
    chart.View().coordinates.SetCentreRaDec(observer, found.matches[0].raJ2000Rad, found.matches[0].decJ2000Rad);
    chart.View().planets.visible = 1;
    chart.View().planets.OnLevelChange(chart.View().Level());
    const QImage image = chart.Render();

    const CChartScene& scene = chart.Renderer().LastScene();
    const SceneObject* moon = nullptr;
    for (const SceneObject& o : scene.Objects())
        if (o.Type() == ObjectType::Planet && o.key == static_cast<std::uint32_t>(kBodyMoon)) moon = &o;
    ASSERT_NE(moon, nullptr) << "the Moon is not in the scene";
    const double cx = chart.View().coordinates.ScreenCentreX(), cy = chart.View().coordinates.ScreenCentreY();
    // Found at the centre of a chart of the same site: the find and the layer
    // both use the topocentric place (a pixel here is 36″).
    EXPECT_NEAR(moon->xPx, cx, 1.5);
    EXPECT_NEAR(moon->yPx, cy, 1.5);
    // Its disc to its apparent size: about 31′ across, the level's scale
    // giving the radius in pixels.
    CPlanets planets;
    double ra, dec, km;
    ASSERT_EQ(planets.MoonPosition(observer, observer.JulianDateTDT(), ra, dec, km, PlaceCentre::Topocentric),
              PositionStatus::Ok);
    const double expectedPx = 0.5 * planets.Record(kBodyMoon).apparentDiameterRad * chart.PxPerRadian();
    EXPECT_NEAR(moon->radiusPx, expectedPx, 0.02 * expectedPx + 1.0);
    // Lit and dark halves: near first quarter both show, each far from the
    // sky's colour.
    const QRgb sky = image.pixel(5, 5);
    const QRgb left = image.pixel(static_cast<int>(cx - 0.6 * expectedPx), static_cast<int>(cy));
    const QRgb right = image.pixel(static_cast<int>(cx + 0.6 * expectedPx), static_cast<int>(cy));
    EXPECT_NE(left, sky);
    EXPECT_NE(right, sky);
    EXPECT_NE(left, right) << "one half lit, the other dark";

    // Identify through the registry: the read-out of the body drawn.
    const auto description = chart.Components().objects.Describe(*moon, scene);
    ASSERT_TRUE(description.has_value());
    EXPECT_EQ(description->designation, "Moon");
    EXPECT_NE(description->information.find("Phase: "), std::string::npos) << description->information;
    EXPECT_NE(description->information.find("Apparent diameter: "), std::string::npos);
}

TEST(PlanetLayer, RedSchemeDrawsTheBodiesInPureRed)
{
    const ChartPalette p = MakePalette(ColourScheme::RedNightVision, SurfaceKind::RasterDisplay, false);
    for (const QColor& c : {p.planetLit, p.planetDark, p.planetLabel}) {
        EXPECT_EQ(c.green(), 0);
        EXPECT_EQ(c.blue(), 0);
    }
}

// At a deep level the star discs are scaled to the level's faint range; a
// planet whose true disc is smaller than that scale is drawn as a full
// symbol at least as large as a star of its magnitude, never as a dot
// smaller than the ninth-magnitude stars around it. Jupiter on 2026 Jan 9
// (opposition; 45″ across, magnitude −2.7) at level 8.
TEST(PlanetLayer, APlanetIsNeverSmallerThanAStarOfItsMagnitude)
{
    test::CSmallCatalogueChart chart(800, 600);
    CObserverDoc& observer = chart.Doc().observer;
    observer.SetJulianDate(2461050.5);
    const FindResult found = chart.Components().objects.Resolve("Jupiter", observer);
    ASSERT_EQ(found.status, FindStatus::Found) << found.message;
    CMapView& v = chart.View();
    v.SetLevel(7, CMapView::TakeField::Yes);
    v.coordinates.SetCentreRaDec(observer, found.matches[0].raJ2000Rad, found.matches[0].decJ2000Rad);
    v.planets.visible = 1;
    v.planets.OnLevelChange(v.Level());
    chart.Render();
    const SceneObject* jupiter = nullptr;
    for (const SceneObject& o : chart.Renderer().LastScene().Objects())
        if (o.Type() == ObjectType::Planet && o.key == static_cast<std::uint32_t>(kBodyJupiter)) jupiter = &o;
    ASSERT_NE(jupiter, nullptr);
    const double trueRadiusPx =
        0.5 * 45.0 * kRadPerArcsec * v.coordinates.ScaleY();  // about 2 px at this level's scale
    const StarSizeScale scale{v.starState.magLimit, v.starState.magBright, chart.Doc().stars.starRadBright,
                              chart.Doc().stars.starRadFaint};
    const int brightestStarPx = StarDiscVerticalPx(StarDiscRadius(jupiter->magCenti, scale), 96.0);
    EXPECT_GT(brightestStarPx, trueRadiusPx);
    EXPECT_GE(jupiter->radiusPx, brightestStarPx);
}
