// The chart layers of the overlays and the horizon profile.
//
// Overlays (place 8 of the chart's order): every active overlay of the
// store's list, and the files the store draws besides, brought from their
// display lists (unit vectors of J2000 or of the map's epoch) to the chart's
// frame with one matrix each, cut to the visible cap, clipped and stroked
// with their own lines, fonts and alignment. An overlay with an activation
// range of levels is switched on when its chart enters the range and off
// when it leaves it; the list's active flag is what a chart starts with.
//
// Horizon (place 9): on alt-azimuth charts at the horizon's levels, the
// ground between the mathematical horizon and the profile filled in the
// scheme's ground colour at the solid-horizon levels (the ground below 0° is
// the altitude-azimuth grid's), and the profile line on top.
#pragma once

#include <memory>

#include "map/chartlayer.h"
#include "overlay/overlayfile.h"

namespace orv {

struct DrawContext;

// Draws one parsed overlay onto the chart (used by the layer and the
// benchmark). Returns the number of segments stroked.
std::size_t DrawOverlay(DrawContext& ctx, const COverlay& overlay);
// The horizon layer's two parts.
void DrawHorizonGround(DrawContext& ctx);
void DrawHorizonLine(DrawContext& ctx);

// Registers the overlay layer (drawing what `store` lists) and the horizon layer.
void RegisterOverlaysAndHorizon(CChartLayerRegistry& layers, std::shared_ptr<COverlayStore> store);

}  // namespace orv
