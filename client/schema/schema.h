// The tables of a document as a database declares them: types of columns, keys, who belongs to
// whom.
//
//     qvej::SchemaBuilder builder(document, tables, {});
//     for each complete row of a pass over the tables:
//         builder.take(item.table, row);
//     const qvej::Schema schema = builder.end();
//
// Several threads can share the rows: each takes some that follow one another, with a builder of
// its own, and what it finds is added in the order of the rows.
//
//     const qvej::SchemaBuilder noRows = builder;
//     qvej::SchemaBuilder ofThread = noRows;
//     ... ofThread.take(item.table, row) ...  // on any thread
//     builder.add(ofThread.takeBatch(noRows));
//
// Types and keys are found from the rows, so they hold for every row.
//
// Tested by tests/client/schema_test.cpp
#pragma once

#include "../document.h"
#include "../table_pass.h"
#include "column_facts.h"
#include "data_type.h"
#include "key_facts.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

struct Field {
    DataType type = {};
    bool any = false;        // a value has come; true if none need come to know the type
    bool minusZero = false;  // a number is -0
    enum : uint8_t { NO_UNIX, SECONDS, MILLISECONDS } unixLike = NO_UNIX;  // as whole numbers look
    uint64_t filled = 0;      // rows with a value; only with SchemaOptions::counts, as the next
    std::size_t longest = 0;  // bytes of the longest text or number
};

// The table that the rows of another belong to.
struct ParentKey {
    std::size_t table;        // its position in the schema
    std::size_t column;       // the ordinal here
    std::size_t ordinal;      // and the same there, its own
    uint64_t orphans = 0;     // rows whose parent is no row: then it is no foreign key
    bool one = false;         // a parent has at most one row here
    bool foreignKey = false;  // there are no orphans, and the parent has a primary key
};

struct TableSchema {
    const Table* table = nullptr;
    uint64_t rows = 0;
    std::vector<Field> fields = {};        // of each column
    std::optional<std::size_t> own = {};   // the ordinal that counts the rows; none: it has none
    uint64_t missing = 0;                  // rows without it
    uint64_t repeated = 0;                 // rows with that of a row before
    bool key = false;                      // it is a primary key
    std::optional<ParentKey> parent = {};  // none: no table of the schema is above
};

struct Schema {
    std::vector<TableSchema> tables;  // in the order they were given in
};

struct SchemaOptions {
    bool dates = true;   // texts that all are dates or times get that type
    bool counts = true;  // Field::filled and Field::longest are asked for, too
};

// Made on the document's thread.  All else is for any thread, one at a time: of the document it
// asks what any thread may ask (jmapIsInexact).
class SchemaBuilder {
   public:
    // All must outlive this object and its copies.
    SchemaBuilder(const Document& document, const std::vector<const Table*>& tables,
                  const SchemaOptions& options);

    // Bytes of one without rows, nearly.
    [[nodiscard]] static std::size_t sizeFor(const std::vector<const Table*>& tables,
                                             const SchemaOptions& options);

    // The positions of a table and of those above it, in order.  A schema of these alone tells of
    // that table what the whole schema tells.
    [[nodiscard]] std::vector<std::size_t> withTablesAbove(std::size_t table) const;

    // A complete row of the table at that position.
    void take(std::size_t table, const PassRow& row);

    // What has been found of some rows: of the tables that had any.
    class Batch;

    // What has been found since the last call; there are no rows again then.  `noRows`: a builder
    // without rows, of which this one is a copy.
    [[nodiscard]] Batch takeBatch(const SchemaBuilder& noRows);

    // The rows that come after those of this one; `later` is of the same tables and options.
    // However the rows are divided, the schema is that of one builder that takes all.
    void add(const Batch& later);

    // After the last row.
    [[nodiscard]] Schema end() const;

   private:
    static constexpr std::size_t kNone = SIZE_MAX;

    struct OfTable {
        std::size_t firstColumn;           // in the lists of all columns
        std::size_t own = kNone;           // the ordinal that counts the rows
        std::size_t parent = kNone;        // the table above
        std::size_t parentColumn = kNone;  // its ordinal here
        uint64_t rows = 0;
        OwnOrdinals ordinals = {};
        ParentOrdinals parents = {};
    };
    void findParents();
    void takeColumns(const OfTable& of, const PassRow& row);
    void begin(std::size_t table);
    [[nodiscard]] std::size_t columnsOf(std::size_t table) const {
        return (*tables_)[table]->columns.size();
    }
    // Do further values of a column matter?
    [[nodiscard]] bool isOpen(const ColumnFacts& column) const {
        return options_.counts || !column.settled();
    }
    [[nodiscard]] Field fieldOf(std::size_t column) const;

    const Document* document_;
    const std::vector<const Table*>* tables_;
    SchemaOptions options_;
    std::vector<OfTable> facts_;
    std::vector<ColumnFacts> columns_;  // of all tables, one table after the other
    std::vector<ColumnCounts> counts_;  // likewise; empty unless they are asked for
    std::vector<std::size_t> used_;     // tables with rows
};

class SchemaBuilder::Batch {
   public:
    Batch() = default;

    // What `bytes` gave.  `noRows`: a builder without rows of the same tables and options, perhaps
    // in another process.  Throws QV_BADPARMS for other bytes.
    Batch(std::string_view bytes, const SchemaBuilder& noRows);

    // Bytes that can be stored and sent; in the layout of fact_bytes.h.
    [[nodiscard]] std::string bytes();

   private:
    friend SchemaBuilder;

    std::vector<std::size_t> tables_;
    std::vector<OfTable> facts_;  // of each of them; their columns one after the other:
    std::vector<ColumnFacts> columns_;
    std::vector<ColumnCounts> counts_;
};

// What has been found by a pass of its own over the tables, for a sum of several.  Throws as
// TablePass and PassRow.
//   noRows  a builder without rows of these tables
[[nodiscard]] SchemaBuilder::Batch factsOf(const Document& document,
                                           const std::vector<const Table*>& tables, bool carry,
                                           const SchemaBuilder& noRows);

// By a pass of its own over the tables.  Throws as TablePass and PassRow.
//   retain, carry  as of TablePass
[[nodiscard]] Schema schemaOf(const Document& document, const std::vector<const Table*>& tables,
                              bool retain, bool carry, unsigned threads,
                              const SchemaOptions& options);

// The same by that pass, which is at its end afterwards.
//   onRows    when there is one: is told of further rows, how many
//   rejected  if that is not null: the values are added that columns cannot take, or in part only
[[nodiscard]] Schema schemaOf(const Document& document, const std::vector<const Table*>& tables,
                              TablePass& pass, unsigned threads, const SchemaOptions& options,
                              const std::function<void(uint64_t)>& onRows = {},
                              uint64_t* rejected = nullptr);

}  // namespace qvej
