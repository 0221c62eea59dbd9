#include "writers/regionstarts.h"

#include <climits>

namespace orv::databuild {

using namespace orv::tycho2;

OutputFile WriteRegionStarts(const Catalogue& catalogue)
{
    CByteWriter w;
    for (int r = 0; r <= kRegionCount; ++r) {
        w.U32(catalogue.regionStart[r]);
        w.I16(r < kRegionCount ? catalogue.regionBrightest[r] : INT16_MAX);
    }
    return {std::string(kRegionStartDiskName), std::move(w.Data())};
}

}  // namespace orv::databuild
