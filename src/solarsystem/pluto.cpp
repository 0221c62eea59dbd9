#include "solarsystem/pluto.h"

#include <cmath>

namespace orv {

namespace {

constexpr double kDegToRad = 3.14159265358979323846 / 180.0;
// The mean obliquity of the ecliptic at J2000.0 (IAU 1976), 84381.448″.
constexpr double kObliquityJ2000Rad = 84381.448 / 3600.0 * kDegToRad;

// One term of Meeus's table 37.A: the argument i·J + j·S + k·P and the sine
// and cosine coefficients of longitude, latitude (degrees) and radius vector
// (AU).
struct PlutoTerm {
    signed char i, j, k;
    double lonSin, lonCos;
    double latSin, latCos;
    double radSin, radCos;
};

// Coefficients as printed by Meeus (longitude and latitude in units of
// 1e-6°, radius vector in 1e-7 AU), scaled when summed.
constexpr PlutoTerm kTerms[] = {
    {0, 0, 1, -19799805, 19850055, -5452852, -14974862, 66865439, 68951812},
    {0, 0, 2, 897144, -4954829, 3527812, 1672790, -11827535, -332538},
    {0, 0, 3, 611149, 1211027, -1050748, 327647, 1593179, -1438890},
    {0, 0, 4, -341243, -189585, 178690, -292153, -18444, 483220},
    {0, 0, 5, 129287, -34992, 18650, 100340, -65977, -85431},
    {0, 0, 6, -38164, 30893, -30697, -25823, 31174, -6032},
    {0, 1, -1, 20442, -9987, 4878, 11248, -5794, 22161},
    {0, 1, 0, -4063, -5071, 226, -64, 4601, 4032},
    {0, 1, 1, -6016, -3336, 2030, -836, -1729, 234},
    {0, 1, 2, -3956, 3039, 69, -604, -415, 702},
    {0, 1, 3, -667, 3572, -247, -567, 239, 723},
    {0, 2, -2, 1276, 501, -57, 1, 67, -67},
    {0, 2, -1, 1152, -917, -122, 175, 1034, -451},
    {0, 2, 0, 630, -1277, -49, -164, -129, 504},
    {1, -1, 0, 2571, -459, -197, 199, 480, -231},
    {1, -1, 1, 899, -1449, -25, 217, 2, -441},
    {1, 0, -3, -1016, 1043, 589, -248, -3359, 265},
    {1, 0, -2, -2343, -1012, -269, 711, 7856, -7832},
    {1, 0, -1, 7042, 788, 185, 193, 36, 45763},
    {1, 0, 0, 1199, -338, 315, 807, 8663, 8547},
    {1, 0, 1, 418, -67, -130, -43, -809, -769},
    {1, 0, 2, 120, -274, 5, 3, 263, -144},
    {1, 0, 3, -60, -159, 2, 17, -126, 32},
    {1, 0, 4, -82, -29, 2, 5, -35, -16},
    {1, 1, -3, -36, -29, 2, 3, -19, -4},
    {1, 1, -2, -40, 7, 3, 1, -15, 8},
    {1, 1, -1, -14, 22, 2, -1, -4, 12},
    {1, 1, 0, 4, 13, 1, -1, 5, 6},
    {1, 1, 1, 5, 2, 0, -1, 3, 1},
    {1, 1, 3, -1, 0, 0, 0, 6, -2},
    {2, 0, -6, 2, 0, 0, -2, 2, 2},
    {2, 0, -5, -4, 5, 2, 2, -2, -2},
    {2, 0, -4, 4, -7, -7, 0, 14, 13},
    {2, 0, -3, 14, 24, 10, -8, -63, 13},
    {2, 0, -2, -49, -34, -3, 20, 136, -236},
    {2, 0, -1, 163, -48, 6, 5, 273, 1065},
    {2, 0, 0, 9, -24, 14, 17, 251, 149},
    {2, 0, 1, -4, 1, -2, 0, -25, -9},
    {2, 0, 2, -3, 1, 0, 0, 9, -2},
    {2, 0, 3, 1, 3, 0, 0, -8, 7},
    {3, 0, -2, -3, -1, 0, 1, 2, -10},
    {3, 0, -1, 5, -3, 0, 0, 19, 35},
    {3, 0, 0, 0, 0, 1, 0, 10, 3},
};

}  // namespace

bool PlutoEclipticJ2000(double jdTT, double& lonRad, double& latRad, double& radiusAU)
{
    if (!(jdTT >= kPlutoSeriesFirstJd && jdTT < kPlutoSeriesEndJd)) return false;
    const double T = (jdTT - 2451545.0) / 36525.0;
    // Mean longitudes of Jupiter, Saturn and Pluto (degrees), Meeus eq. 37.
    const double J = 34.35 + 3034.9057 * T;
    const double S = 50.08 + 1222.1138 * T;
    const double P = 238.96 + 144.96 * T;
    double lon = 0.0, lat = 0.0, rad = 0.0;
    for (const PlutoTerm& t : kTerms) {
        const double a = (t.i * J + t.j * S + t.k * P) * kDegToRad;
        const double s = std::sin(a);
        const double c = std::cos(a);
        lon += t.lonSin * s + t.lonCos * c;
        lat += t.latSin * s + t.latCos * c;
        rad += t.radSin * s + t.radCos * c;
    }
    lonRad = (238.958116 + 144.96 * T + lon * 1e-6) * kDegToRad;
    latRad = (-3.908239 + lat * 1e-6) * kDegToRad;
    radiusAU = 40.7241346 + rad * 1e-7;
    return true;
}

bool PlutoEquatorialJ2000(double jdTT, double xyzAU[3])
{
    double l, b, r;
    if (!PlutoEclipticJ2000(jdTT, l, b, r)) return false;
    const double x = r * std::cos(b) * std::cos(l);
    const double y = r * std::cos(b) * std::sin(l);
    const double z = r * std::sin(b);
    const double ce = std::cos(kObliquityJ2000Rad);
    const double se = std::sin(kObliquityJ2000Rad);
    xyzAU[0] = x;
    xyzAU[1] = y * ce - z * se;
    xyzAU[2] = y * se + z * ce;
    return true;
}

}  // namespace orv
