#include <erfa.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "map/skyframes.h"
#include "observer/observer.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using orv::test::kArcsecFromRad;

namespace {
double Hms(int h, int m, double s) { return (h + m / 60.0 + s / 3600.0) * 15.0 * kRadPerDeg; }
double Dms(int d, int m, double s) { return (std::abs(d) + m / 60.0 + s / 3600.0) * (d < 0 ? -1.0 : 1.0) * kRadPerDeg; }
}  // namespace

// Meeus, Astronomical Algorithms (2nd ed.), Example 13.b: Venus seen from the
// US Naval Observatory (φ = +38°55′17″, λ = 77°03′56″ W) on 1987 April 10 at
// 19h21m00s UT, apparent α = 23h09m16.641s, δ = −6°43′11.61″: azimuth
// 68.0337° reckoned from the south, i.e. 248.0337° from the north, altitude
// 15.1249° (no refraction). Meeus's sidereal time follows the 1982
// expression; the IAU 2006 value differs by milliseconds of time, well
// inside the 2″ allowed here.
TEST(SkyFrames, EquatorialToHorizontalMeeusExample13b)
{
    CObserverDoc obs;
    obs.SetSite("USNO", Dms(38, 55, 17), -Dms(77, 3, 56), 0.0);
    obs.SetUniversalTime(CivilDateTime{1987, 4, 10, 19, 21, 0.0});
    double alt = 0.0, az = 0.0;
    EquatorialToHorizontal(obs, Hms(23, 9, 16.641), Dms(-6, 43, 11.61), alt, az, Refraction::Ignore);
    EXPECT_ANGLE_NEAR(248.0337 * kRadPerDeg, az, 2.0 * kRadPerArcsec, kArcsecFromRad);
    EXPECT_NEAR_UNIT(15.1249 * kRadPerDeg, alt, 2.0 * kRadPerArcsec, kArcsecFromRad);

    double ra = 0.0, dec = 0.0;
    HorizontalToEquatorial(obs, alt, az, ra, dec, Refraction::Ignore);
    EXPECT_ANGLE_NEAR(Hms(23, 9, 16.641), ra, 1e-9, kArcsecFromRad);
    EXPECT_NEAR_UNIT(Dms(-6, 43, 11.61), dec, 1e-9, kArcsecFromRad);
}

// Meeus Example 23.a: θ Persei, J2000 α = 2h44m11.986s, δ = +49°13′42.48″,
// proper motion +0.03425 s and −0.0895″ a year, at 2028 November 13.19 TD
// (JDE 2462088.69): apparent α = 2h46m14.390s, δ = +49°21′07.45″. Meeus uses
// the IAU 1976/1980 models on FK5; IAU 2006/2000A on ICRS differ by a few
// hundredths of an arc second, hence 0.1″.
TEST(SkyFrames, CatalogueToApparentMeeusExample23a)
{
    CObserverDoc obs;
    const double jdTT = 2462088.69;
    const double years = (jdTT - 2451545.0) / 365.25;
    double ra = Hms(2, 44, 11.986) + years * 0.03425 * 15.0 * kRadPerArcsec;
    double dec = Dms(49, 13, 42.48) - years * 0.0895 * kRadPerArcsec;
    CatalogueToDateAt(obs, ra, dec, jdTT);
    EXPECT_NEAR_UNIT(0.0, AngularDistance(Hms(2, 46, 14.390), Dms(49, 21, 7.45), ra, dec), 0.1 * kRadPerArcsec,
                     kArcsecFromRad);
}

// The relativistic aberration step against ERFA's eraAb (with the Sun far
// away, so that eraAb's light-deflection term vanishes).
TEST(SkyFrames, AberrationMatchesErfa)
{
    const CErfaEarthVelocity source;
    const EarthVelocity v = source.AtTT(2460000.5);
    const double speed = std::sqrt(v.betaJ2000[0] * v.betaJ2000[0] + v.betaJ2000[1] * v.betaJ2000[1] +
                                   v.betaJ2000[2] * v.betaJ2000[2]);
    EXPECT_NEAR(speed * 299792.458, 29.8, 0.6);  // km/s: the Earth's orbital speed
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (int i = 0; i < 100; ++i) {
        double p[3] = {u(rng), u(rng), u(rng)};
        const double n = std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]);
        for (double& c : p) c /= n;
        double ours[3] = {p[0], p[1], p[2]};
        ApplyAberration(ours, v);
        double theirs[3];
        double beta[3] = {v.betaJ2000[0], v.betaJ2000[1], v.betaJ2000[2]};
        eraAb(p, beta, 1e30, std::sqrt(1.0 - speed * speed), theirs);
        double lo = 0.0, la = 0.0, to = 0.0, ta = 0.0;
        VectorToSpherical(ours, lo, la);
        VectorToSpherical(theirs, to, ta);
        EXPECT_NEAR_UNIT(0.0, AngularDistance(lo, la, to, ta), 1e-6 * kRadPerArcsec, kArcsecFromRad);
    }
}

TEST(SkyFrames, DateToCatalogueInvertsCatalogueToDate)
{
    CObserverDoc obs;
    obs.SetJulianDate(2470000.0);  // 2050
    std::mt19937 rng(11);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    for (int i = 0; i < 100; ++i) {
        const double ra0 = kTwoPi * u(rng), dec0 = std::asin(2.0 * u(rng) - 1.0);
        double ra = ra0, dec = dec0;
        CatalogueToDate(obs, ra, dec, Place::Apparent);
        DateToCatalogue(obs, ra, dec);
        EXPECT_NEAR_UNIT(0.0, AngularDistance(ra0, dec0, ra, dec), 1e-11, kArcsecFromRad);
    }
}

TEST(SkyFrames, PrecessionOnlyRoundTrips)
{
    CObserverDoc obs;
    obs.SetJulianDate(2305447.5);  // 1600
    double ra = 1.0, dec = 0.3;
    PrecessOnly(obs, ra, dec, -1);
    EXPECT_GT(AngularDistance(1.0, 0.3, ra, dec), 5.0 * kRadPerDeg * 0.9);  // ~5.6° over four centuries
    PrecessOnly(obs, ra, dec, +1);
    EXPECT_NEAR_UNIT(0.0, AngularDistance(1.0, 0.3, ra, dec), 1e-12, kArcsecFromRad);
}

// The chart's refraction rule near the horizon: refraction is added only
// when it leaves the object at or above the horizon.
TEST(SkyFrames, RefractionRuleBelowTheHorizon)
{
    CObserverDoc obs;
    obs.SetSite("Test", 0.8, 0.2, 0.0);
    obs.SetJulianDate(2460000.3);
    for (const double trueAlt : {-0.05, -0.005, 0.1}) {
        double ra = 0.0, dec = 0.0;
        HorizontalToEquatorial(obs, trueAlt, 1.0, ra, dec, Refraction::Ignore);
        double alt = 0.0, az = 0.0;
        EquatorialToHorizontal(obs, ra, dec, alt, az, Refraction::Apply);
        const double lifted = trueAlt + obs.Refraction(trueAlt);
        if (lifted >= 0.0)
            EXPECT_NEAR(alt, lifted, 1e-12) << trueAlt;
        else
            EXPECT_NEAR(alt, trueAlt, 1e-12) << trueAlt;
    }
    // Refraction at −0.05 rad (−2.9°) does not bring the object up; at
    // −0.005 rad (−0.29°) it does (about 38′ of refraction there).
    EXPECT_LT(-0.05 + obs.Refraction(-0.05), 0.0);
    EXPECT_GT(-0.005 + obs.Refraction(-0.005), 0.002);
    // Far below the horizon nothing is refracted.
    double alt = 0.0, az = 0.0;
    double ra = 0.0, dec = 0.0;
    HorizontalToEquatorial(obs, -0.3, 2.0, ra, dec, Refraction::Ignore);
    EquatorialToHorizontal(obs, ra, dec, alt, az);
    EXPECT_NEAR(alt, -0.3, 1e-12);
}
