// Rows of one table on their way into a SQLite file.
//
// Several rows go with one statement, which is a third faster than one each: they are kept until
// there are enough, with their texts.
//
// Tested by tests/formats/databases.py
#pragma once

#include "client/schema/typed_value.h"
#include "formats/database/database_tables.h"
#include "formats/sink.h"
#include "formats/sqlite/sqlite_database.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

class SqliteSink final : public Sink {
   public:
    // `columnList`: of an INSERT.  All must outlive this object.
    SqliteSink(SqliteDatabase& database, const TargetTable& table, const std::string& columnList);

    void row(const PassRow& row) override;
    void end() override;
    [[nodiscard]] std::size_t held() const override;
    void flush() override;

   private:
    // What a cell becomes.
    struct Value {
        enum : uint8_t { NUL, WHOLE, REAL, TEXT } kind;
        std::size_t length;  // of a TEXT, which is in `texts_`
        union {
            int64_t whole;
            double real;
            std::size_t offset;
        };
    };

    [[nodiscard]] Value valueOf(const Cell& cell, const TargetColumn& column);
    [[nodiscard]] Value text(std::string_view text);
    void insert(SqliteStatement& statement, std::size_t rows, std::size_t from);
    void bind(sqlite3_stmt* statement, int position, const Value& value) const;

    SqliteDatabase& database_;
    const TargetTable& table_;
    const std::string head_;    // INSERT ... VALUES
    const std::size_t atOnce_;  // rows of a statement
    SqliteStatement one_, several_;
    std::size_t rows_ = 0;
    std::vector<Value> values_;
    std::string texts_;
    std::string buffer_;
};

}  // namespace qvej
