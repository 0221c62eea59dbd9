// Julian dates and civil dates, against the worked examples and the table of
// Meeus, Astronomical Algorithms, 2nd ed. (1998), ch. 7.

#include <gtest/gtest.h>

#include <cmath>

#include "observer/observer.h"
#include "support/compare.h"

using namespace orv;
using orv::test::kSecondsFromDays;

namespace {

CivilDateTime At(int year, int month, double dayWithFraction)
{
    CivilDateTime c;
    c.year = year;
    c.month = month;
    c.day = static_cast<int>(std::floor(dayWithFraction));
    const double seconds = (dayWithFraction - c.day) * 86400.0;
    c.hour = static_cast<int>(seconds / 3600.0);
    c.minute = static_cast<int>((seconds - c.hour * 3600.0) / 60.0);
    c.second = seconds - c.hour * 3600.0 - c.minute * 60.0;
    return c;
}

// JD is exact in these tables; 1 ms is the representable resolution near 2.4e6.
constexpr double kJdTolerance = 0.001 / 86400.0;

}  // namespace

TEST(Calendar, MeeusChapter7ExamplesAndTable)
{
    struct Case {
        int year, month;
        double day, jd;
    };
    const Case cases[] = {
        {1957, 10, 4.81, 2436116.31},  // Example 7.a (Sputnik 1)
        {333, 1, 27.5, 1842713.0},     // Example 7.b (Julian calendar)
        {2000, 1, 1.5, 2451545.0},     // the dates listed after Example 7.b
        {1999, 1, 1.0, 2451179.5},     {1987, 1, 27.0, 2446822.5},   {1987, 6, 19.5, 2446966.0},
        {1988, 1, 27.0, 2447187.5},    {1988, 6, 19.5, 2447332.0},   {1900, 1, 1.0, 2415020.5},
        {1600, 1, 1.0, 2305447.5},     {1600, 12, 31.0, 2305812.5},  {837, 4, 10.3, 2026871.8},
        {-123, 12, 31.0, 1676496.5},   {-122, 1, 1.0, 1676497.5},    {-1000, 7, 12.5, 1356001.0},
        {-1000, 2, 29.0, 1355866.5},   {-1001, 8, 17.9, 1355671.4},  {-4712, 1, 1.5, 0.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.year << '-' << c.month << '-' << c.day);
        EXPECT_NEAR_UNIT(c.jd, JulianDateFromCivil(At(c.year, c.month, c.day)), kJdTolerance, kSecondsFromDays);
        EXPECT_NEAR_UNIT(c.jd, CObserverDoc::JulianDate(c.year, c.month, c.day), kJdTolerance, kSecondsFromDays);
        // Example 7.c and the inverse of every row.
        const CivilDateTime back = CivilFromJulianDate(c.jd);
        EXPECT_EQ(c.year, back.year);
        EXPECT_EQ(c.month, back.month);
        EXPECT_NEAR(c.day, back.day + (back.hour + (back.minute + back.second / 60.0) / 60.0) / 24.0, 1e-8);
    }
    // Example 7.c, second part: JD 1507900.13 is −584 May 28.63.
    const CivilDateTime c = CivilFromJulianDate(1507900.13);
    EXPECT_EQ(-584, c.year);
    EXPECT_EQ(5, c.month);
    EXPECT_EQ(28, c.day);
    EXPECT_EQ(15, c.hour);  // 0.63 d = 15h07m12s
    EXPECT_EQ(7, c.minute);
    EXPECT_NEAR(12.0, c.second, 0.001);
}

TEST(Calendar, GregorianReformFollowsJulianOct4WithGregorianOct15)
{
    // Thursday 1582 October 4 (Julian) was followed by Friday October 15
    // (Gregorian): consecutive days (Meeus ch. 7).
    EXPECT_DOUBLE_EQ(2299159.5, JulianDateFromCivil(At(1582, 10, 4.0)));
    EXPECT_DOUBLE_EQ(2299160.5, JulianDateFromCivil(At(1582, 10, 15.0)));
    const CivilDateTime after = CivilFromJulianDate(2299160.5);
    EXPECT_EQ(1582, after.year);
    EXPECT_EQ(10, after.month);
    EXPECT_EQ(15, after.day);
    const CivilDateTime before = CivilFromJulianDate(2299160.4999);
    EXPECT_EQ(4, before.day);
    // Day of the week (Meeus ch. 7): (JD + 1.5) mod 7, 4 = Thursday, 5 = Friday.
    EXPECT_EQ(4, static_cast<int>(std::fmod(2299159.5 + 1.5, 7.0)));
    EXPECT_EQ(5, static_cast<int>(std::fmod(2299160.5 + 1.5, 7.0)));
    // The ten missing dates are not valid civil dates.
    EXPECT_FALSE(IsValidCivilDateTime(At(1582, 10, 10.0)));
    EXPECT_TRUE(IsValidCivilDateTime(At(1582, 10, 4.0)));
    EXPECT_TRUE(IsValidCivilDateTime(At(1582, 10, 15.0)));
}

TEST(Calendar, RoundTripEveryDayOverSevenMillennia)
{
    // Every day from −4000 to +3000 (including negative Julian dates), each at
    // a time of day that exercises the millisecond rounding.
    double previous = -1e300;
    for (double jd = 260423.5 - 2 * 365.25 * 1000.0; jd < 2816787.5; jd += 1.0) {
        const double t = jd + 0.123456;
        const CivilDateTime c = CivilFromJulianDate(t);
        ASSERT_TRUE(IsValidCivilDateTime(c)) << t;
        const double back = JulianDateFromCivil(c);
        ASSERT_NEAR(t, back, 0.0006 / 86400.0) << t;  // half a millisecond
        ASSERT_GT(back, previous);
        previous = back;
    }
}

TEST(Calendar, MillisecondRoundingCarriesIntoTheDate)
{
    // 0.4 ms before 2000 January 2, 0h rounds up to the next day, not to 60 s.
    const CivilDateTime c = CivilFromJulianDate(2451545.5 - 0.0004 / 86400.0);
    EXPECT_EQ(2000, c.year);
    EXPECT_EQ(1, c.month);
    EXPECT_EQ(2, c.day);
    EXPECT_EQ(0, c.hour);
    EXPECT_EQ(0, c.minute);
    EXPECT_EQ(0.0, c.second);
    // 1999 December 31, 23:59:59.999 stays in 1999.
    const CivilDateTime d = CivilFromJulianDate(2451544.5 - 0.001 / 86400.0);
    EXPECT_EQ(1999, d.year);
    EXPECT_EQ(59, d.minute);
    EXPECT_NEAR(59.999, d.second, 1e-9);
}

TEST(Calendar, ValidityFollowsEachCalendarsLeapYears)
{
    EXPECT_TRUE(IsValidCivilDateTime(At(1500, 2, 29.0)));   // Julian: every fourth year
    EXPECT_FALSE(IsValidCivilDateTime(At(1700, 2, 29.0)));  // Gregorian century
    EXPECT_TRUE(IsValidCivilDateTime(At(2000, 2, 29.0)));
    EXPECT_TRUE(IsValidCivilDateTime(At(-1000, 2, 29.0)));  // Meeus's −1000 Feb 29
    EXPECT_FALSE(IsValidCivilDateTime(At(2023, 2, 29.0)));
    EXPECT_FALSE(IsValidCivilDateTime(At(2023, 13, 1.0)));
    EXPECT_FALSE(IsValidCivilDateTime(At(2023, 4, 31.0)));
    CivilDateTime late = At(2023, 4, 30.0);
    late.second = 60.0;
    EXPECT_FALSE(IsValidCivilDateTime(late));
}

TEST(Calendar, DecimalYearIsContinuousAtNewYear)
{
    EXPECT_DOUBLE_EQ(1972.0, DecimalYearFromJulianDate(2441317.5));
    EXPECT_NEAR(2000.0 + 0.5 / 366.0, DecimalYearFromJulianDate(2451545.0), 1e-12);
    EXPECT_NEAR(1973.0, DecimalYearFromJulianDate(2441683.5 - 1e-6), 1e-8);
}

TEST(Calendar, LocalTimeCarriesZoneAndDaylightSaving)
{
    CObserverDoc doc;
    doc.SetTimeZone(-5.0, true);  // Eastern daylight time, UT−4
    CivilDateTime local = At(2024, 7, 4.0);
    local.hour = 22;
    doc.SetLocalTime(local);
    const CivilDateTime ut = doc.UniversalTime();
    EXPECT_EQ(5, ut.day);
    EXPECT_EQ(2, ut.hour);
    const CivilDateTime back = doc.LocalTime();
    EXPECT_EQ(4, back.day);
    EXPECT_EQ(22, back.hour);
    EXPECT_DOUBLE_EQ(-4.0, doc.LocalOffsetHours());
}

TEST(Calendar, ExtremeDatesStayDefined)
{
    // Far outside any use, but reachable through a damaged file or a typed
    // Julian date: finite answers, no undefined arithmetic.
    for (double jd : {1e12, -1e12, 1e300, -1e300}) {
        const CivilDateTime c = CivilFromJulianDate(jd);
        EXPECT_TRUE(IsValidCivilDateTime(c)) << jd;
        EXPECT_TRUE(std::isfinite(DecimalYearFromJulianDate(jd))) << jd;
        EXPECT_TRUE(std::isfinite(DeltaTSeconds(jd)) || std::fabs(jd) > 1e100) << jd;
    }
}
