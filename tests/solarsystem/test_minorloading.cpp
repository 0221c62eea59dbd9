// The load filters and the catalogue file: what a catalogue loads is the
// filter's choice, but the file is held whole, so that editing and saving a
// catalogue loaded through a filter keeps every entry the filter left out.
// Built on the real MPC excerpts of tests/data/minor.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "solarsystem/minorbodies.h"
#include "support/compare.h"

using namespace orv;

namespace {

std::string Excerpt(const char* name) { return orv::test::ReadFileBytes(orv::test::TestDataDir() + "/minor/" + name); }

// (1) Ceres, (2) Pallas, (3) Juno, (4) Vesta with Ceres and Vesta marked
// for display, and the three comets with NEOWISE marked, written as
// catalogues in a fresh folder.
struct CatalogueFiles {
    std::string dir = orv::test::MakeTempDir();
    std::string asteroids = dir + "/asteroid.cat";
    std::string comets = dir + "/comet.cat";
    std::vector<AsteroidElements> originalAsteroids;
    std::vector<CometElements> originalComets;

    CatalogueFiles()
    {
        ImportMpcorb(Excerpt("MPCORB.excerpt.DAT"), AllAsteroids(), originalAsteroids);
        ImportMpcComets(Excerpt("CometEls.txt"), AllComets(), originalComets);
        if (originalAsteroids.size() != 4 || originalComets.size() != 3) return;
        originalAsteroids[0].flag = originalAsteroids[3].flag = 'A';
        originalComets[1].flag = 'A';
        WriteAsteroidCatalog(asteroids, originalAsteroids);
        WriteCometCatalog(comets, originalComets);
    }
};

void WriteFileBytes(const std::string& path, const std::string& text)
{
    std::ofstream out(path, std::ios::binary);
    out << text;
}

std::vector<std::uint32_t> Ids(std::initializer_list<std::uint32_t> ids) { return ids; }

}  // namespace

TEST(MinorLoading, FiltersChooseTheLoadedSetFromTheWholeFile)
{
    CatalogueFiles files;
    ASSERT_EQ(4u, files.originalAsteroids.size());
    ASSERT_EQ(3u, files.originalComets.size());
    CMinorCatalogs c;
    c.SetPaths(files.asteroids, files.comets);
    AsteroidFilter upToTwo;  // mode 1: stops after (2) Pallas
    upToTwo.numberLimit = 2;
    CometFilter marked;
    marked.mode = 0;
    c.SetLoadFilters(upToTwo, marked);
    c.Reload();
    EXPECT_EQ(4u, c.Asteroids().size()) << "the file is held whole";
    EXPECT_EQ(Ids({0, 1}), c.LoadedAsteroids());
    EXPECT_EQ(Ids({1}), c.LoadedComets());
    EXPECT_TRUE(c.IsLoaded(MinorKind::Asteroid, 1));
    EXPECT_FALSE(c.IsLoaded(MinorKind::Asteroid, 3));

    // Find knows the loaded entries; the command line the whole file.
    EXPECT_TRUE(c.FindAsteroids("Vesta", CMinorCatalogs::Scope::Loaded).empty());
    EXPECT_EQ(std::vector<std::size_t>{3}, c.FindAsteroids("Vesta", CMinorCatalogs::Scope::WholeFile));
    EXPECT_EQ(std::vector<std::size_t>{1}, c.FindComets("NEOWISE", CMinorCatalogs::Scope::Loaded));
    EXPECT_TRUE(c.FindComets("Halley", CMinorCatalogs::Scope::Loaded).empty());

    // Another filter chooses again and tells the layers (a new generation).
    const std::uint64_t before = c.Generation();
    AsteroidFilter marked2;
    marked2.mode = 0;
    AsteroidFilter bright;  // mode 2: H within [3.0, 3.5]: Ceres (3.4) and Vesta (3.0)
    bright.mode = 2;
    bright.hMin = 3.0f;
    bright.hMax = 3.5f;
    c.SetLoadFilters(bright, marked);
    EXPECT_EQ(Ids({0, 3}), c.LoadedAsteroids());
    EXPECT_GT(c.Generation(), before);
    // The same set by another filter is no change for the layers.
    const std::uint64_t same = c.Generation();
    c.SetLoadFilters(marked2, marked);
    EXPECT_EQ(Ids({0, 3}), c.LoadedAsteroids());
    EXPECT_EQ(same, c.Generation());

    // Comets by perihelion date: NEOWISE (2020 July 3.7) within 30 days of
    // 2020 July 20, the others not; mode 2 loads nothing.
    CometFilter nearPerihelion;
    nearPerihelion.days = 30.0;
    nearPerihelion.jdTT = 2459050.5;
    c.SetLoadFilters(marked2, nearPerihelion);
    EXPECT_EQ(Ids({1}), c.LoadedComets());
    CometFilter none;
    none.mode = 2;
    c.SetLoadFilters(marked2, none);
    EXPECT_TRUE(c.LoadedComets().empty());
    EXPECT_EQ(3u, c.Comets().size());
}

// Load through a filter, edit (an entry the filter left out, one it loaded,
// a deletion, an addition), save: every entry the filter left out is still
// in the file, byte for byte where it was not edited, and every edit is.
TEST(MinorLoading, SavingAFilteredCatalogueKeepsEveryEntryAndEveryEdit)
{
    CatalogueFiles files;
    ASSERT_EQ(4u, files.originalAsteroids.size());
    const std::string before = orv::test::ReadFileBytes(files.asteroids);
    {
        CMinorCatalogs c;
        c.SetPaths(files.asteroids, files.comets);
        AsteroidFilter marked;
        marked.mode = 0;
        CometFilter none;
        none.mode = 2;
        c.SetLoadFilters(marked, none);
        c.Reload();
        ASSERT_EQ(Ids({0, 3}), c.LoadedAsteroids());
        ASSERT_TRUE(c.LoadedComets().empty());

        c.Asteroids()[2].absoluteH = 5.5;  // (3) Juno, not loaded
        c.Asteroids()[3].slopeG = 0.32;    // (4) Vesta, loaded
        c.Asteroids().erase(c.Asteroids().begin());  // (1) Ceres, loaded
        AsteroidElements added;
        added.name = "New Asteroid";
        added.flag = 'A';
        added.aAU = 2.5;
        c.Asteroids().push_back(added);
        c.MarkChanged(MinorKind::Asteroid);
        EXPECT_EQ(Ids({2, 3}), c.LoadedAsteroids()) << "Vesta and the new entry, both marked";
        ASSERT_FALSE(c.Save(MinorKind::Asteroid));
        // The comets were loaded through a filter that loads none: saving
        // them writes the whole file back unchanged.
        c.MarkChanged(MinorKind::Comet);
        ASSERT_FALSE(c.Save(MinorKind::Comet));
    }
    std::vector<AsteroidElements> saved;
    ReadAsteroidCatalog(files.asteroids, AllAsteroids(), saved);
    ASSERT_EQ(4u, saved.size());
    EXPECT_EQ("Pallas", saved[0].name);
    EXPECT_EQ(FormatAsteroidLine(files.originalAsteroids[1]), FormatAsteroidLine(saved[0]));
    EXPECT_EQ("Juno", saved[1].name);
    EXPECT_DOUBLE_EQ(5.5, saved[1].absoluteH);
    EXPECT_EQ("Vesta", saved[2].name);
    EXPECT_DOUBLE_EQ(0.32, saved[2].slopeG);
    EXPECT_EQ('A', saved[2].flag);
    EXPECT_EQ("New Asteroid", saved[3].name);
    // Pallas's line is the line it was before.
    EXPECT_NE(std::string::npos, before.find(FormatAsteroidLine(saved[0])));

    std::vector<CometElements> comets;
    ReadCometCatalog(files.comets, AllComets(), comets);
    ASSERT_EQ(3u, comets.size());
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(FormatCometLine(files.originalComets[i]), FormatCometLine(comets[i])) << i;
}

// Importing goes through the load filter too: mode 1 stops reading after
// the entry whose number reaches the limit, mode 2 keeps an H range.
TEST(MinorLoading, ImportAppliesTheLoadFilter)
{
    AsteroidFilter upToThree;
    upToThree.numberLimit = 3;
    std::vector<AsteroidElements> imported;
    const CatalogReadResult r = ImportMpcorb(Excerpt("MPCORB.excerpt.DAT"), upToThree, imported);
    ASSERT_EQ(3u, imported.size());
    EXPECT_EQ(3, imported.back().number);
    EXPECT_EQ(3, r.accepted);
    EXPECT_EQ(3, r.stoppedAtLine) << "Juno's line reaches the limit; Vesta's is not read";
    AsteroidFilter faint;  // mode 2: H 4.0–6.0 keeps Pallas (4.2) and Juno (5.2)
    faint.mode = 2;
    faint.hMin = 4.0f;
    faint.hMax = 6.0f;
    imported.clear();
    const CatalogReadResult h = ImportMpcorb(Excerpt("MPCORB.excerpt.DAT"), faint, imported);
    EXPECT_EQ(2, h.accepted);
    EXPECT_EQ(2, h.filteredOut);
    EXPECT_EQ(0, h.stoppedAtLine);
}

// Lines that are not entries are not lost either: a comment, a damaged line
// (kept for the user to mend, and reported again on the next load) and the
// comets' end-of-list line with what follows it come back where they were.
TEST(MinorLoading, SavingKeepsCommentsDamagedLinesAndTheEndOfTheList)
{
    CatalogueFiles files;
    ASSERT_EQ(4u, files.originalAsteroids.size());
    const std::string comment = "; asteroids of the first night";
    const std::string damaged = "A     9 Metis                           2020 05 31.000 oops";
    {
        std::string text = comment + "\n";
        for (std::size_t i = 0; i < 4; ++i) {
            if (i == 2) text += damaged + "\n";
            text += FormatAsteroidLine(files.originalAsteroids[i]);
        }
        WriteFileBytes(files.asteroids, text);
        std::string comets = FormatCometLine(files.originalComets[0]) + FormatCometLine(files.originalComets[1]) +
                             "x\n" + FormatCometLine(files.originalComets[2]);
        WriteFileBytes(files.comets, comets);
    }
    CMinorCatalogs c;
    c.SetPaths(files.asteroids, files.comets);
    c.Reload();
    ASSERT_EQ(4u, c.Asteroids().size());
    ASSERT_EQ(2u, c.Comets().size()) << "reading stops at the one-character name";
    ASSERT_EQ(2u, c.OtherLines(MinorKind::Asteroid).lines.size());
    c.EraseEntry(MinorKind::Asteroid, 0);  // Ceres: the comment stays first
    CometElements added = files.originalComets[0];
    added.name = "C/2099 A1 (Test)";
    c.Comets().push_back(added);
    c.MarkChanged(MinorKind::Comet);
    ASSERT_FALSE(c.Save(MinorKind::Asteroid));
    ASSERT_FALSE(c.Save(MinorKind::Comet));

    const std::string asteroids = orv::test::ReadFileBytes(files.asteroids);
    const std::string expected = comment + "\n" + FormatAsteroidLine(files.originalAsteroids[1]) + damaged + "\n" +
                                 FormatAsteroidLine(files.originalAsteroids[2]) +
                                 FormatAsteroidLine(files.originalAsteroids[3]);
    EXPECT_EQ(expected, asteroids);
    // The new comet goes before the end of the list, where it is read.
    const std::string comets = orv::test::ReadFileBytes(files.comets);
    EXPECT_EQ(FormatCometLine(files.originalComets[0]) + FormatCometLine(files.originalComets[1]) +
                  FormatCometLine(added) + "x\n" + FormatCometLine(files.originalComets[2]),
              comets);
}
