#include "map/curvetrace.h"

#include <algorithm>

namespace orv {

CCurveTracer::CCurveTracer(const CChartFrame& frame, double widthPx, double heightPx, double capRadiusRad,
                           double tolerancePx, double marginPx)
    : m_frame(frame),
      m_x0(-marginPx),
      m_y0(-marginPx),
      m_x1(widthPx + marginPx),
      m_y1(heightPx + marginPx),
      m_cosCap(std::cos(std::clamp(std::isfinite(capRadiusRad) ? capRadiusRad : 0.0, 0.0, 170.0 * 3.14159265358979323846 / 180.0))),
      m_tolerancePx(tolerancePx > 0.01 ? tolerancePx : 0.01)
{
}

double CCurveTracer::CapMarginRad(double visibleRadiusRad)
{
    constexpr double kArcsec = 3.14159265358979323846 / 648000.0;
    if (!std::isfinite(visibleRadiusRad)) return 8.0 * 3600.0 * kArcsec;
    return std::clamp(0.25 * visibleRadiusRad, 0.5 * kArcsec, 8.0 * 3600.0 * kArcsec);
}

bool CCurveTracer::NeedsSplit(const ScreenPoint& a, const ScreenPoint& m, const ScreenPoint& b) const
{
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double len = std::hypot(dx, dy);
    double dev;
    if (len < 1e-9) {
        dev = std::hypot(m.x - a.x, m.y - a.y);
    } else {
        // Distance of m from the chord's line, and how far m lies beyond the
        // chord's ends (a curve doubling back).
        dev = std::fabs((m.x - a.x) * dy - (m.y - a.y) * dx) / len;
        const double along = ((m.x - a.x) * dx + (m.y - a.y) * dy) / len;
        if (along < 0.0) dev = std::max(dev, -along);
        if (along > len) dev = std::max(dev, along - len);
    }
    if (dev <= m_tolerancePx) return false;
    // Far outside the rectangle on one side (by more than the bulge the arc
    // could have), no refinement is needed: nothing of it will be drawn.
    const double slack = dev + 0.25 * len + 2.0;
    if (a.x < m_x0 - slack && m.x < m_x0 - slack && b.x < m_x0 - slack) return false;
    if (a.x > m_x1 + slack && m.x > m_x1 + slack && b.x > m_x1 + slack) return false;
    if (a.y < m_y0 - slack && m.y < m_y0 - slack && b.y < m_y0 - slack) return false;
    if (a.y > m_y1 + slack && m.y > m_y1 + slack && b.y > m_y1 + slack) return false;
    return true;
}

bool ClipSegmentToRect(ScreenPoint& a, ScreenPoint& b, double x0, double y0, double x1, double y1, bool& aClipped,
                       bool& bClipped)
{
    // Liang-Barsky: the parameter range [t0, t1] of a + t(b − a) inside.
    const double dx = b.x - a.x, dy = b.y - a.y;
    double t0 = 0.0, t1 = 1.0;
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {a.x - x0, x1 - a.x, a.y - y0, y1 - a.y};
    for (int i = 0; i < 4; ++i) {
        if (p[i] == 0.0) {
            if (q[i] < 0.0) return false;
            continue;
        }
        const double r = q[i] / p[i];
        if (p[i] < 0.0) {
            if (r > t1) return false;
            t0 = std::max(t0, r);
        } else {
            if (r < t0) return false;
            t1 = std::min(t1, r);
        }
    }
    aClipped = t0 > 0.0;
    bClipped = t1 < 1.0;
    const ScreenPoint a0 = a;
    if (aClipped) a = {a0.x + t0 * dx, a0.y + t0 * dy};
    if (bClipped) b = {a0.x + t1 * dx, a0.y + t1 * dy};
    return true;
}

bool CCurveTracer::ClipSegment(ScreenPoint& a, ScreenPoint& b, bool& aClipped, bool& bClipped) const
{
    return ClipSegmentToRect(a, b, m_x0, m_y0, m_x1, m_y1, aClipped, bClipped);
}

void CCurveTracer::Emit(ScreenPoint a, ScreenPoint b, Session& s) const
{
    bool aClipped = false, bClipped = false;
    if (!ClipSegment(a, b, aClipped, bClipped)) {
        s.penDown = false;
        return;
    }
    auto edgeOf = [this](const ScreenPoint& p) {
        const double dl = std::fabs(p.x - m_x0), dr = std::fabs(p.x - m_x1);
        const double dt = std::fabs(p.y - m_y0), db = std::fabs(p.y - m_y1);
        const double m = std::min(std::min(dl, dr), std::min(dt, db));
        if (m == db) return BorderEdge::Bottom;
        if (m == dt) return BorderEdge::Top;
        if (m == dl) return BorderEdge::Left;
        return BorderEdge::Right;
    };
    if (aClipped) s.out.crossings.push_back({a, edgeOf(a)});
    if (bClipped) s.out.crossings.push_back({b, edgeOf(b)});
    if (!s.penDown || aClipped || s.out.polylines.empty()) {
        s.out.polylines.push_back({a, b});
    } else {
        s.out.polylines.back().push_back(b);
    }
    s.penDown = !bClipped;
}

}  // namespace orv
