// The module `sqlite`: all tables in one file, a new one, or one that has others already.
//
// Tested by tests/formats/databases.py and tests/tool/golden/databases.t
#include "formats/module.h"

#include "formats/database/database_store.h"
#include "formats/sqlite/sqlite_database.h"

#include <cstdint>
#include <memory>

namespace {

// Do most tables have rows for many pages?  Every table takes a page at least.
bool fillsPages(const qvej::Schema& schema) {
    constexpr uint64_t kManyRows = 1000;
    uint64_t rows = 0;
    for (const qvej::TableSchema& table : schema.tables) {
        rows += table.rows;
    }
    return rows >= kManyRows * schema.tables.size();
}

std::unique_ptr<qvej::Store> openStore(const qvej::StoreParms& parms) {
    return std::make_unique<qvej::DatabaseStore>(
        std::make_unique<qvej::SqliteDatabase>(parms.target, parms.shownTarget, parms.isNew,
                                               fillsPages(parms.schema)),
        parms);
}

}  // namespace

extern "C" __attribute__((visibility("default")))
const qvej::FormatModule qvejmapFormats = {qvej::formatBuild, nullptr, openStore};
