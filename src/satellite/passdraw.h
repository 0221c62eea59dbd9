// Satellite passes plotted on the star chart (layer 21 of the chart): the
// path of each chosen pass across the sky, a tick and a local clock time
// "%02d:%02d:%02d" every `PassDisplayInterval` seconds, the satellite's name
// at the start and an arrowhead at the end.
//
// Where a pass goes on the chart:
//   - on a horizon (altitude-azimuth) chart, each point's apparent altitude
//     and azimuth, as the pass table lists them: the path is where to look
//     over the horizon at the listed times;
//   - on an equatorial chart, each point's apparent topocentric right
//     ascension and declination of date at the point's own time, so the
//     path lies among the stars where the satellite will be seen, whatever
//     the chart's own time. (The sky turns by 15° an hour: converting the
//     altitude and azimuth at the chart's time instead would misplace a
//     pass an hour away from it by 15° along the equator.)
//
// The drawing uses Qt Gui only. Each chart has its own pass layer
// (CPlottedPassLayer) holding the passes it shows; it draws them with the
// chart's palette and places their texts in the chart's label register.
#pragma once

#include <string>
#include <vector>

#include "map/chartlayer.h"
#include "map/coordinates.h"
#include "map/drawcontext.h"

namespace orv {
class CChartFrame;
class CObserverDoc;
}  // namespace orv

namespace orv::sat {

struct SatellitePass;

// One position of a plotted pass.
struct PlottedPassPoint {
    double jdUT = 0.0;
    double altitudeRad = 0.0;  // apparent (refracted), as in the pass table
    double azimuthRad = 0.0;   // from north through east
    double raDateRad = 0.0;    // apparent topocentric place, true equator and
    double decDateRad = 0.0;   // equinox of the point's own date
};

struct PlottedPass {
    std::string satelliteName;
    std::vector<PlottedPassPoint> points;  // in time order
};

// The passes one chart shows, and the spacing of their time labels.
struct PlottedPassList {
    std::vector<PlottedPass> passes;
    int labelIntervalSec = 60;  // PassDisplayInterval
};

// A pass of the pass search made ready for plotting: each point's altitude
// and azimuth at `site` are turned into the apparent place of date at the
// point's own time (the site's apparent sidereal time, refraction removed as
// the chart removes it).
PlottedPass MakePlottedPass(const std::string& satelliteName, const SatellitePass& pass, const CObserverDoc& site);

// A time label of a plotted pass: its text, where on the chart it belongs
// (on the path) and the path's direction there (a unit vector in pixels).
struct PassLabel {
    double jdUT = 0.0;
    std::string text;  // local civil time of the chart's site, "%02d:%02d:%02d"
    ScreenPoint at;
    double directionX = 1.0;
    double directionY = 0.0;
};

// The labels of one pass at the whole multiples of `labelIntervalSec` of the
// site's local clock within the pass, placed by interpolating between the
// two neighbouring points. Labels whose place cannot be projected (far
// behind the chart) are left out; those off the surface are kept.
std::vector<PassLabel> PassLabels(const CChartFrame& frame, const PlottedPass& pass, int labelIntervalSec);

// Draws every pass of `passes` through the chart's frame onto the surface:
// the path clipped to the surface (never across the far side of the sky),
// ticks and time labels, the name and the direction of travel, in the
// palette's satellite colours; texts go only where `labels` has room. The
// frame's coordinates must be set up for the surface.
void DrawPlottedPasses(const DrawSurface& surface, const CChartFrame& frame, const ChartPalette& palette,
                       CLabelPlacer& labels, const PlottedPassList& passes);

// The chart layer of plotted passes (place 21 of the chart's order).
class CPlottedPassLayer final : public IChartLayer {
public:
    std::span<const LayerSlot> Slots() const override { return kSlots; }
    bool ShownAt(const CMapView&, int) const override { return !m_passes.passes.empty(); }
    void Draw(DrawContext& ctx, LayerSlot slot) override;

    void SetPasses(PlottedPassList passes) { m_passes = std::move(passes); }
    void Clear() { m_passes.passes.clear(); }
    const PlottedPassList& Passes() const { return m_passes; }

private:
    static constexpr LayerSlot kSlots[] = {LayerSlot::SatellitePasses};
    PlottedPassList m_passes;
};

void RegisterPlottedPassLayer(CChartLayerRegistry& layers);

}  // namespace orv::sat
