// Every save of the program killed part-way (SIGKILL in a child process at
// each checkpoint of the atomic writer, see support/killedsave.h): horizon
// files, comet and asteroid catalogues, reports and ".tbl" tables, the
// overlay list. After each kill the file on disk is the one the observer
// had, or the new one, whole. The settings file, written by QSettings, is
// killed at random instants of a run of saves instead (QSettings has no
// checkpoints of ours) and must read back whole every time.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "app/qtsettingsstore.h"
#include "map/horizonprofile.h"
#include "overlay/overlayfile.h"
#include "solarsystem/minorelements.h"
#include "support/compare.h"
#include "support/killedsave.h"
#include "util/resulttable.h"

using namespace orv;
namespace fs = std::filesystem;

namespace {

std::string Contents(const fs::path& p) { return test::killedsave::Contents(p); }

AsteroidElements Asteroid(int number, const std::string& name, double aAU)
{
    AsteroidElements a;
    a.number = number;
    a.name = name;
    a.epochYear = 2020;
    a.epochMonth = 5;
    a.epochDay = 31.0;
    a.epochJdTT = 2459000.5;
    a.aAU = aAU;
    a.e = 0.0785;
    a.inclinationDeg = 10.59;
    a.absoluteH = 3.34;
    return a;
}

}  // namespace

TEST(KilledSaves, HorizonFile)
{
    const fs::path path = fs::path(test::MakeTempDir()) / "garden.hzn";
    HorizonProfile before{}, after{};
    before.fill(5);
    for (std::size_t az = 0; az < after.size(); ++az) after[az] = static_cast<std::int8_t>(az % 30);
    ASSERT_TRUE(WriteHorizonFile(path.string(), before).ok);
    const int points = test::KillSaveAtEveryStep(path, Contents(path), [&] {
        return WriteHorizonFile(path.string(), after).ok;
    });
    EXPECT_GE(points, 5);
}

TEST(KilledSaves, AsteroidAndCometCatalogues)
{
    const fs::path dir = test::MakeTempDir();
    const fs::path asteroids = dir / "asteroid.txt";
    ASSERT_FALSE(WriteAsteroidCatalog(asteroids.string(), {Asteroid(1, "Ceres", 2.7691651)}));
    // The new catalogue is large enough to be written in several blocks.
    std::vector<AsteroidElements> many;
    for (int n = 1; n <= 2000; ++n) many.push_back(Asteroid(n, "Body " + std::to_string(n), 2.0 + n * 1e-4));
    EXPECT_GE(test::KillSaveAtEveryStep(asteroids, Contents(asteroids),
                                        [&] { return !WriteAsteroidCatalog(asteroids.string(), many, "edited"); }),
              6);

    const fs::path comets = dir / "comet.txt";
    std::vector<CometElements> list(1);
    list[0].name = "1P/Halley";
    list[0].qAU = 0.586;
    list[0].e = 0.967;
    ASSERT_FALSE(WriteCometCatalog(comets.string(), list));
    list.push_back(list[0]);
    list[1].name = "2P/Encke";
    EXPECT_GE(test::KillSaveAtEveryStep(comets, Contents(comets),
                                        [&] { return !WriteCometCatalog(comets.string(), list); }),
              5);
}

TEST(KilledSaves, ReportsAndDataTables)
{
    const fs::path dir = test::MakeTempDir();
    ResultTable table;
    table.title = "Passes";
    table.columns = {{"Date", "date", "", CellAlign::Left, "", "", {}},
                     {"Height (km)", "heightKm", "km", CellAlign::Right, "", "", {}}};
    for (int i = 0; i < 3000; ++i)
        table.rows.push_back({{ResultCell("2026-11-" + std::to_string(1 + i % 28)),
                               ResultCell::Number(400.0 + i, std::to_string(400 + i))}});
    ResultTable previous = table;
    previous.rows.resize(2);

    const fs::path report = dir / "passes.txt";
    ASSERT_FALSE(SaveReport(previous, report.string()));
    EXPECT_GE(test::KillSaveAtEveryStep(report, Contents(report), [&] { return !SaveReport(table, report.string()); }),
              5);
    const fs::path tbl = dir / "passes.tbl";
    ASSERT_FALSE(SaveDataTable(previous, tbl.string()));
    EXPECT_GE(test::KillSaveAtEveryStep(tbl, Contents(tbl), [&] { return !SaveDataTable(table, tbl.string()); }), 5);
}

TEST(KilledSaves, OverlayList)
{
    const fs::path dir = test::MakeTempDir();
    const fs::path list = dir / "overlay.dat";
    std::vector<OverlayListEntry> entries(1);
    entries[0].path = (dir / "galactic.ovl").string();
    entries[0].active = 1;
    ASSERT_TRUE(WriteOverlayList(list.string(), entries).ok);
    entries.push_back(entries[0]);
    entries[1].path = (dir / "messier.ovl").string();
    entries[1].minLevel = 3;
    entries[1].maxLevel = 7;
    EXPECT_GE(test::KillSaveAtEveryStep(list, Contents(list),
                                        [&] { return WriteOverlayList(list.string(), entries).ok; }),
              5);
}

// QSettings replaces the file through QSaveFile (a temporary file renamed
// over the old one), so a kill must never leave half a file. A child writes
// generation after generation of a block of settings, each synced; the
// parent kills it after a random delay, then reads the file: every key
// present, all of one generation.
TEST(KilledSaves, SettingsFile)
{
    const fs::path path = fs::path(test::MakeTempDir()) / "Orvane.ini";
    constexpr int kKeys = 200;
    auto write = [&](int generation) {
        CQtSettingsStore store(path.string());
        for (int k = 0; k < kKeys; ++k)
            store.SetString("Section" + std::to_string(k % 7), "Key" + std::to_string(k),
                            std::to_string(generation) + std::string(40, 'x'));
        store.Flush();
    };
    write(0);
    std::mt19937 random(17);
    std::uniform_int_distribution<int> delayUs(0, 20000);
    int killedDuringRun = 0;
    for (int round = 0; round < 40; ++round) {
        const pid_t child = ::fork();
        if (child == 0) {
            for (int generation = 1;; ++generation) write(generation);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(delayUs(random)));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        killedDuringRun += WIFSIGNALED(status) ? 1 : 0;

        const CQtSettingsStore store(path.string());
        const auto first = store.ReadString("Section0", "Key0");
        ASSERT_TRUE(first) << "round " << round << ": the settings file lost its first key";
        for (int k = 0; k < kKeys; ++k) {
            ASSERT_EQ(store.ReadString("Section" + std::to_string(k % 7), "Key" + std::to_string(k)), first)
                << "round " << round << ": key " << k << " is of another save or missing";
        }
    }
    EXPECT_EQ(killedDuringRun, 40);
    // No temporary file is left to grow the folder: QSaveFile's are removed
    // or renamed; a killed one may stay, but never in place of the file.
    EXPECT_TRUE(fs::exists(path));
}
