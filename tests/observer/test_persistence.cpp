// The observer's map-file block and its settings section.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "observer/observer.h"
#include "support/compare.h"
#include "util/angles.h"
#include "util/binaryio.h"
#include "util/settingsstore.h"

using namespace orv;

namespace {

CObserverDoc Paranal()
{
    CObserverDoc doc;
    doc.SetSite("Cerro Paranal – VLT", -24.627222 * kRadPerDeg, -70.404167 * kRadPerDeg, 2635.43);
    doc.SetTimeZone(-4.0, true);
    doc.SetJulianDate(2460000.123456789);
    return doc;
}

void ExpectSameObserver(const CObserverDoc& expected, const CObserverDoc& actual)
{
    EXPECT_EQ(expected.SiteName(), actual.SiteName());
    EXPECT_EQ(expected.LatitudeRad(), actual.LatitudeRad());
    EXPECT_EQ(expected.LongitudeRad(), actual.LongitudeRad());
    EXPECT_EQ(expected.HeightM(), actual.HeightM());
    EXPECT_EQ(expected.TimeZoneHours(), actual.TimeZoneHours());
    EXPECT_EQ(expected.DaylightSaving(), actual.DaylightSaving());
    EXPECT_EQ(expected.JulianDate(), actual.JulianDate());
}

}  // namespace

TEST(ObserverBlock, RoundTripIsExact)
{
    const CObserverDoc saved = Paranal();
    CByteWriter out;
    saved.FileSave(out);
    out.I16(0x55AA);  // whatever the next block writes

    CObserverDoc loaded;
    CByteReader in(out.Data());
    loaded.FileLoad(in);
    EXPECT_FALSE(in.ShortRead());
    ExpectSameObserver(saved, loaded);
    // The reader stops exactly at the end of the block.
    std::int16_t next = 0;
    ASSERT_TRUE(in.I16(next));
    EXPECT_EQ(0x55AA, next);
    EXPECT_TRUE(in.AtEnd());
    // Everything derived follows the loaded instant.
    EXPECT_EQ(saved.LAST(), loaded.LAST());
    EXPECT_EQ(saved.JulianDateTDT(), loaded.JulianDateTDT());
}

TEST(ObserverBlock, LayoutIsTheDocumentedOne)
{
    // docs/observer-block.md: i16 name length, the name, four f64 (latitude,
    // longitude, height, zone), i16 daylight saving, f64 JD UT: 44 + n bytes.
    const CObserverDoc doc = Paranal();
    CByteWriter out;
    doc.FileSave(out);
    const std::size_t n = doc.SiteName().size();
    ASSERT_EQ(44u + n, out.Size());
    const std::uint8_t* p = out.Data().data();
    EXPECT_EQ(static_cast<std::int16_t>(n), LoadLE<std::int16_t>(p));
    EXPECT_EQ(0, std::memcmp(p + 2, doc.SiteName().data(), n));
    EXPECT_EQ(doc.LatitudeRad(), LoadLE<double>(p + 2 + n));
    EXPECT_EQ(doc.LongitudeRad(), LoadLE<double>(p + 10 + n));
    EXPECT_EQ(2635.43, LoadLE<double>(p + 18 + n));
    EXPECT_EQ(-4.0, LoadLE<double>(p + 26 + n));
    EXPECT_EQ(1, LoadLE<std::int16_t>(p + 34 + n));
    EXPECT_EQ(2460000.123456789, LoadLE<double>(p + 36 + n));
}

TEST(ObserverBlock, TruncatedBlockChangesNothing)
{
    CByteWriter out;
    Paranal().FileSave(out);
    const std::vector<std::uint8_t>& bytes = out.Data();
    const CObserverDoc before = [] {
        CObserverDoc d;
        d.SetSite("Home", 0.7, 0.1, 120.0);
        d.SetJulianDate(2451545.0);
        return d;
    }();
    // Cut at every length short of the whole block (in a copy of exactly that
    // size, so that a read past the end is caught by the sanitizers).
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        SCOPED_TRACE(length);
        const std::vector<std::uint8_t> cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
        CByteReader in(cut);
        CObserverDoc doc = before;
        doc.FileLoad(in);
        EXPECT_TRUE(in.ShortRead());
        EXPECT_TRUE(in.AtEnd());
        ExpectSameObserver(before, doc);
    }
}

TEST(ObserverBlock, ImplausibleValuesChangeNothing)
{
    // A latitude beyond ±π/2, a non-finite instant, an instant a billion
    // years away.
    for (const auto& [latitudeRad, jdUT] :
         {std::pair{2.0, 2451545.0}, std::pair{0.5, std::nan("")}, std::pair{0.5, 4e11}}) {
        CByteWriter out;
        out.CountedString("Nowhere");
        for (double v : {latitudeRad, 0.0, 0.0, 0.0}) out.F64(v);
        out.I16(0);
        out.F64(jdUT);
        const CObserverDoc before = Paranal();
        CObserverDoc doc = before;
        CByteReader in(out.Data());
        doc.FileLoad(in);
        EXPECT_FALSE(in.ShortRead());
        EXPECT_TRUE(in.AtEnd());
        ExpectSameObserver(before, doc);
    }
}

TEST(ObserverSettings, RoundTripThroughTheStore)
{
    // Angles are stored in degrees with "%lf" (six decimals, 0.0036″ of
    // latitude): the round trip is exact to half of that.
    const CObserverDoc saved = Paranal();
    CMemorySettingsStore store;
    saved.SaveSettings(store);
    EXPECT_EQ("Cerro Paranal – VLT", store.GetString("Observer", "SiteName", ""));
    EXPECT_EQ("-24.627222", *store.ReadString("Observer", "Latitude"));
    EXPECT_EQ("-70.404167", *store.ReadString("Observer", "Longitude"));
    EXPECT_EQ("2635.430000", *store.ReadString("Observer", "Height"));
    EXPECT_EQ("-4.000000", *store.ReadString("Observer", "TimeZone"));
    EXPECT_EQ(1, store.GetInt("Observer", "DaylightSaving", 0));

    CObserverDoc loaded;
    loaded.LoadSettings(store);
    EXPECT_EQ(saved.SiteName(), loaded.SiteName());
    const double halfMicroDegree = 0.5e-6 * kRadPerDeg;
    EXPECT_NEAR_UNIT(saved.LatitudeRad(), loaded.LatitudeRad(), halfMicroDegree, orv::test::kArcsecFromRad);
    EXPECT_NEAR_UNIT(saved.LongitudeRad(), loaded.LongitudeRad(), halfMicroDegree, orv::test::kArcsecFromRad);
    EXPECT_NEAR(saved.HeightM(), loaded.HeightM(), 0.5e-6);
    EXPECT_EQ(saved.TimeZoneHours(), loaded.TimeZoneHours());
    EXPECT_TRUE(loaded.DaylightSaving());
}

TEST(ObserverSettings, MissingOrDamagedValuesKeepTheDefaults)
{
    CMemorySettingsStore empty;
    CObserverDoc doc;
    const double defaultLat = doc.LatitudeRad();
    doc.LoadSettings(empty);
    EXPECT_EQ("Greenwich", doc.SiteName());
    EXPECT_EQ(defaultLat, doc.LatitudeRad());
    EXPECT_EQ(0.0, doc.TimeZoneHours());

    CMemorySettingsStore damaged;
    damaged.SetString("Observer", "SiteName", "Moon base");
    damaged.SetString("Observer", "Latitude", "95.0");  // no such latitude
    damaged.SetString("Observer", "TimeZone", "hours");  // not a number: default
    doc.LoadSettings(damaged);
    EXPECT_EQ("Greenwich", doc.SiteName());  // the site is taken whole or not at all
    EXPECT_EQ(defaultLat, doc.LatitudeRad());
    EXPECT_EQ(0.0, doc.TimeZoneHours());
}
