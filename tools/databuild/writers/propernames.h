// Writer of "star/Tycho2/StarLabl.dat": 26-byte entries of a Tycho
// identifier and the star's proper name (zero-terminated, 18 bytes), sorted by
// identifier.
#pragma once

#include <vector>

#include "model/startables.h"
#include "writers/outputfile.h"

namespace orv::databuild {

OutputFile WriteProperNames(std::vector<NamedStar> names);

}  // namespace orv::databuild
