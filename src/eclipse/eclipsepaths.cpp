#include "eclipse/eclipsepaths.h"

#include <algorithm>
#include <cmath>

#include "observer/observer.h"

namespace orv {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegToRad = kPi / 180.0;

double WrapLongitudeDeg(double deg)
{
    deg = std::fmod(deg, 360.0);
    if (deg <= -180.0) deg += 360.0;
    if (deg > 180.0) deg -= 360.0;
    return deg;
}

// Appends to the last polyline of `lines`, or starts a new one after a gap.
void Extend(std::vector<GeoLine>& lines, bool& open, bool have, const GeoPoint& p)
{
    if (!have) {
        open = false;
        return;
    }
    if (!open) lines.emplace_back();
    lines.back().push_back(p);
    open = true;
}

}  // namespace

bool FundamentalPlaneToGeo(const BesselianElements& e, double t, double xi, double eta, GeoPoint& out)
{
    // The ellipsoid seen along the axis (Explanatory Supplement 8.3):
    // scaled so that the Earth's section is the unit circle.
    const double e2 = kEclipseEarthFlattening * (2.0 - kEclipseEarthFlattening);
    const double d = e.DDeg(t) * kDegToRad;
    const double rho1 = std::sqrt(1.0 - e2 * std::cos(d) * std::cos(d));
    const double sinD1 = std::sin(d) / rho1;
    const double cosD1 = std::sqrt(1.0 - e2) * std::cos(d) / rho1;
    const double eta1 = eta / rho1;
    const double z2 = 1.0 - xi * xi - eta1 * eta1;
    if (z2 < 0.0) return false;
    const double zeta1 = std::sqrt(z2);
    const double sinPhi1 = eta1 * cosD1 + zeta1 * sinD1;
    const double cosPhi1CosH = zeta1 * cosD1 - eta1 * sinD1;
    const double hourAngle = std::atan2(xi, cosPhi1CosH);
    const double phi1 = std::asin(std::clamp(sinPhi1, -1.0, 1.0));
    out.latitudeDeg = std::atan(std::tan(phi1) / std::sqrt(1.0 - e2)) / kDegToRad;
    // H = μ + λ − 0.00417807° ΔT.
    out.longitudeDeg = WrapLongitudeDeg(hourAngle / kDegToRad - e.MuDeg(t) + 0.00417807 * e.deltaTSeconds);
    return true;
}

bool ShadowLimitPoint(const BesselianElements& e, double t, ShadowEdge edge, double side, GeoPoint& out)
{
    // From the axis, across the relative motion, at the shadow's radius on
    // the point's own plane; four passes settle ζ.
    const bool umbra = edge == ShadowEdge::Umbra;
    const double muRate = e.muDeg[1] * kDegToRad;  // radians per hour
    const double x = e.X(t), y = e.Y(t);
    const double dx = (e.X(t + 1e-3) - e.X(t - 1e-3)) / 2e-3;
    const double dy = (e.Y(t + 1e-3) - e.Y(t - 1e-3)) / 2e-3;
    const double d = e.DDeg(t) * kDegToRad;
    double xi = x, eta = y, zeta = 0.0;
    {
        const double z2 = 1.0 - xi * xi - eta * eta;
        zeta = z2 > 0.0 ? std::sqrt(z2) : 0.0;
    }
    for (int pass = 0; pass < 4; ++pass) {
        const double dxi = muRate * (zeta * std::cos(d) - eta * std::sin(d));
        const double deta = muRate * xi * std::sin(d);
        double a = dx - dxi, b = dy - deta;
        const double n = std::hypot(a, b);
        if (!(n > 0.0)) return false;
        a /= n;
        b /= n;
        const double radius = umbra ? std::fabs(e.L2(t) - zeta * e.tanF2) : e.L1(t) - zeta * e.tanF1;
        xi = x - side * b * radius;
        eta = y + side * a * radius;
        const double z2 = 1.0 - xi * xi - eta * eta;
        if (z2 < 0.0) return false;
        zeta = std::sqrt(z2);
    }
    return FundamentalPlaneToGeo(e, t, xi, eta, out);
}

SolarEclipsePaths ComputeSolarEclipsePaths(const BesselianElements& e, double greatestJdTT)
{
    SolarEclipsePaths paths;
    bool openC = false, openUN = false, openUS = false, openPN = false, openPS = false;

    auto limit = [&](double t, bool umbra, double side, GeoPoint& out) {
        return ShadowLimitPoint(e, t, umbra ? ShadowEdge::Umbra : ShadowEdge::Penumbra, side, out);
    };

    for (int minute = -240; minute <= 240; ++minute) {
        const double t = minute / 60.0;
        GeoPoint p;
        Extend(paths.central, openC, FundamentalPlaneToGeo(e, t, e.X(t), e.Y(t), p), p);
        // side +1 is to the left of the motion (north for the usual
        // west-to-east track); sorted below by latitude.
        GeoPoint a, b;
        const bool haveA = limit(t, true, 1.0, a), haveB = limit(t, true, -1.0, b);
        Extend(paths.umbraNorth, openUN, haveA, a);
        Extend(paths.umbraSouth, openUS, haveB, b);
        const bool havePA = limit(t, false, 1.0, a), havePB = limit(t, false, -1.0, b);
        Extend(paths.penumbraNorth, openPN, havePA, a);
        Extend(paths.penumbraSouth, openPS, havePB, b);
    }
    // Left of the motion is north when the shadow moves eastward on the
    // plane (x increasing), as it always does.
    const double tG = (greatestJdTT - e.t0JdTT) * 24.0;
    paths.greatestJdUT = greatestJdTT - e.deltaTSeconds / 86400.0;
    const double x = e.X(tG), y = e.Y(tG);
    if (FundamentalPlaneToGeo(e, tG, x, y, paths.greatest)) {
        paths.hasGreatest = true;
    } else {
        // Not central: the point of the limb nearest the axis.
        const double r = std::hypot(x, y);
        paths.hasGreatest = r > 0.0 && FundamentalPlaneToGeo(e, tG, x / r * 0.99999, y / r * 0.99999, paths.greatest);
    }
    return paths;
}

bool ComputeLunarVisibilityRegion(double greatestJdTT, LunarVisibilityRegion& out)
{
    SunMoonPlaces p;
    if (!SunMoonAt(greatestJdTT, p)) return false;
    const double jdUT = greatestJdTT - DeltaTSeconds(greatestJdTT) / 86400.0;
    out.greatestJdUT = jdUT;
    const double gast = GreenwichApparentSiderealTimeRad(jdUT, greatestJdTT);
    out.subLunar.latitudeDeg = p.moonDecRad / kDegToRad;
    out.subLunar.longitudeDeg = WrapLongitudeDeg((p.moonRaRad - gast) / kDegToRad);
    // The great circle 90° from the sub-lunar point.
    const double lat0 = p.moonDecRad, lon0 = out.subLunar.longitudeDeg * kDegToRad;
    out.horizon.clear();
    for (int i = 0; i <= 360; ++i) {
        const double az = i * kDegToRad;
        const double lat = std::asin(std::cos(lat0) * std::cos(az));
        const double lon = lon0 + std::atan2(std::sin(az) * std::cos(lat0), -std::sin(lat0) * std::sin(lat));
        out.horizon.push_back({lat / kDegToRad, WrapLongitudeDeg(lon / kDegToRad)});
    }
    return true;
}

}  // namespace orv
