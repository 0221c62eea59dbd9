// Finding Orvane's data files.
//
// The file formats name data files the way the program always has, with
// backslashes and mixed case ("star\Tycho2\Tycho2.dat", "Data\VSOP87.idx").
// On Linux those names are resolved component by component, accepting either
// separator and any letter case.
//
// Data folders are searched in this order:
//   1. the folder in the environment variable ORVANE_DATA;
//   2. the folder of the "Paths" setting, when the application has set one
//      (SetConfiguredDataPath);
//   3. the folder installed beside the program: <bin>/data, <bin>/../data,
//      <bin>/../share/orvane/data;
//   4. the data folder of the build tree the program was built in.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orv {

// The folder the program reads data from (and the data builder writes to):
// the first of the candidates above that exists, or the first candidate when
// none exists yet.
std::string GetDataPath();

// Every candidate data folder in search order (existing or not).
std::vector<std::string> DataPathCandidates();

// Records the data folder from the settings store ("Paths"); empty clears it.
void SetConfiguredDataPath(std::string folder);

// Looks for the data file `name` in the data folders in order. On success
// stores its full path in `fullPath` and returns true; returns false when no
// folder holds it.
bool LocateDataFile(std::string_view name, std::string& fullPath);

// The full path under which the data file `name` belongs in the data folder
// of GetDataPath(), whether it exists or not. Existing folders are matched
// without regard to case, so a writer replaces the file a reader would find.
std::string GetDataFileName(std::string_view name);

// Resolves `name` (either separator, any case) below `folder`. Returns true
// and the full path when it exists.
bool ResolveCaseInsensitive(const std::string& folder, std::string_view name, std::string& fullPath);

// The folder of the running executable (from /proc/self/exe), empty when it
// cannot be determined.
std::string ExecutableFolder();

}  // namespace orv
