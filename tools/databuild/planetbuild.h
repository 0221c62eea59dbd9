// orvane-databuild's planet mode: the VSOP87 files of the data folder from
// the series carried by the npm package "astronomia" (fetched by
// tools/data-steps/30-planets.sh); layouts in docs/planet-files.md.
#pragma once

#include <string>

#include "common/progress.h"

namespace orv::databuild {

struct PlanetBuildOptions {
    std::string astronomiaDir;  // the unpacked package (holding data/vsop87D*.js)
    std::string outputDir;      // the data folder
    std::string moonBlockPath;  // when set, also the lunar series block "MOONDATA" to this file
};

// With moonBlockPath, also builds the lunar series block from the package's
// ELP/MPP02 series and reports the truncation's cost.
// Reads the eight VSOP87D planets and writes "Data\VSOP87.idx" and
// "Data\VSOP87.dat" atomically. False with a message in `error`; nothing is
// replaced when a source cannot be read.
bool RunPlanetBuild(const PlanetBuildOptions& options, const Progress& progress, std::string& error);

}  // namespace orv::databuild
