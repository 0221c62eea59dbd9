// orvane-databuild --constellations: the constellation files from
// stellarium-data (figures, names, Roman's strips, the boundaries) and
// kstars-data (where the names are written). Layouts in
// docs/constellation-files.md.
#pragma once

#include <string>
#include <vector>

#include "common/progress.h"
#include "match/delporteedges.h"
#include "model/constellations.h"
#include "sources/constellationreader.h"
#include "writers/constellations.h"

namespace orv::databuild {

// The four files from the sources read (the edges recovered first).
bool BuildConstellationFiles(const ConstellationSources& sources, std::vector<OutputFile>& files, std::string& error);

// Reads, recovers the edges, writes each file atomically into `outputDir`.
bool RunConstellationBuild(const std::string& stellariumDir, const std::string& kstarsDir,
                           const std::string& outputDir, const Progress& progress, std::string& error);

}  // namespace orv::databuild
