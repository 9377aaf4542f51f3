// Scans of ranges of files, for clusters.
//
// Tested by tests/bindings/python/test_partial_scan.py
#pragma once

#include <nanobind/nanobind.h>

namespace qvej::python {

void registerPartialScans(nanobind::module_& module);

}  // namespace qvej::python
