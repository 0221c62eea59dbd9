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
class CSampler {
public:
    // `stepDays`: the search's step. Below a quarter of a day the Moon is
    // interpolated from quarter-day nodes (see MoonAt).
    CSampler(const CObserverDoc& observer, double stepDays)
        : m_observer(observer), m_interpolateMoon(stepDays < kMoonNodeDays)
    {
    }

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
                return m_planets.HeliocentricPosition(m_observer, planet, jd, nullptr, &out) == PositionStatus::Ok;
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

    // Whether the Moon's states carry its elongation (the Sun's place).
    void SetMoonElongation(bool on) { m_moonElongation = on; }

private:
    static constexpr double kNodeDays = 2.0;
    static constexpr double kMoonNodeDays = 0.25;

    // The lunar series costs most of a Moon sample. Its terms of any size
    // have periods above 9 days, so a cubic through quarter-day nodes
    // reproduces it to better than 0.02″ in longitude (the 27.55-day term of
    // 6.29°: (2π·0.25/27.55)⁴·3/128 of it is 0.006″; the 14.77-day and
    // 9.6-day terms add less) and 1 m in distance: far below the 0.5″ the
    // Moon moves in a second of time.
    MoonEclipticPlace MoonAt(double jdTT)
    {
        if (!m_interpolateMoon) return EvaluateMoonBlock(MoonDataBlock(), jdTT);
        const double x = (jdTT - kJ2000JdTT) / kMoonNodeDays;
        if (!(std::abs(x) < 1e9)) return EvaluateMoonBlock(MoonDataBlock(), jdTT);
        const long long k = static_cast<long long>(std::floor(x));
        const double u = x - static_cast<double>(k);
        const double w[4] = {-u * (u - 1.0) * (u - 2.0) / 6.0, (u + 1.0) * (u - 1.0) * (u - 2.0) / 2.0,
                             -(u + 1.0) * u * (u - 2.0) / 2.0, (u + 1.0) * u * (u - 1.0) / 6.0};
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
        if (m_orientationJdTT == jdTT) return true;
        const double x = (jdTT - kJ2000JdTT) / kNodeDays;
        if (!(std::abs(x) < 1e9)) return false;
        const long long k = static_cast<long long>(std::floor(x));
        const double u = x - static_cast<double>(k);
        // Cubic Lagrange through the nodes k−1 … k+2 at u ∈ [0, 1).
        const double w[4] = {-u * (u - 1.0) * (u - 2.0) / 6.0, (u + 1.0) * (u - 1.0) * (u - 2.0) / 2.0,
                             -(u + 1.0) * u * (u - 2.0) / 2.0, (u + 1.0) * u * (u - 1.0) / 6.0};
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
        if (m_frameValid && m_frame.jdTT == jdTT) return true;
        m_frameValid = false;
        if (!Orientation(jdTT)) return false;
        ApparentFrame f;
        f.jdTT = jdTT;
        if (m_planets.HeliocentricPosition(m_observer, kBodyEarth, jdTT, nullptr, &f.earthJ2000) != PositionStatus::Ok)
            return false;
        f.lorentzFactor = m_planets.EarthVelocity(m_observer, jdTT);
        if (!std::isfinite(f.lorentzFactor)) return false;
        f.earthVelocityOverC = m_planets.EarthVelocityOverC();
        std::copy(&m_j2000ToDate[0][0], &m_j2000ToDate[0][0] + 9, &f.j2000ToDate[0][0]);
        f.centre = PlaceCentre::Geocentric;
        m_frame = f;
        m_frameValid = true;
        return true;
    }

    const CObserverDoc& m_observer;
    CPlanets m_planets;
    std::unordered_map<long long, std::array<double, 2>> m_nodes;
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

PhenomenaOutcome SearchPhenomena(const CObserverDoc& observer, const PhenomenaRequest& request,
                                 const PhenomenaProgressFn& progress)
{
    PhenomenaOutcome out;
    const PhenomenonKind kind = request.kind;
    if (!ValidKind(kind)) return {PhenomenaStatus::NoKind, {}};
    if (!std::isfinite(request.durationDays) || !(request.durationDays > 0.0)) return {PhenomenaStatus::BadDuration, {}};
    if (!std::isfinite(request.stepHours) || !(request.stepHours > 0.0)) return {PhenomenaStatus::BadStep, {}};
    if (!std::isfinite(request.jdUTStart)) return {PhenomenaStatus::BadDuration, {}};
    const double stepDays = request.stepHours / 24.0;
    const double steps = std::floor(request.durationDays / stepDays);
    if (!(steps + 3.0 <= static_cast<double>(kMaxPhenomenaSamples))) return {PhenomenaStatus::TooManySamples, {}};

    // The bodies: the Sun for the equinoxes, the Moon and the Sun for the
    // phases, the Sun as the reference of elongations.
    const int count = PhenomenonBodyCount(kind);
    if (static_cast<int>(request.bodies.size()) < count) return {PhenomenaStatus::BadBodies, {}};
    PhenomenonBody a = count >= 1 ? request.bodies[0] : PhenomenonBody::Planet(kBodySun);
    PhenomenonBody b = count >= 2 ? request.bodies[1] : PhenomenonBody::Planet(kBodySun);
    if (kind == PhenomenonKind::MoonPhases) a = PhenomenonBody::Planet(kBodyMoon);
    const Plan plan = PlanOf(kind);
    if ((a.type == PhenomenonBody::Type::Fixed && (count < 2 || !PhenomenonAllowsFixedTarget(kind))) ||
        (count == 2 && b.type == PhenomenonBody::Type::Fixed && !PhenomenonAllowsFixedTarget(kind)))
        return {PhenomenaStatus::BadBodies, {}};
    if (plan.helio && a.type == PhenomenonBody::Type::SolarSystem && a.planet == kBodyMoon)
        return {PhenomenaStatus::BadBodies, {}};
    const bool needB = count == 2 || kind == PhenomenonKind::MoonPhases;

    // Samples from one step before the start to one after the end, so that a
    // root near either end still has three samples about it.
    const std::size_t m = static_cast<std::size_t>(steps) + 3;
    std::vector<double> q[4];
    for (int c = 0; c < plan.channels; ++c) q[c].assign(m, kNaN);
    CSampler sampler(observer, stepDays);
    sampler.SetMoonElongation(kind == PhenomenonKind::GreatestElongation);
    const double jdEnd = request.jdUTStart + request.durationDays;
    bool anyValid = false;
    for (std::size_t j = 0; j < m; ++j) {
        if (progress && j % 256 == 0 && !progress(0.95 * static_cast<double>(j) / static_cast<double>(m)))
            return {PhenomenaStatus::Cancelled, {}};
        const double jdUT = request.jdUTStart + (static_cast<double>(j) - 1.0) * stepDays;
        const double jdTT = jdUT + observer.DeltaT(jdUT) / 86400.0;
        BodyState sa, sb;
        if (!sampler.State(a, jdTT, plan.helio, sa)) continue;
        if (needB && !sampler.State(b, jdTT, false, sb)) continue;
        double values[4] = {kNaN, kNaN, kNaN, kNaN};
        Quantities(kind, sa, sb, values);
        for (int c = 0; c < plan.channels; ++c) q[c][j] = values[c];
        anyValid = true;
    }
    if (!anyValid) return {PhenomenaStatus::NoPositions, {}};

    for (int c = 0; c < plan.channels; ++c) {
        // The channel's series y at times t0 + k·step: the values, or their
        // step-to-step changes placed half a step later.
        std::vector<double> y;
        double t0 = request.jdUTStart - stepDays;
        if (plan.sampling == Sampling::Value) {
            y = q[c];
        } else {
            y.resize(m - 1);
            for (std::size_t j = 0; j + 1 < m; ++j) {
                const double d = q[c][j + 1] - q[c][j];
                y[j] = plan.angleRate ? WrapPi(d) : d;
            }
            t0 += 0.5 * stepDays;
        }
        const auto usable = [&](std::size_t i, std::size_t k) {
            return std::isfinite(y[i]) && std::isfinite(y[k]) && std::abs(y[k] - y[i]) < kHalfPi;
        };
        for (std::size_t j = 1; j < y.size(); ++j) {
            if (!usable(j - 1, j) || ((y[j - 1] < 0.0) == (y[j] < 0.0))) continue;
            const bool rising = y[j] >= 0.0;
            // Rate kinds: a rising change (decreasing, then increasing) is a minimum.
            if (plan.keep == -1 && !rising) continue;
            if (plan.keep == +1 && rising) continue;
            std::optional<double> n;
            double centre = 0.0;
            if (j + 1 < y.size() && usable(j, j + 1)) {
                n = ThreePointZero(y[j - 1], y[j], y[j + 1]);
                centre = static_cast<double>(j);
            }
            if (!n && j >= 2 && usable(j - 2, j - 1)) {
                n = ThreePointZero(y[j - 2], y[j - 1], y[j]);
                centre = static_cast<double>(j - 1);
            }
            if (!n) {  // two samples only: the straight line between them
                n = y[j - 1] / (y[j - 1] - y[j]);
                centre = static_cast<double>(j - 1);
            }
            PhenomenonEvent e;
            e.jdUT = t0 + (centre + *n) * stepDays;
            if (e.jdUT < request.jdUTStart || e.jdUT > jdEnd) continue;
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

ResultTable MakePhenomenaTable(const PhenomenaRequest& request, const std::vector<PhenomenonEvent>& events)
{
    const PhenomenonKind kind = request.kind;
    ResultTable t;
    t.title = PhenomenaTitle(request);
    t.timeBase = "UT";
    t.reportHeadings = HeadingLine::Include;
    enum Col { Sep, Dist, Elong, Dec, SunDist, InfoCol };
    std::vector<Col> cols;
    const bool two = PhenomenonBodyCount(kind) == 2;
    const bool moonFirst = kind == PhenomenonKind::MoonPhases || (!request.bodies.empty() && IsMoon(request.bodies[0]));
    switch (kind) {
    case PhenomenonKind::EquinoxesSolstices: cols = {Dec}; break;
    case PhenomenonKind::MoonPhases: cols = {Dist}; break;
    case PhenomenonKind::MinimumEarthDistance:
    case PhenomenonKind::MaximumEarthDistance:
    case PhenomenonKind::ApogeePerigee: cols = {Dist, Elong, Dec}; break;
    case PhenomenonKind::StationaryLongitude:
    case PhenomenonKind::StationaryRA: cols = {Elong, Dec}; break;
    case PhenomenonKind::DeclinationExtremes: cols = {Dec, Elong}; break;
    case PhenomenonKind::PerihelionAphelion: cols = {SunDist}; break;
    case PhenomenonKind::GreatestElongation: cols = {Elong, Dist, Dec}; break;
    default:
        if (two) cols = {Sep, Dist, Elong, Dec, InfoCol};
        break;
    }
    ResultColumn date{"Date (UT)", "dateJdUT", "", CellAlign::Left, " 2000 Jan 01 00:00", "YYYYY MMM DD hh:mm",
                      {"The date and time at which the event occurs. ", "This is always in UTC."}};
    t.columns.push_back(date);
    t.columns.push_back({"Event", "event", "", CellAlign::Left, "Autumnal Equinox", "", {"The event."}});
    for (Col c : cols) {
        switch (c) {
        case Sep:
            t.columns.push_back({"Separation (°)", "separationDeg", "deg", CellAlign::Right, "", "",
                                 {"The angular separation of the two bodies", "at the time of the event."}});
            break;
        case Dist:
            if (moonFirst)
                t.columns.push_back({"Distance (km)", "distanceKm", "km", CellAlign::Right, "", "",
                                     {"The distance between the centres of the Earth and", "Moon, in km."}});
            else
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
        }
    }
    const auto number = [](double v, const char* format) {
        if (!std::isfinite(v)) return ResultCell();
        char buf[48];
        std::snprintf(buf, sizeof buf, format, v);
        return ResultCell::Number(v, buf);
    };
    for (const PhenomenonEvent& e : events) {
        ResultRow row;
        row.cells.push_back(ResultCell::Number(e.jdUT, FormatPhenomenonDate(e.jdUT)));
        row.cells.emplace_back(e.name);
        for (Col c : cols) {
            switch (c) {
            case Sep: row.cells.push_back(number(e.separationRad * kDegPerRad, "%.1lf")); break;
            case Dist: row.cells.push_back(number(e.distance, e.distanceKm ? "%.0lf" : "%.4lf")); break;
            case Elong: row.cells.push_back(number(e.elongationRad * kDegPerRad, "%.1lf")); break;
            case Dec:
                row.cells.push_back(std::isfinite(e.decRad) ? ResultCell::Number(e.decRad * kDegPerRad, DeclinationText(e.decRad))
                                                            : ResultCell());
                break;
            case SunDist: row.cells.push_back(number(e.sunDistanceAU, "%.4lf")); break;
            case InfoCol: row.cells.emplace_back(e.info); break;
            }
        }
        t.rows.push_back(std::move(row));
    }
    return t;
}

}  // namespace orv
