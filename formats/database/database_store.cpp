// See database_store.h.
#include "formats/database/database_store.h"

#include <utility>

namespace qvej {

DatabaseStore::DatabaseStore(std::unique_ptr<Database> database, const StoreParms& parms)
    : parms_(parms), database_(std::move(database)), tables_(*database_, parms_) {
    tables_.make();
}

std::unique_ptr<Sink> DatabaseStore::sink(std::size_t table) {
    return database_->sink(tables_[table], tables_.columnList(table));
}

// Rows that were there may lose their parents, and tables that were there may demand some.
void DatabaseStore::end() {
    if (parms_.options.existing != FormatOptions::REFUSE && !parms_.isNew) {
        database_->checkForeignKeys();
    }
    tables_.finish();
}

void DatabaseStore::commit() {
    database_->commit();
}

std::vector<std::string> DatabaseStore::remarks() const {
    return tables_.remarks();
}

}  // namespace qvej
