// Shared by the phenomena tests: whether the planetary ephemeris is in the
// data folder (the searches need it), and instants given in UT.
#pragma once

#include <gtest/gtest.h>

#include "observer/observer.h"
#include "solarsystem/planets.h"
#include "util/datapath.h"

namespace orv::test {

inline constexpr double kMinute = 1.0 / 1440.0;

inline bool HaveEphemeris()
{
    CPlanets planets;
    CObserverDoc observer;
    double ra = 0.0, dec = 0.0;
    return planets.ApparentPosition(observer, kBodySun, 2451545.0, ra, dec, PlaceCentre::Geocentric) ==
           PositionStatus::Ok;
}

// The Julian date of a UT calendar date and time.
inline double JdUT(int y, int mo, int d, int h, int mi)
{
    return CObserverDoc::JulianDate(y, mo, d + (h + mi / 60.0) / 24.0);
}

}  // namespace orv::test

#define REQUIRE_EPHEMERIS()                                                                 \
    if (!::orv::test::HaveEphemeris())                                                      \
    GTEST_SKIP() << "no planetary ephemeris in the data folder (" << ::orv::GetDataPath()  \
                 << "); build it with tools/build-data.sh"
