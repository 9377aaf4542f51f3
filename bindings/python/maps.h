// Maps: compared, merged and explained.
//
// Tested by tests/bindings/python/test_maps.py
#pragma once

#include <nanobind/nanobind.h>

namespace qvej::python {

void registerMaps(nanobind::module_& module);

}  // namespace qvej::python
