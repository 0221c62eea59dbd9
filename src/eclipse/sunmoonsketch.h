// A quick Sun and Moon for the eclipse computations, tied to the exact ones.
//
// The exact places (SunMoonAt: the whole VSOP87D Earth and the ELP/MPP02
// block) cost tens of microseconds an instant; an eclipse needs its geometry
// at many instants a few hours apart. The sketch evaluates only the largest
// terms of the same lunar block (those above about one arcsecond) and the
// Sun's equation of the centre (Meeus, Astronomical Algorithms 2nd ed.,
// ch. 25): a twentieth of the cost, with errors of tens of arcseconds.
//
// Those errors come from the terms left out, whose periods are days to
// years: over a few hours the difference exact − sketch (taken in ecliptic
// longitude, latitude and distance) drifts by some 0.3″ an hour and bends
// slowly. `CAnchoredSunMoon` evaluates the exact places at one to three
// anchor instants and adds the difference, interpolated between them
// (constant, linear or quadratic in time), to the sketch at any instant
// near them. One anchor serves within a few minutes of it (0.02″ at five
// minutes); three anchors four hours apart agree with the exact places to
// 0.02″ over the whole span (measured over −1999 … +3000; see the eclipse
// tests), which is 40 m on the Earth and the level at which the exact
// places themselves hold their nutation fixed for a few hours.
#pragma once

#include <array>

#include "eclipse/eclipsegeometry.h"

namespace orv {

// The sketch alone: geocentric apparent places of date. `dPsiRad` and
// `trueObliquityRad` are the nutation in longitude and the true obliquity,
// taken once for the instants of one eclipse.
SunMoonPlaces SunMoonSketch(double jdTT, double dPsiRad, double trueObliquityRad);

class CAnchoredSunMoon {
public:
    // Exact evaluations at the given instants (1 to 3, a few hours apart at
    // most). False when the ephemeris is unavailable.
    bool Anchor(const double* jdTT, int count);
    bool Anchor(double jdTT) { return Anchor(&jdTT, 1); }
    // One anchor from SunMoonAtQuickSun instead (the Sun from the larger
    // VSOP87D terms only: within 0.36″ of the exact places).
    bool AnchorQuickSun(double jdTT);
    // One anchor (exact, or with the quick Sun), and the places at
    // jdTT + (−1.0) stepDays and jdTT + 1.0 stepDays made at the same time
    // and returned by At for exactly those instants: the sketch's terms
    // are summed once for the three (a sine and cosine each at the anchor,
    // the angle-addition formulae for the small steps), which costs about
    // half of summing them three times. stepDays up to an hour.
    bool AnchorWithNeighbours(double jdTT, double stepDays, SunSeries sun);
    // No anchor: At gives the sketch itself (errors of tens of arcseconds),
    // for screening only. The nutation is taken at jdTT.
    void SketchOnly(double jdTT);
    // The anchored places at jdTT (meant for instants within the anchors'
    // span or a little beyond).
    SunMoonPlaces At(double jdTT) const;
    // The nutation in longitude and the true obliquity the places use.
    double NutationInLongitudeRad() const { return m_dPsi; }
    double TrueObliquityRad() const { return m_eps; }
    // The exact places of anchor i.
    const SunMoonPlaces& Exact(int i) const { return m_exact[static_cast<std::size_t>(i)]; }

private:
    bool AnchorWith(const double* jdTT, int count, SunSeries sun, double stepDays);

    int m_count = 0;
    std::array<double, 3> m_jd{};
    std::array<SunMoonPlaces, 3> m_exact{};
    // exact − sketch at each anchor, ecliptic of date: Sun longitude,
    // latitude, distance, then the Moon's.
    std::array<std::array<double, 6>, 3> m_diff{};
    double m_dPsi = 0.0, m_eps = 0.0;
    bool m_haveNeighbours = false;
    std::array<double, 2> m_neighbourJd{};
    std::array<SunMoonPlaces, 2> m_neighbours{};
};

}  // namespace orv
