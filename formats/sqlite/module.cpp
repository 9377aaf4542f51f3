// The module `sqlite`: all tables in one file, a new one, or one that has others already.
//
// Tested by tests/formats/databases.py and tests/tool/golden/databases.t
#include "formats/module.h"

#include "formats/database/database_store.h"
#include "formats/sqlite/sqlite_database.h"

#include <memory>

namespace {

std::unique_ptr<qvej::Store> openStore(const qvej::StoreParms& parms) {
    return std::make_unique<qvej::DatabaseStore>(
        std::make_unique<qvej::SqliteDatabase>(parms.target, parms.shownTarget, parms.isNew),
        parms);
}

}  // namespace

extern "C" __attribute__((visibility("default")))
const qvej::FormatModule qvejmapFormats = {qvej::formatBuild, nullptr, openStore};
