// The overlay language: coordinates, the cutting of draws, epochs, styles,
// the messages for bad lines, and the list "overlay.dat".
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "overlay/overlayfile.h"
#include "support/compare.h"
#include "util/angles.h"

namespace orv {
namespace {

using test::kArcsecFromRad;
using test::kSame;

// Right ascension and declination (radians) of a point of the display list.
void RaDecOf(const COverlay& o, std::size_t point, double& ra, double& dec)
{
    const double* v = &o.points[3 * point];
    ra = mod2pi(std::atan2(v[1], v[0]));
    dec = std::asin(v[2]);
}

std::vector<OverlayOp> Ops(const COverlay& o)
{
    std::vector<OverlayOp> ops;
    for (const auto& c : o.commands) ops.push_back(c.op);
    return ops;
}

TEST(OverlayCoordinates, SexagesimalFormsAndTheSignOfTheDeclination)
{
    // Hours alone, hours and minutes, hours minutes seconds.
    EXPECT_NEAR_UNIT(5.5, *ParseOverlayHours("5.5"), 1e-12, kSame);
    EXPECT_NEAR_UNIT(5.5, *ParseOverlayHours(" 5 30 "), 1e-12, kSame);
    EXPECT_NEAR_UNIT(5.0 + 30.0 / 60 + 15.5 / 3600, *ParseOverlayHours("5 30 15.5"), 1e-12, kSame);
    // The minus sign in front applies to the minutes too: -0 30 is −0.5°.
    EXPECT_NEAR_UNIT(-0.5, *ParseOverlayDegrees("-0 30"), 1e-12, kSame);
    EXPECT_NEAR_UNIT(-12.0 - 30.0 / 60 - 36.0 / 3600, *ParseOverlayDegrees("-12 30 36"), 1e-12, kSame);
    EXPECT_NEAR_UNIT(12.5, *ParseOverlayDegrees("+12 30"), 1e-12, kSame);
    // Only the last part may carry decimals; more than three parts is no angle.
    EXPECT_FALSE(ParseOverlayHours("5.5 30"));
    EXPECT_FALSE(ParseOverlayHours("1 2 3 4"));
    EXPECT_FALSE(ParseOverlayHours("five"));
    EXPECT_FALSE(ParseOverlayDegrees("--3"));
}

TEST(OverlayCoordinates, EpochWordsGiveTheJulianDatesOfTheirYears)
{
    // B1950.0 = JD 2433282.4235 and J2000.0 = JD 2451545.0 (Lieske 1979,
    // the standard epochs); a Besselian year is 365.2421988 days.
    EXPECT_NEAR_UNIT(2433282.4235, *OverlayEpochJd("B1950.0"), 1e-9, kSame);
    EXPECT_NEAR_UNIT(2451545.0, *OverlayEpochJd("J2000.0"), 1e-9, kSame);
    EXPECT_NEAR_UNIT(2451545.0 + 25 * 365.25, *OverlayEpochJd("j2025"), 1e-9, kSame);
    EXPECT_NEAR_UNIT(2433282.4235 - 75 * 365.2421988, *OverlayEpochJd("b1875.0"), 1e-9, kSame);
    EXPECT_FALSE(OverlayEpochJd("E2000.0"));
    EXPECT_FALSE(OverlayEpochJd("J"));
}

TEST(OverlayDraws, CrossingZeroHoursIsShortAndHalfTheSkyGoesEast)
{
    // 23h59m → 0h01m is a 2-minute line across 0h, one step.
    COverlay o = ParseOverlayText("move 23 59, 10\ndraw 0 1, 10\n");
    ASSERT_EQ((std::vector<OverlayOp>{OverlayOp::Move, OverlayOp::Draw}), Ops(o));
    double ra = 0, dec = 0;
    RaDecOf(o, 1, ra, dec);
    EXPECT_ANGLE_NEAR(0.25 * kRadPerDeg, ra, 1e-9, kArcsecFromRad);  // 1 minute of time

    // A change of exactly 12h keeps Δα = +π: int(π × 58.82 + 1) = 185 steps,
    // each going east.
    o = ParseOverlayText("move 0, 0\ndraw 12, 0\n");
    ASSERT_EQ(186u, o.commands.size());
    RaDecOf(o, 1, ra, dec);
    EXPECT_ANGLE_NEAR(kPi / 185, ra, 1e-9, kArcsecFromRad);
    // Going west across 0h the other way: 1h → 23h is −2h.
    o = ParseOverlayText("move 1, 0\ndraw 23, 0\n");
    RaDecOf(o, 1, ra, dec);
    EXPECT_LT(ra, 1.0 * kRadPerHour);

    // A line of constant right ascension stays one segment however long,
    // with the declination interpolated along the steps of longer lines.
    o = ParseOverlayText("move 6, -80\ndraw 6, 80\nmove 6, 0\ndraw 7, 30\n");
    const int steps = static_cast<int>(kRadPerHour * 58.8235294117647 + 1.0);  // 1h = 0.2618 rad → 16 steps
    ASSERT_EQ(2u + 1u + static_cast<unsigned>(steps), o.commands.size());
    RaDecOf(o, 3, ra, dec);
    EXPECT_ANGLE_NEAR(6 * kRadPerHour + kRadPerHour / steps, ra, 1e-9, kArcsecFromRad);
    EXPECT_ANGLE_NEAR(30.0 * kRadPerDeg / steps, dec, 1e-9, kArcsecFromRad);
}

TEST(OverlayEpoch, PrecessionFromTheEpochLineToJ2000MatchesMeeus)
{
    // Meeus, Astronomical Algorithms (2nd ed.), example 21.b: θ Persei at
    // J2000.0 (proper motion applied) α0 = 41.054063°, δ0 = +49.227750°
    // becomes α = 41.547214°, δ = +49.348483° on 2028 November 13.19 TD
    // (JD 2462088.69 = J2028.867049). Written at that epoch, the overlay's
    // point must come back to the J2000 place. Tolerance 0.1″: Meeus's IAU
    // 1976 precession and our IAU 2006 (with the 23 mas frame bias) differ
    // by a few hundredths of an arcsecond over 29 years.
    const COverlay o = ParseOverlayText("epoch J2028.867049\nmove 2.769814267, 49.348483\n");
    ASSERT_EQ(1u, o.PointCount());
    EXPECT_EQ(OverlayFrame::J2000, o.commands[0].frame);
    double ra = 0, dec = 0;
    RaDecOf(o, 0, ra, dec);
    EXPECT_ANGLE_NEAR(41.054063 * kRadPerDeg, ra, 0.1 / 206264.8, kArcsecFromRad);
    EXPECT_ANGLE_NEAR(49.227750 * kRadPerDeg, dec, 0.1 / 206264.8, kArcsecFromRad);

    // Without an epoch line the coordinates are the map's own.
    const COverlay plain = ParseOverlayText("move 2.769814267, 49.348483\n");
    EXPECT_EQ(OverlayFrame::MapEpoch, plain.commands[0].frame);
    RaDecOf(plain, 0, ra, dec);
    EXPECT_ANGLE_NEAR(41.547214 * kRadPerDeg, ra, 1e-8, kArcsecFromRad);
}

TEST(OverlayStyles, ColoursFontsLinesAndAlignment)
{
    const COverlay o = ParseOverlayText(
        "; a comment\n"
        "\n"
        "select font late\n"                  // defined further down: no effect here
        "define colour  Sky 10, 20, 30\n"
        "define color ink 1, 2\n"             // a colour needs three numbers
        "define font Late Times New Roman, 14, 1\n"
        "define line Dashed dash, 6, sky, DKRED\n"
        "define line odd squiggle\n"          // unknown style: solid
        "define line col solid, 2, nosuch\n"  // unknown colour: the default stays
        "SELECT FONT LATE\n"
        "select line dashed\n"
        "select textalign left, top\n"
        "select textalign right\n"
        "select textalign\n"
        "text 1, 2,   Polaris region  \n");
    ASSERT_EQ(1u, o.colours.size());
    EXPECT_EQ((OverlayColour{10, 20, 30}), o.colours.at("sky"));
    ASSERT_EQ(1u, o.fonts.size());
    EXPECT_EQ("Times New Roman", o.fonts[0].face);
    EXPECT_EQ(14.0, o.fonts[0].sizePt);
    EXPECT_TRUE(o.fonts[0].bold);
    EXPECT_FALSE(o.fonts[0].italic);                          // missing: default
    EXPECT_EQ((OverlayColour{255, 255, 255}), o.fonts[0].first);  // missing: white
    EXPECT_EQ((OverlayColour{0, 0, 0}), o.fonts[0].second);       // and black
    ASSERT_EQ(3u, o.lines.size());
    EXPECT_EQ(OverlayLineStyle::Dash, o.lines[0].style);
    EXPECT_EQ(6, o.lines[0].widthQuarterPt);
    EXPECT_EQ((OverlayColour{10, 20, 30}), o.lines[0].first);
    EXPECT_EQ((OverlayColour{128, 0, 0}), o.lines[0].second);
    EXPECT_EQ(OverlayLineStyle::Solid, o.lines[1].style);
    EXPECT_EQ((OverlayColour{255, 255, 255}), o.lines[2].first);

    // The first select font did nothing; then font, line, three alignments, text.
    ASSERT_EQ((std::vector<OverlayOp>{OverlayOp::SelectFont, OverlayOp::SelectLine, OverlayOp::TextAlign,
                                      OverlayOp::TextAlign, OverlayOp::TextAlign, OverlayOp::Text}),
              Ops(o));
    EXPECT_EQ(1u * 16 + 1, o.commands[2].index);  // left, top
    EXPECT_EQ(3u * 16 + 2, o.commands[3].index);  // right, vertical missing → centre
    EXPECT_EQ(2u * 16 + 2, o.commands[4].index);
    ASSERT_EQ(1u, o.texts.size());
    EXPECT_EQ("Polaris region", o.texts[0]);
    // Only the colour with two numbers was skipped.
    ASSERT_EQ(1u, o.ErrorCount());
    const auto error = std::find_if(o.diagnostics.begin(), o.diagnostics.end(),
                                    [](const auto& d) { return d.severity == OverlayDiagnostic::Severity::Error; });
    EXPECT_EQ(5, error->line);
}

TEST(OverlayStyles, BuiltInColoursAreTheTableOfTheLanguage)
{
    EXPECT_EQ((OverlayColour{128, 128, 0}), *BuiltInOverlayColour("dkyellow"));
    EXPECT_EQ((OverlayColour{192, 192, 192}), *BuiltInOverlayColour(" LtGray "));
    EXPECT_EQ((OverlayColour{64, 64, 64}), *BuiltInOverlayColour("dkgrey"));
    EXPECT_EQ((OverlayColour{0, 128, 128}), *BuiltInOverlayColour("dkcyan"));
    EXPECT_FALSE(BuiltInOverlayColour("orange"));
}

TEST(OverlayErrors, BadLinesAreReportedWithTheirNumbersAndSkipped)
{
    const COverlay o = ParseOverlayText(
        "move 1, 2\n"       // 1
        "draw 1.5\n"        // 2: no declination
        "draw 25, 0\n"      // 3: right ascension beyond 24h
        "draw 2, 95\n"      // 4: declination beyond 90°
        "draw 2, x\n"       // 5
        "epoch X1950\n"     // 6
        "text 3, 4\n"       // 7: no text
        "fly 1, 2\n"        // 8: unknown command (a warning, ignored)
        "draw 2, 3\n");     // 9: drawn
    ASSERT_EQ(7u, o.diagnostics.size());
    const int lines[] = {2, 3, 4, 5, 6, 7, 8};
    for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(lines[i], o.diagnostics[i].line) << o.diagnostics[i].message;
    EXPECT_EQ(6u, o.ErrorCount());
    EXPECT_NE(std::string::npos, o.diagnostics[0].message.find("expected a position"));
    EXPECT_NE(std::string::npos, o.diagnostics[1].message.find("0 to 24 hours"));
    EXPECT_NE(std::string::npos, o.diagnostics[2].message.find("-90 to +90"));
    EXPECT_EQ(OverlayDiagnostic::Severity::Warning, o.diagnostics[6].severity);
    // The good lines are all there: the move and the last draw (cut in steps).
    EXPECT_EQ(OverlayOp::Move, o.commands.front().op);
    EXPECT_EQ(OverlayOp::Draw, o.commands.back().op);

    // The bounding box holds only the coordinates that were read.
    EXPECT_FALSE(o.bounds.empty);
    EXPECT_NEAR_UNIT(15.0 * kRadPerDeg, o.bounds.raMinRad, 1e-12, kArcsecFromRad);
    EXPECT_NEAR_UNIT(30.0 * kRadPerDeg, o.bounds.raMaxRad, 1e-12, kArcsecFromRad);
    EXPECT_NEAR_UNIT(2.0 * kRadPerDeg, o.bounds.decMinRad, 1e-12, kArcsecFromRad);
    EXPECT_NEAR_UNIT(3.0 * kRadPerDeg, o.bounds.decMaxRad, 1e-12, kArcsecFromRad);
}

TEST(OverlayErrors, AMissingFileIsAnEmptyOverlayAndLongLinesAreCut)
{
    const COverlay missing = ParseOverlayFile("/nonexistent/folder/none.ovl");
    EXPECT_FALSE(missing.opened);
    EXPECT_TRUE(missing.commands.empty());
    EXPECT_TRUE(missing.diagnostics.empty());

    // A text longer than the 1023 characters of a line is cut there.
    const std::string longText(2000, 'x');
    const COverlay o = ParseOverlayText("text 1, 2, " + longText + "\r\n");
    ASSERT_EQ(1u, o.texts.size());
    EXPECT_EQ(1023u - std::string("text 1, 2, ").size(), o.texts[0].size());
}

TEST(OverlayList, RoundTripWithRelativePathsAndBadLines)
{
    const std::string dir = test::MakeTempDir();
    const std::string list = dir + "/overlay.dat";
    {
        std::ofstream out(list);
        out << "# shipped\n0\t0\t0\toverlays/milkyway.ovl\n1\t3\t5\t/abs/mine.ovl\n";
    }
    std::vector<OverlayListEntry> entries;
    ASSERT_TRUE(ReadOverlayList(list, entries).ok);
    ASSERT_EQ(2u, entries.size());
    EXPECT_EQ(dir + "/overlays/milkyway.ovl", entries[0].path);
    EXPECT_FALSE(entries[0].HasLevelRange());
    EXPECT_EQ(1, entries[1].active);
    EXPECT_TRUE(entries[1].LevelInRange(2));   // index 2 = level 3
    EXPECT_FALSE(entries[1].LevelInRange(5));  // level 6

    const std::string copy = dir + "/copy.dat";
    ASSERT_TRUE(WriteOverlayList(copy, entries).ok);
    std::vector<OverlayListEntry> again;
    ASSERT_TRUE(ReadOverlayList(copy, again).ok);
    ASSERT_EQ(2u, again.size());
    EXPECT_EQ(entries[1].path, again[1].path);
    EXPECT_EQ(5, again[1].maxLevel);

    {
        std::ofstream out(list);
        out << "1\t0\t0\tfine.ovl\n1 3 5 spaces.ovl\n";
    }
    const OverlayListResult bad = ReadOverlayList(list, again);
    EXPECT_FALSE(bad.ok);
    EXPECT_NE(std::string::npos, bad.message.find("line 2")) << bad.message;
    EXPECT_EQ(2u, again.size());  // unchanged
}

// The command line and the program start from the same list: the user's
// own when it reads.
TEST(OverlayStore, StartsFromTheUsersList)
{
    const std::string dir = test::MakeTempDir();
    { std::ofstream(dir + "/overlay.dat") << "1\t0\t0\tmine.ovl\n0\t2\t4\tother.ovl\n"; }
    COverlayStore store;
    const int generation = store.generation;
    ASSERT_TRUE(LoadStartupOverlayList(store, dir + "/overlay.dat"));
    ASSERT_EQ(2u, store.entries.size());
    EXPECT_EQ(dir + "/mine.ovl", store.entries[0].path);
    EXPECT_EQ(1, store.entries[0].active);
    EXPECT_EQ(4, store.entries[1].maxLevel);
    EXPECT_NE(generation, store.generation);
}

TEST(OverlayStore, ParsesAgainOnlyWhenTheFileChanges)
{
    const std::string path = test::MakeTempDir() + "/a.ovl";
    { std::ofstream(path) << "move 1, 2\n"; }
    COverlayStore store;
    const auto first = store.Get(path);
    EXPECT_EQ(first.get(), store.Get(path).get());
    { std::ofstream(path) << "move 1, 2\ndraw 1, 3\n"; }
    const auto second = store.Get(path);
    EXPECT_EQ(2u, second->PointCount());
}

}  // namespace
}  // namespace orv
