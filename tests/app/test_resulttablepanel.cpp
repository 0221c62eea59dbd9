// The result-table panel: a heading click sorts numbers by value, Save, Copy
// and the data table follow the order shown, layouts go back under their
// column numbers, and a computation reporting progress can be cancelled
// while the window stays usable.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include <filesystem>
#include <tuple>

#include "app/appcontext.h"
#include "app/qtsettingsstore.h"
#include "app/resulttablepanel.h"
#include "support/compare.h"

namespace orv {
namespace {

using orv::test::ReadFileBytes;

// Magnitudes whose text order (−1.46, 0.03, 10.2, 9.5) is not their order.
ResultTable Magnitudes()
{
    ResultTable t;
    t.title = "Stars";
    t.columns = {{"Star", "designation", "", CellAlign::Left, "", "", {}},
                 {"Mag", "magnitude", "mag", CellAlign::Right, "", "", {}}};
    for (const auto& [name, mag, text] : {std::tuple{"Vega", 0.03, "0.03"}, {"faint", 10.2, "10.20"},
                                          {"Sirius", -1.46, "-1.46"}, {"medium", 9.5, "9.50"}})
        t.rows.push_back(ResultRow{{name, ResultCell::Number(mag, text)}});
    return t;
}

struct PanelFixture {
    std::string dir = orv::test::MakeTempDir();
    CQtSettingsStore settings{(std::filesystem::path(dir) / "orvane.ini").string()};
    CAppContext context{settings};
    CResultTablePanel panel{context, CResultTablePanel::Sorting::ByColumn, CResultTablePanel::Selection::Single,
                            CResultTablePanel::Title::Shown};
};

TEST(ResultTablePanel, HeadingSortsByValueAndSavesFollowTheOrderShown)
{
    PanelFixture f;
    f.panel.SetTable(Magnitudes());
    EXPECT_EQ(f.panel.ShownOrder(), (std::vector<std::size_t>{0, 1, 2, 3})) << "unsorted until a heading is clicked";
    // What a click on the heading does.
    f.panel.View()->horizontalHeader()->setSortIndicator(1, Qt::AscendingOrder);
    EXPECT_EQ(f.panel.ShownOrder(), (std::vector<std::size_t>{2, 0, 3, 1}));
    EXPECT_EQ(f.panel.View()->model()->index(3, 0).data().toString(), QStringLiteral("faint"));

    const std::string report = f.dir + "/stars.txt", table = f.dir + "/stars.tbl";
    ASSERT_TRUE(f.panel.SaveTo(QString::fromStdString(report)));
    EXPECT_EQ(ReadFileBytes(report), "Stars\n\nSirius\t-1.46\nVega\t0.03\nmedium\t9.50\nfaint\t10.20\n");
    ASSERT_TRUE(f.panel.SaveDataTableTo(QString::fromStdString(table)));
    EXPECT_NE(ReadFileBytes(table).find("Sirius\t-1.46\nVega\t0.03\nmedium\t9.50\nfaint\t10.20\nEND\n"), std::string::npos);
    f.panel.Copy();
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(),
              "Stars\r\n\r\nSirius\t-1.46\r\nVega\t0.03\r\nmedium\t9.50\r\nfaint\t10.20\r\n");

    // A double click names the table's row, not the view's.
    std::vector<int> activated;
    QObject::connect(&f.panel, &CResultTablePanel::RowActivated, [&](int row) { activated.push_back(row); });
    emit f.panel.View()->doubleClicked(f.panel.View()->model()->index(0, 0));
    EXPECT_EQ(activated, std::vector<int>{2});
}

TEST(ResultTablePanel, LayoutsGoBackUnderTheirColumnNumbers)
{
    PanelFixture f;
    // A table without the leading column of its wider form: its columns are
    // stored one number up.
    f.panel.SetTable(Magnitudes(), {{1, {123, 2}}, {2, {77, 1}}}, 1);
    EXPECT_EQ(f.panel.View()->columnWidth(0), 123);
    EXPECT_EQ(f.panel.View()->columnWidth(1), 77);
    EXPECT_EQ(f.panel.View()->horizontalHeader()->visualIndex(1), 0) << "the magnitude column was moved first";
    f.panel.View()->setColumnWidth(1, 90);
    CResultTablePanel::Layouts back;
    f.panel.StoreLayouts(back, 1);
    EXPECT_EQ(back, (CResultTablePanel::Layouts{{1, {123, 2}}, {2, {90, 1}}}));
}

TEST(ResultTablePanel, ProgressCanBeCancelledAndLocksTheButtons)
{
    PanelFixture f;
    f.panel.SetTable(Magnitudes());
    f.panel.show();
    const ProgressFn progress = f.panel.BeginProgress(QStringLiteral("Searching..."));
    EXPECT_FALSE(f.panel.SaveButton()->isEnabled());
    QPushButton* cancel = nullptr;
    for (QPushButton* b : f.panel.findChildren<QPushButton*>())
        if (b->text() == QStringLiteral("Cancel")) cancel = b;
    ASSERT_NE(cancel, nullptr);
    EXPECT_TRUE(cancel->isVisible());
    EXPECT_EQ(progress(0.1), ProgressAnswer::Continue);
    // The user's click arrives while the computation runs: events are
    // handled when it reports (at most every 50 ms).
    QTimer::singleShot(0, cancel, &QPushButton::click);
    ProgressAnswer answer = ProgressAnswer::Continue;
    for (int i = 0; i < 100 && answer == ProgressAnswer::Continue; ++i) {
        QTest::qWait(10);
        answer = progress(0.2 + i / 1000.0);
    }
    EXPECT_EQ(answer, ProgressAnswer::Cancel);
    f.panel.EndProgress();
    EXPECT_TRUE(f.panel.SaveButton()->isEnabled());
    EXPECT_FALSE(cancel->isVisible());
}

}  // namespace
}  // namespace orv
