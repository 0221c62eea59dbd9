#include "solarsystem/planets.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <limits>

#include <erfa.h>

#include "observer/observer.h"
#include "solarsystem/earthoffset.h"
#include "solarsystem/pluto.h"
#include "util/settingsstore.h"
#include "util/text.h"

namespace orv {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;
constexpr double kDegToRad = kPi / 180.0;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
// 2GM☉/c² in AU: the Sun's gravitational delay and deflection scale.
constexpr double kSunSchwarzschildAU = 1.974e-8;
// Earth's equatorial radius and flattening (WGS84), for the site's place.
constexpr double kEarthRadiusKm = 6378.137;
constexpr double kEarthFlattening = 1.0 / 298.257223563;
// Half the span of the central difference that gives the Earth's velocity.
constexpr double kEarthVelocityStepDays = 0.001;

constexpr double kBodyRadiusKm[kBodyCount] = {1737.4,  2439.7,  6051.8,  695700.0, 3396.19,
                                              71492.0, 60268.0, 25559.0, 24764.0,  1188.3};

double Mod2Pi(double a)
{
    const double r = std::fmod(a, kTwoPi);
    return r < 0.0 ? r + kTwoPi : r;
}
double Dot(const Vector3& a, const Vector3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
double Length(const Vector3& a) { return std::sqrt(Dot(a, a)); }
Vector3 Sub(const Vector3& a, const Vector3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vector3 Scale(const Vector3& a, double s) { return {a.x * s, a.y * s, a.z * s}; }
Vector3 Add(const Vector3& a, const Vector3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }

// Angle between two vectors, robust near 0 and π.
double AngleBetween(const Vector3& a, const Vector3& b)
{
    const Vector3 c{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    return std::atan2(Length(c), Dot(a, b));
}

// The J2000 equatorial vector as ecliptic longitude and latitude of date
// (mean ecliptic and equinox of date).
void EclipticOfDate(const CObserverDoc& observer, const Vector3& j2000, double jdTT, double& lonRad, double& latRad)
{
    double v[3] = {j2000.x, j2000.y, j2000.z};
    observer.PrecessXYZ(v, jdTT, -1);
    const double eps = observer.MeanObliquity(jdTT);
    const double y = v[1] * std::cos(eps) + v[2] * std::sin(eps);
    const double z = v[2] * std::cos(eps) - v[1] * std::sin(eps);
    lonRad = Mod2Pi(std::atan2(y, v[0]));
    latRad = std::atan2(z, std::hypot(v[0], y));
}

// The site's geocentric position in the true equator of date, AU, at the
// local apparent sidereal time (Meeus ch. 11 for ρ sin φ′ and ρ cos φ′).
Vector3 SiteOfDate(const CObserverDoc& observer, double jdTT)
{
    const double phi = observer.LatitudeRad();
    const double u = std::atan((1.0 - kEarthFlattening) * std::tan(phi));
    const double h = observer.HeightM() / (kEarthRadiusKm * 1000.0);
    const double rhoSin = (1.0 - kEarthFlattening) * std::sin(u) + h * std::sin(phi);
    const double rhoCos = std::cos(u) + h * std::cos(phi);
    const double theta = observer.LAST(jdTT) * 15.0 * kDegToRad;
    const double scale = kEarthRadiusKm / kAstronomicalUnitKmIAU2012;
    return {rhoCos * std::cos(theta) * scale, rhoCos * std::sin(theta) * scale, rhoSin * scale};
}

// Shifts a place of date at `distanceAU` from the geocentre to the
// observer's site (diurnal parallax and aberration).
void ApplyParallax(const CObserverDoc& observer, double jdTT, double distanceAU, double& raRad, double& decRad)
{
    TopocentricFromGeocentric(SiteOfDate(observer, jdTT), distanceAU, raRad, decRad);
}

// The site's velocity from the Earth's rotation, true equator of date, in
// units of c: Ω × r, Ω the Earth's angular velocity (IERS Conventions 2010,
// 7.292115e-5 rad/s).
Vector3 SiteVelocityOverC(const Vector3& siteOfDateAU)
{
    constexpr double kEarthRotationRadPerDay = 7.292115e-5 * 86400.0;
    const double scale = kEarthRotationRadPerDay / kLightAUPerDay;
    return {-siteOfDateAU.y * scale, siteOfDateAU.x * scale, 0.0};
}

std::int16_t Centi(double magnitude)
{
    if (!std::isfinite(magnitude)) return 9999;
    return static_cast<std::int16_t>(std::clamp(std::lround(magnitude * 100.0), -32767L, 32767L));
}

}  // namespace

std::optional<int> BodyFromName(std::string_view name)
{
    for (int body = 0; body < kBodyCount; ++body) {
        if (EqualIgnoringCase(BodyName(body), name)) return body;
    }
    return std::nullopt;
}

double BodyRadiusKm(int body) { return body >= 0 && body < kBodyCount ? kBodyRadiusKm[body] : kNaN; }

const CVsop87D& SharedVsop87D()
{
    static const CVsop87D series = [] {
        CVsop87D s;
        s.Open();
        return s;
    }();
    return series;
}

CPlanets::CPlanets() : CPlanets(SharedVsop87D(), &SharedEphem96()) {}

CPlanets::CPlanets(const CVsop87D& vsop87, const CEphem96* ephem96) : m_vsop87(&vsop87), m_ephem96(ephem96) {}

void CPlanets::LoadSettings(const CSettingsStore& store)
{
    SetGreatRedSpotLongitudeDeg(store.GetReal("Planet", "GRSLong", 80.0));
}

void CPlanets::SaveSettings(CSettingsStore& store) const
{
    char text[64];
    std::snprintf(text, sizeof text, "%f", m_grsLongitudeDeg);
    store.WriteString("Planet", "GRSLong", text);
}

void CPlanets::SetGreatRedSpotLongitudeDeg(double degrees)
{
    if (!std::isfinite(degrees)) return;
    const double r = std::fmod(degrees, 360.0);
    m_grsLongitudeDeg = r < 0.0 ? r + 360.0 : r;
}

PositionStatus CPlanets::HeliocentricPosition(const CObserverDoc& observer, int body, double jdTT,
                                              SphericalLBR* ofDate, Vector3* j2000) const
{
    (void)observer;  // the frames are VSOP87's own (IAU 1976), see vsop87.h
    if (!std::isfinite(jdTT) || body < 1 || body > 9) return PositionStatus::InvalidInput;
    double v[3];
    // The compact ephemeris over its span; outside it, or when its file is
    // missing, the series it was fitted to. Without the file the program
    // is as accurate, only slower: the fit follows VSOP87 and the Pluto
    // series to 0.05″.
    const bool compact = jdTT >= kEphem96FirstJd && jdTT < kEphem96EndJd && m_ephem96 && m_ephem96->Covers(body, jdTT);
    if (compact) {
        m_ephem96->Evaluate(body, jdTT, v);
        if (body == kBodyEarth) {
            // Body 3 of the file is the Earth–Moon barycentre.
            double offset[3];
            EarthBarycentreOffset(jdTT, offset);
            for (int c = 0; c < 3; ++c) v[c] -= offset[c];
        }
    } else if (body == kBodyPluto) {
        if (!PlutoEquatorialJ2000(jdTT, v)) return PositionStatus::NoSource;
    } else {
        if (!Vsop87Heliocentric(*m_vsop87, body, jdTT, ofDate, j2000 ? v : nullptr)) return PositionStatus::NoSource;
        if (j2000) *j2000 = {v[0], v[1], v[2]};
        return PositionStatus::Ok;
    }
    // The place of date is formed in VSOP87D's own frame (IAU 1976
    // precession and obliquity, see vsop87.h), so that the compact
    // ephemeris and VSOP87 give the same longitudes on either side of the
    // span's ends.
    if (ofDate) *ofDate = J2000ToEclipticOfDate(v, jdTT);
    if (j2000) *j2000 = {v[0], v[1], v[2]};
    return PositionStatus::Ok;
}

bool CPlanets::EarthAt(const CObserverDoc& observer, double jdTT, Vector3& earth)
{
    if (m_cacheObserver != &observer || jdTT != m_earthJdTT) {
        constexpr double h = kEarthVelocityStepDays;
        const bool compact = jdTT - h >= kEphem96FirstJd && jdTT + h < kEphem96EndJd && m_ephem96 &&
                             m_ephem96->Covers(kBodyEarth, jdTT - h) && m_ephem96->Covers(kBodyEarth, jdTT + h);
        if (compact) {
            // The compact ephemeris's barycentre at t and t ± h, less the
            // offset of the Earth and its rate from one evaluation of the
            // offset's series: position and velocity together.
            double barycentre[3], before[3], after[3], offset[3], rate[3];
            m_ephem96->Evaluate(kBodyEarth, jdTT, barycentre);
            m_ephem96->Evaluate(kBodyEarth, jdTT - h, before);
            m_ephem96->Evaluate(kBodyEarth, jdTT + h, after);
            EarthBarycentreOffsetAndRate(jdTT, offset, rate);
            m_earth = {barycentre[0] - offset[0], barycentre[1] - offset[1], barycentre[2] - offset[2]};
            Vector3 velocity;
            double* v = &velocity.x;
            for (int c = 0; c < 3; ++c) v[c] = (after[c] - before[c]) / (2.0 * h) - rate[c];
            m_earthVelocityOverC = Scale(velocity, 1.0 / kLightAUPerDay);
            m_lorentzFactor = 1.0 / std::sqrt(1.0 - Dot(m_earthVelocityOverC, m_earthVelocityOverC));
            m_cacheObserver = &observer;
            m_earthJdTT = jdTT;
            m_velocityJdTT = jdTT;
        } else {
            if (HeliocentricPosition(observer, kBodyEarth, jdTT, nullptr, &m_earth) != PositionStatus::Ok) return false;
            m_cacheObserver = &observer;
            m_earthJdTT = jdTT;
            m_velocityJdTT = std::numeric_limits<double>::quiet_NaN();
        }
    }
    earth = m_earth;
    return true;
}

double CPlanets::EarthVelocity(const CObserverDoc& observer, double jdTT)
{
    if (m_cacheObserver == &observer && jdTT == m_velocityJdTT) return m_lorentzFactor;
    Vector3 before, after;
    if (HeliocentricPosition(observer, kBodyEarth, jdTT - kEarthVelocityStepDays, nullptr, &before) != PositionStatus::Ok ||
        HeliocentricPosition(observer, kBodyEarth, jdTT + kEarthVelocityStepDays, nullptr, &after) != PositionStatus::Ok)
        return kNaN;
    // A central difference over 0.002 d: its error (v·(ωh)²/6, ω the orbital
    // rate) is 1e-12 of the velocity.
    m_earthVelocityOverC = Scale(Sub(after, before), 1.0 / (kLightAUPerDay * 2.0 * kEarthVelocityStepDays));
    m_lorentzFactor = 1.0 / std::sqrt(1.0 - Dot(m_earthVelocityOverC, m_earthVelocityOverC));
    if (m_cacheObserver == &observer && jdTT == m_earthJdTT) m_velocityJdTT = jdTT;
    return m_lorentzFactor;
}

PositionStatus CPlanets::PrepareApparentFrame(const CObserverDoc& observer, double jdTT, PlaceCentre centre,
                                              ApparentFrame& frame)
{
    if (!std::isfinite(jdTT)) return PositionStatus::InvalidInput;
    frame.jdTT = jdTT;
    if (!EarthAt(observer, jdTT, frame.earthJ2000)) return PositionStatus::NoSource;
    if (!std::isfinite(EarthVelocity(observer, jdTT))) return PositionStatus::NoSource;
    frame.earthVelocityOverC = m_earthVelocityOverC;
    frame.lorentzFactor = m_lorentzFactor;
    // The rotation's columns are the images of the three axes.
    for (int j = 0; j < 3; ++j) {
        double axis[3] = {0.0, 0.0, 0.0};
        axis[j] = 1.0;
        observer.PrecessXYZ(axis, jdTT, -1);
        observer.NutateXYZ(axis, jdTT);
        for (int i = 0; i < 3; ++i) frame.j2000ToDate[i][j] = axis[i];
    }
    frame.centre = PlaceCentre::Geocentric;
    frame.siteOfDateAU = {};
    if (centre == PlaceCentre::Topocentric) SetTopocentricSite(frame, SiteOfDate(observer, jdTT));
    return PositionStatus::Ok;
}

void SetTopocentricSite(ApparentFrame& frame, const Vector3& siteOfDateAU)
{
    frame.centre = PlaceCentre::Topocentric;
    frame.siteOfDateAU = siteOfDateAU;
    // The site's velocity to J2000 with the transpose of the rotation.
    const Vector3 v = SiteVelocityOverC(siteOfDateAU);
    const auto& m = frame.j2000ToDate;
    frame.earthVelocityOverC.x += m[0][0] * v.x + m[1][0] * v.y + m[2][0] * v.z;
    frame.earthVelocityOverC.y += m[0][1] * v.x + m[1][1] * v.y + m[2][1] * v.z;
    frame.earthVelocityOverC.z += m[0][2] * v.x + m[1][2] * v.y + m[2][2] * v.z;
    frame.lorentzFactor = 1.0 / std::sqrt(1.0 - Dot(frame.earthVelocityOverC, frame.earthVelocityOverC));
}

void TopocentricFromGeocentric(const Vector3& siteOfDateAU, double distanceAU, double& raRad, double& decRad)
{
    const Vector3 geo{distanceAU * std::cos(decRad) * std::cos(raRad), distanceAU * std::cos(decRad) * std::sin(raRad),
                      distanceAU * std::sin(decRad)};
    const Vector3 topo = Sub(geo, siteOfDateAU);
    Vector3 p = Scale(topo, 1.0 / Length(topo));
    // First-order aberration by the site's rotational velocity (|v|/c ≤ 1.6e-6).
    const Vector3 v = SiteVelocityOverC(siteOfDateAU);
    p = Sub(Add(p, v), Scale(p, Dot(p, v)));
    raRad = Mod2Pi(std::atan2(p.y, p.x));
    decRad = std::atan2(p.z, std::hypot(p.x, p.y));
}

PositionStatus ApparentPlaceOf(const ApparentFrame& frame, const HeliocentricJ2000Fn& position, SolarGravity gravity,
                               ApparentPlace& place)
{
    const double jdTT = frame.jdTT;
    const Vector3& earth = frame.earthJ2000;
    const bool bent = gravity == SolarGravity::Apply;
    Vector3 target{};
    if (!position(jdTT, target)) return PositionStatus::NoSource;

    // Light time, two passes: the body is taken where it was when the light
    // now arriving left it. The delay includes the Sun's gravitational
    // (Shapiro) term, which is undefined for the Sun itself and left out there.
    const double e = Length(earth);
    auto lightTimeDays = [&](const Vector3& p) {
        const double d = Length(Sub(p, earth));
        const double q = Length(p);
        double path = d;
        if (bent) path += kSunSchwarzschildAU * std::log((e + q + d) / (e + q - d));
        return path / kLightAUPerDay;
    };
    double tau = lightTimeDays(target);
    if (!position(jdTT - tau, target)) return PositionStatus::NoSource;
    tau = lightTimeDays(target);
    place.lightTimeSeconds = tau * 86400.0;

    const Vector3 geometric = Sub(target, earth);
    const double distance = Length(geometric);
    if (!(distance > 0.0) || !std::isfinite(distance)) return PositionStatus::InvalidInput;
    Vector3 p = Scale(geometric, 1.0 / distance);
    // Deflection of light by the Sun (Explanatory Supplement eq. 3.324-1).
    if (bent) {
        const double q = Length(target);
        const Vector3 eu = Scale(earth, 1.0 / e);
        const Vector3 qu = Scale(target, 1.0 / q);
        const double factor = kSunSchwarzschildAU / ((1.0 + Dot(qu, eu)) * e);
        p = Add(p, Scale(Sub(Scale(eu, Dot(p, qu)), Scale(qu, Dot(eu, p))), factor));
    }
    // Annual aberration, relativistic (Explanatory Supplement eq. 3.252-3).
    const Vector3& v = frame.earthVelocityOverC;
    const double inverseGamma = 1.0 / frame.lorentzFactor;
    const double d = Dot(p, v);
    p = Scale(Add(Scale(p, inverseGamma), Scale(v, 1.0 + d / (1.0 + inverseGamma))), 1.0 / (1.0 + d));

    const auto& m = frame.j2000ToDate;
    Vector3 u{m[0][0] * p.x + m[0][1] * p.y + m[0][2] * p.z, m[1][0] * p.x + m[1][1] * p.y + m[1][2] * p.z,
              m[2][0] * p.x + m[2][1] * p.y + m[2][2] * p.z};
    if (frame.centre == PlaceCentre::Topocentric) u = Sub(Scale(u, distance), frame.siteOfDateAU);
    place.raRad = Mod2Pi(std::atan2(u.y, u.x));
    place.decRad = std::atan2(u.z, std::hypot(u.x, u.y));
    place.earthDistanceAU = distance;
    place.sunDistanceAU = Length(target);
    place.helioJ2000 = target;
    // Phase angle at the body between the Sun and the Earth; elongation at
    // the Earth between the Sun and the body.
    place.phaseAngleRad = AngleBetween(Scale(target, -1.0), Scale(geometric, -1.0));
    place.elongationRad = AngleBetween(Scale(earth, -1.0), geometric);
    return PositionStatus::Ok;
}

PositionStatus CPlanets::ApparentPosition(const CObserverDoc& observer, int body, double jdTT, double& raRad,
                                          double& decRad, PlaceCentre centre)
{
    if (!std::isfinite(jdTT) || body < 1 || body > 9) return PositionStatus::InvalidInput;
    PlanetRecord& record = m_records[static_cast<std::size_t>(body)];
    record.valid = false;
    const bool sun = body == kBodySun;
    ApparentFrame frame;
    PositionStatus status = PrepareApparentFrame(observer, jdTT, centre, frame);
    if (status != PositionStatus::Ok) return status;
    PositionStatus bodyStatus = PositionStatus::Ok;
    const HeliocentricJ2000Fn position = [&](double jd, Vector3& out) {
        if (sun) {
            out = {};
            return true;
        }
        bodyStatus = HeliocentricPosition(observer, body, jd, nullptr, &out);
        return bodyStatus == PositionStatus::Ok;
    };
    ApparentPlace place;
    status = ApparentPlaceOf(frame, position, sun ? SolarGravity::Omit : SolarGravity::Apply, place);
    if (status != PositionStatus::Ok) return bodyStatus != PositionStatus::Ok ? bodyStatus : status;

    raRad = place.raRad;
    decRad = place.decRad;
    record.raRad = raRad;
    record.decRad = decRad;
    record.lightTimeSeconds = place.lightTimeSeconds;
    record.sunDistanceAU = sun ? 0.0 : place.sunDistanceAU;
    record.earthDistance = place.earthDistanceAU;
    record.apparentDiameterRad =
        2.0 * std::asin(std::min(1.0, BodyRadiusKm(body) / (place.earthDistanceAU * kAstronomicalUnitKmIAU2012)));
    if (sun) {
        record.phaseAngleRad = 0.0;
        record.illuminatedFraction = 1.0;
        record.elongationRad = 0.0;
    } else {
        record.phaseAngleRad = place.phaseAngleRad;
        record.illuminatedFraction = 0.5 * (1.0 + std::cos(record.phaseAngleRad));
        record.elongationRad = place.elongationRad;
    }
    const double tau = place.lightTimeSeconds / 86400.0;
    if (body == kBodySaturn) FillSaturnRing(observer, jdTT - tau, place.helioJ2000, frame.earthJ2000);
    if (body == kBodyUranus) FillUranusLatitude(place.helioJ2000, frame.earthJ2000);
    record.valid = true;
    ComputeMagnitude(body, jdTT);
    return PositionStatus::Ok;
}

void CPlanets::FillSaturnRing(const CObserverDoc& observer, double jdTT, const Vector3& saturnHelioJ2000,
                              const Vector3& earthHelioJ2000)
{
    double lambda, beta, l, b;
    EclipticOfDate(observer, Sub(saturnHelioJ2000, earthHelioJ2000), jdTT, lambda, beta);
    EclipticOfDate(observer, saturnHelioJ2000, jdTT, l, b);
    const SaturnRingGeometry ring = SaturnRingsMeeus(jdTT, lambda, beta, l, b);
    PlanetRecord& record = m_records[kBodySaturn];
    record.ringTiltRad = ring.earthTiltRad;
    record.ringDeltaURad = ring.deltaURad;
}

void CPlanets::FillUranusLatitude(const Vector3& uranusHelioJ2000, const Vector3& earthHelioJ2000)
{
    // Uranus's north pole (IAU WGCCRE 2015): α0 = 257.311°, δ0 = −15.175°.
    const double a0 = 257.311 * kDegToRad;
    const double d0 = -15.175 * kDegToRad;
    const Vector3 pole{std::cos(d0) * std::cos(a0), std::cos(d0) * std::sin(a0), std::sin(d0)};
    const Vector3 toEarth = Sub(earthHelioJ2000, uranusHelioJ2000);
    const Vector3 toSun = Scale(uranusHelioJ2000, -1.0);
    const double subEarth = std::asin(Dot(pole, toEarth) / Length(toEarth));
    const double subSun = std::asin(Dot(pole, toSun) / Length(toSun));
    m_uranusSubLatitudeDeg = 0.5 * (std::fabs(subEarth) + std::fabs(subSun)) / kDegToRad;
}

void CPlanets::ComputeMagnitude(int body, double jdTT)
{
    if (body < 0 || body >= kBodyCount) return;
    PlanetRecord& r = m_records[static_cast<std::size_t>(body)];
    const double iDeg = r.phaseAngleRad / kDegToRad;
    double mag = kNaN;
    if (body == kBodyMoon) {
        // Allen's phase law for the Moon at its mean distance (Astrophysical
        // Quantities), as the program has always shown it; a negative phase
        // angle is taken as 360° + i.
        const double i = iDeg < 0.0 ? iDeg + 360.0 : iDeg;
        mag = -12.73 + 0.026 * i + 4e-9 * i * i * i * i;
    } else if (body == kBodySun) {
        // V of the Sun at 1 AU, −26.76 (Willmer 2018, ApJS 236, 47).
        mag = -26.76 + 5.0 * std::log10(r.earthDistance);
    } else if (body == kBodyPluto) {
        mag = -1.00 + 5.0 * std::log10(r.sunDistanceAU * r.earthDistance);
    } else {
        const double year = 2000.0 + (jdTT - 2451545.0) / 365.25;
        mag = PlanetMagnitudeMallamaHilton(body, iDeg, r.sunDistanceAU, r.earthDistance,
                                           std::fabs(r.ringTiltRad) / kDegToRad, m_uranusSubLatitudeDeg, year);
    }
    r.magnitudeCenti = Centi(mag);
}

double PlanetMagnitudeMallamaHilton(int body, double a, double sunDistanceAU, double earthDistanceAU,
                                    double ringTiltDeg, double subLatitudeDeg, double decimalYear)
{
    if (!std::isfinite(a) || !(sunDistanceAU > 0.0) || !(earthDistanceAU > 0.0)) return kNaN;
    const double distance = 5.0 * std::log10(sunDistanceAU * earthDistanceAU);
    switch (body) {
    case kBodyMercury:
        return distance - 0.613 +
               a * (6.3280e-02 + a * (-1.6336e-03 + a * (3.3644e-05 + a * (-3.4265e-07 + a * (1.6893e-09 - a * 3.0334e-12)))));
    case kBodyVenus:
        if (a < 163.7) return distance - 4.384 + a * (-1.044e-03 + a * (3.687e-04 + a * (-2.814e-06 + a * 8.938e-09)));
        return distance + 236.05828 + a * (-2.81914 + a * 8.39034e-03);
    case kBodyMars:
        if (a <= 50.0) return distance - 1.601 + a * (2.267e-02 - a * 1.302e-04);
        return distance - 0.367 + a * (-0.02573 + a * 3.445e-04);
    case kBodyJupiter:
        if (a <= 12.0) return distance - 9.395 + a * (-3.7e-04 + a * 6.16e-04);
        {
            const double x = a / 180.0;
            return distance - 9.428 -
                   2.5 * std::log10(1.0 + x * (-1.507 + x * (-0.363 + x * (-0.062 + x * (2.809 - x * 1.876)))));
        }
    case kBodySaturn: {
        // Globe and rings together, for phase angles up to 6.5° and ring
        // tilts up to 27° (all that is seen from the Earth).
        const double s = std::sin(ringTiltDeg * kDegToRad);
        return distance - 8.914 - 1.825 * s + 0.026 * a - 0.378 * s * std::exp(-2.25 * a);
    }
    case kBodyUranus:
        return distance - 7.110 - 8.4e-04 * subLatitudeDeg + a * (6.587e-03 + a * 1.045e-04);
    case kBodyNeptune: {
        // Neptune brightened by about 0.11 mag between 1980 and 2000.
        const double v10 = decimalYear >= 2000.0 ? -7.00
                         : decimalYear <= 1980.0 ? -6.89
                                                 : -6.89 - 0.11 * (decimalYear - 1980.0) / 20.0;
        return distance + v10 + (a > 1.9 ? a * (7.944e-03 + a * 9.617e-05) : 0.0);
    }
    default:
        return kNaN;
    }
}

SaturnRingGeometry SaturnRingsMeeus(double jdTT, double lambda, double beta, double l, double b)
{
    const double T = (jdTT - 2451545.0) / 36525.0;
    // Inclination and ascending node of the ring plane on the ecliptic and
    // equinox of date (Meeus eq. 45.1).
    const double i = (28.075216 - 0.012998 * T + 0.000004 * T * T) * kDegToRad;
    const double node = (169.508470 + 1.394681 * T + 0.000412 * T * T) * kDegToRad;
    SaturnRingGeometry g;
    g.earthTiltRad = std::asin(std::sin(i) * std::cos(beta) * std::sin(lambda - node) - std::cos(i) * std::sin(beta));
    g.sunTiltRad = std::asin(std::sin(i) * std::cos(b) * std::sin(l - node) - std::cos(i) * std::sin(b));
    const double u1 = std::atan2(std::sin(i) * std::sin(b) + std::cos(i) * std::cos(b) * std::sin(l - node),
                                 std::cos(b) * std::cos(l - node));
    const double u2 = std::atan2(std::sin(i) * std::sin(beta) + std::cos(i) * std::cos(beta) * std::sin(lambda - node),
                                 std::cos(beta) * std::cos(lambda - node));
    double du = std::fabs(u1 - u2);
    if (du > kPi) du = kTwoPi - du;
    g.deltaURad = du;
    return g;
}

PositionStatus CPlanets::MoonPosition(const CObserverDoc& observer, double jdTT, double& raRad, double& decRad,
                                      double& distanceKm, PlaceCentre centre)
{
    if (!std::isfinite(jdTT)) return PositionStatus::InvalidInput;
    PlanetRecord& record = m_records[kBodyMoon];
    record.valid = false;
    MoonEclipticPlace rate;
    MoonEclipticPlace moon = EvaluateMoonBlock(MoonDataBlock(), jdTT, &rate);
    // So far from J2000 that the series' polynomials overflow (1e18 days),
    // the series gives no place.
    if (!std::isfinite(moon.lonDeg) || !std::isfinite(moon.latDeg) || !(moon.distanceKm > 0.0) ||
        !std::isfinite(moon.distanceKm))
        return PositionStatus::NoSource;
    // The light time, to first order in the Moon's motion (the neglected
    // second-order term is below 1e-6″).
    const double lightTimeDays = moon.distanceKm / (kLightAUPerDay * kAstronomicalUnitKmIAU2012);
    moon.lonDeg -= lightTimeDays * rate.lonDeg;
    moon.latDeg -= lightTimeDays * rate.latDeg;
    moon.distanceKm -= lightTimeDays * rate.distanceKm;
    // The rates overflow before the places do.
    if (!std::isfinite(moon.lonDeg) || !std::isfinite(moon.latDeg) || !(moon.distanceKm > 0.0) ||
        !std::isfinite(moon.distanceKm))
        return PositionStatus::NoSource;
    double dPsi, dEps;
    observer.NutationTerms(jdTT, dPsi, dEps);
    const double eps = observer.MeanObliquity(jdTT) + dEps;
    const double lambda = moon.lonDeg * kDegToRad + dPsi;
    const double beta = moon.latDeg * kDegToRad;
    raRad = Mod2Pi(std::atan2(std::sin(lambda) * std::cos(beta) * std::cos(eps) - std::sin(beta) * std::sin(eps),
                              std::cos(lambda) * std::cos(beta)));
    decRad = std::asin(std::sin(beta) * std::cos(eps) + std::cos(beta) * std::sin(eps) * std::sin(lambda));
    distanceKm = moon.distanceKm;
    if (centre == PlaceCentre::Topocentric)
        ApplyParallax(observer, jdTT, distanceKm / kAstronomicalUnitKmIAU2012, raRad, decRad);
    // Nutation and obliquity of a date beyond their polynomials' reach.
    if (!std::isfinite(raRad) || !std::isfinite(decRad)) return PositionStatus::NoSource;

    record.raRad = raRad;
    record.decRad = decRad;
    record.earthDistance = distanceKm;
    record.lightTimeSeconds = distanceKm / (kLightAUPerDay * kAstronomicalUnitKmIAU2012) * 86400.0;
    record.apparentDiameterRad = 2.0 * std::asin(BodyRadiusKm(kBodyMoon) / distanceKm);
    // Phase from the Sun's apparent place (Meeus ch. 48): the elongation ψ
    // and the phase angle i = atan2(R sin ψ, Δ − R cos ψ).
    double sunRa, sunDec;
    if (ApparentPosition(observer, kBodySun, jdTT, sunRa, sunDec, PlaceCentre::Geocentric) == PositionStatus::Ok) {
        const double sunKm = m_records[kBodySun].earthDistance * kAstronomicalUnitKmIAU2012;
        const double psi = std::acos(std::clamp(std::sin(sunDec) * std::sin(decRad) +
                                                    std::cos(sunDec) * std::cos(decRad) * std::cos(sunRa - raRad),
                                                -1.0, 1.0));
        record.elongationRad = psi;
        record.phaseAngleRad = std::atan2(sunKm * std::sin(psi), distanceKm - sunKm * std::cos(psi));
        record.illuminatedFraction = 0.5 * (1.0 + std::cos(record.phaseAngleRad));
        record.sunDistanceAU = m_records[kBodySun].earthDistance;
    }
    record.valid = true;
    ComputeMagnitude(kBodyMoon, jdTT);
    return PositionStatus::Ok;
}

void CPlanets::ComputeAll(const CObserverDoc& observer, PlaceCentre centre)
{
    const double jdTT = observer.JulianDateTDT();
    double ra, dec, km;
    // The Moon first: its phase computes the Sun, which is then recomputed
    // for the requested centre.
    MoonPosition(observer, jdTT, ra, dec, km, centre);
    for (int body = 1; body < kBodyCount; ++body) ApparentPosition(observer, body, jdTT, ra, dec, centre);
}

std::string CPlanets::PlanetInfoText(int body) const
{
    if (body < 0 || body >= kBodyCount) return {};
    const PlanetRecord& r = m_records[static_cast<std::size_t>(body)];
    std::string text(BodyName(body));
    if (!r.valid) return text;
    char line[128];
    if (body == kBodyMoon) {
        std::snprintf(line, sizeof line, "\nPhase: %.1lf%%\nD: %1d km", r.illuminatedFraction * 100.0,
                      static_cast<int>(std::lround(r.earthDistance)));
        return text + line;
    }
    if (body == kBodySun) {
        std::snprintf(line, sizeof line, "\nD: %.4lf AU", r.earthDistance);
        return text + line;
    }
    std::snprintf(line, sizeof line, "\nMag: %.1lf", r.magnitudeCenti * 0.01);
    text += line;
    if (body < 5) {
        std::snprintf(line, sizeof line, "\nPhase: %.1lf%%", r.illuminatedFraction * 100.0);
        text += line;
    }
    std::snprintf(line, sizeof line, "\nD: %.4lf AU\nR: %.4lf AU", r.earthDistance, r.sunDistanceAU);
    return text + line;
}

}  // namespace orv
