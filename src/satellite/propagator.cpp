#include "satellite/propagator.h"

#include <cmath>

#include "satellite/deepspace.h"
#include "satellite/wgs72.h"
#include "util/angles.h"

namespace orv::sat {

namespace {

// Beyond this many minutes from the epoch (about 190 years) a position means
// nothing, and SDP4's resonance integration would take unbounded time.
constexpr double kMaxMinutesFromEpoch = 1e8;
// Below this eccentricity the terms of the drag model divided by e are
// dropped (they are 0/0 for a circular orbit).
constexpr double kSmallEccentricity = 1.0e-4;
// Kepler iteration: convergence between successive estimates (rad) and the
// largest correction allowed in one step (rad).
constexpr double kKeplerToleranceRad = 1.0e-6;
constexpr double kKeplerMaxStepRad = 0.95;
// Smallest allowed 1 + cos i (retrograde equatorial orbits).
constexpr double kMinOnePlusCosI = 1.5e-12;

bool AllFinite(std::initializer_list<double> values)
{
    for (double v : values)
        if (!std::isfinite(v)) return false;
    return true;
}

}  // namespace

// Epoch-dependent constants of both models (the report's names in comments).
struct CSatellitePropagator::Constants {
    // Recovered elements.
    double xnodp = 0;  // Brouwer mean motion n0"
    double aodp = 0;   // semi-major axis a0"
    // Trigonometric and eccentricity functions of the epoch elements.
    double cosio = 0, sinio = 0, x3thm1 = 0, x1mth2 = 0, x7thm1 = 0;
    double eta = 0;
    // Secular rates.
    double xmdot = 0, omgdot = 0, xnodot = 0;
    // Drag.
    double c1 = 0, c4 = 0, c5 = 0, omgcof = 0, xmcof = 0, xnodcf = 0, t2cof = 0;
    double d2 = 0, d3 = 0, d4 = 0, t3cof = 0, t4cof = 0, t5cof = 0;
    double delmo = 0, sinmo = 0;
    bool simplifiedDrag = false;  // perigee below 220 km: isimp
    // Long-period J3 coefficients.
    double xlcof = 0, aycof = 0;
    detail::CDeepSpace deep;
};

std::string_view PropagationStatusText(PropagationStatus status)
{
    switch (status) {
    case PropagationStatus::Ok: return "position computed";
    case PropagationStatus::NonFiniteTime: return "the time is not a finite number";
    case PropagationStatus::TimeOutOfRange: return "the time is too far from the epoch of the elements";
    case PropagationStatus::InvalidElements: return "the orbital elements cannot be propagated";
    case PropagationStatus::EccentricityOutOfRange: return "the propagated eccentricity is out of range";
    case PropagationStatus::MeanMotionNotPositive: return "the propagated mean motion is not positive";
    case PropagationStatus::Decayed: return "the satellite has decayed";
    }
    return "unknown propagation status";
}

TemeStateKm ToKilometres(const TemeStateEarthRadii& state)
{
    TemeStateKm out;
    for (int i = 0; i < 3; ++i) {
        out.positionKm[i] = state.positionEr[i] * kKmPerEarthRadius;
        out.velocityKmPerS[i] = state.velocityErPerMin[i] * kKmPerSecondPerEarthRadiusPerMinute;
    }
    return out;
}

OrbitModel ModelForPeriod(double periodMinutes)
{
    return periodMinutes >= 225.0 ? OrbitModel::Sdp4DeepSpace : OrbitModel::Sgp4NearEarth;
}

CSatellitePropagator::CSatellitePropagator(const SatelliteRecord& record)
    : m_elements(record), m_model(ModelForPeriod(record.periodMinutes))
{
}

CSatellitePropagator::~CSatellitePropagator() = default;
CSatellitePropagator::CSatellitePropagator(CSatellitePropagator&&) noexcept = default;
CSatellitePropagator& CSatellitePropagator::operator=(CSatellitePropagator&&) noexcept = default;

CSatellitePropagator::CSatellitePropagator(const CSatellitePropagator& other)
    : m_elements(other.m_elements),
      m_model(other.m_model),
      m_initialised(other.m_initialised),
      m_initStatus(other.m_initStatus),
      m_c(other.m_c ? std::make_unique<Constants>(*other.m_c) : nullptr)
{
}

CSatellitePropagator& CSatellitePropagator::operator=(const CSatellitePropagator& other)
{
    if (this != &other) *this = CSatellitePropagator(other);
    return *this;
}

void CSatellitePropagator::Initialise()
{
    m_initialised = true;
    m_c = std::make_unique<Constants>();
    Constants& c = *m_c;
    const SatelliteRecord& el = m_elements;
    const double e0 = el.eccentricity;
    const double n0 = el.meanMotionRadPerMin;
    if (!AllFinite({e0, n0, el.inclinationRad, el.raanRad, el.argumentOfPerigeeRad, el.meanAnomalyRad,
                    el.bstarPerEarthRadius, el.epochJd}) ||
        !(n0 > 0.0) || !(e0 >= 0.0 && e0 < 1.0)) {
        m_initStatus = PropagationStatus::InvalidElements;
        return;
    }

    // Recover the Brouwer mean motion and semi-major axis from the Kozai mean
    // motion of the element set (report, section 6).
    const double a1 = std::pow(kKe / n0, 2.0 / 3.0);
    c.cosio = std::cos(el.inclinationRad);
    const double theta2 = c.cosio * c.cosio;
    c.x3thm1 = 3.0 * theta2 - 1.0;
    const double eosq = e0 * e0;
    const double betao2 = 1.0 - eosq;
    const double betao = std::sqrt(betao2);
    const double del1 = 1.5 * kK2 * c.x3thm1 / (a1 * a1 * betao * betao2);
    const double ao = a1 * (1.0 - del1 * (0.5 * (2.0 / 3.0) + del1 * (1.0 + 134.0 / 81.0 * del1)));
    const double delo = 1.5 * kK2 * c.x3thm1 / (ao * ao * betao * betao2);
    c.xnodp = n0 / (1.0 + delo);
    c.aodp = ao / (1.0 - delo);
    if (!AllFinite({c.xnodp, c.aodp}) || !(c.aodp > 0.0) || !(c.xnodp > 0.0)) {
        m_initStatus = PropagationStatus::InvalidElements;
        return;
    }

    // Perigee below 220 km: the drag equations are truncated (isimp).
    c.simplifiedDrag = c.aodp * (1.0 - e0) < 220.0 / kEarthRadiusKm + 1.0;

    // Density function parameters s and (q0 - s)^4, altered for a perigee
    // below 156 km.
    double s4 = 1.0 + kDragSHeightKm / kEarthRadiusKm;
    double qoms24 = std::pow((kDragQ0HeightKm - kDragSHeightKm) / kEarthRadiusKm, 4.0);
    const double perigeeKm = (c.aodp * (1.0 - e0) - 1.0) * kEarthRadiusKm;
    if (perigeeKm < 156.0) {
        double s4Km = perigeeKm - 78.0;
        if (perigeeKm <= 98.0) s4Km = 20.0;
        qoms24 = std::pow((kDragQ0HeightKm - s4Km) / kEarthRadiusKm, 4.0);
        s4 = s4Km / kEarthRadiusKm + 1.0;
    }

    const double pinvsq = 1.0 / (c.aodp * c.aodp * betao2 * betao2);
    const double tsi = 1.0 / (c.aodp - s4);
    c.eta = c.aodp * e0 * tsi;
    const double etasq = c.eta * c.eta;
    const double eeta = e0 * c.eta;
    const double psisq = std::fabs(1.0 - etasq);
    const double coef = qoms24 * std::pow(tsi, 4.0);
    const double coef1 = coef / std::pow(psisq, 3.5);
    const double c2 = coef1 * c.xnodp *
                      (c.aodp * (1.0 + 1.5 * etasq + eeta * (4.0 + etasq)) +
                       0.75 * kK2 * tsi / psisq * c.x3thm1 * (8.0 + 3.0 * etasq * (8.0 + etasq)));
    c.c1 = el.bstarPerEarthRadius * c2;
    c.sinio = std::sin(el.inclinationRad);
    const double a3ovk2 = -kJ3 / kK2;
    c.x1mth2 = 1.0 - theta2;
    c.c4 = 2.0 * c.xnodp * coef1 * c.aodp * betao2 *
           (c.eta * (2.0 + 0.5 * etasq) + e0 * (0.5 + 2.0 * etasq) -
            2.0 * kK2 * tsi / (c.aodp * psisq) *
                (-3.0 * c.x3thm1 * (1.0 - 2.0 * eeta + etasq * (1.5 - 0.5 * eeta)) +
                 0.75 * c.x1mth2 * (2.0 * etasq - eeta * (1.0 + etasq)) * std::cos(2.0 * el.argumentOfPerigeeRad)));
    const double theta4 = theta2 * theta2;
    const double temp1 = 3.0 * kK2 * pinvsq * c.xnodp;
    const double temp2 = temp1 * kK2 * pinvsq;
    const double temp3 = 1.25 * kK4 * pinvsq * pinvsq * c.xnodp;
    c.xmdot = c.xnodp + 0.5 * temp1 * betao * c.x3thm1 + 0.0625 * temp2 * betao * (13.0 - 78.0 * theta2 + 137.0 * theta4);
    const double x1m5th = 1.0 - 5.0 * theta2;
    c.omgdot = -0.5 * temp1 * x1m5th + 0.0625 * temp2 * (7.0 - 114.0 * theta2 + 395.0 * theta4) +
               temp3 * (3.0 - 36.0 * theta2 + 49.0 * theta4);
    const double xhdot1 = -temp1 * c.cosio;
    c.xnodot = xhdot1 + (0.5 * temp2 * (4.0 - 19.0 * theta2) + 2.0 * temp3 * (3.0 - 7.0 * theta2)) * c.cosio;
    c.xnodcf = 3.5 * betao2 * xhdot1 * c.c1;
    c.t2cof = 1.5 * c.c1;
    double onePlusCos = 1.0 + c.cosio;
    if (std::fabs(onePlusCos) < kMinOnePlusCosI) onePlusCos = kMinOnePlusCosI;
    c.xlcof = 0.125 * a3ovk2 * c.sinio * (3.0 + 5.0 * c.cosio) / onePlusCos;
    c.aycof = 0.25 * a3ovk2 * c.sinio;
    c.x7thm1 = 7.0 * theta2 - 1.0;

    if (m_model == OrbitModel::Sdp4DeepSpace) {
        detail::DeepSpaceInputs in{};
        in.epochJd = el.epochJd;
        in.eccentricity = e0;
        in.inclinationRad = el.inclinationRad;
        in.raanRad = el.raanRad;
        in.argPerigeeRad = el.argumentOfPerigeeRad;
        in.meanAnomalyRad = el.meanAnomalyRad;
        in.eosq = eosq;
        in.sinio = c.sinio;
        in.cosio = c.cosio;
        in.betao = betao;
        in.aodp = c.aodp;
        in.theta2 = theta2;
        in.sing = std::sin(el.argumentOfPerigeeRad);
        in.cosg = std::cos(el.argumentOfPerigeeRad);
        in.betao2 = betao2;
        in.xmdot = c.xmdot;
        in.omgdot = c.omgdot;
        in.xnodot = c.xnodot;
        in.xnodp = c.xnodp;
        c.deep.Initialise(in);
        m_initStatus = PropagationStatus::Ok;
        return;
    }

    // Near-Earth drag terms.
    c.c5 = 2.0 * coef1 * c.aodp * betao2 * (1.0 + 2.75 * (etasq + eeta) + eeta * etasq);
    if (e0 > kSmallEccentricity) {
        const double c3 = coef * tsi * a3ovk2 * c.xnodp * c.sinio / e0;
        c.omgcof = el.bstarPerEarthRadius * c3 * std::cos(el.argumentOfPerigeeRad);
        c.xmcof = -(2.0 / 3.0) * coef * el.bstarPerEarthRadius / eeta;
    }
    c.delmo = std::pow(1.0 + c.eta * std::cos(el.meanAnomalyRad), 3.0);
    c.sinmo = std::sin(el.meanAnomalyRad);
    if (!c.simplifiedDrag) {
        const double c1sq = c.c1 * c.c1;
        c.d2 = 4.0 * c.aodp * tsi * c1sq;
        const double temp = c.d2 * tsi * c.c1 / 3.0;
        c.d3 = (17.0 * c.aodp + s4) * temp;
        c.d4 = 0.5 * temp * c.aodp * tsi * (221.0 * c.aodp + 31.0 * s4) * c.c1;
        c.t3cof = c.d2 + 2.0 * c1sq;
        c.t4cof = 0.25 * (3.0 * c.d3 + c.c1 * (12.0 * c.d2 + 10.0 * c1sq));
        c.t5cof = 0.2 * (3.0 * c.d4 + 12.0 * c.c1 * c.d3 + 6.0 * c.d2 * c.d2 + 15.0 * c1sq * (2.0 * c.d2 + c1sq));
    }
    m_initStatus = PropagationStatus::Ok;
}

PropagationStatus CSatellitePropagator::Propagate(double minutesSinceEpoch, TemeStateEarthRadii& state)
{
    if (!std::isfinite(minutesSinceEpoch)) return PropagationStatus::NonFiniteTime;
    if (std::fabs(minutesSinceEpoch) > kMaxMinutesFromEpoch) return PropagationStatus::TimeOutOfRange;
    if (!m_initialised) Initialise();
    if (m_initStatus != PropagationStatus::Ok) return m_initStatus;
    Constants& c = *m_c;
    const SatelliteRecord& el = m_elements;
    const double t = minutesSinceEpoch;

    // Secular gravity and atmospheric drag.
    const double xmdf = el.meanAnomalyRad + c.xmdot * t;
    const double omgadf = el.argumentOfPerigeeRad + c.omgdot * t;
    const double xnoddf = el.raanRad + c.xnodot * t;
    const double tsq = t * t;
    double xnode = xnoddf + c.xnodcf * tsq;
    double tempa = 1.0 - c.c1 * t;
    double tempe = el.bstarPerEarthRadius * c.c4 * t;
    double templ = c.t2cof * tsq;

    double a, e, omega, xl, xinc, xn;
    if (m_model == OrbitModel::Sgp4NearEarth) {
        double xmp = xmdf;
        omega = omgadf;
        if (!c.simplifiedDrag) {
            const double delomg = c.omgcof * t;
            const double delm = c.xmcof * (std::pow(1.0 + c.eta * std::cos(xmdf), 3.0) - c.delmo);
            const double temp = delomg + delm;
            xmp = xmdf + temp;
            omega = omgadf - temp;
            const double tcube = tsq * t;
            const double tfour = t * tcube;
            tempa = tempa - c.d2 * tsq - c.d3 * tcube - c.d4 * tfour;
            tempe = tempe + el.bstarPerEarthRadius * c.c5 * (std::sin(xmp) - c.sinmo);
            templ = templ + c.t3cof * tcube + tfour * (c.t4cof + t * c.t5cof);
        }
        // The drag model is linear in sqrt(a): once it reaches zero the
        // satellite has come down.
        if (!(tempa > 0.0)) return PropagationStatus::Decayed;
        a = c.aodp * tempa * tempa;
        e = el.eccentricity - tempe;
        xl = xmp + omega + xnode + c.xnodp * templ;
        xinc = el.inclinationRad;
        if (!(e >= -0.001 && e < 1.0)) return PropagationStatus::EccentricityOutOfRange;
        if (!(a >= 0.95)) return PropagationStatus::Decayed;
    } else {
        detail::DeepSpaceMeanElements mean{xmdf, omgadf, xnode, el.eccentricity, el.inclinationRad, c.xnodp};
        c.deep.Secular(t, mean);
        if (!(mean.meanMotion > 0.0)) return PropagationStatus::MeanMotionNotPositive;
        if (!(tempa > 0.0)) return PropagationStatus::Decayed;
        a = std::pow(kKe / mean.meanMotion, 2.0 / 3.0) * tempa * tempa;
        mean.eccentricity -= tempe;
        if (!(mean.eccentricity >= -0.001 && mean.eccentricity < 1.0)) return PropagationStatus::EccentricityOutOfRange;
        if (!(a >= 0.95)) return PropagationStatus::Decayed;
        mean.meanAnomalyRad += c.xnodp * templ;
        c.deep.Periodic(t, mean);
        e = mean.eccentricity;
        if (!(std::fabs(e) < 1.0)) return PropagationStatus::EccentricityOutOfRange;
        xinc = mean.inclinationRad;
        omega = mean.argPerigeeRad;
        xnode = mean.raanRad;
        xl = mean.meanAnomalyRad + omega + xnode;
    }
    const double beta = std::sqrt(1.0 - e * e);
    xn = kKe / std::pow(a, 1.5);

    // Long-period periodics (J3).
    const double axn = e * std::cos(omega);
    double temp = 1.0 / (a * beta * beta);
    const double xll = temp * c.xlcof * axn;
    const double aynl = temp * c.aycof;
    const double xlt = xl + xll;
    const double ayn = e * std::sin(omega) + aynl;
    const double elsq = axn * axn + ayn * ayn;
    if (!AllFinite({xlt, xnode, axn, ayn, a, xn, xinc})) return PropagationStatus::InvalidElements;
    if (!(elsq < 1.0)) return PropagationStatus::EccentricityOutOfRange;

    // Kepler's equation for E + ω: U = (E + ω) − axn sin(E + ω) + ayn cos(E + ω),
    // by Newton's method from E + ω = U. With axn² + ayn² < 1 the derivative
    // 1 − axn cos − ayn sin is positive, and the limited step converges.
    const double capu = mod2pi(xlt - xnode);
    double epw = capu;
    for (;;) {
        const double sinepw = std::sin(epw);
        const double cosepw = std::cos(epw);
        double step = (capu - ayn * cosepw + axn * sinepw - epw) / (1.0 - axn * cosepw - ayn * sinepw);
        if (std::fabs(step) > kKeplerMaxStepRad) step = step > 0.0 ? kKeplerMaxStepRad : -kKeplerMaxStepRad;
        epw += step;
        if (std::fabs(step) <= kKeplerToleranceRad) break;
    }

    // Short-period preliminary quantities.
    const double sinepw = std::sin(epw);
    const double cosepw = std::cos(epw);
    const double ecose = axn * cosepw + ayn * sinepw;
    const double esine = axn * sinepw - ayn * cosepw;
    temp = 1.0 - elsq;
    const double pl = a * temp;
    const double r = a * (1.0 - ecose);
    double t1 = 1.0 / r;
    const double rdot = kKe * std::sqrt(a) * esine * t1;
    const double rfdot = kKe * std::sqrt(pl) * t1;
    double t2 = a * t1;
    const double betal = std::sqrt(temp);
    const double t3 = 1.0 / (1.0 + betal);
    const double cosu = t2 * (cosepw - axn + ayn * esine * t3);
    const double sinu = t2 * (sinepw - ayn - axn * esine * t3);
    const double u = std::atan2(sinu, cosu);
    const double sin2u = 2.0 * sinu * cosu;
    const double cos2u = 2.0 * cosu * cosu - 1.0;
    temp = 1.0 / pl;
    t1 = kK2 * temp;
    t2 = t1 * temp;

    // Short-period periodics (J2).
    const double rk = r * (1.0 - 1.5 * t2 * betal * c.x3thm1) + 0.5 * t1 * c.x1mth2 * cos2u;
    const double uk = u - 0.25 * t2 * c.x7thm1 * sin2u;
    const double xnodek = xnode + 1.5 * t2 * c.cosio * sin2u;
    const double xinck = xinc + 1.5 * t2 * c.cosio * c.sinio * cos2u;
    const double rdotk = rdot - xn * t1 * c.x1mth2 * sin2u;
    const double rfdotk = rfdot + xn * t1 * (c.x1mth2 * cos2u + 1.5 * c.x3thm1);

    // Orientation vectors.
    const double sinuk = std::sin(uk), cosuk = std::cos(uk);
    const double sinik = std::sin(xinck), cosik = std::cos(xinck);
    const double sinnok = std::sin(xnodek), cosnok = std::cos(xnodek);
    const double xmx = -sinnok * cosik;
    const double xmy = cosnok * cosik;
    const double ux = xmx * sinuk + cosnok * cosuk;
    const double uy = xmy * sinuk + sinnok * cosuk;
    const double uz = sinik * sinuk;
    const double vx = xmx * cosuk - cosnok * sinuk;
    const double vy = xmy * cosuk - sinnok * sinuk;
    const double vz = sinik * cosuk;

    state.positionEr = {rk * ux, rk * uy, rk * uz};
    state.velocityErPerMin = {rdotk * ux + rfdotk * vx, rdotk * uy + rfdotk * vy, rdotk * uz + rfdotk * vz};
    if (!AllFinite({state.positionEr[0], state.positionEr[1], state.positionEr[2], state.velocityErPerMin[0],
                    state.velocityErPerMin[1], state.velocityErPerMin[2]}))
        return PropagationStatus::InvalidElements;
    if (rk < 1.0) return PropagationStatus::Decayed;
    return PropagationStatus::Ok;
}

PropagationStatus CSatellitePropagator::PropagateToJd(double jdUT, TemeStateKm& state)
{
    TemeStateEarthRadii er;
    const double minutes = (jdUT - m_elements.epochJd) * kMinutesPerDay;
    const PropagationStatus status = Propagate(minutes, er);
    state = ToKilometres(er);
    return status;
}

}  // namespace orv::sat
