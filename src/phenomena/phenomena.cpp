// The phenomena search: sampling, bracketing, refinement, the result table.

#include "phenomena/phenomena.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <unordered_map>

#include <erfa.h>

#include "observer/observer.h"
#include "solarsystem/minorbodies.h"
#include "solarsystem/moonseries.h"
#include "solarsystem/planets.h"
#include "util/angles.h"

namespace orv {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kJ2000JdTT = 2451545.0;

struct KindInfo {
    PhenomenonKind kind;
    std::string_view key;
    std::string_view heading;
    int bodies;
};

constexpr KindInfo kKinds[kPhenomenonKindCount] = {
    {PhenomenonKind::ConjunctionLongitude, "conjunction", "Conjunction in longitude between", 2},
    {PhenomenonKind::ConjunctionRA, "conjunction-ra", "Conjunction in RA between", 2},
    {PhenomenonKind::MinimumSeparation, "min-separation", "Minimum angular distance between", 2},
    {PhenomenonKind::OppositionLongitude, "opposition", "Opposition in longitude between", 2},
    {PhenomenonKind::OppositionRA, "opposition-ra", "Opposition in RA between", 2},
    {PhenomenonKind::MaximumSeparation, "max-separation", "Maximum angular distance between", 2},
    {PhenomenonKind::MinimumEarthDistance, "min-distance", "Minimum distance between Earth and", 1},
    {PhenomenonKind::MaximumEarthDistance, "max-distance", "Maximum distance between Earth and", 1},
    {PhenomenonKind::EquinoxesSolstices, "equinoxes", "Equinoxes and solstices", 0},
    {PhenomenonKind::QuadratureLongitude, "quadrature", "Quadrature in longitude between", 2},
    {PhenomenonKind::QuadratureRA, "quadrature-ra", "Quadrature in RA between", 2},
    {PhenomenonKind::MoonPhases, "moon-phases", "Phases of the Moon", 0},
    {PhenomenonKind::StationaryLongitude, "stationary", "Stationary points of", 1},
    {PhenomenonKind::StationaryRA, "stationary-ra", "Stationary points of", 1},
    {PhenomenonKind::DeclinationExtremes, "declination", "Extremes of declination of", 1},
    {PhenomenonKind::PerihelionAphelion, "perihelion", "Perihelion and aphelion of", 1},
    {PhenomenonKind::GreatestElongation, "elongation", "Greatest elongation of", 1},
    {PhenomenonKind::ApogeePerigee, "apsides", "Perigee and apogee of", 1},
    {PhenomenonKind::Appulse, "appulse", "Appulses and occultations between", 2},
};

const KindInfo& Info(PhenomenonKind kind) { return kKinds[static_cast<int>(kind)]; }

bool ValidKind(PhenomenonKind kind)
{
    return static_cast<int>(kind) >= 0 && static_cast<int>(kind) < kPhenomenonKindCount;
}

// An angle reduced to −π … π.
double WrapPi(double a)
{
    a = std::remainder(a, kTwoPi);
    return a;
}

double Separation(double ra1, double dec1, double ra2, double dec2)
{
    // The haversine form keeps its precision for close pairs.
    const double sd = std::sin(0.5 * (dec2 - dec1));
    const double sr = std::sin(0.5 * (ra2 - ra1));
    const double h = sd * sd + std::cos(dec1) * std::cos(dec2) * sr * sr;
    return 2.0 * std::asin(std::sqrt(std::clamp(h, 0.0, 1.0)));
}

// Where a body is at one instant, as the quantities need it.
struct BodyState {
    double lonRad = kNaN;  // apparent ecliptic longitude, true ecliptic and equinox of date
    double latRad = kNaN;
    double raRad = kNaN;   // apparent, true equator and equinox of date
    double decRad = kNaN;
    double earthDistanceAU = kNaN;
    double sunDistanceAU = kNaN;  // for perihelion and aphelion: the geometric heliocentric distance
    double elongationRad = kNaN;
};

// A far point in the direction of a J2000 place: at 1e7 AU the annual
// parallax is 0.02″, far below what any result shows.
constexpr double kFixedDistanceAU = 1.0e7;

// The positions of a search. Every sample needs the true equator and
// ecliptic of date, and IAU 2000A nutation is most of the cost of a place;
// but nutation's shortest periods of any size are 13.7 and 9.1 days, so the
// sampler evaluates it every two days and interpolates with a cubic through
// four such nodes: the interpolation error is below 0.005″ (the 13.66-day
// term of 0.23″, (2π·2/13.66)⁴·3/128 of it), far below what a result shows.
// The rest of the reduction (light time, deflection, aberration, IAU 2006
// precession with frame bias) is the planets' own, through ApparentPlaceOf.
//
// Two modes. Exact (refinement and the result columns): every position from
// its own series at the instant. Sampling (bracketing only): what a sample
// costs is cut by interpolation from nodes that every search of a batch
// shares — the whole J2000-to-date rotation from the two-day nodes, and,
// when the step is shorter than half a day, the bodies' heliocentric J2000
// positions (the Earth's too, its velocity from the same cubic's
// derivative) from half-day nodes: for the Earth's monthly wobble about the
// barycentre (4,670 km) the cubic's error is (2π·0.5/27.3)⁴·3/128 of it,
// 2e-10 AU; for Mercury's 88-day orbit about 1e-8 AU, 0.005″. A sample
// only has to put a root in the right interval: the three samples about
// each root are computed again exactly before the refinement.
class CSampler {
public:
    explicit CSampler(const CObserverDoc& observer) : m_observer(observer) {}

    // The search's step (days): when sampling, below a day the Moon is
    // interpolated from one-day nodes (see MoonAt), below half a day the
    // other bodies from half-day nodes.
    void SetStep(double stepDays)
    {
        m_interpolateMoon = stepDays < kMoonNodeDays;
        m_interpolateBodies = stepDays < kBodyNodeDays;
    }
    // Sampling (true) or exact (false) positions.
    void SetSampling(bool on) { m_sampling = on; }

    // The state of `body` at jdTT; false when it has no position there.
    // `helio` asks for the geometric heliocentric distance instead of the
    // light-time one.
    bool State(const PhenomenonBody& body, double jdTT, bool helio, BodyState& s)
    {
        s = BodyState{};
        if (!std::isfinite(jdTT)) return false;
        if (helio) {
            if (body.type == PhenomenonBody::Type::SolarSystem) {
                if (body.planet == kBodyMoon) return false;
                SphericalLBR lbr;
                if (m_planets.HeliocentricPosition(m_observer, body.planet, jdTT, &lbr, nullptr) != PositionStatus::Ok)
                    return false;
                s.sunDistanceAU = lbr.rAU;
            } else if (body.type == PhenomenonBody::Type::Minor) {
                Vector3 v;
                if (!HeliocentricJ2000(body.orbit, jdTT, v)) return false;
                s.sunDistanceAU = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
            } else {
                return false;
            }
            return std::isfinite(s.sunDistanceAU);
        }
        if (body.type == PhenomenonBody::Type::SolarSystem && body.planet == kBodyMoon) {
            if (!Orientation(jdTT)) return false;
            // The lunar series gives the geocentric place of date referred to
            // the mean equinox; nutation in longitude takes it to the true one.
            const MoonEclipticPlace moon = MoonAt(jdTT);
            if (!std::isfinite(moon.lonDeg)) return false;
            s.lonRad = moon.lonDeg * kRadPerDeg + m_dPsi;
            s.latRad = moon.latDeg * kRadPerDeg;
            s.earthDistanceAU = moon.distanceKm / kAstronomicalUnitKmIAU2012;
            const double se = std::sin(m_trueObliquity), ce = std::cos(m_trueObliquity);
            s.raRad = std::atan2(std::sin(s.lonRad) * ce - std::tan(s.latRad) * se, std::cos(s.lonRad));
            s.decRad = std::asin(std::clamp(std::sin(s.latRad) * ce + std::cos(s.latRad) * se * std::sin(s.lonRad), -1.0, 1.0));
            // Elongation and distance from the Sun need the Sun's place: only
            // at the events (the Moon's samples do without).
            BodyState sun;
            if (m_moonElongation && State(PhenomenonBody::Planet(kBodySun), jdTT, false, sun)) {
                s.elongationRad = std::acos(std::clamp(std::sin(sun.decRad) * std::sin(s.decRad) +
                                                           std::cos(sun.decRad) * std::cos(s.decRad) *
                                                               std::cos(sun.raRad - s.raRad),
                                                       -1.0, 1.0));
                s.sunDistanceAU = sun.earthDistanceAU;
            }
            return true;
        }
        if (!Frame(jdTT)) return false;
        ApparentPlace place;
        switch (body.type) {
        case PhenomenonBody::Type::SolarSystem: {
            const bool sun = body.planet == kBodySun;
            const int planet = body.planet;
            const HeliocentricJ2000Fn position = [&](double jd, Vector3& out) {
                if (sun) {
                    out = {};
                    return true;
                }
                return Heliocentric(planet, jd, out, nullptr);
            };
            if (ApparentPlaceOf(m_frame, position, sun ? SolarGravity::Omit : SolarGravity::Apply, place) !=
                PositionStatus::Ok)
                return false;
            if (sun) {
                place.sunDistanceAU = 0.0;
                place.elongationRad = 0.0;
            }
            break;
        }
        case PhenomenonBody::Type::Minor: {
            MinorPlace minor;
            if (MinorPlaceAt(m_frame, body.orbit, minor) != PositionStatus::Ok) return false;
            place.raRad = minor.raRad;
            place.decRad = minor.decRad;
            place.earthDistanceAU = minor.earthDistanceAU;
            place.sunDistanceAU = minor.sunDistanceAU;
            place.elongationRad = minor.elongationRad;
            break;
        }
        case PhenomenonBody::Type::Fixed: {
            const Vector3 far{kFixedDistanceAU * std::cos(body.decJ2000Rad) * std::cos(body.raJ2000Rad),
                              kFixedDistanceAU * std::cos(body.decJ2000Rad) * std::sin(body.raJ2000Rad),
                              kFixedDistanceAU * std::sin(body.decJ2000Rad)};
            const HeliocentricJ2000Fn position = [&far](double, Vector3& out) {
                out = far;
                return true;
            };
            if (ApparentPlaceOf(m_frame, position, SolarGravity::Apply, place) != PositionStatus::Ok) return false;
            place.earthDistanceAU = kNaN;
            place.sunDistanceAU = kNaN;
            break;
        }
        }
        s.raRad = place.raRad;
        s.decRad = place.decRad;
        s.earthDistanceAU = place.earthDistanceAU;
        s.sunDistanceAU = place.sunDistanceAU;
        s.elongationRad = place.elongationRad;
        // Equatorial of date to the true ecliptic of date (Meeus eq. 13.1, 13.2).
        const double se = std::sin(m_trueObliquity), ce = std::cos(m_trueObliquity);
        s.lonRad = std::atan2(std::sin(s.raRad) * ce + std::tan(s.decRad) * se, std::cos(s.raRad));
        s.latRad = std::asin(std::clamp(std::sin(s.decRad) * ce - std::cos(s.decRad) * se * std::sin(s.raRad), -1.0, 1.0));
        return std::isfinite(s.lonRad) && std::isfinite(s.latRad);
    }

    // The topocentric apparent place for the observer's site: the
    // geocentric place less the site's geocentric position of date (the
    // diurnal parallax); fixed objects keep their geocentric place.
    // `sampling`: the interpolated positions of the sampling (a scan), else
    // the exact ones. The site turns with the Greenwich apparent sidereal
    // time, the IAU 2006 mean time plus the equation of the equinoxes
    // Δψ cos ε (its complementary terms, under 3 mas, left out).
    bool Topocentric(const PhenomenonBody& body, double jdUT, double jdTT, bool sampling, double& raRad,
                     double& decRad, double& distanceAU)
    {
        const bool wasSampling = m_sampling, moon = m_interpolateMoon, bodies = m_interpolateBodies;
        m_sampling = sampling;
        m_interpolateMoon = m_interpolateBodies = true;
        BodyState s;
        bool ok = State(body, jdTT, false, s) && Orientation(jdTT);
        const double dPsi = m_dPsi, trueObliquity = m_trueObliquity;
        m_sampling = wasSampling;
        m_interpolateMoon = moon;
        m_interpolateBodies = bodies;
        if (!ok) return false;
        raRad = s.raRad;
        decRad = s.decRad;
        distanceAU = s.earthDistanceAU;
        if (body.type == PhenomenonBody::Type::Fixed) return true;
        if (m_siteJdTT != jdTT) {
            // The site's geocentric position of date (WGS84 ellipsoid; Meeus,
            // Astronomical Algorithms 2nd ed., ch. 11).
            constexpr double kEquatorKm = 6378.137, kFlattening = 1.0 / 298.257223563;
            const double phi = m_observer.LatitudeRad();
            const double u = std::atan((1.0 - kFlattening) * std::tan(phi));
            const double h = m_observer.HeightM() / (kEquatorKm * 1000.0);
            const double rhoSin = (1.0 - kFlattening) * std::sin(u) + h * std::sin(phi);
            const double rhoCos = std::cos(u) + h * std::cos(phi);
            const double theta =
                GreenwichMeanSiderealTimeRad(jdUT, jdTT) + dPsi * std::cos(trueObliquity) + m_observer.LongitudeRad();
            const double scale = kEquatorKm / kAstronomicalUnitKmIAU2012;
            m_site = {rhoCos * std::cos(theta) * scale, rhoCos * std::sin(theta) * scale, rhoSin * scale};
            m_siteTheta = theta;
            m_siteJdTT = jdTT;
        }
        const double cd = std::cos(decRad);
        const Vector3 topo{distanceAU * cd * std::cos(raRad) - m_site.x, distanceAU * cd * std::sin(raRad) - m_site.y,
                           distanceAU * std::sin(decRad) - m_site.z};
        raRad = std::atan2(topo.y, topo.x);
        if (raRad < 0.0) raRad += kTwoPi;
        decRad = std::atan2(topo.z, std::hypot(topo.x, topo.y));
        distanceAU = std::sqrt(topo.x * topo.x + topo.y * topo.y + topo.z * topo.z);
        return std::isfinite(raRad) && std::isfinite(decRad);
    }

    // The geometric altitude of a topocentric place of date at the instant
    // of the last Topocentric call (Meeus eq. 13.6).
    double SiteAltitude(double raRad, double decRad) const
    {
        const double phi = m_observer.LatitudeRad();
        const double hourAngle = m_siteTheta - raRad;
        return std::asin(std::clamp(
            std::sin(phi) * std::sin(decRad) + std::cos(phi) * std::cos(decRad) * std::cos(hourAngle), -1.0, 1.0));
    }

    // Whether the Moon's states carry its elongation (the Sun's place).
    void SetMoonElongation(bool on) { m_moonElongation = on; }

private:
    static constexpr double kNodeDays = 2.0;
    static constexpr double kMoonNodeDays = 1.0;

    // The lunar series costs most of a Moon sample (some 50 µs). When
    // sampling, a cubic through one-day nodes stands in for it: the error
    // of such a cubic is (ωh)⁴·3/128 of a term of angular frequency ω, which
    // for the terms of any size (6.29° at 27.55 days, 0.66° at 14.77, 0.21°
    // at 13.78, 1.27° at 31.8) sums to under 5″ in longitude, what the Moon
    // moves in 10 s, and a few hundred metres in distance. That only has to
    // put each root between the right samples: the refinement computes the
    // samples about it again from the series itself. The cubic's slope
    // jumps at the nodes by no more than a few ″/day, far less than the
    // change of the sampled rates from one step to the next (near an extreme
    // of declination, 9″ between hourly samples), so no false root arises
    // from it.
    MoonEclipticPlace MoonAt(double jdTT)
    {
        if (!m_interpolateMoon || !m_sampling) return EvaluateMoonBlock(MoonDataBlock(), jdTT);
        const double x = (jdTT - kJ2000JdTT) / kMoonNodeDays;
        if (!(std::abs(x) < 1e9)) return EvaluateMoonBlock(MoonDataBlock(), jdTT);
        const long long k = static_cast<long long>(std::floor(x));
        double w[4];
        CubicWeights(x - static_cast<double>(k), w);
        MoonEclipticPlace out{0.0, 0.0, 0.0};
        double lon0 = 0.0;
        for (int i = 0; i < 4; ++i) {
            const long long key = k - 1 + i;
            auto it = m_moonNodes.find(key);
            if (it == m_moonNodes.end()) {
                if (m_moonNodes.size() > 200000) m_moonNodes.clear();
                it = m_moonNodes
                         .emplace(key, EvaluateMoonBlock(MoonDataBlock(),
                                                         kJ2000JdTT + kMoonNodeDays * static_cast<double>(key)))
                         .first;
            }
            const MoonEclipticPlace& n = it->second;
            if (!std::isfinite(n.lonDeg)) return EvaluateMoonBlock(MoonDataBlock(), jdTT);
            // Longitudes unwrapped against the first node.
            if (i == 0) lon0 = n.lonDeg;
            out.lonDeg += w[i] * (lon0 + std::remainder(n.lonDeg - lon0, 360.0));
            out.latDeg += w[i] * n.latDeg;
            out.distanceKm += w[i] * n.distanceKm;
        }
        out.lonDeg = std::fmod(out.lonDeg + 720.0, 360.0);
        return out;
    }

    // Nutation (IAU 2006/2000A, radians) at node k, kNodeDays·k days from J2000.
    const std::array<double, 2>& Node(long long k)
    {
        if (const auto it = m_nodes.find(k); it != m_nodes.end()) return it->second;
        if (m_nodes.size() > 100000) m_nodes.clear();
        std::array<double, 2> n{};
        eraNut06a(kJ2000JdTT, kNodeDays * static_cast<double>(k), &n[0], &n[1]);
        return m_nodes.emplace(k, n).first->second;
    }

    // Nutation, true obliquity and the rotation J2000 → true equator of date
    // at jdTT, kept for the last instant.
    bool Orientation(double jdTT)
    {
        if (m_orientationJdTT == jdTT && m_orientationSampling == m_sampling) return true;
        if (m_sampling) {
            // Precession moves the axes 50″ a year, smoothly: the rotation's
            // elements interpolate as well as the nutation angles do. The
            // nodes are those of the nutation below, so that the refinement
            // finds the nutation of its instants already computed.
            const double xr = (jdTT - kJ2000JdTT) / kNodeDays;
            if (!(std::abs(xr) < 1e9)) return false;
            const long long kr = static_cast<long long>(std::floor(xr));
            double wr[4];
            CubicWeights(xr - static_cast<double>(kr), wr);
            m_orientationSampling = true;
            double r[11] = {};
            for (int i = 0; i < 4; ++i) {
                const auto& n = RotationNode(kr - 1 + i);
                for (int c = 0; c < 11; ++c) r[c] += wr[i] * n[c];
            }
            std::copy(r, r + 9, &m_j2000ToDate[0][0]);
            m_dPsi = r[9];
            m_trueObliquity = r[10];
            m_orientationJdTT = jdTT;
            return true;
        }
        const double x = (jdTT - kJ2000JdTT) / kNodeDays;
        if (!(std::abs(x) < 1e9)) return false;
        const long long k = static_cast<long long>(std::floor(x));
        double w[4];
        CubicWeights(x - static_cast<double>(k), w);
        m_orientationSampling = false;
        double dPsi = 0.0, dEps = 0.0;
        for (int i = 0; i < 4; ++i) {
            const auto& n = Node(k - 1 + i);
            dPsi += w[i] * n[0];
            dEps += w[i] * n[1];
        }
        const double tt1 = kJ2000JdTT, tt2 = jdTT - kJ2000JdTT;
        double pb[3][3], n[3][3];
        eraPmat06(tt1, tt2, pb);
        const double epsA = eraObl06(tt1, tt2);
        eraNumat(epsA, dPsi, dEps, n);
        eraRxr(n, pb, m_j2000ToDate);
        m_dPsi = dPsi;
        m_trueObliquity = epsA + dEps;
        m_orientationJdTT = jdTT;
        return true;
    }

    // The frame of the apparent places at jdTT, kept for the last instant.
    bool Frame(double jdTT)
    {
        if (m_frameValid && m_frame.jdTT == jdTT && m_frameSampling == m_sampling) return true;
        m_frameValid = false;
        if (!Orientation(jdTT)) return false;
        ApparentFrame f;
        f.jdTT = jdTT;
        Vector3 velocityAUPerDay;
        if (m_sampling && m_interpolateBodies) {
            if (!Heliocentric(kBodyEarth, jdTT, f.earthJ2000, &velocityAUPerDay)) return false;
            f.earthVelocityOverC = {velocityAUPerDay.x / kLightAUPerDay, velocityAUPerDay.y / kLightAUPerDay,
                                    velocityAUPerDay.z / kLightAUPerDay};
            const Vector3& v = f.earthVelocityOverC;
            f.lorentzFactor = 1.0 / std::sqrt(1.0 - (v.x * v.x + v.y * v.y + v.z * v.z));
        } else {
            if (m_planets.HeliocentricPosition(m_observer, kBodyEarth, jdTT, nullptr, &f.earthJ2000) !=
                PositionStatus::Ok)
                return false;
            f.lorentzFactor = m_planets.EarthVelocity(m_observer, jdTT);
            if (!std::isfinite(f.lorentzFactor)) return false;
            f.earthVelocityOverC = m_planets.EarthVelocityOverC();
        }
        std::copy(&m_j2000ToDate[0][0], &m_j2000ToDate[0][0] + 9, &f.j2000ToDate[0][0]);
        f.centre = PlaceCentre::Geocentric;
        m_frame = f;
        m_frameValid = true;
        m_frameSampling = m_sampling;
        return true;
    }

    // Cubic Lagrange weights through the nodes k−1 … k+2 at u ∈ [0, 1)
    // past node k.
    static void CubicWeights(double u, double w[4])
    {
        w[0] = -u * (u - 1.0) * (u - 2.0) / 6.0;
        w[1] = (u + 1.0) * (u - 1.0) * (u - 2.0) / 2.0;
        w[2] = -(u + 1.0) * u * (u - 2.0) / 2.0;
        w[3] = (u + 1.0) * u * (u - 1.0) / 6.0;
    }

    // The J2000-to-date rotation (9 elements by rows), nutation in longitude
    // and the true obliquity at two-day node k.
    const std::array<double, 11>& RotationNode(long long k)
    {
        if (const auto it = m_rotationNodes.find(k); it != m_rotationNodes.end()) return it->second;
        if (m_rotationNodes.size() > 100000) m_rotationNodes.clear();
        const double tt2 = kNodeDays * static_cast<double>(k);
        const auto& nut = Node(k);
        double pb[3][3], n[3][3], r[3][3];
        eraPmat06(kJ2000JdTT, tt2, pb);
        const double epsA = eraObl06(kJ2000JdTT, tt2);
        eraNumat(epsA, nut[0], nut[1], n);
        eraRxr(n, pb, r);
        std::array<double, 11> out{};
        std::copy(&r[0][0], &r[0][0] + 9, out.begin());
        out[9] = nut[0];
        out[10] = epsA + nut[1];
        return m_rotationNodes.emplace(k, out).first->second;
    }

    // A body's heliocentric J2000 position (1–9, 3 the Earth) at jdTT; when
    // sampling at steps under half a day, from the cubic through half-day
    // nodes, with the velocity (AU/day) from its derivative if asked.
    bool Heliocentric(int body, double jdTT, Vector3& out, Vector3* velocity)
    {
        if (!(m_sampling && m_interpolateBodies) || body < 1 || body >= kBodyCount) {
            if (velocity) return false;
            return m_planets.HeliocentricPosition(m_observer, body, jdTT, nullptr, &out) == PositionStatus::Ok;
        }
        const double x = (jdTT - kJ2000JdTT) / kBodyNodeDays;
        if (!(std::abs(x) < 1e9)) return false;
        const long long k = static_cast<long long>(std::floor(x));
        auto& nodes = m_bodyNodes[static_cast<std::size_t>(body)];
        if (nodes.size() > 200000) nodes.clear();
        const Vector3* at[4];
        for (int i = 0; i < 4; ++i) {
            auto it = nodes.find(k - 1 + i);
            if (it == nodes.end()) {
                Vector3 v;
                const double jd = kJ2000JdTT + kBodyNodeDays * static_cast<double>(k - 1 + i);
                if (m_planets.HeliocentricPosition(m_observer, body, jd, nullptr, &v) != PositionStatus::Ok)
                    v.x = kNaN;
                it = nodes.emplace(k - 1 + i, v).first;
            }
            if (!std::isfinite(it->second.x))
                return !velocity &&
                       m_planets.HeliocentricPosition(m_observer, body, jdTT, nullptr, &out) == PositionStatus::Ok;
            at[i] = &it->second;
        }
        const double u = x - static_cast<double>(k);
        double w[4];
        CubicWeights(u, w);
        out = {};
        for (int i = 0; i < 4; ++i) {
            out.x += w[i] * at[i]->x;
            out.y += w[i] * at[i]->y;
            out.z += w[i] * at[i]->z;
        }
        if (velocity) {
            const double d[4] = {-(3.0 * u * u - 6.0 * u + 2.0) / 6.0, (3.0 * u * u - 4.0 * u - 1.0) / 2.0,
                                 -(3.0 * u * u - 2.0 * u - 2.0) / 2.0, (3.0 * u * u - 1.0) / 6.0};
            *velocity = {};
            for (int i = 0; i < 4; ++i) {
                velocity->x += d[i] * at[i]->x / kBodyNodeDays;
                velocity->y += d[i] * at[i]->y / kBodyNodeDays;
                velocity->z += d[i] * at[i]->z / kBodyNodeDays;
            }
        }
        return true;
    }

    static constexpr double kBodyNodeDays = 0.5;

    const CObserverDoc& m_observer;
    CPlanets m_planets;
    std::unordered_map<long long, std::array<double, 2>> m_nodes;
    std::unordered_map<long long, std::array<double, 11>> m_rotationNodes;
    std::array<std::unordered_map<long long, Vector3>, kBodyCount> m_bodyNodes;
    Vector3 m_site{};
    double m_siteTheta = kNaN;
    double m_siteJdTT = kNaN;
    bool m_sampling = false;
    bool m_interpolateBodies = false;
    bool m_orientationSampling = false;
    bool m_frameSampling = false;
    bool m_interpolateMoon = false;
    bool m_moonElongation = false;
    std::unordered_map<long long, MoonEclipticPlace> m_moonNodes;
    ApparentFrame m_frame;
    bool m_frameValid = false;
    double m_orientationJdTT = kNaN;
    double m_j2000ToDate[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    double m_dPsi = 0.0;
    double m_trueObliquity = 0.0;
};

// How a kind is sampled.
enum class Sampling { Value, Rate };

struct Plan {
    Sampling sampling = Sampling::Value;
    int channels = 1;
    bool angleRate = false;  // Rate of an angle taken modulo 2π (longitude, RA)
    bool helio = false;      // the first body's heliocentric distance
    bool needSun = false;    // the Sun is an implicit second body
    int keep = 0;            // Rate kinds: −1 minima only, +1 maxima only, 0 both
};

Plan PlanOf(PhenomenonKind kind)
{
    Plan p;
    switch (kind) {
    case PhenomenonKind::MinimumSeparation:
    case PhenomenonKind::Appulse: p.sampling = Sampling::Rate; p.keep = -1; break;
    case PhenomenonKind::MaximumSeparation: p.sampling = Sampling::Rate; p.keep = +1; break;
    case PhenomenonKind::MinimumEarthDistance: p.sampling = Sampling::Rate; p.keep = -1; break;
    case PhenomenonKind::MaximumEarthDistance: p.sampling = Sampling::Rate; p.keep = +1; break;
    case PhenomenonKind::ApogeePerigee: p.sampling = Sampling::Rate; break;
    case PhenomenonKind::EquinoxesSolstices: p.channels = 4; break;
    case PhenomenonKind::QuadratureLongitude:
    case PhenomenonKind::QuadratureRA: p.channels = 2; break;
    case PhenomenonKind::MoonPhases: p.channels = 4; break;
    case PhenomenonKind::StationaryLongitude:
    case PhenomenonKind::StationaryRA: p.sampling = Sampling::Rate; p.angleRate = true; break;
    case PhenomenonKind::DeclinationExtremes: p.sampling = Sampling::Rate; break;
    case PhenomenonKind::PerihelionAphelion: p.sampling = Sampling::Rate; p.helio = true; break;
    case PhenomenonKind::GreatestElongation: p.sampling = Sampling::Rate; p.keep = +1; p.needSun = true; break;
    default: break;
    }
    return p;
}

// The sampled quantity of every channel at one instant from the states of
// the first and second bodies.
void Quantities(PhenomenonKind kind, const BodyState& a, const BodyState& b, double* q)
{
    switch (kind) {
    case PhenomenonKind::ConjunctionLongitude: q[0] = WrapPi(a.lonRad - b.lonRad); break;
    case PhenomenonKind::ConjunctionRA: q[0] = WrapPi(a.raRad - b.raRad); break;
    case PhenomenonKind::OppositionLongitude: q[0] = WrapPi(a.lonRad - b.lonRad - kPi); break;
    case PhenomenonKind::OppositionRA: q[0] = WrapPi(a.raRad - b.raRad - kPi); break;
    case PhenomenonKind::MinimumSeparation:
    case PhenomenonKind::MaximumSeparation:
    case PhenomenonKind::Appulse: q[0] = Separation(a.raRad, a.decRad, b.raRad, b.decRad); break;
    case PhenomenonKind::MinimumEarthDistance:
    case PhenomenonKind::MaximumEarthDistance:
    case PhenomenonKind::ApogeePerigee: q[0] = a.earthDistanceAU; break;
    case PhenomenonKind::EquinoxesSolstices:
        for (int k = 0; k < 4; ++k) q[k] = WrapPi(a.lonRad - k * kHalfPi);
        break;
    case PhenomenonKind::QuadratureLongitude:
        q[0] = WrapPi(a.lonRad - b.lonRad - kHalfPi);
        q[1] = WrapPi(a.lonRad - b.lonRad + kHalfPi);
        break;
    case PhenomenonKind::QuadratureRA:
        q[0] = WrapPi(a.raRad - b.raRad - kHalfPi);
        q[1] = WrapPi(a.raRad - b.raRad + kHalfPi);
        break;
    case PhenomenonKind::MoonPhases:
        for (int k = 0; k < 4; ++k) q[k] = WrapPi(a.lonRad - b.lonRad - k * kHalfPi);
        break;
    case PhenomenonKind::StationaryLongitude: q[0] = a.lonRad; break;
    case PhenomenonKind::StationaryRA: q[0] = a.raRad; break;
    case PhenomenonKind::DeclinationExtremes: q[0] = a.decRad; break;
    case PhenomenonKind::PerihelionAphelion: q[0] = a.sunDistanceAU; break;
    case PhenomenonKind::GreatestElongation: q[0] = a.elongationRad; break;
    }
}

// The zero of the parabola through (−1, y1), (0, y2), (1, y3), in steps from
// the middle sample (Meeus eq. 3.7), iterated from n = 0 until n changes by
// less than 1e-5; nothing when it does not settle within [−1.5, 1.5].
std::optional<double> ThreePointZero(double y1, double y2, double y3)
{
    const double a = y2 - y1, b = y3 - y2, c = b - a;
    double n = 0.0;
    for (int iteration = 0; iteration < 100; ++iteration) {
        const double next = -2.0 * y2 / (a + b + c * n);
        if (!std::isfinite(next) || std::abs(next) > 1.5) return std::nullopt;
        if (std::abs(next - n) < 1e-5) return next;
        n = next;
    }
    return std::nullopt;
}

bool IsSunAndInnerPlanet(const PhenomenonBody& a, const PhenomenonBody& b, const PhenomenonBody*& planet)
{
    const bool aSun = a.type == PhenomenonBody::Type::SolarSystem && a.planet == kBodySun;
    const bool bSun = b.type == PhenomenonBody::Type::SolarSystem && b.planet == kBodySun;
    if (aSun == bSun) return false;
    planet = aSun ? &b : &a;
    // The Moon's conjunction with the Sun is the new moon, not an inferior one.
    return !(planet->type == PhenomenonBody::Type::SolarSystem && planet->planet == kBodyMoon);
}

std::string DegreesText(double rad)
{
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.1lf", rad * kDegPerRad);
    return buf;
}

std::string DeclinationText(double rad)
{
    const double deg = std::abs(rad) * kDegPerRad;
    int d = static_cast<int>(deg);
    int m = static_cast<int>(std::lround((deg - d) * 60.0));
    if (m == 60) {
        ++d;
        m = 0;
    }
    char buf[32];
    std::snprintf(buf, sizeof buf, "%c%02d %02d'", rad < 0.0 ? '-' : '+', d, m);
    return buf;
}

bool IsMoon(const PhenomenonBody& b) { return b.type == PhenomenonBody::Type::SolarSystem && b.planet == kBodyMoon; }

// Beyond this geocentric separation the Moon cannot cover a body from
// anywhere on the Earth: its horizontal parallax reaches 1.02°, its radius
// 0.28°, and the largest planet's 0.013°.
constexpr double kSiteCheckRad = 1.6 * kRadPerDeg;

// "03:10:05" of a UT Julian date, to the nearest second.
std::string TimeText(double jdUT)
{
    const CivilDateTime c = CivilFromJulianDate(jdUT + 0.5 / 86400.0);
    char buf[32];
    std::snprintf(buf, sizeof buf, "%02d:%02d:%02d", c.hour, c.minute, static_cast<int>(c.second));
    return buf;
}

// What the observer's site sees of the Moon passing a body near the
// geocentric event at jdUT0: the topocentric separation, less the sum of
// the topocentric apparent radii, is sampled every ten minutes over five
// hours either side (the parallax moves the local instants by up to two
// hours); its sign changes are refined by bisection to a third of a second
// and its least value by golden-section search to a second.
void CheckSite(CSampler& sampler, const CObserverDoc& observer, const PhenomenonBody& moon,
               const PhenomenonBody& other, double jdUT0, PhenomenonEvent& e)
{
    struct Sample {
        double margin = kNaN;  // separation − sum of radii, radians
        double separation = kNaN;
        double moonAltitude = kNaN;  // apparent (refracted), radians
    };
    // The scan from interpolated positions (a few ″ off), the refinements
    // from exact ones.
    const auto at = [&](double jdUT, bool scan = false) {
        Sample s;
        const double jdTT = jdUT + observer.DeltaT(jdUT) / 86400.0;
        double ra1, dec1, d1, ra2, dec2, d2;
        if (!sampler.Topocentric(moon, jdUT, jdTT, scan, ra1, dec1, d1) ||
            !sampler.Topocentric(other, jdUT, jdTT, scan, ra2, dec2, d2))
            return s;
        const auto radius = [](const PhenomenonBody& b, double dAU) {
            if (b.radiusKm <= 0.0 || !(dAU > 0.0)) return 0.0;
            return std::asin(std::min(1.0, b.radiusKm / (dAU * kAstronomicalUnitKmIAU2012)));
        };
        s.separation = Separation(ra1, dec1, ra2, dec2);
        s.margin = s.separation - radius(moon, d1) - radius(other, d2);
        const double altitude = sampler.SiteAltitude(ra1, dec1);
        s.moonAltitude = altitude + observer.Refraction(altitude);
        return s;
    };
    constexpr double kStep = 10.0 / 1440.0;
    constexpr int kHalfSpan = 30;  // samples either side: five hours
    std::vector<Sample> samples;
    for (int i = -kHalfSpan; i <= kHalfSpan; ++i) samples.push_back(at(jdUT0 + i * kStep, true));
    const auto time = [&](std::size_t i) { return jdUT0 + (static_cast<double>(i) - kHalfSpan) * kStep; };

    // The least separation.
    std::size_t best = samples.size();
    for (std::size_t i = 0; i < samples.size(); ++i)
        if (std::isfinite(samples[i].separation) &&
            (best == samples.size() || samples[i].separation < samples[best].separation))
            best = i;
    if (best == samples.size()) return;
    e.siteChecked = true;
    double lo = time(best) - kStep, hi = time(best) + kStep;
    constexpr double kGolden = 0.6180339887498949;
    double x1 = hi - kGolden * (hi - lo), x2 = lo + kGolden * (hi - lo);
    double f1 = at(x1).separation, f2 = at(x2).separation;
    while (hi - lo > 1.0 / 86400.0 && std::isfinite(f1) && std::isfinite(f2)) {
        if (f1 < f2) {
            hi = x2;
            x2 = x1;
            f2 = f1;
            x1 = hi - kGolden * (hi - lo);
            f1 = at(x1).separation;
        } else {
            lo = x1;
            x1 = x2;
            f1 = f2;
            x2 = lo + kGolden * (hi - lo);
            f2 = at(x2).separation;
        }
    }
    const Sample closest = at(0.5 * (lo + hi));
    e.siteClosestJdUT = 0.5 * (lo + hi);
    e.siteClosestSeparationRad = closest.separation;
    e.siteMoonUp = closest.moonAltitude > 0.0;

    // Disappearance and reappearance.
    const auto crossing = [&](double a, double b, bool falling) {
        for (int k = 0; k < 11; ++k) {
            const double mid = 0.5 * (a + b);
            const bool below = at(mid).margin < 0.0;
            if (below == falling)
                b = mid;
            else
                a = mid;
        }
        return 0.5 * (a + b);
    };
    bool upWhileCovered = false;
    for (std::size_t i = 1; i < samples.size(); ++i) {
        const Sample& p = samples[i - 1];
        const Sample& q = samples[i];
        if (!std::isfinite(p.margin) || !std::isfinite(q.margin)) continue;
        if (p.margin >= 0.0 && q.margin < 0.0 && !std::isfinite(e.siteBeginJdUT))
            e.siteBeginJdUT = crossing(time(i - 1), time(i), true);
        if (p.margin < 0.0 && q.margin >= 0.0) e.siteEndJdUT = crossing(time(i - 1), time(i), false);
        if (q.margin < 0.0 && q.moonAltitude > 0.0) upWhileCovered = true;
    }
    // A short occultation can fall between two samples: the closest approach
    // tells.
    if (closest.margin < 0.0 && closest.moonAltitude > 0.0) upWhileCovered = true;
    for (const double t : {e.siteBeginJdUT, e.siteEndJdUT}) {
        if (!std::isfinite(t)) continue;
        const Sample s = at(t + (t == e.siteBeginJdUT ? 1.0 : -1.0) / 86400.0);
        if (s.margin < 0.0 && s.moonAltitude > 0.0) upWhileCovered = true;
    }
    e.siteOccultation = upWhileCovered;
    char buf[160];
    if (std::isfinite(e.siteBeginJdUT) || std::isfinite(e.siteEndJdUT) || closest.margin < 0.0) {
        const std::string from = std::isfinite(e.siteBeginJdUT) ? TimeText(e.siteBeginJdUT) : std::string("?");
        const std::string to = std::isfinite(e.siteEndJdUT) ? TimeText(e.siteEndJdUT) : std::string("?");
        std::snprintf(buf, sizeof buf, "Occultation %s–%s UT%s", from.c_str(), to.c_str(),
                      upWhileCovered ? "" : " (Moon below horizon)");
    } else {
        std::snprintf(buf, sizeof buf, "%.2lf° at %s UT%s", closest.separation * kDegPerRad,
                      TimeText(e.siteClosestJdUT).c_str(), e.siteMoonUp ? "" : " (Moon below horizon)");
    }
    e.siteInfo = buf;
}

// Columns and event names once the instant is known (the positions are
// computed again there).
void FillEvent(CSampler& sampler, const CObserverDoc& observer, const PhenomenaRequest& request, int channel,
               bool rising, PhenomenonEvent& e)
{
    const PhenomenonKind kind = request.kind;
    const double jdTT = e.jdUT + observer.DeltaT(e.jdUT) / 86400.0;
    PhenomenonBody sun = PhenomenonBody::Planet(kBodySun);
    PhenomenonBody moon = PhenomenonBody::Planet(kBodyMoon);
    const PhenomenonBody& first = kind == PhenomenonKind::MoonPhases ? moon
                                  : request.bodies.empty()           ? sun
                                                                     : request.bodies[0];
    BodyState a, b;
    sampler.SetMoonElongation(true);
    sampler.State(first, jdTT, false, a);
    const bool two = PhenomenonBodyCount(kind) == 2;
    if (two) sampler.State(request.bodies[1], jdTT, false, b);
    e.separationRad = two ? Separation(a.raRad, a.decRad, b.raRad, b.decRad) : kNaN;
    e.distanceKm = IsMoon(first);
    e.distance = e.distanceKm ? a.earthDistanceAU * kAstronomicalUnitKmIAU2012 : a.earthDistanceAU;
    e.elongationRad = a.elongationRad;
    e.decRad = a.decRad;
    e.sunDistanceAU = a.sunDistanceAU;
    if (kind == PhenomenonKind::PerihelionAphelion) {
        BodyState h;
        if (sampler.State(first, jdTT, true, h)) e.sunDistanceAU = h.sunDistanceAU;
    }

    static constexpr std::string_view kSeasons[4] = {"Vernal Equinox", "Summer Solstice", "Autumnal Equinox",
                                                     "Winter Solstice"};
    static constexpr std::string_view kPhases[4] = {"New Moon", "First Quarter", "Full Moon", "Last Quarter"};
    switch (kind) {
    case PhenomenonKind::ConjunctionLongitude:
    case PhenomenonKind::ConjunctionRA: {
        const PhenomenonBody* planet = nullptr;
        e.name = "Conjunction";
        if (IsSunAndInnerPlanet(request.bodies[0], request.bodies[1], planet)) {
            const BodyState& p = planet == &request.bodies[0] ? a : b;
            const BodyState& s = planet == &request.bodies[0] ? b : a;
            // A body inside the Earth's orbit passes the Sun in front (inferior)
            // or behind (superior); an outer one only behind.
            if (planet->type != PhenomenonBody::Type::Fixed && p.sunDistanceAU < s.earthDistanceAU)
                e.name = p.earthDistanceAU < s.earthDistanceAU ? "Inferior" : "Superior";
        }
        break;
    }
    case PhenomenonKind::OppositionLongitude:
    case PhenomenonKind::OppositionRA: e.name = "Opposition"; break;
    case PhenomenonKind::MinimumSeparation:
    case PhenomenonKind::MinimumEarthDistance: e.name = "Minimum"; break;
    case PhenomenonKind::MaximumSeparation:
    case PhenomenonKind::MaximumEarthDistance: e.name = "Maximum"; break;
    case PhenomenonKind::ApogeePerigee: e.name = rising ? "Perigee" : "Apogee"; break;
    case PhenomenonKind::EquinoxesSolstices: e.name = kSeasons[channel]; break;
    case PhenomenonKind::QuadratureLongitude:
    case PhenomenonKind::QuadratureRA: e.name = channel == 0 ? "East" : "West"; break;
    case PhenomenonKind::MoonPhases: e.name = kPhases[channel]; break;
    case PhenomenonKind::StationaryLongitude:
    case PhenomenonKind::StationaryRA: e.name = rising ? "Direct" : "Retrograde"; break;
    case PhenomenonKind::DeclinationExtremes: e.name = rising ? "Minimum" : "Maximum"; break;
    case PhenomenonKind::PerihelionAphelion: e.name = rising ? "Perihelion" : "Aphelion"; break;
    case PhenomenonKind::GreatestElongation: {
        BodyState s;
        sampler.State(sun, jdTT, false, s);
        e.name = WrapPi(a.lonRad - s.lonRad) > 0.0 ? "East" : "West";
        e.info = DegreesText(a.elongationRad) + "°";
        break;
    }
    case PhenomenonKind::Appulse: e.name = "Appulse"; break;
    }

    if (two && std::isfinite(e.separationRad)) {
        // Which side: by ecliptic latitude for the longitude kinds, by
        // declination for the others.
        const bool ecliptic = kind == PhenomenonKind::ConjunctionLongitude ||
                              kind == PhenomenonKind::OppositionLongitude ||
                              kind == PhenomenonKind::QuadratureLongitude;
        const double north = ecliptic ? a.latRad - b.latRad : a.decRad - b.decRad;
        // An occultation (or a transit): closer than the sum of the apparent radii.
        const auto apparentRadius = [](const PhenomenonBody& body, const BodyState& st) {
            if (body.radiusKm <= 0.0 || !(st.earthDistanceAU > 0.0)) return 0.0;
            return std::asin(std::min(1.0, body.radiusKm / (st.earthDistanceAU * kAstronomicalUnitKmIAU2012)));
        };
        const double radii = apparentRadius(request.bodies[0], a) + apparentRadius(request.bodies[1], b);
        e.occultation = e.separationRad < radii;
        const bool siteKind = kind == PhenomenonKind::ConjunctionLongitude || kind == PhenomenonKind::ConjunctionRA ||
                              kind == PhenomenonKind::MinimumSeparation || kind == PhenomenonKind::Appulse;
        const bool firstMoon = IsMoon(request.bodies[0]), secondMoon = IsMoon(request.bodies[1]);
        if (siteKind && firstMoon != secondMoon && e.separationRad < kSiteCheckRad)
            CheckSite(sampler, observer, firstMoon ? request.bodies[0] : request.bodies[1],
                      firstMoon ? request.bodies[1] : request.bodies[0], e.jdUT, e);
        if (kind != PhenomenonKind::MaximumSeparation && kind != PhenomenonKind::OppositionLongitude &&
            kind != PhenomenonKind::OppositionRA) {
            char buf[160];
            std::snprintf(buf, sizeof buf, "%s %.1lf° %s of %s", request.bodies[0].name.c_str(),
                          std::abs(north) * kDegPerRad, north >= 0.0 ? "N" : "S", request.bodies[1].name.c_str());
            e.info = buf;
        }
        if (e.occultation) {
            const bool firstInFront = !(a.earthDistanceAU >= b.earthDistanceAU);
            const bool bigInFront = firstInFront ? apparentRadius(request.bodies[0], a) >= apparentRadius(request.bodies[1], b)
                                                 : apparentRadius(request.bodies[1], b) >= apparentRadius(request.bodies[0], a);
            e.info = bigInFront ? "Occultation" : "Transit";
            if (kind == PhenomenonKind::Appulse) e.name = e.info;
        }
    }
}

}  // namespace

PhenomenonBody PhenomenonBody::Planet(int body)
{
    PhenomenonBody b;
    b.type = Type::SolarSystem;
    b.planet = body;
    b.radiusKm = BodyRadiusKm(body);
    b.name = std::string(BodyName(body));
    return b;
}

int PhenomenonBodyCount(PhenomenonKind kind) { return ValidKind(kind) ? Info(kind).bodies : 0; }

std::string_view PhenomenonHeading(PhenomenonKind kind) { return ValidKind(kind) ? Info(kind).heading : ""; }

std::string_view PhenomenonKindKey(PhenomenonKind kind) { return ValidKind(kind) ? Info(kind).key : ""; }

std::optional<PhenomenonKind> PhenomenonKindFromText(std::string_view text)
{
    for (const KindInfo& k : kKinds)
        if (text == k.key) return k.kind;
    if (!text.empty() && text.size() <= 2 && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        const int n = std::stoi(std::string(text));
        if (n < kPhenomenonKindCount) return static_cast<PhenomenonKind>(n);
    }
    return std::nullopt;
}

bool PhenomenonAllowsFixedTarget(PhenomenonKind kind)
{
    switch (kind) {
    case PhenomenonKind::ConjunctionLongitude:
    case PhenomenonKind::ConjunctionRA:
    case PhenomenonKind::MinimumSeparation:
    case PhenomenonKind::OppositionLongitude:
    case PhenomenonKind::OppositionRA:
    case PhenomenonKind::MaximumSeparation:
    case PhenomenonKind::QuadratureLongitude:
    case PhenomenonKind::QuadratureRA:
    case PhenomenonKind::Appulse: return true;
    default: return false;
    }
}

std::string PhenomenaStatusMessage(PhenomenaStatus status)
{
    switch (status) {
    case PhenomenaStatus::Ok: return {};
    case PhenomenaStatus::NoKind: return "Unknown search type!";
    case PhenomenaStatus::BadDuration: return "You must specify a positive duration for the search";
    case PhenomenaStatus::BadStep: return "You must specify a positive calculation interval.";
    case PhenomenaStatus::TooManySamples:
        return "The search would take more than 2000000 steps: shorten the duration or lengthen the interval.";
    case PhenomenaStatus::BadBodies: return "Please select a planet name from the list.";
    case PhenomenaStatus::NoPositions: return "No positions are available for the bodies over the specified time period.";
    case PhenomenaStatus::Cancelled: return "The search was cancelled.";
    }
    return {};
}

namespace {

// The checks of a request; Ok when it can be searched.
PhenomenaStatus CheckRequest(const PhenomenaRequest& request)
{
    const PhenomenonKind kind = request.kind;
    if (!ValidKind(kind)) return PhenomenaStatus::NoKind;
    if (!std::isfinite(request.durationDays) || !(request.durationDays > 0.0)) return PhenomenaStatus::BadDuration;
    if (!std::isfinite(request.stepHours) || !(request.stepHours > 0.0)) return PhenomenaStatus::BadStep;
    if (!std::isfinite(request.jdUTStart)) return PhenomenaStatus::BadDuration;
    const double steps = std::floor(request.durationDays / (request.stepHours / 24.0));
    if (!(steps + 3.0 <= static_cast<double>(kMaxPhenomenaSamples))) return PhenomenaStatus::TooManySamples;
    const int count = PhenomenonBodyCount(kind);
    if (static_cast<int>(request.bodies.size()) < count) return PhenomenaStatus::BadBodies;
    const auto fixed = [&](int i) { return request.bodies[static_cast<std::size_t>(i)].type == PhenomenonBody::Type::Fixed; };
    if ((count >= 1 && fixed(0) && (count < 2 || !PhenomenonAllowsFixedTarget(kind))) ||
        (count == 2 && fixed(1) && !PhenomenonAllowsFixedTarget(kind)))
        return PhenomenaStatus::BadBodies;
    if (PlanOf(kind).helio && count >= 1 && IsMoon(request.bodies[0])) return PhenomenaStatus::BadBodies;
    return PhenomenaStatus::Ok;
}

// The number of samples of a checked request.
std::size_t SampleCount(const PhenomenaRequest& request)
{
    return static_cast<std::size_t>(std::floor(request.durationDays / (request.stepHours / 24.0))) + 3;
}

// One search with a sampler that the searches of a batch share. Progress
// runs from 0 to 1.
PhenomenaOutcome SearchOne(CSampler& sampler, const CObserverDoc& observer, const PhenomenaRequest& request,
                           const PhenomenaProgressFn& progress)
{
    PhenomenaOutcome out;
    out.status = CheckRequest(request);
    if (out.status != PhenomenaStatus::Ok) return out;
    const PhenomenonKind kind = request.kind;
    const double stepDays = request.stepHours / 24.0;

    // The bodies: the Sun for the equinoxes, the Moon and the Sun for the
    // phases, the Sun as the reference of elongations.
    const int count = PhenomenonBodyCount(kind);
    PhenomenonBody a = count >= 1 ? request.bodies[0] : PhenomenonBody::Planet(kBodySun);
    PhenomenonBody b = count >= 2 ? request.bodies[1] : PhenomenonBody::Planet(kBodySun);
    if (kind == PhenomenonKind::MoonPhases) a = PhenomenonBody::Planet(kBodyMoon);
    const Plan plan = PlanOf(kind);
    const bool needB = count == 2 || kind == PhenomenonKind::MoonPhases;

    // The kind's quantities at sample j (all channels).
    const auto sampleAt = [&](std::size_t j, double* values) {
        for (int c = 0; c < 4; ++c) values[c] = kNaN;
        const double jdUT = request.jdUTStart + (static_cast<double>(j) - 1.0) * stepDays;
        const double jdTT = jdUT + observer.DeltaT(jdUT) / 86400.0;
        BodyState sa, sb;
        if (!sampler.State(a, jdTT, plan.helio, sa)) return false;
        if (needB && !sampler.State(b, jdTT, false, sb)) return false;
        Quantities(kind, sa, sb, values);
        return true;
    };

    // Samples from one step before the start to one after the end, so that a
    // root near either end still has three samples about it.
    const std::size_t m = SampleCount(request);
    std::vector<double> q[4];
    for (int c = 0; c < plan.channels; ++c) q[c].assign(m, kNaN);
    sampler.SetStep(stepDays);
    sampler.SetSampling(true);
    sampler.SetMoonElongation(kind == PhenomenonKind::GreatestElongation);
    const double jdEnd = request.jdUTStart + request.durationDays;
    bool anyValid = false;
    for (std::size_t j = 0; j < m; ++j) {
        if (progress && j % 256 == 0 && !progress(0.95 * static_cast<double>(j) / static_cast<double>(m)))
            return {PhenomenaStatus::Cancelled, {}};
        double values[4];
        if (!sampleAt(j, values)) continue;
        for (int c = 0; c < plan.channels; ++c) q[c][j] = values[c];
        anyValid = true;
    }
    if (!anyValid) return {PhenomenaStatus::NoPositions, {}};

    // The exact samples about the roots, each computed once.
    sampler.SetSampling(false);
    std::unordered_map<std::size_t, std::array<double, 4>> exact;
    const auto exactAt = [&](std::size_t j, int c) {
        auto it = exact.find(j);
        if (it == exact.end()) {
            std::array<double, 4> v;
            sampleAt(j, v.data());
            it = exact.emplace(j, v).first;
        }
        return it->second[static_cast<std::size_t>(c)];
    };

    double lastJdUT = kNaN;
    int lastChannel = -1;
    for (int c = 0; c < plan.channels; ++c) {
        // The channel's series y at times t0 + k·step: the values, or their
        // step-to-step changes placed half a step later.
        std::vector<double> y;
        double t0 = request.jdUTStart - stepDays;
        const auto rate = [&](double d) { return plan.angleRate ? WrapPi(d) : d; };
        if (plan.sampling == Sampling::Value) {
            y = q[c];
        } else {
            y.resize(m - 1);
            for (std::size_t j = 0; j + 1 < m; ++j) y[j] = rate(q[c][j + 1] - q[c][j]);
            t0 += 0.5 * stepDays;
        }
        // The exact y at k.
        const auto exactY = [&](std::size_t k) {
            return plan.sampling == Sampling::Value ? exactAt(k, c) : rate(exactAt(k + 1, c) - exactAt(k, c));
        };
        const auto usable = [](double l, double r) {
            return std::isfinite(l) && std::isfinite(r) && std::abs(r - l) < kHalfPi;
        };
        for (std::size_t j = 1; j < y.size(); ++j) {
            if (!usable(y[j - 1], y[j]) || ((y[j - 1] < 0.0) == (y[j] < 0.0))) continue;
            const bool rising = y[j] >= 0.0;
            // Rate kinds: a rising change (decreasing, then increasing) is a minimum.
            if (plan.keep == -1 && !rising) continue;
            if (plan.keep == +1 && rising) continue;
            // Refinement from the exact samples about the root.
            const double y0 = exactY(j - 1), y1 = exactY(j);
            std::optional<double> n;
            double centre = 0.0;
            if (j + 1 < y.size() && usable(y[j], y[j + 1])) {
                const double y2 = exactY(j + 1);
                if (usable(y0, y1) && usable(y1, y2)) {
                    n = ThreePointZero(y0, y1, y2);
                    centre = static_cast<double>(j);
                }
            }
            if (!n && j >= 2 && usable(y[j - 2], y[j - 1])) {
                const double ym = exactY(j - 2);
                if (usable(ym, y0) && usable(y0, y1)) {
                    n = ThreePointZero(ym, y0, y1);
                    centre = static_cast<double>(j - 1);
                }
            }
            if (!n && usable(y0, y1) && y0 != y1) {  // two samples only: the straight line between them
                n = y0 / (y0 - y1);
                centre = static_cast<double>(j - 1);
            }
            if (!n) continue;
            PhenomenonEvent e;
            e.jdUT = t0 + (centre + *n) * stepDays;
            if (e.jdUT < request.jdUTStart || e.jdUT > jdEnd) continue;
            // Two brackets refined to one root (the sampled values off by a
            // hair where the exact ones cross): the event once.
            if (lastChannel == c && std::abs(e.jdUT - lastJdUT) < 0.5 * stepDays) continue;
            lastJdUT = e.jdUT;
            lastChannel = c;
            e.name.clear();
            FillEvent(sampler, observer, request, c, rising, e);
            out.events.push_back(std::move(e));
        }
    }
    std::stable_sort(out.events.begin(), out.events.end(),
                     [](const PhenomenonEvent& l, const PhenomenonEvent& r) { return l.jdUT < r.jdUT; });
    if (progress) progress(1.0);
    return out;
}

}  // namespace

PhenomenaOutcome SearchPhenomena(const CObserverDoc& observer, const PhenomenaRequest& request,
                                 const PhenomenaProgressFn& progress)
{
    CSampler sampler(observer);
    return SearchOne(sampler, observer, request, progress);
}

std::vector<PhenomenaOutcome> SearchPhenomenaBatch(const CObserverDoc& observer,
                                                   const std::vector<PhenomenaRequest>& requests,
                                                   const PhenomenaProgressFn& progress)
{
    std::vector<PhenomenaOutcome> outcomes(requests.size());
    // Progress in proportion to the samples each search takes.
    std::vector<double> weight(requests.size(), 0.0);
    double total = 0.0;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        if (CheckRequest(requests[i]) == PhenomenaStatus::Ok) weight[i] = static_cast<double>(SampleCount(requests[i]));
        total += weight[i];
    }
    CSampler sampler(observer);
    double done = 0.0;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        const auto inner = [&](double f) {
            return !progress || progress(total > 0.0 ? (done + f * weight[i]) / total : 0.0);
        };
        outcomes[i] = SearchOne(sampler, observer, requests[i], inner);
        if (outcomes[i].status == PhenomenaStatus::Cancelled) {
            for (PhenomenaOutcome& o : outcomes) o = {PhenomenaStatus::Cancelled, {}};
            return outcomes;
        }
        done += weight[i];
    }
    if (progress) progress(1.0);
    return outcomes;
}

std::vector<PhenomenaRequest> PhenomenaPairs(const PhenomenaRequest& base, const std::vector<PhenomenonBody>& first,
                                             const std::vector<PhenomenonBody>& second)
{
    std::vector<PhenomenaRequest> out;
    const int count = PhenomenonBodyCount(base.kind);
    const auto make = [&](std::vector<PhenomenonBody> bodies) {
        PhenomenaRequest r = base;
        r.bodies = std::move(bodies);
        out.push_back(std::move(r));
    };
    if (count == 0) {
        make({});
    } else if (count == 1) {
        std::vector<std::string> seen;
        for (const PhenomenonBody& a : first) {
            if (std::find(seen.begin(), seen.end(), a.name) != seen.end()) continue;
            seen.push_back(a.name);
            make({a});
        }
    } else {
        std::vector<std::pair<std::string, std::string>> seen;
        for (const PhenomenonBody& a : first)
            for (const PhenomenonBody& b : second) {
                if (a.name == b.name) continue;
                if (std::find(seen.begin(), seen.end(), std::pair(a.name, b.name)) != seen.end() ||
                    std::find(seen.begin(), seen.end(), std::pair(b.name, a.name)) != seen.end())
                    continue;
                seen.emplace_back(a.name, b.name);
                make({a, b});
            }
    }
    return out;
}

std::vector<PhenomenonBody> AllPlanetBodies()
{
    std::vector<PhenomenonBody> out;
    for (int b : {kBodyMercury, kBodyVenus, kBodyMars, kBodyJupiter, kBodySaturn, kBodyUranus, kBodyNeptune, kBodyPluto})
        out.push_back(PhenomenonBody::Planet(b));
    return out;
}

PhenomenaBatchOutcome SearchPhenomenaSections(const CObserverDoc& observer,
                                              const std::vector<PhenomenaRequest>& requests,
                                              const PhenomenaProgressFn& progress)
{
    PhenomenaBatchOutcome out;
    if (requests.empty()) {
        out.status = PhenomenaStatus::BadBodies;
        return out;
    }
    const std::vector<PhenomenaOutcome> found = SearchPhenomenaBatch(observer, requests, progress);
    const bool several = requests.size() > 1;
    bool anyRan = false;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        if (found[i].status == PhenomenaStatus::Cancelled) return {PhenomenaStatus::Cancelled, {}, 0};
        if (found[i].status != PhenomenaStatus::Ok) continue;
        anyRan = true;
        if (several && found[i].events.empty()) continue;
        out.eventCount += found[i].events.size();
        out.sections.push_back({requests[i], found[i].events});
    }
    if (!anyRan) out.status = found.front().status;
    return out;
}

std::string PhenomenaTitle(const PhenomenaRequest& request)
{
    const PhenomenonKind kind = request.kind;
    std::string title(PhenomenonHeading(kind));
    const int count = PhenomenonBodyCount(kind);
    if (count >= 1 && !request.bodies.empty()) title += " " + request.bodies[0].name;
    if (count == 2 && request.bodies.size() >= 2) title += " and " + request.bodies[1].name;
    if (kind == PhenomenonKind::StationaryLongitude) title += " in longitude";
    if (kind == PhenomenonKind::StationaryRA) title += " in RA";
    return title;
}

std::string FormatPhenomenonDate(double jdUT)
{
    static constexpr const char* kMonths[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    // To the nearest minute.
    const CivilDateTime c = CivilFromJulianDate(jdUT + 30.0 / 86400.0);
    char buf[48];
    std::snprintf(buf, sizeof buf, "%5d %s %02d %02d:%02d", c.year, kMonths[std::clamp(c.month, 1, 12) - 1], c.day,
                  c.hour, c.minute);
    return buf;
}

namespace {

// The text report of a phenomena table: each section's title written as
// "%s\n\n", then each of its events as one line of the row's cells
// (padded to the section's widest cell, numbers to the right) written as
// "%s\r\n\r\n". The line ending asked for does not change that layout;
// the bodies column, which the titles repeat, is left out.
std::string PhenomenaReport(const ResultTable& table, RowOrder order, const std::vector<std::size_t>& sectionStart,
                            const std::vector<std::string>& sectionTitle, int bodiesColumn)
{
    std::vector<std::size_t> rows;
    if (order.empty())
        for (std::size_t r = 0; r < table.rows.size(); ++r) rows.push_back(r);
    else
        rows.assign(order.begin(), order.end());
    std::string text;
    for (std::size_t s = 0; s < sectionTitle.size(); ++s) {
        const std::size_t first = sectionStart[s];
        const std::size_t last = s + 1 < sectionStart.size() ? sectionStart[s + 1] : table.rows.size();
        std::vector<std::size_t> mine;
        for (const std::size_t r : rows)
            if (r >= first && r < last && r < table.rows.size() && !table.rows[r].IsSeparator()) mine.push_back(r);
        text += sectionTitle[s] + "\n\n";
        std::vector<std::size_t> width(table.columns.size(), 0);
        const auto length = [](const std::string& t) {
            // Characters, not bytes: "°" is one.
            return static_cast<std::size_t>(std::count_if(t.begin(), t.end(), [](char ch) {
                return (static_cast<unsigned char>(ch) & 0xC0) != 0x80;
            }));
        };
        for (const std::size_t r : mine)
            for (std::size_t c = 0; c < table.columns.size(); ++c)
                width[c] = std::max(width[c], length(table.Cell(r, c).text));
        for (const std::size_t r : mine) {
            std::string line;
            for (std::size_t c = 0; c < table.columns.size(); ++c) {
                if (static_cast<int>(c) == bodiesColumn || width[c] == 0) continue;
                const std::string& cell = table.Cell(r, c).text;
                const std::string pad(width[c] - length(cell), ' ');
                if (!line.empty()) line += "  ";
                line += table.columns[c].align == CellAlign::Right ? pad + cell : cell + pad;
            }
            while (!line.empty() && line.back() == ' ') line.pop_back();
            text += line + "\r\n\r\n";
        }
    }
    return text;
}

}  // namespace

ResultTable MakePhenomenaTable(const PhenomenaRequest& request, const std::vector<PhenomenonEvent>& events)
{
    return MakePhenomenaTable(std::vector<PhenomenaSection>{{request, events}});
}

ResultTable MakePhenomenaTable(const std::vector<PhenomenaSection>& sections)
{
    ResultTable t;
    if (sections.empty()) return t;
    const PhenomenonKind kind = sections.front().request.kind;
    const bool several = sections.size() > 1;
    t.title = several ? std::string(PhenomenonHeading(kind)) : PhenomenaTitle(sections.front().request);
    if (several && kind == PhenomenonKind::StationaryLongitude) t.title += " ... in longitude";
    if (several && kind == PhenomenonKind::StationaryRA) t.title += " ... in RA";
    t.timeBase = "UT";
    t.reportHeadings = HeadingLine::Include;
    enum Col { Sep, Dist, DistKm, Elong, Dec, SunDist, InfoCol, SiteCol };
    std::vector<Col> cols;
    const bool two = PhenomenonBodyCount(kind) == 2;
    // The Earth–Moon distance in km, the others in AU: both columns when the
    // sections hold both.
    bool anyMoon = false, anyOther = false;
    for (const PhenomenaSection& s : sections) {
        const bool moon = kind == PhenomenonKind::MoonPhases || (!s.request.bodies.empty() && IsMoon(s.request.bodies[0]));
        (moon ? anyMoon : anyOther) = true;
    }
    std::vector<Col> dist;
    if (anyOther) dist.push_back(Dist);
    if (anyMoon) dist.push_back(DistKm);
    const auto with = [&](std::initializer_list<Col> list) {
        for (Col c : list) {
            if (c == Dist)
                cols.insert(cols.end(), dist.begin(), dist.end());
            else
                cols.push_back(c);
        }
    };
    switch (kind) {
    case PhenomenonKind::EquinoxesSolstices: with({Dec}); break;
    case PhenomenonKind::MoonPhases: with({Dist}); break;
    case PhenomenonKind::MinimumEarthDistance:
    case PhenomenonKind::MaximumEarthDistance:
    case PhenomenonKind::ApogeePerigee: with({Dist, Elong, Dec}); break;
    case PhenomenonKind::StationaryLongitude:
    case PhenomenonKind::StationaryRA: with({Elong, Dec}); break;
    case PhenomenonKind::DeclinationExtremes: with({Dec, Elong}); break;
    case PhenomenonKind::PerihelionAphelion: with({SunDist}); break;
    case PhenomenonKind::GreatestElongation: with({Elong, Dist, Dec}); break;
    default:
        if (two) with({Sep, Dist, Elong, Dec, InfoCol});
        break;
    }
    // What the observer's site sees, where the Moon came close to the body.
    bool anySite = false;
    for (const PhenomenaSection& s : sections)
        for (const PhenomenonEvent& e : s.events) anySite = anySite || e.siteChecked;
    if (anySite) cols.push_back(SiteCol);
    ResultColumn date{"Date (UT)", "dateJdUT", "", CellAlign::Left, " 2000 Jan 01 00:00", "YYYYY MMM DD hh:mm",
                      {"The date and time at which the event occurs. ", "This is always in UTC."}};
    t.columns.push_back(date);
    int bodiesColumn = -1;
    if (several && PhenomenonBodyCount(kind) > 0) {
        bodiesColumn = static_cast<int>(t.columns.size());
        t.columns.push_back({"Bodies", "bodies", "", CellAlign::Left, "Jupiter and Saturn", "",
                             {"The body or the two bodies of the event."}});
    }
    t.columns.push_back({"Event", "event", "", CellAlign::Left, "Autumnal Equinox", "", {"The event."}});
    for (Col c : cols) {
        switch (c) {
        case Sep:
            t.columns.push_back({"Separation (°)", "separationDeg", "deg", CellAlign::Right, "", "",
                                 {"The angular separation of the two bodies", "at the time of the event."}});
            break;
        case DistKm:
            t.columns.push_back({"Distance (km)", "distanceKm", "km", CellAlign::Right, "", "",
                                 {"The distance between the centres of the Earth and", "Moon, in km."}});
            break;
        case Dist:
            t.columns.push_back({"Distance (AU)", "distanceAU", "AU", CellAlign::Right, "", "",
                                 {"The geometric distance between the body and the Earth",
                                  "at the time of the event, measured in AU.", "",
                                  "For events involving two bodies, the distance is that of", "the first body."}});
            break;
        case Elong:
            t.columns.push_back({"Elongation (°)", "elongationDeg", "deg", CellAlign::Right, "", "",
                                 {"The angular separation of the body from the Sun",
                                  "For events involving two bodies, the elongation is", "that of the first body."}});
            break;
        case Dec:
            t.columns.push_back({"Declination", "declinationDeg", "deg", CellAlign::Right, "+00 00'", "",
                                 {"The declination of the body", "For events involving two bodies, the declination is",
                                  "that of the first body."}});
            break;
        case SunDist:
            t.columns.push_back({"Distance from Sun (AU)", "sunDistanceAU", "AU", CellAlign::Right, "", "",
                                 {"The distance between the body and the Sun",
                                  "at the time of perihelion or aphelion, measured in AU."}});
            break;
        case InfoCol:
            t.columns.push_back({"Information", "info", "", CellAlign::Left, "", "",
                                 {"Additional information about the event."}});
            break;
        case SiteCol:
            t.columns.push_back({"At the site", "site", "", CellAlign::Left, "", "",
                                 {"What the observer's site sees where the Moon passes",
                                  "within 1.6 degrees of the body: the times (UT) at which",
                                  "the body's centre disappears and reappears, or the",
                                  "least topocentric separation and its time."}});
            break;
        }
    }
    const auto number = [](double v, const char* format) {
        if (!std::isfinite(v)) return ResultCell();
        char buf[48];
        std::snprintf(buf, sizeof buf, format, v);
        return ResultCell::Number(v, buf);
    };
    std::vector<std::size_t> sectionStart;
    std::vector<std::string> sectionTitle;
    for (const PhenomenaSection& s : sections) {
        if (!t.rows.empty()) t.rows.emplace_back();  // a separator between the sections
        sectionStart.push_back(t.rows.size());
        sectionTitle.push_back(PhenomenaTitle(s.request));
        std::string bodies;
        const int count = PhenomenonBodyCount(kind);
        if (count >= 1 && !s.request.bodies.empty()) bodies = s.request.bodies[0].name;
        if (count == 2 && s.request.bodies.size() >= 2) bodies += " and " + s.request.bodies[1].name;
        for (const PhenomenonEvent& e : s.events) {
            ResultRow row;
            row.cells.push_back(ResultCell::Number(e.jdUT, FormatPhenomenonDate(e.jdUT)));
            if (bodiesColumn >= 0) row.cells.emplace_back(bodies);
            row.cells.emplace_back(e.name);
            for (Col c : cols) {
                switch (c) {
                case Sep: row.cells.push_back(number(e.separationRad * kDegPerRad, "%.1lf")); break;
                case Dist: row.cells.push_back(e.distanceKm ? ResultCell() : number(e.distance, "%.4lf")); break;
                case DistKm: row.cells.push_back(e.distanceKm ? number(e.distance, "%.0lf") : ResultCell()); break;
                case Elong: row.cells.push_back(number(e.elongationRad * kDegPerRad, "%.1lf")); break;
                case Dec:
                    row.cells.push_back(std::isfinite(e.decRad)
                                            ? ResultCell::Number(e.decRad * kDegPerRad, DeclinationText(e.decRad))
                                            : ResultCell());
                    break;
                case SunDist: row.cells.push_back(number(e.sunDistanceAU, "%.4lf")); break;
                case InfoCol: row.cells.emplace_back(e.info); break;
                case SiteCol: row.cells.emplace_back(e.siteInfo); break;
                }
            }
            t.rows.push_back(std::move(row));
        }
    }
    t.reportWriter = [sectionStart, sectionTitle, bodiesColumn](const ResultTable& table, LineEnding,
                                                                 RowOrder order) {
        return PhenomenaReport(table, order, sectionStart, sectionTitle, bodiesColumn);
    };
    return t;
}

}  // namespace orv
