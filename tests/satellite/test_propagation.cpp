// SGP4/SDP4 against Vallado's verification set, and inputs the models cannot
// propagate.
//
// Reference: Vallado, Crawford, Hujsak & Kelso, "Revisiting Spacetrack Report
// #3", AIAA 2006-6753: the element sets SGP4-VER.TLE and the states of
// tcppver.out (WGS-72, "improved" mode), as shipped in Debian's python3-sgp4
// package. Those states come from the revised code; this implementation
// follows the 1980 report, so each satellite's tolerance below states where
// the two formulations part and why. Everything not listed agrees to 1 m
// (near Earth) or 30 m (deep space).
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <limits>
#include <map>
#include <sstream>

#include "satellite/propagator.h"
#include "satellite/wgs72.h"
#include "support/compare.h"
#include "util/angles.h"

namespace orv::sat {
namespace {

std::string VerificationDir()
{
    std::vector<std::string> candidates;
    if (const char* env = std::getenv("ORVANE_SGP4_VERIFICATION_DIR")) candidates.emplace_back(env);
    candidates.emplace_back("/usr/lib/python3/dist-packages/sgp4");
    for (const char* v : {"3.13", "3.12", "3.11", "3.10"})
        candidates.push_back(std::string("/usr/lib/python") + v + "/dist-packages/sgp4");
    for (const auto& c : candidates) {
        std::error_code ec;
        if (std::filesystem::exists(c + "/SGP4-VER.TLE", ec) && std::filesystem::exists(c + "/tcppver.out", ec))
            return c;
    }
    return {};
}

struct Case {
    std::string line1, line2;
    int satnum = 0;
    std::vector<std::array<double, 7>> states;  // minutes, x y z (km), vx vy vz (km/s)
};

std::vector<Case> LoadVerificationSet(const std::string& dir)
{
    std::vector<Case> cases;
    std::ifstream tle(dir + "/SGP4-VER.TLE");
    std::string line, line1;
    while (std::getline(tle, line)) {
        if (line.rfind("1 ", 0) == 0) line1 = line;
        else if (line.rfind("2 ", 0) == 0) cases.push_back(Case{line1, line, 0, {}});
    }
    std::ifstream out(dir + "/tcppver.out");
    std::size_t index = 0;
    Case* current = nullptr;
    while (std::getline(out, line)) {
        if (line.find("xx") != std::string::npos) {
            current = index < cases.size() ? &cases[index++] : nullptr;
            if (current) current->satnum = std::stoi(line);
            continue;
        }
        std::istringstream s(line);
        std::array<double, 7> v{};
        for (double& x : v) s >> x;
        if (s && current) current->states.push_back(v);
    }
    return cases;
}

// Tolerances in km (velocity: 1e-3 of it in km/s) where the report and the
// revised code part.
struct Allowance {
    double km;
    const char* reason;
};

constexpr const char* kPeriodicsInclination =
    "the report evaluates the lunar-solar periodics with sin i, cos i before the periodic change of i and keeps the "
    "epoch inclination in the short- and long-period terms; the revised code uses the perturbed inclination";
constexpr const char* kLyddaneChoice =
    "the report chooses the Lyddane form from the epoch inclination (>= 0.2 rad: direct), the revised code from "
    "the perturbed one";
constexpr const char* kInclinationThroughZero =
    "the secular inclination passes through zero: the report turns the orbit over (i -> -i, node + pi, perigee - "
    "pi) before adding the periodics, the revised code only after them";
constexpr const char* kEccentricityThroughZero =
    "in the last hours before decay drag drives the mean eccentricity below zero: the report lets it go negative, "
    "the revised code holds it at 1e-6";

const std::map<std::pair<int, int>, Allowance>& Allowances()
{
    // Keyed by catalogue number and occurrence in the file (20413 appears twice).
    static const std::map<std::pair<int, int>, Allowance> a{
        {{4632, 0}, {9.0, kLyddaneChoice}},
        {{9998, 0}, {9.5, kPeriodicsInclination}},
        {{14128, 0}, {2.0, kPeriodicsInclination}},
        {{20413, 0}, {2100.0, kLyddaneChoice}},
        {{22312, 0}, {0.35, kEccentricityThroughZero}},
        {{23177, 0}, {7.0, kPeriodicsInclination}},
        {{23333, 0}, {250.0, kPeriodicsInclination}},  // WIND: apogee beyond the Moon
        {{24208, 0}, {1.1, kPeriodicsInclination}},
        {{25954, 0}, {30.0, kInclinationThroughZero}},
        {{26900, 0}, {23.0, kInclinationThroughZero}},
        {{28350, 0}, {9.0, kEccentricityThroughZero}},
        {{28626, 0}, {6.7, kInclinationThroughZero}},
        {{33333, 0}, {4000.0, "sub-orbital test set (perigee inside the Earth, e = 0.995), refused by the revised code after 20 minutes; "
                         "the differences come from the periodics as for the other deep-space sets"}},
        {{33335, 0}, {7.3, kInclinationThroughZero}},
        {{20413, 1}, {30000.0, kInclinationThroughZero}},  // 3.5 years after the epoch
    };
    return a;
}

constexpr double kNearEarthToleranceKm = 0.001;
constexpr double kDeepSpaceToleranceKm = 0.030;  // kPeriodicsInclination, tens of metres

TEST(Sgp4Verification, EverySatelliteAndTimeOfValladosSet)
{
    const std::string dir = VerificationDir();
    if (dir.empty())
        GTEST_SKIP() << "Vallado's SGP4 verification set not found: install Debian's python3-sgp4 (SGP4-VER.TLE and "
                        "tcppver.out in its sgp4 module folder) or set ORVANE_SGP4_VERIFICATION_DIR";
    const std::vector<Case> cases = LoadVerificationSet(dir);
    ASSERT_EQ(cases.size(), 33u);

    double worstNear = 0, worstDeep = 0;
    int worstNearSat = 0, worstDeepSat = 0, compared = 0;
    std::map<int, int> occurrences;
    for (const Case& c : cases) {
        const int occurrence = occurrences[c.satnum]++;
        const SatelliteRecord record = ParseElementSet("VER", c.line1, c.line2);
        CSatellitePropagator propagator(record);
        const bool deep = propagator.Model() == OrbitModel::Sdp4DeepSpace;
        double tolerance = deep ? kDeepSpaceToleranceKm : kNearEarthToleranceKm;
        std::string reason = deep ? kPeriodicsInclination : "";
        if (auto it = Allowances().find({c.satnum, occurrence}); it != Allowances().end()) {
            tolerance = it->second.km;
            reason = it->second.reason;
        }
        if (c.satnum == 33334) {
            // 0.00001 rev/day: an orbit 140 times the Moon's distance; the
            // revised code refuses it too (tcppver.out repeats a stale line).
            TemeStateEarthRadii s;
            EXPECT_NE(propagator.Propagate(0.0, s), PropagationStatus::Ok);
            continue;
        }
        double worst = 0;
        for (const auto& v : c.states) {
            TemeStateEarthRadii er;
            const PropagationStatus status = propagator.Propagate(v[0], er);
            ASSERT_EQ(status, PropagationStatus::Ok) << "satellite " << c.satnum << " at " << v[0] << " min";
            const TemeStateKm km = ToKilometres(er);
            double dr = 0, dv = 0;
            for (int i = 0; i < 3; ++i) {
                dr += std::pow(km.positionKm[i] - v[1 + i], 2);
                dv += std::pow(km.velocityKmPerS[i] - v[4 + i], 2);
            }
            dr = std::sqrt(dr);
            dv = std::sqrt(dv);
            worst = std::max(worst, dr);
            EXPECT_LE(dr, tolerance) << "satellite " << c.satnum << " at " << v[0] << " min: position differs by "
                                     << dr << " km (tolerance " << tolerance << " km: " << reason << ")";
            EXPECT_LE(dv, std::max(1e-6, 1e-3 * tolerance))
                << "satellite " << c.satnum << " at " << v[0] << " min: velocity differs by " << dv << " km/s";
            ++compared;
        }
        if (deep && worst > worstDeep) worstDeep = worst, worstDeepSat = c.satnum;
        if (!deep && worst > worstNear) worstNear = worst, worstNearSat = c.satnum;
    }
    EXPECT_GT(compared, 600);
    RecordProperty("LargestNearEarthDifferenceKm", std::to_string(worstNear) + " (" + std::to_string(worstNearSat) + ")");
    RecordProperty("LargestDeepSpaceDifferenceKm", std::to_string(worstDeep) + " (" + std::to_string(worstDeepSat) + ")");
    std::cout << "[ sgp4 ] largest difference near Earth " << worstNear << " km (" << worstNearSat
              << "), deep space " << worstDeep << " km (" << worstDeepSat << ") over " << compared << " states\n";
}

TEST(Sgp4Verification, NearEarthAgreesToAMetreWhereTheFormulationsAgree)
{
    // The revised code's first example (00005) at 4320 minutes, tcppver.out:
    // -9060.47373569 4658.70952502 813.68673153 km.
    const SatelliteRecord r = ParseElementSet(
        "V", "1 00005U 58002B   00179.78495062  .00000023  00000-0  28098-4 0  4753",
        "2 00005  34.2682 348.7242 1859667 331.7664  19.3264 10.82419157413667");
    CSatellitePropagator p(r);
    TemeStateEarthRadii er;
    ASSERT_EQ(p.Propagate(4320.0, er), PropagationStatus::Ok);
    const TemeStateKm km = ToKilometres(er);
    EXPECT_NEAR(km.positionKm[0], -9060.47373569, 0.001);
    EXPECT_NEAR(km.positionKm[1], 4658.70952502, 0.001);
    EXPECT_NEAR(km.positionKm[2], 813.68673153, 0.001);
}

TEST(Sgp4Verification, ResultDoesNotDependOnTheCallBefore)
{
    // SDP4 keeps its resonance integrator between calls; a time reached
    // forwards, backwards or afresh gives the same state.
    const SatelliteRecord r = ParseElementSet(
        "MOLNIYA", "1 08195U 75081A   06176.33215444  .00000099  00000-0  11873-3 0   813",
        "2 08195  64.1586 279.0717 6877146 264.7651  20.2257  2.00491383225656");
    CSatellitePropagator fresh(r), walked(r);
    TemeStateEarthRadii a, b;
    ASSERT_EQ(fresh.Propagate(2000.0, a), PropagationStatus::Ok);
    for (double t : {5000.0, -300.0, 2880.0, 2000.0}) ASSERT_EQ(walked.Propagate(t, b), PropagationStatus::Ok);
    for (int i = 0; i < 3; ++i) EXPECT_DOUBLE_EQ(a.positionEr[i], b.positionEr[i]);
}

TEST(Propagation, NonFiniteAndOutOfRangeInputsReturnErrorsWithoutHanging)
{
    const SatelliteRecord good = ParseElementSet(
        "V", "1 00005U 58002B   00179.78495062  .00000023  00000-0  28098-4 0  4753",
        "2 00005  34.2682 348.7242 1859667 331.7664  19.3264 10.82419157413667");
    const SatelliteRecord geo = ParseElementSet(
        "ITALSAT", "1 24208U 96044A   06177.04061740 -.00000094  00000-0  10000-3 0  1600",
        "2 24208   3.8536  80.0121 0026640 311.0977  48.3000  1.00778054 36119");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (const SatelliteRecord& r : {good, geo}) {
        CSatellitePropagator p(r);
        TemeStateEarthRadii s;
        EXPECT_EQ(p.Propagate(nan, s), PropagationStatus::NonFiniteTime);
        EXPECT_EQ(p.Propagate(inf, s), PropagationStatus::NonFiniteTime);
        EXPECT_EQ(p.Propagate(-inf, s), PropagationStatus::NonFiniteTime);
        EXPECT_EQ(p.Propagate(1e12, s), PropagationStatus::TimeOutOfRange);
        TemeStateKm km;
        EXPECT_EQ(p.PropagateToJd(nan, km), PropagationStatus::NonFiniteTime);
        EXPECT_EQ(p.Propagate(0.0, s), PropagationStatus::Ok);
    }
    auto status = [](SatelliteRecord r) {
        CSatellitePropagator p(r);
        TemeStateEarthRadii s;
        return p.Propagate(10.0, s);
    };
    SatelliteRecord r = good;
    r.eccentricity = 1.0;
    EXPECT_EQ(status(r), PropagationStatus::InvalidElements);
    r.eccentricity = -0.1;
    EXPECT_EQ(status(r), PropagationStatus::InvalidElements);
    r = good;
    r.meanMotionRadPerMin = 0.0;
    EXPECT_EQ(status(r), PropagationStatus::InvalidElements);
    r.meanMotionRadPerMin = -0.05;
    EXPECT_EQ(status(r), PropagationStatus::InvalidElements);
    r = good;
    r.inclinationRad = nan;
    EXPECT_EQ(status(r), PropagationStatus::InvalidElements);
    r = good;
    r.bstarPerEarthRadius = inf;
    EXPECT_EQ(status(r), PropagationStatus::InvalidElements);
    r = good;
    r.epochJd = nan;
    EXPECT_EQ(status(r), PropagationStatus::InvalidElements);
    // A huge mean motion: an orbit inside the Earth (no positive semi-major
    // axis survives the recovery, or the satellite is below the surface).
    r = good;
    r.meanMotionRadPerMin = 50.0;
    EXPECT_NE(status(r), PropagationStatus::Ok);
}

TEST(Propagation, DecayedOrbitIsReportedAsSuch)
{
    // Vallado's 28872 (MINOTAUR R/B, perigee -51 km): lost within an hour;
    // the revised code stops at 60 minutes with "decayed".
    const SatelliteRecord r = ParseElementSet(
        "MINOTAUR", "1 28872U 05037B   05333.02012661  .25992681  00000-0  24476-3 0  1534",
        "2 28872  96.4736 157.9986 0303955 244.0492 110.6523 16.46015938 10708");
    CSatellitePropagator p(r);
    TemeStateEarthRadii s;
    EXPECT_EQ(p.Propagate(50.0, s), PropagationStatus::Ok);
    EXPECT_EQ(p.Propagate(60.0, s), PropagationStatus::Decayed);
    // Far beyond, the drag polynomial would turn the orbit round again; the
    // satellite stays decayed.
    EXPECT_NE(p.Propagate(100000.0, s), PropagationStatus::Ok);
}

TEST(Propagation, KeplerSolutionConvergesForEccentricitiesNearOne)
{
    // e = 0.995, 2 rev/day (a = 4.2 Earth radii, perigee inside the Earth):
    // Kepler's equation is solved at every mean anomaly — plain Newton from
    // the mean anomaly wanders for thousands of steps at this eccentricity,
    // the limited step converges — and the position is either valid (between
    // the surface and apogee) or reported as decayed near perigee.
    SatelliteRecord r = ParseElementSet(
        "E", "1 99999U 00000A   20001.00000000  .00000000  00000-0  00000-0 0    10",
        "2 99999  30.0000  10.0000 9950000 270.0000   0.0100  2.00000000    10");
    const double a = std::pow(kKe / r.meanMotionRadPerMin, 2.0 / 3.0);
    int valid = 0, decayed = 0;
    for (double m = 0.0; m < kTwoPi; m += 0.05) {
        r.meanAnomalyRad = m;
        CSatellitePropagator p(r);
        TemeStateEarthRadii s;
        const PropagationStatus status = p.Propagate(0.0, s);
        ASSERT_TRUE(status == PropagationStatus::Ok || status == PropagationStatus::Decayed) << m;
        if (status == PropagationStatus::Decayed) {
            ++decayed;
            continue;
        }
        ++valid;
        const double radius = std::sqrt(s.positionEr[0] * s.positionEr[0] + s.positionEr[1] * s.positionEr[1] +
                                        s.positionEr[2] * s.positionEr[2]);
        EXPECT_GE(radius, 1.0);
        // The recovered (Brouwer) semi-major axis is 5 % above (ke/n)^(2/3) at
        // this eccentricity; apogee is below 2a(1.05).
        EXPECT_LT(radius, 2.0 * a * 1.06);
    }
    EXPECT_GT(valid, 100);
    EXPECT_GT(decayed, 0);
}

}  // namespace
}  // namespace orv::sat
