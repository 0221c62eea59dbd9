// The star catalogue as the builder holds it between the readers and the
// writers: one record per Tycho-2 entry, and the catalogue ordered into
// Tycho-2's 9,537 regions. The flag and provenance bits are those of the
// catalogue record (catalog/stars/tycho2format.h, docs/star-catalogue-files.md):
// they say where a value came from, which the readers know and the writers
// copy.
#pragma once

#include <cstdint>
#include <vector>

#include "catalog/stars/tycho2format.h"

namespace orv::databuild {

// One star as the builder holds it before it is written.
struct BuildStar {
    std::int32_t raMas = 0;          // J2000 (ICRS) right ascension, mas, [0, 1,296,000,000)
    std::int32_t decMas = 0;         // J2000 declination, mas
    float pmRaMasPerYr = 0.0f;       // dα/dt in mas of right ascension per year (pmRA* / cos δ)
    float pmDecMasPerYr = 0.0f;      // dδ/dt, mas per year
    float parallaxMas = tycho2::kParallaxUnknown;
    std::uint32_t hip = 0;           // Hipparcos number, 0 = none
    std::int16_t tyc1 = 0;
    std::uint16_t tyc2 = 0;
    std::uint8_t tyc3 = 0;
    char ccdm[4] = {0, 0, 0, 0};     // CCDM component letters of a HIP star ("A", "AB"), zero-padded
    std::int16_t magCenti = 0;       // 0.01 mag
    std::int16_t bvMilli = tycho2::kNoColour;
    std::int16_t radVelDeciKmS = 0;  // 0.1 km/s
    std::uint16_t flags = 0;         // TYC3 in bits 0-2 plus the flag bits
    std::uint16_t origin = 0;        // tycho2::origin bits
    float observedEpochRaYr = 0.0f;  // epochs of an observed (not mean) position, years AD
    float observedEpochDecYr = 0.0f;

    std::int64_t TychoId() const { return tycho2::TychoId(tyc1, tyc2, tyc3); }
};

// Region bounds in 0.1″ (the "rgnbound.dat" entry).
struct RegionBounds {
    std::int32_t raMin = 0;
    std::int32_t raMax = 0;
    std::int32_t decMin = 0;
    std::int32_t decMax = 0;
};

// The catalogue in file order with its two region tables.
struct Catalogue {
    std::vector<BuildStar> stars;               // region by region, brightest first in each region
    std::vector<std::uint32_t> regionStart;     // 9,538 entries, the last the end sentinel
    std::vector<std::int16_t> regionBrightest;  // 9,537 entries
    std::vector<RegionBounds> regionBounds;     // 9,537 entries
    int widenedRegions = 0;                     // regions whose index.dat box had to grow
};

}  // namespace orv::databuild
