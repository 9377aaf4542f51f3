// Rows of one table on their way into a SQLite file.
//
// Several rows go with one statement, which is a third faster than one each: they are kept until
// there are enough, with their texts.
//
// Tested by tests/formats/databases.py
#pragma once

#include "formats/database/database_tables.h"
#include "formats/sink.h"
#include "formats/sqlite/sqlite_database.h"
#include "formats/sqlite/sqlite_rows.h"

#include <cstddef>
#include <memory>
#include <string>

namespace qvej {

class SqliteSink final : public Sink {
   public:
    // `columnList`: of an INSERT.  All must outlive this object.
    SqliteSink(SqliteDatabase& database, const TargetTable& table, const std::string& columnList);

    void row(const PassRow& row) override;
    void end() override;
    [[nodiscard]] std::size_t held() const override { return rows_.held(); }
    void flush() override;

    void append(std::unique_ptr<Piece> piece) override;

   private:
    void insertAll(const SqliteRows& rows);
    void insert(SqliteStatement& statement, std::size_t count, const SqliteRows& rows,
                std::size_t from);

    SqliteDatabase& database_;
    const TargetTable& table_;
    const std::string head_;    // INSERT ... VALUES
    const std::size_t atOnce_;  // rows of a statement
    SqliteStatement one_, several_;
    SqliteRows rows_;
};

}  // namespace qvej
