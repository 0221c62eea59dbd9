// Pluto's heliocentric place from the periodic series of Meeus,
// Astronomical Algorithms, 2nd ed. (1998), chapter 37 (table 37.A): 43 terms
// in the mean longitudes of Jupiter, Saturn and Pluto, a fit by Chapront to
// the JPL integration DE200, referred to the ecliptic and equinox J2000.0
// (FK5). Meeus gives it for the years 1885 to 2099 only: its arguments are
// linear in time and it has no secular terms, so outside that span it does
// not degrade gracefully but wanders off (Montenbruck & Pfleger report more
// than half a degree within a few years of the ends for their own series of
// this kind).
// Dates outside the span are refused (docs/compact-ephemeris.md).
#pragma once

namespace orv {

// The span Meeus gives: 1885 January 1.0 to 2100 January 1.0 TT.
inline constexpr double kPlutoSeriesFirstJd = 2409542.5;
inline constexpr double kPlutoSeriesEndJd = 2488069.5;

// Heliocentric ecliptic longitude and latitude (radians, ecliptic and
// equinox J2000.0) and radius vector (AU) at jdTT. False, and nothing
// written, outside [kPlutoSeriesFirstJd, kPlutoSeriesEndJd) or for a
// non-finite date.
bool PlutoEclipticJ2000(double jdTT, double& lonRad, double& latRad, double& radiusAU);

// The same as J2000 equatorial rectangular coordinates in AU (rotated about
// the equinox by the J2000 mean obliquity of IAU 1976, 84381.448″, the
// frame of the series and of the FK5 VSOP87 places).
bool PlutoEquatorialJ2000(double jdTT, double xyzAU[3]);

}  // namespace orv
