#include "util/resulttable.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <numeric>

#include "util/atomicfile.h"

namespace orv {

namespace {

int Sign(double d) { return d < 0.0 ? -1 : d > 0.0 ? 1 : 0; }

int CompareNoCase(std::string_view a, std::string_view b)
{
    const std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        const int ca = std::tolower(static_cast<unsigned char>(a[i]));
        const int cb = std::tolower(static_cast<unsigned char>(b[i]));
        if (ca != cb) return ca < cb ? -1 : 1;
    }
    return Sign(static_cast<double>(a.size()) - static_cast<double>(b.size()));
}

// Every row index in the table's order, or the order given.
std::vector<std::size_t> Order(const ResultTable& table, RowOrder order)
{
    if (!order.empty()) return {order.begin(), order.end()};
    std::vector<std::size_t> all(table.rows.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

void AppendRow(std::string& out, const ResultRow& row, const char* eol)
{
    for (std::size_t c = 0; c < row.cells.size(); ++c) {
        if (c > 0) out += '\t';
        out += row.cells[c].text;
    }
    out += eol;
}

std::optional<std::string> WriteText(const std::string& path, const std::string& text, const char* failure)
{
    const AtomicWriteResult written = WriteFileAtomically(
        path, std::span<const std::uint8_t>(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    if (!written.ok) return std::string(failure) + "\n\"" + path + "\"";
    return std::nullopt;
}

// Characters, not bytes: the cells hold UTF-8 ("°").
std::size_t TextWidth(std::string_view s)
{
    std::size_t n = 0;
    for (const unsigned char c : s)
        if ((c & 0xC0) != 0x80) ++n;
    return n;
}

}  // namespace

ResultCell ResultCell::Number(double value, std::string shown)
{
    ResultCell cell;
    cell.kind = Kind::Number;
    cell.value = value;
    cell.text = std::move(shown);
    return cell;
}

const ResultCell& ResultTable::Cell(std::size_t row, std::size_t column) const
{
    static const ResultCell kEmpty;
    if (row >= rows.size() || column >= rows[row].cells.size()) return kEmpty;
    return rows[row].cells[column];
}

int CompareCells(const ResultCell& a, const ResultCell& b)
{
    const bool aEmpty = a.kind == ResultCell::Kind::Empty, bEmpty = b.kind == ResultCell::Kind::Empty;
    if (aEmpty || bEmpty) return static_cast<int>(aEmpty) - static_cast<int>(bEmpty);
    if (a.IsNumber() && b.IsNumber()) {
        // A value that is not a number sorts after every number.
        const bool aNan = std::isnan(a.value), bNan = std::isnan(b.value);
        if (aNan || bNan) return static_cast<int>(aNan) - static_cast<int>(bNan);
        return Sign(a.value - b.value);
    }
    if (a.IsNumber() != b.IsNumber()) return a.IsNumber() ? -1 : 1;
    return CompareNoCase(a.text, b.text);
}

std::vector<std::size_t> RowsSortedBy(const ResultTable& table, std::size_t column, SortDirection direction)
{
    std::vector<std::size_t> order;
    for (std::size_t r = 0; r < table.rows.size(); ++r)
        if (!table.rows[r].IsSeparator()) order.push_back(r);
    const int factor = static_cast<int>(direction);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return factor * CompareCells(table.Cell(a, column), table.Cell(b, column)) < 0;
    });
    return order;
}

std::string ReportText(const ResultTable& table, LineEnding ending, RowOrder order)
{
    if (table.reportWriter) return table.reportWriter(table, ending, order);
    const char* eol = ending == LineEnding::CrLf ? "\r\n" : "\n";
    std::string text = table.title + eol + eol;
    if (table.reportHeadings == HeadingLine::Include) {
        ResultRow headings;
        for (const ResultColumn& c : table.columns) headings.cells.emplace_back(c.heading);
        AppendRow(text, headings, eol);
    }
    for (const std::size_t r : Order(table, order))
        if (r < table.rows.size()) AppendRow(text, table.rows[r], eol);
    return text;
}

std::string DataTableText(const ResultTable& table, RowOrder order)
{
    const std::vector<std::size_t> rows = Order(table, order);
    std::string text = "TABLE\nTITLE " + table.title + "\nSOURCE Orvane\n";
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        const ResultColumn& column = table.columns[c];
        // The width a reader needs for the column: its widest cell or heading.
        std::size_t width = TextWidth(column.heading);
        for (const std::size_t r : rows) width = std::max(width, TextWidth(table.Cell(r, c).text));
        text += "COLUMN " + std::to_string(c + 1) + ' ' + std::to_string(width) + ' ' + column.heading + '\n';
        for (const std::string& help : column.help) text += help.empty() ? "COLHELP\n" : "COLHELP " + help + '\n';
    }
    for (std::size_t c = 0; c < table.columns.size(); ++c)
        if (!table.columns[c].datePattern.empty())
            text += "DATE " + std::to_string(c + 1) + ' ' + table.columns[c].datePattern + '\n';
    if (!table.timeBase.empty()) text += "TIMEBASE " + table.timeBase + '\n';
    for (const std::size_t r : rows)
        if (r < table.rows.size() && !table.rows[r].IsSeparator()) AppendRow(text, table.rows[r], "\n");
    text += "END\n";
    return text;
}

std::optional<std::string> SaveReport(const ResultTable& table, const std::string& path, RowOrder order)
{
    return WriteText(path, ReportText(table, LineEnding::Lf, order), "Unable to create file");
}

std::optional<std::string> SaveDataTable(const ResultTable& table, const std::string& path, RowOrder order)
{
    return WriteText(path, DataTableText(table, order), "Unable to create data table file");
}

std::string ShortestNumberText(double value)
{
    if (!std::isfinite(value)) return {};
    char buf[32];
    const auto [end, ec] = std::to_chars(buf, buf + sizeof buf, value);
    if (ec != std::errc{}) return {};
    return std::string(buf, end);
}

}  // namespace orv
