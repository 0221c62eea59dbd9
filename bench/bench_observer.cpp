// Observer costs: the per-star cost of bringing a J2000 position to the chart's
// date (precession and nutation from the cached matrices), the cost of a new
// instant (the IAU 2000A series), and a day's rise/transit/set search.

#include <benchmark/benchmark.h>

#include <erfa.h>

#include <cmath>
#include <vector>

#include "observer/nutation.h"
#include "observer/observer.h"
#include "util/angles.h"

namespace {

std::vector<double> UnitVectors(int count)
{
    std::vector<double> v;
    v.reserve(3 * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const double ra = std::fmod(i * 2.399963, orv::kTwoPi);  // golden-angle spiral over the sphere
        const double dec = std::asin(2.0 * (i + 0.5) / count - 1.0);
        v.push_back(std::cos(dec) * std::cos(ra));
        v.push_back(std::cos(dec) * std::sin(ra));
        v.push_back(std::sin(dec));
    }
    return v;
}

// Per position: PrecessXYZ (J2000 to date) then NutateXYZ, cache warm.
void BM_PrecessNutatePerPosition(benchmark::State& state)
{
    orv::CObserverDoc doc;
    doc.SetJulianDate(2460500.25);
    doc.LAST();  // fills the instant's cache
    const std::vector<double> source = UnitVectors(4096);
    std::vector<double> v = source;
    for (auto _ : state) {
        v = source;
        for (std::size_t i = 0; i < v.size(); i += 3) {
            doc.PrecessXYZ(&v[i], -1);
            doc.NutateXYZ(&v[i]);
        }
        benchmark::DoNotOptimize(v.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(source.size() / 3));
}
BENCHMARK(BM_PrecessNutatePerPosition);

// Same through the explicit-date forms at a fixed date (the planetary code's
// path): their own one-date caches are warm.
void BM_PrecessNutateAtDatePerPosition(benchmark::State& state)
{
    orv::CObserverDoc doc;
    const double jdTT = 2460500.25;
    const std::vector<double> source = UnitVectors(4096);
    std::vector<double> v = source;
    for (auto _ : state) {
        v = source;
        for (std::size_t i = 0; i < v.size(); i += 3) {
            doc.PrecessXYZ(&v[i], jdTT, -1);
            doc.NutateXYZ(&v[i], jdTT);
        }
        benchmark::DoNotOptimize(v.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(source.size() / 3));
}
BENCHMARK(BM_PrecessNutateAtDatePerPosition);

// A new instant: ΔT, precession, the IAU 2000B nutation, sidereal time.
void BM_NewInstant(benchmark::State& state)
{
    orv::CObserverDoc doc;
    double jd = 2460500.25;
    for (auto _ : state) {
        jd += 1.0 / 1440.0;
        doc.SetJulianDate(jd);
        benchmark::DoNotOptimize(doc.LAST());
    }
}
BENCHMARK(BM_NewInstant);

// The nutation of one date: the observer's IAU 2000B series (77 terms)
// against the full IAU 2000A (1,365 terms) it replaced.
void BM_Nutation(benchmark::State& state)
{
    const bool full = state.range(0) != 0;
    double jd = 2460500.25;
    double dPsi, dEps;
    for (auto _ : state) {
        jd += 0.37;
        if (full)
            eraNut06a(2451545.0, jd - 2451545.0, &dPsi, &dEps);
        else
            orv::NutationIAU2000B2006(jd, dPsi, dEps);
        benchmark::DoNotOptimize(dPsi);
        benchmark::DoNotOptimize(dEps);
    }
    state.SetLabel(full ? "IAU 2000A (eraNut06a)" : "IAU 2000B + 2006 adjustment");
}
BENCHMARK(BM_Nutation)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

// One day's rise, transit and set of a fixed star (about 150 altitudes).
void BM_RiseTransitSetOneDay(benchmark::State& state)
{
    orv::CObserverDoc doc;
    doc.SetSite("Greenwich", 51.4772 * orv::kRadPerDeg, 0.0, 46.0);
    const orv::ApparentPositionFn sirius = [](double, double& ra, double& dec) {
        ra = 1.7677;
        dec = -0.2918;
    };
    double start = 2460500.5;
    for (auto _ : state) {
        benchmark::DoNotOptimize(doc.FindRiseTransitSet(sirius, start, 1.0, orv::kRiseAltitudeStarRad));
        start += 1.0;
    }
}
BENCHMARK(BM_RiseTransitSetOneDay)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
