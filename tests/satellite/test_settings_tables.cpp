// The EarthSat settings object and the table and report formats.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "satellite/sattables.h"
#include "satellite/sattime.h"
#include "support/compare.h"
#include "util/angles.h"
#include "util/settingsstore.h"

namespace orv::sat {
namespace {

TEST(EarthSatSettings, DefaultsWhenAbsent)
{
    CMemorySettingsStore store;
    CEarthSatSettings s;
    s.passDurationDays = 3;
    s.Load(store);
    EXPECT_EQ(s.tleFile, "");
    EXPECT_EQ(s.groundTrackDuration, GroundTrackDuration::Minutes);
    EXPECT_EQ(s.groundTrackLengthMin, 90);
    EXPECT_EQ(s.groundTrackIntervalMin, 1);
    EXPECT_EQ(s.passDurationDays, 10);
    EXPECT_EQ(s.passPositionIntervalSec, 15);
    EXPECT_EQ(s.passVisibility, PassVisibility::VisibleOnly);
    EXPECT_EQ(s.passMinAltitude, PassMinimumAltitude::Apply);
    EXPECT_EQ(s.passMinAltitudeDeg, 10);
    EXPECT_EQ(s.passScope, PassScope::SelectedSatellite);
    EXPECT_EQ(s.passDisplay, PassDisplay::Summary);
    EXPECT_EQ(s.passLabelIntervalSec, 60);
    EXPECT_EQ(s.speedUnit, SpeedUnit::KilometresPerSecond);
    EXPECT_EQ(s.distanceUnit, DistanceUnit::Kilometres);
    EXPECT_EQ(s.epochAgeLimitDays, 30);
    EXPECT_EQ(s.epochAgeWarning, EpochAgeWarning::On);
}

TEST(EarthSatSettings, RoundTripThroughTheStoreWithItsKeys)
{
    CMemorySettingsStore store;
    CEarthSatSettings s;
    s.tleFile = "/data/visual.txt";
    s.groundTrackDuration = GroundTrackDuration::OneOrbit;
    s.groundTrackLengthMin = 200;
    s.groundTrackIntervalMin = 2;
    s.passDurationDays = 3;
    s.passPositionIntervalSec = 300;
    s.passVisibility = PassVisibility::AllPasses;
    s.passMinAltitude = PassMinimumAltitude::Ignore;
    s.passMinAltitudeDeg = 25;
    s.passScope = PassScope::AllSatellites;
    s.passDisplay = PassDisplay::Full;
    s.passLabelIntervalSec = 30;
    s.speedUnit = SpeedUnit::MilesPerHour;
    s.distanceUnit = DistanceUnit::NauticalMiles;
    s.epochAgeLimitDays = 14;
    s.epochAgeWarning = EpochAgeWarning::Off;
    s.groundTrackColumns[0] = {120, 0};
    s.passColumns[3] = {80, 1};
    s.Save(store);
    EXPECT_EQ(store.GetString("EarthSat", "TLEFile", ""), "/data/visual.txt");
    EXPECT_EQ(store.GetInt("EarthSat", "GTDuration", -1), 1);
    EXPECT_EQ(store.GetInt("EarthSat", "PassPosInterval", -1), 300);
    EXPECT_EQ(store.GetInt("EarthSat", "SatDistance", -1), 2);
    EXPECT_EQ(store.GetString("EarthSat", "GndTrkCol0", ""), "120 0");
    EXPECT_EQ(store.GetString("EarthSat", "PassCol3", ""), "80 1");
    CEarthSatSettings back;
    back.Load(store);
    EXPECT_EQ(back.tleFile, s.tleFile);
    EXPECT_EQ(back.groundTrackDuration, s.groundTrackDuration);
    EXPECT_EQ(back.groundTrackLengthMin, 200);
    EXPECT_EQ(back.groundTrackIntervalMin, 2);
    EXPECT_EQ(back.passDurationDays, 3);
    EXPECT_EQ(back.passVisibility, PassVisibility::AllPasses);
    EXPECT_EQ(back.passMinAltitude, PassMinimumAltitude::Ignore);
    EXPECT_EQ(back.passMinAltitudeDeg, 25);
    EXPECT_EQ(back.passScope, PassScope::AllSatellites);
    EXPECT_EQ(back.passDisplay, PassDisplay::Full);
    EXPECT_EQ(back.passLabelIntervalSec, 30);
    EXPECT_EQ(back.speedUnit, SpeedUnit::MilesPerHour);
    EXPECT_EQ(back.distanceUnit, DistanceUnit::NauticalMiles);
    EXPECT_EQ(back.epochAgeLimitDays, 14);
    EXPECT_EQ(back.epochAgeWarning, EpochAgeWarning::Off);
    EXPECT_EQ(back.groundTrackColumns, s.groundTrackColumns);
    EXPECT_EQ(back.passColumns, s.passColumns);
    // Out-of-range enumeration values fall back to the defaults.
    store.SetInt("EarthSat", "SatSpeed", 9);
    back.Load(store);
    EXPECT_EQ(back.speedUnit, SpeedUnit::KilometresPerSecond);
}

TEST(Units, SpeedAndDistanceConversions)
{
    // International mile 1.609344 km, nautical mile 1.852 km.
    EXPECT_DOUBLE_EQ(ConvertSpeed(7.5, SpeedUnit::KilometresPerHour), 27000.0);
    EXPECT_NEAR(ConvertSpeed(1.609344, SpeedUnit::MilesPerSecond), 1.0, 1e-12);
    EXPECT_NEAR(ConvertSpeed(1.609344, SpeedUnit::MilesPerHour), 3600.0, 1e-9);
    EXPECT_NEAR(ConvertDistance(1.852, DistanceUnit::NauticalMiles), 1.0, 1e-12);
    EXPECT_NEAR(ConvertDistance(16.09344, DistanceUnit::Miles), 10.0, 1e-12);
    EXPECT_STREQ(SpeedUnitName(SpeedUnit::MilesPerHour), "mph");
    EXPECT_STREQ(DistanceUnitName(DistanceUnit::NauticalMiles), "nm");
}

TEST(TableFormats, TimesAnglesAndNumbers)
{
    const double jd = JulianDateFromSatCivil(2019, 6, 5, 21, 1, 7.0);
    EXPECT_EQ(FormatTrackTime(jd, 0.0), "05 Jun 2019 21:01");
    EXPECT_EQ(FormatPassTime(jd, 0.0), "05 Jun 2019 21:01:07");
    EXPECT_EQ(FormatPassTime(jd, -4.0), "05 Jun 2019 17:01:07");
    EXPECT_EQ(FormatTitleDate(jd, 5.0), "6 Jun 2019");
    EXPECT_EQ(FormatLatitude(51.4769 * kRadPerDeg), "51\xC2\xB0" "28'37\"N");
    EXPECT_EQ(FormatLatitude(-5.5 * kRadPerDeg), "05\xC2\xB0" "30'00\"S");
    EXPECT_EQ(FormatLongitude(-0.1275 * kRadPerDeg), "000\xC2\xB0" "07'39\"W");
    EXPECT_EQ(FormatLongitude(133.7 * kRadPerDeg), "133\xC2\xB0" "42'00\"E");
    EXPECT_EQ(FormatLatitude(0.0), "00\xC2\xB0" "00'00\"N");
}

TEST(TableText, SaveAndClipboardFormats)
{
    SatelliteTable table;
    table.title = "Passes of ISS (ZARYA) 5 Jun 2019 to 15 Jun 2019";
    table.rows.push_back(TableRow{{"05 Jun 2019 21:01:00", " 0.6\xC2\xB0", "306.6\xC2\xB0", "2338.789", "-6.907"}});
    table.rows.push_back(TableRow{});
    EXPECT_EQ(TableText(table, LineEnding::Lf),
              "Passes of ISS (ZARYA) 5 Jun 2019 to 15 Jun 2019\n\n05 Jun 2019 21:01:00\t 0.6\xC2\xB0\t306.6\xC2\xB0\t"
              "2338.789\t-6.907\n\n");
    EXPECT_EQ(TableText(table, LineEnding::CrLf).substr(0, 51), "Passes of ISS (ZARYA) 5 Jun 2019 to 15 Jun 2019\r\n\r\n");

    const std::string dir = orv::test::MakeTempDir();
    EXPECT_FALSE(SaveTableReport(table, dir + "/report.txt").has_value());
    std::ifstream in(dir + "/report.txt", std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    EXPECT_EQ(text.str(), TableText(table, LineEnding::Lf));
    const auto error = SaveTableReport(table, dir + "/no/such/folder/report.txt");
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(*error, "Unable to create file\n\"" + dir + "/no/such/folder/report.txt\"");
}

TEST(PassTable, SummaryAndFullRows)
{
    SatelliteRecord r;
    r.name = "SAT";
    PassSearchResult result;
    result.startJdUT = 2458640.0;
    result.endJdUT = 2458650.0;
    SatellitePass pass;
    for (int i = 0; i < 5; ++i) {
        PassPoint p;
        p.jdUT = 2458640.5 + i / 1440.0;
        p.elevationRad = (i == 2 ? 45.0 : 5.0 + i) * kRadPerDeg;
        p.azimuthRad = (100.0 + 20 * i) * kRadPerDeg;
        p.rangeKm = 1000.0 + i;
        p.rangeRateKmPerS = -2.5 + i;
        pass.points.push_back(p);
    }
    pass.pointCount = 5;
    pass.maxElevationIndex = 2;
    pass.maxElevationRad = 45.0 * kRadPerDeg;
    result.passes = {pass, pass};
    CEarthSatSettings settings;
    const std::vector<SatelliteRecord> list{r};
    SatelliteTable summary = MakePassTable(list, result, settings, PassScope::SelectedSatellite, 0.0);
    EXPECT_EQ(summary.title, "Visible passes of SAT 5 Jun 2019 to 15 Jun 2019");
    ASSERT_EQ(summary.rows.size(), 7u);  // 3 + separator + 3
    EXPECT_EQ(summary.rows[1].cells[1], "45.0\xC2\xB0");
    EXPECT_EQ(summary.rows[1].cells[2], "140.0\xC2\xB0");
    EXPECT_EQ(summary.rows[0].cells[1], " 5.0\xC2\xB0");
    EXPECT_EQ(summary.rows[0].cells[3], "1000.000");
    EXPECT_TRUE(summary.rows[3].cells.empty());
    settings.passDisplay = PassDisplay::Full;
    settings.passVisibility = PassVisibility::AllPasses;
    settings.distanceUnit = DistanceUnit::Miles;
    SatelliteTable full = MakePassTable(list, result, settings, PassScope::AllSatellites, 0.0);
    EXPECT_EQ(full.title, "Passes 5 Jun 2019 to 15 Jun 2019");
    EXPECT_EQ(full.rows.size(), 11u);
    EXPECT_EQ(full.rows[0].cells[0], "SAT");
    EXPECT_EQ(full.rows[0].cells[4], "621.371");  // 1000 km in miles
}

}  // namespace
}  // namespace orv::sat
