// Tracing smooth curves of the sky (grid lines, the horizon) onto the chart.
//
// A curve is given as a function of one parameter returning a unit vector in
// the chart's frame. The tracer samples it, keeps only the part within a cap
// around the chart centre (so no segment is ever drawn through the antipode,
// where the stereographic projection goes to infinity), subdivides adaptively
// until every chord lies within a fraction of a pixel of the projected curve,
// and clips the chords to the drawing rectangle. The result is a set of
// screen polylines and the points where the curve crosses the rectangle's
// border (where grid labels go). No drawing happens here.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "map/chartframe.h"

namespace orv {

// Which side of the drawing rectangle a curve crosses.
enum class BorderEdge { Left, Top, Right, Bottom };

struct BorderCrossing {
    ScreenPoint point;
    BorderEdge edge = BorderEdge::Left;
};

struct TracedCurve {
    std::vector<std::vector<ScreenPoint>> polylines;
    std::vector<BorderCrossing> crossings;
    bool Empty() const { return polylines.empty(); }
};

// Liang-Barsky clipping of the segment a→b to the rectangle
// [x0, x1] × [y0, y1] (pixels). False when nothing of it is inside;
// otherwise the clipped ends and whether each end was moved onto the border.
// Every line of the chart (grids, curves, plotted paths) is clipped by this.
bool ClipSegmentToRect(ScreenPoint& a, ScreenPoint& b, double x0, double y0, double x1, double y1, bool& aClipped,
                       bool& bClipped);

class CCurveTracer {
public:
    // `capRadiusRad`: the angular radius around the chart centre inside which
    // curves are traced (at most 170°). `tolerancePx`: the largest distance
    // between a drawn chord and the true curve. The rectangle is
    // (0, 0, widthPx, heightPx) widened by `marginPx` on every side.
    CCurveTracer(const CChartFrame& frame, double widthPx, double heightPx, double capRadiusRad,
                 double tolerancePx = 0.3, double marginPx = 2.0);

    // The margin of the cap beyond a visible radius: a quarter of it, from
    // 0.5″ up to 8°.
    static double CapMarginRad(double visibleRadiusRad);
    // Longest initial step along a curve, radians: half the cap's margin
    // beyond the visible field (at most 4°), so that no visible piece of a
    // curve falls between two samples that both lie outside the cap.
    static double MaxStepRad(double visibleRadiusRad) { return 0.5 * CapMarginRad(visibleRadiusRad); }

    // Traces `curve(t, v)` (filling the unit frame vector v) for t from t0 to
    // t1 with at least `segments` initial steps. Non-finite vectors end the
    // current polyline.
    template <class Curve>
    TracedCurve Trace(Curve&& curve, double t0, double t1, int segments) const
    {
        TracedCurve out;
        if (!std::isfinite(t0) || !std::isfinite(t1) || segments < 1) return out;
        Session s{out};
        Sample a = Eval(curve, t0);
        for (int i = 1; i <= segments; ++i) {
            const double t = i == segments ? t1 : t0 + (t1 - t0) * i / segments;
            Sample b = Eval(curve, t);
            Segment(curve, a, b, 0, s);
            a = b;
        }
        return out;
    }

    // Clips the segment a→b to the widened rectangle (Liang-Barsky). False
    // when nothing of it is inside; otherwise the clipped ends and whether
    // each end was moved onto the border.
    bool ClipSegment(ScreenPoint& a, ScreenPoint& b, bool& aClipped, bool& bClipped) const;

private:
    struct Sample {
        double t = 0.0;
        bool inCap = false;
        bool ok = false;
        ScreenPoint s;
    };
    struct Session {
        TracedCurve& out;
        bool penDown = false;
    };
    static constexpr int kMaxDepth = 18;

    template <class Curve>
    Sample Eval(Curve& curve, double t) const
    {
        Sample r;
        r.t = t;
        double v[3] = {0.0, 0.0, 0.0};
        curve(t, v);
        if (!std::isfinite(v[0]) || !std::isfinite(v[1]) || !std::isfinite(v[2])) return r;
        r.inCap = m_frame.CosFromCentre(v) > m_cosCap;
        r.ok = r.inCap && m_frame.ToScreen(v, r.s);
        r.inCap = r.inCap && r.ok;
        return r;
    }

    template <class Curve>
    void Segment(Curve& curve, const Sample& a, const Sample& b, int depth, Session& s) const
    {
        if (!a.inCap && !b.inCap) {
            s.penDown = false;
            return;
        }
        if (a.inCap != b.inCap) {
            // Samples are never farther apart than half the cap's margin, so
            // a segment that reaches beyond the cap lies wholly outside the
            // visible field: nothing of it is drawn.
            s.penDown = false;
            return;
        }
        const Sample m = Eval(curve, 0.5 * (a.t + b.t));
        if (!m.inCap) {
            // The curve leaves the cap between two samples inside it: split.
            if (depth < kMaxDepth) {
                Segment(curve, a, m, depth + 1, s);
                Segment(curve, m, b, depth + 1, s);
            } else {
                s.penDown = false;
            }
            return;
        }
        if (depth < kMaxDepth && NeedsSplit(a.s, m.s, b.s)) {
            Segment(curve, a, m, depth + 1, s);
            Segment(curve, m, b, depth + 1, s);
            return;
        }
        Emit(a.s, b.s, s);
    }

    // Whether the chord a→b strays from the curve through m by more than
    // the tolerance; pieces far outside the rectangle are never refined.
    bool NeedsSplit(const ScreenPoint& a, const ScreenPoint& m, const ScreenPoint& b) const;
    void Emit(ScreenPoint a, ScreenPoint b, Session& s) const;

    const CChartFrame& m_frame;
    double m_x0, m_y0, m_x1, m_y1;  // widened rectangle
    double m_cosCap;
    double m_tolerancePx;
};

}  // namespace orv
