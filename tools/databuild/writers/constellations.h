// Writers of the four constellation files (layouts in
// docs/constellation-files.md):
//   star/Tycho2/ConstFig.dat  the figures, by Hipparcos number;
//   data/conname.dat          where the names are written;
//   data/constnam.dat         abbreviations, names and genitives;
//   data/conbound.dat         Roman's strips and Delporte's edges.
#pragma once

#include <vector>

#include "model/constellations.h"
#include "writers/outputfile.h"

namespace orv::databuild {

// Figure record codes: 0 a figure line between two Hipparcos stars (the only
// code written); 1 and 5 are drawn like 0; every other code is skipped.
inline constexpr std::uint16_t kFigureLineCode = 0;

OutputFile WriteConstellationFigures(const std::vector<ConstellationFigure>& figures);
OutputFile WriteNamePositions(const std::vector<NamePosition>& positions);
OutputFile WriteConstellationNames(const std::vector<ConstellationNames>& names);
OutputFile WriteConstellationBoundaries(const std::vector<RomanStrip>& strips, const std::vector<BoundaryEdge>& edges);

}  // namespace orv::databuild
