// Rows of one table as SQLite takes them: values and their texts.
//
// Tested by tests/formats/databases.py
#pragma once

#include "formats/database/database_tables.h"
#include "formats/sink.h"
#include "formats/sqlite/sqlite_types.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qvej {

class SqliteRows {
   public:
    // What a cell becomes.
    struct Value {
        SqliteValue::Kind kind;
        std::size_t length;  // of a TEXT
        union {
            int64_t whole;
            double real;
            std::size_t offset;  // of a TEXT
        };
    };

    void add(const PassRow& row, const TargetTable& table);

    [[nodiscard]] std::size_t rows() const { return rows_; }
    // Of all rows, one after the other.
    [[nodiscard]] const std::vector<Value>& values() const { return values_; }
    [[nodiscard]] const char* text(const Value& value) const {
        return texts_.data() + value.offset;
    }
    [[nodiscard]] std::size_t held() const {
        return values_.capacity() * sizeof(Value) + texts_.capacity();
    }

    void clear() {
        rows_ = 0;
        values_.clear();
        texts_.clear();
    }

   private:
    [[nodiscard]] Value valueOf(const Cell& cell, const TargetColumn& column);
    [[nodiscard]] Value textValue(std::string_view text);

    std::size_t rows_ = 0;
    std::vector<Value> values_;
    std::string texts_;
    std::string buffer_;
};

// Makes rows for a SqliteSink, on any thread.
class SqliteRowSink final : public Sink {
   public:
    struct Rows final : Piece {
        explicit Rows(SqliteRows made) : rows(std::move(made)) {}
        SqliteRows rows;
    };

    // `table` must outlive this object.
    explicit SqliteRowSink(const TargetTable& table) : table_(table) {}

    void row(const PassRow& row) override { rows_.add(row, table_); }
    void end() override {}
    [[nodiscard]] std::size_t held() const override { return rows_.held(); }
    [[nodiscard]] std::unique_ptr<Piece> piece() override {
        return std::make_unique<Rows>(std::exchange(rows_, {}));
    }

   private:
    const TargetTable& table_;
    SqliteRows rows_;
};

}  // namespace qvej
