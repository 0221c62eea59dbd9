// NaN, infinities, huge and negative numbers in element sets, propagation
// times and pass searches: SGP4/SDP4 must refuse them with a status (never
// a position made of NaN), and a pass search over a hostile instant or
// length must end.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "observer/observer.h"
#include "satellite/elements.h"
#include "satellite/passes.h"
#include "satellite/propagator.h"
#include "satellite/satsettings.h"
#include "util/settingsstore.h"

using namespace orv;
using namespace orv::sat;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
const std::vector<double> kHostile{kNaN, kInf, -kInf, 1e308, -1e308, 1e18, -1e18, -1.0, 0.0, 1e-300};

// The International Space Station on 2019 June 5 (a real element set).
SatelliteRecord Iss()
{
    return ParseElementSet("ISS (ZARYA)", "1 25544U 98067A   19156.50900463  .00003075  00000-0  59442-4 0  9992",
                           "2 25544  51.6433  59.2583 0008217  16.4489 347.6017 15.51174618173442");
}

bool Finite(const TemeStateKm& s)
{
    for (int k = 0; k < 3; ++k)
        if (!std::isfinite(s.positionKm[static_cast<std::size_t>(k)]) ||
            !std::isfinite(s.velocityKmPerS[static_cast<std::size_t>(k)]))
            return false;
    return true;
}

}  // namespace

TEST(HostileSatellites, PropagationTimes)
{
    CSatellitePropagator p(Iss());
    for (const double t : kHostile) {
        TemeStateEarthRadii er{};
        const PropagationStatus s = p.Propagate(t, er);
        if (!std::isfinite(t)) { EXPECT_EQ(s, PropagationStatus::NonFiniteTime) << t; }
        if (std::isfinite(t) && std::abs(t) > 1e8) { EXPECT_EQ(s, PropagationStatus::TimeOutOfRange) << t; }
        TemeStateKm km{};
        if (p.PropagateToJd(t, km) == PropagationStatus::Ok) { EXPECT_TRUE(Finite(km)) << t; }
    }
}

TEST(HostileSatellites, ElementsOfEveryField)
{
    // Each element hostile in turn, for a near-Earth and a deep-space orbit.
    for (const double period : {92.7, 1436.0}) {
        SatelliteRecord base = Iss();
        base.meanMotionRadPerMin = 2.0 * 3.141592653589793 / period;
        for (double SatelliteRecord::*field :
             {&SatelliteRecord::epochJd, &SatelliteRecord::bstarPerEarthRadius, &SatelliteRecord::inclinationRad,
              &SatelliteRecord::raanRad, &SatelliteRecord::argumentOfPerigeeRad, &SatelliteRecord::meanAnomalyRad,
              &SatelliteRecord::eccentricity, &SatelliteRecord::meanMotionRadPerMin}) {
            for (const double x : kHostile) {
                SatelliteRecord r = base;
                r.*field = x;
                r.periodMinutes = OrbitalPeriodMinutes(r.meanMotionRadPerMin, r.eccentricity, r.inclinationRad);
                EXPECT_TRUE(std::isfinite(r.periodMinutes) && r.periodMinutes >= 0.0);
                CSatellitePropagator p(r);
                for (const double t : {0.0, 1440.0, -1440.0, 525960.0}) {
                    TemeStateEarthRadii er{};
                    TemeStateKm km{};
                    const PropagationStatus s = p.Propagate(t, er);
                    if (!std::isfinite(x) && field != &SatelliteRecord::epochJd) {
                        EXPECT_NE(s, PropagationStatus::Ok) << "a field of " << x << " was propagated";
                    }
                    if (p.PropagateToJd(r.epochJd + t / 1440.0, km) == PropagationStatus::Ok) {
                        EXPECT_TRUE(Finite(km)) << x << " at " << t;
                    }
                }
            }
        }
    }
}

TEST(HostileSatellites, PassSearchesEnd)
{
    CObserverDoc observer;
    observer.SetJulianDate(2458640.0);
    const SatelliteSite site = SiteOfObserver(observer);
    CEarthSatSettings settings;
    settings.passDurationDays = 1;
    for (const double start : {kNaN, kInf, -kInf, 1e308, -1e308, -1.0}) {
        const PassSearchResult one = SearchSatellitePasses(Iss(), 0, site, start, settings, {});
        EXPECT_TRUE(one.passes.empty()) << start;
        const PassSearchResult all = SearchAllSatellitePasses({Iss()}, observer, start, settings, {});
        EXPECT_TRUE(all.passes.empty()) << start;
        FindNightWindow(observer, start);
    }
    // A search length no one asks for, from a damaged settings file, is
    // not taken: a million days would be 1.4 billion steps.
    for (const int days : {-5, 0, 1000000, 2147483647}) {
        CMemorySettingsStore store;
        store.SetInt("EarthSat", "PassDuration", days);
        CEarthSatSettings loaded;
        loaded.Load(store);
        EXPECT_TRUE(loaded.passDurationDays >= 1 && loaded.passDurationDays <= 365) << days;
    }
}
