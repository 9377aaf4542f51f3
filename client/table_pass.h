// All tables of a document in one walk over its records.
//
//     qvej::TablePass pass(document, tables);
//     std::vector<std::unique_ptr<qvej::PassRow>> rows;  // one for each table
//     qvej::PassItem item;
//     while (pass.next(item)) {
//         if (rows[item.table]->take(item)) {
//             ... rows[item.table]->cell(i) ...
//         }
//     }
//
// A table has the rows that a Cursor on it has, in the same order; the rows of different tables
// come as they are completed.  The pass hands out values as the document has them; a PassRow makes
// cells of them, which lose nothing: numbers keep their digits, texts the blanks at their end, and
// null is not the same as no value.  The two know nothing of each other, so they may work on
// different threads when what is in an item is copied.
//
// Tested by tests/client/table_pass_test.cpp
#pragma once

#include "cell_values.h"
#include "document.h"
#include "row.h"
#include "row_work.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace qvej {

// A value as the document has it, or a count, or nothing; see qvejmapx.h.
using PassCell = JMAPPassCell;

struct PassItem {
    enum Kind {
        ROW,        // a row is complete
        NOT_NUMBER  // a value came, for the row in the making, that a numeric column cannot take
    };
    Kind kind;
    std::size_t table;                // its position in the list that the pass was given
    std::span<const PassCell> cells;  // one for each column; of a NOT_NUMBER: so far
    std::size_t column;               // of a NOT_NUMBER, as `text`
    std::string_view text;            // in the encoding of the document
};

// An item of the engine's.
[[nodiscard]] inline PassItem itemOf(const JMAPPassItem& raw) {
    return {raw.kind == JMAP_PASS_ROW ? PassItem::ROW : PassItem::NOT_NUMBER,
            static_cast<std::size_t>(raw.table),
            {raw.cells, static_cast<std::size_t>(raw.cellCount)},
            static_cast<std::size_t>(raw.column),
            {raw.text, static_cast<std::size_t>(raw.textLen)}};
}

// The item of a table that has a column for the name of its text in front, which the engine knows
// nothing of.  `cells` gets them; the item lives as long as they do.
[[nodiscard]] PassItem withSource(const PassItem& item, const TextSource& text,
                                  std::vector<PassCell>& cells);

class CarriedColumns;
class RowSource;

class TablePass {
   public:
    // Opens tables of the document, perhaps ALLDATA among them.  Both must outlive the pass.
    // `retain`: columns keep their values until new ones come.  `carry`: a column whose path does
    // not lie below its table's has the value of the row's own ancestor, wherever it stands in it:
    // the last one, or none; that needs further walks (carried_columns.h).  Throws QV_NOMEM,
    // QV_LIMIT_MEMORY.
    TablePass(const Document& document, const std::vector<const Table*>& tables,
              bool retain = false, bool carry = false);
    // The same for tables of the engine, which may be in no map.
    TablePass(const Document& document, const std::vector<JMAPTableh>& tables);
    ~TablePass();
    TablePass(const TablePass&) = delete;
    TablePass& operator=(const TablePass&) = delete;

    // The next item.  Cells and texts live until the next call.  False after the last.  Throws
    // QV_IO_..., QV_NOMEM; the pass is over then, a further call throws the same.  Throws
    // QV_LIMIT_MEMORY as the scan does, for what the caller holds counts as well.
    bool next(PassItem& item);

    // Before the first item, if it `works`: lets others work on all of them, on the threads where
    // they are made, and takes the results in order, on this one.  Throws as `next`, and what the
    // work throws.  While a result is taken, `column` tells what has come before its part.
    void work(const MakeRowWork& make, const TakeRowResult& take);
    [[nodiscard]] bool works() const;

    // Rows that come while the text is read may come slowly: then `flush` is called by `next`,
    // about a second after a row at the latest.
    void flushInTime(std::function<void()> flush);

    // Whether the texts that cells point to (not the cells) live as long as the document: all its
    // records are in memory, uncompressed.
    [[nodiscard]] bool textsStay() const { return textsStay_; }

    // Before the caller copies so much of an item.  Throws QV_LIMIT_MEMORY when there is no room.
    void checkRoom(std::size_t bytes) const;

    // Whether other threads make the rows: the document keeps no records.
    [[nodiscard]] bool walks() const { return walked_ != nullptr; }

    // What has come for a column so far; see qvejmapx.h.
    [[nodiscard]] JMAPPassColumn column(std::size_t table, std::size_t column) const;

    // Of a column that is carried, how many of the values that came are in a row, after the last
    // item; none: any other column.
    [[nodiscard]] std::optional<uint64_t> shown(std::size_t table, std::size_t column) const;

    // After the last item: a cell of a row that was begun and never complete.
    [[nodiscard]] const PassCell& left(std::size_t table, std::size_t column) const;

   private:
    bool nextOfEngine(PassItem& item);
    void addSource(PassItem& item);
    void open(const std::vector<JMAPTableh>& tables, bool retain);
    bool read(PassItem& item);

    const Document& document_;
    std::unique_ptr<CarriedColumns> carried_;  // null: there are none
    std::size_t unchecked_ = 0;                // cells since the last look at the memory
    std::unique_ptr<RowSource> walked_;        // null: the rows are made of records
    JMAPPassh handle_ = nullptr;
    bool textsStay_ = false;

    // Of a document whose tables have a column of the names of texts: the engine knows nothing of
    // it, and its columns come one earlier there.
    std::size_t sourceColumns_ = 0;  // 1: there is one
    std::size_t text_ = 0;           // that the last row is of
    std::vector<PassCell> row_;      // with its name in front
};

// The row of one table that an item of a pass brought.  On whatever thread; one thread at a time.
class PassRow final : public CellValues {
   public:
    // Throws QV_NOMEM and the status of an informat or format that cannot be opened.
    PassRow(const Document& document, const Table& table, RejectHandler onReject = {});

    // Between two rows: whether another object that begins after as many rows can take this one's
    // place.
    [[nodiscard]] bool replaceable() const { return startsAfresh(); }
    void beginAfter(uint64_t rows) { goOnAfter(rows); }

    // The row in the making will not be complete.
    using CellValues::forgetNotNumbers;

    // Takes an item of the table; its cells and texts must live until the next one is taken.  True:
    // the row is complete, and its rejected values have been reported.  Throws what the reject
    // handler throws.
    bool take(const PassItem& item);

    // A number in a numeric column, or a text there that is one, is DIGITS unless the column has a
    // format or an informat; a boolean is BOOLEAN where all of the column are, else 1 or 0.  A text
    // lives until the next item is taken.
    [[nodiscard]] Cell cell(std::size_t column) const override { return at(column); }

    // The same in the caller's own code, for loops over all cells.
    [[nodiscard]] [[gnu::always_inline]] Cell at(std::size_t column) const {
        const PassCell& cell = cells_[column];
        if (cell.kind == JMAP_CELL_MISSING) {
            return {};
        }
        const Place& place = this->place(column);
        if (place.converted != nullptr) {
            return converted(place, cell);
        }
        if (cell.kind == JMAP_CELL_COUNT) {
            return {Cell::COUNT, 0, {}, cell.count};
        }
        if (cell.kind == JMAP_KIND_NULL) {
            return {Cell::NUL};
        }
        return place.numeric ? number(place, cell) : character(column, place, cell);
    }

    // Rows completed so far.
    [[nodiscard]] uint64_t rows() const { return rowsEnded(); }

   private:
    // A cell that may be cut: of a character column without informat.
    struct Cuttable {
        std::size_t column;
        uint64_t length;
    };

    static std::string_view textOf(const PassCell& cell) {
        return {cell.text, static_cast<std::size_t>(cell.textLen)};
    }
    [[nodiscard]] Cell number(const Place& at, const PassCell& cell) const {
        return cell.kind == JMAP_KIND_NUMBER ? Cell{Cell::DIGITS, 0, textOf(cell)}
                                             : numberOfText(at, cell);
    }
    [[nodiscard]] Cell character(std::size_t column, const Place& at, const PassCell& cell) const {
        return {Cell::TEXT, 0, text(column, textOf(cell).substr(0, at.length))};
    }
    [[nodiscard]] Cell numberOfText(const Place& at, const PassCell& cell) const;
    [[nodiscard]] Cell asDouble(const PassCell& cell) const;
    [[nodiscard]] Cell converted(const Place& at, const PassCell& cell) const;
    void convertAll();
    void reportCuts();

    std::span<const PassCell> cells_;
    std::vector<Cuttable> cuttable_;
};

}  // namespace qvej
