// The Sun, the Moon and the planets as a source of sky objects: "Sun",
// "Moon", "Mercury" … "Pluto" (any letter case) found with their place at the
// observer's instant, and the identify read-out of a body drawn on a chart
// (distance, light time, magnitude, phase, elongation, apparent diameter).
// The key of a body is its identifier (0 the Moon … 9 Pluto).
#pragma once

#include <optional>
#include <string>

#include "map/skyobjects.h"
#include "solarsystem/planets.h"

namespace orv {

class CPlanetObjectSource final : public ISkyObjectSource {
public:
    std::string_view Name() const override { return "Sun, Moon and planets"; }
    std::string_view Forms() const override { return "Sun, Moon, Mercury, Venus, Mars, Jupiter, Saturn, Uranus, Neptune, Pluto"; }
    // The planets need the VSOP87 files; the Moon is built in.
    bool Available() const override { return true; }
    // The place given is the body's apparent topocentric place of date for
    // the observer's site and instant, referred back to the J2000 equator
    // and equinox: a chart of that site centred there has the body at its
    // centre (the Moon's parallax reaches a degree).
    std::vector<SkyObjectMatch> Resolve(std::string_view text, const CObserverDoc& observer) const override;
    // The read-out is geocentric: the request carries the instant, not the site.
    std::optional<ObjectDescription> Describe(std::uint32_t key, const DescribeRequest& request) const override;
    void CompletionNames(std::vector<std::string>& out) const override;
};

// The satellites of Jupiter and Saturn the chart draws ("Io", "Europa",
// "Ganymede", "Callisto", "Mimas", "Enceladus", "Tethys", "Dione", "Rhea",
// "Titan", "Iapetus", any letter case), placed about their planet's apparent
// topocentric place. The key is the satellite's number (planetmoons.h).
class CPlanetMoonSource final : public ISkyObjectSource {
public:
    std::string_view Name() const override { return "satellites of Jupiter and Saturn"; }
    std::string_view Forms() const override { return "Io, Europa, Ganymede, Callisto, Mimas … Titan, Iapetus"; }
    bool Available() const override { return true; }
    std::vector<SkyObjectMatch> Resolve(std::string_view text, const CObserverDoc& observer) const override;
    std::optional<ObjectDescription> Describe(std::uint32_t key, const DescribeRequest& request) const override;
    void CompletionNames(std::vector<std::string>& out) const override;
};

// Apparent place of date (true equator and equinox) to the J2000 equator
// and equinox by the observer's nutation and precession, radians. The
// annual aberration stays in: the place is where the chart shows the body.
void DateToJ2000(const CObserverDoc& observer, double jdTT, double raDateRad, double decDateRad, double& raJ2000Rad,
                 double& decJ2000Rad);

// The multi-line read-out of a body whose record is filled (the designation
// first): distance, light time, magnitude, phase, elongation, apparent
// diameter. Empty when the record is not valid.
std::string DescribeBody(int body, const PlanetRecord& record);

// The style word the planet layer leaves in the chart's scene for this
// source: the Great Red Spot longitude of the map (System II, degrees, to
// 0.01°), so that Jupiter's read-out gives the transit of the spot drawn.
std::uint32_t PlanetStyleWord(double grsLongitudeDeg);
double GreatRedSpotLongitudeFromStyle(std::uint32_t style);

}  // namespace orv
