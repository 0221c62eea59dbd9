// orvane-databuild: turns the published Tycho-2 catalogue, the
// cross-identification and name lists of the stellarium-data package and the
// Hipparcos photometry of the kstars-data package into Orvane's star files
// (layouts in docs/star-catalogue-files.md; the builder's structure in
// docs/data-builder.md).
//
// The build runs in three kinds of pieces, each in its own file:
//   sources/  one reader per source: parses its files into the model, knows
//             nothing of the files written;
//   match/    the steps that join the sources: Hipparcos motion and
//             photometry for the Tycho-2 stars, the ordering into regions,
//             the Hipparcos-keyed lists attached to the records;
//   writers/  one writer per output file: packs the model into the file's
//             layout, parses nothing.
// RunBuild() below is the driver that calls them in order. This header also
// brings in every piece, for the tests.
#pragma once

#include <string>
#include <vector>

#include "common/progress.h"
#include "common/sky.h"
#include "match/hiplinks.h"
#include "match/hipmotion.h"
#include "match/hipphotometry.h"
#include "match/regions.h"
#include "sources/crossidreader.h"
#include "sources/gcvsreader.h"
#include "sources/kstarsreader.h"
#include "sources/starnamereader.h"
#include "sources/tycho2reader.h"
#include "sources/wdsreader.h"
#include "writers/outputfile.h"

namespace orv::databuild {

struct BuildOptions {
    std::string tycho2Dir;     // tyc2.dat.00-19 (or tyc2.dat), suppl_1.dat, index.dat
    std::string stellariumDir; // the folder holding stars/default/ and skycultures/western/
    std::string outputDir;     // the data folder
    std::string kstarsDir;     // the folder holding kstars-data's stars.dat (usr/share/kstars)
};

// Reads every source, joins them and writes every file (each atomically).
// Progress and report lines go to `progress`. False with a message in
// `error`; a source that cannot be read stops the build before any file is
// replaced.
bool RunBuild(const BuildOptions& options, const Progress& progress, std::string& error);

// Writes one file below `outputDir` atomically (its folders created first)
// and reports it; false with a message in `error`, the old file left intact.
bool Store(const std::string& outputDir, const OutputFile& file, const Progress& progress, std::string& error);

// The star catalogue's files from an assembled catalogue and the Hipparcos
// lists (the lists are attached to their stars first), in the order they
// are written. Used by the tests to build small catalogues.
std::vector<OutputFile> WriteAll(const Catalogue& catalogue, StarTables tables);
std::vector<OutputFile> BuildStarFiles(Catalogue& catalogue, const HipData& hip, CrossReport& report);

}  // namespace orv::databuild
