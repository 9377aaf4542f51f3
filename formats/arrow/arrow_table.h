// A table as Arrow and Parquet describe it: types of columns, and as metadata what else is known.
//
// Metadata of a column (texts; only those that there are):
//     qvejmap.path    /root/orders/total
//     qvejmap.name    what the document calls it
//     qvejmap.column  the name in the map, when an earlier column has it
//     qvejmap.label   of the map
//     qvejmap.key     primary, or foreign
// of a table:
//     qvejmap.version, qvejmap.table, qvejmap.path
//     qvejmap.primary_key  a column
//     qvejmap.parent       the table that its rows belong to, qvejmap.parent_column the ordinal
//     here qvejmap.foreign_key  the same ordinal, when every row has its row there
//
// Tested by tests/formats/typed_files.py
#pragma once

#include "client/schema/schema.h"

#include <arrow/type.h>

#include <cstddef>
#include <memory>

namespace qvej {

[[nodiscard]] std::shared_ptr<arrow::DataType> arrowType(const DataType& type);

// Of the table at that position.  Names differ: of columns that share one, the later ones get a
// number.
[[nodiscard]] std::shared_ptr<arrow::Schema> arrowSchema(const Schema& schema, std::size_t table);

}  // namespace qvej
