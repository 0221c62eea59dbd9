// The table every computed result is shown in: ground tracks, satellite
// passes, the stars visible on a chart, and later eclipses, phenomena,
// ephemerides and visibility reports.
//
// A table has a title, columns (the heading shown, the key and unit used by
// machine-readable output, alignment, the help lines of a data table) and
// rows of cells. A cell is text, or a number together with the text the
// program shows for it: the window sorts by the number and shows the text,
// the text report writes the text, JSON and CSV write the number. A row
// without cells separates groups (the passes of a pass table).
//
// Two writers live here, both writing their file atomically: the text report
// (the title, a blank line, optionally the headings, then one line a row with
// tab-separated cells) and the data table of the ".tbl" form (a "TABLE" line,
// "TITLE", "SOURCE", a "COLUMN" line with its "COLHELP" lines for each
// column, "DATE" lines for the date columns, "TIMEBASE", the rows, "END";
// docs/table-files.md gives the layout).
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

enum class CellAlign { Left, Right, Centre };

struct ResultColumn {
    std::string heading;            // as shown above the column: "Height (km)"
    std::string key;                // machine-readable name, camelCase with the unit: "heightKm"
    std::string unit;               // "km", "deg", "mag"; empty for text and pure numbers
    CellAlign align = CellAlign::Left;
    std::string widthSample;        // text a window measures the default width on; empty: the widest cell
    std::string datePattern;        // for a date column, how its text reads: "DD MMM YYYY hh:mm"
    std::vector<std::string> help;  // the data table's COLHELP lines, without the "COLHELP " prefix
};

struct ResultCell {
    enum class Kind { Empty, Text, Number };
    Kind kind = Kind::Empty;
    std::string text;   // what is shown and written in reports
    double value = 0.0;  // Number cells: the value in the column's unit

    ResultCell() = default;
    // A text cell; implicit so that a row of texts reads as a list of strings.
    ResultCell(std::string t) : kind(t.empty() ? Kind::Empty : Kind::Text), text(std::move(t)) {}
    ResultCell(const char* t) : ResultCell(std::string(t)) {}
    // A number shown as `shown` (the program's own format for it).
    static ResultCell Number(double value, std::string shown);

    bool IsNumber() const { return kind == Kind::Number; }
    // Compared with a text, a cell is the text it shows.
    friend bool operator==(const ResultCell& cell, std::string_view shown) { return cell.text == shown; }
    friend auto operator<=>(const ResultCell& cell, std::string_view shown)
    {
        return std::string_view(cell.text) <=> shown;
    }
};

struct ResultRow {
    std::vector<ResultCell> cells;  // none: a separator between groups of rows
    bool IsSeparator() const { return cells.empty(); }
};

// Whether the text report carries a line of the column headings after the
// title (the visible-star list does, the satellite tables do not).
enum class HeadingLine { Omit, Include };

enum class LineEnding;
struct ResultTable;

// A text report a table writes in a layout of its own (the phenomena
// search's sections): given the table, the line ending asked for and the
// row order shown.
using ReportWriterFn = std::function<std::string(const ResultTable&, LineEnding, std::span<const std::size_t>)>;

struct ResultTable {
    std::string title;
    std::vector<ResultColumn> columns;
    std::vector<ResultRow> rows;
    HeadingLine reportHeadings = HeadingLine::Omit;
    // The time scale of the date columns, the data table's TIMEBASE: "UT", or
    // a civil time as its offset from UT, "UT-4", "UT+5:30". Empty: none.
    std::string timeBase;
    // Empty: the shared report layout below (ReportText).
    ReportWriterFn reportWriter;

    const ResultCell& Cell(std::size_t row, std::size_t column) const;
};

// Order of two cells of one column: empty cells last, numbers by value,
// numbers before text, text without regard to case. Negative, zero or
// positive.
int CompareCells(const ResultCell& a, const ResultCell& b);

// The rows in the order of a column, stable, separators dropped; the
// direction multiplies every comparison.
enum class SortDirection { Ascending = 1, Descending = -1 };
std::vector<std::size_t> RowsSortedBy(const ResultTable& table, std::size_t column, SortDirection direction);

// A row order as shown by a window: indices into table.rows. Empty: the
// table's own order.
using RowOrder = std::span<const std::size_t>;

enum class LineEnding { Lf, CrLf };

// The text report: the title with two line ends, the headings when the
// table asks for them, then each row's cells joined by tabs (a separator row
// is an empty line).
std::string ReportText(const ResultTable& table, LineEnding ending, RowOrder order = {});

// The ".tbl" data table; separator rows are left out. Line ends "\n".
std::string DataTableText(const ResultTable& table, RowOrder order = {});

// Write them atomically. On failure the message for the user:
// "Unable to create file\n\"<path>\"" and
// "Unable to create data table file\n\"<path>\"".
std::optional<std::string> SaveReport(const ResultTable& table, const std::string& path, RowOrder order = {});
std::optional<std::string> SaveDataTable(const ResultTable& table, const std::string& path, RowOrder order = {});

// A number as machine-readable output writes it: the shortest decimal text
// that reads back to the same double ("0.1", "2451545", "-6.5e-05").
std::string ShortestNumberText(double value);

}  // namespace orv
