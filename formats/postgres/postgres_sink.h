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
#include <string>

namespace qvej {

class PostgresSink final : public Sink {
   public:
    // `columnList`: of a COPY.  All must outlive this object.
    PostgresSink(PostgresDatabase& database, const TargetTable& table,
                 const std::string& columnList);

    void row(const PassRow& row) override;
    void end() override { flush(); }
    [[nodiscard]] std::size_t held() const override { return rows_.held(); }
    void flush() override;

   private:
    void send();

    PostgresDatabase& database_;
    const TargetTable& table_;
    const std::string copy_;  // COPY ... FROM STDIN
    CopyRows rows_;
};

}  // namespace qvej
