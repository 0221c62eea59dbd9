// The marks drawn over the whole chart: the search target, the scale line
// and the compass.
#include <QFontMetricsF>
#include <QPaintEngine>
#include <QPainterPath>

#include <array>
#include <cmath>
#include <cstdio>

#include "map/drawcontext.h"
#include "util/angles.h"

namespace orv {

// ------------------------------------------------------------ Search target

void DrawSearchTarget(DrawContext& ctx)
{
    const RenderOptions& o = ctx.options;
    if (!o.target || !o.showSearchTarget) return;
    // Inverting pixels means something only on a screen; printers, exported
    // pictures and vector files never show the marker.
    if (!ctx.IsRasterDisplay()) return;
    QPaintEngine* engine = ctx.painter.paintEngine();
    if (engine == nullptr || !engine->hasFeature(QPaintEngine::RasterOpModes)) return;

    ScreenPoint s;
    if (!ctx.frame.CatalogueToScreen(o.target->raJ2000Rad, o.target->decJ2000Rad, EpochPath::Apparent, s)) return;
    // A tenth of an inch each way: 0.2 inch across on any screen. The corner
    // is one pixel beyond the half-size, so that the square is centred on
    // the target's pixel.
    const int hw = static_cast<int>(ctx.surface.dpiX / 10.0), hh = static_cast<int>(ctx.surface.dpiY / 10.0);
    const int x = static_cast<int>(std::floor(s.x)), y = static_cast<int>(std::floor(s.y));
    const QRect square(x - hw - 1, y - hh - 1, 2 * hw + 3, 2 * hh + 3);
    if (!square.intersects(QRect(0, 0, ctx.surface.widthPx, ctx.surface.heightPx))) return;

    QPainter& p = ctx.painter;
    p.save();
    p.setRenderHint(QPainter::Antialiasing, false);
    // XOR with white inverts the destination; a second draw restores it.
    p.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
    p.fillRect(square, QColor(255, 255, 255));
    p.restore();
}

// -------------------------------------------------------------- Scale line

namespace {

// Lengths the scale line may show, arc seconds.
constexpr std::array<int, 20> kScaleLengths = {1,   2,   5,    10,   15,   20,   30,   60,    120,   300,
                                               600, 900, 1200, 1800, 3600, 7200, 18000, 36000, 72000, 108000};

// "%1d'" for whole arc minutes, "%1d\"" otherwise.
QString ScaleLabel(int arcsec)
{
    char buf[32];
    if (arcsec % 60 == 0)
        std::snprintf(buf, sizeof buf, "%1d'", arcsec / 60);
    else
        std::snprintf(buf, sizeof buf, "%1d\"", arcsec);
    return QString::fromLatin1(buf);
}

}  // namespace

void DrawScaleLine(DrawContext& ctx)
{
    if (!ctx.view.scaleLine.shown) return;
    const CCoordinates& co = ctx.coords;
    // Length on the chart of an arc θ through the centre: the stereographic
    // plane distance 2·tan(θ/2) times the horizontal scale.
    const double maxPx = 0.25 * ctx.Width();
    int chosen = 0;
    double lengthPx = 0.0;
    for (int arcsec : kScaleLengths) {
        const double px = 2.0 * std::tan(0.5 * arcsec * kRadPerArcsec) * co.ScaleX();
        if (px > maxPx) break;
        chosen = arcsec;
        lengthPx = px;
    }
    if (chosen == 0 || lengthPx < 4.0) return;

    QPainter& p = ctx.painter;
    const double margin = ctx.Px(0.15, 8.0);
    const double tick = ctx.Px(0.04, 3.0);
    const double x0 = margin, x1 = margin + lengthPx, y = ctx.Height() - margin;
    p.setRenderHint(QPainter::Antialiasing, ctx.IsVectorLike());
    QPen pen(ctx.palette.scaleLine, ctx.LineWidth(1.5));
    pen.setCapStyle(Qt::FlatCap);
    p.setPen(pen);
    p.drawLine(QPointF(x0, y), QPointF(x1, y));
    p.drawLine(QPointF(x0, y - tick), QPointF(x0, y + tick));
    p.drawLine(QPointF(x1, y - tick), QPointF(x1, y + tick));

    p.setFont(ctx.fonts.mark);
    const QString text = ScaleLabel(chosen);
    const QFontMetricsF fm(ctx.fonts.mark, p.device());
    const double tw = fm.horizontalAdvance(text), th = fm.height();
    const QRectF box(0.5 * (x0 + x1) - 0.5 * tw, y - tick - th, tw, th);
    p.drawText(box, Qt::AlignCenter, text);
    ctx.labels.Occupy({x0 - tick, box.top(), x1 + tick, y + tick});
}

// ------------------------------------------------------------------ Compass

CompassDirections CompassAt(const CChartFrame& f, double xPx, double yPx)
{
    // Directions of celestial north and east at a pixel: the screen images
    // of two small steps from that pixel's place of date. Right at a pole
    // the steps are taken from just beside it.
    CompassDirections out;
    double ra = 0.0, dec = 0.0;
    f.ScreenToDate(xPx, yPx, ra, dec);
    if (!std::isfinite(ra) || !std::isfinite(dec)) return out;
    constexpr double kStepRad = 1e-5;
    dec = std::clamp(dec, -kHalfPi + 10 * kStepRad, kHalfPi - 10 * kStepRad);
    double v[3];
    ScreenPoint c, n, e;
    f.DateToFrame(ra, dec, v);
    if (!f.ToScreen(v, c)) return out;
    f.DateToFrame(ra, dec + kStepRad, v);
    if (!f.ToScreen(v, n)) return out;
    f.DateToFrame(ra + kStepRad / std::cos(dec), dec, v);
    if (!f.ToScreen(v, e)) return out;
    const double nx = n.x - c.x, ny = n.y - c.y, ex = e.x - c.x, ey = e.y - c.y;
    const double nl = std::hypot(nx, ny), el = std::hypot(ex, ey);
    if (!(nl > 0.0) || !(el > 0.0)) return out;
    out.northX = nx / nl;
    out.northY = ny / nl;
    out.eastX = ex / el;
    out.eastY = ey / el;
    out.ok = true;
    return out;
}

void DrawCompass(DrawContext& ctx)
{
    if (!ctx.view.compass.shown) return;
    const CompassDirections d = CompassAt(ctx.frame, ctx.coords.ScreenCentreX(), ctx.coords.ScreenCentreY());
    if (!d.ok) return;
    const double nx = d.northX, ny = d.northY, ex = d.eastX, ey = d.eastY;

    QPainter& p = ctx.painter;
    const double L = ctx.Px(0.35, 20.0);
    const double margin = ctx.Px(0.15, 8.0);
    const QPointF o(ctx.Width() - margin - L, ctx.Height() - margin - L);
    p.setRenderHint(QPainter::Antialiasing, true);
    QPen pen(ctx.palette.compass, ctx.LineWidth(1.5));
    pen.setCapStyle(Qt::FlatCap);
    p.setPen(pen);
    p.setBrush(ctx.palette.compass);
    p.setFont(ctx.fonts.mark);
    const QFontMetricsF fm(ctx.fonts.mark, p.device());
    auto arrow = [&](double dx, double dy, const QString& label) {
        const QPointF tip(o.x() + dx * L, o.y() + dy * L);
        p.drawLine(o, tip);
        // Head: a small filled triangle.
        const double h = 0.28 * L, w = 0.12 * L;
        const QPointF back(tip.x() - dx * h, tip.y() - dy * h);
        QPainterPath head;
        head.moveTo(tip);
        head.lineTo(back.x() - dy * w, back.y() + dx * w);
        head.lineTo(back.x() + dy * w, back.y() - dx * w);
        head.closeSubpath();
        p.drawPath(head);
        const double tw = fm.horizontalAdvance(label), th = fm.height();
        const QPointF at(tip.x() + dx * 0.6 * th, tip.y() + dy * 0.6 * th);
        p.drawText(QRectF(at.x() - tw / 2, at.y() - th / 2, tw, th), Qt::AlignCenter, label);
    };
    arrow(nx, ny, QStringLiteral("N"));
    arrow(ex, ey, QStringLiteral("E"));
    ctx.labels.Occupy({o.x() - L - fm.height(), o.y() - L - fm.height(), o.x() + L + fm.height(),
                       o.y() + L + fm.height()});
}

void ReserveScaleLineArea(DrawContext& ctx)
{
    if (!ctx.view.scaleLine.shown) return;
    const QFontMetricsF fm(ctx.fonts.mark, ctx.painter.device());
    const double margin = ctx.Px(0.15, 8.0);
    const double tick = ctx.Px(0.04, 3.0), y = ctx.Height() - margin;
    ctx.labels.Occupy({margin - tick, y - tick - fm.height(), margin + 0.25 * ctx.Width() + tick, y + tick});
}

void ReserveCompassArea(DrawContext& ctx)
{
    if (!ctx.view.compass.shown) return;
    const QFontMetricsF fm(ctx.fonts.mark, ctx.painter.device());
    const double margin = ctx.Px(0.15, 8.0);
    const double L = ctx.Px(0.35, 20.0);
    const double ox = ctx.Width() - margin - L, oy = ctx.Height() - margin - L;
    ctx.labels.Occupy({ox - L - fm.height(), oy - L - fm.height(), ox + L + fm.height(), oy + L + fm.height()});
}

}  // namespace orv
