// The Galilean satellites of Jupiter and the brighter satellites of Saturn
// at their places around their planet.
//
// Jupiter: Meeus, Astronomical Algorithms, 2nd ed. (1998), ch. 44, the
// higher-accuracy method, which is Lieske's theory E5 (Lieske 1998, A&A
// Suppl. 129, 205; "Galilean satellite ephemerides E5"), good to a few
// hundredths of Jupiter's radius over centuries.
// Saturn: Meeus ch. 46, after Harper & Taylor (1993, A&A 268, 326), good to
// about a hundredth of Saturn's radius for the inner satellites and a tenth
// for Iapetus.
//
// Coordinates are Meeus's: X along the planet's equator, positive toward
// the west (celestial west, the preceding limb), Y toward the planet's north
// pole, both in the planet's equatorial radii as seen from the Earth; Z positive
// when the satellite is farther from the Earth than the planet's centre.
// The planets' places come from CPlanets (VSOP87D) at the instant jdTT (TT).
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace orv {

class CObserverDoc;
class CPlanets;

struct SatelliteXYZ {
    double xRadii = 0.0;
    double yRadii = 0.0;
    double zRadii = 0.0;
};

// Io, Europa, Ganymede, Callisto.
std::optional<std::array<SatelliteXYZ, 4>> GalileanSatellitesE5(const CPlanets& planets, const CObserverDoc& observer,
                                                                double jdTT);
// Mimas, Enceladus, Tethys, Dione, Rhea, Titan, Hyperion, Iapetus.
std::optional<std::array<SatelliteXYZ, 8>> SaturnSatellitesMeeus(const CPlanets& planets, const CObserverDoc& observer,
                                                                 double jdTT);

// The satellites the chart shows, in one numbering (the key of their
// sky-object source): 0–3 Io, Europa, Ganymede, Callisto; 4–10 Mimas,
// Enceladus, Tethys, Dione, Rhea, Titan, Iapetus (Hyperion, near 14.4 mag,
// is left out).
inline constexpr int kChartSatelliteCount = 11;
struct ChartSatelliteInfo {
    std::string_view name;
    int planet;              // body id: 5 Jupiter, 6 Saturn
    int meeusIndex;          // index into the planet's array above
    double absoluteMagnitude;  // V(1,0), JPL Solar System Dynamics satellite table
};
const ChartSatelliteInfo& ChartSatellite(int satellite);
// The satellite a name gives (any letter case: "io", "TITAN"); nothing otherwise.
std::optional<int> ChartSatelliteFromName(std::string_view name);

// Where the chart's satellites stand at jdTT: for each, the apparent place
// of date offset from its planet's (radians), the Meeus coordinates, the
// visual magnitude, and whether the planet's globe hides it.
struct SatellitePlace {
    bool valid = false;
    double raRad = 0.0;   // apparent, true equator and equinox of date
    double decRad = 0.0;
    SatelliteXYZ xyz;     // Meeus's coordinates, planet radii
    double magnitude = 0.0;
    bool hiddenByPlanet = false;  // behind the globe (an occultation)
};
struct SatellitePlaces {
    std::array<SatellitePlace, kChartSatelliteCount> satellites{};
};

// The planets' records in `planets` must already hold the places of Jupiter
// and Saturn at jdTT (ApparentPosition, geocentric or topocentric): the
// satellites are placed about them, turned by the position angle of the
// planet's pole. `jupiterPoleAngleRad`, `saturnPoleAngleRad`: the planets'
// P (JupiterPhysicalMeeus, SaturnRingViewMeeus).
SatellitePlaces PlaceChartSatellites(const CPlanets& planets, const CObserverDoc& observer, double jdTT,
                                     double jupiterPoleAngleRad, double saturnPoleAngleRad);

// A satellite's offset on the sky from the centre of its planet, from
// Meeus's X, Y and the pole's position angle P: east and north in planet
// radii.
void SatelliteSkyOffset(const SatelliteXYZ& xyz, double poleAngleRad, double& eastRadii, double& northRadii);

}  // namespace orv
