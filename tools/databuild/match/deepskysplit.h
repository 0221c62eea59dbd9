// The deep-sky catalogues Orvane files separately, taken from the one merged
// catalogue of stellarium-data: the revised NGC/IC (with the Messier and
// Caldwell objects outside it), the PGC galaxies of LEDA and the Strasbourg
// galactic planetary nebulae. Each is ordered by sky region, brightest first
// within a region, with the bounds of every region.
#pragma once

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

// Splits the merged catalogue into the three, each ordered by region.
DeepSkyCatalogues SplitDeepSkyCatalogues(const std::vector<BuildDeepSkyObject>& all);

}  // namespace orv::databuild
