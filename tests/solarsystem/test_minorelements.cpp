// The element catalogues and the Minor Planet Center's formats, read from the
// real excerpts in tests/data/minor (see its README): values as the MPC
// printed them, packed designations and epochs as the MPC's format
// descriptions define them.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "observer/observer.h"
#include "solarsystem/minorbodies.h"
#include "solarsystem/minorelements.h"
#include "support/compare.h"

using namespace orv;

namespace {

std::string Excerpt(const char* name) { return orv::test::ReadFileBytes(orv::test::TestDataDir() + "/minor/" + name); }

AsteroidFilter Everything()
{
    AsteroidFilter f;
    f.mode = 1;
    f.numberLimit = 1 << 30;
    return f;
}

}  // namespace

TEST(MinorMpcFormats, PackedEpochsAndDesignations)
{
    const auto k107n = UnpackEpoch("K107N");
    ASSERT_TRUE(k107n);
    EXPECT_EQ(k107n->year, 2010);
    EXPECT_EQ(k107n->month, 7);
    EXPECT_EQ(k107n->day, 23);
    const auto k205v = UnpackEpoch("K205V");
    ASSERT_TRUE(k205v);
    EXPECT_EQ(k205v->year, 2020);
    EXPECT_EQ(k205v->month, 5);
    EXPECT_EQ(k205v->day, 31);
    EXPECT_EQ(UnpackEpoch("J9611")->year, 1996);
    EXPECT_FALSE(UnpackEpoch("K20"));
    EXPECT_FALSE(UnpackEpoch("K20D0"));  // month 13
    EXPECT_FALSE(UnpackEpoch("Z2011"));

    EXPECT_EQ(UnpackNumber("00001"), 1);
    EXPECT_EQ(UnpackNumber("99999"), 99999);
    EXPECT_EQ(UnpackNumber("A0345"), 100345);
    EXPECT_EQ(UnpackNumber("a0017"), 360017);
    EXPECT_EQ(UnpackNumber("~0000"), 620000);
    EXPECT_EQ(UnpackNumber("~000z"), 620061);
    EXPECT_FALSE(UnpackNumber("K14A00A"));

    EXPECT_EQ(UnpackProvisional("J95X00A"), "1995 XA");
    EXPECT_EQ(UnpackProvisional("K14A00A"), "2014 AA");
    EXPECT_EQ(UnpackProvisional("K07Tf8A"), "2007 TA418");
    EXPECT_EQ(UnpackProvisional("J95O010"), "1995 O1");    // comet C/1995 O1
    EXPECT_EQ(UnpackProvisional("K20F030"), "2020 F3");    // comet C/2020 F3
    EXPECT_EQ(UnpackProvisional("J94P01b"), "1994 P1-B");  // a fragment
    EXPECT_FALSE(UnpackProvisional("K14A0"));
}

TEST(MinorMpcFormats, MpcorbExcerpt)
{
    const std::string text = Excerpt("MPCORB.excerpt.DAT");
    ASSERT_FALSE(text.empty()) << "tests/data/minor/MPCORB.excerpt.DAT is missing";
    EXPECT_EQ(DetectElementFile(text), ElementFileKind::Mpcorb);
    std::vector<AsteroidElements> list;
    const CatalogReadResult r = ImportMpcorb(text, Everything(), list);
    EXPECT_EQ(r.accepted, 4);
    EXPECT_TRUE(r.refused.empty());
    ASSERT_EQ(list.size(), 4u);
    const AsteroidElements& ceres = list[0];
    EXPECT_EQ(ceres.number, 1);
    EXPECT_EQ(ceres.name, "Ceres");
    EXPECT_EQ(AsteroidDesignation(ceres), "(1) Ceres");
    EXPECT_DOUBLE_EQ(ceres.absoluteH, 3.4);
    EXPECT_DOUBLE_EQ(ceres.slopeG, 0.15);
    EXPECT_EQ(ceres.epochYear, 2020);
    EXPECT_EQ(ceres.epochMonth, 5);
    EXPECT_DOUBLE_EQ(ceres.epochDay, 31.0);
    EXPECT_DOUBLE_EQ(ceres.epochJdTT, 2459000.5);  // 2020 May 31.0 TT
    EXPECT_DOUBLE_EQ(ceres.meanAnomalyDeg, 162.68631);
    EXPECT_DOUBLE_EQ(ceres.argPerihelionDeg, 73.73161);
    EXPECT_DOUBLE_EQ(ceres.nodeDeg, 80.28698);
    EXPECT_DOUBLE_EQ(ceres.inclinationDeg, 10.58862);
    EXPECT_DOUBLE_EQ(ceres.e, 0.0775571);
    EXPECT_DOUBLE_EQ(ceres.aAU, 2.7676569);
    EXPECT_EQ(list[3].name, "Vesta");
    EXPECT_EQ(list[3].number, 4);
}

TEST(MinorMpcFormats, MpcorbBrokenLinesAreNamed)
{
    const std::string text = Excerpt("MPCORB.excerpt.DAT");
    ASSERT_FALSE(text.empty());
    std::string lines[4];
    std::size_t pos = 0;
    for (std::string& l : lines) {
        const std::size_t end = text.find('\n', pos);
        l = text.substr(pos, end - pos);
        pos = end + 1;
    }
    // Header and rule as in the full MPC file; a short line; a line whose
    // eccentricity is letters; blank H and G.
    std::string noHG = lines[1];
    noHG.replace(8, 11, std::string(11, ' '));
    std::string badE = lines[2];
    badE.replace(70, 9, "0.0xx5693");
    const std::string file = "MINOR PLANET CENTER ORBIT DATABASE (MPCORB)\n\nDes'n     H     G   Epoch\n"
                             "-------------------------------------------------------------------\n" +
                             lines[0] + "\n" + lines[0].substr(0, 90) + "\n" + badE + "\n\n" + noHG + "\n";
    std::vector<AsteroidElements> list;
    const CatalogReadResult r = ImportMpcorb(file, Everything(), list);
    EXPECT_EQ(r.accepted, 2);
    ASSERT_EQ(r.refused.size(), 2u);
    EXPECT_EQ(r.refused[0].lineNumber, 6);
    EXPECT_NE(r.refused[0].reason.find("shorter"), std::string::npos) << r.refused[0].reason;
    EXPECT_EQ(r.refused[1].lineNumber, 7);
    EXPECT_NE(r.refused[1].reason.find("eccentricity"), std::string::npos) << r.refused[1].reason;
    ASSERT_EQ(list.size(), 2u);
    EXPECT_DOUBLE_EQ(list[1].absoluteH, 49.9);
    EXPECT_DOUBLE_EQ(list[1].slopeG, 0.15);
}

TEST(MinorMpcFormats, ImportFilters)
{
    const std::string text = Excerpt("MPCORB.excerpt.DAT");
    ASSERT_FALSE(text.empty());
    // Mode 1 keeps the entry that reaches the number limit and stops after it.
    AsteroidFilter upTo2;
    upTo2.mode = 1;
    upTo2.numberLimit = 2;
    std::vector<AsteroidElements> list;
    ImportMpcorb(text, upTo2, list);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list.back().number, 2);
    // Mode 2: H within the limits (Ceres 3.4, Pallas 4.2, Juno 5.2, Vesta 3.0).
    AsteroidFilter bright;
    bright.mode = 2;
    bright.hMin = 3.0f;
    bright.hMax = 4.2f;
    list.clear();
    const CatalogReadResult r = ImportMpcorb(text, bright, list);
    EXPECT_EQ(list.size(), 3u);
    EXPECT_EQ(r.filteredOut, 1);
    // Mode 0: only entries flagged 'A' (an import has none).
    AsteroidFilter flagged;
    flagged.mode = 0;
    list.clear();
    ImportMpcorb(text, flagged, list);
    EXPECT_TRUE(list.empty());
}

TEST(MinorMpcFormats, CometElsExcerpt)
{
    const std::string text = Excerpt("CometEls.txt");
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(DetectElementFile(text), ElementFileKind::MpcComets);
    CometFilter all;
    all.mode = -1;
    std::vector<CometElements> list;
    const CatalogReadResult r = ImportMpcComets(text, all, list);
    EXPECT_EQ(r.accepted, 3);
    ASSERT_EQ(list.size(), 3u);
    const CometElements& hb = list[0];
    EXPECT_EQ(hb.name, "C/1995 O1 (Hale-Bopp)");
    EXPECT_EQ(hb.perihelionYear, 1997);
    EXPECT_EQ(hb.perihelionMonth, 3);
    EXPECT_DOUBLE_EQ(hb.perihelionDay, 29.6884);
    EXPECT_DOUBLE_EQ(hb.perihelionJdTT, CObserverDoc::JulianDate(1997, 3, 29.6884));
    EXPECT_DOUBLE_EQ(hb.qAU, 0.911359);
    EXPECT_DOUBLE_EQ(hb.e, 0.994936);
    EXPECT_DOUBLE_EQ(hb.argPerihelionDeg, 130.5984);
    EXPECT_DOUBLE_EQ(hb.nodeDeg, 283.3688);
    EXPECT_DOUBLE_EQ(hb.inclinationDeg, 88.9864);
    EXPECT_DOUBLE_EQ(hb.absoluteG, -2.0);
    EXPECT_DOUBLE_EQ(hb.slopeK, 4.0);
    EXPECT_EQ(list[1].name, "C/2020 F3 (NEOWISE)");
    EXPECT_EQ(list[2].name, "1P/Halley");
    EXPECT_DOUBLE_EQ(list[2].e, 0.966180);
}

TEST(MinorMpcFormats, PastedLinesOfEveryFormat)
{
    const std::string mpcorb = Excerpt("MPCORB.excerpt.DAT");
    const std::string comets = Excerpt("CometEls.txt");
    ASSERT_FALSE(mpcorb.empty());
    ASSERT_FALSE(comets.empty());
    const auto a = ParsePastedLine(mpcorb.substr(0, mpcorb.find('\n')));
    ASSERT_TRUE(a);
    ASSERT_TRUE(std::holds_alternative<AsteroidElements>(*a));
    EXPECT_EQ(std::get<AsteroidElements>(*a).name, "Ceres");
    const std::string neowise = comets.substr(comets.find('\n') + 1, comets.find('\n', comets.find('\n') + 1) - comets.find('\n') - 1);
    const auto c = ParsePastedLine(neowise + "\r\n");
    ASSERT_TRUE(c);
    ASSERT_TRUE(std::holds_alternative<CometElements>(*c));
    EXPECT_EQ(std::get<CometElements>(*c).name, "C/2020 F3 (NEOWISE)");
    // Our own catalogue lines.
    const auto own = ParsePastedLine(FormatCometLine(std::get<CometElements>(*c)));
    ASSERT_TRUE(own);
    EXPECT_TRUE(std::holds_alternative<CometElements>(*own));
    const auto ownA = ParsePastedLine(FormatAsteroidLine(std::get<AsteroidElements>(*a)));
    ASSERT_TRUE(ownA);
    EXPECT_TRUE(std::holds_alternative<AsteroidElements>(*ownA));
    std::string why;
    EXPECT_FALSE(ParsePastedLine("Ceres is the largest asteroid", &why));
    EXPECT_FALSE(why.empty());
}

TEST(MinorCatalogFormats, AsteroidLineLayoutAndRoundTrip)
{
    AsteroidElements a;
    a.flag = 'A';
    a.number = 4;
    a.name = "Vesta";
    a.epochYear = 2020;
    a.epochMonth = 5;
    a.epochDay = 31.0;
    a.meanAnomalyDeg = 204.32771;
    a.aAU = 2.3620141;
    a.e = 0.0885158;
    a.argPerihelionDeg = 150.87484;
    a.nodeDeg = 103.80908;
    a.inclinationDeg = 7.1419;
    a.absoluteH = 3.0;
    a.slopeG = 0.15;
    const std::string line = FormatAsteroidLine(a);
    // Flag in column 0, number right-aligned in 1–6, name from column 8,
    // the elements from column 40.
    EXPECT_EQ(line.substr(0, 8), "A     4 ");
    EXPECT_EQ(line.substr(8, 5), "Vesta");
    EXPECT_EQ(line[39], ' ');
    EXPECT_EQ(line.substr(40, 11), "2020 05 31.");
    EXPECT_EQ(line.back(), '\n');
    AsteroidElements b;
    ASSERT_TRUE(ParseAsteroidLine(line.substr(0, line.size() - 1), b));
    EXPECT_EQ(b.flag, 'A');
    EXPECT_EQ(b.number, 4);
    EXPECT_EQ(b.name, "Vesta");
    EXPECT_DOUBLE_EQ(b.epochJdTT, 2459000.5);
    EXPECT_NEAR(b.meanAnomalyDeg, a.meanAnomalyDeg, 5e-7);
    EXPECT_NEAR(b.aAU, a.aAU, 5e-8);
    EXPECT_NEAR(b.e, a.e, 5e-9);
    EXPECT_NEAR(b.inclinationDeg, a.inclinationDeg, 5e-7);
    EXPECT_DOUBLE_EQ(b.absoluteH, 3.0);
    EXPECT_DOUBLE_EQ(b.slopeG, 0.15);
    std::string why;
    EXPECT_FALSE(ParseAsteroidLine(";" + line.substr(1), b, &why));
    EXPECT_TRUE(why.empty());  // a comment is no error
    EXPECT_FALSE(ParseAsteroidLine(line.substr(0, 60), b, &why));
    EXPECT_FALSE(why.empty());
}

TEST(MinorCatalogFormats, CometLineLayoutAndRoundTrip)
{
    CometElements c;
    c.name = "C/2020 F3 (NEOWISE)";
    c.flag = 'A';
    c.perihelionYear = 2020;
    c.perihelionMonth = 7;
    c.perihelionDay = 3.6813;
    c.qAU = 0.294707;
    c.e = 0.999191;
    c.argPerihelionDeg = 37.2744;
    c.nodeDeg = 61.0112;
    c.inclinationDeg = 128.9373;
    c.absoluteG = 7.5;
    c.slopeK = 5.2;
    const std::string line = FormatCometLine(c);
    EXPECT_EQ(line.substr(0, 19), "C/2020 F3 (NEOWISE)");
    EXPECT_EQ(line.substr(19, 26), std::string(26, ' '));
    EXPECT_EQ(line.substr(45, 16), "A 2020 07  3.681");
    CometElements d;
    ASSERT_TRUE(ParseCometLine(line, d));
    EXPECT_EQ(d.name, c.name);
    EXPECT_EQ(d.flag, 'A');
    EXPECT_NEAR(d.perihelionDay, 3.6813, 5e-5);
    EXPECT_DOUBLE_EQ(d.qAU, 0.294707);
    EXPECT_DOUBLE_EQ(d.e, 0.999191);
    EXPECT_DOUBLE_EQ(d.absoluteG, 7.5);
    EXPECT_DOUBLE_EQ(d.slopeK, 5.2);
    // Lines are read up to 256 characters: what follows is ignored.
    EXPECT_TRUE(ParseCometLine(line.substr(0, line.size() - 1) + std::string(300, 'x'), d));
}

TEST(MinorCatalogFormats, CatalogReadFiltersAndStops)
{
    CometElements a, b, c;
    a.name = "C/2020 F3 (NEOWISE)";
    a.perihelionJdTT = CObserverDoc::JulianDate(2020, 7, 3.6813);
    a.perihelionYear = 2020, a.perihelionMonth = 7, a.perihelionDay = 3.6813;
    b = a;
    b.name = "1P/Halley";
    b.perihelionYear = 1986, b.perihelionMonth = 2, b.perihelionDay = 9.45;
    b.flag = 'A';
    c = a;
    c.name = "12P/Pons-Brooks";
    const std::string text = "; comets\n" + FormatCometLine(a) + FormatCometLine(b) + "X" + std::string(60, ' ') + "\n" +
                             FormatCometLine(c);
    CometFilter near2020;
    near2020.mode = 1;
    near2020.days = 400.0;
    near2020.jdTT = CObserverDoc::JulianDate(2020, 1, 1.0);
    std::vector<CometElements> list;
    CatalogReadResult r = ParseCometCatalog(text, near2020, list);
    // Halley is filtered out; the one-character name "X" ends the list.
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].name, "C/2020 F3 (NEOWISE)");
    EXPECT_EQ(r.filteredOut, 1);
    CometFilter flagged;
    flagged.mode = 0;
    list.clear();
    ParseCometCatalog(text, flagged, list);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].name, "1P/Halley");
    CometFilter none;
    none.mode = 2;
    list.clear();
    ParseCometCatalog(text, none, list);
    EXPECT_TRUE(list.empty());
}

TEST(MinorCatalogFormats, AtomicWriteAndFind)
{
    const std::string dir = orv::test::MakeTempDir();
    CMinorCatalogs cats;
    cats.SetPaths(dir + "/asteroid.cat", dir + "/comet.cat");
    cats.Reload();
    EXPECT_TRUE(cats.Asteroids().empty());  // missing files load nothing
    std::vector<AsteroidElements> imported;
    ImportMpcorb(Excerpt("MPCORB.excerpt.DAT"), Everything(), imported);
    MergeAsteroids(cats.Asteroids(), imported);
    CometFilter all;
    all.mode = -1;
    std::vector<CometElements> comets;
    ImportMpcComets(Excerpt("CometEls.txt"), all, comets);
    CometElements pons = comets[2];
    pons.name = "12P/Pons-Brooks";
    comets.push_back(pons);
    MergeComets(cats.Comets(), comets);
    cats.MarkChanged(MinorKind::Asteroid);
    EXPECT_TRUE(cats.Changed(MinorKind::Asteroid));
    EXPECT_FALSE(cats.Save(MinorKind::Asteroid));
    EXPECT_FALSE(cats.Save(MinorKind::Comet));
    EXPECT_FALSE(cats.Changed(MinorKind::Asteroid));

    CMinorCatalogs again;
    again.SetPaths(dir + "/asteroid.cat", dir + "/comet.cat");
    again.Reload();
    ASSERT_EQ(again.Asteroids().size(), 4u);
    ASSERT_EQ(again.Comets().size(), 4u);
    EXPECT_EQ(again.FindAsteroids("Ceres"), std::vector<std::size_t>{0});
    EXPECT_EQ(again.FindAsteroids("(1) Ceres"), std::vector<std::size_t>{0});
    EXPECT_EQ(again.FindAsteroids("1"), std::vector<std::size_t>{0});
    EXPECT_EQ(again.FindAsteroids("vesta"), std::vector<std::size_t>{3});
    EXPECT_TRUE(again.FindAsteroids("(2) Ceres").empty());
    // Numbers longer than any catalogue number find nothing (they once
    // overflowed the conversion and ended the program from the find box).
    EXPECT_TRUE(again.FindAsteroids("(12345678901234) Ceres").empty());
    EXPECT_TRUE(again.FindAsteroids("100000000001").empty());
    EXPECT_EQ(again.FindComets("C/2020 F3"), std::vector<std::size_t>{1});
    EXPECT_EQ(again.FindComets("c/2020 f3 (neowise)"), std::vector<std::size_t>{1});
    EXPECT_EQ(again.FindComets("NEOWISE"), std::vector<std::size_t>{1});
    EXPECT_EQ(again.FindComets("12P"), std::vector<std::size_t>{3});
    EXPECT_EQ(again.FindComets("1P"), std::vector<std::size_t>{2});
    EXPECT_EQ(again.FindComets("Halley"), std::vector<std::size_t>{2});

    // A re-import replaces entries by number and keeps the display flag.
    again.Asteroids()[0].flag = 'A';
    again.Asteroids()[0].absoluteH = 9.9;
    EXPECT_EQ(MergeAsteroids(again.Asteroids(), imported), 4);
    EXPECT_EQ(again.Asteroids().size(), 4u);
    EXPECT_EQ(again.Asteroids()[0].flag, 'A');
    EXPECT_DOUBLE_EQ(again.Asteroids()[0].absoluteH, 3.4);
}
