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
    const SqliteValue value = sqliteValueOf(cell, column.type, buffer_);
    Value kept = {value.kind, 0, {0}};
    switch (value.kind) {
        case SqliteValue::NUL:
            break;
        case SqliteValue::WHOLE:
            kept.whole = value.whole + column.shift;  // 0, unless it is an ordinal
            break;
        case SqliteValue::REAL:
            kept.real = value.real;
            break;
        case SqliteValue::TEXT:
            return textValue(value.text);
    }
    return kept;
}

SqliteRows::Value SqliteRows::textValue(std::string_view text) {
    Value value = {SqliteValue::TEXT, text.size(), {0}};
    value.offset = texts_.size();
    texts_ += text;
    return value;
}

}  // namespace qvej
