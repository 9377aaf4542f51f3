// Structures of Arrow as capsules of Python, by the names that the PyCapsule interface gives them.
// A capsule that nobody has taken its structure from releases it.
//
// Tested by tests/bindings/python/test_capsules.py
#pragma once

#include "formats/arrow_c/batch_stream.h"
#include "formats/arrow_c/record_batch.h"
#include "formats/arrow_c/table_fields.h"

#include <nanobind/nanobind.h>

#include <memory>

namespace qvej::python {

[[nodiscard]] nanobind::object schemaCapsule(const TableFields& fields);
[[nodiscard]] nanobind::object arrayCapsule(const std::shared_ptr<const RecordBatch>& batch);
[[nodiscard]] nanobind::object streamCapsule(TableFields fields, NextBatch next);

}  // namespace qvej::python
