// The comet and asteroid windows: importing the MPC excerpts through the
// menu's command (counts and named refused lines), pasting single lines,
// searching the catalogue list by name and number, and the settings pages
// handing back what was set.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "app/appcontext.h"
#include "app/minorwindows.h"
#include "app/qtsettingsstore.h"
#include "support/compare.h"

using namespace orv;

namespace {

struct MinorFixture {
    std::string dir = orv::test::MakeTempDir();
    CQtSettingsStore settings{(std::filesystem::path(dir) / "orvane.ini").string()};
    CAppContext context{settings};
    QWidget frame;
    CMinorCommands commands{context, &frame, [] { return nullptr; }};

    MinorFixture()
    {
        // Empty catalogues of this test's own.
        context.MinorCatalogs().Unloaded().SetPaths(dir + "/asteroid.cat", dir + "/comet.cat");
        context.MinorCatalogs().Get();
    }
    std::string Data(const char* name) const { return orv::test::TestDataDir() + "/minor/" + name; }
};

}  // namespace

TEST(MinorWindows, ImportCountsAndNamesRefusedLines)
{
    MinorFixture f;
    const QString report = f.commands.ImportFile(QString::fromStdString(f.Data("MPCORB.excerpt.DAT")), false);
    EXPECT_TRUE(report.contains("4 lines accepted (0 replaced, 4 added), 0 refused")) << report.toStdString();
    EXPECT_EQ(f.context.MinorCatalogs().Get().Asteroids().size(), 4u);
    EXPECT_TRUE(f.context.MinorCatalogs().Get().Changed(MinorKind::Asteroid));

    const std::string broken = f.dir + "/broken.dat";
    std::ifstream in(f.Data("MPCORB.excerpt.DAT"));
    std::string first;
    std::getline(in, first);
    std::ofstream(broken) << first << "\n" << first.substr(0, 60) << "\n";
    const QString second = f.commands.ImportFile(QString::fromStdString(broken), false);
    EXPECT_TRUE(second.contains("1 lines accepted (1 replaced, 0 added), 1 refused")) << second.toStdString();
    EXPECT_TRUE(second.contains("Line 2: shorter than")) << second.toStdString();
    EXPECT_EQ(f.context.MinorCatalogs().Get().Asteroids().size(), 4u);

    const QString comets = f.commands.ImportFile(QString::fromStdString(f.Data("CometEls.txt")), false);
    EXPECT_TRUE(comets.contains("3 lines accepted")) << comets.toStdString();
    EXPECT_EQ(f.context.MinorCatalogs().Get().Comets().size(), 3u);
}

TEST(MinorWindows, PastedLinesAndTheCatalogSearch)
{
    MinorFixture f;
    std::ifstream in(f.Data("CometEls.txt"));
    std::string hb, neowise;
    std::getline(in, hb);
    std::getline(in, neowise);
    const QString report = f.commands.AddPastedLines(QString::fromStdString(neowise + "\nnot an element line\n"));
    EXPECT_TRUE(report.contains("0 asteroids and 1 comets added, 1 lines refused")) << report.toStdString();
    EXPECT_TRUE(report.contains("Line 2:")) << report.toStdString();
    ASSERT_EQ(f.context.MinorCatalogs().Get().Comets().size(), 1u);
    EXPECT_EQ(f.context.MinorCatalogs().Get().Comets()[0].flag, 'A');

    f.commands.ImportFile(QString::fromStdString(f.Data("MPCORB.excerpt.DAT")), false);
    CMinorCatalogDialog dialog(f.context, MinorKind::Asteroid);
    EXPECT_EQ(dialog.Model()->rowCount(), 4);
    dialog.Search()->setText("ves");
    ASSERT_EQ(dialog.Model()->rowCount(), 1);
    EXPECT_EQ(dialog.Model()->data(dialog.Model()->index(0, 2), Qt::DisplayRole).toString(), "Vesta");
    dialog.Search()->setText("2");
    ASSERT_EQ(dialog.Model()->rowCount(), 1);
    EXPECT_EQ(dialog.Model()->data(dialog.Model()->index(0, 2), Qt::DisplayRole).toString(), "Pallas");
}

TEST(MinorWindows, SettingsDialogHandsBackTheFilters)
{
    CAsteroidCatalogSettings a;
    CCometCatalogSettings c;
    CBodyDisplay ad{"Asteroid", {2, 9}, {4, 9}, 1400}, cd{"Comet", {2, 9}, {3, 9}, 1400};
    CMinorSettingsDialog dialog(a, c, ad, cd);
    const auto combos = dialog.findChildren<QComboBox*>();
    ASSERT_EQ(combos.size(), 2);
    combos[0]->setCurrentIndex(2);
    combos[1]->setCurrentIndex(0);
    // The upper H limit: the box that shows the setting's 11.
    QDoubleSpinBox* hMax = nullptr;
    for (QDoubleSpinBox* s : dialog.findChildren<QDoubleSpinBox*>())
        if (s->value() == 11.0) hMax = s;
    ASSERT_NE(hMax, nullptr);
    hMax->setValue(9.5);
    auto* buttons = dialog.findChild<QDialogButtonBox*>();
    ASSERT_NE(buttons, nullptr);
    buttons->button(QDialogButtonBox::Ok)->click();
    EXPECT_EQ(dialog.asteroids.filterMode, 2);
    EXPECT_DOUBLE_EQ(dialog.asteroids.filterHMax, 9.5);
    EXPECT_EQ(dialog.comets.filterMode, 0);
}

// The catalogue window lists the whole file when a load filter leaves
// entries out: those are greyed and counted, not hidden or dropped.
TEST(MinorWindows, CatalogWindowListsTheWholeFileAndGreysWhatIsNotLoaded)
{
    MinorFixture f;
    f.commands.ImportFile(QString::fromStdString(f.Data("MPCORB.excerpt.DAT")), false);
    CMinorCatalogs& c = f.context.MinorCatalogs().Get();
    AsteroidFilter upToTwo;
    upToTwo.numberLimit = 2;
    c.SetLoadFilters(upToTwo, AllComets());
    CMinorCatalogDialog dialog(f.context, MinorKind::Asteroid);
    ASSERT_EQ(dialog.Model()->rowCount(), 4);
    EXPECT_FALSE(dialog.Model()->data(dialog.Model()->index(1, 2), Qt::ForegroundRole).isValid()) << "Pallas is loaded";
    EXPECT_TRUE(dialog.Model()->data(dialog.Model()->index(3, 2), Qt::ForegroundRole).isValid()) << "Vesta is not";
    EXPECT_TRUE(dialog.Model()->data(dialog.Model()->index(3, 2), Qt::ToolTipRole).toString().contains("load filter"));
    const QLabel* count = dialog.findChild<QLabel*>(QString(), Qt::FindDirectChildrenOnly);
    bool found = false;
    for (const QLabel* l : dialog.findChildren<QLabel*>())
        found |= l->text().contains("4 of 4 entries shown; 2 loaded by the load filter (mode 1: in file order up to number 2)");
    EXPECT_TRUE(found) << (count ? count->text().toStdString() : std::string());
    if (const char* shot = std::getenv("ORVANE_SCREENSHOT_DIR")) {
        dialog.resize(900, 300);
        dialog.grab().save(QString::fromUtf8(shot) + "/asteroid-catalog.png");
    }
}
