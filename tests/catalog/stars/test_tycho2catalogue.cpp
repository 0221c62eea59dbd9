// The catalogue reader on small catalogues written by the data builder:
// opening and its failures, region search, the magnitude walk, identifier,
// cross-index, name and designation lookups, and the chart gathering.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <fstream>
#include <set>

#include "catalog/stars/chartstars.h"
#include "catalog/stars/crossindex.h"
#include "catalog/stars/stardesignation.h"
#include "catalog/stars/tycho2catalogue.h"
#include "catalogbuild.h"
#include "map/chartframe.h"
#include "map/coordinates.h"
#include "observer/observer.h"
#include "support/compare.h"
#include "util/dataproblems.h"
#include "util/binaryio.h"
#include "util/datapath.h"

using namespace orv;
namespace fs = std::filesystem;
namespace db = orv::databuild;

namespace {

constexpr std::int32_t kMasPerDeg = 3600000;

db::BuildStar Star(int tyc1, int tyc2, int magCenti, double raDeg, double decDeg, std::uint32_t hip = 0)
{
    db::BuildStar s;
    s.tyc1 = static_cast<std::int16_t>(tyc1);
    s.tyc2 = static_cast<std::uint16_t>(tyc2);
    s.tyc3 = 1;
    s.flags = 1;
    s.magCenti = static_cast<std::int16_t>(magCenti);
    s.raMas = static_cast<std::int32_t>(raDeg * kMasPerDeg);
    s.decMas = static_cast<std::int32_t>(decDeg * kMasPerDeg);
    s.hip = hip;
    return s;
}

// A small catalogue: region 1 at 0h on the equator, region 2 just below 24h,
// regions 3 and 4 at the north pole, the rest far away in the south.
class SmallCatalogue : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_dir = orv::test::MakeTempDir();
        std::vector<db::IndexLine> index(tycho2::kRegionCount + 1, db::IndexLine{1, 1, 18000, 18100, -5000, -4900});
        index[0] = {1, 1, 0, 249, 0, 250};
        index[1] = {1, 1, 35750, 36000, 0, 250};
        index[2] = {1, 1, 0, 36000, 8750, 9000};
        index[3] = {1, 1, 0, 36000, 8500, 8750};
        std::vector<db::BuildStar> stars{
            Star(1, 1, 300, 1.0, 1.0, 32349), Star(1, 2, 500, 1.5, 1.5, 91262), Star(1, 3, 700, 2.0, 2.0, 14576),
            Star(1, 4, 900, 1.2, 1.2),        Star(2, 1, 450, 357.9, 1.0, 36850), Star(2, 2, 650, 357.6, 2.0),
            Star(3, 1, 400, 30.0, 89.9),      Star(4, 1, 550, 100.0, 86.0),       Star(100, 1, 200, 180.5, -49.5),
        };
        db::HipData hip;
        hip.crossIds = {{32349, 0, 151881, 48915, 2491}, {91262, 0, 67174, 172167, 7001}};
        hip.properNames[32349] = {"Sirius"};
        hip.properNames[91262] = {"Vega"};
        db::StarProperty cma;
        ASSERT_TRUE(db::ParseBayerFlamsteed("α_CMa", cma));
        ASSERT_TRUE(db::ParseBayerFlamsteed("9_CMa", cma));
        hip.properties[32349] = cma;
        db::StarProperty lyr;
        ASSERT_TRUE(db::ParseBayerFlamsteed("3_Lyr", lyr));
        hip.properties[91262] = lyr;
        db::VariableStar algol;
        std::string error;
        ASSERT_TRUE(db::ParseGcvsLine("14576\tβ Per\tEA/SD\t2.12\t0\t3.39\t\tV\t45641.5135\t2.8673043\t14\tB8V", algol,
                                      error));
        hip.variables[14576] = {algol};
        hip.doubles[36850] = db::DoubleDesignation{"Σ", 1110};
        hip.parallaxMas[32349] = 379.21f;

        db::Catalogue cat;
        ASSERT_TRUE(db::AssembleCatalogue(stars, index, cat, error)) << error;
        db::CrossReport report;
        for (const db::OutputFile& f : db::BuildStarFiles(cat, hip, report)) Write(f.path, f.bytes);
        if (const char* old = std::getenv("ORVANE_DATA")) m_oldData = old;
        setenv("ORVANE_DATA", m_dir.c_str(), 1);
    }
    void TearDown() override
    {
        if (m_oldData) setenv("ORVANE_DATA", m_oldData->c_str(), 1);
        else unsetenv("ORVANE_DATA");
    }

    void Write(const std::string& name, const std::vector<std::uint8_t>& bytes)
    {
        const fs::path p = fs::path(m_dir) / name;
        fs::create_directories(p.parent_path());
        std::ofstream(p, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    std::vector<std::uint8_t> Read(const std::string& name)
    {
        std::ifstream in(fs::path(m_dir) / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    std::string m_dir;
    std::optional<std::string> m_oldData;
};

std::vector<int> Mags(const CTycho2Catalogue& cat, const std::vector<int>& regions, int limit)
{
    std::vector<int> out;
    CStarWalk walk(cat, regions, limit);
    while (const std::uint8_t* r = walk.NextStar()) out.push_back(LoadLE<std::int16_t>(r + tycho2::rec::kMag));
    return out;
}

}  // namespace

TEST_F(SmallCatalogue, OpensOnceAndClosesCleanly)
{
    CTycho2Catalogue cat;
    ASSERT_TRUE(cat.OpenCatalogue());
    EXPECT_TRUE(cat.OpenCatalogue());  // a second call is a no-op
    EXPECT_EQ(cat.RecordCount(), 9u);
    EXPECT_EQ(cat.ProperName(tycho2::TychoId(1, 1, 1)), "Sirius");
    cat.CloseCatalogue();
    EXPECT_FALSE(cat.IsOpen());
    EXPECT_EQ(cat.ProperName(tycho2::TychoId(1, 1, 1)), "");
    std::vector<int> regions;
    cat.FindRegions(SkyBox{}, regions);
    EXPECT_TRUE(regions.empty());
    EXPECT_TRUE(cat.OpenCatalogue());
}

TEST_F(SmallCatalogue, DamagedFilesLeaveTheCatalogueClosed)
{
    const auto records = Read("star/Tycho2/Tycho2.dat");
    const auto regions = Read("star/Tycho2/t2region.idx");
    TakeDataFileProblems();
    // Each refusal is reported once, naming the file.
    auto reported = [](std::string_view file) {
        const auto problems = TakeDataFileProblems();
        return problems.size() == 1 && problems[0].path.ends_with(file) && !problems[0].reason.empty();
    };
    {
        // A record cut short.
        Write("star/Tycho2/Tycho2.dat", {records.begin(), records.end() - 1});
        CTycho2Catalogue cat;
        EXPECT_FALSE(cat.OpenCatalogue());
        EXPECT_FALSE(cat.IsOpen());
        EXPECT_EQ(Mags(cat, {0, 1}, 2000).size(), 0u);
        EXPECT_TRUE(reported("Tycho2.dat"));
    }
    {
        // Regions reaching past the end of the file (the file lost its last records).
        Write("star/Tycho2/Tycho2.dat", {records.begin(), records.end() - tycho2::kRecordSize});
        CTycho2Catalogue cat;
        EXPECT_FALSE(cat.OpenCatalogue());
        EXPECT_TRUE(reported("Tycho2.dat"));
    }
    Write("star/Tycho2/Tycho2.dat", records);
    {
        // A region table of the wrong size, then one whose starts decrease.
        Write("star/Tycho2/t2region.idx", {regions.begin(), regions.end() - 6});
        CTycho2Catalogue cat;
        EXPECT_FALSE(cat.OpenCatalogue());
        EXPECT_TRUE(reported("t2region.idx"));
        auto bad = regions;
        StoreLE<std::uint32_t>(bad.data() + 6 * 5, 7);
        Write("star/Tycho2/t2region.idx", bad);
        EXPECT_FALSE(cat.OpenCatalogue());
        EXPECT_TRUE(reported("t2region.idx"));
    }
    Write("star/Tycho2/t2region.idx", regions);
    CTycho2Catalogue cat;
    EXPECT_TRUE(cat.OpenCatalogue());
    EXPECT_TRUE(TakeDataFileProblems().empty()) << "a sound catalogue is no problem";
}

TEST_F(SmallCatalogue, MissingFilesAreSilentlyAbsent)
{
    // Data files are looked for in several folders; this test needs the ones
    // it removes to be missing from all of them.
    for (const char* name : {"star\\Tycho2\\t2region.idx", "star\\Tycho2\\hip.idx"}) {
        const fs::path ours = fs::path(m_dir) / std::string(name).replace(4, 1, "/").replace(11, 1, "/");
        const auto saved = Read(ours.lexically_relative(m_dir).string());
        fs::remove(ours);
        std::string elsewhere;
        const bool found = LocateDataFile(name, elsewhere);
        Write(ours.lexically_relative(m_dir).string(), saved);
        if (found) GTEST_SKIP() << name << " is also in " << elsewhere << ": cannot test its absence here";
    }
    fs::remove(fs::path(m_dir) / "star/Tycho2/hip.idx");
    EXPECT_EQ(FindStarByNumber(CrossCatalogue::Hip, 32349), -1);
    EXPECT_EQ(FindStarByNumber(CrossCatalogue::Ppm, 1), -1);
    EXPECT_EQ(FindNumberOfStar(CrossCatalogue::Cd, tycho2::TychoId(1, 1, 1)), -1);
    CTycho2Catalogue cat;
    EXPECT_TRUE(cat.OpenCatalogue());
    cat.CloseCatalogue();
    fs::remove(fs::path(m_dir) / "star/Tycho2/t2region.idx");
    EXPECT_FALSE(cat.OpenCatalogue());
    EXPECT_FALSE(cat.IsOpen());
}

TEST_F(SmallCatalogue, RegionSearchAcrossZeroHoursAndAtThePole)
{
    CTycho2Catalogue cat;
    ASSERT_TRUE(cat.OpenCatalogue());
    std::vector<int> regions;
    // A box from 23h56m to 0h04m (359° to 1°) finds regions on both sides of 0h.
    cat.FindRegions({359.0 * kRadPerDeg, 1.0 * kRadPerDeg, 1.0 * kRadPerDeg, 2.0 * kRadPerDeg}, regions);
    EXPECT_EQ(regions, (std::vector<int>{0, 1}));
    // Touching edges count: region 1 ends at 2.49°.
    cat.FindRegions({2.49 * kRadPerDeg, 3.0 * kRadPerDeg, 0.5 * kRadPerDeg, 0.6 * kRadPerDeg}, regions);
    EXPECT_EQ(regions, (std::vector<int>{0}));
    // A box reaching the pole finds every polar region whatever its right ascension.
    cat.FindRegions({10.0 * kRadPerDeg, 20.0 * kRadPerDeg, 86.0 * kRadPerDeg, kHalfPi}, regions);
    EXPECT_EQ(regions, (std::vector<int>{2, 3}));
    cat.FindRegions({0.0, kTwoPi, -kHalfPi, kHalfPi}, regions);
    EXPECT_EQ(regions.size(), static_cast<std::size_t>(tycho2::kRegionCount));
}

TEST_F(SmallCatalogue, WalkIsBrightestFirstAndStopsAtTheLimit)
{
    CTycho2Catalogue cat;
    ASSERT_TRUE(cat.OpenCatalogue());
    EXPECT_EQ(Mags(cat, {0, 1}, 600), (std::vector<int>{300, 500, 450}));
    EXPECT_EQ(Mags(cat, {0, 1}, 700), (std::vector<int>{300, 500, 700, 450, 650}));  // 7.00 is within the limit
    EXPECT_EQ(Mags(cat, {1, 0}, 2000), (std::vector<int>{450, 650, 300, 500, 700, 900}));
    EXPECT_EQ(Mags(cat, {3}, 500), (std::vector<int>{}));  // brightest is 5.50

    // The region's brightest magnitude decides alone: with region 1 marked as
    // holding nothing brighter than 9.00, a walk to 6.00 reads none of its
    // records even though they are brighter.
    auto regions = Read("star/Tycho2/t2region.idx");
    StoreLE<std::int16_t>(regions.data() + 4, 900);
    Write("star/Tycho2/t2region.idx", regions);
    CTycho2Catalogue marked;
    ASSERT_TRUE(marked.OpenCatalogue());
    EXPECT_EQ(Mags(marked, {0, 1}, 600), (std::vector<int>{450}));
}

TEST_F(SmallCatalogue, IdentifierAndCrossIndexLookups)
{
    CTycho2Catalogue cat;
    ASSERT_TRUE(cat.OpenCatalogue());
    const std::int64_t sirius = cat.FindByTychoId(1, 1, 1);
    ASSERT_GE(sirius, 0);
    StarRecord s;
    ASSERT_TRUE(cat.ReadRecord(sirius, s));
    EXPECT_EQ(s.magCenti, 300);
    EXPECT_EQ(cat.FindByTychoId(1, 1, 2), -1);
    EXPECT_EQ(cat.FindByTychoId(9537, 99, 1), -1);
    EXPECT_FALSE(cat.ReadRecord(-1, s));
    EXPECT_FALSE(cat.ReadRecord(9, s));

    EXPECT_EQ(FindStarByNumber(CrossCatalogue::Hip, 32349), sirius);
    EXPECT_EQ(FindStarByNumber(CrossCatalogue::Hd, 48915), sirius);
    EXPECT_EQ(FindStarByNumber(CrossCatalogue::Sao, 151881), sirius);
    EXPECT_EQ(FindStarByNumber(CrossCatalogue::Bsc, 2491), sirius);
    EXPECT_EQ(FindStarByNumber(CrossCatalogue::Hd, 48916), -1);
    EXPECT_EQ(FindTychoIdByNumber(cat, CrossCatalogue::Hip, 32349), tycho2::TychoId(1, 1, 1));
    EXPECT_EQ(FindNumberOfStar(CrossCatalogue::Hd, tycho2::TychoId(1, 1, 1)), 48915);
    EXPECT_EQ(FindNumberOfStar(CrossCatalogue::Hd, tycho2::TychoId(1, 4, 1)), -1);
    EXPECT_FALSE(FindDurchmusterungOfStar(tycho2::TychoId(1, 1, 1)).has_value());  // no BD files

    const StarProperty p = cat.Property(tycho2::TychoId(1, 1, 1));
    EXPECT_EQ(p.greek, 0);
    EXPECT_EQ(p.flamsteed, 9);
    const StarProperty none = cat.Property(tycho2::TychoId(1, 4, 1));
    EXPECT_EQ(none.greek, 255);
    EXPECT_EQ(none.superscript, 0);
    EXPECT_EQ(none.flamsteed, 0);
    EXPECT_EQ(none.constellation, 255);
    EXPECT_EQ(cat.ProperName(tycho2::TychoId(1, 4, 1)), "");
}

TEST_F(SmallCatalogue, DesignationsFollowTheirOrderAndResolveBack)
{
    CTycho2Catalogue cat;
    ASSERT_TRUE(cat.OpenCatalogue());
    auto designation = [&](int t1, int t2, ProperNames names, ConstellationText style) {
        const std::int64_t rec = cat.FindByTychoId(t1, t2, 1);
        StarRecord s;
        EXPECT_TRUE(cat.ReadRecord(rec, s));
        return StarDesignation(cat, s, static_cast<std::uint32_t>(rec), names, style);
    };
    EXPECT_EQ(designation(1, 1, ProperNames::Show, ConstellationText::Abbreviation), "Sirius");
    EXPECT_EQ(designation(1, 1, ProperNames::Hide, ConstellationText::Abbreviation), "alpha CMa");
    EXPECT_EQ(designation(1, 1, ProperNames::Hide, ConstellationText::Genitive), "alpha Canis Majoris");
    EXPECT_EQ(designation(1, 2, ProperNames::Hide, ConstellationText::Abbreviation), "3 Lyr");
    EXPECT_EQ(designation(1, 3, ProperNames::Show, ConstellationText::Abbreviation), "β Per");
    EXPECT_EQ(designation(2, 1, ProperNames::Show, ConstellationText::Abbreviation), "Σ 1110");
    EXPECT_EQ(designation(1, 4, ProperNames::Show, ConstellationText::Abbreviation), "TYC 1-4-1");

    const auto v = FindVariableStar(tycho2::TychoId(1, 3, 1));
    ASSERT_TRUE(v.has_value());
    EXPECT_EQ(v->maxMagCenti, 212);
    EXPECT_EQ(v->minMagCenti.value_or(0), 339);
    EXPECT_EQ(v->type, "EA/SD");

    const std::int64_t sirius = cat.FindByTychoId(1, 1, 1);
    for (const char* text : {"Sirius", "sirius", " SIRIUS ", "TYC 1-1-1", "HIP 32349", "HD 48915", "SAO 151881",
                             "HR 2491", "alpha CMa", "Alpha Canis Majoris", "9 CMa"}) {
        SCOPED_TRACE(text);
        const auto rec = ResolveStarDesignation(cat, text);
        ASSERT_TRUE(rec.has_value());
        EXPECT_EQ(*rec, sirius);
    }
    EXPECT_EQ(ResolveStarDesignation(cat, "3 Lyr"), cat.FindByTychoId(1, 2, 1));
    for (const char* text : {"", "Canopus", "HIP 1", "beta CMa", "alpha Xyz", "TYC 1-1", "TYC a-b-c", "HD"})
        EXPECT_FALSE(ResolveStarDesignation(cat, text).has_value()) << text;
}

TEST_F(SmallCatalogue, ChartGatheringFullAndExtendedToAFainterLimit)
{
    CTycho2Catalogue cat;
    ASSERT_TRUE(cat.OpenCatalogue());
    CObserverDoc observer;
    observer.SetJulianDate(2451545.0);
    CCoordinates coords;
    coords.SetCentringMode(Centring::RaDec);
    coords.SetFieldDeg(2.0);
    coords.SetupSurface(800, 800);
    coords.SetCentreRaDec(observer, 1.5 * kRadPerDeg, 1.5 * kRadPerDeg);
    const CChartFrame frame(observer, coords);

    StarGatherRequest request;
    request.box = BoxFromRegion(coords.StoredCentreRegion());
    request.centreDecJ2000Rad = coords.CentreDecJ2000Rad();
    request.fieldRadiusRad = coords.VisibleRadiusRad();
    request.magLimitCenti = 600;
    CChartStars chart;
    EXPECT_EQ(GatherChartStars(cat, frame, request, chart), 2u);
    ASSERT_EQ(chart.stars.size(), 2u);
    EXPECT_EQ(chart.stars[0].TychoId(), tycho2::TychoId(1, 1, 1));
    EXPECT_STREQ(chart.stars[0].properName, "Sirius");
    EXPECT_EQ(chart.stars[0].distanceLy, 9);
    EXPECT_EQ(chart.stars[0].flags & entryflag::kProperName, entryflag::kProperName);
    EXPECT_EQ(chart.stars[0].flags & entryflag::kBayerFlamsteed, entryflag::kBayerFlamsteed);
    // The star at the centre lands at the screen centre, give or take its
    // annual aberration and nutation (together under 40″, 2 pixels at
    // this chart's 200 pixels per degree).
    EXPECT_NEAR(chart.stars[1].x, 400.0, 3.0);
    EXPECT_NEAR(chart.stars[1].y, 400.0, 3.0);

    // Extending to 9.50 adds only the fainter stars, reusing the regions.
    request.previousLimitCenti = 600;
    request.magLimitCenti = 950;
    request.mode = StarGather::ExtendFainter;
    request.regionSearch = RegionSearch::ReusePrevious;
    EXPECT_EQ(GatherChartStars(cat, frame, request, chart), 2u);
    std::set<std::int64_t> extended;
    for (const auto& e : chart.stars) extended.insert(e.TychoId());

    request.mode = StarGather::FullRedraw;
    request.regionSearch = RegionSearch::Search;
    CChartStars full;
    GatherChartStars(cat, frame, request, full);
    std::set<std::int64_t> fresh;
    for (const auto& e : full.stars) fresh.insert(e.TychoId());
    EXPECT_EQ(extended, fresh);
    EXPECT_EQ(fresh.size(), 4u);
}

TEST(StarBox, WideningForMotionAndTheWrap)
{
    // 100 years: w = 1000″ in declination; at δ = 60° the right-ascension
    // allowance is w · cos 60° = 500″.
    const SkyBox box{1.0, 1.1, 0.2, 0.3};
    const SkyBox w = WidenBoxForMotion(box, -100.0, 60.0 * kRadPerDeg);
    EXPECT_NEAR_UNIT(0.2 - 1000.0 * kRadPerArcsec, w.decMinRad, 1e-12, orv::test::kArcsecFromRad);
    EXPECT_NEAR_UNIT(0.3 + 1000.0 * kRadPerArcsec, w.decMaxRad, 1e-12, orv::test::kArcsecFromRad);
    EXPECT_NEAR_UNIT(1.0 - 500.0 * kRadPerArcsec, w.raMinRad, 1e-12, orv::test::kArcsecFromRad);
    EXPECT_NEAR_UNIT(1.1 + 500.0 * kRadPerArcsec, w.raMaxRad, 1e-12, orv::test::kArcsecFromRad);

    // Clamped at the pole; a box across 0h stays wrapped; one that grows to
    // the full circle becomes it.
    const SkyBox polar = WidenBoxForMotion({0.5, 0.6, 1.5, kHalfPi}, 1000.0, 0.0);
    EXPECT_EQ(polar.decMaxRad, kHalfPi);
    const SkyBox across = WidenBoxForMotion({kTwoPi - 0.01, 0.01, 0.0, 0.1}, 100.0, 0.0);
    EXPECT_GT(across.raMinRad, across.raMaxRad);
    const SkyBox full = WidenBoxForMotion({0.1, 0.1 - 1e-6, 0.0, 0.1}, 100.0, 0.0);
    EXPECT_EQ(full.raMinRad, 0.0);
    EXPECT_EQ(full.raMaxRad, kTwoPi);

    EXPECT_TRUE(BoxContains({kTwoPi - 0.01, 0.01, -0.1, 0.1}, 0.005, 0.0));
    EXPECT_TRUE(BoxContains({kTwoPi - 0.01, 0.01, -0.1, 0.1}, kTwoPi - 0.005, 0.0));
    EXPECT_FALSE(BoxContains({kTwoPi - 0.01, 0.01, -0.1, 0.1}, 0.02, 0.0));
    EXPECT_FALSE(BoxContains({kTwoPi - 0.01, 0.01, -0.1, 0.1}, 0.0, 0.11));
}
