// qvejmap read: the rows of one table on standard output.
//
// Tested by tests/tool/golden/read.t
#include "client/error.h"
#include "tools/cli/failure.h"
#include "tools/cli/rejects.h"
#include "tools/cli/remarks.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs.h"
#include "tools/cli/writer.h"

namespace {

// The table, or a failure that names others.
const qvej::Table& findTable(const qvej::Document& document, const Options& options) {
    const std::string& name = options.operands[1];
    const qvej::Table* table = document.find(name);
    if (table != nullptr) {
        return *table;
    }
    std::vector<std::string> names;
    for (const qvej::Table& other : document.tables()) {
        names.push_back(other.name);
    }
    if (!options.alldataName.empty()) {
        names.push_back(options.alldataName);
    }
    const std::string hint = suggestion(name, names);
    throw Failure(NO_TABLE, "no table named " + visible(name) +
                                (hint.empty() ? " (qvejmap tables lists them)" : hint));
}

}  // namespace

ExitCode runRead(const Options& options) {
    const Session session(options);
    const qvej::Document& document = session.document();
    if (session.map() != nullptr) {
        tellMapOddities(session.map()->name(), document.tables(), options.quiet);
    }
    const qvej::Table& table = findTable(document, options);
    try {
        Rejects rejects(options.rejects, options.force);
        Writer out = standardOutput();
        qvej::Cursor cursor(document, table, options.retain, rejects.handlerFor(table));
        const uint64_t rows = qvej::copyRows(cursor, *options.format->make(out), options.limit);
        out.flush();
        const bool all = options.limit != 0;  // else no rows say nothing
        tellLosses(session.name(), document, {{&table, all ? rows : 1}});
        return rejects.end();
    } catch (const qvej::Error& error) {
        session.failReading(error);
    }
}
