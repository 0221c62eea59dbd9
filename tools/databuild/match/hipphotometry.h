// Hipparcos V and B−V for the Hipparcos stars of Tycho-2.
//
// Tycho photometry saturates on the brightest stars and the Hipparcos Hp
// magnitude is not V (Arcturus: Hp 0.16, V −0.05), so the Hipparcos
// stars take the Johnson V (field H5) and B−V (field H37) of the Hipparcos
// catalogue (ESA 1997, SP-1200, vol. 1 sect. 2.1) instead, to 0.01 mag, as
// kstars-data's "stars.dat" gives them (sources/kstarsreader.h).
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "model/buildstar.h"
#include "sources/kstarsreader.h"

namespace orv::databuild {

// Identification of a Hipparcos line with the Tycho-2 star of the same
// Hipparcos number: the nearest Tycho-2 star carrying a HIP number within
// this radius of the line's J2000 place names the Hipparcos entry.
inline constexpr double kHipMatchRadiusArcsec = 1.0;
// A Hipparcos V further than this from the Tycho-2 V of the star it was
// matched to (Tycho V or Hp) marks a wrong identification: skipped.
inline constexpr int kHipMagnitudeLimitCenti = 100;
// Hipparcos V is the light of the whole Hipparcos entry: for a close pair the
// sum of the components, for some wide pairs the primary alone. Where Tycho-2
// lists the components of the entry as separate stars, the Hipparcos V is
// given to the main component only when the other components add at most this
// much light to it (so that either reading of V is right to this amount).
inline constexpr double kCompanionLightLimitMag = 0.05;

// What the Hipparcos photometry changed, for the build report.
struct PhotometryReport {
    std::size_t replaced = 0;          // stars given the Hipparcos V and B−V
    std::size_t noStarWithin = 0;      // lines with no Tycho-2 Hipparcos star within 1″
    std::size_t ambiguous = 0;         // lines naming a Hipparcos entry another line also names
    std::size_t offPosition = 0;       // the entry's main component lies more than 1″ from the line
    std::size_t magnitudeMismatch = 0; // |V(Hipparcos) − V(Tycho-2)| ≥ 1 mag
    std::size_t brightCompanions = 0;  // components resolved by Tycho-2 add more than 0.05 mag
    std::vector<std::string> mismatches;  // one line per star skipped for its position or magnitude
};

// Gives every Tycho-2 star identified with a Hipparcos line of `hipparcos`
// (entries of kind KStarsEntry::Hipparcos; others are ignored) that line's V
// (0.01 mag) and B−V (0.01 mag, stored as 0.001 mag × 10), and sets
// origin::kMagFromHipparcos. The identification: the nearest Tycho-2 star
// with a HIP number within kHipMatchRadiusArcsec names the Hipparcos number;
// the star standing for that number (no CCDM letter or "A", see CHipStars)
// takes the values when it lies within the same radius, its V differs by less
// than kHipMagnitudeLimitCenti, no other line names the same number, and the
// other Tycho-2 components of the number add at most kCompanionLightLimitMag.
// Every other star keeps its Tycho photometry. Run before AssembleCatalogue,
// which orders each region by the new magnitudes.
void ApplyHipparcosPhotometry(std::vector<BuildStar>& stars, const std::vector<KStarsStar>& hipparcos,
                              PhotometryReport& report);

}  // namespace orv::databuild
