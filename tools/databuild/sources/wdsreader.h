// Reader of stellarium-data's double-star lists: "wds_hip_part.dat", the
// Hipparcos stars of the Washington Double Star Catalog (Mason et al. 2001,
// AJ 122, 3466), and the discoverer designations of "extra_name.fab"
// ("Σ_3053", "H_5_79") that name them.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "common/progress.h"
#include "model/hipfacts.h"

namespace orv::databuild {

bool ParseDiscovererDesignation(std::string_view text, DoubleDesignation& out);

// Every star of the WDS list with the first discoverer designation that
// extra_name.fab gives it, when it gives one.
bool ReadDoubles(const std::string& wdsPath, const std::string& designationPath,
                 std::map<std::uint32_t, std::optional<DoubleDesignation>>& out, const Progress& progress,
                 std::string& error);

}  // namespace orv::databuild
