// The command line's charts: the same layers and sky-object sources as the
// desktop program, assembled once per run.
#pragma once

#include "map/chartlayer.h"
#include "overlay/overlayfile.h"

namespace orv::cli {

// The layers and sources of every chart and search of this run.
const CChartComponents& ChartComponents();
// The overlays those charts draw (render --overlay adds to it).
COverlayStore& OverlayStore();

}  // namespace orv::cli
