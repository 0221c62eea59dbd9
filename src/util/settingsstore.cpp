#include "util/settingsstore.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "util/angles.h"

namespace orv {

std::string FormatRealSetting(double value)
{
    char buf[512];
    std::snprintf(buf, sizeof buf, "%lf", value);
    return buf;
}

std::optional<double> ParseRealSetting(std::string_view text)
{
    const std::string s(text);
    const char* begin = s.c_str();
    char* end = nullptr;
    errno = 0;
    const double v = std::strtod(begin, &end);
    // "nan", "inf" and numbers beyond a double's range read as no number:
    // no setting of this program has a use for them, and each falls back
    // to its default.
    if (end == begin || !std::isfinite(v)) return std::nullopt;
    return v;
}

int CSettingsStore::GetInt(std::string_view section, std::string_view key, int defaultValue) const
{
    const auto v = ReadInt(section, key);
    if (!v) return defaultValue;
    // The store holds 32-bit values; wider ones wrap as they would in a
    // 32-bit registry value.
    return static_cast<int>(static_cast<std::uint32_t>(*v));
}

std::string CSettingsStore::GetString(std::string_view section, std::string_view key,
                                      std::string_view defaultValue) const
{
    auto v = ReadString(section, key);
    return v ? std::move(*v) : std::string(defaultValue);
}

double CSettingsStore::GetReal(std::string_view section, std::string_view key, double defaultValue) const
{
    const auto text = ReadString(section, key);
    if (!text) return defaultValue;
    return ParseRealSetting(*text).value_or(defaultValue);
}

void CSettingsStore::SetReal(std::string_view section, std::string_view key, double value)
{
    WriteString(section, key, FormatRealSetting(value));
}

double CSettingsStore::GetAngleDegAsRad(std::string_view section, std::string_view key, double defaultRad) const
{
    return GetReal(section, key, defaultRad * kDegPerRad) / kDegPerRad;
}

void CSettingsStore::SetAngleRadAsDeg(std::string_view section, std::string_view key, double valueRad)
{
    SetReal(section, key, valueRad * kDegPerRad);
}

namespace {
std::string Compose(std::string_view section, std::string_view key)
{
    std::string k(section);
    k.push_back('/');
    k.append(key);
    return k;
}
}  // namespace

std::optional<std::int64_t> CMemorySettingsStore::ReadInt(std::string_view section, std::string_view key) const
{
    const auto it = m_values.find(Compose(section, key));
    if (it == m_values.end()) return std::nullopt;
    char* end = nullptr;
    const long long v = std::strtoll(it->second.c_str(), &end, 10);
    if (end == it->second.c_str()) return std::nullopt;
    return v;
}

std::optional<std::string> CMemorySettingsStore::ReadString(std::string_view section, std::string_view key) const
{
    const auto it = m_values.find(Compose(section, key));
    if (it == m_values.end()) return std::nullopt;
    return it->second;
}

void CMemorySettingsStore::WriteInt(std::string_view section, std::string_view key, std::int64_t value)
{
    m_values[Compose(section, key)] = std::to_string(value);
}

void CMemorySettingsStore::WriteString(std::string_view section, std::string_view key, std::string_view value)
{
    m_values[Compose(section, key)] = std::string(value);
}

}  // namespace orv
