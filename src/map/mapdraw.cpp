// The chart's drawing pipeline: the layers in their fixed order, the
// catalogues they share, identification and the list of visible stars.
#include "map/mapdraw.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

#include "catalog/stars/chartstars.h"
#include "catalog/stars/crossindex.h"
#include "catalog/stars/stardesignation.h"
#include "catalog/stars/tycho2catalogue.h"
#include "map/drawcontext.h"
#include "map/drawstars.h"
#include "satellite/passdraw.h"
#include "util/angles.h"
#include "util/binaryio.h"

namespace orv {

// ------------------------------------------------------------ Catalogues

CChartCatalogues::CChartCatalogues() = default;
CChartCatalogues::~CChartCatalogues() = default;

CTycho2Catalogue& CChartCatalogues::Tycho()
{
    if (!m_tycho) m_tycho = std::make_unique<CTycho2Catalogue>();
    if (!m_tried) {
        m_tried = true;
        m_tycho->OpenCatalogue();  // a missing catalogue leaves it closed: no stars, no message
    }
    return *m_tycho;
}

// ------------------------------------------------------------ Renderer

struct CChartRenderer::Impl {
    explicit Impl(CChartCatalogues& c) : catalogues(c) {}

    CChartCatalogues& catalogues;
    StarLayerState window;  // draws on the chart window: identification reads this one
    StarLayerState other;   // printers, exported pictures, vector files
    const StarLayerState* last = nullptr;
    double windowYears = 0.0;  // Julian years of the window's chart from J2000 (TT)
    double lastYears = 0.0;
    RenderStats stats;
};

CChartRenderer::CChartRenderer(CChartCatalogues& catalogues) : m_impl(std::make_unique<Impl>(catalogues)) {}
CChartRenderer::~CChartRenderer() = default;

void CChartRenderer::Draw(const DrawSurface& surface, CMapView& view, const RenderOptions& options)
{
    if (surface.painter == nullptr || !surface.painter->isActive() || surface.widthPx <= 0 || surface.heightPx <= 0)
        return;
    DrawSurface s = surface;
    if (!(s.dpiX > 0.0) || !std::isfinite(s.dpiX)) s.dpiX = 96.0;
    if (!(s.dpiY > 0.0) || !std::isfinite(s.dpiY)) s.dpiY = 96.0;

    QPainter& p = *s.painter;
    p.save();
    CCoordinates& coords = view.coordinates;
    coords.SetupSurface(s.widthPx, s.heightPx, s.dpiX, s.dpiY);
    const CChartFrame frame(view.Doc().observer, coords);
    RenderStats stats;
    CLabelPlacer labels(s.widthPx, s.heightPx, std::max(16.0, 0.4 * s.dpiY));
    DrawContext ctx{s,      p,       view,   view.Doc(), coords, frame, view.Level(), options,
                    MakePalette(options.scheme, s.kind, options.monochrome), MakeFonts(s.dpiY), labels, stats, nullptr};

    // The fixed order of a chart, each layer over the ones before it. The
    // layers that this program does not draw yet return at once.
    using LayerFn = void (*)(DrawContext&, Impl&);
    const LayerFn nothing = [](DrawContext&, Impl&) {};
    const LayerFn stars = [](DrawContext& c, Impl& impl) {
        StarLayerState& st = c.IsRasterDisplay() ? impl.window : impl.other;
        const CTycho2Catalogue& tycho = impl.catalogues.Tycho();
        c.stats.catalogueOpen = tycho.IsOpen();
        DrawStars(c, tycho, st);
        impl.last = &st;
        const double years = (c.doc.observer.JulianDateTDT() - 2451545.0) / 365.25;
        impl.lastYears = years;
        if (c.IsRasterDisplay()) impl.windowYears = years;
    };
    const std::array<LayerFn, 25> layers = {
        [](DrawContext& c, Impl&) { DrawAltAzGridFirstPass(c); },   // 1 altitude-azimuth grid, lines
        nothing,                                                      // 2 background image
        nothing,                                                      // 3 Earth's shadow
        [](DrawContext& c, Impl&) { DrawEquatorialGrid(c); },       // 4 right ascension / declination grid
        [](DrawContext& c, Impl&) { DrawAltAzGridSecondPass(c); },  // 5 altitude-azimuth grid, lines and labels
        [](DrawContext& c, Impl&) { DrawEclipticGrid(c); },         // 6 ecliptic grid
        [](DrawContext& c, Impl&) { DrawGalacticGrid(c); },         // 7 galactic grid
        nothing,                                                      // 8 map overlays
        nothing,                                                      // 9 horizon line and ground
        nothing,                                                      // 10 constellation figures and boundaries
        stars,                                                        // 11 stars
        nothing,                                                      // 12 planets, Sun and Moon
        nothing,                                                      // 13 comets
        nothing,                                                      // 14 asteroids
        nothing,                                                      // 15 deep-sky objects
        nothing,                                                      // 16 user data catalogues
        nothing,                                                      // 17 quick catalogue
        nothing,                                                      // 18 target list
        nothing,                                                      // 19 constellation names, second lines
        nothing,                                                      // 20 object tracks
        [](DrawContext& c, Impl&) {                                   // 21 satellite passes
            if (c.options.plottedPasses)
                sat::DrawPlottedPasses(c.surface, c.frame, *c.options.plottedPasses, c.options.scheme);
        },
        nothing,                                                      // 22 annotations
        [](DrawContext& c, Impl&) { DrawSearchTarget(c); },         // 23 search target marker
        [](DrawContext& c, Impl&) { DrawScaleLine(c); },            // 24 scale line
        [](DrawContext& c, Impl&) { DrawCompass(c); },              // 25 compass
    };

    p.fillRect(QRectF(0, 0, s.widthPx, s.heightPx), ctx.palette.background);
    ReserveMarkAreas(ctx);
    for (LayerFn layer : layers) {
        p.save();
        layer(ctx, *m_impl);
        p.restore();
    }
    p.restore();
    m_impl->stats = stats;
}

namespace {

std::string StarInformation(const CTycho2Catalogue& cat, const TychoStarEntry& e, double years,
                            const std::string& designation, double& raRad, double& decRad)
{
    StarRecord rec;
    cat.ReadRecord(e.record, rec);
    StarPositionAt(rec, years, raRad, decRad);

    std::string text = designation;
    StarReadout r;
    r.magCenti = e.magCenti;
    r.distanceLy = e.distanceLy;
    if (e.flags & entryflag::kVariable) {
        if (const auto v = FindVariableStar(e.TychoId())) {
            r.rangeBrightCenti = v->maxMagCenti;
            if (v->minMagCenti) r.rangeFaintCenti = *v->minMagCenti;
            r.variableText = v->type.empty() ? v->name : v->type;
        }
    }
    text += StarReadoutLines(r);
    char buf[160];
    std::snprintf(buf, sizeof buf, "\nRA: %s  Dec: %s (J2000)", FormatHms(raRad, 1).c_str(),
                  FormatDms(decRad, 0).c_str());
    text += buf;
    const std::string tyc = TychoText(e.tyc1, e.tyc2, e.tyc3);
    if (designation != tyc) text += "\n" + tyc;
    if (rec.hip != 0) {
        std::snprintf(buf, sizeof buf, "\nHIP %u", static_cast<unsigned>(rec.hip));
        text += buf;
    }
    return text;
}

std::string Designation(const CTycho2Catalogue& cat, const TychoStarEntry& e, bool names, bool abbreviated)
{
    StarRecord rec;
    if (!cat.ReadRecord(e.record, rec)) return TychoText(e.tyc1, e.tyc2, e.tyc3);
    return StarDesignation(cat, rec, e.record, names ? ProperNames::Show : ProperNames::Hide,
                           abbreviated ? ConstellationText::Abbreviation : ConstellationText::Genitive);
}

}  // namespace

std::optional<IdentifiedObject> CChartRenderer::Identify(double xPx, double yPx, double tolerancePx) const
{
    const StarLayerState& st = m_impl->window;
    if (!st.valid || st.drawn.empty() || !std::isfinite(xPx) || !std::isfinite(yPx)) return std::nullopt;
    // The nearest disc edge within the tolerance; among equals the brighter.
    const DrawnStar* best = nullptr;
    double bestGap = std::numeric_limits<double>::infinity();
    for (const DrawnStar& d : st.drawn) {
        const double gap = std::hypot(d.x - xPx, d.y - yPx) - std::max(d.rx, d.ry);
        if (gap > tolerancePx) continue;
        if (best == nullptr || gap < bestGap ||
            (gap == bestGap && st.chart.stars[d.index].magCenti < st.chart.stars[best->index].magCenti)) {
            best = &d;
            bestGap = gap;
        }
    }
    if (best == nullptr) return std::nullopt;
    const CTycho2Catalogue& cat = m_impl->catalogues.Tycho();
    const TychoStarEntry& e = st.chart.stars[best->index];
    IdentifiedObject o;
    o.kind = IdentifiedObject::Kind::Star;
    o.designation = Designation(cat, e, st.properNamesShown, st.abbreviated);
    o.information = StarInformation(cat, e, m_impl->windowYears, o.designation, o.raJ2000Rad, o.decJ2000Rad);
    o.xPx = best->x;
    o.yPx = best->y;
    return o;
}

std::vector<VisibleStarRow> CChartRenderer::VisibleStars() const
{
    std::vector<VisibleStarRow> rows;
    const StarLayerState* st = m_impl->last;
    if (st == nullptr || !st->valid) return rows;
    const CTycho2Catalogue& cat = m_impl->catalogues.Tycho();
    rows.reserve(st->drawn.size());
    for (const DrawnStar& d : st->drawn) {
        const TychoStarEntry& e = st->chart.stars[d.index];
        VisibleStarRow row;
        row.designation = Designation(cat, e, st->properNamesShown, st->abbreviated);
        row.name = e.properName;
        if (e.flags & entryflag::kBayerFlamsteed) {
            const StarProperty prop = cat.Property(e.TychoId());
            row.constellation = prop.constellation;
            row.greek = prop.greek;
            row.superscript = prop.superscript;
            row.flamsteed = prop.flamsteed;
        }
        row.tyc1 = e.tyc1;
        row.tyc2 = e.tyc2;
        row.tyc3 = e.tyc3;
        row.magCenti = e.magCenti;
        row.bvMilli = e.bvMilli;
        row.variable = (e.flags & entryflag::kVariable) != 0;
        row.isDouble = (e.flags & entryflag::kDouble) != 0;
        StarPositionAt(cat.Record(e.record), m_impl->lastYears, row.raJ2000Rad, row.decJ2000Rad);
        row.xPx = d.x;
        row.yPx = d.y;
        rows.push_back(std::move(row));
    }
    SortVisibleStars(rows, StarListSort::Magnitude, SortDirection::Ascending);
    return rows;
}

std::string CChartRenderer::VisibleStarsText() const { return VisibleStarsListing(VisibleStars()); }

const RenderStats& CChartRenderer::LastStats() const { return m_impl->stats; }

void CChartRenderer::Invalidate()
{
    m_impl->window.Invalidate();
    m_impl->other.Invalidate();
    m_impl->last = nullptr;
}

}  // namespace orv
