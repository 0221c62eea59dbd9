#include "cli/tableprinter.h"

#include <QJsonArray>

#include <algorithm>
#include <ostream>

namespace orv::cli {

namespace {

QString Q(const std::string& s) { return QString::fromStdString(s); }

std::size_t TextWidth(const std::string& s)
{
    std::size_t n = 0;
    for (const unsigned char c : s)
        if ((c & 0xC0) != 0x80) ++n;
    return n;
}

std::string CsvField(const ResultCell& cell)
{
    if (cell.IsNumber()) return ShortestNumberText(cell.value);
    if (cell.text.find_first_of(",\"\r\n") == std::string::npos) return cell.text;
    std::string quoted = "\"";
    for (const char c : cell.text) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    return quoted + '"';
}

}  // namespace

void PrintTableText(std::ostream& out, const ResultTable& table)
{
    out << table.title << "\n\n";
    std::vector<std::size_t> widths(table.columns.size(), 0);
    for (std::size_t c = 0; c < table.columns.size(); ++c) widths[c] = TextWidth(table.columns[c].heading);
    for (const ResultRow& row : table.rows)
        for (std::size_t c = 0; c < row.cells.size() && c < widths.size(); ++c)
            widths[c] = std::max(widths[c], TextWidth(row.cells[c].text));
    const auto line = [&](const std::vector<std::string>& cells) {
        std::string text;
        for (std::size_t c = 0; c < cells.size(); ++c) {
            if (c > 0) text += "  ";
            text += cells[c];
            if (c + 1 < cells.size() && c < widths.size()) text.append(widths[c] - TextWidth(cells[c]), ' ');
        }
        out << text << '\n';
    };
    std::vector<std::string> headings;
    for (const ResultColumn& column : table.columns) headings.push_back(column.heading);
    line(headings);
    for (const ResultRow& row : table.rows) {
        std::vector<std::string> cells;
        for (const ResultCell& cell : row.cells) cells.push_back(cell.text);
        line(cells);
    }
}

QJsonObject TableJson(const ResultTable& table)
{
    QJsonArray columns, rows;
    for (const ResultColumn& column : table.columns) {
        QJsonObject c{{"key", Q(column.key)}, {"heading", Q(column.heading)}};
        if (!column.unit.empty()) c["unit"] = Q(column.unit);
        columns.append(c);
    }
    for (const ResultRow& row : table.rows) {
        if (row.IsSeparator()) continue;
        QJsonObject o;
        for (std::size_t c = 0; c < row.cells.size() && c < table.columns.size(); ++c) {
            const ResultCell& cell = row.cells[c];
            const QString key = Q(table.columns[c].key);
            if (cell.IsNumber())
                o[key] = cell.value;
            else if (cell.kind == ResultCell::Kind::Text)
                o[key] = Q(cell.text);
        }
        rows.append(o);
    }
    QJsonObject out{{"title", Q(table.title)}, {"columns", columns}, {"rows", rows}};
    if (!table.timeBase.empty()) out["timeBase"] = Q(table.timeBase);
    return out;
}

void PrintTableCsv(std::ostream& out, const ResultTable& table)
{
    for (std::size_t c = 0; c < table.columns.size(); ++c) out << (c ? "," : "") << table.columns[c].key;
    out << '\n';
    for (const ResultRow& row : table.rows) {
        if (row.IsSeparator()) continue;
        for (std::size_t c = 0; c < table.columns.size(); ++c)
            out << (c ? "," : "") << CsvField(c < row.cells.size() ? row.cells[c] : ResultCell{});
        out << '\n';
    }
}

void PrintTable(Context& ctx, const ResultTable& table, const QJsonObject& extra)
{
    if (ctx.json) {
        QJsonObject out = TableJson(table);
        for (auto it = extra.begin(); it != extra.end(); ++it) out[it.key()] = it.value();
        PrintJson(ctx.out, out);
    } else if (ctx.args.Has("csv")) {
        PrintTableCsv(ctx.out, table);
    } else {
        PrintTableText(ctx.out, table);
    }
}

}  // namespace orv::cli
