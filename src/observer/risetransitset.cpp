// Rising, transit and setting by search: the altitude of the body is sampled
// through the window and every change of side of the standard altitude h0 is
// refined by bisection. Unlike the three-point interpolation of Meeus ch. 15
// this needs no assumption about how fast the body moves, so the same code
// serves stars, the Sun and the Moon, and circumpolar and grazing cases fall
// out of the samples themselves.

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

#include "observer/observer.h"
#include "util/angles.h"

namespace orv {

namespace {

constexpr double kSecondsPerDay = 86400.0;
constexpr double kSampleStepDays = 10.0 / 1440.0;
// Crossings and transits are bracketed to this width, then the middle taken.
constexpr double kEventToleranceDays = 1.0 / kSecondsPerDay;
constexpr double kMaxWindowDays = 3660.0;
// A sampled altitude maximum below h0 (or minimum above it) closer than this
// is refined, in case the body crosses h0 and back between two samples. Over
// half a sample step the altitude departs from its sampled extreme by at
// most ω²·(5 min)²/2 ≈ 0.014° (ω the Earth's rotation rate), so 1° is
// ample.
constexpr double kGrazeMarginRad = 1.0 * kRadPerDeg;
// Guards for the refinement loops (each halves or shrinks its bracket).
constexpr int kMaxBisections = 60;
constexpr int kMaxGoldenSteps = 80;

enum class EventKind { Rise, Set, Transit };

struct Sample {
    double jdUT;
    double f;            // altitude − h0, radians; NaN when the position was not finite
    double hourAngleRad; // (−π, π]
};

// Walks the window once, reporting events in time order to `onEvent`, which
// returns false to stop the walk.
class CEventScan {
public:
    using PointFn = std::function<void(double jdUT, double& f, double& hourAngleRad)>;
    using EventFn = std::function<bool(EventKind kind, double jdUT)>;

    CEventScan(PointFn point, double startJdUT, double windowDays)
        : m_point(std::move(point)), m_start(startJdUT), m_end(startJdUT + windowDays)
    {
    }

    // Runs the walk; false when it was stopped by `onEvent`.
    bool Run(const EventFn& onEvent, bool wantTransits)
    {
        const long steps = static_cast<long>(std::ceil((m_end - m_start) / kSampleStepDays));
        Sample before{}, previous{}, current{};
        bool haveBefore = false;
        previous = At(m_start);
        for (long i = 1; i <= steps; ++i) {
            current = At(i == steps ? m_end : m_start + static_cast<double>(i) * kSampleStepDays);
            // A grazing extreme at `previous`: its neighbours both lie on the
            // same side of h0, so no other event is in [before, current].
            if (haveBefore && !ScanExtreme(before, previous, current, onEvent)) return false;
            if (!ScanStep(previous, current, onEvent, wantTransits)) return false;
            before = previous;
            previous = current;
            haveBefore = true;
        }
        return true;
    }

    bool AnyFinite() const { return m_finiteSamples > 0; }
    bool AllAbove() const { return m_finiteSamples > 0 && m_samplesAbove == m_finiteSamples; }
    bool AllBelow() const { return m_finiteSamples > 0 && m_samplesAbove == 0; }

private:
    Sample At(double jd)
    {
        Sample s{jd, 0.0, 0.0};
        m_point(jd, s.f, s.hourAngleRad);
        if (std::isfinite(s.f)) {
            ++m_finiteSamples;
            if (s.f >= 0.0) ++m_samplesAbove;
        }
        return s;
    }

    bool Report(const EventFn& onEvent, EventKind kind, double jd) const
    {
        if (!(jd >= m_start && jd < m_end)) return true;  // the window is half-open
        return onEvent(kind, jd);
    }

    bool ScanStep(const Sample& a, const Sample& b, const EventFn& onEvent, bool wantTransits)
    {
        // Transit (hour angle through 0) and a crossing may share a step; report
        // them in time order.
        double transit = std::numeric_limits<double>::quiet_NaN();
        if (wantTransits && std::isfinite(a.hourAngleRad) && std::isfinite(b.hourAngleRad) && a.hourAngleRad < 0.0 &&
            b.hourAngleRad >= 0.0 && b.hourAngleRad - a.hourAngleRad < kPi)
            transit = Bisect(a.jdUT, b.jdUT, [this](double t) { return HourAngle(t); });
        double crossing = std::numeric_limits<double>::quiet_NaN();
        EventKind crossingKind = EventKind::Rise;
        if (std::isfinite(a.f) && std::isfinite(b.f) && (a.f < 0.0) != (b.f < 0.0)) {
            crossingKind = a.f < 0.0 ? EventKind::Rise : EventKind::Set;
            crossing = Bisect(a.jdUT, b.jdUT, [this](double t) { return Height(t); });
        }
        const bool transitFirst = std::isfinite(transit) && !(crossing < transit);
        if (transitFirst && !Report(onEvent, EventKind::Transit, transit)) return false;
        if (std::isfinite(crossing) && !Report(onEvent, crossingKind, crossing)) return false;
        if (!transitFirst && std::isfinite(transit) && !Report(onEvent, EventKind::Transit, transit)) return false;
        return true;
    }

    bool ScanExtreme(const Sample& p, const Sample& a, const Sample& b, const EventFn& onEvent)
    {
        if (!std::isfinite(p.f) || !std::isfinite(a.f) || !std::isfinite(b.f)) return true;
        const bool maximumBelow = a.f > p.f && a.f >= b.f && a.f < 0.0 && a.f > -kGrazeMarginRad;
        const bool minimumAbove = a.f < p.f && a.f <= b.f && a.f >= 0.0 && a.f < kGrazeMarginRad;
        if (!maximumBelow && !minimumAbove) return true;
        const double sign = maximumBelow ? 1.0 : -1.0;
        // Golden-section search for the extreme of sign·f on [p, b].
        const double ratio = 0.5 * (std::sqrt(5.0) - 1.0);
        double lo = p.jdUT, hi = b.jdUT;
        double x1 = hi - ratio * (hi - lo), x2 = lo + ratio * (hi - lo);
        double f1 = sign * Height(x1), f2 = sign * Height(x2);
        for (int i = 0; i < kMaxGoldenSteps && hi - lo > kEventToleranceDays; ++i) {
            if (!std::isfinite(f1) || !std::isfinite(f2)) return true;
            if (f1 > f2) {
                hi = x2;
                x2 = x1;
                f2 = f1;
                x1 = hi - ratio * (hi - lo);
                f1 = sign * Height(x1);
            } else {
                lo = x1;
                x1 = x2;
                f1 = f2;
                x2 = lo + ratio * (hi - lo);
                f2 = sign * Height(x2);
            }
        }
        const double tExtreme = 0.5 * (lo + hi);
        const double fExtreme = Height(tExtreme);
        if (!std::isfinite(fExtreme) || (maximumBelow ? fExtreme < 0.0 : fExtreme >= 0.0)) return true;
        const auto height = [this](double t) { return Height(t); };
        const double first = Bisect(p.jdUT, tExtreme, height);
        const double second = Bisect(tExtreme, b.jdUT, height);
        const EventKind firstKind = maximumBelow ? EventKind::Rise : EventKind::Set;
        const EventKind secondKind = maximumBelow ? EventKind::Set : EventKind::Rise;
        return Report(onEvent, firstKind, first) && Report(onEvent, secondKind, second);
    }

    double Height(double jd) const
    {
        double f, ha;
        m_point(jd, f, ha);
        return f;
    }

    double HourAngle(double jd) const
    {
        double f, ha;
        m_point(jd, f, ha);
        return ha;
    }

    // The point in [a, b] where g changes side of 0 (g(a) and g(b) on
    // opposite sides), to kEventToleranceDays.
    template <typename Fn>
    static double Bisect(double a, double b, const Fn& g)
    {
        const bool risingAtA = !(g(a) >= 0.0);  // g(a) < 0: g goes up through 0
        for (int i = 0; i < kMaxBisections && b - a > kEventToleranceDays; ++i) {
            const double m = 0.5 * (a + b);
            const double gm = g(m);
            if (!std::isfinite(gm)) break;
            if ((gm < 0.0) == risingAtA)
                a = m;
            else
                b = m;
        }
        return 0.5 * (a + b);
    }

    PointFn m_point;
    double m_start;
    double m_end;
    long m_finiteSamples = 0;
    long m_samplesAbove = 0;
};

bool ValidWindow(double jdUTStart, double windowDays, double h0Rad)
{
    return std::isfinite(jdUTStart) && std::isfinite(windowDays) && std::isfinite(h0Rad) && windowDays > 0.0 &&
           windowDays <= kMaxWindowDays;
}

}  // namespace

void CObserverDoc::HourAngleAndAltitude(double raRad, double decRad, double jdUT, double& hourAngleRad,
                                        double& altitudeRad) const
{
    const double jdTT = jdUT + DeltaTSeconds(jdUT) / kSecondsPerDay;
    const double h = std::remainder(GastRadAt(jdUT, jdTT) + m_longitudeRad - raRad, kTwoPi);
    hourAngleRad = h <= -kPi ? h + kTwoPi : h;
    // Meeus eq. 13.6.
    const double sinAlt =
        std::sin(m_latitudeRad) * std::sin(decRad) + std::cos(m_latitudeRad) * std::cos(decRad) * std::cos(h);
    altitudeRad = std::asin(std::clamp(sinAlt, -1.0, 1.0));
}

double CObserverDoc::AltitudeOf(double raRad, double decRad, double jdUT) const
{
    if (!std::isfinite(raRad) || !std::isfinite(decRad) || !std::isfinite(jdUT))
        return std::numeric_limits<double>::quiet_NaN();
    double hourAngleRad, altitudeRad;
    HourAngleAndAltitude(raRad, decRad, jdUT, hourAngleRad, altitudeRad);
    return altitudeRad;
}

std::function<void(double, double&, double&)> CObserverDoc::AltitudeAboveFn(const ApparentPositionFn& position,
                                                                          double h0Rad,
                                                                          const LocalHorizonFn* horizon) const
{
    // Over a local horizon of apparent altitude H the threshold is the true
    // altitude that refraction lifts to H (H less the refraction there),
    // plus what h0 holds beyond the refraction at the mathematical horizon
    // (a semidiameter).
    const double beyondRefraction = h0Rad + InverseRefraction(0.0);
    return [this, &position, h0Rad, horizon, beyondRefraction](double jd, double& f, double& hourAngleRad) {
        double ra = std::numeric_limits<double>::quiet_NaN(), dec = ra;
        position(jd, ra, dec);
        if (!std::isfinite(ra) || !std::isfinite(dec)) {
            f = hourAngleRad = std::numeric_limits<double>::quiet_NaN();
            return;
        }
        double alt;
        HourAngleAndAltitude(ra, dec, jd, hourAngleRad, alt);
        if (horizon == nullptr || !*horizon) {
            f = alt - h0Rad;
            return;
        }
        // Azimuth from north through east (Meeus eq. 13.5 counts from the south).
        const double phi = m_latitudeRad, h = hourAngleRad;
        const double az = mod2pi(
            std::atan2(std::sin(h), std::cos(h) * std::sin(phi) - std::tan(dec) * std::cos(phi)) + kPi);
        const double horizonApparentRad = (*horizon)(az);
        f = alt - (horizonApparentRad - InverseRefraction(horizonApparentRad) + beyondRefraction);
    };
}

RiseTransitSet CObserverDoc::FindRiseTransitSet(const ApparentPositionFn& position, double jdUTStart,
                                                double windowDays, double h0Rad) const
{
    return FindRiseTransitSet(position, jdUTStart, windowDays, h0Rad, LocalHorizonFn());
}

RiseTransitSet CObserverDoc::FindRiseTransitSet(const ApparentPositionFn& position, double jdUTStart,
                                                double windowDays, double h0Rad, const LocalHorizonFn& horizon) const
{
    RiseTransitSet out;
    if (!position || !ValidWindow(jdUTStart, windowDays, h0Rad)) {
        out.kind = RiseTransitSet::Kind::InvalidInput;
        return out;
    }
    double transitDecRad = std::numeric_limits<double>::quiet_NaN();
    double transitRaRad = 0.0;
    CEventScan scan(AltitudeAboveFn(position, h0Rad, &horizon), jdUTStart, windowDays);
    scan.Run(
        [&](EventKind kind, double jd) {
            switch (kind) {
            case EventKind::Rise:
                if (!out.riseJdUT) out.riseJdUT = jd;
                break;
            case EventKind::Set:
                if (!out.setJdUT) out.setJdUT = jd;
                break;
            case EventKind::Transit:
                if (!out.transitJdUT) {
                    out.transitJdUT = jd;
                    position(jd, transitRaRad, transitDecRad);
                }
                break;
            }
            return !(out.riseJdUT && out.setJdUT && out.transitJdUT);
        },
        true);
    if (out.transitJdUT) out.transitAltitudeRad = AltitudeOf(transitRaRad, transitDecRad, *out.transitJdUT);
    if (out.riseJdUT || out.setJdUT)
        out.kind = RiseTransitSet::Kind::Normal;
    else if (!scan.AnyFinite())
        out.kind = RiseTransitSet::Kind::InvalidInput;
    else if (scan.AllAbove())
        out.kind = RiseTransitSet::Kind::AlwaysAbove;
    else if (scan.AllBelow())
        out.kind = RiseTransitSet::Kind::AlwaysBelow;
    else
        out.kind = RiseTransitSet::Kind::Normal;  // both sides seen, crossings lost in gaps of the position function
    return out;
}

std::optional<double> CObserverDoc::FindNextCrossing(const ApparentPositionFn& position, double jdUTStart,
                                                     double windowDays, double h0Rad, bool rising) const
{
    if (!position || !ValidWindow(jdUTStart, windowDays, h0Rad)) return std::nullopt;
    std::optional<double> found;
    const EventKind wanted = rising ? EventKind::Rise : EventKind::Set;
    CEventScan scan(AltitudeAboveFn(position, h0Rad), jdUTStart, windowDays);
    scan.Run(
        [&](EventKind kind, double jd) {
            if (kind != wanted) return true;
            found = jd;
            return false;
        },
        false);
    return found;
}

}  // namespace orv
