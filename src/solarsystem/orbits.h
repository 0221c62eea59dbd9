// Two-body (unperturbed) heliocentric orbits of comets and asteroids.
//
// Kepler's equation for every conic: the ellipse (E − e sin E = M), the
// parabola (Barker's equation) and the hyperbola (e sinh H − H = M), each
// written so that no digits are lost to cancellation as e approaches 1, so
// that one solver serves a near-parabolic comet with e = 0.9999 or 1.0001
// as well as a main-belt asteroid. Every solver refuses non-finite input
// and caps its iterations.
//
// Frames: the osculating elements ω, Ω, i are referred to the ecliptic and
// equinox J2000.0 (as the Minor Planet Center publishes them); positions
// come out heliocentric, J2000 equatorial rectangular, AU, turned through
// the J2000 obliquity (cos ε = 0.91748206, sin ε = 0.39777716). Time is a
// Julian date in dynamical time (TT).
//
// Reference: Meeus, Astronomical Algorithms, 2nd ed. (1998), ch. 30
// (Kepler's equation), 33 (elliptic motion), 34 (parabolic motion),
// 35 (near-parabolic motion).
#pragma once

#include <cstdint>
#include <optional>

#include "solarsystem/planets.h"

namespace orv {

// The Gaussian gravitational constant k, radians per day: n = k / a^1.5.
inline constexpr double kGaussK = 0.01720209895;

// E − e sin E = M for 0 ≤ e < 1. `meanAnomalyRad` any finite angle; the
// eccentric anomaly returned lies in the same revolution (E − M is within
// ±e). Newton's iteration ΔE = (M + e sin E − E)/(1 − e cos E) from E = M,
// repeated while |ΔE| ≥ 1e-8 rad (the error then left is about ΔE², well
// under a microarcsecond; one further step gives near-parabolic orbits,
// whose a may be billions of AU, the digits r needs), at most 50 steps; should that not settle (e very
// near 1 with a small M can make the first steps wander), Newton's method
// from an upper bracket on the convex f(E), which converges monotonically
// for every e, finishes to 1e-15 relative. Nothing for non-finite input or
// e outside [0, 1): the input is checked before any loop.
std::optional<double> SolveKeplerElliptic(double meanAnomalyRad, double e);

// e sinh H − H = M for e > 1 (any e up to 100 and beyond): Newton's method
// inside the bracket [asinh(M/e), min(asinh(M/(e − 1)), ∛(6M))], which
// holds the root for every M ≥ 0 (the sign of M is carried to H). Stops at
// a step below 1e-15 relative; at most 200 iterations. Nothing for
// non-finite input, e ≤ 1 or no convergence.
std::optional<double> SolveKeplerHyperbolic(double meanAnomalyRad, double e);

// Barker's equation s³ + 3s = W, s = tan(ν/2) (Meeus eq. 34.1): Newton's
// iteration s ← (2s³ + W)/(3(s² + 1)) from s = 0 until the change is below
// 1e-8, at most 100 steps, after which (|W| beyond about 1e4, far from the
// perihelion) the cubic's real root in closed form is taken. NaN for
// non-finite W, checked before the loop.
double SolveBarker(double w);

struct ConicPlace {
    double trueAnomalyRad = 0.0;  // ν, (−π, π]
    double radiusAU = 0.0;        // r
};

// Place on a conic of perihelion distance q (AU) and eccentricity e ≥ 0 at
// `daysFromPerihelion` (t − T, days): the ellipse for e < 1, Barker's
// equation for e = 1 exactly, the hyperbola for e > 1. Nothing for
// non-finite or meaningless input (q ≤ 0, e < 0) or when a solver fails.
std::optional<ConicPlace> ConicPlaceAt(double qAU, double e, double daysFromPerihelion);

// An orbit ready to be evaluated at any instant: the shape, the perihelion
// time and the orientation as the Gaussian vectors P (toward perihelion)
// and Q (90° ahead in the plane of motion), J2000 equatorial.
struct TwoBodyOrbit {
    double qAU = 0.0;
    double e = 0.0;
    double perihelionJdTT = 0.0;
    // Elliptic orbits also keep the mean anomaly at an epoch: that is how
    // asteroid elements are given, and it avoids the round trip through T.
    bool fromMeanAnomaly = false;
    double epochJdTT = 0.0;
    double meanAnomalyAtEpochRad = 0.0;
    double meanMotionRadPerDay = 0.0;
    Vector3 p{}, q{};
};

// From perihelion distance (AU), eccentricity, perihelion time (JD TT) and
// ω, Ω, i (degrees, ecliptic and equinox J2000): the comets' elements.
std::optional<TwoBodyOrbit> OrbitFromPerihelion(double qAU, double e, double perihelionJdTT, double argPerihelionDeg,
                                                double nodeDeg, double inclinationDeg);
// From the mean anomaly M0 (degrees) at an epoch (JD TT), the semi-major
// axis a (AU) and e < 1, with ω, Ω, i as above: the asteroids' elements.
std::optional<TwoBodyOrbit> OrbitFromMeanAnomaly(double meanAnomalyDeg, double epochJdTT, double aAU, double e,
                                                 double argPerihelionDeg, double nodeDeg, double inclinationDeg);

// The heliocentric J2000 equatorial position (AU) at jdTT; false when the
// instant is not finite or the solver fails. `place`, when given, receives ν
// and r.
bool HeliocentricJ2000(const TwoBodyOrbit& orbit, double jdTT, Vector3& positionAU, ConicPlace* place = nullptr);

// Visual magnitude of an asteroid by the IAU H, G system (Bowell et al.
// 1989, Asteroids II, p. 549): H absolute magnitude, G slope, r and Δ in AU,
// phase angle β in radians.
double AsteroidMagnitudeHG(double absoluteH, double slopeG, double sunDistanceAU, double earthDistanceAU,
                           double phaseAngleRad);
// Total visual magnitude of a comet: m = g + 5 log10 Δ + 2.5 k log10 r
// (g the absolute magnitude, k the activity slope: the H and G of the Minor
// Planet Center's comet elements, 2.5·k being the familiar "10" of
// m = g + 5 log Δ + 10 log r for k = 4).
double CometMagnitudeGK(double absoluteG, double slopeK, double sunDistanceAU, double earthDistanceAU);
// A magnitude in hundredths (signed 16 bits): m × 100 to the nearest whole
// number, halves away from zero, so that bright negative magnitudes round
// as the positive ones do (−2.00 stays −200); 9999 when m is not finite.
std::int16_t MagnitudeCenti(double magnitude);

}  // namespace orv
