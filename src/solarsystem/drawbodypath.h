// The chart layer of body paths (place 20 of the chart's order, the
// tracks): the path of the Sun, the Moon or a planet over a span of dates,
// as a line through its places with a dated mark every tick step, each mark
// labelled with its date and the body's magnitude ("Mag:%.1f"). The layer
// belongs to one map window, which hands it the paths the user plotted.
#pragma once

#include <vector>

#include "map/chartlayer.h"
#include "solarsystem/planetephemeris.h"

namespace orv {

class CBodyPathLayer final : public IChartLayer {
public:
    std::span<const LayerSlot> Slots() const override { return kSlots; }
    bool ShownAt(const CMapView&, int) const override { return !m_paths.empty(); }
    void Draw(DrawContext& ctx, LayerSlot slot) override;

    void Add(BodyPath path) { m_paths.push_back(std::move(path)); }
    void Clear() { m_paths.clear(); }
    const std::vector<BodyPath>& Paths() const { return m_paths; }

private:
    static constexpr LayerSlot kSlots[] = {LayerSlot::Tracks};
    std::vector<BodyPath> m_paths;
};

void DrawBodyPaths(DrawContext& ctx, const std::vector<BodyPath>& paths);

}  // namespace orv
