// The Sun, the Moon and the planets for an instant: apparent places of date
// (geocentric or topocentric), distances, light time, phase, illuminated
// fraction and visual magnitude.
//
// Body identifiers (used by every solar-system computation and as the order
// of the names "Moon", "Mercury", "Venus", "Sun", "Mars", "Jupiter",
// "Saturn", "Uranus", "Neptune", "Pluto"): 0 the Moon, 1 Mercury, 2 Venus,
// 3 the Sun (the Earth in heliocentric work), 4 Mars … 9 Pluto.
//
// Time: every date here is a Julian date in dynamical time (TT, used for
// TDB). Frames: "J2000" is the GCRS/ICRS frame of the catalogues (the
// observer's precession includes the frame bias); "of date" is the true
// equator and equinox of date unless said to be mean.
#pragma once

#include <array>
#include <functional>
#include <limits>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "app/strings.h"
#include "solarsystem/ephem96.h"
#include "solarsystem/moonseries.h"
#include "solarsystem/vsop87.h"

namespace orv {

class CObserverDoc;
class CSettingsStore;

inline constexpr int kBodyMoon = 0;
inline constexpr int kBodyMercury = 1;
inline constexpr int kBodyVenus = 2;
inline constexpr int kBodySun = 3;  // the Earth in heliocentric work
inline constexpr int kBodyEarth = 3;
inline constexpr int kBodyMars = 4;
inline constexpr int kBodyJupiter = 5;
inline constexpr int kBodySaturn = 6;
inline constexpr int kBodyUranus = 7;
inline constexpr int kBodyNeptune = 8;
inline constexpr int kBodyPluto = 9;

// The names are the string table's (BodyName in app/strings.h).
// The body of a name in any letter case ("moon", "SATURN"); nothing otherwise.
std::optional<int> BodyFromName(std::string_view name);
// Equatorial radius in km (IAU WGCCRE 2015, Archinal et al. 2018; the Sun
// 695,700 km, IAU 2015 Resolution B3).
double BodyRadiusKm(int body);

inline constexpr double kAstronomicalUnitKmIAU2012 = 149597870.7;
// The speed of light in AU per day (IAU 2012 au).
inline constexpr double kLightAUPerDay = 173.1446326846693;

struct Vector3 {
    double x = 0.0, y = 0.0, z = 0.0;
};

// What is known of one body at the last computed instant.
struct PlanetRecord {
    bool valid = false;             // false: no position source for this body and date
    double raRad = 0.0;             // apparent right ascension, true equator and equinox of date
    double decRad = 0.0;            // apparent declination, same frame
    double sunDistanceAU = 0.0;     // R, Sun–body (the Sun: 0)
    double earthDistance = 0.0;     // D, Earth–body: AU, for the Moon km
    double lightTimeSeconds = 0.0;  // the light time over D
    double phaseAngleRad = 0.0;     // i, angle Sun–body–Earth, [0, π]
    double illuminatedFraction = 1.0;  // k = (1 + cos i)/2
    double elongationRad = 0.0;     // angle Sun–Earth–body, [0, π]
    double apparentDiameterRad = 0.0;  // equatorial diameter seen from the Earth
    std::int16_t magnitudeCenti = 0;   // visual magnitude in hundredths
    // Saturn only: the tilt B of the ring plane to the line of sight (the
    // Saturnicentric latitude of the Earth) and ΔU, the difference of the
    // Saturnicentric longitudes of the Sun and the Earth in the ring plane.
    double ringTiltRad = 0.0;
    double ringDeltaURad = 0.0;
};

enum class PlaceCentre { Geocentric, Topocentric };

enum class PositionStatus { Ok, NoSource, InvalidInput };

// What the apparent-place reduction needs of an instant, made once and
// shared by every body reduced at it: the Earth's heliocentric J2000
// position (AU) and velocity (units of c; for topocentric places the
// site's, with the Earth's rotation) with its Lorentz factor, the rotation
// from J2000 to the true equator and equinox of date (IAU 2006 precession,
// IAU 2000B nutation) and, for topocentric places, the site's geocentric
// position of date (AU).
struct ApparentFrame {
    double jdTT = 0.0;
    Vector3 earthJ2000{};
    Vector3 earthVelocityOverC{};
    double lorentzFactor = 1.0;
    double j2000ToDate[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    PlaceCentre centre = PlaceCentre::Geocentric;
    Vector3 siteOfDateAU{};
};

// Makes `frame` (its rotation already set) topocentric for a site at
// `siteOfDateAU` (geocentric, true equator and equinox of date, AU): the
// places become the site's (diurnal parallax), and the site's velocity from
// the Earth's rotation joins the Earth's in the aberration (diurnal
// aberration, up to 0.32″ × cos φ toward the east; Explanatory Supplement
// §3.26).
void SetTopocentricSite(ApparentFrame& frame, const Vector3& siteOfDateAU);

// A geocentric apparent place of date at `distanceAU` seen from the site at
// `siteOfDateAU` instead (true equator and equinox of date): the diurnal
// parallax, then the diurnal aberration. For the Moon, whose place is not
// reduced through ApparentPlaceOf.
void TopocentricFromGeocentric(const Vector3& siteOfDateAU, double distanceAU, double& raRad, double& decRad);

// The apparent place of a heliocentric body and the geometry that goes with it.
struct ApparentPlace {
    double raRad = 0.0;             // true equator and equinox of date
    double decRad = 0.0;
    double earthDistanceAU = 0.0;   // Earth (at t) to the body (at t − τ)
    double sunDistanceAU = 0.0;     // Sun to the body at t − τ
    double lightTimeSeconds = 0.0;  // τ
    double phaseAngleRad = 0.0;     // Sun–body–Earth
    double elongationRad = 0.0;     // Sun–Earth–body
    Vector3 helioJ2000{};           // the body at t − τ, heliocentric J2000, AU
};

// A body's heliocentric J2000 equatorial position (AU) at a TT instant;
// false when it has none there.
using HeliocentricJ2000Fn = std::function<bool(double jdTT, Vector3& positionAU)>;

// Whether the Sun's gravity bends and delays the light: yes for every body
// but the Sun itself.
enum class SolarGravity { Apply, Omit };

// The apparent place of date of a body given by its heliocentric J2000
// position: light time (two passes, with the Sun's gravitational delay),
// deflection of light by the Sun, relativistic annual aberration,
// precession and nutation, and with a topocentric frame the diurnal
// parallax. Explanatory Supplement to the Astronomical Almanac (1992),
// §3.3. The planets, comets and asteroids all go through it.
PositionStatus ApparentPlaceOf(const ApparentFrame& frame, const HeliocentricJ2000Fn& position, SolarGravity gravity,
                               ApparentPlace& place);

// The state of the solar-system computations: one record per body, the Great
// Red Spot longitude setting, and the Earth's velocity of the last apparent
// place. Holds no reference to a map: the observer is passed to each call.
class CPlanets {
public:
    // Uses the process's shared VSOP87 series (SharedVsop87D), compact
    // ephemeris (SharedEphem96) and the built-in lunar and Pluto series.
    CPlanets();
    // Uses the given series (tests, benchmarks); they must outlive the
    // object. Without a compact ephemeris every date goes to VSOP87 and the
    // Pluto series.
    explicit CPlanets(const CVsop87D& vsop87, const CEphem96* ephem96 = nullptr);

    // Section "Planet": "GRSLong" (degrees, text; default "80").
    void LoadSettings(const CSettingsStore& store);
    void SaveSettings(CSettingsStore& store) const;
    double GreatRedSpotLongitudeDeg() const { return m_grsLongitudeDeg; }
    void SetGreatRedSpotLongitudeDeg(double degrees);

    // Heliocentric place of body 1–9 (3 the Earth) at jdTT:
    // `ofDate` longitude and latitude in radians (mean ecliptic and equinox of
    // date, FK5), radius vector in AU; `j2000` rectangular, J2000 equatorial,
    // AU. From 2415020.5 (1900 January 1.0) up to but excluding 2487980.5
    // (2099 October 4.0) the compact ephemeris answers for every body;
    // otherwise VSOP87D for bodies 1–8 (its accuracy falls off slowly beyond
    // 1000 years from J2000) and Meeus's series for Pluto (1885–2099 only).
    // NoSource when the date's source is missing (Pluto outside its series'
    // span, the VSOP87 files absent).
    PositionStatus HeliocentricPosition(const CObserverDoc& observer, int body, double jdTT, SphericalLBR* ofDate,
                                        Vector3* j2000) const;

    // The Earth's heliocentric velocity at jdTT in units of c (J2000
    // equatorial), kept for the aberration; returns the Lorentz factor
    // γ = 1/√(1 − v²/c²). NaN when the Earth's position is unavailable.
    double EarthVelocity(const CObserverDoc& observer, double jdTT);
    const Vector3& EarthVelocityOverC() const { return m_earthVelocityOverC; }

    // Apparent place of a planet (1, 2, 4–9) or the Sun (3) at jdTT: light
    // time (two passes, with the Sun's gravitational delay), gravitational
    // deflection by the Sun, annual aberration (relativistic, with the
    // Lorentz factor), precession (IAU 2006) and nutation (IAU 2000B) to the
    // true equator and equinox of date; with Topocentric the diurnal
    // parallax and aberration for the observer's site. Fills the body's record (distances,
    // light time, phase, elongation, diameter, magnitude). Explanatory
    // Supplement to the Astronomical Almanac (1992), §3.3.
    PositionStatus ApparentPosition(const CObserverDoc& observer, int body, double jdTT, double& raRad, double& decRad,
                                    PlaceCentre centre);

    // The frame of the apparent-place reduction at jdTT for the observer's
    // site (ApparentPlaceOf); NoSource without the Earth's position.
    PositionStatus PrepareApparentFrame(const CObserverDoc& observer, double jdTT, PlaceCentre centre,
                                        ApparentFrame& frame);

    // Geocentric (or topocentric) apparent place of the Moon from the
    // built-in ELP/MPP02 series, distance in km; fills record 0. The Moon is
    // taken where it was a light time earlier (some 1.3 s, 0.7″ along its
    // orbit), which with the aberration of the Earth's own motion, nearly
    // equal and opposite, is the apparent geocentric direction.
    PositionStatus MoonPosition(const CObserverDoc& observer, double jdTT, double& raRad, double& decRad,
                                double& distanceKm, PlaceCentre centre);

    // Every body at the observer's instant (its JulianDateTDT).
    void ComputeAll(const CObserverDoc& observer, PlaceCentre centre);

    const PlanetRecord& Record(int body) const { return m_records[static_cast<std::size_t>(ClampBody(body))]; }

    // Fills the body's magnitude from its record.
    void ComputeMagnitude(int body, double jdTT);

    // The identify text: the name, then the lines of magnitude, phase and
    // distances (see the .cpp for the exact lines).
    std::string PlanetInfoText(int body) const;

private:
    static int ClampBody(int body) { return body < 0 ? 0 : body >= kBodyCount ? kBodyCount - 1 : body; }
    void FillSaturnRing(const CObserverDoc& observer, double jdTT, const Vector3& saturnHelioJ2000,
                        const Vector3& earthHelioJ2000);
    void FillUranusLatitude(const Vector3& uranusHelioJ2000, const Vector3& earthHelioJ2000);

    // The Earth's J2000 position and velocity of the last instant asked:
    // every body's apparent place at one instant needs them, so a chart's
    // ten bodies cost one Earth, not ten.
    bool EarthAt(const CObserverDoc& observer, double jdTT, Vector3& earth);

    const CVsop87D* m_vsop87;
    const CEphem96* m_ephem96 = nullptr;
    const CObserverDoc* m_cacheObserver = nullptr;
    double m_earthJdTT = std::numeric_limits<double>::quiet_NaN();
    Vector3 m_earth{};
    double m_velocityJdTT = std::numeric_limits<double>::quiet_NaN();
    std::array<PlanetRecord, kBodyCount> m_records{};
    double m_grsLongitudeDeg = 80.0;
    Vector3 m_earthVelocityOverC{};
    double m_lorentzFactor = 1.0;
    double m_uranusSubLatitudeDeg = 0.0;  // mean of the sub-Earth and sub-Sun latitudes
};

// The VSOP87 series of the data folder, opened on first use and shared by
// every map for the life of the process.
const CVsop87D& SharedVsop87D();

// Visual magnitude of a planet (1, 2, 4–8) at full phase geometry: phase
// angle in degrees, distances in AU. Mallama & Hilton (2018), Astronomy and
// Computing 25, 10: the formulas adopted by the Astronomical Almanac from
// 2020. Saturn's `ringTiltDeg` (|B|), Uranus's `subLatitudeDeg` and
// Neptune's `decimalYear` enter only their own formulas.
double PlanetMagnitudeMallamaHilton(int body, double phaseAngleDeg, double sunDistanceAU, double earthDistanceAU,
                                    double ringTiltDeg = 0.0, double subLatitudeDeg = 0.0, double decimalYear = 2020.0);

// Saturn's ring plane seen from the Earth and the Sun (Meeus, Astronomical
// Algorithms 2nd ed., ch. 45): from the geocentric (λ, β) and heliocentric
// (l, b) ecliptic places of date of Saturn, radians, and jdTT. B the tilt
// toward the Earth, B′ toward the Sun, ΔU as above; radians.
struct SaturnRingGeometry {
    double earthTiltRad = 0.0;
    double sunTiltRad = 0.0;
    double deltaURad = 0.0;
};
SaturnRingGeometry SaturnRingsMeeus(double jdTT, double geocentricLonRad, double geocentricLatRad,
                                    double heliocentricLonRad, double heliocentricLatRad);

}  // namespace orv
