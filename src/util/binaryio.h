// Little-endian binary fields, as every Orvane file stores them.
//
// LoadLE/StoreLE read and write one field at an unaligned address: they are
// what the catalogue walkers use on mapped memory (a single load on x86).
// CByteWriter appends fields to a growing buffer; CByteReader reads fields
// from a span and never reads past its end: a short read leaves the target
// unchanged and sets a sticky flag that the caller may inspect.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace orv {

template <typename T>
inline T LoadLE(const void* p) noexcept
{
    static_assert(std::is_trivially_copyable_v<T>);
    T v;
    std::memcpy(&v, p, sizeof(T));
    if constexpr (std::endian::native == std::endian::big && sizeof(T) > 1) {
        auto* b = reinterpret_cast<unsigned char*>(&v);
        for (std::size_t i = 0; i < sizeof(T) / 2; ++i) std::swap(b[i], b[sizeof(T) - 1 - i]);
    }
    return v;
}

template <typename T>
inline void StoreLE(void* p, T v) noexcept
{
    static_assert(std::is_trivially_copyable_v<T>);
    if constexpr (std::endian::native == std::endian::big && sizeof(T) > 1) {
        auto* b = reinterpret_cast<unsigned char*>(&v);
        for (std::size_t i = 0; i < sizeof(T) / 2; ++i) std::swap(b[i], b[sizeof(T) - 1 - i]);
    }
    std::memcpy(p, &v, sizeof(T));
}

class CByteWriter {
public:
    void U8(std::uint8_t v) { Put(v); }
    void I8(std::int8_t v) { Put(v); }
    void I16(std::int16_t v) { Put(v); }
    void U16(std::uint16_t v) { Put(v); }
    void I32(std::int32_t v) { Put(v); }
    void U32(std::uint32_t v) { Put(v); }
    void I64(std::int64_t v) { Put(v); }
    void F32(float v) { Put(v); }
    void F64(double v) { Put(v); }
    // An i16 byte count followed by the text without terminator. Texts longer
    // than 32767 bytes are cut there.
    void CountedString(std::string_view text);
    // Exactly `width` bytes: the text cut to width − 1 bytes, then zeros.
    void FixedText(std::string_view text, std::size_t width);
    void Bytes(std::span<const std::uint8_t> bytes);

    const std::vector<std::uint8_t>& Data() const { return m_data; }
    std::vector<std::uint8_t>& Data() { return m_data; }
    std::size_t Size() const { return m_data.size(); }

private:
    template <typename T>
    void Put(T v)
    {
        const std::size_t at = m_data.size();
        m_data.resize(at + sizeof(T));
        StoreLE<T>(m_data.data() + at, v);
    }
    std::vector<std::uint8_t> m_data;
};

class CByteReader {
public:
    CByteReader() = default;
    explicit CByteReader(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    // Each returns false (and leaves `v` unchanged) when fewer bytes remain
    // than the field needs; the reader then stays at the end.
    bool U8(std::uint8_t& v) { return Get(v); }
    bool I8(std::int8_t& v) { return Get(v); }
    bool I16(std::int16_t& v) { return Get(v); }
    bool U16(std::uint16_t& v) { return Get(v); }
    bool I32(std::int32_t& v) { return Get(v); }
    bool U32(std::uint32_t& v) { return Get(v); }
    bool I64(std::int64_t& v) { return Get(v); }
    bool F32(float& v) { return Get(v); }
    bool F64(double& v) { return Get(v); }

    // Reads an i16 field into a wider integer (the in-memory type of many
    // settings is 32-bit while the file holds 16 bits).
    template <typename Int>
    bool I16Into(Int& v)
    {
        std::int16_t t;
        if (!Get(t)) return false;
        v = static_cast<Int>(t);
        return true;
    }

    // An i16 length and that many bytes; a length of 0 or less is an empty
    // text and consumes nothing more. On a short read the available bytes are
    // taken and the flag is set.
    bool CountedString(std::string& text);
    // `width` bytes; the text ends at the first zero byte.
    bool FixedText(std::string& text, std::size_t width);
    bool Skip(std::size_t count);

    std::size_t Position() const { return m_pos; }
    std::size_t Remaining() const { return m_bytes.size() - m_pos; }
    bool AtEnd() const { return m_pos >= m_bytes.size(); }
    // True once any read has asked for more bytes than remained.
    bool ShortRead() const { return m_short; }

private:
    template <typename T>
    bool Get(T& v)
    {
        if (Remaining() < sizeof(T)) {
            m_short = true;
            m_pos = m_bytes.size();
            return false;
        }
        v = LoadLE<T>(m_bytes.data() + m_pos);
        m_pos += sizeof(T);
        return true;
    }

    std::span<const std::uint8_t> m_bytes;
    std::size_t m_pos = 0;
    bool m_short = false;
};

// Reads a whole file into `out` with one read of its size (not byte by byte
// through a stream iterator, which is slow, most of all when instrumented);
// false when it cannot be opened or read.
bool ReadWholeFile(const std::string& path, std::vector<std::uint8_t>& out);

}  // namespace orv
