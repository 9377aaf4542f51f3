// Rows of one table, and where they go.
//
// Tested by tests/tool/client_test.cpp
#pragma once

#include "client/document.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

struct Cell {
    enum Kind { MISSING, NUMBER, TEXT };
    Kind kind;
    double number;          // of a NUMBER; may be infinite, never a NaN
    std::string_view text;  // of a TEXT, UTF-8, may be empty; see Cursor::cell
};

// Reads a table of a finished document, row by row.  Any number of cursors may be open on one
// document; no two may be moved at the same time.  The document must outlive them.
class Cursor {
   public:
    // `retain`: a column keeps its value until a new one comes.  Throws QV_NOMEM.
    Cursor(const Document& document, const Table& table, bool retain = false);
    ~Cursor();
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;

    [[nodiscard]] const std::vector<Column>& columns() const { return table_.columns; }

    // Moves to the next row (first to the first).  False after the last.  Throws QV_IO_...,
    // QV_NOMEM.
    bool next();

    // Before the first row again.
    void reset();

    // A cell of the row, by the position of its column.  A text comes without the blanks at its end
    // (the engine pads with blanks, so they cannot be told apart) and without a character that was
    // cut in two; it lives until the next call of `next` or the cursor's end.  Character cells are
    // never missing.
    [[nodiscard]] Cell cell(std::size_t column) const {
        const Place& place = places_[column];
        const char* at = row_ + place.offset;
        if (place.numeric) {
            uint64_t bits = 0;
            std::memcpy(&bits, at, sizeof bits);
            double number = 0;
            std::memcpy(&number, at, sizeof number);
            return {bits == QVEJMAP_MISSING_BITS ? Cell::MISSING : Cell::NUMBER, number, {}};
        }
        return {Cell::TEXT, 0, text(column, {at, place.length})};
    }

   private:
    struct Place {
        std::size_t offset;
        std::size_t length;
        bool numeric;
    };

    [[nodiscard]] std::string_view text(std::size_t column, std::string_view cell) const;

    const Document& document_;
    const Table& table_;
    QVEJMAPReadContexth handle_ = nullptr;
    const char* row_ = nullptr;
    std::vector<Place> places_;
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
