#include "solarsystem/earthoffset.h"

#include <cmath>
#include <vector>

#include "util/turntrig.h"

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

namespace {

// The terms with ω in turns per day, for the reduction of util/turntrig.h.
struct TermsInTurns {
    std::vector<double> turnsPerDay[3], sinAmp[3], cosAmp[3];
    TermsInTurns()
    {
        constexpr double kTurnsPerRad = 0.15915494309189533577;
        for (int c = 0; c < 3; ++c)
            for (const EarthOffsetTerm& t : EarthOffsetTerms(c)) {
                turnsPerDay[c].push_back(t.omegaRadPerDay * kTurnsPerRad);
                sinAmp[c].push_back(t.sinAmp);
                cosAmp[c].push_back(t.cosAmp);
            }
    }
};

const TermsInTurns& Terms()
{
    static const TermsInTurns terms;
    return terms;
}

}  // namespace

void EarthBarycentreOffset(double jdTT, double offsetAU[3])
{
    double rate[3];
    EarthBarycentreOffsetAndRate(jdTT, offsetAU, rate);
}

void EarthBarycentreOffsetAndRate(double jdTT, double offsetAU[3], double rateAUPerDay[3])
{
    const TermsInTurns& terms = Terms();
    const double u = jdTT - 2451545.0;
    for (int c = 0; c < 3; ++c) {
        const std::size_t n = terms.turnsPerDay[c].size();
        double sum = 0.0, rate = 0.0;
        for (std::size_t k = 0; k < n; ++k) {
            double s, co;
            SinCosTurns(terms.turnsPerDay[c][k] * u, s, co);
            sum += terms.sinAmp[c][k] * s + terms.cosAmp[c][k] * co;
            // d/du (S sin ωu + C cos ωu) = ω (S cos ωu − C sin ωu)
            rate += terms.turnsPerDay[c][k] * (terms.sinAmp[c][k] * co - terms.cosAmp[c][k] * s);
        }
        offsetAU[c] = sum * 1e-10;
        rateAUPerDay[c] = rate * (2.0 * 3.14159265358979323846) * 1e-10;
    }
}

}  // namespace orv
