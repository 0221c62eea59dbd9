#include "solarsystem/physephem.h"

#include <cmath>

#include "observer/observer.h"
#include "solarsystem/planets.h"
#include "util/angles.h"

namespace orv {

namespace {

constexpr double kDeg = kRadPerDeg;

double Wrap2Pi(double a)
{
    a = std::fmod(a, 2.0 * kPi);
    return a < 0.0 ? a + 2.0 * kPi : a;
}

// Ecliptic (λ, β) to equatorial (α, δ) for the obliquity ε (Meeus eqs. 13.3, 13.4).
void EclipticToEquatorial(double lambda, double beta, double eps, double& ra, double& dec)
{
    ra = std::atan2(std::sin(lambda) * std::cos(eps) - std::tan(beta) * std::sin(eps), std::cos(lambda));
    dec = std::asin(std::sin(beta) * std::cos(eps) + std::cos(beta) * std::sin(eps) * std::sin(lambda));
}

// Nutation of an equatorial place of date (Meeus eq. 23.1), radians.
void Nutate(double& ra, double& dec, double eps, double dPsi, double dEps)
{
    const double td = std::tan(dec);
    const double dRa = (std::cos(eps) + std::sin(eps) * std::sin(ra) * td) * dPsi - std::cos(ra) * td * dEps;
    const double dDec = std::sin(eps) * std::cos(ra) * dPsi + std::sin(ra) * dEps;
    ra += dRa;
    dec += dDec;
}

}  // namespace

bool GeocentricGeometryOf(const CPlanets& planets, const CObserverDoc& observer, int body, double jdTT, GeocentricGeometry& g)
{
    if (planets.HeliocentricPosition(observer, kBodyEarth, jdTT, &g.earth, nullptr) != PositionStatus::Ok) return false;
    g.distanceAU = 1.0;
    // From a first guess of 1 AU, three passes bring τ to well under a second.
    for (int pass = 0; pass < 3; ++pass) {
        const double tau = g.distanceAU / kLightAUPerDay;
        if (planets.HeliocentricPosition(observer, body, jdTT - tau, &g.planet, nullptr) != PositionStatus::Ok)
            return false;
        const double cb = std::cos(g.planet.bRad), cb0 = std::cos(g.earth.bRad);
        g.x = g.planet.rAU * cb * std::cos(g.planet.lRad) - g.earth.rAU * cb0 * std::cos(g.earth.lRad);
        g.y = g.planet.rAU * cb * std::sin(g.planet.lRad) - g.earth.rAU * cb0 * std::sin(g.earth.lRad);
        g.z = g.planet.rAU * std::sin(g.planet.bRad) - g.earth.rAU * std::sin(g.earth.bRad);
        g.distanceAU = std::sqrt(g.x * g.x + g.y * g.y + g.z * g.z);
    }
    return true;
}

double PoleAngleRad(double raPoleRad, double decPoleRad, double raRad, double decRad)
{
    return std::atan2(std::cos(decPoleRad) * std::sin(raPoleRad - raRad),
                      std::sin(decPoleRad) * std::cos(decRad) -
                          std::cos(decPoleRad) * std::sin(decRad) * std::cos(raPoleRad - raRad));
}

std::optional<JupiterPhysical> JupiterPhysicalMeeus(const CPlanets& planets, const CObserverDoc& observer, double jdTT)
{
    if (!std::isfinite(jdTT)) return std::nullopt;
    GeocentricGeometry g;
    if (!GeocentricGeometryOf(planets, observer, kBodyJupiter, jdTT, g)) return std::nullopt;
    // Jupiter's pole on the mean equator of date and the rotation angles of
    // Systems I and II, counted from 1950 January 0.0 (Meeus ch. 43, steps 1–2).
    const double d = jdTT - 2433282.5;
    const double T1 = d / 36525.0;
    double ra0 = (268.00 + 0.1061 * T1) * kDeg;
    double dec0 = (64.50 - 0.0164 * T1) * kDeg;
    const double W1 = (17.710 + 877.90003539 * d) * kDeg;
    const double W2 = (16.838 + 870.27003539 * d) * kDeg;
    const double eps0 = observer.MeanObliquity(jdTT);

    // Steps 9–10: the Sun seen from Jupiter.
    const double l = g.planet.lRad, b = g.planet.bRad, r = g.planet.rAU;
    const double raS = std::atan2(std::cos(eps0) * std::sin(l) - std::sin(eps0) * std::tan(b), std::cos(l));
    const double decS = std::asin(std::cos(eps0) * std::sin(b) + std::sin(eps0) * std::cos(b) * std::sin(l));
    JupiterPhysical out;
    out.sunDeclinationRad = std::asin(-std::sin(dec0) * std::sin(decS) - std::cos(dec0) * std::cos(decS) * std::cos(ra0 - raS));

    // Step 11: the geocentric place of date, mean equator.
    const double u = g.y * std::cos(eps0) - g.z * std::sin(eps0);
    const double v = g.y * std::sin(eps0) + g.z * std::cos(eps0);
    double ra = std::atan2(u, g.x);
    double dec = std::atan2(v, std::hypot(g.x, u));
    const double zeta = std::atan2(std::sin(dec0) * std::cos(dec) * std::cos(ra0 - ra) - std::sin(dec) * std::cos(dec0),
                                   std::cos(dec) * std::sin(ra0 - ra));
    out.earthDeclinationRad = std::asin(-std::sin(dec0) * std::sin(dec) - std::cos(dec0) * std::cos(dec) * std::cos(ra0 - ra));

    // Steps 13–14: the central meridians, with the light time (5.07033° and
    // 5.02626° per AU) and the phase: the illuminated disc's centre stands
    // off the geometric one by C, toward the Sun.
    const double Delta = g.distanceAU, R = g.earth.rAU;
    double w1 = W1 - zeta - 5.07033 * kDeg * Delta;
    double w2 = W2 - zeta - 5.02626 * kDeg * Delta;
    double C = (2.0 * r * Delta + R * R - r * r - Delta * Delta) / (4.0 * r * Delta);  // radians
    if (std::sin(l - g.earth.lRad) < 0.0) C = -C;
    out.centralMeridian1Rad = Wrap2Pi(w1 + C);
    out.centralMeridian2Rad = Wrap2Pi(w2 + C);

    // Steps 15–18: the pole's position angle from the apparent places of
    // the planet (aberration, nutation) and of the pole (nutation).
    double dPsi = 0.0, dEps = 0.0;
    observer.NutationTerms(jdTT, dPsi, dEps);
    const double eps = eps0 + dEps;
    const double l0 = g.earth.lRad;
    const double ab = 0.005693 * kDeg;
    const double ra1 = ra + ab * (std::cos(ra) * std::cos(l0) * std::cos(eps) + std::sin(ra) * std::sin(l0)) / std::cos(dec);
    const double dec1 = dec + ab * (std::cos(l0) * std::cos(eps) * (std::tan(eps) * std::cos(dec) - std::sin(ra) * std::sin(dec)) +
                                    std::cos(ra) * std::sin(dec) * std::sin(l0));
    ra = ra1;
    dec = dec1;
    Nutate(ra, dec, eps, dPsi, dEps);
    Nutate(ra0, dec0, eps, dPsi, dEps);
    out.poleAngleRad = Wrap2Pi(PoleAngleRad(ra0, dec0, ra, dec));
    return out;
}

std::optional<MarsPhysical> MarsPhysicalMeeus(const CPlanets& planets, const CObserverDoc& observer, double jdTT)
{
    if (!std::isfinite(jdTT)) return std::nullopt;
    GeocentricGeometry g;
    if (!GeocentricGeometryOf(planets, observer, kBodyMars, jdTT, g)) return std::nullopt;
    const double T = (jdTT - 2451545.0) / 36525.0;
    double lambda0 = (352.9065 + 1.1733 * T) * kDeg;
    const double beta0 = (63.2818 - 0.00394 * T) * kDeg;
    double lambda = std::atan2(g.y, g.x);
    double beta = std::atan2(g.z, std::hypot(g.x, g.y));
    MarsPhysical out;
    out.earthDeclinationRad = std::asin(-std::sin(beta0) * std::sin(beta) -
                                        std::cos(beta0) * std::cos(beta) * std::cos(lambda0 - lambda));
    const double l = g.planet.lRad, b = g.planet.bRad, r = g.planet.rAU;
    const double N = (49.5581 + 0.7721 * T) * kDeg;
    const double lp = l - 0.00697 * kDeg / r;
    const double bp = b - 0.000225 * kDeg * std::cos(l - N) / r;
    out.sunDeclinationRad = std::asin(-std::sin(beta0) * std::sin(bp) - std::cos(beta0) * std::cos(bp) * std::cos(lambda0 - lp));
    // The prime meridian's rotation from 1950 at the light-time instant, and
    // the angle ζ from the node of Mars's equator on the Earth's (steps 9–12).
    const double tau = g.distanceAU / kLightAUPerDay;
    const double W = (11.504 + 350.89200025 * (jdTT - tau - 2433282.5)) * kDeg;
    const double eps0 = observer.MeanObliquity(jdTT);
    double ra0, dec0;
    EclipticToEquatorial(lambda0, beta0, eps0, ra0, dec0);
    const double u = g.y * std::cos(eps0) - g.z * std::sin(eps0);
    const double v = g.y * std::sin(eps0) + g.z * std::cos(eps0);
    const double ra = std::atan2(u, g.x);
    const double dec = std::atan2(v, std::hypot(g.x, u));
    const double zeta = std::atan2(std::sin(dec0) * std::cos(dec) * std::cos(ra0 - ra) - std::sin(dec) * std::cos(dec0),
                                   std::cos(dec) * std::sin(ra0 - ra));
    out.centralMeridianRad = Wrap2Pi(W - zeta);
    // Steps 13–17: P from the apparent places.
    double dPsi = 0.0, dEps = 0.0;
    observer.NutationTerms(jdTT, dPsi, dEps);
    const double l0 = g.earth.lRad;
    const double ab = 0.005693 * kDeg;
    const double dLambda = ab * std::cos(l0 - lambda) / std::cos(beta);
    beta += ab * std::sin(l0 - lambda) * std::sin(beta);
    lambda += dLambda + dPsi;
    lambda0 += dPsi;
    const double eps = eps0 + dEps;
    double ra0a, dec0a, raa, deca;
    EclipticToEquatorial(lambda0, beta0, eps, ra0a, dec0a);
    EclipticToEquatorial(lambda, beta, eps, raa, deca);
    out.poleAngleRad = Wrap2Pi(PoleAngleRad(ra0a, dec0a, raa, deca));
    return out;
}

std::optional<SaturnRingView> SaturnRingViewMeeus(const CPlanets& planets, const CObserverDoc& observer, double jdTT)
{
    if (!std::isfinite(jdTT)) return std::nullopt;
    GeocentricGeometry g;
    if (!GeocentricGeometryOf(planets, observer, kBodySaturn, jdTT, g)) return std::nullopt;
    const double T = (jdTT - 2451545.0) / 36525.0;
    // The ring plane on the ecliptic and equinox of date (Meeus eq. 45.1).
    const double i = (28.075216 - 0.012998 * T + 0.000004 * T * T) * kDeg;
    const double node = (169.508470 + 1.394681 * T + 0.000412 * T * T) * kDeg;
    double lambda = std::atan2(g.y, g.x);
    double beta = std::atan2(g.z, std::hypot(g.x, g.y));
    // Saturn's heliocentric place corrected for the Sun's motion during the
    // light time (step 6), for B′ and ΔU.
    const double l = g.planet.lRad, b = g.planet.bRad, r = g.planet.rAU;
    const double N = (113.6655 + 0.8771 * T) * kDeg;
    const double lp = l - 0.01759 * kDeg / r;
    const double bp = b - 0.000764 * kDeg * std::cos(l - N) / r;
    const SaturnRingGeometry ring = SaturnRingsMeeus(jdTT, lambda, beta, lp, bp);

    SaturnRingView out;
    out.earthTiltRad = ring.earthTiltRad;
    out.sunTiltRad = ring.sunTiltRad;
    out.deltaURad = ring.deltaURad;
    out.majorAxisRad = 375.35 / g.distanceAU * kRadPerArcsec;
    out.minorAxisRad = out.majorAxisRad * std::sin(std::fabs(ring.earthTiltRad));

    // Steps 9–14: the pole of the ring plane and the planet as apparent
    // places of date, and the position angle between them.
    double dPsi = 0.0, dEps = 0.0;
    observer.NutationTerms(jdTT, dPsi, dEps);
    const double eps = observer.MeanObliquity(jdTT) + dEps;
    const double l0 = g.earth.lRad;
    const double ab = 0.005693 * kDeg;
    const double dLambda = ab * std::cos(l0 - lambda) / std::cos(beta);
    beta += ab * std::sin(l0 - lambda) * std::sin(beta);
    lambda += dLambda;
    const double lambda0 = node - kPi / 2.0 + dPsi;
    const double beta0 = kPi / 2.0 - i;
    lambda += dPsi;
    double ra0, dec0, ra, dec;
    EclipticToEquatorial(lambda0, beta0, eps, ra0, dec0);
    EclipticToEquatorial(lambda, beta, eps, ra, dec);
    out.poleAngleRad = PoleAngleRad(ra0, dec0, ra, dec);
    return out;
}

GreatRedSpotPlace GreatRedSpotOnDisc(const JupiterPhysical& jupiter, double grsLongitudeDeg)
{
    // System II longitudes grow westward on the planet, so a spot of larger
    // longitude than the central meridian has yet to reach it: it lies on
    // the following side, which is celestial east.
    const double dl = grsLongitudeDeg * kDeg - jupiter.centralMeridian2Rad;
    const double lat = -22.5 * kDeg;
    const double de = jupiter.earthDeclinationRad;
    GreatRedSpotPlace p;
    // Orthographic view of the spot on the sphere tilted by DE toward the
    // Earth (Jupiter's flattening, 0.065, is left to the drawing).
    p.xRadii = std::cos(lat) * std::sin(dl);
    p.yRadii = std::sin(lat) * std::cos(de) - std::cos(lat) * std::cos(dl) * std::sin(de);
    const double towardEarth = std::cos(lat) * std::cos(dl) * std::cos(de) + std::sin(lat) * std::sin(de);
    p.visible = towardEarth > 0.0;
    return p;
}

std::optional<double> NextGreatRedSpotTransitJdTT(const CPlanets& planets, const CObserverDoc& observer, double jdTT,
                                                  double grsLongitudeDeg)
{
    if (!std::isfinite(grsLongitudeDeg)) return std::nullopt;
    // The central meridian's System II longitude grows 870.27° a day less
    // the slow change of the geometry; Newton steps on that rate converge
    // in two or three passes.
    constexpr double kRateRadPerDay = 870.270 * kDeg;
    double t = jdTT;
    for (int pass = 0; pass < 5; ++pass) {
        const std::optional<JupiterPhysical> j = JupiterPhysicalMeeus(planets, observer, t);
        if (!j) return std::nullopt;
        double dl = grsLongitudeDeg * kDeg - j->centralMeridian2Rad;
        if (pass == 0) {
            dl = Wrap2Pi(dl);
        } else {
            dl = std::remainder(dl, 2.0 * kPi);
        }
        const double step = dl / kRateRadPerDay;
        t += step;
        if (std::fabs(step) < 1e-4) break;  // 8.6 s
    }
    return t;
}

}  // namespace orv
