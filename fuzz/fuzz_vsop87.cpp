// The VSOP87 index and term files, damaged or foreign: opened (or refused)
// and, when accepted, every planet evaluated at a few dates.
#include <cstddef>
#include <cstdint>

#include "solarsystem/vsop87.h"
#include "fuzzsupport.h"
#include "util/dataproblems.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The refusals of the last input, each of its own wording, are forgotten.
    orv::ForgetDataFileProblems();
    using namespace orv;
    const auto parts = fuzz::Split(data, size, 2);
    const std::string index = fuzz::WriteScratch("VSOP87.idx", parts[0]);
    const std::string terms = fuzz::WriteScratch("VSOP87.dat", parts[1]);
    CVsop87D series;
    if (series.OpenFiles(index, terms) != Vsop87Status::Ok) return 0;
    for (int body = 1; body <= 8; ++body)
        for (const double jd : {2451545.0, 2415020.5, 2488000.0}) series.EvaluateOfDate(body, jd);
    return 0;
}
