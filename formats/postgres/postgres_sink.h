// Rows of one table on their way into a PostgreSQL database.
//
// One connection copies rows to one table at a time, and the rows of all tables come in turn: so
// each table's are kept, and go when there are enough of them.
//
// Tested by tests/formats/databases.py
#pragma once

#include "formats/database/database_tables.h"
#include "formats/postgres/copy_rows.h"
#include "formats/postgres/postgres_database.h"
#include "formats/sink.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

namespace qvej {

// Throws Error when the database does not take a text.
void addRow(CopyRows& rows, const PassRow& row, const TargetTable& table,
            const PostgresDatabase& database);

// Makes rows for a PostgresSink, on any thread.
class CopyRowSink final : public Sink {
   public:
    struct Rows final : Piece {
        explicit Rows(CopyRows made) : rows(std::move(made)) {}
        CopyRows rows;
    };

    // All must outlive this object.
    CopyRowSink(const PostgresDatabase& database, const TargetTable& table)
        : database_(database), table_(table) {}

    void row(const PassRow& row) override { addRow(rows_, row, table_, database_); }
    void end() override {}
    [[nodiscard]] std::size_t held() const override { return rows_.held(); }
    [[nodiscard]] std::unique_ptr<Piece> piece() override {
        return std::make_unique<Rows>(std::exchange(rows_, {}));
    }

   private:
    const PostgresDatabase& database_;
    const TargetTable& table_;
    CopyRows rows_;
};

class PostgresSink final : public Sink {
   public:
    // `columnList`: of a COPY.  All must outlive this object.
    PostgresSink(PostgresDatabase& database, const TargetTable& table,
                 const std::string& columnList);

    void row(const PassRow& row) override;
    void end() override { flush(); }
    [[nodiscard]] std::size_t held() const override { return rows_.held(); }
    void flush() override;
    void append(std::unique_ptr<Piece> piece) override;

   private:
    void sendMany();
    void send();

    PostgresDatabase& database_;
    const TargetTable& table_;
    const std::string copy_;  // COPY ... FROM STDIN
    CopyRows rows_;
};

}  // namespace qvej
