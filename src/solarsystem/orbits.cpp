#include "solarsystem/orbits.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orv {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;
constexpr double kDegToRad = kPi / 180.0;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
// The J2000 obliquity as the element conventions give it (ε = 23°26′21.448″).
constexpr double kCosObliquityJ2000 = 0.91748206;
constexpr double kSinObliquityJ2000 = 0.39777716;
constexpr int kMaxIterations = 200;
// The classical iterations' stopping rule and their caps (see the solvers).
constexpr double kKeplerToleranceRad = 1e-8;
constexpr int kKeplerIterations = 50;
constexpr int kBarkerIterations = 100;

// x − sin x without cancellation: the series below |x| = 0.5 (its terms fall
// by 1/40 at least, so 9 terms reach 1e-17 relative), the difference above.
double XMinusSin(double x)
{
    const double ax = std::fabs(x);
    if (ax >= 0.5) return x - std::sin(x);
    const double x2 = x * x;
    double term = x * x2 / 6.0, sum = 0.0;
    for (int k = 1; k <= 9; ++k) {
        sum += term;
        term *= -x2 / ((2.0 * k + 2.0) * (2.0 * k + 3.0));
    }
    return sum;
}

// sinh x − x, likewise.
double SinhMinusX(double x)
{
    const double ax = std::fabs(x);
    if (ax >= 0.5) return std::sinh(x) - x;
    const double x2 = x * x;
    double term = x * x2 / 6.0, sum = 0.0;
    for (int k = 1; k <= 9; ++k) {
        sum += term;
        term *= x2 / ((2.0 * k + 2.0) * (2.0 * k + 3.0));
    }
    return sum;
}

// Newton's method on an increasing convex function f over [lo, hi] with
// f(lo) ≤ 0 ≤ f(hi), started at hi: every step stays right of the root and
// moves toward it, so it cannot overshoot or cycle whatever e is.
template <class F, class DF>
std::optional<double> NewtonFromAbove(double lo, double hi, F f, DF df)
{
    double x = hi;
    for (int i = 0; i < kMaxIterations; ++i) {
        const double fx = f(x);
        if (fx <= 0.0) return x;  // at the root to the last bit
        const double d = df(x);
        if (!(d > 0.0)) return std::nullopt;
        const double step = fx / d;
        double next = x - step;
        if (next < lo) next = lo;  // rounding only: the convexity keeps it inside
        if (std::fabs(x - next) <= 1e-15 * std::max(1.0, std::fabs(x))) return next;
        x = next;
    }
    return std::nullopt;
}

}  // namespace

std::optional<double> SolveKeplerElliptic(double meanAnomalyRad, double e)
{
    if (!std::isfinite(meanAnomalyRad) || !std::isfinite(e) || e < 0.0 || e >= 1.0) return std::nullopt;
    // M into (−π, π], solved for |M| (E is odd in M), the revolutions put back.
    const double turns = std::round(meanAnomalyRad / kTwoPi);
    double m = meanAnomalyRad - turns * kTwoPi;
    const double sign = m < 0.0 ? -1.0 : 1.0;
    m = std::fabs(m);
    if (m == 0.0) return turns * kTwoPi;
    // f(E) = E − e sin E − M written as (1 − e)E + e(E − sin E) − M, and
    // f'(E) = 1 − e cos E as (1 − e) + 2e sin²(E/2): the same numbers without
    // the cancellation that costs digits as e approaches 1.
    const double oneMinusE = 1.0 - e;
    auto f = [&](double x) { return oneMinusE * x + e * XMinusSin(x) - m; };
    auto df = [&](double x) {
        const double s = std::sin(0.5 * x);
        return oneMinusE + 2.0 * e * s * s;
    };
    // The classical iteration: Newton's step ΔE = (M + e sin E − E)/(1 − e cos E)
    // from E = M, repeated while |ΔE| ≥ 1e-8 rad (2 mas; the error left after
    // the last step is about ΔE², far below that). It converges in a few
    // steps for every orbit of the catalogues; for e near 1 and small M its
    // first steps can wander, so it is given kKeplerIterations steps and,
    // should it not settle (or leave finite numbers), the bracketed solver
    // below takes over, which cannot fail to converge.
    double E = m;
    for (int i = 0; i < kKeplerIterations; ++i) {
        const double dE = -f(E) / df(E);
        if (!std::isfinite(dE)) break;
        E += dE;
        if (std::fabs(dE) < kKeplerToleranceRad) {
            // One step more once the rule is met: free for ordinary orbits
            // (the step is then below 1e-16), it gives near-parabolic ones,
            // whose semi-major axis may be billions of AU, the digits that
            // r = q + 2ae sin²(E/2) multiplies by a.
            const double polish = -f(E) / df(E);
            if (std::isfinite(polish)) E += polish;
            return sign * E + turns * kTwoPi;
        }
    }
    // f is increasing and convex on [0, π]; the root lies in [M, min(π, M + e)].
    const std::optional<double> bracketed = NewtonFromAbove(m, std::min(kPi, m + e), f, df);
    if (!bracketed) return std::nullopt;
    return sign * *bracketed + turns * kTwoPi;
}

std::optional<double> SolveKeplerHyperbolic(double meanAnomalyRad, double e)
{
    if (!std::isfinite(meanAnomalyRad) || !std::isfinite(e) || e <= 1.0) return std::nullopt;
    const double sign = meanAnomalyRad < 0.0 ? -1.0 : 1.0;
    const double m = std::fabs(meanAnomalyRad);
    if (m == 0.0) return 0.0;
    // f(H) = (e − 1) sinh H + (sinh H − H) − M, increasing and convex for
    // H ≥ 0. At asinh(M/e), f = −H ≤ 0; at asinh(M/(e − 1)) the first term
    // alone is M; at ∛(6M) the second alone is at least M.
    const double eMinusOne = e - 1.0;
    const double lo = std::asinh(m / e);
    const double hi = std::max(lo, std::min(std::asinh(m / eMinusOne), std::cbrt(6.0 * m)));
    if (!std::isfinite(hi)) return std::nullopt;
    auto f = [&](double x) { return eMinusOne * std::sinh(x) + SinhMinusX(x) - m; };
    auto df = [&](double x) {
        const double s = std::sinh(0.5 * x);
        return eMinusOne * std::cosh(x) + 2.0 * s * s;  // e cosh H − 1
    };
    const std::optional<double> H = NewtonFromAbove(lo, hi, f, df);
    if (!H) return std::nullopt;
    return sign * *H;
}

double SolveBarker(double w)
{
    if (!std::isfinite(w)) return kNaN;
    // Newton's method on s³ + 3s − W from s = 0, s ← (2s³ + W)/(3(s² + 1)),
    // until the change is below 1e-8. After the first step s lies above the
    // root and falls toward it monotonically (the cubic is convex for s > 0,
    // worked on |W| since s is odd in W), so the loop ends; far from the
    // perihelion, where W is large, it needs many steps, and after
    // kBarkerIterations the cubic's real root in closed form is taken:
    // s = Y − 1/Y with Y = ∛(W/2 + √(W²/4 + 1)).
    const double a = std::fabs(w);
    double s = 0.0;
    for (int i = 0; i < kBarkerIterations; ++i) {
        const double next = (2.0 * s * s * s + a) / (3.0 * (s * s + 1.0));
        const double change = std::fabs(next - s);
        s = next;
        if (change < kKeplerToleranceRad) return w < 0.0 ? -s : s;
    }
    const double half = 0.5 * a;
    const double y = std::cbrt(half + std::hypot(half, 1.0));
    s = y - 1.0 / y;
    // One Newton step polishes the last bits lost in Y − 1/Y for small W.
    s -= (s * (s * s + 3.0) - a) / (3.0 * (s * s + 1.0));
    return w < 0.0 ? -s : s;
}

std::optional<ConicPlace> ConicPlaceAt(double qAU, double e, double days)
{
    if (!std::isfinite(qAU) || !std::isfinite(e) || !std::isfinite(days) || qAU <= 0.0 || e < 0.0)
        return std::nullopt;
    ConicPlace place;
    if (e < 1.0) {
        const double a = qAU / (1.0 - e);
        const double n = kGaussK / (a * std::sqrt(a));
        const std::optional<double> E = SolveKeplerElliptic(n * days, e);
        if (!E) return std::nullopt;
        const double s = std::sin(0.5 * *E);
        // r = a(1 − e cos E) = q + 2ae sin²(E/2): no cancellation near e = 1.
        place.radiusAU = qAU + 2.0 * a * e * s * s;
        place.trueAnomalyRad =
            2.0 * std::atan2(std::sqrt(1.0 + e) * s, std::sqrt(1.0 - e) * std::cos(0.5 * *E));
    } else if (e == 1.0) {
        // Meeus eq. 34.1: W = 3k/√(2q³)·(t − T).
        const double w = 3.0 * kGaussK / std::sqrt(2.0 * qAU * qAU * qAU) * days;
        const double s = SolveBarker(w);
        place.trueAnomalyRad = 2.0 * std::atan(s);
        place.radiusAU = qAU * (1.0 + s * s);
    } else {
        const double a = qAU / (e - 1.0);
        const double n = kGaussK / (a * std::sqrt(a));
        const std::optional<double> H = SolveKeplerHyperbolic(n * days, e);
        if (!H) return std::nullopt;
        const double s = std::sinh(0.5 * *H);
        // r = a(e cosh H − 1) = q + 2ae sinh²(H/2).
        place.radiusAU = qAU + 2.0 * a * e * s * s;
        place.trueAnomalyRad = 2.0 * std::atan(std::sqrt((e + 1.0) / (e - 1.0)) * std::tanh(0.5 * *H));
    }
    if (!std::isfinite(place.radiusAU) || !std::isfinite(place.trueAnomalyRad)) return std::nullopt;
    return place;
}

namespace {

// The Gaussian vectors P and Q in J2000 equatorial coordinates from ω, Ω, i
// on the J2000 ecliptic (Meeus ch. 33, the rotation to the equator written
// out): P = R_x(−ε) R_z(−Ω) R_x(−i) R_z(−ω) x̂, Q likewise with ŷ.
void GaussianVectors(double omegaDeg, double nodeDeg, double inclDeg, Vector3& p, Vector3& q)
{
    const double w = omegaDeg * kDegToRad, node = nodeDeg * kDegToRad, incl = inclDeg * kDegToRad;
    const double cw = std::cos(w), sw = std::sin(w), cn = std::cos(node), sn = std::sin(node);
    const double ci = std::cos(incl), si = std::sin(incl);
    // Ecliptic components.
    const double px = cw * cn - sw * sn * ci, py = cw * sn + sw * cn * ci, pz = sw * si;
    const double qx = -sw * cn - cw * sn * ci, qy = -sw * sn + cw * cn * ci, qz = cw * si;
    p = {px, py * kCosObliquityJ2000 - pz * kSinObliquityJ2000, py * kSinObliquityJ2000 + pz * kCosObliquityJ2000};
    q = {qx, qy * kCosObliquityJ2000 - qz * kSinObliquityJ2000, qy * kSinObliquityJ2000 + qz * kCosObliquityJ2000};
}

bool Finite(std::initializer_list<double> values)
{
    return std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
}

}  // namespace

std::optional<TwoBodyOrbit> OrbitFromPerihelion(double qAU, double e, double perihelionJdTT, double argPerihelionDeg,
                                                double nodeDeg, double inclinationDeg)
{
    if (!Finite({qAU, e, perihelionJdTT, argPerihelionDeg, nodeDeg, inclinationDeg}) || qAU <= 0.0 || e < 0.0)
        return std::nullopt;
    TwoBodyOrbit o;
    o.qAU = qAU;
    o.e = e;
    o.perihelionJdTT = perihelionJdTT;
    GaussianVectors(argPerihelionDeg, nodeDeg, inclinationDeg, o.p, o.q);
    return o;
}

std::optional<TwoBodyOrbit> OrbitFromMeanAnomaly(double meanAnomalyDeg, double epochJdTT, double aAU, double e,
                                                 double argPerihelionDeg, double nodeDeg, double inclinationDeg)
{
    if (!Finite({meanAnomalyDeg, epochJdTT, aAU, e, argPerihelionDeg, nodeDeg, inclinationDeg}) || aAU <= 0.0 ||
        e < 0.0 || e >= 1.0)
        return std::nullopt;
    TwoBodyOrbit o;
    o.qAU = aAU * (1.0 - e);
    o.e = e;
    o.fromMeanAnomaly = true;
    o.epochJdTT = epochJdTT;
    o.meanMotionRadPerDay = kGaussK / (aAU * std::sqrt(aAU));
    double m = std::remainder(meanAnomalyDeg, 360.0) * kDegToRad;
    o.meanAnomalyAtEpochRad = m;
    o.perihelionJdTT = epochJdTT - m / o.meanMotionRadPerDay;
    GaussianVectors(argPerihelionDeg, nodeDeg, inclinationDeg, o.p, o.q);
    return o;
}

bool HeliocentricJ2000(const TwoBodyOrbit& orbit, double jdTT, Vector3& r, ConicPlace* out)
{
    if (!std::isfinite(jdTT)) return false;
    ConicPlace place;
    if (orbit.fromMeanAnomaly) {
        const double e = orbit.e;
        const double m = orbit.meanAnomalyAtEpochRad + orbit.meanMotionRadPerDay * (jdTT - orbit.epochJdTT);
        const std::optional<double> E = SolveKeplerElliptic(m, e);
        if (!E) return false;
        const double a = orbit.qAU / (1.0 - e);
        const double s = std::sin(0.5 * *E), c = std::cos(0.5 * *E);
        place.radiusAU = orbit.qAU + 2.0 * a * e * s * s;
        place.trueAnomalyRad = 2.0 * std::atan2(std::sqrt(1.0 + e) * s, std::sqrt(1.0 - e) * c);
    } else {
        const std::optional<ConicPlace> p = ConicPlaceAt(orbit.qAU, orbit.e, jdTT - orbit.perihelionJdTT);
        if (!p) return false;
        place = *p;
    }
    const double x = place.radiusAU * std::cos(place.trueAnomalyRad);
    const double y = place.radiusAU * std::sin(place.trueAnomalyRad);
    r = {x * orbit.p.x + y * orbit.q.x, x * orbit.p.y + y * orbit.q.y, x * orbit.p.z + y * orbit.q.z};
    if (out) *out = place;
    return true;
}

double AsteroidMagnitudeHG(double h, double g, double r, double delta, double beta)
{
    if (!Finite({h, g, r, delta, beta}) || r <= 0.0 || delta <= 0.0) return kNaN;
    const double t = std::tan(0.5 * std::clamp(std::fabs(beta), 0.0, kPi * 0.999999));
    const double phi1 = std::exp(-3.33 * std::pow(t, 0.63));
    const double phi2 = std::exp(-1.87 * std::pow(t, 1.22));
    const double phase = (1.0 - g) * phi1 + g * phi2;
    if (!(phase > 0.0)) return kNaN;
    return h + 5.0 * std::log10(r * delta) - 2.5 * std::log10(phase);
}

double CometMagnitudeGK(double g, double k, double r, double delta)
{
    if (!Finite({g, k, r, delta}) || r <= 0.0 || delta <= 0.0) return kNaN;
    return g + 5.0 * std::log10(delta) + 2.5 * k * std::log10(r);
}

std::int16_t MagnitudeCenti(double m)
{
    if (!std::isfinite(m)) return 9999;
    // To the nearest hundredth, halves away from zero, the same on both sides
    // of zero: adding 0.5 and truncating would store −2.00 as −1.99 and
    // brighten every negative magnitude by up to 0.01.
    const double centi = std::round(m * 100.0);
    return static_cast<std::int16_t>(std::clamp(centi, -32767.0, 32767.0));
}

}  // namespace orv
