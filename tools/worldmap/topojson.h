// Decoding of TopoJSON, the topology-sharing extension of GeoJSON:
// quantized, delta-encoded arcs shared between polygons, and polygons given
// as lists of arc indices (~i, the one's complement, meaning arc i reversed).
#pragma once

#include <string>
#include <vector>

namespace orv::worldmap {

struct LonLat {
    double longitudeDeg;
    double latitudeDeg;
};
using Ring = std::vector<LonLat>;

// The rings (outer boundaries and holes) of every Polygon and MultiPolygon of
// the object `objectName` of a TopoJSON topology. Returns false with `error`
// set when the text is not such a topology.
bool DecodeTopoJsonRings(const std::string& json, const std::string& objectName, std::vector<Ring>& rings,
                         std::string& error);

}  // namespace orv::worldmap
