#include "writers/propernames.h"

#include <algorithm>

namespace orv::databuild {

using namespace orv::tycho2;

OutputFile WriteProperNames(std::vector<NamedStar> names)
{
    std::stable_sort(names.begin(), names.end(), [](const auto& a, const auto& b) { return a.tychoId < b.tychoId; });
    CByteWriter w;
    for (const auto& n : names) {
        PutKey64(w, n.tychoId);
        w.FixedText(n.name, kNameEntrySize - 8);
    }
    return {std::string(kProperNameDiskName), std::move(w.Data())};
}

}  // namespace orv::databuild
