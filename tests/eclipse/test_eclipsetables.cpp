// The table files and the search over them: file numbering, the record
// layout, the scan across a file boundary, the display option and the
// dialog's checks. The tables here are written from our own computation of
// a few years, into a scratch data folder.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "eclipse/eclipsefinder.h"
#include "eclipse/eclipsegeometry.h"
#include "eclipse/eclipsesearch.h"
#include "eclipse/eclipsetables.h"
#include "support/compare.h"
#include "util/datapath.h"
#include "util/settingsstore.h"

namespace orv {
namespace {

TEST(EclipseTables, FileNumberOfAStartYear)
{
    const std::pair<int, int> cases[] = {{-1999, 1}, {-1000, 1}, {-999, 2}, {0, 2},   {1, 3},
                                         {1000, 3},  {1001, 4},  {2000, 4}, {2001, 5}, {3000, 5}};
    for (const auto& [year, number] : cases) EXPECT_EQ(number, EclipseFileNumber(year)) << year;
    EXPECT_EQ("data\\solar3.dat", EclipseFileName(EclipseKind::Solar, 3));
    EXPECT_EQ("data\\lunar5.dat", EclipseFileName(EclipseKind::Lunar, 5));
}

TEST(EclipseTables, RecordLayoutAndTexts)
{
    EclipseRecord r;
    r.year = -584;  // 585 BC
    r.month = 5;
    r.day = 28;
    r.hour = 16;
    r.minute = 7;
    r.type = 'T';
    r.extra = 107;
    std::uint8_t bytes[kEclipseRecordBytes];
    EncodeEclipseRecord(r, bytes);
    // Little-endian signed year first: −584 = 0xFDB8.
    EXPECT_EQ(0xB8, bytes[0]);
    EXPECT_EQ(0xFD, bytes[1]);
    EXPECT_EQ('T', bytes[6]);
    const EclipseRecord back = DecodeEclipseRecord(bytes);
    EXPECT_EQ(r.year, back.year);
    EXPECT_EQ(r.minute, back.minute);
    EXPECT_EQ(107, back.extra);
    EXPECT_EQ(" 585BC May 28", BrowseDateText(r));
    EXPECT_EQ("585 BC May 28 16:07", ResultDateText(r));
    r.year = 0;
    EXPECT_EQ("   1BC May 28", BrowseDateText(r));
    r.year = 2024;
    EXPECT_EQ("2024 May 28", BrowseDateText(r));
    EXPECT_EQ("2024 AD May 28 16:07", ResultDateText(r));
    EXPECT_EQ("Hybrid Solar", EclipseTypeText(EclipseKind::Solar, 'H'));
    EXPECT_EQ("Penumbral Lunar", EclipseTypeText(EclipseKind::Lunar, 'N'));
    EXPECT_EQ("", EclipseTypeText(EclipseKind::Lunar, 'A'));
    EXPECT_EQ("Annular", EclipseTypeShortText(EclipseKind::Solar, 'A'));
    EXPECT_EQ("00h 04m 28s", FormatEclipseDuration(268.4));
}

TEST(EclipseSearch, Validation)
{
    EclipseSearchSettings s;
    s.startYear = 2000;
    s.endYear = 2010;
    EXPECT_FALSE(ValidateEclipseSearch(s));
    s.solar = s.lunar = false;
    EXPECT_EQ("You must select at least one of the solar\nor lunar eclipse search options.", ValidateEclipseSearch(s));
    s.lunar = true;
    s.endYear = 3001;
    EXPECT_EQ("Please enter an end year between 2000 BC and 3000 AD.", ValidateEclipseSearch(s));
    s.endYear = 2000;
    EXPECT_EQ("The end year must be after the start year.", ValidateEclipseSearch(s));
    s.endYear = 2010;
    EXPECT_EQ(11, EclipseSearchProgressRange(s));
    s.solar = true;
    EXPECT_EQ(22, EclipseSearchProgressRange(s));
}

TEST(EclipseSearch, SettingsRoundTrip)
{
    CMemorySettingsStore store;
    EclipseSearchSettings s;
    s.startYear = -500;
    s.endYear = 100;
    s.lunar = false;
    s.displayOption = 2;
    s.Save(store);
    EclipseSearchSettings back;
    back.Load(store);
    EXPECT_EQ(-500, back.startYear);
    EXPECT_EQ(100, back.endYear);
    EXPECT_TRUE(back.solar);
    EXPECT_FALSE(back.lunar);
    EXPECT_EQ(2, back.displayOption);
    EclipseBrowsePosition p;
    p.Load(store, EclipseKind::Solar);
    EXPECT_EQ(5, p.fileNumber);  // default
    p.fileNumber = 2;
    p.lineNumber = 40;
    p.Save(store, EclipseKind::Lunar);
    EclipseBrowsePosition q;
    q.Load(store, EclipseKind::Lunar);
    EXPECT_EQ(2, q.fileNumber);
    EXPECT_EQ(40, q.lineNumber);
}

TEST(EclipseSearch, ScanCrossesFileBoundary)
{
    SunMoonPlaces probe;
    if (!SunMoonAt(2451545.0, probe)) GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath() << ")";
    // Tables of 998–1003 only (files 3 and 4), in a scratch data folder.
    const EclipseList list = FindEclipses(998, 1003, EclipseKinds::Both);
    ASSERT_FALSE(list.events.empty());
    const std::string folder = test::MakeTempDir();
    ASSERT_FALSE(WriteEclipseTables(folder, list.events));
    const char* previous = std::getenv("ORVANE_DATA");
    const std::string saved = previous ? previous : "";
    setenv("ORVANE_DATA", folder.c_str(), 1);

    EclipseSearchSettings s;
    s.startYear = 999;
    s.endYear = 1002;
    int lastProgress = 0;
    const std::string scratch = folder + "/EclipseSearch.dat";
    const EclipseSearchOutcome all = RunEclipseSearch(
        s, {0.9, 0.0, 0.0}, EclipseVisibility::Anywhere, [&](int done) { lastProgress = done; return true; }, scratch);
    std::size_t expected = 0;
    bool partialSolar = false;
    for (const EclipseEvent& e : list.events) {
        const EclipseRecord r = RecordFromEvent(e);
        if (r.year >= 999 && r.year <= 1002) {
            ++expected;
            partialSolar |= e.kind == EclipseKind::Solar && e.type == 'P';
        }
    }
    EXPECT_EQ(expected, all.results.size());
    EXPECT_EQ(8, lastProgress);  // both kinds: twice the four years
    EXPECT_EQ(expected * kEclipseRecordBytes, std::filesystem::file_size(scratch));
    bool sawFile4 = false;
    for (const auto& r : all.results) sawFile4 |= r.record.year >= 1001;
    EXPECT_TRUE(sawFile4);
    ASSERT_TRUE(partialSolar) << "the span should hold a partial solar eclipse for the next check";

    s.displayOption = kEclipseDisplayNoPartialSolar;
    const EclipseSearchOutcome noPartial = RunEclipseSearch(s, {0.9, 0.0, 0.0}, EclipseVisibility::Anywhere, {}, {});
    for (const auto& r : noPartial.results) EXPECT_FALSE(r.kind == EclipseKind::Solar && r.record.type == 'P');
    EXPECT_LT(noPartial.results.size(), all.results.size());

    // Cancel at the first year change.
    const EclipseSearchOutcome cancelled =
        RunEclipseSearch(s, {0.9, 0.0, 0.0}, EclipseVisibility::Anywhere, [](int) { return false; }, {});
    EXPECT_TRUE(cancelled.cancelled);

    if (previous)
        setenv("ORVANE_DATA", saved.c_str(), 1);
    else
        unsetenv("ORVANE_DATA");
}

}  // namespace
}  // namespace orv
