// The chart's comet layer (place 13 of the chart's order) and asteroid
// layer (place 14): the loaded entries of the catalogues (the map's
// catalogue settings are the load filters), at their apparent topocentric
// places for the map's instant, drawn brighter than the layer's magnitude
// limit at the levels the "Comet" and "Asteroid" display settings give;
// asteroids labelled with their number ("%1d"), comets with their
// designation, both optionally with "Mag %.1lf". A comet's tail points away from the Sun, longer the nearer
// the comet is to the Sun and the brighter it is.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "map/chartlayer.h"
#include "map/drawcontext.h"
#include "solarsystem/minorsource.h"

namespace orv {

// One body of a chart, as computed for its instant.
struct MinorChartEntry {
    std::uint32_t index = 0;  // in the catalogue
    MinorPlace place;
    double raJ2000Rad = 0.0, decJ2000Rad = 0.0;
    // Comets: the apparent place of date of the tail's end (when it has one).
    bool hasTail = false;
    double tailRaRad = 0.0, tailDecRad = 0.0;
};

// An orbit path as computed: apparent places of date at each step, with the
// step's instant (TT).
struct MinorPathPoint {
    double jdTT = 0.0;
    double raRad = 0.0, decRad = 0.0;
    bool label = false;
};
struct MinorChartPath {
    std::vector<MinorPathPoint> points;
};
// The paths of `catalogs` of one kind, seen from the map's site. At most
// 2000 steps a path.
std::vector<MinorChartPath> ComputeMinorPaths(const CMinorCatalogs& catalogs, MinorKind kind, const CMapDoc& doc,
                                              CPlanets& planets);

// A map's catalogue settings as load filters (the comets' date is the
// map's), and the same applied to the catalogues: what the map loads.
void LoadFiltersOf(const CMapDoc& doc, AsteroidFilter& asteroids, CometFilter& comets);
void LoadFiltersOf(const CAsteroidCatalogSettings& a, const CCometCatalogSettings& c, double jdTT,
                   AsteroidFilter& asteroids, CometFilter& comets);
void ApplyLoadFilters(CMinorCatalogs& catalogs, const CMapDoc& doc);

// The loaded bodies of one kind (and those whose orbit path is asked for),
// at the observer's instant (topocentric). Bodies without a position are
// left out.
std::vector<MinorChartEntry> ComputeMinorChart(const CMinorCatalogs& catalogs, MinorKind kind,
                                               const CMapDoc& doc, CPlanets& planets);

// The tail's length in AU for a comet at r AU from the Sun of absolute
// magnitude g: a dust and ion tail of some 0.05 AU at 1 AU from the Sun for
// a comet of g = 5, growing as 1/r² nearer the Sun, none fainter than
// g = 15 or beyond 5 AU.
double CometTailLengthAU(double sunDistanceAU, double absoluteG);

class CMinorLayer final : public IChartLayer {
public:
    CMinorLayer(MinorKind kind, std::shared_ptr<CMinorCatalogHandle> catalogs, SkySourceId source)
        : m_kind(kind), m_catalogs(std::move(catalogs)), m_source(source)
    {
    }
    std::span<const LayerSlot> Slots() const override
    {
        return m_kind == MinorKind::Asteroid ? std::span<const LayerSlot>(kAsteroidSlot)
                                             : std::span<const LayerSlot>(kCometSlot);
    }
    bool ShownAt(const CMapView& view, int) const override
    {
        return (m_kind == MinorKind::Asteroid ? view.asteroids : view.comets).shown;
    }
    void Draw(DrawContext& ctx, LayerSlot slot) override;
    // The places are keyed on everything they depend on (instant, site,
    // catalogue generation, filter): a full redraw keeps them.
    void Invalidate() override {}

private:
    static constexpr LayerSlot kAsteroidSlot[] = {LayerSlot::Asteroids};
    static constexpr LayerSlot kCometSlot[] = {LayerSlot::Comets};
    MinorKind m_kind;
    std::shared_ptr<CMinorCatalogHandle> m_catalogs;
    SkySourceId m_source;
    CPlanets m_planets;
    std::vector<MinorChartEntry> m_entries;
    std::vector<MinorChartPath> m_paths;
    // What the entries were computed for: a redraw that only scrolls or
    // zooms reuses them.
    struct ComputedFor {
        double jdUT = 0.0, latRad = 0.0, lonRad = 0.0, heightM = 0.0;
        std::uint64_t generation = 0;  // covers edits and the load filters
        bool operator==(const ComputedFor&) const = default;
    };
    std::optional<ComputedFor> m_computedFor;
};

// Puts comets and asteroids on a program's charts: a sky-object source and
// a chart layer for each, sharing `catalogs`.
void RegisterMinorBodies(CChartComponents& components, std::shared_ptr<CMinorCatalogHandle> catalogs);

}  // namespace orv
