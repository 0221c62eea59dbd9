// Chart layers: what each kind of chart content implements to be drawn.
//
// A chart is drawn in one fixed order of 25 places, each layer over the
// ones before it (altitude-azimuth grid lines, background image, Earth's
// shadow, equatorial grid, altitude-azimuth grid labels, ecliptic and
// galactic grids, overlays, horizon, constellation figures, stars, planets,
// comets, asteroids, deep-sky objects, user catalogues, quick catalogue,
// target list, constellation names, tracks, satellite passes, annotations,
// search target, scale line, compass). A layer names the places where it
// draws — most draw in one, the altitude-azimuth grid and the constellations
// in two — and the renderer calls it there with the drawing context.
//
// The places that assemble the program (the desktop program, the command
// line, the tests) register the layers they have in a CChartLayerRegistry;
// each chart's renderer makes its own instances from the registry, so a
// layer may keep what it reuses from one draw of its chart to the next (the
// star list, pre-rendered discs). Adding a layer is: one class, one
// registration line, one test.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "map/skyobjects.h"

namespace orv {

class CMapView;
struct DrawContext;

// The places of a chart, in drawing order.
enum class LayerSlot : int {
    AltAzGridLines = 1,
    BackgroundImage = 2,
    EarthShadow = 3,
    RaDecGrid = 4,
    AltAzGridLabels = 5,
    EclipticGrid = 6,
    GalacticGrid = 7,
    Overlays = 8,
    Horizon = 9,
    ConstellationFigures = 10,
    Stars = 11,
    Planets = 12,
    Comets = 13,
    Asteroids = 14,
    DeepSky = 15,
    UserCatalogues = 16,
    QuickCatalogue = 17,
    TargetList = 18,
    ConstellationNames = 19,
    Tracks = 20,
    SatellitePasses = 21,
    Annotations = 22,
    SearchTarget = 23,
    ScaleLine = 24,
    Compass = 25,
};
inline constexpr int kLayerSlotCount = 25;

class IChartLayer {
public:
    virtual ~IChartLayer() = default;

    // Where in the chart's order the layer draws.
    virtual std::span<const LayerSlot> Slots() const = 0;
    // The layer's level range test: false when it has nothing to show at
    // the view's current level (the view's level state says, as the level
    // table and the layer's settings decide). Such a layer is not called.
    virtual bool ShownAt(const CMapView& /*view*/, int /*level*/) const { return true; }
    // Called for every shown layer, in the chart's order, before any layer
    // draws: a layer that will draw in a fixed place (the scale line, the
    // compass) takes it in the context's label register, so that no label
    // goes there.
    virtual void Prepare(DrawContext& /*ctx*/) {}
    // Draws the layer's part of the chart at `slot`.
    virtual void Draw(DrawContext& ctx, LayerSlot slot) = 0;
    // The map's level changed (told before the next draw).
    virtual void LevelChanged(int /*level*/) {}
    // Forget what is kept between draws (a catalogue or its settings changed).
    virtual void Invalidate() {}
};

// The layers a program has. Each chart makes its own instances.
class CChartLayerRegistry {
public:
    using Factory = std::function<std::unique_ptr<IChartLayer>()>;

    void Register(Factory factory) { m_factories.push_back(std::move(factory)); }
    // Registers a layer class made with copies of `args`.
    template <class Layer, class... Args>
    void Add(Args... args)
    {
        Register([=] { return std::make_unique<Layer>(args...); });
    }

    std::vector<std::unique_ptr<IChartLayer>> Create() const
    {
        std::vector<std::unique_ptr<IChartLayer>> layers;
        layers.reserve(m_factories.size());
        for (const Factory& f : m_factories)
            if (auto l = f()) layers.push_back(std::move(l));
        return layers;
    }
    std::size_t Count() const { return m_factories.size(); }

private:
    std::vector<Factory> m_factories;
};

// What a program assembles for its charts: the layers that draw and the
// sources that find and describe what they draw.
struct CChartComponents {
    CChartLayerRegistry layers;
    CSkyObjectRegistry objects;
};

// Registers the layers of the map itself: the coordinate grids, the search
// target marker, the scale line and the compass.
void RegisterMapLayers(CChartLayerRegistry& layers);

}  // namespace orv
