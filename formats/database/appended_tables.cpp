// See appended_tables.h.
#include "formats/database/appended_tables.h"

#include "client/error.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>

namespace qvej {

void AppendedTables::check() {
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        checkPath(t);
        if (tables_[t].there) {
            checkColumns(t);
        }
    }
}

void AppendedTables::refuse(const std::string& sentence) const {
    throw Error(QV_IO_REFUSED, sentence, parms_.shownTarget);
}

// Names of the automatic map depend on what else is in a document, so the path tells which table
// of the database the rows are of.
void AppendedTables::checkPath(std::size_t table) {
    const NameRules& rules = database_.limits().tableNames;
    const std::string& name = tables_[table].name;
    const std::string path = Dictionary::pathOf(*parms_.schema.tables[table].table);
    for (const Dictionary::Earlier& earlier : dictionary_.tables()) {
        if (path.empty() || earlier.path.empty() ||
            (earlier.path == path) == (nameKey(earlier.name, rules) == nameKey(name, rules))) {
            continue;
        }
        refuse(earlier.path == path
                   ? "the table of " + path + " is called " + shownName(earlier.name) +
                         " there, and " + shownName(name) + " here (--map gives names that stay)"
                   : shownName(name) + " there is the table of " + earlier.path + ", and here of " +
                         path + " (--map gives names that stay)");
    }
}

// Are the columns of the document there, do they keep its values, and its key the rows?
void AppendedTables::checkColumns(std::size_t table) {
    TargetTable& target = tables_[table];
    const TableSchema& of = parms_.schema.tables[table];
    const NameRules& rules = database_.limits().columnNames;
    const std::vector<DatabaseColumn> columns = database_.columnsOf(target.name);
    std::string missing;
    for (std::size_t c = 0; c < target.columns.size(); ++c) {
        TargetColumn& column = target.columns[c];
        const auto found = std::find_if(columns.begin(), columns.end(), [&](const auto& there) {
            return nameKey(there.name, rules) == nameKey(column.name, rules);
        });
        if (found == columns.end()) {
            missing += (missing.empty() ? "" : ", ") + shownName(column.name);
            continue;
        }
        const Field& field = of.fields[c];
        const std::string place = shownName(target.name) + "." + shownName(column.name);
        const std::optional<DataType> type = database_.writtenAs(field, found->type);
        const bool counts = of.table->columns.type(c) == ColumnType::ORDINAL;
        const bool shifts = type && type->kind == DataType::BIGINT;  // else it could not go on
        if ((!type || (counts && !shifts)) && field.filled != 0) {
            refuse(place + " has the type " + found->type + ", and values of the document need " +
                   database_.typeOf(field));
        }
        if (found->key && field.filled != of.rows) {
            refuse(place + " is the primary key, and a row of the document has none");
        }
        column.type = type.value_or(field.type);
    }
    if (!missing.empty()) {
        refuse(shownName(target.name) + " lacks columns of the document: " + missing +
               " (--replace makes it anew)");
    }
}

// The ordinals of one path go on after the greatest of all tables that have it.
void AppendedTables::shiftOrdinals() {
    std::unordered_map<std::string, std::vector<TargetColumn*>> ordinals;  // by path
    std::unordered_map<std::string, int64_t> greatest;
    const auto look = [&](const std::string& path, const std::string& table,
                          const std::string& column) {
        const Database::Rows rows =
            database_.query("SELECT max(" + quotedName(column) + ") FROM " + quotedName(table));
        int64_t& most = greatest[path];
        most = std::max<int64_t>(most, std::strtoll(rows[0][0].c_str(), nullptr, 10));
    };
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        for (std::size_t c = 0; c < tables_[t].columns.size(); ++c) {
            const Column column = parms_.schema.tables[t].table->columns[c];
            if (column.type != ColumnType::ORDINAL || column.path.empty()) {
                continue;
            }
            TargetColumn& target = tables_[t].columns[c];
            if (ordinals[column.path].empty()) {
                for (const auto& [table, name] : dictionary_.ordinalsOf(column.path)) {
                    const auto object =
                        objects_.find(nameKey(table, database_.limits().tableNames));
                    if (object != objects_.end() && object->second) {
                        look(column.path, table, name);
                    }
                }
            }
            if (tables_[t].there && !dictionary_.viewOf(tables_[t].name)) {
                look(column.path, tables_[t].name, target.name);
            }
            ordinals[column.path].push_back(&target);
        }
    }
    for (const auto& [path, columns] : ordinals) {
        for (TargetColumn* const column : columns) {
            column->shift = greatest[path];
        }
    }
}

}  // namespace qvej
