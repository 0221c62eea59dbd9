// The catalogue ordered into Tycho-2's regions. Tycho-2 files its stars under
// 9,537 regions of the sky (the Guide Star Catalog's, TYC1 of the identifier)
// whose bounds index.dat gives; a chart reads only the regions it shows and,
// within each, only down to its limiting magnitude.
#pragma once

#include <string>
#include <vector>

#include "model/buildstar.h"
#include "sources/tycho2reader.h"

namespace orv::databuild {

// Sorts `stars` region by region (TYC1), brightest first in each region
// (ties by TYC2 then TYC3), builds the region start table, and the region
// bounds from `index` (9,538 lines) widened, rounded outward to 0.01°, until
// every star lies inside its region's box. False with a message when a star's
// region number is outside 1..9537 or the index has the wrong length.
bool AssembleCatalogue(std::vector<BuildStar> stars, const std::vector<IndexLine>& index, Catalogue& out,
                       std::string& error);

}  // namespace orv::databuild
