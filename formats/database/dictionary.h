// Two tables that say what the others are, and where they and their columns come from:
//
//     qvejmap_tables    a row for each table
//     qvejmap_columns   a row for each column; an ordinal has no original name
//
// Tested by tests/formats/databases.py
#pragma once

#include "formats/database/database.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qvej {

struct TargetTable;

class Dictionary {
   public:
    // What its tables are called, unless another table is.
    static constexpr std::string_view kTables = "qvejmap_tables";
    static constexpr std::string_view kColumns = "qvejmap_columns";

    struct Ordinal {
        std::string table, column;
    };

    // A table of an earlier run.
    struct Earlier {
        std::string name, view, path, parent;  // empty: there is none
    };

    // What it calls the path of a table: that of its objects, which a table of ordinals alone has
    // another path for.
    [[nodiscard]] static std::string pathOf(const Table& table);

    explicit Dictionary(Database& database) : database_(database) {}

    // Was it made by an earlier run: the first of the two, or the second?
    [[nodiscard]] bool isEarlier(std::size_t which, const std::string& table);

    // The names of its tables, and of each whether it is there.
    void name(const std::string& tables, bool tablesThere, const std::string& columns,
              bool columnsThere);

    // What earlier runs say: the columns that count the rows of a path; the view of a table, empty
    // when it has none, nothing when the table is not known.
    [[nodiscard]] std::vector<Ordinal> ordinalsOf(std::string_view path);
    [[nodiscard]] const std::vector<Earlier>& tables();
    [[nodiscard]] std::optional<std::string> viewOf(const std::string& table);

    // Says what the tables are, once they have their rows.
    void write(const Schema& schema, const std::vector<TargetTable>& tables);

   private:
    // Rows of one table, that go to it many at a time.
    struct Rows {
        std::string head;  // INSERT INTO ...
        std::string values = {};
        std::size_t count = 0;
    };

    void loadEarlier();
    void makeTables();
    void forget(const TargetTable& table);
    void addTable(const Schema& schema, const std::vector<TargetTable>& tables, std::size_t table,
                  Rows& rows);
    void addColumns(const TableSchema& schema, const TargetTable& table, Rows& rows);
    void updateAppended(const TableSchema& schema, const TargetTable& table);
    void put(Rows& rows, const std::vector<std::string>& values);
    void flush(Rows& rows);

    Database& database_;
    std::string tables_, columns_;  // in quotes
    bool tablesThere_ = false, columnsThere_ = false, loaded_ = false;
    std::unordered_map<std::string, std::vector<Ordinal>> ordinals_;  // by path
    std::vector<Earlier> earlier_;
};

}  // namespace qvej
