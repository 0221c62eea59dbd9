// Overlay files and horizon profiles written by hand: the overlay language
// parsed (every command, colour, font, line style and epoch), the list file
// read, and a horizon imported from a text list and read from a ".hzn" file.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "map/horizonprofile.h"
#include "overlay/overlayfile.h"
#include "fuzzsupport.h"
#include "util/dataproblems.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The refusals of the last input, each of its own wording, are forgotten.
    orv::ForgetDataFileProblems();
    using namespace orv;
    const auto parts = fuzz::Split(data, size, 3);
    const std::string overlayText(fuzz::Text(parts[0]));
    const COverlay overlay = ParseOverlayText(overlayText, "fuzz.ovl");
    // Every point the display list holds is a unit vector.
    for (std::size_t i = 0; i + 2 < overlay.points.size(); i += 3) {
        const double n = overlay.points[i] * overlay.points[i] + overlay.points[i + 1] * overlay.points[i + 1] +
                         overlay.points[i + 2] * overlay.points[i + 2];
        if (!(n > 0.999 && n < 1.001)) __builtin_trap();
    }
    HorizonProfile profile{};
    ParseHorizonText(std::string(fuzz::Text(parts[1])), "fuzz.txt", profile);
    ReadHorizonFile(fuzz::WriteScratch("fuzz.hzn", parts[2]), profile);
    std::vector<OverlayListEntry> entries;
    ReadOverlayList(fuzz::WriteScratch("overlay.dat", parts[1]), entries);
    return 0;
}
