// Phenomena search costs: one year at one-hour steps for each kind (with
// the bodies an observer would pick for it: Mars and the Sun, the Moon and
// Jupiter, Venus, …), and the whole almanac of a year. Needs the planetary
// ephemeris of the data folder (tools/build-data.sh).

#include <benchmark/benchmark.h>

#include "observer/observer.h"
#include "phenomena/almanac.h"
#include "phenomena/phenomena.h"
#include "solarsystem/planets.h"

namespace {

using orv::PhenomenonBody;
using orv::PhenomenonKind;

bool HaveEphemeris(benchmark::State& state)
{
    orv::CPlanets planets;
    orv::CObserverDoc observer;
    double ra = 0.0, dec = 0.0;
    if (planets.ApparentPosition(observer, orv::kBodySun, 2451545.0, ra, dec, orv::PlaceCentre::Geocentric) ==
        orv::PositionStatus::Ok)
        return true;
    state.SkipWithError("no planetary ephemeris in the data folder (run tools/build-data.sh)");
    return false;
}

// The bodies each kind is timed with.
std::vector<PhenomenonBody> BodiesFor(PhenomenonKind kind)
{
    using orv::kBodyJupiter;
    using orv::kBodyMars;
    using orv::kBodyMoon;
    using orv::kBodySun;
    using orv::kBodyVenus;
    switch (orv::PhenomenonBodyCount(kind)) {
    case 0: return {};
    case 1:
        if (kind == PhenomenonKind::ApogeePerigee || kind == PhenomenonKind::DeclinationExtremes)
            return {PhenomenonBody::Planet(kBodyMoon)};
        return {PhenomenonBody::Planet(kind == PhenomenonKind::GreatestElongation ? kBodyVenus : kBodyMars)};
    default:
        if (kind == PhenomenonKind::Appulse || kind == PhenomenonKind::MinimumSeparation ||
            kind == PhenomenonKind::MaximumSeparation)
            return {PhenomenonBody::Planet(kBodyMoon), PhenomenonBody::Planet(kBodyJupiter)};
        return {PhenomenonBody::Planet(kBodyMars), PhenomenonBody::Planet(kBodySun)};
    }
}

// One year from 2026 January 1 at one-hour steps; the argument is the kind.
void BM_PhenomenaYearHourly(benchmark::State& state)
{
    if (!HaveEphemeris(state)) return;
    const auto kind = static_cast<PhenomenonKind>(state.range(0));
    orv::CObserverDoc observer;
    orv::PhenomenaRequest request;
    request.kind = kind;
    request.bodies = BodiesFor(kind);
    request.jdUTStart = 2461041.5;
    request.durationDays = 365.0;
    request.stepHours = 1.0;
    state.SetLabel(std::string(orv::PhenomenonKindKey(kind)));
    for (auto _ : state) benchmark::DoNotOptimize(orv::SearchPhenomena(observer, request));
}
BENCHMARK(BM_PhenomenaYearHourly)->DenseRange(0, orv::kPhenomenonKindCount - 1)->Unit(benchmark::kMillisecond);

void BM_AlmanacYear(benchmark::State& state)
{
    if (!HaveEphemeris(state)) return;
    orv::CObserverDoc observer;
    for (auto _ : state) benchmark::DoNotOptimize(orv::MakeAlmanac(observer, 2026));
}
BENCHMARK(BM_AlmanacYear)->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace

BENCHMARK_MAIN();
