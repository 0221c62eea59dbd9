// Writer of "star/Tycho2/Tycho2.dat": one 38-byte record per star, in
// catalogue order (region by region, brightest first).
#pragma once

#include <vector>

#include "model/buildstar.h"
#include "writers/outputfile.h"

namespace orv::databuild {

OutputFile WriteStarRecords(const std::vector<BuildStar>& stars);

}  // namespace orv::databuild
