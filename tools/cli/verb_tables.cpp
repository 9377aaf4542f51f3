// qvejmap tables: the tables of the automatic map, or all their columns.
//
// A line a table (or column), fields separated by TABs, aligned with blanks on a terminal.  Control
// characters and backslashes appear as JSON escapes.
//
// Tested by tests/tool/golden/tables.t and tests/tool/golden/terminal.t
#include "tools/cli/escape.h"
#include "tools/cli/remarks.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs.h"
#include "tools/cli/writer.h"

#include <algorithm>
#include <array>

namespace {

using Row = std::vector<std::string>;

constexpr std::array<std::string_view, 3> kTypeNames = {"ORDINAL", "NUMERIC", "CHARACTER"};

std::string shownPath(const std::string& path) {
    return escaped(qvej::withSlashes(path));
}

std::vector<Row> listTables(const qvej::Document& document, bool namesOnly) {
    std::vector<Row> rows;
    for (const qvej::Table& table : document.tables()) {
        rows.push_back({escaped(table.name)});
        if (!namesOnly) {
            rows.back().push_back(std::to_string(table.columns.size()));
            rows.back().push_back(shownPath(table.path));
        }
    }
    return rows;
}

std::vector<Row> listColumns(const qvej::Document& document) {
    std::vector<Row> rows;
    for (const qvej::Table& table : document.tables()) {
        for (const qvej::Column& column : table.columns) {
            rows.push_back({escaped(table.name), escaped(column.name),
                            std::string(kTypeNames[static_cast<std::size_t>(column.type)]),
                            std::to_string(column.length), shownPath(column.path)});
        }
    }
    return rows;
}

// Fills all fields but the last of each row up to a common width.
void align(std::vector<Row>& rows) {
    std::vector<std::size_t> widths;
    for (const Row& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], displayWidth(row[i]));
        }
    }
    for (Row& row : rows) {
        for (std::size_t i = 0; i + 1 < row.size(); ++i) {
            row[i].append(widths[i] - displayWidth(row[i]) + 1, ' ');
        }
    }
}

}  // namespace

void runTables(const Options& options) {
    const Session session(options);
    const qvej::Document& document = session.document();
    std::vector<Row> rows =
        options.columns ? listColumns(document) : listTables(document, options.names);

    Writer out = standardOutput();
    const bool terminal = out.terminal();
    if (terminal) {
        align(rows);
    }
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            out.append(i == 0 ? "" : terminal ? " " : "\t");
            out.append(row[i]);
        }
        out.put('\n');
    }
    out.flush();

    const std::string shared = sharedNames(document, options.alldataName);
    if (!shared.empty() && !options.quiet) {
        tell(shared);
    }
}
