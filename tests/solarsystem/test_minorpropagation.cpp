// Two-body propagation away from the elements' epoch against JPL Horizons
// (tests/data/minor/horizons-away.txt, sources in its README).
//
// At the epoch the osculating orbit and the integrated one coincide, so a
// difference there is ours (orientation, Kepler's equation, units). Away
// from it the real asteroid is pulled by Jupiter and the other planets and
// drifts off its osculating ellipse: the displacement starts quadratically
// in time (a perturbing acceleration of some 1e-9 km/s² acting from rest
// relative to the ellipse) and reaches tens of thousands of kilometres in a
// year. These tests hold our propagation to the arcsecond near the epoch
// and to a stated bound that follows that growth further out, so that an
// error of ours (a wrong mean motion, a frame mix-up) cannot hide in it.
//
// Angles are measured as seen from the Earth (geocentric direction of the
// geometric positions at the same instant, the Earth from VSOP87) where the
// planetary series is installed, and from the Sun always.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "solarsystem/minorelements.h"
#include "solarsystem/orbits.h"
#include "solarsystem/planets.h"
#include "solarsystem/vsop87.h"
#include "support/compare.h"
#include "util/datapath.h"

using namespace orv;
using orv::test::kArcsecFromRad;

namespace {

constexpr double kRadPerArcsec = 1.0 / 206264.80624709636;
constexpr double kKmPerAU = 149597870.7;  // IAU 2012 B2, as Horizons uses it
// The obliquity of Horizons' "ecliptic of J2000" (IAU 1976): 84381.448″.
constexpr double kObliquityRad = 84381.448 * kRadPerArcsec;

struct Sample {
    double jdTT = 0.0;
    Vector3 equatorialAU;  // heliocentric, J2000 equator
};

struct Body {
    std::optional<TwoBodyOrbit> orbit;
    double epochJd = 0.0;
    std::vector<Sample> samples;
};

std::vector<std::string> Split(const std::string& line)
{
    std::vector<std::string> f;
    std::istringstream fields(line);
    std::string field;
    while (std::getline(fields, field, ';')) f.push_back(field);
    return f;
}

std::map<std::string, Body> ReadBodies()
{
    std::map<std::string, Body> bodies;
    std::istringstream in(orv::test::ReadFileBytes(orv::test::TestDataDir() + "/minor/horizons-away.txt"));
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        const std::vector<std::string> f = Split(line);
        if (f[0] == "ELEMENTS" && f.size() == 10) {
            Body& b = bodies[f[1]];
            b.epochJd = std::stod(f[2]);
            const double a = std::stod(f[3]) / (f[4] == "km" ? kKmPerAU : 1.0);
            b.orbit = OrbitFromMeanAnomaly(std::stod(f[9]), b.epochJd, a, std::stod(f[5]), std::stod(f[8]),
                                           std::stod(f[7]), std::stod(f[6]));
        } else if (f[0] == "MPCORB" && f.size() == 3) {
            // The catalogue's own route: the MPC line read as an import reads it.
            AsteroidElements a;
            if (!ParseMpcorbLine(f[2], a)) continue;
            Body& b = bodies[f[1]];
            b.epochJd = a.epochJdTT;
            b.orbit = OrbitFromMeanAnomaly(a.meanAnomalyDeg, a.epochJdTT, a.aAU, a.e, a.argPerihelionDeg, a.nodeDeg,
                                           a.inclinationDeg);
        } else if (f[0] == "POSITION" && f.size() == 8) {
            const double scale = f[4] == "km" ? 1.0 / kKmPerAU : 1.0;
            Vector3 p{std::stod(f[5]) * scale, std::stod(f[6]) * scale, std::stod(f[7]) * scale};
            if (f[3] == "ECLIPTIC") {
                const double c = std::cos(kObliquityRad), s = std::sin(kObliquityRad);
                p = {p.x, c * p.y - s * p.z, s * p.y + c * p.z};
            }
            bodies[f[1]].samples.push_back({std::stod(f[2]), p});
        }
    }
    return bodies;
}

Vector3 Minus(const Vector3& a, const Vector3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
double Norm(const Vector3& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }
double AngleBetween(const Vector3& a, const Vector3& b)
{
    const Vector3 c{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    return std::atan2(Norm(c), a.x * b.x + a.y * b.y + a.z * b.z);
}

// Our position and Horizons' at one sample: the displacement (km) and the
// angle as seen from the Earth (radians; nothing without VSOP87).
struct Miss {
    double km = 0.0;
    double heliocentricRad = 0.0;
    std::optional<double> geocentricRad;
};

Miss Compare(const Body& b, const Sample& s)
{
    Miss m;
    Vector3 ours;
    EXPECT_TRUE(b.orbit && HeliocentricJ2000(*b.orbit, s.jdTT, ours));
    m.km = Norm(Minus(ours, s.equatorialAU)) * kKmPerAU;
    m.heliocentricRad = AngleBetween(ours, s.equatorialAU);
    double earth[3];
    if (SharedVsop87D().IsOpen() && Vsop87Heliocentric(SharedVsop87D(), 3, s.jdTT, nullptr, earth)) {
        const Vector3 e{earth[0], earth[1], earth[2]};
        m.geocentricRad = AngleBetween(Minus(ours, e), Minus(s.equatorialAU, e));
    }
    return m;
}

const Body& Get(const std::map<std::string, Body>& bodies, const std::string& name)
{
    static const Body none;
    const auto it = bodies.find(name);
    EXPECT_NE(it, bodies.end()) << name << " missing from tests/data/minor/horizons-away.txt";
    return it == bodies.end() ? none : it->second;
}

}  // namespace

// At the epoch: Pallas (two solutions, one of them 2.77 AU from the Sun at
// 35° inclination), Hygiea and the near-Earth asteroid Eros, 0.05″ as seen
// from the Sun and 10 km (the figures carry 13 to 16 digits).
TEST(MinorPropagation, HorizonsPositionsAtTheEpoch)
{
    const std::map<std::string, Body> bodies = ReadBodies();
    ASSERT_EQ(5u, bodies.size()) << "tests/data/minor/horizons-away.txt is missing or damaged";
    int checked = 0;
    for (const auto& [name, body] : bodies) {
        ASSERT_TRUE(body.orbit) << name;
        for (const Sample& s : body.samples) {
            if (s.jdTT != body.epochJd) continue;
            const Miss m = Compare(body, s);
            EXPECT_NEAR_UNIT(0.0, m.heliocentricRad, 0.05 * kRadPerArcsec, kArcsecFromRad) << name;
            EXPECT_LT(m.km, 10.0) << name;
            ++checked;
        }
    }
    EXPECT_EQ(4, checked);
}

// A numbered asteroid near its epoch, where the two-body position is meant
// to hold to the arcsecond: (1) Ceres from the MPC's elements, 13.5 days
// before their epoch, against Horizons (JPL's own solution). We find 32 km
// and 0.006″ as seen from the Earth; the bounds, 150 km and 0.1″, leave room
// for the MPC's rounding (angles to 1e-5°, 0.036″) and for the two orbit
// solutions' small difference, and stay ten times inside the 1″ goal.
TEST(MinorPropagation, CeresFromMpcElementsTwoWeeksFromTheirEpoch)
{
    const std::map<std::string, Body> bodies = ReadBodies();
    const Body& ceres = Get(bodies, "1 Ceres (MPC 2025)");
    ASSERT_EQ(1u, ceres.samples.size());
    EXPECT_NEAR(-13.5, ceres.samples[0].jdTT - ceres.epochJd, 1e-9);
    const Miss m = Compare(ceres, ceres.samples[0]);
    EXPECT_LT(m.km, 150.0);
    if (!m.geocentricRad) GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath() << ")";
    EXPECT_NEAR_UNIT(0.0, *m.geocentricRad, 0.1 * kRadPerArcsec, kArcsecFromRad);
}

// Pallas a third of a year, two thirds and a year from its J2000 epoch, and
// a year before and after its 2026 epoch. We find 6,041, 22,234 and
// 43,134 km for the J2000 set (1.4″, 8.9″ and 13″ as seen from the Earth),
// the figures the integration's authors report for the same Horizons
// vectors against the same ellipse, and 66,000 and 43,000 km a year before
// and after the 2026 epoch. The drift must grow with the time from the
// epoch and stay under about twice those: 12,000 km (3″ from the Earth) at
// 121.75 days, 45,000 km at 243.5 days, 90,000 km at a year. A mean motion
// wrong by one part in a million would add 60,000 km in a year.
TEST(MinorPropagation, PallasDriftsFromItsEllipseAsPerturbationsPredict)
{
    const std::map<std::string, Body> bodies = ReadBodies();
    const Body& pallas = Get(bodies, "2 Pallas (JPL#74, 2000)");
    ASSERT_EQ(4u, pallas.samples.size());
    const double boundKm[] = {10.0, 12000.0, 45000.0, 90000.0};
    double last = -1.0;
    for (std::size_t i = 0; i < 4; ++i) {
        const Miss m = Compare(pallas, pallas.samples[i]);
        const double days = pallas.samples[i].jdTT - pallas.epochJd;
        EXPECT_LT(m.km, boundKm[i]) << days << " days from the epoch";
        EXPECT_GT(m.km, last) << "the drift should grow with the time from the epoch (" << days << " days)";
        last = m.km;
        if (i == 1 && m.geocentricRad) {
            EXPECT_NEAR_UNIT(0.0, *m.geocentricRad, 3.0 * kRadPerArcsec, kArcsecFromRad) << days << " days";
        }
    }
    const Body& later = Get(bodies, "2 Pallas (JPL#74, 2026)");
    ASSERT_EQ(3u, later.samples.size());
    for (const Sample& s : later.samples) {
        if (s.jdTT == later.epochJd) continue;
        EXPECT_LT(Compare(later, s).km, 90000.0) << s.jdTT - later.epochJd << " days from the epoch";
    }
}
