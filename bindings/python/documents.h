// Documents that are open, their tables and batches.
//
// Positions of tables and columns go in and out; names are a matter of the package.
//
// Tested by tests/bindings/python/
#pragma once

#include <nanobind/nanobind.h>

namespace qvej::python {

void registerDocuments(nanobind::module_& module);

struct Findings;
[[nodiscard]] nanobind::tuple findingsTuple(const Findings& found);

}  // namespace qvej::python
