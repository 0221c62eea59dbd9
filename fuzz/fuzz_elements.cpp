// Two-line element files downloaded at the eyepiece: every element set of
// the input parsed, then propagated to its epoch and a week either side
// (the propagator must refuse what it cannot model, never hang or crash).
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "satellite/elements.h"
#include "satellite/propagator.h"
#include "fuzzsupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace orv;
    const std::string_view text = fuzz::Text({data, size});
    std::vector<std::string_view> lines;
    std::size_t at = 0;
    while (at <= text.size() && lines.size() < 300) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    for (std::size_t i = 0; i + 2 < lines.size(); i += 3) {
        const sat::SatelliteRecord record = sat::ParseElementSet(lines[i], lines[i + 1], lines[i + 2]);
        sat::CSatellitePropagator propagator(record);
        for (const double minutes : {0.0, -10080.0, 10080.0, 1440.0 * 365.0}) {
            sat::TemeStateEarthRadii state;
            propagator.Propagate(minutes, state);
        }
    }
    return 0;
}
