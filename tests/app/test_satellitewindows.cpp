// The satellite windows as a user meets them, on the offscreen platform: the
// Satellites menu, the list window, the elements box, the ground-track and
// pass sheets (their tables against the satellite core's, Save and Copy,
// the settings written back on OK only, the epoch-age and point-count
// boxes) and passes plotted on a map.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDateEdit>
#include <QFile>
#include <QHeaderView>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <filesystem>
#include <fstream>

#include "app/appcontext.h"
#include "app/mainframe.h"
#include "app/mapwindow.h"
#include "app/qtsettingsstore.h"
#include "app/satellitesheets.h"
#include "app/satellitewindows.h"
#include "map/mapdoc.h"
#include "satellite/describe.h"
#include "satellite/sattime.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using orv::test::kSame;
using orv::test::kSecondsFromDays;

namespace {

// The ISS element set of 2019 June 5 (day 156.509) printed in satellite.js's
// documentation, and XM-3, a geostationary radio satellite at 85° W, from
// Vallado's SGP4 verification set (2006 June 25).
constexpr const char* kIss =
    "ISS (ZARYA)\n"
    "1 25544U 98067A   19156.50900463  .00003075  00000-0  59442-4 0  9992\n"
    "2 25544  51.6433  59.2583 0008217  16.4489 347.6017 15.51174618173442\n";
constexpr const char* kXm3 =
    "XM-3\n"
    "1 28626U 05008A   06176.46683397 -.00000205  00000-0  10000-3 0  2190\n"
    "2 28626   0.0019 286.9433 0000335  13.7918  55.6504  1.00270176  4891\n";

// Philadelphia (40° N, 75° W), Eastern Daylight Time (UT−4).
CObserverDoc Philadelphia(int year, int month, int day, int hour, int minute)
{
    CObserverDoc o;
    o.SetSite("Philadelphia", 40.0 * kRadPerDeg, -75.0 * kRadPerDeg, 0.0);
    o.SetTimeZone(-5.0, true);
    o.SetLocalTime(CivilDateTime{year, month, day, hour, minute, 0.0});
    return o;
}

// Answers every message box that opens while it lives with `button`,
// keeping the texts (the boxes would otherwise wait for a user).
class CBoxAnswerer {
public:
    explicit CBoxAnswerer(QMessageBox::StandardButton button) : m_button(button)
    {
        m_timer.setInterval(20);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            for (QWidget* w : QApplication::topLevelWidgets()) {
                auto* box = qobject_cast<QMessageBox*>(w);
                if (box == nullptr || !box->isVisible()) continue;
                texts << box->text();
                if (QAbstractButton* b = box->button(m_button))
                    b->click();
                else
                    box->close();
            }
        });
        m_timer.start();
    }
    QStringList texts;

private:
    QMessageBox::StandardButton m_button;
    QTimer m_timer;
};

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
    QString Write(const char* name, const char* text) const
    {
        const std::string path = (std::filesystem::path(dir) / name).string();
        std::ofstream(path) << text;
        return QString::fromStdString(path);
    }
    CSatelliteCommands& Commands() { return *frame.findChild<CSatelliteCommands*>(); }
    CSatelliteDoc& Doc() { return Commands().Doc(); }
    std::string Path(const char* name) const { return (std::filesystem::path(dir) / name).string(); }
};

// The table as shown: rows, columns and cell texts of the view's model.
int Rows(const QTableView* view) { return view->model()->rowCount(); }
int Columns(const QTableView* view) { return view->model()->columnCount(); }

QString CellText(const QTableView* view, int row, int column)
{
    return view->model()->index(row, column).data().toString();
}

// Every cell of the table page against the core's table.
void ExpectSameTable(const QTableView* view, const sat::SatelliteTable& table)
{
    ASSERT_EQ(Rows(view), static_cast<int>(table.rows.size()));
    ASSERT_EQ(Columns(view), static_cast<int>(table.columns.size()));
    for (int c = 0; c < Columns(view); ++c)
        EXPECT_EQ(view->model()->headerData(c, Qt::Horizontal).toString().toStdString(), table.columns[static_cast<std::size_t>(c)].heading);
    for (int r = 0; r < Rows(view); ++r) {
        const auto& cells = table.rows[static_cast<std::size_t>(r)].cells;
        for (int c = 0; c < Columns(view); ++c)
            EXPECT_EQ(CellText(view, r, c).toStdString(),
                      static_cast<std::size_t>(c) < cells.size() ? cells[static_cast<std::size_t>(c)] : std::string());
    }
}

// Seconds of the day of a "%02d %s %4d %02d:%02d:%02d" time cell.
int SecondsOfDay(const QString& cell)
{
    const QStringList hms = cell.section(QLatin1Char(' '), 3).split(QLatin1Char(':'));
    return hms[0].toInt() * 3600 + hms[1].toInt() * 60 + (hms.size() > 2 ? hms[2].toInt() : 0);
}

}  // namespace

TEST(SatelliteMenu, OffersTheSatelliteCommands)
{
    Fixture f;
    QMenu* menu = f.Commands().Menu();
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(f.frame.menuBar()->actions().contains(menu->menuAction()));
    QStringList texts;
    for (QAction* a : menu->actions())
        if (!a->isSeparator()) texts << a->text().remove(QLatin1Char('&'));
    EXPECT_EQ(texts, (QStringList{"Open elements...", "Satellite List", "Orbital Elements", "Ground Track...",
                                  "Passes...", "Clear plotted passes"}));
}

TEST(SatelliteList, ShowsTheFileAndLoadsItAgainAtStart)
{
    Fixture f;
    const QString tle = f.Write("sample.tle", kIss);
    EXPECT_TRUE(QtFileFilter(kElementFileFilter) ==
                QStringLiteral("Text Files (*.txt);;TLE Files (*.TLE);;All Files (*.*)"));
    ASSERT_TRUE(f.Doc().LoadFile(tle));
    f.Commands().ShowList();
    CSatelliteListWindow* list = f.Commands().ListWindow();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->windowTitle(), QStringLiteral("Satellite List - sample.tle"));
    ASSERT_EQ(list->Tree()->topLevelItemCount(), 1);
    EXPECT_EQ(list->Tree()->headerItem()->text(0), QStringLiteral("Name"));
    EXPECT_EQ(list->Tree()->headerItem()->text(1), QStringLiteral("Period"));
    EXPECT_EQ(list->Tree()->topLevelItem(0)->text(0), QStringLiteral("ISS (ZARYA)"));
    // 1440 / 15.51174618 rev/day = 92.833 min from the file's (Kozai) mean
    // motion; the anomalistic period of the Brouwer mean motion is some 0.01
    // min longer.
    EXPECT_NEAR_UNIT(92.833, list->Tree()->topLevelItem(0)->text(1).toDouble(), 0.02, kSame);
    EXPECT_EQ(list->SelectedIndex(), -1);

    // The file is remembered and read when the satellite object is next created.
    EXPECT_EQ(f.settings.GetString("EarthSat", "TLEFile", ""), tle.toStdString());
    CSatelliteDoc again(f.settings);
    EXPECT_EQ(again.List().Size(), 1u);
    // A file that cannot be opened leaves the list as it was.
    EXPECT_FALSE(f.Doc().LoadFile(QString::fromStdString(f.Path("missing.tle"))));
    EXPECT_EQ(f.Doc().List().Size(), 1u);
    EXPECT_EQ(f.settings.GetString("EarthSat", "TLEFile", ""), tle.toStdString());
}

TEST(SatelliteList, AskingWithoutASelectionSaysSo)
{
    Fixture f;
    ASSERT_TRUE(f.Doc().LoadFile(f.Write("sample.tle", kIss)));
    {
        CBoxAnswerer answer(QMessageBox::Ok);
        f.Commands().GroundTrack();
        f.Commands().ShowElements();
        f.Commands().Passes();  // the stored choice is the selected satellite
        EXPECT_EQ(answer.texts, QStringList(3, QStringLiteral("Please select a satellite from the list.")));
    }
    f.Commands().ListWindow()->Select(0);
    EXPECT_EQ(f.Commands().ListWindow()->SelectedIndex(), 0);
}

TEST(ElementsBox, ShowsAndCopiesTheDescription)
{
    Fixture f;
    ASSERT_TRUE(f.Doc().LoadFile(f.Write("sample.tle", kIss)));
    const sat::SatelliteRecord& iss = f.Doc().List()[0];
    CSatelliteElementsDialog box(iss);
    EXPECT_EQ(box.windowTitle(), QStringLiteral("Satellite Orbital Elements"));
    const QStringList lines = box.Text().split(QLatin1Char('\n'));
    const std::vector<std::string> expected = sat::DescribeElements(iss);
    ASSERT_EQ(lines.size(), static_cast<qsizetype>(expected.size()));
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(lines[static_cast<qsizetype>(i)].toStdString(), expected[i]);
    EXPECT_EQ(lines[1], QStringLiteral("NORAD catalog number: 25544"));
    EXPECT_EQ(lines[3], QStringLiteral("Epoch of element set: 5-Jun-2019 12:12:58 UT"));  // day 156.50900463
    box.Copy();
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), sat::ElementDescriptionClipboardText(iss));
    EXPECT_TRUE(QGuiApplication::clipboard()->text().contains(QStringLiteral("\r\n")));
}

// The pass table page shows the core's table for the same search, cell by
// cell; its culmination agrees with satellite.js; Save writes the heading
// with "%s\n\n" and Copy with "%s\r\n\r\n".
TEST(PassSheet, TableSavedAndCopiedInTheCoreFormats)
{
    Fixture f;
    ASSERT_TRUE(f.Doc().LoadFile(f.Write("sample.tle", kIss)));
    const CObserverDoc site = Philadelphia(2019, 6, 5, 21, 5);
    CSatellitePassSheet sheet(f.context, f.Doc(), 0, site, {});
    sheet.SelectPage()->DurationEdit()->setValue(3);
    sheet.ShowPage(CSatellitePassSheet::kTablePage);
    CSatelliteTablePanel* panel = sheet.TablePage()->Panel();
    EXPECT_EQ(panel->Table().title, "Visible passes of ISS (ZARYA) 5 Jun 2019 to 8 Jun 2019");

    sat::CEarthSatSettings settings;
    settings.passDurationDays = 3;
    const double midday = sat::LocalMiddayJd(2019, 6, 5, site.LocalOffsetHours());
    const sat::PassSearchResult core =
        sat::SearchSatellitePasses(f.Doc().List()[0], 0, sat::SiteOfObserver(site), midday, settings, {});
    const sat::SatelliteTable expected =
        sat::MakePassTable(f.Doc().List().Records(), core, settings, sat::PassScope::SelectedSatellite, -4.0);
    ExpectSameTable(panel->View(), expected);
    EXPECT_EQ(sheet.TablePage()->Status(), QStringLiteral("3 passes."));
    ASSERT_GE(Rows(panel->View()), 3);
    // satellite.js 7.1.0 puts the culmination of the 5 June evening pass at
    // JD 2458640.54610905 (01:06:23.4 UT = 21:06:23 EDT,
    // tests/data/satellite/iss_pass_satellitejs.txt); the summary's highest
    // point is one of the points 15 s apart.
    const double culminationSec = (2458640.54610905 - 2458639.5) * 86400.0 - 4 * 3600.0;  // from 0h EDT, 5 June
    EXPECT_NEAR_UNIT(culminationSec, SecondsOfDay(CellText(panel->View(), 1, 0)), 15.0, kSame);
    EXPECT_TRUE(CellText(panel->View(), 1, 1).endsWith(QStringLiteral("°")));

    const std::string saved = f.Path("passes.txt");
    ASSERT_TRUE(panel->SaveTo(QString::fromStdString(saved)));
    std::ifstream in(saved, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(text, sat::TableText(expected, sat::LineEnding::Lf));
    EXPECT_EQ(text.rfind(expected.title + "\n\n", 0), 0u);
    EXPECT_NE(text.find("05 Jun 2019 21:01:00\t"), std::string::npos);

    panel->Copy();
    const std::string copied = QGuiApplication::clipboard()->text().toStdString();
    EXPECT_EQ(copied, sat::TableText(expected, sat::LineEnding::CrLf));
    EXPECT_EQ(copied.rfind(expected.title + "\r\n\r\n", 0), 0u);

    {
        CBoxAnswerer answer(QMessageBox::Ok);
        EXPECT_FALSE(panel->SaveTo(QStringLiteral("/nonexistent-folder/passes.txt")));
        EXPECT_EQ(answer.texts, QStringList{QStringLiteral("Unable to create file\n\"/nonexistent-folder/passes.txt\"")});
    }
    EXPECT_FALSE(sheet.TablePage()->grab().isNull());
}

// The rows of the pass table belong to their passes, with the blank rows
// between passes belonging to none, in both displays.
TEST(PassSheet, RowsBelongToTheirPasses)
{
    sat::CSatelliteList list;
    list.LoadFromText(kIss);
    const CObserverDoc site = Philadelphia(2019, 6, 5, 21, 5);
    sat::CEarthSatSettings settings;
    settings.passDurationDays = 3;
    settings.passVisibility = sat::PassVisibility::AllPasses;
    const sat::PassSearchResult result = sat::SearchSatellitePasses(
        list[0], 0, sat::SiteOfObserver(site), sat::LocalMiddayJd(2019, 6, 5, -4.0), settings, {});
    ASSERT_GT(result.passes.size(), 10u);
    for (sat::PassDisplay display : {sat::PassDisplay::Summary, sat::PassDisplay::Full}) {
        settings.passDisplay = display;
        const sat::SatelliteTable table =
            sat::MakePassTable(list.Records(), result, settings, sat::PassScope::SelectedSatellite, -4.0);
        const std::vector<int> owners = PassTableRowOwners(result, settings);
        ASSERT_EQ(owners.size(), table.rows.size());
        for (std::size_t r = 0; r < owners.size(); ++r) {
            EXPECT_EQ(owners[r] < 0, table.rows[r].cells.empty());
            if (owners[r] < 0) continue;
            const sat::SatellitePass& pass = result.passes[static_cast<std::size_t>(owners[r])];
            // The row's time lies within its pass.
            const std::string first = sat::FormatPassTime(pass.points.front().jdUT, -4.0);
            const std::string last = sat::FormatPassTime(pass.points.back().jdUT, -4.0);
            EXPECT_GE(table.rows[r].cells[0], first);
            EXPECT_LE(table.rows[r].cells[0], last);
        }
    }
}

// The sheet's settings go back to "EarthSat" when it closes with OK, and
// only then; the column layouts go with them as "%d %d".
TEST(PassSheet, SettingsGoBackOnOkOnly)
{
    Fixture f;
    ASSERT_TRUE(f.Doc().LoadFile(f.Write("sample.tle", kIss)));
    const CObserverDoc site = Philadelphia(2019, 6, 5, 21, 5);
    {
        CSatellitePassSheet sheet(f.context, f.Doc(), 0, site, {});
        sheet.SelectPage()->DurationEdit()->setValue(4);
        sheet.SelectPage()->VisibleCheck()->setChecked(false);
        sheet.reject();
    }
    EXPECT_FALSE(f.settings.ReadInt("EarthSat", "PassDuration").has_value());
    EXPECT_EQ(f.Doc().Settings().passDurationDays, 10);

    CSatellitePassSheet sheet(f.context, f.Doc(), 0, site, {});
    CSatellitePassSelectPage* page = sheet.SelectPage();
    page->DurationEdit()->setValue(2);
    page->VisibleCheck()->setChecked(false);
    page->MinAltitudeEdit()->setValue(15);
    page->FullChoice()->setChecked(true);
    page->PositionIntervalEdit()->setValue(30);
    page->LabelIntervalEdit()->setValue(120);
    sheet.ShowPage(CSatellitePassSheet::kTablePage);
    ASSERT_EQ(Columns(sheet.TablePage()->Panel()->View()), 6);
    sheet.TablePage()->Panel()->View()->setColumnWidth(1, 77);
    sheet.accept();

    sat::CEarthSatSettings back;
    back.Load(f.settings);
    EXPECT_EQ(back.passDurationDays, 2);
    EXPECT_EQ(back.passVisibility, sat::PassVisibility::AllPasses);
    EXPECT_EQ(back.passMinAltitude, sat::PassMinimumAltitude::Apply);
    EXPECT_EQ(back.passMinAltitudeDeg, 15);
    EXPECT_EQ(back.passDisplay, sat::PassDisplay::Full);
    EXPECT_EQ(back.passPositionIntervalSec, 30);
    EXPECT_EQ(back.passLabelIntervalSec, 120);
    EXPECT_EQ(back.passScope, sat::PassScope::SelectedSatellite);
    // Column 1 of the one-satellite table (Altitude) is stored as column 2,
    // its number in the all-satellite table with its leading Satellite column.
    EXPECT_EQ(f.settings.GetString("EarthSat", "PassCol2", ""), "77 2");
    EXPECT_EQ(back.passColumns.size(), 6u);
}

// The ground-track sheet: the table of the core, "+1 Orbit" one period
// later, the map drawn, settings and column layouts back on OK.
TEST(GroundTrackSheet, TableOrbitStepsMapAndSettings)
{
    Fixture f;
    ASSERT_TRUE(f.Doc().LoadFile(f.Write("sample.tle", kIss)));
    const sat::SatelliteRecord& iss = f.Doc().List()[0];
    const CObserverDoc site = Philadelphia(2019, 6, 5, 21, 5);
    CSatelliteGndTrkSheet sheet(f.context, f.Doc(), 0, site);
    sheet.SettingsPage()->IntervalEdit()->setValue(2);
    sheet.ShowPage(CSatelliteGndTrkSheet::kTablePage);
    CSatelliteTablePanel* panel = sheet.TablePage()->Panel();

    sat::CEarthSatSettings settings;
    settings.groundTrackIntervalMin = 2;
    const double start = std::round(site.JulianDate() * 1440.0) / 1440.0;
    const sat::SatelliteTable expected =
        sat::MakeGroundTrackTable(iss, sat::ComputeGroundTrack(iss, start, settings, {}), settings, -4.0);
    EXPECT_EQ(panel->Table().title, "Ground track of ISS (ZARYA) 5 Jun 2019 to 5 Jun 2019");
    ExpectSameTable(panel->View(), expected);
    EXPECT_EQ(Rows(panel->View()), 46);  // 90 minutes every 2, both ends
    EXPECT_EQ(CellText(panel->View(), 0, 0), QStringLiteral("05 Jun 2019 21:05"));
    // Over Philadelphia at the start of its evening pass (it culminates at
    // 83° there at 21:06:30).
    EXPECT_TRUE(CellText(panel->View(), 0, 1).startsWith(QStringLiteral("42°")));

    // One period (92.84 min) later.
    const double before = sheet.SettingsPage()->StartJdUT();
    for (QPushButton* b : sheet.TablePage()->findChildren<QPushButton*>())
        if (b->text() == QStringLiteral("+1 Orbit")) b->click();
    EXPECT_NEAR_UNIT(iss.periodMinutes, (sheet.SettingsPage()->StartJdUT() - before) * 1440.0, 0.5, kSame);
    EXPECT_EQ(CellText(panel->View(), 0, 0), QStringLiteral("05 Jun 2019 22:38"));

    sheet.ShowPage(CSatelliteGndTrkSheet::kMapPage);
    const QImage map = sheet.MapPage()->Render(QSize(720, 400));
    EXPECT_NE(map.pixel(360, 200), map.pixel(5, 5));  // something is drawn
    sheet.MapPage()->Rotate(+2);
    EXPECT_DOUBLE_EQ(sheet.MapPage()->CentralLongitudeDeg(), 30.0);

    sheet.SettingsPage()->OrbitChoice()->setChecked(true);
    panel->View()->setColumnWidth(0, 150);
    sheet.accept();
    sat::CEarthSatSettings back;
    back.Load(f.settings);
    EXPECT_EQ(back.groundTrackDuration, sat::GroundTrackDuration::OneOrbit);
    EXPECT_EQ(back.groundTrackIntervalMin, 2);
    EXPECT_EQ(f.settings.GetString("EarthSat", "GndTrkCol0", ""), "150 0");
}

// Elements two months old: the Yes/No question with its exact text; No
// abandons the search, Yes goes on.
TEST(PassSheet, EpochAgeQuestionAbandonsOnNo)
{
    Fixture f;
    ASSERT_TRUE(f.Doc().LoadFile(f.Write("sample.tle", kIss)));
    // Midday EDT of 5 August is 16h UT: 61.16 days after the epoch (12:13 UT, 5 June).
    const CObserverDoc site = Philadelphia(2019, 8, 5, 21, 0);
    CSatellitePassSheet sheet(f.context, f.Doc(), 0, site, {});
    sheet.SelectPage()->DurationEdit()->setValue(1);
    sheet.SelectPage()->VisibleCheck()->setChecked(false);
    {
        CBoxAnswerer answer(QMessageBox::No);
        sheet.ShowPage(CSatellitePassSheet::kTablePage);
        ASSERT_EQ(answer.texts.size(), 1);
        EXPECT_EQ(answer.texts[0].toStdString(), sat::EpochAgeQuestion(61));
        EXPECT_TRUE(answer.texts[0].startsWith(QStringLiteral(
            "The date for which Orvane is about to calculate\na satellite position is 61 days from the \"epoch\"\n")));
    }
    EXPECT_EQ(sheet.Result().passes.size(), 0u);
    EXPECT_EQ(Rows(sheet.TablePage()->Panel()->View()), 0);
    {
        CBoxAnswerer answer(QMessageBox::Yes);
        sheet.Compute();
        EXPECT_EQ(answer.texts.size(), 1);
    }
    EXPECT_GT(sheet.Result().passes.size(), 0u);
}

// A geostationary satellite is above the horizon for the whole day: its one
// pass has some 5760 points at 15 s and is reported instead of shown.
TEST(PassSheet, APassOfTooManyPointsIsReported)
{
    Fixture f;
    ASSERT_TRUE(f.Doc().LoadFile(f.Write("geo.tle", kXm3)));
    const CObserverDoc site = Philadelphia(2006, 6, 25, 12, 0);
    CSatellitePassSheet sheet(f.context, f.Doc(), 0, site, {});
    sheet.SelectPage()->DurationEdit()->setValue(1);
    sheet.SelectPage()->VisibleCheck()->setChecked(false);
    CBoxAnswerer answer(QMessageBox::Ok);
    sheet.ShowPage(CSatellitePassSheet::kTablePage);
    EXPECT_EQ(answer.texts, QStringList{QString::fromStdString(sat::TooManyPointsMessage("XM-3"))});
    ASSERT_EQ(sheet.Result().passes.size(), 1u);
    EXPECT_GT(sheet.Result().passes[0].pointCount, sat::kMaxPassPoints);
    EXPECT_EQ(Rows(sheet.TablePage()->Panel()->View()), 0);
}

// Passes chosen in the table go to the map they are plotted on, and to that
// map only; "Clear plotted passes" takes them off again.
TEST(PassSheet, SelectedPassesArePlottedOnTheirMap)
{
    Fixture f;
    ASSERT_TRUE(f.Doc().LoadFile(f.Write("sample.tle", kIss)));
    CMapWindow* other = f.frame.NewMap();
    CMapWindow* map = f.frame.NewMap();
    ASSERT_EQ(f.frame.ActiveMap(), map);
    map->Doc().observer = Philadelphia(2019, 6, 5, 21, 5);

    CSatellitePassSheet sheet(f.context, f.Doc(), 0, map->Doc().observer, [map](sat::PlottedPassList passes) {
        map->SetPlottedPasses(std::move(passes));
        return true;
    });
    sheet.SelectPage()->DurationEdit()->setValue(3);
    sheet.ShowPage(CSatellitePassSheet::kTablePage);
    ASSERT_GE(sheet.Result().passes.size(), 3u);
    QTableView* view = sheet.TablePage()->Panel()->View();
    view->selectRow(1);  // the highest point of the first pass
    sheet.TablePage()->PlotButton()->click();

    ASSERT_EQ(map->PlottedPasses().passes.size(), 1u);
    EXPECT_EQ(sheet.TablePage()->Status(), QStringLiteral("1 pass plotted on the star chart."));
    const sat::PlottedPass& plotted = map->PlottedPasses().passes[0];
    EXPECT_EQ(plotted.satelliteName, "ISS (ZARYA)");
    EXPECT_EQ(plotted.points.size(), sheet.Result().passes[0].points.size());
    EXPECT_NEAR_UNIT(sheet.Result().passes[0].points[0].jdUT, plotted.points[0].jdUT, 1e-6, kSecondsFromDays);
    EXPECT_EQ(map->PlottedPasses().labelIntervalSec, 60);
    // The chart's pass layer holds them and draws: on this map, not on the other.
    const auto* mapLayer = map->Renderer().FindLayer<sat::CPlottedPassLayer>();
    ASSERT_NE(mapLayer, nullptr);
    EXPECT_EQ(&mapLayer->Passes(), &map->PlottedPasses());
    EXPECT_TRUE(mapLayer->ShownAt(map->View(), map->View().Level()));
    EXPECT_TRUE(other->PlottedPasses().passes.empty());
    EXPECT_FALSE(other->Renderer().FindLayer<sat::CPlottedPassLayer>()->ShownAt(other->View(), 0));

    // No row chosen: every pass shown goes.
    view->clearSelection();
    sheet.PlotSelected();
    EXPECT_EQ(map->PlottedPasses().passes.size(), sheet.Result().passes.size());

    f.Commands().ClearPlottedPasses();
    EXPECT_TRUE(map->PlottedPasses().passes.empty());
}
