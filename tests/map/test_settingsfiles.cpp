// The settings file damaged by hand, by a full disk or by another program:
// read through QSettings into the settings store and loaded the way the
// program starts. Nothing may throw or crash; a value that no one could
// have meant (a latitude of NaN, a zone of 99 hours, a level field of
// nothing, an eclipse search over millions of years) leaves the default.
// The fuzz target fuzz_settings feeds the same loading with random files.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "app/qtsettingsstore.h"
#include "eclipse/eclipsesearch.h"
#include "map/levels.h"
#include "map/mapdoc.h"
#include "map/mapfile.h"
#include "map/mapview.h"
#include "support/compare.h"
#include "util/angles.h"
#include "util/settingsstore.h"

using namespace orv;
namespace fs = std::filesystem;

namespace {

struct Loaded {
    // Held by pointer: the view keeps references to the document and levels.
    std::unique_ptr<CLevelTable> levels = std::make_unique<CLevelTable>();
    std::unique_ptr<CMapDoc> doc;
    std::unique_ptr<CMapView> view;
    EclipseSearchSettings search;
    double grsLike = 0.0;
};

// Writes `text` as the settings file and loads every part from it.
Loaded LoadFrom(const std::string& text)
{
    const fs::path path = fs::path(test::MakeTempDir()) / "Orvane.ini";
    std::ofstream(path, std::ios::binary) << text;
    const CQtSettingsStore store(path.string());
    Loaded l;
    l.levels->Load(store);
    l.doc = std::make_unique<CMapDoc>(store);
    l.view = std::make_unique<CMapView>(*l.doc, store, *l.levels);
    l.search.Load(store);
    l.grsLike = store.GetReal("Planet", "GRSLong", 80.0);
    return l;
}

// Defaults, from an empty store, to compare with.
const CObserverDoc& DefaultObserver()
{
    static const CMemorySettingsStore empty;
    static const CMapDoc doc(empty);
    return doc.observer;
}

}  // namespace

TEST(SettingsFiles, ASoundFileIsRead)
{
    const Loaded l = LoadFrom(
        "[Observer]\nSiteName=Greenwich\nLatitude=51.476852\nLongitude=-0.000500\nHeight=46.000000\n"
        "TimeZone=0.000000\nDaylightSaving=1\n[Level4]\nField=600\n[EclipseSearch]\nStartYear=1900\nEndYear=2100\n");
    EXPECT_EQ(l.doc->observer.SiteName(), "Greenwich");
    EXPECT_NEAR(l.doc->observer.LatitudeRad() * kDegPerRad, 51.476852, 1e-9);
    EXPECT_DOUBLE_EQ((*l.levels)[3].fieldDeg, 10.0);
    EXPECT_EQ(l.search.startYear, 1900);
    EXPECT_EQ(l.search.endYear, 2100);
}

TEST(SettingsFiles, ImpossibleValuesFallBackToTheDefaults)
{
    const Loaded l = LoadFrom(
        "[Observer]\nSiteName=Nowhere\nLatitude=nan\nLongitude=1e999\nHeight=-inf\nTimeZone=99\n"
        "[Level1]\nField=0\n[Level2]\nField=-60\n[EclipseSearch]\nStartYear=-2147483648\nEndYear=99999999\n"
        "[Planet]\nGRSLong=inf\n");
    const CObserverDoc& d = DefaultObserver();
    EXPECT_EQ(l.doc->observer.LatitudeRad(), d.LatitudeRad()) << "a site of NaN latitude is not taken";
    EXPECT_EQ(l.doc->observer.LongitudeRad(), d.LongitudeRad());
    EXPECT_EQ(l.doc->observer.HeightM(), d.HeightM());
    EXPECT_EQ(l.doc->observer.TimeZoneHours(), d.TimeZoneHours()) << "no zone is 99 hours from Greenwich";
    EXPECT_DOUBLE_EQ((*l.levels)[0].fieldDeg, 90.0);
    EXPECT_DOUBLE_EQ((*l.levels)[1].fieldDeg, 45.0);
    EXPECT_EQ(l.search.startYear, 2000);
    EXPECT_EQ(l.search.endYear, 2030);
    EXPECT_EQ(l.grsLike, 80.0);
}

TEST(SettingsFiles, CutShortOrGarbledFilesLoadWhatTheyCan)
{
    // Cut in the middle of a line: the keys before it are read.
    Loaded l = LoadFrom("[Observer]\nLatitude=-33.9\nLongitude=18.4\nHeight=10\nTimeZ");
    EXPECT_NEAR(l.doc->observer.LatitudeRad() * kDegPerRad, -33.9, 1e-9);

    // Binary bytes, an unclosed section, a key without value, a quoted
    // value, a list, a Qt variant of nonsense, duplicated sections and a
    // very long line: all load and leave a usable chart.
    std::string garbled = "\x00\x01\xff[Observer\nLatitude\n[Observer]\nLatitude=\"12.5\"\nLongitude=1, 2, 3\n"
                          "Height=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x1\\xff\\xff)\n[AreaMap]\nTimeUnit=@ByteArray(zz)\n"
                          "[Observer]\nTimeZone=" +
                          std::string(100000, '9') + "\n";
    garbled[0] = '\0';
    l = LoadFrom(garbled);
    EXPECT_TRUE(std::isfinite(l.doc->observer.LatitudeRad()));
    EXPECT_LE(std::abs(l.doc->observer.LatitudeRad()), kHalfPi);
    EXPECT_TRUE(std::isfinite(l.doc->observer.TimeZoneHours()));
    EXPECT_TRUE(std::isfinite(l.view->coordinates.FieldDeg()));
    EXPECT_GT(l.view->coordinates.FieldDeg(), 0.0);
    // What was loaded is a chart a map file can hold.
    const auto bytes = WriteMapBytes(*l.view);
    const CMemorySettingsStore empty;
    CMapDoc again(empty);
    CMapView againView(again, empty, *l.levels);
    EXPECT_TRUE(ReadMapBytes(bytes, againView, KeepTitle::No).Ok());
}

TEST(SettingsFiles, RealSettingsRefuseNonFiniteText)
{
    for (const char* text : {"nan", "NAN", "inf", "-infinity", "1e999", "-1e400", "", "abc"}) {
        EXPECT_FALSE(ParseRealSetting(text)) << text;
    }
    EXPECT_EQ(ParseRealSetting("1e300"), 1e300);
    EXPECT_EQ(ParseRealSetting("-12.5 degrees"), -12.5);
}
