// The overlays the data builder writes: read back by the program's own
// overlay parser, the galactic centre lands on its published place and the
// Milky Way's contour lines keep their moves and draws.
#include <gtest/gtest.h>

#include <cmath>

#include "overlay/overlayfile.h"
#include "overlaybuild.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using orv::test::kArcsecFromRad;

namespace {

std::string Text(const databuild::OutputFile& f) { return std::string(f.bytes.begin(), f.bytes.end()); }

void RaDec(const COverlay& o, std::size_t i, double& ra, double& dec)
{
    const double* v = &o.points[3 * i];
    ra = mod2pi(std::atan2(v[1], v[0]));
    dec = std::asin(v[2]);
}

TEST(OverlayBuild, TheGalacticCentreIsWhereTheHipparcosFrameHasIt)
{
    const COverlay o = ParseOverlayText(Text(databuild::GalacticOverlay()), "galactic.ovl");
    EXPECT_EQ(0u, o.ErrorCount());
    EXPECT_TRUE(o.diagnostics.empty());
    // The cross at the centre is the last two lines before the label: its
    // arms meet at l = 0, b = 0, published as α = 266.40499°, δ = −28.93617°
    // (ESA 1997, vol. 1, sect. 1.5.3). The positions are written to 0.1 s and
    // 1″, and each arm's midpoint is off the great circle by under 1″.
    std::vector<std::size_t> moves;
    for (std::size_t i = 0; i < o.commands.size(); ++i)
        if (o.commands[i].op == OverlayOp::Move) moves.push_back(i);
    ASSERT_GE(moves.size(), 2u);
    // The second arm runs from its move to the point before the label; its
    // midpoint on the sphere is the normalised sum of its ends.
    const auto& c = o.commands;
    const double* a = &o.points[3 * c[moves.back()].index];
    const double* b = &o.points[3 * (c.back().index - 1)];
    const double m[3] = {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
    const double ra = mod2pi(std::atan2(m[1], m[0])), dec = std::atan2(m[2], std::hypot(m[0], m[1]));
    EXPECT_ANGLE_NEAR(266.40499 * kRadPerDeg, ra, 3.0 / 206264.8 / std::cos(28.9 * kRadPerDeg), kArcsecFromRad);
    EXPECT_NEAR_UNIT(-28.93617 * kRadPerDeg, dec, 3.0 / 206264.8, kArcsecFromRad);
    ASSERT_EQ(12u, o.TextCount());
    EXPECT_EQ("Galactic centre", o.texts.back());
}

TEST(OverlayBuild, MilkyWayContoursKeepTheirMovesAndRefuseBadLines)
{
    databuild::OutputFile out;
    std::string error;
    ASSERT_TRUE(databuild::MilkyWayOverlay("M  6.31500  36.0000\nD  6.28583  36.3411\nS 4.95472 -36.4503\n"
                                           "D 4.98028 -36.0000\n",
                                           out, error))
        << error;
    const COverlay o = ParseOverlayText(Text(out));
    ASSERT_EQ(0u, o.ErrorCount());
    std::vector<OverlayOp> ops;
    for (const auto& c : o.commands)
        if (c.op == OverlayOp::Move || c.op == OverlayOp::Draw) ops.push_back(c.op);
    EXPECT_EQ((std::vector<OverlayOp>{OverlayOp::Move, OverlayOp::Draw, OverlayOp::Move, OverlayOp::Draw}), ops);
    double ra, dec;
    RaDec(o, 2, ra, dec);
    EXPECT_ANGLE_NEAR(4.95472 * 15.0 * kRadPerDeg, ra, 1.0 / 206264.8 * 15.0, kArcsecFromRad);
    EXPECT_NEAR_UNIT(-36.4503 * kRadPerDeg, dec, 1.0 / 206264.8, kArcsecFromRad);

    EXPECT_FALSE(databuild::MilkyWayOverlay("M 1 2\nX 1 2\n", out, error));
    EXPECT_EQ("milkyway.dat, line 2: expected \"M|S|D hours degrees\"", error);
}

}  // namespace
