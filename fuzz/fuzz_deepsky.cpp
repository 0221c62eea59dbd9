// The deep-sky catalogue files of a data folder, damaged or foreign: the
// NGC/IC records, name index and bounds (and the LEDA popular-name list)
// written to a scratch folder, opened, and walked the way the chart and the
// find box walk them. Nothing may read past a mapping.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "catalog/deepsky/deepskycatalogue.h"
#include "catalog/deepsky/deepskyformat.h"
#include "catalog/deepsky/deepskysource.h"
#include "fuzzsupport.h"
#include "util/dataproblems.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The refusals of the last input, each of its own wording, are forgotten.
    orv::ForgetDataFileProblems();
    using namespace orv;
    const auto parts = fuzz::Split(data, size, 7);
    fuzz::WriteScratch(deepsky::kNgcIcDiskName, parts[0]);
    fuzz::WriteScratch(deepsky::kNgcIcNameDiskName, parts[1]);
    fuzz::WriteScratch(deepsky::kNgcIcBoundsDiskName, parts[2]);
    fuzz::WriteScratch(deepsky::kLedaDiskName, parts[3]);
    fuzz::WriteScratch(deepsky::kLedaNameDiskName, parts[4]);
    fuzz::WriteScratch(deepsky::kLedaBoundsDiskName, parts[5]);
    fuzz::WriteScratch(deepsky::kLedaPopularDiskName, parts[6]);
    CDeepSkyCatalogues cats;
    if (!cats.OpenFolder(fuzz::ScratchFolder().string())) return 0;
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
