// What the satellite subsystem derives from a propagated state: the site's
// state vector, topocentric look angles with refraction, the sub-satellite
// point, the low-precision Sun, the satellite's illumination and the Sun's
// elevation at the site.
//
// Frame: every vector here is geocentric in the TEME frame of the element
// sets (true equator, mean equinox of date), in kilometres and km/s; the
// Earth is rotated with the IAU 1982 mean sidereal time (sattime.h). The
// ellipsoid is WGS-72's (a = 6378.135 km, f = 1/298.26), the one the models
// were fitted with. The methods follow T. S. Kelso's "Orbital Coordinate
// Systems" (Satellite Times, 1995-96) and Escobal, Methods of Orbit
// Determination (1965), ch. 3.
#pragma once

#include <array>
#include <cstdint>

#include "satellite/propagator.h"

namespace orv::sat {

// An observing site: geodetic latitude and east longitude (radians) and the
// height above the ellipsoid in kilometres.
struct SatelliteSite {
    double latitudeRad = 0.0;
    double longitudeRad = 0.0;  // east positive
    double heightKm = 0.0;
};

// The site's geocentric state in TEME (km, km/s) and its local mean sidereal
// angle θ = GMST + λ in [0, 2π).
struct ObserverStateKm {
    std::array<double, 3> positionKm{};
    std::array<double, 3> velocityKmPerS{};
    double localSiderealRad = 0.0;
};

// Site position on the WGS-72 ellipsoid rotated to θ; velocity ω × r with
// ω = 2π × 1.00273790934 / 86400 rad/s.
ObserverStateKm ComputeObserverState(const SatelliteSite& site, double jdUT);

// Whether the refracted elevation is at or above the horizon.
enum class Horizon { Below = 0, Above = 1 };

// Topocentric azimuth (from north through east, [0, 2π)), elevation
// (refracted as below), range (km) and range rate (km/s, positive receding).
struct LookAngles {
    double azimuthRad = 0.0;
    double elevationRad = 0.0;
    double rangeKm = 0.0;
    double rangeRateKmPerS = 0.0;
    Horizon horizon = Horizon::Below;
};

// An elevation with the refraction rule applied.
struct RefractedElevation {
    double elevationRad = 0.0;
    Horizon horizon = Horizon::Below;
};

// Atmospheric refraction at standard conditions (1010 hPa, 10 °C) for a
// geometric elevation h: R = 1.02 / tan(h + 10.3 / (h + 5.11)) arc minutes,
// h in degrees (Sæmundsson, Sky & Telescope 72, 70, 1986; Meeus, Astronomical
// Algorithms, eq. 16.4). When h + R is not negative it becomes the elevation
// and the object is above the horizon; otherwise the geometric elevation is
// kept and the object is below. Below −2° refraction could never lift the
// object to the horizon (R < 0.75°) and the formula is not evaluated: it has
// a pole at −5.11° that would give meaningless values.
RefractedElevation ApplyRefraction(double geometricElevationRad);

// Look angles of a satellite at `satellite` (TEME, km and km/s) from `site`
// at jdUT. The azimuth is atan2(east, north) of the topocentric vector, which
// is the south-east-zenith form atan(−E/S) (+π when S > 0) without its 0/0 at
// the zenith.
LookAngles ComputeLookAngles(const TemeStateKm& satellite, const SatelliteSite& site, double jdUT);

// Geodetic point under a satellite on the WGS-72 ellipsoid.
struct SubSatellitePoint {
    double latitudeRad = 0.0;
    double longitudeRad = 0.0;  // east positive, (−π, π]
    double heightKm = 0.0;
};

// Longitude = atan2(y, x) − GMST; latitude by the fixed-point iteration
// φ' = atan2(z + a C e² sin φ, sqrt(x² + y²)), C = 1/sqrt(1 − e² sin² φ),
// from φ = atan2(z, r) until successive values differ by less than 1e-10 rad
// (it contracts by about e² = 0.0067 each pass); height = r / cos φ − a C.
// A non-finite position gives NaN results without iterating.
SubSatellitePoint ComputeSubSatellitePoint(const std::array<double, 3>& positionKm, double jdUT);

// Geocentric vector of the Sun (km) in the equator and equinox of date, from
// the low-precision solar theory of Newcomb's elements as given in the
// Explanatory Supplement to the Astronomical Ephemeris (1961) and Meeus,
// Astronomical Formulae for Calculators (1988), ch. 18: mean longitude, mean
// anomaly and equation of centre in T Julian centuries of ephemeris time from
// 1900 January 0.5, with ET − UT = 26.465 + 0.747622 (y − 1950)
// + 1.886913 sin(2π (y − 1975) / 33) s. Accuracy about 0.01° in longitude
// over 1900-2100.
std::array<double, 3> ComputeSunVectorKm(double jdUT);

// Illumination of a satellite (16-bit code, as stored with the tables).
enum class Illumination : std::int16_t { Sunlit = 0, Penumbra = 1, Umbra = 2 };

// Illumination from the apparent semi-diameters of the Earth (θE) and the Sun
// (θS) seen from the satellite and their separation θ: umbra when θE > θS and
// θ < θE − θS; sunlit when |θE − θS| ≥ θ (the Earth wholly inside the solar
// disc, or exactly on the umbra's edge); penumbra when θ < θE + θS; sunlit
// otherwise. A position inside the Earth counts as umbra.
Illumination ComputeIllumination(const std::array<double, 3>& satellitePositionKm, double jdUT);
// The same with the Sun's vector given (km), when it is already known.
Illumination ComputeIllumination(const std::array<double, 3>& satellitePositionKm,
                                 const std::array<double, 3>& sunPositionKm);

// Topocentric elevation of the Sun at the site, refracted by ApplyRefraction.
double ComputeSunElevationRad(const SatelliteSite& site, double jdUT);

}  // namespace orv::sat
