// Rise, transit and set for the identify read-outs and the tables, over the
// mathematical horizon or over the observer's own (the horizon profile of
// the site: trees, roofs, hills), and their text.
//
// Standard C++: used by the catalogues' describers and by the command line.
#pragma once

#include <memory>
#include <string>

#include "map/horizonprofile.h"
#include "map/skyobjects.h"
#include "observer/observer.h"

namespace orv {

// The horizon profile as the rise/set search takes it: the apparent altitude
// of the horizon (radians) at an azimuth (radians from north through east),
// linear between whole degrees. Empty for no profile.
LocalHorizonFn LocalHorizonOf(std::shared_ptr<const HorizonProfile> profile);

// The Julian date (UT) of the local midnight that begins the civil day
// holding jdUT, for the site's zone (LocalOffsetHours).
double LocalDayStartJdUT(const CObserverDoc& site, double jdUT);

// "UT", "UT+1", "UT-3:30": the time base of civil times at the site.
std::string EphemerisTimeBase(double localOffsetHours);

// Rise, upper transit and set of an object fixed on the sky (a star with its
// proper motion already applied, a galaxy) during the local civil day that
// begins at jdUTDayStart. The J2000 place is brought to the true equator
// and equinox of the day's middle (IAU 2006 precession, IAU 2000A nutation;
// annual aberration, at most 20″ or about 1.5 s of time at rising, is left
// out). Standard altitude −0°34′ (refraction at the horizon, Meeus ch. 15);
// over `horizon` when given, where the object must clear the profile.
RiseTransitSet FixedObjectRiseTransitSet(const CObserverDoc& site, double raJ2000Rad, double decJ2000Rad,
                                         double jdUTDayStart, const LocalHorizonFn& horizon = {});

// The read-out's line: "\nRise 05:12  Transit 11:40  Set 18:09 (UT+1)",
// "\nAbove the horizon all day; transit 23:10 (UT)", "\nBelow the horizon
// all day (UT)"; with ", local horizon" after the time base when the events
// were found over the observer's horizon profile. Empty for invalid input.
std::string RiseTransitSetText(const RiseTransitSet& events, double localOffsetHours, bool overLocalHorizon);

// The line for a fixed object described on a chart: the events of the local
// day holding the chart's instant, over the chart's horizon profile when it
// carries one. Empty when the request has no site.
std::string FixedObjectEventsText(const DescribeRequest& request, double raJ2000Rad, double decJ2000Rad);

}  // namespace orv
