// All tables of a document in one walk over its records.
//
//     qvej::TablePass pass(document, tables);
//     std::vector<std::unique_ptr<qvej::PassRow>> rows;  // one for each table
//     qvej::PassItem item;
//     while (pass.next(item)) {
//         if (rows[item.table]->take(item)) {
//             sinks[item.table]->row(*rows[item.table]);
//         }
//     }
//
// A table has the rows that a Cursor on it has, in the same order; the rows of different tables
// come as they are completed.  The pass hands out values as the document has them; a PassRow makes
// cells of them.  The two know nothing of each other, so they may work on different threads when
// what is in an item is copied.
//
// Tested by tests/tool/table_pass_test.cpp
#pragma once

#include "client/cell_values.h"
#include "client/document.h"
#include "client/row.h"

#include <cstdint>
#include <span>
#include <string>
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

class TablePass {
   public:
    // Opens tables of the document, perhaps ALLDATA among them.  Both must outlive the pass.
    // `retain`: columns keep their values until new ones come. Throws QV_NOMEM.
    TablePass(const Document& document, const std::vector<const Table*>& tables,
              bool retain = false);
    ~TablePass();
    TablePass(const TablePass&) = delete;
    TablePass& operator=(const TablePass&) = delete;

    // The next item.  Cells and texts live until the next call.  False after the last.  Throws
    // QV_IO_..., QV_NOMEM; the pass is over then, a further call throws the same.
    bool next(PassItem& item);

    // Whether the texts that cells point to (not the cells) live as long as the document: its
    // records lie in memory as they are.
    [[nodiscard]] bool textsStay() const { return textsStay_; }

   private:
    JMAPPassh handle_ = nullptr;
    bool textsStay_ = false;
};

// The row of one table that an item of a pass brought.  What `cell` gives is what Cursor::cell
// gives. On whatever thread; one thread at a time.
class PassRow final : public CellValues {
   public:
    // Throws QV_NOMEM and the status of an informat or format that cannot be opened.
    PassRow(const Document& document, const Table& table, RejectHandler onReject = {});

    // Takes an item of the table; its cells and texts must live until the next one is taken.  True:
    // the row is complete, and its rejected values have been reported.  Throws what the reject
    // handler throws.
    bool take(const PassItem& item);

    // A text lives until the next item is taken.
    [[nodiscard]] Cell cell(std::size_t column) const override;

    // Rows completed so far.
    [[nodiscard]] uint64_t rows() const { return rowsEnded(); }

   private:
    static std::string_view rawText(const PassCell& cell);
    [[nodiscard]] Cell number(const PassCell& cell) const;

    std::span<const PassCell> cells_;
};

}  // namespace qvej
