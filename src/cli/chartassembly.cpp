#include "cli/chartassembly.h"

#include <memory>

#include "catalog/constellations/drawconstellations.h"
#include "catalog/deepsky/drawdeepsky.h"
#include "catalog/stars/drawstars.h"
#include "satellite/passdraw.h"
#include "solarsystem/drawminor.h"
#include "solarsystem/drawplanets.h"

namespace orv::cli {

const CChartComponents& ChartComponents()
{
    static const CChartComponents components = [] {
        CChartComponents c;
        RegisterMapLayers(c.layers);
        auto stars = std::make_shared<CStarCatalogueHandle>();
        RegisterStarCatalogue(c, stars);
        RegisterConstellations(c, stars);
        RegisterDeepSkyCatalogues(c, std::make_shared<CDeepSkyCatalogueHandle>());
        RegisterPlanets(c);
        RegisterMinorBodies(c, std::make_shared<CMinorCatalogHandle>());
        sat::RegisterPlottedPassLayer(c.layers);
        return c;
    }();
    return components;
}

}  // namespace orv::cli
