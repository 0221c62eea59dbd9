// The chart's star layer: gathering the Tycho-2 stars of the field, drawing
// their discs, marks and labels, and recording each star drawn in the
// chart's scene for identification and the list of visible stars.
#pragma once

#include <QImage>

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "catalog/stars/chartstars.h"
#include "catalog/stars/starsource.h"
#include "map/chartlayer.h"
#include "map/drawcontext.h"

namespace orv {

// Everything that decides where the stars of a chart land: when it is
// unchanged the star list of the previous draw is reused (and extended when
// only the limit became fainter).
struct StarGatherKey {
    double centreRa = 0, centreDec = 0, centreAlt = 0, centreAz = 0, fieldDeg = 0, rotationRad = 0;
    int centring = 0, flipH = 0, flipV = 0;
    int widthPx = 0, heightPx = 0;
    double dpiX = 0, dpiY = 0;
    double jdUT = 0, latRad = 0, lonRad = 0, heightM = 0;
    bool operator==(const StarGatherKey&) const = default;
};

// Pre-rendered discs, one per radius, colour and style, for raster surfaces.
class CStarSprites {
public:
    struct Sprite {
        QImage image;  // premultiplied ARGB, the disc centred in it
        int offsetX = 0, offsetY = 0;  // from the star's pixel to the image's top-left corner
    };
    const Sprite& Get(int rx, int ry, QRgb colour, QRgb halo, int haloPx);
    void Clear() { m_sprites.clear(); }

private:
    std::unordered_map<std::uint64_t, Sprite> m_sprites;
};

// A catalogue region as a circle on the sky: the unit vector (J2000) of its
// box's centre and the angular radius through its farthest corner.
struct RegionCircle {
    double centre[3] = {0.0, 0.0, 0.0};
    double radiusRad = 0.0;
    double cosRadius = 1.0, sinRadius = 0.0;
    bool known = false;
};

// One star that landed on the surface (within one draw).
struct DrawnStar {
    std::uint32_t index = 0;  // into CChartStars::stars
    float x = 0.0f, y = 0.0f;
    std::uint16_t rx = 0, ry = 0;
};

// What the star layer keeps from one draw of its chart to the next: the
// star list (reused while nothing that moves the stars changed, extended
// when only the limit became fainter), the discs already rendered and the
// regions' circles.
struct StarLayerState {
    CChartStars chart;
    StarGatherKey key;
    int listLimitCenti = 0;  // the faintest magnitude the list holds
    bool valid = false;
    std::vector<DrawnStar> drawn;  // the last draw's stars, for its marks and labels
    CStarSprites sprites;
    std::vector<RegionCircle> regionCircles;  // by region, computed on first use

    void Invalidate()
    {
        valid = false;
        chart.stars.clear();
        chart.regions.clear();
        drawn.clear();
    }
};

// Draws the stars and records each in the context's scene under `source`.
void DrawStars(DrawContext& ctx, const CTycho2Catalogue& catalogue, StarLayerState& state, SkySourceId source);

// The star layer (place 11 of the chart's order).
class CStarLayer final : public IChartLayer {
public:
    CStarLayer(std::shared_ptr<CStarCatalogueHandle> catalogue, SkySourceId source)
        : m_catalogue(std::move(catalogue)), m_source(source)
    {
    }
    std::span<const LayerSlot> Slots() const override { return kSlots; }
    bool ShownAt(const CMapView& view, int) const override { return view.starState.shown; }
    void Prepare(DrawContext& ctx) override;
    void Draw(DrawContext& ctx, LayerSlot slot) override;
    void Invalidate() override { m_state.Invalidate(); }

private:
    static constexpr LayerSlot kSlots[] = {LayerSlot::Stars};
    std::shared_ptr<CStarCatalogueHandle> m_catalogue;
    SkySourceId m_source;
    StarLayerState m_state;
};

// Puts the Tycho-2 catalogue on a program's charts: its sky-object source
// (find, identify, lists) and its chart layer.
void RegisterStarCatalogue(CChartComponents& components, std::shared_ptr<CStarCatalogueHandle> catalogue);

}  // namespace orv
