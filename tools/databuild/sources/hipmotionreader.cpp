#include "sources/hipmotionreader.h"

#include <cmath>

#include "common/linereader.h"
#include "common/textfields.h"

namespace orv::databuild {

bool ReadHipparcosMotions(const std::string& path,
                          std::unordered_map<std::uint32_t, std::pair<float, float>>& out, const Progress& progress,
                          std::string& error)
{
    progress("reading Hipparcos proper motions (hip_pm.dat)");
    const std::string_view layout = "HIP<tab>pmRA<tab>pmDE";
    return ReadHipList(path, '\t', layout,
                       [&](std::uint32_t hip, std::string_view rest, std::string& why) {
                           std::string_view f[2];
                           double a = 0.0, d = 0.0;
                           if (Split(rest, '\t', f, 2) != 2 || ParseNumber(f[0], a) != FieldState::Ok ||
                               ParseNumber(f[1], d) != FieldState::Ok || std::fabs(a) > 20000.0 ||
                               std::fabs(d) > 20000.0) {
                               why = "expected " + std::string(layout);
                               return false;
                           }
                           out[hip] = {static_cast<float>(a), static_cast<float>(d)};
                           return true;
                       },
                       error);
}

}  // namespace orv::databuild
