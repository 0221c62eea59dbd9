// Writer of "star/Tycho2/StarProp.dat": 12-byte entries of a Tycho
// identifier, the constellation, Flamsteed number, Greek letter and its
// superscript, sorted by identifier.
#pragma once

#include <vector>

#include "model/startables.h"
#include "writers/outputfile.h"

namespace orv::databuild {

OutputFile WriteStarProperties(std::vector<PropertyOfStar> properties);

}  // namespace orv::databuild
