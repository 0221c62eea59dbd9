// Star display arithmetic: disc sizes, B−V colours, the Greek letters of
// Bayer labels, the label and read-out texts and the visible-star list.
#include <gtest/gtest.h>

#include "catalog/stars/stardisplay.h"
#include "map/catalogsettings.h"

using namespace orv;

namespace {

// The defaults of the "Stars" section: 0.0625 inch at magnitude 2, nothing
// at magnitude 6.
constexpr StarSizeScale kDefaults{600, 200, 625, 0};

}  // namespace

TEST(StarDiscSize, EndsOfTheScaleAndTruncation)
{
    EXPECT_EQ(StarDiscRadius(600, kDefaults), 0);    // exactly at the limit: the faint radius
    EXPECT_EQ(StarDiscRadius(1200, kDefaults), 0);   // beyond it
    EXPECT_EQ(StarDiscRadius(200, kDefaults), 625);  // exactly at the bright end
    EXPECT_EQ(StarDiscRadius(-146, kDefaults), 625); // Sirius: brighter still, no larger
    // Midway, 625·(600 − 400)/400 = 312.5, truncated towards zero.
    EXPECT_EQ(StarDiscRadius(400, kDefaults), 312);
    // One hundredth above the limit of a scale with a faint radius.
    EXPECT_EQ(StarDiscRadius(599, StarSizeScale{600, 200, 625, 100}), 101);
}

TEST(StarDiscSize, LimitNotFainterThanTheBrightEndNeverDividesByZero)
{
    const StarSizeScale equal{300, 300, 625, 50};
    EXPECT_EQ(StarDiscRadius(300, equal), 625);  // at B: bright
    EXPECT_EQ(StarDiscRadius(301, equal), 50);   // L taken as B + 1: faint
    const StarSizeScale inverted{250, 300, 625, 50};
    EXPECT_EQ(StarDiscRadius(290, inverted), 625);
    EXPECT_EQ(StarDiscRadius(301, inverted), 50);
}

TEST(StarDiscSize, PixelsFollowTheSurfaceResolution)
{
    // 0.0625 inch: 6.0 pixels at 96 per inch (6.5 truncated after the half
    // added), 38 on a 600 dpi printer, 0 for the faint end.
    EXPECT_EQ(StarDiscVerticalPx(625, 96.0), 6);
    EXPECT_EQ(StarDiscVerticalPx(625, 600.0), 38);
    EXPECT_EQ(StarDiscVerticalPx(0, 600.0), 0);
    EXPECT_EQ(StarDiscVerticalPx(53, 96.0), 1);  // 0.5088 + 0.5
    EXPECT_EQ(StarDiscVerticalPx(52, 96.0), 0);  // 0.4992 + 0.5
    // Square pixels keep the radius; pixels narrower than tall (more per
    // inch across) need more of them across to stay round.
    EXPECT_EQ(StarDiscHorizontalPx(6, 96.0, 96.0), 6);
    EXPECT_EQ(StarDiscHorizontalPx(6, 120.0, 96.0), 7);
    EXPECT_EQ(StarDiscHorizontalPx(38, 600.0, 300.0), 76);
}

TEST(StarColour, BandEdgesOfTheBvTable)
{
    const BvThresholds t;  // −500, 100, 500, 2000
    EXPECT_EQ(StarColourFromBV(-501, t), (StarRgb{0, 0, 255}));    // plain blue below BV1
    EXPECT_EQ(StarColourFromBV(-500, t), (StarRgb{0, 0, 255}));    // BV1: whitening starts at 0
    EXPECT_EQ(StarColourFromBV(100, t), (StarRgb{255, 255, 255})); // exactly BV2: white
    EXPECT_EQ(StarColourFromBV(99, t), (StarRgb{254, 254, 255}));  // 599·255/600 = 254.6 → 254
    EXPECT_EQ(StarColourFromBV(500, t), (StarRgb{255, 255, 0}));   // BV3: yellow
    EXPECT_EQ(StarColourFromBV(2000, t), (StarRgb{255, 0, 0}));    // exactly BV4: plain red
    EXPECT_EQ(StarColourFromBV(3500, t), (StarRgb{255, 0, 0}));
    EXPECT_FALSE(StarColourFromBV(tycho2::kNoColour, t).has_value());  // no index: not coloured
}

TEST(StarColour, WellKnownStars)
{
    // B−V from the Hipparcos catalogue (ESA SP-1200, 1997, field H37).
    const BvThresholds t;
    // Rigel, B−V −0.03: blue-white, (−30 + 500)·255/600 = 199.75 → 199.
    EXPECT_EQ(StarColourFromBV(-30, t), (StarRgb{199, 199, 255}));
    // Procyon, +0.432: faintly yellow, blue 255 − 332·255/400 (211.65 → 211).
    EXPECT_EQ(StarColourFromBV(432, t), (StarRgb{255, 255, 44}));
    // Betelgeuse, +1.850: deep orange-red, green 255 − 1350·255/1500 (229.5 → 229).
    EXPECT_EQ(StarColourFromBV(1850, t), (StarRgb{255, 26, 0}));
}

TEST(StarColour, EqualThresholdsSkipTheEmptyBand)
{
    const BvThresholds t{100, 100, 500, 500};
    EXPECT_EQ(StarColourFromBV(99, t), (StarRgb{0, 0, 255}));
    EXPECT_EQ(StarColourFromBV(100, t), (StarRgb{255, 255, 255}));
    EXPECT_EQ(StarColourFromBV(500, t), (StarRgb{255, 0, 0}));
}

TEST(GreekLetters, SymbolFontLettersBecomeRealGreek)
{
    EXPECT_EQ(GreekLetterCodePoint(0), U'\u03B1');   // alpha from "a"
    EXPECT_EQ(GreekLetterCodePoint(7), U'\u03B8');   // theta from "q"
    EXPECT_EQ(GreekLetterCodePoint(16), U'\u03C1');  // rho
    // Sigma is the medial form: U+03C2 (ς) lies between rho and sigma in
    // the Unicode block, so "U+03B1 + index" would be wrong from here on.
    EXPECT_EQ(GreekLetterCodePoint(17), U'\u03C3');
    EXPECT_EQ(GreekLetterCodePoint(20), U'\u03C6');  // phi from "f"
    EXPECT_EQ(GreekLetterCodePoint(21), U'\u03C7');  // chi from "c"
    EXPECT_EQ(GreekLetterCodePoint(23), U'\u03C9');  // omega from "w"
    EXPECT_EQ(GreekLetterCodePoint(24), 0u);
    EXPECT_EQ(GreekLetterCodePoint(255), 0u);
    EXPECT_EQ(GreekLetterUtf8(17), "\xCF\x83");
    EXPECT_EQ(GreekLetterUtf8(0), "\xCE\xB1");
}

TEST(StarLabels, Formats)
{
    EXPECT_EQ(FlamsteedBesideBayerLabel(58), "(58)");
    EXPECT_EQ(FlamsteedLabel(19), "19");
    // Magnitudes in tenths without a point: 5.75 → [58], Sirius −1.46 → [-15].
    EXPECT_EQ(MagnitudeLabel(575), "[58]");
    EXPECT_EQ(MagnitudeLabel(-146), "[-15]");
    // Algol's range, 2.12 to 3.39 (GCVS).
    EXPECT_EQ(MagnitudeRangeLabel(212, 339), "[21 - 34]");
    EXPECT_EQ(VariableMagnitudeLabel(612), "V61");
    EXPECT_EQ(DistanceLabel(8), "8 ly");
    EXPECT_EQ(DistanceLabel(548), "548 ly");
}

TEST(StarLabels, MagnitudeBandsAndLabelFilter)
{
    CStarSettings s;  // bands 500 / 500-700 / 700, filter off, limit 400
    s.labelMagOption = 1;
    EXPECT_TRUE(MagnitudeLabelWanted(499, s));
    EXPECT_FALSE(MagnitudeLabelWanted(500, s));
    s.labelMagOption = 2;
    EXPECT_TRUE(MagnitudeLabelWanted(500, s));
    EXPECT_TRUE(MagnitudeLabelWanted(700, s));
    EXPECT_FALSE(MagnitudeLabelWanted(701, s));
    s.labelMagOption = 3;
    EXPECT_FALSE(MagnitudeLabelWanted(700, s));
    EXPECT_TRUE(MagnitudeLabelWanted(701, s));
    s.labelMagOption = 0;
    EXPECT_TRUE(MagnitudeLabelWanted(1600, s));

    EXPECT_TRUE(PassesLabelFilter(900, s));  // filter off: every star
    s.starLabelMagFilter = 1;
    EXPECT_TRUE(PassesLabelFilter(399, s));
    EXPECT_FALSE(PassesLabelFilter(400, s));  // "brighter than" the limit
}

TEST(StarReadout, LinesInOrder)
{
    StarReadout betelgeuse;
    betelgeuse.magCenti = 45;
    betelgeuse.rangeBrightCenti = 0;
    betelgeuse.rangeFaintCenti = 130;
    betelgeuse.variableText = "SRc";
    betelgeuse.distanceLy = 548;
    EXPECT_EQ(StarReadoutLines(betelgeuse), "\nMag: 0.45\nMag range: 0.00 to 1.30\nVar: SRc\nDistance: 548 ly");
    StarReadout plain;
    plain.magCenti = -146;
    EXPECT_EQ(StarReadoutLines(plain), "\nMag: -1.46");
}

namespace {
VisibleStarRow Row(const char* designation, int constellation, int greek, int flamsteed, int mag, int tyc1 = 1)
{
    VisibleStarRow r;
    r.designation = designation;
    r.constellation = constellation;
    r.greek = greek;
    r.flamsteed = flamsteed;
    r.magCenti = mag;
    r.tyc1 = tyc1;
    return r;
}
std::vector<std::string> Names(const std::vector<VisibleStarRow>& rows)
{
    std::vector<std::string> out;
    for (const auto& r : rows) out.push_back(r.designation);
    return out;
}
}  // namespace

TEST(VisibleStarList, SortingRules)
{
    // Orion is constellation 59, Taurus 77 (alphabetical order of the Latin names).
    std::vector<VisibleStarRow> rows{
        Row("TYC 129-1873-1", 255, 255, 0, 1001, 129), Row("58 Ori", 59, 255, 58, 420),
        Row("beta Ori", 59, 1, 19, 13),                Row("alpha Ori", 59, 0, 58, 45),
        Row("eta Tau", 77, 6, 25, 287),                Row("20 Ori", 59, 255, 20, 480),
    };
    rows[1].designation = "58 Ori";
    rows[3].flamsteed = 58;
    SortVisibleStars(rows, StarListSort::Designation, SortDirection::Ascending);
    EXPECT_EQ(Names(rows), (std::vector<std::string>{"alpha Ori", "beta Ori", "20 Ori", "58 Ori", "eta Tau",
                                                     "TYC 129-1873-1"}));
    SortVisibleStars(rows, StarListSort::Designation, SortDirection::Descending);
    EXPECT_EQ(Names(rows).front(), "TYC 129-1873-1");
    EXPECT_EQ(Names(rows).back(), "alpha Ori");
    SortVisibleStars(rows, StarListSort::Magnitude, SortDirection::Ascending);
    EXPECT_EQ(Names(rows), (std::vector<std::string>{"beta Ori", "alpha Ori", "eta Tau", "58 Ori", "20 Ori",
                                                     "TYC 129-1873-1"}));
    rows[4].variable = true;
    const std::string variable = rows[4].designation;
    SortVisibleStars(rows, StarListSort::Variable, SortDirection::Ascending);
    EXPECT_EQ(rows.front().designation, variable);
    SortVisibleStars(rows, StarListSort::Variable, SortDirection::Descending);
    EXPECT_EQ(rows.back().designation, variable);
}

TEST(VisibleStarList, NamesCompareWithoutRegardToCase)
{
    std::vector<VisibleStarRow> rows{Row("x", 255, 255, 0, 100), Row("y", 255, 255, 0, 100)};
    rows[0].name = "vega";
    rows[1].name = "Altair";
    SortVisibleStars(rows, StarListSort::Designation, SortDirection::Ascending);
    EXPECT_EQ(rows[0].name, "Altair");
}

TEST(VisibleStarList, ListingStartsWithItsHeading)
{
    std::vector<VisibleStarRow> rows{Row("alpha Ori", 59, 0, 58, 45)};
    rows[0].bvMilli = 1850;
    const std::string text = VisibleStarsListing(rows);
    EXPECT_EQ(text.rfind("Stars Visible on the Map\n\n", 0), 0u);
    EXPECT_NE(text.find("alpha Ori\t0.45\t1.85\t"), std::string::npos);
    EXPECT_EQ(StarListColumnKey(3), "StarListCol3");
}
