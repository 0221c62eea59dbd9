// Data files that exist but cannot be used: a catalogue cut short by an
// interrupted copy, or a file of another program under our name. The
// readers refuse such a file, leave their catalogue off the chart, and
// report it here; the program shows the list to the user once (the window
// in a message, the command line on its error stream), naming each file and
// what is wrong with it. A file that is simply absent is not a problem: an
// optional catalogue may be left out.
#pragma once

#include <string>
#include <vector>

namespace orv {

struct DataFileProblem {
    std::string path;    // the file as found in the data folder
    std::string reason;  // "its size, 1000 bytes, is not a whole number of 38-byte records"
};

// Records a refused file; the same file refused for the same reason is
// listed once.
void ReportDataFileProblem(const std::string& path, const std::string& reason);
// The problems reported since the last call, oldest first; the list is emptied.
std::vector<DataFileProblem> TakeDataFileProblems();
// Forgets every problem, reported or pending, so that each may be reported
// again: for a new data folder, and for the fuzz targets, whose millions of
// distinct refusals must not pile up.
void ForgetDataFileProblems();
// One message for the user listing `problems`, or empty for none.
std::string DataFileProblemsText(const std::vector<DataFileProblem>& problems);

}  // namespace orv
