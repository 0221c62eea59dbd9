// Physical ephemerides of Jupiter and Saturn: how their globes, belts and
// rings are turned on the sky at an instant, and where the Great Red Spot
// stands on Jupiter's disc.
//
// Meeus, Astronomical Algorithms, 2nd ed. (1998): ch. 43 (ephemeris for
// physical observations of Jupiter) and ch. 45 (the ring of Saturn). The
// planets' heliocentric places come from CPlanets (VSOP87D, FK5), the
// nutation and obliquity from the observer (IAU 2000B/2006), so the results
// differ from Meeus's printed ones by a few thousandths of a degree.
//
// Every date is a Julian date in dynamical time (TT).
#pragma once

#include <optional>

#include "solarsystem/vsop87.h"

namespace orv {

class CObserverDoc;
class CPlanets;

// A planet seen from the Earth, geometric (light time applied, no
// aberration), on the mean ecliptic and equinox of date (FK5): the Earth's
// heliocentric place at jdTT, the planet's at jdTT − τ, and the vector
// between them (Meeus eqs. 33.1, 42.2–42.3). False when a position is
// unavailable.
struct GeocentricGeometry {
    SphericalLBR earth;   // l0, b0, R
    SphericalLBR planet;  // l, b, r at the retarded instant
    double x = 0.0, y = 0.0, z = 0.0;  // Earth → planet, AU
    double distanceAU = 0.0;           // Δ
};
bool GeocentricGeometryOf(const CPlanets& planets, const CObserverDoc& observer, int body, double jdTT,
                          GeocentricGeometry& g);

// Jupiter seen from the Earth (Meeus ch. 43, the higher-accuracy method).
struct JupiterPhysical {
    double sunDeclinationRad = 0.0;    // DS, Jovicentric declination of the Sun
    double earthDeclinationRad = 0.0;  // DE, Jovicentric declination of the Earth
    double centralMeridian1Rad = 0.0;  // ω1, System I longitude of the central meridian, [0, 2π)
    double centralMeridian2Rad = 0.0;  // ω2, System II, [0, 2π)
    double poleAngleRad = 0.0;         // P, position angle of the north pole (from north through east), [0, 2π)
};
// Nothing when the planets' positions are unavailable for jdTT.
std::optional<JupiterPhysical> JupiterPhysicalMeeus(const CPlanets& planets, const CObserverDoc& observer, double jdTT);

// Mars seen from the Earth (Meeus ch. 42, with the constants the program
// binds: pole λ0 = 352.9065° + 1.1733° T, β0 = 63.2818° − 0.00394° T on the
// ecliptic of date; node N = 49.5581° + 0.7721° T; the light-time place
// corrected by −0.00697°/r in longitude and −0.000225°·cos(l − N)/r in
// latitude for the Sun's direction).
struct MarsPhysical {
    double earthDeclinationRad = 0.0;  // DE, areocentric declination of the Earth
    double sunDeclinationRad = 0.0;    // DS
    double centralMeridianRad = 0.0;   // ω, areographic longitude of the central meridian, [0, 2π)
    double poleAngleRad = 0.0;         // P, [0, 2π)
};
std::optional<MarsPhysical> MarsPhysicalMeeus(const CPlanets& planets, const CObserverDoc& observer, double jdTT);

// Saturn's ring seen from the Earth (Meeus ch. 45).
struct SaturnRingView {
    double earthTiltRad = 0.0;   // B, Saturnicentric latitude of the Earth on the ring plane (+: north face seen)
    double sunTiltRad = 0.0;     // B′, of the Sun
    double deltaURad = 0.0;      // ΔU, difference of the Saturnicentric longitudes of the Sun and the Earth
    double poleAngleRad = 0.0;   // P, position angle of the ring's (and Saturn's) north pole, (−π, π]
    double majorAxisRad = 0.0;   // a, the outer edge of ring A across its major axis (375.35″ at 1 AU)
    double minorAxisRad = 0.0;   // b = a·sin|B|
};
std::optional<SaturnRingView> SaturnRingViewMeeus(const CPlanets& planets, const CObserverDoc& observer, double jdTT);

// Radii of the rings' edges in Saturn's equatorial radii (60,268 km):
// ring C inner edge, ring B inner (C/B boundary), ring B outer (Cassini
// division), ring A inner, ring A outer (Cuzzi et al. 2009, "Ring particle
// composition and size distribution", in Saturn from Cassini-Huygens).
inline constexpr double kSaturnRingCInner = 1.239;
inline constexpr double kSaturnRingBInner = 1.526;
inline constexpr double kSaturnRingBOuter = 1.950;
inline constexpr double kSaturnRingAInner = 2.025;
inline constexpr double kSaturnRingAOuter = 2.267;

// The Great Red Spot's System II longitude `grsLongitudeDeg` against the
// central meridian: the spot's offset from the disc's centre in Jupiter's
// equatorial radii, x along the equator toward the planet's following
// (celestial east) limb, y toward the north pole; `visible` when it lies on
// the hemisphere turned to the Earth. The spot's planetographic latitude is
// taken as 22.5° S.
struct GreatRedSpotPlace {
    double xRadii = 0.0;
    double yRadii = 0.0;
    bool visible = false;
};
GreatRedSpotPlace GreatRedSpotOnDisc(const JupiterPhysical& jupiter, double grsLongitudeDeg);

// The first instant at or after jdTT at which the spot is on the central
// meridian (ω2 equal to its longitude), to about 10 seconds; nothing when
// Jupiter's position is unavailable. System II turns 870.27° a day, so the
// transits come every 9 h 55.7 min.
std::optional<double> NextGreatRedSpotTransitJdTT(const CPlanets& planets, const CObserverDoc& observer, double jdTT,
                                                  double grsLongitudeDeg);

// Position angle, from north through east, of the direction toward a pole
// (raPoleRad, decPoleRad) seen at the place (raRad, decRad), in one frame
// (Meeus eq. 42.4 and 45.x), radians in (−π, π].
double PoleAngleRad(double raPoleRad, double decPoleRad, double raRad, double decRad);

}  // namespace orv
