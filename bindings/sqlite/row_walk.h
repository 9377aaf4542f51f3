// The rows of a table in order, all or those whose ordinal is in a range.
//
//     RowWalk walk(file, table);
//     walk.begin({.column = 0, .low = 7, .high = 9});
//     while (walk.next()) { ... walk.row().cell(c) ... }
//
// Rows come from the beginning of the document.  But a range that begins after the rows that were
// passed goes on from there, so that a join in the order of the document is one walk.
//
// Tested by tests/bindings/sqlite_extension.py
#pragma once

#include "bindings/sqlite/open_file.h"
#include "client/table_pass.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>

namespace qvej::sqlite {

struct OrdinalRange {
    std::optional<std::size_t> column = {};  // none: all rows
    int64_t low = std::numeric_limits<int64_t>::min();
    int64_t high = std::numeric_limits<int64_t>::max();  // both are in it
};

class RowWalk {
   public:
    RowWalk(std::shared_ptr<const OpenFile> file, std::size_t table);

    // All throw Error.  The range is of a column that OpenFile::ascends.
    void begin(const OrdinalRange& range);
    // False after the last row of the range.
    bool next();

    [[nodiscard]] const PassRow& row() const { return *row_; }
    [[nodiscard]] const OpenFile& file() const { return *file_; }
    [[nodiscard]] std::size_t table() const { return table_; }
    [[nodiscard]] const TableSchema& schema() const { return file_->schema().tables[table_]; }

   private:
    void restart();
    bool fetch();
    [[nodiscard]] int64_t ordinal() const;

    std::shared_ptr<const OpenFile> file_;
    std::size_t table_;
    OrdinalRange range_;
    bool single_ = false;  // no more than one row can be in the range
    std::unique_ptr<PassRow> row_;
    std::unique_ptr<TablePass> pass_;  // null: none has begun, or it failed
    // Where the pass stands.
    enum { BEFORE, AT_ROW, AT_END } at_ = BEFORE;  // a row, which may be of the next range
    bool handed_ = false;  // the row was in the range and has been handed out
    int64_t passed_ = 0;   // the ordinal of the last row before it; with no row, too low for any
};

}  // namespace qvej::sqlite
