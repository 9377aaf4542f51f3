// See database_tables.h.
#include "formats/database/database_tables.h"

#include "client/error.h"
#include "client/text.h"
#include "formats/database/appended_tables.h"
#include "formats/database/joined_view.h"

#include <algorithm>
#include <utility>

namespace qvej {

namespace {

std::vector<std::string> namesOf(const Columns& columns) {
    std::vector<std::string> names;
    names.reserve(columns.size());
    for (const Column& column : columns) {
        names.push_back(column.name);
    }
    return names;
}

}  // namespace

DatabaseTables::DatabaseTables(Database& database, const StoreParms& parms)
    : database_(database), parms_(parms), schema_(parms.schema), dictionary_(database) {}

void DatabaseTables::make() {
    if (!parms_.isNew) {
        loadObjects();
    }
    nameTables();
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        checkExisting(t);
        nameColumns(t);
    }
    findDictionary();
    checkReplaced();
    if (parms_.options.existing == FormatOptions::APPEND) {
        AppendedTables appended(database_, objects_, dictionary_, parms_, tables_);
        appended.check();
        appended.shiftOrdinals();
    }
    dropReplaced();
    nameTheRest();
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        if (!tables_[t].there) {
            makeTable(t);
        }
    }
}

void DatabaseTables::loadObjects() {
    objects_.clear();
    objectNames_.clear();
    for (DatabaseObject& object : database_.objects()) {
        objects_[key(object.name)] = object.table;
        objectNames_.push_back(std::move(object.name));
    }
}

std::string DatabaseTables::key(const std::string& name) const {
    return nameKey(name, database_.limits().tableNames);
}

void DatabaseTables::refuse(const std::string& sentence) const {
    throw Error(QV_IO_REFUSED, sentence, parms_.shownTarget);
}

void DatabaseTables::noteChanges(const FittedNames& fitted, const std::vector<std::string>& names,
                                 const std::string& table) {
    for (const std::size_t i : fitted.changed) {
        if (changedNames_++ == 0) {
            const std::string start = table.empty() ? table : shownName(table) + ".";
            firstChanged_ = start + shownName(names[i]) + " is " + start + fitted.names[i];
        }
    }
}

void DatabaseTables::nameTables() {
    std::vector<std::string> names;
    for (const TableSchema& table : schema_.tables) {
        names.push_back(table.table->name);
    }
    FittedNames fitted = fittedNames(names, database_.limits().tableNames);
    noteChanges(fitted, names, {});
    for (std::string& name : fitted.names) {
        tables_.push_back({std::move(name)});
    }
}

void DatabaseTables::nameColumns(std::size_t table) {
    const Columns& columns = schema_.tables[table].table->columns;
    const DatabaseLimits& limits = database_.limits();
    const std::string& name = tables_[table].name;
    if (columns.size() > limits.columns) {
        refuse(shownName(name) + " has " + withCommas(columns.size()) + " columns, and " +
               std::string(limits.product) + " takes " + withCommas(limits.columns) +
               " in a table (--shape auto makes rows of names that are data)");
    }
    if (columns.empty() && !limits.emptyTables) {
        refuse(shownName(name) + " has no columns, and " + std::string(limits.product) +
               " has no such tables (--table chooses others)");
    }
    const std::vector<std::string> names = namesOf(columns);
    FittedNames fitted = fittedNames(names, limits.columnNames);
    noteChanges(fitted, names, name);
    for (std::size_t c = 0; c < names.size(); ++c) {
        tables_[table].columns.push_back(
            {std::move(fitted.names[c]), schema_.tables[table].fields[c].type});
    }
}

void DatabaseTables::checkExisting(std::size_t table) {
    const std::string& name = tables_[table].name;
    const auto found = objects_.find(key(name));
    if (found == objects_.end()) {
        return;
    }
    if (!found->second) {
        refuse("it has a view, an index or the like of the name " + shownName(name));
    }
    switch (parms_.options.existing) {
        case FormatOptions::REFUSE:
            refuse("it has a table " + shownName(name) +
                   " already (--replace makes it anew, --append adds rows to it)");
        case FormatOptions::REPLACE:
            replaced_.push_back(table);
            break;
        case FormatOptions::APPEND:
            tables_[table].there = true;
    }
}

// Views and indexes have names that nothing else has.
void DatabaseTables::nameTheRest() {
    children_ = oneToOneChildren(schema_);
    std::vector<std::string> wanted;
    std::vector<std::string*> places;
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        TargetTable& table = tables_[t];
        if (table.there) {
            continue;  // it keeps what it has
        }
        if (!children_[t].empty()) {
            wanted.push_back(table.name + "_joined");
            places.push_back(&table.view);
        }
        if (const std::optional<ParentKey>& parent = schema_.tables[t].parent) {
            wanted.push_back(table.name + "_" + table.columns[parent->column].name);
            places.push_back(&table.index);
        }
    }
    const std::vector<std::string> names = freeNames(wanted);
    for (std::size_t i = 0; i < names.size(); ++i) {
        *places[i] = names[i];
    }
}

std::vector<std::string> DatabaseTables::freeNames(const std::vector<std::string>& wanted) const {
    std::vector<std::string> taken = objectNames_;
    for (const TargetTable& table : tables_) {
        taken.push_back(table.name);
    }
    NameRules rules = database_.limits().tableNames;
    rules.taken = taken;
    return fittedNames(wanted, rules).names;
}

void DatabaseTables::findDictionary() {
    std::vector<std::string> names =
        freeNames({std::string(Dictionary::kTables), std::string(Dictionary::kColumns)});
    bool there[] = {false, false};
    for (const std::string& object : objectNames_) {
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (dictionary_.isEarlier(i, object)) {
                names[i] = object;
                there[i] = true;
            }
        }
    }
    dictionary_.name(names[0], there[0], names[1], there[1]);
}

// Tables that belong together are replaced together: the rows of one name rows of the other.
void DatabaseTables::checkReplaced() {
    const auto isReplaced = [&](const std::string& name) {
        return std::any_of(replaced_.begin(), replaced_.end(),
                           [&](std::size_t t) { return key(tables_[t].name) == key(name); });
    };
    if (replaced_.empty()) {
        return;
    }
    for (const Dictionary::Earlier& earlier : dictionary_.tables()) {
        if (!earlier.parent.empty() && isReplaced(earlier.name) != isReplaced(earlier.parent)) {
            refuse("rows of " + shownName(earlier.name) + " belong to rows of " +
                   shownName(earlier.parent) + ": --replace must make both anew");
        }
    }
}

void DatabaseTables::dropReplaced() {
    std::string all;
    for (const std::size_t t : replaced_) {
        const std::string& name = tables_[t].name;
        const std::string view = dictionary_.viewOf(name).value_or("");
        const auto object = objects_.find(key(view));
        if (!view.empty() && object != objects_.end() && !object->second) {
            database_.run("DROP VIEW " + quotedName(view));
        }
    }
    for (const std::size_t t : replaced_) {
        all += (all.empty() ? "" : ", ") + quotedName(tables_[t].name);
        if (!database_.limits().laterKeys) {
            database_.run("DROP TABLE " + std::exchange(all, {}));
        }
    }
    if (!all.empty()) {
        database_.run("DROP TABLE " + all);  // they may refer to each other
    }
    if (!replaced_.empty()) {
        loadObjects();
    }
}

void DatabaseTables::makeTable(std::size_t table) {
    const TargetTable& target = tables_[table];
    const TableSchema& of = schema_.tables[table];
    const bool keys = !database_.limits().laterKeys;
    std::string sql;
    for (std::size_t c = 0; c < target.columns.size(); ++c) {
        sql += (sql.empty() ? "\n  " : ",\n  ") + quotedName(target.columns[c].name) + " " +
               database_.typeOf(of.fields[c]);
        if (keys && of.key && c == *of.own) {
            sql += " PRIMARY KEY";
        } else if (keys && of.parent && c == of.parent->column && hasParentKey(table)) {
            sql += " " + reference(table);
        }
    }
    database_.run("CREATE TABLE " + quotedName(target.name) + "(" + sql + ")" +
                  std::string(database_.limits().tableEnd));
}

// A table that was there may have no key.
bool DatabaseTables::hasParentKey(std::size_t table) {
    const std::optional<ParentKey>& parent = schema_.tables[table].parent;
    if (!parent || !parent->foreignKey) {
        return false;
    }
    const TargetTable& above = tables_[parent->table];
    if (!above.there) {
        return true;
    }
    const NameRules& rules = database_.limits().columnNames;
    const std::string name = nameKey(above.columns[parent->ordinal].name, rules);
    const std::vector<DatabaseColumn> columns = database_.columnsOf(above.name);
    const auto isKey = [](const DatabaseColumn& column) { return column.key; };
    return std::count_if(columns.begin(), columns.end(), isKey) == 1 &&
           nameKey(std::find_if(columns.begin(), columns.end(), isKey)->name, rules) == name;
}

std::string DatabaseTables::reference(std::size_t table) const {
    const ParentKey& parent = *schema_.tables[table].parent;
    const TargetTable& above = tables_[parent.table];
    return "REFERENCES " + quotedName(above.name) + "(" +
           quotedName(above.columns[parent.ordinal].name) + ")";
}

std::string DatabaseTables::columnList(std::size_t table) const {
    std::string list;
    for (const TargetColumn& column : tables_[table].columns) {
        list += (list.empty() ? "(" : ", ") + quotedName(column.name);
    }
    return list.empty() ? list : list + ")";
}

void DatabaseTables::finish() {
    makeViews();
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        if (!tables_[t].index.empty()) {
            database_.run("CREATE INDEX " + quotedName(tables_[t].index) + " ON " +
                          quotedName(tables_[t].name) + "(" +
                          quotedName(tables_[t].columns[schema_.tables[t].parent->column].name) +
                          ")");
        }
    }
    if (database_.limits().laterKeys) {
        makeKeys();
    }
    dictionary_.write(schema_, tables_);
}

// A foreign key needs the primary key of the other table.
void DatabaseTables::makeKeys() {
    const auto alter = [&](std::size_t t, const std::string& key) {
        database_.run("ALTER TABLE " + quotedName(tables_[t].name) + " ADD " + key);
    };
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        const TableSchema& of = schema_.tables[t];
        if (!tables_[t].there && of.key) {
            alter(t, "PRIMARY KEY (" + quotedName(tables_[t].columns[*of.own].name) + ")");
        }
    }
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        if (!tables_[t].there && hasParentKey(t)) {
            const std::string& column = tables_[t].columns[schema_.tables[t].parent->column].name;
            alter(t, "FOREIGN KEY (" + quotedName(column) + ") " + reference(t) + " DEFERRABLE");
        }
    }
}

void DatabaseTables::makeViews() {
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        TargetTable& table = tables_[t];
        if (table.there) {
            keepView(table);
            continue;
        }
        if (table.view.empty()) {
            continue;
        }
        const std::string select = joinedSelect(schema_, tables_, children_, t, database_.limits());
        if (select.empty()) {
            remarks_.push_back(shownName(table.name) + " has no view " +
                               std::exchange(table.view, {}) + ": it would join more than " +
                               std::string(database_.limits().product) + " takes");
        } else {
            database_.run("CREATE VIEW " + quotedName(table.view) + " AS " + select);
        }
    }
}

// The view of a table that got more rows: only as long as it has each of them once.
void DatabaseTables::keepView(TargetTable& table) {
    const std::string view = dictionary_.viewOf(table.name).value_or("");
    const auto object = objects_.find(key(view));
    if (view.empty() || object == objects_.end() || object->second) {
        return;
    }
    const auto count = [&](const std::string& name) {
        return database_.query("SELECT count(*) FROM " + quotedName(name))[0][0];
    };
    if (count(view) == count(table.name)) {
        table.view = view;
    } else {
        database_.run("DROP VIEW " + quotedName(view));
        remarks_.push_back("the view " + view + " is gone: a row of " + shownName(table.name) +
                           " has several rows in a table that it joined");
    }
}

std::vector<std::string> DatabaseTables::remarks() const {
    std::vector<std::string> remarks = remarks_;
    if (changedNames_ != 0) {
        remarks.push_back(
            (changedNames_ == 1 ? "1 name differs, since "
                                : withCommas(changedNames_) + " names differ, since ") +
            std::string(database_.limits().product) + " takes no other: " + firstChanged_ +
            (changedNames_ == 1 ? std::string()
                                : " (qvejmap_tables and qvejmap_columns list them)"));
    }
    return remarks;
}

}  // namespace qvej
