#include "solarsystem/drawminor.h"

#include <QPainterPath>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "catalog/stars/stardisplay.h"
#include "map/mapdoc.h"
#include "map/mapview.h"
#include "observer/observer.h"

namespace orv {

namespace {

constexpr double kTwoPi = 6.283185307179586;

void ToRaDec(const double v[3], double& ra, double& dec)
{
    ra = std::atan2(v[1], v[0]);
    if (ra < 0.0) ra += kTwoPi;
    dec = std::atan2(v[2], std::hypot(v[0], v[1]));
}

// Applies the transpose of the frame's J2000-to-date rotation.
void DateToJ2000Vector(const ApparentFrame& frame, const double date[3], double j2000[3])
{
    const auto& m = frame.j2000ToDate;
    for (int j = 0; j < 3; ++j) j2000[j] = m[0][j] * date[0] + m[1][j] * date[1] + m[2][j] * date[2];
}

bool Project(const CChartFrame& frame, double ra, double dec, ScreenPoint& s)
{
    double v[3];
    frame.DateToFrame(ra, dec, v);
    return frame.ToScreen(v, s);
}

void Unit(const Vector3& v, double out[3])
{
    const double n = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    out[0] = v.x / n;
    out[1] = v.y / n;
    out[2] = v.z / n;
}

// The tail's far end of date: the nucleus's apparent direction moved by the
// geometric difference between the nucleus and the tail's end seen from the
// Earth, so that both share the aberration and the parallax of the nucleus.
void FillTail(const ApparentFrame& frame, const CometElements& c, MinorChartEntry& e)
{
    const Vector3& h = e.place.helioJ2000;
    const double r = e.place.sunDistanceAU;
    const double length = CometTailLengthAU(r, c.absoluteG);
    if (!(length > 0.0)) return;
    const Vector3& earth = frame.earthJ2000;
    const Vector3 g1{h.x - earth.x, h.y - earth.y, h.z - earth.z};
    const double k = 1.0 + length / r;
    const Vector3 g2{h.x * k - earth.x, h.y * k - earth.y, h.z * k - earth.z};
    double u1[3], u2[3];
    Unit(g1, u1);
    Unit(g2, u2);
    const auto& m = frame.j2000ToDate;
    double d[3];
    for (int i = 0; i < 3; ++i) {
        const double delta[3] = {u2[0] - u1[0], u2[1] - u1[1], u2[2] - u1[2]};
        d[i] = m[i][0] * delta[0] + m[i][1] * delta[1] + m[i][2] * delta[2];
    }
    const double cd = std::cos(e.place.decRad);
    const double a[3] = {cd * std::cos(e.place.raRad) + d[0], cd * std::sin(e.place.raRad) + d[1],
                         std::sin(e.place.decRad) + d[2]};
    ToRaDec(a, e.tailRaRad, e.tailDecRad);
    e.hasTail = true;
}

}  // namespace

double CometTailLengthAU(double r, double g)
{
    if (!(r > 0.0) || r > 5.0 || !(g < 15.0)) return 0.0;
    // Brighter comets carry longer tails: a factor of 2.5 per 2.5 mag about g = 5.
    const double activity = std::clamp(std::pow(10.0, 0.16 * (5.0 - g)), 0.05, 8.0);
    return std::min(0.05 * activity / (r * r), 0.6);
}

void LoadFiltersOf(const CAsteroidCatalogSettings& a, const CCometCatalogSettings& c, double jdTT,
                   AsteroidFilter& asteroids, CometFilter& comets)
{
    asteroids.mode = a.filterMode;
    asteroids.numberLimit = a.filterNumber;
    asteroids.hMin = static_cast<float>(a.filterHMin);
    asteroids.hMax = static_cast<float>(a.filterHMax);
    comets.mode = c.filterMode;
    comets.days = c.filterDays;
    comets.jdTT = jdTT;
}

void LoadFiltersOf(const CMapDoc& doc, AsteroidFilter& asteroids, CometFilter& comets)
{
    LoadFiltersOf(doc.asteroids, doc.comets, doc.observer.JulianDateTDT(), asteroids, comets);
}

void ApplyLoadFilters(CMinorCatalogs& catalogs, const CMapDoc& doc)
{
    AsteroidFilter asteroids;
    CometFilter comets;
    LoadFiltersOf(doc, asteroids, comets);
    catalogs.SetLoadFilters(asteroids, comets);
}

std::vector<MinorChartEntry> ComputeMinorChart(const CMinorCatalogs& catalogs, MinorKind kind, const CMapDoc& doc,
                                               CPlanets& planets)
{
    std::vector<MinorChartEntry> entries;
    const CObserverDoc& observer = doc.observer;
    const double jdTT = observer.JulianDateTDT();
    ApparentFrame frame;
    if (planets.PrepareApparentFrame(observer, jdTT, PlaceCentre::Topocentric, frame) != PositionStatus::Ok)
        return entries;
    auto finish = [&](MinorChartEntry& e) {
        const double cd = std::cos(e.place.decRad);
        const double date[3] = {cd * std::cos(e.place.raRad), cd * std::sin(e.place.raRad), std::sin(e.place.decRad)};
        double j2000[3];
        DateToJ2000Vector(frame, date, j2000);
        ToRaDec(j2000, e.raJ2000Rad, e.decJ2000Rad);
    };
    // Bodies whose path is drawn are shown whatever the filter.
    std::vector<bool> pathed(kind == MinorKind::Asteroid ? catalogs.Asteroids().size() : catalogs.Comets().size());
    for (const MinorPathRequest& r : catalogs.OrbitPaths())
        if (r.kind == kind && r.index < pathed.size()) pathed[r.index] = true;
    // The loaded set (the load filter's choice), then the pathed bodies it
    // left out, in catalogue order.
    const std::vector<std::uint32_t>& loaded =
        kind == MinorKind::Asteroid ? catalogs.LoadedAsteroids() : catalogs.LoadedComets();
    std::vector<std::uint32_t> drawn;
    drawn.reserve(loaded.size() + catalogs.OrbitPaths().size());
    for (std::uint32_t i : loaded)
        if (i < pathed.size()) {
            drawn.push_back(i);
            pathed[i] = false;
        }
    for (std::size_t i = 0; i < pathed.size(); ++i)
        if (pathed[i]) drawn.push_back(static_cast<std::uint32_t>(i));
    if (drawn.size() > loaded.size()) std::sort(drawn.begin(), drawn.end());
    if (kind == MinorKind::Asteroid) {
        const std::vector<AsteroidElements>& list = catalogs.Asteroids();
        entries.reserve(drawn.size());
        for (std::uint32_t i : drawn) {
            const std::optional<TwoBodyOrbit> orbit = OrbitOf(list[i]);
            MinorChartEntry e;
            e.index = i;
            if (orbit && MinorPlaceAt(frame, *orbit, e.place) == PositionStatus::Ok) {
                FillMagnitude(list[i], e.place);
                finish(e);
                entries.push_back(e);
            }
        }
    } else {
        const std::vector<CometElements>& list = catalogs.Comets();
        for (std::uint32_t i : drawn) {
            const std::optional<TwoBodyOrbit> orbit = OrbitOf(list[i]);
            MinorChartEntry e;
            e.index = i;
            if (orbit && MinorPlaceAt(frame, *orbit, e.place) == PositionStatus::Ok) {
                FillMagnitude(list[i], e.place);
                finish(e);
                FillTail(frame, list[i], e);
                entries.push_back(e);
            }
        }
    }
    return entries;
}

std::vector<MinorChartPath> ComputeMinorPaths(const CMinorCatalogs& catalogs, MinorKind kind, const CMapDoc& doc,
                                              CPlanets& planets)
{
    std::vector<MinorChartPath> paths;
    CObserverDoc observer = doc.observer;
    for (const MinorPathRequest& r : catalogs.OrbitPaths()) {
        if (r.kind != kind || !(r.stepDays > 0.0) || !(r.endJdTT >= r.startJdTT)) continue;
        const std::optional<TwoBodyOrbit> orbit =
            kind == MinorKind::Asteroid
                ? (r.index < catalogs.Asteroids().size() ? OrbitOf(catalogs.Asteroids()[r.index]) : std::nullopt)
                : (r.index < catalogs.Comets().size() ? OrbitOf(catalogs.Comets()[r.index]) : std::nullopt);
        if (!orbit) continue;
        MinorChartPath path;
        const int steps = std::min(2000, static_cast<int>(std::floor((r.endJdTT - r.startJdTT) / r.stepDays)) + 1);
        for (int k = 0; k < steps; ++k) {
            const double jd = r.startJdTT + k * r.stepDays;
            // Topocentric for the map's site, as the body itself is drawn.
            ApparentFrame frame;
            if (planets.PrepareApparentFrame(observer, jd, PlaceCentre::Topocentric, frame) != PositionStatus::Ok) break;
            MinorPlace place;
            if (MinorPlaceAt(frame, *orbit, place) != PositionStatus::Ok) continue;
            path.points.push_back({jd, place.raRad, place.decRad, r.labelEvery > 0 && k % r.labelEvery == 0});
        }
        paths.push_back(std::move(path));
    }
    return paths;
}

namespace {

// The path as a line through its places, a tick across it at each place and
// the UT date at the labelled ones ("07-20").
void DrawPath(DrawContext& ctx, const MinorChartPath& path)
{
    QPainter& p = ctx.painter;
    const double W = ctx.Width(), H = ctx.Height();
    QPen pen(ctx.palette.minorLabel, ctx.LineWidth());
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    std::vector<ScreenPoint> s(path.points.size());
    std::vector<bool> ok(path.points.size());
    for (std::size_t i = 0; i < path.points.size(); ++i)
        ok[i] = Project(ctx.frame, path.points[i].raRad, path.points[i].decRad, s[i]);
    const double far = 4.0 * (W + H);
    auto usable = [&](std::size_t i) { return ok[i] && std::fabs(s[i].x) < far && std::fabs(s[i].y) < far; };
    for (std::size_t i = 1; i < s.size(); ++i)
        if (usable(i - 1) && usable(i)) p.drawLine(QPointF(s[i - 1].x, s[i - 1].y), QPointF(s[i].x, s[i].y));
    const double tick = ctx.Px(0.03, 3.0);
    const QFontMetricsF fm(ctx.fonts.label);
    p.setFont(ctx.fonts.label);
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (!usable(i) || s[i].x < 0 || s[i].y < 0 || s[i].x > W || s[i].y > H) continue;
        // Across the path: perpendicular to the chord through the neighbours.
        const std::size_t a = i > 0 && usable(i - 1) ? i - 1 : i, b = i + 1 < s.size() && usable(i + 1) ? i + 1 : i;
        double dx = s[b].x - s[a].x, dy = s[b].y - s[a].y;
        const double len = std::hypot(dx, dy);
        if (len > 0.0) {
            dx /= len;
            dy /= len;
        } else {
            dx = 1.0;
            dy = 0.0;
        }
        const double half = path.points[i].label ? tick : 0.6 * tick;
        p.drawLine(QPointF(s[i].x - dy * half, s[i].y + dx * half), QPointF(s[i].x + dy * half, s[i].y - dx * half));
        if (!path.points[i].label) continue;
        const double jdUT = path.points[i].jdTT - DeltaTSeconds(path.points[i].jdTT) / 86400.0;
        const CivilDateTime d = CivilFromJulianDate(jdUT);
        const QString text = QString::asprintf("%04d-%02d-%02d", d.year, d.month, d.day);
        const double w = fm.horizontalAdvance(text), h = fm.height();
        // The label beside the tick, on the side away from the path.
        const double ox = s[i].x + dy * (half + 2.0), oy = s[i].y - dx * (half + 2.0);
        const LabelRect candidates[] = {
            {ox, oy - h / 2, ox + w, oy + h / 2},
            {ox - w, oy - h / 2, ox, oy + h / 2},
            {s[i].x - dy * (half + 2.0) - w, s[i].y + dx * (half + 2.0) - h / 2, s[i].x - dy * (half + 2.0),
             s[i].y + dx * (half + 2.0) + h / 2},
        };
        const int k = ctx.labels.Place(candidates);
        if (k >= 0) p.drawText(QPointF(candidates[k].x0, candidates[k].y0 + fm.ascent()), text);
    }
}

}  // namespace

void CMinorLayer::Draw(DrawContext& ctx, LayerSlot)
{
    CMinorCatalogs& catalogs = m_catalogs->Get();
    const CObserverDoc& o = ctx.doc.observer;
    const bool asteroid = m_kind == MinorKind::Asteroid;
    // The map's catalogue settings are the load filters in force while it
    // is drawn: the catalogue loads through them (a new loaded set, and a
    // new generation, only when they change what is loaded).
    ApplyLoadFilters(catalogs, ctx.doc);
    const ComputedFor now{o.JulianDate(), o.LatitudeRad(), o.LongitudeRad(), o.HeightM(), catalogs.Generation()};
    if (m_computedFor != now) {
        m_entries = ComputeMinorChart(catalogs, m_kind, ctx.doc, m_planets);
        m_paths = ComputeMinorPaths(catalogs, m_kind, ctx.doc, m_planets);
        m_computedFor = now;
    }

    const CBodyDisplay& display = asteroid ? ctx.view.asteroids : ctx.view.comets;
    QPainter& p = ctx.painter;
    p.save();
    p.setRenderHint(QPainter::Antialiasing, true);
    const double W = ctx.Width(), H = ctx.Height();
    const bool solidGround = ctx.view.altAzGrid.solidHorizon != 0;
    const CGroundTest ground(ctx.frame, ctx.doc);
    const StarSizeScale starScale{ctx.view.starState.magLimit, ctx.view.starState.magBright, ctx.doc.stars.starRadBright,
                                  ctx.doc.stars.starRadFaint};
    const QFontMetricsF fm(ctx.fonts.label);
    const double gap = ctx.Px(0.02);
    p.setFont(ctx.fonts.label);
    const QColor tailColour = ctx.palette.cometTail;
    for (const MinorChartPath& path : m_paths) DrawPath(ctx, path);
    ctx.scene.Reserve(m_entries.size());
    for (const MinorChartEntry& e : m_entries) {
        if (e.place.magnitudeCenti > display.magLimit) continue;
        ScreenPoint s;
        if (!Project(ctx.frame, e.place.raRad, e.place.decRad, s)) continue;
        const double radius =
            std::max(1.5, StarDiscVerticalPx(StarDiscRadius(e.place.magnitudeCenti, starScale), ctx.surface.dpiY) + 0.5);
        // The tail may reach onto the chart from a nucleus beyond its edge.
        ScreenPoint tail;
        const bool tailShown = e.hasTail && Project(ctx.frame, e.tailRaRad, e.tailDecRad, tail) &&
                               std::hypot(tail.x - s.x, tail.y - s.y) > 2.0 * radius;
        const double reach = tailShown ? std::hypot(tail.x - s.x, tail.y - s.y) : radius;
        if (s.x < -reach || s.y < -reach || s.x > W + reach || s.y > H + reach) continue;
        if (solidGround && ground.BelowHorizon(s.x, s.y)) continue;
        if (tailShown) {
            // A fan widening away from the nucleus, fading toward its end.
            const double dx = tail.x - s.x, dy = tail.y - s.y;
            const double len = std::hypot(dx, dy);
            const double nx = -dy / len, ny = dx / len;
            const double halfWidth = std::max(radius, 0.12 * len);
            QPolygonF fan;
            fan << QPointF(s.x + nx * radius, s.y + ny * radius) << QPointF(tail.x + nx * halfWidth, tail.y + ny * halfWidth)
                << QPointF(tail.x - nx * halfWidth, tail.y - ny * halfWidth)
                << QPointF(s.x - nx * radius, s.y - ny * radius);
            QLinearGradient gradient(QPointF(s.x, s.y), QPointF(tail.x, tail.y));
            QColor head = tailColour, end = tailColour;
            head.setAlpha(170);
            end.setAlpha(0);
            gradient.setColorAt(0.0, head);
            gradient.setColorAt(1.0, end);
            p.setPen(Qt::NoPen);
            p.setBrush(gradient);
            p.drawPolygon(fan);
        }
        p.setPen(Qt::NoPen);
        if (asteroid) {
            p.setBrush(ctx.palette.asteroid);
            p.drawEllipse(QPointF(s.x, s.y), radius, radius);
        } else {
            // A comet's head: a disc in a faint coma.
            QColor coma = ctx.palette.cometHead;
            coma.setAlpha(90);
            p.setBrush(coma);
            p.drawEllipse(QPointF(s.x, s.y), radius * 1.8, radius * 1.8);
            p.setBrush(ctx.palette.cometHead);
            p.drawEllipse(QPointF(s.x, s.y), radius, radius);
        }
        ctx.labels.Occupy({s.x - radius, s.y - radius, s.x + radius, s.y + radius});

        SceneObject so;
        so.raJ2000Rad = e.raJ2000Rad;
        so.decJ2000Rad = e.decJ2000Rad;
        so.xPx = static_cast<float>(s.x);
        so.yPx = static_cast<float>(s.y);
        so.radiusPx = static_cast<float>(radius);
        so.key = e.index;
        so.magCenti = e.place.magnitudeCenti;
        so.typeCode = static_cast<std::int16_t>(asteroid ? ObjectType::Asteroid : ObjectType::Comet);
        so.source = m_source;
        ctx.scene.Add(so);

        if (!display.labelled) continue;
        QString text;
        if (asteroid) {
            const AsteroidElements& a = catalogs.Asteroids()[e.index];
            text = a.number > 0 ? QString::asprintf("%1d", a.number) : QString::fromStdString(a.name);
        } else {
            std::string name = catalogs.Comets()[e.index].name;
            // The designation without the discoverer's name: "C/2020 F3", "1P".
            if (const std::size_t paren = name.find(" ("); paren != std::string::npos) name.resize(paren);
            text = QString::fromStdString(name);
        }
        if (display.labelMag != 0) text += QString::asprintf("  Mag %.1lf", e.place.magnitudeCenti * 0.01);
        const double w = fm.horizontalAdvance(text), h = fm.height();
        const LabelRect candidates[] = {
            {s.x + radius + gap, s.y - h / 2, s.x + radius + gap + w, s.y + h / 2},
            {s.x - radius - gap - w, s.y - h / 2, s.x - radius - gap, s.y + h / 2},
            {s.x - w / 2, s.y - radius - gap - h, s.x + w / 2, s.y - radius - gap},
            {s.x - w / 2, s.y + radius + gap, s.x + w / 2, s.y + radius + gap + h},
        };
        const int k = ctx.labels.Place(candidates);
        if (k >= 0) {
            const LabelRect& box = candidates[k];
            p.setPen(ctx.palette.minorLabel);
            p.drawText(QPointF(box.x0, box.y0 + fm.ascent()), text);
        }
    }
    p.restore();
}

void RegisterMinorBodies(CChartComponents& components, std::shared_ptr<CMinorCatalogHandle> catalogs)
{
    const SkySourceId comets =
        components.objects.Register(std::make_shared<CMinorObjectSource>(MinorKind::Comet, catalogs));
    const SkySourceId asteroids =
        components.objects.Register(std::make_shared<CMinorObjectSource>(MinorKind::Asteroid, catalogs));
    components.layers.Add<CMinorLayer>(MinorKind::Comet, catalogs, comets);
    components.layers.Add<CMinorLayer>(MinorKind::Asteroid, catalogs, asteroids);
}

}  // namespace orv
