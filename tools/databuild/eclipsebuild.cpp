#include "eclipsebuild.h"

#include <array>
#include <cstdio>

#include "eclipse/eclipsefinder.h"
#include "eclipse/eclipsetables.h"

namespace orv::databuild {

bool RunEclipseBuild(const std::string& outputDir, const std::function<void(const std::string&)>& progress,
                     std::string& error)
{
    int lastTenth = -1;
    const EclipseList list = FindEclipses(-1999, 3000, EclipseKinds::Both, [&](double fraction) {
        const int tenth = static_cast<int>(fraction * 10.0);
        if (tenth != lastTenth) {
            lastTenth = tenth;
            progress("eclipses: " + std::to_string(tenth * 10) + "%");
        }
        return true;
    });
    if (list.ephemerisMissing) {
        error = "the eclipse tables need the VSOP87 files (Data/VSOP87.idx, Data/VSOP87.dat): build the planets first";
        return false;
    }
    // Counts by kind and type, printed for the log.
    std::array<int, 128> solar{}, lunar{};
    for (const EclipseEvent& e : list.events) {
        auto& counts = e.kind == EclipseKind::Solar ? solar : lunar;
        ++counts[static_cast<unsigned char>(e.type) & 127];
    }
    char line[200];
    std::snprintf(line, sizeof line, "eclipses: solar %d total, %d annular, %d hybrid, %d partial", solar['T'],
                  solar['A'], solar['H'], solar['P']);
    progress(line);
    std::snprintf(line, sizeof line, "eclipses: lunar %d total, %d partial, %d penumbral", lunar['T'], lunar['P'],
                  lunar['N']);
    progress(line);
    if (const auto failure = WriteEclipseTables(outputDir, list.events)) {
        error = *failure;
        return false;
    }
    progress("eclipses: data/solar1-5.dat and data/lunar1-5.dat written");
    return true;
}

}  // namespace orv::databuild
