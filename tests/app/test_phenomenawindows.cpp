// The phenomena window: its checks give the program's messages in order,
// and a search run from the window (on its worker thread) fills the panel
// with the events of the span.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDateEdit>
#include <QDoubleSpinBox>
#include <QTableView>

#include "app/appcontext.h"
#include "app/phenomenawindows.h"
#include "app/resulttablepanel.h"
#include "solarsystem/planets.h"
#include "util/settingsstore.h"

using namespace orv;

TEST(PhenomenaWindows, ValidationMessages)
{
    PhenomenaChoice c;
    EXPECT_EQ(ValidatePhenomenaChoice(c), "You must select the type of event to search for.");
    c.kind = static_cast<int>(PhenomenonKind::ConjunctionLongitude);
    c.durationDays = 0.0;
    EXPECT_EQ(ValidatePhenomenaChoice(c), "You must specify a positive duration for the search");
    c.durationDays = 30.0;
    c.intervalHours = -1.0;
    EXPECT_EQ(ValidatePhenomenaChoice(c), "You must specify a positive calculation interval.");
    c.intervalHours = 1.0;
    EXPECT_EQ(ValidatePhenomenaChoice(c), "Please select a planet name from the list.");
    c.first = {kBodyMoon, ""};
    c.second = {kPhenomenaChoiceStar, ""};
    EXPECT_EQ(ValidatePhenomenaChoice(c), "Please enter a star name.");
    c.second = {kPhenomenaChoiceDeepSky, ""};
    EXPECT_EQ(ValidatePhenomenaChoice(c), "Please enter a deep sky object name.");
    c.second = {kPhenomenaChoiceAsteroid, ""};
    EXPECT_EQ(ValidatePhenomenaChoice(c), "Please select an asteroid name from the list.");
    c.second = {kPhenomenaChoiceComet, ""};
    EXPECT_EQ(ValidatePhenomenaChoice(c), "Please select a comet name from the list.");
    c.second = {kPhenomenaChoiceStar, "Regulus"};
    EXPECT_FALSE(ValidatePhenomenaChoice(c).has_value());
    // Equinoxes need no bodies at all.
    c = PhenomenaChoice{};
    c.kind = static_cast<int>(PhenomenonKind::EquinoxesSolstices);
    EXPECT_FALSE(ValidatePhenomenaChoice(c).has_value());
}

TEST(PhenomenaWindows, SearchFillsThePanel)
{
    CPlanets planets;
    CObserverDoc site;
    double ra = 0.0, dec = 0.0;
    if (planets.ApparentPosition(site, kBodySun, 2451545.0, ra, dec, PlaceCentre::Geocentric) != PositionStatus::Ok)
        GTEST_SKIP() << "no planetary ephemeris in the data folder; tools/build-data.sh builds it";
    CMemorySettingsStore settings;
    CAppContext context{settings};
    CPhenomenaDialog dialog(site, context);
    auto* kind = dialog.findChildren<QComboBox*>().front();
    kind->setCurrentIndex(kind->findData(static_cast<int>(PhenomenonKind::MoonPhases)));
    const auto spins = dialog.findChildren<QDoubleSpinBox*>();
    ASSERT_EQ(spins.size(), 2);
    spins[0]->setValue(60.0);
    ASSERT_TRUE(dialog.Search());
    // About two lunations: eight phases, give or take one at either end.
    const int rows = dialog.Panel()->View()->model()->rowCount();
    EXPECT_GE(rows, 7);
    EXPECT_LE(rows, 9);
    EXPECT_EQ(dialog.Panel()->Table().title, "Phases of the Moon");
}

TEST(PhenomenaWindows, AllPlanetsAgainstTheSun)
{
    CPlanets planets;
    CObserverDoc site;
    double ra = 0.0, dec = 0.0;
    if (planets.ApparentPosition(site, kBodySun, 2451545.0, ra, dec, PlaceCentre::Geocentric) != PositionStatus::Ok)
        GTEST_SKIP() << "no planetary ephemeris in the data folder; tools/build-data.sh builds it";
    CMemorySettingsStore settings;
    CAppContext context{settings};
    CPhenomenaDialog dialog(site, context);
    const auto boxes = dialog.findChildren<QComboBox*>();
    ASSERT_EQ(boxes.size(), 3);
    boxes[0]->setCurrentIndex(boxes[0]->findData(static_cast<int>(PhenomenonKind::OppositionLongitude)));
    boxes[1]->setCurrentIndex(boxes[1]->findData(kPhenomenaChoiceAllPlanets));
    boxes[2]->setCurrentIndex(boxes[2]->findData(kBodySun));
    dialog.findChild<QDateEdit*>()->setDate(QDate(2023, 1, 1));
    ASSERT_TRUE(dialog.Search());
    // One section a planet that comes to opposition within the year, a
    // bodies column naming the pair, and the report's sections titled.
    const ResultTable& t = dialog.Panel()->Table();
    EXPECT_EQ(t.title, "Opposition in longitude between");
    ASSERT_GE(t.columns.size(), 2u);
    EXPECT_EQ(t.columns[1].heading, "Bodies");
    const std::string report = ReportText(t, LineEnding::Lf);
    EXPECT_NE(report.find("Opposition in longitude between Jupiter and Sun\n\n"), std::string::npos) << report;
}
