// A database as the tables of a document need it: what it can hold, what it has, statements, rows.
//
// Tested by tests/formats/databases.py
#pragma once

#include "client/schema/schema.h"
#include "formats/sink.h"
#include "formats/target_names.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qvej {

// The text between double quotes, as SQL has names; between single quotes, as it has texts.
[[nodiscard]] std::string quotedName(std::string_view name);
[[nodiscard]] std::string quotedText(std::string_view text);

// A name as messages have it: even an empty one can be seen.
[[nodiscard]] std::string shownName(const std::string& name);

// Equal for names that are the same to the database.
[[nodiscard]] std::string nameKey(const std::string& name, const NameRules& rules);

// Why rows are refused whose parents are not there.
//   rows  "2 rows of orders_items"
[[nodiscard]] std::string parentsMissing(const std::string& rows, const std::string& parent);

struct TargetTable;

struct DatabaseLimits {
    std::string_view product;  // as messages call it
    NameRules tableNames, columnNames;
    std::size_t columns;  // of a table
    std::size_t joined;   // tables of a view
    bool emptyTables;     // a table may have no columns
    bool laterKeys;       // keys can be made after the rows, and tables dropped together
    bool fewTypes;        // a type of the database stands for several
    std::string_view tableEnd;
};

// A table or anything else that has a name which no table can have then.
struct DatabaseObject {
    std::string name;
    bool table;
};

// By `nameKey`: is it a table?
using ObjectKinds = std::unordered_map<std::string, bool>;

struct DatabaseColumn {
    std::string name;
    std::string type;  // as `typeOf` names it
    bool key;          // of the primary key, or a part of it
};

// One transaction, which its end takes back unless it is committed.  All throw qvej::Error.
class Database {
   public:
    using Rows = std::vector<std::vector<std::string>>;  // null is empty

    Database() = default;
    virtual ~Database() = default;
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    [[nodiscard]] virtual const DatabaseLimits& limits() const = 0;

    virtual void run(const std::string& sql) = 0;
    [[nodiscard]] virtual Rows query(const std::string& sql) = 0;

    [[nodiscard]] virtual std::vector<DatabaseObject> objects() = 0;
    [[nodiscard]] virtual std::vector<DatabaseColumn> columnsOf(const std::string& table) = 0;

    // The type that keeps the values of a column, as the database names it.
    [[nodiscard]] virtual std::string typeOf(const Field& field) const = 0;

    // How cells are written to a column that is there: a type for `typed_value.h`.  Nothing: the
    // column does not keep all of them.
    [[nodiscard]] virtual std::optional<DataType> writtenAs(const Field& field,
                                                            const std::string& type) const = 0;

    // The sink of a table that is there.  Rows may come before those of their parents.
    //   columnList  of an INSERT
    // All must outlive it.
    [[nodiscard]] virtual std::unique_ptr<Sink> sink(const TargetTable& table,
                                                     const std::string& columnList) = 0;

    // A sink that makes pieces for that one, on any thread.
    [[nodiscard]] virtual std::unique_ptr<Sink> pieceSink(const TargetTable& table) const = 0;

    // When all sinks have ended: throws when a foreign key that was there finds no row.
    virtual void checkForeignKeys() = 0;

    // Ends the transaction.
    virtual void commit() = 0;
};

}  // namespace qvej
