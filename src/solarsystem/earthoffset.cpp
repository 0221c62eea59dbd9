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
    constexpr double kTwoPi = 6.283185307179586476925286766559;
    const TermsInTurns& terms = Terms();
    const double u = jdTT - 2451545.0;
    for (int c = 0; c < 3; ++c) {
        const std::size_t n = terms.turnsPerDay[c].size();
        const double* w = terms.turnsPerDay[c].data();
        const double* sa = terms.sinAmp[c].data();
        const double* ca = terms.cosAmp[c].data();
        // Two terms at a time, then the odd one left.
        Double2 sum2 = {0.0, 0.0}, rate2 = {0.0, 0.0};
        std::size_t k = 0;
        for (; k + 1 < n; k += 2) {
            const Double2 wk = {w[k], w[k + 1]}, sk = {sa[k], sa[k + 1]}, ck = {ca[k], ca[k + 1]};
            Double2 s, co;
            SinCosTurns2(wk * u, s, co);
            sum2 += sk * s + ck * co;
            // d/du (S sin ωu + C cos ωu) = ω (S cos ωu − C sin ωu)
            rate2 += wk * (sk * co - ck * s);
        }
        double sum = sum2[0] + sum2[1], rate = rate2[0] + rate2[1];
        for (; k < n; ++k) {
            double s, co;
            SinCosTurns(w[k] * u, s, co);
            sum += sa[k] * s + ca[k] * co;
            rate += w[k] * (sa[k] * co - ca[k] * s);
        }
        offsetAU[c] = sum * 1e-10;
        rateAUPerDay[c] = rate * kTwoPi * 1e-10;
    }
}

}  // namespace orv
