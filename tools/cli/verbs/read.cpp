// qvejmap read: the rows of one table on standard output.
//
// Tested by tests/tool/golden/read.t
#include "client/account.h"
#include "client/cursor.h"
#include "client/error.h"
#include "client/suggestion.h"
#include "client/table_pass.h"
#include "formats/writer.h"
#include "tools/cli/choice.h"
#include "tools/cli/failure.h"
#include "tools/cli/plan.h"
#include "tools/cli/reports/account_report.h"
#include "tools/cli/reports/changed_names.h"
#include "tools/cli/reports/rejects.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/tell.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/verbs.h"

#include <algorithm>

namespace qvej::cli {

namespace {

// The table, or a failure that names others.
const Table& findTable(const Document& document, const Options& options) {
    const std::string& name = options.operands[1];
    if (name.starts_with('/')) {
        const std::vector<const Table*> there = tablesAt(name, document.tables());
        if (there.size() > 1 && !options.quiet) {
            tell(std::to_string(there.size()) + " tables have the path " + name +
                 ": this is the first, " + visible(there.front()->name));
        }
        if (!there.empty()) {
            return *there.front();
        }
    }
    const Table* table = document.find(name);
    if (table != nullptr) {
        return *table;
    }
    std::vector<std::string> names;
    for (const Table& other : document.tables()) {
        names.push_back(name.starts_with('/') ? withSlashes(other.path()) : other.name);
    }
    if (!options.reading.alldataName.empty()) {
        names.push_back(options.reading.alldataName);
    }
    const std::string hint = suggestion(name, names);
    const bool original = document.naming() == Naming::ORIGINAL;
    const std::string list =
        std::string(" (qvejmap tables") + (original ? " --naming original" : "") + " lists them)";
    throw Failure(NO_TABLE, (name.starts_with('/') ? "no table at " : "no table named ") +
                                visible(name) + (hint.empty() ? list : hint));
}

// The notes that the engine makes of reading a table: a pass has none.
void noteReading(const Document& document, const Table& table, const Options& options) {
    Cursor cursor(document, table, options.retain);
    for (uint64_t rows = 0; rows < options.limit && cursor.next(); ++rows) {
    }
}

struct Written {
    uint64_t rows;
    RowLosses losses;
};

Written writeRows(const Document& document, const Table& table, const Options& options,
                  Rejects& rejects) {
    const std::unique_ptr<Sink> sink =
        makeSink(*options.format, standardOutput(), {table, options.formatOptions});
    PassRow row(document, table, rejects.handlerFor(table));
    TablePass pass(document, {&table}, options.retain, options.carry);
    pass.flushInTime([&] { sink->flush(); });
    for (PassItem item; row.rows() < options.limit && pass.next(item);) {
        if (row.take(item)) {
            sink->row(row);
        }
    }
    sink->end();
    return {row.rows(), rowLossesOf(pass, {&table})};
}

}  // namespace

ExitCode runRead(const Options& options) {
    if (!options.rejects.empty()) {
        OutputFiles::checkFile(options.rejects, options.force, options.sources);
    }
    const Session session(options.reading, options.operands[0], options.map,
                          {.keepBadLines = !options.rejects.empty(),
                           .notStreamed = whyNotStreamed(options),
                           .table = options.operands[1]});
    const Document& document = session.document();
    if (session.map() != nullptr && !options.quiet) {
        tellMapOddities(session.map()->name(), each(document.tables()));
    }
    const Table& table = findTable(document, options);
    if (session.map() != nullptr && !options.quiet && !options.carry) {
        tellParents(session.map()->name(), {&table});
    }
    const std::string hiding = hiddenAlldata(each(document.tables()), options.reading.alldataName);
    if (!hiding.empty() && !options.quiet &&
        equalIgnoringCase(table.name, options.reading.alldataName)) {
        tell(hiding);
    }
    try {
        Rejects rejects(options.rejects, options.force, options.sources);
        rejects.takeLines(session.skipped());
        if (!options.reading.debug.empty()) {
            noteReading(document, table, options);
        }
        const Written written = writeRows(document, table, options, rejects);
        if (namesMayDiffer(options)) {
            tellChangedNames(session.name(), {&table});
        }
        const bool all = options.limit != 0;  // else no rows say nothing
        tellLosses(session.name(), document, {{&table, all ? written.rows : 1}});
        const ExitCode code =
            tellLost(session.name() + ": table " + visible(table.name), document, written.losses);
        tellSharedNames(session.mapName(), {&table}, *options.format);
        rejects.commit();
        return std::max({code, rejects.tellAll(), session.skipped().exitCode()});
    } catch (const Error& error) {
        session.failReading(error);
    }
}

}  // namespace qvej::cli
