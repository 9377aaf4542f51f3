// See sqlite_rows.h.
#include "formats/sqlite/sqlite_rows.h"

namespace qvej {

void SqliteRows::add(const PassRow& row, const TargetTable& table) {
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        values_.push_back(valueOf(row.cell(c), table.columns[c]));
    }
    ++rows_;
}

SqliteRows::Value SqliteRows::valueOf(const Cell& cell, const TargetColumn& column) {
    if (!hasValue(cell)) {
        return {Value::NUL, 0, {0}};
    }
    switch (column.type.kind) {
        case DataType::BOOLEAN:
            return {Value::WHOLE, 0, {booleanOf(cell) ? 1 : 0}};
        case DataType::BIGINT:
            return {Value::WHOLE, 0, {bigintOf(cell) + column.shift}};
        case DataType::DOUBLE: {
            Value value = {Value::REAL, 0, {0}};
            value.real = doubleOf(cell);
            return value;
        }
        default:
            return textValue(textOf(cell, column.type, buffer_));
    }
}

SqliteRows::Value SqliteRows::textValue(std::string_view text) {
    Value value = {Value::TEXT, text.size(), {0}};
    value.offset = texts_.size();
    texts_ += text;
    return value;
}

}  // namespace qvej
