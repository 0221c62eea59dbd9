// Chart drawing speed: a full redraw (star and deep-sky queries included) of
// a 1920 × 1080 off-screen image at each level's default field and limiting
// magnitude, a stress chart of 45° at magnitude 11.5 in the Milky Way, a
// redraw that reuses the star list (what scrolling the time or repainting
// costs), and a 5° chart of the Virgo cluster with every LEDA galaxy.
//
// Needs the built star catalogue (ORVANE_DATA or the build's data folder);
// without it every case is skipped with a message. Without the deep-sky
// files the charts are drawn without deep-sky objects.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <memory>

#include "catalog/constellations/drawconstellations.h"
#include "catalog/deepsky/drawdeepsky.h"
#include "catalog/stars/drawstars.h"
#include "catalog/stars/tycho2catalogue.h"
#include "solarsystem/drawminor.h"
#include "solarsystem/drawplanets.h"
#include "overlay/drawoverlay.h"
#include "map/mapdraw.h"
#include "map/mapview.h"
#include "util/angles.h"
#include "util/settingsstore.h"

using namespace orv;

namespace {

constexpr int kWidth = 1920, kHeight = 1080;

struct Chart {
    CMemorySettingsStore store;
    CLevelTable levels;
    std::unique_ptr<CMapDoc> doc;
    std::unique_ptr<CMapView> view;

    // A chart at `level` with its default field; the wide levels (held in
    // altitude and azimuth) look south at 50° altitude, the others are
    // centred on (ra, dec). The site is at 48° N, 2024 January 15, 22h UT.
    Chart(int level, double raHours, double decDeg, int magLimitCenti = 0)
    {
        if (magLimitCenti > 0) levels[level].starMagLimit = static_cast<std::int16_t>(magLimitCenti);
        doc = std::make_unique<CMapDoc>(store);
        doc->observer.SetSite("bench", 48.0 * kRadPerDeg, 11.0 * kRadPerDeg, 500.0);
        doc->observer.SetJulianDate(2460325.416666667);
        view = std::make_unique<CMapView>(*doc, store, levels);
        view->SetLevel(level, CMapView::TakeField::Yes);
        if (view->coordinates.CentringMode() == Centring::AltAz)
            view->coordinates.SetCentreAltAz(doc->observer, 50.0 * kRadPerDeg, 180.0 * kRadPerDeg);
        else
            view->coordinates.SetCentreRaDec(doc->observer, raHours * kRadPerHour, decDeg * kRadPerDeg);
    }
};

// The program's chart assembly: the map's layers, the star catalogue and
// the deep-sky catalogues.
struct Components {
    std::shared_ptr<CStarCatalogueHandle> stars = std::make_shared<CStarCatalogueHandle>();
    std::shared_ptr<CDeepSkyCatalogueHandle> deepSky = std::make_shared<CDeepSkyCatalogueHandle>();
    CChartComponents chart;
    Components()
    {
        RegisterMapLayers(chart.layers);
        RegisterStarCatalogue(chart, stars);
        RegisterConstellations(chart, stars);
        RegisterDeepSkyCatalogues(chart, deepSky);
        RegisterPlanets(chart);
        RegisterMinorBodies(chart, std::make_shared<CMinorCatalogHandle>());
        RegisterOverlays(chart.layers, std::make_shared<COverlayStore>());
    }
};

Components& Catalogues()
{
    static Components c;
    return c;
}

void Run(benchmark::State& state, Chart& chart, bool invalidate)
{
    if (!Catalogues().stars->Get().IsOpen()) {
        state.SkipWithError("no star catalogue in the data folder (set ORVANE_DATA)");
        return;
    }
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    CChartRenderer renderer(Catalogues().chart);
    RenderOptions options;
    for (auto _ : state) {
        if (invalidate) renderer.Invalidate();
        QPainter painter(&image);
        DrawSurface surface{&painter, SurfaceKind::RasterDisplay, kWidth, kHeight, 96.0, 96.0};
        renderer.Draw(surface, *chart.view, options);
        painter.end();
        benchmark::DoNotOptimize(image.constBits());
    }
    state.counters["stars"] = renderer.LastStats().starsDrawn;
    state.counters["gathered"] = renderer.LastStats().starsGathered;
    state.counters["labels"] = renderer.LastStats().labelsDrawn;
    const auto deepSkySource = Catalogues().chart.objects.IdOf(Catalogues().chart.objects.SourceOf<CDeepSkyObjectSource>());
    int deepSky = 0;
    for (const SceneObject& o : renderer.LastScene().Objects()) deepSky += deepSkySource && o.source == *deepSkySource;
    state.counters["deepSky"] = deepSky;
}

// Levels 1-10 (index 0-9) at their default field and limit, centred on Orion.
void BM_DefaultChart(benchmark::State& state)
{
    Chart chart(static_cast<int>(state.range(0)), 5.6, -2.0);
    Run(state, chart, true);
}
BENCHMARK(BM_DefaultChart)->DenseRange(0, 9)->Unit(benchmark::kMillisecond);

// 45° from the centre to the top edge, stars to magnitude 11.5, centred in
// the winter Milky Way (Monoceros, Gemini, Auriga), high in the south at the
// chart's time, so that nearly every star of the field is above the horizon.
void BM_Stress45DegMag11_5(benchmark::State& state)
{
    Chart chart(1, 6.5, 15.0, 1150);
    chart.view->coordinates.SetCentringMode(Centring::RaDec);
    chart.view->coordinates.SetCentreRaDec(chart.doc->observer, 6.5 * kRadPerHour, 15.0 * kRadPerDeg);
    Run(state, chart, true);
}
BENCHMARK(BM_Stress45DegMag11_5)->Unit(benchmark::kMillisecond);

// A repaint of an unchanged chart: the star list is reused.
void BM_RepaintLevel5(benchmark::State& state)
{
    Chart chart(4, 5.6, -2.0);
    Run(state, chart, false);
}
BENCHMARK(BM_RepaintLevel5)->Unit(benchmark::kMillisecond);

// The Virgo cluster, 5° from the centre to the top edge, centred between
// M 87 and M 86, with the LEDA galaxies at every level and no magnitude
// limit: every PGC galaxy of the field is drawn (about two thousand).
void BM_VirgoAllLeda5Deg(benchmark::State& state)
{
    Chart chart(4, 12.45, 12.7);
    CLevelTable levels = chart.view->Levels();
    for (int l = 0; l < kLevelCount; ++l) levels[l].dsMagLimit = 0;
    chart.doc->deepSky.levelLowLEDA = 0;
    chart.view->SetLevels(levels);
    chart.view->SetField(5.0);
    chart.view->coordinates.SetCentreRaDec(chart.doc->observer, 12.45 * kRadPerHour, 12.7 * kRadPerDeg);
    Run(state, chart, true);
}
BENCHMARK(BM_VirgoAllLeda5Deg)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
