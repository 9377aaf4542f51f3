// Makes cells of the values of a table: texts, informats and formats, rejected values.  Cursor and
// PassRow share it.
//
// Tested by tests/client/client_test.cpp
#pragma once

#include "handle.h"
#include "row.h"
#include "text.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

class CellValues : public Row {
   public:
    [[nodiscard]] const Columns& columns() const override { return table_.columns; }

   protected:
    // A column with an informat or a format.
    struct Converted {
        std::size_t column = 0;
        Handle<QVInformat> informat;
        Handle<QVFormat> format;
        int32_t kind = 0;     // JMAP_KIND_... or JMAP_CELL_CUT of the raw text
        bool fresh = false;   // it came in this row
        bool missing = true;  // there is no number: null or refused
        double number = 0;    // of one with an informat
        std::string text;     // of a character column
        bool cut = false;     // which is too short for what the informat gave
    };
    struct Place {
        std::size_t length;  // bytes of a character cell
        bool numeric;
        bool boolean;          // its values are all booleans
        Converted* converted;  // null: none
    };

    // Throws the status of an informat or format that cannot be opened.
    CellValues(const Document& document, const Table& table, RejectHandler onReject);

    [[nodiscard]] const Place& place(std::size_t column) const { return places_[column]; }

    // A text came that is no number, for the row in the making.  It is in the document's encoding.
    void notNumber(std::size_t column, std::string_view text);

    // The row is complete: counts it and reports the texts that are no numbers.
    void endRow() {
        ++rows_;
        if (!pending_.empty()) {
            reportPending(rows_);
        }
    }

    // A text of the row, in the document's encoding, is longer than its column, or than a record
    // keeps.
    void wasCut(std::size_t column, std::string_view text);

    // The row in the making will not be complete: forgets what came for it.
    void forgetNotNumbers() { pending_.clear(); }

    // Sets the value of a column with an informat from its raw text, which is empty when there is
    // none.  A text that did not come in this row is one that the column keeps: the value stays,
    // too.  A text that is cut gives no number, since its end is not known.
    void convert(Converted& converted, std::string_view raw);

    // The columns that `convert` is for, in order.
    [[nodiscard]] const std::vector<Converted*>& withInformat() const { return withInformat_; }

    // The cell of a column with an informat or a format.  `plain` is what a numeric one without
    // informat has.
    [[nodiscard]] Cell convertedCell(const Place& place, const Cell& plain) const;

    // The text of a character cell that is no longer than the column, up to its last whole
    // character.
    [[nodiscard]] std::string_view text(std::size_t column, std::string_view cell) const {
        if (!utf8_) {
            return document_.codec().decode(cell, scratch_[column]);
        }
        const bool whole = cell.empty() || static_cast<uint8_t>(cell.back()) < 0x80;
        return whole ? cell : withoutUnfinished(cell);
    }
    [[nodiscard]] bool isUtf8() const { return utf8_; }

    [[nodiscard]] const Document& document() const { return document_; }
    [[nodiscard]] const Table& table() const { return table_; }
    [[nodiscard]] uint64_t rowsEnded() const { return rows_; }
    void restart() { rows_ = 0; }
    void goOnAfter(uint64_t rows) { rows_ = rows; }

    // Does nothing of an earlier value matter to the next row?
    [[nodiscard]] bool startsAfresh() const { return converted_.empty() && pending_.empty(); }

   private:
    // A value that came before its row was complete.
    struct Pending {
        std::size_t column;
        std::string text;
    };

    void openConversions();
    void convertNumber(Converted& converted, std::string_view text);
    void refuse(const Converted& converted, std::string_view text, std::string_view reason);
    void tellRounded(const Converted& converted, std::string_view text);
    void convertText(Converted& converted, std::string_view text);
    void reportPending(uint64_t row);
    void reject(const Rejected& rejected);

    const Document& document_;
    const Table& table_;
    RejectHandler onReject_;
    bool utf8_;          // the encoding of the document
    uint64_t rows_ = 0;  // that are complete
    std::vector<Place> places_;
    std::vector<std::unique_ptr<Converted>> converted_;
    std::vector<Converted*> withInformat_;
    std::vector<Pending> pending_;              // of the row being made
    mutable std::vector<std::string> scratch_;  // of each column; used unless the document is UTF-8
};

}  // namespace qvej
