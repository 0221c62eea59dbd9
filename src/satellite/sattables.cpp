#include "satellite/sattables.h"

#include <cmath>
#include <cstdio>

#include "satellite/sattime.h"
#include "util/angles.h"

namespace orv::sat {

namespace {

std::string Format(const char* format, auto... args)
{
    char buf[256];
    std::snprintf(buf, sizeof buf, format, args...);
    return buf;
}

std::string FormatDms(double angleRad, int degreeDigits, char positive, char negative)
{
    if (!std::isfinite(angleRad)) return "-";
    const Sexagesimal s = SplitSexagesimal(std::fabs(angleRad) * kDegPerRad, 0);
    const char hemisphere = angleRad < 0.0 && (s.units != 0 || s.minutes != 0 || s.seconds != 0.0) ? negative : positive;
    return Format("%0*d\xC2\xB0%02d'%02d\"%c", degreeDigits, s.units, s.minutes, static_cast<int>(s.seconds), hemisphere);
}

// Machine-readable names carry the unit: "heightKm", "rangeRateMiPerS".
std::string DistanceKeySuffix(DistanceUnit unit)
{
    switch (unit) {
    case DistanceUnit::Kilometres: return "Km";
    case DistanceUnit::Miles: return "Mi";
    case DistanceUnit::NauticalMiles: return "Nmi";
    }
    return "";
}

std::string SpeedKeySuffix(SpeedUnit unit)
{
    switch (unit) {
    case SpeedUnit::KilometresPerSecond: return "KmPerS";
    case SpeedUnit::KilometresPerHour: return "KmPerH";
    case SpeedUnit::MilesPerSecond: return "MiPerS";
    case SpeedUnit::MilesPerHour: return "MiPerH";
    }
    return "";
}

// The time column: the site's civil time shown, the Julian date (UT) kept.
ResultColumn TimeColumn(const char* sample, const char* datePattern)
{
    return {"Time", "jdUT", "d", CellAlign::Left, sample, datePattern,
            {"The date and time of the position, in the site's civil time;", "the value is the Julian date (UT)."}};
}

ResultColumn IlluminationColumn()
{
    return {"Illumination", "illumination", "", CellAlign::Left, "Penumbra  ", {},
            {"Sunlit, Penumbra or Umbra: the satellite in sunlight or in the Earth's shadow."}};
}

std::string DateRange(double startJd, double endJd, double offset)
{
    return FormatTitleDate(startJd, offset) + " to " + FormatTitleDate(endJd, offset);
}

}  // namespace

std::string FormatTrackTime(double jdUT, double localOffsetHours)
{
    const SatCivilTime t = SatCivilFromJulianDate(jdUT + localOffsetHours / 24.0);
    return Format("%02d %s %4d %02d:%02d", t.day, MonthAbbreviation(t.month), t.year, t.hour, t.minute);
}

std::string FormatPassTime(double jdUT, double localOffsetHours)
{
    const SatCivilTime t = SatCivilFromJulianDate(jdUT + localOffsetHours / 24.0);
    return Format("%02d %s %4d %02d:%02d:%02d", t.day, MonthAbbreviation(t.month), t.year, t.hour, t.minute, t.second);
}

std::string FormatLatitude(double latitudeRad) { return FormatDms(latitudeRad, 2, 'N', 'S'); }
std::string FormatLongitude(double longitudeRad) { return FormatDms(longitudeRad, 3, 'E', 'W'); }

const char* IlluminationName(Illumination illumination)
{
    switch (illumination) {
    case Illumination::Sunlit: return "Sunlit";
    case Illumination::Penumbra: return "Penumbra";
    case Illumination::Umbra: return "Umbra";
    }
    return "";
}

std::string FormatTitleDate(double jdUT, double localOffsetHours)
{
    const SatCivilTime t = SatCivilFromJulianDate(jdUT + localOffsetHours / 24.0);
    return Format("%d %s %d", t.day, MonthAbbreviation(t.month), t.year);
}

SatelliteTable MakeGroundTrackTable(const SatelliteRecord& record, const GroundTrackResult& track,
                                    const CEarthSatSettings& settings, double localOffsetHours)
{
    SatelliteTable table;
    const double start = track.points.empty() ? track.endJdUT : track.points.front().jdUT;
    table.title = "Ground track of " + record.name + " " + DateRange(start, track.endJdUT, localOffsetHours);
    table.timeBase = TimeBaseText(localOffsetHours);
    const char* distance = DistanceUnitName(settings.distanceUnit);
    const char* speed = SpeedUnitName(settings.speedUnit);
    table.columns = {
        TimeColumn("00 May 0000 00:00  ", "DD MMM YYYY hh:mm"),
        {"Latitude", "latitudeDeg", "deg", CellAlign::Left, "00\xC2\xB0" "00'00\"N  ", {},
         {"Geodetic latitude of the point below the satellite (WGS 72)."}},
        {"Longitude", "longitudeDeg", "deg", CellAlign::Left, "000\xC2\xB0" "00'00\"W  ", {},
         {"Longitude of the point below the satellite, east positive."}},
        {std::string("Height (") + distance + ")", "height" + DistanceKeySuffix(settings.distanceUnit), distance,
         CellAlign::Right, "99999.9  ", {}, {"Height of the satellite above the ellipsoid."}},
        {std::string("Speed (") + speed + ")", "speed" + SpeedKeySuffix(settings.speedUnit), speed, CellAlign::Right,
         "99999.999  ", {}, {"Speed of the satellite in the TEME frame (inertial)."}},
        IlluminationColumn()};
    for (const GroundTrackPoint& p : track.points) {
        const double height = ConvertDistance(p.heightKm, settings.distanceUnit);
        const double v = ConvertSpeed(p.speedKmPerS, settings.speedUnit);
        table.rows.push_back(TableRow{{ResultCell::Number(p.jdUT, FormatTrackTime(p.jdUT, localOffsetHours)),
                                       ResultCell::Number(p.latitudeRad * kDegPerRad, FormatLatitude(p.latitudeRad)),
                                       ResultCell::Number(p.longitudeRad * kDegPerRad, FormatLongitude(p.longitudeRad)),
                                       ResultCell::Number(height, Format("%7.1lf", height)),
                                       ResultCell::Number(v, Format("%.3lf", v)),
                                       IlluminationName(p.illumination)}});
    }
    return table;
}

SatelliteTable MakePassTable(const std::vector<SatelliteRecord>& records, const PassSearchResult& result,
                             const CEarthSatSettings& settings, PassScope scope, double localOffsetHours)
{
    SatelliteTable table;
    const bool visible = settings.passVisibility == PassVisibility::VisibleOnly;
    const bool all = scope == PassScope::AllSatellites;
    std::string title = visible ? "Visible passes" : "Passes";
    if (!all) {
        const std::string name =
            result.passes.empty() || result.passes.front().satelliteIndex >= static_cast<int>(records.size())
                ? (records.size() == 1 ? records.front().name : std::string())
                : records[static_cast<std::size_t>(result.passes.front().satelliteIndex)].name;
        title += " of " + name;
    }
    table.title = title + " " + DateRange(result.startJdUT, result.endJdUT, localOffsetHours);
    table.timeBase = TimeBaseText(localOffsetHours);
    if (all) table.columns.push_back({"Satellite", "satellite", "", CellAlign::Left, "", {}, {"Name of the satellite."}});
    const char* distance = DistanceUnitName(settings.distanceUnit);
    const std::string distanceKey = DistanceKeySuffix(settings.distanceUnit);
    const std::vector<ResultColumn> columns = {
        TimeColumn("00 May 0000 00:00:00  ", "DD MMM YYYY hh:mm:ss"),
        // The pass table's columns are sized from these samples and headings.
        {"Altitude", "altitudeDeg", "deg", CellAlign::Right, "99.9\xC2\xB0  ", {},
         {"Altitude above the horizon, with refraction."}},
        {"Azimuth", "azimuthDeg", "deg", CellAlign::Right, "999.9\xC2\xB0  ", {},
         {"Azimuth from north through east."}},
        {std::string("Range (") + distance + ")", "range" + distanceKey, distance, CellAlign::Right, "Range", {},
         {"Distance from the site to the satellite."}},
        {std::string("Rate (") + distance + "/s)", "rangeRate" + distanceKey + "PerS", std::string(distance) + "/s",
         CellAlign::Right, "Rate", {}, {"Rate of change of the range; negative while the satellite approaches."}},
        IlluminationColumn()};
    table.columns.insert(table.columns.end(), columns.begin(), columns.end());

    auto addPoint = [&](const SatellitePass& pass, const PassPoint& p) {
        TableRow row;
        if (all && pass.satelliteIndex >= 0 && pass.satelliteIndex < static_cast<int>(records.size()))
            row.cells.emplace_back(records[static_cast<std::size_t>(pass.satelliteIndex)].name);
        else if (all)
            row.cells.emplace_back();
        const double altitudeDeg = p.elevationRad * kDegPerRad, azimuthDeg = p.azimuthRad * kDegPerRad;
        const double range = ConvertDistance(p.rangeKm, settings.distanceUnit);
        const double rate = ConvertDistance(p.rangeRateKmPerS, settings.distanceUnit);
        row.cells.push_back(ResultCell::Number(p.jdUT, FormatPassTime(p.jdUT, localOffsetHours)));
        row.cells.push_back(ResultCell::Number(altitudeDeg, Format("%4.1lf\xC2\xB0", altitudeDeg)));
        row.cells.push_back(ResultCell::Number(azimuthDeg, Format("%5.1lf\xC2\xB0", azimuthDeg)));
        row.cells.push_back(ResultCell::Number(range, Format("%.3lf", range)));
        row.cells.push_back(ResultCell::Number(rate, Format("%.3lf", rate)));
        row.cells.emplace_back(IlluminationName(p.illumination));
        table.rows.push_back(std::move(row));
    };

    bool first = true;
    for (const SatellitePass& pass : result.passes) {
        if (pass.display != SatellitePass::Display::Shown || pass.points.empty()) continue;
        if (!first) table.rows.push_back(TableRow{});
        first = false;
        if (settings.passDisplay == PassDisplay::Full) {
            for (const PassPoint& p : pass.points) addPoint(pass, p);
            continue;
        }
        const std::size_t last = pass.points.size() - 1;
        addPoint(pass, pass.points.front());
        if (pass.maxElevationIndex != 0 && pass.maxElevationIndex != last)
            addPoint(pass, pass.points[pass.maxElevationIndex]);
        if (last != 0) addPoint(pass, pass.points[last]);
    }
    return table;
}

std::vector<std::string> TooManyPointsNotices(const std::vector<SatelliteRecord>& records,
                                              const PassSearchResult& result)
{
    std::vector<std::string> out;
    for (const SatellitePass& pass : result.passes) {
        if (pass.display != SatellitePass::Display::TooManyPoints) continue;
        const std::string name = pass.satelliteIndex >= 0 && pass.satelliteIndex < static_cast<int>(records.size())
                                     ? records[static_cast<std::size_t>(pass.satelliteIndex)].name
                                     : std::string();
        out.push_back(TooManyPointsMessage(name));
    }
    return out;
}

std::string TimeBaseText(double localOffsetHours)
{
    const int minutes = static_cast<int>(std::lround(std::fabs(localOffsetHours) * 60.0));
    if (minutes == 0) return "UT";
    std::string text = Format("UT%c%d", localOffsetHours < 0.0 ? '-' : '+', minutes / 60);
    if (minutes % 60 != 0) text += Format(":%02d", minutes % 60);
    return text;
}

}  // namespace orv::sat
