// Overlay drawing speed: a chart of 1920 × 1080 pixels with the map's own
// layers (grids, scale line, compass) and an all-sky overlay of 100,000
// drawn segments (250 circles of declination from −85° to +85°, 400 steps
// each, every step shorter than the 0.017 rad at which a draw is cut), and
// the same with a million segments; the baseline is the chart without it.
// The overlay is parsed once (the program keeps the parse while the file is
// unchanged); each iteration brings the display list to the chart's frame
// and strokes what is visible. Needs no catalogue.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>

#include "map/chartlayer.h"
#include "map/mapdraw.h"
#include "map/mapview.h"
#include "overlay/drawoverlay.h"
#include "util/angles.h"
#include "util/settingsstore.h"

using namespace orv;

namespace {

constexpr int kWidth = 1920, kHeight = 1080;

std::string WriteOverlay(int circles, int steps)
{
    const auto path = std::filesystem::temp_directory_path() /
                      ("orvane-bench-overlay-" + std::to_string(circles * steps) + ".ovl");
    std::ofstream out(path);
    out << "epoch J2000.0\ndefine line l solid, 2, cyan, blue\nselect line l\n";
    char buf[96];
    for (int c = 0; c < circles; ++c) {
        const double dec = -85.0 + 170.0 * c / (circles - 1);
        for (int i = 0; i <= steps; ++i) {
            const double raHours = 24.0 * (i % steps) / steps;
            std::snprintf(buf, sizeof buf, "%s %.6f, %.5f\n", i == 0 ? "move" : "draw", raHours, dec);
            out << buf;
        }
    }
    return path.string();
}

void Run(benchmark::State& state, int circles, int steps)
{
    auto store = std::make_shared<COverlayStore>();
    std::string file;
    if (circles > 0) {
        file = WriteOverlay(circles, steps);
        store->extraFiles.push_back(file);
        state.counters["points"] = static_cast<double>(store->Get(file)->PointCount());
    }
    CChartComponents components;
    RegisterMapLayers(components.layers);
    RegisterOverlays(components.layers, store);
    CMemorySettingsStore settings;
    CLevelTable levels;
    CMapDoc doc(settings);
    doc.observer.SetSite("bench", 48.0 * kRadPerDeg, 11.0 * kRadPerDeg, 500.0);
    doc.observer.SetJulianDate(2460325.416666667);
    CMapView view(doc, settings, levels);
    view.SetLevel(static_cast<int>(state.range(0)), CMapView::TakeField::Yes);
    if (view.coordinates.CentringMode() == Centring::AltAz)
        view.coordinates.SetCentreAltAz(doc.observer, 50.0 * kRadPerDeg, 180.0 * kRadPerDeg);
    else
        view.coordinates.SetCentreRaDec(doc.observer, 5.6 * kRadPerHour, -2.0 * kRadPerDeg);
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    CChartRenderer renderer(components);
    RenderOptions options;
    for (auto _ : state) {
        QPainter painter(&image);
        DrawSurface surface{&painter, SurfaceKind::RasterDisplay, kWidth, kHeight, 96.0, 96.0};
        renderer.Draw(surface, view, options);
        painter.end();
        benchmark::DoNotOptimize(image.constBits());
    }
    if (!file.empty()) std::filesystem::remove(file);
}

void BM_ChartWithoutOverlay(benchmark::State& state) { Run(state, 0, 0); }
void BM_Overlay100kSegments(benchmark::State& state) { Run(state, 250, 400); }
void BM_Overlay1MSegments(benchmark::State& state) { Run(state, 2500, 400); }

// Level 2 (a 90° alt-azimuth chart) and level 5 (an equatorial chart of 12°).
BENCHMARK(BM_ChartWithoutOverlay)->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Overlay100kSegments)->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Overlay1MSegments)->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond);

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
