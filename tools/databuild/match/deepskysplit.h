// The deep-sky catalogues Orvane files separately, taken from the one merged
// catalogue of stellarium-data: the revised NGC/IC (with the Messier and
// Caldwell objects outside it), the PGC galaxies of LEDA and the Strasbourg
// galactic planetary nebulae. Each is ordered by sky region, brightest first
// within a region, with the bounds of every region.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "model/deepsky.h"

namespace orv::databuild {

struct DeepSkyRegionBounds {
    std::int32_t raMinMas = 0, raMaxMas = 0, decMinMas = 0, decMaxMas = 0;
    std::int32_t reachMas = 0;  // the largest semi-major axis of the region's objects
    std::uint32_t first = 0, count = 0;
};

struct DeepSkyCatalogue {
    std::vector<BuildDeepSkyObject> objects;  // in region order
    std::vector<DeepSkyRegionBounds> regions;  // one per region of the scheme
};

struct DeepSkyCatalogues {
    DeepSkyCatalogue ngcIc, leda, planetary;
};

// The NGC/IC type coding of an object of the merged catalogue (0 for kinds
// the NGC/IC coding has no place for).
std::uint8_t NgcTypeOf(StelDsoType type);
// The program's object type code of an object of the merged catalogue.
int SystemTypeOf(StelDsoType type);

// Files a list into the region scheme: sorts it region by region, brightest
// first, and fills the bounds.
void OrderByRegion(DeepSkyCatalogue& catalogue);

// The same for any list of objects with a J2000 place (raMas, decMas), a
// major axis (majorArcmin) and a magnitude given by `magnitude`.
template <class T, class Magnitude>
std::vector<DeepSkyRegionBounds> OrderObjectsByRegion(std::vector<T>& objects, Magnitude magnitude);

// The regions' cells, with nothing filed under them yet.
std::vector<DeepSkyRegionBounds> EmptyRegions();
int RegionOfPlace(std::int64_t raMas, std::int64_t decMas);

// Splits the merged catalogue into the three, each ordered by region.
DeepSkyCatalogues SplitDeepSkyCatalogues(const std::vector<BuildDeepSkyObject>& all);

template <class T, class Magnitude>
std::vector<DeepSkyRegionBounds> OrderObjectsByRegion(std::vector<T>& objects, Magnitude magnitude)
{
    std::vector<int> region(objects.size());
    std::vector<std::size_t> order(objects.size());
    for (std::size_t i = 0; i < objects.size(); ++i) {
        region[i] = RegionOfPlace(objects[i].raMas, objects[i].decMas);
        order[i] = i;
    }
    // Brightest first within a region; objects without a magnitude last, then
    // the source's own order, so that the build is reproducible.
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        if (region[a] != region[b]) return region[a] < region[b];
        return magnitude(objects[a]) < magnitude(objects[b]);
    });
    std::vector<T> sorted;
    sorted.reserve(objects.size());
    for (std::size_t i : order) sorted.push_back(std::move(objects[i]));
    objects.swap(sorted);
    std::vector<DeepSkyRegionBounds> regions = EmptyRegions();
    for (std::size_t i = 0; i < objects.size(); ++i) {
        DeepSkyRegionBounds& b = regions[static_cast<std::size_t>(RegionOfPlace(objects[i].raMas, objects[i].decMas))];
        if (b.count == 0) b.first = static_cast<std::uint32_t>(i);
        ++b.count;
        const auto reach = static_cast<std::int32_t>(std::ceil(objects[i].majorArcmin * 0.5 * 60'000.0));
        b.reachMas = std::max(b.reachMas, reach);
    }
    return regions;
}

}  // namespace orv::databuild
