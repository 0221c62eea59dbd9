// Proper motion for the Tycho-2 stars that have none.
#pragma once

#include <cstddef>
#include <vector>

#include "model/buildstar.h"
#include "model/hipfacts.h"

namespace orv::databuild {

// Tycho-2 gives no mean position and no proper motion for some Hipparcos
// stars (flag "X": Polaris among them). Where the Hipparcos catalogue has the
// motion, the observed Tycho-2 place is carried from its epoch to J2000.0
// with it and the motion is kept. Returns the number of stars so treated.
std::size_t ApplyHipparcosMotion(std::vector<BuildStar>& stars, const HipData& hip);

}  // namespace orv::databuild
