// The chart's drawing pipeline: the registered layers in their fixed order,
// the scenes of the draws and identification through the sky-object sources.
#include "map/mapdraw.h"

#include <algorithm>
#include <cmath>

#include "map/drawcontext.h"

namespace orv {

struct CChartRenderer::Impl {
    std::vector<std::unique_ptr<IChartLayer>> layers;
    // (slot, layer) in drawing order: by slot, then in order of registration.
    std::vector<std::pair<LayerSlot, IChartLayer*>> order;
    // Each layer once, at its first place in the order (for Prepare).
    std::vector<IChartLayer*> prepareOrder;
    CChartScene windowScene;  // the last raster-display draw: identification reads it
    CChartScene otherScene;   // the last printer, picture or vector draw
    bool lastWasWindow = true;
    int lastLevel = -1;       // the level the layers were last told
    RenderStats stats;
};

CChartRenderer::CChartRenderer(const CChartComponents& components)
    : m_components(components), m_impl(std::make_unique<Impl>())
{
    m_impl->layers = components.layers.Create();
    for (const auto& layer : m_impl->layers)
        for (LayerSlot slot : layer->Slots()) m_impl->order.emplace_back(slot, layer.get());
    std::stable_sort(m_impl->order.begin(), m_impl->order.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [slot, layer] : m_impl->order)
        if (std::find(m_impl->prepareOrder.begin(), m_impl->prepareOrder.end(), layer) == m_impl->prepareOrder.end())
            m_impl->prepareOrder.push_back(layer);
}

CChartRenderer::~CChartRenderer() = default;

const std::vector<std::unique_ptr<IChartLayer>>& CChartRenderer::Layers() const { return m_impl->layers; }

void CChartRenderer::Draw(const DrawSurface& surface, const CMapView& view, const RenderOptions& options)
{
    if (surface.painter == nullptr || !surface.painter->isActive() || surface.widthPx <= 0 || surface.heightPx <= 0)
        return;
    DrawSurface s = surface;
    if (!(s.dpiX > 0.0) || !std::isfinite(s.dpiX)) s.dpiX = 96.0;
    if (!(s.dpiY > 0.0) || !std::isfinite(s.dpiY)) s.dpiY = 96.0;

    // The surface's own projection: the view's, fitted to this surface.
    CCoordinates coords = view.coordinates;
    coords.SetupSurface(s.widthPx, s.heightPx, s.dpiX, s.dpiY);
    const CObserverDoc& observer = view.Doc().observer;
    const CChartFrame frame(observer, coords);

    const bool window = s.kind == SurfaceKind::RasterDisplay;
    CChartScene& scene = window ? m_impl->windowScene : m_impl->otherScene;
    scene.Begin({observer.JulianDate(), observer.JulianDateTDT(), view.Level(), s.widthPx, s.heightPx,
                 observer.LatitudeRad(), observer.LongitudeRad(), observer.HeightM(), observer.LocalOffsetHours(), true});
    if (view.Doc().horizon.useForEvents != 0)
        scene.SetHorizon(std::make_shared<const HorizonProfile>(view.Doc().horizon.altitudeDeg));
    m_impl->lastWasWindow = window;

    if (view.Level() != m_impl->lastLevel) {
        m_impl->lastLevel = view.Level();
        for (const auto& layer : m_impl->layers) layer->LevelChanged(view.Level());
    }

    QPainter& p = *s.painter;
    p.save();
    RenderStats stats;
    CLabelPlacer labels(s.widthPx, s.heightPx, std::max(16.0, 0.4 * s.dpiY));
    DrawContext ctx{s,      p,       view,   view.Doc(), coords, frame,
                    view.Level(), options, MakePalette(options.scheme, s.kind, options.monochrome),
                    MakeFonts(s.dpiY), labels, stats, scene};

    p.fillRect(QRectF(0, 0, s.widthPx, s.heightPx), ctx.palette.background);
    // Layers that draw in fixed places take them before any label is placed.
    for (IChartLayer* layer : m_impl->prepareOrder)
        if (layer->ShownAt(view, view.Level())) layer->Prepare(ctx);
    // The fixed order of a chart, each layer over the ones before it.
    for (const auto& [slot, layer] : m_impl->order) {
        if (!layer->ShownAt(view, view.Level())) continue;
        p.save();
        layer->Draw(ctx, slot);
        p.restore();
    }
    p.restore();
    m_impl->stats = stats;
}

std::optional<IdentifiedObject> CChartRenderer::Identify(double xPx, double yPx, double tolerancePx) const
{
    const CChartScene& scene = m_impl->windowScene;
    const SceneObject* found = scene.Nearest(xPx, yPx, tolerancePx);
    if (found == nullptr) return std::nullopt;
    IdentifiedObject o;
    o.type = found->Type();
    o.raJ2000Rad = found->raJ2000Rad;
    o.decJ2000Rad = found->decJ2000Rad;
    o.xPx = found->xPx;
    o.yPx = found->yPx;
    o.source = found->source;
    o.key = found->key;
    if (const auto d = m_components.objects.Describe(*found, scene)) {
        o.type = d->type;
        o.designation = d->designation;
        o.information = d->information;
        o.raJ2000Rad = d->raJ2000Rad;
        o.decJ2000Rad = d->decJ2000Rad;
    } else {
        o.designation = std::string(ObjectTypeName(found->Type()));
        o.information = o.designation;
    }
    return o;
}

const CChartScene& CChartRenderer::WindowScene() const { return m_impl->windowScene; }
const CChartScene& CChartRenderer::LastScene() const
{
    return m_impl->lastWasWindow ? m_impl->windowScene : m_impl->otherScene;
}

const RenderStats& CChartRenderer::LastStats() const { return m_impl->stats; }

void CChartRenderer::Invalidate()
{
    for (const auto& layer : m_impl->layers) layer->Invalidate();
    m_impl->windowScene.Invalidate();
    m_impl->otherScene.Invalidate();
}

}  // namespace orv
