// The lunar series block "MOONDATA" built into the program (45,216 bytes of
// little-endian doubles, twelve tables; layout in docs/planet-files.md) and
// its evaluation. The block holds the largest terms of the ELP/MPP02 series
// (Chapront & Francou 2003, A&A 404, 735, DE405 fit), chosen and scaled by
// orvane-databuild; docs/moon-series.md records which terms were kept and
// the error against the full series.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace orv {

inline constexpr std::size_t kMoonDataBytes = 45216;

// The block compiled into the program.
std::span<const std::uint8_t> MoonDataBlock();

// One table of the block: byte offset, number of terms, columns (6 or 3).
struct MoonTableLayout {
    std::size_t offset;
    int terms;
    int columns;
};
// L0–L3, B0–B3, R0–R3, in block order.
inline constexpr MoonTableLayout kMoonTables[12] = {
    {0, 218, 6},     {10464, 244, 3}, {16320, 154, 3}, {20016, 25, 3},
    {20616, 188, 6}, {29640, 64, 3},  {31176, 64, 3},  {32712, 12, 3},
    {33000, 154, 6}, {40392, 114, 3}, {43128, 68, 3},  {44760, 19, 3},
};

// Geocentric ecliptic place of the Moon: longitude referred to the mean
// ecliptic and mean equinox of date (no nutation), latitude, distance.
struct MoonEclipticPlace {
    double lonDeg = 0.0;  // [0, 360)
    double latDeg = 0.0;
    double distanceKm = 0.0;
};

// Evaluates a block (normally MoonDataBlock(), decoded once and kept; any
// other block is decoded at each call) at jdTT: the geometric place, no
// light time. The block must be kMoonDataBytes long; a shorter one, or a
// non-finite date, gives NaN. With `ratePerDay` also the rates of change of
// the three coordinates, per day (degrees, degrees, km), from the same
// sines and cosines: what the light time needs, at a small extra cost.
MoonEclipticPlace EvaluateMoonBlock(std::span<const std::uint8_t> block, double jdTT,
                                    MoonEclipticPlace* ratePerDay = nullptr);

}  // namespace orv
