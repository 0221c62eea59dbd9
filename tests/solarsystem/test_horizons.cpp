// The Sun, the Moon and the planets against JPL's development ephemerides, as
// JPL Horizons printed them (tests/data/horizons/README.md: DE431 for the
// Sun, Moon, Mercury, Venus, Jupiter and Uranus; mar097, sat409, nep090 and
// plu055 for Mars, Saturn, Neptune and Pluto; 1900–2100).
//
// The tables are topocentric, for a site at 279° E, 29° N (one at 282.9° E,
// 38.9° N for Mars 2021–2026), 10-day steps:
//   - every table gives the astrometric place (ICRF, light time only): it
//     tests the positions themselves, through the compact ephemeris that
//     holds between 1900 and 2099;
//   - the "airless" tables of the Moon, Jupiter and Mars also give the
//     apparent place of date (light time, deflection, aberration, precession,
//     nutation; no refraction): they test the whole reduction.
// Goals: the Sun and planets within 1″, the Moon within 2″. Horizons prints
// 1e-5° (0.036″); its rounding is inside these tolerances.
//
// Time: Horizons' UT is UT1 before 1962 and UTC after; past its last leap
// second (2017) it holds TT − UTC at 69.184 s for all later dates. The test
// forms TT the same way, so that the comparison is of positions, not of two
// predictions of ΔT; the Earth's rotation is taken at UT1 = UTC (|UT1 − UTC|
// < 0.9 s moves the site by at most 0.4 km, 0.2″ for the Moon).
#include <gtest/gtest.h>

#include <erfa.h>

#include <cmath>
#include <cstdio>
#include <algorithm>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "observer/observer.h"
#include "solarsystem/planets.h"
#include "support/compare.h"
#include "util/datapath.h"

using namespace orv;
using orv::test::kArcsecFromRad;
using orv::test::kSame;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDeg = kPi / 180.0;
constexpr double kArcsec = kDeg / 3600.0;
constexpr double kAUKm = 149597870.7;

struct HorizonsRow {
    double jdUT = 0.0;            // UT1 before 1962, UTC after
    double astrometricRaDeg = 0.0, astrometricDecDeg = 0.0;  // ICRF, light time only
    double apparentRaDeg = 0.0, apparentDecDeg = 0.0;        // true equator and equinox of date
};

struct HorizonsTable {
    double siteEastLonDeg = 0.0, siteLatDeg = 0.0, siteHeightKm = 0.0;
    bool airless = false;  // the apparent columns are unrefracted
    std::vector<HorizonsRow> rows;
};

int MonthFromName(const std::string& name)
{
    static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    for (int m = 0; m < 12; ++m)
        if (name == kMonths[m]) return m + 1;
    return 0;
}

// Reads one of the excerpts: the site from its "Center geodetic" line, the
// rows between $$SOE and $$EOE, dated either "YYYY-Mon-DD HH:MM" or by a
// Julian date. The one or two solar- and lunar-presence marks after the date
// are skipped by position.
HorizonsTable ReadTable(const std::string& name)
{
    HorizonsTable table;
    std::ifstream in(orv::test::TestDataDir() + "/horizons/" + name);
    EXPECT_TRUE(in.good()) << name;
    std::string line;
    bool inRows = false;
    while (std::getline(in, line)) {
        if (line.find("Center geodetic :") != std::string::npos) {
            const std::string values = line.substr(line.find(':') + 1);
            std::sscanf(values.c_str(), " %lf,%lf,%lf", &table.siteEastLonDeg, &table.siteLatDeg,
                        &table.siteHeightKm);
        }
        if (line.find("Atmos refraction: NO") != std::string::npos) table.airless = true;
        if (line.rfind("$$SOE", 0) == 0) {
            inRows = true;
            continue;
        }
        if (line.rfind("$$EOE", 0) == 0) break;
        if (!inRows || line.empty()) continue;
        HorizonsRow row;
        std::string numbers;
        if (line[0] == ' ') {
            // " 1900-Jan-01 00:00 A   273.23023 ..."
            int year = 0, day = 0, hour = 0, minute = 0;
            char month[4] = {};
            if (std::sscanf(line.c_str(), " %d-%3s-%d %d:%d", &year, month, &day, &hour, &minute) != 5) continue;
            double djm0 = 0.0, djm = 0.0;
            if (eraCal2jd(year, MonthFromName(month), day, &djm0, &djm) != 0) continue;
            row.jdUT = djm0 + djm + (hour + minute / 60.0) / 24.0;
            numbers = line.substr(21);
        } else {
            // "2459371.500000000 *   118.566080210 ..."
            row.jdUT = std::stod(line.substr(0, 17));
            numbers = line.substr(21);
        }
        std::istringstream fields(numbers);
        fields >> row.astrometricRaDeg >> row.astrometricDecDeg >> row.apparentRaDeg >> row.apparentDecDeg;
        if (!fields) continue;
        table.rows.push_back(row);
    }
    return table;
}

// TT of a Horizons time tag, formed as Horizons formed it (see the top).
double HorizonsJdTT(double jdUT)
{
    if (const std::optional<double> taiMinusUtc = TaiMinusUtcSeconds(jdUT))
        return jdUT + (*taiMinusUtc + 32.184) / 86400.0;
    if (jdUT > 2457754.5) return jdUT + 69.184 / 86400.0;  // after 2017 January 1: the last leap second held
    return jdUT + DeltaTSeconds(jdUT) / 86400.0;           // UT1: ΔT
}

// The site's geocentric position in the true equator and equinox of date, AU
// (WGS84 figure, the Earth turned by the apparent sidereal time, IAU 2006/2000A).
Vector3 SiteOfDateAU(const HorizonsTable& table, double jdUT, double jdTT)
{
    double xyzM[3];
    eraGd2gc(1, table.siteEastLonDeg * kDeg, table.siteLatDeg * kDeg, table.siteHeightKm * 1000.0, xyzM);
    const double gast = eraGst06a(jdUT, 0.0, jdTT, 0.0);
    const double c = std::cos(gast), s = std::sin(gast);
    const double scale = 1.0 / (kAUKm * 1000.0);
    return {(c * xyzM[0] - s * xyzM[1]) * scale, (s * xyzM[0] + c * xyzM[1]) * scale, xyzM[2] * scale};
}

// The same site in the GCRS (J2000) frame.
Vector3 SiteJ2000AU(const HorizonsTable& table, double jdUT, double jdTT)
{
    const Vector3 d = SiteOfDateAU(table, jdUT, jdTT);
    double npb[3][3];
    eraPnm06a(jdTT, 0.0, npb);
    // The transpose takes the true frame of date back to the GCRS.
    return {npb[0][0] * d.x + npb[1][0] * d.y + npb[2][0] * d.z, npb[0][1] * d.x + npb[1][1] * d.y + npb[2][1] * d.z,
            npb[0][2] * d.x + npb[1][2] * d.y + npb[2][2] * d.z};
}

void RaDecOf(const Vector3& v, double& raRad, double& decRad)
{
    raRad = std::atan2(v.y, v.x);
    if (raRad < 0.0) raRad += 2.0 * kPi;
    decRad = std::atan2(v.z, std::hypot(v.x, v.y));
}

class HorizonsComparison : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!SharedVsop87D().IsOpen() || !SharedEphem96().IsOpen())
            GTEST_SKIP() << "no VSOP87 and Ephem96 files in the data folder (" << GetDataPath()
                         << "): run tools/build-data.sh first";
    }

    // The astrometric place of a body (1–9, 3 the Sun) from the table's site:
    // the body where it was when the light arriving at the site at t left it
    // (three light-time passes), in the GCRS, no aberration or deflection.
    // Returns the largest separation from the table, arcseconds.
    double CompareAstrometric(const std::string& file, int body, double toleranceArcsec)
    {
        const HorizonsTable table = ReadTable(file);
        EXPECT_GE(table.rows.size(), 15u) << file;
        double worst = 0.0;
        for (const HorizonsRow& row : table.rows) {
            const double jdTT = HorizonsJdTT(row.jdUT);
            Vector3 earth;
            EXPECT_EQ(m_planets.HeliocentricPosition(m_observer, kBodyEarth, jdTT, nullptr, &earth),
                      PositionStatus::Ok);
            const Vector3 site = SiteJ2000AU(table, row.jdUT, jdTT);
            const Vector3 observer{earth.x + site.x, earth.y + site.y, earth.z + site.z};
            Vector3 target{};
            double tau = 0.0;
            for (int pass = 0; pass < 3; ++pass) {
                if (body != kBodySun) {
                    EXPECT_EQ(m_planets.HeliocentricPosition(m_observer, body, jdTT - tau, nullptr, &target),
                              PositionStatus::Ok);
                }
                const Vector3 d{target.x - observer.x, target.y - observer.y, target.z - observer.z};
                tau = std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z) / kLightAUPerDay;
            }
            double ra, dec;
            RaDecOf({target.x - observer.x, target.y - observer.y, target.z - observer.z}, ra, dec);
            worst = std::max(worst, Separation(row.astrometricRaDeg, row.astrometricDecDeg, ra, dec));
            ExpectPlace(row.astrometricRaDeg, row.astrometricDecDeg, ra, dec, toleranceArcsec, file, row.jdUT);
        }
        return worst;
    }

    // The apparent topocentric place of a planet through the program's own
    // reduction (ApparentPlaceOf, diurnal aberration included) with the site
    // placed as Horizons places it.
    double CompareApparentPlanet(const std::string& file, int body, double toleranceArcsec)
    {
        const HorizonsTable table = ReadTable(file);
        EXPECT_TRUE(table.airless) << file;
        double worst = 0.0;
        for (const HorizonsRow& row : table.rows) {
            const double jdTT = HorizonsJdTT(row.jdUT);
            ApparentFrame frame;
            EXPECT_EQ(m_planets.PrepareApparentFrame(m_observer, jdTT, PlaceCentre::Geocentric, frame),
                      PositionStatus::Ok);
            SetTopocentricSite(frame, SiteOfDateAU(table, row.jdUT, jdTT));
            const HeliocentricJ2000Fn position = [&](double jd, Vector3& out) {
                return m_planets.HeliocentricPosition(m_observer, body, jd, nullptr, &out) == PositionStatus::Ok;
            };
            ApparentPlace place;
            EXPECT_EQ(ApparentPlaceOf(frame, position, SolarGravity::Apply, place), PositionStatus::Ok);
            worst = std::max(worst, Separation(row.apparentRaDeg, row.apparentDecDeg, place.raRad, place.decRad));
            ExpectPlace(row.apparentRaDeg, row.apparentDecDeg, place.raRad, place.decRad, toleranceArcsec, file,
                        row.jdUT);
        }
        return worst;
    }

    static double Separation(double raDeg, double decDeg, double raRad, double decRad)
    {
        const double a1 = raDeg * kDeg, d1 = decDeg * kDeg;
        const double x = std::cos(d1) * std::cos(a1) - std::cos(decRad) * std::cos(raRad);
        const double y = std::cos(d1) * std::sin(a1) - std::cos(decRad) * std::sin(raRad);
        const double z = std::sin(d1) - std::sin(decRad);
        return 2.0 * std::asin(0.5 * std::sqrt(x * x + y * y + z * z)) / kArcsec;
    }

    static void ExpectPlace(double raDeg, double decDeg, double raRad, double decRad, double toleranceArcsec,
                            const std::string& file, double jdUT)
    {
        // Right ascension compared as an arc on the sky (× cos δ).
        const double cosDec = std::cos(decDeg * kDeg);
        EXPECT_ANGLE_NEAR(raDeg * kDeg * cosDec, raRad * cosDec, toleranceArcsec * kArcsec, kArcsecFromRad)
            << file << " JD(UT) " << jdUT;
        EXPECT_NEAR_UNIT(decDeg * kDeg, decRad, toleranceArcsec * kArcsec, kArcsecFromRad)
            << file << " JD(UT) " << jdUT;
    }

    CObserverDoc m_observer;
    CPlanets m_planets;
};

}  // namespace

// Worst separations found (arcseconds), 1900–2100: the Sun 0.xx, Mercury
// 0.xx, Venus 0.xx, Mars 0.xx, Jupiter 0.xx, Saturn 0.xx, Uranus 0.xx,
// Neptune 0.xx, Pluto 0.xx.
TEST_F(HorizonsComparison, AstrometricPlacesOfTheSunAndPlanetsWithinOneArcsecond)
{
    struct Case {
        const char* file;
        int body;
    };
    const Case cases[] = {
        {"sun_topocentric.txt", kBodySun},          {"mercury_topocentric.txt", kBodyMercury},
        {"venus_topocentric.txt", kBodyVenus},      {"mars_topocentric.txt", kBodyMars},
        {"mars_topocentric_airless_2021.txt", kBodyMars}, {"jupiter_topocentric_airless.txt", kBodyJupiter},
        {"saturn_topocentric.txt", kBodySaturn},    {"uranus_topocentric.txt", kBodyUranus},
        {"neptune_topocentric.txt", kBodyNeptune},  {"pluto_topocentric.txt", kBodyPluto},
    };
    for (const Case& c : cases) {
        const double worst = CompareAstrometric(c.file, c.body, 1.0);
        std::printf("%-36s astrometric: worst %.3f\"\n", c.file, worst);
    }
}

TEST_F(HorizonsComparison, ApparentPlacesOfJupiterAndMarsWithinOneArcsecond)
{
    const double jupiter = CompareApparentPlanet("jupiter_topocentric_airless.txt", kBodyJupiter, 1.0);
    const double mars = CompareApparentPlanet("mars_topocentric_airless_2021.txt", kBodyMars, 1.0);
    std::printf("apparent: Jupiter worst %.3f\", Mars worst %.3f\"\n", jupiter, mars);
}

// The Moon's apparent topocentric place: the program's geocentric apparent
// place and distance, moved to the site (placed as Horizons places it) by
// the program's own parallax and diurnal aberration.
TEST_F(HorizonsComparison, ApparentPlacesOfTheMoonWithinTwoArcseconds)
{
    const HorizonsTable table = ReadTable("moon_topocentric_airless.txt");
    ASSERT_TRUE(table.airless);
    ASSERT_GE(table.rows.size(), 30u);
    double worst = 0.0;
    for (const HorizonsRow& row : table.rows) {
        const double jdTT = HorizonsJdTT(row.jdUT);
        double ra, dec, km;
        ASSERT_EQ(m_planets.MoonPosition(m_observer, jdTT, ra, dec, km, PlaceCentre::Geocentric), PositionStatus::Ok);
        TopocentricFromGeocentric(SiteOfDateAU(table, row.jdUT, jdTT), km / kAUKm, ra, dec);
        worst = std::max(worst, Separation(row.apparentRaDeg, row.apparentDecDeg, ra, dec));
        ExpectPlace(row.apparentRaDeg, row.apparentDecDeg, ra, dec, 2.0, "moon", row.jdUT);
    }
    std::printf("Moon apparent: worst %.3f\"\n", worst);
}

namespace {

// One row of a geocentric Horizons table with magnitudes (see
// tests/data/horizons/mercury_venus_magnitudes.txt).
struct MagnitudeRow {
    int body = 0;
    double jdUT = 0.0;
    double apparentMagnitude = 0.0;
    double sunDistanceAU = 0.0, earthDistanceAU = 0.0, phaseAngleDeg = 0.0;
};

std::vector<MagnitudeRow> ReadMagnitudeRows(const std::string& name)
{
    std::vector<MagnitudeRow> rows;
    std::ifstream in(orv::test::TestDataDir() + "/horizons/" + name);
    EXPECT_TRUE(in.good()) << name;
    std::string line;
    int body = -1;
    bool inRows = false;
    while (std::getline(in, line)) {
        if (line.rfind("BODY ", 0) == 0) {
            body = BodyFromName(line.substr(5)).value_or(-1);
            continue;
        }
        if (line.rfind("$$SOE", 0) == 0) inRows = true;
        if (line.rfind("$$EOE", 0) == 0) inRows = false;
        if (!inRows || line.empty() || line[0] != ' ' || body < 0) continue;
        int year = 0, day = 0, hour = 0, minute = 0;
        char month[4] = {};
        MagnitudeRow row;
        double surfaceBrightness, rdot, deldot;
        if (std::sscanf(line.c_str(), " %d-%3s-%d %d:%d %lf %lf %lf %lf %lf %lf %lf", &year, month, &day, &hour,
                        &minute, &row.apparentMagnitude, &surfaceBrightness, &row.sunDistanceAU, &rdot,
                        &row.earthDistanceAU, &deldot, &row.phaseAngleDeg) != 12)
            continue;
        double djm0 = 0.0, djm = 0.0;
        if (eraCal2jd(year, MonthFromName(month), day, &djm0, &djm) != 0) continue;
        row.jdUT = djm0 + djm + (hour + minute / 60.0) / 24.0;
        row.body = body;
        rows.push_back(row);
    }
    return rows;
}

// The visual magnitude law Horizons used when it printed these tables,
// Hilton (2005), AJ 129, 2902 (the Astronomical Almanac's from 2006).
double Hilton2005Magnitude(int body, double r, double delta, double a)
{
    const double distance = 5.0 * std::log10(r * delta);
    if (body == kBodyMercury) return distance - 0.60 + a * (4.98e-2 + a * (-4.88e-4 + a * 3.02e-6));
    if (a < 163.6) return distance - 4.47 + a * (1.03e-2 + a * (5.7e-5 + a * 1.3e-7));
    return distance + 0.98 - 1.02e-2 * a;
}

}  // namespace

// Mercury's and Venus's phases and magnitudes, 2010–2011, geocentric, across
// every phase angle seen from the Earth (4° to 170°), against JPL Horizons
// (DE431). The distances and phase angle are the program's own; with them,
// the magnitude law Horizons used reproduces every magnitude it printed
// (rounded to 0.01), so the geometry behind a magnitude is right. The
// program itself uses the newer law of Mallama & Hilton (2018), which the
// Astronomical Almanac adopted after these tables were made; in these rows
// the two laws differ by −0.17 to +0.13 mag for Mercury (at its largest
// phase angles) and ±0.05 mag for Venus, and the test prints the
// differences without judging them (the
// law itself is checked against Mallama & Hilton's own test cases in
// test_planets.cpp).
TEST_F(HorizonsComparison, MercuryAndVenusPhasesAndMagnitudes)
{
    const std::vector<MagnitudeRow> rows = ReadMagnitudeRows("mercury_venus_magnitudes.txt");
    ASSERT_EQ(rows.size(), 35u);
    double worstDistanceAU = 0.0, worstPhaseDeg = 0.0, worstMagnitude = 0.0;
    double lawDifference[kBodyCount][2] = {};  // the least and greatest, new law minus Horizons'
    for (const MagnitudeRow& row : rows) {
        SCOPED_TRACE(std::string(row.body == kBodyMercury ? "Mercury" : "Venus") + " JD(UT) " +
                     std::to_string(row.jdUT));
        const double jdTT = HorizonsJdTT(row.jdUT);
        double ra, dec;
        ASSERT_EQ(m_planets.ApparentPosition(m_observer, row.body, jdTT, ra, dec, PlaceCentre::Geocentric),
                  PositionStatus::Ok);
        const PlanetRecord& record = m_planets.Record(row.body);
        const double phaseDeg = record.phaseAngleRad / kDeg;
        // Distances: VSOP87D against DE431 differs here by up to 1.2e-7 AU
        // (17 km, Mercury near inferior conjunction), as its 0.08″ in
        // direction is some 55 km across the line of sight; allowed 1.5e-7
        // AU. Horizons forms its phase angle from apparent vectors (the
        // Sun seen from the body at the reflection time, the observer along
        // the aberrated line of sight), ours from geometric ones, the angle
        // that governs the brightness: they differ by up to the aberration,
        // some 20″ (0.006°), which moves a magnitude by under 0.0003.
        EXPECT_NEAR_UNIT(row.sunDistanceAU, record.sunDistanceAU, 1.5e-7, kSame);
        EXPECT_NEAR_UNIT(row.earthDistanceAU, record.earthDistance, 1.5e-7, kSame);
        EXPECT_NEAR_UNIT(row.phaseAngleDeg, phaseDeg, 0.008, kSame);
        worstDistanceAU = std::max({worstDistanceAU, std::fabs(row.sunDistanceAU - record.sunDistanceAU),
                                    std::fabs(row.earthDistanceAU - record.earthDistance)});
        worstPhaseDeg = std::max(worstPhaseDeg, std::fabs(row.phaseAngleDeg - phaseDeg));
        // The printed magnitude from the program's geometry: half the last
        // printed digit, plus 0.0005 for the geometry and the phase angle.
        const double hilton = Hilton2005Magnitude(row.body, record.sunDistanceAU, record.earthDistance, phaseDeg);
        EXPECT_NEAR_UNIT(row.apparentMagnitude, hilton, 0.0055, kSame);
        worstMagnitude = std::max(worstMagnitude, std::fabs(row.apparentMagnitude - hilton));
        const double ours = record.magnitudeCenti / 100.0;
        double* range = lawDifference[row.body];
        range[0] = std::min(range[0], ours - row.apparentMagnitude);
        range[1] = std::max(range[1], ours - row.apparentMagnitude);
    }
    std::printf("Mercury, Venus: distances within %.1e AU, phase angles within %.5f deg, Horizons' magnitudes "
                "reproduced within %.4f\n",
                worstDistanceAU, worstPhaseDeg, worstMagnitude);
    std::printf("Mallama & Hilton (2018) minus Horizons' 2019 law: Mercury %+.2f to %+.2f, Venus %+.2f to %+.2f\n",
                lawDifference[kBodyMercury][0], lawDifference[kBodyMercury][1], lawDifference[kBodyVenus][0],
                lawDifference[kBodyVenus][1]);
}
