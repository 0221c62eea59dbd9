// The deep-sky catalogue files of a data folder, damaged or foreign: the
// NGC/IC records, name index and bounds (and the LEDA popular-name list)
// handed over as files in memory, opened, and walked the way the chart and the
// find box walk them. Nothing may read past a mapping.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "catalog/deepsky/deepskycatalogue.h"
#include "catalog/deepsky/deepskyformat.h"
#include "catalog/deepsky/deepskysource.h"
#include "fuzzsupport.h"
#include "util/datafiles.h"
#include "util/dataproblems.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The refusals of the last input, each of its own wording, are forgotten.
    orv::ForgetDataFileProblems();
    using namespace orv;
    const auto parts = fuzz::SplitCopies(data, size, 7);
    // The input stands for the files themselves: nothing is written or
    // opened, the catalogues map the input's bytes as they would map files.
    CMemoryDataFiles files;
    files.Add(deepsky::kNgcIcFile, parts[0]);
    files.Add(deepsky::kNgcIcNameFile, parts[1]);
    files.Add(deepsky::kNgcIcBoundsFile, parts[2]);
    files.Add(deepsky::kLedaFile, parts[3]);
    files.Add(deepsky::kLedaNameFile, parts[4]);
    files.Add(deepsky::kLedaBoundsFile, parts[5]);
    files.Add(deepsky::kLedaPopularFile, parts[6]);
    CDeepSkyCatalogues cats;
    if (!cats.OpenFiles(files)) return 0;
    std::vector<DeepSkyObject> found;
    for (const DeepSkyCatalogueId c : {DeepSkyCatalogueId::NgcIc, DeepSkyCatalogueId::Leda}) {
        found.clear();
        cats.Gather(c, 1.0, 0.3, 3.2, found);
        DeepSkyTexts texts;
        for (const DeepSkyObject& o : found) cats.Texts(c, o.record, texts);
    }
    for (const char* name : {"M 42", "NGC 7000", "LEDA 2557", "Orion Nebula", "PN G054.1-12.1", "IC 434"})
        ResolveDeepSkyName(cats, name);
    return 0;
}
