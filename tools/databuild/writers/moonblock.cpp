#include "writers/moonblock.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "solarsystem/moonseries.h"
#include "util/binaryio.h"

namespace orv::databuild {

namespace {

constexpr double kRadToDeg = 57.29577951308232;
constexpr double kArcsecPerDeg = 3600.0;

// Precession in longitude p_A (IAU 2006; Capitaine, Wallace & Chapront
// 2003, A&A 412, 567, eq. 39), arcseconds, T in Julian centuries TT.
double PrecessionInLongitudeArcsec(double t)
{
    return t * (5028.796195 + t * (1.1054348 + t * (0.00007964 + t * (-0.000023857 - t * 0.0000000383))));
}

double SumElp(const std::vector<ElpTerm>& terms, double t)
{
    double s = 0.0;
    for (const ElpTerm& e : terms)
        s += e.a * std::sin(e.phi[0] + t * (e.phi[1] + t * (e.phi[2] + t * (e.phi[3] + t * e.phi[4]))));
    return s;
}

// A block term: amplitude and up to five phase coefficients in the block's
// units (degrees, degrees per century; six-column terms scaled by 1e4, 1e6,
// 1e8 for T², T³, T⁴).
struct BlockTerm {
    double a = 0.0;
    std::array<double, 5> phi{};
};

BlockTerm FromElp(const ElpTerm& e, double amplitudeScale, double phaseShiftDeg)
{
    BlockTerm b;
    b.a = e.a * amplitudeScale;
    b.phi[0] = std::fmod(e.phi[0] * kRadToDeg + phaseShiftDeg, 360.0);
    b.phi[1] = e.phi[1] * kRadToDeg;
    b.phi[2] = e.phi[2] * kRadToDeg * 1e4;
    b.phi[3] = e.phi[3] * kRadToDeg * 1e6;
    b.phi[4] = e.phi[4] * kRadToDeg * 1e8;
    return b;
}

// Indexes of `terms` by decreasing amplitude, leaving out `skip` (or none).
std::vector<std::size_t> ByAmplitude(const std::vector<ElpTerm>& terms, std::size_t skip = SIZE_MAX)
{
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < terms.size(); ++i)
        if (i != skip) order.push_back(i);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return std::fabs(terms[a].a) > std::fabs(terms[b].a); });
    return order;
}

}  // namespace

void EvaluateElpOfDate(const ElpSeries& elp, double jdTT, double& lonDeg, double& latDeg, double& distanceKm)
{
    const double t = (jdTT - 2451545.0) * 2.7378507871321012e-5;
    double s[3];
    for (int c = 0; c < 3; ++c) {
        double v = 0.0;
        for (int power = 3; power >= 0; --power) v = v * t + SumElp(elp.series[c][power], t);
        s[c] = v;
    }
    const auto& w = elp.w1;
    const double w1Deg = (w[0] + t * (w[1] + t * (w[2] + t * (w[3] + t * w[4])))) * kRadToDeg;
    lonDeg = w1Deg + (s[0] + PrecessionInLongitudeArcsec(t)) / kArcsecPerDeg;
    latDeg = s[1] / kArcsecPerDeg;
    distanceKm = s[2];
}

std::vector<std::uint8_t> WriteMoonBlock(const ElpSeries& elp, MoonBlockReport& report)
{
    std::array<std::vector<BlockTerm>, 12> tables;
    // Distance: the series are summed with cosines in the block; the
    // package's sines become cosines of the phase less 90°. Its constant
    // term (zero frequency) is the block's fixed 385000.57 km.
    const std::vector<ElpTerm>& r0 = elp.series[2][0];
    std::size_t rConstant = SIZE_MAX;
    for (std::size_t i = 0; i < r0.size(); ++i)
        if (r0[i].phi[1] == 0.0 && r0[i].phi[2] == 0.0 && std::fabs(r0[i].a) > 1e5) rConstant = i;

    for (int c = 0; c < 3; ++c) {
        const double toDeg = c < 2 ? 1.0 / kArcsecPerDeg : 1.0;  // arcsec → degrees; km stay
        const double shift = c < 2 ? 0.0 : -90.0;
        const int base = c * 4;
        // The reserved adjustment terms (one in L0, L1, B1, R1).
        const int reserve0 = c == 0 ? 1 : 0;
        const int reserve1 = 1;
        const std::vector<ElpTerm>& p0 = elp.series[c][0];
        const std::vector<std::size_t> order0 = ByAmplitude(p0, c == 2 ? rConstant : SIZE_MAX);
        const std::size_t n0 = static_cast<std::size_t>(kMoonTables[base].terms - reserve0);
        const std::size_t n1 = static_cast<std::size_t>(kMoonTables[base + 1].terms - reserve1);
        // The 1e-3 factor of the secondary tables holds for longitude and
        // latitude only.
        const double scale1 = c < 2 ? 1e3 : 1.0;
        for (std::size_t k = 0; k < order0.size() && k < n0 + n1; ++k) {
            const ElpTerm& e = p0[order0[k]];
            const bool main = k < n0;
            tables[static_cast<std::size_t>(base + (main ? 0 : 1))].push_back(
                FromElp(e, toDeg * (main ? 1.0 : scale1), shift));
            report.smallestKept[base + (main ? 0 : 1)] = std::fabs(e.a);
        }
        report.seriesTerms[base] = static_cast<int>(order0.size());
        report.seriesTerms[base + 1] = static_cast<int>(order0.size());
        for (int power = 1; power <= 2; ++power) {
            const std::vector<ElpTerm>& p = elp.series[c][power];
            const std::vector<std::size_t> order = ByAmplitude(p);
            const std::size_t slot = static_cast<std::size_t>(base + power + 1);
            const std::size_t n = static_cast<std::size_t>(kMoonTables[slot].terms);
            const double scale = (c < 2 ? 1e3 : 1.0) * (power == 2 ? 1e4 : 1.0);
            for (std::size_t k = 0; k < order.size() && k < n; ++k) {
                tables[slot].push_back(FromElp(p[order[k]], toDeg * scale, shift));
                report.smallestKept[slot] = std::fabs(p[order[k]].a);
            }
            report.seriesTerms[slot] = static_cast<int>(order.size());
        }
    }
    for (int i = 0; i < 12; ++i) report.keptTerms[i] = static_cast<int>(tables[static_cast<std::size_t>(i)].size());

    // Adjustment terms. L0: D(T) = ELP W1 + p_A − (fixed W1 − 0.00019524°),
    // a polynomial of T in degrees, carried as 1°·sin(D(T)·180/π), which is
    // D(T) to within D³/6 (below 1e-10″ over ±2 centuries).
    {
        const auto& w = elp.w1;
        const double pA[5] = {0.0, 5028.796195, 1.1054348, 0.00007964, -0.000023857};
        const double fixed[5] = {218.31665 - 0.00019524, 481267.88134, -0.00132681, 1.8561e-6, -1.5341e-8};
        BlockTerm t;
        t.a = 1.0;
        double d[5];
        for (int k = 0; k < 5; ++k) d[k] = w[k] * kRadToDeg + pA[k] / kArcsecPerDeg - fixed[k];
        const double scales[5] = {1.0, 1.0, 1e4, 1e6, 1e8};
        for (int k = 0; k < 5; ++k) t.phi[k] = d[k] * kRadToDeg * scales[k];
        tables[0].push_back(t);
    }
    // L1, B1: cancel the evaluation's fixed sine corrections (in units of 1e-3°).
    tables[1].push_back({1.059e-5 * 1e3, {225.0, 477198.9, 0, 0, 0}});
    tables[5].push_back({1.754e-5 * 1e3, {183.3, 483202.0, 0, 0, 0}});
    // R1: the package's constant distance less the fixed 385000.57 km.
    {
        const double constant = rConstant == SIZE_MAX ? 385000.57 : r0[rConstant].a * std::sin(r0[rConstant].phi[0]);
        tables[9].push_back({constant - 385000.57, {0, 0, 0, 0, 0}});
    }

    CByteWriter w;
    for (int i = 0; i < 12; ++i) {
        const MoonTableLayout& layout = kMoonTables[i];
        std::vector<BlockTerm>& terms = tables[static_cast<std::size_t>(i)];
        terms.resize(static_cast<std::size_t>(layout.terms));  // a short series is padded with zero terms
        for (const BlockTerm& t : terms) {
            w.F64(t.a);
            for (int k = 0; k < layout.columns - 1; ++k) w.F64(t.phi[static_cast<std::size_t>(k)]);
        }
    }
    std::vector<std::uint8_t> bytes = std::move(w.Data());

    // The truncation's cost against the full series over 1900–2100, at
    // dates spread by a fixed irrational step (every lunar phase and
    // anomaly is visited).
    double sumSq = 0.0;
    const int samples = 4000;
    for (int k = 0; k < samples; ++k) {
        const double jd = 2415020.5 + std::fmod(k * 18.2622776601683793 * 1.000137, 73049.0);
        double lon, lat, dist;
        EvaluateElpOfDate(elp, jd, lon, lat, dist);
        const MoonEclipticPlace block = EvaluateMoonBlock(bytes, jd);
        double dl = std::remainder(block.lonDeg - lon, 360.0) * kArcsecPerDeg;
        const double db = (block.latDeg - lat) * kArcsecPerDeg;
        const double dr = block.distanceKm - dist;
        report.maxLonErrorArcsec = std::max(report.maxLonErrorArcsec, std::fabs(dl));
        report.maxLatErrorArcsec = std::max(report.maxLatErrorArcsec, std::fabs(db));
        report.maxDistanceErrorKm = std::max(report.maxDistanceErrorKm, std::fabs(dr));
        sumSq += dl * dl;
    }
    report.samples = samples;
    report.rmsLonErrorArcsec = std::sqrt(sumSq / samples);
    return bytes;
}

}  // namespace orv::databuild
