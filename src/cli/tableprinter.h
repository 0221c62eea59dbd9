// The command line's one way of printing a result table (util/resulttable.h):
// aligned text for reading, JSON with --json and CSV with --csv for other
// programs. Every command that lists computed rows prints through here, so
// their output agrees in layout and in key names.
#pragma once

#include <QJsonObject>

#include <iosfwd>

#include "cli/cli.h"
#include "util/resulttable.h"

namespace orv::cli {

// The title, a blank line, the headings and the rows, each column padded to
// its widest cell (in characters) and two spaces apart; a separator row is
// an empty line.
void PrintTableText(std::ostream& out, const ResultTable& table);

// {"title", "timeBase", "columns": [{"key", "heading", "unit"}], "rows":
// [{key: value}]}: numbers as numbers in the column's unit, text as strings,
// empty cells left out; separator rows are left out.
QJsonObject TableJson(const ResultTable& table);

// A header line of the column keys, then one line a row: numbers in full
// precision, text quoted where it holds a comma, a quote or a line end
// (RFC 4180); separator rows are left out. Line ends "\n".
void PrintTableCsv(std::ostream& out, const ResultTable& table);

// The table in the form the options ask for (--json, --csv, else text).
// With --json, `extra` is merged into the object (the command's own facts
// beside the rows: the site, the search period ...).
void PrintTable(Context& ctx, const ResultTable& table, const QJsonObject& extra = {});

}  // namespace orv::cli
