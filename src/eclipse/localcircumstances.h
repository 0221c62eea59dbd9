// Local circumstances of solar and lunar eclipses at an observing site.
//
// Solar: from the polynomial Besselian elements (eclipsegeometry.h) by the
// method of the Explanatory Supplement to the Astronomical Almanac (1992),
// §8.4: the site's place (ξ, η, ζ) on the fundamental plane, the shadow's
// offset u = x − ξ, v = y − η and the radii L1′ = l1 − ζ tan f1,
// L2′ = l2 − ζ tan f2 on the site's plane; contacts where √(u² + v²) equals
// L1′ (first, fourth) or |L2′| (second, third), greatest eclipse where it is
// least. Lunar: the instants are the same for every site (the Moon's entry
// into and exit from the penumbra and the umbra); only the Moon's altitude
// depends on the site.
//
// Sites: geodetic latitude and longitude (east positive), radians, height in
// metres above the WGS 84 ellipsoid. Instants are Julian dates, TT and UT
// (UT = TT − ΔT, ΔT from DeltaTSeconds).
#pragma once

#include <optional>

#include "eclipse/eclipsefinder.h"
#include "eclipse/eclipsegeometry.h"

namespace orv {

struct EclipseSite {
    double latitudeRad = 0.0;
    double longitudeRad = 0.0;  // east positive
    double heightM = 0.0;
};

// One phase instant with the body's geometric (unrefracted) altitude and
// azimuth (from north through east) for the site.
struct EclipseContact {
    bool valid = false;  // false: the phase does not happen (or not at this site)
    double jdTT = 0.0;
    double jdUT = 0.0;
    double altitudeRad = 0.0;
    double azimuthRad = 0.0;
};

struct SolarLocalCircumstances {
    // The penumbra passes over the site while it faces the Sun (the Sun's
    // centre above the geometric horizon), and, for `visible`, while the Sun
    // is up (above −0.8333°).
    bool eclipsed = false;
    bool visible = false;
    char localType = 'P';   // 'T' total, 'A' annular at the site, else 'P'
    EclipseContact first, second, greatest, third, last;
    double magnitude = 0.0;    // fraction of the Sun's diameter covered at greatest eclipse
    double obscuration = 0.0;  // fraction of the Sun's disc covered at greatest eclipse
    double centralDurationSeconds = 0.0;  // second to third contact; 0 when not central
};

// The site's circumstances over the span of the elements (t0 ± 4 h, which
// covers every phase seen anywhere). The Sun counts as up while its centre's
// geometric altitude exceeds −0.8333° (the customary sunrise altitude:
// refraction 34′ and semidiameter 16′).
SolarLocalCircumstances SolarLocal(const BesselianElements& elements, const EclipseSite& site);

// Fraction of the Sun's disc of radius `sunRadius` hidden by the Moon's disc
// of radius `moonRadius` at centre distance `separation` (any one unit).
double DiscObscuration(double sunRadius, double moonRadius, double separation);

struct LunarLocalCircumstances {
    // P1, U1, U2, greatest, U3, U4, P4: the instants are global; altitude and
    // azimuth are the Moon's for the site (geocentric place).
    EclipseContact p1, u1, u2, greatest, u3, u4, p4;
    double penumbralMagnitude = 0.0;
    double umbralMagnitude = 0.0;
    // The Moon is up (its upper limb above the horizon, geocentric altitude
    // above 0.7275 π − 34′, Meeus ch. 15) at some time between P1 and P4.
    bool visible = false;
};

// For the eclipse whose greatest phase is near jdTTGreatest (a table
// record's minute is enough): the Moon's passage through the shadow is
// fitted by cubics to seven exact evaluations over ±5 h. Nothing when the ephemeris is unavailable or
// the Moon does not touch the penumbra.
std::optional<LunarLocalCircumstances> LunarLocal(double jdTTGreatest, const EclipseSite& site);

// Screens for the search, from the quick sketch of the Sun and Moon
// (sunmoonsketch.h) with margins wider than its errors: true only when the
// site surely sees nothing of the eclipse (solar: the penumbra never comes
// near the site while the Sun is near or above its horizon; lunar: the Moon
// stays a degree below its rising altitude from P1 to P4). False means the
// exact circumstances must decide.
bool SolarEclipseSurelyUnseen(double jdTTGreatest, const EclipseSite& site);
bool LunarEclipseSurelyUnseen(double jdTTGreatest, const EclipseSite& site);

}  // namespace orv
