// See diagram.h.
#include "tools/cli/pictures/diagram.h"

#include "client/path_names.h"
#include "client/text.h"
#include "tools/cli/reports/remarks.h"
#include "tools/cli/survey.h"

#include <algorithm>
#include <unordered_map>

namespace qvej::cli {

namespace {

Diagram::Column columnOf(const Column& column, const DataType& type) {
    Diagram::Column shown = {visible(column.name), nameOf(type), column.label};
    if (shown.note.empty() && column.type != ColumnType::ORDINAL && !column.path.empty() &&
        lastPiece(column.path) != column.name) {
        shown.note = lastPiece(column.path);
    }
    return shown;
}

// The columns of a table that are shown: those of its keys, and as many others as there is room
// for.
std::vector<std::size_t> chosenColumns(const TableSchema& table, std::size_t most) {
    std::size_t keys = 0;
    const auto isKey = [&](std::size_t c) {
        return c == table.own || (table.parent && c == table.parent->column);
    };
    for (std::size_t c = 0; c < table.fields.size(); ++c) {
        keys += isKey(c) ? 1 : 0;
    }
    std::size_t room = most - std::min(most, keys);
    std::vector<std::size_t> chosen;
    for (std::size_t c = 0; c < table.fields.size(); ++c) {
        const bool taken = isKey(c) || room != 0;
        room -= taken && !isKey(c) ? 1 : 0;
        if (taken) {
            chosen.push_back(c);
        }
    }
    return chosen;
}

std::size_t positionOf(std::size_t column, const std::vector<std::size_t>& chosen) {
    const auto at = std::find(chosen.begin(), chosen.end(), column);
    return static_cast<std::size_t>(at - chosen.begin());
}

}  // namespace

Diagram diagramOf(const Schema& schema, std::size_t mostTables, std::size_t mostColumns) {
    Diagram diagram;
    const std::vector<TreeNode> tree = treeOf(schema);
    std::unordered_map<std::size_t, std::size_t> places;  // of tables of the schema
    for (const TreeNode& node : tree) {
        if (diagram.tables.size() == mostTables) {
            break;
        }
        const TableSchema& table = schema.tables[node.table];
        const std::vector<std::size_t> chosen = chosenColumns(table, mostColumns);
        Diagram::Table shown = {visible(table.table->name),
                                withSlashes(table.table->path()),
                                node.table,
                                table.rows,
                                {},
                                table.fields.size() - chosen.size(),
                                std::nullopt};
        for (const std::size_t c : chosen) {
            shown.columns.push_back(columnOf(table.table->columns[c], table.fields[c].type));
            shown.columns.back().primary = table.key && c == table.own;
            shown.columns.back().parent = table.parent && c == table.parent->column;
        }
        if (table.parent) {
            const std::size_t above = places.at(table.parent->table);
            const std::vector<std::size_t> there =
                chosenColumns(schema.tables[table.parent->table], mostColumns);
            shown.parent = {above, positionOf(table.parent->column, chosen),
                            positionOf(table.parent->ordinal, there), table.parent->one,
                            table.parent->foreignKey};
        }
        places.emplace(node.table, diagram.tables.size());
        diagram.tables.push_back(std::move(shown));
    }
    diagram.moreTables = tree.size() - diagram.tables.size();
    return diagram;
}

std::string leftOut(const Diagram& diagram) {
    std::size_t columns = 0;
    for (const Diagram::Table& table : diagram.tables) {
        columns += table.moreColumns;
    }
    std::string text;
    if (diagram.moreTables != 0) {
        text = withCommas(diagram.moreTables) +
               (diagram.moreTables == 1 ? " further table" : " further tables");
    }
    if (columns != 0) {
        text += (text.empty() ? "" : " and ") + withCommas(columns) +
                (columns == 1 ? " further column" : " further columns");
    }
    return text.empty() ? text : text + " left out (--table and --path choose tables)";
}

}  // namespace qvej::cli
