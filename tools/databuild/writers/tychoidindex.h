// Writer of "star/Tycho2/T2Id.idx": the record of each Tycho identifier
// (TYC1-TYC2-TYC3), sorted by identifier for a binary search.
#pragma once

#include <vector>

#include "model/buildstar.h"
#include "writers/outputfile.h"

namespace orv::databuild {

// Where supplement 1 repeats the identifier of a main-catalogue star (a
// Hipparcos component beside its primary), the identifier leads to the
// main-catalogue star only.
OutputFile WriteTychoIdIndex(const std::vector<BuildStar>& stars);

}  // namespace orv::databuild
