// Data files cut short by an interrupted copy, or of another kind under the
// expected name: the compact ephemeris, the eclipse tables, the comet and
// asteroid catalogues and the overlay files. Each is refused (whole, or the
// lines that do not read) and named with what is wrong in the data-problem
// list that the map window and orvane-cli show; what is left is usable.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "eclipse/eclipsetables.h"
#include "overlay/overlayfile.h"
#include "solarsystem/ephem96.h"
#include "solarsystem/minorbodies.h"
#include "solarsystem/minorelements.h"
#include "support/compare.h"
#include "util/binaryio.h"
#include "util/dataproblems.h"

using namespace orv;
namespace fs = std::filesystem;

namespace {

void Write(const fs::path& p, const std::string& bytes) { std::ofstream(p, std::ios::binary) << bytes; }
void Write(const fs::path& p, const std::vector<std::uint8_t>& bytes)
{
    std::ofstream(p, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()),
                                             static_cast<std::streamsize>(bytes.size()));
}

// The single problem reported since the last call, for `path`.
std::string OnlyProblemFor(const fs::path& path)
{
    const auto problems = TakeDataFileProblems();
    if (problems.size() != 1) return "(" + std::to_string(problems.size()) + " problems)";
    EXPECT_EQ(problems[0].path, path.string());
    return problems[0].reason;
}

// A compact ephemeris of one interval per body with no periodic terms: the
// layout of docs/planet-files.md at its smallest.
std::vector<std::uint8_t> TinyEphemeris()
{
    CByteWriter w;
    for (int body = 1; body <= 9; ++body) {
        w.F64(kEphem96FirstJd);
        w.F64(kEphem96EndJd - kEphem96FirstJd);
        w.I16(1);
        for (int order = 0; order < 3; ++order) w.I16(0);
        for (int c = 0; c < 3; ++c)
            for (int k = 0; k < 4; ++k) w.F64(k == 0 ? 1e10 * body : 0.0);
    }
    return w.Data();
}

const char* const kForeign = "<html><body>404 Not Found</body></html>\n";

}  // namespace

TEST(DamagedData, CompactEphemeris)
{
    const fs::path dir = test::MakeTempDir();
    const fs::path path = dir / "Ephem96.dat";
    TakeDataFileProblems();
    std::vector<std::uint8_t> bytes = TinyEphemeris();
    Write(path, bytes);
    CEphem96 e;
    ASSERT_EQ(e.OpenFile(path.string()), Ephem96Status::Ok);
    EXPECT_TRUE(TakeDataFileProblems().empty()) << "a sound file is no problem";
    double xyz[3];
    e.Evaluate(5, 2451545.0, xyz);
    EXPECT_NEAR(xyz[0], 5.0, 1e-12);

    // Cut by one byte, by half, to nothing past the first header; and a web
    // page saved under the name.
    for (const std::size_t keep : {bytes.size() - 1, bytes.size() / 2, std::size_t{10}}) {
        Write(path, std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(keep)));
        EXPECT_EQ(e.OpenFile(path.string()), Ephem96Status::Damaged) << keep;
        EXPECT_FALSE(e.IsOpen());
        EXPECT_NE(OnlyProblemFor(path).find(std::to_string(keep) + " bytes"), std::string::npos) << keep;
        EXPECT_FALSE(e.Covers(5, 2451545.0)) << "a refused file serves no date";
    }
    Write(path, std::string(kForeign));
    EXPECT_EQ(e.OpenFile(path.string()), Ephem96Status::Damaged);
    EXPECT_NE(OnlyProblemFor(path).find("another layout"), std::string::npos);
    // Too long is as wrong as too short.
    bytes.push_back(0);
    Write(path, bytes);
    EXPECT_EQ(e.OpenFile(path.string()), Ephem96Status::Damaged);
    TakeDataFileProblems();
}

TEST(DamagedData, EclipseTables)
{
    const fs::path path = fs::path(test::MakeTempDir()) / "solar5.dat";
    TakeDataFileProblems();
    // 2024 April 8 total (greatest 18:17 TD) and October 2 annular (18:45).
    std::vector<std::uint8_t> bytes(16);
    EncodeEclipseRecord(EclipseRecord{2024, 4, 8, 18, 17, 'T', 157}, bytes.data());
    EncodeEclipseRecord(EclipseRecord{2024, 10, 2, 18, 45, 'A', 93}, bytes.data() + 8);
    Write(path, bytes);
    const auto sound = ReadEclipseFile(path.string());
    ASSERT_TRUE(sound);
    EXPECT_EQ(sound->size(), 2u);
    EXPECT_TRUE(TakeDataFileProblems().empty());

    Write(path, std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + 12));
    EXPECT_FALSE(ReadEclipseFile(path.string()));
    EXPECT_NE(OnlyProblemFor(path).find("12 bytes"), std::string::npos);

    Write(path, std::vector<std::uint8_t>{});
    EXPECT_FALSE(ReadEclipseFile(path.string()));
    EXPECT_NE(OnlyProblemFor(path).find("empty"), std::string::npos);

    Write(path, std::string(kForeign).substr(0, 40));
    EXPECT_FALSE(ReadEclipseFile(path.string()));
    EXPECT_NE(OnlyProblemFor(path).find("record 1"), std::string::npos);

    // Records out of date order: two tables mixed up.
    std::vector<std::uint8_t> swapped(bytes.begin() + 8, bytes.end());
    swapped.insert(swapped.end(), bytes.begin(), bytes.begin() + 8);
    Write(path, swapped);
    EXPECT_FALSE(ReadEclipseFile(path.string()));
    EXPECT_NE(OnlyProblemFor(path).find("record 2"), std::string::npos);

    EXPECT_FALSE(ReadEclipseFile((path.parent_path() / "absent.dat").string()));
    EXPECT_TRUE(TakeDataFileProblems().empty()) << "an absent table is not a damaged one";
}

TEST(DamagedData, CometAndAsteroidCatalogues)
{
    const fs::path dir = test::MakeTempDir();
    const fs::path asteroids = dir / "asteroid.cat", comets = dir / "comet.cat";
    TakeDataFileProblems();
    AsteroidElements ceres;
    ceres.number = 1;
    ceres.name = "Ceres";
    ceres.aAU = 2.7691651;
    ceres.e = 0.0760091;
    ceres.absoluteH = 3.34;
    AsteroidElements pallas = ceres;
    pallas.number = 2;
    pallas.name = "Pallas";
    const std::string ceresLine = FormatAsteroidLine(ceres), pallasLine = FormatAsteroidLine(pallas);
    CometElements halley;
    halley.name = "1P/Halley";
    halley.qAU = 0.586;
    halley.e = 0.967;
    const std::string halleyLine = FormatCometLine(halley);

    // The asteroid file cut in the middle of its second line: Ceres is kept
    // and drawn, the cut line left out and reported.
    Write(asteroids, ceresLine + pallasLine.substr(0, pallasLine.size() / 2));
    Write(comets, halleyLine);
    CMinorCatalogs catalogs;
    catalogs.SetPaths(asteroids.string(), comets.string());
    catalogs.Reload();
    ASSERT_EQ(catalogs.Asteroids().size(), 1u);
    EXPECT_EQ(catalogs.Asteroids()[0].name, "Ceres");
    EXPECT_EQ(catalogs.Comets().size(), 1u);
    std::string reason = OnlyProblemFor(asteroids);
    EXPECT_NE(reason.find("1 of its lines is not an asteroid element line"), std::string::npos) << reason;
    EXPECT_NE(reason.find("line 2"), std::string::npos) << reason;

    // A web page saved as the comet catalogue: nothing of it is drawn.
    Write(asteroids, ceresLine);
    Write(comets, std::string(kForeign) + "<p>" + std::string(200, 'x') + "</p>\n");
    catalogs.Reload();
    EXPECT_EQ(catalogs.Asteroids().size(), 1u);
    EXPECT_TRUE(catalogs.Comets().empty());
    reason = OnlyProblemFor(comets);
    EXPECT_NE(reason.find("none of its lines is a comet element line"), std::string::npos) << reason;
}

TEST(DamagedData, OverlayFilesAndList)
{
    const fs::path dir = test::MakeTempDir();
    const fs::path overlay = dir / "messier.ovl";
    TakeDataFileProblems();
    COverlayStore store;
    Write(overlay, "epoch J2000.0\nmove 5.5, 10\ndraw 5.6, 12\n");
    EXPECT_GT(store.Get(overlay.string())->commands.size(), 0u);
    EXPECT_TRUE(TakeDataFileProblems().empty());

    // Cut inside its last line: the rest is drawn, the cut line named.
    Write(overlay, "epoch J2000.0\nmove 5.5, 10\ndraw 5.6, 12\ndraw 5");
    const auto cut = store.Get(overlay.string());
    EXPECT_GT(cut->commands.size(), 0u);
    std::string reason = OnlyProblemFor(overlay);
    EXPECT_NE(reason.find("1 line was skipped"), std::string::npos) << reason;
    EXPECT_NE(reason.find("line 4"), std::string::npos) << reason;

    // A picture saved under the name: nothing drawn.
    std::string png = "\x89PNG\r\n\x1a\n";
    png += std::string(64, '\x01') + "\n" + std::string(64, '\xfe') + "\n";
    Write(overlay, png);
    EXPECT_TRUE(store.Get(overlay.string())->commands.empty());
    reason = OnlyProblemFor(overlay);
    EXPECT_NE(reason.find("none of its lines is an overlay command"), std::string::npos) << reason;

    // The overlay list cut in its middle: refused whole, the list kept.
    const fs::path list = dir / "overlay.dat";
    Write(list, "1\t0\t0\tmessier.ovl\n1\t3");
    std::vector<OverlayListEntry> entries(1);
    EXPECT_FALSE(ReadOverlayList(list.string(), entries).ok);
    EXPECT_EQ(entries.size(), 1u);
    reason = OnlyProblemFor(list);
    EXPECT_NE(reason.find("line 2"), std::string::npos) << reason;
}
