// Eclipse costs: the exact geometry of one instant, the quick sketch, a
// century of eclipses computed from the ephemeris, the whole five-millennium
// build of the tables (one iteration: it takes about a second), and a
// 1,000-year search of the tables with the local circumstances at a site,
// as the search dialog runs it. The last three run on two threads: their
// CPU column is the whole process's, the time column the wall clock. Needs
// the VSOP87 files and, for the search, the eclipse tables of the data
// folder (tools/build-data.sh).

#include <benchmark/benchmark.h>

#include "eclipse/eclipsefinder.h"
#include "eclipse/eclipsegeometry.h"
#include "eclipse/eclipsesearch.h"
#include "eclipse/sunmoonsketch.h"

namespace {

bool HaveEphemeris(benchmark::State& state)
{
    orv::SunMoonPlaces p;
    if (orv::SunMoonAt(2451545.0, p)) return true;
    state.SkipWithError("no VSOP87 files in the data folder (run tools/build-data.sh)");
    return false;
}

void BM_SunMoonAt(benchmark::State& state)
{
    if (!HaveEphemeris(state)) return;
    double jd = 2460400.5;
    orv::SunMoonPlaces p;
    for (auto _ : state) {
        benchmark::DoNotOptimize(orv::SunMoonAt(jd, p));
        jd += 0.01;
    }
}
BENCHMARK(BM_SunMoonAt)->Unit(benchmark::kMicrosecond);

// The exact places at a new eclipse each time (no cached nutation), and the
// sketch that is tied to them in between.
void BM_SunMoonAtEclipseStride(benchmark::State& state)
{
    if (!HaveEphemeris(state)) return;
    double jd = 2451545.0 - 36525.0 * 20.0;
    orv::SunMoonPlaces p;
    for (auto _ : state) {
        benchmark::DoNotOptimize(orv::SunMoonAt(jd, p));
        jd += 14.765;
    }
}
BENCHMARK(BM_SunMoonAtEclipseStride)->Unit(benchmark::kMicrosecond);

void BM_SunMoonSketch(benchmark::State& state)
{
    double jd = 2451545.0 - 36525.0 * 20.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(orv::SunMoonSketch(jd, 0.0, 0.409));
        jd += 14.765;
    }
}
BENCHMARK(BM_SunMoonSketch)->Unit(benchmark::kMicrosecond);

void BM_EclipsesOfACentury(benchmark::State& state)
{
    if (!HaveEphemeris(state)) return;
    for (auto _ : state) benchmark::DoNotOptimize(orv::FindEclipses(1901, 2000, orv::EclipseKinds::Both));
}
BENCHMARK(BM_EclipsesOfACentury)->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_FiveMillenniumBuild(benchmark::State& state)
{
    if (!HaveEphemeris(state)) return;
    for (auto _ : state) {
        const orv::EclipseList list = orv::FindEclipses(-1999, 3000, orv::EclipseKinds::Both);
        state.counters["eclipses"] = static_cast<double>(list.events.size());
        state.counters["finer"] = static_cast<double>(list.finerRecomputations);
        state.counters["exact"] = static_cast<double>(list.exactRecomputations);
    }
}
BENCHMARK(BM_FiveMillenniumBuild)->Iterations(1)->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_SearchThousandYears(benchmark::State& state)
{
    if (!HaveEphemeris(state)) return;
    orv::EclipseSearchSettings settings;
    settings.startYear = 1500;
    settings.endYear = 2499;
    const orv::EclipseSite paris{48.85 * 0.017453292519943295, 2.35 * 0.017453292519943295, 35.0};
    for (auto _ : state) {
        const orv::EclipseSearchOutcome outcome =
            orv::RunEclipseSearch(settings, paris, orv::EclipseVisibility::FromSite, {}, {});
        if (outcome.tablesMissing) {
            state.SkipWithError("no eclipse tables in the data folder (run tools/build-data.sh)");
            return;
        }
        state.counters["visible"] = static_cast<double>(outcome.results.size());
    }
}
BENCHMARK(BM_SearchThousandYears)->Iterations(1)->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
