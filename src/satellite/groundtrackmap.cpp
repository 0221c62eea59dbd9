#include "satellite/groundtrackmap.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainterPath>
#include <QPolygonF>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "satellite/sattables.h"
#include "satellite/sattime.h"
#include "satellite/topocentric.h"
#include "util/angles.h"

namespace orv::sat {

namespace {

// Colours of the map (a dark chart, in keeping with the star charts).
const QColor kBackground(22, 24, 30);
const QColor kOcean(18, 40, 70);
const QColor kLand(64, 88, 66);
const QColor kCoast(122, 150, 118);
const QColor kGraticule(255, 255, 255, 46);
const QColor kNight(0, 0, 12, 105);
const QColor kFrame(140, 150, 170);
const QColor kText(225, 228, 235);
const QColor kLabelText(255, 255, 255);
const QColor kSunlit(255, 214, 60);
const QColor kPenumbra(255, 140, 40);
const QColor kUmbra(150, 165, 215);

constexpr double kGraticuleStepDeg = 30.0;

QColor IlluminationColour(Illumination state)
{
    switch (state) {
    case Illumination::Sunlit: return kSunlit;
    case Illumination::Penumbra: return kPenumbra;
    case Illumination::Umbra: return kUmbra;
    }
    return kSunlit;
}

// Longitude difference brought into [−180, 180).
double WrapDeg(double deg)
{
    if (!std::isfinite(deg)) return deg;
    double d = std::fmod(deg + 180.0, 360.0);
    if (d < 0.0) d += 360.0;
    return d - 180.0;
}

double X(const QRectF& map, double relativeLongitudeDeg)
{
    return map.left() + (relativeLongitudeDeg + 180.0) / 360.0 * map.width();
}
double Y(const QRectF& map, double latitudeDeg) { return map.top() + (90.0 - latitudeDeg) / 180.0 * map.height(); }

double Lon(const WorldPoint& p) { return p.longitudeCentideg / 100.0; }
double Lat(const WorldPoint& p) { return p.latitudeCentideg / 100.0; }

// An edge of the data set that is not a coast: a cut along the date line
// (from one side of it to the other, or along it).
bool ArtificialEdge(const WorldPoint& a, const WorldPoint& b)
{
    return std::abs(a.longitudeCentideg) == 18000 && std::abs(b.longitudeCentideg) == 18000;
}

QFont PixelFont(const QFont& base, double pixels, bool bold = false)
{
    QFont f = base;
    f.setPixelSize(std::max(7, static_cast<int>(std::lround(pixels))));
    f.setBold(bold);
    return f;
}

double TitleBand(const QRectF& area) { return std::clamp(area.height() * 0.07, 18.0, 34.0); }
double LegendBand(const QRectF& area) { return std::clamp(area.height() * 0.07, 18.0, 30.0); }
double SideBand(const QRectF& area) { return std::clamp(area.width() * 0.045, 22.0, 40.0); }

// An outline with its longitudes made continuous: an island across the date
// line runs on past ±180° instead of jumping to the far side of the map, and
// an outline that goes once round the pole (Antarctica) is closed through
// the pole.
struct UnwrappedOutline {
    QPolygonF lonLat;       // x longitude (continuous), y latitude, degrees
    std::vector<bool> coast;  // per edge i → i + 1: a real coastline
    bool fill = false;
    double lowestLon = 0.0;
    double highestLon = 0.0;
};

UnwrappedOutline Unwrap(const WorldOutline& o)
{
    UnwrappedOutline u;
    double x = Lon(o.points.front());
    u.lonLat << QPointF(x, Lat(o.points.front()));
    for (std::size_t i = 1; i < o.points.size(); ++i) {
        x += WrapDeg(Lon(o.points[i]) - Lon(o.points[i - 1]));
        u.lonLat << QPointF(x, Lat(o.points[i]));
        u.coast.push_back(!ArtificialEdge(o.points[i - 1], o.points[i]));
    }
    u.fill = o.closed;
    const double turned = u.lonLat.back().x() - u.lonLat.front().x();
    if (o.closed && std::fabs(turned) > 180.0) {
        double meanLat = 0.0;
        for (const QPointF& p : u.lonLat) meanLat += p.y();
        const double pole = meanLat < 0.0 ? -90.0 : 90.0;
        u.lonLat << QPointF(u.lonLat.back().x(), pole) << QPointF(u.lonLat.front().x(), pole);
        u.coast.push_back(false);
        u.coast.push_back(false);
    }
    u.lowestLon = u.highestLon = u.lonLat.front().x();
    for (const QPointF& p : u.lonLat) {
        u.lowestLon = std::min(u.lowestLon, p.x());
        u.highestLon = std::max(u.highestLon, p.x());
    }
    return u;
}

void DrawLand(QPainter& painter, const QRectF& map, double central, const std::vector<WorldOutline>& land)
{
    for (const WorldOutline& o : land) {
        if (o.points.size() < 2) continue;
        const UnwrappedOutline u = Unwrap(o);
        // The copies, one turn apart, that reach the map's span.
        const int firstTurn = static_cast<int>(std::floor((central - 180.0 - u.highestLon) / 360.0));
        const int lastTurn = static_cast<int>(std::ceil((central + 180.0 - u.lowestLon) / 360.0));
        for (int turn = firstTurn; turn <= lastTurn; ++turn) {
            const double shift = -central + 360.0 * turn;
            QPolygonF poly;
            poly.reserve(u.lonLat.size());
            for (const QPointF& p : u.lonLat) poly << QPointF(X(map, p.x() + shift), Y(map, p.y()));
            if (u.fill && poly.size() >= 4) {
                painter.setPen(Qt::NoPen);
                painter.setBrush(kLand);
                painter.drawPolygon(poly, Qt::OddEvenFill);
            }
            QPainterPath coast;
            for (qsizetype i = 0; i + 1 < poly.size(); ++i) {
                if (!u.coast[static_cast<std::size_t>(i)]) continue;
                if (coast.elementCount() == 0 || coast.currentPosition() != poly[i]) coast.moveTo(poly[i]);
                coast.lineTo(poly[i + 1]);
            }
            painter.setPen(QPen(kCoast, 0.8));
            painter.setBrush(Qt::NoBrush);
            painter.drawPath(coast);
        }
    }
}

void DrawNight(QPainter& painter, const QRectF& map, double central, double jdUT)
{
    // Subsolar point: the Sun's declination and its Greenwich hour angle.
    const std::array<double, 3> sun = ComputeSunVectorKm(jdUT);
    const double raSun = std::atan2(sun[1], sun[0]);
    double decSun = std::atan2(sun[2], std::hypot(sun[0], sun[1]));
    if (!std::isfinite(raSun) || !std::isfinite(decSun)) return;
    const double lonSunDeg = WrapDeg((raSun - GmstIau1982Rad(jdUT)) * kDegPerRad);
    // At the equinoxes the terminator runs along two meridians; a tiny
    // declination keeps the formula finite and the shape the same.
    if (std::fabs(decSun) < 1e-6) decSun = decSun < 0.0 ? -1e-6 : 1e-6;
    // The terminator: the great circle 90° from the subsolar point,
    // tan φ = −cos(λ − λs) / tan δs; night lies toward the pole the Sun does
    // not shine on.
    QPolygonF night;
    const double poleLat = decSun > 0.0 ? -90.0 : 90.0;
    night << QPointF(map.left(), Y(map, poleLat));
    const int steps = 180;
    for (int i = 0; i <= steps; ++i) {
        const double rel = -180.0 + 360.0 * i / steps;
        const double lon = rel + central;
        const double lat = std::atan(-std::cos((lon - lonSunDeg) * kRadPerDeg) / std::tan(decSun)) * kDegPerRad;
        night << QPointF(X(map, rel), Y(map, lat));
    }
    night << QPointF(map.right(), Y(map, poleLat));
    painter.setPen(Qt::NoPen);
    painter.setBrush(kNight);
    painter.drawPolygon(night);
}

QString LongitudeText(double lonDeg)
{
    const int d = static_cast<int>(std::lround(WrapDeg(lonDeg)));
    if (d == 0 || d == -180) return QStringLiteral("%1°").arg(std::abs(d));
    return QStringLiteral("%1°%2").arg(std::abs(d)).arg(d > 0 ? QChar('E') : QChar('W'));
}

QString LatitudeText(double latDeg)
{
    const int d = static_cast<int>(std::lround(latDeg));
    if (d == 0) return QStringLiteral("0°");
    return QStringLiteral("%1°%2").arg(std::abs(d)).arg(d > 0 ? QChar('N') : QChar('S'));
}

void DrawGraticule(QPainter& painter, const QRectF& map, double central, const QFont& font)
{
    painter.setPen(QPen(kGraticule, 0.8));
    const QFontMetricsF fm(font);
    painter.setFont(font);
    // Meridians at whole multiples of the step, wherever the map is turned.
    const double firstLon = std::ceil((central - 180.0) / kGraticuleStepDeg) * kGraticuleStepDeg;
    for (double lon = firstLon; lon <= central + 180.0 + 1e-9; lon += kGraticuleStepDeg) {
        const double x = X(map, lon - central);
        painter.setPen(QPen(kGraticule, 0.8));
        painter.drawLine(QPointF(x, map.top()), QPointF(x, map.bottom()));
        painter.setPen(kText);
        const QString t = LongitudeText(lon);
        const double w = fm.horizontalAdvance(t);
        if (x - w / 2 >= map.left() - w / 2 && x + w / 2 <= map.right() + w / 2)
            painter.drawText(QPointF(x - w / 2, map.bottom() + fm.ascent() + 2.0), t);
    }
    for (double lat = -60.0; lat <= 60.0 + 1e-9; lat += kGraticuleStepDeg) {
        const double y = Y(map, lat);
        painter.setPen(QPen(lat == 0.0 ? QColor(255, 255, 255, 80) : kGraticule, 0.8));
        painter.drawLine(QPointF(map.left(), y), QPointF(map.right(), y));
        painter.setPen(kText);
        const QString t = LatitudeText(lat);
        painter.drawText(QPointF(map.left() - fm.horizontalAdvance(t) - 3.0, y + fm.ascent() / 2 - 1.0), t);
    }
}

// Track pieces with longitudes unwrapped from the start, so that a pass
// over the date line continues past the map's edge instead of jumping back.
struct UnwrappedPoint {
    double relLonDeg;  // relative to the central longitude, continuous
    double latDeg;
    const GroundTrackPoint* point;
};

std::vector<std::vector<UnwrappedPoint>> UnwrapTrack(const GroundTrackResult& track, double central)
{
    std::vector<std::vector<UnwrappedPoint>> runs;
    const GroundTrackPoint* previous = nullptr;
    double previousRel = 0.0;
    // A gap (steps the model could not compute) breaks the track.
    double stepDays = 0.0;
    if (track.points.size() >= 2) {
        stepDays = track.points[1].jdUT - track.points[0].jdUT;
        for (std::size_t i = 2; i < track.points.size(); ++i)
            stepDays = std::min(stepDays, track.points[i].jdUT - track.points[i - 1].jdUT);
    }
    for (const GroundTrackPoint& p : track.points) {
        const double lon = p.longitudeRad * kDegPerRad, lat = p.latitudeRad * kDegPerRad;
        if (!std::isfinite(lon) || !std::isfinite(lat)) {
            previous = nullptr;
            continue;
        }
        const bool gap = previous == nullptr || (stepDays > 0.0 && p.jdUT - previous->jdUT > 1.5 * stepDays);
        double rel;
        if (gap) {
            rel = WrapDeg(lon - central);
            runs.emplace_back();
        } else {
            rel = previousRel + WrapDeg(lon - previous->longitudeRad * kDegPerRad);
        }
        runs.back().push_back({rel, lat, &p});
        previous = &p;
        previousRel = rel;
    }
    return runs;
}

void DrawTrack(QPainter& painter, const QRectF& map, double central, const GroundTrackResult& track,
               const GroundTrackMapOptions& options, const QFont& labelFont)
{
    const auto runs = UnwrapTrack(track, central);
    if (runs.empty()) return;
    double lowest = 0.0, highest = 0.0;
    for (const auto& run : runs)
        for (const UnwrappedPoint& u : run) {
            lowest = std::min(lowest, u.relLonDeg);
            highest = std::max(highest, u.relLonDeg);
        }
    // The copies of the track, one turn apart, that reach the map.
    const int firstTurn = static_cast<int>(std::floor((-180.0 - highest) / 360.0));
    const int lastTurn = static_cast<int>(std::ceil((180.0 - lowest) / 360.0));

    painter.save();
    painter.setClipRect(map);
    for (int turn = firstTurn; turn <= lastTurn; ++turn) {
        const double shift = 360.0 * turn;
        auto px = [&](const UnwrappedPoint& u) { return QPointF(X(map, u.relLonDeg + shift), Y(map, u.latDeg)); };
        for (const auto& run : runs) {
            // A dark casing under the coloured line keeps it readable over land.
            QPolygonF line;
            for (const UnwrappedPoint& u : run) line << px(u);
            painter.setPen(QPen(QColor(0, 0, 0, 150), 4.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter.drawPolyline(line);
            for (std::size_t i = 0; i + 1 < run.size(); ++i) {
                painter.setPen(QPen(IlluminationColour(run[i].point->illumination), 2.2, Qt::SolidLine, Qt::RoundCap));
                painter.drawLine(px(run[i]), px(run[i + 1]));
            }
        }
        // The start of the track.
        const UnwrappedPoint& start = runs.front().front();
        painter.setPen(QPen(Qt::black, 1.0));
        painter.setBrush(IlluminationColour(start.point->illumination));
        painter.drawEllipse(px(start), 4.5, 4.5);
        painter.setBrush(Qt::NoBrush);
    }

    // Time labels every N minutes of the track, counted from its start.
    if (options.labelIntervalMin > 0) {
        painter.setFont(labelFont);
        const QFontMetricsF fm(labelFont);
        // Near apogee a high orbit hardly moves: a label that would overlap
        // one already drawn is left out, with its dot.
        std::vector<QRectF> taken;
        const double startJd = runs.front().front().point->jdUT;
        for (int turn = firstTurn; turn <= lastTurn; ++turn) {
            const double shift = 360.0 * turn;
            for (const auto& run : runs)
                for (const UnwrappedPoint& u : run) {
                    const double minutes = (u.point->jdUT - startJd) * 1440.0;
                    const long whole = std::lround(minutes);
                    if (std::fabs(minutes - whole) > 1.0 / 120.0 || whole % options.labelIntervalMin != 0) continue;
                    const QPointF at(X(map, u.relLonDeg + shift), Y(map, u.latDeg));
                    if (!map.contains(at)) continue;
                    const SatCivilTime t = SatCivilFromJulianDate(u.point->jdUT + options.localOffsetHours / 24.0);
                    char buf[8];
                    std::snprintf(buf, sizeof buf, "%02d:%02d", t.hour, t.minute);
                    const QString text = QString::fromLatin1(buf);
                    const QPointF textAt(at.x() + 5.0, at.y() - 4.0);
                    const QRectF box(at.x() - 3.0, textAt.y() - fm.ascent() - 1.0, fm.horizontalAdvance(text) + 10.0,
                                     fm.height() + 6.0);
                    if (std::any_of(taken.begin(), taken.end(), [&](const QRectF& r) { return r.intersects(box); }))
                        continue;
                    taken.push_back(box);
                    painter.setPen(Qt::NoPen);
                    painter.setBrush(Qt::white);
                    painter.drawEllipse(at, 2.2, 2.2);
                    // A thin dark halo keeps the label readable on any ground.
                    painter.setPen(QColor(0, 0, 0, 200));
                    for (const QPointF d : {QPointF(-1, 0), QPointF(1, 0), QPointF(0, -1), QPointF(0, 1)})
                        painter.drawText(textAt + d, text);
                    painter.setPen(kLabelText);
                    painter.drawText(textAt, text);
                }
        }
    }
    painter.restore();
}

void DrawLegend(QPainter& painter, const QRectF& band, const QFont& font, NightShading night,
                const GroundTrackMapOptions& options)
{
    const QFontMetricsF fm(font);
    painter.setFont(font);
    struct Item {
        QColor colour;
        QString text;
        bool swatch;
    };
    std::vector<Item> items = {{kSunlit, QString::fromLatin1(IlluminationName(Illumination::Sunlit)), false},
                               {kPenumbra, QString::fromLatin1(IlluminationName(Illumination::Penumbra)), false},
                               {kUmbra, QString::fromLatin1(IlluminationName(Illumination::Umbra)), false}};
    if (!options.illuminationLegend) items.clear();
    if (night == NightShading::AtTrackStart)
        items.push_back({QColor(0, 0, 12), QString::fromStdString(options.nightLegend), true});
    const double sample = 22.0, gap = 8.0, spacing = 20.0;
    double total = 0.0;
    for (const Item& i : items) total += sample + gap + fm.horizontalAdvance(i.text) + spacing;
    total -= spacing;
    double x = band.center().x() - total / 2.0;
    const double y = band.center().y();
    for (const Item& i : items) {
        if (i.swatch) {
            painter.setPen(QPen(kFrame, 0.8));
            painter.setBrush(kOcean.darker(180));
            painter.drawRect(QRectF(x, y - 5.0, sample, 10.0));
            painter.setBrush(Qt::NoBrush);
        } else {
            painter.setPen(QPen(i.colour, 3.0, Qt::SolidLine, Qt::RoundCap));
            painter.drawLine(QPointF(x, y), QPointF(x + sample, y));
        }
        x += sample + gap;
        painter.setPen(kText);
        painter.drawText(QPointF(x, y + fm.ascent() / 2.0 - 1.0), i.text);
        x += fm.horizontalAdvance(i.text) + spacing;
    }
}

}  // namespace

std::vector<WorldOutline> JoinWorldOutlines(const std::vector<WorldPolyline>& polylines)
{
    auto same = [](const WorldPoint& a, const WorldPoint& b) {
        return a.longitudeCentideg == b.longitudeCentideg && a.latitudeCentideg == b.latitudeCentideg;
    };
    std::vector<WorldOutline> out;
    std::size_t i = 0;
    while (i < polylines.size()) {
        WorldOutline outline;
        outline.points = polylines[i].points;
        ++i;
        while (!outline.points.empty() && !(outline.points.size() > 2 && same(outline.points.front(), outline.points.back())) &&
               i < polylines.size() && !polylines[i].points.empty() && same(polylines[i].points.front(), outline.points.back())) {
            outline.points.insert(outline.points.end(), polylines[i].points.begin() + 1, polylines[i].points.end());
            ++i;
        }
        outline.closed = outline.points.size() > 3 && same(outline.points.front(), outline.points.back());
        out.push_back(std::move(outline));
    }
    return out;
}

QRectF GroundTrackMapRect(const QRectF& area)
{
    const double side = SideBand(area);
    const QRectF room = area.adjusted(side, TitleBand(area), -side * 0.6, -LegendBand(area) - 16.0);
    double w = room.width(), h = room.height();
    if (w > 2.0 * h)
        w = 2.0 * h;
    else
        h = w / 2.0;
    return QRectF(room.center().x() - w / 2.0, room.top() + (room.height() - h) / 2.0, w, h);
}

QPointF GroundTrackMapPixel(const QRectF& mapRect, double centralLongitudeDeg, double longitudeDeg,
                            double latitudeDeg)
{
    return QPointF(X(mapRect, WrapDeg(longitudeDeg - centralLongitudeDeg)), Y(mapRect, latitudeDeg));
}

void DrawGroundTrackMap(QPainter& painter, const QRectF& area, const std::vector<WorldOutline>& land,
                        const GroundTrackResult& track, const GroundTrackMapOptions& options)
{
    const double central = std::isfinite(options.centralLongitudeDeg) ? WrapDeg(options.centralLongitudeDeg) : 0.0;
    const QRectF map = GroundTrackMapRect(area);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.fillRect(area, kBackground);

    const double textPx = std::clamp(map.height() / 26.0, 9.0, 13.0);
    const QFont base = painter.font();
    const QFont small = PixelFont(base, textPx);
    const QFont title = PixelFont(base, textPx * 1.3, true);

    // Title.
    painter.setFont(title);
    painter.setPen(kText);
    painter.drawText(QRectF(area.left(), area.top(), area.width(), TitleBand(area)), Qt::AlignCenter,
                     QString::fromStdString(options.title));

    // The map.
    painter.save();
    painter.setClipRect(map);
    painter.fillRect(map, kOcean);
    DrawLand(painter, map, central, land);
    const bool nightShown = options.night == NightShading::AtTrackStart &&
                            (!track.points.empty() || std::isfinite(options.nightAtJdUT));
    if (nightShown)
        DrawNight(painter, map, central,
                  std::isfinite(options.nightAtJdUT) ? options.nightAtJdUT : track.points.front().jdUT);
    painter.restore();
    DrawGraticule(painter, map, central, small);
    DrawTrack(painter, map, central, track, options, small);
    painter.setPen(QPen(kFrame, 1.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(map);

    DrawLegend(painter, QRectF(area.left(), area.bottom() - LegendBand(area), area.width(), LegendBand(area)), small,
               nightShown ? options.night : NightShading::Off, options);
    painter.restore();
}

}  // namespace orv::sat
