// orvane-databuild --deepsky: the deep-sky catalogue files (layouts in
// docs/deep-sky-files.md) from stellarium-data's deep-sky catalogue and its
// list of names: the revised NGC/IC with Messier and Caldwell numbers and
// common names, the PGC galaxies of LEDA and the Strasbourg planetary nebulae.
#pragma once

#include <string>

#include "common/progress.h"

namespace orv::databuild {

struct DeepSkyBuildOptions {
    std::string stellariumDir;  // the folder holding nebulae/default/
    std::string outputDir;      // the data folder
    // The SAC database's quote-comma-quote file, when the user placed one in
    // the sources folder (empty: the SAC catalogue is not built).
    std::string sacFile;
};

// The SAC file in `folder` ("SAC_DeepSky_Ver81_QCQ.TXT" or another version's
// "*_QCQ.TXT", any case), or empty.
std::string FindSacFile(const std::string& folder);

bool RunDeepSkyBuild(const DeepSkyBuildOptions& options, const Progress& progress, std::string& error);

}  // namespace orv::databuild
