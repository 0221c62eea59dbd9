#include "util/binaryio.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace orv {

void CByteWriter::CountedString(std::string_view text)
{
    const std::size_t n = std::min<std::size_t>(text.size(), 32767);
    I16(static_cast<std::int16_t>(n));
    m_data.insert(m_data.end(), text.begin(), text.begin() + static_cast<std::ptrdiff_t>(n));
}

void CByteWriter::FixedText(std::string_view text, std::size_t width)
{
    if (width == 0) return;
    const std::size_t n = std::min(text.size(), width - 1);
    const std::size_t at = m_data.size();
    m_data.resize(at + width, 0);
    std::copy_n(text.begin(), n, m_data.begin() + static_cast<std::ptrdiff_t>(at));
}

void CByteWriter::Bytes(std::span<const std::uint8_t> bytes)
{
    m_data.insert(m_data.end(), bytes.begin(), bytes.end());
}

bool CByteReader::CountedString(std::string& text)
{
    std::int16_t length = 0;
    if (!I16(length)) return false;
    if (length <= 0) {
        text.clear();
        return true;
    }
    const std::size_t want = static_cast<std::size_t>(length);
    const std::size_t take = std::min(want, Remaining());
    text.assign(reinterpret_cast<const char*>(m_bytes.data() + m_pos), take);
    m_pos += take;
    if (take < want) {
        m_short = true;
        return false;
    }
    return true;
}

bool CByteReader::FixedText(std::string& text, std::size_t width)
{
    if (Remaining() < width) {
        m_short = true;
        m_pos = m_bytes.size();
        return false;
    }
    const char* p = reinterpret_cast<const char*>(m_bytes.data() + m_pos);
    const std::size_t len = std::find(p, p + width, '\0') - p;
    text.assign(p, len);
    m_pos += width;
    return true;
}

bool CByteReader::Skip(std::size_t count)
{
    if (Remaining() < count) {
        m_short = true;
        m_pos = m_bytes.size();
        return false;
    }
    m_pos += count;
    return true;
}

bool ReadWholeFile(const std::string& path, std::vector<std::uint8_t>& out)
{
    out.clear();
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> f(std::fopen(path.c_str(), "rb"), &std::fclose);
    if (!f) return false;
    // The size is a hint: a file that grows or shrinks meanwhile is read to
    // its actual end.
    if (std::fseek(f.get(), 0, SEEK_END) == 0) {
        const long size = std::ftell(f.get());
        if (size > 0) out.reserve(static_cast<std::size_t>(size));
        std::rewind(f.get());
    }
    std::uint8_t block[65536];
    for (;;) {
        const std::size_t n = std::fread(block, 1, sizeof block, f.get());
        out.insert(out.end(), block, block + n);
        if (n < sizeof block) break;
    }
    return std::ferror(f.get()) == 0;
}

}  // namespace orv
