#include "sources/wdsreader.h"

#include <algorithm>

#include "common/linereader.h"
#include "common/textfields.h"

namespace orv::databuild {

bool ParseDiscovererDesignation(std::string_view text, DoubleDesignation& out)
{
    text = Trim(text);
    const auto us = text.rfind('_');
    if (us == std::string_view::npos || us == 0) return false;
    std::uint32_t n = 0;
    if (!ParseUnsigned(text.substr(us + 1), n)) return false;
    out.code = std::string(text.substr(0, us));
    std::replace(out.code.begin(), out.code.end(), '_', ' ');
    out.number = n;
    return true;
}

bool ReadDoubles(const std::string& wdsPath, const std::string& designationPath,
                 std::map<std::uint32_t, std::optional<DoubleDesignation>>& out, const Progress& progress,
                 std::string& error)
{
    progress("reading double stars (wds_hip_part.dat, extra_name.fab)");
    if (!ReadHipList(wdsPath, '\t', "HIP<tab>WDS designation",
                     [&](std::uint32_t hip, std::string_view, std::string&) {
                         out.emplace(hip, std::nullopt);
                         return true;
                     },
                     error))
        return false;
    return ReadHipList(designationPath, '|', "HIP|designation",
                       [&](std::uint32_t hip, std::string_view text, std::string&) {
                           DoubleDesignation d;
                           const auto it = out.find(hip);
                           // Only stars of the WDS list; the first designation wins.
                           if (it != out.end() && !it->second && ParseDiscovererDesignation(text, d))
                               it->second = std::move(d);
                           return true;
                       },
                       error);
}

}  // namespace orv::databuild
