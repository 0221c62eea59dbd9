// The per-user settings store: named sections holding integer and string
// values.
//
// Conventions every layer follows:
//   - integers are stored as integers;
//   - real numbers are stored as text written with "%lf" (GetReal/SetReal);
//   - angles are degrees in the store and radians in memory
//     (GetAngleDegAsRad/SetAngleRadAsDeg).
//
// The desktop program keeps the store in an INI file through Qt (see
// app/qtsettingsstore.h); CMemorySettingsStore serves headless use.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace orv {

class CSettingsStore {
public:
    virtual ~CSettingsStore() = default;

    // The raw stored value, or nothing when the key is absent.
    virtual std::optional<std::int64_t> ReadInt(std::string_view section, std::string_view key) const = 0;
    virtual std::optional<std::string> ReadString(std::string_view section, std::string_view key) const = 0;
    virtual void WriteInt(std::string_view section, std::string_view key, std::int64_t value) = 0;
    virtual void WriteString(std::string_view section, std::string_view key, std::string_view value) = 0;
    virtual void Flush() {}

    int GetInt(std::string_view section, std::string_view key, int defaultValue) const;
    std::string GetString(std::string_view section, std::string_view key, std::string_view defaultValue) const;
    // Text read as a decimal number; the default when absent or not a number.
    double GetReal(std::string_view section, std::string_view key, double defaultValue) const;
    void SetInt(std::string_view section, std::string_view key, int value) { WriteInt(section, key, value); }
    void SetString(std::string_view section, std::string_view key, std::string_view value)
    {
        WriteString(section, key, value);
    }
    // Written as text with "%lf" (six decimals).
    void SetReal(std::string_view section, std::string_view key, double value);

    // Angle stored in degrees, returned in radians.
    double GetAngleDegAsRad(std::string_view section, std::string_view key, double defaultRad) const;
    void SetAngleRadAsDeg(std::string_view section, std::string_view key, double valueRad);
};

// A store held in memory only: for headless programs that must not touch the
// user's settings, and as the neutral store when none is given.
class CMemorySettingsStore final : public CSettingsStore {
public:
    std::optional<std::int64_t> ReadInt(std::string_view section, std::string_view key) const override;
    std::optional<std::string> ReadString(std::string_view section, std::string_view key) const override;
    void WriteInt(std::string_view section, std::string_view key, std::int64_t value) override;
    void WriteString(std::string_view section, std::string_view key, std::string_view value) override;

private:
    // Values are kept as text, the way an INI file holds them.
    std::map<std::string, std::string, std::less<>> m_values;
};

// Formats a double with "%lf", the text form of every real setting.
std::string FormatRealSetting(double value);
// Parses a real setting; nothing when the text holds no finite number.
std::optional<double> ParseRealSetting(std::string_view text);

}  // namespace orv
