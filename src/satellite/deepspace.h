// The deep-space part of SDP4: lunar and solar secular and long-period
// perturbations and the geopotential resonance of 12-hour and 24-hour orbits
// (Spacetrack Report No. 3, section 10, subroutine DEEP with its entries
// DPINIT, DPSEC and DPPER; the theory is Hujsak, "A Restricted Four Body
// Solution for Resonating Satellites without Drag", Spacetrack Report No. 1,
// 1979).
//
// Internal to the propagator; all angles radians, times minutes since the
// element epoch, mean motions radians per minute.
#pragma once

namespace orv::sat::detail {

// What the deep-space initialisation needs from the SGP4 initialisation.
struct DeepSpaceInputs {
    double epochJd;        // UT
    double eccentricity;   // e0
    double inclinationRad; // i0
    double raanRad;        // Ω0
    double argPerigeeRad;  // ω0
    double meanAnomalyRad; // M0
    double eosq;           // e0²
    double sinio, cosio;   // of i0
    double betao;          // sqrt(1 − e0²)
    double aodp;           // recovered semi-major axis, Earth radii
    double theta2;         // cos² i0
    double sing, cosg;     // of ω0
    double betao2;         // 1 − e0²
    double xmdot;          // secular rates of M, ω, Ω from J2 and J4
    double omgdot;
    double xnodot;
    double xnodp;          // recovered (Brouwer) mean motion
};

// The mean elements that the deep-space entries update in place.
struct DeepSpaceMeanElements {
    double meanAnomalyRad;   // xll
    double argPerigeeRad;    // omgasm
    double raanRad;          // xnodes
    double eccentricity;     // em
    double inclinationRad;   // xinc
    double meanMotion;       // xn (rad/min)
};

class CDeepSpace {
public:
    void Initialise(const DeepSpaceInputs& in);

    // Secular lunar-solar rates and, for resonant orbits, the integration of
    // the resonance equations from the epoch to `minutes` (DPSEC). `elements`
    // enters with the SGP4 secular values of M, ω, Ω and the epoch values of
    // e, i and n.
    void Secular(double minutes, DeepSpaceMeanElements& elements);

    // Lunar-solar long-period periodic terms at `minutes` (DPPER), applied to
    // e, i, ω, Ω and M.
    void Periodic(double minutes, DeepSpaceMeanElements& elements) const;

private:
    void ResonanceRates(double& xndot, double& xnddt, double& xldot) const;

    // Epoch values kept for the entries.
    double m_eccentricity0 = 0, m_inclination0 = 0, m_argPerigee0 = 0;
    double m_siniq = 0, m_cosiq = 0, m_omgdot = 0;
    double m_thgr = 0;  // Greenwich sidereal angle at the epoch

    // Secular rates (per minute).
    double m_sse = 0, m_ssi = 0, m_ssl = 0, m_ssg = 0, m_ssh = 0;

    // Long-period coefficients: solar (s..) and lunar.
    double m_se2 = 0, m_se3 = 0, m_si2 = 0, m_si3 = 0, m_sl2 = 0, m_sl3 = 0, m_sl4 = 0;
    double m_sgh2 = 0, m_sgh3 = 0, m_sgh4 = 0, m_sh2 = 0, m_sh3 = 0;
    double m_ee2 = 0, m_e3 = 0, m_xi2 = 0, m_xi3 = 0, m_xl2 = 0, m_xl3 = 0, m_xl4 = 0;
    double m_xgh2 = 0, m_xgh3 = 0, m_xgh4 = 0, m_xh2 = 0, m_xh3 = 0;
    double m_zmos = 0, m_zmol = 0;  // mean anomalies of the Sun and the Moon at the epoch

    // Resonance.
    enum class Resonance { None, HalfDay, Synchronous };
    Resonance m_resonance = Resonance::None;
    double m_d2201 = 0, m_d2211 = 0, m_d3210 = 0, m_d3222 = 0, m_d4410 = 0, m_d4422 = 0;
    double m_d5220 = 0, m_d5232 = 0, m_d5421 = 0, m_d5433 = 0;
    double m_del1 = 0, m_del2 = 0, m_del3 = 0;
    double m_xlamo = 0, m_xfact = 0, m_xnq = 0;
    // Integrator state: λ and n at atime minutes from the epoch.
    double m_xli = 0, m_xni = 0, m_atime = 0;
};

}  // namespace orv::sat::detail
