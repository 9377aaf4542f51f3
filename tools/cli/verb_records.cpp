// qvejmap records: every record of the document, a line each: kind, path with slashes and value,
// separated by TABs.  Control characters and backslashes appear as JSON escapes.
//
// Tested by tests/tool/golden/records.t
#include "client/error.h"
#include "tools/cli/escape.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs.h"
#include "tools/cli/writer.h"

#include <algorithm>

namespace {

void writeRecord(Writer& out, const qvej::Record& record, std::string& path) {
    path.assign(record.path);
    std::replace(path.begin(), path.end(), '\x02', '/');
    out.append(record.kindName);
    out.put('\t');
    appendEscaped(out, path, CONTROLS | BACKSLASH);
    out.put('\t');
    appendEscaped(out, qvej::withoutUnfinished(record.value), CONTROLS | BACKSLASH);
    out.put('\n');
}

}  // namespace

ExitCode runRecords(const Options& options) {
    const Session session(options);
    try {
        Writer out = standardOutput();
        qvej::RecordCursor records(session.document());
        qvej::Record record = {};
        std::string path;
        while (records.next(record)) {
            writeRecord(out, record, path);
        }
        out.flush();
    } catch (const qvej::Error& error) {
        session.failReading(error);
    }
    return DONE;
}
