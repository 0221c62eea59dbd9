// Chart layers as plug-ins: the renderer runs whatever is registered in the
// chart's order, tells layers the level, leaves the window's projection
// alone, and identification and find reach every registered source alike.
// On the small catalogue of renderfixture.h.
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include <string>
#include <vector>

#include "catalog/stars/drawstars.h"
#include "catalog/constellations/drawconstellations.h"
#include "app/strings.h"
#include "map/chartlayer.h"
#include "map/drawcontext.h"
#include "map/mapdraw.h"
#include "renderfixture.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using orv::test::CSmallCatalogueChart;

namespace {

// A layer that notes every call in a shared log.
class CLoggingLayer final : public IChartLayer {
public:
    CLoggingLayer(std::string name, std::vector<LayerSlot> where, std::vector<std::string>* log, bool shown = true)
        : m_name(std::move(name)), m_slots(std::move(where)), m_log(log), m_shown(shown)
    {
    }
    std::span<const LayerSlot> Slots() const override { return m_slots; }
    bool ShownAt(const CMapView&, int) const override { return m_shown; }
    void Prepare(DrawContext&) override { m_log->push_back("prepare " + m_name); }
    void Draw(DrawContext&, LayerSlot slot) override
    {
        m_log->push_back("draw " + m_name + " " + std::to_string(static_cast<int>(slot)));
    }
    void LevelChanged(int level) override { m_log->push_back("level " + m_name + " " + std::to_string(level)); }

private:
    std::string m_name;
    std::vector<LayerSlot> m_slots;
    std::vector<std::string>* m_log;
    bool m_shown;
};

// A made-up catalogue of one object, drawn as a square at a fixed place and
// recorded in the scene under its own source.
class COneObjectSource final : public ISkyObjectSource {
public:
    std::string_view Name() const override { return "Test objects"; }
    std::string_view Forms() const override { return "the name Blob"; }
    bool Available() const override { return true; }
    std::vector<SkyObjectMatch> Resolve(std::string_view text, const CObserverDoc&) const override
    {
        if (text != "Blob") return {};
        SkyObjectMatch m;
        m.type = ObjectType::BrightNebula;
        m.designation = "Blob";
        m.raJ2000Rad = 91.0 * kRadPerDeg;
        return {m};
    }
    std::optional<ObjectDescription> Describe(std::uint32_t key, const DescribeRequest&) const override
    {
        ObjectDescription d;
        d.type = ObjectType::BrightNebula;
        d.designation = "Blob";
        d.information = "Blob\nkey " + std::to_string(key);
        return d;
    }
};

class CSquareLayer final : public IChartLayer {
public:
    explicit CSquareLayer(SkySourceId source) : m_source(source) {}
    std::span<const LayerSlot> Slots() const override { return kSlots; }
    void Draw(DrawContext& ctx, LayerSlot) override
    {
        ScreenPoint s;
        if (!ctx.frame.CatalogueToScreen(91.0 * kRadPerDeg, 0.0, EpochPath::Apparent, s)) return;
        ctx.painter.fillRect(QRectF(s.x - 5, s.y - 5, 10, 10), Qt::green);
        SceneObject o;
        o.raJ2000Rad = 91.0 * kRadPerDeg;
        o.xPx = static_cast<float>(s.x);
        o.yPx = static_cast<float>(s.y);
        o.radiusPx = 5.0f;
        o.key = 42;
        o.typeCode = static_cast<std::int16_t>(ObjectType::BrightNebula);
        o.source = m_source;
        ctx.scene.Add(o);
    }

private:
    static constexpr LayerSlot kSlots[] = {LayerSlot::DeepSky};
    SkySourceId m_source;
};

QImage DrawWith(CChartRenderer& renderer, CMapView& view, SurfaceKind kind = SurfaceKind::RasterDisplay,
                double dpi = 96.0, int w = 800, int h = 600)
{
    QImage image(w, h, QImage::Format_RGB32);
    QPainter painter(&image);
    renderer.Draw(DrawSurface{&painter, kind, w, h, dpi, dpi}, view, {});
    return image;
}

}  // namespace

// Layers are called in the chart's order whatever the order of registration;
// within one place in the order of registration; a layer that draws in two
// places is called at both; every shown layer prepares before any draws; a
// layer outside its level range neither prepares nor draws; the level is
// told to every layer, once per change.
TEST(ChartLayers, RunInTheChartsOrder)
{
    CSmallCatalogueChart chart;
    std::vector<std::string> log;
    CChartComponents c;
    c.layers.Add<CLoggingLayer>(std::string("compass"), std::vector<LayerSlot>{LayerSlot::Compass}, &log);
    c.layers.Add<CLoggingLayer>(std::string("constellations"),
                                std::vector<LayerSlot>{LayerSlot::ConstellationNames, LayerSlot::ConstellationFigures},
                                &log);
    c.layers.Add<CLoggingLayer>(std::string("stars-a"), std::vector<LayerSlot>{LayerSlot::Stars}, &log);
    c.layers.Add<CLoggingLayer>(std::string("hidden"), std::vector<LayerSlot>{LayerSlot::Planets}, &log, false);
    c.layers.Add<CLoggingLayer>(std::string("stars-b"), std::vector<LayerSlot>{LayerSlot::Stars}, &log);
    CChartRenderer renderer(c);
    DrawWith(renderer, chart.View());
    const std::vector<std::string> expected{
        "level compass 3",       "level constellations 3", "level stars-a 3",     "level hidden 3",
        "level stars-b 3",       "prepare constellations", "prepare stars-a",     "prepare stars-b",
        "prepare compass",        "draw constellations 10", "draw stars-a 11",
        "draw stars-b 11",       "draw constellations 19", "draw compass 25"};
    EXPECT_EQ(log, expected);

    log.clear();
    DrawWith(renderer, chart.View());
    EXPECT_EQ(log.front(), "prepare constellations");  // the level did not change: nobody is told
    log.clear();
    chart.View().SetLevel(4, CMapView::TakeField::Yes);
    DrawWith(renderer, chart.View());
    EXPECT_EQ(log.front(), "level compass 4");
}

// The view is only read: a page drawn at six times the window's resolution,
// or a picture of another size, leaves the window's projection as it was.
TEST(ChartLayers, ThePageHasItsOwnProjection)
{
    CSmallCatalogueChart chart;
    const CCoordinates before = chart.View().coordinates;
    chart.Render(SurfaceKind::Printer, {}, 600.0);
    DrawWith(chart.Renderer(), chart.View(), SurfaceKind::Bitmap, 96.0, 1601, 333);
    const CCoordinates& after = chart.View().coordinates;
    EXPECT_EQ(after.WidthPx(), before.WidthPx());
    EXPECT_EQ(after.HeightPx(), before.HeightPx());
    EXPECT_EQ(after.ScaleX(), before.ScaleX());
    EXPECT_EQ(after.ScaleY(), before.ScaleY());
    EXPECT_EQ(after.ScreenCentreX(), before.ScreenCentreX());
}

// A layer and a source added beside the stars: identification finds the
// layer's object and describes it through its source, the visible-star list
// is not disturbed, and find reaches the new source too.
TEST(ChartLayers, AnyLayersObjectsAreIdentifiedAndFound)
{
    CSmallCatalogueChart chart;
    orv::test::CTestChartComponents parts;
    const SkySourceId blob = parts.components.objects.Register(std::make_shared<COneObjectSource>());
    parts.components.layers.Add<CSquareLayer>(blob);
    CChartRenderer renderer(parts.components);
    DrawWith(renderer, chart.View());

    ScreenPoint at;
    const CChartFrame frame(chart.Doc().observer, chart.View().coordinates);
    ASSERT_TRUE(frame.CatalogueToScreen(91.0 * kRadPerDeg, 0.0, EpochPath::Apparent, at));
    const auto found = renderer.Identify(at.x + 6, at.y, 3.0);  // 1 px beyond the square's half-size
    ASSERT_TRUE(found);
    EXPECT_EQ(found->designation, "Blob");
    EXPECT_EQ(found->type, ObjectType::BrightNebula);
    EXPECT_EQ(found->information, "Blob\nkey 42");
    EXPECT_EQ(found->source, blob);

    EXPECT_EQ(VisibleStarRows(renderer.WindowScene(), parts.components.objects).size(), 4u);
    // Four stars and the square (and the names of constellations, when the
    // data folders hold the constellation files).
    const auto constellations = parts.components.objects.IdOf(
        parts.components.objects.SourceOf<orv::CConstellationObjectSource>());
    std::size_t drawn = 0;
    for (const SceneObject& o : renderer.WindowScene().Objects()) drawn += (o.source != constellations) ? 1 : 0;
    EXPECT_EQ(drawn, 5u);

    const FindResult r = parts.components.objects.Resolve("Blob", chart.Doc().observer);
    ASSERT_EQ(r.status, FindStatus::Found);
    EXPECT_EQ(r.matches[0].source, blob);
}

// Stars found through the registry: every designation of the centre star
// names the same record; its place at J2000.0 is its catalogue place.
TEST(ChartLayers, StarsAreFoundByEveryDesignation)
{
    CSmallCatalogueChart chart;
    const CSkyObjectRegistry& objects = chart.Components().objects;
    const CObserverDoc& at = chart.Doc().observer;
    std::optional<std::uint32_t> key;
    for (const char* text : {"Centrum", "alpha Ori", "58 Ori", "HIP 27989", "TYC 1-1-1"}) {
        SCOPED_TRACE(text);
        const FindResult r = objects.Resolve(text, at);
        ASSERT_EQ(r.status, FindStatus::Found) << r.message;
        if (!key) key = r.matches[0].key;
        EXPECT_EQ(r.matches[0].key, *key);
        EXPECT_EQ(r.matches[0].designation, "Centrum");
        // Proper motion is nil and the chart's date is J2000.0: the place is
        // the catalogue's to within the round trip through the place of date.
        EXPECT_ANGLE_NEAR(orv::test::kCentreRaDeg * kRadPerDeg, r.matches[0].raJ2000Rad, 1e-3 * kRadPerArcsec,
                          orv::test::kArcsecFromRad);
        EXPECT_NEAR_UNIT(0.0, r.matches[0].decJ2000Rad, 1e-3 * kRadPerArcsec, orv::test::kArcsecFromRad);
    }
    const FindResult algol = objects.Resolve("TYC 1-3-1", at);
    ASSERT_EQ(algol.status, FindStatus::Found) << algol.message;
    EXPECT_EQ(algol.matches[0].type, ObjectType::VariableStar);

    const FindResult none = objects.Resolve("Nowhere", at);
    EXPECT_EQ(none.status, FindStatus::NotFound);
    EXPECT_NE(none.message.find("Tycho-2 stars (proper names, Bayer and Flamsteed designations"), std::string::npos);
    // The catalogue's one proper name among those of the Sun, the Moon, the
    // planets and their satellites, beside the constellations' names when
    // their files are installed.
    std::vector<std::string> names = objects.CompletionNames();
    std::erase_if(names, [](const std::string& n) { return orv::FindConstellation(n) >= 0; });
    EXPECT_EQ(names, (std::vector<std::string>{"Callisto", "Centrum", "Dione", "Enceladus", "Europa", "Ganymede",
                                               "Iapetus", "Io", "Jupiter", "Mars", "Mercury", "Mimas", "Moon",
                                               "Neptune", "Pluto", "Rhea", "Saturn", "Sun", "Tethys", "Titan",
                                               "Uranus", "Venus"}));
}

// The ecliptic grid layer, the model of a layer: on a chart centred on the
// summer solstice point (RA 6h, δ +23°26′, the ecliptic's northernmost
// point, where it runs along the parallel) its line crosses the centre of
// the chart when the level shows the grid, and nothing is drawn otherwise.
TEST(ChartLayers, EclipticGridLayerDrawsWhereTheEclipticIs)
{
    CSmallCatalogueChart chart;
    CMapView& v = chart.View();
    v.raDecGrid.visible = v.altAzGrid.visible = v.galacticGrid.visible = 0;
    v.altAzGrid.solidHorizonLevels = {-1, -1};
    v.scaleLine.visible = v.compass.visible = 0;
    v.coordinates.SetCentreRaDec(chart.Doc().observer, 90.0 * kRadPerDeg, 23.4393 * kRadPerDeg);
    v.eclipticGrid.visible = 1;
    v.eclipticGrid.first = {0, 9};
    v.SetLevel(3, CMapView::TakeField::No);
    ASSERT_GT(v.eclipticGrid.state, 0);
    const QImage with = chart.Render();
    v.eclipticGrid.first = {6, 9};  // not at level index 3
    v.eclipticGrid.second = {-1, -1};
    v.SetLevel(3, CMapView::TakeField::No);
    ASSERT_EQ(v.eclipticGrid.state, 0);
    const QImage without = chart.Render();
    v.eclipticGrid.visible = 0;
    v.SetLevel(3, CMapView::TakeField::No);
    EXPECT_EQ(without, chart.Render());  // out of its levels the layer drew nothing
    // The ecliptic at the chart's date (J2000.0, nutation within 10″ = 0.1
    // pixel here) runs through the centre, along the rows: pixels within 2
    // rows of the centre change over the whole width looked at.
    const int cx = v.coordinates.ScreenCentreX(), cy = v.coordinates.ScreenCentreY();
    int columnsCrossed = 0;
    for (int x = cx - 100; x <= cx + 100; ++x) {
        bool crossed = false;
        for (int dy = -2; dy <= 2; ++dy) crossed = crossed || with.pixel(x, cy + dy) != without.pixel(x, cy + dy);
        columnsCrossed += crossed ? 1 : 0;
    }
    EXPECT_GT(columnsCrossed, 190);
}

// The corner of the constellation name is the slot whose "CornerLabel" digit
// is 0; moving it swaps two digits, so the four stay a permutation.
TEST(ConstellationCorner, SlotOfTheNameAndMovingIt)
{
    EXPECT_EQ(orv::CornerOfConstellationName({0, 1, 2, 3}), orv::ChartCorner::TopLeft);
    EXPECT_EQ(orv::CornerOfConstellationName({3, 2, 0, 1}), orv::ChartCorner::BottomLeft);
    const std::array<int, 4> moved = orv::MoveConstellationNameToCorner({0, 1, 2, 3}, orv::ChartCorner::BottomRight);
    EXPECT_EQ(moved, (std::array<int, 4>{3, 1, 2, 0}));
    orv::CConstellationSettings s;
    s.SetCornerSlots(moved);
    EXPECT_EQ(s.cornerLabel, 213);  // digits from the least significant: 3, 1, 2, 0
}
