// What every writer makes: the bytes of one file of the data folder and its
// path below that folder (layouts in docs/star-catalogue-files.md).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "util/binaryio.h"

namespace orv::databuild {

struct OutputFile {
    std::string path;  // below the data folder, '/'-separated
    std::vector<std::uint8_t> bytes;
};

// A 64-bit key of the sorted index files: the low 32-bit word, then the high
// word, as util/sortedindex.h reads them.
inline void PutKey64(CByteWriter& w, std::int64_t key)
{
    w.U32(static_cast<std::uint32_t>(static_cast<std::uint64_t>(key) & 0xFFFFFFFFu));
    w.I32(static_cast<std::int32_t>(key >> 32));
}

}  // namespace orv::databuild
