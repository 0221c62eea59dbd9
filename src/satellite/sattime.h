// The satellite subsystem's own time helpers: Greenwich mean sidereal time of
// the element sets' frame and civil-date conversions for tables and titles.
// They are deliberately independent of the planetary theory and of the
// observer's IAU 2006 sidereal time: SGP4's TEME frame is defined with the
// IAU 1982 mean sidereal time below.
#pragma once

#include <string>

namespace orv::sat {

// Greenwich mean sidereal time (IAU 1982; Aoki et al., A&A 105, 359, 1982;
// Meeus, Astronomical Algorithms, 2nd ed., eq. 12.2 at 0h UT plus the
// sidereal rate times the fraction of the day), radians in [0, 2π). With the
// Julian date split into jd0 (0h UT) and the fraction f of the day,
// T = (jd0 − 2451545) / 36525 and
// GMST = 24110.54841 s + 8640184.812866 s T + 0.093104 s T² − 6.2e-6 s T³
//        + 1.00273790934 × 86400 s × f.
// Non-finite input is returned unchanged (NaN in, NaN out).
double GmstIau1982Rad(double jdUT);

// A civil date and time (Gregorian calendar).
struct SatCivilTime {
    int year = 2000;
    int month = 1;  // 1-12
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// Julian date of a Gregorian date and time (Meeus, Astronomical Algorithms,
// 2nd ed., ch. 7).
double JulianDateFromSatCivil(int year, int month, int day, int hour, int minute, double second);
// Civil date and time of a Julian date, rounded to the whole second (with the
// carries into minutes, hours and days). Meeus ch. 7.
SatCivilTime SatCivilFromJulianDate(double jd);

// English three-letter month abbreviations "Jan" … "Dec" (month 1-12; empty
// otherwise), the "%b" form of the tables and titles.
const char* MonthAbbreviation(int month);

// Julian date (UT) of local midday of a calendar date at a site whose civil
// time is UT + `localOffsetHours`.
double LocalMiddayJd(int year, int month, int day, double localOffsetHours);

}  // namespace orv::sat
