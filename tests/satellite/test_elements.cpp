// Element-set parsing and element files: fixed columns, implied decimals,
// epochs, period and model choice, name and blank-line rules.
#include <gtest/gtest.h>

#include <fstream>

#include "satellite/describe.h"
#include "satellite/elements.h"
#include "satellite/propagator.h"
#include "support/compare.h"
#include "util/angles.h"

namespace orv::sat {
namespace {

using orv::test::kSame;
using orv::test::kSecondsFromDays;

// Vallado's first verification set (catalogue 00005, Vanguard 1).
constexpr const char* kLine1 = "1 00005U 58002B   00179.78495062  .00000023  00000-0  28098-4 0  4753";
constexpr const char* kLine2 = "2 00005  34.2682 348.7242 1859667 331.7664  19.3264 10.82419157413667";

TEST(ElementSet, FieldsFromFixedColumns)
{
    const SatelliteRecord r = ParseElementSet("VANGUARD 1   ", kLine1, kLine2);
    EXPECT_EQ(r.name, "VANGUARD 1");
    EXPECT_EQ(r.catalogNumber, 5);
    EXPECT_EQ(r.internationalDesignator, "58002B  ");
    EXPECT_EQ(r.elementSetNumber, 475);
    EXPECT_DOUBLE_EQ(r.epochCode, 179.78495062);
    EXPECT_NEAR(r.bstarPerEarthRadius, 0.28098e-4, 1e-15);
    EXPECT_NEAR(r.inclinationRad * kDegPerRad, 34.2682, 1e-12);
    EXPECT_NEAR(r.raanRad * kDegPerRad, 348.7242, 1e-12);
    EXPECT_NEAR(r.eccentricity, 0.1859667, 1e-15);
    EXPECT_NEAR(r.argumentOfPerigeeRad * kDegPerRad, 331.7664, 1e-12);
    EXPECT_NEAR(r.meanAnomalyRad * kDegPerRad, 19.3264, 1e-12);
    EXPECT_NEAR(r.meanMotionRadPerMin, 10.82419157 * kTwoPi / 1440.0, 1e-15);
    // Epoch 2000 day 179.78495062 = 2000 June 27 18:50:19.73 UT; JD of 2000
    // January 0.0 is 2451543.5 (Meeus, Astronomical Algorithms, ch. 7).
    EXPECT_NEAR_UNIT(2451543.5 + 179.78495062, r.epochJd, 1e-6 / 86400.0, kSecondsFromDays);
}

TEST(ElementSet, ImpliedDecimalsAndExponents)
{
    // B* "-11606-4" is -0.11606e-4, "00000-0" is 0; eccentricity "0001234" is 0.0001234.
    const SatelliteRecord a = ParseElementSet(
        "X", "1 22312U 93002D   06094.46235912  .99999999  81888-5 -11606-4 0  3953",
        "2 22312  62.1486  77.4698 0001234 267.9229  88.7392 15.95744531 98783");
    EXPECT_NEAR(a.bstarPerEarthRadius, -0.11606e-4, 1e-16);
    EXPECT_NEAR(a.eccentricity, 0.0001234, 1e-16);
    const SatelliteRecord b = ParseElementSet(
        "X", "1 22312U 93002D   06094.46235912  .99999999  81888-5  00000-0 0  3953", kLine2);
    EXPECT_EQ(b.bstarPerEarthRadius, 0.0);
}

TEST(ElementSet, TwoDigitYears)
{
    EXPECT_EQ(ExpandTwoDigitYear(56), 2056);
    EXPECT_EQ(ExpandTwoDigitYear(57), 1957);
    EXPECT_EQ(ExpandTwoDigitYear(0), 2000);
    EXPECT_EQ(ExpandTwoDigitYear(99), 1999);
    // Sputnik 1's year: 1957 October 4.8 is JD 2436116.3 (Meeus ex. 7.a gives
    // 1957 Oct 4.81 = 2436116.31); day 277.81 of 1957.
    const SatelliteRecord r = ParseElementSet(
        "X", "1 00001U 57001A   57277.81000000  .00000000  00000-0  00000-0 0    10", kLine2);
    EXPECT_NEAR_UNIT(2436116.31, r.epochJd, 1e-6, kSecondsFromDays);
    const SatelliteRecord s = ParseElementSet(
        "X", "1 00001U 57001A   56001.00000000  .00000000  00000-0  00000-0 0    10", kLine2);
    // 2056 January 1.0 = JD 2471998.5 (Meeus eq. 7.1).
    EXPECT_NEAR_UNIT(2471998.5, s.epochJd, 1e-6, kSecondsFromDays);
}

TEST(ElementSet, FieldsThatDoNotConvertReadAsZero)
{
    const SatelliteRecord r = ParseElementSet("X", "1 ABCDEU", "2 xxxxx  nonsense");
    EXPECT_EQ(r.catalogNumber, 0);
    EXPECT_EQ(r.inclinationRad, 0.0);
    EXPECT_EQ(r.meanMotionRadPerMin, 0.0);
    EXPECT_EQ(r.periodMinutes, 0.0);
    // "nan" and "inf" are not decimal numbers of an element field.
    const SatelliteRecord n = ParseElementSet(
        "X", kLine1, "2 00005  nan      inf      1859667 331.7664  19.3264 10.82419157413667");
    EXPECT_EQ(n.inclinationRad, 0.0);
    EXPECT_EQ(n.raanRad, 0.0);
}

TEST(ElementSet, PeriodAndModelChoice)
{
    // Vanguard 1: 1440 / 10.82419157 = 133.0366 min with the Kozai mean
    // motion; the Brouwer mean motion is slower by 1 + δ0 = 1.0004903
    // (δ0 = 1.5 k2 (3 cos² i − 1) / (a0² (1 − e²)^1.5), a0 = 1.353236 Earth
    // radii): 133.1006 min.
    const SatelliteRecord r = ParseElementSet("X", kLine1, kLine2);
    EXPECT_NEAR(r.periodMinutes, 133.1006, 0.0001);
    EXPECT_EQ(ModelForPeriod(224.999), OrbitModel::Sgp4NearEarth);
    EXPECT_EQ(ModelForPeriod(225.0), OrbitModel::Sdp4DeepSpace);
    SatelliteRecord exact = r;
    exact.periodMinutes = 225.0;
    EXPECT_EQ(CSatellitePropagator(exact).Model(), OrbitModel::Sdp4DeepSpace);
}

std::string WriteFile(const std::string& text)
{
    const std::string path = orv::test::MakeTempDir() + "/sets.txt";
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

TEST(ElementFile, NameLinesAndBlankLineEnd)
{
    const std::string text = std::string("  LEADING KEPT   \r\n") + kLine1 + "\r\n" + kLine2 + "\r\n" + "SECOND\n" + kLine1 +
                             "\n" + kLine2 + "\n" + "   \n" + "AFTER BLANK\n" + kLine1 + "\n" + kLine2 + "\n";
    CSatelliteList list;
    ASSERT_TRUE(list.Load(WriteFile(text)));
    ASSERT_EQ(list.Size(), 2u);
    EXPECT_EQ(list[0].name, "  LEADING KEPT");
    EXPECT_EQ(list[1].name, "SECOND");
    EXPECT_EQ(list[0].catalogNumber, 5);
    EXPECT_EQ(list.Find("second"), 1);
    EXPECT_EQ(list.Find("5"), 0);
    EXPECT_EQ(list.Find("SEC"), 1);
    EXPECT_EQ(list.Find("nothing"), -1);
}

TEST(ElementFile, IncompleteSetIsNotAddedAndMissingFileKeepsList)
{
    CSatelliteList list;
    ASSERT_TRUE(list.Load(WriteFile(std::string("A\n") + kLine1 + "\n" + kLine2 + "\nB\n" + kLine1 + "\n")));
    EXPECT_EQ(list.Size(), 1u);
    EXPECT_FALSE(list.Load("/nonexistent/folder/none.tle"));
    EXPECT_EQ(list.Size(), 1u);
}

TEST(ElementDescription, LinesAndFormats)
{
    const auto lines = DescribeElements(ParseElementSet("VANGUARD 1", kLine1, kLine2));
    ASSERT_EQ(lines.size(), 12u);
    EXPECT_EQ(lines[0], "Name: VANGUARD 1");
    EXPECT_EQ(lines[1], "NORAD catalog number: 5");
    EXPECT_EQ(lines[2], "International designator: 58002B  ");
    // Day 179.78495062 of 2000 = June 27, 18:50:19.73.
    EXPECT_EQ(lines[3], "Epoch of element set: 27-Jun-2000 18:50:20 UT");
    EXPECT_EQ(lines[4], "Element set number: 475");
    EXPECT_EQ(lines[5], "Drag coefficient (B*): 0.00002810");
    EXPECT_EQ(lines[6], "Inclination: 34.2682");
    EXPECT_EQ(lines[7], "RA of ascending node: 348.7242");
    EXPECT_EQ(lines[8], "Eccentricity: 0.1859667");
    EXPECT_EQ(lines[9], "Argument of perigee: 331.7664");
    EXPECT_EQ(lines[10], "Mean anomaly: 19.3264");
    EXPECT_EQ(lines[11], "Mean motion: 10.82419157 revs/day");
}

TEST(EpochAge, ThirtyDaysAndThirtyPointZeroOne)
{
    const SatelliteRecord r = ParseElementSet("X", kLine1, kLine2);
    CEarthSatSettings settings;
    EXPECT_EQ(CheckEpochAge(r, r.epochJd + 30.0, settings).result, EpochAgeCheck::Result::Proceed);
    EXPECT_EQ(CheckEpochAge(r, r.epochJd - 30.0, settings).result, EpochAgeCheck::Result::Proceed);
    const EpochAgeCheck late = CheckEpochAge(r, r.epochJd + 30.01, settings);
    EXPECT_EQ(late.result, EpochAgeCheck::Result::Ask);
    EXPECT_EQ(late.daysRounded, 30);
    EXPECT_NE(EpochAgeQuestion(late.daysRounded).find("is 30 days from the \"epoch\"\n"), std::string::npos);
    settings.epochAgeWarning = EpochAgeWarning::Off;
    EXPECT_EQ(CheckEpochAge(r, r.epochJd + 300.0, settings).result, EpochAgeCheck::Result::Proceed);
}

}  // namespace
}  // namespace orv::sat
