// Rows of one table.
//
// Tested by tests/client/client_test.cpp
#pragma once

#include "qvejmapx.h"

#include "cell_values.h"
#include "document.h"
#include "row.h"

#include <cstdint>
#include <cstring>
#include <exception>
#include <string_view>
#include <vector>

namespace qvej {

// Reads a table of a finished document, row by row.  Any number of cursors may be open on one
// document; no two may be moved at the same time.  The document must outlive them.
class Cursor final : public CellValues {
   public:
    // `retain`: a column keeps its value until a new one comes.  Throws QV_NOMEM and the status of
    // an informat or format that cannot be opened; QV_UNSUPPORTED when the tables have a column of
    // the names of texts, which a TablePass has.
    Cursor(const Document& document, const Table& table, bool retain = false,
           RejectHandler onReject = {});
    ~Cursor() override;

    // Moves to the next row (first to the first).  False after the last.  Throws QV_IO_...,
    // QV_NOMEM: reading is over then, a further call throws the same until `reset`.  Throws what
    // the reject handler throws.
    bool next();

    // Before the first row again.
    void reset();

    // What the row buffer has: NUMBER, MISSING or TEXT.  A character cell is never missing, and
    // comes without the blanks at its end, since rows are padded with blanks (a PassRow has them).
    // A text lives until the next call of `next` or the cursor's end.
    [[nodiscard]] Cell cell(std::size_t column) const override {
        const Place& at = place(column);
        const Cell plain = at.numeric ? number(column) : character(column);
        if (at.converted == nullptr) {
            return plain;
        }
        const Cell cell = convertedCell(at, plain);
        return cell.kind != Cell::NUL ? cell : Cell{at.numeric ? Cell::MISSING : Cell::TEXT};
    }

   private:
    [[nodiscard]] Cell character(std::size_t column) const {
        const std::string_view padded(row_ + offsets_[column], place(column).length);
        return {Cell::TEXT, 0, text(column, withoutPadding(padded, isUtf8()))};
    }
    [[nodiscard]] Cell number(std::size_t column) const {
        uint64_t bits = 0;
        std::memcpy(&bits, row_ + offsets_[column], sizeof bits);
        double number = 0;
        std::memcpy(&number, row_ + offsets_[column], sizeof number);
        return {bits == QVEJMAP_MISSING_BITS ? Cell::MISSING : Cell::NUMBER, number, {}};
    }

    void open(bool retain);
    bool read();
    void takeNotNumber(std::size_t column, std::string_view text) noexcept;
    void takeRawText(std::size_t column, int32_t kind, QVStatus status) noexcept;

    JMAPReadObserver observer_ = {};
    QVEJMAPReadContexth handle_ = nullptr;
    const char* row_ = nullptr;
    std::vector<std::size_t> offsets_;  // of each column in the row
    std::exception_ptr failure_;        // what ended the reading; null: nothing yet
};

}  // namespace qvej
