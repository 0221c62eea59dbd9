// Reader of stellarium-data's "gcvs_hip_part.dat": the entries of the General
// Catalogue of Variable Stars (Samus et al., GCVS 5.1) for Hipparcos stars,
// tab-separated: HIP, designation, type, maximum, amplitude flag, minimum I,
// minimum II, photometric band, epoch, period (days) …
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "common/progress.h"
#include "model/hipfacts.h"

namespace orv::databuild {

bool ParseGcvsLine(std::string_view line, VariableStar& out, std::string& error);

// Every entry of each star in the order of the file.
bool ReadVariables(const std::string& path, std::map<std::uint32_t, std::vector<VariableStar>>& out,
                   const Progress& progress, std::string& error);

}  // namespace orv::databuild
