#include "satellite/describe.h"

#include <cmath>
#include <cstdio>

#include "satellite/sattime.h"
#include "satellite/wgs72.h"
#include "util/angles.h"

namespace orv::sat {

namespace {

std::string Format(const char* format, auto... args)
{
    char buf[256];
    std::snprintf(buf, sizeof buf, format, args...);
    return buf;
}

}  // namespace

std::vector<std::string> DescribeElements(const SatelliteRecord& r)
{
    const SatCivilTime epoch = SatCivilFromJulianDate(r.epochJd);
    std::vector<std::string> lines;
    lines.push_back("Name: " + r.name);
    lines.push_back(Format("NORAD catalog number: %1d", r.catalogNumber));
    lines.push_back("International designator: " + r.internationalDesignator);
    lines.push_back(Format("Epoch of element set: %1d-%s-%1d %02d:%02d:%02d UT", epoch.day,
                           MonthAbbreviation(epoch.month), epoch.year, epoch.hour, epoch.minute, epoch.second));
    lines.push_back(Format("Element set number: %1d", r.elementSetNumber));
    lines.push_back(Format("Drag coefficient (B*): %.8lf", r.bstarPerEarthRadius));
    lines.push_back(Format("Inclination: %.4lf", r.inclinationRad * kDegPerRad));
    lines.push_back(Format("RA of ascending node: %.4lf", r.raanRad * kDegPerRad));
    lines.push_back(Format("Eccentricity: %.7lf", r.eccentricity));
    lines.push_back(Format("Argument of perigee: %.4lf", r.argumentOfPerigeeRad * kDegPerRad));
    lines.push_back(Format("Mean anomaly: %.4lf", r.meanAnomalyRad * kDegPerRad));
    lines.push_back(Format("Mean motion: %.8lf revs/day", r.meanMotionRadPerMin * kMinutesPerDay / kTwoPi));
    return lines;
}

std::string ElementDescriptionClipboardText(const SatelliteRecord& record)
{
    std::string text;
    for (const auto& line : DescribeElements(record)) text += line + "\r\n";
    return text;
}

EpochAgeCheck CheckEpochAge(const SatelliteRecord& record, double jdUT, const CEarthSatSettings& settings)
{
    EpochAgeCheck check;
    if (settings.epochAgeWarning == EpochAgeWarning::Off) return check;
    const double days = std::fabs(jdUT - record.epochJd);
    // A non-finite date is as far from the epoch as can be: ask.
    if (!(days <= settings.epochAgeLimitDays)) {
        check.result = EpochAgeCheck::Result::Ask;
        check.daysRounded = std::isfinite(days) ? NearestInt(days) : 0;
    }
    return check;
}

std::string EpochAgeQuestion(int daysRounded)
{
    return Format(
        "The date for which Orvane is about to calculate\n"
        "a satellite position is %1d days from the \"epoch\"\n"
        "of the orbital elements for that satellite. This may\n"
        "result in a very inaccurate position.\n"
        "\n"
        "Do you wish to proceed with the calculation?",
        daysRounded);
}

std::string TooManyPointsMessage(const std::string& satelliteName)
{
    return "The pass of " + satelliteName +
           " has too many points to be displayed.\n"
           "If this is a geostationary satellite, repeat the pass\n"
           "prediction, setting the display interval to 300 seconds\n"
           "or more, and the prediction period to 1 day.";
}

std::string CannotCreateFileMessage(const std::string& path) { return "Unable to create file\n\"" + path + "\""; }

}  // namespace orv::sat
