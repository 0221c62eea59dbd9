// Projection speed: a million sky positions to chart pixels, and the whole
// path from a catalogue position (J2000) to a pixel per position.

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "map/chartframe.h"
#include "map/coordinates.h"
#include "map/skyframes.h"
#include "observer/observer.h"
#include "util/angles.h"

using namespace orv;

namespace {

struct Sky {
    std::vector<double> ra, dec;
    explicit Sky(std::size_t n, double centreRa, double centreDec, double radius)
    {
        std::mt19937 rng(42);
        std::uniform_real_distribution<double> u(-1.0, 1.0);
        ra.reserve(n);
        dec.reserve(n);
        for (std::size_t i = 0; i < n; ++i) {
            ra.push_back(mod2pi(centreRa + radius * u(rng) / std::cos(centreDec)));
            dec.push_back(centreDec + radius * u(rng));
        }
    }
};

struct Chart {
    CObserverDoc observer;
    CCoordinates coordinates;
    Chart(Centring mode, double fieldDeg)
    {
        observer.SetSite("Bench", 48.0 * kRadPerDeg, 11.0 * kRadPerDeg, 500.0);
        observer.SetJulianDate(2461000.25);
        coordinates.SetCentringMode(mode);
        coordinates.SetFieldDeg(fieldDeg);
        coordinates.SetupSurface(1920, 1080);
        coordinates.SetCentreRaDec(observer, 1.46, 0.1);
        if (mode == Centring::AltAz)
            coordinates.SetCentreAltAz(observer, coordinates.CentreAltRad(), coordinates.CentreAzRad());
    }
};

// Frame longitude/latitude → screen pixel, the stereographic projection alone.
void BM_ProjectMillionPositions(benchmark::State& state)
{
    const Chart chart(Centring::RaDec, 8.0);
    const Sky sky(1'000'000, chart.coordinates.FrameCentreLonRad(), chart.coordinates.FrameCentreLatRad(), 0.1);
    for (auto _ : state) {
        double sum = 0.0;
        for (std::size_t i = 0; i < sky.ra.size(); ++i) {
            PlanePoint p;
            if (chart.coordinates.ToPlane(sky.ra[i], sky.dec[i], p)) {
                const ScreenPoint s = chart.coordinates.PlaneToScreen(p);
                sum += s.x + s.y;
            }
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * 1'000'000);
}
BENCHMARK(BM_ProjectMillionPositions)->Unit(benchmark::kMillisecond);

// J2000 catalogue position → apparent place of date → pixel, per position,
// through the per-redraw chart frame (aberration, precession, nutation,
// for horizon charts also the rotation to the horizon and refraction).
template <Centring Mode, EpochPath Path>
void BM_CatalogueToPixel(benchmark::State& state)
{
    const Chart chart(Mode, 30.0);
    const Sky sky(100'000, 1.46, 0.1, 0.4);
    const CChartFrame frame(chart.observer, chart.coordinates);
    for (auto _ : state) {
        double sum = 0.0;
        for (std::size_t i = 0; i < sky.ra.size(); ++i) {
            ScreenPoint s;
            if (frame.CatalogueToScreen(sky.ra[i], sky.dec[i], Path, s)) sum += s.x + s.y;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * 100'000);
}
BENCHMARK(BM_CatalogueToPixel<Centring::RaDec, EpochPath::Apparent>)->Name("CatalogueToPixel/RaDec/Apparent");
BENCHMARK(BM_CatalogueToPixel<Centring::RaDec, EpochPath::Rigid>)->Name("CatalogueToPixel/RaDec/Rigid");
BENCHMARK(BM_CatalogueToPixel<Centring::AltAz, EpochPath::Apparent>)->Name("CatalogueToPixel/AltAz/Apparent");

// The step-by-step reference path (CatalogueToDate, EquatorialToHorizontal,
// CCoordinates), for comparison with the chart frame.
void BM_CatalogueToPixelStepByStep(benchmark::State& state)
{
    const Chart chart(Centring::RaDec, 30.0);
    const Sky sky(100'000, 1.46, 0.1, 0.4);
    for (auto _ : state) {
        double sum = 0.0;
        for (std::size_t i = 0; i < sky.ra.size(); ++i) {
            double ra = sky.ra[i], dec = sky.dec[i];
            CatalogueToDate(chart.observer, ra, dec, Place::Apparent);
            PlanePoint p;
            if (chart.coordinates.ToPlane(ra, dec, p)) {
                const ScreenPoint s = chart.coordinates.PlaneToScreen(p);
                sum += s.x + s.y;
            }
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * 100'000);
}
BENCHMARK(BM_CatalogueToPixelStepByStep);

}  // namespace

BENCHMARK_MAIN();
