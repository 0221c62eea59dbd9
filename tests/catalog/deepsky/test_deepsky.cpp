// The deep-sky catalogues on a miniature catalogue written by the data
// builder's own writers: the name index and its binary search, the region
// query, the filters of the "DeepSky" settings, find by every designation
// form, and the identify read-out. The objects' values are those of
// stellarium-data's deep-sky catalogue (nebulae/default/catalog.dat, format
// 3.16) for M 31, M 42, M 87, NGC 4486B, IC 434 and PN G054.1-12.1.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>

#include "catalog/deepsky/catalogprefix.h"
#include "catalog/deepsky/deepskyfilter.h"
#include "catalog/deepsky/deepskysource.h"
#include "match/deepskysplit.h"
#include "sources/sacreader.h"
#include "sources/stellariumdsoreader.h"
#include "support/compare.h"
#include "util/datafiles.h"
#include "util/dataproblems.h"
#include "writers/deepsky.h"

using namespace orv;
namespace db = orv::databuild;

namespace {

constexpr std::int64_t kMasPerDeg = 3'600'000;

db::BuildDeepSkyObject Make(double raDeg, double decDeg, double magV, db::StelDsoType type, double majorArcmin,
                            double minorArcmin, int pa)
{
    db::BuildDeepSkyObject o;
    o.raMas = std::llround(raDeg * kMasPerDeg);
    o.decMas = std::llround(decDeg * kMasPerDeg);
    o.magV = magV;
    o.type = type;
    o.majorArcmin = majorArcmin;
    o.minorArcmin = minorArcmin;
    o.paDeg = pa;
    return o;
}

std::vector<db::BuildDeepSkyObject> MiniatureSource()
{
    using T = db::StelDsoType;
    std::vector<db::BuildDeepSkyObject> v;
    auto m31 = Make(10.6847074, 41.2687475, 3.40, T::Galaxy, 189.1, 61.7, 45);
    m31.ngc = 224, m31.messier = 31, m31.pgc = 2557, m31.ugc = 454;
    m31.commonName = "Andromeda Galaxy; Andromeda Nebula";
    auto m42 = Make(83.8220964, -5.3910999, 4.0, T::HiiRegion, 90.0, 60.0, 90);
    m42.ngc = 1976, m42.messier = 42, m42.commonName = "Great Orion Nebula; Orion Nebula";
    auto ic434 = Make(85.1999983, -2.4999999, 7.3, T::HiiRegion, 60.0, 10.0, 0);
    ic434.ic = 434, ic434.commonName = "Horsehead Nebula";
    auto m87 = Make(187.7059337, 12.3911226, 8.6, T::Galaxy, 7.2, 6.8, 153);
    m87.ngc = 4486, m87.messier = 87, m87.pgc = 41361;
    auto m87b = Make(187.7405355, 12.2703606, 12.495, T::Galaxy, 0.737, 0.589, 5);
    m87b.ngc = 4486;
    auto png = Make(303.7868428, 12.7043414, 10.5, T::PlanetaryNebula, 0.327, 0.307, 160);
    png.ngc = 6891, png.png = "054.1-12.1";
    auto leda = Make(187.9, 12.5, 15.1, T::Galaxy, 0.5, 0.3, 10);
    leda.pgc = 41500;
    auto dark = Make(85.0, -2.0, 99.0, T::DarkNebula, 20.0, 10.0, -1);
    dark.ic = 9999;
    v = {m31, m42, ic434, m87, m87b, png, leda, dark};
    return v;
}

// Three lines of the Saguaro Astronomy Club database, version 8.1
// (SAC_DeepSky_Ver81_QCQ.TXT as the club publishes it), copied verbatim.
const char* const kSacLines[] = {
    R"("NGC 7831         ","IC 1530           ","GALXY","AND","00 07.3","+32 37","12.8","12.3","89 ","4 ","   1.5 m","   0.3 m","38 ","Sb         ","    ","     ","    ","eF;vS;mE;vF*v nr                                       ","                                                                                      ")",
    R"("NGC   44         ","                  ","2STAR","AND","00 13.2","+31 17","99.9","99.9","89 ","4 ","        ","        ","   ","           ","    ","     ","    ","eF;vS                                                  ","                                                                                      ")",
    R"("AND III          ","PGC 2121          ","GALXY","AND","00 35.4","+36 31","15.0","99.9","90 ","4 ","   2.0 m","   2.0 m","   ","dE2        ","    ","     ","    ","                                                       ","Andromeda Dwarf;Member Local Group                                                    ")",
};

class MiniatureCatalogue : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_folder = test::MakeTempDir();
        std::vector<db::OutputFile> files = db::WriteDeepSkyFiles(db::SplitDeepSkyCatalogues(MiniatureSource()));
        std::vector<db::BuildSacObject> sac;
        for (const char* line : kSacLines) {
            db::BuildSacObject o;
            std::string why;
            EXPECT_TRUE(db::ParseSacLine(line, o, why)) << why;
            sac.push_back(o);
        }
        // A line of stellarium's deep-sky name list, verbatim: it names the
        // SAC's "AND III" through the PGC number of its "other" field.
        db::DsoNameLine name;
        EXPECT_TRUE(db::ParseDsoNameLine(R"(PGC  2121            _("Andromeda III Dwarf Galaxy"))", name));
        for (db::OutputFile& f : db::WriteSacFiles(sac, {name})) files.push_back(std::move(f));
        for (const db::OutputFile& f : files) {
            const std::filesystem::path path = std::filesystem::path(s_folder) / f.path;
            std::filesystem::create_directories(path.parent_path());
            std::ofstream(path, std::ios::binary)
                .write(reinterpret_cast<const char*>(f.bytes.data()), static_cast<std::streamsize>(f.bytes.size()));
        }
    }
    void SetUp() override { ASSERT_TRUE(m_cats.OpenFolder(s_folder)); }

    std::string Designation(const std::pair<DeepSkyObject, DeepSkyTexts>& p) const { return DeepSkyTitle(p.second); }

    static std::string s_folder;
    CDeepSkyCatalogues m_cats;
};
std::string MiniatureCatalogue::s_folder;

}  // namespace

TEST(DeepSkyTypes, NgcTypeByteMatchesTheSystemCodes)
{
    // System code → NGC/IC type bytes it stands for; "Cluster of Galaxies"
    // and the codes above 9 match none.
    const std::vector<std::pair<ObjectType, std::vector<int>>> table = {
        {ObjectType::All, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},
        {ObjectType::Galaxy, {1}},
        {ObjectType::GalaxyCluster, {}},
        {ObjectType::OpenCluster, {3}},
        {ObjectType::GlobularCluster, {5}},
        {ObjectType::PlanetaryNebula, {4}},
        {ObjectType::BrightNebula, {7, 8}},
        {ObjectType::DarkNebula, {6}},
        {ObjectType::Star, {9}},
        {ObjectType::SupernovaRemnant, {10}},
        {ObjectType::Quasar, {}},
        {ObjectType::XRaySource, {}},
    };
    for (const auto& [code, bytes] : table)
        for (int b = 1; b <= 10; ++b)
            EXPECT_EQ(NgcTypeMatches(code, static_cast<std::uint8_t>(b)),
                      std::find(bytes.begin(), bytes.end(), b) != bytes.end())
                << ObjectTypeName(code) << " against type byte " << b;
    EXPECT_EQ(NgcTypeWords(2), "Part of galaxy");
    EXPECT_EQ(NgcTypeWords(8), "Reflection nebula");
}

TEST(DeepSkyNames, TypedDesignationsAreWrittenAsTheIndexHoldsThem)
{
    EXPECT_EQ(NormaliseDeepSkyName("M42"), "M 42");
    EXPECT_EQ(NormaliseDeepSkyName(" m 042 "), "M 42");
    EXPECT_EQ(NormaliseDeepSkyName("ngc7000"), "NGC 7000");
    EXPECT_EQ(NormaliseDeepSkyName("IC 434"), "IC 434");
    EXPECT_EQ(NormaliseDeepSkyName("PGC 2557"), "LEDA 2557");
    EXPECT_EQ(NormaliseDeepSkyName("leda2557"), "LEDA 2557");
    EXPECT_EQ(NormaliseDeepSkyName("C 14"), "C 14");
    EXPECT_EQ(NormaliseDeepSkyName("Orion"), "");
    EXPECT_EQ(NormaliseDeepSkyName("NGC"), "");
    EXPECT_EQ(NormaliseDeepSkyName("M31a"), "");
}

TEST(DeepSkyNames, NameFilterPatterns)
{
    EXPECT_TRUE(NameFilterMatches("", "NGC 7000"));
    EXPECT_TRUE(NameFilterMatches("NGC 7*", "NGC 7000"));
    EXPECT_TRUE(NameFilterMatches("ngc7*", "NGC 7000"));
    EXPECT_FALSE(NameFilterMatches("NGC 7*", "NGC 6543"));
    EXPECT_TRUE(NameFilterMatches("NGC 7*; M*", "M 42"));
    EXPECT_TRUE(NameFilterMatches("IC 43?", "IC 434"));
    EXPECT_FALSE(NameFilterMatches("IC 43?", "IC 4340"));
    EXPECT_TRUE(NameFilterMatches(" ; ", "anything"));
}

TEST(DeepSkyNames, OneCatalogueFilterKeepsThatCataloguesObjects)
{
    // The filter the "only one catalogue" choice writes: the prefix and any
    // number. M 42 is NGC 1976; C 14 is filed as NGC 869.
    CDeepSkySettings settings;
    DeepSkyLevelState level;
    DeepSkyTexts m42, c14, ngc7000;
    m42.designation = "NGC 1976";
    m42.messier = "M 42";
    c14.designation = "NGC 869";
    c14.caldwell = "C 14";
    ngc7000.designation = "NGC 7000";
    settings.nameFilter = WithCatalogPrefix("M", "*");
    EXPECT_TRUE(CDeepSkyFilter(settings, level).NamePasses(m42));
    EXPECT_FALSE(CDeepSkyFilter(settings, level).NamePasses(ngc7000));
    settings.nameFilter = WithCatalogPrefix("C", "*");
    EXPECT_TRUE(CDeepSkyFilter(settings, level).NamePasses(c14));
    EXPECT_FALSE(CDeepSkyFilter(settings, level).NamePasses(m42));
    EXPECT_EQ(WithCatalogPrefix("PN G", "*"), "PN G*");
}

TEST(DeepSkyReader, NameLinesOfStellariumData)
{
    // Lines copied from stellarium-data's nebulae/default/names.dat.
    db::DsoNameLine n;
    ASSERT_TRUE(db::ParseDsoNameLine("NGC  1976            _(\"Orion Nebula\") # WK, SIMBAD, DSW, TSS, BCH, DWH, WSO, PSA, BH, CC, B500, AFL, RNGCIC", n));
    EXPECT_EQ(n.prefix, "NGC");
    EXPECT_EQ(n.id, "1976");
    EXPECT_EQ(n.name, "Orion Nebula");
    ASSERT_TRUE(db::ParseDsoNameLine("C    99              _(\"Coalsack Nebula\") # WK, PSA", n));
    EXPECT_EQ(n.prefix, "C");
    EXPECT_EQ(n.id, "99");
    ASSERT_TRUE(db::ParseDsoNameLine("PGC  120             _(\"Taffy Galaxies\")", n));
    EXPECT_EQ(n.name, "Taffy Galaxies");
    EXPECT_FALSE(db::ParseDsoNameLine("# Sources: ", n));
}

TEST(DeepSkyReader, RefusesAnotherFormatVersionAndTruncatedRecords)
{
    // A header of version "3.15" in the data-stream encoding.
    std::vector<std::uint8_t> stream = {0, 0, 0, 8, 0, '3', 0, '.', 0, '1', 0, '5', 0, 0, 0, 0};
    std::vector<db::BuildDeepSkyObject> out;
    std::string error;
    EXPECT_FALSE(db::ParseStellariumDsoStream(stream, out, error));
    EXPECT_NE(error.find("3.15"), std::string::npos) << error;
    stream = {0, 0, 0, 8, 0, '3', 0, '.', 0, '1', 0, '6', 0, 0, 0, 0, 0, 0, 0, 1, 0x40, 0x09};
    EXPECT_FALSE(db::ParseStellariumDsoStream(stream, out, error));
    EXPECT_NE(error.find("byte 16"), std::string::npos) << error;
}

TEST_F(MiniatureCatalogue, EachCatalogueHoldsItsObjects)
{
    // NGC/IC: M 31, M 42, IC 434, M 87, NGC 4486B, NGC 6891, IC 9999;
    // LEDA: the three PGC galaxies; Strasbourg: one nebula.
    EXPECT_EQ(m_cats.Count(DeepSkyCatalogueId::NgcIc), 7u);
    EXPECT_EQ(m_cats.Count(DeepSkyCatalogueId::Leda), 3u);
    EXPECT_EQ(m_cats.Count(DeepSkyCatalogueId::Strasbourg), 1u);
    EXPECT_EQ(m_cats.Count(DeepSkyCatalogueId::Sac), 3u);
}

TEST(DeepSkyReader, SacDatabaseLines)
{
    db::BuildSacObject o;
    std::string why;
    ASSERT_TRUE(db::ParseSacLine(kSacLines[0], o, why)) << why;
    EXPECT_EQ(o.designation, "NGC 7831");
    EXPECT_EQ(o.other, "IC 1530");
    EXPECT_EQ(o.type, "GALXY");
    // 00h07.3m +32°37′ (J2000), to the database's 0.1 minute of time and
    // arc minute.
    EXPECT_EQ(o.raMas, std::llround(7.3 / 60.0 * 15.0 * kMasPerDeg));
    EXPECT_EQ(o.decMas, std::llround((32.0 + 37.0 / 60.0) * kMasPerDeg));
    EXPECT_DOUBLE_EQ(o.magnitude, 12.8);
    EXPECT_DOUBLE_EQ(o.majorArcmin, 1.5);
    EXPECT_DOUBLE_EQ(o.minorArcmin, 0.3);
    EXPECT_EQ(o.paDeg, 38);
    EXPECT_EQ(db::SacSystemType(o.type), static_cast<int>(ObjectType::Galaxy));
    // A double star without magnitude, size or position angle.
    ASSERT_TRUE(db::ParseSacLine(kSacLines[1], o, why)) << why;
    EXPECT_FALSE(o.HasMagnitude());
    EXPECT_EQ(o.majorArcmin, 0.0);
    EXPECT_EQ(o.paDeg, -1);
    EXPECT_EQ(db::SacSystemType(o.type), static_cast<int>(ObjectType::Star));
    EXPECT_FALSE(db::ParseSacLine(R"("NGC 1","x")", o, why));
}

// The catalogues handed over as bytes in memory (as the fuzz targets hand
// them) read exactly as from the folder: the same objects, texts and name
// look-ups; and the same refusal of a record file cut short, named by its
// memory name.
TEST_F(MiniatureCatalogue, FilesInMemoryReadAsTheFolder)
{
    std::vector<std::pair<std::string, std::vector<std::uint8_t>>> held;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(s_folder)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream in(entry.path(), std::ios::binary);
        held.emplace_back(std::filesystem::relative(entry.path(), s_folder).generic_string(),
                          std::vector<std::uint8_t>(std::istreambuf_iterator<char>(in), {}));
    }
    CMemoryDataFiles files;
    for (const auto& [name, bytes] : held) files.Add(name, bytes);
    CDeepSkyCatalogues memory;
    ASSERT_TRUE(memory.OpenFiles(files));
    for (const DeepSkyCatalogueId c : {DeepSkyCatalogueId::NgcIc, DeepSkyCatalogueId::Sac, DeepSkyCatalogueId::Leda}) {
        ASSERT_EQ(memory.IsOpen(c), m_cats.IsOpen(c));
        ASSERT_EQ(memory.Count(c), m_cats.Count(c));
        std::vector<DeepSkyObject> fromFolder, fromMemory;
        m_cats.Gather(c, 0.0, 0.0, kPi, fromFolder);
        memory.Gather(c, 0.0, 0.0, kPi, fromMemory);
        ASSERT_EQ(fromMemory.size(), fromFolder.size());
        for (std::size_t i = 0; i < fromFolder.size(); ++i) {
            EXPECT_EQ(fromMemory[i].record, fromFolder[i].record);
            DeepSkyTexts a, b;
            ASSERT_TRUE(m_cats.Texts(c, fromFolder[i].record, a));
            ASSERT_TRUE(memory.Texts(c, fromMemory[i].record, b));
            EXPECT_EQ(DeepSkyTitle(b), DeepSkyTitle(a));
            EXPECT_EQ(b.names, a.names);
        }
    }
    EXPECT_EQ(memory.FindName(DeepSkyCatalogueId::NgcIc, "M 42"), m_cats.FindName(DeepSkyCatalogueId::NgcIc, "M 42"));
    EXPECT_EQ(memory.FindCommonName("andromeda").size(), m_cats.FindCommonName("andromeda").size());

    // The NGC/IC records cut 100 bytes short, as an interrupted copy would.
    for (auto& [name, bytes] : held)
        if (name.ends_with("ngcic.dat")) files.Add(name, std::span<const std::uint8_t>(bytes).first(bytes.size() - 100));
    TakeDataFileProblems();
    CDeepSkyCatalogues cut;
    ASSERT_TRUE(cut.OpenFiles(files));
    EXPECT_FALSE(cut.IsOpen(DeepSkyCatalogueId::NgcIc));
    EXPECT_TRUE(cut.IsOpen(DeepSkyCatalogueId::Leda));
    const auto problems = TakeDataFileProblems();
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0].path, "memory:deepsky/ngcic/ngcic.dat");
}

TEST_F(MiniatureCatalogue, FindsEveryDesignationForm)
{
    const CDeepSkyCatalogues& c = m_cats;
    for (const char* text : {"M 42", "M42", "m 42", "NGC 1976", "Orion Nebula", "great orion nebula"}) {
        const auto found = ResolveDeepSkyName(c, text);
        ASSERT_EQ(found.size(), 1u) << text;
        EXPECT_EQ(Designation(found[0]), "M 42 (NGC 1976)") << text;
    }
    auto found = ResolveDeepSkyName(c, "IC 434");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].second.CommonName(), "Horsehead Nebula");
    found = ResolveDeepSkyName(c, "Andromeda Galaxy");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].second.messier, "M 31");
    found = ResolveDeepSkyName(c, "LEDA 2557");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].first.catalogue, DeepSkyCatalogueId::Leda);
    EXPECT_TRUE(found[0].first.inNgcIc);
    EXPECT_EQ(ResolveDeepSkyName(c, "UGC 454").size(), 1u);
    found = ResolveDeepSkyName(c, "PN G054.1-12.1");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].second.designation, "PN G054.1-12.1");
    EXPECT_EQ(found[0].second.otherIds, "NGC 6891");
    // NGC 4486 is filed twice (M 87 and its faint companion NGC 4486B): the
    // number names the Messier object.
    found = ResolveDeepSkyName(c, "NGC 4486");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].second.messier, "M 87");
    // The SAC database's own designations.
    found = ResolveDeepSkyName(c, "AND III");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].first.catalogue, DeepSkyCatalogueId::Sac);
    EXPECT_EQ(found[0].second.otherIds, "PGC 2121");
    EXPECT_NEAR(found[0].first.majorArcmin, 2.0, 0.05);
    // ... and the popular names the name list gives them under another
    // designation.
    found = ResolveDeepSkyName(c, "andromeda iii dwarf galaxy");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].second.designation, "AND III");
    EXPECT_EQ(found[0].second.names, "Andromeda III Dwarf Galaxy");
    EXPECT_TRUE(ResolveDeepSkyName(c, "NGC 7000").empty());
    EXPECT_TRUE(ResolveDeepSkyName(c, "Orion").empty());
}

TEST_F(MiniatureCatalogue, PositionsSurviveTheFilesToAMilliarcsecond)
{
    const auto m31 = ResolveDeepSkyName(m_cats, "M 31");
    ASSERT_EQ(m31.size(), 1u);
    EXPECT_ANGLE_NEAR(10.6847074 * kRadPerDeg, m31[0].first.raJ2000Rad, kRadPerMas, test::kMasFromRad);
    EXPECT_ANGLE_NEAR(41.2687475 * kRadPerDeg, m31[0].first.decJ2000Rad, kRadPerMas, test::kMasFromRad);
    EXPECT_EQ(m31[0].first.magCenti, 340);
    EXPECT_NEAR(m31[0].first.majorArcmin, 189.1, 0.05);
    EXPECT_NEAR(m31[0].first.minorArcmin, 61.7, 0.05);
    EXPECT_EQ(m31[0].first.paDeg, 45);
    // Planetary nebulae keep their sizes in 0.1″: 0.327′ is 19.6″.
    const auto pn = ResolveDeepSkyName(m_cats, "PN G054.1-12.1");
    ASSERT_EQ(pn.size(), 1u);
    EXPECT_NEAR(pn[0].first.majorArcmin * 60.0, 19.6, 0.05);
}

TEST_F(MiniatureCatalogue, RegionQueryFindsTheObjectsOfACircleAndThoseReachingIntoIt)
{
    std::vector<DeepSkyObject> out;
    // 1° around M 87: M 87, NGC 4486B (NGC/IC).
    m_cats.Gather(DeepSkyCatalogueId::NgcIc, 187.7 * kRadPerDeg, 12.4 * kRadPerDeg, 1.0 * kRadPerDeg, out);
    EXPECT_EQ(out.size(), 2u);
    out.clear();
    // A circle of 0.5° centred 1.5° north of M 31: its edge, 1° from the
    // galaxy's centre, lies within the 94.5′ semi-major axis; 2.2° north it
    // does not.
    m_cats.Gather(DeepSkyCatalogueId::NgcIc, 10.6847074 * kRadPerDeg, 42.7687475 * kRadPerDeg, 0.5 * kRadPerDeg,
                  out);
    ASSERT_EQ(out.size(), 1u);
    out.clear();
    m_cats.Gather(DeepSkyCatalogueId::NgcIc, 10.6847074 * kRadPerDeg, 43.5 * kRadPerDeg, 0.5 * kRadPerDeg, out);
    EXPECT_TRUE(out.empty());
    // Across 0h: a circle about RA 359.9° finds M 31, 8.1° away on the
    // other side of it.
    m_cats.Gather(DeepSkyCatalogueId::NgcIc, 359.9 * kRadPerDeg, 41.0 * kRadPerDeg, 9.0 * kRadPerDeg, out);
    EXPECT_EQ(out.size(), 1u);
}

TEST_F(MiniatureCatalogue, FiltersOfTheDeepSkySettings)
{
    CDeepSkySettings s;
    DeepSkyLevelState level;
    level.ngcic = level.leda = level.strasbourg = true;
    auto object = [&](const char* name) { return ResolveDeepSkyName(m_cats, name).at(0).first; };
    const DeepSkyObject m31 = object("M 31"), m42 = object("M 42"), pn = object("PN G054.1-12.1");
    {
        s.objectTypes = 1;  // bit 0: all types
        const CDeepSkyFilter f(s, level);
        EXPECT_TRUE(f.Passes(m31) && f.Passes(m42) && f.Passes(pn));
    }
    {
        s.objectTypes = 1 << static_cast<int>(ObjectType::BrightNebula);
        const CDeepSkyFilter f(s, level);
        EXPECT_FALSE(f.Passes(m31));
        EXPECT_TRUE(f.Passes(m42));  // an emission nebula (type byte 7)
        EXPECT_FALSE(f.Passes(pn));
    }
    s.objectTypes = 1;
    {
        // Magnitude filter with the galaxies made 1 mag fainter: M 31 at 4.4
        // fails a limit of 4.2; M 42 at 4.0 passes.
        s.dsMagnitude = 1;
        s.magLimit = 420;
        s.magAdjust[static_cast<std::size_t>(ObjectType::Galaxy)] = 100;
        const CDeepSkyFilter f(s, level);
        EXPECT_EQ(f.AdjustedMagnitude(m31), 440);
        EXPECT_FALSE(f.Passes(m31));
        EXPECT_TRUE(f.Passes(m42));
        s = CDeepSkySettings{};
    }
    {
        // Size filter in arc seconds: the 19.6″ nebula fails 600″; M 42 passes.
        s.dsSize = 1;
        s.dsSizeLimit = 600;
        const CDeepSkyFilter f(s, level);
        EXPECT_FALSE(f.Passes(pn));
        EXPECT_TRUE(f.Passes(m42));
        s = CDeepSkySettings{};
    }
    {
        // The level's own magnitude limit (0.01 mag), and the level pairs.
        level.magLimit = 350;
        const CDeepSkyFilter f(s, level);
        EXPECT_TRUE(f.Passes(m31));
        EXPECT_FALSE(f.Passes(m42));
        level.magLimit = 0;
        level.strasbourg = false;
        const CDeepSkyFilter g(s, level);
        EXPECT_FALSE(g.Passes(pn));
    }
    {
        // Dark nebulae have levels of their own.
        const auto dark = ResolveDeepSkyName(m_cats, "IC 9999").at(0).first;
        level.dark = false;
        EXPECT_FALSE(CDeepSkyFilter(s, level).Passes(dark));
        level.dark = true;
        EXPECT_TRUE(CDeepSkyFilter(s, level).Passes(dark));
    }
}

TEST_F(MiniatureCatalogue, IdentifyReadout)
{
    const auto m42 = ResolveDeepSkyName(m_cats, "M 42").at(0);
    const std::string text = DeepSkyReadout(m42.first, m42.second);
    EXPECT_NE(text.find("\nType of object: Emission nebula"), std::string::npos) << text;
    EXPECT_NE(text.find("\nMag: 4.0"), std::string::npos) << text;
    EXPECT_NE(text.find("\nSize: 90.0'x60.0'"), std::string::npos) << text;
    EXPECT_NE(text.find("\nPA: 90"), std::string::npos) << text;
    EXPECT_NE(text.find("RA: 05h35m17.3s"), std::string::npos) << text;
    const auto pn = ResolveDeepSkyName(m_cats, "PN G054.1-12.1").at(0);
    EXPECT_EQ(DeepSkySizeText(pn.first), "Size: 19.6\"x18.4\"");
    // A dark nebula without magnitude or position angle has neither line.
    const auto dark = ResolveDeepSkyName(m_cats, "IC 9999").at(0);
    const std::string d = DeepSkyReadout(dark.first, dark.second);
    EXPECT_EQ(d.find("Mag:"), std::string::npos) << d;
    EXPECT_EQ(d.find("PA:"), std::string::npos) << d;
}

TEST_F(MiniatureCatalogue, ACatalogueCutShortIsLeftOutAndReported)
{
    // A record file cut in the middle of its last record (an interrupted
    // copy): that catalogue is refused, named in the report, and the
    // others still open.
    const std::string cut = test::MakeTempDir();
    for (const auto& entry : std::filesystem::recursive_directory_iterator(s_folder)) {
        const auto rel = std::filesystem::relative(entry.path(), s_folder);
        if (entry.is_directory()) {
            std::filesystem::create_directories(std::filesystem::path(cut) / rel);
            continue;
        }
        std::filesystem::copy_file(entry.path(), std::filesystem::path(cut) / rel);
    }
    const auto ngc = std::filesystem::path(cut) / "deepsky/ngcic/ngcic.dat";
    std::filesystem::resize_file(ngc, std::filesystem::file_size(ngc) - 100);
    TakeDataFileProblems();
    CDeepSkyCatalogues c;
    ASSERT_TRUE(c.OpenFolder(cut));
    EXPECT_FALSE(c.IsOpen(DeepSkyCatalogueId::NgcIc));
    EXPECT_EQ(c.Count(DeepSkyCatalogueId::NgcIc), 0u);
    DeepSkyObject o;
    EXPECT_FALSE(c.Object(DeepSkyCatalogueId::NgcIc, 0, o));
    std::vector<DeepSkyObject> all;
    c.Gather(DeepSkyCatalogueId::NgcIc, 0.0, 0.0, kPi, all);
    EXPECT_TRUE(all.empty());
    EXPECT_TRUE(c.IsOpen(DeepSkyCatalogueId::Leda));
    const auto problems = TakeDataFileProblems();
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_TRUE(problems[0].path.ends_with("ngcic.dat")) << problems[0].path;
    EXPECT_NE(problems[0].reason.find("226-byte records"), std::string::npos) << problems[0].reason;
}

TEST(DeepSkyNames, CatalogPrefixesForABareNumber)
{
    const auto parsed = ParseCatalogPrefixes("# comment\nNGC|New General Catalogue\n\nPN G|Strasbourg-ESO\r\n  IC  \n|no prefix\n");
    ASSERT_EQ(parsed.size(), 3u);
    EXPECT_EQ(parsed[0].prefix, "NGC");
    EXPECT_EQ(parsed[0].description, "New General Catalogue");
    EXPECT_EQ(parsed[1].prefix, "PN G");
    EXPECT_EQ(parsed[1].description, "Strasbourg-ESO");
    EXPECT_EQ(parsed[2].prefix, "IC");
    // What the builder writes reads back the same.
    const auto defaults = DefaultCatalogPrefixes();
    const auto back = ParseCatalogPrefixes(CatalogPrefixText(defaults));
    ASSERT_EQ(back.size(), defaults.size());
    for (std::size_t i = 0; i < back.size(); ++i) EXPECT_EQ(back[i].prefix, defaults[i].prefix);
    EXPECT_TRUE(IsBareCatalogueNumber(" 7000 "));
    EXPECT_FALSE(IsBareCatalogueNumber("M42"));
    EXPECT_FALSE(IsBareCatalogueNumber(""));
    EXPECT_EQ(WithCatalogPrefix("NGC", "7000"), "NGC 7000");
    EXPECT_EQ(WithCatalogPrefix("PN G", "054.1-12.1"), "PN G054.1-12.1");
}
