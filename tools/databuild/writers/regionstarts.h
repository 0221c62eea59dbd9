// Writer of "star/Tycho2/t2region.idx": for each of the 9,537 regions the
// number of its first record and the magnitude of its brightest star (so that
// a chart skips a region with nothing bright enough), then the end sentinel.
#pragma once

#include "model/buildstar.h"
#include "writers/outputfile.h"

namespace orv::databuild {

OutputFile WriteRegionStarts(const Catalogue& catalogue);

}  // namespace orv::databuild
