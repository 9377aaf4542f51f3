// All tables of a document in a PostgreSQL database, in one transaction.
//
// One connection copies rows to one table at a time, and the rows of all tables come in turn: so
// each table's are kept, and go when there are enough of them.
//
// Tested by tests/formats/databases.py
#include "client/error.h"
#include "formats/database/database_tables.h"
#include "formats/module.h"
#include "formats/postgres/copy_rows.h"
#include "formats/postgres/postgres_database.h"
#include "formats/store.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qvej {

namespace {

constexpr std::size_t kMostHeld = std::size_t{4} << 20;  // bytes of a table

class PostgresSink final : public Sink {
   public:
    PostgresSink(PostgresDatabase& database, const TargetTable& table,
                 const std::string& columnList)
        : database_(database),
          table_(table),
          copy_("COPY " + quotedName(table.name) + columnList + " FROM STDIN (FORMAT binary)") {}

    void row(const PassRow& row) override {
        rows_.beginRow(table_.columns.size());
        for (std::size_t c = 0; c < table_.columns.size(); ++c) {
            const TargetColumn& column = table_.columns[c];
            if (!rows_.add(row.cell(c), column.type, column.shift)) {
                throw Error(QV_IO_REFUSED,
                            table_.name + "." + column.name +
                                " has a text with U+0000, which PostgreSQL does not take (--drop "
                                "leaves a path out)",
                            database_.shownAddress());
            }
        }
        if (rows_.bytes().size() > kMostHeld) {
            send();
        }
    }
    void end() override { flush(); }
    [[nodiscard]] std::size_t held() const override { return rows_.held(); }
    void flush() override {
        send();
        rows_.release();
    }

   private:
    void send() {
        if (!rows_.bytes().empty()) {
            database_.copy(copy_, rows_.bytes());
            rows_.clear();
        }
    }

    PostgresDatabase& database_;
    const TargetTable& table_;
    const std::string copy_;
    CopyRows rows_;
};

class PostgresStore final : public Store {
   public:
    explicit PostgresStore(const StoreParms& parms)
        : parms_(parms),
          database_(parms.target, parms.shownTarget, parms.options.schema),
          tables_(database_, parms_) {
        tables_.make();
        // Rows that are added may come before those of their parents.
        database_.run("SET CONSTRAINTS ALL DEFERRED");
    }

    [[nodiscard]] std::unique_ptr<Sink> sink(std::size_t table) override {
        return std::make_unique<PostgresSink>(database_, tables_[table], tables_.columnList(table));
    }
    void end() override {
        database_.checkForeignKeys();
        tables_.finish();
    }
    void commit() override { database_.run("COMMIT"); }

    [[nodiscard]] std::vector<std::string> remarks() const override { return tables_.remarks(); }

   private:
    const StoreParms parms_;
    PostgresDatabase database_;
    DatabaseTables tables_;
};

std::unique_ptr<Store> openStore(const StoreParms& parms) {
    return std::make_unique<PostgresStore>(parms);
}

}  // namespace

}  // namespace qvej

extern "C" __attribute__((visibility("default")))
const qvej::FormatModule qvejmapFormats = {qvej::formatBuild, nullptr, qvej::openStore};
