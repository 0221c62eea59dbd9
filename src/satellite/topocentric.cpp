#include "satellite/topocentric.h"

#include <algorithm>
#include <cmath>

#include "satellite/sattime.h"
#include "satellite/wgs72.h"
#include "util/angles.h"

namespace orv::sat {

namespace {

constexpr double kEarthRotationRadPerS = kTwoPi * kSiderealTurnsPerSolarDay / 86400.0;
// Below this geometric elevation refraction is not evaluated (see header).
constexpr double kRefractionFloorDeg = -2.0;
// Convergence of the geodetic latitude iteration, rad.
constexpr double kLatitudeToleranceRad = 1e-10;

double Dot(const std::array<double, 3>& a, const std::array<double, 3>& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
double Norm(const std::array<double, 3>& a) { return std::sqrt(Dot(a, a)); }

// Topocentric south, east and zenith components of a TEME vector at a site
// of geodetic latitude φ and local sidereal angle θ.
std::array<double, 3> ToSouthEastZenith(const std::array<double, 3>& v, double latitudeRad, double localSiderealRad)
{
    const double sinLat = std::sin(latitudeRad), cosLat = std::cos(latitudeRad);
    const double sinTheta = std::sin(localSiderealRad), cosTheta = std::cos(localSiderealRad);
    const double south = sinLat * cosTheta * v[0] + sinLat * sinTheta * v[1] - cosLat * v[2];
    const double east = -sinTheta * v[0] + cosTheta * v[1];
    const double zenith = cosLat * cosTheta * v[0] + cosLat * sinTheta * v[1] + sinLat * v[2];
    return {south, east, zenith};
}

}  // namespace

ObserverStateKm ComputeObserverState(const SatelliteSite& site, double jdUT)
{
    ObserverStateKm out;
    const double theta = mod2pi(GmstIau1982Rad(jdUT) + site.longitudeRad);
    out.localSiderealRad = theta;
    const double sinLat = std::sin(site.latitudeRad);
    const double c = 1.0 / std::sqrt(1.0 + kFlattening * (kFlattening - 2.0) * sinLat * sinLat);
    const double s = (1.0 - kFlattening) * (1.0 - kFlattening) * c;
    const double achcp = (kEarthRadiusKm * c + site.heightKm) * std::cos(site.latitudeRad);
    out.positionKm = {achcp * std::cos(theta), achcp * std::sin(theta), (kEarthRadiusKm * s + site.heightKm) * sinLat};
    out.velocityKmPerS = {-kEarthRotationRadPerS * out.positionKm[1], kEarthRotationRadPerS * out.positionKm[0], 0.0};
    return out;
}

RefractedElevation ApplyRefraction(double geometricElevationRad)
{
    RefractedElevation out{geometricElevationRad, Horizon::Below};
    const double h = geometricElevationRad * kDegPerRad;
    if (!(h > kRefractionFloorDeg)) return out;
    const double refractionDeg = 1.02 / std::tan((h + 10.3 / (h + 5.11)) * kRadPerDeg) / 60.0;
    const double refracted = h + refractionDeg;
    if (refracted >= 0.0) {
        out.elevationRad = refracted * kRadPerDeg;
        out.horizon = Horizon::Above;
    }
    return out;
}

LookAngles ComputeLookAngles(const TemeStateKm& satellite, const SatelliteSite& site, double jdUT)
{
    const ObserverStateKm obs = ComputeObserverState(site, jdUT);
    std::array<double, 3> range{}, rangeRate{};
    for (int i = 0; i < 3; ++i) {
        range[i] = satellite.positionKm[i] - obs.positionKm[i];
        rangeRate[i] = satellite.velocityKmPerS[i] - obs.velocityKmPerS[i];
    }
    const double rangeKm = Norm(range);
    const std::array<double, 3> sez = ToSouthEastZenith(range, site.latitudeRad, obs.localSiderealRad);

    LookAngles out;
    out.azimuthRad = mod2pi(std::atan2(sez[1], -sez[0]));
    const double geometric = std::asin(std::clamp(sez[2] / rangeKm, -1.0, 1.0));
    const RefractedElevation refracted = ApplyRefraction(geometric);
    out.elevationRad = refracted.elevationRad;
    out.horizon = refracted.horizon;
    out.rangeKm = rangeKm;
    out.rangeRateKmPerS = Dot(range, rangeRate) / rangeKm;
    return out;
}

SubSatellitePoint ComputeSubSatellitePoint(const std::array<double, 3>& p, double jdUT)
{
    SubSatellitePoint out;
    if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2]) || !std::isfinite(jdUT)) {
        out.latitudeRad = out.longitudeRad = out.heightKm = std::nan("");
        return out;
    }
    double lon = mod2pi(std::atan2(p[1], p[0]) - GmstIau1982Rad(jdUT));
    if (lon > kPi) lon -= kTwoPi;
    out.longitudeRad = lon;

    const double r = std::hypot(p[0], p[1]);
    const double e2 = kFlattening * (2.0 - kFlattening);
    double phi = std::atan2(p[2], r);
    double c = 1.0;
    // Converges for every finite position: each pass shrinks the error by a
    // factor of about e².
    for (;;) {
        const double sinPhi = std::sin(phi);
        c = 1.0 / std::sqrt(1.0 - e2 * sinPhi * sinPhi);
        const double next = std::atan2(p[2] + kEarthRadiusKm * c * e2 * sinPhi, r);
        const double change = std::fabs(next - phi);
        phi = next;
        if (change < kLatitudeToleranceRad) break;
    }
    const double sinPhi = std::sin(phi);
    c = 1.0 / std::sqrt(1.0 - e2 * sinPhi * sinPhi);
    out.latitudeRad = phi;
    // Near the poles r / cos φ loses precision; use the polar form there.
    if (std::fabs(std::cos(phi)) > 1e-3)
        out.heightKm = r / std::cos(phi) - kEarthRadiusKm * c;
    else
        out.heightKm = p[2] / sinPhi - kEarthRadiusKm * c * (1.0 - e2);
    return out;
}

std::array<double, 3> ComputeSunVectorKm(double jdUT)
{
    const double mjd = jdUT - 2415020.0;
    const double year = 1900.0 + mjd / 365.25;
    const double deltaEtSeconds =
        26.465 + 0.747622 * (year - 1950.0) + 1.886913 * std::sin(kTwoPi * (year - 1975.0) / 33.0);
    const double t = (mjd + deltaEtSeconds / 86400.0) / 36525.0;
    const double t2 = t * t;
    const double meanAnomalyRad = mod360(358.47583 + 35999.04975 * t - 0.00015 * t2 - 3.3e-6 * t2 * t) * kRadPerDeg;
    const double meanLongitudeDeg = mod360(279.69668 + 36000.76892 * t + 0.0003025 * t2);
    const double e = 0.01675104 - 4.18e-5 * t - 1.26e-7 * t2;
    const double centreDeg = (1.91946 - 0.004789 * t - 1.4e-5 * t2) * std::sin(meanAnomalyRad) +
                             (0.020094 - 0.0001 * t) * std::sin(2.0 * meanAnomalyRad) +
                             0.000293 * std::sin(3.0 * meanAnomalyRad);
    const double omegaRad = mod360(259.18 - 1934.142 * t) * kRadPerDeg;
    // Apparent longitude: aberration (−0.00569°) and nutation in longitude.
    const double lambdaRad = mod360(meanLongitudeDeg + centreDeg - 0.00569 - 0.00479 * std::sin(omegaRad)) * kRadPerDeg;
    const double trueAnomalyRad = meanAnomalyRad + centreDeg * kRadPerDeg;
    const double distanceAu = 1.0000002 * (1.0 - e * e) / (1.0 + e * std::cos(trueAnomalyRad));
    const double epsRad =
        (23.452294 - 0.0130125 * t - 1.64e-6 * t2 + 5.03e-7 * t2 * t + 0.00256 * std::cos(omegaRad)) * kRadPerDeg;
    const double rKm = distanceAu * kAstronomicalUnitKm;
    return {rKm * std::cos(lambdaRad), rKm * std::sin(lambdaRad) * std::cos(epsRad),
            rKm * std::sin(lambdaRad) * std::sin(epsRad)};
}

Illumination ComputeIllumination(const std::array<double, 3>& satellitePositionKm,
                                 const std::array<double, 3>& sunPositionKm)
{
    const double satDistance = Norm(satellitePositionKm);
    if (!(satDistance > kEarthRadiusKm)) return Illumination::Umbra;
    std::array<double, 3> toEarth{}, toSun{};
    for (int i = 0; i < 3; ++i) {
        toEarth[i] = -satellitePositionKm[i];
        toSun[i] = sunPositionKm[i] - satellitePositionKm[i];
    }
    const double sunDistance = Norm(toSun);
    const double semiDiameterEarth = std::asin(kEarthRadiusKm / satDistance);
    const double semiDiameterSun = std::asin(std::min(1.0, kSunRadiusKm / sunDistance));
    const double separation = std::acos(std::clamp(Dot(toEarth, toSun) / (satDistance * sunDistance), -1.0, 1.0));

    if (semiDiameterEarth > semiDiameterSun && separation < semiDiameterEarth - semiDiameterSun)
        return Illumination::Umbra;
    if (std::fabs(semiDiameterEarth - semiDiameterSun) >= separation) return Illumination::Sunlit;
    if (separation < semiDiameterEarth + semiDiameterSun) return Illumination::Penumbra;
    return Illumination::Sunlit;
}

Illumination ComputeIllumination(const std::array<double, 3>& satellitePositionKm, double jdUT)
{
    return ComputeIllumination(satellitePositionKm, ComputeSunVectorKm(jdUT));
}

double ComputeSunElevationRad(const SatelliteSite& site, double jdUT)
{
    const ObserverStateKm obs = ComputeObserverState(site, jdUT);
    const std::array<double, 3> sun = ComputeSunVectorKm(jdUT);
    std::array<double, 3> range{};
    for (int i = 0; i < 3; ++i) range[i] = sun[i] - obs.positionKm[i];
    const std::array<double, 3> sez = ToSouthEastZenith(range, site.latitudeRad, obs.localSiderealRad);
    const double geometric = std::asin(std::clamp(sez[2] / Norm(range), -1.0, 1.0));
    return ApplyRefraction(geometric).elevationRad;
}

}  // namespace orv::sat
