// qvejmap tables: the tables of the automatic map, or all their columns.
//
// A line a table (or column), fields separated by TABs, aligned with blanks on a terminal.  Control
// characters and backslashes appear as JSON escapes.
//
// Tested by tests/tool/golden/tables.t and tests/tool/golden/terminal.t
#include "client/escape.h"
#include "formats/writer.h"
#include "tools/cli/choice.h"
#include "tools/cli/reports/changed_names.h"
#include "tools/cli/reports/listing.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/shape_report.h"
#include "tools/cli/reports/tell.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/verbs.h"

#include <array>

namespace qvej::cli {

namespace {

constexpr std::array<std::string_view, 3> kTypeNames = {"ORDINAL", "NUMERIC", "CHARACTER"};

std::string shownPath(const std::string& path) {
    return escaped(withSlashes(path));
}

std::vector<Row> listTables(const std::vector<const Table*>& tables, bool namesOnly) {
    std::vector<Row> rows;
    for (const Table* table : tables) {
        rows.push_back({escaped(table->name)});
        if (!namesOnly) {
            rows.back().push_back(std::to_string(table->columns.size()));
            rows.back().push_back(shownPath(table->path()));
        }
    }
    return rows;
}

std::vector<Row> listColumns(const std::vector<const Table*>& tables) {
    std::vector<Row> rows;
    for (const Table* table : tables) {
        for (const Column& column : table->columns) {
            rows.push_back({escaped(table->name), escaped(column.name),
                            std::string(kTypeNames[static_cast<std::size_t>(column.type)]),
                            std::to_string(column.length), shownPath(column.path)});
        }
    }
    return rows;
}

}  // namespace

ExitCode runTables(const Options& options) {
    const Session session(options.reading, options.inputs, options.map);
    const Document& document = session.document();
    const std::vector<const Table*> tables = chosenTables(options, document.tables());
    if (session.map() != nullptr) {
        if (!options.quiet) {
            tellMapOddities(session.map()->name(), tables);
        }
        tellCuts(session.map()->name(), tables);
    }
    std::vector<Row> rows =
        options.columns ? listColumns(tables) : listTables(tables, options.names);

    Writer out = standardOutput();
    print(out, rows);
    out.flush();

    const std::string shared = sharedNames(tables, document.naming(), options.reading.alldataName);
    if (!shared.empty() && !options.quiet) {
        tell(shared);
    }
    if (!options.quiet) {
        tellSourceNames(document, tables, kSourceColumn);
    }
    if (shapeMayHelp(options)) {
        tellShapeHint(document.tables());
    }
    if (namesMayDiffer(options)) {
        tellChangedNames(session.name(), tables);
    }
    tellInexact(session.name(), document, tables, options.columns ? Inexact::ALL : Inexact::FIRST);
    return session.skipped().exitCode();
}

}  // namespace qvej::cli
