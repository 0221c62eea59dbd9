// The ground-track map: a small world map in the plate carrée (equidistant
// cylindrical) projection with the land of "Data\WorldSmall.dat" filled, a
// 30° graticule, the night side of the Earth at the start of the track, and
// the track itself coloured by the satellite's illumination (sunlit,
// penumbra, umbra), with a time label every N minutes. The map can be turned
// about the polar axis (the central longitude); the track is carried across
// the map's edge, never drawn back across the map.
//
// Qt Gui only: the ground-track page draws it on screen, the tests on an image.
#pragma once

#include <QPainter>
#include <QRectF>

#include <limits>
#include <string>
#include <vector>

#include "satellite/groundtrack.h"
#include "satellite/worldmap.h"

namespace orv::sat {

// A land outline put back together from the region pieces of the file.
struct WorldOutline {
    std::vector<WorldPoint> points;
    bool closed = false;  // the last point is the first: the outline can be filled
};

// Joins consecutive polylines of the file that continue one another (the
// last point of one is the first of the next), as the file's builder cut
// each coastline ring at the region limits. A chain that comes back to its
// first point is a closed outline; any other chain is kept open.
std::vector<WorldOutline> JoinWorldOutlines(const std::vector<WorldPolyline>& polylines);

enum class NightShading { Off, AtTrackStart };

struct GroundTrackMapOptions {
    double centralLongitudeDeg = 0.0;  // east positive
    int labelIntervalMin = 10;         // a time label every so many minutes; 0 none
    double localOffsetHours = 0.0;     // the labels' local civil time: UT + this
    NightShading night = NightShading::AtTrackStart;
    std::string title;                 // drawn above the map
    // Other users of the map (the eclipse paths): the night at a given
    // instant even without a track, under its own legend text, and no
    // legend of the track's illumination colours.
    double nightAtJdUT = std::numeric_limits<double>::quiet_NaN();
    std::string nightLegend = "Night at the start";
    bool illuminationLegend = true;
};

// The map's rectangle inside `area` (2:1, centred, below the title band and
// above the legend).
QRectF GroundTrackMapRect(const QRectF& area);

// Pixel of a longitude and latitude (degrees) on the map drawn in `mapRect`
// about `centralLongitudeDeg`; the longitude is brought into the map's
// 360° span.
QPointF GroundTrackMapPixel(const QRectF& mapRect, double centralLongitudeDeg, double longitudeDeg,
                            double latitudeDeg);

// Draws the whole map, title and legend into `area`.
void DrawGroundTrackMap(QPainter& painter, const QRectF& area, const std::vector<WorldOutline>& land,
                        const GroundTrackResult& track, const GroundTrackMapOptions& options);

}  // namespace orv::sat
