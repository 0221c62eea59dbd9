#include "match/delporteedges.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "common/sky.h"
#include "common/textfields.h"

namespace orv::databuild {

namespace {

constexpr double kArcsecToRad = kDegToRad / 3600.0;
constexpr double kDaySec = 86400.0;

struct Point1875 {
    double raSecTime;  // [0, 86400)
    double decArcsec;
};

// Signed step in right ascension from a to b, seconds of time, the short way.
double RaStep(double a, double b)
{
    double d = b - a;
    if (d > kDaySec / 2) d -= kDaySec;
    if (d < -kDaySec / 2) d += kDaySec;
    return d;
}

}  // namespace

void PrecessIau1976(double& raDeg, double& decDeg, double jdFrom, double jdTo)
{
    const double T = (jdFrom - 2451545.0) / 36525.0;
    const double t = (jdTo - jdFrom) / 36525.0;
    const double zeta = ((2306.2181 + 1.39656 * T - 0.000139 * T * T) * t + (0.30188 - 0.000344 * T) * t * t +
                         0.017998 * t * t * t) * kArcsecToRad;
    const double z = ((2306.2181 + 1.39656 * T - 0.000139 * T * T) * t + (1.09468 + 0.000066 * T) * t * t +
                      0.018203 * t * t * t) * kArcsecToRad;
    const double theta = ((2004.3109 - 0.85330 * T - 0.000217 * T * T) * t - (0.42665 + 0.000217 * T) * t * t -
                          0.041833 * t * t * t) * kArcsecToRad;
    const double ra = raDeg * kDegToRad, dec = decDeg * kDegToRad;
    const double a = std::cos(dec) * std::sin(ra + zeta);
    const double b = std::cos(theta) * std::cos(dec) * std::cos(ra + zeta) - std::sin(theta) * std::sin(dec);
    const double c = std::sin(theta) * std::cos(dec) * std::cos(ra + zeta) + std::cos(theta) * std::sin(dec);
    double raOut = (std::atan2(a, b) + z) / kDegToRad;
    raOut = std::fmod(raOut, 360.0);
    if (raOut < 0.0) raOut += 360.0;
    raDeg = raOut;
    decDeg = std::asin(std::clamp(c, -1.0, 1.0)) / kDegToRad;
}

bool RecoverDelporteEdges(const std::vector<BoundarySegment>& segments, std::vector<BoundaryEdge>& edges,
                          std::string& error)
{
    for (const BoundarySegment& seg : segments) {
        std::vector<Point1875> p;
        for (auto [ra, dec] : seg.pointsJ2000Deg) {
            PrecessIau1976(ra, dec, 2451545.0, kJdB1875);
            p.push_back({ra * 240.0, dec * 3600.0});
        }
        const auto where = [&] { return "boundary segment at line " + std::to_string(seg.line); };
        // A step is along a meridian when the right ascension stays (within a
        // tenth of the vertex tolerance), else along a parallel, which must
        // then keep its declination.
        auto meridian = [&](std::size_t i) {
            return std::abs(RaStep(p[i].raSecTime, p[i + 1].raSecTime)) < 0.5 * kVertexToleranceSecTime;
        };
        std::vector<std::size_t> corners{0};
        for (std::size_t i = 0; i + 1 < p.size(); ++i) {
            if (!meridian(i) && std::abs(p[i + 1].decArcsec - p[i].decArcsec) > 60.0 * kVertexToleranceArcmin)
                return Fail(error, where() + ": a step along neither a meridian nor a parallel");
            if (i + 2 < p.size() && meridian(i) != meridian(i + 1)) corners.push_back(i + 1);
        }
        corners.push_back(p.size() - 1);

        std::vector<Point1875> vertices;
        for (std::size_t c : corners) {
            const double raRound = std::round(p[c].raSecTime);
            const double decRound = std::round(p[c].decArcsec / 60.0) * 60.0;
            if (std::abs(p[c].raSecTime - raRound) > kVertexToleranceSecTime &&
                std::abs(p[c].raSecTime - raRound - kDaySec) > kVertexToleranceSecTime)
                return Fail(error, where() + ": a vertex off the whole seconds of B1875.0 right ascension");
            if (std::abs(p[c].decArcsec - decRound) > 60.0 * kVertexToleranceArcmin)
                return Fail(error, where() + ": a vertex off the whole arc minutes of B1875.0 declination");
            vertices.push_back({std::fmod(raRound, kDaySec), decRound});
        }
        for (std::size_t v = 0; v + 1 < vertices.size(); ++v) {
            const Point1875 a = vertices[v], b = vertices[v + 1];
            const bool alongParallel = a.decArcsec == b.decArcsec;
            // The way the source's points go round, summed step by step.
            double span = 0.0;
            for (std::size_t i = corners[v]; i < corners[v + 1]; ++i) span += RaStep(p[i].raSecTime, p[i + 1].raSecTime);
            const int parts = alongParallel ? std::max(1, static_cast<int>(std::ceil(std::abs(span) / 21600.0))) : 1;
            double from = a.raSecTime;
            for (int k = 1; k <= parts; ++k) {
                double to = k == parts ? b.raSecTime : std::round(a.raSecTime + span * k / parts);
                to = std::fmod(to + kDaySec, kDaySec);
                BoundaryEdge e;
                e.left = seg.left;
                e.right = seg.right;
                e.ra1SecTime = static_cast<std::int32_t>(from);
                e.dec1Arcsec = static_cast<std::int32_t>(a.decArcsec);
                e.ra2SecTime = static_cast<std::int32_t>(to);
                e.dec2Arcsec = static_cast<std::int32_t>(b.decArcsec);
                if (e.ra1SecTime != e.ra2SecTime || e.dec1Arcsec != e.dec2Arcsec) edges.push_back(e);
                from = to;
            }
        }
    }
    return true;
}

}  // namespace orv::databuild
