// qvejmap map check: is the map well formed, and does it fit a document?
//
// Tested by tests/tool/golden/map_check.t
#include "client/error.h"
#include "client/escape.h"
#include "client/find/table_choice.h"
#include "formats/writer.h"
#include "tools/cli/maps/map_fit.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/verbs.h"

namespace qvej::cli {

namespace {

void print(Writer& out, std::string_view prefix, const Findings& findings) {
    for (const std::string& finding : findings) {
        out.append(prefix);
        out.append(shown(finding));
        out.put('\n');
    }
}

void printMap(Writer& out, const MapFile& map, const Engine& engine, bool quiet) {
    std::size_t columns = 0;
    for (const Table& table : map.tables()) {
        columns += table.columns.size();
    }
    if (!quiet) {
        out.append(shown(map.name()) +
                   ": well formed, tables: " + std::to_string(map.tables().size()) +
                   ", columns: " + std::to_string(columns) + "\n");
    }
    const MapOddities odd = mapOddities(each(map.tables()));
    print(out, "no columns: table ", odd.empty);
    print(out, "NORETAIN without effect: ", odd.noretain);
    print(out, "INFORMAT without effect: ", odd.informat);
    print(out, "of a parent: ", columnsOfParents(map.tables()));
    print(out, {}, doubtfulNames(map.tables(), readMapText(engine, map.text())));
}

// In one line, unless all are asked for.
void print(Writer& out, const LeftOut& left, bool verbose) {
    if (verbose || left.columns.size() < 2) {
        print(out, "left out: ", left.columns);
        return;
    }
    const std::string tables =
        std::to_string(left.tables) + (left.tables == 1 ? " table" : " tables");
    out.append(shown("left out: " + std::to_string(left.columns.size()) + " of " +
                     std::to_string(left.of) + " columns, in " + tables + ", the first " +
                     left.columns.front()) +
               "; --verbose lists them\n");
}

// True when every path of the map occurs in the document.
bool printFit(Writer& out, const Session& session, bool verbose) {
    const Document& document = session.document();
    const Findings missing = neverOccurring(document);
    print(out, "never occurs: ", missing);
    print(out, "cut: ", mapOddities(each(document.tables())).cut);
    print(out, leftOut(document), verbose);
    print(out, "no map can name: ", namesWithSlash(document));
    try {
        print(out, "no map can name: ", namesWithSeparator(document));
    } catch (const Error& error) {
        session.failReading(error);
    }
    return missing.empty();
}

}  // namespace

ExitCode runMapCheck(const Options& options) {
    Writer out = standardOutput();
    bool fits = true;
    if (options.operands.size() == 1) {
        Engine engine;
        printMap(out, MapFile(engine, options.operands[0]), engine, options.quiet);
    } else {
        const Session session(options.reading, options.operands[1], options.operands[0]);
        printMap(out, *session.map(), session.engine(), options.quiet);
        fits = printFit(out, session, options.verbose);
    }
    out.flush();
    return fits ? DONE : DIFFERENT;
}

}  // namespace qvej::cli
