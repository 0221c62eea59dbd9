// Writer of the lunar series block "MOONDATA" (45,216 bytes, twelve tables;
// layout in docs/planet-files.md) from the full ELP/MPP02 series.
//
// The block's fixed evaluation (src/solarsystem/moonseries.cpp) sums, in
// degrees and km:
//   λ = W1 + ΣL0 + 1e-3·(ΣL1 + T·(ΣL2 + 1e-4·T·ΣL3)) − 0.00019524°
//       − 1.059e-5°·sin(225.0° + 477198.9° T)
//   β = ΣB0 + 1e-3·(ΣB1 + T·(ΣB2 + 1e-4·T·ΣB3)) − 1.754e-5°·sin(183.3° + 483202.0° T)
//   r = ΣR0 + ΣR1 + T·(ΣR2 + 1e-4·T·ΣR3) + 385000.57 km
// with its own mean longitude W1 of date. The writer fills the tables so that
// this reproduces ELP/MPP02 referred to the mean equinox of date:
//   L0, B0, R0  the largest periodic terms of power 0, with their full phase
//               polynomials;
//   L1, B1, R1  the next largest terms of power 0, phases to first order;
//   L2, B2, R2  the largest terms of power 1;  L3, B3, R3  of power 2.
// One term of L0 carries the difference between ELP/MPP02's mean longitude
// plus the precession in longitude (IAU 2006, Capitaine et al. 2003) and the
// evaluation's fixed W1 and constant, a polynomial of T that a sine of a
// small argument represents to 1e-10″; one term each of L1 and B1 cancels
// the evaluation's fixed sine corrections, and one of R1 the difference of
// the constant distance. Terms are ranked by amplitude (power-1 and power-2
// terms by their amplitude at |T| = 1, the ends of 1900–2100).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sources/astronomiareader.h"

namespace orv::databuild {

// Which terms went in and what the truncation costs.
struct MoonBlockReport {
    int keptTerms[12] = {};         // ELP/MPP02 terms in each table (without the adjustment terms)
    double smallestKept[12] = {};   // smallest amplitude kept: arcsec (L, B), km (R)
    int seriesTerms[12] = {};       // terms of the series each table draws from
    // Largest differences from the full series over 1900–2100, sampled.
    double maxLonErrorArcsec = 0.0;
    double maxLatErrorArcsec = 0.0;
    double maxDistanceErrorKm = 0.0;
    double rmsLonErrorArcsec = 0.0;
    int samples = 0;
};

std::vector<std::uint8_t> WriteMoonBlock(const ElpSeries& elp, MoonBlockReport& report);

// The full series referred to the mean equinox of date at jdTT: longitude
// (degrees, not reduced), latitude (degrees), distance (km). The reference
// the block is checked against.
void EvaluateElpOfDate(const ElpSeries& elp, double jdTT, double& lonDeg, double& latDeg, double& distanceKm);

}  // namespace orv::databuild
