// The horizon editor: a drag over the azimuth scale sets the degrees it
// passes to the altitude under the mouse, every change reaches the map at
// once, the title says when the profile is unsaved, and undo steps back.
#include <gtest/gtest.h>

#include <QPushButton>
#include <QSpinBox>
#include <QTest>

#include "app/appcontext.h"
#include "app/horizoneditor.h"
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

}  // namespace
