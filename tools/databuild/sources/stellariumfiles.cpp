#include "sources/stellariumfiles.h"

#include <filesystem>

#include "common/textfields.h"

namespace orv::databuild {

namespace fs = std::filesystem;

StellariumFiles LocateStellariumFiles(const std::string& shareDir)
{
    const fs::path stars = fs::path(shareDir) / "stars" / "default";
    StellariumFiles f;
    f.starsDir = stars.string();
    f.crossIds = (stars / "cross-id.dat").string();
    f.designations = (stars / "name.fab").string();
    f.properNames = (fs::path(shareDir) / "skycultures" / "western" / "star_names.fab").string();
    f.variables = (stars / "gcvs_hip_part.dat").string();
    f.doubles = (stars / "wds_hip_part.dat").string();
    f.discoverers = (stars / "extra_name.fab").string();
    f.properMotion = (stars / "hip_pm.dat").string();
    return f;
}

bool CheckStellariumFiles(const StellariumFiles& files, std::string& error)
{
    for (const std::string* path : {&files.crossIds, &files.designations, &files.variables, &files.doubles,
                                    &files.discoverers, &files.properMotion, &files.properNames})
        if (!fs::exists(*path)) return Fail(error, "missing source " + *path);
    return true;
}

}  // namespace orv::databuild
