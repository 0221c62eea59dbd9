#include "solarsystem/moonseries.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "util/binaryio.h"
#include "util/turntrig.h"

namespace orv {

namespace {

constexpr double kDegToRad = 0.017453292519943295;

double Mod360(double deg)
{
    const double r = std::fmod(deg, 360.0);
    return r < 0.0 ? r + 360.0 : r;
}

// One table of the block decoded for summation: the amplitudes and the
// argument's polynomial coefficients in turns per power of T (centuries),
// the block's 1e-4, 1e-6 and 1e-8 scale factors folded in.
struct DecodedTable {
    std::vector<double> amplitude;
    std::vector<double> c0, c1, c2, c3, c4;  // c2–c4 empty for three-column tables
};

struct DecodedBlock {
    const std::uint8_t* source = nullptr;
    DecodedTable tables[12];
};

DecodedBlock Decode(std::span<const std::uint8_t> block)
{
    constexpr double kPerDegree = 1.0 / 360.0;
    DecodedBlock decoded;
    decoded.source = block.data();
    for (int i = 0; i < 12; ++i) {
        const MoonTableLayout& layout = kMoonTables[i];
        DecodedTable& t = decoded.tables[i];
        const std::size_t n = static_cast<std::size_t>(layout.terms);
        const std::size_t stride = static_cast<std::size_t>(layout.columns) * 8;
        const std::uint8_t* p = block.data() + layout.offset;
        for (std::size_t k = 0; k < n; ++k, p += stride) {
            t.amplitude.push_back(LoadLE<double>(p));
            t.c0.push_back(LoadLE<double>(p + 8) * kPerDegree);
            t.c1.push_back(LoadLE<double>(p + 16) * kPerDegree);
            if (layout.columns == 6) {
                t.c2.push_back(LoadLE<double>(p + 24) * 1e-4 * kPerDegree);
                t.c3.push_back(LoadLE<double>(p + 32) * 1e-6 * kPerDegree);
                t.c4.push_back(LoadLE<double>(p + 40) * 1e-8 * kPerDegree);
            }
        }
    }
    return decoded;
}

// The block compiled into the program, decoded once; any other block (the
// data builder's, a test's) is decoded at each call.
const DecodedBlock& BuiltInDecoded()
{
    static const DecodedBlock decoded = Decode(MoonDataBlock());
    return decoded;
}

// Σ A·sin(argument) (or cos for the distance), four terms at a time, and
// with `rate` its derivative in the table's unit per century. Six-column terms:
// argument φ0 + φ1 T + φ2·1e-4 T² + φ3·1e-6 T³ + φ4·1e-8 T⁴ degrees;
// three-column terms: φ0 + φ1 T. The arguments are formed in turns and
// reduced exactly (util/turntrig.h), which is what reducing degrees with
// mod360 achieves, at a fraction of the cost of a library sine per term.
__attribute__((always_inline)) inline void Load4(Double4& v, const double* p) { std::memcpy(&v, p, sizeof v); }

// Built twice, for AVX2 (four terms per instruction) and for the x86-64
// baseline (two), the processor's own choosing the one to run.
__attribute__((target_clones("avx2", "default"))) double SumTableWide(const DecodedTable& t, double centuries,
                                                                      bool cosine, double* rate)
{
    constexpr double kTwoPi = 6.283185307179586476925286766559;
    const double T = centuries;
    const std::size_t n = t.amplitude.size();
    const double* a = t.amplitude.data();
    const double* c0 = t.c0.data();
    const double* c1 = t.c1.data();
    const bool sixColumns = !t.c2.empty();
    const double* c2 = t.c2.data();
    const double* c3 = t.c3.data();
    const double* c4 = t.c4.data();
    // Four terms at a time, then the few left.
    Double4 sum4 = {0.0, 0.0, 0.0, 0.0}, derivative4 = {0.0, 0.0, 0.0, 0.0};
    std::size_t k = 0;
    for (; k + 3 < n; k += 4) {
        Double4 p0, p1, turns, turnsPerCentury;
        Load4(p0, c0 + k);
        Load4(p1, c1 + k);
        if (sixColumns) {
            Double4 p2, p3, p4;
            Load4(p2, c2 + k);
            Load4(p3, c3 + k);
            Load4(p4, c4 + k);
            turns = p0 + T * (p1 + T * (p2 + T * (p3 + T * p4)));
            turnsPerCentury = p1 + T * (2.0 * p2 + T * (3.0 * p3 + T * 4.0 * p4));
        } else {
            turns = p0 + T * p1;
            turnsPerCentury = p1;
        }
        Double4 s, c, amplitude;
        SinCosTurns4(turns, s, c);
        Load4(amplitude, a + k);
        sum4 += amplitude * (cosine ? c : s);
        if (rate) derivative4 += amplitude * (cosine ? -s : c) * turnsPerCentury;
    }
    double sum = (sum4[0] + sum4[1]) + (sum4[2] + sum4[3]);
    double derivative = (derivative4[0] + derivative4[1]) + (derivative4[2] + derivative4[3]);
    for (; k < n; ++k) {
        double turns = c0[k] + T * c1[k], turnsPerCentury = c1[k];
        if (sixColumns) {
            turns = c0[k] + T * (c1[k] + T * (c2[k] + T * (c3[k] + T * c4[k])));
            turnsPerCentury = c1[k] + T * (2.0 * c2[k] + T * (3.0 * c3[k] + T * 4.0 * c4[k]));
        }
        double s, c;
        SinCosTurns(turns, s, c);
        sum += a[k] * (cosine ? c : s);
        derivative += a[k] * (cosine ? -s : c) * turnsPerCentury;
    }
    if (rate) *rate = derivative * kTwoPi;
    return sum;
}

double SumTable(const DecodedTable& t, double centuries, bool cosine, double* rate)
{
    return SumTableWide(t, centuries, cosine, rate);
}

}  // namespace

MoonEclipticPlace EvaluateMoonBlock(std::span<const std::uint8_t> block, double jdTT, MoonEclipticPlace* ratePerDay)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    if (ratePerDay) *ratePerDay = {nan, nan, nan};
    if (block.size() != kMoonDataBytes || !std::isfinite(jdTT)) return {nan, nan, nan};
    const double t = (jdTT - 2451545.0) * 2.7378507871321012e-5;  // Julian centuries
    const bool builtIn = block.data() == MoonDataBlock().data();
    const DecodedBlock own = builtIn ? DecodedBlock{} : Decode(block);
    const DecodedBlock& decoded = builtIn ? BuiltInDecoded() : own;
    double s[12], r[12];
    for (int i = 0; i < 12; ++i) s[i] = SumTable(decoded.tables[i], t, i >= 8, ratePerDay ? &r[i] : nullptr);

    // The mean longitude of the Moon referred to the mean equinox of date.
    const double w1 = Mod360(218.31665 + t * (481267.88134 + t * (-0.00132681 + t * (1.8561e-6 - t * 1.5341e-8))));
    double lon = w1 + s[0] + 1e-3 * (s[1] + t * (s[2] + 1e-4 * t * s[3]));
    double lat = s[4] + 1e-3 * (s[5] + t * (s[6] + 1e-4 * t * s[7]));
    // The distance's secondary series are in km without the 1e-3 factor.
    const double distance = s[8] + s[9] + t * (s[10] + 1e-4 * t * s[11]) + 385000.57;
    // Small fixed corrections of the longitude and latitude (degrees).
    const double lonArgument = (225.0 + 477198.9 * t) * kDegToRad;
    const double latArgument = (183.3 + 483202.0 * t) * kDegToRad;
    lon += -0.00019524 - 1.059e-5 * std::sin(lonArgument);
    lat += -1.754e-5 * std::sin(latArgument);
    if (ratePerDay) {
        // The same sums differentiated term by term (per century), then per day.
        constexpr double kCenturiesPerDay = 1.0 / 36525.0;
        const double w1Rate = 481267.88134 + t * (2.0 * -0.00132681 + t * (3.0 * 1.8561e-6 - t * 4.0 * 1.5341e-8));
        const double lonRate = w1Rate + r[0] +
                               1e-3 * (r[1] + s[2] + t * r[2] + 2e-4 * t * s[3] + 1e-4 * t * t * r[3]) -
                               1.059e-5 * std::cos(lonArgument) * 477198.9 * kDegToRad;
        const double latRate = r[4] + 1e-3 * (r[5] + s[6] + t * r[6] + 2e-4 * t * s[7] + 1e-4 * t * t * r[7]) -
                               1.754e-5 * std::cos(latArgument) * 483202.0 * kDegToRad;
        const double distanceRate = r[8] + r[9] + s[10] + t * r[10] + 2e-4 * t * s[11] + 1e-4 * t * t * r[11];
        *ratePerDay = {lonRate * kCenturiesPerDay, latRate * kCenturiesPerDay, distanceRate * kCenturiesPerDay};
    }
    return {Mod360(lon), lat, distance};
}

}  // namespace orv
