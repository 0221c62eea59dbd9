// Reader of stellarium-data's "hip_pm.dat": the proper motions of the
// Hipparcos Catalogue (ESA 1997, SP-1200, fields H12 and H13), tab-separated
// HIP, pmRA* (= μα cos δ) and pmDE in mas/yr.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>

#include "common/progress.h"

namespace orv::databuild {

// pmRA* and pmDE (mas/yr) by Hipparcos number; motions beyond 20″/yr (more
// than Barnard's star, the fastest, at 10.4″/yr) are refused as malformed.
bool ReadHipparcosMotions(const std::string& path,
                          std::unordered_map<std::uint32_t, std::pair<float, float>>& out, const Progress& progress,
                          std::string& error);

}  // namespace orv::databuild
