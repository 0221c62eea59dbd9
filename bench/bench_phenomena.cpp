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

// The almanac as the command line makes it, with the Moon's conjunctions
// with the five bright stars it can occult (Hipparcos J2000 places).
void BM_AlmanacYearWithStars(benchmark::State& state)
{
    if (!HaveEphemeris(state)) return;
    orv::CObserverDoc observer;
    const auto star = [](const char* name, double raHours, double decDeg) {
        PhenomenonBody b;
        b.type = PhenomenonBody::Type::Fixed;
        b.raJ2000Rad = raHours * 15.0 * 0.017453292519943295;
        b.decJ2000Rad = decDeg * 0.017453292519943295;
        b.name = name;
        return b;
    };
    const std::vector<PhenomenonBody> stars = {
        star("Aldebaran", 4.598678, 16.509302), star("Regulus", 10.139531, 11.967208),
        star("Spica", 13.419883, -11.161319), star("Antares", 16.490128, -26.432002),
        star("Alcyone", 3.791411, 24.105137)};
    for (auto _ : state) benchmark::DoNotOptimize(orv::MakeAlmanac(observer, 2026, {}, stars));
}
BENCHMARK(BM_AlmanacYearWithStars)->Unit(benchmark::kMillisecond)->Iterations(2);

// Every planet's opposition to the Sun over a year at one-hour steps: eight
// searches sharing their interpolation nodes.
void BM_EveryPlanetAgainstTheSun(benchmark::State& state)
{
    if (!HaveEphemeris(state)) return;
    orv::CObserverDoc observer;
    orv::PhenomenaRequest base;
    base.kind = PhenomenonKind::OppositionLongitude;
    base.jdUTStart = 2461041.5;
    base.durationDays = 365.0;
    base.stepHours = 1.0;
    const auto requests = orv::PhenomenaPairs(base, orv::AllPlanetBodies(), {PhenomenonBody::Planet(orv::kBodySun)});
    for (auto _ : state) benchmark::DoNotOptimize(orv::SearchPhenomenaSections(observer, requests));
}
BENCHMARK(BM_EveryPlanetAgainstTheSun)->Unit(benchmark::kMillisecond);

// A century of the Moon's phases at one-hour steps (876,600 samples).
void BM_MoonPhasesCenturyHourly(benchmark::State& state)
{
    if (!HaveEphemeris(state)) return;
    orv::CObserverDoc observer;
    orv::PhenomenaRequest request;
    request.kind = PhenomenonKind::MoonPhases;
    request.jdUTStart = 2451544.5;
    request.durationDays = 36525.0;
    request.stepHours = 1.0;
    for (auto _ : state) benchmark::DoNotOptimize(orv::SearchPhenomena(observer, request));
}
BENCHMARK(BM_MoonPhasesCenturyHourly)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
