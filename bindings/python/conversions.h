// Documents converted to files and databases, as by the command line.
//
// Tested by tests/bindings/python/test_convert.py
#pragma once

#include <nanobind/nanobind.h>

namespace qvej::python {

// After the documents.
void registerConversions(nanobind::module_& module);

}  // namespace qvej::python
