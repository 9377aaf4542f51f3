// All tables of a document in one SQLite file: a new one, or one that has others already.
//
// Tested by tests/formats/databases.py and tests/tool/golden/databases.t
#include "client/error.h"
#include "formats/database/database_tables.h"
#include "formats/module.h"
#include "formats/sqlite/sqlite_database.h"
#include "formats/sqlite/sqlite_sink.h"
#include "formats/store.h"

#include <memory>
#include <string>
#include <vector>

namespace qvej {

namespace {

class SqliteStore final : public Store {
   public:
    explicit SqliteStore(const StoreParms& parms)
        : parms_(parms),
          database_(parms.target, parms.shownTarget, parms.isNew),
          tables_(database_, parms_) {
        tables_.make();
    }

    [[nodiscard]] std::unique_ptr<Sink> sink(std::size_t table) override {
        return std::make_unique<SqliteSink>(database_, tables_[table], tables_.columnList(table));
    }

    void end() override {
        tables_.finish();
        if (parms_.options.existing != FormatOptions::REFUSE && !parms_.isNew) {
            checkForeignKeys();
        }
    }

    void commit() override { database_.commit(); }

    [[nodiscard]] std::vector<std::string> remarks() const override { return tables_.remarks(); }

   private:
    // Rows that were there may lose their parents, and tables that were there may demand some.
    void checkForeignKeys() {
        const Database::Rows broken = database_.query(
            "SELECT \"table\", parent, count(*) FROM pragma_foreign_key_check GROUP BY 1, 2");
        if (!broken.empty()) {
            throw Error(
                QV_IO_REFUSED,
                parentsMissing(
                    broken[0][2] + (broken[0][2] == "1" ? " row of " : " rows of ") + broken[0][0],
                    broken[0][1]),
                parms_.shownTarget);
        }
    }

    const StoreParms parms_;
    SqliteDatabase database_;
    DatabaseTables tables_;
};

std::unique_ptr<Store> openStore(const StoreParms& parms) {
    return std::make_unique<SqliteStore>(parms);
}

}  // namespace

}  // namespace qvej

extern "C" __attribute__((visibility("default")))
const qvej::FormatModule qvejmapFormats = {qvej::formatBuild, nullptr, qvej::openStore};
