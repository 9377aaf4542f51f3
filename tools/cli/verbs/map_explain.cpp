// qvejmap map explain: why a column of a map is what it is.
//
// Tested by tests/tool/golden/map_explain.t
#include "client/carried_columns.h"
#include "client/escape.h"
#include "client/suggestion.h"
#include "formats/writer.h"
#include "tools/cli/reports/listing.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/verbs.h"

#include <optional>

namespace qvej::cli {

namespace {

struct Found {
    const Table* table = nullptr;
    Column column;
};

std::optional<Column> findColumn(const Table& table, std::string_view name) {
    for (const Column& column : table.columns) {
        if (equalIgnoringCase(column.name, name)) {
            return column;
        }
    }
    return {};
}

// Divides "TABLE.COLUMN" where it makes sense: both names may hold dots.
Found find(const Document& document, const std::string& wanted) {
    for (std::size_t dot = wanted.find('.'); dot != std::string::npos;
         dot = wanted.find('.', dot + 1)) {
        for (const Table& table : document.tables()) {
            if (equalIgnoringCase(table.name, wanted.substr(0, dot))) {
                const auto column = findColumn(table, wanted.substr(dot + 1));
                if (column) {
                    return {&table, *column};
                }
            }
        }
    }
    std::vector<std::string> names;
    for (const Table& table : document.tables()) {
        for (const Column& column : table.columns) {
            names.push_back(table.name + "." + column.name);
        }
    }
    throw Failure(NO_TABLE, "no column " + wanted + " (TABLE.COLUMN)" + suggestion(wanted, names));
}

std::string counted(int64_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

// Why the column has its type.
std::string reason(const PathStatistics& statistics) {
    int64_t strings = 0;
    int64_t others = 0;
    for (const KindStatistics& kind : statistics.kinds) {
        (kind.kind == JMAP_KIND_STRING ? strings : others) += kind.count;
    }
    if (strings == 0) {
        return "NUMERIC, since none of its values is a string";
    }
    return others == 0 ? "CHARACTER, since its values are strings"
                       : "CHARACTER, since " + counted(strings, "value") + " of " +
                             std::to_string(strings + others) +
                             (strings == 1 ? " is a string" : " are strings");
}

}  // namespace

ExitCode runMapExplain(const Options& options) {
    const Session session(options.reading, options.operands[0], options.map);
    const auto [table, column] = find(session.document(), options.operands[1]);
    Writer out = standardOutput();
    const auto line = [&](const std::string& text) { out.append(shown(text) + "\n"); };
    line(visible(table->name) + "." + column.name + ": " + withSlashes(column.path));
    if (column.type == ColumnType::ORDINAL) {
        line("ORDINAL: counts the objects and arrays at its path, from 1 in the whole document");
        out.flush();
        return DONE;
    }
    if (session.map() != nullptr) {
        const bool numeric = column.type == ColumnType::NUMERIC;
        line((numeric ? "NUMERIC, as " : "CHARACTER, as ") + session.map()->name() + " says");
    }
    if (const std::string parent = ancestorOf(*table, column); !parent.empty()) {
        line("of a parent, " + withSlashes(parent) + ": " + std::string(kWithoutCarry) +
             ", unless --carry");
    }
    std::vector<Row> rows = {{"kind", "values", "first"}};
    for (const PathStatistics& statistics : session.document().pathStatistics()) {
        if (statistics.path != column.path) {
            continue;
        }
        if (session.map() == nullptr) {
            line(reason(statistics));
        }
        for (const KindStatistics& kind : statistics.kinds) {
            rows.push_back({std::string(kind.kindName), std::to_string(kind.count),
                            shown(spotText(session.name(), kind.first))});
        }
        if (statistics.inexact != 0) {
            rows.push_back({"inexact", std::to_string(statistics.inexact),
                            shown(spotText(session.name(), statistics.firstInexact))});
        }
        rows.push_back({"longest", counted(statistics.longest, "byte"),
                        shown(spotText(session.name(), statistics.longestAt))});
    }
    print(out, rows);
    out.flush();
    return DONE;
}

}  // namespace qvej::cli
