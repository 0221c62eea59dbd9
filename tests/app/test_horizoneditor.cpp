// The horizon editor: a drag over the azimuth scale sets the degrees it
// passes to the altitude under the mouse, every change reaches the map at
// once, the title says when the profile is unsaved, and undo steps back.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTimer>

#include <filesystem>

#include "app/appcontext.h"
#include "app/horizoneditor.h"
#include "app/mainframe.h"
#include "app/mapwindow.h"
#include "app/qtsettingsstore.h"
#include "map/mapdoc.h"
#include "support/compare.h"
#include "util/settingsstore.h"

using namespace orv;

namespace {

QPushButton* ButtonNamed(QWidget& w, const QString& text)
{
    for (QPushButton* b : w.findChildren<QPushButton*>())
        if (b->text() == text) return b;
    return nullptr;
}

TEST(HorizonEditor, DragSetsTheProfileAndUndoRestoresIt)
{
    CMemorySettingsStore settings;
    CAppContext app(settings);
    HorizonProfile flat{};
    HorizonProfile shown{};
    int applied = 0;
    CHorizonEditorDialog dialog(app, flat, "/tmp/site.hzn", [&](const HorizonProfile& p, const QString&) {
        shown = p;
        ++applied;
    });
    dialog.resize(900, 500);
    dialog.show();
    EXPECT_EQ(QString("Horizon Editor - site.hzn"), dialog.windowTitle());
    auto* plot = dialog.findChild<CHorizonProfileWidget*>();
    ASSERT_NE(nullptr, plot);

    // A drag at 20° of altitude from azimuth 100° to 120°.
    const int y = static_cast<int>(std::lround(plot->YOf(20.0)));
    QTest::mousePress(plot, Qt::LeftButton, {}, QPoint(static_cast<int>(std::lround(plot->XOf(100))), y));
    QTest::mouseMove(plot, QPoint(static_cast<int>(std::lround(plot->XOf(110))), y));
    QTest::mouseMove(plot, QPoint(static_cast<int>(std::lround(plot->XOf(120))), y));
    QTest::mouseRelease(plot, Qt::LeftButton, {}, QPoint(static_cast<int>(std::lround(plot->XOf(120))), y));
    for (int k = 100; k <= 120; ++k) EXPECT_EQ(20, dialog.Profile()[k]) << k;
    EXPECT_EQ(0, dialog.Profile()[99]);
    EXPECT_EQ(0, dialog.Profile()[121]);
    EXPECT_GT(applied, 0);
    EXPECT_EQ(dialog.Profile(), shown);
    EXPECT_TRUE(dialog.Modified());
    EXPECT_EQ(QString("Horizon Editor - site.hzn (modified)"), dialog.windowTitle());

    // Typing an altitude at marker A, then flattening A–B across north.
    auto spins = dialog.findChildren<QSpinBox*>();
    ASSERT_GE(spins.size(), 4);
    spins[0]->setValue(350);  // marker A
    spins[1]->setValue(10);   // marker B
    spins[2]->setValue(-5);   // altitude at A
    EXPECT_EQ(-5, dialog.Profile()[350]);
    spins[3]->setValue(12);
    ButtonNamed(dialog, "&Flatten A-B to")->click();
    for (const int k : {350, 355, 0, 5, 10}) EXPECT_EQ(12, dialog.Profile()[k]) << k;
    EXPECT_EQ(0, dialog.Profile()[11]);

    // Undo, one step at a time, back to the flat horizon.
    QPushButton* undo = ButtonNamed(dialog, "&Undo");
    ASSERT_NE(nullptr, undo);
    undo->click();
    EXPECT_EQ(-5, dialog.Profile()[350]);
    undo->click();
    undo->click();
    EXPECT_EQ(flat, dialog.Profile());
    EXPECT_EQ(flat, shown);
}

// Opened from the menu with three maps open, two of them showing the same
// horizon file: an edit reaches both (not only the active one) and leaves
// the third map's own horizon alone, while the check box for rising and
// setting, a setting of the program, reaches every open map.
TEST(HorizonEditor, EveryMapShowingTheHorizonFollowsTheEditor)
{
    const std::string dir = orv::test::MakeTempDir();
    CQtSettingsStore settings{(std::filesystem::path(dir) / "orvane.ini").string()};
    CAppContext context{settings};
    CMainFrame frame{context};
    frame.resize(900, 700);
    frame.show();
    CMapWindow* other = frame.NewMap();
    CMapWindow* first = frame.NewMap();
    CMapWindow* second = frame.NewMap();
    ASSERT_TRUE(other && first && second);
    HorizonProfile trees{};
    trees[45] = 7;
    for (CMapWindow* m : {first, second}) {
        m->Doc().horizon.fileName = "/tmp/garden.hzn";
        m->Doc().horizon.altitudeDeg = trees;
    }
    other->Doc().horizon.fileName = "/tmp/roof.hzn";
    other->Doc().horizon.altitudeDeg[200] = 30;
    ASSERT_EQ(second, frame.ActiveMap());

    QAction* open = nullptr;
    for (QAction* a : frame.findChildren<QAction*>())
        if (a->text() == "&Horizon Editor...") open = a;
    ASSERT_NE(nullptr, open);
    bool edited = false;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<CHorizonEditorDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) return;
        auto spins = dialog->findChildren<QSpinBox*>();
        auto* useForEvents = dialog->findChild<QCheckBox*>();
        if (spins.size() >= 3 && useForEvents != nullptr) {
            spins[0]->setValue(120);  // marker A
            spins[2]->setValue(25);   // altitude at A
            useForEvents->setChecked(!useForEvents->isChecked());
            edited = true;
        }
        dialog->done(0);
    });
    open->trigger();
    ASSERT_TRUE(edited);

    for (CMapWindow* m : {first, second}) {
        EXPECT_EQ(25, m->Doc().horizon.altitudeDeg[120]);
        EXPECT_EQ(7, m->Doc().horizon.altitudeDeg[45]);
        EXPECT_EQ(1, m->Doc().horizon.useForEvents);
    }
    EXPECT_EQ(0, other->Doc().horizon.altitudeDeg[120]);
    EXPECT_EQ(30, other->Doc().horizon.altitudeDeg[200]);
    EXPECT_EQ("/tmp/roof.hzn", other->Doc().horizon.fileName);
    EXPECT_EQ(1, other->Doc().horizon.useForEvents);
}

}  // namespace
