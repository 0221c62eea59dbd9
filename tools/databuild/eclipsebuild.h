// The eclipse tables: every solar and lunar eclipse of −1999 … +3000
// computed by the eclipse library and written as the ten table files.
#pragma once

#include <functional>
#include <string>

namespace orv::databuild {

// Needs the VSOP87 files of the data folder (the planets step). Writes
// data/solar1–5.dat and data/lunar1–5.dat below `outputDir`; false with a
// message in `error` on failure.
bool RunEclipseBuild(const std::string& outputDir, const std::function<void(const std::string&)>& progress,
                     std::string& error);

}  // namespace orv::databuild
