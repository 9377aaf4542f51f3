// The module `qvejmap`: a table of a file as a virtual table.
//
//     CREATE VIRTUAL TABLE temp.items USING qvejmap('orders.json', table=orders_items, shape=auto)
//
// Tested by tests/bindings/sqlite_extension.py
#pragma once

#include "bindings/sqlite/api.h"

namespace qvej::sqlite {

extern const sqlite3_module kFileTable;  // its client data: SharedFiles

}  // namespace qvej::sqlite
