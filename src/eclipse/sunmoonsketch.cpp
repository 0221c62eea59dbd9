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

Ecliptic SketchEcliptic(double jdTT, double dPsiRad)
{
    Ecliptic out{};
    const double T = (jdTT - kJ2000) / 36525.0;

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

    // The Moon: the block's formula over its largest terms.
    const MoonSketchTables& tab = SketchTables();
    double s[12];
    for (int i = 0; i < 12; ++i) s[i] = SumSketch(tab.table[i], T, i >= 8);
    const double w1 = 218.31665 + T * (481267.88134 + T * (-0.00132681 + T * (1.8561e-6 - T * 1.5341e-8)));
    const double lon = w1 + s[0] + 1e-3 * (s[1] + T * (s[2] + 1e-4 * T * s[3]));
    const double lat = s[4] + 1e-3 * (s[5] + T * (s[6] + 1e-4 * T * s[7]));
    out[3] = std::fmod(lon, 360.0) * kDegToRad + dPsiRad;
    out[4] = lat * kDegToRad;
    out[5] = s[8] + s[9] + T * (s[10] + 1e-4 * T * s[11]) + 385000.57;
    return out;
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

bool CAnchoredSunMoon::Anchor(const double* jdTT, int count) { return AnchorWith(jdTT, count, false); }

bool CAnchoredSunMoon::AnchorQuickSun(double jdTT) { return AnchorWith(&jdTT, 1, true); }

bool CAnchoredSunMoon::AnchorWith(const double* jdTT, int count, bool quickSun)
{
    if (count < 1 || count > 3) return false;
    m_count = count;
    for (int i = 0; i < count; ++i) {
        const auto n = static_cast<std::size_t>(i);
        m_jd[n] = jdTT[i];
        if (!(quickSun ? SunMoonAtQuickSun(jdTT[i], m_exact[n]) : SunMoonAt(jdTT[i], m_exact[n]))) return false;
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
        const Ecliptic sketch = SketchEcliptic(jdTT[i], m_dPsi);
        for (std::size_t c = 0; c < 6; ++c) {
            const double d = exact[c] - sketch[c];
            m_diff[n][c] = (c == 0 || c == 3) ? WrapPi(d) : d;
        }
    }
    return true;
}

void CAnchoredSunMoon::SketchOnly(double jdTT)
{
    m_count = 0;
    double dEps = 0.0;
    eraNut00b(kJ2000, jdTT - kJ2000, &m_dPsi, &dEps);
    m_eps = eraObl06(kJ2000, jdTT - kJ2000) + dEps;
}

SunMoonPlaces CAnchoredSunMoon::At(double jdTT) const
{
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
