// Solar-system costs: one VSOP87D evaluation with every term (the Earth and
// Mercury, the longest series), one place from the compact ephemeris, and
// the bodies' apparent places for one instant as a chart redraw asks them,
// through the compact ephemeris and through VSOP87. Needs the VSOP87 and
// Ephem96 files of the data folder (tools/build-data.sh).

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

// Instants advance by 0.37 d and wrap within 2020–2070, inside the compact
// ephemeris's span, however many iterations a benchmark runs.
double Next(double jd) { return jd + 0.37 >= 2476000.5 ? jd + 0.37 - 18262.0 : jd + 0.37; }

bool HaveCompact(benchmark::State& state)
{
    if (!HaveSeries(state)) return false;
    if (orv::SharedEphem96().IsOpen()) return true;
    state.SkipWithError("no Ephem96.dat in the data folder (run tools/build-data.sh)");
    return false;
}

// One heliocentric place from the compact ephemeris (Mercury: the most
// frequencies), against the VSOP87D evaluations above.
void BM_Ephem96Evaluation(benchmark::State& state)
{
    if (!HaveCompact(state)) return;
    const orv::CEphem96& ephem = orv::SharedEphem96();
    const int body = static_cast<int>(state.range(0));
    double jd = 2460500.5;
    double xyz[3];
    for (auto _ : state) {
        ephem.Evaluate(body, jd, xyz);
        benchmark::DoNotOptimize(xyz);
        jd = Next(jd);
    }
}
BENCHMARK(BM_Ephem96Evaluation)->Arg(1)->Arg(3)->Unit(benchmark::kNanosecond);

// The Sun, the planets and Pluto (bodies 1–9) at a new instant each time,
// geocentric: light time, deflection, aberration, precession and nutation
// (the observer's matrices recomputed for each instant). Arg 1 through the
// compact ephemeris, 0 through VSOP87 and the Pluto series.
void BM_NineBodiesApparent(benchmark::State& state)
{
    const bool compact = state.range(0) != 0;
    if (compact ? !HaveCompact(state) : !HaveSeries(state)) return;
    orv::CObserverDoc observer;
    orv::CPlanets planets(orv::SharedVsop87D(), compact ? &orv::SharedEphem96() : nullptr);
    double jdTT = 2460500.5;
    double ra, dec;
    for (auto _ : state) {
        for (int body = 1; body <= 9; ++body)
            planets.ApparentPosition(observer, body, jdTT, ra, dec, orv::PlaceCentre::Geocentric);
        jdTT = Next(jdTT);
    }
    state.SetLabel(compact ? "compact ephemeris" : "VSOP87");
}
BENCHMARK(BM_NineBodiesApparent)->Arg(1)->Arg(0)->Unit(benchmark::kMicrosecond);

// The same nine places asked again for one instant, as a redraw without a
// change of time asks them: the observer's precession-nutation matrices and
// the Earth's place and velocity are reused, the bodies themselves (two
// evaluations each for the light time) and the reduction are not.
void BM_NineBodiesApparentSameInstant(benchmark::State& state)
{
    const bool compact = state.range(0) != 0;
    if (compact ? !HaveCompact(state) : !HaveSeries(state)) return;
    orv::CObserverDoc observer;
    orv::CPlanets planets(orv::SharedVsop87D(), compact ? &orv::SharedEphem96() : nullptr);
    const double jdTT = 2460500.5;
    double ra, dec;
    for (auto _ : state)
        for (int body = 1; body <= 9; ++body)
            planets.ApparentPosition(observer, body, jdTT, ra, dec, orv::PlaceCentre::Geocentric);
    state.SetLabel(compact ? "compact ephemeris" : "VSOP87");
}
BENCHMARK(BM_NineBodiesApparentSameInstant)->Arg(1)->Arg(0)->Unit(benchmark::kMicrosecond);

// All ten bodies at a new instant each time, topocentric: what a chart
// redraw costs when the time changed (the Moon's series included).
void BM_AllBodiesApparent(benchmark::State& state)
{
    const bool compact = state.range(0) != 0;
    if (compact ? !HaveCompact(state) : !HaveSeries(state)) return;
    orv::CObserverDoc observer;
    orv::CPlanets planets(orv::SharedVsop87D(), compact ? &orv::SharedEphem96() : nullptr);
    double jdUT = 2460500.5;
    for (auto _ : state) {
        observer.SetJulianDate(jdUT);
        planets.ComputeAll(observer, orv::PlaceCentre::Topocentric);
        jdUT = Next(jdUT);
    }
    state.SetLabel(compact ? "compact ephemeris" : "VSOP87");
}
BENCHMARK(BM_AllBodiesApparent)->Arg(1)->Arg(0)->Unit(benchmark::kMicrosecond);

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
