#include "satellite/satsettings.h"

#include <cstdio>
#include <string>

#include "util/settingsstore.h"

namespace orv::sat {

namespace {

// Highest column number read back for the list layouts.
constexpr int kMaxColumns = 16;
// International mile and nautical mile, km.
constexpr double kKmPerMile = 1.609344;
constexpr double kKmPerNauticalMile = 1.852;

template <typename Enum>
Enum ReadEnum(const CSettingsStore& store, const char* key, Enum defaultValue, int highest)
{
    const int v = store.GetInt(kEarthSatSection, key, static_cast<int>(defaultValue));
    return v >= 0 && v <= highest ? static_cast<Enum>(v) : defaultValue;
}

// A value beyond the dialogs' own limits comes from a damaged file, and
// would make a walk of billions of steps: the default is taken instead.
int ReadPositive(const CSettingsStore& store, const char* key, int defaultValue, int maximum)
{
    const int v = store.GetInt(kEarthSatSection, key, defaultValue);
    return v > 0 && v <= maximum ? v : defaultValue;
}

void ReadColumns(const CSettingsStore& store, const char* pattern, std::map<int, std::pair<int, int>>& out)
{
    out.clear();
    for (int i = 0; i < kMaxColumns; ++i) {
        char key[32];
        std::snprintf(key, sizeof key, pattern, i);
        const auto text = store.ReadString(kEarthSatSection, key);
        if (!text) continue;
        int a = 0, b = 0;
        if (std::sscanf(text->c_str(), "%d %d", &a, &b) == 2) out[i] = {a, b};
    }
}

void WriteColumns(CSettingsStore& store, const char* pattern, const std::map<int, std::pair<int, int>>& columns)
{
    for (const auto& [i, layout] : columns) {
        char key[32], value[32];
        std::snprintf(key, sizeof key, pattern, i);
        std::snprintf(value, sizeof value, "%d %d", layout.first, layout.second);
        store.SetString(kEarthSatSection, key, value);
    }
}

}  // namespace

void CEarthSatSettings::Load(const CSettingsStore& store)
{
    const CEarthSatSettings d;
    tleFile = store.GetString(kEarthSatSection, "TLEFile", "");
    groundTrackDuration = ReadEnum(store, "GTDuration", d.groundTrackDuration, 1);
    groundTrackLengthMin = ReadPositive(store, "GTLength", d.groundTrackLengthMin, 14 * 1440);
    groundTrackIntervalMin = ReadPositive(store, "GTInterval", d.groundTrackIntervalMin, 1440);
    passDurationDays = ReadPositive(store, "PassDuration", d.passDurationDays, 365);
    passPositionIntervalSec = ReadPositive(store, "PassPosInterval", d.passPositionIntervalSec, 3600);
    passVisibility = ReadEnum(store, "PassVisiblePasses", d.passVisibility, 1);
    passMinAltitude = ReadEnum(store, "PassMinAltFlag", d.passMinAltitude, 1);
    passMinAltitudeDeg = store.GetInt(kEarthSatSection, "PassMinAlt", d.passMinAltitudeDeg);
    passScope = ReadEnum(store, "PassOption", d.passScope, 1);
    passDisplay = ReadEnum(store, "PassDisplayOption", d.passDisplay, 1);
    passLabelIntervalSec = ReadPositive(store, "PassDisplayInterval", d.passLabelIntervalSec, 3600);
    speedUnit = ReadEnum(store, "SatSpeed", d.speedUnit, 3);
    distanceUnit = ReadEnum(store, "SatDistance", d.distanceUnit, 2);
    epochAgeLimitDays = store.GetInt(kEarthSatSection, "SatAge", d.epochAgeLimitDays);
    if (epochAgeLimitDays < 0) epochAgeLimitDays = d.epochAgeLimitDays;
    epochAgeWarning = ReadEnum(store, "SatAgeWarn", d.epochAgeWarning, 1);
    ReadColumns(store, "GndTrkCol%d", groundTrackColumns);
    ReadColumns(store, "PassCol%d", passColumns);
}

void CEarthSatSettings::Save(CSettingsStore& store) const
{
    store.SetString(kEarthSatSection, "TLEFile", tleFile);
    store.SetInt(kEarthSatSection, "GTDuration", static_cast<int>(groundTrackDuration));
    store.SetInt(kEarthSatSection, "GTLength", groundTrackLengthMin);
    store.SetInt(kEarthSatSection, "GTInterval", groundTrackIntervalMin);
    store.SetInt(kEarthSatSection, "PassDuration", passDurationDays);
    store.SetInt(kEarthSatSection, "PassPosInterval", passPositionIntervalSec);
    store.SetInt(kEarthSatSection, "PassVisiblePasses", static_cast<int>(passVisibility));
    store.SetInt(kEarthSatSection, "PassMinAltFlag", static_cast<int>(passMinAltitude));
    store.SetInt(kEarthSatSection, "PassMinAlt", passMinAltitudeDeg);
    store.SetInt(kEarthSatSection, "PassOption", static_cast<int>(passScope));
    store.SetInt(kEarthSatSection, "PassDisplayOption", static_cast<int>(passDisplay));
    store.SetInt(kEarthSatSection, "PassDisplayInterval", passLabelIntervalSec);
    store.SetInt(kEarthSatSection, "SatSpeed", static_cast<int>(speedUnit));
    store.SetInt(kEarthSatSection, "SatDistance", static_cast<int>(distanceUnit));
    store.SetInt(kEarthSatSection, "SatAge", epochAgeLimitDays);
    store.SetInt(kEarthSatSection, "SatAgeWarn", static_cast<int>(epochAgeWarning));
    WriteColumns(store, "GndTrkCol%d", groundTrackColumns);
    WriteColumns(store, "PassCol%d", passColumns);
}

double ConvertSpeed(double kmPerSecond, SpeedUnit unit)
{
    switch (unit) {
    case SpeedUnit::KilometresPerSecond: return kmPerSecond;
    case SpeedUnit::KilometresPerHour: return kmPerSecond * 3600.0;
    case SpeedUnit::MilesPerSecond: return kmPerSecond / kKmPerMile;
    case SpeedUnit::MilesPerHour: return kmPerSecond * 3600.0 / kKmPerMile;
    }
    return kmPerSecond;
}

double ConvertDistance(double km, DistanceUnit unit)
{
    switch (unit) {
    case DistanceUnit::Kilometres: return km;
    case DistanceUnit::Miles: return km / kKmPerMile;
    case DistanceUnit::NauticalMiles: return km / kKmPerNauticalMile;
    }
    return km;
}

const char* SpeedUnitName(SpeedUnit unit)
{
    switch (unit) {
    case SpeedUnit::KilometresPerSecond: return "km/s";
    case SpeedUnit::KilometresPerHour: return "km/h";
    case SpeedUnit::MilesPerSecond: return "miles/s";
    case SpeedUnit::MilesPerHour: return "mph";
    }
    return "";
}

const char* DistanceUnitName(DistanceUnit unit)
{
    switch (unit) {
    case DistanceUnit::Kilometres: return "km";
    case DistanceUnit::Miles: return "miles";
    case DistanceUnit::NauticalMiles: return "nm";
    }
    return "";
}

}  // namespace orv::sat
