// The result table: cell order for sorting, the text report and the ".tbl"
// data table byte for byte, and their atomic saves.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

#include "support/compare.h"
#include "util/resulttable.h"

namespace orv {
namespace {

using orv::test::ReadFileBytes;


// Two events of a phenomena-style table: a date column, a number column and
// a text column, with a separator row between them.
ResultTable EventTable()
{
    ResultTable t;
    t.title = "Conjunction in RA between Mars and Jupiter";
    t.timeBase = "UT";
    t.columns = {{"Date", "jdUT", "d", CellAlign::Left, "", "YYYYY MMM DD hh:mm",
                  {"The date and time at which the event occurs. ", "This is always in UTC."}},
                 {"Sep", "separationDeg", "deg", CellAlign::Right, "", "", {"The angular separation", ""}},
                 {"Info", "info", "", CellAlign::Left, "", "", {}}};
    t.rows.push_back(ResultRow{{ResultCell::Number(2459938.9, " 2023 Jan 02 09:36"), ResultCell::Number(1.25, "1.3"),
                                "Mars north"}});
    t.rows.push_back(ResultRow{});
    t.rows.push_back(ResultRow{{ResultCell::Number(2460121.5, " 2023 Jul 04 00:00"), ResultCell::Number(10.0, "10.0"),
                                ""}});
    return t;
}

TEST(ResultCells, NumbersByValueTextWithoutCaseEmptiesLast)
{
    // Text order would put "10.0" before "9.5"; the values decide.
    EXPECT_LT(CompareCells(ResultCell::Number(9.5, "9.5"), ResultCell::Number(10.0, "10.0")), 0);
    EXPECT_GT(CompareCells(ResultCell::Number(-1.0, "-1"), ResultCell::Number(-2.0, "-2")), 0);
    EXPECT_EQ(CompareCells(ResultCell::Number(3.0, "3.00"), ResultCell::Number(3.0, "3")), 0);
    EXPECT_LT(CompareCells("alpha Ori", "Beta Ori"), 0);
    EXPECT_LT(CompareCells("Sirius", ResultCell{}), 0);
    EXPECT_GT(CompareCells(ResultCell{}, ResultCell::Number(1.0, "1")), 0);
    EXPECT_LT(CompareCells(ResultCell::Number(1e9, "1e9"),
                           ResultCell::Number(std::numeric_limits<double>::quiet_NaN(), "-")), 0);
    EXPECT_LT(CompareCells(ResultCell::Number(5.0, "5"), "V"), 0);
    EXPECT_EQ(ResultCell("").kind, ResultCell::Kind::Empty);
}

TEST(ResultCells, SortIsStableAndTurnsRound)
{
    ResultTable t;
    t.columns = {{"Mag", "magnitude", "mag", CellAlign::Right, "", "", {}}, {"Star", "designation", "", {}, "", "", {}}};
    for (const auto& [mag, name] : {std::pair{2.0, "a"}, {1.0, "b"}, {2.0, "c"}, {0.5, "d"}})
        t.rows.push_back(ResultRow{{ResultCell::Number(mag, std::to_string(mag)), name}});
    t.rows.push_back(ResultRow{});  // a separator has no place in a sorted list
    EXPECT_EQ(RowsSortedBy(t, 0, SortDirection::Ascending), (std::vector<std::size_t>{3, 1, 0, 2}));
    // Equal keys keep their order both ways, as the star list always did.
    EXPECT_EQ(RowsSortedBy(t, 0, SortDirection::Descending), (std::vector<std::size_t>{0, 2, 1, 3}));
    EXPECT_EQ(RowsSortedBy(t, 1, SortDirection::Descending), (std::vector<std::size_t>{3, 2, 1, 0}));
}

TEST(ResultReport, TitleHeadingsRowsAndLineEnds)
{
    ResultTable t = EventTable();
    EXPECT_EQ(ReportText(t, LineEnding::Lf),
              "Conjunction in RA between Mars and Jupiter\n\n"
              " 2023 Jan 02 09:36\t1.3\tMars north\n"
              "\n"
              " 2023 Jul 04 00:00\t10.0\t\n");
    t.reportHeadings = HeadingLine::Include;
    const std::size_t shown[] = {2, 0};
    EXPECT_EQ(ReportText(t, LineEnding::CrLf, shown),
              "Conjunction in RA between Mars and Jupiter\r\n\r\n"
              "Date\tSep\tInfo\r\n"
              " 2023 Jul 04 00:00\t10.0\t\r\n"
              " 2023 Jan 02 09:36\t1.3\tMars north\r\n");
}

TEST(ResultReport, DataTableForm)
{
    EXPECT_EQ(DataTableText(EventTable()),
              "TABLE\n"
              "TITLE Conjunction in RA between Mars and Jupiter\n"
              "SOURCE Orvane\n"
              "COLUMN 1 18 Date\n"
              "COLHELP The date and time at which the event occurs. \n"
              "COLHELP This is always in UTC.\n"
              "COLUMN 2 4 Sep\n"
              "COLHELP The angular separation\n"
              "COLHELP\n"
              "COLUMN 3 10 Info\n"
              "DATE 1 YYYYY MMM DD hh:mm\n"
              "TIMEBASE UT\n"
              " 2023 Jan 02 09:36\t1.3\tMars north\n"
              " 2023 Jul 04 00:00\t10.0\t\n"
              "END\n");
    // Widths count characters, not the bytes of UTF-8.
    ResultTable t;
    t.columns = {{"Alt", "altitudeDeg", "deg", CellAlign::Right, "", "", {}}};
    t.rows.push_back(ResultRow{{ResultCell::Number(45.0, "45.0\xC2\xB0")}});
    EXPECT_NE(DataTableText(t).find("COLUMN 1 5 Alt\n"), std::string::npos);
}

TEST(ResultReport, SavesReplaceAtomicallyAndNameTheFileOnFailure)
{
    const std::string dir = orv::test::MakeTempDir();
    const ResultTable t = EventTable();
    const std::string report = dir + "/events.txt", data = dir + "/events.tbl";
    std::ofstream(report) << "an older report, longer than the new one ..........................................";
    EXPECT_FALSE(SaveReport(t, report).has_value());
    EXPECT_EQ(ReadFileBytes(report), ReportText(t, LineEnding::Lf));
    EXPECT_FALSE(SaveDataTable(t, data).has_value());
    EXPECT_EQ(ReadFileBytes(data), DataTableText(t));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir), std::filesystem::directory_iterator{}), 2)
        << "no temporary file is left behind";

    const std::string missing = dir + "/no/such/folder/events";
    EXPECT_EQ(SaveReport(t, missing + ".txt").value_or(""), "Unable to create file\n\"" + missing + ".txt\"");
    EXPECT_EQ(SaveDataTable(t, missing + ".tbl").value_or(""),
              "Unable to create data table file\n\"" + missing + ".tbl\"");
}

TEST(ResultNumbers, ShortestTextReadsBackExactly)
{
    for (const double v : {0.1, 2451545.0, -6.5e-5, 1.0 / 3.0, 2460121.4999999995, 359.99999999999994}) {
        const std::string text = ShortestNumberText(v);
        EXPECT_EQ(std::stod(text), v) << text;
    }
    EXPECT_EQ(ShortestNumberText(2451545.0), "2451545");
    EXPECT_EQ(ShortestNumberText(0.1), "0.1");
    EXPECT_EQ(ShortestNumberText(std::nan("")), "");
}

}  // namespace
}  // namespace orv
