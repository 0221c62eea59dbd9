#include "writers/tychoidindex.h"

#include <algorithm>

#include "model/startables.h"

namespace orv::databuild {

using namespace orv::tycho2;

OutputFile WriteTychoIdIndex(const std::vector<BuildStar>& stars)
{
    std::vector<KeyedValue> ids;
    ids.reserve(stars.size());
    for (std::size_t i = 0; i < stars.size(); ++i) ids.push_back({stars[i].TychoId(), static_cast<std::uint32_t>(i)});
    // Equal identifiers: the main-catalogue star first, and only it is kept.
    std::sort(ids.begin(), ids.end(), [&](const KeyedValue& a, const KeyedValue& b) {
        if (a.key != b.key) return a.key < b.key;
        const int sa = stars[a.value].origin & origin::kSourceMask;
        const int sb = stars[b.value].origin & origin::kSourceMask;
        return sa != sb ? sa < sb : a.value < b.value;
    });
    ids.erase(std::unique(ids.begin(), ids.end(), [](const KeyedValue& a, const KeyedValue& b) { return a.key == b.key; }),
              ids.end());
    CByteWriter w;
    w.Data().reserve(ids.size() * kTychoIdEntrySize);
    for (const auto& e : ids) {
        const BuildStar& s = stars[e.value];
        w.I16(s.tyc1);
        w.I16(static_cast<std::int16_t>(s.tyc2));
        w.I16(s.tyc3);
        w.U32(e.value);
    }
    return {std::string(kTychoIdDiskName), std::move(w.Data())};
}

}  // namespace orv::databuild
