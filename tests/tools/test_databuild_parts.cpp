// Tests of the data builder's parts that the whole-build tests do not reach
// one by one: which Tycho-2 entry stands for a Hipparcos number, which list
// entry is kept when a field cannot hold the first, and the packing of the
// sorted index files.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "catalogbuild.h"
#include "support/compare.h"
#include "util/binaryio.h"
#include "util/sortedindex.h"
#include "writers/crossindex.h"
#include "writers/doublestars.h"

using namespace orv;
using namespace orv::databuild;
namespace fs = std::filesystem;

namespace {

BuildStar Entry(int tyc2, int magCenti, std::uint32_t hip, const char* ccdm)
{
    BuildStar s;
    s.tyc1 = 1;
    s.tyc2 = static_cast<std::uint16_t>(tyc2);
    s.tyc3 = 1;
    s.flags = 1;
    s.magCenti = static_cast<std::int16_t>(magCenti);
    s.hip = hip;
    std::strncpy(s.ccdm, ccdm, sizeof s.ccdm - 1);
    return s;
}

}  // namespace

// ---------------------------------------------------------------------------
// The record standing for a Hipparcos entry that Tycho-2 splits into
// components (CCDM letters as in the Tycho-2 ReadMe, field HIP+CCDM).

TEST(HipStars, SystemGoesToTheUnletteredOrAEntryAndComponentsToTheirLetters)
{
    const std::vector<BuildStar> stars{
        Entry(1, 300, 36850, "B"),   // the brighter, but only a companion
        Entry(2, 450, 36850, "A"),
        Entry(3, 800, 36850, "CD"),
        Entry(4, 500, 1001, "AB"),   // an unresolved pair and its fainter C star
        Entry(5, 900, 1001, "C"),
        Entry(6, 700, 42, ""),
    };
    const CHipStars hip(stars);
    EXPECT_EQ(hip.Count(), 3u);
    EXPECT_EQ(hip.Find(36850, 0), 1);    // the system: the "A" entry, not the brighter "B"
    EXPECT_EQ(hip.Find(36850, 'B'), 0);
    EXPECT_EQ(hip.Find(36850, 'D'), 2);  // a letter inside a joint entry
    EXPECT_EQ(hip.Find(1001, 0), 3);
    EXPECT_EQ(hip.Find(1001, 'B'), 3);
    EXPECT_EQ(hip.Find(42, 0), 5);
    EXPECT_EQ(hip.Find(42, 'A'), 5);     // no letter matches: the only entry
    EXPECT_EQ(hip.Find(7, 0), -1);
    ASSERT_NE(hip.All(36850), nullptr);
    EXPECT_EQ(hip.All(36850)->size(), 3u);
    EXPECT_EQ(hip.All(7), nullptr);
}

// ---------------------------------------------------------------------------
// Attaching the lists: the first entry that fits the file's field is kept,
// and only a star that has an entry carries the flag that sends a reader to
// the file.

TEST(HipLinks, FirstFittingEntryIsKeptAndOnlyListedStarsAreFlagged)
{
    Catalogue cat;
    cat.stars = {Entry(1, 100, 32349, ""), Entry(2, 200, 140, ""), Entry(3, 300, 1001, "")};
    HipData hip;
    // 17 bytes fit the 18-byte name field, 18 do not.
    hip.properNames[32349] = {"Canis Majoris Alpha", "Sirius", "Canicula"};
    hip.properNames[140] = {"Eighteen bytes lon"};
    hip.properNames[99999] = {"Nowhere"};  // a Hipparcos number with no Tycho-2 star
    VariableStar tooLong;
    tooLong.name = "V1234567 Sgr";  // 12 bytes: no room for the terminator
    tooLong.type = "EA";
    VariableStar algolLike;
    algolLike.name = "ZZ And";
    algolLike.type = "EA/SD";
    algolLike.band = "V";
    hip.variables[1001] = {tooLong, algolLike};
    hip.variables[140] = {tooLong};
    hip.variables[99999] = {algolLike};
    hip.doubles[1001] = DoubleDesignation{"Σ", 3053};
    hip.doubles[140] = std::nullopt;

    StarTables tables;
    CrossReport report;
    LinkHipparcosLists(cat, hip, tables, report);

    ASSERT_EQ(tables.names.size(), 1u);
    EXPECT_EQ(tables.names[0].name, "Sirius");
    EXPECT_EQ(tables.names[0].tychoId, cat.stars[0].TychoId());
    EXPECT_TRUE(cat.stars[0].flags & tycho2::flag::kProperName);
    EXPECT_FALSE(cat.stars[1].flags & tycho2::flag::kProperName);

    ASSERT_EQ(tables.variables.size(), 1u);
    EXPECT_EQ(tables.variables[0].variable.name, "ZZ And");
    EXPECT_TRUE(cat.stars[2].flags & tycho2::flag::kVariable);
    EXPECT_FALSE(cat.stars[1].flags & tycho2::flag::kVariable);

    // A WDS star without a designation is still a double star.
    ASSERT_EQ(tables.doubles.size(), 2u);
    EXPECT_TRUE(cat.stars[1].flags & tycho2::flag::kDouble);
    EXPECT_TRUE(cat.stars[2].flags & tycho2::flag::kDouble);

    // Listed twice, counted once.
    EXPECT_EQ(report.unmatchedHip, 1u);
    EXPECT_EQ(report.names, 1u);
    EXPECT_EQ(report.variables, 1u);
    EXPECT_EQ(report.doubles, 2u);
    // The flags keep TYC3 in bits 0-2.
    for (const auto& s : cat.stars) EXPECT_EQ(s.flags & tycho2::flag::kTyc3Mask, 1);
}

// ---------------------------------------------------------------------------
// Index files read back with the program's own binary search.

TEST(IndexFiles, CrossIndexIsSortedAcrossTheHighWordAndFoundByTheReader)
{
    // Tycho identifiers on either side of 2^32 (TYC 4294-6-1 and 4295-2-1),
    // a small one, and a key given twice (the first given is found first).
    const std::int64_t below = tycho2::TychoId(4294, 6, 1);
    const std::int64_t above = tycho2::TychoId(4295, 2, 1);
    ASSERT_LT(below, std::int64_t{1} << 32);
    ASSERT_GT(above, std::int64_t{1} << 32);
    const OutputFile f = WriteCrossIndex("star/Tycho2/t2hip.idx", {{above, 140}, {5, 7}, {below, 139}, {5, 8}});
    EXPECT_EQ(f.path, "star/Tycho2/t2hip.idx");
    ASSERT_EQ(f.bytes.size(), 4 * tycho2::kCrossEntrySize);
    std::int64_t previous = -1;
    for (std::size_t i = 0; i < 4; ++i) {
        const std::int64_t key = LoadKey64(f.bytes.data() + i * tycho2::kCrossEntrySize);
        EXPECT_GE(key, previous);
        previous = key;
    }
    EXPECT_EQ(LoadLE<std::uint32_t>(f.bytes.data() + 8), 7u);
    EXPECT_EQ(LoadLE<std::uint32_t>(f.bytes.data() + 12 + 8), 8u);
    const auto at = FindKey64Entry(f.bytes, tycho2::kCrossEntrySize, above);
    ASSERT_GE(at, 0);
    EXPECT_EQ(LoadLE<std::uint32_t>(f.bytes.data() + at * 12 + 8), 140u);
    EXPECT_GE(FindKey64Entry(f.bytes, tycho2::kCrossEntrySize, below), 0);
    EXPECT_EQ(FindKey64Entry(f.bytes, tycho2::kCrossEntrySize, 6), -1);
}

TEST(IndexFiles, DoubleStarCodesAreSharedAndWhatCannotBeStoredHasNoCode)
{
    // Designations as extra_name.fab gives them: Σ 1110 is Castor (STF 1110
    // in the WDS); "H 5" is William Herschel's class V.
    const std::vector<DoubleOfStar> doubles{
        {7, DoubleDesignation{"Σ", 3053}},
        {2, DoubleDesignation{"H 5", 79}},
        {5, DoubleDesignation{"Σ", 1110}},
        {9, DoubleDesignation{"LONGCODE", 1}},  // 8 bytes: no room for the terminator
        {3, DoubleDesignation{"Σ", 70000}},     // beyond the 16-bit number field
        {1, std::nullopt},
    };
    const OutputFile f = WriteDoubleStars(doubles);
    const auto& b = f.bytes;
    ASSERT_EQ(b.size(), 8u + 2 * 8 + 6 * 8);
    EXPECT_EQ(LoadLE<std::uint32_t>(b.data()), tycho2::kWdsMagic);
    ASSERT_EQ(LoadLE<std::uint32_t>(b.data() + 4), 2u);
    EXPECT_STREQ(reinterpret_cast<const char*>(b.data() + 8), "Σ");    // code 1, first met
    EXPECT_STREQ(reinterpret_cast<const char*>(b.data() + 16), "H 5"); // code 2
    struct Expected {
        std::uint32_t record;
        std::uint16_t code, number;
    };
    const Expected expected[] = {{1, tycho2::kWdsNoCode, 0}, {2, 2, 79},   {3, tycho2::kWdsNoCode, 0},
                                 {5, 1, 1110},               {7, 1, 3053}, {9, tycho2::kWdsNoCode, 0}};
    for (std::size_t i = 0; i < 6; ++i) {
        const std::uint8_t* e = b.data() + 24 + i * 8;
        EXPECT_EQ(LoadLE<std::uint32_t>(e), expected[i].record) << i;
        EXPECT_EQ(LoadLE<std::uint16_t>(e + 4), expected[i].code) << i;
        EXPECT_EQ(LoadLE<std::uint16_t>(e + 6), expected[i].number) << i;
    }
}

// ---------------------------------------------------------------------------
// The Hipparcos-keyed lists of stellarium-data.

TEST(HipLists, EveryNameIsKeptInOrderAndAMalformedLineIsNamed)
{
    const fs::path dir = orv::test::MakeTempDir();
    const fs::path names = dir / "star_names.fab";
    std::ofstream(names) << "# western\n 32349|_(\"Sirius\") 1,2\n 32349|_(\"Canicula\") 37\n\n 91262|_(\"Vega\")\n";
    std::map<std::uint32_t, std::vector<std::string>> read;
    std::string error;
    ASSERT_TRUE(ReadProperNames(names.string(), read, [](const std::string&) {}, error)) << error;
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[32349], (std::vector<std::string>{"Sirius", "Canicula"}));
    EXPECT_EQ(read[91262], (std::vector<std::string>{"Vega"}));

    const fs::path designations = dir / "name.fab";
    std::ofstream(designations) << " 32349|α_CMa\n 32349|9_CMa\nCMa|α\n";
    std::map<std::uint32_t, StarProperty> props;
    EXPECT_FALSE(ReadDesignations(designations.string(), props, [](const std::string&) {}, error));
    EXPECT_NE(error.find("line 3"), std::string::npos) << error;
    EXPECT_NE(error.find("HIP|designation"), std::string::npos) << error;
    fs::remove_all(dir);
}
