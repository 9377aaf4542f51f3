// See dictionary.h.
#include "formats/database/dictionary.h"

#include "client/text.h"
#include "formats/database/database_tables.h"

#include <algorithm>
#include <utility>

namespace qvej {

namespace {

constexpr std::size_t kRowsOfStatement = 200;

constexpr std::string_view kTableColumns[] = {
    "table_name", "path", "original_name", "rows", "parent", "parent_column", "key", "joined"};
constexpr std::string_view kColumnColumns[] = {"table_name",    "position", "column_name", "path",
                                               "original_name", "label",    "type"};

bool isNumber(std::string_view column) {
    return column == "rows" || column == "position";
}

template <class Names>
bool hasColumns(const std::vector<DatabaseColumn>& columns, const Names& names) {
    return std::equal(
        columns.begin(), columns.end(), std::begin(names), std::end(names),
        [](const DatabaseColumn& column, std::string_view name) { return column.name == name; });
}

std::string textOrNull(std::string_view text) {
    return text.empty() ? "NULL" : quotedText(text);
}

std::string whereTable(const std::string& name) {
    return " WHERE table_name = " + quotedText(name);
}

// What a column of another type has that got values written as this one.
std::string typeOfBoth(const DataType& added) {
    switch (added.kind) {
        case DataType::BOOLEAN:
        case DataType::BIGINT:
            return "BIGINT";
        case DataType::DOUBLE:
            return "DOUBLE";
        default:
            return "TEXT";
    }
}

}  // namespace

bool Dictionary::isEarlier(std::size_t which, const std::string& table) {
    return which == 0
               ? table.starts_with(kTables) && hasColumns(database_.columnsOf(table), kTableColumns)
               : table.starts_with(kColumns) &&
                     hasColumns(database_.columnsOf(table), kColumnColumns);
}

void Dictionary::name(const std::string& tables, bool tablesThere, const std::string& columns,
                      bool columnsThere) {
    tables_ = quotedName(tables);
    columns_ = quotedName(columns);
    tablesThere_ = tablesThere;
    columnsThere_ = columnsThere;
}

void Dictionary::loadEarlier() {
    if (std::exchange(loaded_, true)) {
        return;
    }
    if (columnsThere_) {
        for (std::vector<std::string>& row :
             database_.query("SELECT path, table_name, column_name FROM " + columns_ +
                             " WHERE path IS NOT NULL AND original_name IS NULL")) {
            ordinals_[row[0]].push_back({std::move(row[1]), std::move(row[2])});
        }
    }
    if (tablesThere_) {
        for (std::vector<std::string>& row :
             database_.query("SELECT table_name, joined, path, parent FROM " + tables_)) {
            earlier_.push_back(
                {std::move(row[0]), std::move(row[1]), std::move(row[2]), std::move(row[3])});
        }
    }
}

std::string Dictionary::pathOf(const Table& table) {
    const std::string path = table.objectPath();
    return withSlashes(path.empty() ? table.path() : path);
}

const std::vector<Dictionary::Earlier>& Dictionary::tables() {
    loadEarlier();
    return earlier_;
}

std::vector<Dictionary::Ordinal> Dictionary::ordinalsOf(std::string_view path) {
    loadEarlier();
    const auto found = ordinals_.find(withSlashes(path));
    return found == ordinals_.end() ? std::vector<Ordinal>() : found->second;
}

std::optional<std::string> Dictionary::viewOf(const std::string& table) {
    loadEarlier();
    const auto found = std::find_if(earlier_.begin(), earlier_.end(),
                                    [&](const Earlier& one) { return one.name == table; });
    return found == earlier_.end() ? std::nullopt : std::optional(found->view);
}

void Dictionary::write(const Schema& schema, const std::vector<TargetTable>& tables) {
    makeTables();
    Rows ofTables = {"INSERT INTO " + tables_ + " VALUES "};
    Rows ofColumns = {"INSERT INTO " + columns_ + " VALUES "};
    for (std::size_t t = 0; t < tables.size(); ++t) {
        if (tables[t].there && viewOf(tables[t].name)) {
            updateAppended(schema.tables[t], tables[t]);
            continue;
        }
        if (tablesThere_ && columnsThere_) {
            forget(tables[t]);
        }
        addTable(schema, tables, t, ofTables);
        addColumns(schema.tables[t], tables[t], ofColumns);
    }
    flush(ofTables);
    flush(ofColumns);
}

void Dictionary::makeTables() {
    const auto make = [&](const std::string& name, const auto& columns) {
        const Field text;
        const Field number = {{DataType::BIGINT}};
        std::string sql;
        for (const std::string_view column : columns) {
            sql += (sql.empty() ? "(" : ", ") + quotedName(column) + " " +
                   database_.typeOf(isNumber(column) ? number : text);
        }
        database_.run("CREATE TABLE " + name + sql + ")" +
                      std::string(database_.limits().tableEnd));
    };
    if (!tablesThere_) {
        make(tables_, kTableColumns);
    }
    if (!columnsThere_) {
        make(columns_, kColumnColumns);
    }
}

void Dictionary::forget(const TargetTable& table) {
    database_.run("DELETE FROM " + tables_ + whereTable(table.name));
    database_.run("DELETE FROM " + columns_ + whereTable(table.name));
}

void Dictionary::addTable(const Schema& schema, const std::vector<TargetTable>& tables,
                          std::size_t table, Rows& rows) {
    const TableSchema& of = schema.tables[table];
    const TargetTable& target = tables[table];
    const bool below = of.parent.has_value();
    put(rows,
        {quotedText(target.name), textOrNull(pathOf(*of.table)), quotedText(of.table->name),
         target.there ? "(SELECT count(*) FROM " + quotedName(target.name) + ")"
                      : std::to_string(of.rows),
         below ? quotedText(tables[of.parent->table].name) : "NULL",
         below ? quotedText(target.columns[of.parent->column].name) : "NULL",
         of.key ? quotedText(target.columns[*of.own].name) : "NULL", textOrNull(target.view)});
}

void Dictionary::addColumns(const TableSchema& schema, const TargetTable& table, Rows& rows) {
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        const Column column = schema.table->columns[c];
        const bool named = column.type != ColumnType::ORDINAL && !column.path.empty();
        put(rows, {quotedText(table.name), std::to_string(c + 1), quotedText(table.columns[c].name),
                   textOrNull(withSlashes(column.path)),
                   named ? quotedText(lastPiece(column.path)) : "NULL", textOrNull(column.label),
                   quotedText(nameOf(schema.fields[c].type))});
    }
}

// A column may have values of other types by now, which its type in the database keeps.
void Dictionary::updateAppended(const TableSchema& schema, const TargetTable& table) {
    database_.run("UPDATE " + tables_ + " SET rows = (SELECT count(*) FROM " +
                  quotedName(table.name) + "), joined = " + textOrNull(table.view) +
                  whereTable(table.name));
    for (std::size_t c = 0; c < table.columns.size() && columnsThere_; ++c) {
        const Field& field = schema.fields[c];
        if (field.filled != 0 && database_.limits().fewTypes) {
            database_.run("UPDATE " + columns_ + " SET type = " +
                          quotedText(typeOfBoth(table.columns[c].type)) + whereTable(table.name) +
                          " AND column_name = " + quotedText(table.columns[c].name) +
                          " AND type <> " + quotedText(nameOf(field.type)));
        }
    }
}

void Dictionary::put(Rows& rows, const std::vector<std::string>& values) {
    rows.values += rows.values.empty() ? "(" : ", (";
    for (std::size_t i = 0; i < values.size(); ++i) {
        rows.values += (i == 0 ? "" : ", ") + values[i];
    }
    rows.values += ")";
    if (++rows.count == kRowsOfStatement) {
        flush(rows);
    }
}

void Dictionary::flush(Rows& rows) {
    if (rows.count != 0) {
        database_.run(rows.head + rows.values);
    }
    rows.values.clear();
    rows.count = 0;
}

}  // namespace qvej
