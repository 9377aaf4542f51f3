// See source.h.
#include "bindings/python/source.h"

#include <cstddef>
#include <memory>
#include <utility>

namespace qvej::python {

namespace nb = nanobind;

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 20;

// Gives up an object of Python on whatever thread.
struct DropObject {
    void operator()(nb::object* object) const {
        const nb::gil_scoped_acquire lock;
        delete object;
    }
};

struct PullState {
    std::unique_ptr<nb::object, DropObject> read, piece;
};

}  // namespace

HeldBuffer::HeldBuffer(nb::handle object) {
    if (PyObject_GetBuffer(object.ptr(), &view_, PyBUF_SIMPLE) != 0) {
        throw nb::python_error();
    }
}

HeldBuffer::~HeldBuffer() {
    const nb::gil_scoped_acquire lock;
    PyBuffer_Release(&view_);
}

Pull pullOf(nb::object read) {
    auto state = std::make_shared<PullState>();
    state->read.reset(new nb::object(std::move(read)));
    return [state]() -> std::string_view {
        const nb::gil_scoped_acquire lock;
        if (PyErr_CheckSignals() != 0) {
            throw nb::python_error();
        }
        state->piece.reset(new nb::object((*state->read)(kPiece)));
        char* bytes = nullptr;
        Py_ssize_t size = 0;
        if (PyBytes_AsStringAndSize(state->piece->ptr(), &bytes, &size) != 0) {
            throw nb::python_error();
        }
        return {bytes, static_cast<std::size_t>(size)};
    };
}

}  // namespace qvej::python
