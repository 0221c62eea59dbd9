// Texts of the satellite subsystem: the element description of the "Satellite
// Orbital Elements" box, the epoch-age check and the messages the windows and
// the command line show.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "satellite/elements.h"
#include "satellite/satsettings.h"

namespace orv::sat {

// The description lines, in this order: "Name: %s", "NORAD catalog number:
// %1d", "International designator: %s", "Epoch of element set: %1d-%s-%1d
// %02d:%02d:%02d UT", "Element set number: %1d", "Drag coefficient (B*):
// %.8lf", "Inclination: %.4lf", "RA of ascending node: %.4lf", "Eccentricity:
// %.7lf", "Argument of perigee: %.4lf", "Mean anomaly: %.4lf", "Mean motion:
// %.8lf revs/day" (angles in degrees).
std::vector<std::string> DescribeElements(const SatelliteRecord& record);
// The lines joined with "\r\n", as the "&Copy" button puts them on the clipboard.
std::string ElementDescriptionClipboardText(const SatelliteRecord& record);

// Outcome of the epoch-age check: the computation may go ahead, or the user
// must be asked first because the instant is more than the allowed number of
// days from the element epoch.
struct EpochAgeCheck {
    enum class Result { Proceed, Ask };
    Result result = Result::Proceed;
    int daysRounded = 0;  // |JD − epoch| rounded to the nearest day, when asking
};

// Compares |jdUT − epoch| with `SatAge` when `SatAgeWarn` is on: more than
// the limit asks (30.01 days with the default asks, 30.0 does not).
EpochAgeCheck CheckEpochAge(const SatelliteRecord& record, double jdUT, const CEarthSatSettings& settings);

// The question of the check, %1d replaced by the rounded day count.
std::string EpochAgeQuestion(int daysRounded);

// The user's answer to the epoch-age question.
enum class EpochAgeAnswer { Yes, No };

// Messages.
inline constexpr const char* kSelectSatelliteMessage = "Please select a satellite from the list.";
// "The pass of %s has too many points to be displayed. …" for a satellite name.
std::string TooManyPointsMessage(const std::string& satelliteName);
// "Unable to create file\n" followed by the file name in quotation marks.
std::string CannotCreateFileMessage(const std::string& path);

}  // namespace orv::sat
