// CObserverDoc: site, instant, sidereal time, precession and nutation,
// settings and the map-file block.

#include "observer/observer.h"
#include "observer/nutation.h"

#include <erfa.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

#include "util/angles.h"
#include "util/binaryio.h"
#include "util/settingsstore.h"

namespace orv {

namespace {

constexpr double kSecondsPerDay = 86400.0;
constexpr double kHoursPerRad = 12.0 / kPi;
// Julian date of the Unix epoch, 1970 January 1, 0h UTC.
constexpr double kUnixEpochJd = 2440587.5;
// Civil time zones run from UTC−12 to UTC+14.
constexpr double kMaxZoneHours = 14.0;
// Instants are accepted within ±1e8 days (some 270,000 years) of J2000: far
// beyond any use, and inside the range where ΔT, the precession polynomials
// and the calendar all stay finite.
constexpr double kJ2000Jd = 2451545.0;
constexpr double kMaxDaysFromJ2000 = 1e8;

bool PlausibleInstant(double jdUT) { return std::isfinite(jdUT) && std::fabs(jdUT - kJ2000Jd) <= kMaxDaysFromJ2000; }

constexpr const char* kSection = "Observer";

void SplitDate(double jd, double& whole, double& fraction)
{
    whole = std::floor(jd);
    fraction = jd - whole;
}

// Radians to hours in [0, 24).
double HoursFromRad(double angleRad)
{
    const double hours = mod2pi(angleRad) * kHoursPerRad;
    return hours >= 24.0 ? 0.0 : hours;
}

// Longitude into (−π, π].
double WrapLongitude(double lonRad)
{
    double w = std::remainder(lonRad, kTwoPi);
    if (w <= -kPi) w += kTwoPi;
    return w;
}

void MultiplyInPlace(const double m[3][3], double v[3])
{
    const double x = m[0][0] * v[0] + m[0][1] * v[1] + m[0][2] * v[2];
    const double y = m[1][0] * v[0] + m[1][1] * v[1] + m[1][2] * v[2];
    const double z = m[2][0] * v[0] + m[2][1] * v[1] + m[2][2] * v[2];
    v[0] = x;
    v[1] = y;
    v[2] = z;
}

void MultiplyTransposeInPlace(const double m[3][3], double v[3])
{
    const double x = m[0][0] * v[0] + m[1][0] * v[1] + m[2][0] * v[2];
    const double y = m[0][1] * v[0] + m[1][1] * v[1] + m[2][1] * v[2];
    const double z = m[0][2] * v[0] + m[1][2] * v[1] + m[2][2] * v[2];
    v[0] = x;
    v[1] = y;
    v[2] = z;
}

bool PlausibleSite(double latitudeRad, double longitudeRad, double heightM)
{
    return std::isfinite(latitudeRad) && std::isfinite(longitudeRad) && std::isfinite(heightM) &&
           std::fabs(latitudeRad) <= kHalfPi;
}

bool PlausibleZone(double hoursEast) { return std::isfinite(hoursEast) && std::fabs(hoursEast) <= kMaxZoneHours; }

}  // namespace

CObserverDoc::CObserverDoc() { SetToNow(); }

// --- Settings ---------------------------------------------------------------

void CObserverDoc::LoadSettings(const CSettingsStore& store)
{
    const std::string name = store.GetString(kSection, "SiteName", m_siteName);
    const double latitudeRad = store.GetReal(kSection, "Latitude", m_latitudeRad * kDegPerRad) * kRadPerDeg;
    const double longitudeRad = store.GetReal(kSection, "Longitude", m_longitudeRad * kDegPerRad) * kRadPerDeg;
    const double heightM = store.GetReal(kSection, "Height", m_heightM);
    const double zoneHours = store.GetReal(kSection, "TimeZone", m_timeZoneHours);
    const bool daylightSaving = store.GetInt(kSection, "DaylightSaving", m_daylightSaving ? 1 : 0) != 0;
    // A damaged value leaves the site (or the zone) as it was rather than
    // putting the observer somewhere no one can stand.
    if (PlausibleSite(latitudeRad, longitudeRad, heightM)) SetSite(name, latitudeRad, longitudeRad, heightM);
    SetTimeZone(PlausibleZone(zoneHours) ? zoneHours : m_timeZoneHours, daylightSaving);
}

void CObserverDoc::SaveSettings(CSettingsStore& store) const
{
    store.SetString(kSection, "SiteName", m_siteName);
    store.SetReal(kSection, "Latitude", m_latitudeRad * kDegPerRad);
    store.SetReal(kSection, "Longitude", m_longitudeRad * kDegPerRad);
    store.SetReal(kSection, "Height", m_heightM);
    store.SetReal(kSection, "TimeZone", m_timeZoneHours);
    store.SetInt(kSection, "DaylightSaving", m_daylightSaving ? 1 : 0);
}

// --- Site ---------------------------------------------------------------------

void CObserverDoc::SetSite(const std::string& name, double latitudeRad, double longitudeRad, double heightM)
{
    if (!std::isfinite(latitudeRad) || !std::isfinite(longitudeRad) || !std::isfinite(heightM)) return;
    m_siteName = name;
    m_latitudeRad = std::clamp(latitudeRad, -kHalfPi, kHalfPi);
    m_longitudeRad = WrapLongitude(longitudeRad);
    m_heightM = heightM;
    // Nothing cached depends on the site: sidereal time is kept for
    // Greenwich and the longitude added when asked.
}

void CObserverDoc::SetTimeZone(double hoursEast, bool daylightSaving)
{
    if (!std::isfinite(hoursEast)) return;
    m_timeZoneHours = std::clamp(hoursEast, -kMaxZoneHours, kMaxZoneHours);
    m_daylightSaving = daylightSaving;
}

// --- Instant ------------------------------------------------------------------

void CObserverDoc::SetJulianDate(double jdUT)
{
    if (!PlausibleInstant(jdUT) || jdUT == m_jdUT) return;
    m_jdUT = jdUT;
    Invalidate();
}

void CObserverDoc::SetUniversalTime(const CivilDateTime& ut) { SetJulianDate(JulianDateFromCivil(ut)); }

void CObserverDoc::SetLocalTime(const CivilDateTime& local)
{
    SetJulianDate(JulianDateFromCivil(local) - LocalOffsetHours() / 24.0);
}

void CObserverDoc::SetToNow()
{
    using namespace std::chrono;
    const double unixSeconds =
        duration_cast<duration<double>>(system_clock::now().time_since_epoch()).count();
    SetJulianDate(kUnixEpochJd + unixSeconds / kSecondsPerDay);
}

double CObserverDoc::JulianDateTDT() const { return InstantCache().jdTT; }

double CObserverDoc::DeltaT() const { return InstantCache().deltaTSeconds; }

CivilDateTime CObserverDoc::UniversalTime() const { return CivilFromJulianDate(m_jdUT); }

CivilDateTime CObserverDoc::LocalTime() const { return CivilFromJulianDate(m_jdUT + LocalOffsetHours() / 24.0); }

void CObserverDoc::Invalidate() { m_cache.valid = false; }

const CObserverDoc::Cache& CObserverDoc::InstantCache() const
{
    if (m_cache.valid && m_cache.jdUT == m_jdUT) return m_cache;
    Cache& c = m_cache;
    c.jdUT = m_jdUT;
    c.deltaTSeconds = DeltaTSeconds(m_jdUT);
    c.jdTT = m_jdUT + c.deltaTSeconds / kSecondsPerDay;
    double ut1, ut2, tt1, tt2;
    SplitDate(c.jdUT, ut1, ut2);
    SplitDate(c.jdTT, tt1, tt2);
    eraPmat06(tt1, tt2, c.precession);
    NutationForObserver(c.jdTT, c.dPsiRad, c.dEpsRad);
    c.meanObliquityRad = eraObl06(tt1, tt2);
    eraNumat(c.meanObliquityRad, c.dPsiRad, c.dEpsRad, c.nutation);
    c.gmstRad = eraGmst06(ut1, ut2, tt1, tt2);
    c.gastRad = eraAnp(c.gmstRad + EquationOfEquinoxesRad(c.jdTT, c.dPsiRad, c.meanObliquityRad));
    c.valid = true;
    return c;
}

const CObserverDoc::PrecessionAt& CObserverDoc::PrecessionAtDate(double jdTT) const
{
    if (m_precessionAt.valid && m_precessionAt.jdTT == jdTT) return m_precessionAt;
    m_precessionAt.jdTT = jdTT;
    if (m_cache.valid && m_cache.jdTT == jdTT) {
        std::copy(&m_cache.precession[0][0], &m_cache.precession[0][0] + 9, &m_precessionAt.matrix[0][0]);
    } else {
        double tt1, tt2;
        SplitDate(jdTT, tt1, tt2);
        eraPmat06(tt1, tt2, m_precessionAt.matrix);
    }
    m_precessionAt.valid = true;
    return m_precessionAt;
}

const CObserverDoc::NutationAt& CObserverDoc::NutationAtDate(double jdTT) const
{
    if (m_nutationAt.valid && m_nutationAt.jdTT == jdTT) return m_nutationAt;
    NutationAt& n = m_nutationAt;
    n.jdTT = jdTT;
    if (m_cache.valid && m_cache.jdTT == jdTT) {
        std::copy(&m_cache.nutation[0][0], &m_cache.nutation[0][0] + 9, &n.matrix[0][0]);
        n.dPsiRad = m_cache.dPsiRad;
        n.dEpsRad = m_cache.dEpsRad;
        n.meanObliquityRad = m_cache.meanObliquityRad;
    } else {
        double tt1, tt2;
        SplitDate(jdTT, tt1, tt2);
        NutationForObserver(jdTT, n.dPsiRad, n.dEpsRad);
        n.meanObliquityRad = eraObl06(tt1, tt2);
        eraNumat(n.meanObliquityRad, n.dPsiRad, n.dEpsRad, n.matrix);
    }
    n.valid = true;
    return n;
}

double CObserverDoc::GastRadAt(double jdUT, double jdTT) const
{
    if (!std::isfinite(jdUT) || !std::isfinite(jdTT)) return std::numeric_limits<double>::quiet_NaN();
    if (m_cache.valid && m_cache.jdUT == jdUT && m_cache.jdTT == jdTT) return m_cache.gastRad;
    const NutationAt& n = NutationAtDate(jdTT);
    double ut1, ut2, tt1, tt2;
    SplitDate(jdUT, ut1, ut2);
    SplitDate(jdTT, tt1, tt2);
    return eraAnp(eraGmst06(ut1, ut2, tt1, tt2) + EquationOfEquinoxesRad(jdTT, n.dPsiRad, n.meanObliquityRad));
}

// --- Sidereal time ------------------------------------------------------------

double CObserverDoc::GMST() const { return HoursFromRad(InstantCache().gmstRad); }

double CObserverDoc::GAST() const { return HoursFromRad(InstantCache().gastRad); }

double CObserverDoc::LMST() const { return HoursFromRad(InstantCache().gmstRad + m_longitudeRad); }

double CObserverDoc::LAST() const { return HoursFromRad(InstantCache().gastRad + m_longitudeRad); }

double CObserverDoc::LAST(double jdTT) const
{
    if (!std::isfinite(jdTT)) return std::numeric_limits<double>::quiet_NaN();
    if (m_cache.valid && m_cache.jdTT == jdTT) return LAST();
    // UT from TT: ΔT changes by well under a millisecond in the 70 s between
    // the two, so one correction of the first guess is exact enough.
    double jdUT = jdTT - DeltaTSeconds(jdTT) / kSecondsPerDay;
    jdUT = jdTT - DeltaTSeconds(jdUT) / kSecondsPerDay;
    return HoursFromRad(GastRadAt(jdUT, jdTT) + m_longitudeRad);
}

// --- Precession and nutation --------------------------------------------------

void CObserverDoc::PrecessXYZ(double v[3], int direction) const
{
    const Cache& c = InstantCache();
    if (direction < 0)
        MultiplyInPlace(c.precession, v);
    else if (direction > 0)
        MultiplyTransposeInPlace(c.precession, v);
}

void CObserverDoc::PrecessXYZ(double v[3], double jdTT, int direction) const
{
    if (!std::isfinite(jdTT)) return;
    const PrecessionAt& p = PrecessionAtDate(jdTT);
    if (direction < 0)
        MultiplyInPlace(p.matrix, v);
    else if (direction > 0)
        MultiplyTransposeInPlace(p.matrix, v);
}

void CObserverDoc::NutateXYZ(double v[3]) const { MultiplyInPlace(InstantCache().nutation, v); }

void CObserverDoc::NutateXYZ(double v[3], double jdTT) const
{
    if (!std::isfinite(jdTT)) return;
    MultiplyInPlace(NutationAtDate(jdTT).matrix, v);
}

void CObserverDoc::UnnutateXYZ(double v[3]) const { MultiplyTransposeInPlace(InstantCache().nutation, v); }

void CObserverDoc::NutationTerms(double& dPsiRad, double& dEpsRad) const
{
    const Cache& c = InstantCache();
    dPsiRad = c.dPsiRad;
    dEpsRad = c.dEpsRad;
}

void CObserverDoc::NutationTerms(double jdTT, double& dPsiRad, double& dEpsRad) const
{
    if (!std::isfinite(jdTT)) {
        dPsiRad = dEpsRad = std::numeric_limits<double>::quiet_NaN();
        return;
    }
    const NutationAt& n = NutationAtDate(jdTT);
    dPsiRad = n.dPsiRad;
    dEpsRad = n.dEpsRad;
}

double CObserverDoc::MeanObliquity() const { return InstantCache().meanObliquityRad; }

double CObserverDoc::MeanObliquity(double jdTT) const
{
    if (!std::isfinite(jdTT)) return std::numeric_limits<double>::quiet_NaN();
    double tt1, tt2;
    SplitDate(jdTT, tt1, tt2);
    return eraObl06(tt1, tt2);
}

double CObserverDoc::TrueObliquity() const
{
    const Cache& c = InstantCache();
    return c.meanObliquityRad + c.dEpsRad;
}

// --- Map file block -----------------------------------------------------------

void CObserverDoc::FileSave(CByteWriter& out) const
{
    out.CountedString(m_siteName);
    out.F64(m_latitudeRad);
    out.F64(m_longitudeRad);
    out.F64(m_heightM);
    out.F64(m_timeZoneHours);
    out.I16(m_daylightSaving ? 1 : 0);
    out.F64(m_jdUT);
}

void CObserverDoc::FileLoad(CByteReader& in)
{
    std::string name;
    double latitudeRad = 0.0, longitudeRad = 0.0, heightM = 0.0, zoneHours = 0.0, jdUT = 0.0;
    std::int16_t daylightSaving = 0;
    // Every field is read, even after a failure, so that the reader always
    // ends where the block would have ended (or at the end of the data).
    bool ok = in.CountedString(name);
    ok = in.F64(latitudeRad) && ok;
    ok = in.F64(longitudeRad) && ok;
    ok = in.F64(heightM) && ok;
    ok = in.F64(zoneHours) && ok;
    ok = in.I16(daylightSaving) && ok;
    ok = in.F64(jdUT) && ok;
    if (!ok || !PlausibleSite(latitudeRad, longitudeRad, heightM) || !PlausibleZone(zoneHours) ||
        !PlausibleInstant(jdUT))
        return;
    SetSite(name, latitudeRad, longitudeRad, heightM);
    SetTimeZone(zoneHours, daylightSaving != 0);
    SetJulianDate(jdUT);
}

}  // namespace orv
