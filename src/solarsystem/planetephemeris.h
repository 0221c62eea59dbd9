// Tables of the Sun, the Moon and the planets over a span of dates: the
// ephemeris (place, distance, magnitude, elongation, phase, apparent
// diameter, constellation, and the day's rise, transit and set for the
// site), the rise/transit/set of one day, and the constellation a body is in.
// Standard C++: the table is a result table (util/resulttable.h) that the
// window panel shows and the command line prints.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "map/skyevents.h"
#include "map/skyobjects.h"
#include "observer/observer.h"
#include "solarsystem/planets.h"
#include "util/progress.h"
#include "util/resulttable.h"

namespace orv {

// Rise, upper transit and set of a body during the local civil day that
// begins at `jdUTDayStart` (a local midnight), for the observer's site. The
// body's geocentric apparent place is taken at the day's start, middle and
// end and interpolated (quadratic in time: under 1″ for the planets and the
// Sun, a few arcseconds for the Moon, a second or two of time). Standard
// altitudes (Meeus ch. 15): −0.8333° for the Sun, 0.7275·π − 0.5667° for the
// Moon (π its horizontal parallax), −0.5667° for the planets. Over the
// observer's own horizon when `horizon` is given (the body's apparent
// altitude meets the profile's at its azimuth).
RiseTransitSet BodyRiseTransitSet(const CObserverDoc& site, int body, double jdUTDayStart,
                                  const LocalHorizonFn& horizon = {});

// The constellation's abbreviation ("Sgr") of a J2000 place, from the
// boundaries file; empty without it.
std::string ConstellationAbbreviationAt(const CObserverDoc& observer, double raJ2000Rad, double decJ2000Rad);

// What the read-out and `orvane-cli planet` add to a body's place for a
// site: its constellation, the rise, transit and set of the local day, and
// for Mars and Jupiter the central meridians, for Jupiter the Great Red
// Spot's next transit.
struct BodyCircumstances {
    std::string constellation;
    RiseTransitSet events;
    bool overLocalHorizon = false;              // events found over the horizon profile
    std::optional<double> cm1Deg, cm2Deg;       // Jupiter: System I and II central meridians; Mars: cm1Deg
    std::optional<double> grsTransitJdUT;       // Jupiter: next transit of the spot
    std::optional<double> poleAngleDeg;         // Jupiter, Saturn: P
};
BodyCircumstances ComputeCircumstances(const CObserverDoc& site, int body, double raJ2000Rad, double decJ2000Rad,
                                       double grsLongitudeDeg,
                                       std::shared_ptr<const HorizonProfile> horizon = nullptr);
// The lines of the read-out ("\nConstellation: Sgr", "\nRise 05:12  Transit
// 11:40  Set 18:09 (UT+1)", Jupiter's "\nGreat Red Spot (80.0°) transits …").
std::string CircumstancesText(const BodyCircumstances& c, int body, double localOffsetHours,
                              double grsLongitudeDeg);

struct EphemerisRequest {
    int body = kBodySun;
    double jdUTFrom = 0.0;
    double jdUTTo = 0.0;
    double stepDays = 1.0;
    PlaceCentre centre = PlaceCentre::Geocentric;
    // Rise and set over the observer's horizon profile when given.
    std::shared_ptr<const HorizonProfile> horizon;
};

// One row: the body at jdUT.
struct EphemerisRow {
    double jdUT = 0.0;
    double raRad = 0.0;   // apparent, true equator and equinox of date
    double decRad = 0.0;
    double distanceAU = 0.0;    // from the Earth (the Moon too, in AU)
    double magnitude = 0.0;
    double elongationRad = 0.0;
    double phaseAngleRad = 0.0;
    double illuminatedFraction = 1.0;
    double apparentDiameterRad = 0.0;
    std::string constellation;  // abbreviation, empty without the boundaries file
    RiseTransitSet events;      // of the local day holding jdUT
};

enum class EphemerisStatus { Ok, InvalidInput, TooManyRows, NoSource, Cancelled };

// At most this many rows (a century of days).
inline constexpr int kEphemerisMaxRows = 36600;

// Rows from jdUTFrom to jdUTTo inclusive, every stepDays. InvalidInput: a
// body outside 0–9, a non-finite date, a step not above zero (or under a
// minute), or an end before the start; TooManyRows: more than
// kEphemerisMaxRows; NoSource: the body has no position source at some row
// (rows up to it are kept); Cancelled: the progress function said so (rows
// so far kept).
EphemerisStatus ComputeEphemeris(const CObserverDoc& site, const EphemerisRequest& request,
                                 std::vector<EphemerisRow>& rows, const ProgressFn& progress = {});

// The message for the user of a status other than Ok.
std::string EphemerisStatusMessage(EphemerisStatus status, int body);

// The table: Date, RA, Dec, Distance, Mag, Elongation, Phase angle,
// Illuminated, Diameter, Constellation, Rise, Transit, Set; dates and
// times in the site's civil time (UT + localOffsetHours). Title
// "Ephemeris of <body> <date> to <date>".
ResultTable MakeEphemerisTable(int body, const std::vector<EphemerisRow>& rows, double localOffsetHours,
                               const std::string& siteName);

// --- The bodies a chart drew ----------------------------------------------

// One Sun, Moon, planet or satellite of the chart's scene.
struct VisiblePlanetRow {
    std::string name;       // "Jupiter", "Io"
    std::string kind;       // "Planet", "Sun", "Moon", "Satellite of Jupiter"
    double magnitude = 0.0;
    double raJ2000Rad = 0.0;  // the place the chart recorded (apparent, referred to J2000)
    double decJ2000Rad = 0.0;
};
// In the scene's order (the Sun first, then the planets outward, the Moon,
// then the satellites).
std::vector<VisiblePlanetRow> VisiblePlanetRows(const CChartScene& scene, const CSkyObjectRegistry& objects);
// "Planets Visible on the Map": Name, Type, Mag, RA, Dec (J2000).
ResultTable VisiblePlanetsTable(const std::vector<VisiblePlanetRow>& rows);

// --- The path of a body over a span ---------------------------------------

struct BodyPathPoint {
    double jdUT = 0.0;
    double raJ2000Rad = 0.0;  // apparent place referred to J2000, as the chart places the body
    double decJ2000Rad = 0.0;
    double magnitude = 0.0;
    bool tick = false;        // a dated mark
};
struct BodyPath {
    int body = kBodySun;
    double tickStepDays = 1.0;
    double localOffsetHours = 0.0;  // for the marks' dates
    std::vector<BodyPathPoint> points;  // in time order
};
// The body's topocentric path for the site from jdUTFrom to jdUTTo, with a
// mark every tickStepDays (the first at jdUTFrom) and at least four
// points between marks (and no more than 4000 in all). Statuses as
// ComputeEphemeris; at most 2000 marks.
EphemerisStatus ComputeBodyPath(const CObserverDoc& site, int body, double jdUTFrom, double jdUTTo, double tickStepDays,
                                BodyPath& path, const ProgressFn& progress = {});
// A mark's label: "12 Mar" (with the year, "12 Mar 2026", on the first
// mark), and "Mag:%.1f".
std::string BodyPathDateLabel(const BodyPath& path, std::size_t pointIndex, bool withYear);

// EphemerisTimeBase ("UT", "UT-4", "UT+5:30") is in map/skyevents.h.

}  // namespace orv
