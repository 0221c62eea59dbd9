#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "util/binaryio.h"
#include "util/sortedindex.h"

using namespace orv;

TEST(SortedIndex, Key64OrdersHighWordSignedThenLowWordUnsigned)
{
    // A negative high word sorts first; within a high word the low word is
    // compared as unsigned, so 0xFFFFFFFF is the largest low word.
    EXPECT_LT(Key64(0xFFFFFFFFu, -1), Key64(0u, 0));
    EXPECT_LT(Key64(0x7FFFFFFFu, 0), Key64(0x80000000u, 0));
    EXPECT_LT(Key64(0xFFFFFFFFu, 0), Key64(0u, 1));
    EXPECT_EQ(Key64(0x2A, 0), 42);
    // The Tycho identifier of TYC 9537-12345-3, as the cross-indexes store it.
    const std::int64_t tyc = 9537LL * 1000000 + 12345 * 10 + 3;
    EXPECT_EQ(Key64(static_cast<std::uint32_t>(tyc & 0xFFFFFFFF), static_cast<std::int32_t>(tyc >> 32)), tyc);
}

TEST(SortedIndex, FindsEveryPresentKeyAndNoAbsentOne)
{
    // Entries of 12 bytes: key low word, key high word, 4-byte payload.
    std::vector<std::int64_t> keys{-5000000000LL, -1, 0, 1, 7, 4294967295LL, 4294967296LL, 9537123453LL};
    std::sort(keys.begin(), keys.end());
    CByteWriter w;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        w.U32(static_cast<std::uint32_t>(keys[i] & 0xFFFFFFFF));
        w.I32(static_cast<std::int32_t>(keys[i] >> 32));
        w.I32(static_cast<std::int32_t>(i));
    }
    for (std::size_t i = 0; i < keys.size(); ++i) EXPECT_EQ(FindKey64Entry(w.Data(), 12, keys[i]), static_cast<std::int64_t>(i));
    for (const std::int64_t absent : {-5000000001LL, -2LL, 2LL, 4294967294LL, 9999999999LL})
        EXPECT_EQ(FindKey64Entry(w.Data(), 12, absent), -1) << absent;
    EXPECT_EQ(FindKey64Entry({}, 12, 0), -1);
}

TEST(SortedIndex, GenericSearchWithUnsignedCompositeKeys)
{
    // Keys compared as unsigned 32-bit numbers, as the Durchmusterung index does.
    const std::vector<std::uint32_t> keys{1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFF0u};
    for (std::size_t i = 0; i < keys.size(); ++i)
        EXPECT_EQ(SortedIndexFind(keys.size(), keys[i], [&](std::size_t j) { return keys[j]; }),
                  static_cast<std::int64_t>(i));
    EXPECT_EQ(SortedIndexFind(keys.size(), 0x80000001u, [&](std::size_t j) { return keys[j]; }), -1);
}
