// The default comet and asteroid catalogues: the JPL full names of
// kstars-data's asteroids.dat split into number and name, and, when the data
// folder holds them, the built catalogues read back with known entries
// (numbers, names and elements as the JPL and MPC lists give them).
#include <gtest/gtest.h>

#include "minorbuild.h"
#include "solarsystem/minorbodies.h"
#include "util/datapath.h"

using namespace orv;

TEST(MinorBuild, JplFullNames)
{
    int number = -1;
    std::string name;
    ASSERT_TRUE(databuild::SplitJplFullName("     1 Ceres (A801 AA)", number, name));
    EXPECT_EQ(number, 1);
    EXPECT_EQ(name, "Ceres");
    ASSERT_TRUE(databuild::SplitJplFullName("  433 Eros (A898 PA)", number, name));
    EXPECT_EQ(number, 433);
    EXPECT_EQ(name, "Eros");
    ASSERT_TRUE(databuild::SplitJplFullName("       (2022 LV2)", number, name));
    EXPECT_EQ(number, 0);
    EXPECT_EQ(name, "2022 LV2");
    ASSERT_TRUE(databuild::SplitJplFullName("  3200 Phaethon (1983 TB)", number, name));
    EXPECT_EQ(name, "Phaethon");
    EXPECT_FALSE(databuild::SplitJplFullName("   ", number, name));
}

TEST(MinorBuild, BuiltCataloguesReadBack)
{
    std::string asteroids, comets;
    if (!LocateDataFile("asteroid.cat", asteroids) || !LocateDataFile("comet.cat", comets))
        GTEST_SKIP() << "no asteroid.cat and comet.cat in the data folder (" << GetDataPath()
                     << "): run tools/build-data.sh (data step 40-minor)";
    CMinorCatalogs c;
    c.SetPaths(asteroids, comets);
    c.Reload();
    ASSERT_GT(c.Asteroids().size(), 5000u);
    ASSERT_GT(c.Comets().size(), 500u);
    const auto vesta = c.FindAsteroids("4");
    ASSERT_EQ(vesta.size(), 1u);
    const AsteroidElements& v = c.Asteroids()[vesta[0]];
    EXPECT_EQ(v.name, "Vesta");
    // Vesta's orbit: a = 2.36 AU, e = 0.089, i = 7.14° (any recent element set).
    EXPECT_NEAR(v.aAU, 2.362, 0.005);
    EXPECT_NEAR(v.e, 0.089, 0.003);
    EXPECT_NEAR(v.inclinationDeg, 7.14, 0.01);
    const auto halley = c.FindComets("1P");
    ASSERT_EQ(halley.size(), 1u);
    // Halley's 1986 apparition: perihelion 1986 February 9, q = 0.587 AU,
    // e = 0.967. The MPC's elements osculate in 2022, so the planets'
    // perturbations since move T by days and q by hundredths of an AU.
    EXPECT_EQ(c.Comets()[halley[0]].perihelionYear, 1986);
    EXPECT_NEAR(c.Comets()[halley[0]].qAU, 0.587, 0.02);
    EXPECT_NEAR(c.Comets()[halley[0]].e, 0.967, 0.002);
    EXPECT_EQ(c.FindComets("12P").size(), 1u);
}
