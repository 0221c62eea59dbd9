// Horizon files: the 360-byte profile, its atomic save, the text import with
// its interpolation across north, and the messages for bad input.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "map/horizonprofile.h"
#include "support/compare.h"
#include "util/angles.h"

namespace orv {
namespace {

using test::kDegFromRad;

std::string WriteBytes(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

HorizonProfile Marked()
{
    HorizonProfile p{};
    p.fill(7);
    return p;
}

TEST(HorizonFile, ZeroBytesAreFlatAndBytesAreSignedDegrees)
{
    const std::string dir = test::MakeTempDir();
    HorizonProfile p = Marked();
    ASSERT_TRUE(ReadHorizonFile(WriteBytes(dir + "/flat.hzn", std::string(360, '\0')), p).ok);
    for (const std::int8_t a : p) ASSERT_EQ(0, a);

    std::string bytes(360, '\0');
    bytes[0] = '\xF6';   // −10°
    bytes[90] = '\x2D';  // +45° in the east
    bytes[359] = '\x7F';
    ASSERT_TRUE(ReadHorizonFile(WriteBytes(dir + "/signed.hzn", bytes), p).ok);
    EXPECT_EQ(-10, p[0]);
    EXPECT_EQ(45, p[90]);
    EXPECT_EQ(127, p[359]);
}

TEST(HorizonFile, OtherSizesAreReadAsFarAsTheyGoWithAWarning)
{
    const std::string dir = test::MakeTempDir();
    for (const std::size_t size : {0u, 200u, 359u, 361u, 720u}) {
        HorizonProfile p = Marked();
        const std::string path = WriteBytes(dir + "/bad" + std::to_string(size) + ".hzn", std::string(size, '\x05'));
        const HorizonFileResult r = ReadHorizonFile(path, p);
        EXPECT_TRUE(r.ok) << size;
        EXPECT_NE(std::string::npos, r.message.find(path)) << r.message;
        EXPECT_NE(std::string::npos, r.message.find(std::to_string(size) + " bytes")) << r.message;
        // The file's bytes where it has them, the old profile beyond.
        for (std::size_t k = 0; k < 360; ++k)
            EXPECT_EQ(p[k], k < size ? 5 : Marked()[k]) << "size " << size << ", azimuth " << k;
    }
    HorizonProfile p = Marked();
    const HorizonFileResult r = ReadHorizonFile(dir + "/none.hzn", p);
    EXPECT_EQ("Unable to open file\n\"" + dir + "/none.hzn\"", r.message);
    EXPECT_EQ(Marked(), p);
}

TEST(HorizonFile, SaveIsAtomicAndRoundTrips)
{
    const std::string dir = test::MakeTempDir();
    HorizonProfile p{};
    for (int k = 0; k < 360; ++k) p[k] = static_cast<std::int8_t>((k % 181) - 90);
    const std::string path = dir + "/site.hzn";
    ASSERT_TRUE(WriteHorizonFile(path, p).ok);
    EXPECT_EQ(360u, std::filesystem::file_size(path));
    HorizonProfile back{};
    ASSERT_TRUE(ReadHorizonFile(path, back).ok);
    EXPECT_EQ(p, back);
    // Replacing it leaves no temporary file behind.
    ASSERT_TRUE(WriteHorizonFile(path, Marked()).ok);
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(dir), std::filesystem::directory_iterator()));
    // A folder that does not exist: the program's message, nothing written.
    const HorizonFileResult r = WriteHorizonFile(dir + "/no/such/site.hzn", p);
    EXPECT_FALSE(r.ok);
    EXPECT_EQ(0u, r.message.rfind("Unable to create file\n\"" + dir + "/no/such/site.hzn\"", 0)) << r.message;
}

TEST(HorizonImport, PairsAreJoinedAcrossNorthAndSampledEveryDegree)
{
    // Three points, out of order, with comments and commas: the line from
    // 350° (10°) to 10° (20°) crosses north, so azimuth 0 lies halfway (15°)
    // and azimuth 5 at 17.5°, rounded to 18.
    HorizonProfile p = Marked();
    const HorizonFileResult r = ParseHorizonText(
        "# my garden\n"
        "100 0   # the roof ends\n"
        "10, 20\n"
        "\n"
        "350\t10\n",
        "garden.txt", p);
    ASSERT_TRUE(r.ok) << r.message;
    EXPECT_EQ(15, p[0]);
    EXPECT_EQ(18, p[5]);
    EXPECT_EQ(20, p[10]);
    EXPECT_EQ(10, p[55]);   // halfway from (10°, 20°) to (100°, 0°)
    EXPECT_EQ(0, p[100]);
    EXPECT_EQ(5, p[225]);   // 0 + 10 × 125/250
    EXPECT_EQ(10, p[350]);
    EXPECT_EQ(13, p[355]);  // 12.5 rounds away from zero

    // Azimuth 360 is north again.
    ASSERT_TRUE(ParseHorizonText("0 5\n180 25\n360 5\n", "n.txt", p).ok);
    EXPECT_EQ(5, p[0]);
    EXPECT_EQ(15, p[90]);
}

TEST(HorizonImport, APanoramaListSpreadsItsAltitudesEvenly)
{
    // Four altitudes: north, east, south, west.
    HorizonProfile p{};
    ASSERT_TRUE(ParseHorizonText("0\n10\n20\n10\n", "pano.txt", p).ok);
    EXPECT_EQ(0, p[0]);
    EXPECT_EQ(5, p[45]);
    EXPECT_EQ(10, p[90]);
    EXPECT_EQ(20, p[180]);
    EXPECT_EQ(5, p[315]);
}

TEST(HorizonImport, BadInputNamesTheLineAndChangesNothing)
{
    struct Case {
        const char* text;
        const char* expected;
    } cases[] = {
        {"0 5\n90 ten\n", "hz.txt, line 2: \"ten\" is not a number"},
        {"# c\n400 5\n", "hz.txt, line 2: azimuth 400 is outside 0 to 360 degrees"},
        {"0 5\n-1 5\n", "hz.txt, line 2: azimuth -1 is outside"},
        {"0 5\n\n\n10 95\n", "hz.txt, line 4: altitude 95 is outside -90 to +90 degrees"},
        {"0 5\n10 6 7\n", "hz.txt, line 2: expected \"azimuth altitude\" or one altitude, found 3 numbers"},
        {"0 5\n12\n", "hz.txt, line 2: expected \"azimuth altitude\""},
        {"# nothing\n", "hz.txt: no horizon points"},
        {"0 nan\n", "hz.txt, line 1: \"nan\" is not a number"},
    };
    for (const Case& c : cases) {
        HorizonProfile p = Marked();
        const HorizonFileResult r = ParseHorizonText(c.text, "hz.txt", p);
        EXPECT_FALSE(r.ok) << c.text;
        EXPECT_EQ(0u, r.message.rfind(c.expected, 0)) << r.message;
        EXPECT_EQ(Marked(), p);
    }
}

TEST(HorizonProfileUse, AltitudeBetweenDegreesAndEditingAcrossNorth)
{
    HorizonProfile p{};
    p[359] = 10;
    p[0] = 20;
    p[1] = 30;
    // Linear between whole degrees, and across north.
    EXPECT_NEAR_UNIT(25.0 * kRadPerDeg, HorizonAltitudeRad(p, 0.5 * kRadPerDeg), 1e-12, kDegFromRad);
    EXPECT_NEAR_UNIT(15.0 * kRadPerDeg, HorizonAltitudeRad(p, 359.5 * kRadPerDeg), 1e-12, kDegFromRad);
    EXPECT_NEAR_UNIT(15.0 * kRadPerDeg, HorizonAltitudeRad(p, -0.5 * kRadPerDeg), 1e-12, kDegFromRad);

    FlattenHorizon(p, 358, 2, 4);  // 358, 359, 0, 1, 2
    for (const int k : {358, 359, 0, 1, 2}) EXPECT_EQ(4, p[k]) << k;
    EXPECT_EQ(0, p[3]);

    HorizonProfile q{};
    q[0] = 50;
    SmoothHorizon(q, 355, 5, 2);  // a running mean of five: 10 on 358..2
    EXPECT_EQ(10, q[358]);
    EXPECT_EQ(10, q[0]);
    EXPECT_EQ(10, q[2]);
    EXPECT_EQ(0, q[3]);

    HorizonProfile s{};
    s[350] = 0;
    s[10] = 20;
    InterpolateHorizon(s, 350, 10);
    EXPECT_EQ(10, s[0]);
    EXPECT_EQ(1, s[351]);
}

}  // namespace
}  // namespace orv
