// Line-by-line reading of the text sources. The Tycho-2 main catalogue alone
// is 2.5 million lines, so lines are handed out as views into one large
// buffer, with no allocation per line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orv::databuild {

class CLineReader {
public:
    bool Open(const std::string& path);
    // The next line without its "\n" or "\r\n", valid until the next call;
    // false at the end of the file (a last line without "\n" is still given).
    bool Next(std::string_view& line);
    bool ReadError() const { return m_error; }

private:
    struct Closer {
        void operator()(std::FILE* f) const { std::fclose(f); }
    };
    std::unique_ptr<std::FILE, Closer> m_file;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0, m_end = 0;
    bool m_eof = false;
    bool m_error = false;
};

// Called with each line and its 1-based number; returns false with a reason
// in its last argument to stop the reading.
using LineHandler = std::function<bool(std::string_view line, std::size_t number, std::string& why)>;

// Hands every line of `path` to `each`. False with "path, line N: why" in
// `error` when a line is refused, or a message when the file cannot be read.
bool ReadLines(const std::string& path, const LineHandler& each, std::string& error);

// Called with the Hipparcos number and the rest of a "HIP<sep>rest" line.
using HipLineHandler = std::function<bool(std::uint32_t hip, std::string_view rest, std::string& why)>;

// Reads one of stellarium-data's lists keyed by Hipparcos number: comment and
// blank lines are skipped, every other line is split at its first `sep` into
// a HIP number (1 or more) and the rest. A line that does not split so is
// refused with "expected `layout`".
bool ReadHipList(const std::string& path, char sep, std::string_view layout, const HipLineHandler& each,
                 std::string& error);

}  // namespace orv::databuild
