// What the values of a table become in its cells: texts without padding, informats and formats,
// values that are rejected.  What Cursor and PassRow share.
//
// Tested by tests/tool/client_test.cpp
#pragma once

#include "client/handle.h"
#include "client/row.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

class CellValues : public Row {
   public:
    [[nodiscard]] const std::vector<Column>& columns() const override { return table_.columns; }

   protected:
    // A column with an informat or a format.
    struct Converted {
        std::size_t column = 0;
        Handle<QVInformat> informat;
        Handle<QVFormat> format;
        int32_t kind = 0;     // JMAP_KIND_... of the raw text
        bool fresh = false;   // it came in this row
        bool missing = true;  // of a numeric column
        double number = 0;    // of one with an informat
        std::string text;     // of a character column
    };
    struct Place {
        std::size_t length;  // bytes of a character cell
        bool numeric;
        Converted* converted;  // null: none
    };

    // Throws the status of an informat or format that cannot be opened.
    CellValues(const Document& document, const Table& table, RejectHandler onReject);

    [[nodiscard]] const Place& place(std::size_t column) const { return places_[column]; }

    // A text (as the document has it) came that is no number, for the row that is being made.
    void notNumber(std::size_t column, std::string_view text);

    // The row is complete: counts it and reports what came that is no number.
    void endRow();

    // Rows end without being complete: forgets what came for the last one.
    void forgetNotNumbers() { pending_.clear(); }

    // Brings the value of a column with an informat from its raw text, which is empty when there is
    // none.  A text that is not fresh is one that the column keeps: so does its value.
    void convert(Converted& converted, std::string_view raw);

    // The columns that `convert` is for, in order.
    [[nodiscard]] const std::vector<Converted*>& withInformat() const { return withInformat_; }

    // The cell of a column with an informat or a format.  `plain` is what a numeric one without
    // informat has.
    [[nodiscard]] Cell convertedCell(const Place& place, const Cell& plain) const;

    // The text of a character cell, padded or not, no longer than the column.
    [[nodiscard]] std::string_view text(std::size_t column, std::string_view cell) const;

    [[nodiscard]] const Document& document() const { return document_; }
    [[nodiscard]] const Table& table() const { return table_; }
    [[nodiscard]] uint64_t rowsEnded() const { return rows_; }
    void restart() { rows_ = 0; }

   private:
    // A value that came before its row was complete.
    struct Pending {
        std::size_t column;
        std::string text;
    };

    void openConversions();
    void convertNumber(Converted& converted, std::string_view text);
    void convertText(Converted& converted, std::string_view text);
    void reportPending(uint64_t row);
    void reject(std::size_t column, uint64_t row, std::string_view text, std::string_view reason);

    const Document& document_;
    const Table& table_;
    RejectHandler onReject_;
    uint64_t rows_ = 0;  // that are complete
    std::vector<Place> places_;
    std::vector<std::unique_ptr<Converted>> converted_;
    std::vector<Converted*> withInformat_;
    std::vector<Pending> pending_;              // of the row being made
    mutable std::vector<std::string> scratch_;  // of each column; used unless the document is UTF-8
};

}  // namespace qvej
