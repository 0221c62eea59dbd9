// Tycho-2 catalogue speed: chart queries at each map level's default field
// and limiting magnitude, a stress query, the full-catalogue walk and the
// lookups. Needs the built catalogue in the data folder (orvane-databuild).
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "catalog/stars/chartstars.h"
#include "catalog/stars/crossindex.h"
#include "catalog/stars/tycho2catalogue.h"
#include "map/chartframe.h"
#include "map/coordinates.h"
#include "map/levels.h"
#include "observer/observer.h"
#include "util/angles.h"
#include "util/binaryio.h"

using namespace orv;

namespace {

bool CatalogueReady(benchmark::State& state)
{
    if (Tycho2Catalogue().OpenCatalogue()) return true;
    state.SkipWithError("no built Tycho-2 catalogue in the data folder (run orvane-databuild)");
    return false;
}

// A chart centred in Cygnus (RA 20h20m, Dec +40°, in the Milky Way: the
// densest fields a user meets) on a 1600 × 1000 pixel surface.
void RunQuery(benchmark::State& state, double fieldDeg, int limitCenti)
{
    if (!CatalogueReady(state)) return;
    CObserverDoc observer;
    observer.SetJulianDate(2460676.5);
    CCoordinates coords;
    coords.SetCentringMode(Centring::RaDec);
    coords.SetFieldDeg(fieldDeg);
    coords.SetupSurface(1600, 1000);
    coords.SetCentreRaDec(observer, 305.0 * kRadPerDeg, 40.0 * kRadPerDeg);
    const CChartFrame frame(observer, coords);
    StarGatherRequest request;
    request.box = BoxFromRegion(coords.StoredCentreRegion());
    request.centreDecJ2000Rad = coords.CentreDecJ2000Rad();
    request.fieldRadiusRad = coords.VisibleRadiusRad();
    request.magLimitCenti = limitCenti;
    CChartStars chart;
    std::size_t stars = 0;
    for (auto _ : state) {
        stars = GatherChartStars(Tycho2Catalogue(), frame, request, chart);
        benchmark::DoNotOptimize(chart.stars.data());
    }
    state.counters["stars"] = static_cast<double>(stars);
    state.counters["regions"] = static_cast<double>(chart.regions.size());
}

void BM_ChartQueryAtLevel(benchmark::State& state)
{
    const LevelRecord& level = DefaultLevels()[static_cast<std::size_t>(state.range(0))];
    state.SetLabel("level " + std::to_string(state.range(0) + 1));
    RunQuery(state, level.fieldDeg, level.starMagLimit);
}
BENCHMARK(BM_ChartQueryAtLevel)->DenseRange(0, kLevelCount - 1)->Unit(benchmark::kMillisecond);

void BM_ChartQueryStress45DegMag11_5(benchmark::State& state) { RunQuery(state, 45.0, 1150); }
BENCHMARK(BM_ChartQueryStress45DegMag11_5)->Unit(benchmark::kMillisecond);

// Every record of every region, positions at a date included.
void BM_FullCatalogueWalk(benchmark::State& state)
{
    if (!CatalogueReady(state)) return;
    std::vector<int> all;
    Tycho2Catalogue().FindRegions(SkyBox{}, all);
    std::size_t n = 0;
    for (auto _ : state) {
        CStarWalk walk(Tycho2Catalogue(), all, 32767);
        double sum = 0.0;
        n = 0;
        while (const std::uint8_t* r = walk.NextStar()) {
            double ra = 0.0, dec = 0.0;
            StarPositionAt(r, 25.0, ra, dec);
            sum += ra;
            ++n;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(n));
}
BENCHMARK(BM_FullCatalogueWalk)->Unit(benchmark::kMillisecond);

std::vector<std::int64_t> SampleIds(std::size_t count)
{
    const CTycho2Catalogue& cat = Tycho2Catalogue();
    std::mt19937 rng(7);
    std::uniform_int_distribution<std::size_t> pick(0, cat.RecordCount() - 1);
    std::vector<std::int64_t> ids;
    for (std::size_t i = 0; i < count; ++i) {
        StarRecord s;
        cat.ReadRecord(static_cast<std::int64_t>(pick(rng)), s);
        ids.push_back(s.TychoId());
    }
    return ids;
}

void BM_FindByTychoId(benchmark::State& state)
{
    if (!CatalogueReady(state)) return;
    const auto ids = SampleIds(4096);
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(Tycho2Catalogue().FindByTychoId(ids[i++ & 4095]));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FindByTychoId);

// A cross-index lookup opens, maps, searches and closes its file each time.
void BM_HipLookup(benchmark::State& state)
{
    if (!CatalogueReady(state)) return;
    std::mt19937 rng(11);
    std::uniform_int_distribution<int> hip(1, 118000);
    for (auto _ : state) benchmark::DoNotOptimize(FindStarByNumber(CrossCatalogue::Hip, hip(rng)));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_HipLookup);

void BM_ProperNameLookup(benchmark::State& state)
{
    if (!CatalogueReady(state)) return;
    const auto ids = SampleIds(4096);
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(Tycho2Catalogue().ProperName(ids[i++ & 4095]).size());
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ProperNameLookup);

}  // namespace

BENCHMARK_MAIN();
