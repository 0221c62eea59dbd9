#include "solarsystem/moonseries.h"

#include <cmath>
#include <limits>

#include "util/binaryio.h"

namespace orv {

namespace {

constexpr double kDegToRad = 0.017453292519943295;

double Mod360(double deg)
{
    const double r = std::fmod(deg, 360.0);
    return r < 0.0 ? r + 360.0 : r;
}

// Σ A·sin(argument) (or cos for the distance), in table order. Six-column
// terms: argument φ0 + φ1 T + φ2·1e-4 T² + φ3·1e-6 T³ + φ4·1e-8 T⁴ degrees;
// three-column terms: φ0 + φ1 T.
double SumTable(std::span<const std::uint8_t> block, const MoonTableLayout& table, double centuries, bool cosine)
{
    const double t = centuries;
    const double t2 = 1e-4 * t * t;
    const double t3 = 1e-6 * t * t * t;
    const double t4 = 1e-8 * t * t * t * t;
    const std::uint8_t* p = block.data() + table.offset;
    const std::size_t stride = static_cast<std::size_t>(table.columns) * 8;
    double sum = 0.0;
    for (int k = 0; k < table.terms; ++k, p += stride) {
        const double a = LoadLE<double>(p);
        double argument = LoadLE<double>(p + 8) + LoadLE<double>(p + 16) * t;
        if (table.columns == 6)
            argument += LoadLE<double>(p + 24) * t2 + LoadLE<double>(p + 32) * t3 + LoadLE<double>(p + 40) * t4;
        // Reduced by floor rather than fmod: the same turn, at a fraction of
        // the cost (the reduction was a third of an evaluation).
        argument = (argument - 360.0 * std::floor(argument * (1.0 / 360.0))) * kDegToRad;
        sum += a * (cosine ? std::cos(argument) : std::sin(argument));
    }
    return sum;
}

}  // namespace

MoonEclipticPlace EvaluateMoonBlock(std::span<const std::uint8_t> block, double jdTT)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    if (block.size() != kMoonDataBytes || !std::isfinite(jdTT)) return {nan, nan, nan};
    const double t = (jdTT - 2451545.0) * 2.7378507871321012e-5;  // Julian centuries
    double s[12];
    for (int i = 0; i < 12; ++i) s[i] = SumTable(block, kMoonTables[i], t, i >= 8);

    // The mean longitude of the Moon referred to the mean equinox of date.
    const double w1 = Mod360(218.31665 + t * (481267.88134 + t * (-0.00132681 + t * (1.8561e-6 - t * 1.5341e-8))));
    double lon = w1 + s[0] + 1e-3 * (s[1] + t * (s[2] + 1e-4 * t * s[3]));
    double lat = s[4] + 1e-3 * (s[5] + t * (s[6] + 1e-4 * t * s[7]));
    // The distance's secondary series are in km without the 1e-3 factor.
    const double distance = s[8] + s[9] + t * (s[10] + 1e-4 * t * s[11]) + 385000.57;
    // Small fixed corrections of the longitude and latitude (degrees).
    lon += -0.00019524 - 1.059e-5 * std::sin((225.0 + 477198.9 * t) * kDegToRad);
    lat += -1.754e-5 * std::sin((183.3 + 483202.0 * t) * kDegToRad);
    return {Mod360(lon), lat, distance};
}

}  // namespace orv
