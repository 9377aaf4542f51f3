// qvejmap map: the automatic map as a JSON document, on standard output or in a file.
//
// Tested by tests/tool/golden/map.t
#include "client/engine.h"
#include "client/error.h"
#include "client/maps/exact_map.h"
#include "client/text.h"
#include "tools/cli/choice.h"
#include "tools/cli/maps/map_fit.h"
#include "tools/cli/maps/map_output.h"
#include "tools/cli/maps/separator_watch.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/reports/tell.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/verbs.h"

#include <unordered_set>

namespace qvej::cli {

namespace {

// "FILE: 2 columns ..., the first r.id"
void tellCounted(const std::string& file, std::size_t count, const std::string& one,
                 const std::string& many, const std::string& first) {
    if (count != 0) {
        tell(file + ": " + std::to_string(count) + " " +
             (count == 1 ? one + ": " : many + ", the first: ") + first);
    }
}

// The paths of the columns of tables, or none for all.
PathFilter pathsOf(const std::vector<const Table*>& tables, bool all) {
    if (all) {
        return {};
    }
    std::unordered_set<std::string> paths;
    for (const Table* table : tables) {
        for (const Column& column : table->columns) {
            paths.insert(column.path);
        }
    }
    return [paths](const std::string& path) { return paths.contains(path); };
}

// What the map says of the document and --map will not find, or will refuse.  `separators`: a name
// of the document may hold the byte 0x02, which divides paths.
void tellGaps(const Session& session, const std::vector<const Table*>& tables, bool all,
              bool separators) {
    const Document& document = session.document();
    const PathFilter wanted = pathsOf(tables, all);
    Findings findings = namesWithSlash(document, wanted);
    if (separators) {
        const Findings further = namesWithSeparator(document, wanted);
        findings.insert(findings.end(), further.begin(), further.end());
    }
    if (!findings.empty()) {
        tellCounted(session.name(), findings.size(), "path that no map can name",
                    "paths that no map can name", findings.front());
    }
    std::vector<const Table*> nameless;
    for (const Table* table : tables) {
        if (table->name.empty()) {
            nameless.push_back(table);
        }
    }
    if (!nameless.empty()) {
        tellCounted(session.name(), nameless.size(), "table without a name, which --map refuses",
                    "tables without a name, which --map refuses",
                    visible(withSlashes(nameless.front()->path())));
    }
}

std::string mapOf(const Session& session, const std::vector<const Table*>& tables,
                  const Options& options) {
    const Document& document = session.document();
    if (!options.exact && !isChoosing(options)) {
        return document.mapText();
    }
    if (!options.exact) {
        return mapDocument(documentMap(document, tables));
    }
    const ExactMap exact = exactMap(document, tables);
    if (!exact.tooLong.empty()) {
        const std::string kept = std::to_string(kLongestCell) + " bytes that a column holds";
        tellCounted(session.name(), exact.tooLong.size(),
                    "column with numbers longer than the " + kept,
                    "columns with numbers longer than the " + kept, exact.tooLong.front());
    }
    return mapDocument(exact.map);
}

}  // namespace

ExitCode runMap(const Options& options) {
    checkMapOutput(options, options.sources);
    SeparatorWatch separators;
    const Session session(options.reading, options.inputs, {},
                          {.observer = [&](std::string_view piece) { separators.take(piece); },
                           .sourceColumn = {},
                           .partThreads = partThreads(options)});
    const Document& document = session.document();
    const std::vector<const Table*> tables = chosenTables(options, document.tables());
    try {
        putMap(mapOf(session, tables, options), options, options.sources);
        tellGaps(session, tables, !isChoosing(options), separators.found());
    } catch (const Error& error) {
        session.failReading(error);
    }
    return session.skipped().exitCode();
}

}  // namespace qvej::cli
