#include "solarsystem/drawplanets.h"

#include <QPainterPath>
#include <QTransform>

#include <algorithm>
#include <cmath>

#include "catalog/stars/stardisplay.h"
#include "map/mapview.h"
#include "solarsystem/drawbodypath.h"
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


// The screen directions, from the body's place, of the sky directions at
// position angles P (north through east) and P + 90°, as unit vectors: the
// axes of the planet's own frame on the chart (the pole, and the equator
// toward the following limb). Mirrored charts come out mirrored.
bool PlanetAxes(const CChartFrame& frame, double ra, double dec, double poleAngleRad, double stepRad, const ScreenPoint& s,
                QPointF& equatorAxis, QPointF& poleAxis)
{
    auto axis = [&](double pa, QPointF& out) {
        const double north = stepRad * std::cos(pa), east = stepRad * std::sin(pa);
        ScreenPoint t;
        if (!Project(frame, ra + east / std::cos(dec), dec + north, t)) return false;
        const double dx = t.x - s.x, dy = t.y - s.y, len = std::hypot(dx, dy);
        if (!(len > 0.0)) return false;
        out = QPointF(dx / len, dy / len);
        return true;
    };
    return axis(poleAngleRad, poleAxis) && axis(poleAngleRad + kPi / 2.0, equatorAxis);
}

QColor Mix(const QColor& a, const QColor& b, double t)
{
    return QColor::fromRgbF(static_cast<float>(a.redF() + (b.redF() - a.redF()) * t),
                            static_cast<float>(a.greenF() + (b.greenF() - a.greenF()) * t),
                            static_cast<float>(a.blueF() + (b.blueF() - a.blueF()) * t));
}

// An elliptical annulus centred at the origin: the ring between two
// ellipses of the same axis ratio.
QPainterPath Annulus(double inner, double outer, double ratio)
{
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    path.addEllipse(QPointF(0, 0), outer, outer * ratio);
    path.addEllipse(QPointF(0, 0), inner, inner * ratio);
    return path;
}

// The apparent polar semi-axis of an oblate globe (polar/equatorial radius
// `axisRatio`) whose equator is tilted by `tiltRad` to the line of sight.
double ApparentPolarRatio(double axisRatio, double tiltRad)
{
    return std::sqrt(axisRatio * axisRatio * std::cos(tiltRad) * std::cos(tiltRad) +
                     std::sin(tiltRad) * std::sin(tiltRad));
}

// Saturn in its own frame (units of the equatorial radius, +y the north
// pole): the rings, the globe over them, then the near half of the rings
// again where it crosses the globe. With B > 0 the north face of the rings
// is seen and their southern half is the nearer. (Drawing each half clipped
// at the major axis would leave a seam of half-covered pixels along it.)
void DrawSaturnFigure(QPainter& p, const SaturnRingView& ring, const ChartPalette& palette)
{
    const double ratio = std::sin(std::fabs(ring.earthTiltRad));
    const QColor ringColour = Mix(palette.planetLit, palette.planetDark, 0.15);
    const QColor crepe = Mix(palette.planetLit, palette.planetDark, 0.6);
    QPainterPath rings = Annulus(kSaturnRingAInner, kSaturnRingAOuter, ratio);
    rings.addPath(Annulus(kSaturnRingBInner, kSaturnRingBOuter, ratio));
    const QPainterPath ringC = Annulus(kSaturnRingCInner, kSaturnRingBInner, ratio);
    auto drawRings = [&] {
        p.setBrush(crepe);
        p.drawPath(ringC);
        p.setBrush(ringColour);
        p.drawPath(rings);
    };
    drawRings();
    QPainterPath globe;
    globe.addEllipse(QPointF(0, 0), 1.0, ApparentPolarRatio(0.902, ring.earthTiltRad));
    p.setBrush(palette.planetLit);
    p.drawPath(globe);
    QPainterPath nearHalf;
    nearHalf.addRect(QRectF(-3.0, ring.earthTiltRad >= 0.0 ? -3.0 : 0.0, 6.0, 3.0));
    p.save();
    p.setClipPath(globe.intersected(nearHalf), Qt::IntersectClip);
    drawRings();
    p.restore();
}

// Jupiter in its own frame: the globe, the two main belts and the
// temperate belts (planetographic latitudes of their usual edges), and the
// Great Red Spot where it stands.
void DrawJupiterFigure(QPainter& p, const JupiterPhysical& jupiter, bool belts, double grsLongitudeDeg,
                       const ChartPalette& palette)
{
    const double polar = ApparentPolarRatio(0.935, jupiter.earthDeclinationRad);
    QPainterPath globe;
    globe.addEllipse(QPointF(0, 0), 1.0, polar);
    p.setBrush(palette.planetLit);
    p.drawPath(globe);
    p.save();
    p.setClipPath(globe, Qt::IntersectClip);
    const double de = jupiter.earthDeclinationRad;
    // The band between two latitudes seen on the globe tilted by DE.
    auto band = [&](double lat1Deg, double lat2Deg, const QColor& colour) {
        const double y1 = polar * std::sin(lat1Deg * kPi / 180.0 - de);
        const double y2 = polar * std::sin(lat2Deg * kPi / 180.0 - de);
        p.setBrush(colour);
        p.drawRect(QRectF(-1.1, std::min(y1, y2), 2.2, std::fabs(y2 - y1)));
    };
    if (belts) {
        const QColor belt = Mix(palette.planetLit, palette.planetDark, 0.45);
        const QColor faint = Mix(palette.planetLit, palette.planetDark, 0.25);
        band(7.0, 17.0, belt);     // North Equatorial Belt
        band(-20.0, -8.0, belt);   // South Equatorial Belt
        band(24.0, 30.0, faint);   // North Temperate Belt
        band(-31.0, -26.0, faint); // South Temperate Belt
    }
    const GreatRedSpotPlace spot = GreatRedSpotOnDisc(jupiter, grsLongitudeDeg);
    if (spot.visible) {
        // About 16,000 km by 12,000 km: 0.22 by 0.085 radius, foreshortened
        // toward the limb.
        const double foreshorten = std::sqrt(std::max(0.0, 1.0 - spot.xRadii * spot.xRadii / (0.924 * 0.924)));
        // Brick red on the normal scheme; the lit colour's own hue on the
        // others (pure red at night, black on white).
        const QColor lit = palette.planetLit;
        const QColor red = QColor::fromRgbF(lit.redF() * 0.85f, lit.greenF() * 0.4f, lit.blueF() * 0.3f);
        p.setBrush(Mix(red, palette.planetDark, 0.25));
        p.drawEllipse(QPointF(spot.xRadii, spot.yRadii * polar), 0.11 * std::max(foreshorten, 0.15), 0.085);
    }
    p.restore();
}

// The satellites of Jupiter and Saturn, as stars of their magnitude, once
// they stand clear of their planet's drawing (or cross its face on a large
// disc); those behind the globe are not drawn.
void DrawSatellites(DrawContext& ctx, const CPlanets& planets, const PlanetGlobes& globes, SkySourceId moonSource,
                    const StarSizeScale& starScale)
{
    QPainter& p = ctx.painter;
    const double W = ctx.Width(), H = ctx.Height();
    const int magLimit = std::max(ctx.view.starState.magLimit, 600);
    for (int k = 0; k < kChartSatelliteCount; ++k) {
        const SatellitePlace& place = globes.satellites.satellites[static_cast<std::size_t>(k)];
        if (!place.valid || place.hiddenByPlanet) continue;
        const ChartSatelliteInfo& info = ChartSatellite(k);
        const PlanetRecord& planet = planets.Record(info.planet);
        const auto magCenti = static_cast<std::int16_t>(std::lround(std::clamp(place.magnitude, -30.0, 30.0) * 100.0));
        if (magCenti > magLimit) continue;
        ScreenPoint centre, s, edge;
        if (!Project(ctx.frame, planet.raRad, planet.decRad, centre) || !Project(ctx.frame, place.raRad, place.decRad, s))
            continue;
        if (!Project(ctx.frame, planet.raRad, planet.decRad + 0.5 * planet.apparentDiameterRad * (planet.decRad > 0 ? -1 : 1), edge))
            continue;
        const double planetPx = std::hypot(edge.x - centre.x, edge.y - centre.y);
        const double separationPx = std::hypot(s.x - centre.x, s.y - centre.y);
        const double dotPx = std::max(1.2, StarDiscVerticalPx(StarDiscRadius(magCenti, starScale), ctx.surface.dpiY) * 0.5);
        // Clear of the globe (and at least a few pixels off), or in front
        // of a disc large enough to show it.
        const bool inFront = separationPx < planetPx;
        if (inFront ? planetPx < 8.0 : separationPx < std::max(planetPx, 2.0) + dotPx + 2.0) continue;
        if (s.x < -dotPx || s.y < -dotPx || s.x > W + dotPx || s.y > H + dotPx) continue;
        p.setPen(Qt::NoPen);
        p.setBrush(inFront ? ctx.palette.planetDark : ctx.palette.planetLit);
        p.drawEllipse(QPointF(s.x, s.y), dotPx, dotPx);
        ctx.labels.Occupy({s.x - dotPx, s.y - dotPx, s.x + dotPx, s.y + dotPx});

        SceneObject o;
        o.raJ2000Rad = globes.satelliteRaJ2000Rad[k];
        o.decJ2000Rad = globes.satelliteDecJ2000Rad[k];
        o.xPx = static_cast<float>(s.x);
        o.yPx = static_cast<float>(s.y);
        o.radiusPx = static_cast<float>(dotPx);
        o.key = static_cast<std::uint32_t>(k);
        o.magCenti = magCenti;
        o.typeCode = static_cast<std::int16_t>(ObjectType::Planet);
        o.source = moonSource;
        if (moonSource != kNoSkySource) ctx.scene.Add(o);

        // Names once the satellites are well apart (Io is 5.9 radii out).
        if (ctx.view.planets.labelled && planetPx >= 1.5) {
            p.setFont(ctx.fonts.label);
            const QFontMetricsF fm(ctx.fonts.label);
            const QString name = QString::fromLatin1(info.name.data(), static_cast<int>(info.name.size()));
            const double w = fm.horizontalAdvance(name), h = fm.height();
            const double gap = ctx.Px(0.01);
            const LabelRect candidates[] = {
                {s.x - w / 2, s.y - dotPx - gap - h, s.x + w / 2, s.y - dotPx - gap},
                {s.x - w / 2, s.y + dotPx + gap, s.x + w / 2, s.y + dotPx + gap + h},
                {s.x + dotPx + gap, s.y - h / 2, s.x + dotPx + gap + w, s.y + h / 2},
            };
            const int c = ctx.labels.Place(candidates);
            if (c >= 0) {
                p.setPen(ctx.palette.planetLabel);
                p.drawText(QPointF(candidates[c].x0, candidates[c].y0 + fm.ascent()), name);
                p.setPen(Qt::NoPen);
            }
        }
    }
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

void DrawPlanets(DrawContext& ctx, const CPlanets& planets, const PlanetChartPlaces& places, SkySourceId source,
                 const PlanetGlobes* globes, SkySourceId moonSource)
{
    const CBodyDisplay& display = ctx.view.planets;
    ctx.scene.SetSourceStyle(source, PlanetStyleWord(ctx.doc.solarSystem.grsLongitudeDeg));
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
        double radius = std::max(discPx, symbolPx);
        // Jupiter and Saturn in detail once their true figure outgrows the
        // symbol: Saturn's rings reach 2.27 radii.
        QPointF equatorAxis, poleAxis;
        bool figure = false;
        if (globes != nullptr && body == kBodySaturn && globes->saturn &&
            discPx >= std::max(1.5, symbolPx / kSaturnRingAOuter))
            figure = PlanetAxes(ctx.frame, r.raRad, r.decRad, globes->saturn->poleAngleRad, halfDiameter, s, equatorAxis,
                                poleAxis);
        if (globes != nullptr && body == kBodyJupiter && globes->jupiter && discPx >= std::max(4.0, symbolPx))
            figure = PlanetAxes(ctx.frame, r.raRad, r.decRad, globes->jupiter->poleAngleRad, halfDiameter, s, equatorAxis,
                                poleAxis);
        if (figure && body == kBodySaturn) radius = std::max(radius, discPx * kSaturnRingAOuter);
        if (s.x < -radius || s.y < -radius || s.x > W + radius || s.y > H + radius) continue;
        if (solidGround && ground.BelowHorizon(s.x, s.y)) continue;

        p.setPen(Qt::NoPen);
        // The phase is drawn once the true disc is larger than the symbol;
        // smaller, the symbol (a full disc) stands for the body.
        const bool phased =
            discPx >= std::max(3.0, symbolPx) && body != kBodySun && r.illuminatedFraction < 0.995;
        if (figure) {
            p.save();
            p.setWorldTransform(QTransform(equatorAxis.x() * discPx, equatorAxis.y() * discPx, poleAxis.x() * discPx,
                                           poleAxis.y() * discPx, s.x, s.y),
                                true);
            if (body == kBodySaturn)
                DrawSaturnFigure(p, *globes->saturn, ctx.palette);
            else
                DrawJupiterFigure(p, *globes->jupiter, ctx.doc.solarSystem.jupiterBelts,
                                  ctx.doc.solarSystem.grsLongitudeDeg, ctx.palette);
            p.restore();
        } else if (phased) {
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
    if (globes != nullptr) DrawSatellites(ctx, planets, *globes, moonSource, starScale);
    p.restore();
}

PlanetGlobes GlobesOf(const CObserverDoc& observer, const CPlanets& planets)
{
    PlanetGlobes g;
    const double jdTT = observer.JulianDateTDT();
    if (planets.Record(kBodyJupiter).valid) g.jupiter = JupiterPhysicalMeeus(planets, observer, jdTT);
    if (planets.Record(kBodySaturn).valid) g.saturn = SaturnRingViewMeeus(planets, observer, jdTT);
    g.satellites = PlaceChartSatellites(planets, observer, jdTT, g.jupiter ? g.jupiter->poleAngleRad : 0.0,
                                        g.saturn ? g.saturn->poleAngleRad : 0.0);
    for (int k = 0; k < kChartSatelliteCount; ++k) {
        const SatellitePlace& place = g.satellites.satellites[static_cast<std::size_t>(k)];
        if (place.valid)
            DateToJ2000(observer, jdTT, place.raRad, place.decRad, g.satelliteRaJ2000Rad[k], g.satelliteDecJ2000Rad[k]);
    }
    return g;
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
        m_globes = GlobesOf(o, m_planets);
        m_computedFor = now;
    }
    DrawPlanets(ctx, m_planets, m_places, m_source, &m_globes, m_moonSource);
}

void RegisterPlanets(CChartComponents& components)
{
    const SkySourceId source = components.objects.Register(std::make_shared<CPlanetObjectSource>());
    const SkySourceId moons = components.objects.Register(std::make_shared<CPlanetMoonSource>());
    components.layers.Add<CPlanetLayer>(source, moons);
    components.layers.Add<CBodyPathLayer>();
}

}  // namespace orv
