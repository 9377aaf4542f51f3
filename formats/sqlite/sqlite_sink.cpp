// See sqlite_sink.h.
#include "formats/sqlite/sqlite_sink.h"

#include <algorithm>

namespace qvej {

namespace {

constexpr std::size_t kMostAtOnce = 16;
constexpr std::size_t kValuesAtOnce = 200;  // of more, further rows save nothing

}  // namespace

SqliteSink::SqliteSink(SqliteDatabase& database, const TargetTable& table,
                       const std::string& columnList)
    : database_(database),
      table_(table),
      head_("INSERT INTO " + quotedName(table.name) + columnList + " VALUES "),
      atOnce_(std::clamp<std::size_t>(kValuesAtOnce / table.columns.size(), 1, kMostAtOnce)) {}

void SqliteSink::row(const PassRow& row) {
    for (std::size_t c = 0; c < table_.columns.size(); ++c) {
        values_.push_back(valueOf(row.cell(c), table_.columns[c]));
    }
    if (++rows_ == atOnce_) {
        insert(several_, atOnce_, 0);
        values_.clear();
        texts_.clear();
        rows_ = 0;
    }
}

SqliteSink::Value SqliteSink::valueOf(const Cell& cell, const TargetColumn& column) {
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
            return text(textOf(cell, column.type, buffer_));
    }
}

SqliteSink::Value SqliteSink::text(std::string_view text) {
    Value value = {Value::TEXT, text.size(), {0}};
    value.offset = texts_.size();
    texts_ += text;
    return value;
}

// Inserts so many of the rows that are held.
void SqliteSink::insert(SqliteStatement& statement, std::size_t rows, std::size_t from) {
    const std::size_t columns = table_.columns.size();
    if (statement == nullptr) {
        std::string row = "(?";
        for (std::size_t c = 1; c < columns; ++c) {
            row += ",?";
        }
        row += ")";
        std::string sql = head_ + row;
        for (std::size_t r = 1; r < rows; ++r) {
            sql += "," + row;
        }
        statement = database_.prepare(sql);
    }
    for (std::size_t i = 0; i < rows * columns; ++i) {
        bind(statement.get(), static_cast<int>(i) + 1, values_[from * columns + i]);
    }
    database_.step(statement);
}

// Binding fails for a position that is not there, or for a text beyond a GiB: neither can be.
void SqliteSink::bind(sqlite3_stmt* statement, int position, const Value& value) const {
    switch (value.kind) {
        case Value::NUL:
            (void)sqlite3_bind_null(statement, position);
            break;
        case Value::WHOLE:
            (void)sqlite3_bind_int64(statement, position, value.whole);
            break;
        case Value::REAL:
            (void)sqlite3_bind_double(statement, position, value.real);
            break;
        case Value::TEXT:
            (void)sqlite3_bind_text(statement, position, texts_.data() + value.offset,
                                    static_cast<int>(value.length), SQLITE_STATIC);
    }
}

std::size_t SqliteSink::held() const {
    return values_.capacity() * sizeof(Value) + texts_.capacity();
}

// Inserts what is held, row by row.
void SqliteSink::flush() {
    for (std::size_t r = 0; r < rows_; ++r) {
        insert(one_, 1, r);
    }
    rows_ = 0;
    values_ = {};
    texts_ = {};
}

void SqliteSink::end() {
    flush();
    one_.reset();
    several_.reset();
}

}  // namespace qvej
