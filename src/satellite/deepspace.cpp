#include "satellite/deepspace.h"

#include <cmath>

#include "satellite/sattime.h"
#include "util/angles.h"

namespace orv::sat::detail {

namespace {

// Solar and lunar perturbation constants of the report (DEEP's DATA
// statements): mean motions (rad/min), the c1 amplitude factors, the
// eccentricities of the apparent solar and lunar orbits, and the orientation
// of the ecliptic (cos/sin of the obliquity) and of the solar perigee.
constexpr double kZns = 1.19459e-5;
constexpr double kC1ss = 2.9864797e-6;
constexpr double kZes = 0.01675;
constexpr double kZnl = 1.5835218e-4;
constexpr double kC1l = 4.7968065e-7;
constexpr double kZel = 0.05490;
constexpr double kZcosis = 0.91744867;
constexpr double kZsinis = 0.39785416;
constexpr double kZsings = -0.98088458;
constexpr double kZcosgs = 0.1945905;

// Geopotential resonance coefficients (tesseral harmonics of WGS-72 in the
// forms of Spacetrack Report No. 1) and the Earth's rotation rate in rad/min.
constexpr double kQ22 = 1.7891679e-6;
constexpr double kQ31 = 2.1460748e-6;
constexpr double kQ33 = 2.2123015e-7;
constexpr double kG22 = 5.7686396;
constexpr double kG32 = 0.95240898;
constexpr double kG44 = 1.8014998;
constexpr double kG52 = 1.0508330;
constexpr double kG54 = 4.4108898;
constexpr double kRoot22 = 1.7891679e-6;
constexpr double kRoot32 = 3.7393792e-7;
constexpr double kRoot44 = 7.3636953e-9;
constexpr double kRoot52 = 1.1428639e-7;
constexpr double kRoot54 = 2.1765803e-9;
constexpr double kThdt = 4.3752691e-3;

// Synchronous resonance phases.
constexpr double kFasx2 = 0.13130908;
constexpr double kFasx4 = 2.8843198;
constexpr double kFasx6 = 0.37448087;

// Integrator step (minutes) and half its square.
constexpr double kStep = 720.0;
constexpr double kStep2 = 0.5 * kStep * kStep;

// Below 3° of inclination (and above 177°) the node terms are dropped: there
// the node is ill defined and sin i would divide a vanishing term.
constexpr double kSmallInclinationRad = 5.2359877e-2;

// Epoch of the lunar-solar day count: 1900 January 0.5 (the report counts
// days from 1950 January 0.0 and adds 18261.5).
constexpr double kJd1900Jan0Noon = 2415020.0;

// The node term divided by sin i, zero where the term has been dropped.
double OverSinI(double term, double sini) { return term == 0.0 ? 0.0 : term / sini; }

}  // namespace

void CDeepSpace::Initialise(const DeepSpaceInputs& in)
{
    m_eccentricity0 = in.eccentricity;
    m_inclination0 = in.inclinationRad;
    m_argPerigee0 = in.argPerigeeRad;
    m_siniq = in.sinio;
    m_cosiq = in.cosio;
    m_omgdot = in.omgdot;
    m_thgr = GmstIau1982Rad(in.epochJd);

    const double eq = in.eccentricity;
    const double eqsq = in.eosq;
    m_xnq = in.xnodp;
    const double aqnv = 1.0 / in.aodp;
    const double xpidot = in.omgdot + in.xnodot;
    const double sinq = std::sin(in.raanRad);
    const double cosq = std::cos(in.raanRad);

    // Lunar orbit at the epoch: node of the Moon on the ecliptic, its
    // inclination to the equator and the argument of its perigee.
    const double day = in.epochJd - kJd1900Jan0Noon;
    const double xnodce = 4.5236020 - 9.2422029e-4 * day;
    const double stem = std::sin(xnodce);
    const double ctem = std::cos(xnodce);
    const double zcosil = 0.91375164 - 0.03568096 * ctem;
    const double zsinil = std::sqrt(1.0 - zcosil * zcosil);
    const double zsinhl = 0.089683511 * stem / zsinil;
    const double zcoshl = std::sqrt(1.0 - zsinhl * zsinhl);
    const double c = 4.7199672 + 0.22997150 * day;
    const double gam = 5.8351514 + 0.0019443680 * day;
    m_zmol = mod2pi(c - gam);
    double zx = 0.39785416 * stem / zsinil;
    const double zy = zcoshl * ctem + 0.91744867 * zsinhl * stem;
    zx = mod2pi(std::atan2(zx, zy));
    zx = gam + zx - xnodce;
    const double zcosgl = std::cos(zx);
    const double zsingl = std::sin(zx);
    m_zmos = mod2pi(6.2565837 + 0.017201977 * day);

    // Solar terms first, then lunar: the same expressions with the
    // perturbing body's orientation, mean motion, amplitude and eccentricity.
    double zcosg = kZcosgs, zsing = kZsings, zcosi = kZcosis, zsini = kZsinis;
    double zcosh = cosq, zsinh = sinq;
    double cc = kC1ss, zn = kZns, ze = kZes;
    const double xnoi = 1.0 / m_xnq;
    const bool dropNodeTerms = in.inclinationRad < kSmallInclinationRad || in.inclinationRad > kPi - kSmallInclinationRad;

    double se = 0, si = 0, sl = 0, sgh = 0, sh = 0;
    for (int body = 0; body < 2; ++body) {
        const double a1 = zcosg * zcosh + zsing * zcosi * zsinh;
        const double a3 = -zsing * zcosh + zcosg * zcosi * zsinh;
        const double a7 = -zcosg * zsinh + zsing * zcosi * zcosh;
        const double a8 = zsing * zsini;
        const double a9 = zsing * zsinh + zcosg * zcosi * zcosh;
        const double a10 = zcosg * zsini;
        const double a2 = m_cosiq * a7 + m_siniq * a8;
        const double a4 = m_cosiq * a9 + m_siniq * a10;
        const double a5 = -m_siniq * a7 + m_cosiq * a8;
        const double a6 = -m_siniq * a9 + m_cosiq * a10;

        const double x1 = a1 * in.cosg + a2 * in.sing;
        const double x2 = a3 * in.cosg + a4 * in.sing;
        const double x3 = -a1 * in.sing + a2 * in.cosg;
        const double x4 = -a3 * in.sing + a4 * in.cosg;
        const double x5 = a5 * in.sing;
        const double x6 = a6 * in.sing;
        const double x7 = a5 * in.cosg;
        const double x8 = a6 * in.cosg;

        const double z31 = 12.0 * x1 * x1 - 3.0 * x3 * x3;
        const double z32 = 24.0 * x1 * x2 - 6.0 * x3 * x4;
        const double z33 = 12.0 * x2 * x2 - 3.0 * x4 * x4;
        double z1 = 3.0 * (a1 * a1 + a2 * a2) + z31 * eqsq;
        double z2 = 6.0 * (a1 * a3 + a2 * a4) + z32 * eqsq;
        double z3 = 3.0 * (a3 * a3 + a4 * a4) + z33 * eqsq;
        const double z11 = -6.0 * a1 * a5 + eqsq * (-24.0 * x1 * x7 - 6.0 * x3 * x5);
        const double z12 = -6.0 * (a1 * a6 + a3 * a5) + eqsq * (-24.0 * (x2 * x7 + x1 * x8) - 6.0 * (x3 * x6 + x4 * x5));
        const double z13 = -6.0 * a3 * a6 + eqsq * (-24.0 * x2 * x8 - 6.0 * x4 * x6);
        const double z21 = 6.0 * a2 * a5 + eqsq * (24.0 * x1 * x5 - 6.0 * x3 * x7);
        const double z22 = 6.0 * (a4 * a5 + a2 * a6) + eqsq * (24.0 * (x2 * x5 + x1 * x6) - 6.0 * (x4 * x7 + x3 * x8));
        const double z23 = 6.0 * a4 * a6 + eqsq * (24.0 * x2 * x6 - 6.0 * x4 * x8);
        z1 = z1 + z1 + in.betao2 * z31;
        z2 = z2 + z2 + in.betao2 * z32;
        z3 = z3 + z3 + in.betao2 * z33;

        const double s3 = cc * xnoi;
        const double s2 = -0.5 * s3 / in.betao;
        const double s4 = s3 * in.betao;
        const double s1 = -15.0 * eq * s4;
        const double s5 = x1 * x3 + x2 * x4;
        const double s6 = x2 * x3 + x1 * x4;
        const double s7 = x2 * x4 - x1 * x3;

        se = s1 * zn * s5;
        si = s2 * zn * (z11 + z13);
        sl = -zn * s3 * (z1 + z3 - 14.0 - 6.0 * eqsq);
        sgh = s4 * zn * (z31 + z33 - 6.0);
        sh = dropNodeTerms ? 0.0 : -zn * s2 * (z21 + z23);

        // Long-period amplitudes of this body.
        const double ee2 = 2.0 * s1 * s6;
        const double e3 = 2.0 * s1 * s7;
        const double xi2 = 2.0 * s2 * z12;
        const double xi3 = 2.0 * s2 * (z13 - z11);
        const double xl2 = -2.0 * s3 * z2;
        const double xl3 = -2.0 * s3 * (z3 - z1);
        const double xl4 = -2.0 * s3 * (-21.0 - 9.0 * eqsq) * ze;
        const double xgh2 = 2.0 * s4 * z32;
        const double xgh3 = 2.0 * s4 * (z33 - z31);
        const double xgh4 = -18.0 * s4 * ze;
        const double xh2 = -2.0 * s2 * z22;
        const double xh3 = -2.0 * s2 * (z23 - z21);

        if (body == 0) {
            m_sse = se;
            m_ssi = si;
            m_ssl = sl;
            m_ssh = OverSinI(sh, m_siniq);
            m_ssg = sgh - m_cosiq * m_ssh;
            m_se2 = ee2, m_si2 = xi2, m_sl2 = xl2, m_sgh2 = xgh2, m_sh2 = xh2;
            m_se3 = e3, m_si3 = xi3, m_sl3 = xl3, m_sgh3 = xgh3, m_sh3 = xh3;
            m_sl4 = xl4, m_sgh4 = xgh4;

            zcosg = zcosgl, zsing = zsingl, zcosi = zcosil, zsini = zsinil;
            zcosh = zcoshl * cosq + zsinhl * sinq;
            zsinh = sinq * zcoshl - cosq * zsinhl;
            zn = kZnl, cc = kC1l, ze = kZel;
        } else {
            m_ee2 = ee2, m_e3 = e3, m_xi2 = xi2, m_xi3 = xi3, m_xl2 = xl2, m_xl3 = xl3, m_xl4 = xl4;
            m_xgh2 = xgh2, m_xgh3 = xgh3, m_xgh4 = xgh4, m_xh2 = xh2, m_xh3 = xh3;
        }
    }
    m_sse += se;
    m_ssi += si;
    m_ssl += sl;
    m_ssg += sgh - m_cosiq * OverSinI(sh, m_siniq);
    m_ssh += OverSinI(sh, m_siniq);

    // Geopotential resonance: 24-hour orbits (mean motion between 0.8 and 1.2
    // revolutions a day) and eccentric 12-hour orbits (1.9 to 2.1 a day, e ≥ 0.5).
    m_resonance = Resonance::None;
    double bfact = 0.0;
    if (m_xnq < 0.0052359877 && m_xnq > 0.0034906585) {
        m_resonance = Resonance::Synchronous;
        const double g200 = 1.0 + eqsq * (-2.5 + 0.8125 * eqsq);
        const double g310 = 1.0 + 2.0 * eqsq;
        const double g300 = 1.0 + eqsq * (-6.0 + 6.60937 * eqsq);
        const double f220 = 0.75 * (1.0 + m_cosiq) * (1.0 + m_cosiq);
        const double f311 = 0.9375 * m_siniq * m_siniq * (1.0 + 3.0 * m_cosiq) - 0.75 * (1.0 + m_cosiq);
        const double onePlusCos = 1.0 + m_cosiq;
        const double f330 = 1.875 * onePlusCos * onePlusCos * onePlusCos;
        const double del1 = 3.0 * m_xnq * m_xnq * aqnv * aqnv;
        m_del2 = 2.0 * del1 * f220 * g200 * kQ22;
        m_del3 = 3.0 * del1 * f330 * g300 * kQ33 * aqnv;
        m_del1 = del1 * f311 * g310 * kQ31 * aqnv;
        m_xlamo = in.meanAnomalyRad + in.raanRad + in.argPerigeeRad - m_thgr;
        bfact = in.xmdot + xpidot - kThdt + m_ssl + m_ssg + m_ssh;
    } else if (m_xnq >= 8.26e-3 && m_xnq <= 9.24e-3 && eq >= 0.5) {
        m_resonance = Resonance::HalfDay;
        const double eoc = eq * eqsq;
        const double g201 = -0.306 - (eq - 0.64) * 0.440;
        double g211, g310, g322, g410, g422, g520;
        if (eq <= 0.65) {
            g211 = 3.616 - 13.247 * eq + 16.290 * eqsq;
            g310 = -19.302 + 117.390 * eq - 228.419 * eqsq + 156.591 * eoc;
            g322 = -18.9068 + 109.7927 * eq - 214.6334 * eqsq + 146.5816 * eoc;
            g410 = -41.122 + 242.694 * eq - 471.094 * eqsq + 313.953 * eoc;
            g422 = -146.407 + 841.880 * eq - 1629.014 * eqsq + 1083.435 * eoc;
            g520 = -532.114 + 3017.977 * eq - 5740.0 * eqsq + 3708.276 * eoc;
        } else {
            g211 = -72.099 + 331.819 * eq - 508.738 * eqsq + 266.724 * eoc;
            g310 = -346.844 + 1582.851 * eq - 2415.925 * eqsq + 1246.113 * eoc;
            g322 = -342.585 + 1554.908 * eq - 2366.899 * eqsq + 1215.972 * eoc;
            g410 = -1052.797 + 4758.686 * eq - 7193.992 * eqsq + 3651.957 * eoc;
            g422 = -3581.69 + 16178.11 * eq - 24462.77 * eqsq + 12422.52 * eoc;
            g520 = eq > 0.715 ? -5149.66 + 29936.92 * eq - 54087.36 * eqsq + 31324.56 * eoc
                              : 1464.74 - 4664.75 * eq + 3763.64 * eqsq;
        }
        double g533, g521, g532;
        if (eq < 0.7) {
            g533 = -919.2277 + 4988.61 * eq - 9064.77 * eqsq + 5542.21 * eoc;
            g521 = -822.71072 + 4568.6173 * eq - 8491.4146 * eqsq + 5337.524 * eoc;
            g532 = -853.666 + 4690.25 * eq - 8624.77 * eqsq + 5341.4 * eoc;
        } else {
            g533 = -37995.78 + 161616.52 * eq - 229838.2 * eqsq + 109377.94 * eoc;
            g521 = -51752.104 + 218913.95 * eq - 309468.16 * eqsq + 146349.42 * eoc;
            g532 = -40023.88 + 170470.89 * eq - 242699.48 * eqsq + 115605.82 * eoc;
        }
        const double sini2 = m_siniq * m_siniq;
        const double cosq2 = in.theta2;
        const double f220 = 0.75 * (1.0 + 2.0 * m_cosiq + cosq2);
        const double f221 = 1.5 * sini2;
        const double f321 = 1.875 * m_siniq * (1.0 - 2.0 * m_cosiq - 3.0 * cosq2);
        const double f322 = -1.875 * m_siniq * (1.0 + 2.0 * m_cosiq - 3.0 * cosq2);
        const double f441 = 35.0 * sini2 * f220;
        const double f442 = 39.3750 * sini2 * sini2;
        const double f522 = 9.84375 * m_siniq *
                            (sini2 * (1.0 - 2.0 * m_cosiq - 5.0 * cosq2) + 0.33333333 * (-2.0 + 4.0 * m_cosiq + 6.0 * cosq2));
        const double f523 = m_siniq * (4.92187512 * sini2 * (-2.0 - 4.0 * m_cosiq + 10.0 * cosq2) +
                                       6.56250012 * (1.0 + 2.0 * m_cosiq - 3.0 * cosq2));
        const double f542 = 29.53125 * m_siniq * (2.0 - 8.0 * m_cosiq + cosq2 * (-12.0 + 8.0 * m_cosiq + 10.0 * cosq2));
        const double f543 = 29.53125 * m_siniq * (-2.0 - 8.0 * m_cosiq + cosq2 * (12.0 + 8.0 * m_cosiq - 10.0 * cosq2));

        double temp1 = 3.0 * m_xnq * m_xnq * aqnv * aqnv;
        double temp = temp1 * kRoot22;
        m_d2201 = temp * f220 * g201;
        m_d2211 = temp * f221 * g211;
        temp1 *= aqnv;
        temp = temp1 * kRoot32;
        m_d3210 = temp * f321 * g310;
        m_d3222 = temp * f322 * g322;
        temp1 *= aqnv;
        temp = 2.0 * temp1 * kRoot44;
        m_d4410 = temp * f441 * g410;
        m_d4422 = temp * f442 * g422;
        temp1 *= aqnv;
        temp = temp1 * kRoot52;
        m_d5220 = temp * f522 * g520;
        m_d5232 = temp * f523 * g532;
        temp = 2.0 * temp1 * kRoot54;
        m_d5421 = temp * f542 * g521;
        m_d5433 = temp * f543 * g533;
        m_xlamo = in.meanAnomalyRad + in.raanRad + in.raanRad - m_thgr - m_thgr;
        bfact = in.xmdot + in.xnodot + in.xnodot - kThdt - kThdt + m_ssl + m_ssh + m_ssh;
    }
    m_xfact = bfact - m_xnq;
    m_xli = m_xlamo;
    m_xni = m_xnq;
    m_atime = 0.0;
}

void CDeepSpace::ResonanceRates(double& xndot, double& xnddt, double& xldot) const
{
    if (m_resonance == Resonance::Synchronous) {
        xndot = m_del1 * std::sin(m_xli - kFasx2) + m_del2 * std::sin(2.0 * (m_xli - kFasx4)) +
                m_del3 * std::sin(3.0 * (m_xli - kFasx6));
        xnddt = m_del1 * std::cos(m_xli - kFasx2) + 2.0 * m_del2 * std::cos(2.0 * (m_xli - kFasx4)) +
                3.0 * m_del3 * std::cos(3.0 * (m_xli - kFasx6));
    } else {
        const double xomi = m_argPerigee0 + m_omgdot * m_atime;
        const double x2omi = xomi + xomi;
        const double x2li = m_xli + m_xli;
        xndot = m_d2201 * std::sin(x2omi + m_xli - kG22) + m_d2211 * std::sin(m_xli - kG22) +
                m_d3210 * std::sin(xomi + m_xli - kG32) + m_d3222 * std::sin(-xomi + m_xli - kG32) +
                m_d4410 * std::sin(x2omi + x2li - kG44) + m_d4422 * std::sin(x2li - kG44) +
                m_d5220 * std::sin(xomi + m_xli - kG52) + m_d5232 * std::sin(-xomi + m_xli - kG52) +
                m_d5421 * std::sin(xomi + x2li - kG54) + m_d5433 * std::sin(-xomi + x2li - kG54);
        xnddt = m_d2201 * std::cos(x2omi + m_xli - kG22) + m_d2211 * std::cos(m_xli - kG22) +
                m_d3210 * std::cos(xomi + m_xli - kG32) + m_d3222 * std::cos(-xomi + m_xli - kG32) +
                m_d5220 * std::cos(xomi + m_xli - kG52) + m_d5232 * std::cos(-xomi + m_xli - kG52) +
                2.0 * (m_d4410 * std::cos(x2omi + x2li - kG44) + m_d4422 * std::cos(x2li - kG44) +
                       m_d5421 * std::cos(xomi + x2li - kG54) + m_d5433 * std::cos(-xomi + x2li - kG54));
    }
    xldot = m_xni + m_xfact;
    xnddt *= xldot;
}

void CDeepSpace::Secular(double minutes, DeepSpaceMeanElements& el)
{
    const double t = minutes;
    el.meanAnomalyRad += m_ssl * t;
    el.argPerigeeRad += m_ssg * t;
    el.raanRad += m_ssh * t;
    el.eccentricity = m_eccentricity0 + m_sse * t;
    el.inclinationRad = m_inclination0 + m_ssi * t;
    if (el.inclinationRad < 0.0) {
        el.inclinationRad = -el.inclinationRad;
        el.raanRad += kPi;
        el.argPerigeeRad -= kPi;
    }
    if (m_resonance == Resonance::None) return;

    // The resonance equations are integrated from the epoch in steps of 720
    // minutes (second-order Taylor steps), the state being kept so that a
    // later time on the same side of the epoch continues from it. A time
    // nearer the epoch, or on the other side, restarts from the epoch: the
    // state reached is then the same as if it had been integrated afresh.
    if (m_atime == 0.0 || (t >= 0.0) != (m_atime >= 0.0) || std::fabs(t) < std::fabs(m_atime)) {
        m_atime = 0.0;
        m_xni = m_xnq;
        m_xli = m_xlamo;
    }
    const double delt = t >= 0.0 ? kStep : -kStep;
    double xndot = 0, xnddt = 0, xldot = 0;
    // |t - atime| shrinks by 720 each pass: the caller bounds |t|.
    while (std::fabs(t - m_atime) >= kStep) {
        ResonanceRates(xndot, xnddt, xldot);
        m_xli += xldot * delt + xndot * kStep2;
        m_xni += xndot * delt + xnddt * kStep2;
        m_atime += delt;
    }
    ResonanceRates(xndot, xnddt, xldot);
    const double ft = t - m_atime;
    el.meanMotion = m_xni + xndot * ft + xnddt * ft * ft * 0.5;
    const double xl = m_xli + xldot * ft + xndot * ft * ft * 0.5;
    const double temp = -el.raanRad + m_thgr + t * kThdt;
    if (m_resonance == Resonance::Synchronous)
        el.meanAnomalyRad = xl - el.argPerigeeRad + temp;
    else
        el.meanAnomalyRad = xl + temp + temp;
}

void CDeepSpace::Periodic(double minutes, DeepSpaceMeanElements& el) const
{
    const double t = minutes;
    const double sinis = std::sin(el.inclinationRad);
    const double cosis = std::cos(el.inclinationRad);

    // Solar terms, as functions of the Sun's true anomaly (to first order in
    // its eccentricity), then lunar terms likewise.
    double zm = m_zmos + kZns * t;
    double zf = zm + 2.0 * kZes * std::sin(zm);
    double sinzf = std::sin(zf);
    double f2 = 0.5 * sinzf * sinzf - 0.25;
    double f3 = -0.5 * sinzf * std::cos(zf);
    const double ses = m_se2 * f2 + m_se3 * f3;
    const double sis = m_si2 * f2 + m_si3 * f3;
    const double sls = m_sl2 * f2 + m_sl3 * f3 + m_sl4 * sinzf;
    const double sghs = m_sgh2 * f2 + m_sgh3 * f3 + m_sgh4 * sinzf;
    const double shs = m_sh2 * f2 + m_sh3 * f3;

    zm = m_zmol + kZnl * t;
    zf = zm + 2.0 * kZel * std::sin(zm);
    sinzf = std::sin(zf);
    f2 = 0.5 * sinzf * sinzf - 0.25;
    f3 = -0.5 * sinzf * std::cos(zf);
    const double sel = m_ee2 * f2 + m_e3 * f3;
    const double sil = m_xi2 * f2 + m_xi3 * f3;
    const double sll = m_xl2 * f2 + m_xl3 * f3 + m_xl4 * sinzf;
    const double sghl = m_xgh2 * f2 + m_xgh3 * f3 + m_xgh4 * sinzf;
    const double shl = m_xh2 * f2 + m_xh3 * f3;

    const double pe = ses + sel;
    const double pinc = sis + sil;
    const double pl = sls + sll;
    double pgh = sghs + sghl;
    double ph = shs + shl;

    el.inclinationRad += pinc;
    el.eccentricity += pe;

    if (m_inclination0 >= 0.2) {
        // Periodics applied to the elements directly.
        ph = ph / m_siniq;
        pgh -= m_cosiq * ph;
        el.argPerigeeRad += pgh;
        el.raanRad += ph;
        el.meanAnomalyRad += pl;
        return;
    }

    // Near-equatorial orbits: Lyddane's form, through the non-singular
    // variables sin i sin Ω, sin i cos Ω and the longitude M + ω + Ω cos i
    // (Lyddane, Astronomical Journal 68, 555, 1963).
    const double node = mod2pi(el.raanRad);
    const double sinok = std::sin(node);
    const double cosok = std::cos(node);
    double alfdp = sinis * sinok;
    double betdp = sinis * cosok;
    const double dalf = ph * cosok + pinc * cosis * sinok;
    const double dbet = -ph * sinok + pinc * cosis * cosok;
    alfdp += dalf;
    betdp += dbet;
    double xls = el.meanAnomalyRad + el.argPerigeeRad + cosis * node;
    const double dls = pl + pgh - pinc * node * sinis;
    xls += dls;
    double newNode = mod2pi(std::atan2(alfdp, betdp));
    // Keep the recovered node on the branch of the node that entered xls.
    if (std::fabs(node - newNode) > kPi) newNode += newNode < node ? kTwoPi : -kTwoPi;
    el.raanRad = newNode;
    el.meanAnomalyRad += pl;
    el.argPerigeeRad = xls - el.meanAnomalyRad - std::cos(el.inclinationRad) * newNode;
}

}  // namespace orv::sat::detail
