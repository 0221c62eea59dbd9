#include <gtest/gtest.h>

#include "app/strings.h"

using namespace orv;

TEST(Strings, NumberedMessagesWithSubstitution)
{
    EXPECT_EQ(FormatString(IDS_CANNOT_OPEN_FILE, "/maps/a.ovm"), "Unable to open file /maps/a.ovm");
    EXPECT_EQ(FormatString(IDS_NOT_ORVANE_FILE, "x.ovm"), "File x.ovm is not a\nOrvane file!");
    EXPECT_EQ(LoadString(IDS_SIGNATURE), "Orvane");
    EXPECT_EQ(LoadString(1034), "Unable to create file %1");
    EXPECT_EQ(LoadString(1056), "File %1 contains an unknown map type.");
    EXPECT_TRUE(LoadString(9999).empty());
    // Every %1 is replaced; other percent signs are left alone.
    EXPECT_EQ(SubstituteArg("%1 and %1 at 50%", "M31"), "M31 and M31 at 50%");
}

TEST(Strings, ConstellationsInTheFixedOrder)
{
    EXPECT_EQ(LoadString(224), "Andromedae");
    EXPECT_EQ(LoadString(311), "Vulpeculae");
    EXPECT_EQ(LoadString(2144), "And");
    EXPECT_EQ(LoadString(2231), "Vul");
    // Spot checks of the alphabetical order of the Latin names, where it is
    // easy to get wrong: Aquarius before Aquila, Canes Venatici before Canis
    // Major, Piscis Austrinus after Pisces, Triangulum before Triangulum Australe.
    EXPECT_EQ(ConstellationAbbreviation(3), "Aqr");
    EXPECT_EQ(ConstellationAbbreviation(4), "Aql");
    EXPECT_EQ(ConstellationAbbreviation(12), "CVn");
    EXPECT_EQ(ConstellationAbbreviation(13), "CMa");
    EXPECT_EQ(ConstellationAbbreviation(65), "Psc");
    EXPECT_EQ(ConstellationAbbreviation(66), "PsA");
    EXPECT_EQ(ConstellationAbbreviation(79), "Tri");
    EXPECT_EQ(ConstellationAbbreviation(80), "TrA");
    EXPECT_EQ(ConstellationGenitive(13), "Canis Majoris");
    EXPECT_EQ(FindConstellation("cma"), 13);
    EXPECT_EQ(FindConstellation("Canis Majoris"), 13);
    EXPECT_EQ(FindConstellation("Orion"), 59);
    EXPECT_EQ(FindConstellation("Xyz"), -1);
    EXPECT_TRUE(ConstellationAbbreviation(88).empty());
    // Abbreviations are unique.
    for (int i = 0; i < kConstellationCount; ++i)
        for (int j = i + 1; j < kConstellationCount; ++j)
            EXPECT_NE(ConstellationAbbreviation(i), ConstellationAbbreviation(j));
}

TEST(Strings, BodyNamesByBodyId)
{
    EXPECT_EQ(BodyName(0), "Moon");
    EXPECT_EQ(BodyName(3), "Sun");
    EXPECT_EQ(BodyName(9), "Pluto");
    EXPECT_TRUE(BodyName(10).empty());
}
