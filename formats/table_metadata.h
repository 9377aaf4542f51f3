// What Arrow and Parquet say of a table beside the types of its columns: names, and as metadata
// what else is known.
//
// Metadata of a column (texts; only those that there are):
//     qvejmap.path    /root/orders/total
//     qvejmap.name    what the document calls it
//     qvejmap.column  the name in the map, when an earlier column has it or U+0000 is in it
//     qvejmap.label   of the map
//     qvejmap.key     primary, or foreign
// of a table:
//     qvejmap.version, qvejmap.table, qvejmap.path
//     qvejmap.primary_key    a column
//     qvejmap.parent         the table that its rows belong to
//     qvejmap.parent_column  the ordinal here that says so
//     qvejmap.foreign_key    the same ordinal, when every row has its row there
//
// Tested by tests/formats/typed_files.py and tests/bindings/python/test_arrow.py
#pragma once

#include "client/schema/schema.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qvej {

struct MetadataPair {
    std::string name;
    std::string value;  // not empty
};

// Of the columns.  Names differ: of columns that share one, the later ones get a number.  "_"
// stands for U+0000, where many readers end a name.
[[nodiscard]] std::vector<std::string> fieldNames(const Table& table);

// Has the column a value in every row, as an ordinal may?
[[nodiscard]] bool alwaysFilled(const TableSchema& table, std::size_t column);

// `name`: of the column, as fieldNames has it.
[[nodiscard]] std::vector<MetadataPair> columnMetadata(const TableSchema& table, std::size_t column,
                                                       const std::string& name);

// Of the table at that position; `names` as fieldNames has them.
[[nodiscard]] std::vector<MetadataPair> tableMetadata(const Schema& schema, std::size_t table,
                                                      const std::vector<std::string>& names);

}  // namespace qvej
