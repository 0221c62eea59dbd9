// The ground and the horizon line (place 9 of the chart's order): one layer
// owns them, and everything else that meets the ground asks it.
//
// The ground is filled in the scheme's colour at the solid-horizon levels:
// below the mathematical horizon (laid under the horizon grid's lines, so
// that their negative altitudes stay readable on it) and, on alt-azimuth
// charts at the horizon's levels, between it and the observer's profile;
// the profile's line is drawn over it. The layer publishes a CGroundCover
// on the chart's scene before any layer draws; the sky's grids ask it which
// parts of their lines the ground hides, the horizon grid asks it to lay
// the ground under its lines and whether the horizon line is its own 0°.
#pragma once

#include "map/coordinates.h"
#include "map/curvetrace.h"

namespace orv {

struct DrawContext;
class CChartLayerRegistry;

class CGroundCover {
public:
    // What the ground is on the chart `ctx` draws.
    explicit CGroundCover(const DrawContext& ctx);

    // Whether the ground is filled on this chart (the solid-horizon levels).
    bool Solid() const { return m_solid; }
    // Cuts away what the filled ground hides: the parts of the polylines
    // below the mathematical horizon (cut at the crossing) and the border
    // crossings there. Nothing when the ground is not filled.
    void Cut(TracedCurve& curve) const;
    // Whether the horizon line drawn at place 9 is the mathematical horizon
    // itself (a flat profile), so that no other line need draw it.
    bool LineIsMathematicalHorizon() const { return m_flatLineDrawn; }
    // Fills the ground below the mathematical horizon (when it is solid).
    void LayBelowMathematicalHorizon(DrawContext& ctx) const;

private:
    CCoordinates m_coords;  // the chart's projection, for the screen points asked about
    bool m_solid = false;
    bool m_flatLineDrawn = false;
    // The horizon's image on the plane: Side(p) = −cn |p|²/4 + p·(en, sn) + cn,
    // negative below the horizon.
    double m_cn = 0.0, m_en = 0.0, m_sn = 0.0;
};

// The ground layer's drawing at place 9 (alt-azimuth charts at the horizon's
// levels): the ground between 0° and the profile, and the profile line.
void DrawHorizonGround(DrawContext& ctx);
void DrawHorizonLine(DrawContext& ctx);

void RegisterGroundLayer(CChartLayerRegistry& layers);

}  // namespace orv
