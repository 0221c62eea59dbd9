// Physical constants of the NORAD general-perturbation models.
//
// SGP4 and SDP4 were fitted with the WGS-72 geopotential, and the element
// sets distributed for them are mean elements in that model: using another
// Earth model with them degrades the positions instead of improving them
// (Hoots & Roehrich, Spacetrack Report No. 3, 1980, section 12; Vallado et
// al., "Revisiting Spacetrack Report #3", AIAA 2006-6753, section IV).
#pragma once

#include <cmath>

namespace orv::sat {

// Earth's equatorial radius, km: the models' unit of length ("1 Earth radius").
inline constexpr double kEarthRadiusKm = 6378.135;
// Geocentric gravitational constant, km^3/s^2.
inline constexpr double kGravitationalParameterKm3PerS2 = 398600.8;
// Zonal harmonics J2, J3, J4 and the model's derived k2 = J2/2, k4 = -3/8 J4
// (Earth radii to the appropriate powers).
inline constexpr double kJ2 = 1.0826158e-3;
inline constexpr double kJ3 = -2.53881e-6;
inline constexpr double kJ4 = -1.65597e-6;
inline constexpr double kK2 = 0.5 * kJ2;
inline constexpr double kK4 = -0.375 * kJ4;
// Flattening of the WGS-72 ellipsoid, used for the site and the geodetic
// sub-satellite point.
inline constexpr double kFlattening = 0.003352779454167505;  // 1/298.26
// Radius of the Sun's photosphere (km) for the eclipse test, and the
// astronomical unit (km) for the low-precision solar vector.
inline constexpr double kSunRadiusKm = 696000.0;
inline constexpr double kAstronomicalUnitKm = 149597870.0;
inline constexpr double kMinutesPerDay = 1440.0;
// Turns of the Earth relative to the mean equinox per mean solar day.
inline constexpr double kSiderealTurnsPerSolarDay = 1.00273790934;

// ke = sqrt(GM) in Earth radii^1.5 per minute: the models' gravitational
// constant, sqrt(398600.8 × 3600 / 6378.135³).
inline const double kKe = std::sqrt(kGravitationalParameterKm3PerS2 * 3600.0 /
                                    (kEarthRadiusKm * kEarthRadiusKm * kEarthRadiusKm));

// Heights (km) of the drag model's density function: s = 1 + 78/6378.135 and
// q0 = 1 + 120/6378.135 Earth radii; qoms2t = (q0 - s)^4.
inline constexpr double kDragSHeightKm = 78.0;
inline constexpr double kDragQ0HeightKm = 120.0;

// Unit conversions of the models' output.
inline constexpr double kKmPerEarthRadius = kEarthRadiusKm;
inline constexpr double kKmPerSecondPerEarthRadiusPerMinute = kEarthRadiusKm / 60.0;

}  // namespace orv::sat
