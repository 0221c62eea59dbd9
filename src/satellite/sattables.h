// The satellite tables as the windows show them: result tables (see
// util/resulttable.h) for the ground track and the passes with the sheets'
// titles, and the text written by Save (a file) and Copy (the clipboard).
// Times are shown in the site's local civil time, UT + `localOffsetHours`;
// their cells hold the Julian date (UT) as their value.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "satellite/groundtrack.h"
#include "satellite/passes.h"
#include "satellite/satsettings.h"
#include "util/resulttable.h"

namespace orv::sat {

using SatelliteTable = ResultTable;
using TableRow = ResultRow;
using orv::LineEnding;

// Cell formats.
// "%02d %s %4d %02d:%02d" (day, month abbreviation, year, hours, minutes).
std::string FormatTrackTime(double jdUT, double localOffsetHours);
// "%02d %s %4d %02d:%02d:%02d".
std::string FormatPassTime(double jdUT, double localOffsetHours);
// Latitude: two-digit degrees, minutes and seconds with their marks and the
// hemisphere letter, "51°28'38\"N"; longitude the same with three-digit
// degrees and E or W, "000°07'39\"W".
std::string FormatLatitude(double latitudeRad);
std::string FormatLongitude(double longitudeRad);
// "Sunlit", "Penumbra", "Umbra".
const char* IlluminationName(Illumination illumination);
// "%d %b %Y", e.g. "5 Mar 2024".
std::string FormatTitleDate(double jdUT, double localOffsetHours);

// Ground-track table: Time, Latitude, Longitude, Height ("%7.1lf"), Speed
// ("%.3lf"), Illumination; height and speed in the chosen units. Title
// "Ground track of <name> <date> to <date>".
SatelliteTable MakeGroundTrackTable(const SatelliteRecord& record, const GroundTrackResult& track,
                                    const CEarthSatSettings& settings, double localOffsetHours);

// Pass table: Time, Altitude ("%4.1lf°"), Azimuth ("%5.1lf°"), Range and
// Rate ("%.3lf" in the chosen units), Illumination; for the all-satellite
// search a leading Satellite column. Summary shows each pass's first point,
// highest point and last point; Full every point; an empty row separates
// passes. Passes with too many points are left out (see TooManyPointsNotices).
// Title "Passes of <name>" / "Visible passes of <name>" (or "Passes" /
// "Visible passes" for all satellites) followed by the dates.
SatelliteTable MakePassTable(const std::vector<SatelliteRecord>& records, const PassSearchResult& result,
                             const CEarthSatSettings& settings, PassScope scope, double localOffsetHours);

// The error messages for the passes not shown because of their point count.
std::vector<std::string> TooManyPointsNotices(const std::vector<SatelliteRecord>& records,
                                              const PassSearchResult& result);

// Save: the title written with "%s\n\n", then one line a row (cells joined by
// tabs). Copy: the same with "\r\n" line ends. These are the result table's
// text report, which the satellite tables write without a heading line.
inline std::string TableText(const SatelliteTable& table, LineEnding ending) { return ReportText(table, ending); }

// Writes the Save text to `path` (replacing it atomically). Returns the
// error message "Unable to create file\n\"<path>\"" on failure.
inline std::optional<std::string> SaveTableReport(const SatelliteTable& table, const std::string& path)
{
    return SaveReport(table, path);
}

// The time base of the tables' dates for a data table: "UT", "UT-4", "UT+5:30".
std::string TimeBaseText(double localOffsetHours);

}  // namespace orv::sat
