// One row of a table, as formats and reports see it.
#pragma once

#include "document.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

namespace qvej {

struct Cell {
    enum Kind {
        MISSING,  // no value came; of a Cursor also: null
        NUL,      // null, or a value that was rejected
        COUNT,    // `count`
        NUMBER,   // `number`, which may be infinite but is no NaN; with a format also `text`
        DIGITS,   // a number as the document writes it: `text`, a number of JSON
        TEXT,     // `text`, UTF-8, may be empty
        BOOLEAN   // in a column of booleans: `text`, true or false, and `count`, 1 or 0
    };
    Kind kind = MISSING;
    double number = 0;
    std::string_view text = {};  // of a NUMBER: how its format shows it, empty without one
    uint64_t count = 0;
};

// A value that its column cannot take, or only in part: no number in a numeric column, refused by
// the informat, longer than the column, a number in a text of more digits than a double keeps.
struct Rejected {
    std::size_t column;       // its position in the table
    uint64_t row;             // that it would have been in, from 1
    std::string_view text;    // as the document has it, UTF-8
    std::string_view reason;  // "not a number"; of what is kept in part "cut to 10 bytes"
    bool cut;                 // the column has it in part
};

class Row {
   public:
    Row() = default;
    virtual ~Row() = default;
    Row(const Row&) = delete;
    Row& operator=(const Row&) = delete;

    [[nodiscard]] virtual const Columns& columns() const = 0;

    // A cell of the row, by the position of its column.  A text is no longer than its column and
    // ends with a whole character; it lives as long as the row.
    [[nodiscard]] virtual Cell cell(std::size_t column) const = 0;
};

// Takes each value that is rejected, except where the map has "?" before the informat.  The text
// lives until it returns.  The ordinals of the row can be read by then.
using RejectHandler = std::function<void(const Row&, const Rejected&)>;

}  // namespace qvej
