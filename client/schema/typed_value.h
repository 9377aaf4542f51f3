// Cells as values of the type that their column has.
//
// Every routine takes a cell with a value (neither missing nor null) of a column of that type.
//
// Tested by tests/client/schema_test.cpp
#pragma once

#include "../row.h"
#include "data_type.h"
#include "decimal_text.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qvej {

[[nodiscard]] inline bool hasValue(const Cell& cell) {
    return cell.kind != Cell::MISSING && cell.kind != Cell::NUL;
}

[[nodiscard]] bool booleanOf(const Cell& cell);    // BOOLEAN
[[nodiscard]] int64_t bigintOf(const Cell& cell);  // BIGINT
[[nodiscard]] double doubleOf(const Cell& cell);   // DOUBLE

// DECIMAL: the number times 10 to the power of `scale`.
[[nodiscard]] Int128 decimalOf(const Cell& cell, int scale);

// DATE: days since 1970-01-01.
[[nodiscard]] int32_t daysOf(const Cell& cell);

// TIMESTAMP: since 1970-01-01T00:00, in units of which a second has 10 to the power of `digits`.
[[nodiscard]] int64_t unitsOf(const Cell& cell, int digits);

// TEXT, or any other type as the document has it; an instant of a number is in ISO 8601.  It lives
// as long as the row and `buffer`.
[[nodiscard]] std::string_view textOf(const Cell& cell, const DataType& type, std::string& buffer);

}  // namespace qvej
