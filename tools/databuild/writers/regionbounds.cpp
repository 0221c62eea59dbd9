#include "writers/regionbounds.h"

namespace orv::databuild {

using namespace orv::tycho2;

OutputFile WriteRegionBounds(const Catalogue& catalogue)
{
    CByteWriter w;
    for (const auto& b : catalogue.regionBounds) {
        w.I32(b.raMin);
        w.I32(b.raMax);
        w.I32(b.decMin);
        w.I32(b.decMax);
    }
    return {std::string(kRegionBoundsDiskName), std::move(w.Data())};
}

}  // namespace orv::databuild
