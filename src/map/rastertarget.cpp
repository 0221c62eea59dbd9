#include "map/rastertarget.h"

#include <QImage>
#include <QPaintEngine>

#include <algorithm>
#include <cmath>

#include "map/curvetrace.h"

namespace orv {

namespace {

// floor() for the clipped coordinates of a line (well within int): a
// truncation and a correction, rather than a library call per pixel.
inline int FloorInt(double v)
{
    const int t = static_cast<int>(v);
    return v < t ? t - 1 : t;
}

}  // namespace

void RasterTarget::Blend(int x0, int y0, const QImage& sprite) const
{
    x0 += dx;
    y0 += dy;
    const int sw = sprite.width(), sh = sprite.height();
    const int ax = std::max(0, -x0), ay = std::max(0, -y0);
    const int bx = std::min(sw, width - x0), by = std::min(sh, height - y0);
    for (int sy = ay; sy < by; ++sy) {
        const auto* src = reinterpret_cast<const std::uint32_t*>(sprite.constScanLine(sy));
        auto* dst = reinterpret_cast<std::uint32_t*>(bits + (y0 + sy) * bytesPerLine) + x0;
        for (int sx = ax; sx < bx; ++sx) {
            const std::uint32_t s = src[sx];
            const std::uint32_t a = s >> 24;
            if (a == 0) continue;
            if (a == 255)
                dst[sx] = s;
            else
                dst[sx] = s + ByteMul(dst[sx], 255 - a);
        }
    }
}

RasterTarget FindRasterTarget(QPainter& p)
{
    RasterTarget t;
    QPaintDevice* device = p.device();
    QPaintEngine* engine = p.paintEngine();
    if (device == nullptr || engine == nullptr || device->devType() != QInternal::Image) return t;
    if (engine->type() != QPaintEngine::Raster || p.hasClipping()) return t;
    if (p.compositionMode() != QPainter::CompositionMode_SourceOver) return t;
    const QTransform tr = p.deviceTransform();
    if (tr.type() > QTransform::TxTranslate) return t;
    if (tr.dx() != std::floor(tr.dx()) || tr.dy() != std::floor(tr.dy())) return t;
    auto* image = static_cast<QImage*>(device);
    if (image->devicePixelRatio() != 1.0) return t;
    const QImage::Format f = image->format();
    if (f != QImage::Format_RGB32 && f != QImage::Format_ARGB32_Premultiplied) return t;
    t.bits = image->bits();
    t.bytesPerLine = image->bytesPerLine();
    t.width = image->width();
    t.height = image->height();
    t.dx = static_cast<int>(tr.dx());
    t.dy = static_cast<int>(tr.dy());
    t.opaque = f == QImage::Format_RGB32;
    return t;
}

CThinLineStroker::CThinLineStroker(QPainter& p)
{
    if (!p.testRenderHint(QPainter::Antialiasing) || p.opacity() != 1.0) return;
    const QPen& pen = p.pen();
    if (pen.brush().style() != Qt::SolidPattern) return;
    // Pens from a tenth of a pixel (the cosmetic zero width is one pixel)
    // to a few; wide ones need proper joins. A pen thinner than a pixel is
    // drawn as QPainter draws it: one pixel wide, faded by its width (the
    // same ink per unit of length as a band of its true width).
    const double w = pen.widthF() == 0.0 ? 1.0 : pen.widthF();
    if (!(w >= 0.1 && w <= 4.0)) return;
    const double bandPx = std::max(w, 1.0);
    const double fade = std::min(w, 1.0);
    m_halfWidthPx = 0.5 * bandPx;
    const Qt::PenStyle style = pen.style();
    if (style == Qt::NoPen) return;
    if (style != Qt::SolidLine) {
        // The dash pattern is in pen widths.
        const QList<qreal> pattern = pen.dashPattern();
        if (pattern.size() < 2 || pattern.size() > kMaxPattern || pattern.size() % 2 != 0) return;
        for (qreal v : pattern) {
            if (!(v >= 0.0) || !std::isfinite(v)) return;
            m_pattern[m_patternCount++] = v * bandPx;
            m_patternLengthPx += v * bandPx;
        }
        if (!(m_patternLengthPx >= 1.0)) return;
        m_dashOffsetPx = std::isfinite(pen.dashOffset()) ? pen.dashOffset() * bandPx : 0.0;
    }
    m_target = FindRasterTarget(p);
    if (!m_target.Ok()) return;
    const QColor c = pen.color().toRgb();
    m_rgb = 0xff000000u | (static_cast<std::uint32_t>(c.red()) << 16) | (static_cast<std::uint32_t>(c.green()) << 8) |
            static_cast<std::uint32_t>(c.blue());
    m_alphaScale = static_cast<double>(c.alpha()) * fade;
    for (std::uint32_t a = 0; a < 256; ++a) m_colourAt[a] = ByteMul(m_rgb, a);
    m_rowLo = 0;
    m_rowHi = m_target.height;
    m_ok = true;
}

void CThinLineStroker::SetRowBand(int firstRow, int endRow)
{
    m_rowLo = std::clamp(firstRow, 0, m_target.height);
    m_rowHi = std::clamp(endRow, m_rowLo, m_target.height);
}

// Where along the dash pattern a point lies: the entry and what is left of it.
void CThinLineStroker::DashAt(double patternPosPx, int& entry, double& leftPx) const
{
    double q = std::fmod(patternPosPx + m_dashOffsetPx, m_patternLengthPx);
    if (!(q >= 0.0)) q = q < 0.0 ? q + m_patternLengthPx : 0.0;
    entry = 0;
    while (entry < m_patternCount - 1 && q >= m_pattern[entry]) q -= m_pattern[entry++];
    leftPx = m_pattern[entry] - q;
}

// One column (or row) of the major axis at a time: the line, a band of the
// pen's width, crosses it over an interval of the minor axis, and each pixel
// of the column takes the share of the interval that falls inside it (a box
// filter: exact for lines along the axes, and a line's weight does not
// change with its slope). Columns are taken half-open, [start, end), so the
// segments of a polyline meet without covering a join twice.
void CThinLineStroker::Segment(double x0, double y0, double x1, double y1, double& patternPosPx)
{
    const double dx = x1 - x0, dy = y1 - y0;
    const double len = std::sqrt(dx * dx + dy * dy);
    const double startPx = patternPosPx;
    patternPosPx += len;
    if (!(len > 0.0)) return;
    const bool xMajor = std::fabs(dx) >= std::fabs(dy);
    // Along the major axis a, across it b.
    const double a0 = xMajor ? x0 : y0, a1 = xMajor ? x1 : y1;
    const double b0 = xMajor ? y0 : x0;
    const double da = a1 - a0, slope = (xMajor ? dy : dx) / da;
    const double stepPx = len / std::fabs(da);
    const double half = m_halfWidthPx * stepPx;  // the band's half-height across the column
    const int dir = da > 0.0 ? 1 : -1;
    // Pixel centres at i + 0.5 between a0 and a1.
    const int first = dir > 0 ? static_cast<int>(std::ceil(a0 - 0.5)) : static_cast<int>(std::floor(a0 - 0.5));
    const int end = dir > 0 ? static_cast<int>(std::ceil(a1 - 0.5)) : static_cast<int>(std::floor(a1 - 0.5));
    if (first == end) return;
    int entry = 0;
    double leftPx = HUGE_VAL;
    if (m_patternCount != 0) DashAt(startPx + std::fabs((first + 0.5) - a0) * stepPx, entry, leftPx);
    const int W = m_target.width;
    const qsizetype bpl = m_target.bytesPerLine;
    const int shiftA = xMajor ? m_target.dx : m_target.dy, shiftB = xMajor ? m_target.dy : m_target.dx;
    const int loA = xMajor ? 0 : m_rowLo, loB = xMajor ? m_rowLo : 0;
    const int limitA = xMajor ? W : m_rowHi, limitB = xMajor ? m_rowHi : W;
    for (int i = first; i != end; i += dir) {
        const bool on = entry % 2 == 0;
        if (m_patternCount != 0) {
            leftPx -= stepPx;
            while (leftPx <= 0.0) {
                entry = entry + 1 == m_patternCount ? 0 : entry + 1;
                leftPx += m_pattern[entry];
            }
        }
        const int ia = i + shiftA;
        if (!on || ia < loA || ia >= limitA) continue;
        const double centre = b0 + ((i + 0.5) - a0) * slope;
        const double lo = centre - half, hi = centre + half;
        const int jLo = FloorInt(lo), jHi = FloorInt(hi);
        for (int j = jLo; j <= jHi; ++j) {
            const int jb = j + shiftB;
            if (jb < loB || jb >= limitB) continue;
            const double cover = std::min(hi, j + 1.0) - std::max(lo, static_cast<double>(j));
            if (!(cover > 0.0)) continue;
            // Coverage times the pen's alpha, 0-255.
            const auto a = static_cast<std::uint32_t>(std::min(cover, 1.0) * m_alphaScale + 0.5);
            auto* dst = xMajor ? reinterpret_cast<std::uint32_t*>(m_target.bits + jb * bpl) + ia
                               : reinterpret_cast<std::uint32_t*>(m_target.bits + ia * bpl) + jb;
            *dst = ByteMul(m_rgb, a) + ByteMul(*dst, 255 - a);
        }
    }
}

// The same columns and coverage as Segment() for a solid pen, with the
// columns outside the image (or the band of rows) skipped before the loop
// and the bounds tested once per column rather than once per pixel: the
// loop a dense overlay spends its time in.
void CThinLineStroker::SolidSegment(double x0, double y0, double x1, double y1)
{
    const double dx = x1 - x0, dy = y1 - y0;
    const double len = std::sqrt(dx * dx + dy * dy);
    if (!(len > 0.0)) return;
    const bool xMajor = std::fabs(dx) >= std::fabs(dy);
    const double a0 = xMajor ? x0 : y0, a1 = xMajor ? x1 : y1;
    const double b0 = xMajor ? y0 : x0;
    const double da = a1 - a0, slope = (xMajor ? dy : dx) / da;
    const double half = m_halfWidthPx * (len / std::fabs(da));
    // Columns whose centres i + 0.5 lie in [a0, a1) (or (a1, a0]): each
    // column is visited once whichever way the segment runs.
    int iBeg = 0, iEnd = 0;
    if (da > 0.0) {
        iBeg = static_cast<int>(std::ceil(a0 - 0.5));
        iEnd = static_cast<int>(std::ceil(a1 - 0.5));
    } else {
        iBeg = static_cast<int>(std::floor(a1 - 0.5)) + 1;
        iEnd = static_cast<int>(std::floor(a0 - 0.5)) + 1;
    }
    const int shiftA = xMajor ? m_target.dx : m_target.dy, shiftB = xMajor ? m_target.dy : m_target.dx;
    const int loA = xMajor ? 0 : m_rowLo, hiA = xMajor ? m_target.width : m_rowHi;
    const int loB = xMajor ? m_rowLo : 0, hiB = xMajor ? m_rowHi : m_target.width;
    iBeg = std::max(iBeg, loA - shiftA);
    iEnd = std::min(iEnd, hiA - shiftA);
    if (xMajor && slope != 0.0 && iBeg < iEnd) {
        // The columns whose band can reach the rows [loB, hiB), with a
        // column to spare each side; the pixels are still tested below.
        const double reach = half + 1.0;
        double t0 = ((loB - shiftB - reach) - b0) / slope + a0 - 0.5;
        double t1 = ((hiB - shiftB + reach) - b0) / slope + a0 - 0.5;
        if (t0 > t1) std::swap(t0, t1);
        if (t0 > iBeg) iBeg = static_cast<int>(std::max<double>(iBeg, std::min<double>(iEnd, std::floor(t0) - 1.0)));
        if (t1 < iEnd) iEnd = static_cast<int>(std::min<double>(iEnd, std::max<double>(iBeg, std::ceil(t1) + 1.0)));
    }
    const qsizetype bpl = m_target.bytesPerLine;
    uchar* const bits = m_target.bits;
    for (int i = iBeg; i < iEnd; ++i) {
        const double centre = b0 + ((i + 0.5) - a0) * slope;
        const double lo = centre - half, hi = centre + half;
        const int jLo = FloorInt(lo), jHi = FloorInt(hi);
        const int ia = i + shiftA;
        const int bLo = jLo + shiftB, bHi = jHi + shiftB;
        if (bHi < loB || bLo >= hiB) continue;
        // One pixel's step along the minor axis, from the first pixel's address.
        std::uint32_t* dst = nullptr;
        qsizetype stride = 0;
        if (xMajor) {
            dst = reinterpret_cast<std::uint32_t*>(bits + bLo * bpl) + ia;
            stride = bpl / 4;
        } else {
            dst = reinterpret_cast<std::uint32_t*>(bits + ia * bpl) + bLo;
            stride = 1;
        }
        if (bLo >= loB && bHi < hiB) {
            if (jLo == jHi) {
                Put(dst, hi - lo);
                continue;
            }
            Put(dst, (jLo + 1) - lo);
            for (int j = jLo + 1; j < jHi; ++j) Put(dst + (j - jLo) * stride, 1.0);
            Put(dst + (jHi - jLo) * stride, hi - jHi);
            continue;
        }
        for (int j = jLo; j <= jHi; ++j) {
            const int jb = j + shiftB;
            if (jb < loB || jb >= hiB) continue;
            const double cover = std::min(hi, j + 1.0) - std::max(lo, static_cast<double>(j));
            if (cover > 0.0) Put(dst + (j - jLo) * stride, std::min(cover, 1.0));
        }
    }
}

bool CThinLineStroker::Stroke(const ScreenPoint* points, std::size_t count)
{
    if (!m_ok) return false;
    // Everything is clipped to the image (less the painter's shift) widened
    // by the pen, so that no input can make a long walk outside it.
    const double margin = m_halfWidthPx + 1.0;
    const double x0 = -m_target.dx - margin, y0 = -m_target.dy - margin;
    const double x1 = -m_target.dx + m_target.width + margin, y1 = -m_target.dy + m_target.height + margin;
    double patternPosPx = 0.0;
    for (std::size_t k = 1; k < count; ++k) {
        ScreenPoint a = points[k - 1], b = points[k];
        // Most segments of a chart lie wholly inside (and so are finite):
        // clipping would leave them as they are.
        if (m_patternCount == 0 && a.x >= x0 && a.x <= x1 && a.y >= y0 && a.y <= y1 && b.x >= x0 && b.x <= x1 &&
            b.y >= y0 && b.y <= y1) {
            SolidSegment(a.x, a.y, b.x, b.y);
            continue;
        }
        if (!std::isfinite(a.x) || !std::isfinite(a.y) || !std::isfinite(b.x) || !std::isfinite(b.y)) continue;
        const double before = patternPosPx;
        if (m_patternCount != 0) patternPosPx += std::sqrt((b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y));
        const ScreenPoint from = a;
        bool aClipped = false, bClipped = false;
        if (!ClipSegmentToRect(a, b, x0, y0, x1, y1, aClipped, bClipped)) continue;
        // Clipping ends far beyond 1e15 pixels loses their digits: such an
        // end may land anywhere, so what is not inside now is not drawn.
        const auto near = [&](const ScreenPoint& q) { return q.x >= x0 - 1.0 && q.x <= x1 + 1.0 && q.y >= y0 - 1.0 && q.y <= y1 + 1.0; };
        if (!near(a) || !near(b)) continue;
        if (m_patternCount == 0) {
            SolidSegment(a.x, a.y, b.x, b.y);
            continue;
        }
        double pos = before + (aClipped ? std::sqrt((a.x - from.x) * (a.x - from.x) + (a.y - from.y) * (a.y - from.y)) : 0.0);
        Segment(a.x, a.y, b.x, b.y, pos);
    }
    return true;
}

}  // namespace orv
