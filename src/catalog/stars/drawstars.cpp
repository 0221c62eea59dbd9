// The star layer: discs sized by magnitude, coloured by B−V, marks for
// variable and double stars, proper-motion lines, and labels (proper names,
// Bayer letters in Greek, Flamsteed numbers, magnitudes, distances).
//
// Speed. A wide chart at a faint limit holds hundreds of thousands of stars,
// nearly all of them a pixel or two across. Filling each disc as a general
// path costs microseconds; instead raster surfaces get discs pre-rendered
// once per radius, colour and style (antialiased sprites), and when the
// painter draws straight into a 32-bit image the sprites are blended into
// its memory directly, a few nanoseconds for the one-pixel stars. Printers
// and vector files get true ellipses. Stars are drawn from the smallest
// disc to the largest, so bright stars lie on top, without sorting the list.
#include <QFontMetricsF>
#include <QPaintEngine>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "catalog/stars/crossindex.h"
#include "catalog/stars/stardisplay.h"
#include "catalog/stars/drawstars.h"
#include "map/rastertarget.h"
#include "util/angles.h"
#include "util/binaryio.h"

namespace orv {

namespace {

StarGatherKey MakeKey(const DrawContext& ctx)
{
    const CCoordinates& c = ctx.coords;
    const CObserverDoc& o = ctx.doc.observer;
    StarGatherKey k;
    k.centreRa = c.CentreRaJ2000Rad();
    k.centreDec = c.CentreDecJ2000Rad();
    k.centreAlt = c.CentreAltRad();
    k.centreAz = c.CentreAzRad();
    k.fieldDeg = c.FieldDeg();
    k.rotationRad = c.RotationRad();
    k.centring = static_cast<int>(c.CentringMode());
    k.flipH = c.FlipHorizontal();
    k.flipV = c.FlipVertical();
    k.widthPx = ctx.surface.widthPx;
    k.heightPx = ctx.surface.heightPx;
    k.dpiX = ctx.surface.dpiX;
    k.dpiY = ctx.surface.dpiY;
    k.jdUT = o.JulianDate();
    k.latRad = o.LatitudeRad();
    k.lonRad = o.LongitudeRad();
    k.heightM = o.HeightM();
    return k;
}

void ComputeRegionCircles(const CTycho2Catalogue& catalogue, std::vector<RegionCircle>& circles)
{
    circles.assign(tycho2::kRegionCount, RegionCircle{});
    for (int r = 0; r < tycho2::kRegionCount; ++r) {
        SkyBox b;
        if (!catalogue.RegionBox(r, b)) continue;
        RegionCircle& c = circles[static_cast<std::size_t>(r)];
        const double raC = 0.5 * (b.raMinRad + b.raMaxRad), decC = 0.5 * (b.decMinRad + b.decMaxRad);
        for (double ra : {b.raMinRad, b.raMaxRad})
            for (double dec : {b.decMinRad, b.decMaxRad})
                c.radiusRad = std::max(c.radiusRad, AngularDistance(raC, decC, ra, dec));
        SphericalToVector(raC, decC, c.centre);
        c.cosRadius = std::cos(c.radiusRad);
        c.sinRadius = std::sin(c.radiusRad);
        c.known = true;
    }
}

// Drops from `regions` the catalogue regions that cannot put a star on the
// surface: those farther from the chart centre than the visible radius, and
// those whose image lies wholly beyond an edge of the surface. Each region is
// taken as the circle around its box's centre through its farthest corner,
// widened by the largest motion the catalogue allows since J2000 (10″ a
// year), by aberration (20.5″) and, on horizon charts, by refraction (35′ at
// the horizon), so that no visible star is lost.
void CullRegions(const DrawContext& ctx, const std::vector<RegionCircle>& circles, double years,
                 std::vector<int>& regions)
{
    const CChartFrame& frame = ctx.frame;
    const CCoordinates& co = ctx.coords;
    const double visible = co.VisibleRadiusRad();
    const double slack = std::fabs(years) * 10.0 * kRadPerArcsec + (frame.IsHorizontal() ? 0.012 : 0.0002);
    const double scale = std::max(co.ScaleX(), co.ScaleY());
    const double W = ctx.Width(), H = ctx.Height();
    const auto m = frame.CatalogueMatrix();
    const double cosSlack = std::cos(slack), sinSlack = std::sin(slack);
    const double cosVisible = std::cos(std::min(visible, kPi));
    constexpr double kCos170 = -0.98480775301220806;
    std::size_t kept = 0;
    for (int r : regions) {
        const RegionCircle& c = circles[static_cast<std::size_t>(r)];
        if (!c.known) {
            regions[kept++] = r;
            continue;
        }
        // θ: distance of the region's centre from the chart centre; ρ: the
        // region's radius with the slack. Worked with cosines and sines only.
        const double rho = c.radiusRad + slack;
        const double cosRho = c.cosRadius * cosSlack - c.sinRadius * sinSlack;
        const double sinRho = c.sinRadius * cosSlack + c.cosRadius * sinSlack;
        double v[3];
        for (int i = 0; i < 3; ++i) v[i] = m[i][0] * c.centre[0] + m[i][1] * c.centre[1] + m[i][2] * c.centre[2];
        const double cosTheta = std::clamp(frame.CosFromCentre(v), -1.0, 1.0);
        const double sinTheta = std::sqrt(std::max(0.0, 1.0 - cosTheta * cosTheta));
        const double cosNear = cosTheta * cosRho + sinTheta * sinRho;  // cos(θ − ρ)
        const double cosFar = cosTheta * cosRho - sinTheta * sinRho;   // cos(θ + ρ)
        // Wholly beyond the visible radius (θ − ρ > visible, with θ > ρ).
        if (cosTheta < cosRho && cosNear < cosVisible) continue;
        ScreenPoint s;
        if (cosFar > kCos170 && frame.ToScreen(v, s)) {
            // Largest stretch of the stereographic projection over the
            // region: 2/(1 + cos(θ + ρ)) at its far edge.
            const double k = 2.0 / (1.0 + cosFar);
            const double rPx = rho * k * scale * 1.05 + 2.0;
            if (s.x < -rPx || s.y < -rPx || s.x > W + rPx || s.y > H + rPx) continue;
        }
        regions[kept++] = r;
    }
    regions.resize(kept);
}

struct ToDraw {
    std::uint32_t index;
    float x, y;
    std::uint16_t rx, ry;
    QRgb colour;
    std::uint8_t dotAlpha;  // one-pixel stars: brightness from the unrounded radius
};

// Where a label may go around a disc, in order of preference.
enum class LabelSide { MainRight, Secondary };

void Candidates(double x, double y, double rx, double ry, double w, double h, double gap, LabelSide side,
                std::vector<LabelRect>& out)
{
    out.clear();
    auto add = [&](double x0, double y0) { out.push_back({x0, y0, x0 + w, y0 + h}); };
    const double dx = rx * 0.7 + gap, dy = ry * 0.7;
    if (side == LabelSide::MainRight) {
        add(x + rx + gap, y - h / 2);
        add(x + dx, y - dy - h);
        add(x + dx, y + dy);
        add(x - rx - gap - w, y - h / 2);
        add(x - dx - w, y - dy - h);
        add(x - dx - w, y + dy);
        add(x - w / 2, y - ry - gap - h);
        add(x - w / 2, y + ry + gap);
    } else {
        add(x + dx, y + dy);
        add(x - w / 2, y + ry + gap);
        add(x - dx - w, y + dy);
        add(x + rx + gap, y - h / 2);
        add(x - rx - gap - w, y - h / 2);
        add(x - w / 2, y - ry - gap - h);
    }
}

struct LabelJob {
    std::uint32_t index;
    double x, y, rx, ry;
    int mag;
};

}  // namespace

const CStarSprites::Sprite& CStarSprites::Get(int rx, int ry, QRgb colour, QRgb halo, int haloPx)
{
    const std::uint64_t key = (static_cast<std::uint64_t>(rx & 0x3ff) << 54) |
                              (static_cast<std::uint64_t>(ry & 0x3ff) << 44) |
                              (static_cast<std::uint64_t>(haloPx & 0xf) << 40) |
                              (static_cast<std::uint64_t>(qGray(halo) & 0xff) << 32) | (colour & 0xffffffu);
    if (auto it = m_sprites.find(key); it != m_sprites.end()) return it->second;
    if (m_sprites.size() > 8192) m_sprites.clear();
    Sprite s;
    const int cx = rx + 1 + haloPx, cy = ry + 1 + haloPx;
    s.image = QImage(2 * cx + 1, 2 * cy + 1, QImage::Format_ARGB32_Premultiplied);
    s.image.fill(Qt::transparent);
    s.offsetX = -cx;
    s.offsetY = -cy;
    QPainter p(&s.image);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setPen(Qt::NoPen);
    const QPointF centre(cx + 0.5, cy + 0.5);
    if (haloPx > 0) {
        p.setBrush(QColor(halo));
        p.drawEllipse(centre, rx + 0.5 + haloPx, ry + 0.5 + haloPx);
    }
    p.setBrush(QColor(colour));
    p.drawEllipse(centre, rx + 0.5, ry + 0.5);
    p.end();
    return m_sprites.emplace(key, std::move(s)).first->second;
}

void DrawStars(DrawContext& ctx, const CTycho2Catalogue& catalogue, StarLayerState& st, SkySourceId source)
{
    st.drawn.clear();
    const StarLevelState& level = ctx.view.starState;
    if (!level.shown || !catalogue.IsOpen()) {
        ctx.stats.starsGathered = 0;
        return;
    }
    const CStarSettings& settings = ctx.doc.stars;
    const int limit = level.magLimit;

    // --- The star list: reused, extended or rebuilt. -----------------------------
    ClearUpperVectorState();
    const StarGatherKey key = MakeKey(ctx);
    StarGatherRequest request;
    request.box = BoxFromRegion(ctx.coords.StoredCentreRegion());
    request.centreDecJ2000Rad = ctx.coords.CentreDecJ2000Rad();
    request.fieldRadiusRad = ctx.coords.VisibleRadiusRad();
    request.magLimitCenti = limit;
    if (!st.valid || !(st.key == key)) {
        // The region search on the box widened for proper motion, as the
        // gathering does, then the regions that cannot reach the surface out.
        const double yearsUT = (ctx.doc.observer.JulianDate() - 2451545.0) / 365.25;
        catalogue.FindRegions(WidenBoxForMotion(request.box, yearsUT, request.centreDecJ2000Rad), st.chart.regions);
        if (st.regionCircles.empty()) ComputeRegionCircles(catalogue, st.regionCircles);
        CullRegions(ctx, st.regionCircles, yearsUT, st.chart.regions);
        request.mode = StarGather::FullRedraw;
        request.regionSearch = RegionSearch::ReusePrevious;
        GatherChartStars(catalogue, ctx.frame, request, st.chart);
        st.listLimitCenti = limit;
    } else if (limit > st.listLimitCenti) {
        request.mode = StarGather::ExtendFainter;
        request.previousLimitCenti = st.listLimitCenti;
        request.regionSearch = RegionSearch::ReusePrevious;
        GatherChartStars(catalogue, ctx.frame, request, st.chart);
        st.listLimitCenti = limit;
    }
    st.key = key;
    st.valid = true;
    ctx.scene.SetSourceStyle(source, (level.properNames ? starstyle::kProperNames : 0u) |
                                         (settings.labelAbbreviated != 0 ? starstyle::kAbbreviated : 0u));
    ctx.stats.starsGathered = static_cast<int>(st.chart.stars.size());

    // --- Sizes and colours. ---------------------------------------------------------
    ClearUpperVectorState();
    const StarSizeScale scale{limit, level.magBright, settings.starRadBright, settings.starRadFaint};
    const bool bySize = settings.starShowSize != 0;
    const double dpiX = ctx.surface.dpiX, dpiY = ctx.surface.dpiY;
    const bool vectorLike = ctx.IsVectorLike();
    const bool colours = ctx.palette.starColours && level.colour;
    const BvThresholds thresholds{settings.bv1, settings.bv2, settings.bv3, settings.bv4};
    const QRgb plain = ctx.palette.starPlain.rgb();
    const bool solidGround = ctx.view.altAzGrid.solidHorizon != 0;
    const CGroundTest ground(ctx.frame, ctx.doc);
    const double W = ctx.Width(), H = ctx.Height();

    // Disc sizes by magnitude and colours by B−V come from small tables
    // built once per draw: a chart has at most a few thousand distinct values
    // of each, and hundreds of thousands of stars.
    struct SizeEntry {
        std::uint16_t rx, ry;
        std::uint8_t dotAlpha;  // one-pixel stars keep a hint of their brightness
    };
    const int magLow = std::min(scale.magBrightCenti, limit) - 1;
    std::vector<SizeEntry> sizes(static_cast<std::size_t>(std::max(limit - magLow + 1, 1)));
    for (std::size_t k = 0; k < sizes.size(); ++k) {
        const int mag = magLow + static_cast<int>(k);
        const int r = bySize ? StarDiscRadius(mag, scale) : settings.starDotRadius;
        const int ry = std::clamp(StarDiscVerticalPx(r, dpiY), 0, 1000);
        const int rx = std::clamp(StarDiscHorizontalPx(ry, dpiX, dpiY), 0, 1000);
        const double exactPx = r * dpiY * 0.0001;
        sizes[k] = {static_cast<std::uint16_t>(rx), static_cast<std::uint16_t>(ry),
                    static_cast<std::uint8_t>(std::clamp(90.0 + 330.0 * exactPx, 90.0, 255.0))};
    }
    constexpr int kBvLow = -1000, kBvHigh = 5000;  // B−V beyond these takes the end colours
    std::vector<QRgb> bvColours;
    if (colours) {
        bvColours.resize(kBvHigh - kBvLow + 1);
        for (int bv = kBvLow; bv <= kBvHigh; ++bv) {
            const auto c = StarColourFromBV(bv, thresholds);
            bvColours[static_cast<std::size_t>(bv - kBvLow)] =
                c ? ctx.palette.StarColour(QColor(c->r, c->g, c->b)).rgb() : plain;
        }
    }

    std::vector<ToDraw> toDraw;
    toDraw.reserve(st.chart.stars.size());
    int maxRadius = 0;
    for (std::size_t i = 0; i < st.chart.stars.size(); ++i) {
        const TychoStarEntry& e = st.chart.stars[i];
        if (e.magCenti > limit) continue;
        const SizeEntry& z = sizes[static_cast<std::size_t>(std::max(e.magCenti - magLow, 0))];
        const int rx = z.rx, ry = z.ry;
        if (e.x < -rx - 1 || e.y < -ry - 1 || e.x > W + rx + 1 || e.y > H + ry + 1) continue;
        if (solidGround && ground.BelowHorizon(e.x, e.y)) continue;
        QRgb colour = plain;
        if (colours && e.bvMilli != tycho2::kNoColour)
            colour = bvColours[static_cast<std::size_t>(std::clamp<int>(e.bvMilli, kBvLow, kBvHigh) - kBvLow)];
        toDraw.push_back({static_cast<std::uint32_t>(i), static_cast<float>(e.x), static_cast<float>(e.y), z.rx, z.ry,
                          colour, z.dotAlpha});
        maxRadius = std::max(maxRadius, std::max(rx, ry));
    }

    // Smallest discs first (a counting sort by radius keeps it linear).
    {
        std::vector<std::uint32_t> counts(static_cast<std::size_t>(maxRadius) + 2, 0);
        for (const ToDraw& d : toDraw) ++counts[std::max(d.rx, d.ry) + 1u];
        for (std::size_t k = 1; k < counts.size(); ++k) counts[k] += counts[k - 1];
        std::vector<ToDraw> sorted(toDraw.size());
        for (const ToDraw& d : toDraw) sorted[counts[std::max(d.rx, d.ry)]++] = d;
        toDraw.swap(sorted);
    }

    // --- Discs. -----------------------------------------------------------------------
    ClearUpperVectorState();
    QPainter& p = ctx.painter;
    const int haloPx = ctx.palette.haloDiscs ? static_cast<int>(std::max(1.0, std::round(0.012 * dpiY))) : 0;
    const QRgb halo = ctx.palette.starHalo.rgb();
    st.drawn.reserve(toDraw.size());
    if (vectorLike) {
        p.setRenderHint(QPainter::Antialiasing, true);
        p.setPen(Qt::NoPen);
        const double minR = std::max(0.5, 0.004 * dpiY);
        for (const ToDraw& d : toDraw) {
            const double rx = std::max(minR, d.rx + 0.5), ry = std::max(minR, d.ry + 0.5);
            if (haloPx > 0) {
                p.setBrush(QColor(halo));
                p.drawEllipse(QPointF(d.x, d.y), rx + haloPx, ry + haloPx);
            }
            p.setBrush(QColor(d.colour));
            p.drawEllipse(QPointF(d.x, d.y), rx, ry);
            st.drawn.push_back({d.index, d.x, d.y, d.rx, d.ry});
        }
    } else {
        const RasterTarget target = FindRasterTarget(p);
        for (const ToDraw& d : toDraw) {
            const int px = static_cast<int>(std::floor(d.x)), py = static_cast<int>(std::floor(d.y));
            if (d.rx == 0 && d.ry == 0 && haloPx == 0) {
                if (target.Ok()) {
                    target.Dot(px, py, d.colour, d.dotAlpha);
                } else {
                    QColor c(d.colour);
                    c.setAlpha(d.dotAlpha);
                    p.fillRect(QRect(px, py, 1, 1), c);
                }
            } else {
                const CStarSprites::Sprite& s = st.sprites.Get(d.rx, d.ry, d.colour, halo, haloPx);
                if (target.Ok())
                    target.Blend(px + s.offsetX, py + s.offsetY, s.image);
                else
                    p.drawImage(QPoint(px + s.offsetX, py + s.offsetY), s.image);
            }
            st.drawn.push_back({d.index, d.x, d.y, d.rx, d.ry});
        }
    }
    ctx.stats.starsDrawn = static_cast<int>(st.drawn.size());

    // --- What was drawn where, for identification and the lists. --------------------
    ctx.scene.Reserve(st.drawn.size());
    for (const DrawnStar& d : st.drawn) {
        const TychoStarEntry& e = st.chart.stars[d.index];
        SceneObject o;
        o.raJ2000Rad = e.raJ2000Rad;
        o.decJ2000Rad = e.decJ2000Rad;
        o.xPx = d.x;
        o.yPx = d.y;
        o.radiusPx = std::max(d.rx, d.ry);
        o.key = e.record;
        o.magCenti = e.magCenti;
        o.typeCode = static_cast<std::int16_t>((e.flags & entryflag::kVariable) ? ObjectType::VariableStar
                                               : (e.flags & entryflag::kDouble) ? ObjectType::DoubleStar
                                                                                : ObjectType::Star);
        o.source = source;
        ctx.scene.Add(o);
    }

    // --- Marks for variable and double stars, proper-motion lines. ----------------
    const bool markVariables = settings.showVariables != 0, markDoubles = settings.showDoubles != 0;
    if (markVariables || markDoubles || level.properMotion) {
        p.setRenderHint(QPainter::Antialiasing, true);
        QPen pen(ctx.palette.starMark, ctx.LineWidth());
        p.setBrush(Qt::NoBrush);
        const double gap = ctx.Px(0.02, 2.0), reach = ctx.Px(0.035, 3.0);
        const double years = (ctx.doc.observer.JulianDateTDT() - 2451545.0) / 365.25;
        // "PMLine" counts centuries: the line shows where the star will be
        // that many hundred years after the chart's date.
        const double pmYears = settings.pmLine * 100.0;
        for (const DrawnStar& d : st.drawn) {
            const TychoStarEntry& e = st.chart.stars[d.index];
            const double rx = d.rx + 0.5, ry = d.ry + 0.5;
            // Marks go on discs, not on the one-pixel stars at the faint end,
            // where a ring or a bar would hide the star it describes.
            const bool disc = d.rx > 0 || d.ry > 0 || vectorLike;
            if (disc && markVariables && (e.flags & entryflag::kVariable)) {
                p.setPen(pen);
                p.drawEllipse(QPointF(d.x, d.y), rx + gap, ry + gap);
            }
            if (disc && markDoubles && (e.flags & entryflag::kDouble)) {
                p.setPen(pen);
                p.drawLine(QPointF(d.x - rx - reach, d.y), QPointF(d.x + rx + reach, d.y));
            }
            if (level.properMotion && pmYears > 0.0) {
                double ra = 0.0, dec = 0.0;
                StarPositionAt(catalogue.Record(e.record), years + pmYears, ra, dec);
                ScreenPoint s;
                if (ctx.frame.CatalogueToScreen(ra, dec, EpochPath::Rigid, s) &&
                    std::hypot(s.x - d.x, s.y - d.y) > rx) {
                    p.setPen(QPen(ctx.palette.pmLine, ctx.LineWidth()));
                    p.drawLine(QPointF(d.x, d.y), QPointF(s.x, s.y));
                }
            }
        }
    }

    // --- Labels. ------------------------------------------------------------------------
    const bool anyLabel = level.properNames || level.bayer || level.flamsteed || level.magnitudes || level.distances;
    if (!anyLabel) return;

    // Every disc is taken space for the labels.
    std::vector<LabelJob> jobs;
    for (const DrawnStar& d : st.drawn) {
        const TychoStarEntry& e = st.chart.stars[d.index];
        const double rx = d.rx + 0.5, ry = d.ry + 0.5;
        if (d.rx > 0 || d.ry > 0) ctx.labels.Occupy({d.x - rx, d.y - ry, d.x + rx, d.y + ry}, e.magCenti);
        const bool named = (e.flags & (entryflag::kProperName | entryflag::kBayerFlamsteed)) != 0;
        // A star whose centre is off the chart shows at most a sliver of
        // disc at the edge: a label there would seem to name nothing.
        const bool centreOnChart = d.x >= 0.0 && d.y >= 0.0 && d.x < W && d.y < H;
        if (centreOnChart && (named || level.magnitudes || (level.distances && e.distanceLy > 0)))
            jobs.push_back({d.index, d.x, d.y, rx, ry, e.magCenti});
    }
    std::stable_sort(jobs.begin(), jobs.end(), [](const LabelJob& a, const LabelJob& b) { return a.mag < b.mag; });

    const QFontMetricsF fmLabel(ctx.fonts.label, p.device());
    const QFontMetricsF fmGreek(ctx.fonts.greek, p.device());
    const QFontMetricsF fmSup(ctx.fonts.superscript, p.device());
    const double gap = ctx.Px(0.02, 2.0);
    std::vector<LabelRect> candidates;

    // A place wholly free if there is one; else one that covers only discs
    // of stars at least kCoverableMagCenti fainter than the labelled star.
    constexpr int kCoverableMagCenti = 300;
    auto place = [&](const LabelJob& j) {
        const int k = ctx.labels.Place(candidates);
        return k >= 0 ? k : ctx.labels.Place(candidates, j.mag + kCoverableMagCenti);
    };
    auto placeText = [&](const LabelJob& j, const QString& text, LabelSide side, const QColor& colour) {
        const double w = fmLabel.horizontalAdvance(text), h = fmLabel.ascent() + fmLabel.descent();
        Candidates(j.x, j.y, j.rx, j.ry, w, h, gap, side, candidates);
        const int k = place(j);
        if (k < 0) {
            ++ctx.stats.labelsDropped;
            return;
        }
        const LabelRect& r = candidates[static_cast<std::size_t>(k)];
        p.setFont(ctx.fonts.label);
        p.setPen(colour);
        p.drawText(QPointF(r.x0, r.y0 + fmLabel.ascent()), text);
        ++ctx.stats.labelsDrawn;
    };

    p.setRenderHint(QPainter::Antialiasing, true);
    for (const LabelJob& j : jobs) {
        const TychoStarEntry& e = st.chart.stars[j.index];
        const std::int64_t id = e.TychoId();
        if (PassesLabelFilter(e.magCenti, settings)) {
            if (level.properNames && (e.flags & entryflag::kProperName) && e.properName[0] != '\0') {
                placeText(j, QString::fromUtf8(e.properName), LabelSide::MainRight, ctx.palette.starLabel);
            } else if ((level.bayer || level.flamsteed) && (e.flags & entryflag::kBayerFlamsteed)) {
                const StarProperty prop = catalogue.Property(id);
                if (level.bayer && prop.greek < 24) {
                    // The Greek letter, its superscript, and the Flamsteed
                    // number beside it when asked for.
                    const QString greek(QChar(static_cast<char16_t>(GreekLetterCodePoint(prop.greek))));
                    const QString sup = prop.superscript != 0 ? QString::number(prop.superscript) : QString();
                    const QString flam =
                        level.flamsteed && settings.showFlamsteedWithBayer != 0 && prop.flamsteed != 0
                            ? QString::fromStdString(FlamsteedBesideBayerLabel(prop.flamsteed))
                            : QString();
                    const double wg = fmGreek.horizontalAdvance(greek);
                    const double ws = sup.isEmpty() ? 0.0 : fmSup.horizontalAdvance(sup);
                    const double wf = flam.isEmpty() ? 0.0 : fmLabel.horizontalAdvance(flam);
                    const double h = fmGreek.ascent() + fmGreek.descent();
                    Candidates(j.x, j.y, j.rx, j.ry, wg + ws + wf, h, gap, LabelSide::MainRight, candidates);
                    const int k = place(j);
                    if (k >= 0) {
                        const LabelRect& r = candidates[static_cast<std::size_t>(k)];
                        const double base = r.y0 + fmGreek.ascent();
                        p.setPen(ctx.palette.greekLabel);
                        p.setFont(ctx.fonts.greek);
                        p.drawText(QPointF(r.x0, base), greek);
                        if (!sup.isEmpty()) {
                            p.setFont(ctx.fonts.superscript);
                            p.drawText(QPointF(r.x0 + wg, base - 0.45 * fmGreek.ascent()), sup);
                        }
                        if (!flam.isEmpty()) {
                            p.setPen(ctx.palette.starLabel);
                            p.setFont(ctx.fonts.label);
                            p.drawText(QPointF(r.x0 + wg + ws, base), flam);
                        }
                        ++ctx.stats.labelsDrawn;
                    } else {
                        ++ctx.stats.labelsDropped;
                    }
                } else if (level.flamsteed && prop.flamsteed != 0) {
                    placeText(j, QString::fromStdString(FlamsteedLabel(prop.flamsteed)), LabelSide::MainRight,
                              ctx.palette.starLabel);
                }
            }
        }
        if (level.magnitudes && MagnitudeLabelWanted(e.magCenti, settings)) {
            std::string text;
            if ((e.flags & entryflag::kVariable) && settings.labelMagVar != 0) {
                const auto v = FindVariableStar(id);
                // The range when it spans at least a tenth; otherwise (or when
                // the faint end is only a limit) the star's own magnitude.
                if (v && v->minMagCenti && !v->minIsLimit &&
                    MagnitudeTenths(*v->minMagCenti) > MagnitudeTenths(v->maxMagCenti))
                    text = MagnitudeRangeLabel(v->maxMagCenti, *v->minMagCenti);
                else
                    text = VariableMagnitudeLabel(e.magCenti);
            } else {
                text = MagnitudeLabel(e.magCenti);
            }
            placeText(j, QString::fromStdString(text), LabelSide::Secondary, ctx.palette.starLabel);
        }
        if (level.distances && e.distanceLy > 0)
            placeText(j, QString::fromStdString(DistanceLabel(static_cast<unsigned>(e.distanceLy))),
                      LabelSide::Secondary, ctx.palette.starLabel);
    }
}

// ------------------------------------------------------------------ layer

void CStarLayer::Prepare(DrawContext& ctx) { ctx.stats.catalogueOpen = m_catalogue->Get().IsOpen(); }

void CStarLayer::Draw(DrawContext& ctx, LayerSlot) { DrawStars(ctx, m_catalogue->Get(), m_state, m_source); }

void RegisterStarCatalogue(CChartComponents& components, std::shared_ptr<CStarCatalogueHandle> catalogue)
{
    const SkySourceId source = components.objects.Register(std::make_shared<CStarObjectSource>(catalogue));
    components.layers.Add<CStarLayer>(catalogue, source);
}

}  // namespace orv
