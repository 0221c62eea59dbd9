#include "satellite/sattables.h"

#include <cmath>
#include <cstdio>
#include <span>

#include "satellite/sattime.h"
#include "util/angles.h"
#include "util/atomicfile.h"

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
    table.headings = {"Time",
                      "Latitude",
                      "Longitude",
                      std::string("Height (") + DistanceUnitName(settings.distanceUnit) + ")",
                      std::string("Speed (") + SpeedUnitName(settings.speedUnit) + ")",
                      "Illumination"};
    for (const GroundTrackPoint& p : track.points) {
        table.rows.push_back(TableRow{{FormatTrackTime(p.jdUT, localOffsetHours), FormatLatitude(p.latitudeRad),
                                       FormatLongitude(p.longitudeRad),
                                       Format("%7.1lf", ConvertDistance(p.heightKm, settings.distanceUnit)),
                                       Format("%.3lf", ConvertSpeed(p.speedKmPerS, settings.speedUnit)),
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
    if (all) table.headings.push_back("Satellite");
    const std::vector<std::string> columns = {"Time",
                                              "Altitude",
                                              "Azimuth",
                                              std::string("Range (") + DistanceUnitName(settings.distanceUnit) + ")",
                                              std::string("Rate (") + DistanceUnitName(settings.distanceUnit) + "/s)",
                                              "Illumination"};
    table.headings.insert(table.headings.end(), columns.begin(), columns.end());

    auto addPoint = [&](const SatellitePass& pass, const PassPoint& p) {
        TableRow row;
        if (all && pass.satelliteIndex >= 0 && pass.satelliteIndex < static_cast<int>(records.size()))
            row.cells.push_back(records[static_cast<std::size_t>(pass.satelliteIndex)].name);
        else if (all)
            row.cells.emplace_back();
        row.cells.push_back(FormatPassTime(p.jdUT, localOffsetHours));
        row.cells.push_back(Format("%4.1lf\xC2\xB0", p.elevationRad * kDegPerRad));
        row.cells.push_back(Format("%5.1lf\xC2\xB0", p.azimuthRad * kDegPerRad));
        row.cells.push_back(Format("%.3lf", ConvertDistance(p.rangeKm, settings.distanceUnit)));
        row.cells.push_back(Format("%.3lf", ConvertDistance(p.rangeRateKmPerS, settings.distanceUnit)));
        row.cells.push_back(IlluminationName(p.illumination));
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

std::string TableText(const SatelliteTable& table, LineEnding ending)
{
    const char* eol = ending == LineEnding::CrLf ? "\r\n" : "\n";
    std::string text = table.title + eol + eol;
    for (const TableRow& row : table.rows) {
        for (std::size_t i = 0; i < row.cells.size(); ++i) {
            if (i > 0) text += '\t';
            text += row.cells[i];
        }
        text += eol;
    }
    return text;
}

std::optional<std::string> SaveTableReport(const SatelliteTable& table, const std::string& path)
{
    const std::string text = TableText(table, LineEnding::Lf);
    const AtomicWriteResult written = WriteFileAtomically(
        path, std::span<const std::uint8_t>(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    if (!written.ok) return CannotCreateFileMessage(path);
    return std::nullopt;
}

}  // namespace orv::sat
