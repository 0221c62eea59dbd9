// orvane-databuild's compact-ephemeris modes (docs/compact-ephemeris.md):
//   --earth-offset FILE  the program's built-in table of the Earth–Moon
//                        barycentre's offset from the Earth, fitted to the
//                        program's own lunar series (a C++ include file);
//   --ephem96            "Data\Ephem96.dat", fitted body by body to the full
//                        VSOP87D series of the data folder and to Meeus's
//                        Pluto series, and checked on a dense grid: the build
//                        fails when a body's geocentric direction departs
//                        from its source by more than 0.05″.
#pragma once

#include <string>

#include "common/progress.h"

namespace orv::databuild {

bool RunEarthOffsetBuild(const std::string& includePath, const Progress& progress, std::string& error);

// Reads "Data\VSOP87.idx" and "Data\VSOP87.dat" from `dataDir` (they must hold
// every term of VSOP87D) and writes "Data\Ephem96.dat" there atomically.
bool RunEphem96Build(const std::string& dataDir, const Progress& progress, std::string& error);

}  // namespace orv::databuild
