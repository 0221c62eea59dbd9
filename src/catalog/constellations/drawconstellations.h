// The chart's constellation layer. It draws in two places of the chart:
//   - before the stars: the figure lines, each the great-circle arc between
//     two stars at their places of the chart's date, and the boundaries,
//     each edge an arc of a meridian or of a parallel of the B1875.0 equator
//     carried to the chart's frame, so that the parallels come out as the
//     curves they are at any other epoch;
//   - after every object layer: the names at their places (abbreviated from
//     the "ConstellationLevelAbbrev" level), then the corner name of the
//     constellation that holds the chart centre, then one further pass of
//     lines: the boundary of that constellation drawn again, stronger, so
//     that the corner name points at its region.
// Every line goes through the chart's curve tracer, so nothing is drawn
// toward the antipode of the centre.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "catalog/constellations/constellationsource.h"
#include "catalog/stars/starsource.h"
#include "map/chartlayer.h"

namespace orv {

struct DrawContext;

// The corners of the chart, as the digits of "CornerLabel" number them:
// 0 top left, 1 top right, 2 bottom left, 3 bottom right. Item 0 of the
// corner labels is the constellation name; the slot whose digit is 0 is the
// corner it goes to.
enum class ChartCorner { TopLeft = 0, TopRight = 1, BottomLeft = 2, BottomRight = 3 };
ChartCorner CornerOfConstellationName(const std::array<int, 4>& cornerSlots);
// The slots with the constellation name moved to `corner`: its digit and the
// one that was there change places, so the four stay a permutation.
std::array<int, 4> MoveConstellationNameToCorner(std::array<int, 4> cornerSlots, ChartCorner corner);

class CConstellationLayer final : public IChartLayer {
public:
    CConstellationLayer(std::shared_ptr<CConstellationHandle> data, std::shared_ptr<CStarCatalogueHandle> stars,
                        SkySourceId source)
        : m_data(std::move(data)), m_stars(std::move(stars)), m_source(source)
    {
    }

    std::span<const LayerSlot> Slots() const override { return kSlots; }
    bool ShownAt(const CMapView& view, int level) const override;
    void Draw(DrawContext& ctx, LayerSlot slot) override;

private:
    static constexpr LayerSlot kSlots[] = {LayerSlot::ConstellationFigures, LayerSlot::ConstellationNames};

    // Record numbers in "Tycho2.dat" of the two stars of each figure record
    // (−1 where the Hipparcos number is not in the catalogue), resolved once.
    const std::vector<std::int64_t>& FigureStars();
    void DrawFigures(DrawContext& ctx);
    void DrawBoundaries(DrawContext& ctx, int onlyConstellation, double widthFactor);
    void DrawNames(DrawContext& ctx);
    int DrawCornerName(DrawContext& ctx);

    std::shared_ptr<CConstellationHandle> m_data;
    std::shared_ptr<CStarCatalogueHandle> m_stars;
    SkySourceId m_source;
    std::vector<std::int64_t> m_figureStars;
    bool m_figureStarsResolved = false;
};

// Registers the layer and the constellations' sky-object source; the layer
// finds the figures' stars in `stars`.
void RegisterConstellations(CChartComponents& components, std::shared_ptr<CStarCatalogueHandle> stars);

}  // namespace orv
