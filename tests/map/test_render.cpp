// The drawing pipeline on a small catalogue: where stars land on the
// surface, orientation under flips and rotation, the search target marker
// on screens and printers, layers outside their level range, colour schemes,
// identification with the designation rules in order, and the list of
// visible stars.
#include <gtest/gtest.h>

#include <cmath>

#include "catalog/stars/tycho2catalogue.h"
#include "map/chartframe.h"
#include "map/drawcontext.h"
#include "renderfixture.h"
#include "satellite/passdraw.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using orv::test::CSmallCatalogueChart;

namespace {

// Only the star discs: no grids, marks, labels, scale line or compass.
void DiscsOnly(CMapView& view)
{
    view.raDecGrid.visible = view.altAzGrid.visible = view.eclipticGrid.visible = view.galacticGrid.visible = 0;
    view.altAzGrid.solidHorizonLevels = {-1, -1};
    view.scaleLine.visible = view.compass.visible = 0;
    CStarSettings& s = view.Doc().stars;
    s.showDoubles = s.showVariables = 0;
    s.levelBayerLow = s.levelBayerHigh = s.levelFlamsteedLow = s.levelFlamsteedHigh = -1;
    s.levelDistLow = s.levelDistHigh = -1;
    view.SetLevel(view.Level(), CMapView::TakeField::No);
}

QRgb Background(ColourScheme scheme = ColourScheme::Normal) { return BackgroundColour(scheme).rgb(); }

// Expected offset in pixels of a star `deg` degrees from the centre along an
// axis: the stereographic plane distance 2·tan(θ/2) times the scale.
double OffsetPx(const CSmallCatalogueChart& chart, double deg)
{
    return 2.0 * std::tan(0.5 * deg * kRadPerDeg) * chart.PxPerRadian();
}

}  // namespace

// A star at the chart centre lands on the centre pixel; a star 2° east lies
// to the left and one 2° north above, at the projected distance. The chart
// is at J2000.0, so only nutation (under 20″, a quarter pixel here) moves
// the stars from their catalogue places. Tolerance: 1 pixel (a disc is
// centred on the pixel that holds the star's position, up to half a pixel
// from it).
TEST(ChartPixels, StarsLandWhereTheProjectionPutsThem)
{
    CSmallCatalogueChart chart;
    DiscsOnly(chart.View());
    const QImage image = chart.Render();
    const double cx = chart.View().coordinates.ScreenCentreX(), cy = chart.View().coordinates.ScreenCentreY();
    const double d = OffsetPx(chart, 2.0);
    ASSERT_GT(d, 50.0);

    double x = 0.0, y = 0.0;
    ASSERT_TRUE(orv::test::Centroid(image, Background(), static_cast<int>(cx), static_cast<int>(cy), 12, x, y));
    EXPECT_NEAR_UNIT(cx, x, 1.0, orv::test::kSame);
    EXPECT_NEAR_UNIT(cy, y, 1.0, orv::test::kSame);

    ASSERT_TRUE(orv::test::Centroid(image, Background(), static_cast<int>(cx - d), static_cast<int>(cy), 8, x, y));
    EXPECT_NEAR_UNIT(cx - d, x, 1.0, orv::test::kSame);  // east on the left, as on the sky
    EXPECT_NEAR_UNIT(cy, y, 1.0, orv::test::kSame);

    ASSERT_TRUE(orv::test::Centroid(image, Background(), static_cast<int>(cx), static_cast<int>(cy - d), 8, x, y));
    EXPECT_NEAR_UNIT(cx, x, 1.0, orv::test::kSame);
    EXPECT_NEAR_UNIT(cy - d, y, 1.0, orv::test::kSame);  // north up

    // Nothing where the east star would be if the chart were mirrored.
    EXPECT_FALSE(orv::test::Centroid(image, Background(), static_cast<int>(cx + d), static_cast<int>(cy), 8, x, y));
}

TEST(ChartPixels, HorizontalFlipPutsEastOnTheRight)
{
    CSmallCatalogueChart chart;
    DiscsOnly(chart.View());
    chart.View().coordinates.SetFlips(-1, 1);
    const QImage image = chart.Render();
    const double cx = chart.View().coordinates.ScreenCentreX(), cy = chart.View().coordinates.ScreenCentreY();
    const double d = OffsetPx(chart, 2.0);
    double x = 0.0, y = 0.0;
    ASSERT_TRUE(orv::test::Centroid(image, Background(), static_cast<int>(cx + d), static_cast<int>(cy), 8, x, y));
    EXPECT_NEAR_UNIT(cx + d, x, 1.5, orv::test::kSame);
}

// The compass's north and east arrows point where stars 2° north and 2°
// east of the centre star are drawn, whatever the rotation and flips.
// Tolerance 1° of direction (the stars are 75 pixels from the centre, and
// drawn on whole pixels).
TEST(ChartPixels, CompassFollowsRotationAndFlips)
{
    CSmallCatalogueChart chart;
    DiscsOnly(chart.View());
    for (int flipH : {1, -1}) {
        for (int flipV : {1, -1}) {
            for (double rotationDeg : {0.0, 37.0, 90.0, 211.0}) {
                SCOPED_TRACE(testing::Message() << "flips " << flipH << ' ' << flipV << ", rotation " << rotationDeg);
                CCoordinates& c = chart.View().coordinates;
                c.SetFlips(flipH, flipV);
                c.SetRotation(rotationDeg * kRadPerDeg);
                chart.Render();
                const auto rows = chart.VisibleStars();
                ASSERT_EQ(rows.size(), 4u);
                const VisibleStarRow *centre = nullptr, *east = nullptr, *north = nullptr;
                for (const auto& r : rows) {
                    if (r.tyc2 == 1) centre = &r;
                    if (r.tyc2 == 2) east = &r;
                    if (r.tyc2 == 3) north = &r;
                }
                ASSERT_TRUE(centre && east && north);
                const CChartFrame frame(chart.Doc().observer, c);
                const CompassDirections d = CompassAt(frame, c.ScreenCentreX(), c.ScreenCentreY());
                ASSERT_TRUE(d.ok);
                const double northAngle = std::atan2(north->yPx - centre->yPx, north->xPx - centre->xPx);
                const double eastAngle = std::atan2(east->yPx - centre->yPx, east->xPx - centre->xPx);
                EXPECT_ANGLE_NEAR(northAngle, std::atan2(d.northY, d.northX), 1.0 * kRadPerDeg, orv::test::kDegFromRad);
                EXPECT_ANGLE_NEAR(eastAngle, std::atan2(d.eastY, d.eastX), 1.0 * kRadPerDeg, orv::test::kDegFromRad);
            }
        }
    }
}

// The search target inverts a square 0.2 inch across on a screen, and only
// there: an exported picture and a printer page show no marker.
TEST(ChartPixels, SearchTargetMarkerOnScreensOnly)
{
    CSmallCatalogueChart chart;
    DiscsOnly(chart.View());
    RenderOptions withTarget;
    // Empty sky 1° east and 1° north of the centre.
    withTarget.target = SearchTarget{91.0 * kRadPerDeg, 1.0 * kRadPerDeg, "target"};
    const QImage plain = chart.Render(SurfaceKind::RasterDisplay);
    const double cx = chart.View().coordinates.ScreenCentreX(), cy = chart.View().coordinates.ScreenCentreY();
    const double d = OffsetPx(chart, 1.0);
    // The square reaches one tenth of an inch (9.6 → 9 pixels at 96 dpi) and
    // one pixel more to each side of the target.
    const int tx = static_cast<int>(std::floor(cx - d)), ty = static_cast<int>(std::floor(cy - d));

    const QImage marked = chart.Render(SurfaceKind::RasterDisplay, withTarget);
    for (int dx : {-8, -4, 0, 4, 8}) {
        const QRgb a = plain.pixel(tx + dx, ty + 5), b = marked.pixel(tx + dx, ty + 5);
        EXPECT_EQ(qRed(b), 255 - qRed(a)) << "dx " << dx;
        EXPECT_EQ(qBlue(b), 255 - qBlue(a)) << "dx " << dx;
    }
    EXPECT_EQ(plain.pixel(tx + 13, ty), marked.pixel(tx + 13, ty));  // outside the square
    EXPECT_EQ(plain.pixel(tx, ty - 13), marked.pixel(tx, ty - 13));

    withTarget.showSearchTarget = false;  // hidden from the View menu
    EXPECT_EQ(chart.Render(SurfaceKind::RasterDisplay, withTarget), plain);
    withTarget.showSearchTarget = true;
    EXPECT_EQ(chart.Render(SurfaceKind::Printer, withTarget), chart.Render(SurfaceKind::Printer));
    EXPECT_EQ(chart.Render(SurfaceKind::Bitmap, withTarget), chart.Render(SurfaceKind::Bitmap));
}

// Passes plotted from the satellite windows are part of the chart: the
// renderer draws them on every surface, along the pass's places of date.
// The chart is at J2000.0, where the place of date differs from the
// catalogue place by precession-free nutation and aberration only (under
// 30″, half a pixel here), so a pass along declination −1° crosses the
// column of the centre 1° below the centre star. Tolerance: 2 pixels (the
// line's width and antialiasing).
TEST(ChartPixels, PlottedPassesAreDrawnWhereThePassWas)
{
    CSmallCatalogueChart chart;
    DiscsOnly(chart.View());
    sat::PlottedPassList list;
    sat::PlottedPass pass;
    pass.satelliteName = "TEST SAT";
    for (int i = 0; i <= 20; ++i) {
        sat::PlottedPassPoint p;
        p.jdUT = 2451545.0 + i * 10.0 / 86400.0;
        p.raDateRad = (86.0 + 0.4 * i) * kRadPerDeg;  // 86° to 94°, west to east
        p.decDateRad = -1.0 * kRadPerDeg;
        pass.points.push_back(p);
    }
    list.passes.push_back(pass);
    RenderOptions withPass;
    auto* passLayer = chart.Renderer().FindLayer<sat::CPlottedPassLayer>();
    ASSERT_NE(passLayer, nullptr);

    for (SurfaceKind kind : {SurfaceKind::RasterDisplay, SurfaceKind::Bitmap, SurfaceKind::Printer}) {
        passLayer->Clear();
        const QImage plain = chart.Render(kind);
        const double cx = chart.View().coordinates.ScreenCentreX(), cy = chart.View().coordinates.ScreenCentreY();
        const int x = static_cast<int>(std::lround(cx));
        const int yPass = static_cast<int>(std::lround(cy + OffsetPx(chart, 1.0)));
        const int yClear = static_cast<int>(std::lround(cy + OffsetPx(chart, 0.5)));
        passLayer->SetPasses(list);
        const QImage plotted = chart.Render(kind, withPass);
        int changed = 0;
        for (int y = yPass - 2; y <= yPass + 2; ++y) changed += plain.pixel(x, y) != plotted.pixel(x, y) ? 1 : 0;
        EXPECT_GT(changed, 0) << "surface " << static_cast<int>(kind);
        EXPECT_EQ(plain.pixel(x, yClear), plotted.pixel(x, yClear)) << "surface " << static_cast<int>(kind);
    }
    passLayer->SetPasses(sat::PlottedPassList{});
    const QImage none = chart.Render(SurfaceKind::Bitmap, withPass);
    passLayer->Clear();
    EXPECT_EQ(none, chart.Render(SurfaceKind::Bitmap));
}

// A layer whose level range excludes the current level draws nothing, and
// the layers after it draw as usual.
TEST(ChartPixels, LayerOutsideItsLevelsDrawsNothingLaterLayersStillDraw)
{
    CSmallCatalogueChart chart;
    CMapView& v = chart.View();
    DiscsOnly(v);
    v.compass.visible = 1;
    v.raDecGrid.visible = 1;
    v.raDecGrid.first = {6, 9};  // the chart is at level index 3
    v.raDecGrid.second = {-1, -1};
    v.SetLevel(3, CMapView::TakeField::No);
    ASSERT_EQ(v.raDecGrid.state, 0);
    const QImage outOfRange = chart.Render();

    v.raDecGrid.visible = 0;
    v.SetLevel(3, CMapView::TakeField::No);
    EXPECT_EQ(outOfRange, chart.Render());  // the grid drew nothing

    v.compass.visible = 0;
    v.SetLevel(3, CMapView::TakeField::No);
    EXPECT_NE(outOfRange, chart.Render());  // but the compass after it did

    v.raDecGrid.visible = 1;
    v.raDecGrid.first = {0, 9};
    v.SetLevel(3, CMapView::TakeField::No);
    EXPECT_NE(chart.Render(), outOfRange);  // in range, the grid shows
}

// On a chart of the whole sky centred at the zenith, the horizon runs
// through the top and bottom edges: the corners are ground, filled in the
// ground colour where the level has the solid horizon, sky where it has not.
TEST(ChartPixels, GroundBelowTheHorizon)
{
    CSmallCatalogueChart chart;
    CMapView& v = chart.View();
    DiscsOnly(v);
    v.altAzGrid.solidHorizonLevels = {0, 2};
    v.SetLevel(0, CMapView::TakeField::Yes);
    v.coordinates.SetCentreAltAz(chart.Doc().observer, kHalfPi, kPi);
    ASSERT_EQ(v.altAzGrid.solidHorizon, 1);
    const QRgb ground = MakePalette(ColourScheme::Normal, SurfaceKind::RasterDisplay, false).ground.rgb();
    QImage image = chart.Render();
    EXPECT_EQ(image.pixel(3, 3), ground);
    EXPECT_EQ(image.pixel(chart.Width() - 4, chart.Height() - 4), ground);
    EXPECT_EQ(image.pixel(chart.Width() / 2, 8), Background());  // just above the horizon at the top
    EXPECT_NE(image.pixel(chart.Width() / 2 + chart.Height() / 2 + 8, chart.Height() / 2), Background());

    v.altAzGrid.solidHorizonLevels = {-1, -1};
    v.SetLevel(0, CMapView::TakeField::No);
    image = chart.Render();
    EXPECT_EQ(image.pixel(3, 3), Background());
}

// Where the ground is filled, the sky's grids stop at the horizon, as the
// ground would cover them if it were laid over them: on the zenith chart the
// right ascension and declination grid changes no pixel of the ground (3
// pixels beyond the horizon circle) and many of the sky, while the same grid
// without the solid horizon crosses the ground too.
TEST(ChartPixels, SkyGridsStopAtTheFilledGround)
{
    CSmallCatalogueChart chart;
    CMapView& v = chart.View();
    DiscsOnly(v);
    v.raDecGrid.first = {0, 9};
    chart.Doc().raDecGrid.labelVisible = 0;  // lines only: labels may straddle the horizon
    v.SetLevel(0, CMapView::TakeField::Yes);
    v.coordinates.SetCentreAltAz(chart.Doc().observer, kHalfPi, kPi);
    const auto render = [&](bool grid, bool solidGround) {
        v.raDecGrid.visible = grid ? 1 : 0;
        v.altAzGrid.solidHorizonLevels = solidGround ? LevelRange{0, 2} : LevelRange{-1, -1};
        v.SetLevel(0, CMapView::TakeField::No);
        return chart.Render();
    };
    // Pixels that differ between two renders, on the ground or in the sky.
    const auto changed = [&](const QImage& a, const QImage& b, bool onGround) {
        const double cx = 0.5 * chart.Width(), cy = 0.5 * chart.Height(), r = 0.5 * chart.Height();
        int n = 0;
        for (int y = 0; y < a.height(); ++y)
            for (int x = 0; x < a.width(); ++x) {
                const double d = std::hypot(x + 0.5 - cx, y + 0.5 - cy);
                if (onGround ? d < r + 3.0 : d > r - 3.0) continue;
                n += a.pixel(x, y) != b.pixel(x, y);
            }
        return n;
    };
    const QImage bare = render(false, true), gridded = render(true, true);
    ASSERT_GT(v.raDecGrid.state, 0);
    ASSERT_EQ(v.altAzGrid.solidHorizon, 1);
    EXPECT_EQ(changed(bare, gridded, true), 0);
    EXPECT_GT(changed(bare, gridded, false), 500);
    EXPECT_GT(changed(render(false, false), render(true, false), true), 500);
}

TEST(ChartPixels, RedNightVisionHasNoGreenOrBlue)
{
    CSmallCatalogueChart chart;  // grids, labels, marks, compass: everything
    chart.Doc().stars.levelProperLow = 0;
    chart.Doc().stars.levelProperHigh = 9;
    chart.View().SetLevel(3, CMapView::TakeField::No);
    RenderOptions red;
    red.scheme = ColourScheme::RedNightVision;
    const QImage image = chart.Render(SurfaceKind::RasterDisplay, red);
    int lit = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb p = image.pixel(x, y);
            ASSERT_EQ(qGreen(p), 0) << x << ',' << y;
            ASSERT_EQ(qBlue(p), 0) << x << ',' << y;
            if (qRed(p) > 100) ++lit;
        }
    EXPECT_GT(lit, 200);  // stars, lines and texts are there, in red
}

TEST(ChartPixels, BlackOnWhiteAndMonochromePrinting)
{
    CSmallCatalogueChart chart;
    RenderOptions ink;
    ink.scheme = ColourScheme::BlackOnWhite;
    const QImage paper = chart.Render(SurfaceKind::RasterDisplay, ink);
    EXPECT_EQ(paper.pixel(2, 2), qRgb(255, 255, 255));
    const int cx = chart.View().coordinates.ScreenCentreX(), cy = chart.View().coordinates.ScreenCentreY();
    EXPECT_EQ(paper.pixel(cx, cy), qRgb(0, 0, 0));  // the brightest star in ink

    // A printer page in monochrome: grey levels only, on white paper, even
    // from the coloured scheme.
    RenderOptions mono;
    mono.monochrome = true;
    const QImage page = chart.Render(SurfaceKind::Printer, mono, 300.0);
    EXPECT_EQ(page.pixel(2, 2), qRgb(255, 255, 255));
    for (int y = 0; y < page.height(); y += 3)
        for (int x = 0; x < page.width(); x += 3) {
            const QRgb p = page.pixel(x, y);
            ASSERT_TRUE(qRed(p) == qGreen(p) && qGreen(p) == qBlue(p)) << x << ',' << y;
        }
}

// A bright star just beyond the left edge still shows a sliver of its disc,
// but its name is not placed on the chart, where it would name nothing; two
// pixels further in, the same star is labelled.
TEST(ChartLabels, NoLabelForAStarWhoseCentreIsOffTheChart)
{
    CSmallCatalogueChart chart;
    DiscsOnly(chart.View());
    chart.Doc().stars.levelProperLow = 0;
    chart.Doc().stars.levelProperHigh = 9;
    chart.View().SetLevel(chart.View().Level(), CMapView::TakeField::No);
    chart.Render();  // sets up the scale
    const double halfWidthPx = chart.Width() / 2.0;
    auto centreWithCentrumAt = [&](double xPx) {
        // Centrum (RA 90°, Dec 0) `xPx` from the left edge: east of the
        // centre by the angle whose stereographic distance is cx − xPx.
        const double offsetRad = 2.0 * std::atan((halfWidthPx - xPx) / (2.0 * chart.PxPerRadian()));
        chart.View().coordinates.SetCentreRaDec(chart.Doc().observer, test::kCentreRaDeg * kRadPerDeg - offsetRad, 0.0);
        chart.Render();
        return chart.Renderer().LastStats();
    };
    const RenderStats outside = centreWithCentrumAt(-2.0);
    EXPECT_GE(outside.starsDrawn, 1);  // the sliver of its disc
    EXPECT_EQ(outside.labelsDrawn, 0);
    const RenderStats inside = centreWithCentrumAt(2.0);
    EXPECT_EQ(inside.labelsDrawn, 1);
}

// Identification: the nearest star within the tolerance, its designation by
// the first rule that applies, and the read-out lines.
TEST(ChartIdentify, DesignationRulesInOrder)
{
    CSmallCatalogueChart chart;
    chart.Render();
    const double cx = chart.View().coordinates.ScreenCentreX(), cy = chart.View().coordinates.ScreenCentreY();
    const double d = OffsetPx(chart, 2.0);
    ASSERT_GT(d, 50.0);

    // Proper names are off by default: the Bayer letter comes first.
    auto centre = chart.Renderer().Identify(cx + 2, cy - 1, 4.0);
    ASSERT_TRUE(centre);
    EXPECT_EQ(centre->type, ObjectType::Star);
    EXPECT_EQ(centre->designation, "alpha Ori");
    EXPECT_NE(centre->information.find("\nMag: 0.50"), std::string::npos) << centre->information;
    EXPECT_NE(centre->information.find("\nDistance: 548 ly"), std::string::npos) << centre->information;
    EXPECT_NE(centre->information.find("TYC 1-1-1"), std::string::npos);
    EXPECT_ANGLE_NEAR(orv::test::kCentreRaDeg * kRadPerDeg, centre->raJ2000Rad, 1e-9, orv::test::kArcsecFromRad);

    // With proper-name labels at this level the name wins.
    chart.Doc().stars.levelProperLow = 0;
    chart.Doc().stars.levelProperHigh = 9;
    chart.View().SetLevel(3, CMapView::TakeField::No);
    chart.Render();
    centre = chart.Renderer().Identify(cx, cy, 4.0);
    ASSERT_TRUE(centre);
    EXPECT_EQ(centre->designation, "Centrum");

    // The variable star without a Bayer letter: its GCVS name and range.
    auto north = chart.Renderer().Identify(cx, cy - d, 4.0);
    ASSERT_TRUE(north);
    EXPECT_EQ(north->designation, "β Per");
    EXPECT_NE(north->information.find("\nMag range: 2.12 to 3.39"), std::string::npos) << north->information;
    EXPECT_NE(north->information.find("\nVar: EA/SD"), std::string::npos) << north->information;

    // The double star: its discoverer designation.
    const double d2 = OffsetPx(chart, 2.0);
    auto southWest = chart.Renderer().Identify(cx + d2, cy + d2, 6.0);
    ASSERT_TRUE(southWest);
    EXPECT_EQ(southWest->designation, "Σ 1110");

    // No cross identification: the Tycho identifier.
    auto east = chart.Renderer().Identify(cx - d, cy, 4.0);
    ASSERT_TRUE(east);
    EXPECT_EQ(east->designation, "TYC 1-2-1");

    // Empty sky.
    EXPECT_FALSE(chart.Renderer().Identify(cx + 30, cy + 30, 4.0));
}

TEST(ChartIdentify, PrintingDoesNotDisturbTheWindowsIdentification)
{
    CSmallCatalogueChart chart;
    chart.Render(SurfaceKind::RasterDisplay);
    const double cx = chart.View().coordinates.ScreenCentreX(), cy = chart.View().coordinates.ScreenCentreY();
    chart.Render(SurfaceKind::Printer, {}, 600.0);  // a page six times as fine
    chart.View().coordinates.SetupSurface(chart.Width(), chart.Height());
    const auto found = chart.Renderer().Identify(cx, cy, 3.0);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->designation, "alpha Ori");
}

TEST(ChartVisibleStars, RowsAndListing)
{
    CSmallCatalogueChart chart;
    chart.Render();
    const auto rows = chart.VisibleStars();
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].designation, "alpha Ori");  // brightest first
    EXPECT_EQ(rows[0].constellation, 59);          // Orion
    EXPECT_EQ(rows[0].greek, 0);
    EXPECT_EQ(rows[0].flamsteed, 58);
    EXPECT_EQ(rows[0].bvMilli, 1850);
    EXPECT_EQ(rows[3].magCenti, 400);
    EXPECT_TRUE(rows[3].isDouble);
    const std::string text = chart.VisibleStarsText();
    EXPECT_EQ(text.rfind("Stars Visible on the Map\n\n", 0), 0u);
    EXPECT_NE(text.find("β Per"), std::string::npos);
    EXPECT_EQ(chart.Renderer().LastStats().starsDrawn, 4);
    EXPECT_TRUE(chart.Renderer().LastStats().catalogueOpen);
}

// A star limit that excludes stars: the list follows the level's limit and
// the disc scale its bright end.
TEST(ChartVisibleStars, LevelLimitCutsTheList)
{
    CSmallCatalogueChart chart;
    CLevelTable levels = chart.View().Levels();
    levels[3].starMagLimit = 350;
    chart.View().SetLevels(levels);
    chart.View().SetLevel(3, CMapView::TakeField::No);
    chart.Render();
    EXPECT_EQ(chart.VisibleStars().size(), 3u);  // the 4.00 star is out
    levels[3].starMagLimit = 900;  // extended again: the list grows without a new region search
    chart.View().SetLevels(levels);
    chart.View().SetLevel(3, CMapView::TakeField::No);
    chart.Render();
    EXPECT_EQ(chart.VisibleStars().size(), 4u);
}

// ---------------------------------------------------------------- real data

namespace {

// Charts on the real catalogue (skipped when it has not been built into the
// data folder). Places: Hipparcos catalogue (ESA SP-1200, 1997), ICRS,
// epoch J1991.25 carried to J2000.0; the charts are drawn at midnight UT of
// 2000 January 1 (Orion on the meridian in central Europe), so proper motion
// and precession move nothing by a pixel.
class RealChart : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_components = std::make_unique<orv::test::CTestChartComponents>();
        if (!m_components->stars->Get().IsOpen())
            GTEST_SKIP() << "no built star catalogue in the data folder: run tools/fetch-sources.sh and "
                            "orvane-databuild, or set ORVANE_DATA";
        m_doc = std::make_unique<CMapDoc>(m_store);
        m_doc->observer.SetSite("test", 48.0 * kRadPerDeg, 11.0 * kRadPerDeg, 0.0);
        m_doc->observer.SetJulianDate(2451545.5);
        m_view = std::make_unique<CMapView>(*m_doc, m_store, CLevelTable());
        m_renderer = std::make_unique<CChartRenderer>(m_components->components);
    }

    // Draws a chart of level index `level` centred on (ra, dec) J2000.
    void Draw(int level, double raRad, double decRad)
    {
        m_view->SetLevel(level, CMapView::TakeField::Yes);
        m_view->coordinates.SetCentringMode(Centring::RaDec);
        m_view->coordinates.SetCentreRaDec(m_doc->observer, raRad, decRad);
        m_view->coordinates.SetupSurface(1920, 1080);
        QImage image(1920, 1080, QImage::Format_RGB32);
        QPainter painter(&image);
        m_renderer->Draw(DrawSurface{&painter, SurfaceKind::RasterDisplay, 1920, 1080, 96.0, 96.0}, *m_view, {});
    }

    // Where the projection puts a J2000 place (frame of date ≈ J2000 here).
    ScreenPoint Expected(double raRad, double decRad) const
    {
        PlanePoint p;
        m_view->coordinates.ToPlane(raRad, decRad, p);
        return m_view->coordinates.PlaneToScreen(p);
    }

    CMemorySettingsStore m_store;
    std::unique_ptr<orv::test::CTestChartComponents> m_components;
    std::unique_ptr<CMapDoc> m_doc;
    std::unique_ptr<CMapView> m_view;
    std::unique_ptr<CChartRenderer> m_renderer;
};

double Hms(double h, double m, double s) { return (h + m / 60.0 + s / 3600.0) * kRadPerHour; }
double Dms(double d, double m, double s) { return (d < 0 ? -1.0 : 1.0) * (std::fabs(d) + m / 60.0 + s / 3600.0) * kRadPerDeg; }

}  // namespace

// Orion at level 3 (16° to the top edge): Betelgeuse at the centre, Rigel
// where the projection puts its catalogue place. Tolerance 2 pixels (the
// disc's whole-pixel placement and nutation, under 20″ = 0.2 pixel here).
TEST_F(RealChart, OrionStarsWhereTheyBelong)
{
    const double betelgeuseRa = Hms(5, 55, 10.305), betelgeuseDec = Dms(7, 24, 25.43);
    const double rigelRa = Hms(5, 14, 32.272), rigelDec = Dms(-8, 12, 5.90);
    Draw(2, betelgeuseRa, betelgeuseDec);
    const ScreenPoint centre{static_cast<double>(m_view->coordinates.ScreenCentreX()),
                             static_cast<double>(m_view->coordinates.ScreenCentreY())};
    const auto betelgeuse = m_renderer->Identify(centre.x, centre.y, 2.0);
    ASSERT_TRUE(betelgeuse);
    EXPECT_EQ(betelgeuse->designation, "alpha Ori");
    EXPECT_NEAR_UNIT(centre.x, betelgeuse->xPx, 2.0, orv::test::kSame);
    EXPECT_NEAR_UNIT(centre.y, betelgeuse->yPx, 2.0, orv::test::kSame);

    const ScreenPoint rigelAt = Expected(rigelRa, rigelDec);
    EXPECT_GT(rigelAt.x, centre.x);  // west of Betelgeuse: to the right
    EXPECT_GT(rigelAt.y, centre.y);  // south: below
    const auto rigel = m_renderer->Identify(rigelAt.x, rigelAt.y, 2.0);
    ASSERT_TRUE(rigel);
    EXPECT_EQ(rigel->designation, "beta Ori");
    EXPECT_NEAR_UNIT(rigelAt.x, rigel->xPx, 2.0, orv::test::kSame);
    EXPECT_NEAR_UNIT(rigelAt.y, rigel->yPx, 2.0, orv::test::kSame);
}

// At the celestial pole: Polaris, 44′ from the pole, found where the
// projection puts it (its place comes through the rigorous space-motion path
// above 85° of declination).
TEST_F(RealChart, PolarisBesideThePole)
{
    Draw(4, 0.0, kHalfPi);
    const ScreenPoint at = Expected(Hms(2, 31, 49.09), Dms(89, 15, 50.8));
    const auto polaris = m_renderer->Identify(at.x, at.y, 2.0);
    ASSERT_TRUE(polaris);
    EXPECT_EQ(polaris->designation, "alpha UMi");
    EXPECT_NEAR_UNIT(at.x, polaris->xPx, 2.0, orv::test::kSame);
    EXPECT_NEAR_UNIT(at.y, polaris->yPx, 2.0, orv::test::kSame);
    EXPECT_GT(m_renderer->LastStats().starsDrawn, 100);
}
