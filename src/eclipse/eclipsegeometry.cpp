#include "eclipse/eclipsegeometry.h"

#include <erfa.h>

#include <cmath>
#include <limits>

#include "eclipse/sunmoonsketch.h"
#include "observer/observer.h"
#include "solarsystem/moonseries.h"
#include "solarsystem/planets.h"
#include "solarsystem/vsop87.h"

namespace orv {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;
constexpr double kDegToRad = kPi / 180.0;
constexpr double kArcsecToRad = kPi / 648000.0;
constexpr double kJ2000 = 2451545.0;

double Mod2Pi(double a)
{
    a = std::fmod(a, kTwoPi);
    return a < 0.0 ? a + kTwoPi : a;
}

void EclipticToEquatorial(double lonRad, double latRad, double epsRad, double& raRad, double& decRad)
{
    const double sl = std::sin(lonRad), cl = std::cos(lonRad);
    const double sb = std::sin(latRad), cb = std::cos(latRad);
    const double se = std::sin(epsRad), ce = std::cos(epsRad);
    raRad = Mod2Pi(std::atan2(sl * cb * ce - sb * se, cl * cb));
    decRad = std::asin(sb * ce + cb * se * sl);
}

struct Vec {
    double x, y, z;
};
Vec FromSpherical(double raRad, double decRad, double r)
{
    return {r * std::cos(decRad) * std::cos(raRad), r * std::cos(decRad) * std::sin(raRad), r * std::sin(decRad)};
}
double Dot(const Vec& a, const Vec& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

// Correction to the Moon's longitude, degrees, that brings the instants of
// the ephemeris to those of the five-millennium canons (see the header).
double SecularCorrectionDeg(double jdTT)
{
    const double T = (jdTT - kJ2000) / 36525.0;
    const double* c = kMoonCanonFitArcsec;
    return (T * (c[0] + T * (c[1] + T * (c[2] + T * c[3])))) / 3600.0;
}

}  // namespace

namespace {

// Nutation and obliquity change by less than 0.01″ in a quarter of a day:
// the samples of one eclipse share them.
thread_local SunMoonNutation tNutation{std::numeric_limits<double>::quiet_NaN(), 0.0, 0.0};

const CVsop87Subset& QuickEarth()
{
    static const CVsop87Subset subset = [] {
        CVsop87Subset s;
        // 1e-7 rad over |t| ≤ 4 millennia: the terms that can reach 0.02″
        // anywhere in −2000 … +3000.
        s.Build(SharedVsop87D(), kBodyEarth, 1e-7, 4.0);
        return s;
    }();
    return subset;
}

const CVsop87Subset& FinerEarth()
{
    static const CVsop87Subset subset = [] {
        CVsop87Subset s;
        s.Build(SharedVsop87D(), kBodyEarth, 1e-8, 4.0);
        return s;
    }();
    return subset;
}

bool SunMoonFrom(double jdTT, const SphericalLBR& earth, SunMoonPlaces& out)
{
    if (!std::isfinite(earth.rAU)) return false;
    if (!(std::fabs(jdTT - tNutation.jdTT) < 0.25)) {
        double dPsi = 0.0, dEps = 0.0;
        eraNut00b(kJ2000, jdTT - kJ2000, &dPsi, &dEps);
        tNutation = {jdTT, dPsi, eraObl06(kJ2000, jdTT - kJ2000) + dEps};
    }
    const double dPsi = tNutation.dPsiRad;
    const double eps = tNutation.trueObliquityRad;

    // Geometric Sun from the Earth, then VSOP87's dynamical ecliptic to FK5
    // (Meeus 32.3) and the aberration in longitude (Meeus 25.10).
    const double T = (jdTT - kJ2000) / 36525.0;
    double sunLon = earth.lRad + kPi;
    double sunLat = -earth.bRad;
    const double lonPrime = sunLon - (1.397 * T + 0.00031 * T * T) * kDegToRad;
    sunLon += -0.09033 * kArcsecToRad;
    sunLat += 0.03916 * (std::cos(lonPrime) - std::sin(lonPrime)) * kArcsecToRad;
    sunLon += dPsi - 20.4898 * kArcsecToRad / earth.rAU;
    EclipticToEquatorial(sunLon, sunLat, eps, out.sunRaRad, out.sunDecRad);
    out.sunDistanceKm = earth.rAU * kAstronomicalUnitKmIAU2012;

    // The Moon where it was when the light now arriving left it: its light
    // time (1.3 s) times its motion in longitude, taken as the mean motion
    // (the error, under 0.1″, is far below the block's own).
    const MoonEclipticPlace moon = EvaluateMoonBlock(MoonDataBlock(), jdTT);
    if (!std::isfinite(moon.distanceKm)) return false;
    const double lightDays = moon.distanceKm / (kLightAUPerDay * kAstronomicalUnitKmIAU2012);
    constexpr double kMoonMeanMotionDegPerDay = 13.176396;
    const double moonLon = (moon.lonDeg - kMoonMeanMotionDegPerDay * lightDays + SecularCorrectionDeg(jdTT)) * kDegToRad;
    EclipticToEquatorial(moonLon + dPsi, moon.latDeg * kDegToRad, eps, out.moonRaRad, out.moonDecRad);
    out.moonDistanceKm = moon.distanceKm;
    return true;
}

}  // namespace

bool SunMoonAt(double jdTT, SunMoonPlaces& out)
{
    if (!std::isfinite(jdTT)) return false;
    return SunMoonFrom(jdTT, SharedVsop87D().EvaluateOfDate(kBodyEarth, jdTT), out);
}

bool SunMoonAtQuickSun(double jdTT, SunMoonPlaces& out)
{
    if (!std::isfinite(jdTT)) return false;
    return SunMoonFrom(jdTT, QuickEarth().EvaluateOfDate(jdTT), out);
}

bool SunMoonAtSeries(double jdTT, SunMoonPlaces& out, SunSeries series)
{
    switch (series) {
    case SunSeries::Largest:
        return SunMoonAtQuickSun(jdTT, out);
    case SunSeries::Larger:
        if (!std::isfinite(jdTT)) return false;
        return SunMoonFrom(jdTT, FinerEarth().EvaluateOfDate(jdTT), out);
    case SunSeries::Full:
        break;
    }
    return SunMoonAt(jdTT, out);
}

SunMoonNutation LastSunMoonNutation() { return tNutation; }

BesselianInstant BesselianFromPlaces(const SunMoonPlaces& p, double gastRad)
{
    BesselianInstant b;
    const Vec sun = FromSpherical(p.sunRaRad, p.sunDecRad, p.sunDistanceKm / kEclipseEarthRadiusKm);
    const Vec moon = FromSpherical(p.moonRaRad, p.moonDecRad, p.moonDistanceKm / kEclipseEarthRadiusKm);
    const Vec g{sun.x - moon.x, sun.y - moon.y, sun.z - moon.z};
    const double gLen = std::sqrt(Dot(g, g));
    b.aRad = Mod2Pi(std::atan2(g.y, g.x));
    b.dRad = std::asin(g.z / gLen);
    const double sa = std::sin(b.aRad), ca = std::cos(b.aRad);
    const double sd = std::sin(b.dRad), cd = std::cos(b.dRad);
    const Vec ex{-sa, ca, 0.0};
    const Vec ey{-sd * ca, -sd * sa, cd};
    const Vec ez{cd * ca, cd * sa, sd};
    b.x = Dot(moon, ex);
    b.y = Dot(moon, ey);
    b.z = Dot(moon, ez);
    const double sunRadius =
        kSolarSemidiameterAt1AUArcsec * kArcsecToRad * kAstronomicalUnitKmIAU2012 / kEclipseEarthRadiusKm;
    const double f1 = std::asin((sunRadius + kLunarRadiusPenumbraK1) / gLen);
    const double f2 = std::asin((sunRadius - kLunarRadiusUmbraK2) / gLen);
    b.tanF1 = std::tan(f1);
    b.tanF2 = std::tan(f2);
    b.l1 = b.z * b.tanF1 + kLunarRadiusPenumbraK1 / std::cos(f1);
    b.l2 = b.z * b.tanF2 - kLunarRadiusUmbraK2 / std::cos(f2);
    b.muRad = Mod2Pi(gastRad - b.aRad);
    return b;
}

bool ComputeBesselianElements(double jdTT, BesselianElements& out, EphemerisGrade grade)
{
    if (!std::isfinite(jdTT)) return false;
    // The integer hour nearest the instant.
    const double t0 = std::floor((jdTT - 0.5) * 24.0 + 0.5) / 24.0 + 0.5;
    out.t0JdTT = t0;
    out.deltaTSeconds = DeltaTSeconds(t0);
    constexpr int kPoints = 9;
    double t[kPoints], x[kPoints], y[kPoints], d[kPoints], l1[kPoints], l2[kPoints], mu[kPoints];
    double tanF1 = 0.0, tanF2 = 0.0;
    CAnchoredSunMoon model;
    if (grade == EphemerisGrade::Exact) {
        const double anchors[3] = {t0 - 4.0 / 24.0, t0, t0 + 4.0 / 24.0};
        if (!model.Anchor(anchors, 3)) return false;
    } else {
        model.SketchOnly(t0);
    }
    // Sidereal time at t0, carried to the other instants at the Earth's rate
    // of rotation (nutation changes by milliarcseconds in four hours). The
    // sketch takes the mean sidereal time and the equation of the equinoxes
    // Δψ cos ε of its own nutation (IAU 2000B), within a few milliarcseconds
    // of the full IAU 2000A/2006 value and a fraction of its cost.
    const double gast0 = grade == EphemerisGrade::Exact
                             ? GreenwichApparentSiderealTimeRad(t0, t0)
                             : GreenwichMeanSiderealTimeRad(t0, t0) +
                                   model.NutationInLongitudeRad() * std::cos(model.TrueObliquityRad());
    constexpr double kSiderealRadPerHour = 2.0 * kPi * 1.00273781191135448 / 24.0;
    for (int i = 0; i < kPoints; ++i) {
        t[i] = -4.0 + i;
        const double jd = t0 + t[i] / 24.0;
        const SunMoonPlaces places = model.At(jd);
        // μ as the canons give it: the ephemeris hour angle, the sidereal time
        // taken at the TT instant; the local circumstances subtract the
        // Earth's rotation during ΔT.
        const BesselianInstant b = BesselianFromPlaces(places, gast0 + kSiderealRadPerHour * t[i]);
        x[i] = b.x;
        y[i] = b.y;
        d[i] = b.dRad / kDegToRad;
        l1[i] = b.l1;
        l2[i] = b.l2;
        mu[i] = b.muRad / kDegToRad;
        if (i == kPoints / 2) {
            tanF1 = b.tanF1;
            tanF2 = b.tanF2;
        }
    }
    // μ unwrapped into a continuous sequence about the middle value.
    for (int i = 1; i < kPoints; ++i) {
        while (mu[i] - mu[i - 1] < 0.0) mu[i] += 360.0;
        while (mu[i] - mu[i - 1] > 360.0) mu[i] -= 360.0;
    }
    // Least-squares cubic through the nine points: normal equations of the
    // monomial basis (t in hours from t0, |t| ≤ 4: well conditioned enough).
    auto fit = [&](const double* v, std::array<double, 4>& c) {
        double a[4][5] = {};
        for (int i = 0; i < kPoints; ++i) {
            double p[4] = {1.0, t[i], t[i] * t[i], t[i] * t[i] * t[i]};
            for (int r = 0; r < 4; ++r) {
                for (int k = 0; k < 4; ++k) a[r][k] += p[r] * p[k];
                a[r][4] += p[r] * v[i];
            }
        }
        for (int col = 0; col < 4; ++col) {
            for (int r = col + 1; r < 4; ++r) {
                const double f = a[r][col] / a[col][col];
                for (int k = col; k < 5; ++k) a[r][k] -= f * a[col][k];
            }
        }
        for (int r = 3; r >= 0; --r) {
            double s = a[r][4];
            for (int k = r + 1; k < 4; ++k) s -= a[r][k] * c[static_cast<std::size_t>(k)];
            c[static_cast<std::size_t>(r)] = s / a[r][r];
        }
    };
    fit(x, out.x);
    fit(y, out.y);
    fit(d, out.dDeg);
    fit(l1, out.l1);
    fit(l2, out.l2);
    fit(mu, out.muDeg);
    out.muDeg[0] = std::fmod(out.muDeg[0], 360.0);
    if (out.muDeg[0] < 0.0) out.muDeg[0] += 360.0;
    out.tanF1 = tanF1;
    out.tanF2 = tanF2;
    return true;
}

LunarShadowInstant LunarShadowFromPlaces(const SunMoonPlaces& p)
{
    LunarShadowInstant s;
    // The shadow's centre: the antisolar point.
    const double ra0 = Mod2Pi(p.sunRaRad + kPi);
    const double dec0 = -p.sunDecRad;
    // Gnomonic offsets of the Moon from it (east, north).
    const double dra = p.moonRaRad - ra0;
    const double cosc = std::sin(dec0) * std::sin(p.moonDecRad) + std::cos(dec0) * std::cos(p.moonDecRad) * std::cos(dra);
    s.xRad = std::cos(p.moonDecRad) * std::sin(dra) / cosc;
    s.yRad = (std::cos(dec0) * std::sin(p.moonDecRad) - std::sin(dec0) * std::cos(p.moonDecRad) * std::cos(dra)) / cosc;
    const double moonParallax = std::asin(kEclipseEarthRadiusKm / p.moonDistanceKm);
    const double sunParallax = std::asin(kEclipseEarthRadiusKm / p.sunDistanceKm);
    const double sunSemidiameter =
        kSolarSemidiameterAt1AUArcsec * kArcsecToRad * kAstronomicalUnitKmIAU2012 / p.sunDistanceKm;
    s.moonSemidiameterRad = std::asin(kLunarRadiusLunarEclipseK * kEclipseEarthRadiusKm / p.moonDistanceKm);
    s.penumbraRadiusRad = kShadowParallaxFactorDanjon * moonParallax + sunParallax + sunSemidiameter;
    s.umbraRadiusRad = kShadowParallaxFactorDanjon * moonParallax + sunParallax - sunSemidiameter;
    s.moonRaRad = p.moonRaRad;
    s.moonDecRad = p.moonDecRad;
    s.moonDistanceKm = p.moonDistanceKm;
    return s;
}

LeastDistance LeastDistanceQuadratic(const std::array<double, 3>& x, const std::array<double, 3>& y, double h)
{
    // p(t) = p0 + p1 t + p2 t² through the three samples.
    const double x0 = x[1], x1 = (x[2] - x[0]) / (2.0 * h), x2 = (x[2] - 2.0 * x[1] + x[0]) / (2.0 * h * h);
    const double y0 = y[1], y1 = (y[2] - y[0]) / (2.0 * h), y2 = (y[2] - 2.0 * y[1] + y[0]) / (2.0 * h * h);
    double t = 0.0;
    for (int iter = 0; iter < 20; ++iter) {
        const double xv = x0 + t * (x1 + t * x2), yv = y0 + t * (y1 + t * y2);
        const double xd = x1 + 2.0 * t * x2, yd = y1 + 2.0 * t * y2;
        const double f = xv * xd + yv * yd;                                   // ½ d(x²+y²)/dt
        const double fd = xd * xd + yd * yd + 2.0 * (xv * x2 + yv * y2);      // its derivative
        if (!(fd > 0.0)) break;
        const double step = f / fd;
        t -= step;
        if (t > 4.0 * h) t = 4.0 * h;
        if (t < -4.0 * h) t = -4.0 * h;
        if (std::fabs(step) < 1e-9 * h) break;
    }
    LeastDistance r;
    r.t = t;
    r.x = x0 + t * (x1 + t * x2);
    r.y = y0 + t * (y1 + t * y2);
    return r;
}

}  // namespace orv
