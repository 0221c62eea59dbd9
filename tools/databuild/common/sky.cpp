#include "common/sky.h"

#include <algorithm>
#include <cmath>

namespace orv::databuild {

std::int32_t DegToMas(double deg) { return static_cast<std::int32_t>(std::llround(deg * kMasPerDeg)); }

std::int32_t RaDegToMas(double raDeg)
{
    std::int64_t mas = std::llround(raDeg * kMasPerDeg);
    mas %= kFullCircleMas;
    if (mas < 0) mas += kFullCircleMas;
    return static_cast<std::int32_t>(mas);
}

std::int16_t ToCenti(double mag) { return static_cast<std::int16_t>(std::lround(mag * 100.0)); }

float CoordinateRate(double pmRaStarMasPerYr, double decDeg)
{
    const double c = std::cos(decDeg * kDegToRad);
    if (c < 1e-9) return 0.0f;
    return static_cast<float>(pmRaStarMasPerYr / c);
}

void MoveAlongProperMotion(double& raDeg, double& decDeg, double pmRaStarMasPerYr, double pmDecMasPerYr,
                           double years)
{
    // Unit vector p and the tangential velocity v = μα* e_α + μδ e_δ (rad/yr);
    // the new direction is (p + v t) / |p + v t|. The error against the
    // exact straight-line space motion is of order (μ t)², below 0.01 mas for
    // every Hipparcos star over the 8.75 years this is used for.
    const double a = raDeg * kDegToRad;
    const double d = decDeg * kDegToRad;
    const double ca = std::cos(a), sa = std::sin(a), cd = std::cos(d), sd = std::sin(d);
    const double p[3] = {cd * ca, cd * sa, sd};
    const double eA[3] = {-sa, ca, 0.0};
    const double eD[3] = {-sd * ca, -sd * sa, cd};
    const double radPerMas = kDegToRad / kMasPerDeg;
    const double ma = pmRaStarMasPerYr * radPerMas * years;
    const double md = pmDecMasPerYr * radPerMas * years;
    double q[3];
    for (int i = 0; i < 3; ++i) q[i] = p[i] + ma * eA[i] + md * eD[i];
    const double n = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2]);
    double ra = std::atan2(q[1], q[0]) / kDegToRad;
    if (ra < 0.0) ra += 360.0;
    if (ra >= 360.0) ra -= 360.0;
    raDeg = ra;
    decDeg = std::asin(std::clamp(q[2] / n, -1.0, 1.0)) / kDegToRad;
}

double SeparationArcsec(std::int32_t ra1Mas, std::int32_t dec1Mas, std::int32_t ra2Mas, std::int32_t dec2Mas)
{
    const double radPerMas = kDegToRad / kMasPerDeg;
    const double d1 = dec1Mas * radPerMas, d2 = dec2Mas * radPerMas;
    const double sdd = std::sin(0.5 * (d2 - d1));
    const double sda = std::sin(0.5 * (static_cast<double>(ra2Mas) - ra1Mas) * radPerMas);
    const double h = sdd * sdd + std::cos(d1) * std::cos(d2) * sda * sda;
    return 2.0 * std::asin(std::sqrt(std::clamp(h, 0.0, 1.0))) / kDegToRad * 3600.0;
}

}  // namespace orv::databuild
