#include "writers/crossindex.h"

#include <algorithm>

namespace orv::databuild {

using namespace orv::tycho2;

OutputFile WriteCrossIndex(std::string path, std::vector<KeyedValue> entries)
{
    std::stable_sort(entries.begin(), entries.end(),
                     [](const KeyedValue& a, const KeyedValue& b) { return a.key < b.key; });
    CByteWriter w;
    w.Data().reserve(entries.size() * kCrossEntrySize);
    for (const auto& e : entries) {
        PutKey64(w, e.key);
        w.U32(e.value);
    }
    return {std::move(path), std::move(w.Data())};
}

std::vector<OutputFile> WriteCrossIndexes(const CrossTables& tables)
{
    std::vector<OutputFile> files;
    files.push_back(WriteCrossIndex("star/Tycho2/hip.idx", tables.hipToRecord));
    files.push_back(WriteCrossIndex("star/Tycho2/t2hip.idx", tables.tychoToHip));
    files.push_back(WriteCrossIndex("star/Tycho2/sao.idx", tables.saoToRecord));
    files.push_back(WriteCrossIndex("star/Tycho2/t2sao.idx", tables.tychoToSao));
    files.push_back(WriteCrossIndex("star/Tycho2/hd.idx", tables.hdToRecord));
    files.push_back(WriteCrossIndex("star/Tycho2/t2hd.idx", tables.tychoToHd));
    files.push_back(WriteCrossIndex("star/Tycho2/bsc.idx", tables.hrToRecord));
    files.push_back(WriteCrossIndex("star/Tycho2/t2bsc.idx", tables.tychoToHr));
    return files;
}

}  // namespace orv::databuild
