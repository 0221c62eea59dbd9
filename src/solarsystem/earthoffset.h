// The offset of the Earth–Moon barycentre from the Earth's centre, as the
// built-in table of sine and cosine terms the compact ephemeris needs to turn
// its body 3 (the barycentre) into the Earth.
//
// The barycentre lies on the Earth–Moon line at μ/(1 + μ) of the Moon's
// geocentric distance, μ = M☾/M⊕ = 1/81.30056 (the mass ratio of JPL's
// DE405, the integration ELP/MPP02 was fitted to): some 4,670 km. The table
// is a least-squares fit of that vector, computed from the program's own
// lunar series (the MOONDATA block), by "orvane-databuild --earth-offset";
// docs/compact-ephemeris.md describes its frequencies and its residual. Its
// terms cancel exactly between the data builder (barycentre = Earth +
// offset) and the program (Earth = barycentre − offset), so the Earth's
// accuracy does not depend on them; they only decide how smooth, and so how
// compact, body 3 is.
#pragma once

#include <span>

namespace orv {

// One term: ω in radians per day from J2000.0 (jd − 2451545.0); amplitudes in
// 1e-10 AU.
struct EarthOffsetTerm {
    double omegaRadPerDay;
    double sinAmp;
    double cosAmp;
};

inline constexpr int kEarthOffsetTermsX = 42;
inline constexpr int kEarthOffsetTermsY = 48;
inline constexpr int kEarthOffsetTermsZ = 45;

// The run of terms of coordinate 0 (x), 1 (y) or 2 (z), J2000 equatorial.
std::span<const EarthOffsetTerm> EarthOffsetTerms(int coordinate);

// The barycentre's offset from the Earth at jdTT, J2000 equatorial, AU.
void EarthBarycentreOffset(double jdTT, double offsetAU[3]);
// The same with its rate of change (AU per day), from the same sines and
// cosines: what the Earth's velocity needs besides the barycentre's.
void EarthBarycentreOffsetAndRate(double jdTT, double offsetAU[3], double rateAUPerDay[3]);

// μ/(1 + μ) for the Moon/Earth mass ratio above.
inline constexpr double kMoonMassFractionOfEarthMoon = 1.0 / (1.0 + 81.30056);

}  // namespace orv
