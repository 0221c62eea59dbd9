// Map files of every version the reader accepts, 1 to 10: the writer makes
// version 10 only, so the older layouts are assembled here block by block
// as docs/map-file-format.md describes them (fields a version lacks left
// out, fields it had and later versions dropped put in). Each must read
// without running short, land every later block where it belongs (the
// horizon settings at the very end survive) and keep the defaults of what
// it lacks. With ORVANE_WRITE_MAP_SEEDS=<folder> the files are also written
// there as seeds of the map-file fuzz target.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "map/levels.h"
#include "map/mapdoc.h"
#include "map/mapfile.h"
#include "map/mapfileio.h"
#include "map/mapview.h"
#include "util/binaryio.h"
#include "util/settingsstore.h"

using namespace orv;

namespace {

struct Map {
    CMemorySettingsStore store;
    CLevelTable levels;
    CMapDoc doc{store};
    CMapView view{doc, store, levels};
};

// The file as a program writing version V laid it out.
std::vector<std::uint8_t> MapBytesOfVersion(const CMapView& view, int V)
{
    const CMapDoc& doc = view.Doc();
    const CMapViewSettings& s = view.settings;
    CByteWriter out;
    out.FixedText("Orvane", 7);
    out.U16(static_cast<std::uint16_t>(V));
    out.I16(2);
    out.FixedText(doc.title, 80);
    out.I16(1);
    // View header (section 2).
    out.I16(static_cast<std::int16_t>(s.printKey));
    out.I16(static_cast<std::int16_t>(s.printMono));
    if (V > 2) {
        for (const int v : {s.printStatus, s.printTitle, s.printTopMargin, s.printBottomMargin, s.printLeftMargin,
                            s.printRightMargin})
            out.I16(static_cast<std::int16_t>(v));
        out.CountedString(s.freeText1);
        out.CountedString(s.freeText2);
        out.I16(static_cast<std::int16_t>(s.timeUnit));
        out.I16(static_cast<std::int16_t>(s.timeNumber));
    }
    if (V > 9) out.I16(static_cast<std::int16_t>(s.timeUpdateInterval));
    if (V > 4) {
        out.I32(s.varyLighting);
        out.I32(s.moonlight);
        for (const int v : {s.minMoonAlt, s.minMoonPhase, s.lowerTwilight, s.upperTwilight, s.lightingLevelLow,
                            s.lightingLevelHigh})
            out.I16(static_cast<std::int16_t>(v));
    }
    // Blocks (section 3).
    if (V > 3) view.scaleLine.Write(out);
    if (V > 3 && V < 7) out.I16(0);
    doc.Write(out);
    if (V >= 5) {
        view.coordinates.Write(out);
    } else {
        out.F64(view.coordinates.CentreRaJ2000Rad());
        out.F64(view.coordinates.CentreDecJ2000Rad());
        out.F64(view.coordinates.FieldDeg());
        out.I16(static_cast<std::int16_t>(view.coordinates.FlipHorizontal()));
        out.I16(static_cast<std::int16_t>(view.coordinates.FlipVertical()));
    }
    doc.stars.Write(out);
    view.planets.Write(out);
    view.comets.Write(out);
    doc.comets.Write(out);
    view.asteroids.Write(out);
    doc.asteroids.Write(out);
    doc.deepSky.Write(out);
    view.raDecGrid.Write(out);
    view.altAzGrid.Write(out);
    view.eclipticGrid.Write(out);
    view.galacticGrid.Write(out);
    doc.constellations.Write(out);
    view.track.Write(out);
    if (V < 4) {
        // The legacy list, ignored: two records of three doubles and an i16.
        out.I16(2);
        for (int i = 0; i < 2; ++i) {
            out.F64(1.0);
            out.F64(2.0);
            out.F64(3.0);
            out.I16(4);
        }
    }
    if (V > 1 && V < 6) out.I16(0);
    view.shadow.Write(out);
    view.compass.Write(out);
    view.horizon.Write(out);
    return std::move(out.Data());
}

}  // namespace

TEST(MapFileVersions, EveryOlderVersionReadsWhole)
{
    Map source;
    source.doc.title = "Orion and Taurus";
    source.view.coordinates.SetCentreRaDec(source.doc.observer, 1.46, 0.30);
    source.view.coordinates.SetFieldDeg(12.5);
    source.view.settings.printKey = 1;
    source.view.settings.timeUnit = 3;
    source.view.settings.minMoonAlt = 7;
    source.view.settings.timeUpdateInterval = 42;
    source.view.horizon.visible = 0;
    source.view.horizon.levels = LevelRange{3, 8};

    const char* seeds = std::getenv("ORVANE_WRITE_MAP_SEEDS");
    for (int V = 1; V <= kMapFileVersion; ++V) {
        SCOPED_TRACE("version " + std::to_string(V));
        const std::vector<std::uint8_t> bytes = MapBytesOfVersion(source.view, V);
        if (V == kMapFileVersion) { EXPECT_EQ(bytes, WriteMapBytes(source.view)) << "the assembly is not the writer's"; }
        if (seeds != nullptr && V < kMapFileVersion)
            std::ofstream(std::filesystem::path(seeds) / ("v" + std::to_string(V) + ".ovm"), std::ios::binary)
                .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));

        Map read;
        const MapFileResult r = ReadMapBytes(bytes, read.view, KeepTitle::No);
        ASSERT_TRUE(r.Ok());
        EXPECT_EQ(r.version, V);
        EXPECT_FALSE(r.truncated) << "the reader ran short: its layout of this version differs";
        EXPECT_EQ(read.doc.title, "Orion and Taurus");
        EXPECT_NEAR(read.view.coordinates.CentreRaJ2000Rad(), 1.46, 1e-12);
        EXPECT_NEAR(read.view.coordinates.CentreDecJ2000Rad(), 0.30, 1e-12);
        EXPECT_DOUBLE_EQ(read.view.coordinates.FieldDeg(), 12.5);
        // The last block, reached only when every block before it took
        // exactly its bytes.
        EXPECT_EQ(read.view.horizon.visible, 0);
        EXPECT_EQ(read.view.horizon.levels.low, 3);
        EXPECT_EQ(read.view.horizon.levels.high, 8);
        EXPECT_EQ(read.view.settings.printKey, 1);
        // Fields of the version, or the defaults where it has none.
        const Map defaults;
        EXPECT_EQ(read.view.settings.timeUnit, V > 2 ? 3 : defaults.view.settings.timeUnit);
        EXPECT_EQ(read.view.settings.minMoonAlt, V > 4 ? 7 : defaults.view.settings.minMoonAlt);
        EXPECT_EQ(read.view.settings.timeUpdateInterval, V > 9 ? 42 : defaults.view.settings.timeUpdateInterval);
    }
}
