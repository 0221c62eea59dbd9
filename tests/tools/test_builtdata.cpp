// Checks of the star files built from the real sources (orvane-databuild),
// read directly from disk. Skipped with a message when the data folder holds
// no built catalogue.
//
// Reference identifications (SIMBAD; Hipparcos Catalogue ESA SP-1200; Yale
// Bright Star Catalogue, 5th ed.), and for the magnitudes:
//   Arcturus α Boo  HIP 69673   Canopus α Car  HIP 30438   Rigel β Ori  HIP 24436
//   Betelgeuse α Ori  HIP 27989
//   Sirius  α CMa = 9 CMa   TYC 5949-2777-1  HIP 32349  HD 48915   SAO 151881  HR 2491
//   Polaris α UMi = 1 UMi   TYC 4628-237-1   HIP 11767  HD 8890    SAO 308     HR 424
//   Vega    α Lyr = 3 Lyr   TYC 3105-2070-1  HIP 91262  HD 172167  SAO 67174   HR 7001
//   Algol   β Per = 26 Per  TYC 2851-2168-1  HIP 14576  HD 19356   SAO 38592   HR 936, GCVS EA/SD 2.12-3.39 V
//   Castor  α Gem = 66 Gem  HIP 36850  HR 2891 (A), double star Σ 1110 (STF 1110)
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "catalog/stars/tycho2format.h"
#include "util/binaryio.h"
#include "util/datapath.h"
#include "util/mappedfile.h"
#include "util/sortedindex.h"

using namespace orv;
using namespace orv::tycho2;

namespace {

class BuiltData : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string path;
        if (!LocateDataFile(kCatalogueFile, path) || !m_catalogue.Open(path))
            GTEST_SKIP() << "no built star catalogue in the data folder (" << GetDataPath()
                         << "): run tools/fetch-sources.sh and orvane-databuild first";
        ASSERT_TRUE(Map(kRegionStartFile, m_regions));
        ASSERT_TRUE(Map(kRegionBoundsFile, m_bounds));
        ASSERT_TRUE(Map(kTychoIdFile, m_ids));
    }

    static bool Map(std::string_view name, CMappedFile& file)
    {
        std::string path;
        return LocateDataFile(name, path) && file.Open(path);
    }

    std::size_t Count() const { return m_catalogue.Size() / kRecordSize; }
    const std::uint8_t* Record(std::size_t i) const { return m_catalogue.Data() + i * kRecordSize; }

    std::int64_t FindTycho(int t1, int t2, int t3) const
    {
        const std::int64_t key = TychoId(t1, t2, t3);
        const std::uint8_t* base = m_ids.Data();
        const auto at = SortedIndexFind(m_ids.Size() / kTychoIdEntrySize, key, [&](std::size_t i) {
            const std::uint8_t* e = base + i * kTychoIdEntrySize;
            return TychoId(LoadLE<std::int16_t>(e), LoadLE<std::int16_t>(e + 2), LoadLE<std::int16_t>(e + 4));
        });
        return at < 0 ? -1 : LoadLE<std::uint32_t>(base + at * kTychoIdEntrySize + 6);
    }

    // The payload of `key` in cross-index file "star\Tycho2\<name>", or −1.
    static std::int64_t Cross(const std::string& name, std::int64_t key)
    {
        CMappedFile f;
        if (!Map("star\\Tycho2\\" + name, f)) return -2;
        const auto at = FindKey64Entry(f.Bytes(), kCrossEntrySize, key);
        return at < 0 ? -1 : LoadLE<std::uint32_t>(f.Data() + at * kCrossEntrySize + 8);
    }

    void ExpectStar(int t1, int t2, int t3, std::uint32_t hip, std::uint32_t hd, std::uint32_t sao, std::uint32_t hr,
                    const char* name, int constellation, int greek, int flamsteed)
    {
        SCOPED_TRACE("TYC " + std::to_string(t1) + "-" + std::to_string(t2) + "-" + std::to_string(t3));
        const std::int64_t rec = FindTycho(t1, t2, t3);
        ASSERT_GE(rec, 0);
        const std::uint8_t* r = Record(static_cast<std::size_t>(rec));
        EXPECT_EQ(LoadLE<std::uint32_t>(r + rec::kHip), hip);
        const std::int64_t id = TychoId(t1, t2, t3);
        EXPECT_EQ(Cross("hip.idx", hip), rec);
        EXPECT_EQ(Cross("hd.idx", hd), rec);
        EXPECT_EQ(Cross("sao.idx", sao), rec);
        EXPECT_EQ(Cross("bsc.idx", hr), rec);
        EXPECT_EQ(Cross("t2hip.idx", id), hip);
        EXPECT_EQ(Cross("t2hd.idx", id), hd);
        EXPECT_EQ(Cross("t2sao.idx", id), sao);
        EXPECT_EQ(Cross("t2bsc.idx", id), hr);
        const auto flags = LoadLE<std::uint16_t>(r + rec::kFlags);
        EXPECT_EQ(flags & flag::kTyc3Mask, t3);
        EXPECT_TRUE(flags & flag::kProperName);
        EXPECT_TRUE(flags & flag::kBayerFlamsteed);
        EXPECT_TRUE(flags & flag::kBrightStar);

        CMappedFile names, props;
        ASSERT_TRUE(Map(kProperNameFile, names));
        const auto n = FindKey64Entry(names.Bytes(), kNameEntrySize, id);
        ASSERT_GE(n, 0);
        EXPECT_STREQ(reinterpret_cast<const char*>(names.Data() + n * kNameEntrySize + 8), name);
        ASSERT_TRUE(Map(kPropertyFile, props));
        const auto p = FindKey64Entry(props.Bytes(), kPropertyEntrySize, id);
        ASSERT_GE(p, 0);
        const std::uint8_t* e = props.Data() + p * kPropertyEntrySize;
        EXPECT_EQ(e[8], constellation);
        EXPECT_EQ(e[9], flamsteed);
        EXPECT_EQ(e[10], greek);
    }

    CMappedFile m_catalogue, m_regions, m_bounds, m_ids;
};

}  // namespace

TEST_F(BuiltData, HoldsTheWholeCatalogueInRegionOrder)
{
    // Tycho-2: 2,539,913 main entries and 17,588 from supplement 1.
    ASSERT_EQ(m_catalogue.Size() % kRecordSize, 0u);
    EXPECT_EQ(Count(), 2539913u + 17588u);
    ASSERT_EQ(m_regions.Size(), kRegionStartFileSize);
    ASSERT_EQ(m_bounds.Size(), kRegionBoundsFileSize);
    EXPECT_EQ(LoadLE<std::uint32_t>(m_regions.Data() + kRegionCount * 6), Count());

    std::size_t outside = 0, misordered = 0, misfiled = 0;
    for (int r = 0; r < kRegionCount; ++r) {
        const std::uint32_t first = LoadLE<std::uint32_t>(m_regions.Data() + r * 6);
        const std::uint32_t end = LoadLE<std::uint32_t>(m_regions.Data() + (r + 1) * 6);
        ASSERT_LE(first, end);
        if (first < end) {
            EXPECT_EQ(LoadLE<std::int16_t>(m_regions.Data() + r * 6 + 4), LoadLE<std::int16_t>(Record(first) + rec::kMag));
        }
        const std::uint8_t* b = m_bounds.Data() + r * 16;
        const std::int64_t raMin = LoadLE<std::int32_t>(b), raMax = LoadLE<std::int32_t>(b + 4);
        const std::int64_t decMin = LoadLE<std::int32_t>(b + 8), decMax = LoadLE<std::int32_t>(b + 12);
        for (std::uint32_t i = first; i < end; ++i) {
            const std::uint8_t* rec = Record(i);
            misfiled += LoadLE<std::int16_t>(rec) != r + 1;
            if (i > first) misordered += LoadLE<std::int16_t>(rec + rec::kMag) < LoadLE<std::int16_t>(Record(i - 1) + rec::kMag);
            // Milliarcseconds to 0.1″ units: the box must hold the star.
            const std::int64_t raMas = LoadLE<std::int32_t>(rec + rec::kRaMas);
            const std::int64_t decMas = LoadLE<std::int32_t>(rec + rec::kDecMas);
            const bool raIn = (raMas >= raMin * 100 && raMas <= raMax * 100) ||
                              (raMas - 1296000000 >= raMin * 100 && raMas - 1296000000 <= raMax * 100);
            outside += !raIn || decMas < decMin * 100 || decMas > decMax * 100;
        }
    }
    EXPECT_EQ(misfiled, 0u);
    EXPECT_EQ(misordered, 0u);
    EXPECT_EQ(outside, 0u);
}

TEST_F(BuiltData, WellKnownStarsArePresentInEveryIndex)
{
    // Constellation numbers in the alphabetical order of the Latin names: CMa 13, Lyr 51, UMi 83.
    ExpectStar(5949, 2777, 1, 32349, 48915, 151881, 2491, "Sirius", 13, 0, 9);
    ExpectStar(4628, 237, 1, 11767, 8890, 308, 424, "Polaris", 83, 0, 1);
    ExpectStar(3105, 2070, 1, 91262, 172167, 67174, 7001, "Vega", 51, 0, 3);

    // Sirius: Hipparcos parallax 379.21 mas (van Leeuwen 2007), position of
    // J2000 within 0.1″ of α 06h45m08.917s, δ −16°42′58.02″.
    const std::uint8_t* sirius = Record(static_cast<std::size_t>(FindTycho(5949, 2777, 1)));
    EXPECT_NEAR(LoadLE<float>(sirius + rec::kParallax), 379.21f, 0.01f);
    EXPECT_NEAR(LoadLE<std::int32_t>(sirius + rec::kRaMas), (6 * 3600 + 45 * 60 + 8.917) * 15000.0, 100.0);
    EXPECT_NEAR(LoadLE<std::int32_t>(sirius + rec::kDecMas), -(16 * 3600 + 42 * 60 + 58.02) * 1000.0, 100.0);
}

TEST_F(BuiltData, VariableAndDoubleStarsCarryTheirDesignations)
{
    // Algol in the GCVS: EA/SD, 2.12 to 3.39 V.
    const std::int64_t algol = FindTycho(2851, 2168, 1);
    ASSERT_GE(algol, 0);
    EXPECT_TRUE(LoadLE<std::uint16_t>(Record(static_cast<std::size_t>(algol)) + rec::kFlags) & flag::kVariable);
    CMappedFile gcvsFile;
    ASSERT_TRUE(Map(kGcvsFile, gcvsFile));
    const auto g = FindKey64Entry(gcvsFile.Bytes(), gcvs::kEntrySize, TychoId(2851, 2168, 1));
    ASSERT_GE(g, 0);
    const std::uint8_t* e = gcvsFile.Data() + g * gcvs::kEntrySize;
    EXPECT_EQ(LoadLE<std::int16_t>(e + gcvs::kMaxMag), 212);
    EXPECT_EQ(LoadLE<std::int16_t>(e + gcvs::kMinMag), 339);
    EXPECT_STREQ(reinterpret_cast<const char*>(e + gcvs::kName), "β Per");
    EXPECT_STREQ(reinterpret_cast<const char*>(e + gcvs::kType), "EA/SD");

    // Castor: Σ 1110 in the WDS.
    const std::int64_t castor = Cross("hip.idx", 36850);
    ASSERT_GE(castor, 0);
    EXPECT_TRUE(LoadLE<std::uint16_t>(Record(static_cast<std::size_t>(castor)) + rec::kFlags) & flag::kDouble);
    CMappedFile wds;
    ASSERT_TRUE(Map(kWdsFile, wds));
    const std::uint32_t codes = LoadLE<std::uint32_t>(wds.Data() + 4);
    const std::size_t first = 1 + codes, count = wds.Size() / kWdsEntrySize - first;
    const auto at = SortedIndexFind(count, static_cast<std::uint32_t>(castor), [&](std::size_t i) {
        return LoadLE<std::uint32_t>(wds.Data() + (first + i) * kWdsEntrySize);
    });
    ASSERT_GE(at, 0);
    const std::uint8_t* d = wds.Data() + (first + at) * kWdsEntrySize;
    const std::uint16_t code = LoadLE<std::uint16_t>(d + 4);
    ASSERT_GE(code, 1);
    ASSERT_LE(code, codes);
    EXPECT_STREQ(reinterpret_cast<const char*>(wds.Data() + code * kWdsEntrySize), "Σ");
    EXPECT_EQ(LoadLE<std::uint16_t>(d + 6), 1110);
}

TEST_F(BuiltData, BrightStarsCarryTheHipparcosMagnitudes)
{
    // V and B−V published by the Hipparcos Catalogue (ESA 1997, SP-1200;
    // fields H5, to 0.01 mag, and H37, to 0.001 mag), which the files hold to
    // 0.01 mag: V must agree to 0.005 mag and B−V to 0.0051 mag (the
    // rounding of H37 to 0.01).
    //
    // Against the ground-based photometry of the Yale Bright Star Catalogue
    // (5th ed., Hoffleit & Warren 1991) V agrees to 0.03 mag for stars of
    // constant light. Wider, with the reason: Canopus, whose Hipparcos V is
    // 0.10 mag fainter than the Bright Star Catalogue's; the variables
    // Polaris (a Cepheid that has brightened since the BSC's photometry),
    // Rigel (α Cyg type) and Betelgeuse (semiregular, 0.0-1.3 V, whose B−V of
    // 1.85 in the BSC differs from Hipparcos's 1.50).
    struct Published {
        const char* name;
        std::uint32_t hip;
        double hipV, hipBV;  // Hipparcos Catalogue
        double bscV, bscBV;  // Bright Star Catalogue
        double tolV, tolBV;  // against the Bright Star Catalogue, mag
    };
    const Published stars[] = {
        {"Sirius", 32349, -1.44, 0.009, -1.46, 0.00, 0.03, 0.03},
        {"Vega", 91262, 0.03, -0.001, 0.03, 0.00, 0.03, 0.03},
        {"Arcturus", 69673, -0.05, 1.239, -0.04, 1.23, 0.03, 0.03},
        {"Canopus", 30438, -0.62, 0.164, -0.72, 0.15, 0.12, 0.03},
        {"Polaris", 11767, 1.97, 0.636, 2.02, 0.60, 0.08, 0.05},
        {"Rigel", 24436, 0.18, -0.030, 0.12, -0.03, 0.08, 0.03},
        {"Betelgeuse", 27989, 0.45, 1.500, 0.50, 1.85, 0.30, 0.40},
    };
    for (const auto& p : stars) {
        SCOPED_TRACE(p.name);
        const std::int64_t rec = Cross("hip.idx", p.hip);
        ASSERT_GE(rec, 0);
        const std::uint8_t* r = Record(static_cast<std::size_t>(rec));
        const double v = LoadLE<std::int16_t>(r + rec::kMag) / 100.0;
        const double bv = LoadLE<std::int16_t>(r + rec::kBV) / 1000.0;
        EXPECT_TRUE(LoadLE<std::uint16_t>(r + rec::kOrigin) & origin::kMagFromHipparcos);
        EXPECT_NEAR(v, p.hipV, 0.005);
        EXPECT_NEAR(bv, p.hipBV, 0.0051);
        EXPECT_NEAR(v, p.bscV, p.tolV);
        EXPECT_NEAR(bv, p.bscBV, p.tolBV);
    }
}

TEST_F(BuiltData, HipparcosMagnitudesCoverTheHipparcosStarsToV8)
{
    // kstars-data's list holds the 41,074 Hipparcos stars brighter than
    // V 8.00. All but those whose Tycho-2 components share the light (about
    // 1,900) or that cannot be identified (about 100) take their values.
    std::size_t count = 0, wrong = 0;
    for (std::size_t i = 0; i < Count(); ++i) {
        const std::uint8_t* r = Record(i);
        if (!(LoadLE<std::uint16_t>(r + rec::kOrigin) & origin::kMagFromHipparcos)) continue;
        ++count;
        wrong += LoadLE<std::uint32_t>(r + rec::kHip) == 0 || LoadLE<std::int16_t>(r + rec::kMag) > 799 ||
                 LoadLE<std::int16_t>(r + rec::kBV) == kNoColour || LoadLE<std::int16_t>(r + rec::kBV) % 10 != 0;
    }
    EXPECT_EQ(wrong, 0u);
    EXPECT_GT(count, 38000u);
    EXPECT_LE(count, 41074u);
}
