// What a file has, as table-valued functions: its tables, their columns, all its values.
//
//     SELECT * FROM qvejmap_tables('orders.json')
//     SELECT * FROM qvejmap_columns('orders.json', 'shape=auto')
//     SELECT * FROM qvejmap_all('orders.json') WHERE key = 'sku'
//
// Tested by tests/bindings/sqlite_extension.py
#pragma once

#include "bindings/sqlite/api.h"

namespace qvej::sqlite {

// Their client data: SharedFiles.
extern const sqlite3_module kTables;
extern const sqlite3_module kColumns;
extern const sqlite3_module kAll;

}  // namespace qvej::sqlite
