// The ground-track world map: outlines put back together from the file's
// region pieces, a track over the date line carried across the map's edge,
// the map turned about the pole, land round the pole filled.

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include <cmath>

#include "satellite/groundtrackmap.h"
#include "util/angles.h"

using namespace orv;
using namespace orv::sat;

namespace {

WorldPoint P(double lonDeg, double latDeg)
{
    return WorldPoint{static_cast<std::int16_t>(std::lround(lonDeg * 100.0)),
                      static_cast<std::int16_t>(std::lround(latDeg * 100.0))};
}

WorldPolyline Line(WorldRegion region, std::initializer_list<WorldPoint> points)
{
    return WorldPolyline{region, std::vector<WorldPoint>(points)};
}

// A track along the equator from `fromLonDeg` eastward, `count` points a
// degree apart, one minute apart, all sunlit.
GroundTrackResult EquatorTrack(double fromLonDeg, int count)
{
    GroundTrackResult track;
    for (int i = 0; i < count; ++i) {
        GroundTrackPoint p;
        p.jdUT = 2458640.5 + i / 1440.0;
        double lon = fromLonDeg + i;
        if (lon > 180.0) lon -= 360.0;
        p.longitudeRad = lon * kRadPerDeg;
        p.latitudeRad = 0.0;
        track.points.push_back(p);
    }
    track.endJdUT = track.points.back().jdUT;
    return track;
}

const QRectF kArea(0, 0, 900, 520);

QImage Draw(const std::vector<WorldOutline>& land, const GroundTrackResult& track, double centralLonDeg)
{
    QImage image(kArea.size().toSize(), QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    GroundTrackMapOptions options;
    options.centralLongitudeDeg = centralLonDeg;
    options.labelIntervalMin = 0;
    options.night = NightShading::Off;
    DrawGroundTrackMap(painter, kArea, land, track, options);
    painter.end();
    return image;
}

QRgb At(const QImage& image, double centralLonDeg, double lonDeg, double latDeg)
{
    const QPointF p = GroundTrackMapPixel(GroundTrackMapRect(kArea), centralLonDeg, lonDeg, latDeg);
    return image.pixel(static_cast<int>(p.x()), static_cast<int>(p.y()));
}

// The sunlit track is drawn yellow; the ocean is dark blue.
bool Yellow(QRgb c) { return qRed(c) > 180 && qGreen(c) > 140 && qBlue(c) < 120; }
bool Ocean(QRgb c) { return qBlue(c) > qRed(c) + 20 && qRed(c) < 60; }
bool Land(QRgb c) { return qGreen(c) > qBlue(c) + 10 && qGreen(c) > 60; }

}  // namespace

TEST(WorldOutlines, RegionPiecesJoinIntoClosedOutlines)
{
    // One coast cut at two region limits (each piece ends on the first point
    // of the next), then a line that never closes.
    const std::vector<WorldPolyline> file = {
        Line(WorldRegion::Europe, {P(0, 0), P(10, 0), P(20, 5)}),
        Line(WorldRegion::Asia, {P(20, 5), P(20, 15), P(10, 20)}),
        Line(WorldRegion::Africa, {P(10, 20), P(0, 10), P(0, 0)}),
        Line(WorldRegion::NAmer, {P(-80, 40), P(-70, 45), P(-60, 50)}),
    };
    const std::vector<WorldOutline> outlines = JoinWorldOutlines(file);
    ASSERT_EQ(outlines.size(), 2u);
    EXPECT_TRUE(outlines[0].closed);
    EXPECT_EQ(outlines[0].points.size(), 7u);  // 3 + 2 + 2 points, the joints once
    EXPECT_FALSE(outlines[1].closed);
    EXPECT_EQ(outlines[1].points.size(), 3u);
}

// A track from 160°E over the date line to 160°W, on a map centred on
// Greenwich: drawn at both edges, never back across the map.
TEST(GroundTrackMap, TrackOverTheDateLineIsCarriedAcrossTheEdge)
{
    const GroundTrackResult track = EquatorTrack(160.0, 41);
    const QImage image = Draw({}, track, 0.0);
    EXPECT_TRUE(Yellow(At(image, 0.0, 170.0, 0.0)));
    EXPECT_TRUE(Yellow(At(image, 0.0, -170.0, 0.0)));
    // (Samples away from the 30° graticule.)
    for (int lon = -155; lon <= 155; lon += 10) {
        SCOPED_TRACE(lon);
        EXPECT_FALSE(Yellow(At(image, 0.0, lon, 0.0)));
        EXPECT_TRUE(Ocean(At(image, 0.0, lon, 3.0)));
    }

    // Turned to 180°: the same track sits in the middle of the map, whole.
    const QImage turned = Draw({}, track, 180.0);
    for (int lon : {165, 175, -175, -165}) {
        SCOPED_TRACE(lon);
        EXPECT_TRUE(Yellow(At(turned, 180.0, lon, 0.0)));
    }
    EXPECT_FALSE(Yellow(At(turned, 180.0, 5.0, 0.0)));
    EXPECT_FALSE(Yellow(At(turned, 180.0, 95.0, 0.0)));
}

// Land that goes once round the pole (Antarctica in the data set: a ring at
// about −70° whose longitudes run through 360°) is filled down to the pole,
// on a map turned any way; islands over the date line are filled on both
// sides of it.
TEST(GroundTrackMap, LandRoundThePoleAndOverTheDateLineIsFilled)
{
    std::vector<WorldPoint> ring;
    for (int lon = -180; lon <= 170; lon += 10) ring.push_back(P(lon, -70.0));
    ring.push_back(P(178.0, -70.0));
    ring.push_back(P(-180.0, -70.0));  // back to the first point, over the date line
    WorldOutline antarctica{ring, true};
    // A square island from 175°E to 175°W, written as the data set writes
    // such islands, with the jump between −180 and 180.
    WorldOutline island{{P(175, 10), P(180, 10), P(-180, 10), P(-175, 10), P(-175, 20), P(-180, 20), P(180, 20),
                         P(175, 20), P(175, 10)},
                        true};
    const std::vector<WorldOutline> land = {antarctica, island};
    for (double central : {0.0, 100.0, 180.0, -45.0}) {
        SCOPED_TRACE(central);
        const QImage image = Draw(land, GroundTrackResult{}, central);
        // (Samples away from the 30° graticule.)
        EXPECT_TRUE(Land(At(image, central, 10.0, -80.0)));
        EXPECT_TRUE(Land(At(image, central, 125.0, -85.0)));
        EXPECT_TRUE(Ocean(At(image, central, 50.0, -55.0)));
        EXPECT_TRUE(Land(At(image, central, 177.0, 15.0)));
        EXPECT_TRUE(Land(At(image, central, -177.0, 15.0)));
        EXPECT_TRUE(Ocean(At(image, central, 170.0, 15.0)));
        EXPECT_TRUE(Ocean(At(image, central, -170.0, 15.0)));
        EXPECT_TRUE(Ocean(At(image, central, 10.0, 15.0)));  // no band along 10°-20°
    }
}
