// See source.h.
#include "bindings/python/source.h"

#include "client/error.h"

#include <nanobind/stl/string.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
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

std::string_view bytesOf(const nb::object& object) {
    char* bytes = nullptr;
    Py_ssize_t size = 0;
    if (PyBytes_AsStringAndSize(object.ptr(), &bytes, &size) != 0) {
        throw nb::python_error();
    }
    return {bytes, static_cast<std::size_t>(size)};
}

// Threads of this module call functions of Python.  One that did so when the interpreter has ended
// would be killed in the middle of it, so its end waits for calls that go on, and then there are
// none.
class Calls {
   public:
    static Calls& all() {
        static auto& calls = *new Calls;  // threads may outlive what is destroyed at the end
        return calls;
    }

    void begin() {
        const std::lock_guard lock(mutex_);
        if (ended_) {
            throw Error(QV_STOPPED);
        }
        ++going_;
    }
    void end() {
        const std::lock_guard lock(mutex_);
        --going_;
        changed_.notify_all();
    }
    void endAll() {
        std::unique_lock lock(mutex_);
        ended_ = true;
        changed_.wait(lock, [this] { return going_ == 0; });
    }

   private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int going_ = 0;
    bool ended_ = false;
};

// An error of this package as the failure that it is made of: consumers of streams tell it as such.
void throwIfOurs(const nb::python_error& error) {
    const nb::object type = nb::module_::import_("qvejmap._errors").attr("Error");
    if (!error.matches(type)) {
        return;
    }
    const nb::object made = nb::borrow(error.value());
    const auto file = nb::steal<nb::bytes>(PyUnicode_EncodeFSDefault(made.attr("file").ptr()));
    throw Error(nb::cast<QVStatus>(made.attr("status")), nb::cast<std::string>(made.attr("what")),
                std::string(file.c_str(), file.size()));
}

struct Call {
    Call() { Calls::all().begin(); }
    ~Call() { Calls::all().end(); }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
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
        return bytesOf(*state->piece);
    };
}

ReadAt readAtOf(nb::object read) {
    if (read.is_none()) {
        return {};
    }
    const std::shared_ptr<nb::object> held(new nb::object(std::move(read)), DropObject());
    return [held](uint64_t at, std::size_t size) {
        const Call call;
        const nb::gil_scoped_acquire lock;
        try {
            const nb::object piece = (*held)(at, size);
            return std::string(bytesOf(piece));
        } catch (const nb::python_error& error) {
            throwIfOurs(error);
            throw;
        }
    };
}

void endCallsWithPython() {
    const auto end = [] {
        const nb::gil_scoped_release unlocked;
        Calls::all().endAll();
    };
    nb::module_::import_("atexit").attr("register")(nb::cpp_function(end));
}

}  // namespace qvej::python
