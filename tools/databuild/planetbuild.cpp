#include "planetbuild.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "sources/astronomiareader.h"
#include "catalogbuild.h"
#include "writers/moonblock.h"
#include "writers/vsop87files.h"

namespace fs = std::filesystem;

namespace orv::databuild {

bool RunPlanetBuild(const PlanetBuildOptions& options, const Progress& progress, std::string& error)
{
    std::array<Vsop87Planet, 8> planets;
    progress("reading the VSOP87D series from " + options.astronomiaDir);
    if (!ReadVsop87D(options.astronomiaDir, planets, error)) return false;
    std::size_t count = 0;
    for (const Vsop87Planet& p : planets)
        for (const auto& coordinate : p.series)
            for (const auto& series : coordinate) count += series.size();
    progress("  " + std::to_string(count) + " terms, all kept");

    std::vector<OutputFile> files;
    if (!WriteVsop87Files(planets, files, error)) return false;
    for (OutputFile& file : files) file.path = (fs::path(options.outputDir) / file.path).string();

    if (!options.moonBlockPath.empty()) {
        ElpSeries elp;
        progress("reading the ELP/MPP02 series from " + options.astronomiaDir);
        if (!ReadElpMpp02(options.astronomiaDir, elp, error)) return false;
        MoonBlockReport report;
        files.push_back({options.moonBlockPath, WriteMoonBlock(elp, report)});
        static const char* const kNames[12] = {"L0", "L1", "L2", "L3", "B0", "B1", "B2", "B3", "R0", "R1", "R2", "R3"};
        for (int i = 0; i < 12; ++i) {
            char line[160];
            std::snprintf(line, sizeof line, "  MOONDATA %s: %d terms of %d, smallest amplitude kept %.3g %s", kNames[i],
                          report.keptTerms[i], report.seriesTerms[i], report.smallestKept[i], i < 8 ? "arcsec" : "km");
            progress(line);
        }
        char line[200];
        std::snprintf(line, sizeof line,
                      "  MOONDATA against the full series, 1900-2100 (%d dates): longitude max %.2f\" rms %.2f\", "
                      "latitude max %.2f\", distance max %.3f km",
                      report.samples, report.maxLonErrorArcsec, report.rmsLonErrorArcsec, report.maxLatErrorArcsec,
                      report.maxDistanceErrorKm);
        progress(line);
    }
    // The VSOP87 files carry their full paths by now (the lunar block goes
    // into the source tree, not the data folder).
    for (const OutputFile& file : files)
        if (!Store("", file, progress, error)) return false;
    return true;
}

}  // namespace orv::databuild
