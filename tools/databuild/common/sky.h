// Angles as the builder stores them (milliarcseconds, 0.01 mag) and the two
// pieces of spherical astronomy it needs: motion along a proper motion and
// the separation of two places.
#pragma once

#include <cstdint>
#include <numbers>

namespace orv::databuild {

inline constexpr double kMasPerDeg = 3600000.0;
inline constexpr std::int64_t kFullCircleMas = 1296000000;
inline constexpr double kDegToRad = std::numbers::pi / 180.0;

// Declination (or any angle short of a full turn), degrees → mas, rounded.
std::int32_t DegToMas(double deg);
// Right ascension, degrees → mas, rounded and wrapped into [0, 1,296,000,000).
std::int32_t RaDegToMas(double raDeg);
// A magnitude or colour index → 0.01 mag, rounded.
std::int16_t ToCenti(double mag);

// The proper motion in right ascension as a coordinate rate dα/dt = μα* / cos δ
// (mas of right ascension per year) from μα* = μα cos δ (mas/yr) at
// declination `decDeg`. At the pole itself the rate is undefined; such a star
// (none exists in Tycho-2) is given no motion in right ascension.
float CoordinateRate(double pmRaStarMasPerYr, double decDeg);

// Moves a position along a constant proper motion on the sphere (straight
// motion in space at infinite distance): the rigorous form of α + μα*/cos δ·t,
// δ + μδ·t that stays valid at the poles. Angles in degrees, proper motion
// pmRA* (= μα cos δ) and pmDE in mas/yr, years may be negative.
void MoveAlongProperMotion(double& raDeg, double& decDeg, double pmRaStarMasPerYr, double pmDecMasPerYr,
                           double years);

// Angular distance between two J2000 places given in mas, in arcseconds
// (haversine form: exact for the sub-arcsecond separations it is used for,
// at 0h and at the poles alike).
double SeparationArcsec(std::int32_t ra1Mas, std::int32_t dec1Mas, std::int32_t ra2Mas, std::int32_t dec2Mas);

}  // namespace orv::databuild
