// Passes plotted on the star chart: the place of each point among the stars,
// the time labels at the label interval, and the drawing on an image.

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include <cmath>
#include <memory>

#include "map/chartframe.h"
#include "map/coordinates.h"
#include "map/skyframes.h"
#include "observer/observer.h"
#include "satellite/passdraw.h"
#include "satellite/passes.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using namespace orv::sat;
using orv::test::kArcsecFromRad;
using orv::test::kSame;

namespace {

constexpr double kSecond = 1.0 / 86400.0;

// Philadelphia, 2019 June 5, 21:05 EDT (UT−4): the evening of a high ISS pass.
CObserverDoc Philadelphia()
{
    CObserverDoc o;
    o.SetSite("Philadelphia", 40.0 * kRadPerDeg, -75.0 * kRadPerDeg, 0.0);
    o.SetTimeZone(-5.0, true);
    o.SetLocalTime(CivilDateTime{2019, 6, 5, 21, 5, 0.0});
    return o;
}

// A chart with its projection set up for a surface.
struct Chart {
    CObserverDoc observer;
    CCoordinates coordinates;
    std::unique_ptr<CChartFrame> frame;
    int width = 400;
    int height = 400;

    void Finish()
    {
        coordinates.SetupSurface(width, height);
        frame = std::make_unique<CChartFrame>(observer, coordinates);
    }
};

// Altitude-azimuth chart centred on the zenith.
Chart ZenithChart(double fieldDeg)
{
    Chart c;
    c.observer = Philadelphia();
    c.coordinates.SetCentringMode(Centring::AltAz);
    c.coordinates.SetFieldDeg(fieldDeg);
    c.coordinates.SetCentreAltAz(c.observer, kHalfPi, kPi);
    c.Finish();
    return c;
}

// A pass across the sky through the zenith, from 10° altitude in the
// north-west (azimuth 300°) to 10° in the south-east (120°), one point every
// `stepSec` seconds from 21:01:00 EDT, 1° of arc a step.
SatellitePass ThroughZenith(double stepSec)
{
    SatellitePass pass;
    const double start = JulianDateFromCivil(CivilDateTime{2019, 6, 6, 1, 1, 0.0});  // 21:01 EDT
    for (int i = 0; i <= 160; ++i) {
        const double fromZenithDeg = -80.0 + i;
        PassPoint p;
        p.jdUT = start + i * stepSec * kSecond;
        p.elevationRad = (90.0 - std::fabs(fromZenithDeg)) * kRadPerDeg;
        p.azimuthRad = (fromZenithDeg < 0.0 ? 300.0 : 120.0) * kRadPerDeg;
        pass.points.push_back(p);
    }
    return pass;
}

ScreenPoint Project(const CChartFrame& frame, const PlottedPassPoint& p)
{
    double v[3];
    if (frame.IsHorizontal())
        frame.HorizontalToFrame(p.altitudeRad, p.azimuthRad, v);
    else
        frame.DateToFrame(p.raDateRad, p.decDateRad, v);
    ScreenPoint s;
    EXPECT_TRUE(frame.ToScreen(v, s));
    return s;
}

bool Lit(const QImage& image, int x, int y) { return (image.pixel(x, y) & 0xFFFFFF) != 0; }

int LitPixels(const QImage& image)
{
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) n += Lit(image, x, y) ? 1 : 0;
    return n;
}

QImage Draw(const Chart& chart, const PlottedPassList& passes)
{
    QImage image(chart.width, chart.height, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    DrawSurface surface;
    surface.painter = &painter;
    surface.kind = SurfaceKind::Bitmap;
    surface.widthPx = chart.width;
    surface.heightPx = chart.height;
    CLabelPlacer labels(chart.width, chart.height);
    DrawPlottedPasses(surface, *chart.frame, MakePalette(ColourScheme::Normal, SurfaceKind::Bitmap, false), labels,
                      passes);
    painter.end();
    return image;
}

}  // namespace

// Each point's place among the stars is the topocentric place of date at the
// point's own time. At the zenith that place is, by definition of sidereal
// time, right ascension = local apparent sidereal time and declination = the
// latitude; elsewhere converting back to the horizon must return the
// altitude and azimuth of the pass table.
TEST(PlottedPass, PointsAreThePlacesOfDateAtTheirOwnTimes)
{
    const CObserverDoc site = Philadelphia();
    SatellitePass pass;
    PassPoint zenith;
    zenith.jdUT = site.JulianDate() + 3600.0 * kSecond;  // an hour after the chart's time
    zenith.elevationRad = kHalfPi;
    zenith.azimuthRad = 0.0;
    PassPoint low;
    low.jdUT = zenith.jdUT + 90.0 * kSecond;
    low.elevationRad = 35.0 * kRadPerDeg;
    low.azimuthRad = 250.0 * kRadPerDeg;
    pass.points = {zenith, low};

    const PlottedPass plotted = MakePlottedPass("ISS (ZARYA)", pass, site);
    ASSERT_EQ(plotted.points.size(), 2u);
    EXPECT_EQ(plotted.satelliteName, "ISS (ZARYA)");

    CObserverDoc at = site;
    at.SetJulianDate(zenith.jdUT);
    EXPECT_ANGLE_NEAR(at.LAST() * kRadPerHour, plotted.points[0].raDateRad, 0.5 * kRadPerArcsec, kArcsecFromRad);
    EXPECT_NEAR_UNIT(site.LatitudeRad(), plotted.points[0].decDateRad, 0.5 * kRadPerArcsec, kArcsecFromRad);

    at.SetJulianDate(low.jdUT);
    double alt = 0.0, az = 0.0;
    EquatorialToHorizontal(at, plotted.points[1].raDateRad, plotted.points[1].decDateRad, alt, az);
    EXPECT_NEAR_UNIT(low.elevationRad, alt, 0.01 * kRadPerArcsec, kArcsecFromRad);
    EXPECT_ANGLE_NEAR(low.azimuthRad, az, 0.01 * kRadPerArcsec, kArcsecFromRad);
    EXPECT_DOUBLE_EQ(plotted.points[1].altitudeRad, low.elevationRad);
}

// On an equatorial chart the pass goes where the satellite will be among the
// stars: a point at the zenith an hour after the chart's time lies at the
// zenith's place of that later time (15° of hour angle east of the chart's
// own zenith), here the centre of the chart.
TEST(PlottedPass, EquatorialChartsPlaceAPassAtItsOwnTime)
{
    Chart chart;
    chart.observer = Philadelphia();
    CObserverDoc later = chart.observer;
    later.SetJulianDate(chart.observer.JulianDate() + 3600.0 * kSecond);
    double ra = later.LAST() * kRadPerHour, dec = later.LatitudeRad();
    DateToCatalogue(later, ra, dec);
    chart.coordinates.SetCentringMode(Centring::RaDec);
    chart.coordinates.SetFieldDeg(10.0);
    chart.coordinates.SetCentreRaDec(chart.observer, ra, dec);
    chart.Finish();

    // The zenith at 22:05:00 EDT and a point 30 s later; the label of
    // 22:05:00 marks the first.
    SatellitePass pass;
    PassPoint p;
    p.jdUT = later.JulianDate();
    p.elevationRad = kHalfPi;
    PassPoint q = p;
    q.jdUT += 30.0 * kSecond;
    q.elevationRad = 80.0 * kRadPerDeg;
    pass.points = {p, q};
    const PlottedPass plotted = MakePlottedPass("X", pass, chart.observer);
    const std::vector<PassLabel> labels = PassLabels(*chart.frame, plotted, 60);
    ASSERT_EQ(labels.size(), 1u);
    EXPECT_EQ(labels[0].text, "22:05:00");
    // 20 pixels to the degree: one pixel is 3′.
    EXPECT_NEAR_UNIT(chart.coordinates.ScreenCentreX(), labels[0].at.x, 1.0, kSame);
    EXPECT_NEAR_UNIT(chart.coordinates.ScreenCentreY(), labels[0].at.y, 1.0, kSame);
}

// Labels fall on the whole multiples of the interval of the site's local
// clock (EDT here), on the path.
TEST(PlottedPass, LabelsAtTheIntervalOfTheLocalClock)
{
    const Chart chart = ZenithChart(90.0);
    const PlottedPass plotted = MakePlottedPass("ISS", ThroughZenith(15.0), chart.observer);  // 21:01:00 to 21:41:00

    const std::vector<PassLabel> minutes = PassLabels(*chart.frame, plotted, 60);
    ASSERT_EQ(minutes.size(), 41u);
    EXPECT_EQ(minutes.front().text, "21:01:00");
    EXPECT_EQ(minutes[5].text, "21:06:00");
    EXPECT_EQ(minutes.back().text, "21:41:00");
    for (std::size_t i = 0; i < minutes.size(); ++i) {
        // Every fourth point (15 s steps) carries a label, exactly on it.
        const ScreenPoint on = Project(*chart.frame, plotted.points[4 * i]);
        EXPECT_NEAR_UNIT(on.x, minutes[i].at.x, 0.01, kSame);
        EXPECT_NEAR_UNIT(on.y, minutes[i].at.y, 0.01, kSame);
    }

    // 45 s: 21:01:30 is the first whole multiple after 21:01:00 (75690 s = 1682 × 45 s).
    const std::vector<PassLabel> odd = PassLabels(*chart.frame, plotted, 45);
    ASSERT_FALSE(odd.empty());
    EXPECT_EQ(odd.front().text, "21:01:30");
    EXPECT_EQ(odd[1].text, "21:02:15");
    EXPECT_EQ(odd.back().text, "21:40:30");

    // Points every 20 s, labels every 30 s: every other label lies between
    // two points, half-way along the chord.
    const PlottedPass sparse = MakePlottedPass("ISS", ThroughZenith(20.0), chart.observer);
    const std::vector<PassLabel> between = PassLabels(*chart.frame, sparse, 30);
    ASSERT_GE(between.size(), 3u);
    EXPECT_EQ(between[1].text, "21:01:30");
    const ScreenPoint a = Project(*chart.frame, sparse.points[1]);  // 21:01:20
    const ScreenPoint b = Project(*chart.frame, sparse.points[2]);  // 21:01:40
    EXPECT_NEAR_UNIT(0.5 * (a.x + b.x), between[1].at.x, 0.5, kSame);
    EXPECT_NEAR_UNIT(0.5 * (a.y + b.y), between[1].at.y, 0.5, kSame);
    // The direction of travel runs from a to b.
    EXPECT_GT(between[1].directionX * (b.x - a.x) + between[1].directionY * (b.y - a.y), 0.0);

    EXPECT_TRUE(PassLabels(*chart.frame, plotted, 0).empty());
}

// A pass over the zenith crosses the centre of a zenith chart: pixels there
// are drawn, and the far corner stays dark. Without passes nothing is drawn.
TEST(PlottedPass, APassThroughTheCentreDrawsAtTheCentre)
{
    const Chart chart = ZenithChart(90.0);
    PlottedPassList list;
    list.labelIntervalSec = 60;
    list.passes.push_back(MakePlottedPass("ISS (ZARYA)", ThroughZenith(15.0), chart.observer));
    const QImage image = Draw(chart, list);

    const int cx = chart.coordinates.ScreenCentreX(), cy = chart.coordinates.ScreenCentreY();
    int nearCentre = 0;
    for (int y = cy - 2; y <= cy + 2; ++y)
        for (int x = cx - 2; x <= cx + 2; ++x) nearCentre += Lit(image, x, y) ? 1 : 0;
    EXPECT_GT(nearCentre, 3);
    // The path runs north-west to south-east: on this chart (north up, east
    // left) from the upper right to the lower left; the other diagonal's
    // corners see nothing.
    EXPECT_FALSE(Lit(image, 5, 5));
    EXPECT_FALSE(Lit(image, 394, 394));
    const ScreenPoint start = Project(*chart.frame, list.passes[0].points.front());
    EXPECT_GT(start.x, cx);
    EXPECT_LT(start.y, cy);

    EXPECT_EQ(LitPixels(Draw(chart, PlottedPassList{})), 0);
}

// A pass near the antipode of the chart's centre is not drawn: there the
// projection sends neighbouring points to opposite ends of the plane, and a
// line between them would cross the whole chart.
TEST(PlottedPass, NothingIsDrawnAcrossTheAntipode)
{
    const Chart chart = ZenithChart(30.0);
    // Round the nadir at 2° from it: altitude −88°, all azimuths.
    PlottedPass pass;
    pass.satelliteName = "Below";
    for (int i = 0; i <= 36; ++i) {
        PlottedPassPoint p;
        p.jdUT = chart.observer.JulianDate() + i * 10.0 * kSecond;
        p.altitudeRad = -88.0 * kRadPerDeg;
        p.azimuthRad = i * 10.0 * kRadPerDeg;
        pass.points.push_back(p);
    }
    PlottedPassList list;
    list.passes.push_back(pass);
    EXPECT_EQ(LitPixels(Draw(chart, list)), 0);
    EXPECT_TRUE(PassLabels(*chart.frame, pass, 60).empty());
}
