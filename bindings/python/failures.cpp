// See failures.h.
#include "bindings/python/failures.h"

#include "bindings/python/texts.h"
#include "client/error.h"
#include "client/failure_kind.h"

#include <nanobind/nanobind.h>

#include <exception>

namespace qvej::python {

namespace nb = nanobind;

namespace {

// The name of its class in Python.
const char* classOf(const Error& error) {
    if (dynamic_cast<const MapError*>(&error) != nullptr) {
        return "MapError";
    }
    switch (kindOf(error.status())) {
        case FailureKind::NOT_JSON:
            return "NotJson";
        case FailureKind::FILES:
            return "FileError";
        case FailureKind::LIMIT:
            return "LimitReached";
        default:
            return "Error";
    }
}

void raise(const Error& error) {
    const Place& place = error.place();
    const nb::object type = nb::module_::import_("qvejmap._errors").attr(classOf(error));
    const nb::object ownWords = nb::module_::import_("qvejmap._words").attr("in_own_words");
    const nb::object made =
        type(ownWords(textOf(error.what())), fileNameOf(place.file), place.line, place.column,
             place.offset, error.status(), textOf(error.excerpt()), textOf(place.path));
    PyErr_SetObject(type.ptr(), made.ptr());
}

}  // namespace

void registerFailures() {
    nb::register_exception_translator([](const std::exception_ptr& failure, void*) {
        try {
            std::rethrow_exception(failure);
        } catch (const Error& error) {
            raise(error);
        }
    });
}

}  // namespace qvej::python
