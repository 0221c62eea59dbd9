// Writer of "Data\VSOP87.idx" and "Data\VSOP87.dat", the VSOP87D series of
// the eight planets (layout in docs/planet-files.md): every term of the
// published series is kept, in the published order.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "sources/astronomiareader.h"
#include "writers/outputfile.h"

namespace orv::databuild {

inline constexpr const char* kVsop87IndexPath = "Data/VSOP87.idx";
inline constexpr const char* kVsop87TermsPath = "Data/VSOP87.dat";

// The index (576 bytes) and the term file. False with a reason when a count
// or a term index does not fit the index's signed 16-bit fields.
bool WriteVsop87Files(const std::array<Vsop87Planet, 8>& planets, std::vector<OutputFile>& out, std::string& error);

}  // namespace orv::databuild
