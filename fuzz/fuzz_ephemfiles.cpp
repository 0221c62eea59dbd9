// The compact ephemeris and the eclipse tables of a data folder, damaged or
// foreign: "Ephem96.dat" opened from its bytes and, when accepted, every
// body evaluated where it claims coverage; an eclipse table read.
#include <cstddef>
#include <cstdint>

#include "eclipse/eclipsetables.h"
#include "solarsystem/ephem96.h"
#include "fuzzsupport.h"
#include "util/dataproblems.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The refusals of the last input, each of its own wording, are forgotten.
    orv::ForgetDataFileProblems();
    using namespace orv;
    const auto parts = fuzz::Split(data, size, 2);
    CEphem96 ephemeris;
    if (ephemeris.OpenBytes(parts[0]) == Ephem96Status::Ok) {
        double xyz[3];
        for (int body = 1; body <= 9; ++body)
            for (const double jd : {2415020.5, 2451545.0, 2487980.0})
                if (ephemeris.Covers(body, jd)) ephemeris.Evaluate(body, jd, xyz);
    }
    ReadEclipseFile(fuzz::WriteScratch("solar1.dat", parts[1]));
    return 0;
}
