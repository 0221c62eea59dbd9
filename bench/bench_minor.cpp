// Comets and asteroids: the import of a full-size MPCORB file, the apparent
// places of a million asteroids for one instant, and a chart with 10,000
// asteroids.
//
// The MPCORB file (1.4 million lines, the size of the MPC's file) is made at
// benchmark time from the real rows of tests/data/minor/MPCORB.excerpt.DAT
// repeated; the million orbits likewise. The chart uses the built
// "asteroid.cat" (real JPL elements) repeated to 10,000 entries and needs the
// VSOP87 files; without them those cases are skipped.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>

#include "map/mapdraw.h"
#include "map/mapview.h"
#include "observer/observer.h"
#include "solarsystem/drawminor.h"
#include "util/angles.h"
#include "util/datapath.h"
#include "util/mappedfile.h"
#include "util/settingsstore.h"

using namespace orv;

namespace {

std::vector<std::string> ExcerptRows()
{
    std::ifstream in(std::string(ORVANE_SOURCE_DIR) + "/tests/data/minor/MPCORB.excerpt.DAT");
    std::vector<std::string> rows;
    std::string line;
    while (std::getline(in, line))
        if (line.size() >= 103) rows.push_back(line);
    return rows;
}

double PeakRssMB()
{
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return static_cast<double>(u.ru_maxrss) / 1024.0;
}

void BM_ImportMpcorb1_4M(benchmark::State& state)
{
    const std::vector<std::string> rows = ExcerptRows();
    if (rows.empty()) {
        state.SkipWithError("tests/data/minor/MPCORB.excerpt.DAT not found");
        return;
    }
    const std::string path = "/tmp/orvane-bench-mpcorb-" + std::to_string(getpid()) + ".dat";
    {
        std::ofstream out(path, std::ios::binary);
        out << "MINOR PLANET CENTER ORBIT DATABASE (MPCORB)\n\n"
               "----------------------------------------------------------------------------------------------------\n";
        for (int i = 0; i < 1400000; ++i) out << rows[static_cast<std::size_t>(i) % rows.size()] << '\n';
    }
    std::size_t count = 0;
    for (auto _ : state) {
        CMappedFile file;
        file.Open(path);
        std::vector<AsteroidElements> list;
        AsteroidFilter all;
        all.mode = -1;
        ImportMpcorb(std::string_view(reinterpret_cast<const char*>(file.Data()), file.Size()), all, list);
        count = list.size();
        benchmark::DoNotOptimize(list.data());
    }
    std::remove(path.c_str());
    state.counters["asteroids"] = static_cast<double>(count);
    state.counters["peakRssMB"] = PeakRssMB();
}
BENCHMARK(BM_ImportMpcorb1_4M)->Unit(benchmark::kMillisecond)->Iterations(2);

void BM_ApparentPlaces1M(benchmark::State& state)
{
    const std::vector<std::string> rows = ExcerptRows();
    if (!SharedVsop87D().IsOpen() || rows.empty()) {
        state.SkipWithError("no VSOP87 files in the data folder (set ORVANE_DATA) or no excerpt");
        return;
    }
    std::vector<TwoBodyOrbit> orbits;
    orbits.reserve(1000000);
    for (int i = 0; i < 1000000; ++i) {
        AsteroidElements a;
        ParseMpcorbLine(rows[static_cast<std::size_t>(i) % rows.size()], a);
        orbits.push_back(*OrbitOf(a));
    }
    CObserverDoc observer;
    observer.SetJulianDate(2460325.416666667);
    CPlanets planets;
    for (auto _ : state) {
        ApparentFrame frame;
        planets.PrepareApparentFrame(observer, observer.JulianDateTDT(), PlaceCentre::Topocentric, frame);
        MinorPlace place;
        double sum = 0.0;
        for (const TwoBodyOrbit& o : orbits) {
            MinorPlaceAt(frame, o, place);
            sum += place.raRad;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.counters["bodies"] = 1e6;
}
BENCHMARK(BM_ApparentPlaces1M)->Unit(benchmark::kMillisecond);

// The chart: the map's own layers and the asteroid layer, 10,000 asteroids
// loaded (the H filter set wide open). With the default display settings
// (shown from level 3, labelled from level 5, magnitude 14), or with every
// asteroid above the horizon drawn and labelled at any level (the worst
// case).
struct AsteroidChart {
    CMemorySettingsStore store;
    CLevelTable levels;
    std::unique_ptr<CMapDoc> doc;
    std::unique_ptr<CMapView> view;
    std::shared_ptr<CMinorCatalogHandle> catalogs = std::make_shared<CMinorCatalogHandle>();
    CChartComponents components;
    bool ok = false;

    AsteroidChart(int level, bool everyLevel, bool withAsteroids = true)
    {
        std::string path;
        if (!LocateDataFile("asteroid.cat", path)) return;
        CMinorCatalogs& c = catalogs->Unloaded();
        c.SetPaths(path, "/nonexistent/comet.cat");
        c.Reload();
        if (c.Asteroids().empty()) return;
        const std::vector<AsteroidElements> real = c.Asteroids();
        c.Asteroids().clear();
        for (int i = 0; i < 10000; ++i) c.Asteroids().push_back(real[static_cast<std::size_t>(i) % real.size()]);
        c.MarkChanged(MinorKind::Asteroid);
        doc = std::make_unique<CMapDoc>(store);
        doc->observer.SetSite("bench", 48.0 * kRadPerDeg, 11.0 * kRadPerDeg, 500.0);
        doc->observer.SetJulianDate(2460325.416666667);
        doc->asteroids.filterMode = 2;
        doc->asteroids.filterHMin = -10.0;
        doc->asteroids.filterHMax = 99.0;
        view = std::make_unique<CMapView>(*doc, store, levels);
        if (everyLevel) {
            view->asteroids.levels = {0, 9};
            view->asteroids.labelLevels = {0, 9};
            view->asteroids.magLimit = 3000;
        }
        view->SetLevel(level, CMapView::TakeField::Yes);
        // Wide levels look south at 50° altitude; the others are centred on
        // the ecliptic opposite the Sun (7h45m +21°), where asteroids crowd.
        if (view->coordinates.CentringMode() == Centring::AltAz)
            view->coordinates.SetCentreAltAz(doc->observer, 50.0 * kRadPerDeg, 180.0 * kRadPerDeg);
        else
            view->coordinates.SetCentreRaDec(doc->observer, 7.75 * kRadPerHour, 21.0 * kRadPerDeg);
        RegisterMapLayers(components.layers);
        if (withAsteroids) RegisterMinorBodies(components, catalogs);
        ok = SharedVsop87D().IsOpen();
    }
};

void RunChart(benchmark::State& state, bool recompute, bool everyLevel, bool withAsteroids = true)
{
    AsteroidChart chart(static_cast<int>(state.range(0)), everyLevel, withAsteroids);
    if (!chart.ok) {
        state.SkipWithError("no asteroid.cat or VSOP87 files in the data folder (set ORVANE_DATA)");
        return;
    }
    QImage image(1920, 1080, QImage::Format_RGB32);
    CChartRenderer renderer(chart.components);
    RenderOptions options;
    for (auto _ : state) {
        if (recompute) renderer.Invalidate();
        QPainter painter(&image);
        DrawSurface surface{&painter, SurfaceKind::RasterDisplay, 1920, 1080, 96.0, 96.0};
        renderer.Draw(surface, *chart.view, options);
        painter.end();
        benchmark::DoNotOptimize(image.constBits());
    }
    std::size_t drawn = 0;
    for (const SceneObject& o : renderer.LastScene().Objects()) drawn += o.Type() == ObjectType::Asteroid;
    state.counters["asteroidsDrawn"] = static_cast<double>(drawn);
}

// A default chart at levels 1-10, redrawn at the same instant (scrolling,
// zooming): the places are kept.
void BM_DefaultChart10kAsteroids(benchmark::State& state) { RunChart(state, false, false); }
BENCHMARK(BM_DefaultChart10kAsteroids)->DenseRange(0, 9)->Unit(benchmark::kMillisecond);
// The same charts without the asteroid layer: what the layer adds is the difference.
void BM_DefaultChartNoAsteroids(benchmark::State& state) { RunChart(state, false, false, false); }
BENCHMARK(BM_DefaultChartNoAsteroids)->DenseRange(0, 9)->Unit(benchmark::kMillisecond);
// A new instant: the 10,000 apparent places are computed again.
void BM_DefaultChart10kAsteroidsNewInstant(benchmark::State& state) { RunChart(state, true, false); }
BENCHMARK(BM_DefaultChart10kAsteroidsNewInstant)->Arg(2)->Unit(benchmark::kMillisecond);
// Every asteroid above the horizon drawn and labelled on the whole-sky chart.
void BM_AllSky10kAsteroidsLabelled(benchmark::State& state) { RunChart(state, false, true); }
BENCHMARK(BM_AllSky10kAsteroidsLabelled)->Arg(0)->Unit(benchmark::kMillisecond);

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
