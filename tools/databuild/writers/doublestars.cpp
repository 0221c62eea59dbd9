#include "writers/doublestars.h"

#include <algorithm>
#include <map>
#include <string>

namespace orv::databuild {

using namespace orv::tycho2;

OutputFile WriteDoubleStars(const std::vector<DoubleOfStar>& doubles)
{
    struct Entry {
        std::uint32_t record;
        std::uint16_t code;
        std::uint16_t number;
    };
    std::vector<Entry> entries;
    std::vector<std::string> codes;
    std::map<std::string, std::uint16_t> codeNumber;
    for (const auto& [record, d] : doubles) {
        Entry e{record, kWdsNoCode, 0};
        if (d && d->code.size() < kWdsEntrySize && d->number <= 0xFFFF) {
            auto [it, inserted] = codeNumber.emplace(d->code, static_cast<std::uint16_t>(codes.size() + 1));
            if (inserted) codes.push_back(d->code);
            e.code = it->second;
            e.number = static_cast<std::uint16_t>(d->number);
        }
        entries.push_back(e);
    }
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.record < b.record; });
    CByteWriter w;
    w.U32(kWdsMagic);
    w.U32(static_cast<std::uint32_t>(codes.size()));
    for (const auto& c : codes) w.FixedText(c, kWdsEntrySize);
    for (const auto& e : entries) {
        w.U32(e.record);
        w.U16(e.code);
        w.U16(e.number);
    }
    return {std::string(kWdsDiskName), std::move(w.Data())};
}

}  // namespace orv::databuild
