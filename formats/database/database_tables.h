// The tables of a document in a database: made before the rows; keys, indexes, views and a
// dictionary after them.
//
// Tested by tests/formats/databases.py and tests/tool/golden/databases.t
#pragma once

#include "formats/database/database.h"
#include "formats/database/dictionary.h"
#include "formats/formats.h"
#include "formats/store.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qvej {

struct TargetColumn {
    std::string name;
    DataType type;      // that cells are written as
    int64_t shift = 0;  // of an ordinal: what is added to it
};

struct TargetTable {
    std::string name;
    std::vector<TargetColumn> columns = {};
    bool there = false;      // rows are appended to it
    std::string view = {};   // of it with its one-to-one children; empty: none
    std::string index = {};  // of the parents' ordinal
};

class DatabaseTables {
   public:
    // All must outlive this object.
    DatabaseTables(Database& database, const StoreParms& parms);

    // Throws before anything has changed when the tables do not fit the database; then drops what
    // is to be replaced and makes the tables.
    void make();

    [[nodiscard]] const TargetTable& operator[](std::size_t table) const { return tables_[table]; }

    // "("a", "b")"
    [[nodiscard]] std::string columnList(std::size_t table) const;

    // After the rows.
    void finish();

    // Sentences on names that had to change, and on views.
    [[nodiscard]] std::vector<std::string> remarks() const;

   private:
    void loadObjects();
    void nameTables();
    void checkExisting(std::size_t table);
    void nameColumns(std::size_t table);
    void noteChanges(const FittedNames& fitted, const std::vector<std::string>& names,
                     const std::string& table);
    void findDictionary();
    void checkReplaced();
    void dropReplaced();
    void nameTheRest();
    [[nodiscard]] std::vector<std::string> freeNames(const std::vector<std::string>& wanted) const;
    void makeTable(std::size_t table);
    [[nodiscard]] bool hasParentKey(std::size_t table);
    [[nodiscard]] std::string reference(std::size_t table) const;
    void makeKeys();
    void makeViews();
    void keepView(TargetTable& table);
    [[nodiscard]] std::string key(const std::string& name) const;
    [[noreturn]] void refuse(const std::string& sentence) const;

    Database& database_;
    const StoreParms& parms_;
    const Schema& schema_;
    std::vector<TargetTable> tables_;
    std::vector<std::size_t> replaced_;               // tables that are made anew
    std::vector<std::vector<std::size_t>> children_;  // of each table, one-to-one
    Dictionary dictionary_;
    ObjectKinds objects_;  // of the database
    std::vector<std::string> objectNames_;
    std::size_t changedNames_ = 0;
    std::string firstChanged_;  // "Orders is Orders~2"
    std::vector<std::string> remarks_;
};

}  // namespace qvej
