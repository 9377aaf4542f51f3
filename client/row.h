// One row of a table, as those see it who write rows down.
#pragma once

#include "client/document.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace qvej {

struct Cell {
    enum Kind { MISSING, NUMBER, TEXT };
    Kind kind;
    double number;          // of a NUMBER; may be infinite, never a NaN
    std::string_view text;  // of a TEXT, UTF-8, may be empty; of a NUMBER with a format, how that
                            // shows it, else empty; see Row::cell
};

// A value that its column cannot take: no number in a numeric column, or refused by the informat.
struct Rejected {
    std::size_t column;       // its position in the table
    uint64_t row;             // that it would have been in, from 1
    std::string_view text;    // as the document has it, UTF-8
    std::string_view reason;  // "not a number"
};

class Row {
   public:
    Row() = default;
    virtual ~Row() = default;
    Row(const Row&) = delete;
    Row& operator=(const Row&) = delete;

    [[nodiscard]] virtual const std::vector<Column>& columns() const = 0;

    // A cell of the row, by the position of its column.  A text comes without the blanks at its end
    // (rows are padded with blanks, so they cannot be told apart) and without a character that was
    // cut in two; it lives as long as the row.  Character cells are never missing.  A rejected
    // value is missing, or in a character cell "".
    [[nodiscard]] virtual Cell cell(std::size_t column) const = 0;
};

// Takes each value that is rejected, except where the map asks for silence.  The text lives until
// it returns; of the row, `cell` has the ordinals by then.
using RejectHandler = std::function<void(const Row&, const Rejected&)>;

// Where rows go: an output format, a table of a database.
class Sink {
   public:
    Sink() = default;
    virtual ~Sink() = default;
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;

    virtual void begin(const std::vector<Column>& columns) = 0;  // once, before the first row
    virtual void row(const Row& row) = 0;
    virtual void end() = 0;  // once, after the last row
};

}  // namespace qvej
