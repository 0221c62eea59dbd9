// Writer of "data/rgnbound.dat": the box of each region in right ascension
// and declination (0.1″), wide enough to hold every star filed under it.
#pragma once

#include "model/buildstar.h"
#include "writers/outputfile.h"

namespace orv::databuild {

OutputFile WriteRegionBounds(const Catalogue& catalogue);

}  // namespace orv::databuild
