// Values of a batch as objects of Python, for the few rows that a person looks at.
//
// Tested by tests/bindings/python/test_tables.py
#pragma once

#include "client/schema/data_type.h"
#include "formats/arrow_c/record_batch.h"

#include <nanobind/nanobind.h>

#include <cstddef>

namespace qvej::python {

// A list: None, bool, int, float, str.  A DECIMAL is an int, the number times 10 to the power of
// its scale; a DATE and a TIMESTAMP are ints, as the batch has them.
[[nodiscard]] nanobind::list valuesOf(const RecordBatch& batch, std::size_t column,
                                      const DataType& type);

}  // namespace qvej::python
