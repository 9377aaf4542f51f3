// A SQLite file, by its library.
//
// Tested by tests/formats/databases.py
#pragma once

#include "formats/database/database.h"

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

struct SqliteStatementEnd {
    void operator()(sqlite3_stmt* statement) const { (void)sqlite3_finalize(statement); }
};
using SqliteStatement = std::unique_ptr<sqlite3_stmt, SqliteStatementEnd>;

class SqliteDatabase final : public Database {
   public:
    //   isNew       the file goes away when anything fails, so that it needs no journal
    //   largePages  of a new file; a fifth faster for many rows
    SqliteDatabase(const std::string& file, std::string shownFile, bool isNew, bool largePages);
    ~SqliteDatabase() override;

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
    // The file is closed, too.
    void commit() override;

    [[nodiscard]] SqliteStatement prepare(const std::string& sql);
    // Runs a statement without result, with what is bound to it.
    void step(const SqliteStatement& statement);

   private:
    struct Close {
        void operator()(sqlite3* database) const { (void)sqlite3_close_v2(database); }
    };
    void check(int code) const {
        if (code != SQLITE_OK) {
            fail(code);
        }
    }
    [[noreturn]] void fail(int code) const;

    std::string shownFile_;
    std::unique_ptr<sqlite3, Close> database_;
};

}  // namespace qvej
