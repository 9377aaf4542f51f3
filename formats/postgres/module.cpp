// The module `postgres`: all tables in a PostgreSQL database.
//
// Tested by tests/formats/databases.py
#include "formats/module.h"

#include "formats/database/database_store.h"
#include "formats/postgres/postgres_database.h"

#include <memory>

namespace {

std::unique_ptr<qvej::Store> openStore(const qvej::StoreParms& parms) {
    return std::make_unique<qvej::DatabaseStore>(
        std::make_unique<qvej::PostgresDatabase>(parms.target, parms.shownTarget,
                                                 parms.options.schema),
        parms);
}

}  // namespace

extern "C" __attribute__((visibility("default")))
const qvej::FormatModule qvejmapFormats = {qvej::formatBuild, nullptr, openStore};
