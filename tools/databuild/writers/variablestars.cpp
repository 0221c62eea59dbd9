#include "writers/variablestars.h"

#include <algorithm>

namespace orv::databuild {

using namespace orv::tycho2;

OutputFile WriteVariableStars(std::vector<VariableOfStar> variables)
{
    std::stable_sort(variables.begin(), variables.end(),
                     [](const auto& a, const auto& b) { return a.tychoId < b.tychoId; });
    CByteWriter w;
    for (const auto& e : variables) {
        const VariableStar& v = e.variable;
        PutKey64(w, e.tychoId);
        w.I16(v.maxMagCenti);
        w.I16(v.minMagCenti);
        w.U8(v.minKind);
        w.FixedText(v.band, 3);
        w.FixedText(v.name, 12);
        w.FixedText(v.type, 12);
        w.F32(v.periodDays);
    }
    return {std::string(kGcvsDiskName), std::move(w.Data())};
}

}  // namespace orv::databuild
