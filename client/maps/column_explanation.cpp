// See column_explanation.h.
#include "client/maps/column_explanation.h"

#include "client/carried_columns.h"
#include "client/error.h"
#include "client/escape.h"
#include "client/messages.h"
#include "client/suggestion.h"
#include "client/text.h"

#include <optional>
#include <string_view>
#include <utility>

namespace qvej {

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
    throw Error(JMAP_NOTABLE,
                shown("no column " + wanted + " (TABLE.COLUMN)" + suggestion(wanted, names)));
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

// How often values of each kind came at a path, how long they are, and where that was seen.
void addRows(ColumnExplanation& explanation, const PathStatistics& statistics,
             const std::string& name) {
    const auto add = [&](std::string_view what, std::string count, Spot spot) {
        explanation.rows.push_back(
            {std::string(what), std::move(count), shown(spotText(name, spot))});
    };
    for (const KindStatistics& kind : statistics.kinds) {
        add(kind.kindName, std::to_string(kind.count), kind.first);
    }
    if (statistics.inexact != 0) {
        add("inexact", std::to_string(statistics.inexact), statistics.firstInexact);
    }
    add("longest", counted(statistics.longest, "byte"), statistics.longestAt);
}

}  // namespace

std::string ColumnExplanation::text() const {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    for (const std::vector<std::string>& row : rows) {
        for (const std::string& field : row) {
            text += &field == &row.front() ? "" : "\t";
            text += field;
        }
        text += "\n";
    }
    return text;
}

ColumnExplanation explainedColumn(const Document& document, const std::string& wanted,
                                  const std::string& name, const std::string& mapName) {
    const auto [table, column] = find(document, wanted);
    const bool ownMap = &document.tables() != &document.automaticTables();
    ColumnExplanation explanation;
    const auto line = [&](const std::string& text) { explanation.lines.push_back(shown(text)); };
    line(visible(table->name) + "." + column.name + ": " + withSlashes(column.path));
    if (column.type == ColumnType::ORDINAL) {
        line("ORDINAL: counts the objects and arrays at its path, from 1 in the whole document");
        return explanation;
    }
    if (ownMap) {
        const bool numeric = column.type == ColumnType::NUMERIC;
        line((numeric ? "NUMERIC, as " : "CHARACTER, as ") + mapName + " says");
    }
    if (const std::string parent = ancestorOf(*table, column); !parent.empty()) {
        line("of a parent, " + withSlashes(parent) + ": " + std::string(kWithoutCarry) +
             ", unless --carry");
    }
    explanation.rows = {{"kind", "values", "first"}};
    for (const PathStatistics& statistics : document.pathStatistics()) {
        if (statistics.path == column.path) {
            if (!ownMap) {
                line(reason(statistics));
            }
            addRows(explanation, statistics, name);
        }
    }
    return explanation;
}

}  // namespace qvej
