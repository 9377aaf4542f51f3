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
    rows_.add(row, table_);
    if (rows_.rows() == atOnce_) {
        insertAll(rows_);
        rows_.clear();
    }
}

void SqliteSink::append(std::unique_ptr<Piece> piece) {
    insertAll(static_cast<const SqliteRowSink::Rows&>(*piece).rows);
}

void SqliteSink::insertAll(const SqliteRows& rows) {
    std::size_t from = 0;
    for (; from + atOnce_ <= rows.rows(); from += atOnce_) {
        insert(several_, atOnce_, rows, from);
    }
    for (; from < rows.rows(); ++from) {
        insert(one_, 1, rows, from);
    }
}

// Inserts `count` rows.  Binding fails for a position that is not there, or for a text beyond a
// GiB: neither can be.
void SqliteSink::insert(SqliteStatement& statement, std::size_t count, const SqliteRows& rows,
                        std::size_t from) {
    const std::size_t columns = table_.columns.size();
    if (statement == nullptr) {
        std::string row = "(?";
        for (std::size_t c = 1; c < columns; ++c) {
            row += ",?";
        }
        row += ")";
        std::string sql = head_ + row;
        for (std::size_t r = 1; r < count; ++r) {
            sql += "," + row;
        }
        statement = database_.prepare(sql);
    }
    int position = 0;
    for (std::size_t i = from * columns; i < (from + count) * columns; ++i) {
        const SqliteRows::Value& value = rows.values()[i];
        ++position;
        switch (value.kind) {
            case SqliteValue::NUL:
                (void)sqlite3_bind_null(statement.get(), position);
                break;
            case SqliteValue::WHOLE:
                (void)sqlite3_bind_int64(statement.get(), position, value.whole);
                break;
            case SqliteValue::REAL:
                (void)sqlite3_bind_double(statement.get(), position, value.real);
                break;
            case SqliteValue::TEXT:
                (void)sqlite3_bind_text(statement.get(), position, rows.text(value),
                                        static_cast<int>(value.length), SQLITE_STATIC);
        }
    }
    database_.step(statement);
}

void SqliteSink::flush() {
    insertAll(rows_);
    rows_ = {};
}

void SqliteSink::end() {
    flush();
    one_.reset();
    several_.reset();
}

}  // namespace qvej
