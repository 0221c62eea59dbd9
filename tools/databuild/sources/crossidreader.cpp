#include "sources/crossidreader.h"

#include "common/linereader.h"
#include "common/textfields.h"

namespace orv::databuild {

bool ParseCrossIdLine(std::string_view line, CrossIdLine& out, std::string& error)
{
    std::string_view f[5];
    if (Split(line, '\t', f, 5) != 5) return Fail(error, "expected 5 tab-separated fields");
    out = CrossIdLine{};
    if (!ParseUnsigned(f[0], out.hip) || out.hip == 0) return Fail(error, "malformed HIP number");
    const auto comp = Trim(f[1]);
    if (comp.size() > 1) return Fail(error, "malformed component letter");
    out.component = comp.empty() ? 0 : comp[0];
    for (int k = 2; k < 5; ++k) {
        std::uint32_t v = 0;
        if (!Trim(f[k]).empty() && !ParseUnsigned(f[k], v)) return Fail(error, "malformed catalogue number");
        (k == 2 ? out.sao : k == 3 ? out.hd : out.hr) = v;
    }
    return true;
}

bool ReadCrossIds(const std::string& path, std::vector<CrossIdLine>& out, const Progress& progress,
                  std::string& error)
{
    progress("reading " + path);
    if (!ReadLines(path,
                   [&](std::string_view line, std::size_t, std::string& why) {
                       if (IsComment(line)) return true;
                       CrossIdLine c;
                       if (!ParseCrossIdLine(line, c, why)) return false;
                       out.push_back(c);
                       return true;
                   },
                   error))
        return false;
    if (out.empty()) return Fail(error, "cross-id.dat holds no cross identifications");
    return true;
}

}  // namespace orv::databuild
