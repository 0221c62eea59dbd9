// The chart layer of the map overlays.
//
// Overlays (place 8 of the chart's order): every active overlay of the
// store's list, and the files the store draws besides, brought from their
// display lists (unit vectors of J2000 or of the map's epoch) to the chart's
// frame with one matrix each, cut to the visible cap, clipped and stroked
// with their own lines, fonts and alignment. An overlay with an activation
// range of levels is switched on when its chart enters the range and off
// when it leaves it; the list's active flag is what a chart starts with.
//
// The horizon line and the ground (place 9) are the map's own ground layer
// (map/drawground.h), registered with the map's layers.
#pragma once

#include <memory>

#include "map/chartlayer.h"
#include "overlay/overlayfile.h"

namespace orv {

struct DrawContext;

// Draws one parsed overlay onto the chart (used by the layer and the
// benchmark). Returns the number of segments stroked.
std::size_t DrawOverlay(DrawContext& ctx, const COverlay& overlay);
// Registers the overlay layer (drawing what `store` lists). The ground and
// the horizon line belong to the ground layer, among the map's own layers.
void RegisterOverlays(CChartLayerRegistry& layers, std::shared_ptr<COverlayStore> store);

}  // namespace orv
