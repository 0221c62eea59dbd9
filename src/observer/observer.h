// CObserverDoc: the observer of a map — site, instant, time scales, sidereal
// time, precession, nutation, refraction and rise/set — and the free
// functions of calendar and time-scale arithmetic it is built on.
//
// Units and frames:
//   - angles in radians, north latitude and east longitude positive;
//   - height above sea level in metres;
//   - time zone in hours east of Greenwich (UTC+1 is +1), daylight saving as
//     a further hour added when in force;
//   - the instant is held as a Julian date on the UT scale (civil UTC is
//     taken as UT1; |UT1 − UTC| < 0.9 s); dynamical time TT = UT + ΔT;
//   - rectangular vectors are unit vectors, x toward the equinox, z toward
//     the pole.
// Precession follows IAU 2006 and nutation IAU 2000B (the full 2000A before
// 1850 and after 2150) through ERFA; see observer/nutation.h.
// Everything that depends only on the instant (precession and nutation
// matrices, sidereal time) is computed once per instant and cached: a chart
// asks for it thousands of times per redraw.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace orv {

class CByteReader;
class CByteWriter;
class CSettingsStore;

// A calendar date and time of day. Dates on or after 1582 October 15 are
// Gregorian, earlier ones Julian (proleptic before the year 8); years are
// astronomical (year 0 = 1 BC).
struct CivilDateTime {
    int year = 2000;
    int month = 1;  // 1-12
    int day = 1;    // 1-31
    int hour = 0;
    int minute = 0;
    double second = 0.0;
};

// Julian date of a civil date and time (the calendar rule above). Meeus,
// Astronomical Algorithms, 2nd ed., ch. 7, with floor() in place of INT so
// that negative years and Julian dates are handled too. The month must be
// 1–12; day, hour, minute and second beyond their range carry arithmetically
// (hour 24 is the next day). The ten dates 1582 October 5–14 that no calendar
// has are counted in the Julian calendar.
double JulianDateFromCivil(const CivilDateTime& civil);
// The civil date and time of a Julian date (inverse of the above), seconds
// rounded to the millisecond with carries propagated. Any finite jd, including
// negative ones (before −4712 January 1.5); beyond ±1e9 days (2.7 million
// years) the date of that limit. Non-finite input gives the default date.
CivilDateTime CivilFromJulianDate(double jd);
// True when every field is in its range: month 1–12, a day that the month has
// in its calendar (February 29 in Julian century years; not 1582 October
// 5–14), hour 0–23, minute 0–59, second in [0, 60).
bool IsValidCivilDateTime(const CivilDateTime& civil);
// The year as a continuous number: the calendar year plus the fraction of it
// elapsed at jd (1972.0 is 1972 January 1, 0h). The year argument of the
// ΔT expressions. Beyond ±1e9 days, Gregorian years counted from 2000.
double DecimalYearFromJulianDate(double jd);

// ΔT = TT − UT in seconds for a Julian date on the UT scale.
//   1972 to the end of the leap-second table: 32.184 s + (TAI − UTC);
//   before 1972 and after the table: the polynomial expressions of Espenak
//   and Meeus (NASA Five Millennium Canon of Solar Eclipses, 2006), valid
//   −1999 to +3000, joined continuously to the leap-second era;
//   outside −1999 … +3000: the long-term parabola −20 + 32 u², u = (year − 1820)/100.
// The joins: the polynomials miss the leap-second value at 1972 January 1 by
// −0.07 s, a difference faded in linearly over the two years before; after
// the table's end the difference (about −6 s: the expressions foresaw a
// faster slowing of the Earth than happened) is faded out linearly over ten
// years, so that ΔT never changes faster than about 1.3 s per year, no faster
// than it has been measured to change. ΔT steps by one second at each leap
// second, as TT − UTC does. NaN for non-finite input.
double DeltaTSeconds(double jdUT);
// The expressions of Espenak and Meeus alone, for a decimal year (above),
// seconds; the long-term parabola outside −1999 … +3000.
double DeltaTEspenakMeeusSeconds(double decimalYear);
// TAI − UTC in seconds from the compiled-in table of the IERS leap seconds
// (Bulletin C), for a Julian date on the UTC scale within
// [1972 January 1, LeapSecondTableEndJdUTC()); nothing outside.
std::optional<double> TaiMinusUtcSeconds(double jdUTC);
// The date up to which the compiled-in table is known to hold (the expiry
// date of the IERS list it was taken from), Julian date UTC.
double LeapSecondTableEndJdUTC();

// Greenwich mean sidereal time (IAU 2006, ERFA eraGmst06), radians in [0, 2π).
double GreenwichMeanSiderealTimeRad(double jdUT, double jdTT);
// Greenwich apparent sidereal time (mean sidereal time IAU 2006 plus the equation
// of the equinoxes, observer/nutation.h), radians in [0, 2π).
double GreenwichApparentSiderealTimeRad(double jdUT, double jdTT);

// Outcome of a rise/transit/set computation.
struct RiseTransitSet {
    // Normal: at least one rise or set in the window; AlwaysAbove/AlwaysBelow:
    // none, the body stayed above/below h0 throughout; InvalidInput: a
    // non-finite or non-positive argument, or a position function that gave
    // no finite altitude anywhere in the window.
    enum class Kind { Normal, AlwaysAbove, AlwaysBelow, InvalidInput };
    Kind kind = Kind::Normal;
    std::optional<double> riseJdUT;     // first rise within the search window
    std::optional<double> transitJdUT;  // upper transit within the window
    std::optional<double> setJdUT;      // first set within the window
    double transitAltitudeRad = 0.0;    // geometric altitude at the transit, when there is one
};

// Apparent geocentric right ascension and declination of date (radians) of a
// body at the instant jdUT.
using ApparentPositionFn = std::function<void(double jdUT, double& raRad, double& decRad)>;
// The observer's own horizon (trees, roofs, hills): the apparent altitude of
// the horizon, radians, at an azimuth in radians from north through east.
using LocalHorizonFn = std::function<double(double azimuthRad)>;

// Standard altitudes h0 of the rise and set events (Meeus ch. 15): the
// geometric altitude of the centre at the event.
inline constexpr double kRiseAltitudeStarRad = -0.5667 * 3.14159265358979323846 / 180.0;
inline constexpr double kRiseAltitudeSunRad = -0.8333 * 3.14159265358979323846 / 180.0;

class CObserverDoc {
public:
    CObserverDoc();  // Greenwich (Airy transit circle, 46 m), UT, at the current system time

    // --- Settings: section "Observer" (angles in degrees, "%lf" text) ------
    // Keys: "SiteName" (text), "Latitude", "Longitude" (degrees, east
    // positive), "Height" (metres), "TimeZone" (hours east), "DaylightSaving" (0/1).
    void LoadSettings(const CSettingsStore& store);
    void SaveSettings(CSettingsStore& store) const;

    // --- Site ----------------------------------------------------------------
    // Non-finite values are refused (the call changes nothing); the latitude
    // is clamped to ±π/2, the longitude brought into (−π, π]. Nothing cached
    // depends on the site, so a new site costs nothing.
    void SetSite(const std::string& name, double latitudeRad, double longitudeRad, double heightM);
    // hoursEast is clamped to ±14 (the range of civil zones); non-finite refused.
    void SetTimeZone(double hoursEast, bool daylightSaving);
    const std::string& SiteName() const { return m_siteName; }
    double LatitudeRad() const { return m_latitudeRad; }
    double LongitudeRad() const { return m_longitudeRad; }
    double HeightM() const { return m_heightM; }
    double TimeZoneHours() const { return m_timeZoneHours; }
    bool DaylightSaving() const { return m_daylightSaving; }
    // Offset of local civil time from UT in hours (zone plus daylight saving).
    double LocalOffsetHours() const { return m_timeZoneHours + (m_daylightSaving ? 1.0 : 0.0); }

    // --- Instant ---------------------------------------------------------------
    // A new instant empties the instant's cache; it is refilled on the next
    // question that needs it. Instants more than 1e8 days (some 270,000
    // years) from J2000, and non-finite ones, are refused.
    void SetJulianDate(double jdUT);
    void SetUniversalTime(const CivilDateTime& ut);
    void SetLocalTime(const CivilDateTime& local);
    void SetToNow();
    double JulianDate() const { return m_jdUT; }  // UT
    double JulianDateTDT() const;                 // TT = UT + ΔT
    double DeltaT() const;                        // seconds, at the instant
    CivilDateTime UniversalTime() const;
    CivilDateTime LocalTime() const;
    // Julian date of a calendar date with the time as a fraction of the day
    // (Meeus's form, "1957 October 4.81"); the calendar rule of
    // JulianDateFromCivil. The time scale is the caller's.
    static double JulianDate(int year, int month, double dayWithFraction);
    // ΔT = TT − UT in seconds at any instant jdUT (DeltaTSeconds).
    double DeltaT(double jdUT) const { return DeltaTSeconds(jdUT); }

    // --- Sidereal time ---------------------------------------------------------
    double LAST() const;  // local apparent sidereal time, hours in [0, 24)
    double LMST() const;  // local mean sidereal time, hours in [0, 24)
    double GAST() const;  // Greenwich apparent sidereal time, hours in [0, 24)
    double GMST() const;  // Greenwich mean sidereal time, hours in [0, 24)
    // Local apparent sidereal time at the dynamical instant jdTT (UT is found
    // from it with ΔT), hours in [0, 24). Like every explicit-date form of
    // this class it takes TT, the date the planetary theories work in.
    double LAST(double jdTT) const;

    // --- Precession and nutation ---------------------------------------------
    // Precess the unit vector v in place between the mean equator and equinox
    // of J2000.0 and those of the observer's date (TT) or of `jdTT`:
    // direction −1 takes J2000 to the date, +1 the date back to J2000 (0
    // leaves v as it is).
    // IAU 2006 (ERFA eraPmat06). The frame bias is included, so J2000 here is
    // the ICRS/GCRS frame of the catalogues.
    void PrecessXYZ(double v[3], int direction) const;
    void PrecessXYZ(double v[3], double jdTT, int direction) const;
    // Nutation from mean to true equator and equinox of the date (TT) or of
    // `jdTT` (NutationForObserver in observer/nutation.h, ERFA eraNumat).
    void NutateXYZ(double v[3]) const;
    void NutateXYZ(double v[3], double jdTT) const;
    // The inverse: true to mean equator and equinox of date.
    void UnnutateXYZ(double v[3]) const;
    // Nutation in longitude and obliquity at the observer's date or at
    // `jdTT`, radians (NutationForObserver in observer/nutation.h).
    void NutationTerms(double& dPsiRad, double& dEpsRad) const;
    void NutationTerms(double jdTT, double& dPsiRad, double& dEpsRad) const;
    // Mean obliquity of the ecliptic of date (IAU 2006, eraObl06), radians.
    double MeanObliquity() const;
    double MeanObliquity(double jdTT) const;
    double TrueObliquity() const;

    // --- Refraction ----------------------------------------------------------
    // At standard conditions (1010 hPa, 10 °C), radians, never negative.
    // Refraction: given a true (airless) altitude, the amount to add
    // (Sæmundsson 1986, Meeus eq. 16.4, with Meeus's constant that makes it
    // 0 at the zenith). InverseRefraction: given an apparent altitude, the
    // amount to remove — the exact numerical inverse of Refraction (to
    // 1e-14 rad), so that converting to the horizon and back returns the
    // same place; Bennett's direct formula (Meeus eq. 16.3), which agrees to
    // 4″, only seeds the solution. Sæmundsson follows Garfinkel's tables
    // to 0.1′; actual refraction near the horizon varies with the weather by
    // several arcminutes.
    //
    // Below the horizon: Sæmundsson's argument h + 10.3/(h + 5.11) turns back
    // below h = −1.9°, so the formula is used down to −1° true altitude and
    // the refraction then falls linearly to 0 at −2°. The apparent altitude
    // h + Refraction(h) thus grows strictly and continuously with h
    // everywhere; an object at −0.05 rad (−2.9°) is not lifted at all while
    // one at −0.005 rad rises to about +0.004 rad.
    // Non-finite input gives NaN.
    double Refraction(double trueAltitudeRad) const;
    double InverseRefraction(double apparentAltitudeRad) const;

    // --- Rise, transit and set -----------------------------------------------
    // Events of a body whose apparent place `position` gives, in the window
    // [jdUTStart, jdUTStart + windowDays), for the site, with the standard
    // altitude h0 (geometric altitude of the centre at rise and set).
    // Altitudes are sampled every 10 minutes and crossings refined by bisection
    // to 1 second; a body that stays above or below h0 for the whole window is
    // reported as such. A body that only grazes h0 between two samples is
    // caught by refining every sampled maximum or minimum that comes within
    // 1° of h0. The transit is the upper meridian passage (hour angle 0).
    // The window is at most 3660 days; longer, non-finite or non-positive
    // windows give Kind::InvalidInput. The position function is called about
    // 145 times per day of window plus about 11 times per event.
    RiseTransitSet FindRiseTransitSet(const ApparentPositionFn& position, double jdUTStart, double windowDays,
                                      double h0Rad) const;
    // The same over the observer's own horizon: the events are where the
    // body's apparent altitude crosses the horizon's at its azimuth. `h0Rad`
    // is the standard altitude of the mathematical horizon as above; its part
    // that is not refraction (a semidiameter) is kept, and the refraction is
    // taken at the horizon's altitude (InverseRefraction). An empty
    // `horizon` is the mathematical horizon.
    RiseTransitSet FindRiseTransitSet(const ApparentPositionFn& position, double jdUTStart, double windowDays,
                                      double h0Rad, const LocalHorizonFn& horizon) const;
    // First instant after jdUTStart (within windowDays) at which the body
    // crosses h0 rising (rising = true) or setting; nothing when it does not.
    std::optional<double> FindNextCrossing(const ApparentPositionFn& position, double jdUTStart, double windowDays,
                                           double h0Rad, bool rising) const;
    // Geometric altitude (no refraction) of a body at ra/dec of date at jdUT,
    // radians, for the site's latitude and longitude (apparent sidereal time).
    double AltitudeOf(double raRad, double decRad, double jdUT) const;

    // --- Map file block -------------------------------------------------------
    // A fixed field sequence (docs/observer-block.md); FileLoad reads exactly
    // what FileSave wrote. On a short read, or when the block holds values no
    // observer can have (a non-finite number, a latitude beyond ±90°, a zone
    // beyond ±14 h, an instant refused by SetJulianDate), the observer keeps
    // its previous state; the reader's
    // ShortRead() tells a truncated block from a damaged one.
    void FileSave(CByteWriter& out) const;
    void FileLoad(CByteReader& in);

private:
    void Invalidate();
    struct Cache;
    const Cache& InstantCache() const;
    struct PrecessionAt;
    struct NutationAt;
    const PrecessionAt& PrecessionAtDate(double jdTT) const;
    const NutationAt& NutationAtDate(double jdTT) const;
    // Greenwich apparent sidereal time, radians, at a pair of UT and TT dates
    // that belong together, through the caches above.
    double GastRadAt(double jdUT, double jdTT) const;
    // Hour angle in (−π, π] and geometric altitude, radians, of ra/dec of
    // date at jdUT for the site.
    void HourAngleAndAltitude(double raRad, double decRad, double jdUT, double& hourAngleRad,
                              double& altitudeRad) const;
    // The function the rise, transit and set scans sample: the altitude above
    // `h0Rad` and the hour angle of `position` at an instant (NaN where the
    // position function gives none).
    std::function<void(double jdUT, double& f, double& hourAngleRad)> AltitudeAboveFn(
        const ApparentPositionFn& position, double h0Rad, const LocalHorizonFn* horizon = nullptr) const;

    std::string m_siteName = "Greenwich";
    double m_latitudeRad = 0.8980827862302452;  // 51°28'38" N
    double m_longitudeRad = 0.0;
    double m_heightM = 46.0;
    double m_timeZoneHours = 0.0;
    bool m_daylightSaving = false;
    double m_jdUT = 2451545.0;

    struct Cache {
        bool valid = false;
        double jdUT = 0.0;
        double deltaTSeconds = 0.0;
        double jdTT = 0.0;
        double gmstRad = 0.0;
        double gastRad = 0.0;
        double precession[3][3] = {};  // J2000 (GCRS) -> mean of date
        double nutation[3][3] = {};    // mean of date -> true of date
        double dPsiRad = 0.0;
        double dEpsRad = 0.0;
        double meanObliquityRad = 0.0;
    };
    mutable Cache m_cache;

    // The explicit-date forms keep the last date they were asked about (the
    // planetary code asks several times for one date in a row); they take the
    // instant's values when the date is the instant's.
    struct PrecessionAt {
        bool valid = false;
        double jdTT = 0.0;
        double matrix[3][3] = {};  // J2000 (GCRS) -> mean of date
    };
    struct NutationAt {
        bool valid = false;
        double jdTT = 0.0;
        double matrix[3][3] = {};  // mean of date -> true of date
        double dPsiRad = 0.0;
        double dEpsRad = 0.0;
        double meanObliquityRad = 0.0;
    };
    mutable PrecessionAt m_precessionAt;
    mutable NutationAt m_nutationAt;
};

}  // namespace orv
