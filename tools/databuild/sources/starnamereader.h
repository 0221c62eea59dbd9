// Readers of stellarium-data's star designations and names, both lists of
// "HIP|text" lines: "name.fab" with the Bayer and Flamsteed designations
// ("α_CMa", "9_CMa") and the western sky culture's "star_names.fab" with the
// proper names (HIP|_("Sirius") followed by references).
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "common/progress.h"
#include "model/hipfacts.h"

namespace orv::databuild {

// Parses one designation of name.fab into `property` (merging with what is
// already there). Returns false for designations of other kinds (Latin
// letters, unknown constellations), which are left out.
bool ParseBayerFlamsteed(std::string_view designation, StarProperty& property);

// The Greek letter and Flamsteed number of each star of name.fab, merged over
// its lines (the first Greek letter and the first number listed).
bool ReadDesignations(const std::string& path, std::map<std::uint32_t, StarProperty>& out, const Progress& progress,
                      std::string& error);

// Every proper name of each star of star_names.fab in the order listed, the
// star's usual name first.
bool ReadProperNames(const std::string& path, std::map<std::uint32_t, std::vector<std::string>>& out,
                     const Progress& progress, std::string& error);

}  // namespace orv::databuild
