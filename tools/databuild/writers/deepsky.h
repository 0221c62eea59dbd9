// Writers of the deep-sky files: the NGC/IC records, their name index and
// region bounds, the LEDA galaxies with theirs, and the Strasbourg planetary
// nebulae (layouts in docs/deep-sky-files.md).
#pragma once

#include <vector>

#include "match/deepskysplit.h"
#include "sources/sacreader.h"
#include "sources/stellariumdsoreader.h"
#include "writers/outputfile.h"

namespace orv::databuild {

OutputFile WriteNgcIcRecords(const DeepSkyCatalogue& ngcIc);
OutputFile WriteNgcIcNames(const DeepSkyCatalogue& ngcIc);
OutputFile WriteLedaRecords(const DeepSkyCatalogue& leda);
OutputFile WriteLedaNames(const DeepSkyCatalogue& leda);
// The popular names of the LEDA galaxies the NGC/IC does not hold
// ("LEDA 2248|Cartwheel Galaxy; …"), as text.
OutputFile WriteLedaPopularNames(const DeepSkyCatalogue& leda);
OutputFile WritePlanetaryRecords(const DeepSkyCatalogue& planetary);
// A bounds file: one entry per region of the scheme.
OutputFile WriteDeepSkyBounds(const DeepSkyCatalogue& catalogue, std::string_view diskName);

// The SAC database's records (in region order), its name index and bounds,
// its chart labels, and the popular names that `names` (stellarium's name
// list) gives its objects under their SAC or other designations.
std::vector<OutputFile> WriteSacFiles(std::vector<BuildSacObject> objects,
                                      const std::vector<DsoNameLine>& names = {});

// Every deep-sky file, in the order they are written.
std::vector<OutputFile> WriteDeepSkyFiles(const DeepSkyCatalogues& catalogues);

// The designation an NGC/IC record is filed under: "NGC n", else "IC n",
// else "M n", else "C n".
std::string NgcIcDesignation(const BuildDeepSkyObject& o);

}  // namespace orv::databuild
