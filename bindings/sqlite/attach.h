// qvejmap_attach('orders.json', 'prefix=x_', 'shape=auto', ...): a temporary virtual table for each
// table of a file.  Returns how many.
//
// Tested by tests/bindings/sqlite_extension.py
#pragma once

#include "bindings/sqlite/api.h"
#include "bindings/sqlite/open_file.h"

#include <string>
#include <vector>

namespace qvej::sqlite {

// A table that could not be taken back, since SQLite begins no statement once it is interrupted.
struct TableLeft {
    std::string name;
    std::string sql;  // as SQLite keeps it
};

// The user data of the function.
struct Attaching {
    SharedFiles files;
    std::vector<TableLeft> left = {};  // dropped by the next call
};

void attach(sqlite3_context* result, int argc, sqlite3_value** argv) noexcept;

}  // namespace qvej::sqlite
