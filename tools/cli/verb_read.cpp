// qvejmap read: the rows of one table on standard output.
//
// Tested by tests/tool/golden/read.t
#include "client/error.h"
#include "tools/cli/failure.h"
#include "tools/cli/remarks.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs.h"
#include "tools/cli/writer.h"

namespace {

// The table, or a failure that names others.
const qvej::Table& findTable(const qvej::Document& document, const Options& options) {
    const qvej::Table* table = document.find(options.table);
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
    std::string hint;
    for (const std::string& name : similarNames(options.table, names)) {
        hint += (hint.empty() ? "; did you mean " : ", ") + name;
    }
    throw Failure(NO_TABLE, "no table named " + visible(options.table) +
                                (hint.empty() ? " (qvejmap tables lists them)" : hint + "?"));
}

}  // namespace

void runRead(const Options& options) {
    const Session session(options);
    const qvej::Document& document = session.document();
    const qvej::Table& table = findTable(document, options);
    try {
        Writer out = standardOutput();
        qvej::Cursor cursor(document, table, options.retain);
        const uint64_t rows = qvej::copyRows(cursor, *options.format->make(out), options.limit);
        out.flush();
        const bool all = options.limit != 0;  // else no rows say nothing
        tellLosses(session.name(), document, {{&table, all ? rows : 1}});
    } catch (const qvej::Error& error) {
        session.failReading(error);
    }
}
