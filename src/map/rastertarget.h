// Drawing straight into the pixels of an off-screen chart image.
//
// QPainter blends an antialiased one-pixel line pixel by pixel through a
// general span function, which costs about ten nanoseconds a pixel; a wide
// chart strokes some hundred thousand pixels of grid, figure and boundary
// lines. When the painter draws into a 32-bit image with no transform beyond
// a whole-pixel shift and no clipping, those pixels can be blended here with
// the same source-over arithmetic, several times faster. Every other surface
// (printers, PDF, SVG, transformed or clipped painters, wide pens) keeps
// going through QPainter, so the chart looks the same on each.
#pragma once

#include <QPainter>

#include <cstdint>

#include "map/chartframe.h"

namespace orv {

// Each channel of a premultiplied ARGB pixel times a/255 (two lanes at once).
inline std::uint32_t ByteMul(std::uint32_t x, std::uint32_t a)
{
    std::uint32_t t = (x & 0xff00ffu) * a;
    t = (t + ((t >> 8) & 0xff00ffu) + 0x800080u) >> 8;
    t &= 0xff00ffu;
    x = ((x >> 8) & 0xff00ffu) * a;
    x = (x + ((x >> 8) & 0xff00ffu) + 0x800080u);
    x &= 0xff00ff00u;
    return x | t;
}

// A 32-bit image the painter draws straight into.
struct RasterTarget {
    uchar* bits = nullptr;
    qsizetype bytesPerLine = 0;
    int width = 0, height = 0;
    int dx = 0, dy = 0;   // the painter's whole-pixel translation
    bool opaque = true;   // RGB32: the alpha byte is always 0xff

    bool Ok() const { return bits != nullptr; }

    // Source-over of a premultiplied sprite with its top left corner at
    // (x0, y0), in the painter's coordinates.
    void Blend(int x0, int y0, const QImage& sprite) const;

    // One pixel of `colour` (its alpha ignored) at `alpha` (0-255).
    void Dot(int x, int y, QRgb colour, std::uint32_t alpha) const
    {
        x += dx;
        y += dy;
        if (x < 0 || y < 0 || x >= width || y >= height) return;
        auto* dst = reinterpret_cast<std::uint32_t*>(bits + y * bytesPerLine) + x;
        const std::uint32_t s = ByteMul(colour | 0xff000000u, alpha);
        *dst = s + ByteMul(*dst, 255 - alpha);
    }
};

// The painter's image when it can be drawn into directly, else a target
// that is not Ok().
RasterTarget FindRasterTarget(QPainter& p);

// Strokes polylines with the painter's current pen as QPainter strokes an
// antialiased line of one to four pixels (solid or dashed, the dash pattern
// restarting at each polyline's first point), straight into the image. Not
// Usable() when the painter or its pen is not one this can draw (the caller
// then lets QPainter stroke it). Made for the long, gently curved lines of a
// chart: joins are not mitred and caps are flat.
class CThinLineStroker {
public:
    explicit CThinLineStroker(QPainter& p);
    bool Usable() const { return m_ok; }
    bool Stroke(const ScreenPoint* points, std::size_t count);
    // Restricts the pixels written to the image rows [first, end): strokers
    // given disjoint bands of rows may stroke the same polylines at once,
    // and together they write exactly what one stroker without a band does.
    void SetRowBand(int firstRow, int endRow);
    int ImageRows() const { return m_target.height; }

private:
    static constexpr int kMaxPattern = 16;
    void Segment(double x0, double y0, double x1, double y1, double& patternPosPx);
    void SolidSegment(double x0, double y0, double x1, double y1);
    void DashAt(double patternPosPx, int& entry, double& leftPx) const;
    // Blends the pen's colour at `cover` (0-1) of a pixel.
    void Put(std::uint32_t* dst, double cover) const
    {
        const auto a = static_cast<std::uint32_t>(cover * m_alphaScale + 0.5);
        if (a != 0) *dst = m_colourAt[a] + ByteMul(*dst, 255 - a);
    }

    RasterTarget m_target;
    bool m_ok = false;
    std::uint32_t m_rgb = 0;     // the pen's colour, opaque
    double m_alphaScale = 255.0; // its alpha
    std::uint32_t m_colourAt[256] = {};  // the colour premultiplied by each coverage
    int m_rowLo = 0, m_rowHi = 0;        // the image rows written, [lo, hi)
    double m_patternLengthPx = 0.0;
    double m_dashOffsetPx = 0.0;
    double m_halfWidthPx = 0.5;
    double m_pattern[kMaxPattern] = {};  // dash, gap, dash, gap ... in pixels
    int m_patternCount = 0;
};

}  // namespace orv
