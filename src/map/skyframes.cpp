#include "map/skyframes.h"

#include <erfa.h>
#include <erfam.h>

#include <atomic>
#include <cmath>

#include "observer/observer.h"
#include "util/angles.h"

namespace orv {

namespace {
const CErfaEarthVelocity g_erfaVelocity;
std::atomic<const IEarthVelocitySource*> g_velocitySource{nullptr};
}  // namespace

EarthVelocity CErfaEarthVelocity::AtTT(double jdTT) const
{
    double pvh[2][3], pvb[2][3];
    eraEpv00(2451545.0, jdTT - 2451545.0, pvh, pvb);
    // AU/day → fraction of the speed of light (c = 173.1446326846693 AU/day).
    EarthVelocity v;
    double beta2 = 0.0;
    for (int i = 0; i < 3; ++i) {
        v.betaJ2000[i] = pvb[1][i] / ERFA_CMPS * ERFA_DAU / ERFA_DAYSEC;
        beta2 += v.betaJ2000[i] * v.betaJ2000[i];
    }
    v.gamma = 1.0 / std::sqrt(1.0 - beta2);
    return v;
}

const IEarthVelocitySource& EarthVelocitySource()
{
    const IEarthVelocitySource* s = g_velocitySource.load();
    return s != nullptr ? *s : g_erfaVelocity;
}

void SetEarthVelocitySource(const IEarthVelocitySource* source) { g_velocitySource.store(source); }

namespace {
// The Earth's velocity depends only on the instant; a chart asks for it for
// every position of the same instant, so the last value is kept (per thread,
// for the source that gave it).
EarthVelocity VelocityAt(double jdTT)
{
    thread_local const IEarthVelocitySource* lastSource = nullptr;
    thread_local double lastJdTT = 0.0;
    thread_local EarthVelocity last;
    const IEarthVelocitySource* source = &EarthVelocitySource();
    if (source != lastSource || jdTT != lastJdTT) {
        last = source->AtTT(jdTT);
        lastSource = source;
        lastJdTT = jdTT;
    }
    return last;
}
}  // namespace

void SphericalToVector(double lonRad, double latRad, double v[3])
{
    const double cosLat = std::cos(latRad);
    v[0] = cosLat * std::cos(lonRad);
    v[1] = cosLat * std::sin(lonRad);
    v[2] = std::sin(latRad);
}

void VectorToSpherical(const double v[3], double& lonRad, double& latRad)
{
    lonRad = std::atan2(v[1], v[0]);
    if (lonRad < 0.0) lonRad += kTwoPi;
    if (lonRad >= kTwoPi) lonRad = 0.0;
    const double r = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    double s = r > 0.0 ? v[2] / r : 0.0;
    s = s > 1.0 ? 1.0 : (s < -1.0 ? -1.0 : s);
    latRad = std::asin(s);
}

void ApplyAberration(double p[3], const EarthVelocity& velocity)
{
    const double* V = velocity.betaJ2000;
    const double g = velocity.gamma;
    const double d = p[0] * V[0] + p[1] * V[1] + p[2] * V[2];
    const double a = 1.0 / ((1.0 + d) * g);
    const double b = (1.0 + d / (1.0 / g + 1.0)) / (1.0 + d);
    double n2 = 0.0;
    for (int i = 0; i < 3; ++i) {
        p[i] = p[i] * a + b * V[i];
        n2 += p[i] * p[i];
    }
    const double inv = 1.0 / std::sqrt(n2);
    for (int i = 0; i < 3; ++i) p[i] *= inv;
}

void EquatorialToHorizontal(const CObserverDoc& observer, double raRad, double decRad, double& altRad,
                            double& azRad, Refraction refraction)
{
    const double phi = observer.LatitudeRad();
    const double H = observer.LAST() * 15.0 * kRadPerDeg - raRad;
    const double sinD = std::sin(decRad), cosD = std::cos(decRad);
    const double sinP = std::sin(phi), cosP = std::cos(phi);
    const double cosH = std::cos(H), sinH = std::sin(H);
    double s = cosD * cosH * cosP + sinD * sinP;
    s = s > 1.0 ? 1.0 : (s < -1.0 ? -1.0 : s);
    double h = std::asin(s);
    if (refraction == Refraction::Apply && h > -0.1) {
        const double lifted = h + observer.Refraction(h);
        if (lifted >= 0.0) h = lifted;
    }
    altRad = h;
    double A = std::atan2(-cosD * sinH, sinD * cosP - cosD * cosH * sinP);
    if (A < 0.0) A += kTwoPi;
    azRad = A;
}

void HorizontalToEquatorial(const CObserverDoc& observer, double altRad, double azRad, double& raRad,
                            double& decRad, Refraction refraction)
{
    const double phi = observer.LatitudeRad();
    double h = altRad;
    if (refraction == Refraction::Apply && h > 0.0) h -= observer.InverseRefraction(h);
    const double sinP = std::sin(phi), cosP = std::cos(phi);
    const double sinh = std::sin(h), cosh = std::cos(h);
    const double sinA = std::sin(azRad), cosA = std::cos(azRad);
    const double H = std::atan2(-sinA * cosh, sinh * cosP - cosA * cosh * sinP);
    raRad = mod2pi(observer.LAST() * 15.0 * kRadPerDeg - H);
    double s = cosA * cosh * cosP + sinh * sinP;
    s = s > 1.0 ? 1.0 : (s < -1.0 ? -1.0 : s);
    decRad = std::asin(s);
}

void CatalogueToDate(const CObserverDoc& observer, double& raRad, double& decRad, Place place)
{
    double v[3];
    SphericalToVector(raRad, decRad, v);
    if (place == Place::Apparent) ApplyAberration(v, VelocityAt(observer.JulianDateTDT()));
    observer.PrecessXYZ(v, -1);
    if (place == Place::Apparent) observer.NutateXYZ(v);
    VectorToSpherical(v, raRad, decRad);
}

void CatalogueToDateAt(const CObserverDoc& observer, double& raRad, double& decRad, double jdTT)
{
    double v[3];
    SphericalToVector(raRad, decRad, v);
    ApplyAberration(v, VelocityAt(jdTT));
    observer.PrecessXYZ(v, jdTT, -1);
    observer.NutateXYZ(v, jdTT);
    VectorToSpherical(v, raRad, decRad);
}

void PrecessOnly(const CObserverDoc& observer, double& raRad, double& decRad, int direction)
{
    double v[3];
    SphericalToVector(raRad, decRad, v);
    observer.PrecessXYZ(v, direction);
    VectorToSpherical(v, raRad, decRad);
}

void DateToCatalogue(const CObserverDoc& observer, double& raRad, double& decRad)
{
    double target[3];
    SphericalToVector(raRad, decRad, target);
    observer.UnnutateXYZ(target);
    observer.PrecessXYZ(target, +1);
    // Aberration is not a rotation: invert it by fixed-point iteration on the
    // catalogue direction. It moves a star by at most ~20″, so each pass gains
    // about four orders of magnitude; three passes reach 1e-12 rad.
    const EarthVelocity velocity = VelocityAt(observer.JulianDateTDT());
    double p[3] = {target[0], target[1], target[2]};
    for (int pass = 0; pass < 4; ++pass) {
        double q[3] = {p[0], p[1], p[2]};
        ApplyAberration(q, velocity);
        double n2 = 0.0;
        for (int i = 0; i < 3; ++i) {
            p[i] += target[i] - q[i];
            n2 += p[i] * p[i];
        }
        const double inv = 1.0 / std::sqrt(n2);
        for (double& c : p) c *= inv;
    }
    VectorToSpherical(p, raRad, decRad);
}

}  // namespace orv
