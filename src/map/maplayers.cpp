// The layers of the map itself: the four coordinate grids, the search
// target marker, the scale line and the compass. Each is a small class over
// its drawing function; RegisterMapLayers is what a program calls to have
// them on its charts.
#include "map/chartlayer.h"
#include "map/drawcontext.h"
#include "map/drawground.h"
#include "map/mapview.h"

namespace orv {

namespace {

// The altitude-azimuth grid draws twice: its lines first of all (with the
// ground below the horizon), then its lines again with their labels over
// the equatorial grid. It is traced once per draw and kept between the two.
class CAltAzGridLayer final : public IChartLayer {
public:
    std::span<const LayerSlot> Slots() const override { return kSlots; }
    void Draw(DrawContext& ctx, LayerSlot slot) override
    {
        if (slot == LayerSlot::AltAzGridLines)
            DrawAltAzGridFirstPass(ctx, m_traced);
        else
            DrawAltAzGridSecondPass(ctx, m_traced);
    }

private:
    static constexpr LayerSlot kSlots[] = {LayerSlot::AltAzGridLines, LayerSlot::AltAzGridLabels};
    std::shared_ptr<GridLines> m_traced;
};

// The ecliptic grid, written out in full as the model of a layer: its place
// in the chart's order, its level range test (the view keeps the grid's
// state at the current level: 2 solid lines, 1 faint ones, 0 none) and its
// drawing.
class CEclipticGridLayer final : public IChartLayer {
public:
    std::span<const LayerSlot> Slots() const override { return kSlots; }
    bool ShownAt(const CMapView& view, int) const override { return view.eclipticGrid.state > 0; }
    void Draw(DrawContext& ctx, LayerSlot) override { DrawEclipticGrid(ctx); }

private:
    static constexpr LayerSlot kSlots[] = {LayerSlot::EclipticGrid};
};

void TakesNoPlace(DrawContext&) {}

// The other layers of the map draw in one place with one function each.
template <LayerSlot Slot, void (*DrawFn)(DrawContext&), void (*PrepareFn)(DrawContext&) = TakesNoPlace>
class CSimpleLayer final : public IChartLayer {
public:
    std::span<const LayerSlot> Slots() const override { return kSlots; }
    void Prepare(DrawContext& ctx) override { PrepareFn(ctx); }
    void Draw(DrawContext& ctx, LayerSlot) override { DrawFn(ctx); }

private:
    static constexpr LayerSlot kSlots[] = {Slot};
};

using CEquatorialGridLayer = CSimpleLayer<LayerSlot::RaDecGrid, DrawEquatorialGrid>;
using CGalacticGridLayer = CSimpleLayer<LayerSlot::GalacticGrid, DrawGalacticGrid>;
using CSearchTargetLayer = CSimpleLayer<LayerSlot::SearchTarget, DrawSearchTarget>;
using CScaleLineLayer = CSimpleLayer<LayerSlot::ScaleLine, DrawScaleLine, ReserveScaleLineArea>;
using CCompassLayer = CSimpleLayer<LayerSlot::Compass, DrawCompass, ReserveCompassArea>;

}  // namespace

void RegisterMapLayers(CChartLayerRegistry& layers)
{
    layers.Add<CAltAzGridLayer>();
    layers.Add<CEquatorialGridLayer>();
    layers.Add<CEclipticGridLayer>();
    layers.Add<CGalacticGridLayer>();
    RegisterGroundLayer(layers);
    layers.Add<CSearchTargetLayer>();
    layers.Add<CScaleLineLayer>();
    layers.Add<CCompassLayer>();
}

}  // namespace orv
