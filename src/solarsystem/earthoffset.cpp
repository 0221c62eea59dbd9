#include "solarsystem/earthoffset.h"

#include <cmath>

namespace orv {

namespace {

// Written by "orvane-databuild --earth-offset" (one array per coordinate).
#include "solarsystem/earthoffset_terms.inc"

static_assert(std::size(kOffsetX) == kEarthOffsetTermsX);
static_assert(std::size(kOffsetY) == kEarthOffsetTermsY);
static_assert(std::size(kOffsetZ) == kEarthOffsetTermsZ);

}  // namespace

std::span<const EarthOffsetTerm> EarthOffsetTerms(int coordinate)
{
    switch (coordinate) {
    case 0: return kOffsetX;
    case 1: return kOffsetY;
    case 2: return kOffsetZ;
    default: return {};
    }
}

void EarthBarycentreOffset(double jdTT, double offsetAU[3])
{
    const double u = jdTT - 2451545.0;
    for (int c = 0; c < 3; ++c) {
        double sum = 0.0;
        for (const EarthOffsetTerm& t : EarthOffsetTerms(c)) {
            const double a = t.omegaRadPerDay * u;
            sum += t.sinAmp * std::sin(a) + t.cosAmp * std::cos(a);
        }
        offsetAU[c] = sum * 1e-10;
    }
}

}  // namespace orv
