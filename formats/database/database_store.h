// All tables of a document in a database, in one transaction.
//
// Tested by tests/formats/databases.py and tests/tool/golden/databases.t
#pragma once

#include "formats/database/database.h"
#include "formats/database/database_tables.h"
#include "formats/store.h"

#include <memory>
#include <string>
#include <vector>

namespace qvej {

class DatabaseStore final : public Store {
   public:
    DatabaseStore(std::unique_ptr<Database> database, const StoreParms& parms);

    [[nodiscard]] std::unique_ptr<Sink> sink(std::size_t table) override;
    [[nodiscard]] std::unique_ptr<Sink> pieceSink(std::size_t table) const override {
        return database_->pieceSink(tables_[table]);
    }
    void end() override;
    void commit() override;
    [[nodiscard]] std::vector<std::string> remarks() const override;

   private:
    const StoreParms parms_;
    std::unique_ptr<Database> database_;
    DatabaseTables tables_;
};

}  // namespace qvej
