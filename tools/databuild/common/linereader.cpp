#include "common/linereader.h"

#include <cstring>

#include "common/textfields.h"

namespace orv::databuild {

bool CLineReader::Open(const std::string& path)
{
    m_file.reset(std::fopen(path.c_str(), "rb"));
    m_buffer.resize(1 << 22);
    m_begin = m_end = 0;
    m_eof = false;
    return m_file != nullptr;
}

bool CLineReader::Next(std::string_view& line)
{
    for (;;) {
        const char* data = m_buffer.data();
        const void* nl = std::memchr(data + m_begin, '\n', m_end - m_begin);
        if (nl != nullptr) {
            const auto at = static_cast<std::size_t>(static_cast<const char*>(nl) - data);
            line = std::string_view(data + m_begin, at - m_begin);
            if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
            m_begin = at + 1;
            return true;
        }
        if (m_eof) {
            if (m_begin == m_end) return false;
            line = std::string_view(data + m_begin, m_end - m_begin);
            m_begin = m_end;
            return true;
        }
        // Move the partial line to the front and read more.
        std::memmove(m_buffer.data(), data + m_begin, m_end - m_begin);
        m_end -= m_begin;
        m_begin = 0;
        if (m_end == m_buffer.size()) m_buffer.resize(m_buffer.size() * 2);
        const std::size_t got = std::fread(m_buffer.data() + m_end, 1, m_buffer.size() - m_end, m_file.get());
        if (got == 0) {
            if (std::ferror(m_file.get())) m_error = true;
            m_eof = true;
        }
        m_end += got;
    }
}

bool ReadLines(const std::string& path, const LineHandler& each, std::string& error)
{
    CLineReader reader;
    if (!reader.Open(path)) return Fail(error, "cannot open " + path);
    std::string_view line;
    std::size_t number = 0;
    std::string why;
    while (reader.Next(line)) {
        ++number;
        if (!each(line, number, why)) return Fail(error, path + ", line " + std::to_string(number) + ": " + why);
    }
    if (reader.ReadError()) return Fail(error, "read error in " + path);
    return true;
}

bool ReadHipList(const std::string& path, char sep, std::string_view layout, const HipLineHandler& each,
                 std::string& error)
{
    return ReadLines(path,
                     [&](std::string_view line, std::size_t, std::string& why) {
                         if (IsComment(line)) return true;
                         std::string_view f[2];
                         std::uint32_t hip = 0;
                         if (Split(line, sep, f, 2) != 2 || !ParseUnsigned(f[0], hip) || hip == 0) {
                             why = "expected " + std::string(layout);
                             return false;
                         }
                         return each(hip, f[1], why);
                     },
                     error);
}

}  // namespace orv::databuild
