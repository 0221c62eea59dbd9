#include "cli/chartassembly.h"

#include <memory>

#include "catalog/constellations/drawconstellations.h"
#include "catalog/deepsky/drawdeepsky.h"
#include "catalog/stars/drawstars.h"
#include "overlay/drawoverlay.h"
#include "satellite/passdraw.h"
#include "solarsystem/drawminor.h"
#include "solarsystem/drawplanets.h"

namespace orv::cli {

namespace {
const std::shared_ptr<COverlayStore>& OverlayStorePtr()
{
    static const auto store = std::make_shared<COverlayStore>();
    return store;
}
}  // namespace

COverlayStore& OverlayStore() { return *OverlayStorePtr(); }

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
        RegisterOverlays(c.layers, OverlayStorePtr());
        return c;
    }();
    return components;
}

}  // namespace orv::cli
