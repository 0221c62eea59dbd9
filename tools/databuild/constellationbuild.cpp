#include "constellationbuild.h"

#include "common/textfields.h"
#include "catalogbuild.h"

namespace orv::databuild {

bool BuildConstellationFiles(const ConstellationSources& sources, std::vector<OutputFile>& files, std::string& error)
{
    std::vector<BoundaryEdge> edges;
    if (!RecoverDelporteEdges(sources.segments, edges, error)) return false;
    files.push_back(WriteConstellationFigures(sources.figures));
    files.push_back(WriteNamePositions(sources.namePositions));
    files.push_back(WriteConstellationNames(sources.names));
    files.push_back(WriteConstellationBoundaries(sources.strips, edges));
    return true;
}

bool RunConstellationBuild(const std::string& stellariumDir, const std::string& kstarsDir,
                           const std::string& outputDir, const Progress& progress, std::string& error)
{
    ConstellationSources sources;
    if (!ReadConstellationSources(LocateConstellationSources(stellariumDir, kstarsDir), sources, progress, error))
        return false;
    if (sources.figures.size() != 88 || sources.names.size() != 88 || sources.strips.empty())
        return Fail(error, "expected the 88 constellations' figures and names, found " +
                               std::to_string(sources.figures.size()) + " and " +
                               std::to_string(sources.names.size()));
    std::vector<OutputFile> files;
    if (!BuildConstellationFiles(sources, files, error)) return false;
    for (const OutputFile& file : files)
        if (!Store(outputDir, file, progress, error)) return false;
    return true;
}

}  // namespace orv::databuild
