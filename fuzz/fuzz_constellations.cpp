// The four constellation files as a data folder may hold them, damaged or
// foreign: each decoded from its bytes, then Roman's point-in-constellation
// search run over the strips that decoded.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "catalog/constellations/constellationfiles.h"
#include "fuzzsupport.h"
#include "util/dataproblems.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The refusals of the last input, each of its own wording, are forgotten.
    orv::ForgetDataFileProblems();
    using namespace orv;
    const auto parts = fuzz::Split(data, size, 4);
    std::vector<FigureRecord> figures;
    std::vector<NamePlace> places;
    std::vector<ConstellationNameEntry> names;
    std::vector<DeclinationStrip> strips;
    std::vector<BoundaryEdge> edges;
    DecodeFigures(parts[0], figures);
    DecodeNamePlaces(parts[1], places);
    DecodeNames(parts[2], names);
    if (DecodeBoundaries(parts[3], strips, edges) == ConstFileStatus::Ok) {
        for (double ra = 0.0; ra < 6.3; ra += 0.7)
            for (double dec = -1.5; dec <= 1.5; dec += 0.5) {
                const int c = ConstellationOfB1875(strips, ra, dec);
                if (c < -1 || c > 87) __builtin_trap();
            }
    }
    return 0;
}
