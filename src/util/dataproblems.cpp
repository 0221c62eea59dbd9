#include "util/dataproblems.h"

#include <algorithm>
#include <mutex>

namespace orv {

namespace {

struct Registry {
    std::mutex mutex;
    std::vector<DataFileProblem> pending;
    std::vector<std::string> reported;  // every path and reason ever reported
};

Registry& TheRegistry()
{
    static Registry r;
    return r;
}

}  // namespace

void ReportDataFileProblem(const std::string& path, const std::string& reason)
{
    Registry& r = TheRegistry();
    const std::lock_guard lock(r.mutex);
    const std::string key = path + '\n' + reason;
    if (std::find(r.reported.begin(), r.reported.end(), key) != r.reported.end()) return;
    r.reported.push_back(key);
    r.pending.push_back({path, reason});
}

std::vector<DataFileProblem> TakeDataFileProblems()
{
    Registry& r = TheRegistry();
    const std::lock_guard lock(r.mutex);
    std::vector<DataFileProblem> out;
    out.swap(r.pending);
    return out;
}

void ForgetDataFileProblems()
{
    Registry& r = TheRegistry();
    const std::lock_guard lock(r.mutex);
    r.pending.clear();
    r.reported.clear();
}

std::string DataFileProblemsText(const std::vector<DataFileProblem>& problems)
{
    if (problems.empty()) return {};
    std::string text = problems.size() == 1 ? "A data file is damaged and was left out, whole or in part:\n"
                                            : "Some data files are damaged and were left out, whole or in part:\n";
    for (const DataFileProblem& p : problems) text += "  " + p.path + ": " + p.reason + "\n";
    text += "Rebuild the data folder (tools/build-data.sh) to restore its catalogues; correct or replace your own "
            "files (element catalogues, overlays).";
    return text;
}

}  // namespace orv
