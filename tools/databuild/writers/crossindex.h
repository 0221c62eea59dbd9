// Writers of the cross-index files of star/Tycho2/: 12-byte entries of a
// 64-bit key and a 32-bit value, sorted by key for a binary search.
//   hip.idx, sao.idx, hd.idx, bsc.idx   catalogue number → record
//   t2hip.idx, t2sao.idx, t2hd.idx, t2bsc.idx   Tycho identifier → number
// (bsc: the Yale Bright Star Catalogue's HR numbers).
#pragma once

#include <string>
#include <vector>

#include "model/startables.h"
#include "writers/outputfile.h"

namespace orv::databuild {

// One cross-index file at `path` from `entries` in any order (entries with
// equal keys keep their order).
OutputFile WriteCrossIndex(std::string path, std::vector<KeyedValue> entries);

// The eight files of `tables`: hip, t2hip, sao, t2sao, hd, t2hd, bsc, t2bsc.
std::vector<OutputFile> WriteCrossIndexes(const CrossTables& tables);

}  // namespace orv::databuild
