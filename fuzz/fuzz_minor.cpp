// Comet and asteroid elements as users download them: the MPC's MPCORB and
// comet formats, our own catalogue lines and single pasted lines, each
// element set read then turned into an orbit and propagated (the Kepler
// solvers must refuse what they cannot solve, never spin).
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "solarsystem/minorbodies.h"
#include "solarsystem/minorelements.h"
#include "solarsystem/orbits.h"
#include "fuzzsupport.h"
#include "util/dataproblems.h"

namespace {

template <class Elements>
void Propagate(const std::vector<Elements>& list)
{
    for (std::size_t i = 0; i < list.size() && i < 50; ++i) {
        const auto orbit = orv::OrbitOf(list[i]);
        if (!orbit) continue;
        orv::Vector3 position;
        for (const double jd : {2451545.0, 2460000.5, -1e6, 1e7}) orv::HeliocentricJ2000(*orbit, jd, position);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The refusals of the last input, each of its own wording, are forgotten.
    orv::ForgetDataFileProblems();
    using namespace orv;
    const std::string_view text = fuzz::Text({data, size});
    std::vector<AsteroidElements> asteroids;
    std::vector<CometElements> comets;
    ImportMpcorb(text, AsteroidFilter{}, asteroids);
    ImportMpcComets(text, CometFilter{}, comets);
    ParseAsteroidCatalog(text, AsteroidFilter{}, asteroids);
    ParseCometCatalog(text, CometFilter{}, comets);
    Propagate(asteroids);
    Propagate(comets);
    // Each line also as what a user types into the find box, against the
    // catalogues just read (numbers of any length, names, designations).
    CMinorCatalogs catalogs;
    catalogs.Asteroids() = asteroids;
    catalogs.Comets() = comets;
    catalogs.MarkChanged(MinorKind::Asteroid);
    catalogs.MarkChanged(MinorKind::Comet);
    std::size_t at = 0;
    for (int lines = 0; at < text.size() && lines < 50; ++lines) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string_view line = text.substr(at, end - at);
        ParsePastedLine(line);
        catalogs.FindAsteroids(line);
        catalogs.FindComets(line, CMinorCatalogs::Scope::Loaded);
        at = end + 1;
    }
    return 0;
}
