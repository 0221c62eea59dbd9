// The planet layer on a chart: the Moon drawn where its topocentric place
// falls, as a phase disc to its apparent size, recorded in the scene under
// the planets' source, and found by name at the chart's centre.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "catalog/stars/stardisplay.h"
#include "map/chartframe.h"
#include "map/drawcontext.h"
#include "renderfixture.h"
#include "solarsystem/physephem.h"
#include "solarsystem/planetephemeris.h"
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

// Saturn at a deep level, 2017 June 15 (opposition, the rings open by
// B = +26.5°; 18.3″ across the globe, 41.6″ across the rings): the rings
// are drawn out to 2.27 globe radii along their major axis and the sky
// stays dark beyond them; Titan, 20 radii out, is drawn and recorded under
// the satellites' source, and both Saturn and "titan" are found by name.
TEST(PlanetLayer, SaturnIsDrawnWithItsRingsAndTitan)
{
    test::CSmallCatalogueChart chart(600, 600);
    CObserverDoc& observer = chart.Doc().observer;
    observer.SetJulianDate(2457919.5);
    const FindResult found = chart.Components().objects.Resolve("Saturn", observer);
    ASSERT_EQ(found.status, FindStatus::Found) << found.message;
    CMapView& v = chart.View();
    v.SetLevel(9, CMapView::TakeField::Yes);
    v.coordinates.SetFieldDeg(0.05);  // 3′ from the centre to the top edge: the globe some 30 px across
    v.coordinates.SetCentreRaDec(observer, found.matches[0].raJ2000Rad, found.matches[0].decJ2000Rad);
    v.coordinates.SetupSurface(600, 600);
    v.planets.visible = 1;
    v.planets.OnLevelChange(v.Level());
    v.planets.labelled = false;
    const QImage image = chart.Render();
    if (const char* dump = std::getenv("ORVANE_TEST_DUMP")) image.save(QString::fromLocal8Bit(dump));

    const SceneObject* saturn = nullptr;
    const SceneObject* titan = nullptr;
    const auto* moonSource = chart.Components().objects.SourceOf<CPlanetMoonSource>();
    ASSERT_NE(moonSource, nullptr);
    const auto moonId = chart.Components().objects.IdOf(moonSource);
    for (const SceneObject& o : chart.Renderer().LastScene().Objects()) {
        if (o.Type() == ObjectType::Planet && o.key == static_cast<std::uint32_t>(kBodySaturn) && o.source != *moonId)
            saturn = &o;
        if (moonId && o.source == *moonId && o.key == 9) titan = &o;
    }
    ASSERT_NE(saturn, nullptr);
    // The globe's radius on this chart, from the true apparent diameter.
    const double globePx = 0.5 * 18.3 * kRadPerArcsec * v.coordinates.ScaleY();
    ASSERT_GT(globePx, 8.0);
    // The recorded extent is the rings'.
    EXPECT_NEAR(saturn->radiusPx, 2.267 * globePx, 0.1 * globePx);

    // Along the pole (position angle P; north up, east left on this chart)
    // the sky is dark at 1.5 radii on both sides, beyond the globe and the
    // rings' minor axis. With B = +26.5° the near (southern) half of
    // ring B crosses the globe 0.78 radii south of the centre, drawn in the
    // rings' colour, while 0.78 radii north the globe hides the far half.
    CPlanets planets;
    const auto ring = SaturnRingViewMeeus(planets, observer, observer.JulianDateTDT());
    ASSERT_TRUE(ring.has_value());
    EXPECT_NEAR(ring->earthTiltRad / kRadPerDeg, 26.5, 0.3);
    const double P = ring->poleAngleRad;
    const double poleX = -std::sin(P), poleY = -std::cos(P);
    const double eqX = -std::cos(P), eqY = std::sin(P);
    const QColor sky = image.pixelColor(5, 5);
    auto at = [&](double alongEq, double alongPole) {
        return image.pixelColor(static_cast<int>(std::lround(saturn->xPx + globePx * (alongEq * eqX + alongPole * poleX))),
                                static_cast<int>(std::lround(saturn->yPx + globePx * (alongEq * eqY + alongPole * poleY))));
    };
    auto lit = [&](const QColor& c) { return c.red() - sky.red() > 120 && c.green() - sky.green() > 120; };
    // Lit pixels by distance from the centre in globe radii: many in the
    // band of ring A (2.05–2.25, where only the rings can be), none in a band
    // just beyond the rings (2.45–2.75) but for a satellite's dot (Mimas
    // and Enceladus stand 3 to 4 radii out, their dots 2 px across).
    int ringA = 0, beyond = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const double r = std::hypot(x - saturn->xPx, y - saturn->yPx) / globePx;
            if (r > 2.05 && r < 2.25 && lit(image.pixelColor(x, y))) ++ringA;
            if (r > 2.45 && r < 2.75 && lit(image.pixelColor(x, y))) ++beyond;
        }
    EXPECT_GT(ringA, 20);
    EXPECT_LE(beyond, 12);
    EXPECT_FALSE(lit(at(0.0, 1.5)));
    EXPECT_FALSE(lit(at(0.0, -1.5)));
    const QColor nearRing = at(0.0, -0.78), farGlobe = at(0.0, 0.78);
    const QColor globeColour = image.pixelColor(static_cast<int>(saturn->xPx), static_cast<int>(saturn->yPx));
    EXPECT_TRUE(lit(nearRing) && lit(farGlobe));
    EXPECT_EQ(farGlobe, globeColour);
    EXPECT_NE(nearRing, globeColour);

    ASSERT_NE(titan, nullptr);
    const double titanRadii = std::hypot(titan->xPx - saturn->xPx, titan->yPx - saturn->yPx) / globePx;
    EXPECT_GT(titanRadii, 3.0);
    EXPECT_LT(titanRadii, 21.0);
    const FindResult titanFound = chart.Components().objects.Resolve("titan", observer);
    ASSERT_EQ(titanFound.status, FindStatus::Found) << titanFound.message;
    EXPECT_NEAR(titanFound.matches[0].raJ2000Rad, titan->raJ2000Rad, 1e-9);
    const auto description = chart.Components().objects.Describe(*titan, chart.Renderer().LastScene());
    ASSERT_TRUE(description.has_value());
    EXPECT_NE(description->information.find("Satellite of Saturn"), std::string::npos) << description->information;

    // "Planets Visible on the Map" lists Saturn and Titan from the scene.
    const std::vector<VisiblePlanetRow> rows = VisiblePlanetRows(chart.Renderer().LastScene(), chart.Components().objects);
    bool listedSaturn = false, listedTitan = false;
    for (const VisiblePlanetRow& r : rows) {
        listedSaturn |= r.name == "Saturn" && r.kind == "Planet";
        listedTitan |= r.name == "Titan" && r.kind == "Satellite of Saturn" && r.raJ2000Rad == titan->raJ2000Rad;
    }
    EXPECT_TRUE(listedSaturn && listedTitan);
    EXPECT_EQ(VisiblePlanetsTable(rows).rows.size(), rows.size());
}
