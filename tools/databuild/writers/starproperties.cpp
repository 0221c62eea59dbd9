#include "writers/starproperties.h"

#include <algorithm>

namespace orv::databuild {

using namespace orv::tycho2;

OutputFile WriteStarProperties(std::vector<PropertyOfStar> properties)
{
    std::stable_sort(properties.begin(), properties.end(),
                     [](const auto& a, const auto& b) { return a.tychoId < b.tychoId; });
    CByteWriter w;
    for (const auto& p : properties) {
        PutKey64(w, p.tychoId);
        w.U8(p.property.constellation);
        w.U8(p.property.flamsteed);
        w.U8(p.property.greek);
        w.U8(p.property.superscript);
    }
    return {std::string(kPropertyDiskName), std::move(w.Data())};
}

}  // namespace orv::databuild
