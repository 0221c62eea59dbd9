// orvane-worldmap: builds the ground-track page's world map
// ("Data\WorldSmall.dat", docs/worldmap-file.md) from a TopoJSON land outline
// such as land-110m.json of the npm package world-atlas (Natural Earth's
// 1:110,000,000 land polygons, public domain). tools/fetch-worldmap.sh
// fetches the package and runs this program.
//
// usage: orvane-worldmap INPUT.json [OUTPUT] [--object NAME]
//   OUTPUT defaults to Data\WorldSmall.dat in the data folder; NAME to "land".

#include <QCoreApplication>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>

#include "satellite/worldmap.h"
#include "topojson.h"
#include "util/datapath.h"

namespace {

using namespace orv::sat;
using orv::worldmap::LonLat;
using orv::worldmap::Ring;

WorldPoint ToPoint(const LonLat& p)
{
    auto centi = [](double deg, double limit) {
        const double v = std::round(std::fmax(-limit, std::fmin(limit, deg)) * 100.0);
        return static_cast<std::int16_t>(v);
    };
    return WorldPoint{centi(p.longitudeDeg, 180.0), centi(p.latitudeDeg, 90.0)};
}

// Cuts a ring into runs of points of one region; a run ends on the first
// point of the next region so that the outline stays closed.
void SplitByRegion(const Ring& ring, std::vector<WorldPolyline>& out)
{
    WorldPolyline current;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const WorldRegion region = ClassifyWorldPoint(ring[i].longitudeDeg, ring[i].latitudeDeg);
        const WorldPoint point = ToPoint(ring[i]);
        if (!current.points.empty() && region != current.region) {
            current.points.push_back(point);
            out.push_back(std::move(current));
            current = WorldPolyline{};
        }
        if (current.points.empty()) current.region = region;
        // Drop repeats that the rounding to 0.01° creates.
        if (current.points.empty() || current.points.back().longitudeCentideg != point.longitudeCentideg ||
            current.points.back().latitudeCentideg != point.latitudeCentideg)
            current.points.push_back(point);
    }
    if (current.points.size() >= 2) out.push_back(std::move(current));
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    std::vector<std::string> positional;
    std::string objectName = "land";
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--object" && i + 1 < argc) objectName = argv[++i];
        else if (a == "--help" || a == "-h") {
            std::cout << "usage: orvane-worldmap INPUT.json [OUTPUT] [--object NAME]\n";
            return 0;
        } else positional.push_back(a);
    }
    if (positional.empty() || positional.size() > 2) {
        std::cerr << "usage: orvane-worldmap INPUT.json [OUTPUT] [--object NAME]\n";
        return 2;
    }
    std::ifstream in(positional[0], std::ios::binary);
    if (!in) {
        std::cerr << "orvane-worldmap: cannot open " << positional[0] << '\n';
        return 1;
    }
    std::stringstream text;
    text << in.rdbuf();
    std::vector<Ring> rings;
    std::string error;
    if (!orv::worldmap::DecodeTopoJsonRings(text.str(), objectName, rings, error)) {
        std::cerr << "orvane-worldmap: " << positional[0] << ": " << error << '\n';
        return 1;
    }
    std::vector<WorldPolyline> polylines;
    for (const Ring& ring : rings) SplitByRegion(ring, polylines);
    const std::string output = positional.size() > 1 ? positional[1] : orv::GetDataFileName(kWorldMapFileName);
    if (WriteWorldMap(output, polylines) != WorldMapStatus::Ok) {
        std::cerr << "orvane-worldmap: cannot write " << output << '\n';
        return 1;
    }
    std::size_t points = 0;
    int perRegion[kWorldRegionCount] = {};
    for (const auto& p : polylines) {
        points += p.points.size();
        ++perRegion[static_cast<int>(p.region)];
    }
    std::cout << output << ": " << polylines.size() << " polylines, " << points << " points from " << rings.size()
              << " rings (";
    for (int r = 0; r < kWorldRegionCount; ++r)
        std::cout << (r ? ", " : "") << WorldRegionName(static_cast<WorldRegion>(r)) << ' ' << perRegion[r];
    std::cout << ")\n";
    return 0;
}
