// What SQLite can hold: names, types of columns, values of cells.  Without its library.
//
// Tested by tests/formats/databases.py
#pragma once

#include "client/schema/typed_value.h"
#include "formats/database/database.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qvej {

[[nodiscard]] const DatabaseLimits& sqliteLimits();

// The type that a column is declared with.
[[nodiscard]] const char* sqliteTypeOf(const Field& field);

struct SqliteValue {
    enum Kind : uint8_t { NUL, WHOLE, REAL, TEXT } kind = NUL;
    int64_t whole = 0;
    double real = 0;
    std::string_view text = {};  // lives as long as the row and the buffer
};

// A cell of a column of that type.
[[nodiscard]] inline SqliteValue sqliteValueOf(const Cell& cell, const DataType& type,
                                               std::string& buffer) {
    if (!hasValue(cell)) {
        return {};
    }
    switch (type.kind) {
        case DataType::BOOLEAN:
            return {SqliteValue::WHOLE, booleanOf(cell) ? 1 : 0};
        case DataType::BIGINT:
            return {SqliteValue::WHOLE, bigintOf(cell)};
        case DataType::DOUBLE:
            return {SqliteValue::REAL, 0, doubleOf(cell)};
        default:
            return {SqliteValue::TEXT, 0, 0, textOf(cell, type, buffer)};
    }
}

}  // namespace qvej
