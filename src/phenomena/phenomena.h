// The phenomena search: the instants within a span at which an event of a
// chosen kind happens — conjunctions, oppositions and quadratures of two
// bodies, extreme separations and distances, equinoxes and solstices, the
// Moon's phases, stationary points, extremes of declination, perihelion and
// aphelion passages, and (after those sixteen) greatest elongations,
// apogee and perigee together, and appulses with occultations flagged.
//
// Method: the kind's quantity (a difference of longitudes or right
// ascensions reduced to −π…π, or the step-to-step change of a separation,
// distance, declination or longitude) is sampled at every step of the span;
// a root is bracketed where consecutive samples change sign, unless the jump
// between them is π/2 or more (an angle wrapping round, not a root); each
// root is refined from three consecutive samples by the zero of the
// interpolating parabola (Meeus, Astronomical Algorithms 2nd ed., ch. 3,
// eq. 3.7), iterated until n changes by less than 1e-5 of a step. With a
// one-hour step that is 0.036 s of interpolation tolerance; the
// interpolation error itself is below a second for every kind at that step.
//
// Positions: the apparent places of date of CPlanets (the Sun, the planets;
// the Moon from the built-in lunar series), comets and asteroids through
// the same reduction, and fixed objects (stars, deep-sky objects) from a
// J2000 place taken through aberration, deflection, precession and
// nutation. Ecliptic coordinates are referred to the true ecliptic and
// equinox of date. Times are UT Julian dates; positions are computed at
// UT + ΔT.
//
// Standard C++ only.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "solarsystem/orbits.h"
#include "util/resulttable.h"

namespace orv {

class CObserverDoc;

// The kinds, numbered as the search list orders them: 0–15 the classic
// sixteen, then the almanac's further kinds.
enum class PhenomenonKind : int {
    ConjunctionLongitude = 0,
    ConjunctionRA = 1,
    MinimumSeparation = 2,
    OppositionLongitude = 3,
    OppositionRA = 4,
    MaximumSeparation = 5,
    MinimumEarthDistance = 6,
    MaximumEarthDistance = 7,
    EquinoxesSolstices = 8,
    QuadratureLongitude = 9,
    QuadratureRA = 10,
    MoonPhases = 11,
    StationaryLongitude = 12,
    StationaryRA = 13,
    DeclinationExtremes = 14,
    PerihelionAphelion = 15,
    GreatestElongation = 16,  // from the Sun, maxima only
    ApogeePerigee = 17,       // both extremes of the distance from the Earth
    Appulse = 18,             // closest approach, occultations flagged
};
inline constexpr int kPhenomenonKindCount = 19;
inline constexpr int kClassicPhenomenonKindCount = 16;

// How many bodies a kind needs: 0 (equinoxes, phases), 1 or 2.
int PhenomenonBodyCount(PhenomenonKind kind);
// The heading text of the kind's result section ("Conjunction in longitude
// between", "Stationary points of" …, without the bodies).
std::string_view PhenomenonHeading(PhenomenonKind kind);
// The short name orvane-cli takes ("conjunction", "moon-phases" …).
std::string_view PhenomenonKindKey(PhenomenonKind kind);
// A kind by its short name or number ("3"); nothing otherwise.
std::optional<PhenomenonKind> PhenomenonKindFromText(std::string_view text);
// Whether stars and deep-sky objects may be the second body (conjunctions,
// separations and appulses; nothing that needs a distance or a motion).
bool PhenomenonAllowsFixedTarget(PhenomenonKind kind);

// One body of a search.
struct PhenomenonBody {
    enum class Type { SolarSystem, Minor, Fixed };
    Type type = Type::SolarSystem;
    int planet = 3;                // SolarSystem: the CPlanets body number (0 the Moon, 3 the Sun)
    TwoBodyOrbit orbit{};          // Minor
    double raJ2000Rad = 0.0;       // Fixed: ICRS/J2000 place
    double decJ2000Rad = 0.0;
    double radiusKm = 0.0;         // for occultations; 0 for a point
    std::string name;              // as results show it: "Jupiter", "(1) Ceres", "Regulus"

    static PhenomenonBody Planet(int body);
};

struct PhenomenaRequest {
    PhenomenonKind kind = PhenomenonKind::ConjunctionLongitude;
    std::vector<PhenomenonBody> bodies;  // as many as PhenomenonBodyCount
    double jdUTStart = 0.0;
    double durationDays = 365.25;        // > 0
    double stepHours = 1.0;              // > 0
};

// The most samples one search takes (about 228 years at one-hour steps):
// the bound on every loop that the request's numbers size.
inline constexpr std::size_t kMaxPhenomenaSamples = 2000000;

// NoKind: a kind number outside the list ("Unknown search type!").
enum class PhenomenaStatus { Ok, NoKind, BadDuration, BadStep, TooManySamples, BadBodies, NoPositions, Cancelled };

// The message for a status, as the dialog and the command line show it:
// "You must specify a positive duration for the search", "Unknown search
// type!" …; empty for Ok.
std::string PhenomenaStatusMessage(PhenomenaStatus status);

// One event found.
struct PhenomenonEvent {
    double jdUT = 0.0;
    std::string name;          // "Full Moon", "Inferior", "East", "Perihelion" …
    // The columns; NaN where the kind has none.
    double separationRad;      // between the two bodies
    double distance;           // the first body from the Earth: AU, or km for the Moon
    bool distanceKm = false;
    double elongationRad;      // the first body from the Sun
    double decRad;             // the first body's apparent declination
    double sunDistanceAU;      // the first body from the Sun (perihelion, aphelion)
    std::string info;          // "Jupiter 1.2° S of the Moon", "Occultation" …
    bool occultation = false;  // geocentric: closer than the sum of the apparent radii

    // The observer's site, for the Moon and a body it passes within 1.6° of
    // (conjunctions, minimum separations, appulses): the Moon's parallax
    // (up to 1°) moves it against the background, so what the site sees
    // differs from the geocentre's. Times UT; NaN where there is none.
    bool siteChecked = false;
    // The topocentric separation fell below the sum of the topocentric
    // apparent radii while the Moon's centre was above the horizon
    // (refraction included).
    bool siteOccultation = false;
    double siteClosestJdUT = std::numeric_limits<double>::quiet_NaN();
    double siteClosestSeparationRad = std::numeric_limits<double>::quiet_NaN();
    // When the separation went below the sum of the radii and came back
    // above it (disappearance and reappearance of the body's centre behind
    // the Moon's mean limb), whatever the Moon's altitude.
    double siteBeginJdUT = std::numeric_limits<double>::quiet_NaN();
    double siteEndJdUT = std::numeric_limits<double>::quiet_NaN();
    bool siteMoonUp = false;   // the Moon above the horizon at the closest approach
    std::string siteInfo;      // "Occultation 03:10:05–04:04:20 UT", "0.4° at 03:40 UT" …
};

// Progress in [0, 1]; return false to cancel.
using PhenomenaProgressFn = std::function<bool(double fractionDone)>;

struct PhenomenaOutcome {
    PhenomenaStatus status = PhenomenaStatus::Ok;
    std::vector<PhenomenonEvent> events;  // in time order
};

// The events of one pair (or one body) of a search of several.
struct PhenomenaSection {
    PhenomenaRequest request;
    std::vector<PhenomenonEvent> events;
};

// The search. The observer supplies nothing but ΔT and its nutation model;
// places are geocentric.
PhenomenaOutcome SearchPhenomena(const CObserverDoc& observer, const PhenomenaRequest& request,
                                 const PhenomenaProgressFn& progress = {});

// Several searches over one set of positions: the nodes the sampling
// interpolates from (the Earth, the bodies, the rotation to the equator of
// date) are computed once for all of them. One outcome per request, in its
// order; when cancelled every outcome says so.
std::vector<PhenomenaOutcome> SearchPhenomenaBatch(const CObserverDoc& observer,
                                                   const std::vector<PhenomenaRequest>& requests,
                                                   const PhenomenaProgressFn& progress = {});

// The searches of a request over several bodies: for a two-body kind each
// of `first` against each of `second` (a body against itself, and a pair
// met the second time the other way round, left out); for a one-body kind
// each of `first`; for the kinds without bodies the one search. The kind
// and span are `base`'s.
std::vector<PhenomenaRequest> PhenomenaPairs(const PhenomenaRequest& base, const std::vector<PhenomenonBody>& first,
                                             const std::vector<PhenomenonBody>& second);

// The planets Mercury … Pluto without the Earth, as "every planet" means.
std::vector<PhenomenonBody> AllPlanetBodies();

// The searches of PhenomenaPairs run as a batch, made into sections: with
// several searches, those that found nothing or had no positions are left
// out. Status: Ok when any search ran; otherwise the first search's.
struct PhenomenaBatchOutcome {
    PhenomenaStatus status = PhenomenaStatus::Ok;
    std::vector<PhenomenaSection> sections;
    std::size_t eventCount = 0;
};
PhenomenaBatchOutcome SearchPhenomenaSections(const CObserverDoc& observer,
                                              const std::vector<PhenomenaRequest>& requests,
                                              const PhenomenaProgressFn& progress = {});

// The result section title: the heading, then the bodies ("Conjunction in
// longitude between Venus and Jupiter", "Stationary points of Mars in RA").
std::string PhenomenaTitle(const PhenomenaRequest& request);

// The result table: the date (UT, "%5d %s %02d %02d:%02d"), the event, and
// the kind's columns: separation ("%.1lf" degrees), distance ("%.4lf" AU,
// "%.0lf" km for the Earth–Moon distance), elongation ("%.1lf"),
// declination ("%c%02d %02d'"), the distance from the Sun, information.
//
// The text report (Save as text, Copy) is the search's own: each section's
// title and a blank line ("%s\n\n"), then each event on a line followed by
// a blank line ("%s\r\n\r\n").
ResultTable MakePhenomenaTable(const PhenomenaRequest& request, const std::vector<PhenomenonEvent>& events);

// Several sections in one table: with more than one, the title is the
// kind's heading alone, a "Bodies" column names each row's bodies, and
// separator rows part the sections; the report gives each section its title.
ResultTable MakePhenomenaTable(const std::vector<PhenomenaSection>& sections);

// "%5d %s %02d %02d:%02d" for a UT Julian date.
std::string FormatPhenomenonDate(double jdUT);

}  // namespace orv
