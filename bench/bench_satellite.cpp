// Satellite benchmarks: SGP4 and SDP4 propagations per second, a ten-day
// pass search for the ISS, one night's search over a few hundred satellites,
// and a ground track. bench/satellitejs_bench.mjs times the same
// propagations with satellite.js for comparison.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "observer/observer.h"
#include "satellite/groundtrack.h"
#include "satellite/passes.h"
#include "satellite/propagator.h"
#include "satellite/sattime.h"
#include "util/angles.h"

namespace {

using namespace orv::sat;

const SatelliteRecord& Iss()
{
    static const SatelliteRecord r =
        ParseElementSet("ISS (ZARYA)", "1 25544U 98067A   19156.50900463  .00003075  00000-0  59442-4 0  9992",
                        "2 25544  51.6433  59.2583 0008217  16.4489 347.6017 15.51174618173442");
    return r;
}

// Molniya 2-14 (Vallado's 08195): 12-hour resonant, SDP4 with the integrator.
const SatelliteRecord& Molniya()
{
    static const SatelliteRecord r =
        ParseElementSet("MOLNIYA 2-14", "1 08195U 75081A   06176.33215444  .00000099  00000-0  11873-3 0   813",
                        "2 08195  64.1586 279.0717 6877146 264.7651  20.2257  2.00491383225656");
    return r;
}

// Sweeps 0 … 1440 minutes in one-minute steps, as a pass search does.
void Propagate(benchmark::State& state, const SatelliteRecord& record)
{
    CSatellitePropagator p(record);
    TemeStateEarthRadii s;
    double t = 0.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(p.Propagate(t, s));
        benchmark::DoNotOptimize(s);
        t = t >= 1440.0 ? 0.0 : t + 1.0;
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_Sgp4Propagation(benchmark::State& state) { Propagate(state, Iss()); }
void BM_Sdp4Propagation(benchmark::State& state) { Propagate(state, Molniya()); }
BENCHMARK(BM_Sgp4Propagation);
BENCHMARK(BM_Sdp4Propagation);

void BM_IssTenDayVisiblePassSearch(benchmark::State& state)
{
    CEarthSatSettings settings;  // 10 days, visible passes, 15 s
    const SatelliteSite site{40.0 * orv::kRadPerDeg, -75.0 * orv::kRadPerDeg, 0.0};
    std::size_t passes = 0;
    for (auto _ : state) {
        const PassSearchResult r = SearchSatellitePasses(Iss(), 0, site, 2458640.0 + 4.0 / 24, settings, {});
        passes = r.passes.size();
        benchmark::DoNotOptimize(r);
    }
    state.counters["passes"] = static_cast<double>(passes);
}
BENCHMARK(BM_IssTenDayVisiblePassSearch)->Unit(benchmark::kMillisecond);

// A few hundred satellites: the ISS and Vallado's deep-space sets, each
// repeated with its node and mean anomaly turned in steps (a synthetic list
// with the same mix of near-Earth and deep-space orbits).
std::vector<SatelliteRecord> SyntheticList(int copies)
{
    std::vector<SatelliteRecord> base{
        Iss(),
        Molniya(),
        ParseElementSet("DELTA 1 DEB", "1 06251U 62025E   06176.82412014  .00008885  00000-0  12808-3 0  3985",
                        "2 06251  58.0579  54.0425 0030035 139.1568 221.1854 15.56387291  6774"),
        ParseElementSet("CBERS 2", "1 28057U 03049A   06177.78615833  .00000060  00000-0  35940-4 0  1836",
                        "2 28057  98.4283 247.6961 0000884  88.1964 271.9322 14.35478080140550"),
        ParseElementSet("NAVSTAR 53", "1 28129U 03058A   06175.57071136 -.00000104  00000-0  10000-3 0   459",
                        "2 28129  54.7298 324.8098 0048506 266.2640  93.1663  2.00562768 18443"),
        ParseElementSet("ITALSAT 2", "1 24208U 96044A   06177.04061740 -.00000094  00000-0  10000-3 0  1600",
                        "2 24208   3.8536  80.0121 0026640 311.0977  48.3000  1.00778054 36119"),
    };
    std::vector<SatelliteRecord> out;
    for (int k = 0; k < copies; ++k)
        for (SatelliteRecord r : base) {
            r.raanRad = orv::mod2pi(r.raanRad + k * 0.37);
            r.meanAnomalyRad = orv::mod2pi(r.meanAnomalyRad + k * 1.1);
            r.epochJd = 2458640.0 - 1.0;  // one day before the night searched
            out.push_back(r);
        }
    return out;
}

void BM_AllSatelliteNightSearch(benchmark::State& state)
{
    const std::vector<SatelliteRecord> list = SyntheticList(static_cast<int>(state.range(0)));
    orv::CObserverDoc observer;
    observer.SetSite("bench", 40.0 * orv::kRadPerDeg, -75.0 * orv::kRadPerDeg, 0.0);
    CEarthSatSettings settings;
    settings.passScope = PassScope::AllSatellites;
    settings.passMinAltitude = PassMinimumAltitude::Ignore;
    const double midday = LocalMiddayJd(2019, 6, 5, -4.0);
    std::size_t passes = 0;
    for (auto _ : state) {
        const PassSearchResult r = SearchAllSatellitePasses(list, observer, midday, settings, {});
        passes = r.passes.size();
        benchmark::DoNotOptimize(r);
    }
    state.counters["satellites"] = static_cast<double>(list.size());
    state.counters["passes"] = static_cast<double>(passes);
}
BENCHMARK(BM_AllSatelliteNightSearch)->Arg(50)->Unit(benchmark::kMillisecond);

void BM_GroundTrackOneDay(benchmark::State& state)
{
    CEarthSatSettings settings;
    settings.groundTrackLengthMin = 1440;
    for (auto _ : state) benchmark::DoNotOptimize(ComputeGroundTrack(Iss(), Iss().epochJd, settings, {}));
}
BENCHMARK(BM_GroundTrackOneDay)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
