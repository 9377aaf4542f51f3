// qvejmap_attach('orders.json', 'prefix=x_', 'shape=auto', ...): a temporary virtual table for each
// table of a file.  Returns how many.
//
// Tested by tests/bindings/sqlite_extension.py
#pragma once

#include "bindings/sqlite/api.h"

namespace qvej::sqlite {

// The function; its user data: SharedFiles.
void attach(sqlite3_context* result, int argc, sqlite3_value** argv) noexcept;

}  // namespace qvej::sqlite
