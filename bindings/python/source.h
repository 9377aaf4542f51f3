// What a document is read from, when it is an object of Python.
//
// Tested by tests/bindings/python/test_open.py
#pragma once

#include "client/input/byte_source.h"
#include "client/ranges/text_range.h"

#include <nanobind/nanobind.h>

#include <string_view>

namespace qvej::python {

// The bytes of an object with a buffer (bytes, memoryview, ...), which stay where they are as long
// as this object lives.  It may end on any thread.
class HeldBuffer {
   public:
    // Throws nanobind::python_error: it has none, or its bytes do not lie in a row.
    explicit HeldBuffer(nanobind::handle object);
    ~HeldBuffer();
    HeldBuffer(const HeldBuffer&) = delete;
    HeldBuffer& operator=(const HeldBuffer&) = delete;

    [[nodiscard]] std::string_view bytes() const {
        return {static_cast<const char*>(view_.buf), static_cast<std::size_t>(view_.len)};
    }

   private:
    Py_buffer view_ = {};
};

// What `read(size)` of a file object gives, piece by piece, as bytes.  What it throws in Python
// comes as nanobind::python_error.
[[nodiscard]] Pull pullOf(nanobind::object read);

// What `read(at, size)` gives, as bytes; None: no function.  It may be called and given up on any
// thread, with the interpreter's lock or without it.
[[nodiscard]] ReadAt readAtOf(nanobind::object read);

// Once: has no such function called when the interpreter ends.
void endCallsWithPython();

}  // namespace qvej::python
