// Writer of "star/Tycho2/gcvs.idx": 44-byte entries of a Tycho identifier,
// the maximum and minimum magnitude (0.01 mag) and what the minimum is, the
// band, the GCVS designation and type, and the period in days, sorted by
// identifier.
#pragma once

#include <vector>

#include "model/startables.h"
#include "writers/outputfile.h"

namespace orv::databuild {

OutputFile WriteVariableStars(std::vector<VariableOfStar> variables);

}  // namespace orv::databuild
