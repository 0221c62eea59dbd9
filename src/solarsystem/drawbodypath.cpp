#include "solarsystem/drawbodypath.h"

#include <QPainterPath>

#include <cmath>
#include <cstdio>

#include "map/drawcontext.h"

namespace orv {

void DrawBodyPaths(DrawContext& ctx, const std::vector<BodyPath>& paths)
{
    QPainter& p = ctx.painter;
    p.save();
    p.setRenderHint(QPainter::Antialiasing, true);
    const double W = ctx.Width(), H = ctx.Height();
    const double tickPx = ctx.Px(0.04);
    QPen line(ctx.palette.planetLabel, std::max(1.0, ctx.Px(0.01)));
    p.setFont(ctx.fonts.label);
    const QFontMetricsF fm(ctx.fonts.label);
    for (const BodyPath& path : paths) {
        // The line, broken where a point cannot be projected or where two
        // consecutive points are far apart on the chart (across the edge of
        // an all-sky projection).
        QPainterPath curve;
        bool open = false;
        ScreenPoint last{};
        std::vector<ScreenPoint> screen(path.points.size());
        std::vector<bool> ok(path.points.size(), false);
        for (std::size_t i = 0; i < path.points.size(); ++i) {
            const BodyPathPoint& pt = path.points[i];
            ScreenPoint s;
            if (!ctx.frame.CatalogueToScreen(pt.raJ2000Rad, pt.decJ2000Rad, EpochPath::Rigid, s)) {
                open = false;
                continue;
            }
            screen[i] = s;
            ok[i] = true;
            if (open && std::hypot(s.x - last.x, s.y - last.y) < 0.5 * (W + H)) {
                curve.lineTo(s.x, s.y);
            } else {
                curve.moveTo(s.x, s.y);
            }
            open = true;
            last = s;
        }
        p.setPen(line);
        p.setBrush(Qt::NoBrush);
        p.drawPath(curve);

        bool first = true;
        for (std::size_t i = 0; i < path.points.size(); ++i) {
            if (!path.points[i].tick || !ok[i]) continue;
            const ScreenPoint& s = screen[i];
            if (s.x < -tickPx || s.y < -tickPx || s.x > W + tickPx || s.y > H + tickPx) continue;
            // The mark across the path: perpendicular to the direction of
            // motion here.
            const std::size_t a = i > 0 && ok[i - 1] ? i - 1 : i;
            const std::size_t b = i + 1 < path.points.size() && ok[i + 1] ? i + 1 : i;
            double dx = screen[b].x - screen[a].x, dy = screen[b].y - screen[a].y;
            const double len = std::hypot(dx, dy);
            if (len > 0.0) {
                dx /= len;
                dy /= len;
            } else {
                dx = 1.0;
                dy = 0.0;
            }
            const double nx = -dy * tickPx * 0.5, ny = dx * tickPx * 0.5;
            p.setPen(line);
            p.drawLine(QPointF(s.x - nx, s.y - ny), QPointF(s.x + nx, s.y + ny));
            ctx.labels.Occupy({std::min(s.x - nx, s.x + nx), std::min(s.y - ny, s.y + ny), std::max(s.x - nx, s.x + nx),
                               std::max(s.y - ny, s.y + ny)});

            char mag[32];
            std::snprintf(mag, sizeof mag, "Mag:%.1f", path.points[i].magnitude);
            const QString text = QString::fromStdString(BodyPathDateLabel(path, i, first));
            const QString magText = QString::fromLatin1(mag);
            first = false;
            const double w = std::max(fm.horizontalAdvance(text), fm.horizontalAdvance(magText));
            const double h = 2.0 * fm.height();
            // Beside the mark's outer end, on either side of the path.
            const double ox = s.x + nx * 1.3, oy = s.y + ny * 1.3;
            const double ux = s.x - nx * 1.3, uy = s.y - ny * 1.3;
            const LabelRect candidates[] = {
                {nx >= 0 ? ox : ox - w, ny >= 0 ? oy : oy - h, nx >= 0 ? ox + w : ox, ny >= 0 ? oy + h : oy},
                {nx >= 0 ? ux - w : ux, ny >= 0 ? uy - h : uy, nx >= 0 ? ux : ux + w, ny >= 0 ? uy : uy + h},
            };
            const int k = ctx.labels.Place(candidates);
            if (k < 0) continue;
            const LabelRect& box = candidates[k];
            p.setPen(ctx.palette.planetLabel);
            p.drawText(QPointF(box.x0, box.y0 + fm.ascent()), text);
            p.drawText(QPointF(box.x0, box.y0 + fm.height() + fm.ascent()), magText);
        }
    }
    p.restore();
}

void CBodyPathLayer::Draw(DrawContext& ctx, LayerSlot) { DrawBodyPaths(ctx, m_paths); }

}  // namespace orv
