#include "catalog/stars/spacemotion.h"

#include <cmath>

#include "util/angles.h"

namespace orv {

namespace {

// Astronomical unit in km (IAU 2012 B2) and the speed of light.
constexpr double kAuKm = 149597870.7;
constexpr double kSecondsPerJulianYear = 365.25 * 86400.0;
constexpr double kKmPerSecToAuPerYear = kSecondsPerJulianYear / kAuKm;  // 0.2109450…
constexpr double kLightAuPerYear = 299792.458 * kKmPerSecToAuPerYear;   // 63241.077…

double Norm(const double v[3]) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }

}  // namespace

bool PropagateSpaceMotion(const SpaceMotionStar& s, double years, double& raRad, double& decRad)
{
    if (!std::isfinite(s.raRad) || !std::isfinite(s.decRad) || !std::isfinite(s.pmRaStarArcsecPerYr) ||
        !std::isfinite(s.pmDecArcsecPerYr) || !std::isfinite(s.parallaxArcsec) ||
        !std::isfinite(s.radialVelocityKmS) || !std::isfinite(years))
        return false;

    const double ca = std::cos(s.raRad), sa = std::sin(s.raRad);
    const double cd = std::cos(s.decRad), sd = std::sin(s.decRad);
    const double p[3] = {cd * ca, cd * sa, sd};
    const double eRa[3] = {-sa, ca, 0.0};
    const double eDec[3] = {-sd * ca, -sd * sa, cd};
    const double muRa = s.pmRaStarArcsecPerYr * kRadPerArcsec;  // rad/yr
    const double muDec = s.pmDecArcsecPerYr * kRadPerArcsec;

    double q[3];
    if (s.parallaxArcsec > 0.0) {
        // Barycentric position (AU) and velocity (AU/yr).
        const double r = 1.0 / (s.parallaxArcsec * kRadPerArcsec);
        const double vr = s.radialVelocityKmS * kKmPerSecToAuPerYear;
        // The catalogue's proper motion and radial velocity are what an
        // observer sees; the light-time change along the path compresses or
        // stretches the star's motion by 1 + vr/c, and special relativity
        // adds a factor 1/γ. The inertial velocity (βr, βt in units of c)
        // satisfies βr = (1 + βr) βr,obs + 1/γ − 1 and βt = (1 + βr) βt,obs
        // with 1/γ = √(1 − βr² − βt²) (Stumpff 1985, A&A 144, 232; Klioner
        // 2003, AJ 125, 1580); solved by fixed-point iteration, which gains
        // a factor of about β per step.
        const double vt = r * std::sqrt(muRa * muRa + muDec * muDec);  // AU/yr
        const double betaRObs = vr / kLightAuPerYear;
        const double betaTObs = vt / kLightAuPerYear;
        double betaR = betaRObs, betaT = betaTObs;
        for (int iter = 0; iter < 20; ++iter) {
            const double w = betaR * betaR + betaT * betaT;
            if (!(w < 1.0)) break;  // faster than light: keep the observed values
            const double nextR = (1.0 + betaR) * betaRObs + std::sqrt(1.0 - w) - 1.0;
            const double nextT = (1.0 + betaR) * betaTObs;
            const bool done = std::fabs(nextR - betaR) < 1e-16 && std::fabs(nextT - betaT) < 1e-16;
            betaR = nextR;
            betaT = nextT;
            if (done) break;
        }
        const double tangentialScale = betaTObs > 0.0 ? betaT / betaTObs : 1.0 + betaR;
        // An observed radial velocity of zero leaves the inertial one at the
        // transverse Doppler term 1/γ − 1 ≈ −βt²/2 (a few m/s).
        const double radial = betaR * kLightAuPerYear;
        double pos[3], vel[3];
        for (int i = 0; i < 3; ++i) {
            pos[i] = r * p[i];
            vel[i] = tangentialScale * r * (muRa * eRa[i] + muDec * eDec[i]) + radial * p[i];
        }
        // The light reaching us at the catalogue epoch left the star
        // |pos|/c earlier; the light reaching us `years` later left it when
        // the star was at pos + vel·τ with τ + |pos + vel·τ|/c = years + |pos|/c.
        // Fixed-point iteration: each step gains a factor |v|/c (< 1e-3 for
        // any real star), so four steps reach double precision.
        const double lightTime0 = r / kLightAuPerYear;
        double tau = years;
        for (int iter = 0; iter < 4; ++iter) {
            for (int i = 0; i < 3; ++i) q[i] = pos[i] + vel[i] * tau;
            tau = years + lightTime0 - Norm(q) / kLightAuPerYear;
        }
        for (int i = 0; i < 3; ++i) q[i] = pos[i] + vel[i] * tau;
    } else {
        for (int i = 0; i < 3; ++i) q[i] = p[i] + (muRa * eRa[i] + muDec * eDec[i]) * years;
    }

    const double n = Norm(q);
    if (!(n > 0.0) || !std::isfinite(n)) return false;
    double ra = std::atan2(q[1], q[0]);
    if (ra < 0.0) ra += kTwoPi;
    raRad = ra;
    decRad = std::asin(q[2] / n > 1.0 ? 1.0 : (q[2] / n < -1.0 ? -1.0 : q[2] / n));
    return true;
}

}  // namespace orv
