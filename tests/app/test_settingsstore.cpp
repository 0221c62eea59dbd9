#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <filesystem>

#include "app/qtsettingsstore.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;

TEST(QtSettingsStore, IniFileWithSectionsAndTheRealConventions)
{
    const std::string path = (std::filesystem::path(orv::test::MakeTempDir()) / "orvane.ini").string();
    {
        CQtSettingsStore store(path);
        store.SetInt("Level3", "Field", 960);
        store.SetInt("Level10", "Field", -1);
        store.SetReal("Coordinates", "InitField", 16.0);
        store.SetAngleRadAsDeg("Coordinates", "InitAlt", kHalfPi / 2);
        store.SetString("DeepSky", "NameFilter", "NGC 7*");
        store.Flush();
    }
    CQtSettingsStore store(path);
    EXPECT_EQ(store.GetInt("Level3", "Field", 0), 960);
    EXPECT_EQ(store.ReadInt("Level10", "Field").value_or(0), -1);
    EXPECT_EQ(store.GetString("Coordinates", "InitField", ""), "16.000000");
    EXPECT_NEAR(store.GetAngleDegAsRad("Coordinates", "InitAlt", 0.0), kHalfPi / 2, 1e-9);
    EXPECT_EQ(store.GetString("DeepSky", "NameFilter", ""), "NGC 7*");
    EXPECT_EQ(store.GetInt("Absent", "Key", 42), 42);
    // Every key of the file, once, as "Section/Key".
    auto keys = store.Keys();
    std::sort(keys.begin(), keys.end());
    EXPECT_EQ(keys, (std::vector<std::string>{"Coordinates/InitAlt", "Coordinates/InitField", "DeepSky/NameFilter",
                                              "Level10/Field", "Level3/Field"}));
    // The file is a readable INI file with one group per section.
    QFile f(QString::fromStdString(path));
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray text = f.readAll();
    EXPECT_TRUE(text.contains("[Level3]"));
    EXPECT_TRUE(text.contains("Field=960"));
}
