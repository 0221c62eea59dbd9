// The eclipse search dialog hands back what its fields say; the browsing
// list shows one line per record of the chosen file with the browsing
// lists' date and type texts, remembers its file, and maps an eclipse.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>

#include "app/appcontext.h"
#include "app/eclipsewindows.h"
#include "app/resulttablepanel.h"
#include "eclipse/eclipsetables.h"
#include "util/datapath.h"
#include "util/settingsstore.h"

using namespace orv;

TEST(EclipseWindows, SearchDialogFields)
{
    EclipseSearchSettings s;
    s.startYear = -500;
    s.endYear = 100;
    s.lunar = false;
    s.displayOption = kEclipseDisplayNoPartialSolar;
    CEclipseSearchDialog dialog(s);
    const EclipseSearchSettings back = dialog.Settings();
    EXPECT_EQ(-500, back.startYear);
    EXPECT_EQ(100, back.endYear);
    EXPECT_TRUE(back.solar);
    EXPECT_FALSE(back.lunar);
    EXPECT_EQ(kEclipseDisplayNoPartialSolar, back.displayOption);
    const auto boxes = dialog.findChildren<QSpinBox*>();
    ASSERT_EQ(2, boxes.size());
    boxes[1]->setValue(2500);
    EXPECT_EQ(2500, dialog.Settings().endYear);
}

TEST(EclipseWindows, BrowseListShowsTheFile)
{
    std::string path;
    if (!LocateDataFile(EclipseFileName(EclipseKind::Lunar, 5), path))
        GTEST_SKIP() << "no eclipse tables in the data folder (" << GetDataPath() << "); tools/build-data.sh builds them";
    const auto records = ReadEclipseFile(path);
    ASSERT_TRUE(records && !records->empty());
    CMemorySettingsStore settings;
    settings.SetInt("LunarEclipse", "FileNumber", 5);
    CAppContext context{settings};
    auto* window = new CEclipseBrowseWindow(context, EclipseKind::Lunar);
    auto* view = window->findChild<QTableView*>();
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(static_cast<int>(records->size()), view->model()->rowCount());
    EXPECT_EQ(QString::fromStdString(BrowseDateText(records->front())), view->model()->index(0, 0).data().toString());
    window->close();  // deletes itself and stores its place
    EXPECT_EQ(5, settings.GetInt("LunarEclipse", "FileNumber", 0));
}

// The browsing list's Map button opens the world map of a lunar eclipse with
// its global phases: the total eclipse of 2022 November 8, totality from
// 10:16:39 to 11:41:35 UT (NASA's figures for the eclipse).
TEST(EclipseWindows, BrowseListMapsALunarEclipse)
{
    std::string path;
    if (!LocateDataFile(EclipseFileName(EclipseKind::Lunar, 5), path))
        GTEST_SKIP() << "no eclipse tables in the data folder (" << GetDataPath() << "); tools/build-data.sh builds them";
    const auto records = ReadEclipseFile(path);
    ASSERT_TRUE(records && !records->empty());
    int row = -1;
    for (std::size_t i = 0; i < records->size(); ++i)
        if ((*records)[i].year == 2022 && (*records)[i].month == 11) row = static_cast<int>(i);
    ASSERT_GE(row, 0);
    CMemorySettingsStore settings;
    settings.SetInt("LunarEclipse", "FileNumber", 5);
    CAppContext context{settings};
    auto* window = new CEclipseBrowseWindow(context, EclipseKind::Lunar);
    auto* view = window->findChild<QTableView*>();
    ASSERT_NE(view, nullptr);
    view->selectRow(row);
    QPushButton* map = nullptr;
    for (QPushButton* b : window->findChildren<QPushButton*>())
        if (b->text() == QStringLiteral("&Map")) map = b;
    ASSERT_NE(map, nullptr);
    map->click();
    CEclipseMapWindow* shown = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* m = qobject_cast<CEclipseMapWindow*>(w)) shown = m;
    ASSERT_NE(shown, nullptr);
    EXPECT_TRUE(shown->windowTitle().startsWith(QStringLiteral("Total Lunar Eclipse of 2022 AD Nov 08")));
    auto* text = shown->findChild<QPlainTextEdit*>();
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(text->toPlainText().contains(QStringLiteral("U2 total begins     10:16:")));
    EXPECT_TRUE(text->toPlainText().contains(QStringLiteral("U3 total ends       11:41:")));
    shown->close();
    window->close();
}
