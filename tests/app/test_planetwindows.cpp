// The ephemeris window computes the table the core computes for the body,
// span and step chosen, and fills the shared panel with it (report and data
// table included); a reversed span is refused without a table.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QTimer>

#include <filesystem>

#include "app/appcontext.h"
#include "app/planetwindows.h"
#include "app/qtsettingsstore.h"
#include "app/resulttablepanel.h"
#include "support/compare.h"

using namespace orv;

TEST(EphemerisWindow, ComputesTheMoonsTableForTheSpanChosen)
{
    const std::string dir = orv::test::MakeTempDir();
    CQtSettingsStore settings{(std::filesystem::path(dir) / "orvane.ini").string()};
    CAppContext context{settings};
    CObserverDoc site;
    site.SetSite("Equator", 0.0, 0.0, 0.0);
    site.SetTimeZone(0.0, false);
    CEphemerisDialog dialog(site, context);
    PlanetSpanChoice choice;
    choice.body = kBodyMoon;  // built in: no data files needed
    choice.fromYear = 1992, choice.fromMonth = 4, choice.fromDay = 12;
    choice.toYear = 1992, choice.toMonth = 4, choice.toDay = 14;
    choice.stepDays = 0.5;
    dialog.SetChoice(choice);
    ASSERT_TRUE(dialog.Compute());
    const ResultTable& table = dialog.Panel()->Table();
    ASSERT_EQ(table.rows.size(), 5u);  // 12 Apr 0h … 14 Apr 0h every 12 h
    EXPECT_EQ(table.rows[0].cells[0].text, "12 Apr 1992 00:00");
    EXPECT_EQ(table.rows[1].cells[0].text, "12 Apr 1992 12:00");
    // The same rows as the core's computation.
    EphemerisRequest request;
    request.body = kBodyMoon;
    SpanJulianDates(site, choice, request.jdUTFrom, request.jdUTTo);
    request.stepDays = 0.5;
    std::vector<EphemerisRow> rows;
    ASSERT_EQ(ComputeEphemeris(site, request, rows), EphemerisStatus::Ok);
    ASSERT_EQ(rows.size(), table.rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(table.rows[i].cells[1].value, rows[i].raRad * 57.29577951308232);
    const std::string path = (std::filesystem::path(dir) / "moon.tbl").string();
    ASSERT_TRUE(dialog.Panel()->SaveDataTableTo(QString::fromStdString(path)));
    EXPECT_TRUE(std::filesystem::file_size(path) > 200);

    // A reversed span: the warning is answered and the table stays as it was.
    choice.toDay = 1;
    dialog.SetChoice(choice);
    QTimer::singleShot(0, [] {
        for (QWidget* w : QApplication::topLevelWidgets())
            if (auto* box = qobject_cast<QMessageBox*>(w)) box->accept();
    });
    EXPECT_FALSE(dialog.Compute());
    EXPECT_EQ(dialog.Panel()->Table().rows.size(), 5u);
}
