// The binary search used by every sorted index file (star cross-indexes,
// name indexes): low = 0, high = count − 1, middle = (low + high) / 2; an equal
// key ends the search, a greater key moves high below the middle, a smaller one
// moves low above it, and the search fails when high < low.
//
// The 64-bit keys of the index files are stored as a low 32-bit word
// (unsigned) followed by a high word (signed); comparing high words as signed
// and then low words as unsigned is exactly the order of the signed 64-bit
// value, which is what Key64 builds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "util/binaryio.h"

namespace orv {

inline std::int64_t Key64(std::uint32_t lowWord, std::int32_t highWord) noexcept
{
    return static_cast<std::int64_t>((static_cast<std::uint64_t>(static_cast<std::uint32_t>(highWord)) << 32) |
                                     lowWord);
}

// Reads a key stored as uint32 low word then int32 high word at `p`.
inline std::int64_t LoadKey64(const std::uint8_t* p) noexcept
{
    return Key64(LoadLE<std::uint32_t>(p), LoadLE<std::int32_t>(p + 4));
}

// Index of an entry whose key equals `key`, or −1. `keyAt(i)` returns the key
// of entry i; keys must be sorted ascending under operator<.
template <typename Key, typename KeyAt>
std::int64_t SortedIndexFind(std::size_t count, const Key& key, KeyAt&& keyAt)
{
    std::int64_t low = 0;
    std::int64_t high = static_cast<std::int64_t>(count) - 1;
    while (high >= low) {
        const std::int64_t middle = (low + high) / 2;
        const Key k = keyAt(static_cast<std::size_t>(middle));
        if (k == key) return middle;
        if (key < k)
            high = middle - 1;
        else
            low = middle + 1;
    }
    return -1;
}

// The common case: fixed-size entries in a byte block, each starting with a
// 64-bit key in the low/high word layout.
inline std::int64_t FindKey64Entry(std::span<const std::uint8_t> block, std::size_t entrySize, std::int64_t key)
{
    if (entrySize < 8) return -1;
    const std::size_t count = block.size() / entrySize;
    const std::uint8_t* base = block.data();
    return SortedIndexFind(count, key, [&](std::size_t i) { return LoadKey64(base + i * entrySize); });
}

}  // namespace orv
