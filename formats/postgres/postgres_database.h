// A PostgreSQL database, by its library: one connection, one transaction.
//
// Tested by tests/formats/databases.py
#pragma once

#include "formats/database/database.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Of the library.
struct pg_conn;
struct pg_result;

namespace qvej {

class PostgresDatabase final : public Database {
   public:
    // Connects and begins.  `schema`: made when it is missing; empty: the connection's own.
    PostgresDatabase(const std::string& address, std::string shownAddress,
                     const std::string& schema);

    [[nodiscard]] const DatabaseLimits& limits() const override;
    void run(const std::string& sql) override;
    [[nodiscard]] Rows query(const std::string& sql) override;
    [[nodiscard]] std::vector<DatabaseObject> objects() override;
    [[nodiscard]] std::vector<DatabaseColumn> columnsOf(const std::string& table) override;
    [[nodiscard]] std::string typeOf(const Field& field) const override;
    [[nodiscard]] std::optional<DataType> writtenAs(const Field& field,
                                                    const std::string& type) const override;
    [[nodiscard]] std::unique_ptr<Sink> sink(const TargetTable& table,
                                             const std::string& columnList) override;
    [[nodiscard]] std::unique_ptr<Sink> pieceSink(const TargetTable& table) const override;
    void checkForeignKeys() override;
    void commit() override { run("COMMIT"); }

    // Sends rows by a COPY of its own.
    //   sql   COPY ... FROM STDIN
    void copy(const std::string& sql, std::string_view rows);

    // What messages call it.
    [[nodiscard]] const std::string& shownAddress() const { return shownAddress_; }

   private:
    struct Finish {
        void operator()(pg_conn* connection) const;
    };
    struct Clear {
        void operator()(pg_result* result) const;
    };
    using Result = std::unique_ptr<pg_result, Clear>;

    Result take(Result result, int expected);
    [[nodiscard]] std::string sentenceOf(const pg_result* result) const;
    [[noreturn]] void fail(const pg_result* result) const;

    std::string shownAddress_;
    std::unique_ptr<pg_conn, Finish> connection_;
};

}  // namespace qvej
