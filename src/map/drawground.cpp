#include "map/drawground.h"

#include <QPainterPath>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "map/chartlayer.h"
#include "map/drawcontext.h"
#include "map/horizonprofile.h"
#include "map/mapdoc.h"
#include "map/mapview.h"
#include "util/angles.h"

namespace orv {

namespace {

bool IsFlat(const HorizonProfile& profile)
{
    return std::all_of(profile.begin(), profile.end(), [](std::int8_t a) { return a == 0; });
}

// The profile's altitude in degrees at an azimuth in degrees, never below 0
// (the ground below the mathematical horizon is laid under the grids).
double RaisedAltitudeDeg(const HorizonProfile& profile, double azDeg)
{
    return std::max(0.0, HorizonAltitudeRad(profile, azDeg * kRadPerDeg) * kDegPerRad);
}

// The owner of the ground and the horizon line. It is shown wherever either
// is drawn: the ground below the mathematical horizon may be filled at
// levels where the profile's line is not drawn.
class CGroundLayer final : public IChartLayer {
public:
    std::span<const LayerSlot> Slots() const override { return kSlots; }
    bool ShownAt(const CMapView& view, int) const override
    {
        return view.horizon.shown || view.altAzGrid.solidHorizon != 0;
    }
    void Prepare(DrawContext& ctx) override { ctx.scene.SetGround(std::make_shared<const CGroundCover>(ctx)); }
    void Draw(DrawContext& ctx, LayerSlot) override
    {
        if (!ctx.frame.IsHorizontal() || !ctx.view.horizon.shown) return;
        if (ctx.view.altAzGrid.solidHorizon != 0) DrawHorizonGround(ctx);
        DrawHorizonLine(ctx);
    }

private:
    static constexpr LayerSlot kSlots[] = {LayerSlot::Horizon};
};

}  // namespace

CGroundCover::CGroundCover(const DrawContext& ctx) : m_coords(ctx.coords)
{
    m_solid = ctx.view.altAzGrid.solidHorizon != 0;
    m_flatLineDrawn = ctx.frame.IsHorizontal() && ctx.view.horizon.shown && IsFlat(ctx.doc.horizon.altitudeDeg);
    const CGroundTest ground(ctx.frame);
    m_cn = ground.ZenithDotCentre();
    m_en = ground.ZenithDotEast();
    m_sn = ground.ZenithDotSouth();
}

// The horizon is the mathematical one the ground fill uses, Side() = 0,
// which along a straight screen segment is a quadratic in the segment's
// parameter; the crossing is found by bisection.
void CGroundCover::Cut(TracedCurve& curve) const
{
    if (!m_solid) return;
    const auto side = [&](const ScreenPoint& q) {
        const PlanePoint p = m_coords.ScreenToPlane(q.x, q.y);
        return -m_cn * (p.x * p.x + p.y * p.y) * 0.25 + p.x * m_en + p.y * m_sn + m_cn;
    };
    std::vector<std::vector<ScreenPoint>> kept;
    for (const std::vector<ScreenPoint>& poly : curve.polylines) {
        std::vector<ScreenPoint> run;
        double sPrev = 0.0;
        for (std::size_t i = 0; i < poly.size(); ++i) {
            const double sNow = side(poly[i]);
            if (i > 0 && (sPrev >= 0.0) != (sNow >= 0.0)) {
                // The crossing between poly[i-1] and poly[i].
                double lo = 0.0, hi = 1.0;
                const ScreenPoint a = poly[i - 1], b = poly[i];
                for (int k = 0; k < 30; ++k) {
                    const double mid = 0.5 * (lo + hi);
                    const double sMid = side({a.x + mid * (b.x - a.x), a.y + mid * (b.y - a.y)});
                    if ((sMid >= 0.0) == (sPrev >= 0.0))
                        lo = mid;
                    else
                        hi = mid;
                }
                const double t = 0.5 * (lo + hi);
                const ScreenPoint cross{a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)};
                if (sPrev >= 0.0) {
                    run.push_back(cross);  // going under: the run ends here
                    if (run.size() > 1) kept.push_back(std::move(run));
                    run.clear();
                } else {
                    run.push_back(cross);  // coming up: a run starts here
                }
            }
            if (sNow >= 0.0) run.push_back(poly[i]);
            sPrev = sNow;
        }
        if (run.size() > 1) kept.push_back(std::move(run));
    }
    curve.polylines = std::move(kept);
    std::erase_if(curve.crossings, [&](const BorderCrossing& c) { return side(c.point) < 0.0; });
}

// Stereographic projection maps the horizon to a circle, so the ground is
// the inside or the outside of that circle (or a half-plane when the circle
// is too large to draw).
void CGroundCover::LayBelowMathematicalHorizon(DrawContext& ctx) const
{
    if (!m_solid) return;
    const double cn = m_cn, en = m_en, sn = m_sn;
    const CCoordinates& co = ctx.coords;

    // Plane → screen as an affine map (rotation, flips, scales).
    const double s = std::sin(co.RotationRad()), c = std::cos(co.RotationRad());
    const double fx = co.FlipHorizontal(), fy = co.FlipVertical();
    const QTransform toScreen(-c * fx * co.ScaleX(), s * fy * co.ScaleY(), s * fx * co.ScaleX(), c * fy * co.ScaleY(),
                              co.ScreenCentreX(), co.ScreenCentreY());

    // The horizon's image: Side(p) = 0 is the circle |p − C| = 2/|cn| with
    // C = 2(en, sn)/cn. When that circle is too large to rasterise safely it
    // is replaced by its tangent line nearest the screen centre.
    QPainterPath groundPath;
    const double scale = std::max(co.ScaleX(), co.ScaleY());
    const PlanePoint corner = co.ScreenToPlane(0.0, 0.0);
    const double extent = 4.0 * (std::hypot(corner.x, corner.y) + 1.0);
    const double radius = std::fabs(cn) > 1e-12 ? 2.0 / std::fabs(cn) : HUGE_VAL;
    if (radius * scale < 2.0e6) {
        const QPointF centre(2.0 * en / cn, 2.0 * sn / cn);
        QPainterPath circle;
        circle.addEllipse(centre, radius, radius);
        if (cn < 0.0) {
            groundPath = circle;  // the centre of the chart is below the horizon: ground inside
        } else {
            QPainterPath all;
            all.addRect(QRectF(-extent, -extent, 2 * extent, 2 * extent));
            all.addPath(circle);
            all.setFillRule(Qt::OddEvenFill);
            groundPath = all;
        }
    } else {
        // Nearly a straight line through the screen: x·en + y·sn + cn = 0
        // to first order; ground where it is negative.
        const double nlen = std::hypot(en, sn);
        if (!(nlen > 0.0)) return;
        const double nx = en / nlen, ny = sn / nlen;  // towards the sky
        const double d = -cn / nlen;                  // the line: n·p = d
        const QPointF foot(nx * d, ny * d);
        const QPointF along(-ny * extent, nx * extent), down(-nx * 2 * extent, -ny * 2 * extent);
        QPolygonF poly;
        poly << foot + along << foot - along << foot - along + down << foot + along + down;
        groundPath.addPolygon(poly);
        groundPath.closeSubpath();
    }
    QPainter& p = ctx.painter;
    p.save();
    p.setClipRect(QRectF(0, 0, ctx.Width(), ctx.Height()), Qt::IntersectClip);
    p.setPen(Qt::NoPen);
    p.setBrush(ctx.palette.ground);
    p.drawPath(toScreen.map(groundPath));
    p.restore();
}

void DrawHorizonGround(DrawContext& ctx)
{
    const HorizonProfile& profile = ctx.doc.horizon.altitudeDeg;
    const double visible = ctx.coords.VisibleRadiusRad();
    const double margin = CCurveTracer::CapMarginRad(visible);
    const double cosCap = std::cos(std::min(visible + margin, 170.0 * kRadPerDeg));
    // Cells small enough that none reaches across the cap's margin, from a
    // quarter of a degree to two degrees on a side.
    const double stepDeg = std::clamp(0.5 * margin * kDegPerRad, 0.25, 2.0);
    const int perDegree = static_cast<int>(std::ceil(1.0 / stepDeg));
    QPainterPath ground;
    ground.setFillRule(Qt::WindingFill);
    const double cosReach = std::cos(std::min(visible + margin + 92.0 * kRadPerDeg, kPi));
    for (int k = 0; k < kHorizonFileBytes; ++k) {
        const double top0 = std::max<double>(profile[k], 0.0), top1 = std::max<double>(profile[(k + 1) % 360], 0.0);
        if (top0 <= 0.0 && top1 <= 0.0) continue;
        double base[3];
        ctx.frame.HorizontalToFrame(0.0, (k + 0.5) * kRadPerDeg, base);
        if (ctx.frame.CosFromCentre(base) < cosReach) continue;
        const int rows = std::max(1, static_cast<int>(std::ceil(std::max(top0, top1) / stepDeg)));
        for (int i = 0; i < perDegree; ++i) {
            const double az0 = k + static_cast<double>(i) / perDegree, az1 = k + static_cast<double>(i + 1) / perDegree;
            const double h0 = RaisedAltitudeDeg(profile, az0), h1 = RaisedAltitudeDeg(profile, az1);
            for (int j = 0; j < rows; ++j) {
                const double t0 = static_cast<double>(j) / rows, t1 = static_cast<double>(j + 1) / rows;
                const double corners[4][2] = {{az0, h0 * t0}, {az1, h1 * t0}, {az1, h1 * t1}, {az0, h0 * t1}};
                QPolygonF cell;
                bool all = true;
                for (const auto& c : corners) {
                    double v[3];
                    ctx.frame.HorizontalToFrame(c[1] * kRadPerDeg, c[0] * kRadPerDeg, v);
                    ScreenPoint s;
                    if (!(ctx.frame.CosFromCentre(v) > cosCap) || !ctx.frame.ToScreen(v, s)) {
                        all = false;
                        break;
                    }
                    cell << QPointF(s.x, s.y);
                }
                if (all) {
                    cell << cell.front();
                    ground.addPolygon(cell);
                }
            }
        }
    }
    if (ground.isEmpty()) return;
    QPainter& p = ctx.painter;
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setPen(Qt::NoPen);
    p.setBrush(ctx.palette.ground);
    p.drawPath(ground);
}

void DrawHorizonLine(DrawContext& ctx)
{
    const HorizonProfile& profile = ctx.doc.horizon.altitudeDeg;
    const double visible = ctx.coords.VisibleRadiusRad();
    const double cap = std::min(visible + CCurveTracer::CapMarginRad(visible), 170.0 * kRadPerDeg);
    const CCurveTracer tracer(ctx.frame, ctx.Width(), ctx.Height(), cap, 0.3, ctx.LineWidth() + 2.0);
    const int segments = std::max(360, static_cast<int>(std::ceil(kTwoPi / CCurveTracer::MaxStepRad(visible))));
    const TracedCurve curve = tracer.Trace(
        [&](double azRad, double v[3]) { ctx.frame.HorizontalToFrame(HorizonAltitudeRad(profile, azRad), azRad, v); },
        0.0, kTwoPi, segments);
    QPainter& p = ctx.painter;
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setPen(QPen(ctx.palette.horizonLine, ctx.LineWidth(1.5)));
    p.setBrush(Qt::NoBrush);
    StrokePolylines(p, curve);
}

void RegisterGroundLayer(CChartLayerRegistry& layers) { layers.Add<CGroundLayer>(); }

}  // namespace orv
