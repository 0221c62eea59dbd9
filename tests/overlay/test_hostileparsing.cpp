// Hostile numbers in the files a user writes by hand: overlays and text
// horizons holding NaN, infinities, numbers beyond a double and negative
// counts. Every line is refused with its line number or read as a finite
// value; the horizon tools take any index or width and stay within 360
// entries; nothing loops.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>

#include "map/horizonprofile.h"
#include "overlay/overlayfile.h"

using namespace orv;

namespace {

const char* const kHostileTexts[] = {"nan", "NaN", "inf", "-inf", "infinity", "1e308", "-1e308", "1e999",
                                     "-1",  "0",   "1e-400", "99999999999999999999", "--5", "5 60 60", "0x1p1023"};

}  // namespace

TEST(HostileParsing, OverlayNumbers)
{
    for (const char* t : kHostileTexts) {
        const auto h = ParseOverlayHours(t);
        const auto d = ParseOverlayDegrees(t);
        if (h) { EXPECT_TRUE(std::isfinite(*h)) << t; }
        if (d) { EXPECT_TRUE(std::isfinite(*d)) << t; }
        const auto epoch = OverlayEpochJd(std::string("J") + t);
        if (epoch) { EXPECT_TRUE(std::isfinite(*epoch)) << t; }
    }
}

TEST(HostileParsing, OverlayFilesOfHostileLines)
{
    std::string text = "epoch J1e308\nepoch Bnan\n";
    for (const char* t : kHostileTexts) {
        text += std::string("move ") + t + ", " + t + "\n";
        text += std::string("draw 5, ") + t + "\n";
        text += std::string("text ") + t + ", 10, label\n";
        text += std::string("define colour c ") + t + ", " + t + ", " + t + "\n";
        text += std::string("define font f Sans, ") + t + ", 1, 0, white, black\n";
        text += std::string("define line l dash, ") + t + ", white, black\n";
        text += std::string("select textalign ") + t + ", " + t + "\n";
    }
    // A draw across the whole circle many times over would be cut into
    // steps; a huge right ascension must not make billions of them.
    text += "move 0, 0\ndraw 1e300, 0\ndraw -1e300, 10\n";
    const COverlay o = ParseOverlayText(text, "hostile.ovl");
    EXPECT_GT(o.ErrorCount(), 0u);
    for (std::size_t i = 0; i < o.points.size(); ++i) { EXPECT_TRUE(std::isfinite(o.points[i])) << i; }
    EXPECT_LT(o.points.size(), 100000u);
    for (const OverlayFont& f : o.fonts) { EXPECT_TRUE(std::isfinite(f.sizePt) && f.sizePt >= 0.0); }
    for (const OverlayDiagnostic& d : o.diagnostics) { EXPECT_GT(d.line, 0); }
}

TEST(HostileParsing, TextHorizons)
{
    HorizonProfile profile{};
    for (const char* t : kHostileTexts) {
        for (const std::string& text : {std::string(t) + " 10\n90 20\n", std::string("0 ") + t + "\n180 5\n",
                                        std::string(t) + "\n" + t + "\n"}) {
            HorizonProfile before{};
            before.fill(3);
            profile = before;
            const HorizonFileResult r = ParseHorizonText(text, "horizon.txt", profile);
            if (!r.ok) { EXPECT_EQ(profile, before) << "a refused file changed the horizon: " << text; }
            for (const std::int8_t a : profile) { EXPECT_TRUE(a >= -90 && a <= 90) << text; }
        }
    }
    // Look-ups and editing tools at any angle or index.
    profile.fill(10);
    for (const double az : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e308, -1e308, -1.0}) {
        EXPECT_TRUE(std::isnan(HorizonAltitudeRad(profile, az)) || std::abs(HorizonAltitudeRad(profile, az)) <= 1.6)
            << az;
    }
    for (const int i : {INT_MIN, -1000000, -1, 0, 359, 360, 1000000, INT_MAX}) {
        FlattenHorizon(profile, i, INT_MAX, i);
        SmoothHorizon(profile, INT_MIN, i, i);
        InterpolateHorizon(profile, i, INT_MIN);
        for (const std::int8_t a : profile) { ASSERT_TRUE(a >= -90 && a <= 90) << i; }
    }
}
