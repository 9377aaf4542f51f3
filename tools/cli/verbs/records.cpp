// qvejmap records: every record of the document, a line each: kind, path with slashes and value,
// separated by TABs.  Control characters and backslashes appear as JSON escapes.
//
// Tested by tests/tool/golden/records.t
#include "client/error.h"
#include "client/escape.h"
#include "client/table_pass.h"
#include "formats/writer.h"
#include "tools/cli/reports/tell.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/verbs.h"

#include <algorithm>

namespace qvej::cli {

namespace {

void writeRecord(Writer& out, const Record& record, std::string& path) {
    path.assign(record.path);
    std::replace(path.begin(), path.end(), '\x02', '/');
    out.append(record.kindName);
    out.put('\t');
    appendEscaped(out, path, CONTROLS | BACKSLASH);
    out.put('\t');
    appendEscaped(out, withoutUnfinished(record.value), CONTROLS | BACKSLASH);
    out.put('\n');
}

// Tells of strings that the records have only in part.  ALLDATA has a row for each record.
ExitCode tellCutStrings(const Session& session) {
    const Document& document = session.document();
    const std::vector<PathStatistics> paths = document.pathStatistics();
    if (std::none_of(paths.begin(), paths.end(), [](const PathStatistics& path) {
            return path.longest >= static_cast<int64_t>(kLongestCell);
        })) {
        return DONE;
    }
    uint64_t lines = 0;
    uint64_t cut = 0;
    uint64_t first = 0;
    TablePass pass(document, {&document.alldata()});
    for (PassItem item; pass.next(item);) {
        ++lines;
        if (item.cells.back().kind == JMAP_CELL_CUT && ++cut == 1) {
            first = lines;
        }
    }
    if (cut == 0) {
        return DONE;
    }
    tell(session.name() + ": " + std::to_string(cut) + (cut == 1 ? " value" : " values") +
         " cut to " + std::to_string(kLongestCell) + " bytes" +
         (cut == 1 ? ", in line " : ", the first in line ") + std::to_string(first));
    return REJECTED;
}

}  // namespace

ExitCode runRecords(const Options& options) {
    const Session session(options.reading, options.operands[0]);
    try {
        Writer out = standardOutput();
        RecordCursor records(session.document());
        Record record = {};
        std::string path;
        while (records.next(record)) {
            writeRecord(out, record, path);
        }
        out.flush();
        return std::max(tellCutStrings(session), session.skipped().exitCode());
    } catch (const Error& error) {
        session.failReading(error);
    }
}

}  // namespace qvej::cli
