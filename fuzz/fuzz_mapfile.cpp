// Map files of every version, as mailed by a friend: read into a fresh
// document and view, then written back and read again.
#include <cstddef>
#include <cstdint>

#include "map/levels.h"
#include "map/mapdoc.h"
#include "map/mapfile.h"
#include "map/mapview.h"
#include "util/settingsstore.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace orv;
    static const CMemorySettingsStore store;
    static const CLevelTable levels;
    CMapDoc doc(store);
    CMapView view(doc, store, levels);
    const MapFileResult result = ReadMapBytes({data, size}, view, KeepTitle::No);
    if (result.status == MapFileStatus::Ok) {
        // What was read must survive a save and a second read.
        const std::vector<std::uint8_t> bytes = WriteMapBytes(view);
        CMapDoc again(store);
        CMapView againView(again, store, levels);
        if (ReadMapBytes(bytes, againView, KeepTitle::No).status != MapFileStatus::Ok) __builtin_trap();
    }
    return 0;
}
