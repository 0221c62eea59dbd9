#include "solarsystem/drawplanets.h"

#include <QPainterPath>

#include <algorithm>
#include <cmath>

#include "catalog/stars/stardisplay.h"
#include "map/mapview.h"
#include "solarsystem/planetsource.h"

namespace orv {

namespace {


// Symbol radius in inches for a magnitude: about the star discs' scale, a
// first-magnitude planet 0.03″ across the radius, the Sun and the Moon capped.
double SymbolRadiusInches(double magnitude)
{
    return std::clamp(0.012 + 0.006 * (2.0 - magnitude), 0.008, 0.06);
}

bool Project(const CChartFrame& frame, double ra, double dec, ScreenPoint& s)
{
    double v[3];
    frame.DateToFrame(ra, dec, v);
    return frame.ToScreen(v, s);
}

}  // namespace

QPainterPath PhaseShape(double r, double k)
{
    QPainterPath path;
    k = std::clamp(k, 0.0, 1.0);
    path.moveTo(0.0, -r);
    path.arcTo(QRectF(-r, -r, 2.0 * r, 2.0 * r), 90.0, -180.0);  // through (+r, 0) to (0, +r)
    const double xt = r * (1.0 - 2.0 * k);
    const int steps = 32;
    for (int i = 1; i <= steps; ++i) {
        const double phi = kPi / 2.0 - kPi * i / steps;  // from +π/2 down to −π/2
        path.lineTo(xt * std::cos(phi), r * std::sin(phi));
    }
    path.closeSubpath();
    return path;
}

PlanetChartPlaces ChartPlacesOf(const CObserverDoc& observer, const CPlanets& planets)
{
    PlanetChartPlaces places;
    const double jdTT = observer.JulianDateTDT();
    for (int body = 0; body < kBodyCount; ++body) {
        const PlanetRecord& r = planets.Record(body);
        if (r.valid) DateToJ2000(observer, jdTT, r.raRad, r.decRad, places.raJ2000Rad[body], places.decJ2000Rad[body]);
    }
    return places;
}

void DrawPlanets(DrawContext& ctx, const CPlanets& planets, const PlanetChartPlaces& places, SkySourceId source)
{
    const CBodyDisplay& display = ctx.view.planets;
    QPainter& p = ctx.painter;
    p.save();
    p.setRenderHint(QPainter::Antialiasing, true);
    const PlanetRecord& sun = planets.Record(kBodySun);
    const double W = ctx.Width(), H = ctx.Height();
    const bool solidGround = ctx.view.altAzGrid.solidHorizon != 0;
    const CGroundTest ground(ctx.frame, ctx.doc);
    const StarSizeScale starScale{ctx.view.starState.magLimit, ctx.view.starState.magBright, ctx.doc.stars.starRadBright,
                                  ctx.doc.stars.starRadFaint};
    // The Sun first, the Moon last: nearer bodies cover farther ones.
    static constexpr int kOrder[] = {kBodySun, kBodyPluto, kBodyNeptune, kBodyUranus, kBodySaturn,
                                     kBodyJupiter, kBodyMars, kBodyVenus, kBodyMercury, kBodyMoon};
    for (int body : kOrder) {
        const PlanetRecord& r = planets.Record(body);
        if (!r.valid || r.magnitudeCenti > display.magLimit) continue;
        ScreenPoint s;
        if (!Project(ctx.frame, r.raRad, r.decRad, s)) continue;
        // The disc's radius on the chart: the pixel distance to a point one
        // apparent radius away in declination.
        double discPx = 0.0;
        ScreenPoint edge;
        const double halfDiameter = 0.5 * r.apparentDiameterRad;
        const double edgeDec = r.decRad + (r.decRad > 0 ? -halfDiameter : halfDiameter);
        if (Project(ctx.frame, r.raRad, edgeDec, edge)) discPx = std::hypot(edge.x - s.x, edge.y - s.y);
        // Never smaller than a star of the same magnitude on this chart: at
        // deep levels the star discs are scaled to the level's faint range,
        // and a planet drawn by its own rule would look fainter than the
        // ninth-magnitude stars around it.
        const double symbolPx = std::max(ctx.Px(SymbolRadiusInches(r.magnitudeCenti * 0.01)),
                                         StarDiscVerticalPx(StarDiscRadius(r.magnitudeCenti, starScale), ctx.surface.dpiY) + 0.5);
        const double radius = std::max(discPx, symbolPx);
        if (s.x < -radius || s.y < -radius || s.x > W + radius || s.y > H + radius) continue;
        if (solidGround && ground.BelowHorizon(s.x, s.y)) continue;

        p.setPen(Qt::NoPen);
        // The phase is drawn once the true disc is larger than the symbol;
        // smaller, the symbol (a full disc) stands for the body.
        const bool phased =
            discPx >= std::max(3.0, symbolPx) && body != kBodySun && r.illuminatedFraction < 0.995;
        if (phased) {
            // The dark disc, then the lit part turned toward the Sun.
            p.setBrush(ctx.palette.planetDark);
            p.drawEllipse(QPointF(s.x, s.y), discPx, discPx);
            ScreenPoint toward;
            double angle = 0.0;
            const double step = std::max(halfDiameter, 1e-6);
            // A point a little toward the Sun along the great circle.
            const double cd = std::cos(r.decRad), sd = std::sin(r.decRad);
            const double sunV[3] = {std::cos(sun.decRad) * std::cos(sun.raRad), std::cos(sun.decRad) * std::sin(sun.raRad),
                                    std::sin(sun.decRad)};
            const double bodyV[3] = {cd * std::cos(r.raRad), cd * std::sin(r.raRad), sd};
            double towardV[3];
            for (int i = 0; i < 3; ++i) towardV[i] = bodyV[i] + step * (sunV[i] - bodyV[i]);
            const double ra2 = std::atan2(towardV[1], towardV[0]);
            const double dec2 = std::atan2(towardV[2], std::hypot(towardV[0], towardV[1]));
            if (Project(ctx.frame, ra2, dec2, toward)) angle = std::atan2(toward.y - s.y, toward.x - s.x);
            p.save();
            p.translate(s.x, s.y);
            p.rotate(angle * 180.0 / kPi);
            p.setBrush(ctx.palette.planetLit);
            p.drawPath(PhaseShape(discPx, r.illuminatedFraction));
            p.restore();
        } else {
            p.setBrush(ctx.palette.planetLit);
            p.drawEllipse(QPointF(s.x, s.y), radius, radius);
        }
        ctx.labels.Occupy({s.x - radius, s.y - radius, s.x + radius, s.y + radius});

        SceneObject o;
        o.raJ2000Rad = places.raJ2000Rad[body];
        o.decJ2000Rad = places.decJ2000Rad[body];
        o.xPx = static_cast<float>(s.x);
        o.yPx = static_cast<float>(s.y);
        o.radiusPx = static_cast<float>(radius);
        o.key = static_cast<std::uint32_t>(body);
        o.magCenti = r.magnitudeCenti;
        o.typeCode = static_cast<std::int16_t>(ObjectType::Planet);
        o.source = source;
        ctx.scene.Add(o);

        if (display.labelled) {
            p.setFont(ctx.fonts.label);
            const QFontMetricsF fm(ctx.fonts.label);
            const QString name = QString::fromLatin1(BodyName(body).data(), static_cast<int>(BodyName(body).size()));
            const double w = fm.horizontalAdvance(name), h = fm.height();
            const double gap = ctx.Px(0.02);
            const LabelRect candidates[] = {
                {s.x + radius + gap, s.y - h / 2, s.x + radius + gap + w, s.y + h / 2},
                {s.x - radius - gap - w, s.y - h / 2, s.x - radius - gap, s.y + h / 2},
                {s.x - w / 2, s.y - radius - gap - h, s.x + w / 2, s.y - radius - gap},
                {s.x - w / 2, s.y + radius + gap, s.x + w / 2, s.y + radius + gap + h},
            };
            const int k = ctx.labels.Place(candidates);
            if (k >= 0) {
                const LabelRect& box = candidates[k];
                p.setPen(ctx.palette.planetLabel);
                p.drawText(QPointF(box.x0, box.y0 + fm.ascent()), name);
                p.setPen(Qt::NoPen);
            }
        }
    }
    p.restore();
}

void CPlanetLayer::Draw(DrawContext& ctx, LayerSlot)
{
    // Topocentric places: the Moon stands up to a degree from its
    // geocentric place, and a chart shows the sky of its site.
    const CObserverDoc& o = ctx.doc.observer;
    const ComputedFor now{o.JulianDate(), o.LatitudeRad(), o.LongitudeRad(), o.HeightM()};
    if (m_computedFor != now) {
        m_planets.ComputeAll(o, PlaceCentre::Topocentric);
        m_places = ChartPlacesOf(o, m_planets);
        m_computedFor = now;
    }
    DrawPlanets(ctx, m_planets, m_places, m_source);
}

void RegisterPlanets(CChartComponents& components)
{
    const SkySourceId source = components.objects.Register(std::make_shared<CPlanetObjectSource>());
    components.layers.Add<CPlanetLayer>(source);
}

}  // namespace orv
