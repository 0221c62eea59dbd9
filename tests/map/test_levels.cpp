#include <gtest/gtest.h>

#include "map/levels.h"
#include "util/settingsstore.h"

using namespace orv;

TEST(Levels, LevelForFieldPicksTheNarrowestLevelStillWideEnough)
{
    const CLevelTable t;
    EXPECT_EQ(t.LevelForField(8.0), 3);          // equal to level 4's field: that level
    EXPECT_EQ(t.LevelForField(8.0001), 2);       // a little wider: level 3
    EXPECT_EQ(t.LevelForField(7.9999), 3);
    EXPECT_EQ(t.LevelForField(100.0), 0);        // wider than level 1
    EXPECT_EQ(t.LevelForField(1.0 / 60.0), 9);   // one arc minute: narrower than level 10
    EXPECT_EQ(t.LevelForField(90.0), 0);
    EXPECT_EQ(t.LevelForField(5.0 / 60.0), 9);
    EXPECT_EQ(t.LevelForField(0.2), 8);          // 12′: between level 9 (15′) and 10 (5′)
    for (int i = 0; i < kLevelCount; ++i) EXPECT_EQ(t.LevelForField(t[i].fieldDeg), i) << "level " << i + 1;
}

TEST(Levels, DefaultsSpanNinetyDegreesToFiveArcMinutes)
{
    const CLevelTable t;
    EXPECT_DOUBLE_EQ(t[0].fieldDeg, 90.0);
    EXPECT_DOUBLE_EQ(t[1].fieldDeg, 45.0);
    EXPECT_DOUBLE_EQ(t[2].fieldDeg, 16.0);
    EXPECT_DOUBLE_EQ(t[9].fieldDeg, 5.0 / 60.0);
    EXPECT_EQ(t[2].scrollMode, 0);  // levels 1-3 hold the centre in altitude and azimuth
    EXPECT_EQ(t[3].scrollMode, 1);
}

TEST(Levels, StoreUsesLevelSectionsAndUnsignedFields)
{
    CMemorySettingsStore store;
    store.SetInt("Level4", "Field", 600);       // 10°
    store.SetInt("Level4", "StarMagLimit", 950);
    store.SetInt("Level10", "Field", -60);      // 2^32 − 60 arc minutes: no field a chart can show
    CLevelTable t;
    t.Load(store);
    EXPECT_DOUBLE_EQ(t[3].fieldDeg, 10.0);
    EXPECT_EQ(t[3].starMagLimit, 950);
    EXPECT_DOUBLE_EQ(t[9].fieldDeg, 5.0 / 60.0) << "an impossible field falls back to the level's own";
    EXPECT_EQ(t[0].starMagLimit, 500);  // untouched levels keep their defaults

    CMemorySettingsStore out;
    t[6].dsMagLimit = 1444;
    t.Save(out);
    EXPECT_EQ(out.GetInt("Level7", "DSMagLimit", 0), 1444);
    EXPECT_EQ(out.GetInt("Level1", "Field", 0), 5400);
    CLevelTable back;
    back.Load(out);
    EXPECT_EQ(back[6].dsMagLimit, 1444);
    EXPECT_DOUBLE_EQ(back[3].fieldDeg, 10.0);
}

TEST(Levels, RangesAndStates)
{
    EXPECT_TRUE((LevelRange{3, 3}.Contains(3)));
    EXPECT_FALSE((LevelRange{3, 1}.Contains(2)));  // an inverted range never shows
    EXPECT_FALSE((LevelRange{3, 1}.Contains(3)));
    EXPECT_FALSE((LevelRange{-1, -1}.Contains(0)));
    // The first range wins where both hold.
    EXPECT_EQ(TwoRangeState({2, 5}, {0, 9}, 4), 2);
    EXPECT_EQ(TwoRangeState({2, 5}, {0, 9}, 7), 1);
    EXPECT_EQ(TwoRangeState({2, 5}, {-1, -1}, 7), 0);
    EXPECT_EQ(LevelStatusText(0), "Lvl 1");
    EXPECT_EQ(LevelStatusText(9), "Lvl 10");
}
