// Calendar and time-scale arithmetic: Julian dates, ΔT, sidereal time.

#include <erfa.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

#include "observer/observer.h"
#include "observer/nutation.h"
#include "util/angles.h"

namespace orv {

namespace {

// First Julian day number (at noon) of the Gregorian calendar: 1582 October 15.
constexpr std::int64_t kFirstGregorianDayNumber = 2299161;
constexpr double kMjdZeroJd = 2400000.5;
// Calendar dates are worked out for Julian dates within ±1e9 days (some 2.7
// million years), where every intermediate fits its integer type.
constexpr double kMaxCalendarJd = 1e9;

bool IsGregorian(int year, int month, int day)
{
    if (year != 1582) return year > 1582;
    if (month != 10) return month > 10;
    return day >= 15;
}

bool IsLeapYear(int year, bool gregorian)
{
    const auto mod = [](int a, int b) { return ((a % b) + b) % b; };  // years may be negative
    if (!gregorian) return mod(year, 4) == 0;
    return (mod(year, 4) == 0 && mod(year, 100) != 0) || mod(year, 400) == 0;
}

// Julian date at 0h of a calendar date (Meeus eq. 7.1), day a real number.
double JulianDateOfDay(int year, int month, double day, bool gregorian)
{
    double y = year;
    double m = month;
    if (m <= 2) {
        y -= 1.0;
        m += 12.0;
    }
    double b = 0.0;
    if (gregorian) {
        const double a = std::floor(y / 100.0);
        b = 2.0 - a + std::floor(a / 4.0);
    }
    return std::floor(365.25 * (y + 4716.0)) + std::floor(30.6001 * (m + 1.0)) + day + b - 1524.5;
}

struct CalendarDay {
    int year;
    int month;
    int day;
};

// Calendar date of the Julian day number z (the day that begins at jd z − 0.5):
// Meeus ch. 7, with floor() throughout so that it holds for negative z.
CalendarDay CalendarDayOf(std::int64_t z)
{
    double a = static_cast<double>(z);
    if (z >= kFirstGregorianDayNumber) {
        const double alpha = std::floor((a - 1867216.25) / 36524.25);
        a += 1.0 + alpha - std::floor(alpha / 4.0);
    }
    const double b = a + 1524.0;
    const double c = std::floor((b - 122.1) / 365.25);
    const double d = std::floor(365.25 * c);
    const double e = std::floor((b - d) / 30.6001);
    CalendarDay out{};
    out.day = static_cast<int>(b - d - std::floor(30.6001 * e));
    out.month = static_cast<int>(e < 14.0 ? e - 1.0 : e - 13.0);
    out.year = static_cast<int>(out.month > 2 ? c - 4716.0 : c - 4715.0);
    return out;
}

// TAI − UTC from 1972 on: the IERS leap seconds (Bulletin C), each valid from
// 0h UTC of its date. Taken from the IERS list that expires 2026 June 28
// (MJD 61219); a newer list extends kLeapSecondTableEndMjd and, when a leap
// second was announced, the table.
struct LeapSecond {
    int startMjd;
    int taiMinusUtcSeconds;
};
constexpr std::array<LeapSecond, 28> kLeapSeconds{{
    {41317, 10},  // 1972 Jan 1
    {41499, 11},  // 1972 Jul 1
    {41683, 12},  // 1973 Jan 1
    {42048, 13},  // 1974 Jan 1
    {42413, 14},  // 1975 Jan 1
    {42778, 15},  // 1976 Jan 1
    {43144, 16},  // 1977 Jan 1
    {43509, 17},  // 1978 Jan 1
    {43874, 18},  // 1979 Jan 1
    {44239, 19},  // 1980 Jan 1
    {44786, 20},  // 1981 Jul 1
    {45151, 21},  // 1982 Jul 1
    {45516, 22},  // 1983 Jul 1
    {46247, 23},  // 1985 Jul 1
    {47161, 24},  // 1988 Jan 1
    {47892, 25},  // 1990 Jan 1
    {48257, 26},  // 1991 Jan 1
    {48804, 27},  // 1992 Jul 1
    {49169, 28},  // 1993 Jul 1
    {49534, 29},  // 1994 Jul 1
    {50083, 30},  // 1996 Jan 1
    {50630, 31},  // 1997 Jul 1
    {51179, 32},  // 1999 Jan 1
    {53736, 33},  // 2006 Jan 1
    {54832, 34},  // 2009 Jan 1
    {56109, 35},  // 2012 Jul 1
    {57204, 36},  // 2015 Jul 1
    {57754, 37},  // 2017 Jan 1
}};
constexpr int kLeapSecondTableEndMjd = 61219;  // 2026 Jun 28

// TT − TAI, seconds (by definition of TT; IAU 1991 Resolution A4).
constexpr double kTTMinusTAISeconds = 32.184;

// Lengths of the fades that join the leap-second era to the polynomials
// (see DeltaTSeconds in the header), years.
constexpr double kFadeBefore1972Years = 2.0;
constexpr double kFadeAfterTableYears = 10.0;

double LeapEraStartJd() { return kMjdZeroJd + kLeapSeconds.front().startMjd; }

}  // namespace

double JulianDateFromCivil(const CivilDateTime& civil)
{
    const double dayFraction = (civil.hour + (civil.minute + civil.second / 60.0) / 60.0) / 24.0;
    return JulianDateOfDay(civil.year, civil.month, civil.day, IsGregorian(civil.year, civil.month, civil.day)) +
           dayFraction;
}

double CObserverDoc::JulianDate(int year, int month, double dayWithFraction)
{
    const int wholeDay = static_cast<int>(std::floor(dayWithFraction));
    return JulianDateOfDay(year, month, dayWithFraction, IsGregorian(year, month, wholeDay));
}

CivilDateTime CivilFromJulianDate(double jd)
{
    CivilDateTime out;
    if (!std::isfinite(jd)) return out;
    jd = std::clamp(jd, -kMaxCalendarJd, kMaxCalendarJd);
    // Days begin at jd x.5; round the time of day to the millisecond first so
    // that a carry reaches the date.
    constexpr std::int64_t kMsPerDay = 86400000;
    const double dayStart = std::floor(jd + 0.5);
    std::int64_t z = static_cast<std::int64_t>(dayStart);
    std::int64_t ms = std::llround((jd + 0.5 - dayStart) * static_cast<double>(kMsPerDay));
    if (ms >= kMsPerDay) {
        ms -= kMsPerDay;
        ++z;
    }
    const CalendarDay day = CalendarDayOf(z);
    out.year = day.year;
    out.month = day.month;
    out.day = day.day;
    out.hour = static_cast<int>(ms / 3600000);
    out.minute = static_cast<int>((ms / 60000) % 60);
    out.second = static_cast<double>(ms % 60000) / 1000.0;
    return out;
}

bool IsValidCivilDateTime(const CivilDateTime& c)
{
    if (c.month < 1 || c.month > 12 || c.day < 1) return false;
    if (c.hour < 0 || c.hour > 23 || c.minute < 0 || c.minute > 59) return false;
    if (!(c.second >= 0.0 && c.second < 60.0)) return false;
    if (c.year == 1582 && c.month == 10 && c.day >= 5 && c.day <= 14) return false;
    static constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    int length = kDays[c.month - 1];
    if (c.month == 2 && IsLeapYear(c.year, IsGregorian(c.year, c.month, 1))) length = 29;
    return c.day <= length;
}

double DecimalYearFromJulianDate(double jd)
{
    if (!std::isfinite(jd)) return std::numeric_limits<double>::quiet_NaN();
    if (std::fabs(jd) > kMaxCalendarJd) return 2000.0 + (jd - 2451544.5) / 365.2425;
    const CalendarDay day = CalendarDayOf(static_cast<std::int64_t>(std::floor(jd + 0.5)));
    const double yearStart = JulianDateOfDay(day.year, 1, 1.0, IsGregorian(day.year, 1, 1));
    const double nextYearStart = JulianDateOfDay(day.year + 1, 1, 1.0, IsGregorian(day.year + 1, 1, 1));
    return day.year + (jd - yearStart) / (nextYearStart - yearStart);
}

// Espenak & Meeus, Five Millennium Canon of Solar Eclipses: −1999 to +3000
// (NASA/TP-2006-214141), section 2.6, the expressions fitted to the values of
// Morrison & Stephenson (2004) and to the measured ΔT of the 20th century.
double DeltaTEspenakMeeusSeconds(double y)
{
    if (!std::isfinite(y)) return std::numeric_limits<double>::quiet_NaN();
    const auto parabola = [](double year) {
        const double u = (year - 1820.0) / 100.0;
        return -20.0 + 32.0 * u * u;
    };
    if (y < -500.0) return parabola(y);
    if (y < 500.0) {
        const double u = y / 100.0;
        return 10583.6 +
               u * (-1014.41 +
                    u * (33.78311 + u * (-5.952053 + u * (-0.1798452 + u * (0.022174192 + u * 0.0090316521)))));
    }
    if (y < 1600.0) {
        const double u = (y - 1000.0) / 100.0;
        return 1574.2 +
               u * (-556.01 +
                    u * (71.23472 + u * (0.319781 + u * (-0.8503463 + u * (-0.005050998 + u * 0.0083572073)))));
    }
    if (y < 1700.0) {
        const double t = y - 1600.0;
        return 120.0 + t * (-0.9808 + t * (-0.01532 + t / 7129.0));
    }
    if (y < 1800.0) {
        const double t = y - 1700.0;
        return 8.83 + t * (0.1603 + t * (-0.0059285 + t * (0.00013336 - t / 1174000.0)));
    }
    if (y < 1860.0) {
        const double t = y - 1800.0;
        return 13.72 +
               t * (-0.332447 +
                    t * (0.0068612 +
                         t * (0.0041116 +
                              t * (-0.00037436 + t * (0.0000121272 + t * (-0.0000001699 + t * 0.000000000875))))));
    }
    if (y < 1900.0) {
        const double t = y - 1860.0;
        return 7.62 + t * (0.5737 + t * (-0.251754 + t * (0.01680668 + t * (-0.0004473624 + t / 233174.0))));
    }
    if (y < 1920.0) {
        const double t = y - 1900.0;
        return -2.79 + t * (1.494119 + t * (-0.0598939 + t * (0.0061966 - t * 0.000197)));
    }
    if (y < 1941.0) {
        const double t = y - 1920.0;
        return 21.20 + t * (0.84493 + t * (-0.076100 + t * 0.0020936));
    }
    if (y < 1961.0) {
        const double t = y - 1950.0;
        return 29.07 + t * (0.407 + t * (-1.0 / 233.0 + t / 2547.0));
    }
    if (y < 1986.0) {
        const double t = y - 1975.0;
        return 45.45 + t * (1.067 + t * (-1.0 / 260.0 - t / 718.0));
    }
    if (y < 2005.0) {
        const double t = y - 2000.0;
        return 63.86 +
               t * (0.3345 + t * (-0.060374 + t * (0.0017275 + t * (0.000651814 + t * 0.00002373599))));
    }
    if (y < 2050.0) {
        const double t = y - 2000.0;
        return 62.92 + t * (0.32217 + t * 0.005589);
    }
    if (y < 2150.0) return parabola(y) - 0.5628 * (2150.0 - y);
    return parabola(y);
}

std::optional<double> TaiMinusUtcSeconds(double jdUTC)
{
    if (!std::isfinite(jdUTC)) return std::nullopt;
    const double mjd = jdUTC - kMjdZeroJd;
    if (mjd < kLeapSeconds.front().startMjd || mjd >= kLeapSecondTableEndMjd) return std::nullopt;
    // The last entry that has begun.
    const auto next = std::upper_bound(kLeapSeconds.begin(), kLeapSeconds.end(), mjd,
                                       [](double m, const LeapSecond& e) { return m < e.startMjd; });
    return static_cast<double>((next - 1)->taiMinusUtcSeconds);
}

double LeapSecondTableEndJdUTC() { return kMjdZeroJd + kLeapSecondTableEndMjd; }

double DeltaTSeconds(double jdUT)
{
    if (!std::isfinite(jdUT)) return std::numeric_limits<double>::quiet_NaN();
    if (const auto taiMinusUtc = TaiMinusUtcSeconds(jdUT)) return kTTMinusTAISeconds + *taiMinusUtc;

    const double year = DecimalYearFromJulianDate(jdUT);
    const double polynomial = DeltaTEspenakMeeusSeconds(year);
    if (jdUT < LeapEraStartJd()) {
        // Fade in the small offset that meets TT − UTC at 1972 January 1.
        const double startYear = DecimalYearFromJulianDate(LeapEraStartJd());
        const double offset = kTTMinusTAISeconds + kLeapSeconds.front().taiMinusUtcSeconds -
                              DeltaTEspenakMeeusSeconds(startYear);
        const double weight = std::clamp(1.0 - (startYear - year) / kFadeBefore1972Years, 0.0, 1.0);
        return polynomial + offset * weight;
    }
    // After the table: start from its last value and fade out the difference.
    const double endYear = DecimalYearFromJulianDate(LeapSecondTableEndJdUTC());
    const double offset =
        kTTMinusTAISeconds + kLeapSeconds.back().taiMinusUtcSeconds - DeltaTEspenakMeeusSeconds(endYear);
    const double weight = std::clamp(1.0 - (year - endYear) / kFadeAfterTableYears, 0.0, 1.0);
    return polynomial + offset * weight;
}

namespace {
// ERFA takes a date as two parts; an integral first part keeps the full
// precision of the second.
void SplitDate(double jd, double& whole, double& fraction)
{
    whole = std::floor(jd);
    fraction = jd - whole;
}
}  // namespace

double GreenwichMeanSiderealTimeRad(double jdUT, double jdTT)
{
    if (!std::isfinite(jdUT) || !std::isfinite(jdTT)) return std::numeric_limits<double>::quiet_NaN();
    double ut1, ut2, tt1, tt2;
    SplitDate(jdUT, ut1, ut2);
    SplitDate(jdTT, tt1, tt2);
    return eraGmst06(ut1, ut2, tt1, tt2);
}

void NutationIAU2000B2006(double jdTT, double& dPsiRad, double& dEpsRad)
{
    double tt1, tt2;
    SplitDate(jdTT, tt1, tt2);
    eraNut00b(tt1, tt2, &dPsiRad, &dEpsRad);
    // The IAU 2006 adjustment of the 2000 nutation (Capitaine et al. 2005,
    // A&A 432, 355; IERS Conventions 2010, eq. 5.35 ff.) for the secular
    // change of J2 and the new obliquity, as eraNut06a applies it to 2000A.
    const double t = ((tt1 - 2451545.0) + tt2) / 36525.0;  // Julian centuries TT from J2000
    const double fj2 = -2.7774e-6 * t;
    dPsiRad += dPsiRad * (0.4697e-6 + fj2);
    dEpsRad += dEpsRad * fj2;
}

void NutationForObserver(double jdTT, double& dPsiRad, double& dEpsRad)
{
    constexpr double kFrom1850 = 2396758.5, kUntil2150 = 2506331.5;  // 1850 and 2150 January 1.0
    if (jdTT >= kFrom1850 && jdTT < kUntil2150) {
        NutationIAU2000B2006(jdTT, dPsiRad, dEpsRad);
        return;
    }
    double tt1, tt2;
    SplitDate(jdTT, tt1, tt2);
    eraNut06a(tt1, tt2, &dPsiRad, &dEpsRad);
}

double EquationOfEquinoxesRad(double jdTT, double dPsiRad, double meanObliquityRad)
{
    // Δψ cos εA and the two largest complementary terms, 2640.96 µas sin Ω
    // and 63.52 µas sin 2Ω (IERS Conventions 2010, eq. 5.37 and table 5.2e;
    // the terms left out are below 12 µas each and 35 µas together).
    constexpr double kMicroArcsecToRad = 4.84813681109536e-12;
    const double t = (jdTT - 2451545.0) / 36525.0;
    const double node = eraFaom03(t);  // mean longitude of the Moon's ascending node
    return dPsiRad * std::cos(meanObliquityRad) +
           (2640.96 * std::sin(node) + 63.52 * std::sin(2.0 * node)) * kMicroArcsecToRad;
}

double GreenwichApparentSiderealTimeRad(double jdUT, double jdTT)
{
    if (!std::isfinite(jdUT) || !std::isfinite(jdTT)) return std::numeric_limits<double>::quiet_NaN();
    double ut1, ut2, tt1, tt2;
    SplitDate(jdUT, ut1, ut2);
    SplitDate(jdTT, tt1, tt2);
    double dPsi, dEps;
    NutationForObserver(jdTT, dPsi, dEps);
    return eraAnp(eraGmst06(ut1, ut2, tt1, tt2) + EquationOfEquinoxesRad(jdTT, dPsi, eraObl06(tt1, tt2)));
}

}  // namespace orv
