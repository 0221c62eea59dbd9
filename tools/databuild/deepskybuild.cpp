#include "deepskybuild.h"

#include <cctype>
#include <filesystem>

#include "catalog/deepsky/catalogprefix.h"
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
        if (!Store(options.outputDir, file, progress, error)) return false;
    const std::string prefixes = CatalogPrefixText(DefaultCatalogPrefixes());
    if (!Store(options.outputDir, {"CatExt.dat", {prefixes.begin(), prefixes.end()}}, progress, error)) return false;

    if (options.sacFile.empty()) {
        progress("  no SAC database in the sources folder: the SAC catalogue is not built");
        return true;
    }
    std::vector<BuildSacObject> sac;
    if (!ReadSac(options.sacFile, sac, progress, error)) return false;
    for (const OutputFile& file : WriteSacFiles(std::move(sac), names))
        if (!Store(options.outputDir, file, progress, error)) return false;
    return true;
}

std::string FindSacFile(const std::string& folder)
{
    namespace fs = std::filesystem;
    std::error_code ec;
    if (!fs::is_directory(folder, ec)) return {};
    for (const auto& entry : fs::directory_iterator(folder, ec)) {
        std::string name = entry.path().filename().string();
        for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        if (name.size() > 8 && name.rfind("SAC", 0) == 0 && name.ends_with("_QCQ.TXT")) return entry.path().string();
    }
    return {};
}

}  // namespace orv::databuild
