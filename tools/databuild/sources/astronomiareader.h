// Reader of the series carried by the npm package "astronomia" (MIT licence),
// which ships the published planetary and lunar theories as JavaScript object
// literals:
//   data/vsop87D<planet>.js  the full VSOP87D series (Bretagnon & Francou
//                            1988, A&A 202, 309; CDS VI/81): heliocentric
//                            ecliptic spherical coordinates L, B (rad) and
//                            R (AU) referred to the mean ecliptic and equinox
//                            of date, each coordinate a sum over powers
//                            α = 0..5 of t^α·Σ A·cos(B + C·t), t in Julian
//                            millennia (TDB) from J2000.0;
//   data/elpMppDeFull.js     the full ELP/MPP02 lunar series in its DE405
//                            fit (Chapront & Francou 2003, A&A 404, 735):
//                            longitude V and latitude U in arcseconds, the
//                            distance r in km, each a sum over powers
//                            α = 0..3 of T^α·Σ A·sin(φ0 + φ1 T + φ2 T² +
//                            φ3 T³ + φ4 T⁴), phases in radians, T in Julian
//                            centuries from J2000.0; the mean longitude W1
//                            (rad, inertial, referred to J2000) beside them.
// The reader parses the object literal and nothing else: no script is run.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace orv::databuild {

// One VSOP87 term A·cos(B + C·t).
struct Vsop87Term {
    double a = 0.0;  // rad or AU
    double b = 0.0;  // rad
    double c = 0.0;  // rad per Julian millennium
};
// The 18 series of one planet, [coordinate L, B, R][power of t 0..5].
struct Vsop87Planet {
    std::array<std::array<std::vector<Vsop87Term>, 6>, 3> series;
};

// One ELP/MPP02 term A·sin(φ0 + φ1 T + φ2 T² + φ3 T³ + φ4 T⁴).
struct ElpTerm {
    double a = 0.0;                  // arcsec (V, U) or km (r)
    std::array<double, 5> phi{};     // rad, rad/cy, rad/cy², rad/cy³, rad/cy⁴
};
struct ElpSeries {
    std::array<double, 5> w1{};  // mean longitude, rad, rad/cy … (inertial, J2000)
    // [coordinate V, U, r][power of T 0..3]
    std::array<std::array<std::vector<ElpTerm>, 4>, 3> series;
};

// The VSOP87 planet names in the order of the package's files and of the
// body identifiers 1–8 (Mercury … Neptune, the Earth third).
inline constexpr std::array<std::string_view, 8> kVsop87PlanetFiles{
    "mercury", "venus", "earth", "mars", "jupiter", "saturn", "uranus", "neptune"};

// Parses the text of a vsop87D<planet>.js file. False with a reason in
// `error` when the literal is malformed or a term is not three finite numbers.
bool ParseVsop87DLiteral(std::string_view text, Vsop87Planet& out, std::string& error);
// Reads `packageDir`/data/vsop87D<name>.js for the eight planets, in order.
bool ReadVsop87D(const std::string& packageDir, std::array<Vsop87Planet, 8>& out, std::string& error);

// Parses the text of elpMppDeFull.js.
bool ParseElpLiteral(std::string_view text, ElpSeries& out, std::string& error);
bool ReadElpMpp02(const std::string& packageDir, ElpSeries& out, std::string& error);

}  // namespace orv::databuild
