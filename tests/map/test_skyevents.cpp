// Rise and set of a fixed star over the observer's own horizon, as the
// identify read-outs give them when the horizon is used for events.
//
// The expected delay behind a wall is computed independently from the
// star's hour angle at the two altitudes (Meeus, Astronomical Algorithms,
// eq. 15.1: cos H0 = (sin h0 − sin φ sin δ)/(cos φ cos δ)); the hour angle
// turns at 1.00273790935 times the solar rate. At the wall's top the star's
// apparent altitude is 20°, its true altitude 20° less the refraction there
// (Bennett's formula, Meeus eq. 16.3: 2.70′); on the open horizon its true
// altitude is the standard −0°34′.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

#include "map/skyevents.h"
#include "observer/observer.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using orv::test::kSecondsFromDays;

namespace {

// Betelgeuse, J2000 (Hipparcos): α 5h55m10.31s, δ +7°24′25.4″.
constexpr double kRaRad = (5.0 + 55.0 / 60 + 10.31 / 3600) * 15.0 * kRadPerDeg;
constexpr double kDecRad = (7.0 + 24.0 / 60 + 25.4 / 3600) * kRadPerDeg;
constexpr double kLatitudeRad = 50.0 * kRadPerDeg;

// A wall 20° high from azimuth 45° to 135° (the east), open elsewhere.
std::shared_ptr<const HorizonProfile> EastWall()
{
    auto p = std::make_shared<HorizonProfile>();
    for (int az = 45; az <= 135; ++az) (*p)[static_cast<std::size_t>(az)] = 20;
    return p;
}

double HourAngleAtAltitude(double altitudeRad)
{
    return std::acos((std::sin(altitudeRad) - std::sin(kLatitudeRad) * std::sin(kDecRad)) /
                     (std::cos(kLatitudeRad) * std::cos(kDecRad)));
}

CObserverDoc Site()
{
    CObserverDoc doc;
    doc.SetSite("", kLatitudeRad, 0.0, 0.0);
    doc.SetTimeZone(0.0, false);
    doc.SetJulianDate(2460324.5);  // 2024 January 15, 0h UT
    return doc;
}

}  // namespace

TEST(SkyEvents, AWallInTheEastDelaysTheRisingByTheHourAngleItHides)
{
    const CObserverDoc site = Site();
    const double day = LocalDayStartJdUT(site, site.JulianDate());
    const RiseTransitSet open = FixedObjectRiseTransitSet(site, kRaRad, kDecRad, day);
    const RiseTransitSet walled = FixedObjectRiseTransitSet(site, kRaRad, kDecRad, day, LocalHorizonOf(EastWall()));
    ASSERT_TRUE(open.riseJdUT && open.setJdUT && walled.riseJdUT && walled.setJdUT);

    const double bennettRad = 1.0 / std::tan((20.0 + 7.31 / (20.0 + 4.4)) * kRadPerDeg) / 60.0 * kRadPerDeg;
    const double hOpen = HourAngleAtAltitude(-0.5667 * kRadPerDeg);
    const double hWall = HourAngleAtAltitude(20.0 * kRadPerDeg - bennettRad);
    const double expectedDelayDays = (hOpen - hWall) / (kTwoPi * 1.00273790935);
    // About 2 h 07 min. Tolerance 6 s: the search stops at 1 s; the
    // refraction model differs from Bennett's by under 6″ at 20° and the
    // standard altitude from the model at the horizon by under 40″, which at
    // the star's climb of some 8″ a second make under 6 s.
    EXPECT_GT(expectedDelayDays, 2.0 / 24.0);
    EXPECT_NEAR_UNIT(expectedDelayDays, *walled.riseJdUT - *open.riseJdUT, 6.0 / 86400.0, kSecondsFromDays);
    // It sets in the open west: unchanged.
    EXPECT_NEAR_UNIT(*open.setJdUT, *walled.setJdUT, 1.0 / 86400.0, kSecondsFromDays);
    // On the open horizon the rising comes the hour angle hOpen before the
    // transit. Tolerance 10 s: the place of date (precession since J2000,
    // nutation, about 15″ in declination) moves hOpen by a few seconds.
    ASSERT_TRUE(open.transitJdUT);
    EXPECT_NEAR_UNIT(hOpen / (kTwoPi * 1.00273790935), *open.transitJdUT - *open.riseJdUT, 10.0 / 86400.0,
                     kSecondsFromDays);
}

TEST(SkyEvents, TheReadOutSaysWhichHorizonItUsed)
{
    DescribeRequest request;
    request.jdUT = 2460324.5;
    request.jdTT = request.jdUT + 69.2 / 86400.0;
    request.hasSite = true;
    request.latitudeRad = kLatitudeRad;
    const std::string plain = FixedObjectEventsText(request, kRaRad, kDecRad);
    request.horizon = EastWall();
    const std::string walled = FixedObjectEventsText(request, kRaRad, kDecRad);
    EXPECT_NE(std::string::npos, plain.find("\nRise ")) << plain;
    EXPECT_NE(std::string::npos, plain.find("(UT)")) << plain;
    EXPECT_NE(std::string::npos, walled.find("(UT, local horizon)")) << walled;
    EXPECT_NE(plain.substr(0, 12), walled.substr(0, 12)) << "the rising should differ: " << plain << " / " << walled;
    // No site, no events.
    request.hasSite = false;
    EXPECT_TRUE(FixedObjectEventsText(request, kRaRad, kDecRad).empty());
}
