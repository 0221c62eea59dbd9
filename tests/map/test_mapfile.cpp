#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "map/mapfile.h"
#include "map/mapview.h"
#include "support/compare.h"
#include "support/killedsave.h"
#include "util/angles.h"
#include "util/binaryio.h"
#include "util/settingsstore.h"

using namespace orv;
namespace fs = std::filesystem;

namespace {

struct Map {
    CMemorySettingsStore store;
    CLevelTable levels;
    CMapDoc doc{store};
    CMapView view{doc, store, levels};
};

std::vector<std::uint8_t> ReadAll(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A map file of any version, written field by field from the published
// layout (docs/map-file-format.md) rather than by the program's writer.
std::vector<std::uint8_t> BuildFile(int V, const std::string& title)
{
    CByteWriter w;
    w.FixedText("Orvane", 7);
    w.U16(static_cast<std::uint16_t>(V));
    w.I16(2);
    w.FixedText(title, 80);
    w.I16(1);
    // View header.
    w.I16(0);  // PrintKey
    w.I16(0);  // PrintMono
    if (V > 2) {
        w.I16(0);  // PrintStatus
        w.I16(0);  // PrintTitle
        for (int i = 0; i < 4; ++i) w.I16(static_cast<std::int16_t>(100 + i));
        w.CountedString("Winter Milky Way");
        w.CountedString("");
        w.I16(2);  // TimeUnit: hours
        w.I16(5);  // TimeNumber
    }
    if (V > 9) w.I16(33);  // TimeUpdateInterval
    if (V > 4) {
        w.I32(0);   // VaryLighting
        w.I32(0);   // Moonlight
        w.I16(15);  // MinMoonAlt
        w.I16(40);  // MinMoonPhase
        w.I16(7);   // LowerTwilight
        w.I16(17);  // UpperTwilight
        w.I16(1);   // LightingLevelLow
        w.I16(3);   // LightingLevelHigh
    }
    if (V > 3) {  // ScaleLine
        w.I16(0);
        w.I16(4);
        w.I16(6);
    }
    if (V > 3 && V < 7) w.I16(-7);  // ignored
    // Document blocks.
    w.I16(0);
    w.F64(123.5);  // Great Red Spot longitude
    CObserverDoc obs;
    obs.SetSite("Mauna Kea", 19.82 * kRadPerDeg, -155.47 * kRadPerDeg, 4205.0);
    obs.SetTimeZone(-10.0, false);
    obs.SetJulianDate(2451545.25);
    obs.FileSave(w);
    w.I16(2);  // track: Interval, Points, MarkInterval
    w.I16(48);
    w.I16(6);
    for (int g = 0; g < 4; ++g) {  // grid data
        w.I16(0);
        w.I16(1);
        w.I16(static_cast<std::int16_t>(30 + g));
        w.I16(static_cast<std::int16_t>(300 + g));
    }
    w.I16(1);  // annotations: Visible, LevelLow, LevelHigh, count
    w.I16(2);
    w.I16(8);
    w.I16(1);
    w.I16(3);  // text annotation
    w.F64(1.0);
    w.F64(0.5);
    w.F64(0.0);
    w.F64(0.0);
    w.F64(0.25);
    w.CountedString("Comet here");
    w.CountedString("home.hzn");  // horizon data
    for (int a = 0; a < 360; ++a) w.I8(static_cast<std::int8_t>(a % 20 - 5));
    // Coordinates.
    w.F64(83.82 * kRadPerDeg);
    w.F64(-5.39 * kRadPerDeg);
    if (V >= 5) {
        w.F64(0.4);
        w.F64(2.0);
        w.I32(1);
        w.I16(0);
    }
    w.F64(4.0);  // field: level 5
    w.I16(-1);
    w.I16(1);
    // Star block: 42 fields; MagLimit first.
    w.I16(777);
    for (int i = 1; i < 42; ++i) w.I16(static_cast<std::int16_t>(i == 37 ? -600 : 1));
    for (int i = 0; i < 7; ++i) w.I16(static_cast<std::int16_t>(i == 5 ? 900 : 1));  // planets
    for (int i = 0; i < 7; ++i) w.I16(1);                                             // comets
    w.I16(0);
    w.F64(100.0);
    for (int i = 0; i < 7; ++i) w.I16(1);  // asteroids
    w.I16(2);
    w.I32(500);
    w.F64(3.0);
    w.F64(9.5);
    for (int i = 0; i < 17; ++i) w.I16(static_cast<std::int16_t>(i == 3 ? 1111 : 1));  // deep sky
    for (int i = 0; i < 13; ++i) w.I16(static_cast<std::int16_t>(i));
    w.CountedString("M*");
    for (int g = 0; g < 4; ++g) {  // grid displays
        w.I16(1);
        w.I16(static_cast<std::int16_t>(g));
        w.I16(9);
        w.I16(-1);
        w.I16(-1);
        if (g == 1) {
            w.I16(1);
            w.I16(0);
            w.I16(1);
        }
    }
    for (int i = 0; i < 14; ++i) w.I16(static_cast<std::int16_t>(i == 13 ? 123 : 1));  // constellations
    w.I16(1);  // track display
    w.I16(0);
    w.I16(5);
    w.I16(0);
    if (V < 4) {
        w.I16(2);
        for (int i = 0; i < 2 * 26; ++i) w.U8(0xAB);
    }
    if (V > 1 && V < 6) w.I16(99);
    w.I16(1);  // Shadow
    w.I16(2);
    w.I16(3);
    w.I16(0);  // Compass
    w.I16(5);
    w.I16(9);
    w.I16(1);  // horizon display
    w.I16(0);
    w.I16(1);
    return std::move(w.Data());
}

}  // namespace

TEST(MapFile, ReadsFilesOfEveryVersion)
{
    for (int V = 1; V <= 10; ++V) {
        SCOPED_TRACE("version " + std::to_string(V));
        Map m;
        const MapFileResult r = ReadMapBytes(BuildFile(V, "Orion"), m.view, KeepTitle::No);
        ASSERT_TRUE(r.Ok());
        EXPECT_FALSE(r.truncated);
        EXPECT_EQ(r.version, V);
        EXPECT_EQ(m.doc.title, "Orion");
        const CMapViewSettings& s = m.view.settings;
        EXPECT_EQ(s.printKey, 0);
        EXPECT_EQ(s.printStatus, V > 2 ? 0 : 1);
        EXPECT_EQ(s.printRightMargin, V > 2 ? 103 : 500);
        EXPECT_EQ(s.freeText1, V > 2 ? "Winter Milky Way" : "");
        EXPECT_EQ(s.timeUnit, V > 2 ? 2 : 3);
        EXPECT_EQ(s.timeUpdateInterval, V > 9 ? 33 : 10);
        EXPECT_EQ(s.varyLighting, V > 4 ? 0 : 1);
        EXPECT_EQ(s.lightingLevelHigh, V > 4 ? 3 : 2);
        EXPECT_EQ(m.view.scaleLine.visible, V > 3 ? 0 : 1);
        EXPECT_EQ(m.view.scaleLine.levels.low, V > 3 ? 4 : 3);
        EXPECT_DOUBLE_EQ(m.doc.solarSystem.grsLongitudeDeg, 123.5);
        EXPECT_EQ(m.doc.observer.SiteName(), "Mauna Kea");
        EXPECT_NEAR(m.doc.observer.HeightM(), 4205.0, 1e-9);
        EXPECT_DOUBLE_EQ(m.doc.observer.JulianDate(), 2451545.25);
        EXPECT_EQ(m.doc.track.points, 48);
        EXPECT_EQ(m.doc.galacticGrid.interval2, 303);
        ASSERT_EQ(m.doc.annotations.items.size(), 1u);
        EXPECT_EQ(m.doc.annotations.items[0].text, "Comet here");
        EXPECT_EQ(m.doc.horizon.fileName, "home.hzn");
        EXPECT_EQ(m.doc.horizon.altitudeDeg[359], 359 % 20 - 5);
        // Files before version 5 hold the centre in right ascension and declination.
        EXPECT_EQ(m.view.coordinates.CentringMode(), Centring::RaDec);
        EXPECT_NEAR(m.view.coordinates.CentreRaJ2000Rad(), 83.82 * kRadPerDeg, 1e-12);
        EXPECT_EQ(m.view.coordinates.ZoomLocked(), V < 5);
        EXPECT_EQ(m.view.coordinates.FlipHorizontal(), -1);
        EXPECT_DOUBLE_EQ(m.view.coordinates.FieldDeg(), 4.0);
        EXPECT_EQ(m.view.Level(), 4);
        EXPECT_EQ(m.doc.stars.magLimit, 777);
        EXPECT_EQ(m.doc.stars.bv1, -600);
        EXPECT_EQ(m.view.planets.magLimit, 900);
        EXPECT_EQ(m.doc.asteroids.filterNumber, 500);
        EXPECT_DOUBLE_EQ(m.doc.asteroids.filterHMax, 9.5);
        EXPECT_EQ(m.doc.deepSky.magLimit, 1111);
        EXPECT_EQ(m.doc.deepSky.magAdjust[12], 12);
        EXPECT_EQ(m.doc.deepSky.nameFilter, "M*");
        EXPECT_EQ(m.view.galacticGrid.first.low, 3);
        EXPECT_EQ(m.view.altAzGrid.solidHorizonLevels.high, 1);
        EXPECT_EQ(m.doc.constellations.cornerLabel, 123);
        EXPECT_EQ(m.view.track.levels.high, 5);
        EXPECT_EQ(m.view.shadow.levels.high, 3);
        EXPECT_EQ(m.view.compass.levels.low, 5);
        EXPECT_EQ(m.view.horizon.levels.high, 1);
        EXPECT_EQ(m.doc.loadedFromFile, 1);
        EXPECT_EQ(m.view.loadedFromFile, 1);
    }
}

TEST(MapFile, WriterProducesTheDocumentedVersionTenLayout)
{
    Map m;
    m.doc.title = "Orion";
    const std::vector<std::uint8_t> ours = WriteMapBytes(m.view);
    ASSERT_GE(ours.size(), 93u);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(ours.data()), 7), std::string("Orvane\0", 7));
    EXPECT_EQ(LoadLE<std::uint16_t>(&ours[7]), 10);
    EXPECT_EQ(LoadLE<std::int16_t>(&ours[9]), 2);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&ours[11])), "Orion");
    EXPECT_EQ(LoadLE<std::int16_t>(&ours[91]), 1);
    // Same length as the independently built file of the same shape.
    Map other;
    ReadMapBytes(BuildFile(10, "Orion"), other.view, KeepTitle::No);
    EXPECT_EQ(WriteMapBytes(other.view).size(), BuildFile(10, "Orion").size());
}

TEST(MapFile, VersionTenRoundTripKeepsEverySetting)
{
    Map a;
    ASSERT_TRUE(ReadMapBytes(BuildFile(10, "Round trip"), a.view, KeepTitle::No).Ok());
    a.view.settings.printScale = 77;
    a.view.settings.timeMode = 2;
    a.view.settings.autoTrack = 1;
    const std::vector<std::uint8_t> bytes = WriteMapBytes(a.view);

    Map b;
    b.view.settings.printScale = 5;
    b.view.settings.timeMode = 1;
    b.view.settings.autoTrack = 0;
    const MapFileResult r = ReadMapBytes(bytes, b.view, KeepTitle::No);
    ASSERT_TRUE(r.Ok());
    EXPECT_FALSE(r.truncated);
    // Written again, the file is byte for byte the same.
    EXPECT_EQ(WriteMapBytes(b.view), bytes);
    // Settings that are not in the file keep their values.
    EXPECT_EQ(b.view.settings.printScale, 5);
    EXPECT_EQ(b.view.settings.timeMode, 1);
    EXPECT_EQ(b.view.settings.autoTrack, 0);
}

TEST(MapFile, LongTitlesAreCutTo79Characters)
{
    Map m;
    m.doc.title = std::string(85, 'T');
    const std::vector<std::uint8_t> bytes = WriteMapBytes(m.view);
    EXPECT_EQ(bytes[11 + 78], 'T');
    EXPECT_EQ(bytes[11 + 79], 0);
    Map r;
    ASSERT_TRUE(ReadMapBytes(bytes, r.view, KeepTitle::No).Ok());
    EXPECT_EQ(r.doc.title, std::string(79, 'T'));
    // With the keep-title flag the stored title is not taken.
    Map k;
    k.doc.title = "Mine";
    ASSERT_TRUE(ReadMapBytes(bytes, k.view, KeepTitle::Yes).Ok());
    EXPECT_EQ(k.doc.title, "Mine");
}

TEST(MapFile, RefusesForeignNewerAndUnknownFiles)
{
    Map m;
    std::vector<std::uint8_t> f = BuildFile(10, "x");
    f[0] = 'X';
    MapFileResult r = ReadMapBytes(f, m.view, KeepTitle::No);
    EXPECT_EQ(r.status, MapFileStatus::NotOrvaneFile);
    EXPECT_EQ(r.MessageId(), 1037);

    f = BuildFile(10, "x");
    StoreLE<std::uint16_t>(&f[7], 11);
    StoreLE<std::int16_t>(&f[9], 99);  // the version is refused before the type is looked at
    r = ReadMapBytes(f, m.view, KeepTitle::No);
    EXPECT_EQ(r.status, MapFileStatus::VersionTooNew);
    EXPECT_EQ(r.Message(), "Sorry - I don't know how to handle this file.\nYou need a more recent version of Orvane!");

    f = BuildFile(10, "x");
    StoreLE<std::int16_t>(&f[9], 7);
    r = ReadMapBytes(f, m.view, KeepTitle::No);
    r.path = "odd.ovm";
    EXPECT_EQ(r.status, MapFileStatus::UnknownMapType);
    EXPECT_EQ(r.Message(), "File odd.ovm contains an unknown map type.");

    EXPECT_EQ(ReadMapBytes({}, m.view, KeepTitle::No).status, MapFileStatus::NotOrvaneFile);
}

TEST(MapFile, DamagedFilesNeverCrashOrReadPastTheEnd)
{
    const std::vector<std::uint8_t> good = BuildFile(10, "Damaged");
    for (std::size_t n = 0; n < good.size(); ++n) {
        Map m;
        const std::vector<std::uint8_t> cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(n));
        const MapFileResult r = ReadMapBytes(cut, m.view, KeepTitle::No);
        if (r.Ok()) {
            EXPECT_TRUE(r.truncated) << n;
        }
    }
    std::mt19937 rng(99);
    for (int trial = 0; trial < 300; ++trial) {
        std::vector<std::uint8_t> bad = good;
        for (int k = 0; k < 8; ++k) bad[93 + rng() % (bad.size() - 93)] = static_cast<std::uint8_t>(rng());
        Map m;
        if (ReadMapBytes(bad, m.view, KeepTitle::No).Ok()) {
            EXPECT_TRUE(std::isfinite(m.view.coordinates.FieldDeg()));
            EXPECT_TRUE(std::isfinite(m.view.coordinates.CentreRaJ2000Rad()));
            EXPECT_TRUE(std::isfinite(m.doc.observer.JulianDate()));
        }
    }
}

TEST(MapFile, SaveAndOpenThroughTheFileSystem)
{
    const fs::path dir = orv::test::MakeTempDir();
    Map m;
    m.doc.title = "Untitled";
    const fs::path path = dir / "Pleiades.ovm";
    MapFileResult r = SaveMapFile(m.view, path.string(), SaveTarget::DocumentPath);
    ASSERT_TRUE(r.Ok()) << r.systemReason;
    EXPECT_EQ(m.doc.title, "Pleiades");
    EXPECT_EQ(m.doc.pathName, path.string());

    // The default map file leaves the document as it is.
    m.doc.modified = true;
    r = SaveMapFile(m.view, (dir / "Default.ovm").string(), SaveTarget::DefaultMapFile);
    ASSERT_TRUE(r.Ok());
    EXPECT_EQ(m.doc.title, "Pleiades");
    EXPECT_TRUE(m.doc.modified);

    Map opened;
    r = LoadMapFile(path.string(), opened.view);
    ASSERT_TRUE(r.Ok());
    EXPECT_EQ(opened.doc.title, "Pleiades");
    EXPECT_FALSE(opened.doc.modified);

    // A save that cannot create its file leaves the old one intact.
    const std::vector<std::uint8_t> before = ReadAll(path);
    r = SaveMapFile(m.view, (dir / "missing" / "x.ovm").string(), SaveTarget::DocumentPath);
    EXPECT_EQ(r.status, MapFileStatus::CannotCreate);
    EXPECT_EQ(r.Message(), "Unable to create file " + (dir / "missing" / "x.ovm").string());
    EXPECT_EQ(m.doc.title, "Pleiades");
    EXPECT_EQ(ReadAll(path), before);

    r = LoadMapFile((dir / "absent.ovm").string(), opened.view);
    EXPECT_EQ(r.status, MapFileStatus::CannotOpen);
    EXPECT_EQ(r.Message(), "Unable to open file " + (dir / "absent.ovm").string());
}

TEST(MapFile, ZeroLengthFreeTextConsumesNothing)
{
    std::vector<std::uint8_t> f = BuildFile(10, "x");
    Map m;
    ASSERT_TRUE(ReadMapBytes(f, m.view, KeepTitle::No).Ok());
    EXPECT_EQ(m.view.settings.freeText2, "");
    EXPECT_EQ(m.view.settings.timeNumber, 5);  // the field right after it
}

TEST(MapFile, TitleFromPath)
{
    EXPECT_EQ(MapTitleFromPath("C:\\Maps\\Orion.ovm"), "Orion");
    EXPECT_EQ(MapTitleFromPath("/home/a/M 31.region.ovm"), "M 31.region");
    EXPECT_EQ(MapTitleFromPath("plain"), "plain");
}

TEST(MapFile, ASaveKilledAtAnyPointLeavesTheMapTheObserverHad)
{
    // The observer's map of Orion is open and saved; the new save (centred
    // elsewhere) is killed at every step in turn.
    const fs::path dir = orv::test::MakeTempDir();
    const fs::path path = dir / "Orion.ovm";
    Map previous;
    previous.view.coordinates.SetCentreRaDec(previous.doc.observer, 1.46, -0.02);
    ASSERT_TRUE(SaveMapFile(previous.view, path.string(), SaveTarget::DocumentPath).Ok());
    const std::vector<std::uint8_t> before = ReadAll(path);
    Map changed;
    changed.view.coordinates.SetCentreRaDec(changed.doc.observer, 3.0, 0.5);
    const int points = orv::test::KillSaveAtEveryStep(path, std::string(before.begin(), before.end()), [&] {
        return SaveMapFile(changed.view, path.string(), SaveTarget::DocumentPath).Ok();
    });
    EXPECT_GE(points, 5);
    // The file left by the last, finished save opens.
    Map reopened;
    EXPECT_TRUE(LoadMapFile(path.string(), reopened.view).Ok());
}
