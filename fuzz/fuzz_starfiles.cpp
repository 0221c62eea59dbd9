// The star catalogue's files as a data folder may hold them, damaged or
// foreign: the records, the region tables, the identifier index and the
// name table handed to the catalogue as files in memory and opened the way
// the program opens them; when accepted, regions are looked up and every
// region's records read, and the indexes searched.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "catalog/stars/tycho2catalogue.h"
#include "catalog/stars/tycho2format.h"
#include "fuzzsupport.h"
#include "util/datafiles.h"
#include "util/dataproblems.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The refusals of the last input, each of its own wording, are forgotten.
    orv::ForgetDataFileProblems();
    using namespace orv;
    // The input stands for the files themselves: no file is written or
    // opened, the catalogue maps the input's bytes as it would map a file.
    const auto parts = fuzz::SplitCopies(data, size, 5);
    CMemoryDataFiles files;
    files.Add(tycho2::kCatalogueFile, parts[0]);
    files.Add(tycho2::kRegionStartFile, parts[1]);
    files.Add(tycho2::kRegionBoundsFile, parts[2]);
    files.Add(tycho2::kTychoIdFile, parts[3]);
    files.Add(tycho2::kProperNameFile, parts[4]);
    CTycho2Catalogue cat;
    if (!cat.OpenCatalogue(files)) return 0;
    std::vector<int> regions;
    cat.FindRegions(SkyBox{0.0, 6.2831853, -1.5707963, 1.5707963}, regions);
    // The chart's walk: records straight from the mapping, region by region,
    // trusting the region table that opening checked.
    for (const int r : regions)
        for (std::uint32_t i = cat.RegionStart(r); i < cat.RegionEnd(r) && i < cat.RegionStart(r) + 64; ++i)
            DecodeStarRecord(cat.Record(i));
    cat.FindByTychoId(1, 1, 1);
    cat.FindByTychoId(4774, 1, 1);
    for (std::size_t i = 0; i < cat.ProperNameCount() && i < 64; ++i) cat.ProperNameAt(i);
    return 0;
}
