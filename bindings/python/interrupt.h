// Work that Ctrl-C ends.
//
// Python looks for signals on its main thread alone, and only between steps of its own.  So work
// that the main thread asks for is done on another one, while the main thread looks.
//
// Tested by tests/bindings/python/test_interrupt.py
#pragma once

#include <functional>

namespace qvej::python {

// Does the work without the interpreter's lock, which is held when this is called.  Throws what the
// work throws, and nanobind::python_error when a signal's handler threw: the work has ended then,
// too.
void interruptible(const std::function<void()>& work);

// Does the work without the interpreter's lock, whether the calling thread holds it or not: work
// that waits for threads which call functions of Python.
void unlocked(const std::function<void()>& work);

// Whether the work that the calling thread does is to end; see DocumentOptions::stopped.
[[nodiscard]] bool isStopped();

}  // namespace qvej::python
