// The world map file: write/read round trip, bounds checks and the region rules.
#include <gtest/gtest.h>

#include "satellite/worldmap.h"
#include "support/compare.h"

namespace orv::sat {
namespace {

TEST(WorldMap, RoundTripThroughTheFile)
{
    std::vector<WorldPolyline> lines(2);
    lines[0].region = WorldRegion::Africa;
    lines[0].points = {{-1750, 3580}, {1000, 3700}, {3250, 3000}};
    lines[1].region = WorldRegion::Antarctica;
    lines[1].points = {{-18000, -9000}, {18000, -8000}};
    const std::string path = orv::test::MakeTempDir() + "/WorldSmall.dat";
    ASSERT_EQ(WriteWorldMap(path, lines), WorldMapStatus::Ok);
    CWorldMap map;
    ASSERT_EQ(map.Load(path), WorldMapStatus::Ok);
    ASSERT_EQ(map.Polylines().size(), 2u);
    EXPECT_EQ(map.PointCount(), 5u);
    EXPECT_EQ(map.Polylines()[0].region, WorldRegion::Africa);
    EXPECT_EQ(map.Polylines()[1].points[1].longitudeCentideg, 18000);
    EXPECT_EQ(map.Polylines()[1].points[0].latitudeCentideg, -9000);
}

TEST(WorldMap, LongPolylinesAreSplitAndDamagedFilesRejected)
{
    std::vector<WorldPolyline> lines(1);
    lines[0].points.resize(70000, WorldPoint{100, 200});
    const std::vector<std::uint8_t> bytes = EncodeWorldMap(lines);
    CWorldMap map;
    ASSERT_EQ(map.Decode(bytes), WorldMapStatus::Ok);
    ASSERT_EQ(map.Polylines().size(), 2u);
    EXPECT_EQ(map.PointCount(), 70001u);  // the joining point is shared
    // Every truncation is refused, never read past the end.
    for (std::size_t cut : {std::size_t{0}, std::size_t{10}, std::size_t{20}, bytes.size() - 1}) {
        const std::vector<std::uint8_t> shortBytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(cut));
        EXPECT_NE(map.Decode(shortBytes), WorldMapStatus::Ok) << cut;
        EXPECT_TRUE(map.Polylines().empty());
    }
    std::vector<std::uint8_t> badRegion = bytes;
    badRegion[16 + 6] = 99;
    EXPECT_EQ(map.Decode(badRegion), WorldMapStatus::NotAWorldMap);
    std::vector<std::uint8_t> badCount = bytes;
    badCount[24 + 4] = 0xFF;  // the second polyline claims more points than the file holds
    badCount[24 + 5] = 0xFF;
    EXPECT_NE(map.Decode(badCount), WorldMapStatus::Ok);
    EXPECT_EQ(map.Load("/nonexistent/WorldSmall.dat"), WorldMapStatus::CannotOpen);
}

TEST(WorldMap, RegionsOfKnownPlaces)
{
    EXPECT_EQ(ClassifyWorldPoint(-0.1, 51.5), WorldRegion::Europe);     // London
    EXPECT_EQ(ClassifyWorldPoint(-5.6, 36.0), WorldRegion::Europe);     // Tarifa
    EXPECT_EQ(ClassifyWorldPoint(-5.8, 35.8), WorldRegion::Africa);     // Tangier
    EXPECT_EQ(ClassifyWorldPoint(10.2, 36.8), WorldRegion::Africa);     // Tunis
    EXPECT_EQ(ClassifyWorldPoint(25.1, 35.3), WorldRegion::Europe);     // Crete
    EXPECT_EQ(ClassifyWorldPoint(29.0, 41.0), WorldRegion::Asia);       // Istanbul's Asian shore
    EXPECT_EQ(ClassifyWorldPoint(28.9, 41.0), WorldRegion::Europe);     // and its European one
    EXPECT_EQ(ClassifyWorldPoint(31.2, 30.0), WorldRegion::Africa);     // Cairo
    EXPECT_EQ(ClassifyWorldPoint(39.2, 21.5), WorldRegion::Asia);       // Jeddah
    EXPECT_EQ(ClassifyWorldPoint(37.2, 19.6), WorldRegion::Africa);     // Port Sudan
    EXPECT_EQ(ClassifyWorldPoint(45.0, 12.8), WorldRegion::Asia);       // Aden
    EXPECT_EQ(ClassifyWorldPoint(45.3, 2.0), WorldRegion::Africa);      // Mogadishu
    EXPECT_EQ(ClassifyWorldPoint(47.5, 43.0), WorldRegion::Europe);     // Makhachkala
    EXPECT_EQ(ClassifyWorldPoint(49.9, 40.4), WorldRegion::Asia);       // Baku
    EXPECT_EQ(ClassifyWorldPoint(-74.0, 40.7), WorldRegion::NAmer);     // New York
    EXPECT_EQ(ClassifyWorldPoint(-79.5, 9.0), WorldRegion::NAmer);      // Panama
    EXPECT_EQ(ClassifyWorldPoint(-74.8, 10.9), WorldRegion::NAmer);     // Barranquilla (north of 8°)
    EXPECT_EQ(ClassifyWorldPoint(-43.2, -22.9), WorldRegion::SAmer);    // Rio de Janeiro
    EXPECT_EQ(ClassifyWorldPoint(-22.0, 70.5), WorldRegion::NAmer);     // Greenland, Scoresby Sund
    EXPECT_EQ(ClassifyWorldPoint(-21.9, 64.1), WorldRegion::Europe);    // Reykjavik
    EXPECT_EQ(ClassifyWorldPoint(151.2, -33.9), WorldRegion::Oceania);  // Sydney
    EXPECT_EQ(ClassifyWorldPoint(106.8, -6.2), WorldRegion::Asia);      // Jakarta
    EXPECT_EQ(ClassifyWorldPoint(174.8, -41.3), WorldRegion::Oceania);  // Wellington
    EXPECT_EQ(ClassifyWorldPoint(-157.9, 21.3), WorldRegion::Oceania);  // Honolulu
    EXPECT_EQ(ClassifyWorldPoint(-149.9, 61.2), WorldRegion::NAmer);    // Anchorage
    EXPECT_EQ(ClassifyWorldPoint(0.0, -75.0), WorldRegion::Antarctica);
    EXPECT_EQ(ClassifyWorldPoint(139.7, 35.7), WorldRegion::Asia);      // Tokyo
}

}  // namespace
}  // namespace orv::sat
