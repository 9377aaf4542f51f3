// A table as Arrow and Parquet describe it: types of columns, and as metadata what else is known
// (formats/table_metadata.h).
//
// Tested by tests/formats/typed_files.py
#pragma once

#include "client/schema/schema.h"

#include <arrow/type.h>

#include <cstddef>
#include <memory>

namespace qvej {

[[nodiscard]] std::shared_ptr<arrow::DataType> arrowType(const DataType& type);

// Of the table at that position.
[[nodiscard]] std::shared_ptr<arrow::Schema> arrowSchema(const Schema& schema, std::size_t table);

}  // namespace qvej
