// Two-body positions at the elements' own epoch against JPL Horizons: the
// osculating elements Horizons prints in the header of an ephemeris come
// with the heliocentric ICRF position they are equivalent to at their
// epoch (tests/data/minor/horizons-osculating.txt, see its README). At the
// epoch the unperturbed orbit and the integrated one coincide, so any
// difference is ours: the orientation through ω, Ω, i and the J2000
// obliquity, the solution of Kepler's equation (elliptic orbits from the
// mean anomaly, and from the perihelion time for the asteroids and comet
// 1P/Halley, e = 0.968, 28 AU out on its way in), the mean motion from the
// Gaussian constant.
//
// Tolerance: 0.05″ in direction as seen from the Sun and 1e-8 of the
// distance. The elements are printed to 16 digits; the obliquity of the
// element convention (cos ε = 0.91748206, sin ε = 0.39777716) is good to
// 5e-9 rad (1 mas), and the ICRF differs from the J2000 frame by at most
// 23 mas (the frame bias), which the two-body code does not apply.
#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "solarsystem/orbits.h"
#include "support/compare.h"

using namespace orv;
using orv::test::kArcsecFromRad;

namespace {

constexpr double kRadPerArcsec = 1.0 / 206264.80624709636;

struct HorizonsCase {
    std::string name;
    double epochJd = 0.0, e = 0.0, qAU = 0.0, perihelionJd = 0.0, nodeDeg = 0.0, argPerihelionDeg = 0.0,
           inclinationDeg = 0.0;
    std::optional<double> meanAnomalyDeg, aAU;
    Vector3 positionAU;
};

std::vector<HorizonsCase> ReadCases()
{
    std::vector<HorizonsCase> out;
    std::istringstream in(orv::test::ReadFileBytes(orv::test::TestDataDir() + "/minor/horizons-osculating.txt"));
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::vector<std::string> f;
        std::istringstream fields(line);
        std::string field;
        while (std::getline(fields, field, ';')) f.push_back(field);
        if (f.size() != 13) continue;
        HorizonsCase c;
        c.name = f[0];
        c.epochJd = std::stod(f[1]);
        c.e = std::stod(f[2]);
        c.qAU = std::stod(f[3]);
        c.perihelionJd = std::stod(f[4]);
        c.nodeDeg = std::stod(f[5]);
        c.argPerihelionDeg = std::stod(f[6]);
        c.inclinationDeg = std::stod(f[7]);
        if (!f[8].empty()) c.meanAnomalyDeg = std::stod(f[8]);
        if (!f[9].empty()) c.aAU = std::stod(f[9]);
        c.positionAU = {std::stod(f[10]), std::stod(f[11]), std::stod(f[12])};
        out.push_back(c);
    }
    return out;
}

double Norm(const Vector3& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

// Angle between two vectors, radians (atan2 of cross and dot: exact for
// small angles).
double AngleBetween(const Vector3& a, const Vector3& b)
{
    const Vector3 c{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    return std::atan2(Norm(c), a.x * b.x + a.y * b.y + a.z * b.z);
}

void ExpectMatches(const HorizonsCase& c, const TwoBodyOrbit& orbit, const char* route)
{
    Vector3 p;
    ASSERT_TRUE(HeliocentricJ2000(orbit, c.epochJd, p)) << c.name << " " << route;
    EXPECT_NEAR_UNIT(0.0, AngleBetween(p, c.positionAU), 0.05 * kRadPerArcsec, kArcsecFromRad)
        << c.name << " " << route;
    EXPECT_NEAR(Norm(c.positionAU), Norm(p), 1e-8 * Norm(c.positionAU)) << c.name << " " << route;
}

}  // namespace

TEST(MinorHorizons, PositionsAtTheEpochOfTheElements)
{
    const std::vector<HorizonsCase> cases = ReadCases();
    ASSERT_EQ(4u, cases.size()) << "tests/data/minor/horizons-osculating.txt is missing or damaged";
    int fromMeanAnomaly = 0;
    for (const HorizonsCase& c : cases) {
        // As the comets' catalogue gives them: q, e, T.
        const std::optional<TwoBodyOrbit> conic = OrbitFromPerihelion(c.qAU, c.e, c.perihelionJd, c.argPerihelionDeg,
                                                                     c.nodeDeg, c.inclinationDeg);
        ASSERT_TRUE(conic) << c.name;
        ExpectMatches(c, *conic, "from q, e, T");
        // As the asteroids' catalogue and MPCORB give them: M0 at the epoch, a, e.
        if (c.meanAnomalyDeg && c.aAU) {
            const std::optional<TwoBodyOrbit> mean = OrbitFromMeanAnomaly(
                *c.meanAnomalyDeg, c.epochJd, *c.aAU, c.e, c.argPerihelionDeg, c.nodeDeg, c.inclinationDeg);
            ASSERT_TRUE(mean) << c.name;
            ExpectMatches(c, *mean, "from M0, a, e");
            ++fromMeanAnomaly;
        }
    }
    EXPECT_EQ(2, fromMeanAnomaly);
}
