// Astronomical refraction at standard conditions (1010 hPa, 10 °C).

#include <cmath>
#include <limits>

#include "observer/observer.h"
#include "util/angles.h"

namespace orv {

namespace {

constexpr double kArcminPerDeg = 60.0;

// Sæmundsson, Sky & Telescope 72, 70 (1986); Meeus, Astronomical Algorithms,
// 2nd ed., eq. 16.4: refraction in arc minutes for a true altitude h in
// degrees, with Meeus's +0.0019279′ that makes it vanish at the zenith.
double SaemundssonArcmin(double trueAltDeg)
{
    const double argDeg = trueAltDeg + 10.3 / (trueAltDeg + 5.11);
    return 1.02 / std::tan(argDeg * kRadPerDeg) + 0.0019279;
}

// Bennett, Journal of Navigation 35, 255 (1982); Meeus eq. 16.3: refraction
// in arc minutes for an apparent altitude h0 in degrees, with Meeus's
// +0.0013515′ for the zenith.
double BennettArcmin(double apparentAltDeg)
{
    const double argDeg = apparentAltDeg + 7.31 / (apparentAltDeg + 4.4);
    return 1.0 / std::tan(argDeg * kRadPerDeg) + 0.0013515;
}

// The continuation below the horizon (see the header): Sæmundsson down to a
// true altitude of −1°, then a straight fall to 0 at −2°; Bennett down to the
// apparent altitude that −1° is lifted to, then a straight fall to 0 at −2°.
constexpr double kLowestFormulaTrueAltDeg = -1.0;
constexpr double kZeroRefractionAltDeg = -2.0;

struct Continuation {
    double trueJoinRefractionDeg;      // Sæmundsson at −1°
    double apparentJoinAltDeg;         // −1° plus that
    double apparentJoinRefractionDeg;  // Bennett there
};

const Continuation& Joins()
{
    static const Continuation joins = [] {
        Continuation c{};
        c.trueJoinRefractionDeg = SaemundssonArcmin(kLowestFormulaTrueAltDeg) / kArcminPerDeg;
        c.apparentJoinAltDeg = kLowestFormulaTrueAltDeg + c.trueJoinRefractionDeg;
        c.apparentJoinRefractionDeg = BennettArcmin(c.apparentJoinAltDeg) / kArcminPerDeg;
        return c;
    }();
    return joins;
}

}  // namespace

double CObserverDoc::Refraction(double trueAltitudeRad) const
{
    if (std::isnan(trueAltitudeRad)) return std::numeric_limits<double>::quiet_NaN();
    const double hDeg = trueAltitudeRad * kDegPerRad;
    if (hDeg <= kZeroRefractionAltDeg || hDeg >= 90.0) return 0.0;
    double refractionDeg;
    if (hDeg >= kLowestFormulaTrueAltDeg) {
        refractionDeg = SaemundssonArcmin(hDeg) / kArcminPerDeg;
    } else {
        refractionDeg = Joins().trueJoinRefractionDeg * (hDeg - kZeroRefractionAltDeg) /
                        (kLowestFormulaTrueAltDeg - kZeroRefractionAltDeg);
    }
    return std::fmax(refractionDeg, 0.0) * kRadPerDeg;
}

double CObserverDoc::InverseRefraction(double apparentAltitudeRad) const
{
    // The exact inverse of Refraction: the true altitude h with
    // h + Refraction(h) = h0, so that every conversion to the horizon and
    // back (a click on the chart, a centre held in altitude) returns where it
    // started. Bennett's formula, the direct form for apparent altitudes,
    // agrees with it to 4″ and serves as the starting value. h + R(h) rises
    // strictly with h, so the root is bracketed in [h0 − 2°, h0] and a
    // safeguarded Newton step converges; the loop is bounded besides.
    if (std::isnan(apparentAltitudeRad)) return std::numeric_limits<double>::quiet_NaN();
    const double h0 = apparentAltitudeRad;
    const double h0Deg = h0 * kDegPerRad;
    if (h0Deg <= kZeroRefractionAltDeg || h0Deg >= 90.0) return 0.0;
    double lo = h0 - 2.0 * kRadPerDeg, hi = h0;
    double h = h0 - BennettArcmin(std::fmax(h0Deg, Joins().apparentJoinAltDeg)) / kArcminPerDeg * kRadPerDeg;
    if (!(h > lo && h < hi)) h = 0.5 * (lo + hi);
    for (int i = 0; i < 60; ++i) {
        const double f = h + Refraction(h) - h0;
        if (f > 0.0)
            hi = h;
        else
            lo = h;
        const double step = 1e-7;
        const double slope = 1.0 + (Refraction(h + step) - Refraction(h - step)) / (2.0 * step);
        double next = h - f / slope;
        if (!(next > lo && next < hi)) next = 0.5 * (lo + hi);
        if (std::fabs(next - h) < 1e-15 || hi - lo < 1e-15) {
            h = next;
            break;
        }
        h = next;
    }
    return std::fmax(h0 - h, 0.0);
}

}  // namespace orv
