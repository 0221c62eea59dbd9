// NaN, infinities, huge and negative numbers given to the planets and the
// two-body orbits: Kepler's equation (elliptic, hyperbolic, Barker), conic
// places, orbits from elements, heliocentric and apparent places, the Moon,
// magnitudes. Each refuses (nothing, InvalidInput, NaN) or answers with
// finite numbers, and returns: the test finishing shows no solver loops.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "observer/observer.h"
#include "solarsystem/orbits.h"
#include "solarsystem/planets.h"
#include "solarsystem/vsop87.h"
#include "util/datapath.h"

using namespace orv;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
const std::vector<double> kHostile{kNaN, kInf, -kInf, 1e308, -1e308, 1e18, -1e18, -1.0, 0.0, 1e-300};

}  // namespace

TEST(HostilePlanets, KeplersEquation)
{
    for (const double m : kHostile) {
        for (const double e : {0.0, 0.5, 0.999999, 1.0, 1.5, 100.0, 1e10, -0.1, kNaN, kInf}) {
            const auto elliptic = SolveKeplerElliptic(m, e);
            if (!std::isfinite(m) || !(e >= 0.0 && e < 1.0)) { EXPECT_FALSE(elliptic) << m << ' ' << e; }
            if (elliptic) {
                EXPECT_TRUE(std::isfinite(*elliptic));
                // A huge M keeps its revolution, so E − M stays within ±e.
                EXPECT_LE(std::abs(*elliptic - m), e + 1e-9 * std::max(1.0, std::abs(m))) << m << ' ' << e;
            }
            const auto hyperbolic = SolveKeplerHyperbolic(m, e);
            if (!std::isfinite(m) || !(e > 1.0)) { EXPECT_FALSE(hyperbolic) << m << ' ' << e; }
            if (hyperbolic) { EXPECT_TRUE(std::isfinite(*hyperbolic)) << m << ' ' << e; }
        }
        const double s = SolveBarker(m);
        EXPECT_EQ(std::isfinite(m), !std::isnan(s)) << m;
    }
}

TEST(HostilePlanets, ConicPlacesAndOrbits)
{
    for (const double x : kHostile) {
        for (const double e : {0.0, 0.5, 1.0, 1.5, -1.0, kNaN, kInf}) {
            const auto place = ConicPlaceAt(x, e, 10.0);
            if (place) { EXPECT_TRUE(std::isfinite(place->trueAnomalyRad)) << x << ' ' << e; }
            const auto late = ConicPlaceAt(1.0, e, x);
            if (late) { EXPECT_TRUE(std::isfinite(late->trueAnomalyRad)) << x << ' ' << e; }
            if (!std::isfinite(x)) { EXPECT_FALSE(late) << "days from perihelion " << x; }
        }
        // Every element hostile in turn.
        const double good[6] = {1.0, 0.5, 2451545.0, 10.0, 20.0, 30.0};
        for (int k = 0; k < 6; ++k) {
            double v[6];
            std::copy(good, good + 6, v);
            v[k] = x;
            const auto comet = OrbitFromPerihelion(v[0], v[1], v[2], v[3], v[4], v[5]);
            const auto asteroid = OrbitFromMeanAnomaly(v[3], v[2], v[0] * 2.0, v[1], v[4], v[5], v[3]);
            if (!std::isfinite(x)) { EXPECT_FALSE(comet || asteroid) << "element " << k << " = " << x; }
            for (const auto& orbit : {comet, asteroid}) {
                if (!orbit) continue;
                for (const double jd : {2451545.0, x}) {
                    Vector3 p{};
                    if (HeliocentricJ2000(*orbit, jd, p)) {
                        EXPECT_TRUE(std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z))
                            << "element " << k << " = " << x << " at " << jd;
                    }
                }
            }
        }
        // Magnitudes of impossible distances are not finite numbers that
        // could pass for a real one, or are finite: never a hang.
        AsteroidMagnitudeHG(x, 0.15, x, x, x);
        CometMagnitudeGK(x, 4.0, x, x);
        MagnitudeCenti(x);
    }
}

TEST(HostilePlanets, PlacesOfPlanetsAndMoon)
{
    if (!SharedVsop87D().IsOpen()) GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath() << ")";
    CPlanets planets;
    CObserverDoc observer;
    observer.SetJulianDate(2451545.0);
    for (const double jd : kHostile) {
        for (int body = -1; body <= 10; ++body) {
            double ra = 0.0, dec = 0.0;
            const PositionStatus s = planets.ApparentPosition(observer, body, jd, ra, dec, PlaceCentre::Topocentric);
            if (!std::isfinite(jd)) { EXPECT_NE(s, PositionStatus::Ok) << "body " << body << " at " << jd; }
            if (s == PositionStatus::Ok) { EXPECT_TRUE(std::isfinite(ra) && std::isfinite(dec)) << body << ' ' << jd; }
            Vector3 j2000{};
            if (planets.HeliocentricPosition(observer, body, jd, nullptr, &j2000) == PositionStatus::Ok) {
                EXPECT_TRUE(std::isfinite(j2000.x)) << body << ' ' << jd;
            }
        }
        double ra = 0.0, dec = 0.0, km = 0.0;
        const PositionStatus moon = planets.MoonPosition(observer, jd, ra, dec, km, PlaceCentre::Geocentric);
        if (!std::isfinite(jd)) { EXPECT_NE(moon, PositionStatus::Ok) << jd; }
        if (moon == PositionStatus::Ok) { EXPECT_TRUE(std::isfinite(ra) && std::isfinite(dec) && km > 0.0) << jd; }
        planets.EarthVelocity(observer, jd);
    }
    planets.SetGreatRedSpotLongitudeDeg(kNaN);
    EXPECT_TRUE(std::isfinite(planets.GreatRedSpotLongitudeDeg()));
}
