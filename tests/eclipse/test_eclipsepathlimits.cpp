// Our central line and umbral (antumbral) limits against NASA's published
// path tables (Espenak, NASA Eclipse Web Site, "Path of the Total Solar
// Eclipse of 1980 Feb 16" and "Path of the Annular Solar Eclipse of 2056 Jan
// 16", tables of the northern and southern limits and the central line at
// given instants of UT, WGS 84, to 0.1′). The figures below are copied from
// those tables, rows with the Sun at least 10° high.
//
// Measured across the path: the distance from the published point to our
// line drawn finely about the same instant, so that a second's difference of
// ΔT or of the instant (the shadow runs several kilometres a second near
// the ends of the path) does not count; what counts is where the path lies.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "eclipse/eclipsefinder.h"
#include "eclipse/eclipsepaths.h"
#include "observer/observer.h"
#include "util/datapath.h"

namespace orv {
namespace {

constexpr double kDeg = 3.14159265358979323846 / 180.0;
constexpr double kEarthKm = 6371.0;

// Degrees and minutes with the hemisphere's sign.
constexpr double Dm(int deg, double min, int sign) { return sign * (deg + min / 60.0); }
constexpr int N = 1, S = -1, E = 1, W = -1;

struct PathRow {
    int hour, minute;  // UT
    double northLat, northLon, southLat, southLon, centralLat, centralLon;
};

// Distance in km from p to the segment a–b, on a plane tangent at p
// (the segments are a few kilometres long).
double SegmentDistanceKm(const GeoPoint& p, const GeoPoint& a, const GeoPoint& b)
{
    auto local = [&](const GeoPoint& q, double& x, double& y) {
        double dLon = q.longitudeDeg - p.longitudeDeg;
        if (dLon > 180.0) dLon -= 360.0;
        if (dLon < -180.0) dLon += 360.0;
        x = dLon * kDeg * std::cos(p.latitudeDeg * kDeg) * kEarthKm;
        y = (q.latitudeDeg - p.latitudeDeg) * kDeg * kEarthKm;
    };
    double ax, ay, bx, by;
    local(a, ax, ay);
    local(b, bx, by);
    const double dx = bx - ax, dy = by - ay;
    const double len2 = dx * dx + dy * dy;
    double u = len2 > 0.0 ? -(ax * dx + ay * dy) / len2 : 0.0;
    u = std::fmax(0.0, std::fmin(1.0, u));
    return std::hypot(ax + u * dx, ay + u * dy);
}

// Our line (`which`: 0 central, +1 northern limit, −1 southern limit) every
// 2 s over ±100 s about the UT instant, and the published point's distance
// from it.
double DistanceFromOurLineKm(const BesselianElements& b, double jdUT, int which, const GeoPoint& published)
{
    std::vector<GeoPoint> line;
    for (int s = -100; s <= 100; s += 2) {
        const double t = (jdUT + (b.deltaTSeconds + s) / 86400.0 - b.t0JdTT) * 24.0;
        GeoPoint p;
        const bool ok = which == 0 ? FundamentalPlaneToGeo(b, t, b.X(t), b.Y(t), p)
                                   : ShadowLimitPoint(b, t, ShadowEdge::Umbra, which, p);
        if (ok) line.push_back(p);
    }
    double best = 1e9;
    for (std::size_t i = 1; i < line.size(); ++i) best = std::fmin(best, SegmentDistanceKm(published, line[i - 1], line[i]));
    return best;
}

void CheckPath(int year, int month, int day, const std::vector<PathRow>& rows, double toleranceKm)
{
    const double jdNear = JulianDateFromCivil(CivilDateTime{year, month, day, rows.front().hour, 0, 0.0});
    const auto e = EclipseAtSyzygyNear(jdNear, EclipseKind::Solar);
    ASSERT_TRUE(e.has_value());
    BesselianElements b;
    ASSERT_TRUE(ComputeBesselianElements(e->jdTT, b));
    for (const PathRow& r : rows) {
        SCOPED_TRACE(testing::Message() << r.hour << ":" << r.minute << " UT");
        const double jdUT = JulianDateFromCivil(CivilDateTime{year, month, day, r.hour, r.minute, 0.0});
        EXPECT_LT(DistanceFromOurLineKm(b, jdUT, 1, {r.northLat, r.northLon}), toleranceKm) << "northern limit";
        EXPECT_LT(DistanceFromOurLineKm(b, jdUT, -1, {r.southLat, r.southLon}), toleranceKm) << "southern limit";
        EXPECT_LT(DistanceFromOurLineKm(b, jdUT, 0, {r.centralLat, r.centralLon}), toleranceKm) << "central line";
    }
}

bool HaveEphemeris()
{
    SunMoonPlaces p;
    return SunMoonAt(2451545.0, p);
}

// The tables give the coordinates to 0.1′ (up to 0.18 km); ours fall within
// 0.22 km of them. Half a kilometre leaves room for that rounding and for
// the two ephemerides (the canon's ELP-2000/82 and VSOP87 against our
// ELP/MPP02 block and VSOP87D: 0.1″ of the Moon is 0.2 km on the Earth),
// while a wrong lunar radius (k1 for k2 moves the limits 1.3 km) or
// flattening would show.
constexpr double kToleranceKm = 0.5;

TEST(EclipsePathLimits, TotalEclipse1980February16)
{
    if (!HaveEphemeris()) GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath() << ")";
    const std::vector<PathRow> rows = {
        {7, 14, Dm(3, 2.2, S), Dm(4, 37.7, W), Dm(4, 1.6, S), Dm(4, 9.7, W), Dm(3, 32.0, S), Dm(4, 22.7, W)},
        {7, 16, Dm(3, 45.4, S), Dm(0, 27.5, W), Dm(4, 45.4, S), Dm(0, 7.1, W), Dm(4, 15.5, S), Dm(0, 16.7, W)},
        {7, 18, Dm(4, 13.7, S), Dm(2, 37.5, E), Dm(5, 14.9, S), Dm(2, 55.0, E), Dm(4, 44.3, S), Dm(2, 46.8, E)},
        {7, 20, Dm(4, 34.4, S), Dm(5, 9.6, E), Dm(5, 36.7, S), Dm(5, 25.8, E), Dm(5, 5.6, S), Dm(5, 18.2, E)},
        {7, 21, Dm(4, 42.7, S), Dm(6, 17.4, E), Dm(5, 45.6, S), Dm(6, 33.1, E), Dm(5, 14.2, S), Dm(6, 25.7, E)},
    };
    CheckPath(1980, 2, 16, rows, kToleranceKm);
}

TEST(EclipsePathLimits, AnnularEclipse2056January16)
{
    if (!HaveEphemeris()) GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath() << ")";
    const std::vector<PathRow> rows = {
        {20, 36, Dm(15, 48.5, N), Dm(159, 18.9, E), Dm(14, 1.0, N), Dm(160, 35.0, E), Dm(14, 52.9, N), Dm(160, 0.6, E)},
        {20, 38, Dm(14, 6.0, N), Dm(163, 34.6, E), Dm(12, 35.4, N), Dm(164, 15.2, E), Dm(13, 19.9, N), Dm(163, 56.2, E)},
        {20, 40, Dm(12, 55.2, N), Dm(166, 31.9, E), Dm(11, 32.1, N), Dm(166, 59.1, E), Dm(12, 13.2, N), Dm(166, 46.2, E)},
        {20, 42, Dm(11, 59.1, N), Dm(168, 54.0, E), Dm(10, 40.6, N), Dm(169, 13.7, E), Dm(11, 19.5, N), Dm(169, 4.3, E)},
    };
    CheckPath(2056, 1, 16, rows, kToleranceKm);
}

}  // namespace
}  // namespace orv
