// Writer of "star/Tycho2/wds.idx": the magic "WDS1", the number of
// discoverer codes and the codes (8 bytes each, zero-terminated, numbered from
// 1), then 8-byte entries of a record number, code number and the
// discoverer's number of the pair, sorted by record.
#pragma once

#include <vector>

#include "model/startables.h"
#include "writers/outputfile.h"

namespace orv::databuild {

// Codes are numbered in the order of `doubles`. A designation whose code
// does not fit its field or whose number exceeds 65,535 is written as
// tycho2::kWdsNoCode, as is a star with no designation.
OutputFile WriteDoubleStars(const std::vector<DoubleOfStar>& doubles);

}  // namespace orv::databuild
