// Tables and their columns.
//
// A document has nearly as many columns as paths, so no list of descriptions is kept: a column is
// described when it is asked for.
//
// Tested by tests/client/client_test.cpp
#pragma once

#include "qvejmapx.h"

#include "path_names.h"
#include "text.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qvej {

enum class ColumnType {
    ORDINAL = JMAP_ORDINAL,
    NUMERIC = JMAP_NUMERIC,
    CHARACTER = JMAP_CHARACTER
};

// What the values of a column are.  With a user's map it follows from the column's type, since the
// map may be for other documents too.
enum class LogicalType {
    BOOLEAN,  // true and false
    INTEGER,  // counts, of an ordinal
    DOUBLE,   // numbers
    TEXT,     // texts
    MIXED     // values of several kinds: cells are as the column's type says
};

// A FORMAT or INFORMAT of a map: a name of the catalogue or a "%" pattern.
struct Conversion {
    std::string name;  // empty: none
    uint64_t width = 0;
    uint64_t decimals = 0;  // 0: none given
};

struct Column {
    std::string name;
    std::string path;  // separator 0x02 (withSlashes shows it); empty: none
    ColumnType type;
    LogicalType logicalType;  // null does not count: any column may have it
    uint64_t length;  // bytes in a row: 8, or of a character column (to 32767) the map's length or
                      // else the longest value's

    // Of a user's map; else empty.
    std::string label = {};
    Conversion format = {};
    Conversion informat = {};
    bool quiet = false;  // values that the informat refuses are not reported
    bool retain = false;
    bool noretain = false;
    uint64_t currentLength = 0;       // longest value of the path in this document; 0: not a path
                                      // of a character column of the automatic map
    bool truncated = false;           // `length` is less than that
    bool lengthFromDocument = false;  // the map gave none
};

// The columns of a table, made one by one:
//
//     for (const qvej::Column& column : table.columns) ...
//
// A Column is a copy, which belongs to the caller.  The list lives as long as the document.
class Columns {
   public:
    class Iterator {
       public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Column;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = Column;

        Iterator(const Columns& columns, std::size_t at) : columns_(&columns), at_(at) {}
        Column operator*() const { return (*columns_)[at_]; }
        Iterator& operator++() {
            ++at_;
            return *this;
        }
        Iterator operator++(int) { return {*columns_, at_++}; }
        bool operator==(const Iterator& other) const { return at_ == other.at_; }

       private:
        const Columns* columns_;
        std::size_t at_;
    };

    // Those of a table of the engine, for ORIGINAL one of the automatic map.  `codec` must outlive
    // the list.
    Columns(JMAPTableh table, const TextCodec& codec, Naming naming = Naming::MAP);

    // Puts a column before the others that is none of the engine.
    void addFirst(Column column) { first_ = std::make_shared<const Column>(std::move(column)); }

    // Nothing is known of the document's values: of a user's map, a length that is not given is the
    // greatest.
    void setUncounted() { uncounted_ = true; }

    [[nodiscard]] std::size_t size() const { return handles_.size() + ownColumns(); }
    [[nodiscard]] bool empty() const { return size() == 0; }
    [[nodiscard]] Column operator[](std::size_t i) const;
    [[nodiscard]] ColumnType type(std::size_t i) const;  // of a column, without describing the rest
    [[nodiscard]] Iterator begin() const { return {*this, 0}; }
    [[nodiscard]] Iterator end() const { return {*this, size()}; }
    [[nodiscard]] const TextCodec& codec() const { return *codec_; }

   private:
    void nameOriginally(JMAPTableh table);
    [[nodiscard]] std::size_t ownColumns() const { return first_ == nullptr ? 0 : 1; }

    const TextCodec* codec_;
    std::shared_ptr<const Column> first_;  // null: none
    std::vector<JMAPColumnh> handles_;     // of the others
    bool uncounted_ = false;
    // Of the document's own names, in order; empty: each is its last piece.  Null: the map's names.
    std::shared_ptr<const std::vector<PathName>> original_;
};

struct Table {
    std::string name;
    Columns columns;
    bool alldata;       // every value of the document, with the labels of its path
    JMAPTableh handle;  // the engine's

    [[nodiscard]] std::string path() const;  // as a column's

    // The path of the object or array that the table is made of: that path or, of a table of
    // ordinals alone, a longer one.  Empty: it has none, or is of a user's map.
    [[nodiscard]] std::string objectPath() const;
};

// All of the tables.
[[nodiscard]] std::vector<const Table*> each(const std::vector<Table>& tables);

}  // namespace qvej
