// Reader of stellarium-data's cross identifications "cross-id.dat": one line
// per Hipparcos entry (or CCDM component of one), tab-separated HIP number,
// component letter, SAO, HD and HR numbers, any of the last three blank.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/progress.h"
#include "model/hipfacts.h"

namespace orv::databuild {

bool ParseCrossIdLine(std::string_view line, CrossIdLine& out, std::string& error);

// Every line of `path` in file order. False with a message when a line is
// malformed or the file holds none.
bool ReadCrossIds(const std::string& path, std::vector<CrossIdLine>& out, const Progress& progress,
                  std::string& error);

}  // namespace orv::databuild
