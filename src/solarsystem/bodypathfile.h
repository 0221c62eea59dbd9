// The planet paths of a map, kept beside its map file. The map file's
// version-10 layout (docs/map-file-format.md) has no place for them — its
// blocks are fixed sequences of values — so a map "Orion.ovm" keeps its
// plotted paths in "Orion.ovm.paths", a text file written when the map is
// saved and read when it is opened; the map file itself is unchanged.
//
// Format (UTF-8 text, one record per line, fields separated by spaces):
//   Orvane planet paths 1
//   path NAME TICKSTEPDAYS LOCALOFFSETHOURS COUNT
//   JDUT RAJ2000RAD DECJ2000RAD MAGNITUDE TICK        (COUNT lines)
//   ...                                               (further paths)
// NAME is the body's name ("Mars"); angles in radians with 17 significant
// digits, so that a path reads back exactly as it was written.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "solarsystem/planetephemeris.h"

namespace orv {

// The sidecar of a map file: its path with ".paths" added.
std::string BodyPathsFilePath(const std::string& mapFilePath);

std::string FormatBodyPaths(const std::vector<BodyPath>& paths);

struct BodyPathsReadResult {
    bool ok = false;
    std::vector<BodyPath> paths;
    int errorLine = 0;    // 1-based, when !ok
    std::string error;    // what is wrong on that line
};
BodyPathsReadResult ParseBodyPaths(std::string_view text);

}  // namespace orv
