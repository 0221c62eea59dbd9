#include "eclipse/localcircumstances.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

#include "eclipse/sunmoonsketch.h"
#include "observer/observer.h"

namespace orv {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegToRad = kPi / 180.0;
constexpr double kSunriseAltitudeRad = -0.8333 * kDegToRad;

// ρ sin φ′ and ρ cos φ′ of the site in Earth equatorial radii (Meeus ch. 11).
void GeocentricSite(const EclipseSite& site, double& rhoSin, double& rhoCos)
{
    const double ba = 1.0 - kEclipseEarthFlattening;
    const double u = std::atan(ba * std::tan(site.latitudeRad));
    const double h = site.heightM / (kEclipseEarthRadiusKm * 1000.0);
    rhoSin = ba * std::sin(u) + h * std::sin(site.latitudeRad);
    rhoCos = std::cos(u) + h * std::cos(site.latitudeRad);
}

void AltAz(double latRad, double hourAngleRad, double decRad, double& altRad, double& azRad)
{
    const double sinAlt =
        std::sin(latRad) * std::sin(decRad) + std::cos(latRad) * std::cos(decRad) * std::cos(hourAngleRad);
    altRad = std::asin(std::clamp(sinAlt, -1.0, 1.0));
    // Azimuth from north through east.
    azRad = std::atan2(-std::cos(decRad) * std::sin(hourAngleRad),
                       std::sin(decRad) * std::cos(latRad) - std::cos(decRad) * std::sin(latRad) * std::cos(hourAngleRad));
    if (azRad < 0.0) azRad += 2.0 * kPi;
}

// The root of f between a and b (f(a), f(b) of opposite signs) by bisection
// to 0.01 s (t in hours).
double Bisect(const std::function<double(double)>& f, double a, double b)
{
    double fa = f(a);
    for (int i = 0; i < 60 && b - a > 0.01 / 3600.0; ++i) {
        const double m = 0.5 * (a + b);
        const double fm = f(m);
        if ((fm < 0.0) == (fa < 0.0)) {
            a = m;
            fa = fm;
        } else {
            b = m;
        }
    }
    return 0.5 * (a + b);
}

// The least of f on [a, b] by a scan in steps of `step` and golden-section
// refinement about the least sample to 0.01 s.
double Minimise(const std::function<double(double)>& f, double a, double b, double step)
{
    double best = a, bestValue = f(a);
    for (double t = a + step; t <= b + 1e-12; t += step) {
        const double v = f(t);
        if (v < bestValue) {
            bestValue = v;
            best = t;
        }
    }
    double lo = std::max(a, best - step), hi = std::min(b, best + step);
    const double g = 0.5 * (std::sqrt(5.0) - 1.0);
    double x1 = hi - g * (hi - lo), x2 = lo + g * (hi - lo);
    double f1 = f(x1), f2 = f(x2);
    while (hi - lo > 0.01 / 3600.0) {
        if (f1 < f2) {
            hi = x2;
            x2 = x1;
            f2 = f1;
            x1 = hi - g * (hi - lo);
            f1 = f(x1);
        } else {
            lo = x1;
            x1 = x2;
            f1 = f2;
            x2 = lo + g * (hi - lo);
            f2 = f(x2);
        }
    }
    return 0.5 * (lo + hi);
}

// The first sign change of f scanning from `from` towards `to` in steps of
// `step`, refined by bisection; nothing when f keeps its sign.
std::optional<double> RootFrom(const std::function<double(double)>& f, double from, double to, double step)
{
    const double dir = to > from ? 1.0 : -1.0;
    double a = from, fa = f(a);
    while ((to - a) * dir > 0.0) {
        const double b = (to - a) * dir > step ? a + dir * step : to;
        const double fb = f(b);
        if ((fa < 0.0) != (fb < 0.0)) return dir > 0 ? Bisect(f, a, b) : Bisect(f, b, a);
        a = b;
        fa = fb;
    }
    return std::nullopt;
}

// The site on the fundamental plane at t hours from t0.
struct SitePlane {
    double u, v, m;    // shadow axis offset from the site, Earth radii
    double L1, L2;     // shadow radii on the site's plane
    double hourAngleRad, decRad;
};

}  // namespace

double DiscObscuration(double s, double r, double c)
{
    if (!(s > 0.0) || !(r > 0.0)) return 0.0;
    if (c >= s + r) return 0.0;
    if (c <= std::fabs(s - r)) return r >= s ? 1.0 : (r * r) / (s * s);
    // Area of the lens where two discs overlap.
    const double a = std::acos(std::clamp((c * c + s * s - r * r) / (2.0 * c * s), -1.0, 1.0));
    const double b = std::acos(std::clamp((c * c + r * r - s * s) / (2.0 * c * r), -1.0, 1.0));
    const double area = s * s * (a - std::sin(2.0 * a) / 2.0) + r * r * (b - std::sin(2.0 * b) / 2.0);
    return area / (kPi * s * s);
}

SolarLocalCircumstances SolarLocal(const BesselianElements& e, const EclipseSite& site)
{
    SolarLocalCircumstances out;
    double rhoSin, rhoCos;
    GeocentricSite(site, rhoSin, rhoCos);
    const double lonDeg = site.longitudeRad / kDegToRad;
    // The Earth turns 1.002738 × 360° a day: during ΔT, 0.00417807° a second.
    const double deltaTCorrectionDeg = 0.00417807 * e.deltaTSeconds;

    auto at = [&](double t) {
        SitePlane p;
        p.hourAngleRad = (e.MuDeg(t) + lonDeg - deltaTCorrectionDeg) * kDegToRad;
        p.decRad = e.DDeg(t) * kDegToRad;
        const double sd = std::sin(p.decRad), cd = std::cos(p.decRad);
        const double xi = rhoCos * std::sin(p.hourAngleRad);
        const double eta = rhoSin * cd - rhoCos * std::cos(p.hourAngleRad) * sd;
        const double zeta = rhoSin * sd + rhoCos * std::cos(p.hourAngleRad) * cd;
        p.u = e.X(t) - xi;
        p.v = e.Y(t) - eta;
        p.m = std::hypot(p.u, p.v);
        p.L1 = e.L1(t) - zeta * e.tanF1;
        p.L2 = e.L2(t) - zeta * e.tanF2;
        return p;
    };
    auto contact = [&](double t) {
        EclipseContact c;
        c.valid = true;
        c.jdTT = e.t0JdTT + t / 24.0;
        c.jdUT = c.jdTT - e.deltaTSeconds / 86400.0;
        const SitePlane p = at(t);
        AltAz(site.latitudeRad, p.hourAngleRad, p.decRad, c.altitudeRad, c.azimuthRad);
        return c;
    };

    constexpr double kSpan = 4.0;                // hours either side of t0
    constexpr double kScanStep = 2.0 / 60.0;     // 2 minutes
    // The shadow passes the site once: m − L1′ has a single minimum over
    // the span, and a scan by 6 minutes finds its neighbourhood.
    const double tMax = Minimise(
        [&](double t) {
            const SitePlane p = at(t);
            return p.m - p.L1;
        },
        -kSpan, kSpan, 3.0 * kScanStep);
    // The least of m − L1′ and of m nearly coincide; greatest eclipse is the
    // least distance of the axis from the site.
    const double tGreatest =
        Minimise([&](double t) { return at(t).m; }, std::max(-kSpan, tMax - 0.25), std::min(kSpan, tMax + 0.25),
                 kScanStep);
    const SitePlane g = at(tGreatest);
    if (!(g.m < g.L1)) return out;
    out.eclipsed = true;
    out.greatest = contact(tGreatest);
    out.magnitude = (g.L1 - g.m) / (g.L1 + g.L2);
    out.obscuration = DiscObscuration(0.5 * (g.L1 + g.L2), 0.5 * (g.L1 - g.L2), g.m);

    const auto outer = [&](double t) {
        const SitePlane p = at(t);
        return p.m - p.L1;
    };
    if (const auto t1 = RootFrom(outer, tGreatest, -kSpan, kScanStep)) out.first = contact(*t1);
    if (const auto t4 = RootFrom(outer, tGreatest, kSpan, kScanStep)) out.last = contact(*t4);
    if (g.m < std::fabs(g.L2)) {
        out.localType = g.L2 < 0.0 ? 'T' : 'A';
        const auto inner = [&](double t) {
            const SitePlane p = at(t);
            return p.m - std::fabs(p.L2);
        };
        const auto t2 = RootFrom(inner, tGreatest, tGreatest - 0.5, 10.0 / 3600.0);
        const auto t3 = RootFrom(inner, tGreatest, tGreatest + 0.5, 10.0 / 3600.0);
        if (t2) out.second = contact(*t2);
        if (t3) out.third = contact(*t3);
        if (t2 && t3) out.centralDurationSeconds = (*t3 - *t2) * 3600.0;
    }

    // On the fundamental plane the shadow cylinder also covers sites on the
    // far side of the Earth (ζ < 0): the site is eclipsed only when it faces
    // the Sun at some instant of the eclipse. Visible when the Sun is up then
    // (sampled every minute between the contacts).
    const double from = out.first.valid ? (out.first.jdTT - e.t0JdTT) * 24.0 : -kSpan;
    const double to = out.last.valid ? (out.last.jdTT - e.t0JdTT) * 24.0 : kSpan;
    bool facesSun = false;
    for (double t = from;; t += 1.0 / 60.0) {
        const double tt = std::min(t, to);
        const SitePlane p = at(tt);
        double alt, az;
        AltAz(site.latitudeRad, p.hourAngleRad, p.decRad, alt, az);
        // The contacts themselves belong to the eclipse: there m equals L1′
        // but for rounding, which must not decide an eclipse seen only as
        // the Sun rises or sets at first or last contact.
        const bool atContact = (tt == from && out.first.valid) || (tt >= to && out.last.valid);
        const bool inPenumbra = atContact || p.m < p.L1;
        if (alt > 0.0 && inPenumbra) facesSun = true;
        if (alt > kSunriseAltitudeRad && inPenumbra) {
            out.visible = true;
            facesSun = true;
            break;
        }
        if (tt >= to) break;
    }
    if (!facesSun && !out.visible) return SolarLocalCircumstances{};
    return out;
}

namespace {

// The lunar circumstances from the exact or the sketched Sun and Moon; the
// Moon counts as up `upMarginRad` below the customary altitude (a margin
// for screening with the sketch).
std::optional<LunarLocalCircumstances> LunarLocalGraded(double jdTTGreatest, const EclipseSite& site,
                                                        EphemerisGrade grade, double upMarginRad)
{
    if (!std::isfinite(jdTTGreatest)) return std::nullopt;
    // Seven exact samples over ±5 h, fitted by least-squares cubics in t
    // (hours): the Moon's offset from the shadow's centre, the radii and
    // the Moon's place.
    constexpr int kN = 7;
    constexpr double kSpan = 5.0;
    enum { X, Y, SM, RP, RU, RA, DEC, PAR, kFields };
    double t[kN], v[kFields][kN];
    // The exact places at the ends and the middle tie the sketch at the
    // other four instants (sunmoonsketch.h).
    CAnchoredSunMoon model;
    if (grade == EphemerisGrade::Exact) {
        const double anchors[3] = {jdTTGreatest - kSpan / 24.0, jdTTGreatest, jdTTGreatest + kSpan / 24.0};
        if (!model.Anchor(anchors, 3)) return std::nullopt;
    } else {
        model.SketchOnly(jdTTGreatest);
    }
    for (int i = 0; i < kN; ++i) {
        t[i] = -kSpan + 2.0 * kSpan * i / (kN - 1);
        const SunMoonPlaces p = model.At(jdTTGreatest + t[i] / 24.0);
        const LunarShadowInstant s = LunarShadowFromPlaces(p);
        v[X][i] = s.xRad;
        v[Y][i] = s.yRad;
        v[SM][i] = s.moonSemidiameterRad;
        v[RP][i] = s.penumbraRadiusRad;
        v[RU][i] = s.umbraRadiusRad;
        v[RA][i] = p.moonRaRad;
        v[DEC][i] = p.moonDecRad;
        v[PAR][i] = std::asin(kEclipseEarthRadiusKm / p.moonDistanceKm);
    }
    for (int i = 1; i < kN; ++i) {  // right ascension made continuous
        while (v[RA][i] - v[RA][i - 1] > kPi) v[RA][i] -= 2.0 * kPi;
        while (v[RA][i] - v[RA][i - 1] < -kPi) v[RA][i] += 2.0 * kPi;
    }
    std::array<std::array<double, 4>, kFields> c{};
    for (int f = 0; f < kFields; ++f) {
        double a[4][5] = {};
        for (int i = 0; i < kN; ++i) {
            const double p[4] = {1.0, t[i], t[i] * t[i], t[i] * t[i] * t[i]};
            for (int r = 0; r < 4; ++r) {
                for (int k = 0; k < 4; ++k) a[r][k] += p[r] * p[k];
                a[r][4] += p[r] * v[f][i];
            }
        }
        for (int col = 0; col < 4; ++col)
            for (int r = col + 1; r < 4; ++r) {
                const double q = a[r][col] / a[col][col];
                for (int k = col; k < 5; ++k) a[r][k] -= q * a[col][k];
            }
        for (int r = 3; r >= 0; --r) {
            double s = a[r][4];
            for (int k = r + 1; k < 4; ++k) s -= a[r][k] * c[f][static_cast<std::size_t>(k)];
            c[f][static_cast<std::size_t>(r)] = s / a[r][r];
        }
    }
    auto val = [&](int f, double tt) {
        const auto& q = c[static_cast<std::size_t>(f)];
        return q[0] + tt * (q[1] + tt * (q[2] + tt * q[3]));
    };
    auto dist = [&](double tt) { return std::hypot(val(X, tt), val(Y, tt)); };

    LunarLocalCircumstances out;
    const double tG = Minimise(dist, -1.0, 1.0, 2.0 / 60.0);
    const double d0 = dist(tG), sm0 = val(SM, tG);
    out.penumbralMagnitude = (val(RP, tG) + sm0 - d0) / (2.0 * sm0);
    out.umbralMagnitude = (val(RU, tG) + sm0 - d0) / (2.0 * sm0);
    if (!(out.penumbralMagnitude > 0.0)) return std::nullopt;

    const double deltaT = DeltaTSeconds(jdTTGreatest);
    auto contact = [&](double tt) {
        EclipseContact k;
        k.valid = true;
        k.jdTT = jdTTGreatest + tt / 24.0;
        k.jdUT = k.jdTT - deltaT / 86400.0;
        const double gmst = GreenwichMeanSiderealTimeRad(k.jdUT, k.jdTT);
        AltAz(site.latitudeRad, gmst + site.longitudeRad - val(RA, tt), val(DEC, tt), k.altitudeRad, k.azimuthRad);
        return k;
    };
    out.greatest = contact(tG);
    const double step = 5.0 / 60.0;
    auto phase = [&](int radius, double sign, EclipseContact& before, EclipseContact& after) {
        const auto f = [&](double tt) { return dist(tt) - (val(radius, tt) + sign * val(SM, tt)); };
        if (!(f(tG) < 0.0)) return;
        if (const auto a = RootFrom(f, tG, -kSpan, step)) before = contact(*a);
        if (const auto b = RootFrom(f, tG, kSpan, step)) after = contact(*b);
    };
    phase(RP, 1.0, out.p1, out.p4);
    phase(RU, 1.0, out.u1, out.u4);
    phase(RU, -1.0, out.u2, out.u3);

    // Up when the geocentric altitude exceeds h0 = 0.7275 π − 34′.
    const double from = out.p1.valid ? (out.p1.jdTT - jdTTGreatest) * 24.0 : -kSpan;
    const double to = out.p4.valid ? (out.p4.jdTT - jdTTGreatest) * 24.0 : kSpan;
    for (double tt = from;; tt += 2.0 / 60.0) {
        const double x = std::min(tt, to);
        const EclipseContact k = contact(x);
        if (k.altitudeRad > 0.7275 * val(PAR, x) - 34.0 / 60.0 * kDegToRad - upMarginRad) {
            out.visible = true;
            break;
        }
        if (x >= to) break;
    }
    return out;
}

}  // namespace

std::optional<LunarLocalCircumstances> LunarLocal(double jdTTGreatest, const EclipseSite& site)
{
    return LunarLocalGraded(jdTTGreatest, site, EphemerisGrade::Exact, 0.0);
}

bool LunarEclipseSurelyUnseen(double jdTTGreatest, const EclipseSite& site)
{
    // The sketch's contacts are good to a minute or so and its altitudes to
    // a few hundredths of a degree; a degree of margin covers both (the
    // Moon climbs a quarter of a degree a minute at most).
    const auto l = LunarLocalGraded(jdTTGreatest, site, EphemerisGrade::Sketch, 1.0 * kDegToRad);
    return l && !l->visible;
}

bool SolarEclipseSurelyUnseen(double jdTTGreatest, const EclipseSite& site)
{
    BesselianElements e;
    ComputeBesselianElements(jdTTGreatest, e, EphemerisGrade::Sketch);
    double rhoSin, rhoCos;
    GeocentricSite(site, rhoSin, rhoCos);
    const double lonDeg = site.longitudeRad / kDegToRad;
    const double deltaTCorrectionDeg = 0.00417807 * e.deltaTSeconds;
    // The sketch puts the shadow within some 0.02 Earth radii of its exact
    // place; the margin is 0.06. Sampled every two minutes, during which
    // the shadow moves at most 0.03 Earth radii relative to the site: a
    // sample within (margin − that) of the penumbra's edge would show a
    // passage between samples. The Sun must also be near or above the
    // horizon then (2.5° of margin below the customary −0.8333°).
    constexpr double kMarginEarthRadii = 0.06;
    constexpr double kStepHours = 2.0 / 60.0;
    for (double t = -4.0; t <= 4.0 + 1e-9; t += kStepHours) {
        const double h = (e.MuDeg(t) + lonDeg - deltaTCorrectionDeg) * kDegToRad;
        const double d = e.DDeg(t) * kDegToRad;
        const double sd = std::sin(d), cd = std::cos(d);
        const double xi = rhoCos * std::sin(h);
        const double eta = rhoSin * cd - rhoCos * std::cos(h) * sd;
        const double zeta = rhoSin * sd + rhoCos * std::cos(h) * cd;
        const double m = std::hypot(e.X(t) - xi, e.Y(t) - eta);
        if (m - (e.L1(t) - zeta * e.tanF1) > kMarginEarthRadii) continue;
        // ζ is the sine of the Sun's altitude at the site (geocentric, to
        // the flattening's few hundredths of a degree).
        if (zeta > std::sin(-3.5 * kDegToRad)) return false;
    }
    return true;
}

}  // namespace orv
