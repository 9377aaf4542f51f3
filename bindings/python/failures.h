// Failures of the C++ face as exceptions of Python.
//
// Tested by tests/bindings/python/test_errors.py
#pragma once

namespace qvej::python {

// From now on an Error becomes one of the classes in qvejmap/_errors.py.
void registerFailures();

}  // namespace qvej::python
