// The observer's real horizon: trees, roofs and hills as an altitude for
// every whole degree of azimuth, and its files.
//
// A horizon file (".hzn") is exactly 360 signed bytes, entry k the apparent
// altitude of the horizon in whole degrees at azimuth k degrees (north 0,
// east 90), entry 0 first, with no header (docs/horizon-files.md). The text
// import reads "azimuth altitude" pairs in degrees at any spacing, or a plain
// list of altitudes spread evenly round the sky (a panorama sampled in equal
// steps), and interpolates them to every degree.
//
// Every reader returns its result as a value and leaves the caller's profile
// alone unless the whole file was good.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace orv {

inline constexpr int kHorizonFileBytes = 360;

// Altitude of the horizon in whole degrees at each whole degree of azimuth.
using HorizonProfile = std::array<std::int8_t, kHorizonFileBytes>;

struct HorizonFileResult {
    bool ok = false;
    std::string message;  // the program's message when !ok, naming the file (and the line);
                          // when ok, a warning for the user, or empty
};

// Reads a ".hzn" file. A file that cannot be opened gives "Unable to open
// file\n\"%s\"" and leaves `profile` unchanged. A file of another length than
// 360 bytes is read as far as it goes (the first 360 bytes of a longer file;
// a shorter one sets its first degrees only) and `message` warns, giving its
// length.
HorizonFileResult ReadHorizonFile(const std::string& path, HorizonProfile& profile);
// The 360 bytes of a profile, replacing the file atomically; a file that
// cannot be created gives "Unable to create file\n\"%s\"".
HorizonFileResult WriteHorizonFile(const std::string& path, const HorizonProfile& profile);

// Reads a text horizon: "#" starts a comment; numbers are separated by blanks,
// tabs, commas or semicolons. Either every line holds "azimuth altitude" in
// degrees (azimuth 0–360, any order and spacing, 360 being north again), or
// every line holds altitudes only, taken as equal steps of azimuth from north
// through east. Altitudes lie within −90…+90°. The points are joined by
// straight lines in azimuth, across north from the last point back to the
// first, and sampled at every whole degree (rounded to the nearest degree).
// Errors name the file and the line: "horizon.txt, line 7: azimuth 400 is
// outside 0 to 360 degrees". `profile` changes only on success.
HorizonFileResult ImportHorizonText(const std::string& path, HorizonProfile& profile);
// The same from text already in memory (`name` is used in the messages).
HorizonFileResult ParseHorizonText(const std::string& text, const std::string& name, HorizonProfile& profile);

// Apparent altitude of the horizon, radians, at an azimuth in radians (any
// value; north 0, east π/2), linear between the whole degrees.
double HorizonAltitudeRad(const HorizonProfile& profile, double azimuthRad);

// --- Editing (the horizon editor's tools; all indices wrap round 360) --------
// Entries from azimuth `fromDeg` going east to `toDeg`, both included.
// Sets them to `altitudeDeg` (clamped to −90…90).
void FlattenHorizon(HorizonProfile& profile, int fromDeg, int toDeg, int altitudeDeg);
// A running mean over ±`halfWidthDeg` degrees, once, over the span.
void SmoothHorizon(HorizonProfile& profile, int fromDeg, int toDeg, int halfWidthDeg = 2);
// A straight line in altitude from the entry at `fromDeg` to the one at `toDeg`.
void InterpolateHorizon(HorizonProfile& profile, int fromDeg, int toDeg);

}  // namespace orv
