#include "deepskybuild.h"

#include <filesystem>

#include "catalogbuild.h"
#include "match/deepskysplit.h"
#include "sources/stellariumdsoreader.h"
#include "writers/deepsky.h"

namespace orv::databuild {

bool RunDeepSkyBuild(const DeepSkyBuildOptions& options, const Progress& progress, std::string& error)
{
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(options.stellariumDir) / "nebulae" / "default";
    std::vector<BuildDeepSkyObject> all;
    if (!ReadStellariumDso((folder / "catalog.dat").string(), all, progress, error)) return false;
    std::vector<DsoNameLine> names;
    if (!ReadDsoNames((folder / "names.dat").string(), names, error)) return false;
    progress("  objects given a common name: " + std::to_string(AttachCommonNames(all, names)));

    const DeepSkyCatalogues catalogues = SplitDeepSkyCatalogues(all);
    progress("  NGC/IC, Messier and Caldwell objects: " + std::to_string(catalogues.ngcIc.objects.size()));
    progress("  PGC galaxies: " + std::to_string(catalogues.leda.objects.size()));
    progress("  PN G planetary nebulae: " + std::to_string(catalogues.planetary.objects.size()));
    for (const OutputFile& file : WriteDeepSkyFiles(catalogues))
        if (!StoreFile(options.outputDir, file, progress, error)) return false;
    return true;
}

}  // namespace orv::databuild
