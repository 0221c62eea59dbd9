#include "sources/gcvsreader.h"

#include "common/linereader.h"
#include "common/sky.h"
#include "common/textfields.h"

namespace orv::databuild {

using namespace orv::tycho2;

bool ParseGcvsLine(std::string_view line, VariableStar& out, std::string& error)
{
    std::string_view f[12];
    if (Split(line, '\t', f, 12) < 8) return Fail(error, "expected at least 8 tab-separated fields");
    out = VariableStar{};
    if (!ParseUnsigned(f[0], out.hip) || out.hip == 0) return Fail(error, "malformed HIP number");
    out.name = std::string(Trim(f[1]));
    out.type = std::string(Trim(f[2]));
    if (out.name.empty()) return Fail(error, "no designation");
    double maxMag = 0.0;
    if (ParseNumber(f[3], maxMag) == FieldState::Ok) out.maxMagCenti = ToCenti(maxMag);
    std::int64_t ampFlag = 0;
    if (ParseInteger(f[4], ampFlag) == FieldState::Bad) return Fail(error, "malformed amplitude flag");
    double min1 = 0.0;
    if (ParseNumber(f[5], min1) == FieldState::Ok) {
        if (ampFlag == 1) {
            // The faint end is given as an amplitude.
            if (out.maxMagCenti != gcvs::kNoMag) out.minMagCenti = ToCenti(maxMag + min1);
            out.minKind = gcvs::kMinFromAmplitude;
        } else {
            out.minMagCenti = ToCenti(min1);
            out.minKind = ampFlag == 2 ? gcvs::kMinIsLimit : gcvs::kMinIsMagnitude;
        }
    }
    out.band = std::string(Trim(f[7]));
    double period = 0.0;
    if (Split(line, '\t', f, 12) >= 10 && ParseNumber(f[9], period) == FieldState::Ok && period > 0.0)
        out.periodDays = static_cast<float>(period);
    return true;
}

bool ReadVariables(const std::string& path, std::map<std::uint32_t, std::vector<VariableStar>>& out,
                   const Progress& progress, std::string& error)
{
    progress("reading variable stars (gcvs_hip_part.dat)");
    return ReadLines(path,
                     [&](std::string_view line, std::size_t, std::string& why) {
                         if (IsComment(line)) return true;
                         VariableStar v;
                         if (!ParseGcvsLine(line, v, why)) return false;
                         out[v.hip].push_back(std::move(v));
                         return true;
                     },
                     error);
}

}  // namespace orv::databuild
