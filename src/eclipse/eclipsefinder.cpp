#include "eclipse/eclipsefinder.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <limits>
#include <thread>

#include "eclipse/eclipsegeometry.h"
#include "eclipse/sunmoonsketch.h"
#include "observer/observer.h"

namespace orv {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegToRad = kPi / 180.0;
constexpr double kSynodicMonthDays = 29.530588861;

// Meeus, Astronomical Algorithms 2nd ed., ch. 49 and 54: the instant of a
// new (k integer) or full (k + 0.5) moon corrected towards the instant of
// greatest eclipse, and the Moon's argument of latitude F. A first guess
// only (a few minutes); the ephemeris decides.
// Meeus's gamma and u (ch. 54) give a first verdict: the shadow axis's
// least distance from the Earth's centre in Earth radii and the umbra's
// radius on the fundamental plane, good to a few thousandths.
struct SyzygyGuess {
    double jdTT;
    double argumentOfLatitudeRad;
    double gamma;
    double u;
};
SyzygyGuess MeeusSyzygy(double k, bool solar)
{
    const double T = k / 1236.85;
    const double T2 = T * T, T3 = T2 * T, T4 = T3 * T;
    const double jde = 2451550.09766 + kSynodicMonthDays * k + 0.00015437 * T2 - 0.000000150 * T3 + 0.00000000073 * T4;
    const double M = (2.5534 + 29.10535670 * k - 0.0000014 * T2 - 0.00000011 * T3) * kDegToRad;
    const double Mp = (201.5643 + 385.81693528 * k + 0.0107582 * T2 + 0.00001238 * T3 - 0.000000058 * T4) * kDegToRad;
    const double F = (160.7108 + 390.67050284 * k - 0.0016118 * T2 - 0.00000227 * T3 + 0.000000011 * T4) * kDegToRad;
    const double Om = (124.7746 - 1.56375588 * k + 0.0020672 * T2 + 0.00000215 * T3) * kDegToRad;
    const double E = 1.0 - 0.002516 * T - 0.0000074 * T2;
    const double F1 = F - 0.02665 * kDegToRad * std::sin(Om);
    const double A1 = (299.77 + 0.107408 * k - 0.009173 * T2) * kDegToRad;
    double c = solar ? -0.4075 * std::sin(Mp) + 0.1721 * E * std::sin(M)
                     : -0.4065 * std::sin(Mp) + 0.1727 * E * std::sin(M);
    c += 0.0161 * std::sin(2 * Mp) - 0.0097 * std::sin(2 * F1) + 0.0073 * E * std::sin(Mp - M) -
         0.0050 * E * std::sin(Mp + M) - 0.0023 * std::sin(Mp - 2 * F1) + 0.0021 * E * std::sin(2 * M) +
         0.0012 * std::sin(Mp + 2 * F1) + 0.0006 * E * std::sin(2 * Mp + M) - 0.0004 * std::sin(3 * Mp) -
         0.0003 * E * std::sin(M + 2 * F1) + 0.0003 * std::sin(A1) - 0.0002 * E * std::sin(M - 2 * F1) -
         0.0002 * E * std::sin(2 * Mp - M) - 0.0002 * std::sin(Om);
    const double P = 0.2070 * E * std::sin(M) + 0.0024 * E * std::sin(2 * M) - 0.0392 * std::sin(Mp) +
                     0.0116 * std::sin(2 * Mp) - 0.0073 * E * std::sin(Mp + M) + 0.0067 * E * std::sin(Mp - M) +
                     0.0118 * std::sin(2 * F1);
    const double Q = 5.2207 - 0.0048 * E * std::cos(M) + 0.0020 * E * std::cos(2 * M) - 0.3299 * std::cos(Mp) -
                     0.0060 * E * std::cos(Mp + M) + 0.0041 * E * std::cos(Mp - M);
    const double W = std::fabs(std::cos(F1));
    const double gamma = (P * std::cos(F1) + Q * std::sin(F1)) * (1.0 - 0.0048 * W);
    const double u = 0.0059 + 0.0046 * E * std::cos(M) - 0.0182 * std::cos(Mp) + 0.0004 * std::cos(2 * Mp) -
                     0.0005 * std::cos(M + Mp);
    return {jde + c, F, gamma, u};
}

// Meeus's verdict with a margin for its own error and for the difference
// between his constants and ours (his lunar limit is Chauvenet's larger
// shadow): false only for syzygies that surely bring no eclipse. Solar: the
// penumbra misses the Earth when |γ| > 1.5433 + u; lunar: the Moon misses
// the penumbra when |γ| > 1.5573 + u.
constexpr double kMeeusGammaMargin = 0.03;
bool MayBeEclipse(const SyzygyGuess& g, bool solar)
{
    if (std::fabs(std::sin(g.argumentOfLatitudeRad)) > 0.37) return false;
    const double limit = (solar ? 1.5433 : 1.5573) + g.u + kMeeusGammaMargin;
    return std::fabs(g.gamma) < limit;
}

// The half-span of the three samples about an anchor: wide enough for the
// quadratic fit to reach a minimum two hours away, narrow enough for its
// error (from the motion's cubic term) to stay far below a second.
constexpr double kStepDays = 0.02;
// An anchor farther than this from the minimum found is moved there and the
// exact places evaluated again (the anchored places drift from the exact
// ones by well under 0.1″ over five minutes).
constexpr double kReanchorDays = 5.0 / 1440.0;

// Quadratic interpolation of three samples at −h, 0, +h to t.
double Interpolate(double a, double b, double c, double t, double h)
{
    const double u = t / h;
    return b + 0.5 * u * (c - a) + 0.5 * u * u * (c - 2.0 * b + a);
}

// Greatest eclipse by a quadratic fit of three samples of the anchored
// Sun and Moon (sunmoonsketch.h) about an anchor, the first at the guess:
// normally one exact evaluation settles it; when the minimum lies more than
// five minutes from the anchor, the anchor moves there. `Sample` turns
// places into a geometry record; `xy` reads its two plane coordinates.
template <class Record, class SampleFn, class XyFn>
bool Refine(double guess, SunSeries sun, SampleFn sample, XyFn xy, double& jdBest, LeastDistance& best,
            std::array<Record, 3>& recs)
{
    double centre = guess;
    CAnchoredSunMoon model;
    for (int iter = 0; iter < 6; ++iter) {
        if (!model.AnchorWithNeighbours(centre, kStepDays, sun)) return false;
        std::array<double, 3> xs{}, ys{};
        for (std::size_t i = 0; i < 3; ++i) {
            const double jd = centre + (static_cast<double>(i) - 1.0) * kStepDays;
            recs[i] = sample(i == 1 ? model.Exact(0) : model.At(jd));
            xy(recs[i], xs[i], ys[i]);
        }
        best = LeastDistanceQuadratic(xs, ys, kStepDays);
        jdBest = centre + best.t;
        if (std::fabs(best.t) < kReanchorDays) return true;
        centre = jdBest;
    }
    return true;
}

// An eclipse computed at one grade of the ephemeris, with how near its
// recorded values lie to an edge where they would change: the instant to
// the half minute it is rounded at, the magnitude to the half hundredth,
// and each quantity its type was decided on to its threshold. When a quick
// computation finds every edge farther than its own error can reach, the
// exact one would give the same record.
constexpr double kNoEdge = std::numeric_limits<double>::infinity();
struct Computed {
    std::optional<EclipseEvent> event;
    bool ephemerisFailed = false;
    // Each edge is infinite where nothing depends on it (a syzygy with no
    // eclipse has no instant or magnitude to record; a lunar eclipse no
    // fundamental plane).
    double minuteEdgeSeconds = kNoEdge;     // the instant's distance from the half minute it rounds at, s
    double magnitudeEdge = kNoEdge;         // magnitude (solar) or magnitudes (lunar) from a rounding or type edge
    double planeEdgeEarthRadii = kNoEdge;   // solar: the type's quantities on the fundamental plane from their thresholds
};

double MinuteEdgeSeconds(double jdTT)
{
    const double minutes = (jdTT - 0.5) * 1440.0;
    return 60.0 * std::fabs(minutes - std::floor(minutes) - 0.5);
}

// The stored magnitude is lround(100 m), capped at 255.
double MagnitudeRoundingEdge(double magnitude)
{
    const double h = magnitude * 100.0;
    if (h > 255.5) return h / 100.0 - 2.555;
    return std::fabs(h - std::floor(h) - 0.5) / 100.0;
}

// The least distance from a point (x, y) outside the ellipse
// x² + (y/ρ)² = 1 to it: Newton's iteration on the eccentric angle θ of the
// nearest point (cos θ, ρ sin θ), where the line to (x, y) is normal to the
// ellipse, from the angle the point has on the scaled plane.
double DistanceOutsideEllipse(double x, double y, double rho)
{
    const double k = rho * rho - 1.0;
    double theta = std::atan2(y / rho, x);
    for (int iter = 0; iter < 8; ++iter) {
        const double s = std::sin(theta), c = std::cos(theta);
        const double f = x * s - y * rho * c + k * s * c;
        const double fd = x * c + y * rho * s + k * (c * c - s * s);
        if (!(fd > 0.0)) break;
        const double step = f / fd;
        theta -= step;
        if (std::fabs(step) < 1e-14) break;
    }
    return std::hypot(x - std::cos(theta), y - rho * std::sin(theta));
}

// l2 at the two ends of the central path: the instants before and after
// tMid (days from the samples' middle, inside the path) where the axis,
// fitted by quadratics through the three samples, leaves the unit circle of
// the scaled plane. The fit, made over ±29 minutes, holds to some 1e-4
// Earth radii three hours out, which moves an end by a second of time and
// its l2 by 1e-8.
void PathEnds(const std::array<BesselianInstant, 3>& r, const std::array<double, 3>& ys1, double tMid, double l2Ends[2])
{
    auto outside = [&](double t) {
        const double x = Interpolate(r[0].x, r[1].x, r[2].x, t, kStepDays);
        const double y = Interpolate(ys1[0], ys1[1], ys1[2], t, kStepDays);
        return x * x + y * y >= 1.0;
    };
    constexpr double kReachDays = 4.0 / 24.0;
    for (int side = 0; side < 2; ++side) {
        const double dir = side == 0 ? -1.0 : 1.0;
        double inside = tMid, beyond = tMid + dir * kReachDays;
        if (!outside(beyond)) continue;  // not reached within four hours: keep the middle's l2
        for (int i = 0; i < 40; ++i) {
            const double m = 0.5 * (inside + beyond);
            (outside(m) ? beyond : inside) = m;
        }
        l2Ends[side] = Interpolate(r[0].l2, r[1].l2, r[2].l2, inside, kStepDays);
    }
}

Computed SolarAt(double guess, SunSeries sun)
{
    Computed out;
    auto sample = [](const SunMoonPlaces& p) { return BesselianFromPlaces(p, 0.0); };
    // The Earth's outline on the fundamental plane is an ellipse of
    // semi-axes 1 and ρ1 (Explanatory Supplement 8.3): y1 = y/ρ1 makes it
    // the unit circle. The least distance is taken to the centre (gamma);
    // whether the axis meets the Earth is decided on the scaled plane.
    double jd = 0.0;
    LeastDistance least;
    std::array<BesselianInstant, 3> r{};
    if (!Refine(guess, sun, sample, [](const BesselianInstant& b, double& x, double& y) { x = b.x; y = b.y; }, jd,
                least, r)) {
        out.ephemerisFailed = true;
        return out;
    }
    const double t = least.t;
    const double l1 = Interpolate(r[0].l1, r[1].l1, r[2].l1, t, kStepDays);
    const double l2 = Interpolate(r[0].l2, r[1].l2, r[2].l2, t, kStepDays);
    const double d = r[1].dRad;
    const double tanF1 = r[1].tanF1, tanF2 = r[1].tanF2;

    EclipseEvent e;
    e.kind = EclipseKind::Solar;
    e.jdTT = jd;
    const double gamma = std::hypot(least.x, least.y);
    e.gamma = least.y < 0.0 ? -gamma : gamma;

    const double e2 = kEclipseEarthFlattening * (2.0 - kEclipseEarthFlattening);
    const double rho1 = std::sqrt(1.0 - e2 * std::cos(d) * std::cos(d));
    std::array<double, 3> ys1{r[0].y / rho1, r[1].y / rho1, r[2].y / rho1};
    const LeastDistance scaled = LeastDistanceQuadratic({r[0].x, r[1].x, r[2].x}, ys1, kStepDays);
    const double r1 = std::hypot(scaled.x, scaled.y);

    double plane = std::fabs(r1 - 1.0);
    if (r1 < 1.0) {
        // Central: on the axis at the Earth's surface the umbra's radius is
        // L2 = l2 − ζ tan f2; negative L2 is total. At the two ends of the
        // central path, where the axis meets the Earth's limb (ζ = 0), it is
        // l2 itself, taken at those instants: l2 drifts by some 1e-4 Earth
        // radii an hour with the Moon's distance, and the ends lie one to
        // three hours from greatest eclipse. Total at greatest eclipse and
        // at both ends is a total eclipse; annular at greatest eclipse, an
        // annular one (the axis nears the Earth's surface towards the
        // middle of the path, so an annular middle has annular ends);
        // total in the middle and annular at an end, a hybrid one.
        const double zeta = std::sqrt(std::max(0.0, 1.0 - r1 * r1));
        const double L1 = l1 - zeta * tanF1;
        const double L2 = l2 - zeta * tanF2;
        double l2Ends[2] = {l2, l2};
        PathEnds(r, ys1, scaled.t, l2Ends);
        if (L2 < 0.0)
            e.type = l2Ends[0] < 0.0 && l2Ends[1] < 0.0 ? 'T' : 'H';
        else
            e.type = 'A';
        e.magnitude = (L1 - L2) / (L1 + L2);
        out.planeEdgeEarthRadii = std::min({plane, std::fabs(L2), std::fabs(l2Ends[0]), std::fabs(l2Ends[1])});
        out.magnitudeEdge = MagnitudeRoundingEdge(e.magnitude);
        out.minuteEdgeSeconds = MinuteEdgeSeconds(jd);
        out.event = e;
        return out;
    }
    // Not central: the nearest point of the Earth's limb, where ζ = 0 and
    // the radii are l1 and l2, lies m from the axis at greatest eclipse.
    // Measured on the fundamental plane itself, to the ellipse of semi-axes
    // 1 and ρ1 (r1 − 1, measured on the scaled plane, is up to 0.2% of an
    // Earth radius longer near the poles, where partial eclipses fall, and
    // made their magnitudes 0.002–0.003 smaller than the canons').
    const double m = DistanceOutsideEllipse(least.x, least.y, rho1);
    plane = std::min(plane, std::fabs(m - l1));
    out.planeEdgeEarthRadii = plane;
    if (m >= l1) return out;  // the penumbra misses the Earth
    e.magnitude = (l1 - m) / (l1 + l2);
    out.planeEdgeEarthRadii = std::min({plane, std::fabs(m - std::fabs(l2)), std::fabs(l2)});
    out.magnitudeEdge = MagnitudeRoundingEdge(e.magnitude);
    out.minuteEdgeSeconds = MinuteEdgeSeconds(jd);
    if (m < std::fabs(l2))
        e.type = l2 < 0.0 ? 'T' : 'A';  // the umbra touches the Earth, its axis does not
    else
        e.type = 'P';
    out.event = e;
    return out;
}

Computed LunarAt(double guess, SunSeries sun)
{
    Computed out;
    auto sample = [](const SunMoonPlaces& p) { return LunarShadowFromPlaces(p); };
    double jd = 0.0;
    LeastDistance least;
    std::array<LunarShadowInstant, 3> r{};
    if (!Refine(guess, sun, sample,
                [](const LunarShadowInstant& s, double& x, double& y) { x = s.xRad; y = s.yRad; }, jd, least, r)) {
        out.ephemerisFailed = true;
        return out;
    }
    const double t = least.t;
    const double sm = Interpolate(r[0].moonSemidiameterRad, r[1].moonSemidiameterRad, r[2].moonSemidiameterRad, t,
                                  kStepDays);
    const double rp = Interpolate(r[0].penumbraRadiusRad, r[1].penumbraRadiusRad, r[2].penumbraRadiusRad, t, kStepDays);
    const double ru = Interpolate(r[0].umbraRadiusRad, r[1].umbraRadiusRad, r[2].umbraRadiusRad, t, kStepDays);
    const double km = Interpolate(r[0].moonDistanceKm, r[1].moonDistanceKm, r[2].moonDistanceKm, t, kStepDays);
    const double dist = std::hypot(least.x, least.y);
    EclipseEvent e;
    e.kind = EclipseKind::Lunar;
    e.jdTT = jd;
    e.penumbralMagnitude = (rp + sm - dist) / (2.0 * sm);
    e.magnitude = (ru + sm - dist) / (2.0 * sm);
    const double gamma = std::sin(dist) * km / kEclipseEarthRadiusKm;
    e.gamma = least.y < 0.0 ? -gamma : gamma;
    out.magnitudeEdge = std::min({std::fabs(e.magnitude - 1.0), std::fabs(e.magnitude), std::fabs(e.penumbralMagnitude)});
    if (e.magnitude >= 1.0)
        e.type = 'T';
    else if (e.magnitude > 0.0)
        e.type = 'P';
    else if (e.penumbralMagnitude > 0.0)
        e.type = 'N';
    else
        return out;
    out.magnitudeEdge = std::min(out.magnitudeEdge,
                                 MagnitudeRoundingEdge(e.type == 'N' ? e.penumbralMagnitude : e.magnitude));
    out.minuteEdgeSeconds = MinuteEdgeSeconds(jd);
    out.event = e;
    return out;
}

// The eclipse at a syzygy for the tables: computed with the quick Sun,
// and again with the exact places when an edge lies within the quick Sun's
// reach (the bounds below: at least twice the largest difference between
// the two grades over the 23,950 eclipses of −1999 … +3000).
// Largest differences quick − exact over −1999 … +3000 (at −1000 … 0,
// where the omitted VSOP87 terms of power t and t² weigh most): 0.75 s in
// the instant, 9.2e-5 in a magnitude, 3.5e-5 Earth radii on the
// fundamental plane; no type changed. With the Earth's 903 larger terms
// (SunSeries::Larger): 0.13 s, 1.7e-5 and 6.2e-6. The bounds are twice
// those.
constexpr double kQuickMinuteBoundSeconds = 1.5;
constexpr double kQuickMagnitudeBound = 2.0e-4;
constexpr double kQuickPlaneBoundEarthRadii = 8.0e-5;
constexpr double kFinerMinuteBoundSeconds = 0.26;
constexpr double kFinerMagnitudeBound = 3.5e-5;
constexpr double kFinerPlaneBoundEarthRadii = 1.3e-5;

// Whether every edge of `c` (and the span's ends [jdStart, jdEnd)) lies
// beyond the bounds of the grade it was computed at.
bool ClearOfEdges(const Computed& c, double jdStart, double jdEnd, double minuteBoundSeconds, double magnitudeBound,
                  double planeBound)
{
    const double boundDays = minuteBoundSeconds / 86400.0;
    const bool nearEnd = c.event && (std::fabs(c.event->jdTT - jdStart) < boundDays ||
                                     std::fabs(c.event->jdTT - jdEnd) < boundDays);
    return c.minuteEdgeSeconds > minuteBoundSeconds && c.magnitudeEdge > magnitudeBound &&
           c.planeEdgeEarthRadii > planeBound && !nearEnd;
}

// The eclipse at a syzygy for the tables: computed with the quick Sun; where
// an edge lies within its reach, again with the Earth's larger terms; where
// one lies within theirs, with the exact places. `finerCount` and
// `exactCount` count the second and third computations.
std::optional<EclipseEvent> EclipseAtGuess(double guessJdTT, bool solar, double jdStart, double jdEnd, long& finerCount,
                                           long& exactCount)
{
    auto compute = [&](SunSeries sun) { return solar ? SolarAt(guessJdTT, sun) : LunarAt(guessJdTT, sun); };
    const Computed quick = compute(SunSeries::Largest);
    if (quick.ephemerisFailed) return std::nullopt;
    if (ClearOfEdges(quick, jdStart, jdEnd, kQuickMinuteBoundSeconds, kQuickMagnitudeBound, kQuickPlaneBoundEarthRadii))
        return quick.event;
    ++finerCount;
    const Computed finer = compute(SunSeries::Larger);
    if (!finer.ephemerisFailed &&
        ClearOfEdges(finer, jdStart, jdEnd, kFinerMinuteBoundSeconds, kFinerMagnitudeBound, kFinerPlaneBoundEarthRadii))
        return finer.event;
    ++exactCount;
    return compute(SunSeries::Full).event;
}

}  // namespace

EclipseList FindEclipses(int firstYear, int lastYear, EclipseKinds kinds, const EclipseProgressFn& progress)
{
    EclipseList list;
    SunMoonPlaces probe;
    if (!SunMoonAt(2451545.0, probe)) {
        list.ephemerisMissing = true;
        return list;
    }
    // Outside the span the series serve the search is refused: a year of
    // a billion would be a walk of twelve billion lunations.
    if (lastYear < firstYear || firstYear < kEclipseFirstYear || lastYear > kEclipseLastYear) return list;
    const double jdStart = JulianDateFromCivil(CivilDateTime{firstYear, 1, 1, 0, 0, 0.0});
    const double jdEnd = JulianDateFromCivil(CivilDateTime{lastYear + 1, 1, 1, 0, 0, 0.0});
    const double kFirst = std::floor((jdStart - 2451550.09766) / kSynodicMonthDays) - 1.0;
    const double kLast = std::ceil((jdEnd - 2451550.09766) / kSynodicMonthDays) + 1.0;
    const bool wantSolar = kinds != EclipseKinds::Lunar;
    const bool wantLunar = kinds != EclipseKinds::Solar;

    // The lunations split into two halves computed side by side; the
    // calling thread takes the first and reports the progress (the two
    // halves go at the same pace), the other stops when it is cancelled.
    std::atomic<bool> stop{false};
    std::atomic<long> finerTotal{0}, exactTotal{0};
    auto scan = [&](double kFrom, double kTo, std::vector<EclipseEvent>& out, bool reporting) {
        long finerCount = 0, exactCount = 0;
        struct Tally {
            std::atomic<long>& total;
            long& count;
            ~Tally() { total += count; }
        } finerTally{finerTotal, finerCount}, exactTally{exactTotal, exactCount};
        int sinceReport = 0;
        for (double k = kFrom; k < kTo; k += 1.0) {
            if (stop.load(std::memory_order_relaxed)) return;
            if (reporting && progress && ++sinceReport >= 32) {
                sinceReport = 0;
                if (!progress((k - kFrom) / (kTo - kFrom))) {
                    stop = true;
                    return;
                }
            }
            for (int half = 0; half < 2; ++half) {
                const bool solar = half == 0;
                if (solar ? !wantSolar : !wantLunar) continue;
                const SyzygyGuess guess = MeeusSyzygy(k + (solar ? 0.0 : 0.5), solar);
                if (!MayBeEclipse(guess, solar)) continue;
                const std::optional<EclipseEvent> e =
                    EclipseAtGuess(guess.jdTT, solar, jdStart, jdEnd, finerCount, exactCount);
                if (!e || e->jdTT < jdStart || e->jdTT >= jdEnd) continue;
                out.push_back(*e);
            }
        }
    };
    const double kMid = std::floor(0.5 * (kFirst + kLast + 1.0));
    std::vector<EclipseEvent> second;
    if (kLast - kFirst > 200.0) {
        std::thread worker(scan, kMid, kLast + 1.0, std::ref(second), false);
        scan(kFirst, kMid, list.events, true);
        worker.join();
    } else {
        scan(kFirst, kLast + 1.0, list.events, true);
    }
    list.cancelled = stop.load();
    list.finerRecomputations = finerTotal.load();
    list.exactRecomputations = exactTotal.load();
    list.events.insert(list.events.end(), second.begin(), second.end());
    std::sort(list.events.begin(), list.events.end(),
              [](const EclipseEvent& a, const EclipseEvent& b) { return a.jdTT < b.jdTT; });
    if (progress && !list.cancelled) progress(1.0);
    return list;
}

std::optional<EclipseEvent> EclipseAtSyzygyNear(double jdTT, EclipseKind kind)
{
    if (!std::isfinite(jdTT)) return std::nullopt;
    const bool solar = kind == EclipseKind::Solar;
    const double offset = solar ? 0.0 : 0.5;
    const double k = std::round((jdTT - 2451550.09766) / kSynodicMonthDays - offset) + offset;
    const SyzygyGuess guess = MeeusSyzygy(k, solar);
    if (!MayBeEclipse(guess, solar)) return std::nullopt;
    return solar ? SolarAt(guess.jdTT, SunSeries::Full).event : LunarAt(guess.jdTT, SunSeries::Full).event;
}

}  // namespace orv
