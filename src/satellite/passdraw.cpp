#include "satellite/passdraw.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainterPath>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "map/chartframe.h"
#include "map/curvetrace.h"
#include "map/skyframes.h"
#include "observer/observer.h"
#include "satellite/passes.h"
#include "satellite/sattime.h"
#include "util/angles.h"

namespace orv::sat {

namespace {

constexpr double kSecondsPerDay = 86400.0;
// Points farther than this from the chart centre beyond the visible radius
// are not joined: the stereographic plane stretches without bound toward the
// antipode, where a short step along the sky becomes an arbitrarily long
// line on the chart.
constexpr double kPathMarginRad = 20.0 * kRadPerDeg;
constexpr double kPathLimitRad = 160.0 * kRadPerDeg;
// Pixels beyond the surface to which segments are clipped (room for line caps).
constexpr double kClipMarginPx = 16.0;

// The point's direction in the chart's frame.
void PointToFrame(const CChartFrame& frame, const PlottedPassPoint& p, double v[3])
{
    if (frame.IsHorizontal())
        frame.HorizontalToFrame(p.altitudeRad, p.azimuthRad, v);
    else
        frame.DateToFrame(p.raDateRad, p.decDateRad, v);
}

// cos of the largest distance from the centre at which points are used.
double UsableCosine(const CChartFrame& frame)
{
    const double limit = std::min(frame.Coordinates().VisibleRadiusRad() + kPathMarginRad, kPathLimitRad);
    return std::cos(limit);
}

bool ProjectUsable(const CChartFrame& frame, const double v[3], double minCos, ScreenPoint& s)
{
    if (!(frame.CosFromCentre(v) > minCos)) return false;
    return frame.ToScreen(v, s) && std::isfinite(s.x) && std::isfinite(s.y);
}

// The chart's segment clipping (a wholly clipped end lands on the border), on Qt's points.
bool ClipSegment(QPointF& a, QPointF& b, const QRectF& r)
{
    ScreenPoint sa{a.x(), a.y()}, sb{b.x(), b.y()};
    bool aClipped = false, bClipped = false;
    if (!ClipSegmentToRect(sa, sb, r.left(), r.top(), r.right(), r.bottom(), aClipped, bClipped)) return false;
    a = QPointF(sa.x, sa.y);
    b = QPointF(sb.x, sb.y);
    return true;
}

// Local clock seconds since an arbitrary midnight (1999 December 31 0h),
// so that whole multiples of the interval fall on whole clock times.
double LocalClockSeconds(double jdUT, double localOffsetHours)
{
    return (jdUT - 2451543.5) * kSecondsPerDay + localOffsetHours * 3600.0;
}

std::string ClockText(double jdUT, double localOffsetHours)
{
    const SatCivilTime t = SatCivilFromJulianDate(jdUT + localOffsetHours / 24.0);
    char buf[16];
    std::snprintf(buf, sizeof buf, "%02d:%02d:%02d", t.hour, t.minute, t.second);
    return buf;
}

// The pixels of the pass, in runs of usable points.
std::vector<std::vector<QPointF>> ScreenRuns(const CChartFrame& frame, const PlottedPass& pass)
{
    std::vector<std::vector<QPointF>> runs;
    const double minCos = UsableCosine(frame);
    bool open = false;
    for (const PlottedPassPoint& p : pass.points) {
        double v[3];
        PointToFrame(frame, p, v);
        ScreenPoint s;
        if (!ProjectUsable(frame, v, minCos, s)) {
            open = false;
            continue;
        }
        if (!open) runs.emplace_back();
        open = true;
        runs.back().emplace_back(s.x, s.y);
    }
    return runs;
}

void DrawArrowHead(QPainter& painter, QPointF tip, QPointF from, double sizePx)
{
    const double dx = tip.x() - from.x(), dy = tip.y() - from.y();
    const double len = std::hypot(dx, dy);
    if (!(len > 0.0)) return;
    const double ux = dx / len, uy = dy / len;
    QPolygonF head;
    head << tip << QPointF(tip.x() - sizePx * ux + 0.5 * sizePx * uy, tip.y() - sizePx * uy - 0.5 * sizePx * ux)
         << QPointF(tip.x() - sizePx * ux - 0.5 * sizePx * uy, tip.y() - sizePx * uy + 0.5 * sizePx * ux);
    painter.drawPolygon(head);
}

// The box of a text placed beside the path, on the side of the normal
// (nx, ny), starting `gapPx` from the anchor; `baseline` receives where
// drawText puts it.
QRectF TextBesidePath(const QFontMetricsF& metrics, QPointF anchor, double nx, double ny, double gapPx,
                      const QString& text, QPointF& baseline)
{
    const double w = metrics.horizontalAdvance(text);
    const double h = metrics.ascent();
    const QPointF base(anchor.x() + nx * gapPx, anchor.y() + ny * gapPx);
    // The text box grows away from the path in the direction of the normal.
    const double x = nx >= 0.0 ? base.x() : base.x() - w;
    const double y = base.y() + h * 0.5 * (1.0 + ny);
    baseline = QPointF(x, y);
    return QRectF(x, y - h, w, h + metrics.descent());
}

// Texts already on the chart (grid and star labels, and the passes' own): a
// label that would come within `marginPx` of one is left out. Slow
// satellites (high orbits seen for hours) would otherwise pile their labels
// into an unreadable block; the labels kept are then spaced as widely as
// their own size requires.
bool TakeLabelPlace(CLabelPlacer& labels, const QRectF& r, double marginPx)
{
    const LabelRect padded{r.left() - marginPx, r.top() - marginPx, r.right() + marginPx, r.bottom() + marginPx};
    if (!labels.IsFree(padded)) return false;
    labels.Occupy({r.left(), r.top(), r.right(), r.bottom()});
    return true;
}

}  // namespace

PlottedPass MakePlottedPass(const std::string& satelliteName, const SatellitePass& pass, const CObserverDoc& site)
{
    PlottedPass out;
    out.satelliteName = satelliteName;
    out.points.reserve(pass.points.size());
    CObserverDoc at = site;
    for (const PassPoint& p : pass.points) {
        if (!std::isfinite(p.jdUT) || !std::isfinite(p.elevationRad) || !std::isfinite(p.azimuthRad)) continue;
        PlottedPassPoint q;
        q.jdUT = p.jdUT;
        q.altitudeRad = p.elevationRad;
        q.azimuthRad = p.azimuthRad;
        at.SetJulianDate(p.jdUT);
        HorizontalToEquatorial(at, p.elevationRad, p.azimuthRad, q.raDateRad, q.decDateRad);
        out.points.push_back(q);
    }
    return out;
}

std::vector<PassLabel> PassLabels(const CChartFrame& frame, const PlottedPass& pass, int labelIntervalSec)
{
    std::vector<PassLabel> labels;
    if (labelIntervalSec <= 0 || pass.points.size() < 2) return labels;
    const double offsetHours = frame.Observer().LocalOffsetHours();
    const double minCos = UsableCosine(frame);
    const double interval = labelIntervalSec;
    const double first = LocalClockSeconds(pass.points.front().jdUT, offsetHours);
    const double last = LocalClockSeconds(pass.points.back().jdUT, offsetHours);
    if (!std::isfinite(first) || !std::isfinite(last) || !(last >= first)) return labels;
    // Half a millisecond of tolerance at the ends: the points' times carry
    // the rounding of Julian dates (about 40 µs near the present).
    const double tolerance = 5e-4;
    std::size_t segment = 0;
    for (double k = std::ceil((first - tolerance) / interval); k * interval <= last + tolerance; k += 1.0) {
        const double clock = k * interval;
        while (segment + 2 < pass.points.size() &&
               LocalClockSeconds(pass.points[segment + 1].jdUT, offsetHours) < clock)
            ++segment;
        const PlottedPassPoint& a = pass.points[segment];
        const PlottedPassPoint& b = pass.points[segment + 1];
        const double ta = LocalClockSeconds(a.jdUT, offsetHours);
        const double tb = LocalClockSeconds(b.jdUT, offsetHours);
        const double f = tb > ta ? std::clamp((clock - ta) / (tb - ta), 0.0, 1.0) : 0.0;
        double va[3], vb[3], v[3];
        PointToFrame(frame, a, va);
        PointToFrame(frame, b, vb);
        // The steps are a few degrees at most: the chord, renormalised,
        // stays within a few arcseconds of the great circle.
        for (int i = 0; i < 3; ++i) v[i] = va[i] + f * (vb[i] - va[i]);
        const double norm = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
        if (!(norm > 0.0)) continue;
        for (double& c : v) c /= norm;
        PassLabel label;
        if (!ProjectUsable(frame, v, minCos, label.at)) continue;
        label.jdUT = a.jdUT + (b.jdUT - a.jdUT) * f;
        label.text = ClockText(label.jdUT, offsetHours);
        ScreenPoint sa, sb;
        if (frame.ToScreen(va, sa) && frame.ToScreen(vb, sb)) {
            const double dx = sb.x - sa.x, dy = sb.y - sa.y;
            const double len = std::hypot(dx, dy);
            if (len > 0.0 && std::isfinite(len)) {
                label.directionX = dx / len;
                label.directionY = dy / len;
            }
        }
        labels.push_back(std::move(label));
    }
    return labels;
}

void DrawPlottedPasses(const DrawSurface& surface, const CChartFrame& frame, const ChartPalette& palette,
                       CLabelPlacer& labels, const PlottedPassList& passes)
{
    if (surface.painter == nullptr || passes.passes.empty()) return;
    QPainter& painter = *surface.painter;
    const double px = std::max(1.0, surface.dpiX / 96.0);  // one screen pixel on this surface
    const QRectF clip(-kClipMarginPx * px, -kClipMarginPx * px, surface.widthPx + 2 * kClipMarginPx * px,
                      surface.heightPx + 2 * kClipMarginPx * px);
    const QRectF inside(0, 0, surface.widthPx, surface.heightPx);

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    QFont font = painter.font();
    font.setPixelSize(std::max(6, static_cast<int>(std::lround(8.0 * surface.dpiY / 72.0))));
    QFont nameFont = font;
    nameFont.setBold(true);
    const QFontMetricsF metrics(font);
    const QFontMetricsF nameMetrics(nameFont);
    const double tickPx = 4.0 * px;

    std::vector<std::vector<std::vector<QPointF>>> runsOfPass;
    for (const PlottedPass& pass : passes.passes) {
        runsOfPass.push_back(ScreenRuns(frame, pass));
        const auto& runs = runsOfPass.back();
        QPen pen(palette.satellitePath, 1.6 * px, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        for (const auto& run : runs) {
            QPolygonF piece;
            for (std::size_t i = 0; i + 1 < run.size(); ++i) {
                QPointF a = run[i], b = run[i + 1];
                const bool whole = clip.contains(a) && clip.contains(b);
                if (!whole && !ClipSegment(a, b, clip)) {
                    if (piece.size() > 1) painter.drawPolyline(piece);
                    piece.clear();
                    continue;
                }
                if (piece.isEmpty() || piece.back() != a) {
                    if (piece.size() > 1) painter.drawPolyline(piece);
                    piece.clear();
                    piece << a;
                }
                piece << b;
            }
            if (piece.size() > 1) painter.drawPolyline(piece);
            if (run.size() == 1 && inside.contains(run.front())) painter.drawPoint(run.front());
        }

        // Direction of travel at the end of the pass, when that end is on the chart.
        if (!runs.empty() && runs.back().size() >= 2 && inside.contains(runs.back().back())) {
            painter.setBrush(palette.satellitePath);
            DrawArrowHead(painter, runs.back().back(), runs.back()[runs.back().size() - 2], 7.0 * px);
            painter.setBrush(Qt::NoBrush);
        }
    }

    // Names first, beside the first point on the chart, on the left of travel.
    painter.setFont(nameFont);
    painter.setPen(palette.satelliteText);
    for (std::size_t k = 0; k < passes.passes.size(); ++k) {
        for (const auto& run : runsOfPass[k]) {
            auto it = std::find_if(run.begin(), run.end(), [&](const QPointF& p) { return inside.contains(p); });
            if (it == run.end()) continue;
            const QPointF next = it + 1 != run.end() ? *(it + 1) : (it != run.begin() ? 2 * *it - *(it - 1) : *it);
            double dx = next.x() - it->x(), dy = next.y() - it->y();
            const double len = std::hypot(dx, dy);
            dx = len > 0.0 ? dx / len : 1.0;
            dy = len > 0.0 ? dy / len : 0.0;
            const QString name = QString::fromStdString(passes.passes[k].satelliteName);
            QPointF baseline;
            const QRectF box = TextBesidePath(nameMetrics, *it, dy, -dx, tickPx + 2.0 * px, name, baseline);
            if (TakeLabelPlace(labels, box, 2.0 * px)) painter.drawText(baseline, name);
            break;
        }
    }

    // Ticks and clock times, each where it has room.
    painter.setFont(font);
    for (const PlottedPass& pass : passes.passes) {
        QPointF lastTick(std::nan(""), std::nan(""));
        for (const PassLabel& label : PassLabels(frame, pass, passes.labelIntervalSec)) {
            const QPointF at(label.at.x, label.at.y);
            if (!inside.contains(at)) continue;
            // The normal on the right-hand side of travel (pixel y grows downward).
            const double nx = -label.directionY, ny = label.directionX;
            if (!(std::hypot(at.x() - lastTick.x(), at.y() - lastTick.y()) < 5.0 * px)) {
                painter.setPen(QPen(palette.satellitePath, 1.2 * px));
                painter.drawLine(QPointF(at.x() - nx * tickPx, at.y() - ny * tickPx),
                                 QPointF(at.x() + nx * tickPx, at.y() + ny * tickPx));
                lastTick = at;
            }
            const QString text = QString::fromStdString(label.text);
            QPointF baseline;
            const QRectF box = TextBesidePath(metrics, at, nx, ny, tickPx + 2.0 * px, text, baseline);
            if (!TakeLabelPlace(labels, box, 2.0 * px)) continue;
            painter.setPen(palette.satelliteText);
            painter.drawText(baseline, text);
        }
    }
    painter.restore();
}

void CPlottedPassLayer::Draw(DrawContext& ctx, LayerSlot)
{
    DrawPlottedPasses(ctx.surface, ctx.frame, ctx.palette, ctx.labels, m_passes);
}

void RegisterPlottedPassLayer(CChartLayerRegistry& layers) { layers.Add<CPlottedPassLayer>(); }

}  // namespace orv::sat
