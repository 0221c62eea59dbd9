#include "solarsystem/planetmoons.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "observer/observer.h"
#include "solarsystem/physephem.h"
#include "solarsystem/planets.h"
#include "util/angles.h"
#include "util/text.h"

namespace orv {

namespace {

constexpr double kDeg = kRadPerDeg;

double S(double x) { return std::sin(x); }
double C(double x) { return std::cos(x); }

// Rotations of Meeus's step sequence (ch. 44 p. 312, ch. 46 p. 326): from
// the satellite's own frame to one whose third axis points at the Earth.
struct Abc {
    double a, b, c;
};

// Turns a planet-frame (A, B, C) set so that the planet's north pole is up:
// D is the angle of the pole's projection, found from a fictitious
// satellite on the pole (Meeus: X₅ = Y₅ = 0, Z₅ = 1). Then the
// differential light time and the perspective (Meeus ch. 44 p. 313).
SatelliteXYZ FinishSatellite(const Abc& sat, const Abc& pole, double radius, double lightK, double distanceAU,
                             double auInRadii)
{
    const double D = std::atan2(pole.a, pole.c);
    double x = sat.a * C(D) - sat.c * S(D);
    const double y = sat.a * S(D) + sat.c * C(D);
    const double z = sat.b;
    // The satellite is seen where it was a light time (|z| radii) ago:
    // along its orbit that is |z|/K radii.
    const double q = x / radius;
    x += std::fabs(z) / lightK * std::sqrt(std::max(0.0, 1.0 - q * q));
    const double w = distanceAU / (distanceAU + z / auInRadii);
    return {x * w, y * w, z};
}

}  // namespace

std::optional<std::array<SatelliteXYZ, 4>> GalileanSatellitesE5(const CPlanets& planets, const CObserverDoc& observer,
                                                                double jdTT)
{
    if (!std::isfinite(jdTT)) return std::nullopt;
    GeocentricGeometry g;
    if (!GeocentricGeometryOf(planets, observer, kBodyJupiter, jdTT, g)) return std::nullopt;
    const double lambda0 = std::atan2(g.y, g.x);
    const double beta0 = std::atan2(g.z, std::hypot(g.x, g.y));
    const double tau = g.distanceAU / kLightAUPerDay;
    const double t = jdTT - 2443000.5 - tau;

    // Mean longitudes, perijoves and nodes of the four satellites, the
    // longitude of the proper node of Jupiter's equator, the Sun's and
    // Saturn's mean anomalies (degrees; Meeus ch. 44, after E5).
    const double l1 = (106.07719 + 203.488955790 * t) * kDeg;
    const double l2 = (175.73161 + 101.374724735 * t) * kDeg;
    const double l3 = (120.55883 + 50.317609207 * t) * kDeg;
    const double l4 = (84.44459 + 21.571071177 * t) * kDeg;
    const double p1 = (97.0881 + 0.16138586 * t) * kDeg;
    const double p2 = (154.8663 + 0.04726307 * t) * kDeg;
    const double p3 = (188.1840 + 0.00712734 * t) * kDeg;
    const double p4 = (335.2868 + 0.00184000 * t) * kDeg;
    const double w1 = (312.3346 - 0.13279386 * t) * kDeg;
    const double w2 = (100.4411 - 0.03263064 * t) * kDeg;
    const double w3 = (119.1942 - 0.00717703 * t) * kDeg;
    const double w4 = (322.6186 - 0.00175934 * t) * kDeg;
    const double Gamma = (0.33033 * S((163.679 + 0.0010512 * t) * kDeg) + 0.03439 * S((34.486 - 0.0161731 * t) * kDeg)) * kDeg;
    const double phi = (199.6766 + 0.17379190 * t) * kDeg;  // libration
    double psi = (316.5182 - 0.00000208 * t) * kDeg;
    const double G = (30.23756 + 0.0830925701 * t) * kDeg + Gamma;
    const double Gp = (31.97853 + 0.0334597339 * t) * kDeg;
    const double Pi = 13.469942 * kDeg;  // longitude of Jupiter's perihelion

    // Periodic terms in longitude (degrees).
    const double sum1 =
        0.47259 * S(2 * (l1 - l2)) - 0.03478 * S(p3 - p4) + 0.01081 * S(l2 - 2 * l3 + p3) + 0.00738 * S(phi) +
        0.00713 * S(l2 - 2 * l3 + p2) - 0.00674 * S(p1 + p3 - 2 * Pi - 2 * G) + 0.00666 * S(l2 - 2 * l3 + p4) +
        0.00445 * S(l1 - p3) - 0.00354 * S(l1 - l2) - 0.00317 * S(2 * psi - 2 * Pi) + 0.00265 * S(l1 - p4) -
        0.00186 * S(G) + 0.00162 * S(p2 - p3) + 0.00158 * S(4 * (l1 - l2)) - 0.00155 * S(l1 - l3) -
        0.00138 * S(psi + w3 - 2 * Pi - 2 * G) - 0.00115 * S(2 * (l1 - 2 * l2 + w2)) + 0.00089 * S(p2 - p4) +
        0.00085 * S(l1 + p3 - 2 * Pi - 2 * G) + 0.00083 * S(w2 - w3) + 0.00053 * S(psi - w2);
    const double sum2 =
        1.06476 * S(2 * (l2 - l3)) + 0.04256 * S(l1 - 2 * l2 + p3) + 0.03581 * S(l2 - p3) +
        0.02395 * S(l1 - 2 * l2 + p4) + 0.01984 * S(l2 - p4) - 0.01778 * S(phi) + 0.01654 * S(l2 - p2) +
        0.01334 * S(l2 - 2 * l3 + p2) + 0.01294 * S(p3 - p4) - 0.01142 * S(l2 - l3) - 0.01057 * S(G) -
        0.00775 * S(2 * (psi - Pi)) + 0.00524 * S(2 * (l1 - l2)) - 0.00460 * S(l1 - l3) +
        0.00316 * S(psi - 2 * G + w3 - 2 * Pi) - 0.00203 * S(p1 + p3 - 2 * Pi - 2 * G) + 0.00146 * S(psi - w3) -
        0.00145 * S(2 * G) + 0.00125 * S(psi - w4) - 0.00115 * S(l1 - 2 * l3 + p3) - 0.00094 * S(2 * (l2 - w2)) +
        0.00086 * S(2 * (l1 - 2 * l2 + w2)) - 0.00086 * S(5 * Gp - 2 * G + 52.225 * kDeg) - 0.00078 * S(l2 - l4) -
        0.00064 * S(3 * l3 - 7 * l4 + 4 * p4) + 0.00064 * S(p1 - p4) - 0.00063 * S(l1 - 2 * l3 + p4) +
        0.00058 * S(w3 - w4) + 0.00056 * S(2 * (psi - Pi - G)) + 0.00056 * S(2 * (l2 - l4)) +
        0.00055 * S(2 * (l1 - l3)) + 0.00052 * S(3 * l3 - 7 * l4 + p3 + 3 * p4) - 0.00043 * S(l1 - p3) +
        0.00041 * S(5 * (l2 - l3)) + 0.00041 * S(p4 - Pi) + 0.00032 * S(w2 - w3) + 0.00032 * S(2 * (l3 - G - Pi));
    const double sum3 =
        0.16490 * S(l3 - p3) + 0.09081 * S(l3 - p4) - 0.06907 * S(l2 - l3) + 0.03784 * S(p3 - p4) +
        0.01846 * S(2 * (l3 - l4)) - 0.01340 * S(G) - 0.01014 * S(2 * (psi - Pi)) + 0.00704 * S(l2 - 2 * l3 + p3) -
        0.00620 * S(l2 - 2 * l3 + p2) - 0.00541 * S(l3 - l4) + 0.00381 * S(l2 - 2 * l3 + p4) +
        0.00235 * S(psi - w3) + 0.00198 * S(psi - w4) + 0.00176 * S(phi) + 0.00130 * S(3 * (l3 - l4)) +
        0.00125 * S(l1 - l3) - 0.00119 * S(5 * Gp - 2 * G + 52.225 * kDeg) + 0.00109 * S(l1 - l2) -
        0.00100 * S(3 * l3 - 7 * l4 + 4 * p4) + 0.00091 * S(w3 - w4) + 0.00080 * S(3 * l3 - 7 * l4 + p3 + 3 * p4) -
        0.00075 * S(2 * l2 - 3 * l3 + p3) + 0.00072 * S(p1 + p3 - 2 * Pi - 2 * G) + 0.00069 * S(p4 - Pi) -
        0.00058 * S(2 * l3 - 3 * l4 + p4) - 0.00057 * S(l3 - 2 * l4 + p4) + 0.00056 * S(l3 + p3 - 2 * Pi - 2 * G) -
        0.00052 * S(l2 - 2 * l3 + p1) - 0.00050 * S(p2 - p3) + 0.00048 * S(l3 - 2 * l4 + p3) -
        0.00045 * S(2 * l2 - 3 * l3 + p4) - 0.00041 * S(p2 - p4) - 0.00038 * S(2 * G) -
        0.00037 * S(p3 - p4 + w3 - w4) - 0.00032 * S(3 * l3 - 7 * l4 + 2 * p3 + 2 * p4) +
        0.00030 * S(4 * (l3 - l4)) + 0.00029 * S(l3 + p4 - 2 * Pi - 2 * G) - 0.00028 * S(w3 + psi - 2 * Pi - 2 * G) +
        0.00026 * S(l3 - Pi - G) + 0.00024 * S(l2 - 3 * l3 + 2 * l4) + 0.00021 * S(2 * (l3 - Pi - G)) -
        0.00021 * S(l3 - p2) + 0.00017 * S(2 * (l3 - p3));
    const double sum4 =
        0.84287 * S(l4 - p4) + 0.03431 * S(p4 - p3) - 0.03305 * S(2 * (psi - Pi)) - 0.03211 * S(G) -
        0.01862 * S(l4 - p3) + 0.01186 * S(psi - w4) + 0.00623 * S(l4 + p4 - 2 * G - 2 * Pi) +
        0.00387 * S(2 * (l4 - p4)) - 0.00284 * S(5 * Gp - 2 * G + 52.225 * kDeg) - 0.00234 * S(2 * (psi - p4)) -
        0.00223 * S(l3 - l4) - 0.00208 * S(l4 - Pi) + 0.00178 * S(psi + w4 - 2 * p4) + 0.00134 * S(p4 - Pi) +
        0.00125 * S(2 * (l4 - G - Pi)) - 0.00117 * S(2 * G) - 0.00112 * S(2 * (l3 - l4)) +
        0.00107 * S(3 * l3 - 7 * l4 + 4 * p4) + 0.00102 * S(l4 - G - Pi) + 0.00096 * S(2 * l4 - psi - w4) +
        0.00087 * S(2 * (psi - w4)) - 0.00085 * S(3 * l3 - 7 * l4 + p3 + 3 * p4) + 0.00085 * S(l3 - 2 * l4 + p4) -
        0.00081 * S(2 * (l4 - psi)) + 0.00071 * S(l4 + p4 - 2 * Pi - 3 * G) + 0.00061 * S(l1 - l4) -
        0.00056 * S(psi - w3) - 0.00054 * S(l3 - 2 * l4 + p3) + 0.00051 * S(l2 - l4) +
        0.00042 * S(2 * (psi - G - Pi)) + 0.00039 * S(2 * (p4 - w4)) + 0.00036 * S(psi + Pi - p4 - w4) +
        0.00035 * S(2 * Gp - G + 188.37 * kDeg) - 0.00035 * S(l4 - p4 + 2 * Pi - 2 * psi) -
        0.00032 * S(l4 + p4 - 2 * Pi - G) + 0.00030 * S(2 * Gp - 2 * G + 149.15 * kDeg) +
        0.00029 * S(3 * l3 - 7 * l4 + 2 * p3 + 2 * p4) + 0.00028 * S(l4 - p4 + 2 * psi - 2 * Pi) -
        0.00028 * S(2 * (l4 - w4)) - 0.00027 * S(p3 - p4 + w3 - w4) - 0.00026 * S(5 * Gp - 3 * G + 188.37 * kDeg) +
        0.00025 * S(w4 - w3) - 0.00025 * S(l2 - 3 * l3 + 2 * l4) - 0.00023 * S(3 * (l3 - l4)) +
        0.00021 * S(2 * l4 - 2 * Pi - 3 * G) - 0.00021 * S(2 * l3 - 3 * l4 + p4) + 0.00019 * S(l4 - p4 - G) -
        0.00019 * S(2 * l4 - p3 - p4) - 0.00018 * S(l4 - p4 + G) - 0.00016 * S(l4 + p3 - 2 * Pi - 2 * G);
    const double sig1 = sum1 * kDeg, sig2 = sum2 * kDeg, sig3 = sum3 * kDeg, sig4 = sum4 * kDeg;
    double L[4] = {l1 + sig1, l2 + sig2, l3 + sig3, l4 + sig4};

    // Latitudes on Jupiter's equatorial plane (tangents).
    const double B[4] = {
        std::atan(0.0006393 * S(L[0] - w1) + 0.0001825 * S(L[0] - w2) + 0.0000329 * S(L[0] - w3) -
                  0.0000311 * S(L[0] - psi) + 0.0000093 * S(L[0] - w4) +
                  0.0000075 * S(3 * L[0] - 4 * l2 - 1.9927 * sig1 + w2) + 0.0000046 * S(L[0] + psi - 2 * Pi - 2 * G)),
        std::atan(0.0081004 * S(L[1] - w2) + 0.0004512 * S(L[1] - w3) - 0.0003284 * S(L[1] - psi) +
                  0.0001160 * S(L[1] - w4) + 0.0000272 * S(l1 - 2 * l3 + 1.0146 * sig2 + w2) -
                  0.0000144 * S(L[1] - w1) + 0.0000143 * S(L[1] + psi - 2 * Pi - 2 * G) +
                  0.0000035 * S(L[1] - psi + G) - 0.0000028 * S(l1 - 2 * l3 + 1.0146 * sig2 + w3)),
        std::atan(0.0032402 * S(L[2] - w3) - 0.0016911 * S(L[2] - psi) + 0.0006847 * S(L[2] - w4) -
                  0.0002797 * S(L[2] - w2) + 0.0000321 * S(L[2] + psi - 2 * Pi - 2 * G) +
                  0.0000051 * S(L[2] - psi + G) - 0.0000045 * S(L[2] - psi - G) - 0.0000045 * S(L[2] + psi - 2 * Pi) +
                  0.0000037 * S(L[2] + psi - 2 * Pi - 3 * G) + 0.0000030 * S(2 * l2 - 3 * L[2] + 4.03 * sig3 + w2) -
                  0.0000021 * S(2 * l2 - 3 * L[2] + 4.03 * sig3 + w3)),
        std::atan(-0.0076579 * S(L[3] - psi) + 0.0044134 * S(L[3] - w4) - 0.0005112 * S(L[3] - w3) +
                  0.0000773 * S(L[3] + psi - 2 * Pi - 2 * G) + 0.0000104 * S(L[3] - psi + G) -
                  0.0000102 * S(L[3] - psi - G) + 0.0000088 * S(L[3] + psi - 2 * Pi - 3 * G) -
                  0.0000038 * S(L[3] + psi - 2 * Pi - G)),
    };
    // Radius vectors, Jupiter radii.
    const double R[4] = {
        5.90569 * (1 - 0.0041339 * C(2 * (l1 - l2)) - 0.0000387 * C(l1 - p3) - 0.0000214 * C(l1 - p4) +
                   0.0000170 * C(l1 - l2) - 0.0000131 * C(4 * (l1 - l2)) + 0.0000106 * C(l1 - l3) -
                   0.0000066 * C(l1 + p3 - 2 * Pi - 2 * G)),
        9.39657 * (1 + 0.0093848 * C(l1 - l2) - 0.0003116 * C(l2 - p3) - 0.0001744 * C(l2 - p4) -
                   0.0001442 * C(l2 - p2) + 0.0000553 * C(l2 - l3) + 0.0000523 * C(l1 - l3) -
                   0.0000290 * C(2 * (l1 - l2)) + 0.0000164 * C(2 * (l2 - w2)) + 0.0000107 * C(l1 - 2 * l3 + p3) -
                   0.0000102 * C(l2 - p1) - 0.0000091 * C(2 * (l1 - l3))),
        14.98832 * (1 - 0.0014388 * C(l3 - p3) - 0.0007917 * C(l3 - p4) + 0.0006342 * C(l2 - l3) -
                    0.0001761 * C(2 * (l3 - l4)) + 0.0000294 * C(l3 - l4) - 0.0000156 * C(3 * (l3 - l4)) +
                    0.0000156 * C(l1 - l3) - 0.0000153 * C(l1 - l2) + 0.0000070 * C(2 * l2 - 3 * l3 + p3) -
                    0.0000051 * C(l3 + p3 - 2 * Pi - 2 * G)),
        26.36273 * (1 - 0.0073546 * C(l4 - p4) + 0.0001621 * C(l4 - p3) + 0.0000974 * C(l3 - l4) -
                    0.0000543 * C(l4 + p4 - 2 * Pi - 2 * G) - 0.0000271 * C(2 * (l4 - p4)) + 0.0000182 * C(l4 - Pi) +
                    0.0000177 * C(2 * (l3 - l4)) - 0.0000167 * C(2 * l4 - psi - w4) + 0.0000167 * C(psi - w4) -
                    0.0000155 * C(2 * (l4 - Pi - G)) + 0.0000142 * C(2 * (l4 - psi)) + 0.0000105 * C(l1 - l4) +
                    0.0000092 * C(l2 - l4) - 0.0000089 * C(l4 - Pi - G) - 0.0000062 * C(l4 + p4 - 2 * Pi - 3 * G) +
                    0.0000048 * C(2 * (l4 - w4))),
    };
    // Precession from the fixed B1950-based frame of E5 to the equinox of
    // date, and the inclination of Jupiter's equator to its orbit.
    const double T0 = (jdTT - 2433282.423) / 36525.0;
    const double precession = (1.3966626 * T0 + 0.0003088 * T0 * T0) * kDeg;
    for (double& l : L) l += precession;
    psi += precession;
    const double T = (jdTT - 2415020.5) / 36525.0;
    const double I = (3.120262 + 0.0006 * T) * kDeg;

    // Jupiter's orbit on the ecliptic of date (Meeus table 31.A).
    const double Tj = (jdTT - 2451545.0) / 36525.0;
    const double node = (100.464441 + Tj * (1.0209550 + Tj * (0.00040117 + Tj * 0.000000569))) * kDeg;
    const double incl = (1.303270 + Tj * (-0.0054966 + Tj * (0.00000465 - Tj * 0.000000004))) * kDeg;

    auto toEarthFrame = [&](double X, double Y, double Z) {
        // Meeus p. 312, the five rotations.
        double a = X;
        double b = Y * C(I) - Z * S(I);
        double c = Y * S(I) + Z * C(I);
        const double phiN = psi - node;
        double a1 = a * C(phiN) - b * S(phiN);
        double b1 = a * S(phiN) + b * C(phiN);
        a = a1;
        b = b1 * C(incl) - c * S(incl);
        c = b1 * S(incl) + c * C(incl);
        a1 = a * C(node) - b * S(node);
        b1 = a * S(node) + b * C(node);
        a = a1 * S(lambda0) - b1 * C(lambda0);
        b = a1 * C(lambda0) + b1 * S(lambda0);
        return Abc{a, c * S(beta0) + b * C(beta0), c * C(beta0) - b * S(beta0)};
    };
    const Abc pole = toEarthFrame(0.0, 0.0, 1.0);
    // K of the differential light time (Meeus p. 313) and the astronomical
    // unit in Jupiter radii (2095).
    static constexpr double kLightK[4] = {17295, 21819, 27558, 36548};
    std::array<SatelliteXYZ, 4> out{};
    for (int k = 0; k < 4; ++k) {
        const double X = R[k] * C(L[k] - psi) * C(B[k]);
        const double Y = R[k] * S(L[k] - psi) * C(B[k]);
        const double Z = R[k] * S(B[k]);
        out[static_cast<std::size_t>(k)] = FinishSatellite(toEarthFrame(X, Y, Z), pole, R[k], kLightK[k], g.distanceAU, 2095.0);
    }
    return out;
}

namespace {

// An orbit in Saturn's equatorial frame as Meeus's ch. 46 gives it: true
// longitude λ, radius r (Saturn radii), inclination γ and node Ω′ on the
// B1950 ecliptic.
struct SaturnOrbit {
    double lambda = 0.0, r = 0.0, gamma = 0.0, node = 0.0;
};

// Meeus's subroutine for Rhea, Titan, Hyperion and Iapetus: from mean
// longitude λ′, perisaturnium p, eccentricity e, semi-major axis a, node Ω
// and inclination i on the ecliptic to the orbit on Saturn's equator (the
// equation of the centre to e⁵).
SaturnOrbit EllipticSaturnOrbit(double lambdaP, double p, double e, double a, double node, double incl, double s1,
                                double c1)
{
    const double M = lambdaP - p;
    const double e2 = e * e, e3 = e2 * e, e4 = e2 * e2, e5 = e4 * e;
    const double centre = (2 * e - 0.25 * e3 + 0.0520833333 * e5) * S(M) + (1.25 * e2 - 0.458333333 * e4) * S(2 * M) +
                          (1.083333333 * e3 - 0.671875 * e5) * S(3 * M) + 1.072917 * e4 * S(4 * M) +
                          1.142708 * e5 * S(5 * M);
    SaturnOrbit o;
    o.r = a * (1 - e2) / (1 + e * C(M + centre));
    const double gNode = node - 168.8112 * kDeg;
    const double a1 = S(incl) * S(gNode);
    const double a2 = c1 * S(incl) * C(gNode) - s1 * C(incl);
    o.gamma = std::asin(std::hypot(a1, a2));
    const double u = std::atan2(a1, a2);
    o.node = 168.8112 * kDeg + u;
    const double h = c1 * S(incl) - s1 * C(incl) * C(gNode);
    const double psi = std::atan2(s1 * S(gNode), h);
    o.lambda = lambdaP + centre + u - gNode - psi;
    return o;
}

}  // namespace

std::optional<std::array<SatelliteXYZ, 8>> SaturnSatellitesMeeus(const CPlanets& planets, const CObserverDoc& observer,
                                                                 double jdTT)
{
    if (!std::isfinite(jdTT)) return std::nullopt;
    GeocentricGeometry g;
    if (!GeocentricGeometryOf(planets, observer, kBodySaturn, jdTT, g)) return std::nullopt;
    // Saturn's geocentric place, referred to the ecliptic and equinox of
    // B1950.0 (the frame of the theory), through the equator: ecliptic of
    // date → mean equator of date → J2000 → mean equator of B1950 → ecliptic.
    constexpr double kJdB1950 = 2433282.4235;
    double v[3];
    {
        const double eps = observer.MeanObliquity(jdTT);
        v[0] = g.x;
        v[1] = g.y * C(eps) - g.z * S(eps);
        v[2] = g.y * S(eps) + g.z * C(eps);
        observer.PrecessXYZ(v, jdTT, +1);
        observer.PrecessXYZ(v, kJdB1950, -1);
        const double eps50 = observer.MeanObliquity(kJdB1950);
        const double y = v[1] * C(eps50) + v[2] * S(eps50);
        const double z = -v[1] * S(eps50) + v[2] * C(eps50);
        v[1] = y;
        v[2] = z;
    }
    const double lambda0 = std::atan2(v[1], v[0]);
    const double beta0 = std::atan2(v[2], std::hypot(v[0], v[1]));
    const double jd = jdTT - g.distanceAU / kLightAUPerDay;

    const double t1 = jd - 2411093.0;
    const double t2 = t1 / 365.25;
    const double t3 = (jd - 2433282.423) / 365.25 + 1950.0;
    const double t4 = jd - 2411368.0;
    const double t5 = t4 / 365.25;
    const double t6 = jd - 2415020.0;
    const double t7 = t6 / 36525.0;
    const double t8 = t6 / 365.25;
    const double t9 = (jd - 2442000.5) / 365.25;
    const double t10 = jd - 2409786.0;
    const double t11 = t10 / 36525.0;
    const double W0 = 5.095 * (t3 - 1866.39) * kDeg;
    const double W1 = (74.4 + 32.39 * t2) * kDeg;
    const double W2 = (134.3 + 92.62 * t2) * kDeg;
    const double W3 = (42.0 - 0.5118 * t5) * kDeg;
    const double W4 = (276.59 + 0.5118 * t5) * kDeg;
    const double W5 = (267.2635 + 1222.1136 * t7) * kDeg;
    const double W6 = (175.4762 + 1221.5515 * t7) * kDeg;
    const double W7 = (2.4891 + 0.002435 * t7) * kDeg;
    const double W8 = (113.35 - 0.2597 * t7) * kDeg;
    const double s1 = S(28.0817 * kDeg), c1 = C(28.0817 * kDeg);
    const double s2 = S(168.8112 * kDeg), c2 = C(168.8112 * kDeg);
    const double e1 = 0.05589 - 0.000346 * t7;

    SaturnOrbit orbit[8];
    {  // Mimas
        const double L = (127.64 + 381.994497 * t1 - 43.57 * S(W0) - 0.720 * S(3 * W0) - 0.02144 * S(5 * W0)) * kDeg;
        const double p = (106.1 + 365.549 * t2) * kDeg;
        const double M = L - p;
        const double Cc = (2.18287 * S(M) + 0.025988 * S(2 * M) + 0.00043 * S(3 * M)) * kDeg;
        orbit[0] = {L + Cc, 3.06879 / (1 + 0.01905 * C(M + Cc)), 1.563 * kDeg, (54.5 - 365.072 * t2) * kDeg};
    }
    {  // Enceladus
        const double L = (200.317 + 262.7319002 * t1 + 0.25667 * S(W1) + 0.20883 * S(W2)) * kDeg;
        const double p = (309.107 + 123.44121 * t2) * kDeg;
        const double M = L - p;
        const double Cc = (0.55577 * S(M) + 0.00168 * S(2 * M)) * kDeg;
        orbit[1] = {L + Cc, 3.94118 / (1 + 0.00485 * C(M + Cc)), 0.0262 * kDeg, (348.0 - 151.95 * t2) * kDeg};
    }
    {  // Tethys
        const double lambda = (285.306 + 190.69791226 * t1 + 2.063 * S(W0) + 0.03409 * S(3 * W0) + 0.001015 * S(5 * W0)) * kDeg;
        orbit[2] = {lambda, 4.880998, 1.0976 * kDeg, (111.33 - 72.2441 * t2) * kDeg};
    }
    {  // Dione
        const double L = (254.712 + 131.53493193 * t1 - 0.0215 * S(W1) - 0.01733 * S(W2)) * kDeg;
        const double p = (174.8 + 30.820 * t2) * kDeg;
        const double M = L - p;
        const double Cc = (0.24717 * S(M) + 0.00033 * S(2 * M)) * kDeg;
        orbit[3] = {L + Cc, 6.24871 / (1 + 0.002157 * C(M + Cc)), 0.0139 * kDeg, (232.0 - 30.27 * t2) * kDeg};
    }
    {  // Rhea
        const double pp = (342.7 + 10.057 * t2) * kDeg;
        const double a1 = 0.000265 * S(pp) + 0.001 * S(W4);
        const double a2 = 0.000265 * C(pp) + 0.001 * C(W4);
        const double e = std::hypot(a1, a2);
        const double p = std::atan2(a1, a2);
        const double N = (345.0 - 10.057 * t2) * kDeg;
        const double lambdaP = (359.244 + 79.69004720 * t1 + 0.086754 * S(N)) * kDeg;
        const double i = (28.0362 + 0.346898 * C(N) + 0.01930 * C(W3)) * kDeg;
        const double node = (168.8034 + 0.736936 * S(N) + 0.041 * S(W3)) * kDeg;
        orbit[4] = EllipticSaturnOrbit(lambdaP, p, e, 8.725924, node, i, s1, c1);
    }
    {  // Titan
        const double L = (261.1582 + 22.57697855 * t4 + 0.074025 * S(W3)) * kDeg;
        const double ip = (27.45141 + 0.295999 * C(W3)) * kDeg;
        const double nodeP = (168.66925 + 0.628808 * S(W3)) * kDeg;
        const double a1 = S(W7) * S(nodeP - W8);
        const double a2 = C(W7) * S(ip) - S(W7) * C(ip) * C(nodeP - W8);
        const double g0 = 102.8623 * kDeg;
        const double psi = std::atan2(a1, a2);
        const double s = std::hypot(a1, a2);
        double gg = W4 - nodeP - psi;
        double varpi = 0.0;
        for (int pass = 0; pass < 3; ++pass) {
            varpi = W4 + 0.37515 * kDeg * (S(2 * gg) - S(2 * g0));
            gg = varpi - nodeP - psi;
        }
        const double ep = 0.029092 + 0.00019048 * (C(2 * gg) - C(2 * g0));
        const double q = 2 * (W5 - varpi);
        const double b1 = S(ip) * S(nodeP - W8);
        const double b2 = C(W7) * S(ip) * C(nodeP - W8) - S(W7) * C(ip);
        const double theta = std::atan2(b1, b2) + W8;
        const double e = ep + 0.002778797 * ep * C(q);
        const double p = varpi + 0.159215 * kDeg * S(q);
        const double u = 2 * W5 - 2 * theta + psi;
        const double h = 0.9375 * ep * ep * S(q) + 0.1875 * s * s * S(2 * (W5 - theta));
        const double lambdaP = L - 0.254744 * kDeg * (e1 * S(W6) + 0.75 * e1 * e1 * S(2 * W6) + h);
        const double i = ip + 0.031843 * kDeg * s * C(u);
        const double node = nodeP + 0.031843 * kDeg * s * S(u) / S(ip);
        orbit[5] = EllipticSaturnOrbit(lambdaP, p, e, 20.216193, node, i, s1, c1);
    }
    {  // Hyperion
        const double eta = (92.39 + 0.5621071 * t6) * kDeg;
        const double zeta = (148.19 - 19.18 * t8) * kDeg;
        const double theta = (184.8 - 35.41 * t9) * kDeg;
        const double thetaP = theta - 7.5 * kDeg;
        const double as = (176.0 + 12.22 * t8) * kDeg;
        const double bs = (8.0 + 24.44 * t8) * kDeg;
        const double cs = bs + 5.0 * kDeg;
        const double varpi = (69.898 - 18.67088 * t8) * kDeg;
        const double phi = 2 * (varpi - W5);
        const double chi = (94.9 - 2.292 * t8) * kDeg;
        const double a = 24.50601 - 0.08686 * C(eta) - 0.00166 * C(zeta + eta) + 0.00175 * C(zeta - eta);
        const double e = 0.103458 - 0.004099 * C(eta) - 0.000167 * C(zeta + eta) + 0.000235 * C(zeta - eta) +
                         0.02303 * C(zeta) - 0.00212 * C(2 * zeta) + 0.000151 * C(3 * zeta) + 0.00013 * C(phi);
        const double p = varpi + (0.15648 * S(chi) - 0.4457 * S(eta) - 0.2657 * S(zeta + eta) - 0.3573 * S(zeta - eta) -
                                  12.872 * S(zeta) + 1.668 * S(2 * zeta) - 0.2419 * S(3 * zeta) - 0.07 * S(phi)) * kDeg;
        const double lambdaP = (177.047 + 16.91993829 * t6) * kDeg +
                               (0.15648 * S(chi) + 9.142 * S(eta) + 0.007 * S(2 * eta) - 0.014 * S(3 * eta) +
                                0.2275 * S(zeta + eta) + 0.2112 * S(zeta - eta) - 0.26 * S(zeta) - 0.0098 * S(2 * zeta) -
                                0.013 * S(as) + 0.017 * S(bs) - 0.0303 * S(phi)) * kDeg;
        const double i = (27.3347 + 0.6434886 * C(chi) + 0.315 * C(W3) + 0.018 * C(theta) - 0.018 * C(cs)) * kDeg;
        const double node = (168.6812 + 1.40136 * C(chi) + 0.68599 * S(W3) - 0.0392 * S(cs) + 0.0366 * S(thetaP)) * kDeg;
        orbit[6] = EllipticSaturnOrbit(lambdaP, p, e, a, node, i, s1, c1);
    }
    {  // Iapetus
        const double L = (261.1582 + 22.57697855 * t4) * kDeg;
        const double varpiP = (91.796 + 0.562 * t7) * kDeg;
        const double psi = (4.367 - 0.195 * t7) * kDeg;
        const double theta = (146.819 - 3.198 * t7) * kDeg;
        const double phi = (60.470 + 1.521 * t7) * kDeg;
        const double Phi = (205.055 - 2.091 * t7) * kDeg;
        const double ep = 0.028298 + 0.001156 * t11;
        const double varpi0 = (352.91 + 11.71 * t11) * kDeg;
        const double mu = (76.3852 + 4.53795125 * t10) * kDeg;
        const double ip = (18.4602 + t11 * (-0.9518 + t11 * (-0.072 + t11 * 0.0054))) * kDeg;
        const double nodeP = (143.198 + t11 * (-3.919 + t11 * (0.116 + t11 * 0.008))) * kDeg;
        const double l = mu - varpi0;
        const double gg = varpi0 - nodeP - psi;
        const double g1 = varpi0 - nodeP - phi;
        const double ls = W5 - varpiP;
        const double gs = varpiP - theta;
        const double lT = L - W4;
        const double gT = W4 - Phi;
        const double u1 = 2 * (l + gg - ls - gs);
        const double u2 = l + g1 - lT - gT;
        const double u3 = l + 2 * (gg - ls - gs);
        const double u4 = lT + gT - g1;
        const double u5 = 2 * (ls + gs);
        const double a = 58.935028 + 0.004638 * C(u1) + 0.058222 * C(u2);
        const double e = ep - 0.0014097 * C(g1 - gT) + 0.0003733 * C(u5 - 2 * gg) + 0.0001180 * C(u3) +
                         0.0002408 * C(l) + 0.0002849 * C(l + u2) + 0.0006190 * C(u4);
        const double w = (0.08077 * S(g1 - gT) + 0.02139 * S(u5 - 2 * gg) - 0.00676 * S(u3) + 0.01380 * S(l) +
                          0.01632 * S(l + u2) + 0.03547 * S(u4)) * kDeg;
        const double p = varpi0 + w / ep;
        const double lambdaP = mu + (-0.04299 * S(u2) - 0.00789 * S(u1) - 0.06312 * S(ls) - 0.00295 * S(2 * ls) -
                                     0.02231 * S(u5) + 0.00650 * S(u5 + psi)) * kDeg;
        const double i = ip + (0.04204 * C(u5 + psi) + 0.00235 * C(l + g1 + lT + gT + phi) + 0.00360 * C(u2 + phi)) * kDeg;
        const double wp = (0.04204 * S(u5 + psi) + 0.00235 * S(l + g1 + lT + gT + phi) + 0.00358 * S(u2 + phi)) * kDeg;
        const double node = nodeP + wp / S(ip);
        orbit[7] = EllipticSaturnOrbit(lambdaP, p, e, a, node, i, s1, c1);
    }

    auto toEarthFrame = [&](double X, double Y, double Z) {
        // Meeus p. 326: to the B1950 ecliptic through Saturn's equator
        // (inclination 28.0817°, node 168.8112°), then toward the Earth.
        const double a = X;
        const double b = c1 * Y - s1 * Z;
        const double c = s1 * Y + c1 * Z;
        const double a1 = c2 * a - s2 * b;
        const double b1 = s2 * a + c2 * b;
        const double A = a1 * S(lambda0) - b1 * C(lambda0);
        const double b2 = a1 * C(lambda0) + b1 * S(lambda0);
        return Abc{A, b2 * C(beta0) + c * S(beta0), c * C(beta0) - b2 * S(beta0)};
    };
    const Abc pole = toEarthFrame(0.0, 0.0, 1.0);
    static constexpr double kLightK[8] = {20947, 23715, 26382, 29876, 35313, 53800, 59222, 91820};
    std::array<SatelliteXYZ, 8> out{};
    for (int k = 0; k < 8; ++k) {
        const SaturnOrbit& o = orbit[k];
        const double u = o.lambda - o.node;
        const double w = o.node - 168.8112 * kDeg;
        const double X = o.r * (C(u) * C(w) - S(u) * C(o.gamma) * S(w));
        const double Y = o.r * (S(u) * C(w) * C(o.gamma) + C(u) * S(w));
        const double Z = o.r * S(u) * S(o.gamma);
        out[static_cast<std::size_t>(k)] = FinishSatellite(toEarthFrame(X, Y, Z), pole, o.r, kLightK[k], g.distanceAU, 2475.0);
    }
    return out;
}

namespace {

// V(1,0), the visual magnitude at 1 AU from the Sun and the Earth at zero
// phase (JPL Solar System Dynamics, "Planetary satellite physical
// parameters"); Iapetus's is the mean of its bright and dark faces.
constexpr ChartSatelliteInfo kSatellites[kChartSatelliteCount] = {
    {"Io", kBodyJupiter, 0, -1.68},      {"Europa", kBodyJupiter, 1, -1.41},  {"Ganymede", kBodyJupiter, 2, -2.09},
    {"Callisto", kBodyJupiter, 3, -1.05}, {"Mimas", kBodySaturn, 0, 3.3},      {"Enceladus", kBodySaturn, 1, 2.1},
    {"Tethys", kBodySaturn, 2, 0.6},     {"Dione", kBodySaturn, 3, 0.8},      {"Rhea", kBodySaturn, 4, 0.1},
    {"Titan", kBodySaturn, 5, -1.2},     {"Iapetus", kBodySaturn, 7, 1.6},
};

}  // namespace

const ChartSatelliteInfo& ChartSatellite(int satellite)
{
    if (satellite < 0 || satellite >= kChartSatelliteCount) satellite = 0;
    return kSatellites[satellite];
}

std::optional<int> ChartSatelliteFromName(std::string_view name)
{
    for (int k = 0; k < kChartSatelliteCount; ++k)
        if (EqualIgnoringCase(name, kSatellites[k].name)) return k;
    return std::nullopt;
}

void SatelliteSkyOffset(const SatelliteXYZ& xyz, double poleAngleRad, double& eastRadii, double& northRadii)
{
    // X points to celestial west turned with the equator, Y along the pole
    // at position angle P (north through east).
    eastRadii = -xyz.xRadii * C(poleAngleRad) + xyz.yRadii * S(poleAngleRad);
    northRadii = xyz.xRadii * S(poleAngleRad) + xyz.yRadii * C(poleAngleRad);
}

SatellitePlaces PlaceChartSatellites(const CPlanets& planets, const CObserverDoc& observer, double jdTT,
                                     double jupiterPoleAngleRad, double saturnPoleAngleRad)
{
    SatellitePlaces places;
    std::optional<std::array<SatelliteXYZ, 4>> jupiter;
    std::optional<std::array<SatelliteXYZ, 8>> saturn;
    if (planets.Record(kBodyJupiter).valid) jupiter = GalileanSatellitesE5(planets, observer, jdTT);
    if (planets.Record(kBodySaturn).valid) saturn = SaturnSatellitesMeeus(planets, observer, jdTT);
    for (int k = 0; k < kChartSatelliteCount; ++k) {
        const ChartSatelliteInfo& info = kSatellites[k];
        SatellitePlace& place = places.satellites[static_cast<std::size_t>(k)];
        const bool isJupiter = info.planet == kBodyJupiter;
        if (isJupiter ? !jupiter : !saturn) continue;
        place.xyz = isJupiter ? (*jupiter)[static_cast<std::size_t>(info.meeusIndex)]
                              : (*saturn)[static_cast<std::size_t>(info.meeusIndex)];
        const PlanetRecord& r = planets.Record(info.planet);
        const double radiusRad = 0.5 * r.apparentDiameterRad;
        double east = 0.0, north = 0.0;
        SatelliteSkyOffset(place.xyz, isJupiter ? jupiterPoleAngleRad : saturnPoleAngleRad, east, north);
        place.decRad = r.decRad + north * radiusRad;
        place.raRad = r.raRad + east * radiusRad / std::cos(r.decRad);
        // The satellite's distances are the planet's to within a few
        // thousandths. The brightness is that of opposition: the phase law
        // (up to a few tenths of a magnitude at Jupiter's largest phase
        // angle, 12°) is left out.
        place.magnitude = info.absoluteMagnitude + 5.0 * std::log10(r.sunDistanceAU * r.earthDistance);
        // Behind the globe: farther than the centre and within the
        // (flattened) disc.
        const double flat = isJupiter ? 0.935 : 0.902;
        const double ex = place.xyz.xRadii, ey = place.xyz.yRadii / flat;
        place.hiddenByPlanet = place.xyz.zRadii > 0.0 && ex * ex + ey * ey < 1.0;
        place.valid = true;
    }
    return places;
}

}  // namespace orv
