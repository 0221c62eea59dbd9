// The planet paths kept beside a map file: a computed path written and read
// back is the same to the last bit, and damaged files are refused with the
// line and the reason.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "observer/observer.h"
#include "solarsystem/bodypathfile.h"
#include "solarsystem/planets.h"

using namespace orv;

TEST(BodyPathFile, APathReadsBackExactly)
{
    BodyPath mars;
    mars.body = kBodyMars;
    mars.tickStepDays = 7.0;
    mars.localOffsetHours = -4.0;
    for (int k = 0; k < 50; ++k)
        mars.points.push_back({2460500.5 + 0.25 * k, 1.0 + 1e-3 * k / 3.0, -0.3 + 1e-4 * k / 7.0,
                               k == 3 ? std::numeric_limits<double>::quiet_NaN() : -1.0 + 0.01 * k, k % 4 == 0});
    BodyPath moon;
    moon.body = kBodyMoon;
    moon.points.push_back({2460501.0, 6.2831853, 1.5707963267948966, -12.5, true});
    const BodyPathsReadResult r = ParseBodyPaths(FormatBodyPaths({mars, moon}));
    ASSERT_TRUE(r.ok) << r.errorLine << ": " << r.error;
    ASSERT_EQ(r.paths.size(), 2u);
    EXPECT_EQ(r.paths[0].body, kBodyMars);
    EXPECT_EQ(r.paths[0].tickStepDays, 7.0);
    EXPECT_EQ(r.paths[0].localOffsetHours, -4.0);
    ASSERT_EQ(r.paths[0].points.size(), mars.points.size());
    for (std::size_t k = 0; k < mars.points.size(); ++k) {
        const BodyPathPoint& a = mars.points[k];
        const BodyPathPoint& b = r.paths[0].points[k];
        EXPECT_EQ(a.jdUT, b.jdUT);
        EXPECT_EQ(a.raJ2000Rad, b.raJ2000Rad);
        EXPECT_EQ(a.decJ2000Rad, b.decJ2000Rad);
        if (std::isnan(a.magnitude))
            EXPECT_TRUE(std::isnan(b.magnitude));
        else
            EXPECT_EQ(a.magnitude, b.magnitude);
        EXPECT_EQ(a.tick, b.tick);
    }
    EXPECT_EQ(r.paths[1].body, kBodyMoon);
    EXPECT_EQ(r.paths[1].points[0].decJ2000Rad, 1.5707963267948966);
    EXPECT_EQ(BodyPathsFilePath("/maps/Orion.ovm"), "/maps/Orion.ovm.paths");
}

TEST(BodyPathFile, DamagedFilesAreRefusedWithTheLine)
{
    const std::string head = "Orvane planet paths 1\n";
    struct Case {
        std::string text;
        int line;
    };
    const Case cases[] = {
        {"Orvane star paths 1\n", 1},
        {head + "path Vulcan 1 0 0\n", 2},
        {head + "path Mars 0 0 1\n2460500.5 1 0.1 1 1\n", 2},                 // step not positive
        {head + "path Mars 1 0 2\n2460500.5 1 0.1 1 1\n", 3},                 // ends inside the path
        {head + "path Mars 1 0 1\n2460500.5 1 2.0 1 1\n", 3},                 // declination beyond the pole
        {head + "path Mars 1 0 1\n2460500.5 1 0.1 1 2\n", 3},                 // tick neither 0 nor 1
        {head + "path Mars 1 0 1\n2460500.5 1x 0.1 1 1\n", 3},                // not a number
    };
    for (const Case& c : cases) {
        const BodyPathsReadResult r = ParseBodyPaths(c.text);
        EXPECT_FALSE(r.ok) << c.text;
        EXPECT_EQ(r.errorLine, c.line) << c.text << " -> " << r.error;
        EXPECT_FALSE(r.error.empty());
        EXPECT_TRUE(r.paths.empty());
    }
    EXPECT_TRUE(ParseBodyPaths(head).ok);  // no paths at all
}
