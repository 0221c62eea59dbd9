#include "catalog/deepsky/drawdeepsky.h"

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QRawFont>

#include <algorithm>
#include <cmath>

#include "catalog/deepsky/deepskyfilter.h"
#include "util/angles.h"

namespace orv {

namespace {

// Where the object lands and how its axes lie on the surface.
struct Placed {
    const DeepSkyObject* object = nullptr;
    double x = 0.0, y = 0.0;
    double semiMajorPx = 0.0, semiMinorPx = 0.0;
    double angleDeg = 0.0;  // of the major axis, from the surface's x axis, clockwise (Qt's rotation)
};

// One arc minute on the sky, for the local north and east directions.
constexpr double kProbeRad = kPi / (180.0 * 60.0);

bool PlaceObject(const DrawContext& ctx, const DeepSkyObject& o, double minSemiPx, Placed& out)
{
    ScreenPoint c, n, e;
    const CChartFrame& f = ctx.frame;
    if (!f.CatalogueToScreen(o.raJ2000Rad, o.decJ2000Rad, EpochPath::Rigid, c)) return false;
    // North and east at the object: the position angle is measured from
    // north through east on the sky, whatever the chart's rotation or flips.
    const double north = std::min(o.decJ2000Rad + kProbeRad, kPi / 2);
    const double cosDec = std::max(std::cos(o.decJ2000Rad), 1e-6);
    if (!f.CatalogueToScreen(o.raJ2000Rad, north, EpochPath::Rigid, n) ||
        !f.CatalogueToScreen(o.raJ2000Rad + kProbeRad / cosDec, o.decJ2000Rad, EpochPath::Rigid, e))
        return false;
    const double nx = n.x - c.x, ny = n.y - c.y, ex = e.x - c.x, ey = e.y - c.y;
    const double pxPerArcmin = std::hypot(nx, ny);
    if (!(pxPerArcmin > 0.0) || !std::isfinite(pxPerArcmin)) return false;
    const double pa = (o.paDeg >= 0 ? o.paDeg : 0) * kPi / 180.0;
    const double ax = nx * std::cos(pa) + ex * std::sin(pa), ay = ny * std::cos(pa) + ey * std::sin(pa);
    out.object = &o;
    out.x = c.x;
    out.y = c.y;
    const double major = o.majorArcmin, minor = o.minorArcmin > 0.0f ? o.minorArcmin : o.majorArcmin;
    out.semiMajorPx = std::max(minSemiPx, 0.5 * major * pxPerArcmin);
    out.semiMinorPx = std::max(minSemiPx * (major > 0.0 ? std::clamp(minor / major, 0.3, 1.0) : 1.0),
                               0.5 * minor * pxPerArcmin);
    out.angleDeg = std::atan2(ay, ax) * 180.0 / kPi;
    return true;
}

QPen SymbolPen(const DrawContext& ctx, const QColor& colour, Qt::PenStyle style = Qt::SolidLine)
{
    QPen pen(colour, ctx.LineWidth());
    pen.setStyle(style);
    pen.setCosmetic(true);
    return pen;
}

// The symbol of a kind of object, as star atlases draw them: galaxies as
// ellipses along their major axes; open clusters as dashed circles; globular
// clusters as circles with a cross; planetary nebulae as small rings with
// four rays; bright nebulae as squares turned with their axes; dark nebulae
// as dashed squares; supernova remnants as double rings; clusters of
// galaxies as dashed ellipses; stars and others as small crosses.
void DrawSymbol(QPainter& p, const DrawContext& ctx, const Placed& s)
{
    const DeepSkyObject& o = *s.object;
    const double a = s.semiMajorPx, b = s.semiMinorPx;
    p.save();
    p.translate(s.x, s.y);
    p.setBrush(Qt::NoBrush);
    switch (o.type) {
    case ObjectType::Galaxy:
    case ObjectType::Quasar:
    case ObjectType::RadioSource:
        p.rotate(s.angleDeg);
        p.setPen(SymbolPen(ctx, ctx.palette.deepSkyGalaxy));
        p.drawEllipse(QPointF(0, 0), a, b);
        break;
    case ObjectType::GalaxyCluster:
        p.rotate(s.angleDeg);
        p.setPen(SymbolPen(ctx, ctx.palette.deepSkyGalaxy, Qt::DashLine));
        p.drawEllipse(QPointF(0, 0), a, b);
        break;
    case ObjectType::OpenCluster:
        p.setPen(SymbolPen(ctx, ctx.palette.deepSkyCluster, Qt::DashLine));
        p.drawEllipse(QPointF(0, 0), a, a);
        break;
    case ObjectType::GlobularCluster:
        p.setPen(SymbolPen(ctx, ctx.palette.deepSkyCluster));
        p.drawEllipse(QPointF(0, 0), a, a);
        p.drawLine(QPointF(-a, 0), QPointF(a, 0));
        p.drawLine(QPointF(0, -a), QPointF(0, a));
        break;
    case ObjectType::PlanetaryNebula: {
        p.setPen(SymbolPen(ctx, ctx.palette.deepSkyNebula));
        const double r = 0.6 * a;
        p.drawEllipse(QPointF(0, 0), r, r);
        p.drawLine(QPointF(r, 0), QPointF(a * 1.2, 0));
        p.drawLine(QPointF(-r, 0), QPointF(-a * 1.2, 0));
        p.drawLine(QPointF(0, r), QPointF(0, a * 1.2));
        p.drawLine(QPointF(0, -r), QPointF(0, -a * 1.2));
        break;
    }
    case ObjectType::BrightNebula:
        p.rotate(s.angleDeg);
        p.setPen(SymbolPen(ctx, ctx.palette.deepSkyNebula));
        p.drawRect(QRectF(-a, -b, 2 * a, 2 * b));
        break;
    case ObjectType::DarkNebula:
        p.rotate(s.angleDeg);
        p.setPen(SymbolPen(ctx, ctx.palette.deepSkyDark, Qt::DashLine));
        p.drawRect(QRectF(-a, -b, 2 * a, 2 * b));
        break;
    case ObjectType::SupernovaRemnant:
        p.setPen(SymbolPen(ctx, ctx.palette.deepSkyNebula));
        p.drawEllipse(QPointF(0, 0), a, a);
        p.drawEllipse(QPointF(0, 0), 0.7 * a, 0.7 * a);
        break;
    default: {
        p.setPen(SymbolPen(ctx, ctx.palette.deepSkyCluster));
        const double r = std::min(a, 4.0 * ctx.LineWidth() + 2.0);
        p.drawLine(QPointF(-r, 0), QPointF(r, 0));
        p.drawLine(QPointF(0, -r), QPointF(0, r));
        break;
    }
    }
    p.restore();
}

// Labels of plain ASCII text (designations, most names) set from glyphs
// looked up once per draw: a crowded field such as the Virgo cluster has
// hundreds of labels, and shaping each through the text engine cost more
// than drawing every symbol. Other texts go through the text engine.
class CAsciiLabels {
public:
    CAsciiLabels(const QFont& font, QPaintDevice* device) : m_metrics(font, device), m_raw(QRawFont::fromFont(font))
    {
        m_ok = m_raw.isValid();
        for (int c = 32; c < 127 && m_ok; ++c) {
            const QList<quint32> glyphs = m_raw.glyphIndexesForString(QString(QChar(c)));
            if (glyphs.size() != 1) {
                m_ok = false;
                break;
            }
            m_glyph[c] = glyphs[0];
            m_advance[c] = m_raw.advancesForGlyphIndexes(glyphs).value(0).x();
        }
    }
    double Ascent() const { return m_metrics.ascent(); }
    double Height() const { return m_metrics.ascent() + m_metrics.descent(); }
    double Width(const std::string& text) const
    {
        if (!Plain(text)) return m_metrics.horizontalAdvance(QString::fromStdString(text));
        double w = 0.0;
        for (const char c : text) w += m_advance[static_cast<unsigned char>(c)];
        return w;
    }
    void Draw(QPainter& p, double x, double baseline, const std::string& text) const
    {
        if (!Plain(text)) {
            p.drawText(QPointF(x, baseline), QString::fromStdString(text));
            return;
        }
        QList<quint32> glyphs;
        QList<QPointF> positions;
        glyphs.reserve(static_cast<qsizetype>(text.size()));
        positions.reserve(static_cast<qsizetype>(text.size()));
        double at = 0.0;
        for (const char c : text) {
            const auto u = static_cast<unsigned char>(c);
            glyphs.push_back(m_glyph[u]);
            positions.push_back(QPointF(at, 0.0));
            at += m_advance[u];
        }
        QGlyphRun run;
        run.setRawFont(m_raw);
        run.setGlyphIndexes(glyphs);
        run.setPositions(positions);
        p.drawGlyphRun(QPointF(x, baseline), run);
    }

private:
    bool Plain(const std::string& text) const
    {
        return m_ok && std::all_of(text.begin(), text.end(), [](char c) { return c >= 32 && c < 127; });
    }
    QFontMetricsF m_metrics;
    QRawFont m_raw;
    bool m_ok = false;
    std::array<quint32, 128> m_glyph{};
    std::array<double, 128> m_advance{};
};

}  // namespace

std::string DeepSkyLabel(const DeepSkyTexts& t, int labelOption)
{
    const std::string designation = !t.label.empty() ? t.label : t.messier.empty() ? t.designation : t.messier;
    const std::string name = t.CommonName();
    switch (labelOption) {
    case 1: return name.empty() ? designation : name;
    case 2: return name.empty() ? designation : designation + " " + name;
    default: return designation;
    }
}

void DrawDeepSky(DrawContext& ctx, const CDeepSkyCatalogues& cats, std::vector<DeepSkyObject>& gathered,
                 SkySourceId source)
{
    const CDeepSkyFilter filter(ctx.doc.deepSky, ctx.view.deepSkyState);
    if (!filter.AnyCatalogueShown() || !cats.AnyOpen()) return;
    ClearUpperVectorState();
    const CCoordinates& co = ctx.coords;
    const double radius = std::min(co.VisibleRadiusRad() * 1.05 + 1e-4, kPi);
    const double centreRa = co.CentreRaJ2000Rad(), centreDec = co.CentreDecJ2000Rad();
    gathered.clear();
    const bool ngcShown = filter.CatalogueShown(DeepSkyCatalogueId::NgcIc) && cats.IsOpen(DeepSkyCatalogueId::NgcIc);
    for (const DeepSkyCatalogueId c : {DeepSkyCatalogueId::NgcIc, DeepSkyCatalogueId::Sac, DeepSkyCatalogueId::Leda,
                                       DeepSkyCatalogueId::Strasbourg}) {
        if (!filter.CatalogueShown(c) || !cats.IsOpen(c)) continue;
        const std::size_t before = gathered.size();
        cats.Gather(c, centreRa, centreDec, radius, gathered);
        // An object the NGC/IC holds is drawn once, from the NGC/IC, when
        // that catalogue is on the chart.
        std::size_t kept = before;
        for (std::size_t i = before; i < gathered.size(); ++i)
            if (!(ngcShown && gathered[i].inNgcIc) && filter.Passes(gathered[i])) gathered[kept++] = gathered[i];
        gathered.resize(kept);
    }
    // Largest first, so that small objects lie on top of the large ones
    // around them (galaxies in front of the nebula they are seen through).
    std::stable_sort(gathered.begin(), gathered.end(),
                     [](const DeepSkyObject& a, const DeepSkyObject& b) { return a.majorArcmin > b.majorArcmin; });

    const int labelOption = ctx.doc.deepSky.labelOption;
    ctx.scene.SetSourceStyle(source, labelOption != 0 ? deepskystyle::kCommonNames : 0u);
    QPainter& p = ctx.painter;
    p.setRenderHint(QPainter::Antialiasing, true);
    const double minSemi = ctx.Px(0.025, 2.5);
    const double W = ctx.Width(), H = ctx.Height();
    // Like the stars, objects under solid ground (or, with the horizon's
    // "UseForEvents", behind the trees of the profile) are not drawn.
    const bool solidGround = ctx.view.altAzGrid.solidHorizon != 0;
    const CGroundTest ground(ctx.frame, ctx.doc);
    std::vector<Placed> drawn;
    drawn.reserve(gathered.size());
    DeepSkyTexts texts;
    for (const DeepSkyObject& o : gathered) {
        Placed s;
        if (!PlaceObject(ctx, o, minSemi, s)) continue;
        const double reach = s.semiMajorPx * 1.2 + 2.0;
        if (s.x < -reach || s.y < -reach || s.x > W + reach || s.y > H + reach) continue;
        if (solidGround && ground.BelowHorizon(s.x, s.y)) continue;
        if (filter.HasNameFilter() && (!cats.Texts(o.catalogue, o.record, texts) || !filter.NamePasses(texts)))
            continue;
        DrawSymbol(p, ctx, s);
        drawn.push_back(s);
        SceneObject so;
        so.raJ2000Rad = o.raJ2000Rad;
        so.decJ2000Rad = o.decJ2000Rad;
        so.xPx = static_cast<float>(s.x);
        so.yPx = static_cast<float>(s.y);
        so.radiusPx = static_cast<float>(s.semiMajorPx);
        so.key = DeepSkyKey(o.catalogue, o.record);
        so.magCenti = o.HasMagnitude() ? o.magCenti : kNoMagnitudeCenti;
        so.typeCode = static_cast<std::int16_t>(o.type);
        so.source = source;
        ctx.scene.Add(so);
    }

    // Labels: the brightest objects claim their places first; every symbol
    // small enough to be covered by text is left free of it.
    std::vector<const Placed*> order;
    order.reserve(drawn.size());
    for (const Placed& s : drawn)
        if (s.x >= 0 && s.y >= 0 && s.x < W && s.y < H) order.push_back(&s);
    std::stable_sort(order.begin(), order.end(),
                     [](const Placed* a, const Placed* b) { return a->object->magCenti < b->object->magCenti; });
    for (const Placed* s : order)
        if (s->semiMajorPx < 40.0)
            ctx.labels.Occupy({s->x - s->semiMajorPx, s->y - s->semiMajorPx, s->x + s->semiMajorPx,
                               s->y + s->semiMajorPx},
                              s->object->magCenti);
    const CAsciiLabels glyphs(ctx.fonts.label, p.device());
    const double gap = ctx.Px(0.02, 2.0);
    const double h = glyphs.Height();
    std::vector<LabelRect> candidates;
    p.setFont(ctx.fonts.label);
    p.setPen(ctx.palette.deepSkyLabel);
    for (const Placed* s : order) {
        if (!cats.Texts(s->object->catalogue, s->object->record, texts)) continue;
        const std::string text = DeepSkyLabel(texts, labelOption);
        const double w = glyphs.Width(text);
        // Large objects are labelled inside their outline, near the centre;
        // small ones beside their symbol.
        const double r = std::min(s->semiMajorPx, 40.0);
        candidates.clear();
        candidates.push_back({s->x + r + gap, s->y - h / 2, s->x + r + gap + w, s->y + h / 2});
        candidates.push_back({s->x - r - gap - w, s->y - h / 2, s->x - r - gap, s->y + h / 2});
        candidates.push_back({s->x - w / 2, s->y - r - gap - h, s->x + w / 2, s->y - r - gap});
        candidates.push_back({s->x - w / 2, s->y + r + gap, s->x + w / 2, s->y + r + gap + h});
        const int k = ctx.labels.Place(candidates, s->object->magCenti);
        if (k < 0) {
            ++ctx.stats.labelsDropped;
            continue;
        }
        const LabelRect& rect = candidates[static_cast<std::size_t>(k)];
        glyphs.Draw(p, rect.x0, rect.y0 + glyphs.Ascent(), text);
        ++ctx.stats.labelsDrawn;
    }
}

bool CDeepSkyLayer::ShownAt(const CMapView& view, int) const
{
    const DeepSkyLevelState& s = view.deepSkyState;
    return s.ngcic || s.sac || s.leda || s.strasbourg;
}

void RegisterDeepSkyCatalogues(CChartComponents& components, std::shared_ptr<CDeepSkyCatalogueHandle> catalogues)
{
    const SkySourceId source = components.objects.Register(std::make_shared<CDeepSkyObjectSource>(catalogues));
    components.layers.Add<CDeepSkyLayer>(catalogues, source);
}

}  // namespace orv
