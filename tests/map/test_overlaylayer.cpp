// The overlay and horizon layers on a chart: an overlay line lands where its
// coordinates project (at the chart's date, from J2000 or from the map's own
// epoch), the ground is filled below the profile and not above it, and a
// bad line does not stop the rest of an overlay from being drawn.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <memory>

#include "map/chartframe.h"
#include "map/drawcontext.h"
#include "map/mapdraw.h"
#include "overlay/drawoverlay.h"
#include "renderfixture.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using orv::test::CSmallCatalogueChart;

namespace {

void Plain(CMapView& view)
{
    view.raDecGrid.visible = view.altAzGrid.visible = view.eclipticGrid.visible = view.galacticGrid.visible = 0;
    view.scaleLine.visible = view.compass.visible = 0;
    view.SetLevel(view.Level(), CMapView::TakeField::No);
}

bool IsRed(QRgb c) { return qRed(c) > 200 && qGreen(c) < 80 && qBlue(c) < 80; }

// Whether any pixel within `r` of (x, y) is red (antialiased lines).
bool RedNear(const QImage& img, double x, double y, int r = 1)
{
    for (int dy = -r; dy <= r; ++dy)
        for (int dx = -r; dx <= r; ++dx) {
            const int px = static_cast<int>(std::lround(x)) + dx, py = static_cast<int>(std::lround(y)) + dy;
            if (img.rect().contains(px, py) && IsRed(img.pixel(px, py))) return true;
        }
    return false;
}

std::string Write(const std::string& name, const std::string& text)
{
    const std::string path = test::MakeTempDir() + "/" + name;
    std::ofstream(path) << text;
    return path;
}

TEST(OverlayLayer, ALineLandsOnItsCoordinatesAtTheChartsDate)
{
    CSmallCatalogueChart chart;
    Plain(chart.View());
    // 2030: 30 years of precession (25′) between the file's J2000 and the chart.
    chart.View().SetJulianDate(2462502.5);
    chart.View().coordinates.SetCentreRaDec(chart.Doc().observer, 90.0 * kRadPerDeg, 0.0);
    const QImage before = chart.Render();

    // 6h08m = 92°, from −3° to +3°; a line of 12 quarter points (4 pixels).
    // Line 5 is bad (no declination) and is skipped; the rest still draws.
    chart.Overlays().extraFiles.push_back(Write("line.ovl",
                                                "epoch J2000.0\n"
                                                "define line thick solid, 12, red, red\n"
                                                "select line thick\n"
                                                "move 6 8, -3\n"
                                                "draw 6 9\n"
                                                "draw 6 8, 3\n"));
    const QImage img = chart.Render();
    const CChartFrame frame(chart.Doc().observer, chart.View().coordinates);
    for (const double decDeg : {-2.5, -1.0, 1.0, 2.5}) {  // clear of the star at 92°, 0°
        ScreenPoint s;
        ASSERT_TRUE(frame.CatalogueToScreen(92.0 * kRadPerDeg, decDeg * kRadPerDeg, EpochPath::Rigid, s));
        EXPECT_TRUE(RedNear(img, s.x, s.y)) << "dec " << decDeg << " at " << s.x << ", " << s.y;
        EXPECT_FALSE(RedNear(before, s.x, s.y));
        // 6 pixels either side is clear: the line is 4 pixels wide.
        EXPECT_FALSE(RedNear(img, s.x - 6, s.y, 0));
        EXPECT_FALSE(RedNear(img, s.x + 6, s.y, 0));
    }
    // Where the J2000 coordinates would land taken as coordinates of date
    // (30 years of precession, 23′ in right ascension, 14 pixels): nothing.
    double v[3];
    frame.DateToFrame(92.0 * kRadPerDeg, 0.0, v);
    ScreenPoint wrong;
    ASSERT_TRUE(frame.ToScreen(v, wrong));
    EXPECT_FALSE(RedNear(img, wrong.x, wrong.y));
}

TEST(OverlayLayer, CoordinatesWithoutAnEpochAreTheMapsOwn)
{
    CSmallCatalogueChart chart;
    Plain(chart.View());
    chart.View().SetJulianDate(2462502.5);
    chart.View().coordinates.SetCentreRaDec(chart.Doc().observer, 90.0 * kRadPerDeg, 0.0);
    chart.Overlays().extraFiles.push_back(Write("date.ovl",
                                                "define line thick solid, 12, red, red\n"
                                                "select line thick\n"
                                                "move 5 52, -3\n"
                                                "draw 5 52, 3\n"));
    const QImage img = chart.Render();
    const CChartFrame frame(chart.Doc().observer, chart.View().coordinates);
    // The place of date (88°) through the chart's frame; nutation (< 20″,
    // a third of a pixel here) is the only difference from a true place.
    double v[3];
    frame.DateToFrame(88.0 * kRadPerDeg, 1.0 * kRadPerDeg, v);
    ScreenPoint s;
    ASSERT_TRUE(frame.ToScreen(v, s));
    EXPECT_TRUE(RedNear(img, s.x, s.y));
}

TEST(HorizonLayer, GroundIsFilledBelowTheProfileAndNotAbove)
{
    CSmallCatalogueChart chart;
    CMapView& view = chart.View();
    Plain(view);
    view.SetLevel(1, CMapView::TakeField::Yes);
    view.coordinates.SetCentringMode(Centring::AltAz);
    view.coordinates.SetCentreAltAz(chart.Doc().observer, 15.0 * kRadPerDeg, 180.0 * kRadPerDeg);
    ASSERT_TRUE(view.horizon.shown);
    ASSERT_NE(0, view.altAzGrid.solidHorizon);
    // A wall 20° high from azimuth 170° to 190°, the mathematical horizon elsewhere.
    chart.Doc().horizon.altitudeDeg.fill(0);
    for (int k = 170; k <= 190; ++k) chart.Doc().horizon.altitudeDeg[k] = 20;

    const QImage img = chart.Render();
    const QColor ground = MakePalette(ColourScheme::Normal, SurfaceKind::RasterDisplay, false).ground;
    const CChartFrame frame(chart.Doc().observer, view.coordinates);
    auto at = [&](double altDeg, double azDeg) {
        double v[3];
        frame.HorizontalToFrame(altDeg * kRadPerDeg, azDeg * kRadPerDeg, v);
        ScreenPoint s;
        EXPECT_TRUE(frame.ToScreen(v, s));
        return QColor(img.pixel(static_cast<int>(std::lround(s.x)), static_cast<int>(std::lround(s.y))));
    };
    auto isGround = [&](const QColor& c) {
        return std::abs(c.red() - ground.red()) <= 3 && std::abs(c.green() - ground.green()) <= 3 &&
               std::abs(c.blue() - ground.blue()) <= 3;
    };
    // Inside the wall: ground up to 20°.
    EXPECT_TRUE(isGround(at(7.3, 183.7)));
    EXPECT_TRUE(isGround(at(18.5, 176.2)));
    // Above it, and beside it above the mathematical horizon: sky.
    EXPECT_FALSE(isGround(at(22.0, 180.4)));
    EXPECT_FALSE(isGround(at(7.3, 160.4)));
    EXPECT_FALSE(isGround(at(7.3, 199.6)));
    // Below the mathematical horizon everywhere: ground.
    EXPECT_TRUE(isGround(at(-3.1, 160.4)));
    // The profile line is drawn on top of the wall's edge.
    EXPECT_FALSE(isGround(at(20.0, 180.0)));
}

// One line at the horizon, drawn by its owner: with a flat profile and the
// horizon grid shown, the pixels along 0° of altitude take the horizon
// line's colour (the grid leaves its 0° line to it), and the grid's other
// parallels keep theirs.
TEST(HorizonLayer, AFlatProfileIsDrawnOnceByTheHorizonLine)
{
    CSmallCatalogueChart chart;
    CMapView& view = chart.View();
    Plain(view);
    view.altAzGrid.visible = 1;
    view.SetLevel(1, CMapView::TakeField::Yes);
    view.coordinates.SetCentringMode(Centring::AltAz);
    view.coordinates.SetCentreAltAz(chart.Doc().observer, 15.0 * kRadPerDeg, 180.0 * kRadPerDeg);
    ASSERT_TRUE(view.horizon.shown);
    ASSERT_GT(view.altAzGrid.state, 0);
    chart.Doc().horizon.altitudeDeg.fill(0);
    const QImage img = chart.Render();
    const ChartPalette palette = MakePalette(ColourScheme::Normal, SurfaceKind::RasterDisplay, false);
    const CChartFrame frame(chart.Doc().observer, view.coordinates);
    // The most saturated pixel within 2 px of a point: the line's own colour.
    auto lineColourAt = [&](double altDeg, double azDeg) {
        double v[3];
        frame.HorizontalToFrame(altDeg * kRadPerDeg, azDeg * kRadPerDeg, v);
        ScreenPoint s;
        EXPECT_TRUE(frame.ToScreen(v, s));
        QColor best;
        for (int dy = -2; dy <= 2; ++dy)
            for (int dx = -2; dx <= 2; ++dx) {
                const QColor c(img.pixel(static_cast<int>(s.x) + dx, static_cast<int>(s.y) + dy));
                if (!best.isValid() || c.green() > best.green()) best = c;
            }
        return best;
    };
    const auto near = [](const QColor& a, const QColor& b) {
        return std::abs(a.red() - b.red()) <= 12 && std::abs(a.green() - b.green()) <= 12 &&
               std::abs(a.blue() - b.blue()) <= 12;
    };
    for (double az : {160.0, 175.0, 200.0}) {
        EXPECT_TRUE(near(lineColourAt(0.0, az), palette.horizonLine)) << az;
        EXPECT_FALSE(near(lineColourAt(0.0, az), palette.grid[1])) << az;
    }
}

// The ground is the map's own: a chart made of the map's layers alone (no
// overlays) fills it and cuts the sky's grids at it.
TEST(HorizonLayer, TheMapsOwnLayersFillTheGround)
{
    CChartComponents components;
    RegisterMapLayers(components.layers);
    CMemorySettingsStore settings;
    CLevelTable levels;
    CMapDoc doc(settings);
    doc.observer.SetSite("test", 48.0 * kRadPerDeg, 11.0 * kRadPerDeg, 500.0);
    doc.observer.SetJulianDate(2460325.416666667);
    CMapView view(doc, settings, levels);
    view.SetLevel(1, CMapView::TakeField::Yes);
    view.coordinates.SetCentreAltAz(doc.observer, 10.0 * kRadPerDeg, 180.0 * kRadPerDeg);
    ASSERT_NE(0, view.altAzGrid.solidHorizon);
    CChartRenderer renderer(components);
    QImage image(640, 480, QImage::Format_RGB32);
    QPainter painter(&image);
    renderer.Draw(DrawSurface{&painter, SurfaceKind::Bitmap, 640, 480, 96.0, 96.0}, view, RenderOptions{});
    painter.end();
    const QRgb ground = MakePalette(ColourScheme::Normal, SurfaceKind::Bitmap, false).ground.rgb();
    int groundPixels = 0;
    for (int x = 0; x < 640; x += 4) groundPixels += image.pixel(x, 476) == ground;
    EXPECT_GT(groundPixels, 100);  // the bottom edge, 10° below the horizon, is ground (less a few grid lines)
}

}  // namespace

namespace {

TEST(HorizonLayer, WithTheOptionObjectsBehindTheProfileAreBelowTheHorizon)
{
    // The test that hides stars and planets on the ground (and so keeps
    // them out of the visible lists): a point 10° up behind a 20° wall is
    // below the horizon only when the profile is used for events.
    CSmallCatalogueChart chart;
    CMapView& view = chart.View();
    view.SetLevel(1, CMapView::TakeField::Yes);
    view.coordinates.SetCentringMode(Centring::AltAz);
    view.coordinates.SetCentreAltAz(chart.Doc().observer, 15.0 * kRadPerDeg, 180.0 * kRadPerDeg);
    chart.Doc().horizon.altitudeDeg.fill(0);
    for (int k = 170; k <= 190; ++k) chart.Doc().horizon.altitudeDeg[k] = 20;
    const CChartFrame frame(chart.Doc().observer, view.coordinates);
    auto screen = [&](double altDeg, double azDeg) {
        double v[3];
        frame.HorizontalToFrame(altDeg * kRadPerDeg, azDeg * kRadPerDeg, v);
        ScreenPoint s;
        EXPECT_TRUE(frame.ToScreen(v, s));
        return s;
    };
    const ScreenPoint behind = screen(10.0, 180.0), open = screen(10.0, 150.0), above = screen(21.0, 180.0);
    chart.Doc().horizon.useForEvents = 0;
    const CGroundTest mathematical(frame, chart.Doc());
    EXPECT_FALSE(mathematical.BelowHorizon(behind.x, behind.y));
    chart.Doc().horizon.useForEvents = 1;
    const CGroundTest real(frame, chart.Doc());
    EXPECT_TRUE(real.BelowHorizon(behind.x, behind.y));
    EXPECT_FALSE(real.BelowHorizon(open.x, open.y));
    EXPECT_FALSE(real.BelowHorizon(above.x, above.y));
}

}  // namespace

namespace {

TEST(OverlayLayer, AnOverlayWithALevelRangeIsOnOnlyWithinIt)
{
    // Switched off in the list, switched on at level 4 alone (the chart's
    // level); the list's flag rules again once the chart leaves the range.
    CSmallCatalogueChart chart;
    Plain(chart.View());
    OverlayListEntry e;
    e.path = Write("ranged.ovl", "define line thick solid, 12, red, red\nselect line thick\n"
                                 "move 6 8, -3\ndraw 6 8, 3\n");
    e.active = 0;
    e.minLevel = e.maxLevel = 4;
    chart.Overlays().entries.push_back(e);
    ++chart.Overlays().generation;
    ASSERT_EQ(3, chart.View().Level());  // level 4 as shown
    const QImage in = chart.Render();
    const CChartFrame frame(chart.Doc().observer, chart.View().coordinates);
    double v[3];
    frame.DateToFrame(92.0 * kRadPerDeg, 1.0 * kRadPerDeg, v);
    ScreenPoint s;
    ASSERT_TRUE(frame.ToScreen(v, s));
    EXPECT_TRUE(RedNear(in, s.x, s.y));

    chart.View().SetLevel(4, CMapView::TakeField::No);
    chart.View().coordinates.SetupSurface(chart.Width(), chart.Height());
    const QImage out = chart.Render();
    const CChartFrame frame5(chart.Doc().observer, chart.View().coordinates);
    frame5.DateToFrame(92.0 * kRadPerDeg, 1.0 * kRadPerDeg, v);
    ASSERT_TRUE(frame5.ToScreen(v, s));
    EXPECT_FALSE(RedNear(out, s.x, s.y));
}

}  // namespace

namespace {

TEST(OverlayLayer, NearTheHorizonTheLineIsLiftedByTheChartsRefraction)
{
    // An alt-azimuth chart: a point 2° above the horizon in the south is
    // taken back to its J2000 place through the chart's exact rule (which
    // removes about 18′ of refraction), written to an overlay as a short
    // line along its declination (about level there), and must be drawn
    // where it was: the overlay's tabulated refraction agrees with
    // the exact one to well under a pixel (the line is 4 pixels wide).
    CSmallCatalogueChart chart;
    CMapView& view = chart.View();
    Plain(view);
    // Level 4 (37 pixels a degree): 18′ of refraction are 11 pixels.
    view.coordinates.SetCentringMode(Centring::AltAz);
    view.coordinates.SetCentreAltAz(chart.Doc().observer, 5.0 * kRadPerDeg, 180.0 * kRadPerDeg);
    const CChartFrame frame(chart.Doc().observer, view.coordinates);
    double v[3];
    frame.HorizontalToFrame(2.0 * kRadPerDeg, 180.0 * kRadPerDeg, v);
    ScreenPoint s;
    ASSERT_TRUE(frame.ToScreen(v, s));
    double ra = 0.0, dec = 0.0;
    frame.ScreenToCatalogue(s.x, s.y, ra, dec);
    char text[256];
    std::snprintf(text, sizeof text,
                  "epoch J2000.0\ndefine line thick solid, 12, red, red\nselect line thick\n"
                  "move %.9f, %.8f\ndraw %.9f, %.8f\n",
                  ra * kDegPerRad / 15.0 - 0.03, dec * kDegPerRad, ra * kDegPerRad / 15.0 + 0.03, dec * kDegPerRad);
    chart.Overlays().extraFiles.push_back(Write("low.ovl", text));
    const QImage img = chart.Render();
    EXPECT_TRUE(RedNear(img, s.x, s.y, 1)) << s.x << ", " << s.y;
    // Where it would be without refraction: nothing.
    const double trueAlt = chart.Doc().observer.InverseRefraction(2.0 * kRadPerDeg);
    frame.HorizontalToFrame(2.0 * kRadPerDeg - trueAlt, 180.0 * kRadPerDeg, v);
    ScreenPoint unrefracted;
    ASSERT_TRUE(frame.ToScreen(v, unrefracted));
    ASSERT_GT(std::hypot(unrefracted.x - s.x, unrefracted.y - s.y), 8.0);
    EXPECT_FALSE(RedNear(img, unrefracted.x, unrefracted.y, 0));
}

// Draws one parsed overlay and counts the segments it strokes.
class CCountingOverlayLayer final : public IChartLayer {
public:
    CCountingOverlayLayer(std::shared_ptr<const COverlay> overlay, std::size_t* segments)
        : m_overlay(std::move(overlay)), m_segments(segments)
    {
    }
    std::span<const LayerSlot> Slots() const override { return kSlots; }
    void Draw(DrawContext& ctx, LayerSlot) override { *m_segments = DrawOverlay(ctx, *m_overlay); }

private:
    static constexpr LayerSlot kSlots[] = {LayerSlot::Overlays};
    std::shared_ptr<const COverlay> m_overlay;
    std::size_t* m_segments;
};

// The overlay drawn alone on a 640 × 480 chart of the given centre and level.
QImage DrawAlone(std::shared_ptr<const COverlay> overlay, int level, bool altAz, std::size_t& segments)
{
    CChartComponents components;
    RegisterMapLayers(components.layers);
    components.layers.Register([overlay, &segments] { return std::make_unique<CCountingOverlayLayer>(overlay, &segments); });
    CMemorySettingsStore settings;
    CLevelTable levels;
    CMapDoc doc(settings);
    doc.observer.SetSite("test", 48.0 * kRadPerDeg, 11.0 * kRadPerDeg, 500.0);
    doc.observer.SetJulianDate(2460325.416666667);
    CMapView view(doc, settings, levels);
    view.SetLevel(level, CMapView::TakeField::Yes);
    Plain(view);
    if (altAz)
        view.coordinates.SetCentreAltAz(doc.observer, 30.0 * kRadPerDeg, 120.0 * kRadPerDeg);
    else
        view.coordinates.SetCentreRaDec(doc.observer, 5.6 * kRadPerHour, 0.3 * kRadPerDeg);
    CChartRenderer renderer(components);
    QImage image(640, 480, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    renderer.Draw(DrawSurface{&painter, SurfaceKind::Bitmap, 640, 480, 96.0, 96.0}, view, RenderOptions{});
    painter.end();
    return image;
}

// Passing over the runs of an overlay that lie beyond the field must not
// lose a pixel: circles of declination every 7° (cut into steps of about a
// degree), meridians every 15° from pole to pole (one long segment each,
// which crosses the field from far outside it), drawn with and without the
// culling blocks on a narrow equatorial chart and on an alt-azimuth one.
TEST(OverlayLayer, CullingBlocksLoseNothing)
{
    std::string text = "epoch J2000.0\ndefine line l solid, 4, red, red\nselect line l\n";
    char buf[96];
    for (int dec = -84; dec <= 84; dec += 7)
        for (int i = 0; i <= 360; ++i) {
            std::snprintf(buf, sizeof buf, "%s %.5f, %d\n", i == 0 ? "move" : "draw", 24.0 * (i % 360) / 360.0, dec);
            text += buf;
        }
    for (int ra = 0; ra < 24; ++ra) {
        std::snprintf(buf, sizeof buf, "move %d, -89\ndraw %d, 89\ntext %d, 0, m\n", ra, ra, ra);
        text += buf;
    }
    auto culled = std::make_shared<COverlay>(ParseOverlayText(text, "grid.ovl"));
    ASSERT_GT(culled->blocks.size(), 30u);
    auto whole = std::make_shared<COverlay>(*culled);
    whole->blocks.clear();
    for (const auto& [level, altAz] : {std::pair{4, false}, std::pair{6, false}, std::pair{1, true}}) {
        std::size_t culledSegments = 0, wholeSegments = 0;
        const QImage a = DrawAlone(culled, level, altAz, culledSegments);
        const QImage b = DrawAlone(whole, level, altAz, wholeSegments);
        EXPECT_GT(wholeSegments, 0u) << "level " << level;
        EXPECT_EQ(wholeSegments, culledSegments) << "level " << level;
        EXPECT_TRUE(a == b) << "level " << level << ": the culled drawing differs";
    }
}

// A display list of 100,000 commands or more is projected on two cores
// before it is walked: the drawing is the same, pixel for pixel and segment
// for segment, as the walk that projects every point itself (the list
// without culling blocks), on an equatorial chart and a refracted
// alt-azimuth one, with a line crossing the edge of the cap.
TEST(OverlayLayer, PointsProjectedOnTwoCoresDrawTheSame)
{
    std::string text = "epoch J2000.0\ndefine line l solid, 2, red, red\nselect line l\n";
    char buf[96];
    for (int c = 0; c < 260; ++c) {
        const double dec = -86.0 + 172.0 * c / 259.0;
        for (int i = 0; i <= 400; ++i) {
            std::snprintf(buf, sizeof buf, "%s %.6f, %.5f\n", i == 0 ? "move" : "draw", 24.0 * (i % 400) / 400.0, dec);
            text += buf;
        }
    }
    text += "move 3, -89\ndraw 3, 89\ntext 5.5, 0, centre\n";
    auto projected = std::make_shared<COverlay>(ParseOverlayText(text, "dense.ovl"));
    ASSERT_GE(projected->commands.size(), 100000u);
    auto walked = std::make_shared<COverlay>(*projected);
    walked->blocks.clear();
    for (const auto& [level, altAz] : {std::pair{4, false}, std::pair{1, true}}) {
        std::size_t projectedSegments = 0, walkedSegments = 0;
        const QImage a = DrawAlone(projected, level, altAz, projectedSegments);
        const QImage b = DrawAlone(walked, level, altAz, walkedSegments);
        EXPECT_GT(walkedSegments, 100u) << "level " << level;
        EXPECT_EQ(walkedSegments, projectedSegments) << "level " << level;
        EXPECT_TRUE(a == b) << "level " << level << ": the drawing differs";
    }
}

}  // namespace
