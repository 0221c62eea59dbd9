// The chart's deep-sky layer: the objects of the NGC/IC, LEDA and Strasbourg
// catalogues that the level and the filters let through, each drawn with the
// symbol star atlases use for its kind, sized and turned by its axes and
// position angle, labelled as "LabelOption" says, and recorded in the
// chart's scene for identification and the list of visible objects.
#pragma once

#include <memory>
#include <vector>

#include "catalog/deepsky/deepskysource.h"
#include "map/chartlayer.h"
#include "map/drawcontext.h"

namespace orv {

// Bits of the deep-sky layer's style word in the chart scene: how the
// labels were formed.
namespace deepskystyle {
inline constexpr std::uint32_t kCommonNames = 1u << 0;
}

// Draws the deep-sky objects and records each in the context's scene under
// `source`. `gathered` is scratch space kept between draws.
void DrawDeepSky(DrawContext& ctx, const CDeepSkyCatalogues& catalogues, std::vector<DeepSkyObject>& gathered,
                 SkySourceId source);

// The label of an object by "LabelOption": 0 the designation (the Messier
// number for Messier objects), 1 the common name when it has one, 2 both.
std::string DeepSkyLabel(const DeepSkyTexts& t, int labelOption);

class CDeepSkyLayer final : public IChartLayer {
public:
    CDeepSkyLayer(std::shared_ptr<CDeepSkyCatalogueHandle> catalogues, SkySourceId source)
        : m_catalogues(std::move(catalogues)), m_source(source)
    {
    }
    std::span<const LayerSlot> Slots() const override { return kSlots; }
    bool ShownAt(const CMapView& view, int) const override;
    void Draw(DrawContext& ctx, LayerSlot) override { DrawDeepSky(ctx, m_catalogues->Get(), m_gathered, m_source); }

private:
    static constexpr LayerSlot kSlots[] = {LayerSlot::DeepSky};
    std::shared_ptr<CDeepSkyCatalogueHandle> m_catalogues;
    SkySourceId m_source;
    std::vector<DeepSkyObject> m_gathered;
};

// Puts the deep-sky catalogues on a program's charts: their sky-object
// source (find, identify, lists) and their chart layer.
void RegisterDeepSkyCatalogues(CChartComponents& components, std::shared_ptr<CDeepSkyCatalogueHandle> catalogues);

}  // namespace orv
