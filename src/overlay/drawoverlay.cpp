#include "overlay/drawoverlay.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>
#include <system_error>
#include <thread>
#include <vector>

#include "map/curvetrace.h"
#include "map/drawcontext.h"
#include "observer/observer.h"
#include "util/angles.h"

namespace orv {

namespace {

void MatMulTransposeB(const double a[3][3], const double b[3][3], double out[3][3])
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) out[i][j] = a[i][0] * b[j][0] + a[i][1] * b[j][1] + a[i][2] * b[j][2];
}

// A colour of an overlay on this surface: the first on dark backgrounds, the
// second on paper and light ones, then brought to the scheme.
QColor SurfaceColour(const DrawContext& ctx, const OverlayColour& first, const OverlayColour& second)
{
    const bool light = ctx.palette.background.lightness() > 128;
    const OverlayColour& c = light ? second : first;
    QColor q(c.r, c.g, c.b);
    const int y = (299 * c.r + 587 * c.g + 114 * c.b) / 1000;
    if (ctx.options.monochrome) q = QColor(y, y, y);
    if (ctx.palette.redOnly) q = QColor(std::max(y, 60), 0, 0);
    return q;
}

Qt::PenStyle PenStyleOf(OverlayLineStyle s)
{
    switch (s) {
    case OverlayLineStyle::Solid: return Qt::SolidLine;
    case OverlayLineStyle::Dash: return Qt::DashLine;
    case OverlayLineStyle::Dot: return Qt::DotLine;
    case OverlayLineStyle::DashDot: return Qt::DashDotLine;
    case OverlayLineStyle::DashDotDot: return Qt::DashDotDotLine;
    }
    return Qt::SolidLine;
}

// Brings an overlay's points to the chart and strokes them.
class COverlayPainter {
public:
    explicit COverlayPainter(DrawContext& ctx) : m_ctx(ctx)
    {
        const double(*cat)[3] = ctx.frame.CatalogueMatrix();
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) m_fromJ2000[i][j] = cat[i][j];
        // Mean equator of the map's date → frame: J2000 → frame after the
        // inverse of the precession J2000 → mean of date.
        double prec[3][3];
        for (int j = 0; j < 3; ++j) {
            double e[3] = {0.0, 0.0, 0.0};
            e[j] = 1.0;
            ctx.doc.observer.PrecessXYZ(e, -1);
            for (int i = 0; i < 3; ++i) prec[i][j] = e[i];
        }
        MatMulTransposeB(m_fromJ2000, prec, m_fromMapEpoch);
        m_rows = ctx.frame.ProjectionRows();
        const double visible = ctx.coords.VisibleRadiusRad();
        m_marginRad = CCurveTracer::CapMarginRad(visible);
        m_capRad = std::min(visible + m_marginRad, 170.0 * kRadPerDeg);
        m_cosCap = std::cos(m_capRad);
        m_cosMargin = std::cos(m_marginRad);
        const double pad = 4.0;
        m_x0 = -pad, m_y0 = -pad, m_x1 = ctx.Width() + pad, m_y1 = ctx.Height() + pad;
        if (ctx.frame.IsHorizontal()) {
            BuildRefractionTable();
            m_refractionMarginRad = 1.0 * kRadPerDeg;  // refraction lifts by 0.6° at most
        }
        if (!ctx.IsVectorLike()) m_mergePx = 0.5;
    }

    std::size_t Draw(const COverlay& o)
    {
        QPainter& p = m_ctx.painter;
        p.setRenderHint(QPainter::Antialiasing, true);
        SetLine(OverlayLine{});
        QFont font = m_ctx.fonts.label;
        QColor textColour = SurfaceColour(m_ctx, OverlayFont{}.first, OverlayFont{}.second);
        int align = kOverlayAlignCentre;
        ProjectBeforehand(o);
        Point prev;
        bool havePrev = false;
        std::size_t nextBlock = 0;
        for (std::size_t ci = 0; ci < o.commands.size(); ++ci) {
            const OverlayCommand& c = o.commands[ci];
            // A run of moves and draws whose cap lies wholly beyond the
            // visible field is passed over: only its last point is brought
            // to the chart, as the start of a draw that may follow.
            if (nextBlock < o.blocks.size() && o.blocks[nextBlock].firstCommand == ci) {
                const OverlayBlock& b = o.blocks[nextBlock++];
                if (OutOfView(b)) {
                    PenUp();
                    prev = TransformAt(o, b.endCommand - 1);
                    havePrev = true;
                    ci = b.endCommand - 1;
                    continue;
                }
            }
            switch (c.op) {
            case OverlayOp::SelectLine:
                Flush();
                if (c.index < o.lines.size()) SetLine(o.lines[c.index]);
                break;
            case OverlayOp::SelectFont:
                if (c.index < o.fonts.size()) {
                    const OverlayFont& f = o.fonts[c.index];
                    font = QFont(QString::fromStdString(f.face));
                    font.setPixelSize(std::max(1, static_cast<int>(std::lround(f.sizePt * m_ctx.surface.dpiY / 72.0))));
                    font.setWeight(f.bold ? QFont::Bold : QFont::Normal);
                    font.setItalic(f.italic);
                    textColour = SurfaceColour(m_ctx, f.first, f.second);
                }
                break;
            case OverlayOp::TextAlign: align = static_cast<int>(c.index); break;
            case OverlayOp::Move:
                PenUp();  // a new polyline, stroked with the others of this line style
                prev = TransformAt(o, ci);
                havePrev = true;
                break;
            case OverlayOp::Draw: {
                const Point cur = TransformAt(o, ci);
                if (havePrev) Segment(prev, cur, 0);
                prev = cur;
                havePrev = true;
                break;
            }
            case OverlayOp::Text: {
                const Point at = TransformAt(o, ci);
                if (at.ok && c.text < o.texts.size()) {
                    Flush();
                    DrawText(at.s, QString::fromStdString(o.texts[c.text]), font, textColour, align);
                }
                break;
            }
            }
        }
        Flush();
        return m_segments;
    }

private:
    struct Point {
        double v[3] = {0.0, 0.0, 1.0};
        bool inCap = false;
        bool ok = false;  // in the cap and projected
        ScreenPoint s;
        // A point taken from the projections made beforehand carries no
        // vector: it is made from the display list when a segment needs it.
        const double* q = nullptr;
        const double (*m)[3] = nullptr;
    };



    // Refraction by the chart's rule as a table in the sine of the altitude,
    // so that a large display list is lifted without a trigonometric call
    // per point: the new sine and the factor of the horizontal components,
    // interpolated linearly between 2049 samples from sin(−0.1 rad) to 1
    // (0.004″ at worst). Where the rule jumps (objects refraction would not
    // lift above the horizon keep their altitude) the exact rule is used.
    void BuildRefractionTable()
    {
        m_refrZ0 = std::sin(-0.1);
        m_refrStep = (1.0 - m_refrZ0) / kRefractionSamples;
        m_refrZ.resize(kRefractionSamples + 1);
        m_refrScale.resize(kRefractionSamples + 1);
        for (int i = 0; i <= kRefractionSamples; ++i) {
            const double z = std::min(1.0, m_refrZ0 + i * m_refrStep);
            double v[3] = {std::sqrt(std::max(0.0, 1.0 - z * z)), 0.0, z};
            const double horizontal = v[0];
            m_ctx.frame.RefractFrameVector(v);
            m_refrZ[i] = v[2];
            m_refrScale[i] = horizontal > 1e-12 ? v[0] / horizontal : 1.0;
        }
    }

    void Refract(double v[3]) const
    {
        if (m_refrZ.empty()) return;
        const double z = v[2];
        if (!(z > m_refrZ0)) return;  // below −0.1 rad the rule leaves the place alone
        const double x = (z - m_refrZ0) / m_refrStep;
        const int i = std::min(static_cast<int>(x), kRefractionSamples - 1);
        const double f = x - i;
        if (std::fabs(m_refrZ[i + 1] - m_refrZ[i]) > 4.0 * m_refrStep) {
            m_ctx.frame.RefractFrameVector(v);
            return;
        }
        const double s = m_refrScale[i] + f * (m_refrScale[i + 1] - m_refrScale[i]);
        v[0] *= s;
        v[1] *= s;
        v[2] = m_refrZ[i] + f * (m_refrZ[i + 1] - m_refrZ[i]);
    }

    // Whether a frame vector lies in the cap, and where on the screen: the
    // cap ends at least 10° short of the projection's pole, so every point
    // in it projects.
    void Project(Point& r) const
    {
        const double* v = r.v;
        const double c = m_rows.centre[0] * v[0] + m_rows.centre[1] * v[1] + m_rows.centre[2] * v[2];
        r.inCap = c > m_cosCap;
        r.ok = r.inCap;
        if (!r.ok) return;
        const double k = 2.0 / (1.0 + c);
        r.s.x = m_rows.x0 + k * (m_rows.x[0] * v[0] + m_rows.x[1] * v[1] + m_rows.x[2] * v[2]);
        r.s.y = m_rows.y0 + k * (m_rows.y[0] * v[0] + m_rows.y[1] * v[1] + m_rows.y[2] * v[2]);
    }

    Point Finish(Point r) const
    {
        Refract(r.v);
        Project(r);
        return r;
    }

    // Whether a block's cap lies wholly outside the cap of the chart's
    // visible field (widened by the most refraction can lift a point).
    bool OutOfView(const OverlayBlock& b) const
    {
        if (!(b.radiusRad < 1.0)) return false;
        const double(*m)[3] = b.frame == OverlayFrame::J2000 ? m_fromJ2000 : m_fromMapEpoch;
        double v[3];
        for (int i = 0; i < 3; ++i) v[i] = m[i][0] * b.centre[0] + m[i][1] * b.centre[1] + m[i][2] * b.centre[2];
        const double fromCentre = std::acos(std::clamp(m_ctx.frame.CosFromCentre(v), -1.0, 1.0));
        return fromCentre - b.radiusRad > m_capRad + m_refractionMarginRad;
    }

    Point Transform(const COverlay& o, const OverlayCommand& c) const
    {
        const double* q = &o.points[3 * static_cast<std::size_t>(c.index)];
        const double(*m)[3] = c.frame == OverlayFrame::J2000 ? m_fromJ2000 : m_fromMapEpoch;
        Point r;
        for (int i = 0; i < 3; ++i) r.v[i] = m[i][0] * q[0] + m[i][1] * q[1] + m[i][2] * q[2];
        return Finish(r);
    }

    // The point of command `ci`: from the projections made beforehand when
    // there are some, else made now (the same arithmetic either way).
    Point TransformAt(const COverlay& o, std::size_t ci) const
    {
        const OverlayCommand& c = o.commands[ci];
        if (ci < m_projectedCount && (*m_states)[ci] != 0) {
            Point r;
            r.s = (*m_screens)[ci];
            r.ok = r.inCap = (*m_states)[ci] == 1;
            r.q = &o.points[3 * static_cast<std::size_t>(c.index)];
            r.m = c.frame == OverlayFrame::J2000 ? m_fromJ2000 : m_fromMapEpoch;
            return r;
        }
        return Transform(o, c);
    }

    // The vector of a point taken from the projections.
    void EnsureVector(Point& r) const
    {
        if (r.q == nullptr) return;
        for (int i = 0; i < 3; ++i) r.v[i] = r.m[i][0] * r.q[0] + r.m[i][1] * r.q[1] + r.m[i][2] * r.q[2];
        Refract(r.v);
        r.q = nullptr;
    }

    // A display list of many commands on a chart image is brought to the
    // chart on two cores before it is walked: each thread projects the
    // points of half the culling blocks (of a block beyond the field only
    // its last point, as the walk takes it). Commands outside the blocks
    // are projected by the walk itself.
    void ProjectBeforehand(const COverlay& o)
    {
        constexpr std::size_t kCommandsForTwoCores = 100000;
        if (m_mergePx <= 0.0 || o.commands.size() < kCommandsForTwoCores || o.blocks.size() < 2 ||
            std::thread::hardware_concurrency() < 2)
            return;
        // Kept from one draw to the next (a million points are 16 MB); the
        // states say which entries this draw has made.
        static thread_local std::vector<ScreenPoint> screens;
        static thread_local std::vector<std::uint8_t> states;
        if (screens.size() < o.commands.size()) screens.resize(o.commands.size());
        states.assign(o.commands.size(), 0);
        m_screens = &screens;
        m_states = &states;
        const auto run = [&](std::size_t firstBlock, std::size_t endBlock) {
            for (std::size_t bi = firstBlock; bi < endBlock; ++bi) {
                const OverlayBlock& b = o.blocks[bi];
                const std::size_t from = OutOfView(b) ? b.endCommand - 1 : b.firstCommand;
                for (std::size_t ci = from; ci < b.endCommand && ci < o.commands.size(); ++ci) {
                    const OverlayCommand& c = o.commands[ci];
                    if (c.op != OverlayOp::Move && c.op != OverlayOp::Draw && c.op != OverlayOp::Text) continue;
                    const Point r = Transform(o, c);
                    // Through the members: in the helper thread the names
                    // of the thread-local buffers would be its own.
                    (*m_screens)[ci] = r.s;
                    (*m_states)[ci] = r.ok ? 1 : 2;
                }
            }
        };
        const std::size_t half = o.blocks.size() / 2;
        try {
            std::thread helper(run, half, o.blocks.size());
            run(0, half);
            helper.join();
        } catch (const std::system_error&) {
            // No second thread to be had: the walk projects what is left.
        }
        m_projectedCount = o.commands.size();
    }

    void Segment(const Point& a, const Point& b, int depth)
    {
        if (a.ok && b.ok) {
            ScreenPoint sa = a.s, sb = b.s;
            bool aClipped = false, bClipped = false;
            // Clipping leaves a segment wholly inside as it is: only the others are clipped.
            const bool inside = sa.x >= m_x0 && sa.x <= m_x1 && sa.y >= m_y0 && sa.y <= m_y1 && sb.x >= m_x0 &&
                                sb.x <= m_x1 && sb.y >= m_y0 && sb.y <= m_y1;
            if (!inside && !ClipSegmentToRect(sa, sb, m_x0, m_y0, m_x1, m_y1, aClipped, bClipped)) {
                PenUp();
                return;
            }
            ++m_segments;
            if (aClipped || !m_penDown) {
                PenUp();
                m_curve.polylines.push_back({sa});
                m_penDown = true;
            } else if (m_mergePx > 0.0 && !bClipped) {
                // A step that stays within the pixel of the last point kept
                // adds nothing a raster can show: it is held back, and only
                // the polyline's last point is kept when the pen lifts.
                const ScreenPoint& last = m_curve.polylines.back().back();
                if (std::fabs(sb.x - last.x) < m_mergePx && std::fabs(sb.y - last.y) < m_mergePx) {
                    m_heldPoint = sb;
                    m_holding = true;
                    return;
                }
            }
            m_holding = false;
            m_curve.polylines.back().push_back(sb);
            if (bClipped) PenUp();
            return;
        }
        if (a.q != nullptr || b.q != nullptr) {
            Point va = a, vb = b;
            EnsureVector(va);
            EnsureVector(vb);
            Segment(va, vb, depth);
            return;
        }
        // An end outside the cap: a short segment lies wholly outside the
        // visible field; a long one (a line of constant right ascension is
        // one segment however long) is halved along its great circle.
        const double cosAb = a.v[0] * b.v[0] + a.v[1] * b.v[1] + a.v[2] * b.v[2];
        if (cosAb > m_cosMargin || depth >= 16) {
            PenUp();
            return;
        }
        if (!a.inCap && !b.inCap) {
            // Every point of the arc lies within half its length of an end:
            // when both ends are farther than that beyond the cap, so is the arc.
            const double halfLength = 0.5 * std::acos(std::clamp(cosAb, -1.0, 1.0));
            const double nearest = std::acos(std::clamp(
                std::max(m_ctx.frame.CosFromCentre(a.v), m_ctx.frame.CosFromCentre(b.v)), -1.0, 1.0));
            if (nearest - halfLength > m_capRad) {
                PenUp();
                return;
            }
        }
        Point m;
        const double n = std::sqrt((a.v[0] + b.v[0]) * (a.v[0] + b.v[0]) + (a.v[1] + b.v[1]) * (a.v[1] + b.v[1]) +
                                   (a.v[2] + b.v[2]) * (a.v[2] + b.v[2]));
        if (!(n > 1e-12)) {
            PenUp();
            return;
        }
        for (int i = 0; i < 3; ++i) m.v[i] = (a.v[i] + b.v[i]) / n;
        Project(m);
        Segment(a, m, depth + 1);
        Segment(m, b, depth + 1);
    }

    void PenUp()
    {
        if (m_holding && m_penDown) m_curve.polylines.back().push_back(m_heldPoint);
        m_holding = false;
        m_penDown = false;
    }

    void Flush()
    {
        PenUp();
        if (!m_curve.polylines.empty()) StrokePolylines(m_ctx.painter, m_curve);
        m_curve.polylines.clear();
    }

    void SetLine(const OverlayLine& l)
    {
        const double width = l.widthQuarterPt > 0 ? l.widthQuarterPt * m_ctx.surface.dpiY / 72.0 / 4.0
                                                   : m_ctx.LineWidth();
        QPen pen(SurfaceColour(m_ctx, l.first, l.second), width);
        pen.setStyle(PenStyleOf(l.style));
        pen.setCapStyle(Qt::FlatCap);
        pen.setJoinStyle(Qt::RoundJoin);
        m_ctx.painter.setPen(pen);
    }

    void DrawText(const ScreenPoint& at, const QString& text, const QFont& font, const QColor& colour, int align)
    {
        QPainter& p = m_ctx.painter;
        const QPen linePen = p.pen();
        p.setFont(font);
        p.setPen(colour);
        const QFontMetricsF fm(font);
        const double w = fm.horizontalAdvance(text), h = fm.ascent() + fm.descent();
        const int ha = align / 16, va = align % 16;
        const double x = at.x - (ha == 1 ? 0.0 : ha == 3 ? w : 0.5 * w);
        const double top = at.y - (va == 1 ? 0.0 : va == 3 ? h : 0.5 * h);
        p.drawText(QPointF(x, top + fm.ascent()), text);
        p.setPen(linePen);
    }

    DrawContext& m_ctx;
    double m_fromJ2000[3][3];
    double m_fromMapEpoch[3][3];
    CChartFrame::ScreenRows m_rows{};
    double m_marginRad = 0.0, m_capRad = kPi, m_cosCap = -1.0, m_cosMargin = 1.0;
    double m_x0 = 0, m_y0 = 0, m_x1 = 0, m_y1 = 0;
    static constexpr int kRefractionSamples = 2048;
    std::vector<double> m_refrZ, m_refrScale;
    double m_refrZ0 = 0.0, m_refrStep = 1.0;
    TracedCurve m_curve;
    bool m_penDown = false;
    // Sub-pixel steps on raster surfaces (none on printers and vector files,
    // whose resolution is not the chart's pixels).
    double m_mergePx = 0.0;
    double m_refractionMarginRad = 0.0;
    // The points made beforehand, by command: screen places and states (0
    // not made, 1 in the cap and projected, 2 beyond the cap).
    std::vector<ScreenPoint>* m_screens = nullptr;
    std::vector<std::uint8_t>* m_states = nullptr;
    std::size_t m_projectedCount = 0;
    ScreenPoint m_heldPoint;
    bool m_holding = false;
    std::size_t m_segments = 0;
};

// Draws what the store lists: the active entries (with this chart's
// switches by level) and the extra files.
class COverlayLayer final : public IChartLayer {
public:
    explicit COverlayLayer(std::shared_ptr<COverlayStore> store) : m_store(std::move(store)) {}
    std::span<const LayerSlot> Slots() const override { return kSlots; }
    void LevelChanged(int level) override
    {
        Sync();
        m_level = level;
        ApplyLevelRanges();
    }
    void Invalidate() override { m_generation = -1; }
    void Draw(DrawContext& ctx, LayerSlot) override
    {
        Sync();
        for (std::size_t i = 0; i < m_store->entries.size(); ++i)
            if (m_active[i] != 0) DrawOverlay(ctx, *m_store->Get(m_store->entries[i].path));
        for (const std::string& f : m_store->extraFiles) DrawOverlay(ctx, *m_store->Get(f));
    }

private:
    static constexpr LayerSlot kSlots[] = {LayerSlot::Overlays};

    // A changed list (the overlay dialog) gives every chart the list's
    // flags again, with the ranges applied at the chart's level.
    void Sync()
    {
        if (m_generation == m_store->generation && m_active.size() == m_store->entries.size()) return;
        m_generation = m_store->generation;
        m_active.clear();
        for (const OverlayListEntry& e : m_store->entries) m_active.push_back(e.active);
        ApplyLevelRanges();
    }

    void ApplyLevelRanges()
    {
        if (m_level < 0) return;
        for (std::size_t i = 0; i < m_store->entries.size() && i < m_active.size(); ++i) {
            const OverlayListEntry& e = m_store->entries[i];
            if (e.HasLevelRange()) m_active[i] = e.LevelInRange(m_level) ? 1 : 0;
        }
    }

    std::shared_ptr<COverlayStore> m_store;
    std::vector<std::uint8_t> m_active;
    int m_generation = -1;
    int m_level = -1;
};

}  // namespace

std::size_t DrawOverlay(DrawContext& ctx, const COverlay& overlay)
{
    if (overlay.commands.empty()) return 0;
    ctx.painter.save();
    COverlayPainter painter(ctx);
    const std::size_t n = painter.Draw(overlay);
    ctx.painter.restore();
    return n;
}

void RegisterOverlays(CChartLayerRegistry& layers, std::shared_ptr<COverlayStore> store)
{
    layers.Add<COverlayLayer>(store);
}

}  // namespace orv
