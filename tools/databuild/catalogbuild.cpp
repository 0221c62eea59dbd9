// The driver of the star data build: every reader, joining step and writer
// in the order the build needs them. A new source adds its reader's call
// among the readers and its writer's among the writers.
#include "catalogbuild.h"

#include <filesystem>
#include <system_error>
#include <vector>

#include "common/textfields.h"
#include "sources/hipcatalogreader.h"
#include "sources/hipmotionreader.h"
#include "sources/stellariumfiles.h"
#include "util/atomicfile.h"
#include "writers/crossindex.h"
#include "writers/doublestars.h"
#include "writers/propernames.h"
#include "writers/regionbounds.h"
#include "writers/regionstarts.h"
#include "writers/starproperties.h"
#include "writers/starrecords.h"
#include "writers/tychoidindex.h"
#include "writers/variablestars.h"

namespace orv::databuild {

namespace fs = std::filesystem;

namespace {

// stellarium-data's Hipparcos-keyed lists. All must be present before any is
// read, so that a half-unpacked package is named at once.
bool ReadStellariumLists(const std::string& shareDir, HipData& hip, const Progress& progress, std::string& error)
{
    const StellariumFiles files = LocateStellariumFiles(shareDir);
    return CheckStellariumFiles(files, error) &&
           ReadCrossIds(files.crossIds, hip.crossIds, progress, error) &&
           ReadDesignations(files.designations, hip.properties, progress, error) &&
           ReadProperNames(files.properNames, hip.properNames, progress, error) &&
           ReadVariables(files.variables, hip.variables, progress, error) &&
           ReadDoubles(files.doubles, files.discoverers, hip.doubles, progress, error) &&
           ReadHipparcosMotions(files.properMotion, hip.properMotion, progress, error) &&
           ReadHipparcosCatalogues(files.starsDir, hip.parallaxMas, hip.bvMilli, progress, error);
}

void ReportPhotometry(const PhotometryReport& photometry, const Progress& progress)
{
    progress("  stars given the Hipparcos V and B-V: " + std::to_string(photometry.replaced));
    progress("  kept on Tycho photometry: " + std::to_string(photometry.brightCompanions) +
             " Hipparcos entries whose Tycho-2 components add more than 0.05 mag, " +
             std::to_string(photometry.noStarWithin) + " lines with no Tycho-2 Hipparcos star within 1\", " +
             std::to_string(photometry.ambiguous) + " lines naming the same star as another");
    progress("  skipped as mismatches: " + std::to_string(photometry.offPosition) + " by position, " +
             std::to_string(photometry.magnitudeMismatch) + " by magnitude (|dV| >= 1)");
    for (const auto& line : photometry.mismatches) progress("    " + line);
}

void ReportLinks(const CrossReport& report, const Progress& progress)
{
    progress("  Hipparcos stars in Tycho-2: " + std::to_string(report.hipStars) +
             ", parallaxes attached: " + std::to_string(report.parallaxes) +
             ", Hipparcos colours used: " + std::to_string(report.hipColours));
    progress("  SAO: " + std::to_string(report.saoEntries) + ", HD: " + std::to_string(report.hdEntries) +
             ", HR: " + std::to_string(report.hrEntries) + ", proper names: " + std::to_string(report.names) +
             ", Bayer/Flamsteed: " + std::to_string(report.properties) + ", variables: " +
             std::to_string(report.variables) + ", doubles: " + std::to_string(report.doubles));
    if (report.unmatchedHip > 0)
        progress("  HIP numbers of the lists without a Tycho-2 star (left out): " +
                 std::to_string(report.unmatchedHip));
}

}  // namespace

// Every output file, in the order they are written.
std::vector<OutputFile> WriteAll(const Catalogue& catalogue, StarTables tables)
{
    std::vector<OutputFile> files;
    files.push_back(WriteStarRecords(catalogue.stars));
    files.push_back(WriteRegionStarts(catalogue));
    files.push_back(WriteRegionBounds(catalogue));
    files.push_back(WriteTychoIdIndex(catalogue.stars));
    for (auto& f : WriteCrossIndexes(tables.cross)) files.push_back(std::move(f));
    files.push_back(WriteProperNames(std::move(tables.names)));
    files.push_back(WriteStarProperties(std::move(tables.properties)));
    files.push_back(WriteDoubleStars(tables.doubles));
    files.push_back(WriteVariableStars(std::move(tables.variables)));
    return files;
}

std::vector<OutputFile> BuildStarFiles(Catalogue& catalogue, const HipData& hip, CrossReport& report)
{
    StarTables tables;
    LinkHipparcosLists(catalogue, hip, tables, report);
    return WriteAll(catalogue, std::move(tables));
}

bool StoreOutputFile(const std::string& outputDir, const OutputFile& file, const Progress& progress, std::string& error)
{
    const fs::path path = fs::path(outputDir) / file.path;
    std::error_code ec;
    fs::create_directories(path.parent_path(), ec);
    if (ec) return Fail(error, "cannot create folder " + path.parent_path().string() + ": " + ec.message());
    CAtomicFileWriter w;
    if (!w.Open(path.string()) || !w.Write(file.bytes) || !w.Commit())
        return Fail(error, "cannot write " + path.string() + ": " + w.Error());
    progress("wrote " + path.string() + " (" + std::to_string(file.bytes.size()) + " bytes)");
    return true;
}


bool RunBuild(const BuildOptions& options, const Progress& progress, std::string& error)
{
    // Readers.
    Tycho2Source tycho2;
    if (!ReadTycho2(options.tycho2Dir, tycho2, progress, error)) return false;
    std::vector<BuildStar>& stars = tycho2.stars;
    HipData hip;
    if (!ReadStellariumLists(options.stellariumDir, hip, progress, error)) return false;

    // Joining: motions, then photometry (its places are compared at J2000,
    // after the Hipparcos motion), both before the regions are ordered by
    // magnitude; the lists last, on the final record numbers.
    progress("  stars without a Tycho-2 mean position given the Hipparcos motion: " +
             std::to_string(ApplyHipparcosMotion(stars, hip)));
    std::vector<KStarsStar> hipPhotometry;
    if (!ReadKStarsStars(options.kstarsDir, hipPhotometry, progress, error)) return false;
    PhotometryReport photometry;
    ApplyHipparcosPhotometry(stars, hipPhotometry, photometry);
    ReportPhotometry(photometry, progress);

    progress("sorting " + std::to_string(stars.size()) + " stars by region and magnitude");
    Catalogue catalogue;
    if (!AssembleCatalogue(std::move(stars), tycho2.index, catalogue, error)) return false;
    progress("  region boxes widened to hold their stars: " + std::to_string(catalogue.widenedRegions));

    StarTables tables;
    CrossReport report;
    LinkHipparcosLists(catalogue, hip, tables, report);
    ReportLinks(report, progress);

    // Writers.
    for (const OutputFile& file : WriteAll(catalogue, std::move(tables)))
        if (!StoreOutputFile(options.outputDir, file, progress, error)) return false;
    return true;
}

}  // namespace orv::databuild
