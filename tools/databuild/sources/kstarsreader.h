// Reader of kstars-data's "stars.dat", a fixed-column text copy of the
// Hipparcos Catalogue (ESA 1997, SP-1200) down to V 7.99, followed by fainter
// Tycho-1 stars. Its Johnson V (field H5) and B−V (field H37) stand in for
// the Tycho photometry of the Hipparcos stars (see match/hipphotometry.h).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/progress.h"

namespace orv::databuild {

// What a line of "stars.dat" describes. The file lists the Hipparcos main
// catalogue down to V 7.99 with the catalogue's spectral types, followed by
// Tycho-1 stars of V 8.00-8.99 whose spectral class is estimated from the
// colour and marked "?" ("F?"). The V of the latter is Tycho photometry
// (Tycho-1, superseded by Tycho-2), even for the Hipparcos stars among them.
enum class KStarsEntry : std::uint8_t { Hipparcos, Tycho1 };

// One line of "stars.dat": the place at J2000.0 (ICRS, epoch J2000.0, to
// 0.01 s of time and 0.1″), V and B−V in 0.01 mag.
struct KStarsStar {
    std::int32_t raMas = 0;   // [0, 1,296,000,000)
    std::int32_t decMas = 0;
    std::int16_t magCenti = 0;
    std::int16_t bvCenti = 0;
    KStarsEntry entry = KStarsEntry::Hipparcos;
};
// Parses columns 1-58 (place, motions, parallax, V, B−V, spectral type); the
// rest of the line (variability, names) is not used. False with a reason in
// `error` when a field is malformed or out of range.
bool ParseKStarsStarLine(std::string_view line, KStarsStar& out, std::string& error);

// The Hipparcos lines of `dir`/stars.dat in file order; the Tycho-1 lines
// that follow them are counted and left out.
bool ReadKStarsStars(const std::string& dir, std::vector<KStarsStar>& out, const Progress& progress,
                     std::string& error);

}  // namespace orv::databuild
