// Reader of stellarium-data's binary Hipparcos star catalogues
// (stars/default/stars_<level>_0v<version>.cat): the Hipparcos parallax and
// B−V of every Hipparcos star they hold.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include "common/progress.h"

namespace orv::databuild {

// Reads every catalogue of data type 0 (Hipparcos stars) in `starsDir`, in
// the order of their names. Parallax in mas by Hipparcos number; B−V in
// 0.001 mag where the catalogue gives one. False with a message when a file
// is damaged or none holds Hipparcos stars.
bool ReadHipparcosCatalogues(const std::string& starsDir, std::unordered_map<std::uint32_t, float>& parallaxMas,
                             std::unordered_map<std::uint32_t, std::int16_t>& bvMilli, const Progress& progress,
                             std::string& error);

}  // namespace orv::databuild
