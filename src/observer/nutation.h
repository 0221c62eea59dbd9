// The nutation and the equation of the equinoxes behind the observer's
// precession-nutation and apparent sidereal time (observer.h: NutateXYZ,
// NutationTerms, GAST, LAST and GreenwichApparentSiderealTimeRad all use
// these). The full IAU 2000A series cost most of the time of a new instant
// (chart, search, table); the short IAU 2000B series answers within 3 mas of
// it over 1900–2100, a thousandth of the 1″ to which the program places the
// planets, and is used from 1850 to 2150.
#pragma once

namespace orv {

// Nutation in longitude and obliquity at jdTT, radians: the IAU 2000B series
// (McCarthy & Luzum 2003, Celest. Mech. 85, 37; ERFA eraNut00b) with the IAU
// 2006 adjustment that eraNut06a applies to 2000A. Its 77 luni-solar terms
// and fixed planetary offset follow the full 2000A series (1,365 terms) to
// 1 mas over 1995–2050, and over 1900–2100 to 2.8 mas in Δψ and 1.1 mas in
// Δε (tests/observer/test_precession.cpp), at a twentieth of its cost.
void NutationIAU2000B2006(double jdTT, double& dPsiRad, double& dEpsRad);

// The observer's nutation: NutationIAU2000B2006 from 1850 to 2150, the full
// IAU 2000A (eraNut06a) before and after, where 2000B's fixed planetary
// offsets drift from the real terms (45 mas by AD 1000 and 3000, against
// 2.8 mas at most over 1900–2100). At the two switch dates the nutation
// steps by a few mas.
void NutationForObserver(double jdTT, double& dPsiRad, double& dEpsRad);

// The equation of the equinoxes (IAU 2006/2000, equinox-based), radians, from
// the nutation in longitude and the mean obliquity of jdTT: apparent less
// mean sidereal time, to 35 µas. Greenwich apparent sidereal time is the mean
// sidereal time (IAU 2006, ERFA eraGmst06) plus this, with the nutation
// above: within 3 mas of the full IAU 2006/2000A value (eraGst06a) over
// 1900–2100.
double EquationOfEquinoxesRad(double jdTT, double dPsiRad, double meanObliquityRad);

}  // namespace orv
