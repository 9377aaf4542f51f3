// qvejmap tables: the tables of the map, or all their columns.
//
// A line a table (or column), fields separated by TABs, aligned with blanks on a terminal.  Control
// characters and backslashes appear as JSON escapes.  On a terminal the tables are a tree, with
// --format json one object.
//
// Tested by tests/tool/golden/tables.t, tests/tool/golden/terminal.t and
// tests/tool/golden/pictures.t
#include "client/escape.h"
#include "formats/writer.h"
#include "tools/cli/choice.h"
#include "tools/cli/reports/account_report.h"
#include "tools/cli/reports/changed_names.h"
#include "tools/cli/reports/listing.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/shape_report.h"
#include "tools/cli/reports/tables_json.h"
#include "tools/cli/reports/tables_tree.h"
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

Row rowOf(const Table& table, bool namesOnly) {
    Row row = {escaped(table.name)};
    if (!namesOnly) {
        row.push_back(std::to_string(table.columns.size()));
        row.push_back(shownPath(table.path()));
    }
    return row;
}

Row rowOf(const Table& table, const Column& column) {
    return {escaped(table.name), escaped(column.name),
            std::string(kTypeNames[static_cast<std::size_t>(column.type)]),
            std::to_string(column.length), shownPath(column.path)};
}

void putList(const Options& options, const std::vector<const Table*>& tables, Writer& out) {
    Listing list(out);
    for (const Table* table : tables) {
        if (!options.columns) {
            list.add(rowOf(*table, options.names));
            continue;
        }
        for (const Column& column : table->columns) {
            list.add(rowOf(*table, column));
        }
    }
    list.end();
    out.flush();
}

void putJson(const Options& options, const Session& session,
             const std::vector<const Table*>& tables) {
    const Document& document = session.document();
    const Schema schema = typesOf(session, tables, options);
    Writer out = standardOutput();
    printJson(out, session.name(), schema,
              accountOf(document, tables, options.retain, options.carry));
    out.flush();
}

void putTree(const Options& options, const Session& session,
             const std::vector<const Table*>& tables, Writer& out) {
    const Survey survey = surveyOf(session, tables, options);
    printTree(out, survey);
    out.flush();
    if (!options.quiet) {
        tellLost(session.name(), session.document(), survey.allLosses, survey.inNoCell);
    }
}

void putTables(const Options& options, const Session& session,
               const std::vector<const Table*>& tables) {
    Writer out = standardOutput();
    if (options.json) {
        putJson(options, session, tables);
    } else if (out.terminal() && !options.names && !options.columns) {
        putTree(options, session, tables, out);
    } else {
        putList(options, tables, out);
    }
}

}  // namespace

ExitCode runTables(const Options& options) {
    const Session session(options.reading, options.inputs, options.map,
                          {.partThreads = partThreads(options)});
    const Document& document = session.document();
    const std::vector<const Table*> tables = chosenTables(options, document.tables());
    if (session.map() != nullptr) {
        if (!options.quiet) {
            tellMapOddities(session.map()->name(), tables);
        }
        tellCuts(session.map()->name(), tables);
    }
    try {
        putTables(options, session, tables);
    } catch (const Error& error) {
        session.failReading(error);
    }
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
