// The geometry of eclipses: the geocentric Sun and Moon for an instant, the
// Besselian elements of a solar eclipse (the Moon's shadow on the
// fundamental plane) and the Moon's place in the Earth's shadow.
//
// Time: Julian dates in dynamical time (TT) unless named UT. Lengths on the
// fundamental plane are in Earth equatorial radii; angles in radians unless
// the name says degrees.
//
// References: Explanatory Supplement to the Astronomical Almanac (1992),
// ch. 8 (Besselian elements, local circumstances); Meeus, Elements of Solar
// Eclipses 1951–2200 (1989); Espenak & Meeus, Five Millennium Canon of Solar
// Eclipses (NASA TP-2006-214141) and of Lunar Eclipses (NASA TP-2009-214172)
// for the constants below.
#pragma once

#include <array>

namespace orv {

// Earth's equatorial radius (WGS 84), km, the unit of the fundamental plane.
inline constexpr double kEclipseEarthRadiusKm = 6378.137;
// Earth's flattening (WGS 84) for the site and the central-line test.
inline constexpr double kEclipseEarthFlattening = 1.0 / 298.257223563;
// The Moon's radius in Earth radii: k1 for the penumbra (first and last
// contacts, mean radius of the limb profile's peaks) and k2 for the umbra
// (second and third contacts, radius to the valleys), as in the NASA canons.
inline constexpr double kLunarRadiusPenumbraK1 = 0.2724880;
inline constexpr double kLunarRadiusUmbraK2 = 0.2722810;
// The Moon's radius for lunar eclipses (Espenak & Meeus 2009).
inline constexpr double kLunarRadiusLunarEclipseK = 0.2725076;
// The Sun's semidiameter at 1 AU, arcseconds (Auwers' 959.63″, the canons' value).
inline constexpr double kSolarSemidiameterAt1AUArcsec = 959.63;
// The Earth's shadow is enlarged for its atmosphere by Danjon's rule (1951):
// the Earth's radius grows by 1/85 and is reduced for the flattening by
// 1/594, so that the Moon's parallax enters both shadow radii multiplied by
// 1.01 (Espenak & Meeus, Five Millennium Canon of Lunar Eclipses; the
// Connaissance des Temps since 1951). Chauvenet's older 1/50 enlargement of
// both radii gives umbral magnitudes about 0.005 and penumbral ones about
// 0.026 larger, and some 90 more penumbral eclipses in five millennia.
inline constexpr double kShadowParallaxFactorDanjon = 1.01;

// The Moon's longitude is corrected by +(c1 T + c2 T² + c3 T³ + c4 T⁴)″, T
// in Julian centuries from J2000: a fit to the instants of greatest eclipse
// of the Five Millennium Canon of Solar Eclipses over −1924 … +2414 (its
// lunar ephemeris is ELP-2000/82 with the secular acceleration −25.858″/cy²;
// ours, the truncated ELP/MPP02 block, drifts from it by 2 minutes of time at
// −1900). After the correction the two agree to 15 s over the whole span and
// to 6 s after −1000; without it, to 30 s only back to −100.
inline constexpr double kMoonCanonFitArcsec[4] = {0.31704, -0.019097, -0.00095136, -3.5138e-5};

// Geocentric apparent places of date (true equator and equinox) of the Sun
// and the Moon at one instant.
struct SunMoonPlaces {
    double sunRaRad = 0.0, sunDecRad = 0.0, sunDistanceKm = 0.0;
    double moonRaRad = 0.0, moonDecRad = 0.0, moonDistanceKm = 0.0;
};

// The Sun from the VSOP87D Earth (the shared series of the data folder) with
// the annual aberration −20.4898″/R (Meeus 25.10), the Moon from the built-in
// ELP/MPP02 block at the instant less its light time; both referred to the
// true equator and equinox of date with the IAU 2000B nutation and the IAU
// 2006 obliquity (ERFA). False when the VSOP87 series is not available or
// jdTT is not finite.
bool SunMoonAt(double jdTT, SunMoonPlaces& out);

// The same places with the Sun from the larger terms of the VSOP87D Earth
// only (CVsop87Subset: 325 of its 2,425 terms, those that can reach
// 1e-7 rad anywhere in −2000 … +3000), a ninth of the Sun's cost. The Sun
// then differs from SunMoonAt's by at most 0.36″ in longitude and 0.18″ in
// latitude over −2000 … +3000 (0.05″ since 1000). Meant for the five
// millennia of eclipse tables, where every eclipse whose instant, magnitude
// or type comes out near a rounding or decision edge is computed again
// with the exact places (eclipsefinder.cpp).
bool SunMoonAtQuickSun(double jdTT, SunMoonPlaces& out);

// How much of the VSOP87D Earth the Sun is taken from: Full, the whole
// series (SunMoonAt); Larger, the 903 terms that can reach 1e-8 rad in
// −2000 … +3000 (within 0.06″ of the series in longitude, 0.04″ in
// latitude, at 40% of the cost); Largest, the 325 of SunMoonAtQuickSun.
enum class SunSeries { Full, Larger, Largest };
bool SunMoonAtSeries(double jdTT, SunMoonPlaces& out, SunSeries series);

// The nutation in longitude and the true obliquity SunMoonAt used at its
// last evaluation on this thread, and the instant they were taken at (the
// places of one eclipse share them: they change by under 0.01″ in a
// quarter of a day). NaN instant before the first evaluation.
struct SunMoonNutation {
    double jdTT;
    double dPsiRad;
    double trueObliquityRad;
};
SunMoonNutation LastSunMoonNutation();

// Besselian elements at one instant (Explanatory Supplement §8.3): the
// Moon's centre on the fundamental plane (x, y, z), the shadow axis's
// direction (a, d), the half-angles of the penumbral and umbral cones
// (f1, f2) and their radii on the fundamental plane (l1, l2; l2 < 0 where
// the umbra's vertex lies beyond the plane, i.e. total eclipse), and μ, the
// Greenwich hour angle of the axis.
struct BesselianInstant {
    double x = 0.0, y = 0.0, z = 0.0;  // Earth radii
    double aRad = 0.0, dRad = 0.0;
    double tanF1 = 0.0, tanF2 = 0.0;
    double l1 = 0.0, l2 = 0.0;  // Earth radii
    double muRad = 0.0;         // [0, 2π)
};
BesselianInstant BesselianFromPlaces(const SunMoonPlaces& places, double gastRad);

// Cubic polynomial elements about t0 (an integer hour of TT nearest greatest
// eclipse), each element a0 + a1 t + a2 t² + a3 t³ with t in hours from t0,
// as the canons publish them (d and μ in degrees, μ′ in degrees per hour).
// μ is the ephemeris hour angle (sidereal time at the TT instant): the
// hour angle at a site east of Greenwich is μ + λ − 0.00417807° ΔT/s.
// Fitted by least squares to nine exact evaluations over t0 ± 4 h; the fit's
// error there is below 1e-6 Earth radii.
struct BesselianElements {
    double t0JdTT = 0.0;
    double deltaTSeconds = 0.0;
    std::array<double, 4> x{}, y{}, dDeg{}, l1{}, l2{}, muDeg{};
    double tanF1 = 0.0, tanF2 = 0.0;

    double X(double tHours) const { return Poly(x, tHours); }
    double Y(double tHours) const { return Poly(y, tHours); }
    double DDeg(double tHours) const { return Poly(dDeg, tHours); }
    double L1(double tHours) const { return Poly(l1, tHours); }
    double L2(double tHours) const { return Poly(l2, tHours); }
    double MuDeg(double tHours) const { return Poly(muDeg, tHours); }
    static double Poly(const std::array<double, 4>& c, double t) { return c[0] + t * (c[1] + t * (c[2] + t * c[3])); }
};
// How the Sun and Moon are evaluated: Exact, the full series at three
// instants (t0 − 4 h, t0, t0 + 4 h) tying the quick sketch of
// sunmoonsketch.h at the others (agreement to 0.02″); Sketch, the
// quick sketch alone (tens of arcseconds: some 0.02 Earth radii on the
// fundamental plane), for screening which eclipses a site can see.
enum class EphemerisGrade { Exact, Sketch };
// Elements about the integer hour nearest jdTT. False when the ephemeris is
// unavailable.
bool ComputeBesselianElements(double jdTT, BesselianElements& out, EphemerisGrade grade = EphemerisGrade::Exact);

// The Moon in the Earth's shadow at one instant, as angles seen from the
// Earth's centre: the Moon's offset from the shadow's centre (the antisolar
// point) in a plane tangent to the sky there, east (x) and north (y), the
// Moon's semidiameter, and the penumbral and umbral radii enlarged by
// Danjon's rule: Rp = 1.01 πm + πs + ss, Ru = 1.01 πm + πs − ss.
struct LunarShadowInstant {
    double xRad = 0.0, yRad = 0.0;
    double moonSemidiameterRad = 0.0;
    double penumbraRadiusRad = 0.0;
    double umbraRadiusRad = 0.0;
    double moonRaRad = 0.0, moonDecRad = 0.0, moonDistanceKm = 0.0;
};
LunarShadowInstant LunarShadowFromPlaces(const SunMoonPlaces& places);

// The least-distance instant and value of a motion given at three instants
// t = −h, 0, +h by quadratic fits of x(t) and y(t): the t in [−4h, 4h] that
// minimises x² + y² of the fitted curves (Newton's iteration from 0; the
// fitted motion is nearly uniform, so it converges in a few steps).
struct LeastDistance {
    double t = 0.0;
    double x = 0.0, y = 0.0;
};
LeastDistance LeastDistanceQuadratic(const std::array<double, 3>& x, const std::array<double, 3>& y, double h);

}  // namespace orv
