// The default comet and asteroid catalogues ("asteroid.cat", "comet.cat")
// from the element lists that kstars-data carries:
//   asteroids.dat    JPL Small-Body Database query (JSON: "fields" and
//                    "data" rows): H, G, the osculation epoch (MJD) and the
//                    elements e, a, i, Ω, ω, M of a few thousand asteroids;
//   cometels.json.gz the Minor Planet Center's comet elements (CometEls.txt
//                    as JSON objects): perihelion date, q, e, ω, Ω, i, H, G
//                    and the designation with the name.
// Each element set keeps its epoch as published.
#pragma once

#include <functional>
#include <string>

namespace orv::databuild {

struct MinorBuildOptions {
    std::string kstarsDir;  // kstars-data's share folder
    std::string outputDir;  // the data folder
};

struct MinorBuildCounts {
    int asteroids = 0, asteroidsRefused = 0;
    int comets = 0, cometsRefused = 0;
};

bool RunMinorBuild(const MinorBuildOptions& options, const std::function<void(const std::string&)>& progress,
                   MinorBuildCounts& counts, std::string& error);

// Exposed for the tests: one JPL full name ("     1 Ceres (A801 AA)",
// "       (2022 LV2)", "  433 Eros (A898 PA)") as number and name.
bool SplitJplFullName(const std::string& fullName, int& number, std::string& name);

}  // namespace orv::databuild
