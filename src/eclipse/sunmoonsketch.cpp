#include "eclipse/sunmoonsketch.h"

#include <erfa.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "solarsystem/moonseries.h"
#include "solarsystem/planets.h"
#include "util/binaryio.h"

namespace orv {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;
constexpr double kDegToRad = kPi / 180.0;
constexpr double kArcsecToRad = kPi / 648000.0;
constexpr double kJ2000 = 2451545.0;

// One term of the lunar block: amplitude and argument φ0 + φ1 T + φ2 T² +
// φ3 T³ + φ4 T⁴, here in radians (the block's degrees and scale factors
// folded in). The argument is not reduced to a circle first: at 40
// centuries it is some 10⁵ radians, where a double still holds it to 1e-11.
struct SketchTerm {
    double amplitude;
    double phi[5];
};

// The twelve tables of the block, each cut to its terms that can reach
// 0.5″ (longitude, latitude) or 0.5 km (distance) anywhere in −2000 … +3000
// (|T| ≤ 40 centuries, where the T and T² tables weigh most): 267 of the
// block's 1,324 terms.
struct MoonSketchTables {
    std::vector<SketchTerm> table[12];
};

const MoonSketchTables& SketchTables()
{
    static const MoonSketchTables tables = [] {
        MoonSketchTables t;
        const auto block = MoonDataBlock();
        if (block.size() != kMoonDataBytes) return t;
        constexpr double kMaxT = 40.0;
        for (int i = 0; i < 12; ++i) {
            const MoonTableLayout& layout = kMoonTables[i];
            const bool distance = i >= 8;
            const int power = i % 4;  // the table multiplies T^(power − 1) for power ≥ 2
            // The weight each table's amplitudes carry in the final sum.
            double weight = 1.0;
            if (power >= 1 && !distance) weight = 1e-3;
            if (power >= 2) weight *= kMaxT;
            if (power == 3) weight *= 1e-4 * kMaxT;
            const double threshold = distance ? 0.5 : 0.5 / 3600.0;
            const std::uint8_t* p = block.data() + layout.offset;
            const std::size_t stride = static_cast<std::size_t>(layout.columns) * 8;
            for (int k = 0; k < layout.terms; ++k, p += stride) {
                SketchTerm term{};
                term.amplitude = LoadLE<double>(p);
                if (std::fabs(term.amplitude) * weight < threshold) continue;
                term.phi[0] = kDegToRad * LoadLE<double>(p + 8);
                term.phi[1] = kDegToRad * LoadLE<double>(p + 16);
                if (layout.columns == 6) {
                    term.phi[2] = kDegToRad * 1e-4 * LoadLE<double>(p + 24);
                    term.phi[3] = kDegToRad * 1e-6 * LoadLE<double>(p + 32);
                    term.phi[4] = kDegToRad * 1e-8 * LoadLE<double>(p + 40);
                }
                t.table[i].push_back(term);
            }
        }
        return t;
    }();
    return tables;
}

double SumSketch(const std::vector<SketchTerm>& terms, double t, bool cosine)
{
    double sum = 0.0;
    for (const SketchTerm& s : terms) {
        const double a = s.phi[0] + t * (s.phi[1] + t * (s.phi[2] + t * (s.phi[3] + t * s.phi[4])));
        sum += s.amplitude * (cosine ? std::cos(a) : std::sin(a));
    }
    return sum;
}

// sin δ and cos δ of a small angle (|δ| < 0.1 rad) by their series, to
// the last bit: the steps of one term's argument over the half hour
// between the samples of an eclipse are under 0.02 rad.
void SinCosSmall(double d, double& sinD, double& cosD)
{
    const double d2 = d * d;
    sinD = d * (1.0 + d2 * (-1.0 / 6.0 + d2 * (1.0 / 120.0 + d2 * (-1.0 / 5040.0 + d2 * (1.0 / 362880.0)))));
    cosD = 1.0 + d2 * (-0.5 + d2 * (1.0 / 24.0 + d2 * (-1.0 / 720.0 + d2 * (1.0 / 40320.0 - d2 / 3628800.0))));
}

// SumSketch at t − dt, t and t + dt together: one sine and cosine of each
// term's argument at t, and the angle-addition formulae for the two steps
// to its arguments at t ∓ dt (the same arguments, differenced, so that the
// three sums are those of SumSketch to rounding).
void SumSketchSpread(const std::vector<SketchTerm>& terms, double t, double dt, bool cosine, double sums[3])
{
    double before = 0.0, middle = 0.0, after = 0.0;
    const double tb = t - dt, ta = t + dt;
    for (const SketchTerm& s : terms) {
        auto argument = [&](double x) { return s.phi[0] + x * (s.phi[1] + x * (s.phi[2] + x * (s.phi[3] + x * s.phi[4]))); };
        const double a = argument(t);
        const double sa = std::sin(a), ca = std::cos(a);  // one sincos call
        double sb = 0.0, cb = 0.0, sf = 0.0, cf = 0.0;
        SinCosSmall(a - argument(tb), sb, cb);
        SinCosSmall(argument(ta) - a, sf, cf);
        if (cosine) {
            middle += s.amplitude * ca;
            before += s.amplitude * (ca * cb + sa * sb);
            after += s.amplitude * (ca * cf - sa * sf);
        } else {
            middle += s.amplitude * sa;
            before += s.amplitude * (sa * cb - ca * sb);
            after += s.amplitude * (sa * cf + ca * sf);
        }
    }
    sums[0] = before;
    sums[1] = middle;
    sums[2] = after;
}

void EclipticToEquatorial(double lonRad, double latRad, double epsRad, double& raRad, double& decRad)
{
    const double sl = std::sin(lonRad), cl = std::cos(lonRad);
    const double sb = std::sin(latRad), cb = std::cos(latRad);
    const double se = std::sin(epsRad), ce = std::cos(epsRad);
    raRad = std::atan2(sl * cb * ce - sb * se, cl * cb);
    if (raRad < 0.0) raRad += kTwoPi;
    decRad = std::asin(sb * ce + cb * se * sl);
}

double WrapPi(double a)
{
    a = std::fmod(a, kTwoPi);
    if (a > kPi) a -= kTwoPi;
    if (a < -kPi) a += kTwoPi;
    return a;
}

void EquatorialToEcliptic(double raRad, double decRad, double epsRad, double& lonRad, double& latRad)
{
    const double sa = std::sin(raRad), ca = std::cos(raRad);
    const double sd = std::sin(decRad), cd = std::cos(decRad);
    const double se = std::sin(epsRad), ce = std::cos(epsRad);
    lonRad = std::atan2(sa * cd * ce + sd * se, ca * cd);
    latRad = std::asin(sd * ce - cd * se * sa);
}

// Ecliptic places of date: Sun longitude, latitude (rad), distance (km),
// then the Moon's. The anchoring works on these: the terms the sketch
// leaves out change them slowly, whereas in right ascension and
// declination the rotation by the obliquity would turn a constant error of
// the sketch into one that changes as the Moon moves.
using Ecliptic = std::array<double, 6>;

// The Sun of the sketch into out[0..2].
void SketchSun(double T, double dPsiRad, Ecliptic& out)
{
    // The Sun: mean longitude, mean anomaly and the equation of the centre
    // (Meeus 25.2–25.5), the radius vector from the true anomaly, then the
    // aberration and the nutation as the exact Sun has them.
    const double L0 = 280.46646 + T * (36000.76983 + T * 0.0003032);
    const double M = (357.52911 + T * (35999.05029 - T * 0.0001537)) * kDegToRad;
    const double e = 0.016708634 - T * (0.000042037 + T * 0.0000001267);
    const double C = (1.914602 - T * (0.004817 + T * 0.000014)) * std::sin(M) +
                     (0.019993 - T * 0.000101) * std::sin(2.0 * M) + 0.000289 * std::sin(3.0 * M);
    const double rAU = 1.000001018 * (1.0 - e * e) / (1.0 + e * std::cos(M + C * kDegToRad));
    out[0] = (L0 + C) * kDegToRad + dPsiRad - 20.4898 * kArcsecToRad / rAU;
    out[1] = 0.0;
    out[2] = rAU * kAstronomicalUnitKmIAU2012;
}

// The Moon of the sketch from the twelve sums, into out[3..5]: the block's
// formula over its largest terms.
void SketchMoon(double T, double dPsiRad, const double s[12], Ecliptic& out)
{
    const double w1 = 218.31665 + T * (481267.88134 + T * (-0.00132681 + T * (1.8561e-6 - T * 1.5341e-8)));
    const double lon = w1 + s[0] + 1e-3 * (s[1] + T * (s[2] + 1e-4 * T * s[3]));
    const double lat = s[4] + 1e-3 * (s[5] + T * (s[6] + 1e-4 * T * s[7]));
    out[3] = std::fmod(lon, 360.0) * kDegToRad + dPsiRad;
    out[4] = lat * kDegToRad;
    out[5] = s[8] + s[9] + T * (s[10] + 1e-4 * T * s[11]) + 385000.57;
}

Ecliptic SketchEcliptic(double jdTT, double dPsiRad)
{
    Ecliptic out{};
    const double T = (jdTT - kJ2000) / 36525.0;
    SketchSun(T, dPsiRad, out);
    const MoonSketchTables& tab = SketchTables();
    double s[12];
    for (int i = 0; i < 12; ++i) s[i] = SumSketch(tab.table[i], T, i >= 8);
    SketchMoon(T, dPsiRad, s, out);
    return out;
}

// The sketch at jdTT − stepDays, jdTT and jdTT + stepDays (the instants
// written as jdTT + (−1.0) stepDays and jdTT + 1.0 stepDays).
void SketchEclipticSpread(double jdTT, double stepDays, double dPsiRad, Ecliptic out[3])
{
    const double jd[3] = {jdTT + (-1.0) * stepDays, jdTT, jdTT + 1.0 * stepDays};
    double T[3];
    for (int k = 0; k < 3; ++k) {
        T[k] = (jd[k] - kJ2000) / 36525.0;
        out[k] = Ecliptic{};
        SketchSun(T[k], dPsiRad, out[k]);
    }
    const MoonSketchTables& tab = SketchTables();
    double s[3][12];
    for (int i = 0; i < 12; ++i) {
        double sums[3];
        SumSketchSpread(tab.table[i], T[1], stepDays / 36525.0, i >= 8, sums);
        for (int k = 0; k < 3; ++k) s[k][i] = sums[k];
    }
    for (int k = 0; k < 3; ++k) SketchMoon(T[k], dPsiRad, s[k], out[k]);
}

SunMoonPlaces ToEquatorial(const Ecliptic& c, double epsRad)
{
    SunMoonPlaces p;
    EclipticToEquatorial(c[0], c[1], epsRad, p.sunRaRad, p.sunDecRad);
    p.sunDistanceKm = c[2];
    EclipticToEquatorial(c[3], c[4], epsRad, p.moonRaRad, p.moonDecRad);
    p.moonDistanceKm = c[5];
    return p;
}

Ecliptic ToEcliptic(const SunMoonPlaces& p, double epsRad)
{
    Ecliptic c{};
    EquatorialToEcliptic(p.sunRaRad, p.sunDecRad, epsRad, c[0], c[1]);
    c[2] = p.sunDistanceKm;
    EquatorialToEcliptic(p.moonRaRad, p.moonDecRad, epsRad, c[3], c[4]);
    c[5] = p.moonDistanceKm;
    return c;
}

}  // namespace

SunMoonPlaces SunMoonSketch(double jdTT, double dPsiRad, double trueObliquityRad)
{
    return ToEquatorial(SketchEcliptic(jdTT, dPsiRad), trueObliquityRad);
}

bool CAnchoredSunMoon::Anchor(const double* jdTT, int count) { return AnchorWith(jdTT, count, SunSeries::Full, 0.0); }

bool CAnchoredSunMoon::AnchorQuickSun(double jdTT) { return AnchorWith(&jdTT, 1, SunSeries::Largest, 0.0); }

bool CAnchoredSunMoon::AnchorWithNeighbours(double jdTT, double stepDays, SunSeries sun)
{
    return AnchorWith(&jdTT, 1, sun, stepDays);
}

bool CAnchoredSunMoon::AnchorWith(const double* jdTT, int count, SunSeries sun, double stepDays)
{
    if (count < 1 || count > 3) return false;
    m_count = count;
    m_haveNeighbours = false;
    for (int i = 0; i < count; ++i) {
        const auto n = static_cast<std::size_t>(i);
        m_jd[n] = jdTT[i];
        if (!SunMoonAtSeries(jdTT[i], m_exact[n], sun)) return false;
        if (i == 0) {
            // The sketch takes the nutation at the first anchor: the exact
            // places' own when they were taken at that very instant (they
            // usually were: the first anchor starts an eclipse), else anew.
            const SunMoonNutation last = LastSunMoonNutation();
            if (last.jdTT == jdTT[0]) {
                m_dPsi = last.dPsiRad;
                m_eps = last.trueObliquityRad;
            } else {
                double dEps = 0.0;
                eraNut00b(kJ2000, jdTT[0] - kJ2000, &m_dPsi, &dEps);
                m_eps = eraObl06(kJ2000, jdTT[0] - kJ2000) + dEps;
            }
        }
        const Ecliptic exact = ToEcliptic(m_exact[n], m_eps);
        Ecliptic spread[3];
        if (stepDays > 0.0)
            SketchEclipticSpread(jdTT[i], stepDays, m_dPsi, spread);
        else
            spread[1] = SketchEcliptic(jdTT[i], m_dPsi);
        const Ecliptic& sketch = spread[1];
        for (std::size_t c = 0; c < 6; ++c) {
            const double d = exact[c] - sketch[c];
            m_diff[n][c] = (c == 0 || c == 3) ? WrapPi(d) : d;
        }
        if (stepDays > 0.0) {
            // The neighbours anchored as At would anchor them (one anchor:
            // the difference is constant).
            for (int side = 0; side < 2; ++side) {
                Ecliptic c = spread[side == 0 ? 0 : 2];
                for (std::size_t k = 0; k < 6; ++k) c[k] += m_diff[0][k];
                m_neighbours[static_cast<std::size_t>(side)] = ToEquatorial(c, m_eps);
            }
            m_neighbourJd[0] = jdTT[0] + (-1.0) * stepDays;
            m_neighbourJd[1] = jdTT[0] + 1.0 * stepDays;
            m_haveNeighbours = true;
        }
    }
    return true;
}

void CAnchoredSunMoon::SketchOnly(double jdTT)
{
    m_count = 0;
    m_haveNeighbours = false;
    double dEps = 0.0;
    eraNut00b(kJ2000, jdTT - kJ2000, &m_dPsi, &dEps);
    m_eps = eraObl06(kJ2000, jdTT - kJ2000) + dEps;
}

SunMoonPlaces CAnchoredSunMoon::At(double jdTT) const
{
    if (m_haveNeighbours) {
        if (jdTT == m_neighbourJd[0]) return m_neighbours[0];
        if (jdTT == m_neighbourJd[1]) return m_neighbours[1];
    }
    // Lagrange's interpolation of the differences through the anchors.
    double w[3] = {1.0, 0.0, 0.0};
    for (int i = 0; i < m_count; ++i) {
        double wi = 1.0;
        for (int j = 0; j < m_count; ++j)
            if (j != i)
                wi *= (jdTT - m_jd[static_cast<std::size_t>(j)]) /
                      (m_jd[static_cast<std::size_t>(i)] - m_jd[static_cast<std::size_t>(j)]);
        w[i] = wi;
    }
    Ecliptic c = SketchEcliptic(jdTT, m_dPsi);
    for (std::size_t k = 0; k < 6; ++k)
        for (int i = 0; i < m_count; ++i) c[k] += w[i] * m_diff[static_cast<std::size_t>(i)][k];
    return ToEquatorial(c, m_eps);
}

}  // namespace orv
