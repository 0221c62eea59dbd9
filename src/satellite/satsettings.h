// The satellite settings (section "EarthSat" of the settings store): what the
// ground-track and pass sheets edit, loaded when the satellite object is
// created and saved when a sheet closes with OK.
#pragma once

#include <map>
#include <string>
#include <utility>

namespace orv {
class CSettingsStore;
}

namespace orv::sat {

inline constexpr const char* kEarthSatSection = "EarthSat";

// GTDuration: how long the ground track is.
enum class GroundTrackDuration { Minutes = 0, OneOrbit = 1 };
// PassVisiblePasses: only passes in darkness with the satellite sunlit, or all.
enum class PassVisibility { AllPasses = 0, VisibleOnly = 1 };
// PassMinAltFlag.
enum class PassMinimumAltitude { Ignore = 0, Apply = 1 };
// PassOption: search the selected satellite or every satellite of the list.
enum class PassScope { SelectedSatellite = 0, AllSatellites = 1 };
// PassDisplayOption: pass table with one row per pass event or every point.
enum class PassDisplay { Summary = 0, Full = 1 };
// SatSpeed and SatDistance: display units.
enum class SpeedUnit { KilometresPerSecond = 0, KilometresPerHour = 1, MilesPerSecond = 2, MilesPerHour = 3 };
enum class DistanceUnit { Kilometres = 0, Miles = 1, NauticalMiles = 2 };
// SatAgeWarn.
enum class EpochAgeWarning { Off = 0, On = 1 };

struct CEarthSatSettings {
    std::string tleFile;                                          // TLEFile
    GroundTrackDuration groundTrackDuration = GroundTrackDuration::Minutes;  // GTDuration
    int groundTrackLengthMin = 90;                                // GTLength
    int groundTrackIntervalMin = 1;                               // GTInterval
    int passDurationDays = 10;                                    // PassDuration
    int passPositionIntervalSec = 15;                             // PassPosInterval
    PassVisibility passVisibility = PassVisibility::VisibleOnly;  // PassVisiblePasses
    PassMinimumAltitude passMinAltitude = PassMinimumAltitude::Apply;  // PassMinAltFlag
    int passMinAltitudeDeg = 10;                                  // PassMinAlt
    PassScope passScope = PassScope::SelectedSatellite;           // PassOption
    PassDisplay passDisplay = PassDisplay::Summary;               // PassDisplayOption
    int passLabelIntervalSec = 60;                                // PassDisplayInterval
    SpeedUnit speedUnit = SpeedUnit::KilometresPerSecond;         // SatSpeed
    DistanceUnit distanceUnit = DistanceUnit::Kilometres;         // SatDistance
    int epochAgeLimitDays = 30;                                   // SatAge
    EpochAgeWarning epochAgeWarning = EpochAgeWarning::On;        // SatAgeWarn
    // List column layouts, GndTrkCol%1d and PassCol%1d: two integers a column
    // (stored as text "%d %d"), by column number; absent columns keep the
    // list's own layout.
    std::map<int, std::pair<int, int>> groundTrackColumns;
    std::map<int, std::pair<int, int>> passColumns;

    // Reads every key, with the defaults above for absent or out-of-range values.
    void Load(const CSettingsStore& store);
    // Writes every key.
    void Save(CSettingsStore& store) const;
};

// Display conversions (the stored values stay in km and km/s).
double ConvertSpeed(double kmPerSecond, SpeedUnit unit);
double ConvertDistance(double km, DistanceUnit unit);
// Unit names for headings: "km/s", "km/h", "miles/s", "mph"; "km", "miles", "nm".
const char* SpeedUnitName(SpeedUnit unit);
const char* DistanceUnitName(DistanceUnit unit);

}  // namespace orv::sat
