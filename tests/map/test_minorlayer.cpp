// The comet and asteroid layers on a chart: comet C/2020 F3 (NEOWISE) from
// the MPC's elements (tests/data/minor/CometEls.txt) on 2020 July 20, drawn
// where the find puts it, its tail on the side away from the Sun, its orbit
// path with date ticks, and its identify read-out with the program's lines.
#include <gtest/gtest.h>

#include <cmath>

#include "map/chartframe.h"
#include "renderfixture.h"
#include "solarsystem/drawminor.h"
#include "solarsystem/planets.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;

namespace {

CMinorCatalogs* Catalogs(const test::CSmallCatalogueChart& chart)
{
    const auto* source = chart.Components().objects.SourceOf<CMinorObjectSource>();
    return source ? &source->Catalogs() : nullptr;
}

}  // namespace

TEST(MinorLayer, CometWithTailAwayFromTheSunAndItsPath)
{
    if (!SharedVsop87D().IsOpen()) GTEST_SKIP() << "no VSOP87 files in the data folder";
    test::CSmallCatalogueChart chart(800, 600);
    CMinorCatalogs* catalogs = Catalogs(chart);
    ASSERT_NE(catalogs, nullptr);
    catalogs->Comets().clear();
    catalogs->Asteroids().clear();
    CometFilter all;
    all.mode = -1;
    ImportMpcComets(test::ReadFileBytes(test::TestDataDir() + "/minor/CometEls.txt"), all, catalogs->Comets());
    ASSERT_EQ(catalogs->Comets().size(), 3u);
    catalogs->MarkChanged(MinorKind::Comet);

    CObserverDoc& observer = chart.Doc().observer;
    observer.SetJulianDate(2459050.5 + 3.0 / 24.0);  // 2020 July 20, 3h UT
    const FindResult found = chart.Components().objects.Resolve("C/2020 F3", observer);
    ASSERT_EQ(found.status, FindStatus::Found) << found.message;
    EXPECT_EQ(found.matches[0].designation, "C/2020 F3 (NEOWISE)");
    ASSERT_TRUE(found.matches[0].magnitude.has_value());
    chart.View().coordinates.SetCentreRaDec(observer, found.matches[0].raJ2000Rad, found.matches[0].decJ2000Rad);
    chart.View().comets.visible = 1;
    chart.View().comets.levels = {0, 9};
    chart.View().comets.labelLevels = {0, 9};
    chart.View().comets.magLimit = 3000;
    chart.View().comets.OnLevelChange(chart.View().Level());
    MinorPathRequest path;
    path.kind = MinorKind::Comet;
    path.index = 1;
    path.startJdTT = 2459040.5;
    path.endJdTT = 2459060.5;
    path.stepDays = 1.0;
    catalogs->SetOrbitPaths({path});
    const QImage image = chart.Render();

    const CChartScene& scene = chart.Renderer().LastScene();
    const SceneObject* comet = nullptr;
    for (const SceneObject& o : scene.Objects())
        if (o.Type() == ObjectType::Comet && o.key == 1) comet = &o;
    ASSERT_NE(comet, nullptr) << "NEOWISE is not in the scene";
    const double cx = chart.View().coordinates.ScreenCentreX(), cy = chart.View().coordinates.ScreenCentreY();
    EXPECT_NEAR(comet->xPx, cx, 1.5);
    EXPECT_NEAR(comet->yPx, cy, 1.5);

    // The Sun's direction on the chart, from its apparent place.
    CPlanets planets;
    double sunRa = 0.0, sunDec = 0.0;
    ASSERT_EQ(planets.ApparentPosition(observer, kBodySun, observer.JulianDateTDT(), sunRa, sunDec,
                                       PlaceCentre::Topocentric),
              PositionStatus::Ok);
    // A point 1° from the comet toward the Sun along the great circle.
    CChartFrame frame(observer, chart.View().coordinates);
    double sunFrame[3], cometFrame[3];
    frame.DateToFrame(sunRa, sunDec, sunFrame);
    frame.CatalogueToFrame(comet->raJ2000Rad, comet->decJ2000Rad, EpochPath::Apparent, cometFrame);
    double toward[3];
    for (int i = 0; i < 3; ++i) toward[i] = cometFrame[i] + 0.02 * (sunFrame[i] - cometFrame[i]);
    ScreenPoint t;
    ASSERT_TRUE(frame.ToScreen(toward, t));
    const double dx = t.x - cx, dy = t.y - cy, len = std::hypot(dx, dy);
    ASSERT_GT(len, 1.0);
    // Away from the Sun the tail lights the sky; toward the Sun it is dark.
    const QRgb sky = image.pixel(3, 3);
    const int awayX = static_cast<int>(cx - dx / len * 25.0), awayY = static_cast<int>(cy - dy / len * 25.0);
    const int towardX = static_cast<int>(cx + dx / len * 25.0), towardY = static_cast<int>(cy + dy / len * 25.0);
    EXPECT_NE(image.pixel(awayX, awayY), sky) << "no tail away from the Sun";
    EXPECT_GT(qRed(image.pixel(awayX, awayY)), qRed(image.pixel(towardX, towardY)) + 20)
        << "the tail points toward the Sun";

    // The identify read-out: the program's lines, then the extras.
    const auto d = chart.Components().objects.Describe(*comet, scene);
    ASSERT_TRUE(d.has_value());
    EXPECT_EQ(d->designation, "C/2020 F3 (NEOWISE)");
    for (const char* line : {"\nMag: ", "\nD: ", " AU\nR: ", "\nElongation: ", "\nPhase angle: ", "\nPerihelion 2020-07-03"})
        EXPECT_NE(d->information.find(line), std::string::npos) << line << " missing from\n" << d->information;
    EXPECT_EQ(d->information.find("Warning"), std::string::npos);
}

TEST(MinorLayer, TailLengthGrowsNearerTheSun)
{
    EXPECT_GT(CometTailLengthAU(0.3, 7.5), CometTailLengthAU(0.6, 7.5));
    EXPECT_GT(CometTailLengthAU(0.6, 7.5), CometTailLengthAU(1.5, 7.5));
    EXPECT_GT(CometTailLengthAU(1.0, 4.0), CometTailLengthAU(1.0, 10.0));  // brighter, longer
    EXPECT_EQ(CometTailLengthAU(6.0, 5.0), 0.0);   // no tail far out
    EXPECT_EQ(CometTailLengthAU(1.0, 16.0), 0.0);  // nor for a faint comet
}

// A chart draws what its catalogue settings load: with mode 0 only the
// comet marked "A" (and a comet whose orbit path is asked for, whatever
// the filter); drawing makes them the catalogue's filters, so find agrees.
TEST(MinorLayer, ChartsDrawTheLoadedSet)
{
    if (!SharedVsop87D().IsOpen()) GTEST_SKIP() << "no VSOP87 files in the data folder";
    test::CSmallCatalogueChart chart(400, 300);
    CMinorCatalogs* catalogs = Catalogs(chart);
    ASSERT_NE(catalogs, nullptr);
    catalogs->Comets().clear();
    catalogs->Asteroids().clear();
    ImportMpcComets(test::ReadFileBytes(test::TestDataDir() + "/minor/CometEls.txt"), AllComets(), catalogs->Comets());
    ASSERT_EQ(catalogs->Comets().size(), 3u);
    catalogs->Comets()[1].flag = 'A';  // NEOWISE
    catalogs->MarkChanged(MinorKind::Comet);
    chart.Doc().observer.SetJulianDate(2459050.5);
    chart.Doc().comets.filterMode = 0;
    chart.View().comets.visible = 1;
    chart.Render();
    EXPECT_EQ(catalogs->CometLoadFilter().mode, 0);
    ASSERT_EQ(catalogs->LoadedComets(), std::vector<std::uint32_t>{1});
    CPlanets planets;
    std::vector<MinorChartEntry> entries = ComputeMinorChart(*catalogs, MinorKind::Comet, chart.Doc(), planets);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].index, 1u);
    EXPECT_EQ(chart.Components().objects.Resolve("Halley", chart.Doc().observer).status, FindStatus::NotFound);

    MinorPathRequest path;
    path.kind = MinorKind::Comet;
    path.index = 2;  // Halley
    path.startJdTT = 2459040.5;
    path.endJdTT = 2459060.5;
    catalogs->SetOrbitPaths({path});
    entries = ComputeMinorChart(*catalogs, MinorKind::Comet, chart.Doc(), planets);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].index, 1u);
    EXPECT_EQ(entries[1].index, 2u);

    // Mode 1 at the map's date: NEOWISE within 730 days of 2020 July 20.
    chart.Doc().comets.filterMode = 1;
    catalogs->SetOrbitPaths({});
    chart.Render();
    EXPECT_EQ(catalogs->LoadedComets(), std::vector<std::uint32_t>{1});
    chart.Doc().observer.SetJulianDate(2446470.5);  // 1986 February 9: Halley
    chart.Render();
    EXPECT_EQ(catalogs->LoadedComets(), std::vector<std::uint32_t>{2});
}

// Comets and asteroids have colours of their own in each scheme: apart from
// the planets' on the dark sky, pure red in the night-vision scheme (which
// must keep the observer's dark adaptation), ink on paper.
TEST(MinorLayer, SchemesGiveCometsAndAsteroidsTheirOwnColours)
{
    const ChartPalette normal = MakePalette(ColourScheme::Normal, SurfaceKind::RasterDisplay, false);
    EXPECT_NE(normal.cometHead, normal.planetLit);
    EXPECT_NE(normal.asteroid, normal.planetLit);
    EXPECT_NE(normal.cometHead, normal.asteroid);
    EXPECT_NE(normal.minorLabel, normal.planetLabel);
    const ChartPalette red = MakePalette(ColourScheme::RedNightVision, SurfaceKind::RasterDisplay, false);
    for (const QColor& c : {red.cometHead, red.cometTail, red.asteroid, red.minorLabel}) {
        EXPECT_EQ(c.green(), 0);
        EXPECT_EQ(c.blue(), 0);
    }
    const ChartPalette paper = MakePalette(ColourScheme::Normal, SurfaceKind::Printer, true);
    for (const QColor& c : {paper.cometHead, paper.asteroid, paper.minorLabel})
        EXPECT_EQ(c.red(), c.green()) << "monochrome print: grey";
}
