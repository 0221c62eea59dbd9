// The chart's planet layer (place 12 of the chart's order): the Sun, the Moon
// and the planets at their apparent topocentric places at the map's instant,
// as symbols sized by magnitude on wide charts and as discs to their
// apparent size, lit on the Sun's side to their phase, once a disc is a few
// pixels across; names in the chart's label register; every body drawn
// recorded in the chart's scene.
#pragma once

#include <optional>

#include "map/chartlayer.h"
#include "map/drawcontext.h"
#include "solarsystem/physephem.h"
#include "solarsystem/planetmoons.h"
#include "solarsystem/planets.h"

namespace orv {

// The lit part of a disc of radius r centred at the origin, the Sun toward
// +x: the Sun-side half disc and the terminator, a half ellipse crossing the
// axis at x = r·(1 − 2k), for the illuminated fraction k.
QPainterPath PhaseShape(double radiusPx, double illuminatedFraction);

// The places a chart records for its bodies: each apparent place referred
// back to J2000 (DateToJ2000), radians, by body.
struct PlanetChartPlaces {
    double raJ2000Rad[kBodyCount] = {};
    double decJ2000Rad[kBodyCount] = {};
};
PlanetChartPlaces ChartPlacesOf(const CObserverDoc& observer, const CPlanets& planets);

// How Jupiter and Saturn are turned at the chart's instant, and where their
// satellites stand (each satellite's place of date, from the planets'
// topocentric places).
struct PlanetGlobes {
    std::optional<JupiterPhysical> jupiter;
    std::optional<SaturnRingView> saturn;
    SatellitePlaces satellites;
    double satelliteRaJ2000Rad[kChartSatelliteCount] = {};
    double satelliteDecJ2000Rad[kChartSatelliteCount] = {};
};
PlanetGlobes GlobesOf(const CObserverDoc& observer, const CPlanets& planets);

// Draws the bodies of `planets` (already computed for the chart's instant)
// and records each drawn in the scene under `source` at its `places`. At
// deep levels Saturn is drawn with its rings at their tilt (the globe hiding
// the far half of the rings, the near half crossing the globe), Jupiter with
// its belts (when the map's solar-system settings ask for them) and the
// Great Red Spot on the face turned to the Earth, and the satellites of
// `globes` around their planets, recorded under `moonSource`.
void DrawPlanets(DrawContext& ctx, const CPlanets& planets, const PlanetChartPlaces& places, SkySourceId source,
                 const PlanetGlobes* globes = nullptr, SkySourceId moonSource = kNoSkySource);

class CPlanetLayer final : public IChartLayer {
public:
    CPlanetLayer(SkySourceId source, SkySourceId moonSource) : m_source(source), m_moonSource(moonSource) {}
    std::span<const LayerSlot> Slots() const override { return kSlots; }
    bool ShownAt(const CMapView& view, int) const override { return view.planets.shown; }
    // What is kept depends on the instant and the site alone, which it is
    // keyed on; a change of catalogue or settings leaves it valid.
    void Draw(DrawContext& ctx, LayerSlot slot) override;

private:
    static constexpr LayerSlot kSlots[] = {LayerSlot::Planets};
    SkySourceId m_source;
    SkySourceId m_moonSource;
    CPlanets m_planets;
    PlanetChartPlaces m_places;
    PlanetGlobes m_globes;
    // The instant and site the bodies were last computed for: a redraw that
    // only scrolls or zooms reuses them (ten apparent places cost about a
    // millisecond and a half through VSOP87).
    struct ComputedFor {
        double jdUT = 0.0, latRad = 0.0, lonRad = 0.0, heightM = 0.0;
        bool operator==(const ComputedFor&) const = default;
    };
    std::optional<ComputedFor> m_computedFor;
};

// Puts the Sun, the Moon and the planets on a program's charts: their
// sky-object source (find, identify) and their chart layer.
void RegisterPlanets(CChartComponents& components);

}  // namespace orv
