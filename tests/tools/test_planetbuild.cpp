// The planet mode of the data builder: the reader of the astronomia package's
// object literals and the VSOP87 writer, on miniature literals written the
// way the package writes them.
#include <gtest/gtest.h>

#include <cstdint>

#include "sources/astronomiareader.h"
#include "util/binaryio.h"
#include "writers/vsop87files.h"

using namespace orv;
using namespace orv::databuild;

TEST(AstronomiaReader, SeparatorMovesTermsToTheNextPower)
{
    // As in vsop87Duranus.js: the L4 list runs on into L5 behind a
    // [NaN, NaN, NaN] separator; numbers may start with a bare '.'.
    const char* text = R"(const m = {
  L: {
    "0": [
      [1.0, 0, 0],
      [.5, -.25, 2e-3]
    ],
    "4": [
      [1.33e-9, 4.35519131657, 63.7358983034],
      [NaN, NaN, NaN],
      [8.73e-9, 3.14159265359, 0]
    ]
  },
  B: { "0": [[2, 0, 0]] },
  R: { "0": [[3, 0, 0]] },
  name: "uranus",
  type: "D"
}
export default m)";
    Vsop87Planet planet;
    std::string error;
    ASSERT_TRUE(ParseVsop87DLiteral(text, planet, error)) << error;
    ASSERT_EQ(planet.series[0][0].size(), 2u);
    EXPECT_DOUBLE_EQ(planet.series[0][0][1].a, 0.5);
    EXPECT_DOUBLE_EQ(planet.series[0][0][1].b, -0.25);
    EXPECT_EQ(planet.series[0][4].size(), 1u);
    ASSERT_EQ(planet.series[0][5].size(), 1u);
    EXPECT_DOUBLE_EQ(planet.series[0][5][0].a, 8.73e-9);
    EXPECT_EQ(planet.series[1][0].size(), 1u);
}

TEST(AstronomiaReader, MalformedTermsAreRefusedWithAReason)
{
    Vsop87Planet planet;
    std::string error;
    EXPECT_FALSE(ParseVsop87DLiteral("const m = { L: { \"0\": [[1, 2]] }, B: {}, R: {} }", planet, error));
    EXPECT_NE(error.find("three numbers"), std::string::npos) << error;
    EXPECT_FALSE(ParseVsop87DLiteral("const m = { L: { \"0\": [[1, 2, x]] }", planet, error));
    EXPECT_FALSE(ParseVsop87DLiteral("no literal", planet, error));
}

TEST(Vsop87Writer, IndexCountsAndStartsFollowTheSeries)
{
    std::array<Vsop87Planet, 8> planets;
    planets[0].series[0][0] = {{1, 2, 3}, {4, 5, 6}};
    planets[0].series[2][5] = {{7, 8, 9}};
    planets[1].series[1][0] = {{10, 11, 12}};
    std::vector<OutputFile> files;
    std::string error;
    ASSERT_TRUE(WriteVsop87Files(planets, files, error)) << error;
    ASSERT_EQ(files.size(), 2u);
    const std::vector<std::uint8_t>& index = files[0].bytes;
    ASSERT_EQ(index.size(), 576u);
    EXPECT_EQ(LoadLE<std::int16_t>(&index[0]), 0);   // Mercury L0 starts at term 0
    EXPECT_EQ(LoadLE<std::int16_t>(&index[2]), 2);   // … with two terms
    EXPECT_EQ(LoadLE<std::int16_t>(&index[72]), 3);  // Venus starts after Mercury's three
    EXPECT_EQ(files[1].bytes.size(), 4u * 24u);
    EXPECT_DOUBLE_EQ(LoadLE<double>(&files[1].bytes[3 * 24 + 16]), 12.0);
}
