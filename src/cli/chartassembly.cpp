#include "cli/chartassembly.h"

#include <memory>

#include "catalog/stars/drawstars.h"
#include "satellite/passdraw.h"
#include "solarsystem/drawplanets.h"

namespace orv::cli {

const CChartComponents& ChartComponents()
{
    static const CChartComponents components = [] {
        CChartComponents c;
        RegisterMapLayers(c.layers);
        RegisterStarCatalogue(c, std::make_shared<CStarCatalogueHandle>());
        RegisterPlanets(c);
        sat::RegisterPlottedPassLayer(c.layers);
        return c;
    }();
    return components;
}

}  // namespace orv::cli
