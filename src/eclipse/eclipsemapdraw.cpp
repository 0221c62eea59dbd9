#include "eclipse/eclipsemapdraw.h"

#include <QFontMetricsF>
#include <QPainterPath>

#include <cmath>

namespace orv {

namespace {

const QColor kCentral(200, 20, 20);
const QColor kUmbra(230, 120, 0);
const QColor kPenumbra(40, 90, 200);
const QColor kGreatest(255, 225, 0);
const QColor kMoonUp(250, 235, 120, 90);

// One line of the key: a stroke of the pen, or (with a brush) a filled box.
struct KeyItem {
    QPen pen;
    QString text;
    QBrush swatch = Qt::NoBrush;
};

// A polyline on the map, cut where it crosses the map's edge.
void DrawGeoLine(QPainter& painter, const QRectF& map, const GeoLine& line)
{
    QPainterPath path;
    bool pen = false;
    QPointF last;
    for (const GeoPoint& p : line) {
        const QPointF q = sat::GroundTrackMapPixel(map, 0.0, p.longitudeDeg, p.latitudeDeg);
        if (pen && std::fabs(q.x() - last.x()) < map.width() / 2.0)
            path.lineTo(q);
        else
            path.moveTo(q);
        pen = true;
        last = q;
    }
    painter.drawPath(path);
}

void DrawLines(QPainter& painter, const QRectF& map, const std::vector<GeoLine>& lines, const QPen& pen)
{
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    for (const GeoLine& l : lines) DrawGeoLine(painter, map, l);
}

void DrawCross(QPainter& painter, const QRectF& map, const GeoPoint& p, const QColor& colour)
{
    const QPointF q = sat::GroundTrackMapPixel(map, 0.0, p.longitudeDeg, p.latitudeDeg);
    const double r = std::max(4.0, map.height() / 80.0);
    painter.setPen(QPen(colour, 2.0));
    painter.drawLine(q + QPointF(-r, -r), q + QPointF(r, r));
    painter.drawLine(q + QPointF(-r, r), q + QPointF(r, -r));
}

// The key of the lines, in the map's top left corner.
void DrawKey(QPainter& painter, const QRectF& map, const std::vector<KeyItem>& items)
{
    QFont font = painter.font();
    font.setPixelSize(static_cast<int>(std::clamp(map.height() / 30.0, 9.0, 13.0)));
    painter.setFont(font);
    const QFontMetricsF fm(font);
    double width = 0.0;
    for (const KeyItem& item : items) width = std::max(width, fm.horizontalAdvance(item.text));
    const double line = fm.height() + 2.0;
    const QRectF box(map.left() + 6.0, map.top() + 6.0, width + 40.0, line * static_cast<double>(items.size()) + 6.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 210));
    painter.drawRect(box);
    double y = box.top() + 3.0 + line / 2.0;
    for (const KeyItem& item : items) {
        if (item.swatch.style() != Qt::NoBrush) {
            // The fill as it lies on the ocean, outlined by the pen.
            const QRectF sample(box.left() + 5.0, y - 5.0, 22.0, 10.0);
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(18, 40, 70));
            painter.drawRect(sample);
            painter.setBrush(item.swatch);
            painter.setPen(item.pen);
            painter.drawRect(sample);
            painter.setBrush(Qt::NoBrush);
        } else {
            painter.setPen(item.pen);
            painter.drawLine(QPointF(box.left() + 5.0, y), QPointF(box.left() + 27.0, y));
        }
        painter.setPen(Qt::black);
        painter.drawText(QPointF(box.left() + 33.0, y + fm.ascent() / 2.0 - 1.0), item.text);
        y += line;
    }
}

}  // namespace

void DrawSolarEclipseMap(QPainter& painter, const QRectF& area, const std::vector<sat::WorldOutline>& land,
                         const SolarEclipsePaths& paths, const std::string& title)
{
    sat::GroundTrackMapOptions options;
    options.title = title;
    options.nightAtJdUT = paths.greatestJdUT;
    options.nightLegend = "Night at greatest eclipse";
    options.illuminationLegend = false;
    sat::DrawGroundTrackMap(painter, area, land, sat::GroundTrackResult{}, options);
    const QRectF map = sat::GroundTrackMapRect(area);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setClipRect(map);
    const QPen penumbra(kPenumbra, 1.5, Qt::DashLine);
    const QPen umbra(kUmbra, 1.8);
    const QPen central(kCentral, 1.8);
    DrawLines(painter, map, paths.penumbraNorth, penumbra);
    DrawLines(painter, map, paths.penumbraSouth, penumbra);
    DrawLines(painter, map, paths.umbraNorth, umbra);
    DrawLines(painter, map, paths.umbraSouth, umbra);
    DrawLines(painter, map, paths.central, central);
    if (paths.hasGreatest) DrawCross(painter, map, paths.greatest, kGreatest);
    std::vector<KeyItem> key;
    if (!paths.central.empty()) key.push_back({central, QStringLiteral("Central line")});
    if (!paths.umbraNorth.empty() || !paths.umbraSouth.empty())
        key.push_back({umbra, QStringLiteral("Limits of the umbra")});
    key.push_back({penumbra, QStringLiteral("Limits of the penumbra")});
    key.push_back({QPen(kGreatest, 2.0), QStringLiteral("Greatest eclipse (\u00d7)")});
    DrawKey(painter, map, key);
    painter.restore();
}

void DrawLunarEclipseMap(QPainter& painter, const QRectF& area, const std::vector<sat::WorldOutline>& land,
                         const LunarVisibilityRegion& region, const std::string& title)
{
    sat::GroundTrackMapOptions options;
    options.title = title;
    // The map's own shading is the Moon above the horizon at greatest
    // eclipse, drawn below; the Sun's night (nearly the same hemisphere, as
    // the Moon stands opposite the Sun) is left out so that one shading
    // means one thing.
    options.night = sat::NightShading::Off;
    options.illuminationLegend = false;
    sat::DrawGroundTrackMap(painter, area, land, sat::GroundTrackResult{}, options);
    const QRectF map = sat::GroundTrackMapRect(area);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setClipRect(map);
    // The Moon-up hemisphere: every map pixel within 90° of the sub-lunar
    // point, filled as a polygon of the horizon closed over the pole on the
    // Moon's side.
    const double lat0 = region.subLunar.latitudeDeg;
    QPolygonF fill;
    const double poleLat = lat0 >= 0.0 ? 90.0 : -90.0;
    std::vector<QPointF> pts;
    for (int i = 0; i <= 360; ++i) {
        const double lon = -180.0 + i;  // map longitude
        // Horizon latitude at this longitude: tan φ = −cos(λ − λm) / tan δm.
        const double dl = (lon - region.subLunar.longitudeDeg) * 3.14159265358979323846 / 180.0;
        const double tanDec = std::tan(lat0 * 3.14159265358979323846 / 180.0);
        const double lat = std::fabs(tanDec) < 1e-9 ? (std::cos(dl) >= 0 ? -90.0 : 90.0)
                                                    : std::atan(-std::cos(dl) / tanDec) * 180.0 / 3.14159265358979323846;
        // The map runs from 180° W at its left edge to 180° E at its right.
        pts.emplace_back(map.left() + map.width() * i / 360.0, sat::GroundTrackMapPixel(map, 0.0, 0.0, lat).y());
    }
    fill << QPointF(map.left(), sat::GroundTrackMapPixel(map, 0.0, 0.0, poleLat).y());
    for (const QPointF& p : pts) fill << p;
    fill << QPointF(map.right(), sat::GroundTrackMapPixel(map, 0.0, 0.0, poleLat).y());
    painter.setPen(Qt::NoPen);
    painter.setBrush(kMoonUp);
    painter.drawPolygon(fill);
    DrawLines(painter, map, {region.horizon}, QPen(QColor(150, 120, 0), 1.5));
    DrawCross(painter, map, region.subLunar, kGreatest);
    const QPen horizon(QColor(150, 120, 0), 1.5);
    DrawKey(painter, map,
            {{horizon, QStringLiteral("Moon above the horizon at greatest eclipse"), QBrush(kMoonUp)},
             {horizon, QStringLiteral("Moon on the horizon at greatest eclipse")},
             {QPen(kGreatest, 2.0), QStringLiteral("Moon in the zenith (\u00d7)")}});
    painter.restore();
}

bool DrawEclipseMap(QPainter& painter, const QRectF& area, const std::vector<sat::WorldOutline>& land,
                    const EclipseEvent& event, const std::string& title)
{
    if (event.kind == EclipseKind::Solar) {
        BesselianElements elements;
        if (!ComputeBesselianElements(event.jdTT, elements)) return false;
        DrawSolarEclipseMap(painter, area, land, ComputeSolarEclipsePaths(elements, event.jdTT), title);
        return true;
    }
    LunarVisibilityRegion region;
    if (!ComputeLunarVisibilityRegion(event.jdTT, region)) return false;
    DrawLunarEclipseMap(painter, area, land, region, title);
    return true;
}

}  // namespace orv
