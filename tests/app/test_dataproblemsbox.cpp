// Damaged files named to the user when they are opened, not at the chart's
// next redraw: an eclipse table cut short met by the browsing list, an
// overlay of another kind met by a map as it opens and by the overlay list
// as it is made active. Each problem is told once.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QTableWidget>
#include <QTest>
#include <QTimer>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "app/appcontext.h"
#include "app/eclipsewindows.h"
#include "app/mapwindow.h"
#include "app/overlaydialog.h"
#include "eclipse/eclipsetables.h"
#include "overlay/overlayfile.h"
#include "support/compare.h"
#include "util/dataproblems.h"
#include "util/settingsstore.h"

using namespace orv;
namespace fs = std::filesystem;

namespace {

// Closes every message box that opens while it lives, keeping the texts.
class CBoxCatcher {
public:
    CBoxCatcher()
    {
        m_timer.setInterval(10);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            for (QWidget* w : QApplication::topLevelWidgets()) {
                auto* box = qobject_cast<QMessageBox*>(w);
                if (box == nullptr || !box->isVisible()) continue;
                texts << box->text();
                box->close();
            }
        });
        m_timer.start();
    }
    // Runs the event loop for a while (the boxes are queued).
    void Settle() { QTest::qWait(150); }
    QStringList texts;

private:
    QTimer m_timer;
};

// Points the data folder at `folder` for the life of the object.
class CDataFolder {
public:
    explicit CDataFolder(const std::string& folder)
    {
        if (const char* old = std::getenv("ORVANE_DATA")) m_old = old;
        ::setenv("ORVANE_DATA", folder.c_str(), 1);
        ForgetDataFileProblems();
    }
    ~CDataFolder()
    {
        if (m_old) ::setenv("ORVANE_DATA", m_old->c_str(), 1);
        else ::unsetenv("ORVANE_DATA");
        ForgetDataFileProblems();
    }

private:
    std::optional<std::string> m_old;
};

void Write(const fs::path& p, const std::string& bytes)
{
    fs::create_directories(p.parent_path());
    std::ofstream(p, std::ios::binary) << bytes;
}

const char* const kForeign = "<html><body>404 Not Found</body></html>\n";

}  // namespace

TEST(DataProblemsBox, AnEclipseTableCutShortIsNamedWhenTheListOpens)
{
    const fs::path dir = test::MakeTempDir();
    const CDataFolder data(dir.string());
    // Thirteen bytes: not a whole number of 8-byte records.
    const fs::path table = dir / "data" / "lunar5.dat";
    Write(table, "0123456789abc");
    CMemorySettingsStore settings;
    settings.SetInt("LunarEclipse", "FileNumber", 5);
    CAppContext context{settings};
    CBoxCatcher boxes;
    auto* window = new CEclipseBrowseWindow(context, EclipseKind::Lunar);
    boxes.Settle();
    ASSERT_EQ(1, boxes.texts.size()) << boxes.texts.join("\n---\n").toStdString();
    EXPECT_TRUE(boxes.texts[0].contains(QString::fromStdString(table.string())));
    EXPECT_TRUE(boxes.texts[0].contains("13 bytes"));
    EXPECT_TRUE(TakeDataFileProblems().empty());  // told, so not told again at a redraw
    window->close();
}

TEST(DataProblemsBox, AForeignOverlayIsNamedWhenTheMapOpensBeforeAnyRedraw)
{
    const fs::path dir = test::MakeTempDir();
    const CDataFolder data(dir.string());
    const fs::path overlay = dir / "web-page.ovl";
    Write(overlay, kForeign);
    CMemorySettingsStore settings;
    CAppContext context{settings};
    OverlayListEntry e;
    e.active = 1;
    e.path = overlay.string();
    context.Overlays().entries = {e};
    CBoxCatcher boxes;
    CMapWindow window(context);  // never shown, so never painted
    window.InitNew(1);
    boxes.Settle();
    EXPECT_EQ(0, window.RedrawCount());
    ASSERT_EQ(1, boxes.texts.size()) << boxes.texts.join("\n---\n").toStdString();
    EXPECT_TRUE(boxes.texts[0].contains(QString::fromStdString(overlay.string())));
    EXPECT_TRUE(boxes.texts[0].contains("none of its lines is an overlay command"));

    // A second map of the same overlay: the problem was told once.
    CMapWindow again(context);
    again.InitNew(2);
    boxes.Settle();
    EXPECT_EQ(1, boxes.texts.size());
}

TEST(DataProblemsBox, AnOverlayWithBadLinesIsNamedWhenMadeActive)
{
    const fs::path dir = test::MakeTempDir();
    const CDataFolder data(dir.string());
    const fs::path overlay = dir / "typo.ovl";
    Write(overlay, "epoch J2000.0\nmove 5 35 17, -5 23 28\ndraw 5 40 00, -1 56 00\nfrobnicate 1 2 3\n");
    CMemorySettingsStore settings;
    CAppContext context{settings};
    OverlayListEntry e;
    e.active = 0;
    e.path = overlay.string();
    context.Overlays().entries = {e};
    CBoxCatcher boxes;
    COverlayListDialog dialog(context);
    boxes.Settle();
    EXPECT_TRUE(boxes.texts.isEmpty());  // not drawn yet: not read
    auto* table = dialog.findChild<QTableWidget*>();
    ASSERT_NE(table, nullptr);
    table->item(0, 0)->setCheckState(Qt::Checked);
    boxes.Settle();
    ASSERT_EQ(1, boxes.texts.size()) << boxes.texts.join("\n---\n").toStdString();
    EXPECT_TRUE(boxes.texts[0].contains(QString::fromStdString(overlay.string())));
    EXPECT_TRUE(boxes.texts[0].contains("skipped"));
}
