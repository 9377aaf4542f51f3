// The tables of a document whose rows go to tables that a database has already.
//
// Their ordinals go on after the greatest that the database has for the same path, so that they
// name the new rows alone.
//
// Tested by tests/formats/databases.py and tests/tool/golden/databases.t
#pragma once

#include "formats/database/database.h"
#include "formats/database/database_tables.h"
#include "formats/database/dictionary.h"
#include "formats/store.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qvej {

class AppendedTables {
   public:
    // `tables`: all of the document.  All must outlive this object.
    AppendedTables(Database& database, const ObjectKinds& objects, Dictionary& dictionary,
                   const StoreParms& parms, std::vector<TargetTable>& tables)
        : database_(database),
          objects_(objects),
          dictionary_(dictionary),
          parms_(parms),
          tables_(tables) {}

    // Throws when the tables there are of other paths, or do not take the rows; says how their
    // columns are written.
    void check();

    // Says what is added to each ordinal.
    void shiftOrdinals();

   private:
    void checkPath(std::size_t table);
    void checkColumns(std::size_t table);
    [[noreturn]] void refuse(const std::string& sentence) const;

    Database& database_;
    const ObjectKinds& objects_;
    Dictionary& dictionary_;
    const StoreParms& parms_;
    std::vector<TargetTable>& tables_;
};

}  // namespace qvej
