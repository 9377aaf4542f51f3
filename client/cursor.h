// Rows of one table, and where they go.
//
// Tested by tests/tool/client_test.cpp
#pragma once

#include "qvejmapx.h"

#include "client/document.h"
#include "client/handle.h"

#include <cstdint>
#include <cstring>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

struct Cell {
    enum Kind { MISSING, NUMBER, TEXT };
    Kind kind;
    double number;          // of a NUMBER; may be infinite, never a NaN
    std::string_view text;  // of a TEXT, UTF-8, may be empty; of a NUMBER with a format, how that
                            // shows it, else empty; see Cursor::cell
};

// A value that its column cannot take: no number in a numeric column, or refused by the informat.
struct Rejected {
    std::size_t column;       // its position in the table
    uint64_t row;             // that it would have been in, from 1
    std::string_view text;    // as the document has it, UTF-8
    std::string_view reason;  // "not a number"
};

// Reads a table of a finished document, row by row.  Any number of cursors may be open on one
// document; no two may be moved at the same time.  The document must outlive them.
class Cursor {
   public:
    // Takes each value that is rejected, except where the map asks for silence.  The text lives
    // until it returns; of the row, `cell` has the ordinals by then.
    using RejectHandler = std::function<void(const Cursor&, const Rejected&)>;

    // `retain`: a column keeps its value until a new one comes.  Throws QV_NOMEM.
    Cursor(const Document& document, const Table& table, bool retain = false,
           RejectHandler onReject = {});
    ~Cursor();
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;

    [[nodiscard]] const std::vector<Column>& columns() const { return table_.columns; }

    // Moves to the next row (first to the first).  False after the last.  Throws QV_IO_...,
    // QV_NOMEM, and what the reject handler throws.
    bool next();

    // Before the first row again.
    void reset();

    // A cell of the row, by the position of its column.  A text comes without the blanks at its end
    // (the engine pads with blanks, so they cannot be told apart) and without a character that was
    // cut in two; it lives until the next call of `next` or the cursor's end.  Character cells are
    // never missing.  A rejected value is missing, or in a character cell "".
    [[nodiscard]] Cell cell(std::size_t column) const {
        const Place& place = places_[column];
        if (place.converted != nullptr) {
            return convertedCell(place);
        }
        const char* at = row_ + place.offset;
        return place.numeric ? number(at) : Cell{Cell::TEXT, 0, text(column, {at, place.length})};
    }

   private:
    // A value that came before its row was complete.
    struct Pending {
        std::size_t column;
        std::string text;
    };
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
        std::size_t offset;
        std::size_t length;
        bool numeric;
        Converted* converted;  // null: none
    };

    static Cell number(const char* at) {
        uint64_t bits = 0;
        std::memcpy(&bits, at, sizeof bits);
        double number = 0;
        std::memcpy(&number, at, sizeof number);
        return {bits == QVEJMAP_MISSING_BITS ? Cell::MISSING : Cell::NUMBER, number, {}};
    }
    [[nodiscard]] std::string_view text(std::size_t column, std::string_view cell) const;
    [[nodiscard]] Cell convertedCell(const Place& place) const;

    void open(bool retain);
    void openConversions();
    void convert(Converted& converted);
    void convertNumber(Converted& converted, std::string_view text);
    void convertText(Converted& converted, std::string_view text);
    void reportPending();
    void notNumber(std::size_t column, std::string_view text) noexcept;
    void rawText(std::size_t column, int32_t kind, QVStatus status) noexcept;
    void reject(std::size_t column, std::string_view text, std::string_view reason);

    const Document& document_;
    const Table& table_;
    RejectHandler onReject_;
    JMAPReadObserver observer_ = {};
    QVEJMAPReadContexth handle_ = nullptr;
    const char* row_ = nullptr;
    uint64_t rows_ = 0;  // that have been passed
    std::vector<Place> places_;
    std::vector<std::unique_ptr<Converted>> converted_;
    std::vector<Pending> pending_;              // texts that are no numbers, of the row being made
    std::exception_ptr failure_;                // of what ran within Read
    mutable std::vector<std::string> scratch_;  // of each column; used unless the document is UTF-8
};

// Where rows go: an output format, a table of a database.
class Sink {
   public:
    Sink() = default;
    virtual ~Sink() = default;
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;

    virtual void begin(const std::vector<Column>& columns) = 0;  // once, before the first row
    virtual void row(const Cursor& cursor) = 0;
    virtual void end() = 0;  // once, after the last row
};

// Passes at most `limit` rows from the cursor to the sink and returns how many there were.
uint64_t copyRows(Cursor& cursor, Sink& sink, uint64_t limit = UINT64_MAX);

}  // namespace qvej
