// Where on the Earth an eclipse is seen: for a solar eclipse the central
// line, the northern and southern limits of the umbra (or antumbra) and of
// the penumbra, and the point of greatest eclipse; for a lunar eclipse the
// point with the Moon in the zenith at greatest eclipse and the outline of
// the hemisphere where the Moon is up then. From the Besselian elements
// (Explanatory Supplement 1992, §8.3–8.5; Meeus, Elements of Solar Eclipses).
#pragma once

#include <vector>

#include "eclipse/eclipsefinder.h"
#include "eclipse/eclipsegeometry.h"

namespace orv {

struct GeoPoint {
    double latitudeDeg = 0.0;   // geodetic
    double longitudeDeg = 0.0;  // east positive, (−180, 180]
};
using GeoLine = std::vector<GeoPoint>;

struct SolarEclipsePaths {
    // Each a list of polylines: a line breaks where it leaves the Earth.
    std::vector<GeoLine> central;
    std::vector<GeoLine> umbraNorth, umbraSouth;
    std::vector<GeoLine> penumbraNorth, penumbraSouth;
    bool hasGreatest = false;
    GeoPoint greatest;          // on the central line, or on the limb for a non-central eclipse
    double greatestJdUT = 0.0;  // the instant of greatest eclipse, UT
};

// Lines sampled every minute over the elements' span (t0 ± 4 h). A limit
// point is the point of the Earth's surface whose distance from the shadow
// axis on its own plane equals the shadow's radius there (L1′ or |L2′|),
// across the shadow's motion relative to the turning Earth.
SolarEclipsePaths ComputeSolarEclipsePaths(const BesselianElements& elements, double greatestJdTT);

// The place on the Earth of a point (ξ, η) of the fundamental plane on the
// sunward side, at t hours from t0; false when the point lies off the Earth.
bool FundamentalPlaneToGeo(const BesselianElements& elements, double tHours, double xi, double eta, GeoPoint& out);

// One point of a limit at t hours from t0: the point of the surface whose
// distance from the shadow axis on its own plane equals the shadow's radius
// (|L2′| for the umbra or antumbra, L1′ for the penumbra), across the
// shadow's motion relative to the turning Earth; side +1 to the left of that
// motion (north), −1 to the right. False when that point is off the Earth.
enum class ShadowEdge { Umbra, Penumbra };
bool ShadowLimitPoint(const BesselianElements& elements, double tHours, ShadowEdge edge, double side, GeoPoint& out);

struct LunarVisibilityRegion {
    GeoPoint subLunar;           // the Moon in the zenith at greatest eclipse
    GeoLine horizon;             // the Moon on the horizon (geocentric), closed
    double greatestJdUT = 0.0;
};
// False when the ephemeris is unavailable.
bool ComputeLunarVisibilityRegion(double greatestJdTT, LunarVisibilityRegion& out);

}  // namespace orv
