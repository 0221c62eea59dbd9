// Geometry of chart drawing: curves traced through the projection within a
// stated tolerance, clipped to the surface and never drawn through the
// antipode; the label placer keeping texts apart; the ground test.
#include <gtest/gtest.h>

#include <cmath>

#include "map/chartframe.h"
#include "map/curvetrace.h"
#include "map/drawcontext.h"
#include "map/labelplacer.h"
#include "map/mapdoc.h"
#include "support/compare.h"
#include "util/angles.h"
#include "util/settingsstore.h"

using namespace orv;

namespace {

struct Chart {
    CMemorySettingsStore store;
    CMapDoc doc{store};
    CCoordinates coords;

    Chart(double fieldDeg, int w, int h, double raDeg = 90.0, double decDeg = 30.0)
    {
        doc.observer.SetSite("test", 48.0 * kRadPerDeg, 11.0 * kRadPerDeg, 0.0);
        doc.observer.SetJulianDate(2451545.0);
        coords.SetFieldDeg(fieldDeg);
        coords.SetCentringMode(Centring::RaDec);
        coords.SetCentreRaDec(doc.observer, raDeg * kRadPerDeg, decDeg * kRadPerDeg);
        coords.SetupSurface(w, h);
    }
};

// A small circle of angular radius r about the frame vector c.
struct SmallCircle {
    double c[3], u[3], w[3], r;
    SmallCircle(const double centre[3], double radiusRad) : r(radiusRad)
    {
        for (int i = 0; i < 3; ++i) c[i] = centre[i];
        // Any unit vector not along c, made perpendicular.
        const double a[3] = {std::fabs(c[2]) < 0.9 ? 0.0 : 1.0, 0.0, std::fabs(c[2]) < 0.9 ? 1.0 : 0.0};
        const double dot = a[0] * c[0] + a[1] * c[1] + a[2] * c[2];
        double n = 0.0;
        for (int i = 0; i < 3; ++i) {
            u[i] = a[i] - dot * c[i];
            n += u[i] * u[i];
        }
        n = std::sqrt(n);
        for (double& x : u) x /= n;
        w[0] = c[1] * u[2] - c[2] * u[1];
        w[1] = c[2] * u[0] - c[0] * u[2];
        w[2] = c[0] * u[1] - c[1] * u[0];
    }
    void operator()(double t, double v[3]) const
    {
        for (int i = 0; i < 3; ++i) v[i] = std::cos(r) * c[i] + std::sin(r) * (std::cos(t) * u[i] + std::sin(t) * w[i]);
    }
};

void FrameCentre(const CCoordinates& c, double v[3])
{
    CChartFrame::FrameLonLatToVector(c.FrameCentreLonRad(), c.FrameCentreLatRad(), v);
}

}  // namespace

// A circle of 10° about the centre projects to a circle of radius
// 2·tan(5°)·scale about the screen centre (stereographic projection keeps
// circles). Every traced point lies on it, and every chord stays within the
// tracer's tolerance of 0.3 pixel of it, although only four steps were
// asked for.
TEST(CurveTrace, CircleWithinTolerance)
{
    Chart chart(20.0, 1000, 800);
    const CChartFrame frame(chart.doc.observer, chart.coords);
    double c[3];
    FrameCentre(chart.coords, c);
    const SmallCircle circle(c, 10.0 * kRadPerDeg);
    const CCurveTracer tracer(frame, 1000, 800, 40.0 * kRadPerDeg, 0.3);
    const TracedCurve curve = tracer.Trace(circle, 0.0, kTwoPi, 4);
    ASSERT_EQ(curve.polylines.size(), 1u);
    EXPECT_TRUE(curve.crossings.empty());
    const double R = 2.0 * std::tan(5.0 * kRadPerDeg) * chart.coords.ScaleY();
    const double cx = chart.coords.ScreenCentreX(), cy = chart.coords.ScreenCentreY();
    const auto& line = curve.polylines.front();
    EXPECT_GT(line.size(), 20u);
    for (std::size_t i = 0; i < line.size(); ++i) {
        EXPECT_NEAR_UNIT(R, std::hypot(line[i].x - cx, line[i].y - cy), 1e-6, orv::test::kSame);
        if (i == 0) continue;
        const double mx = 0.5 * (line[i].x + line[i - 1].x), my = 0.5 * (line[i].y + line[i - 1].y);
        EXPECT_LE(R - std::hypot(mx - cx, my - cy), 0.3 + 1e-9);
    }
}

// A circle larger than the surface is cut at the border: every point lies
// on the surface (widened by the margin) and the cuts are reported on the
// border, where labels go.
TEST(CurveTrace, ClippedToTheSurfaceWithBorderCrossings)
{
    Chart chart(20.0, 1000, 800);
    const CChartFrame frame(chart.doc.observer, chart.coords);
    double c[3];
    FrameCentre(chart.coords, c);
    const CCurveTracer tracer(frame, 1000, 800, 60.0 * kRadPerDeg, 0.3, 2.0);
    const TracedCurve curve = tracer.Trace(SmallCircle(c, 25.0 * kRadPerDeg), 0.0, kTwoPi, 16);
    ASSERT_FALSE(curve.Empty());
    for (const auto& line : curve.polylines)
        for (const ScreenPoint& p : line) {
            EXPECT_GE(p.x, -2.0 - 1e-9);
            EXPECT_LE(p.x, 1002.0 + 1e-9);
            EXPECT_GE(p.y, -2.0 - 1e-9);
            EXPECT_LE(p.y, 802.0 + 1e-9);
        }
    ASSERT_EQ(curve.crossings.size() % 2, 0u);
    ASSERT_GE(curve.crossings.size(), 4u);
    for (const BorderCrossing& b : curve.crossings) {
        const bool onBorder = std::fabs(b.point.x + 2.0) < 1e-6 || std::fabs(b.point.x - 1002.0) < 1e-6 ||
                              std::fabs(b.point.y + 2.0) < 1e-6 || std::fabs(b.point.y - 802.0) < 1e-6;
        EXPECT_TRUE(onBorder) << b.point.x << ',' << b.point.y;
    }
}

// A great circle whose pole lies 88° from the chart centre passes 2° from
// the centre and 2° from its antipode, where the projection goes to
// infinity. Its image is a circle of radius 2/cos 88° plane units; on a
// chart 90° from centre to edge every traced point and every chord lies on
// it within the tolerance, with nothing traced near the antipode (non-finite
// or overflowing coordinates there would leave the circle).
TEST(CurveTrace, GreatCircleNearTheAntipodeStaysOnItsImage)
{
    Chart chart(90.0, 1920, 1080);
    const CChartFrame frame(chart.doc.observer, chart.coords);
    const double lon0 = chart.coords.FrameCentreLonRad(), lat0 = chart.coords.FrameCentreLatRad();
    double c[3];
    FrameCentre(chart.coords, c);
    const double e[3] = {-std::sin(lon0), std::cos(lon0), 0.0};
    const double s[3] = {std::sin(lat0) * std::cos(lon0), std::sin(lat0) * std::sin(lon0), -std::cos(lat0)};
    // The pole: 88° from the centre, towards the south-east on the plane.
    const double a = 88.0 * kRadPerDeg, q = 1.0 / std::sqrt(2.0);
    double pole[3];
    for (int i = 0; i < 3; ++i) pole[i] = std::cos(a) * c[i] + std::sin(a) * q * (e[i] + s[i]);
    // Its image: Side(p) = −cn·|p|²/4 + x·en + y·sn + cn = 0, the circle of
    // centre 2(en, sn)/cn and radius 2/|cn| in plane units.
    const double cn = std::cos(a), en = std::sin(a) * q, sn = std::sin(a) * q;
    const double scale = chart.coords.ScaleX();
    ASSERT_DOUBLE_EQ(scale, chart.coords.ScaleY());
    const double ccx = chart.coords.ScreenCentreX() - 2.0 * en / cn * scale;
    const double ccy = chart.coords.ScreenCentreY() + 2.0 * sn / cn * scale;
    const double radius = 2.0 / std::fabs(cn) * scale;

    const double visible = chart.coords.VisibleRadiusRad();
    const double cap = std::min(visible + CCurveTracer::CapMarginRad(visible), 170.0 * kRadPerDeg);
    const CCurveTracer tracer(frame, 1920, 1080, cap);
    const int steps = static_cast<int>(std::ceil(kTwoPi / CCurveTracer::MaxStepRad(visible)));
    const TracedCurve curve = tracer.Trace(SmallCircle(pole, kHalfPi), 0.0, kTwoPi, steps);
    ASSERT_FALSE(curve.Empty());
    std::size_t points = 0;
    for (const auto& line : curve.polylines)
        for (std::size_t i = 0; i < line.size(); ++i) {
            ++points;
            EXPECT_NEAR_UNIT(radius, std::hypot(line[i].x - ccx, line[i].y - ccy), 0.35, orv::test::kSame);
            if (i == 0) continue;
            const double mx = 0.5 * (line[i].x + line[i - 1].x), my = 0.5 * (line[i].y + line[i - 1].y);
            EXPECT_NEAR_UNIT(radius, std::hypot(mx - ccx, my - ccy), 0.35, orv::test::kSame);
        }
    EXPECT_GT(points, 10u);
}

TEST(CurveTrace, SegmentClipping)
{
    Chart chart(20.0, 1000, 800);
    const CChartFrame frame(chart.doc.observer, chart.coords);
    const CCurveTracer tracer(frame, 1000, 800, 0.5, 0.3, 2.0);
    ScreenPoint a{-10.0, 50.0}, b{1010.0, 50.0};
    bool ca = false, cb = false;
    ASSERT_TRUE(tracer.ClipSegment(a, b, ca, cb));
    EXPECT_TRUE(ca && cb);
    EXPECT_DOUBLE_EQ(a.x, -2.0);
    EXPECT_DOUBLE_EQ(b.x, 1002.0);
    ScreenPoint c{-10.0, -10.0}, d{-5.0, 900.0};
    EXPECT_FALSE(tracer.ClipSegment(c, d, ca, cb));
    ScreenPoint e{10.0, 10.0}, f{20.0, 20.0};
    ASSERT_TRUE(tracer.ClipSegment(e, f, ca, cb));
    EXPECT_FALSE(ca || cb);
}

TEST(LabelPlacer, KeepsLabelsApartAndOnTheChart)
{
    CLabelPlacer placer(200.0, 100.0, 16.0);
    const LabelRect first[] = {{10, 10, 50, 20}, {60, 10, 100, 20}};
    EXPECT_EQ(placer.Place(first), 0);
    EXPECT_EQ(placer.Place(first), 1);   // the first place is taken now
    EXPECT_EQ(placer.Place(first), -1);  // and both are
    const LabelRect offChart[] = {{190, 10, 230, 20}, {-5, 50, 20, 60}, {150, 95, 180, 105}};
    EXPECT_EQ(placer.Place(offChart), -1);
    placer.Occupy({120, 40, 130, 50});  // a star's disc
    const LabelRect nearStar[] = {{125, 45, 160, 55}, {135, 45, 170, 55}};
    EXPECT_EQ(placer.Place(nearStar), 1);
    // Touching edges do not overlap.
    const LabelRect touching[] = {{50, 10, 60, 20}};
    EXPECT_EQ(placer.Place(touching), 0);
}

// A bright star's label may cover the discs of much fainter stars when no
// place is wholly free, but never a label, a mark or a brighter disc.
TEST(LabelPlacer, BrightLabelsMayCoverOnlyFaintDiscs)
{
    CLabelPlacer placer(200.0, 100.0, 16.0);
    placer.Occupy({20, 20, 24, 24}, 950);  // a 9.5 mag disc
    placer.Occupy({60, 20, 64, 24}, 450);  // a 4.5 mag disc
    placer.Occupy({100, 20, 110, 30});     // a label
    const LabelRect overFaint[] = {{18, 18, 40, 26}};
    const LabelRect overBright[] = {{58, 18, 80, 26}};
    const LabelRect overLabel[] = {{98, 18, 120, 26}};
    EXPECT_EQ(placer.Place(overFaint), -1);
    EXPECT_EQ(placer.Place(overFaint, 650), 0);  // labelling a 3.5 mag star, 3 mag of tolerance
    EXPECT_EQ(placer.Place(overBright, 650), -1);
    EXPECT_EQ(placer.Place(overLabel, CLabelPlacer::kCoverNothing - 1), -1);
    // The label placed over the faint disc now blocks like any label.
    EXPECT_EQ(placer.Place(overFaint, 650), -1);
}

// The ground: on a chart centred at the zenith with the field reaching the
// horizon at the top and bottom edges, the horizon is the circle through
// them; the corners are below it, the centre above.
TEST(GroundTest, HorizonCircleOnAZenithChart)
{
    Chart chart(90.0, 1920, 1080);
    chart.coords.SetCentringMode(Centring::AltAz);
    chart.coords.SetCentreAltAz(chart.doc.observer, kHalfPi, kPi);
    chart.coords.SetupSurface(1920, 1080);
    const CChartFrame frame(chart.doc.observer, chart.coords);
    const CGroundTest ground(frame);
    EXPECT_FALSE(ground.BelowHorizon(960, 540));
    EXPECT_TRUE(ground.BelowHorizon(5, 5));
    EXPECT_TRUE(ground.BelowHorizon(1915, 1075));
    EXPECT_FALSE(ground.BelowHorizon(960, 4));   // just inside the top edge
    EXPECT_TRUE(ground.BelowHorizon(960 + 545, 540));  // beyond the circle at the side
}

// Grid spacing from the field: about six latitude lines from the centre to
// the top edge, in readable steps; right ascension lines as far apart on the
// sky at the centre's declination.
TEST(GridSpacing, AutomaticFromTheField)
{
    // Level 1 (90°): 15° lines; 1h of right ascension on the equator is 15°.
    GridSpacing s = AutomaticSpacing(GridKind::RaDec, 90.0, 0.0);
    EXPECT_EQ(s.latStepArcsec, 15 * 3600);
    EXPECT_EQ(s.lonStepUnits, 3600);
    EXPECT_TRUE(s.lonInTime);
    // Level 4 (8°): 1.33° wanted, 2° taken; at declination 60° the meridians
    // need 4° of arc, 16 minutes of time → 20 minutes.
    s = AutomaticSpacing(GridKind::RaDec, 8.0, 60.0 * kRadPerDeg);
    EXPECT_EQ(s.latStepArcsec, 2 * 3600);
    EXPECT_EQ(s.lonStepUnits, 20 * 60);
    // Level 10 (5′): 50″ wanted, 1′ taken; 4 seconds of time → 5 s.
    s = AutomaticSpacing(GridKind::RaDec, 5.0 / 60.0, 0.0);
    EXPECT_EQ(s.latStepArcsec, 60);
    EXPECT_EQ(s.lonStepUnits, 5);
    // Near the pole the meridians stop widening at 6h (and 90° elsewhere).
    EXPECT_EQ(AutomaticSpacing(GridKind::RaDec, 90.0, 89.0 * kRadPerDeg).lonStepUnits, 6 * 3600);
    EXPECT_EQ(AutomaticSpacing(GridKind::AltAz, 90.0, 89.0 * kRadPerDeg).lonStepUnits, 90 * 3600);
    EXPECT_FALSE(AutomaticSpacing(GridKind::Galactic, 10.0, 0.0).lonInTime);
}

TEST(GridSpacing, StoredIntervalsAndTheirLimits)
{
    CGridData data(GridKind::RaDec);
    data.method = 1;
    data.interval1 = 30;   // minutes of time
    data.interval2 = 120;  // arc minutes
    auto s = StoredSpacing(data, 20.0 * kRadPerDeg);
    ASSERT_TRUE(s);
    EXPECT_EQ(s->lonStepUnits, 1800);
    EXPECT_EQ(s->latStepArcsec, 7200);
    EXPECT_NEAR_UNIT(7.5 * kRadPerDeg, s->LonStepRad(), 1e-15, orv::test::kArcsecFromRad);
    data.interval2 = 0;
    EXPECT_FALSE(StoredSpacing(data, 20.0 * kRadPerDeg));
    data.interval2 = 1;  // 1′ lines over a 130° cap: thousands of lines
    EXPECT_FALSE(StoredSpacing(data, 130.0 * kRadPerDeg));
}

TEST(GridLabels, Formats)
{
    EXPECT_EQ(HourLabel(5 * 3600).toStdString(), "5h");
    EXPECT_EQ(HourLabel(5 * 3600 + 30 * 60).toStdString(), "5h30m");
    EXPECT_EQ(HourLabel(5 * 3600 + 4 * 60).toStdString(), "5h04m");
    EXPECT_EQ(HourLabel(86400 + 3600).toStdString(), "1h");  // wrapped into the day
    EXPECT_EQ(HourLabel(-3600).toStdString(), "23h");
    EXPECT_EQ(HourLabel(5 * 3600 + 4 * 60 + 15).toStdString(), "5h04m15s");
    EXPECT_EQ(AngleLabel(-(20 * 3600 + 30 * 60), true).toStdString(), "-20\u00B030'");
    EXPECT_EQ(AngleLabel(45 * 3600, true).toStdString(), "+45\u00B0");
    EXPECT_EQ(AngleLabel(0, true).toStdString(), "0\u00B0");
    EXPECT_EQ(AngleLabel(10 * 3600 + 15, true).toStdString(), "+10\u00B000'15\"");
    EXPECT_EQ(AzimuthLabel(90 * 3600).toStdString(), "E");
    EXPECT_EQ(AzimuthLabel(200 * 3600).toStdString(), "200\u00B0");
}
