#include "solarsystem/planetsource.h"

#include <cmath>
#include <cctype>
#include <cstdio>

#include "observer/observer.h"

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
    return d;
}

void CPlanetObjectSource::CompletionNames(std::vector<std::string>& out) const
{
    for (int body = 0; body < kBodyCount; ++body) out.emplace_back(BodyName(body));
}

}  // namespace orv
