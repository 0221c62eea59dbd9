#include "solarsystem/planetsource.h"

#include <cmath>
#include <cctype>
#include <cstdio>

#include "observer/observer.h"
#include "solarsystem/physephem.h"
#include "solarsystem/planetephemeris.h"
#include "solarsystem/planetmoons.h"

namespace orv {

namespace {

constexpr double kRadToDeg = 57.29577951308232;
constexpr double kRadToArcsec = 206264.80624709636;

ObjectType BodyType(int) { return ObjectType::Planet; }

// Fills the body's record at jdTT, topocentric for the observer's site as
// the chart shows it; false when the body has no position source.
bool ComputeBody(CPlanets& planets, const CObserverDoc& observer, int body, double jdTT, double& ra, double& dec)
{
    if (body == kBodyMoon) {
        double km = 0.0;
        return planets.MoonPosition(observer, jdTT, ra, dec, km, PlaceCentre::Topocentric) == PositionStatus::Ok;
    }
    return planets.ApparentPosition(observer, body, jdTT, ra, dec, PlaceCentre::Topocentric) == PositionStatus::Ok;
}

}  // namespace

void DateToJ2000(const CObserverDoc& observer, double jdTT, double raDateRad, double decDateRad, double& raJ2000Rad,
                 double& decJ2000Rad)
{
    double v[3] = {std::cos(decDateRad) * std::cos(raDateRad), std::cos(decDateRad) * std::sin(raDateRad),
                   std::sin(decDateRad)};
    // The inverse of the nutation rotation is its transpose: the images of
    // the three axes under NutateXYZ are the matrix's columns, and the mean
    // vector of date is their dot products with the true one.
    double columns[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (auto& c : columns) observer.NutateXYZ(c, jdTT);
    const double mean[3] = {columns[0][0] * v[0] + columns[0][1] * v[1] + columns[0][2] * v[2],
                            columns[1][0] * v[0] + columns[1][1] * v[1] + columns[1][2] * v[2],
                            columns[2][0] * v[0] + columns[2][1] * v[1] + columns[2][2] * v[2]};
    v[0] = mean[0];
    v[1] = mean[1];
    v[2] = mean[2];
    observer.PrecessXYZ(v, jdTT, +1);
    raJ2000Rad = std::atan2(v[1], v[0]);
    if (raJ2000Rad < 0.0) raJ2000Rad += 2.0 * 3.14159265358979323846;
    decJ2000Rad = std::atan2(v[2], std::hypot(v[0], v[1]));
}

std::string DescribeBody(int body, const PlanetRecord& r)
{
    if (!r.valid) return {};
    std::string text(BodyName(body));
    char line[160];
    if (body == kBodyMoon) {
        std::snprintf(line, sizeof line, "\nDistance: %.0f km (light time %.2f s)", r.earthDistance,
                      r.lightTimeSeconds);
    } else {
        std::snprintf(line, sizeof line, "\nDistance: %.6f AU (light time %.1f min)", r.earthDistance,
                      r.lightTimeSeconds / 60.0);
    }
    text += line;
    if (body != kBodySun) {
        std::snprintf(line, sizeof line, "\nDistance from the Sun: %.6f AU", r.sunDistanceAU);
        text += line;
    }
    std::snprintf(line, sizeof line, "\nMagnitude: %.2f", r.magnitudeCenti * 0.01);
    text += line;
    if (body != kBodySun) {
        std::snprintf(line, sizeof line, "\nPhase: %.1f%% lit (phase angle %.1f°)\nElongation: %.1f°",
                      r.illuminatedFraction * 100.0, r.phaseAngleRad * kRadToDeg, r.elongationRad * kRadToDeg);
        text += line;
    }
    const double diameterArcsec = r.apparentDiameterRad * kRadToArcsec;
    if (diameterArcsec >= 120.0)
        std::snprintf(line, sizeof line, "\nApparent diameter: %.2f′", diameterArcsec / 60.0);
    else
        std::snprintf(line, sizeof line, "\nApparent diameter: %.2f″", diameterArcsec);
    text += line;
    return text;
}

std::vector<SkyObjectMatch> CPlanetObjectSource::Resolve(std::string_view text, const CObserverDoc& observer) const
{
    // Surrounding blanks are not part of a name.
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
    const std::optional<int> body = BodyFromName(text);
    if (!body) return {};
    CPlanets planets;
    const double jdTT = observer.JulianDateTDT();
    double ra = 0.0, dec = 0.0;
    if (!ComputeBody(planets, observer, *body, jdTT, ra, dec)) return {};
    SkyObjectMatch m;
    m.key = static_cast<std::uint32_t>(*body);
    m.type = BodyType(*body);
    m.designation = std::string(BodyName(*body));
    DateToJ2000(observer, jdTT, ra, dec, m.raJ2000Rad, m.decJ2000Rad);
    m.magnitude = planets.Record(*body).magnitudeCenti * 0.01;
    return {m};
}

std::optional<ObjectDescription> CPlanetObjectSource::Describe(std::uint32_t key, const DescribeRequest& request) const
{
    if (key >= static_cast<std::uint32_t>(kBodyCount)) return std::nullopt;
    const int body = static_cast<int>(key);
    CObserverDoc observer;
    if (request.hasSite) {
        observer.SetSite("", request.latitudeRad, request.longitudeRad, request.heightM);
        observer.SetTimeZone(request.localOffsetHours, false);
    }
    observer.SetJulianDate(request.jdUT);
    CPlanets planets;
    double ra = 0.0, dec = 0.0, km = 0.0;
    const PositionStatus status =
        body == kBodyMoon ? planets.MoonPosition(observer, request.jdTT, ra, dec, km, PlaceCentre::Geocentric)
                          : planets.ApparentPosition(observer, body, request.jdTT, ra, dec, PlaceCentre::Geocentric);
    if (status != PositionStatus::Ok) return std::nullopt;
    ObjectDescription d;
    d.type = BodyType(body);
    d.designation = std::string(BodyName(body));
    d.information = DescribeBody(body, planets.Record(body));
    DateToJ2000(observer, request.jdTT, ra, dec, d.raJ2000Rad, d.decJ2000Rad);
    if (request.hasSite) {
        const double grs = GreatRedSpotLongitudeFromStyle(request.style);
        const BodyCircumstances c = ComputeCircumstances(observer, body, d.raJ2000Rad, d.decJ2000Rad, grs, request.horizon);
        d.information += CircumstancesText(c, body, request.localOffsetHours, grs);
    }
    return d;
}

namespace {

// The satellite's place about its planet at the observer's instant.
std::optional<SatellitePlace> SatelliteAt(const CObserverDoc& observer, int satellite, PlaceCentre centre,
                                          PlanetRecord& planetOut)
{
    const ChartSatelliteInfo& info = ChartSatellite(satellite);
    CPlanets planets;
    const double jdTT = observer.JulianDateTDT();
    double ra = 0.0, dec = 0.0;
    if (planets.ApparentPosition(observer, info.planet, jdTT, ra, dec, centre) != PositionStatus::Ok) return std::nullopt;
    double pole = 0.0;
    if (info.planet == kBodyJupiter) {
        const auto j = JupiterPhysicalMeeus(planets, observer, jdTT);
        if (!j) return std::nullopt;
        pole = j->poleAngleRad;
    } else {
        const auto r = SaturnRingViewMeeus(planets, observer, jdTT);
        if (!r) return std::nullopt;
        pole = r->poleAngleRad;
    }
    const SatellitePlaces places = PlaceChartSatellites(planets, observer, jdTT, info.planet == kBodyJupiter ? pole : 0.0,
                                                        info.planet == kBodySaturn ? pole : 0.0);
    const SatellitePlace& place = places.satellites[static_cast<std::size_t>(satellite)];
    if (!place.valid) return std::nullopt;
    planetOut = planets.Record(info.planet);
    return place;
}

}  // namespace

std::vector<SkyObjectMatch> CPlanetMoonSource::Resolve(std::string_view text, const CObserverDoc& observer) const
{
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
    const std::optional<int> satellite = ChartSatelliteFromName(text);
    if (!satellite) return {};
    PlanetRecord planet;
    const auto place = SatelliteAt(observer, *satellite, PlaceCentre::Topocentric, planet);
    if (!place) return {};
    SkyObjectMatch m;
    m.key = static_cast<std::uint32_t>(*satellite);
    m.type = ObjectType::Planet;
    m.designation = std::string(ChartSatellite(*satellite).name);
    DateToJ2000(observer, observer.JulianDateTDT(), place->raRad, place->decRad, m.raJ2000Rad, m.decJ2000Rad);
    m.magnitude = place->magnitude;
    return {m};
}

std::optional<ObjectDescription> CPlanetMoonSource::Describe(std::uint32_t key, const DescribeRequest& request) const
{
    if (key >= static_cast<std::uint32_t>(kChartSatelliteCount)) return std::nullopt;
    const int satellite = static_cast<int>(key);
    const ChartSatelliteInfo& info = ChartSatellite(satellite);
    CObserverDoc observer;
    if (request.hasSite) {
        observer.SetSite("", request.latitudeRad, request.longitudeRad, request.heightM);
        observer.SetTimeZone(request.localOffsetHours, false);
    }
    observer.SetJulianDate(request.jdUT);
    PlanetRecord planet;
    const auto place = SatelliteAt(observer, satellite, PlaceCentre::Geocentric, planet);
    if (!place) return std::nullopt;
    ObjectDescription d;
    d.type = ObjectType::Planet;
    d.designation = std::string(info.name);
    char line[200];
    const double radiusArcsec = 0.5 * planet.apparentDiameterRad * kRadToArcsec;
    // Offsets along the planet's equator (east: toward its following limb)
    // and axis, as observers' tables give them.
    const double east = -place->xyz.xRadii;
    const double north = place->xyz.yRadii;
    std::snprintf(line, sizeof line,
                  "\nSatellite of %s\nMagnitude: %.1f\nFrom %s: %.2f radii %s, %.2f radii %s (%.0f\xE2\x80\xB3)\n%s",
                  std::string(BodyName(info.planet)).c_str(), place->magnitude,
                  std::string(BodyName(info.planet)).c_str(), std::fabs(east), east >= 0.0 ? "east" : "west",
                  std::fabs(north), north >= 0.0 ? "north" : "south",
                  std::hypot(place->xyz.xRadii, place->xyz.yRadii) * radiusArcsec,
                  place->hiddenByPlanet ? "Behind the planet (occulted)"
                                        : (place->xyz.zRadii < 0.0 ? "In front of the planet" : "Beyond the planet"));
    d.information = d.designation + line;
    d.information += info.planet == kBodyJupiter ? "\nPositions: Lieske's theory E5 (Meeus ch. 44)"
                                                 : "\nPositions: Meeus ch. 46 (Harper & Taylor)";
    DateToJ2000(observer, request.jdTT, place->raRad, place->decRad, d.raJ2000Rad, d.decJ2000Rad);
    return d;
}

void CPlanetMoonSource::CompletionNames(std::vector<std::string>& out) const
{
    for (int k = 0; k < kChartSatelliteCount; ++k) out.emplace_back(ChartSatellite(k).name);
}

std::uint32_t PlanetStyleWord(double grsLongitudeDeg)
{
    double l = std::fmod(grsLongitudeDeg, 360.0);
    if (!std::isfinite(l)) l = 80.0;
    if (l < 0.0) l += 360.0;
    return 1u + static_cast<std::uint32_t>(std::lround(l * 100.0));
}

double GreatRedSpotLongitudeFromStyle(std::uint32_t style)
{
    // 0: no chart said (the default setting); ~0: the command line's "all".
    if (style == 0 || style > 36001u) return 80.0;
    return (style - 1u) * 0.01;
}

void CPlanetObjectSource::CompletionNames(std::vector<std::string>& out) const
{
    for (int body = 0; body < kBodyCount; ++body) out.emplace_back(BodyName(body));
}

}  // namespace orv
