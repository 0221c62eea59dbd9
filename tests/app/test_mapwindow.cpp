// The map window and main frame as a user meets them, on the offscreen
// platform: redraw debouncing, reopening an open map, saving and reopening.

#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QHeaderView>
#include <QTableView>
#include <QPainter>
#include <QTest>

#include <filesystem>

#include "app/appcontext.h"
#include "app/mainframe.h"
#include "app/mapprint.h"
#include "app/mapwindow.h"
#include "app/visiblestars.h"
#include "app/qtsettingsstore.h"
#include "map/mapdoc.h"
#include "map/mapview.h"
#include "solarsystem/bodypathfile.h"
#include "solarsystem/drawbodypath.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;

namespace {

struct Fixture {
    std::string dir = orv::test::MakeTempDir();
    CQtSettingsStore settings{(std::filesystem::path(dir) / "orvane.ini").string()};
    CAppContext context{settings};
    CMainFrame frame{context};
    Fixture()
    {
        frame.resize(900, 700);
        frame.show();
    }
};

}  // namespace

TEST(MapWindow, ABurstOfRedrawRequestsCausesOneRedraw)
{
    Fixture f;
    CMapWindow* w = f.frame.NewMap();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(w));
    QTest::qWait(250);
    const int before = w->RedrawCount();
    w->RequestRedraw();
    QTest::qWait(40);
    w->RequestRedraw();  // within 100 ms of the first: restarts the timer
    QTest::qWait(40);
    w->RequestRedraw();
    QTest::qWait(300);
    EXPECT_EQ(w->RedrawCount(), before + 1);
}

TEST(MainFrame, OpeningAnOpenMapBringsItsWindowForward)
{
    Fixture f;
    CMapWindow* first = f.frame.NewMap();
    const std::string path = (std::filesystem::path(f.dir) / "Orion.ovm").string();
    first->View().coordinates.SetCentringMode(Centring::RaDec);
    first->CentreOn(83.82 * kRadPerDeg, -5.39 * kRadPerDeg);
    // Written beside the window, which keeps its own (unsaved) identity.
    ASSERT_TRUE(SaveMapFile(first->View(), path, SaveTarget::DefaultMapFile).Ok());

    CMapWindow* opened = f.frame.OpenMap(QString::fromStdString(path));
    ASSERT_NE(opened, nullptr);
    EXPECT_NE(opened, first);
    EXPECT_EQ(opened->Title(), QStringLiteral("Map1"));  // the title stored in the file
    f.frame.NewMap();  // another window becomes active
    CMapWindow* again = f.frame.OpenMap(QString::fromStdString(path));
    EXPECT_EQ(again, opened);
    EXPECT_EQ(f.frame.ActiveMap(), opened);
    EXPECT_EQ(f.frame.Maps().size(), 3);
    EXPECT_NEAR(opened->View().coordinates.CentreRaJ2000Rad(), 83.82 * kRadPerDeg, 1e-9);
}

TEST(MapWindow, PlanetPathsAreSavedBesideTheMapAndComeBackWithIt)
{
    Fixture f;
    CMapWindow* w = f.frame.NewMap();
    const std::string path = (std::filesystem::path(f.dir) / "Mars2027.ovm").string();
    BodyPath mars;
    mars.body = kBodyMars;
    mars.tickStepDays = 5.0;
    mars.points = {{2461400.5, 2.1, 0.3, -1.2, true}, {2461401.5, 2.11, 0.301, -1.21, false}};
    w->Renderer().FindLayer<CBodyPathLayer>()->Add(mars);
    w->Doc().pathName = path;
    ASSERT_TRUE(w->Save());
    ASSERT_TRUE(std::filesystem::exists(BodyPathsFilePath(path)));

    CMapWindow* opened = f.frame.OpenMap(QString::fromStdString(path));
    ASSERT_NE(opened, nullptr);
    if (opened == w) {  // the frame brought the same window forward: open a fresh one
        CMapWindow fresh(f.context);
        ASSERT_TRUE(fresh.LoadFromFile(QString::fromStdString(path)).Ok());
        const auto& paths = fresh.Renderer().FindLayer<CBodyPathLayer>()->Paths();
        ASSERT_EQ(paths.size(), 1u);
        EXPECT_EQ(paths[0].points[1].raJ2000Rad, 2.11);
    } else {
        const auto& paths = opened->Renderer().FindLayer<CBodyPathLayer>()->Paths();
        ASSERT_EQ(paths.size(), 1u);
        EXPECT_EQ(paths[0].body, kBodyMars);
        EXPECT_EQ(paths[0].points[1].raJ2000Rad, 2.11);
    }

    // Without paths the sidecar goes with the next save.
    w->Renderer().FindLayer<CBodyPathLayer>()->Clear();
    ASSERT_TRUE(w->Save());
    EXPECT_FALSE(std::filesystem::exists(BodyPathsFilePath(path)));
}

TEST(MainFrame, ABadFileOpensNoWindow)
{
    Fixture f;
    const std::string path = (std::filesystem::path(f.dir) / "bad.ovm").string();
    {
        QFile file(QString::fromStdString(path));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("Not a map at all");
    }
    // The message box would wait for the user; answer it as soon as it shows.
    QTimer::singleShot(200, [] {
        for (QWidget* w : QApplication::topLevelWidgets())
            if (w->inherits("QMessageBox")) w->close();
    });
    EXPECT_EQ(f.frame.OpenMap(QString::fromStdString(path)), nullptr);
    EXPECT_TRUE(f.frame.Maps().isEmpty());
}

TEST(MapWindow, ZoomingMovesThroughTheLevels)
{
    Fixture f;
    CMapWindow* w = f.frame.NewMap();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(w));
    w->GoToLevel(0);
    EXPECT_EQ(w->View().Level(), 0);
    EXPECT_EQ(w->LevelText(), QStringLiteral("Lvl 1"));
    w->ZoomIn();  // level steps by default
    EXPECT_EQ(w->View().Level(), 1);
    EXPECT_DOUBLE_EQ(w->View().coordinates.FieldDeg(), 45.0);
    w->View().coordinates.SetZoomLocked(false);
    w->ZoomBy(100.0);
    EXPECT_EQ(w->View().Level(), 7);  // 0.45°: level 8 (30′) is the narrowest still wide enough
    EXPECT_TRUE(w->IsModified());
}

// The list of visible stars: the chart's stars brightest first, sorted by a
// click on a heading and turned round by a second click, column widths kept
// in the settings, a double click centring the chart on the star, and the
// saved listing in the order shown. Needs the built star catalogue.
TEST(VisibleStars, SortWidthsCentringAndListing)
{
    Fixture f;
    CMapWindow* w = f.frame.NewMap();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(w));
    w->View().coordinates.SetCentringMode(Centring::RaDec);
    w->CentreOn(83.82 * kRadPerDeg, -5.39 * kRadPerDeg);  // Orion's sword
    w->GoToLevel(3);
    w->RedrawNow();

    auto* dialog = new CVisibleStarsDialog(*w, f.context);
    const std::vector<VisibleStarRow> rows = dialog->Rows();
    if (rows.size() < 3) {
        delete dialog;
        GTEST_SKIP() << "the star catalogue is not built (run tools/build-data.sh build/data)";
    }
    ASSERT_EQ(dialog->Table()->model()->rowCount(), static_cast<int>(rows.size()));
    for (std::size_t i = 1; i < rows.size(); ++i) EXPECT_LE(rows[i - 1].magCenti, rows[i].magCenti);

    QHeaderView* header = dialog->Table()->horizontalHeader();
    emit header->sectionClicked(0);
    const std::vector<VisibleStarRow> byName = dialog->Rows();
    emit header->sectionClicked(0);
    EXPECT_EQ(dialog->Rows().front().designation, byName.back().designation);
    EXPECT_EQ(dialog->Table()->model()->index(0, 0).data().toString().toStdString(), byName.back().designation);

    // A star away from the centre: the chart moves to it and marks it.
    const VisibleStarRow star = dialog->Rows()[1];
    emit dialog->Table()->doubleClicked(dialog->Table()->model()->index(1, 0));
    EXPECT_NEAR(w->View().coordinates.CentreRaJ2000Rad(), star.raJ2000Rad, 1e-9);
    EXPECT_NEAR(w->View().coordinates.CentreDecJ2000Rad(), star.decJ2000Rad, 1e-9);
    ASSERT_TRUE(w->Target().has_value());
    EXPECT_EQ(w->Target()->label, star.designation);

    const std::string path = (std::filesystem::path(f.dir) / "stars.txt").string();
    ASSERT_TRUE(dialog->SaveTo(QString::fromStdString(path)));
    QFile saved(QString::fromStdString(path));
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(saved.readAll());
    EXPECT_TRUE(text.startsWith(QStringLiteral("Stars Visible on the Map\n\n")));
    EXPECT_EQ(text.count(QLatin1Char('\n')), static_cast<qsizetype>(rows.size()) + 3);  // title, blank, headings

    dialog->Table()->setColumnWidth(0, 251);
    dialog->reject();
    delete dialog;
    EXPECT_EQ(f.settings.GetInt("Stars", "StarListCol0", 0), 251);
    CVisibleStarsDialog again(*w, f.context);
    EXPECT_EQ(again.Table()->columnWidth(0), 251);
}

// A printed page: white paper inside the margins, the chart framed in black,
// and the key's discs sized like the chart's own. At 100 dpi the largest
// disc ("StarRadBright" 0.0625 inch) is 6 pixels in radius, so the key's
// first disc, at the level's bright end, must be 13 pixels across; the
// default 0.5 inch margins are 50 pixels of untouched paper.
TEST(PrintedPage, MarginsFrameAndKey)
{
    Fixture f;
    CMapWindow* w = f.frame.NewMap();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(w));
    w->View().coordinates.SetCentringMode(Centring::RaDec);
    w->CentreOn(83.82 * kRadPerDeg, -5.39 * kRadPerDeg);
    w->GoToLevel(3);
    const CMapViewSettings& s = w->View().settings;
    ASSERT_EQ(s.printLeftMargin, 500);
    ASSERT_EQ(s.printBottomMargin, 500);

    QImage page(850, 1100, QImage::Format_RGB32);  // US Letter at 100 dpi
    page.fill(Qt::white);
    {
        QPainter painter(&page);
        DrawMapPage(painter, page.rect(), 100.0, 100.0, *w, f.context);
    }
    auto dark = [&](int x, int y) { return qGray(page.pixel(x, y)) < 128; };
    for (int y = 0; y < 1100; y += 7) {
        EXPECT_FALSE(dark(45, y)) << "left margin, y " << y;
        EXPECT_FALSE(dark(805, y)) << "right margin, y " << y;
    }
    // The frame's left edge runs down the margin line at mid-height.
    EXPECT_TRUE(dark(50, 550) || dark(51, 550));

    // The key is the band just above the status line: find its first disc
    // and measure it across its middle row.
    int widest = 0;
    for (int y = 900; y < 1050; ++y) {
        int x = 52;
        while (x < 400 && !dark(x, y)) ++x;
        int run = 0;
        while (x + run < 400 && dark(x + run, y)) ++run;
        if (run < 30) widest = std::max(widest, run);  // not the frame's bottom edge
    }
    EXPECT_NEAR(widest, 13, 1);
}
