// Reading and writing the blocks of a map file, and the table-driven
// settings that most blocks are made of.
//
// A map file is raw little-endian fields one after another without framing:
// every block's reader consumes exactly what its writer produced. Readers of
// blocks that changed between file versions ask the reader for the version of
// the file being read.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "util/binaryio.h"
#include "util/settingsstore.h"

namespace orv {

// The version this program writes.
inline constexpr int kMapFileVersion = 10;

class CMapFileReader {
public:
    CMapFileReader(std::span<const std::uint8_t> bytes, int version) : m_bytes(bytes), m_version(version) {}
    CByteReader& Bytes() { return m_bytes; }
    int Version() const { return m_version; }

private:
    CByteReader m_bytes;
    int m_version;
};

// One integer setting of a settings object T: its key in the settings store,
// the member it lives in, and its default.
template <typename T>
struct IntSetting {
    const char* key;
    int T::*member;
    int defaultValue;
};

template <typename T>
void ResetIntSettings(T& object, std::span<const IntSetting<T>> fields)
{
    for (const auto& f : fields) object.*(f.member) = f.defaultValue;
}

template <typename T>
void LoadIntSettings(const CSettingsStore& store, std::string_view section, T& object,
                     std::span<const IntSetting<T>> fields)
{
    for (const auto& f : fields) object.*(f.member) = store.GetInt(section, f.key, f.defaultValue);
}

template <typename T>
void SaveIntSettings(CSettingsStore& store, std::string_view section, const T& object,
                     std::span<const IntSetting<T>> fields)
{
    for (const auto& f : fields) store.SetInt(section, f.key, object.*(f.member));
}

// Each field as an i16, in table order.
template <typename T>
void WriteI16Fields(CByteWriter& out, const T& object, std::span<const IntSetting<T>> fields)
{
    for (const auto& f : fields) out.I16(static_cast<std::int16_t>(object.*(f.member)));
}

template <typename T>
void ReadI16Fields(CByteReader& in, T& object, std::span<const IntSetting<T>> fields)
{
    for (const auto& f : fields) in.I16Into(object.*(f.member));
}

}  // namespace orv
