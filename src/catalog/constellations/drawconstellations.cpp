#include "catalog/constellations/drawconstellations.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

#include "app/strings.h"
#include "map/curvetrace.h"
#include "map/drawcontext.h"
#include "map/drawground.h"
#include "map/skyframes.h"
#include "observer/observer.h"
#include "util/binaryio.h"
#include "util/datapath.h"
#include "util/mappedfile.h"
#include "util/sortedindex.h"

namespace orv {

namespace {

using Matrix = double[3][3];

void Multiply(const double m[3][3], const double v[3], double out[3])
{
    for (int i = 0; i < 3; ++i) out[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
}

// The tracer of a draw: a cap round the centre a little wider than the
// visible field, as the grids use.
CCurveTracer MakeTracer(const DrawContext& ctx)
{
    const double visible = ctx.coords.VisibleRadiusRad();
    const double cap = std::min(visible + CCurveTracer::CapMarginRad(visible), 170.0 * kRadPerDeg);
    return CCurveTracer(ctx.frame, ctx.Width(), ctx.Height(), cap, 0.3, ctx.LineWidth() + 2.0);
}

// Number of initial steps along an arc of `lengthRad`: never longer than the
// tracer's largest step.
int Steps(const DrawContext& ctx, double lengthRad)
{
    const double step = CCurveTracer::MaxStepRad(ctx.coords.VisibleRadiusRad());
    return std::max(1, static_cast<int>(std::ceil(std::abs(lengthRad) / step)));
}

// The matrix from the mean equator and equinox of B1875.0 to the chart's
// frame: precession B1875.0 → J2000 (IAU 2006, frame bias included), then
// the chart's own J2000 → frame rotation (precession and nutation to the
// date, and the horizon on horizontal charts).
void B1875ToFrame(const DrawContext& ctx, double out[3][3])
{
    double p[3][3];
    for (int j = 0; j < 3; ++j) {
        double e[3] = {0.0, 0.0, 0.0};
        e[j] = 1.0;
        ctx.doc.observer.PrecessXYZ(e, constfile::kJdB1875, +1);
        for (int i = 0; i < 3; ++i) p[i][j] = e[i];
    }
    const auto* c = ctx.frame.CatalogueMatrix();
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) out[i][j] = c[i][0] * p[0][j] + c[i][1] * p[1][j] + c[i][2] * p[2][j];
}

// Signed right ascension step from a to b, the short way, radians.
double ShortStep(double a, double b)
{
    double d = b - a;
    if (d > kPi) d -= kTwoPi;
    if (d < -kPi) d += kTwoPi;
    return d;
}

}  // namespace

ChartCorner CornerOfConstellationName(const std::array<int, 4>& cornerSlots)
{
    for (int k = 0; k < 4; ++k)
        if (cornerSlots[static_cast<std::size_t>(k)] == 0) return static_cast<ChartCorner>(k);
    return ChartCorner::TopLeft;
}

std::array<int, 4> MoveConstellationNameToCorner(std::array<int, 4> cornerSlots, ChartCorner corner)
{
    const auto from = static_cast<std::size_t>(CornerOfConstellationName(cornerSlots));
    const auto to = static_cast<std::size_t>(corner);
    if (cornerSlots[from] != 0) cornerSlots[to] = 0;  // no slot held the name: it goes there
    else std::swap(cornerSlots[from], cornerSlots[to]);
    return cornerSlots;
}

bool CConstellationLayer::ShownAt(const CMapView& view, int) const
{
    const ConstellationLevelState& s = view.constellationState;
    return s.figures || s.boundaries || s.names || s.cornerName;
}

const std::vector<std::int64_t>& CConstellationLayer::FigureStars()
{
    if (m_figureStarsResolved) return m_figureStars;
    m_figureStarsResolved = true;
    const auto figures = m_data->Get().Figures();
    m_figureStars.assign(2 * figures.size(), -1);
    // "hip.idx": 12-byte entries, the HIP number as a 64-bit key, then the
    // record number; mapped once for all the figures' stars.
    std::string path;
    CMappedFile index;
    if (!LocateDataFile("star\\Tycho2\\hip.idx", path) || !index.Open(path)) return m_figureStars;
    for (std::size_t i = 0; i < figures.size(); ++i) {
        const std::uint32_t hips[2] = {figures[i].hipA, figures[i].hipB};
        for (int k = 0; k < 2; ++k) {
            const std::int64_t at = FindKey64Entry(index.Bytes(), 12, hips[k]);
            if (at >= 0) m_figureStars[2 * i + static_cast<std::size_t>(k)] =
                LoadLE<std::uint32_t>(index.Data() + static_cast<std::size_t>(at) * 12 + 8);
        }
    }
    return m_figureStars;
}

void CConstellationLayer::DrawFigures(DrawContext& ctx)
{
    const CTycho2Catalogue& stars = m_stars->Get();
    if (!stars.IsOpen()) return;
    const auto figures = m_data->Get().Figures();
    const auto& records = FigureStars();
    // The stars' places at the chart's date (proper motion on TT), by the
    // path the star layer uses at this field, so that the lines meet the discs.
    const double years = (ctx.doc.observer.JulianDateTDT() - 2451545.0) / 365.25;
    const EpochPath path = ctx.coords.FieldDeg() < 5.0 ? EpochPath::Apparent : EpochPath::Rigid;
    const CCurveTracer tracer = MakeTracer(ctx);
    QPen pen(ctx.palette.conFigure);
    pen.setWidthF(ctx.LineWidth());
    ctx.painter.setPen(pen);
    ctx.painter.setBrush(Qt::NoBrush);
    ctx.painter.setRenderHint(QPainter::Antialiasing, true);
    const double cosReach = std::cos(std::min(ctx.coords.VisibleRadiusRad() + 60.0 * kRadPerDeg, kPi));
    // Where the ground is filled it hides the figures' parts below the horizon.
    const CGroundCover* ground = ctx.scene.Ground();
    for (std::size_t i = 0; i < figures.size(); ++i) {
        if (!IsDrawingFigureCode(figures[i].code)) continue;
        const std::int64_t ra = records[2 * i], rb = records[2 * i + 1];
        if (ra < 0 || rb < 0 || static_cast<std::size_t>(ra) >= stars.RecordCount() ||
            static_cast<std::size_t>(rb) >= stars.RecordCount())
            continue;
        double a[3], b[3], raRad = 0.0, decRad = 0.0;
        StarPositionAt(stars.Record(static_cast<std::uint32_t>(ra)), years, raRad, decRad);
        ctx.frame.CatalogueToFrame(raRad, decRad, path, a);
        StarPositionAt(stars.Record(static_cast<std::uint32_t>(rb)), years, raRad, decRad);
        ctx.frame.CatalogueToFrame(raRad, decRad, path, b);
        // Figure lines are short (under 60°): one whose ends are both far
        // outside the field cannot cross it.
        if (ctx.frame.CosFromCentre(a) < cosReach && ctx.frame.CosFromCentre(b) < cosReach) continue;
        const double dot = std::clamp(a[0] * b[0] + a[1] * b[1] + a[2] * b[2], -1.0, 1.0);
        TracedCurve c = tracer.Trace(
            [&](double t, double v[3]) {
                // A point of the great circle through a and b (normalised chord).
                for (int k = 0; k < 3; ++k) v[k] = (1.0 - t) * a[k] + t * b[k];
                const double n = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
                for (int k = 0; k < 3; ++k) v[k] /= n;
            },
            0.0, 1.0, Steps(ctx, std::acos(dot)));
        if (ground) ground->Cut(c);
        StrokePolylines(ctx.painter, c);
    }
}

void CConstellationLayer::DrawBoundaries(DrawContext& ctx, int onlyConstellation, double widthFactor)
{
    const auto edges = m_data->Get().Edges();
    if (edges.empty()) return;
    double m[3][3];
    B1875ToFrame(ctx, m);
    const CCurveTracer tracer = MakeTracer(ctx);
    QPen pen(onlyConstellation >= 0 ? ctx.palette.conName : ctx.palette.conBoundary);
    pen.setWidthF(ctx.LineWidth(widthFactor));
    if (onlyConstellation < 0) pen.setStyle(Qt::DashLine);
    ctx.painter.setPen(pen);
    ctx.painter.setBrush(Qt::NoBrush);
    ctx.painter.setRenderHint(QPainter::Antialiasing, true);
    const CGroundCover* ground = ctx.scene.Ground();
    for (const BoundaryEdge& e : edges) {
        if (onlyConstellation >= 0 && e.left != onlyConstellation && e.right != onlyConstellation) continue;
        TracedCurve c;
        if (e.AlongMeridian()) {
            c = tracer.Trace(
                [&](double dec, double v[3]) {
                    double u[3];
                    SphericalToVector(e.ra1Rad, dec, u);
                    Multiply(m, u, v);
                    ctx.frame.RefractFrameVector(v);
                },
                e.dec1Rad, e.dec2Rad, Steps(ctx, e.dec2Rad - e.dec1Rad));
        } else {
            // A parallel of B1875.0: a small circle, not a great circle; at
            // any other epoch it is a curve, which the samples follow.
            const double span = ShortStep(e.ra1Rad, e.ra2Rad);
            c = tracer.Trace(
                [&](double ra, double v[3]) {
                    double u[3];
                    SphericalToVector(ra, e.dec1Rad, u);
                    Multiply(m, u, v);
                    ctx.frame.RefractFrameVector(v);
                },
                e.ra1Rad, e.ra1Rad + span, Steps(ctx, span * std::cos(e.dec1Rad)));
        }
        if (ground) ground->Cut(c);
        StrokePolylines(ctx.painter, c);
    }
}

void CConstellationLayer::DrawNames(DrawContext& ctx)
{
    const CConstellationCatalogue& cat = m_data->Get();
    const bool abbreviated = ctx.view.constellationState.abbreviated;
    ctx.painter.setFont(ctx.fonts.label);
    ctx.painter.setPen(ctx.palette.conName);
    const QFontMetricsF fm(ctx.fonts.label, ctx.painter.device());
    const CGroundCover* ground = ctx.scene.Ground();
    const bool groundHides = ground != nullptr && ground->Solid();
    const CGroundTest belowHorizon(ctx.frame);
    for (int c = 0; c < kConstellationCount; ++c) {
        NamePlace place;
        if (!cat.NamePlaceOf(c, place)) continue;
        // The name's J2000 place carried to the chart's epoch (precession and
        // nutation of the chart's frame).
        ScreenPoint s;
        if (!ctx.frame.CatalogueToScreen(place.raJ2000Rad, place.decJ2000Rad, EpochPath::Rigid, s)) continue;
        if (s.x < 0 || s.y < 0 || s.x > ctx.Width() || s.y > ctx.Height()) continue;
        if (groundHides && belowHorizon.BelowHorizon(s.x, s.y)) continue;
        QString text = QString::fromStdString(abbreviated ? cat.Abbreviation(c) : cat.Name(c));
        if (!abbreviated) text = text.toUpper();
        const double w = LabelTextWidth(ctx.painter, ctx.fonts.label, text), h = fm.height();
        // Centred on its place, else just below or above it.
        const LabelRect candidates[] = {{s.x - w / 2, s.y - h / 2, s.x + w / 2, s.y + h / 2},
                                        {s.x - w / 2, s.y + h / 2, s.x + w / 2, s.y + 1.5 * h},
                                        {s.x - w / 2, s.y - 1.5 * h, s.x + w / 2, s.y - h / 2}};
        const int k = ctx.labels.Place(candidates);
        if (k < 0) continue;
        const LabelRect& r = candidates[k];
        DrawCentredText(ctx.painter, QRectF(r.x0, r.y0, r.x1 - r.x0, r.y1 - r.y0), text);
        SceneObject o;
        o.raJ2000Rad = place.raJ2000Rad;
        o.decJ2000Rad = place.decJ2000Rad;
        o.xPx = static_cast<float>(0.5 * (r.x0 + r.x1));
        o.yPx = static_cast<float>(0.5 * (r.y0 + r.y1));
        o.radiusPx = static_cast<float>(0.5 * h);
        o.key = static_cast<std::uint32_t>(c);
        o.source = m_source;
        ctx.scene.Add(o);
    }
}

int CConstellationLayer::DrawCornerName(DrawContext& ctx)
{
    const CConstellationCatalogue& cat = m_data->Get();
    // The constellation at the chart centre: the stored J2000 centre (kept
    // for both centring modes) in Delporte's boundaries.
    const int c = cat.ConstellationAt(ctx.doc.observer, ctx.coords.CentreRaJ2000Rad(), ctx.coords.CentreDecJ2000Rad());
    if (c < 0) return -1;
    const QString text =
        QString::fromStdString(ctx.doc.constellations.cornerNameAbbrev != 0 ? cat.Abbreviation(c) : cat.Name(c));
    QFont font = ctx.fonts.mark;
    ctx.painter.setFont(font);
    const QFontMetricsF fm(font, ctx.painter.device());
    const double margin = ctx.Px(0.15, 8.0), w = fm.horizontalAdvance(text), h = fm.height();
    double x = margin, y = margin;
    switch (CornerOfConstellationName(ctx.doc.constellations.CornerSlots())) {
    case ChartCorner::TopLeft: break;
    case ChartCorner::TopRight: x = ctx.Width() - margin - w; break;
    case ChartCorner::BottomLeft: y = ctx.Height() - margin - h; break;
    case ChartCorner::BottomRight:
        x = ctx.Width() - margin - w;
        y = ctx.Height() - margin - h;
        break;
    }
    const QRectF box(x, y, w, h);
    ctx.labels.Occupy({box.left(), box.top(), box.right(), box.bottom()});
    DrawBoxedText(ctx.painter, box, text, ctx.palette.conName, ctx.palette.labelBackground);
    return c;
}

void CConstellationLayer::Draw(DrawContext& ctx, LayerSlot slot)
{
    const ConstellationLevelState& s = ctx.view.constellationState;
    if (slot == LayerSlot::ConstellationFigures) {
        if (s.boundaries) DrawBoundaries(ctx, -1, 1.0);
        if (s.figures && m_data->Get().LoadFigures()) DrawFigures(ctx);
        return;
    }
    if (s.names) DrawNames(ctx);
    const int corner = s.cornerName ? DrawCornerName(ctx) : -1;
    if (corner >= 0 && s.boundaries) DrawBoundaries(ctx, corner, 1.5);
}

void RegisterConstellations(CChartComponents& components, std::shared_ptr<CStarCatalogueHandle> stars)
{
    auto data = std::make_shared<CConstellationHandle>();
    const SkySourceId source = components.objects.Register(std::make_shared<CConstellationObjectSource>(data));
    components.layers.Add<CConstellationLayer>(data, stars, source);
}

}  // namespace orv
