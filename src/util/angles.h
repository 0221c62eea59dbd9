// Angle helpers shared by every part of Orvane.
//
// Conventions: every angle in memory is in radians unless its name says
// otherwise (…Deg, …Hours, …Mas). Right ascension and azimuth are kept in
// [0, 2π).
#pragma once

#include <cstdint>
#include <numbers>
#include <string>
#include <string_view>

namespace orv {

inline constexpr double kPi = std::numbers::pi;
inline constexpr double kTwoPi = 2.0 * std::numbers::pi;
inline constexpr double kHalfPi = 0.5 * std::numbers::pi;
// Degrees per radian, written out as the map file and settings conventions use it.
inline constexpr double kDegPerRad = 57.29577951308232;
inline constexpr double kRadPerDeg = std::numbers::pi / 180.0;
inline constexpr double kRadPerArcsec = kRadPerDeg / 3600.0;
inline constexpr double kRadPerMas = kRadPerDeg / 3600000.0;
inline constexpr double kRadPerHour = std::numbers::pi / 12.0;

// Reduces an angle in radians into [0, 2π). Non-finite input is returned as is.
double mod2pi(double angleRad);

// Reduces an angle in degrees into [0, 360). Non-finite input is returned as is.
double mod360(double angleDeg);

// Great-circle distance in radians between two points given as (longitude,
// latitude) in radians, in any spherical frame. Uses the Vincenty form of the
// haversine, well conditioned at 0 and at π (Meeus, Astronomical Algorithms,
// 2nd ed., ch. 17, and the remark on small distances there).
double AngularDistance(double lon1Rad, double lat1Rad, double lon2Rad, double lat2Rad);

// Nearest integer, halves rounded away from zero (2.5 → 3, −2.5 → −3).
// Values beyond the int range saturate.
int NearestInt(double x);

// Sexagesimal split of a non-negative value: whole units, minutes and seconds,
// with the seconds rounded to `secondDecimals` and carries propagated
// (so 9.99999 h never prints as 9h59m60s).
struct Sexagesimal {
    bool negative = false;
    int units = 0;
    int minutes = 0;
    double seconds = 0.0;
};
Sexagesimal SplitSexagesimal(double value, int secondDecimals);

}  // namespace orv

namespace orv {

// Parsing and printing of angles the way observers write them.
//
// Accepted forms: decimal ("83.633", "-5.39"), colon-separated
// ("5:35:17.3", "-05:23:28"), and lettered ("5h35m17.3s", "-5d23m28s",
// "-5°23′28″", "-5 23 28"). Hours are accepted only where hours are expected
// (right ascension); a bare decimal number is then taken as hours unless it
// carries a trailing "d" or "°".
enum class AngleUnit { Degrees, Hours };
// On success stores the angle in radians and returns true.
bool ParseAngle(std::string_view text, AngleUnit unit, double& angleRad);

// "05h35m17.30s" (right ascension, decimals of the seconds as given).
std::string FormatHms(double angleRad, int secondDecimals = 2);
// "+22°00′52.1″" style, with ASCII marks: "+22d00m52.1s" when asciiOnly.
std::string FormatDms(double angleRad, int secondDecimals = 1, bool asciiOnly = false);

}  // namespace orv
