// Solar-system costs: one VSOP87D evaluation with every term (the Earth and
// Mercury, the longest series), the apparent place of one planet, and all
// ten bodies' apparent places for one instant as a chart redraw asks them.
// Needs the VSOP87 files of the data folder (tools/build-data.sh).

#include <benchmark/benchmark.h>

#include "observer/observer.h"
#include "solarsystem/drawplanets.h"
#include "solarsystem/moonseries.h"
#include "solarsystem/planets.h"

namespace {

bool HaveSeries(benchmark::State& state)
{
    if (orv::SharedVsop87D().IsOpen()) return true;
    state.SkipWithError("no VSOP87 files in the data folder (run tools/build-data.sh)");
    return false;
}

void BM_Vsop87DEvaluation(benchmark::State& state)
{
    if (!HaveSeries(state)) return;
    const int body = static_cast<int>(state.range(0));
    double jd = 2460500.5;
    for (auto _ : state) {
        benchmark::DoNotOptimize(orv::SharedVsop87D().EvaluateOfDate(body, jd));
        jd += 0.37;
    }
    state.SetLabel(body == 1 ? "Mercury, 6827 terms" : "Earth, 2425 terms");
}
BENCHMARK(BM_Vsop87DEvaluation)->Arg(1)->Arg(3)->Unit(benchmark::kMicrosecond);

void BM_MoonBlock(benchmark::State& state)
{
    double jd = 2460500.5;
    for (auto _ : state) {
        benchmark::DoNotOptimize(orv::EvaluateMoonBlock(orv::MoonDataBlock(), jd));
        jd += 0.37;
    }
}
BENCHMARK(BM_MoonBlock)->Unit(benchmark::kMicrosecond);

// All ten bodies at a new instant each time: what a chart redraw costs when
// the time changed (VSOP87 path; Pluto has no source yet and returns at once).
void BM_AllBodiesApparent(benchmark::State& state)
{
    if (!HaveSeries(state)) return;
    orv::CObserverDoc observer;
    orv::CPlanets planets;
    double jdUT = 2460500.5;
    for (auto _ : state) {
        observer.SetJulianDate(jdUT);
        planets.ComputeAll(observer, orv::PlaceCentre::Topocentric);
        jdUT += 0.37;
    }
}
BENCHMARK(BM_AllBodiesApparent)->Unit(benchmark::kMicrosecond);

// What a chart adds at a new instant for the planets' globes: Jupiter's
// physical ephemeris, Saturn's ring, the four Galilean satellites (E5) and
// Saturn's eight (each needs the two planets' light-time places again).
void BM_GlobesAndSatellites(benchmark::State& state)
{
    if (!HaveSeries(state)) return;
    orv::CObserverDoc observer;
    orv::CPlanets planets;
    double jdUT = 2460500.5;
    for (auto _ : state) {
        state.PauseTiming();
        observer.SetJulianDate(jdUT);
        planets.ComputeAll(observer, orv::PlaceCentre::Topocentric);
        state.ResumeTiming();
        benchmark::DoNotOptimize(orv::GlobesOf(observer, planets));
        jdUT += 0.37;
    }
}
BENCHMARK(BM_GlobesAndSatellites)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
