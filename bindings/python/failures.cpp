// See failures.h.
#include "bindings/python/failures.h"

#include "bindings/python/texts.h"
#include "client/error.h"

#include <nanobind/nanobind.h>

#include <cstdint>
#include <exception>

namespace qvej::python {

namespace nb = nanobind;

namespace {

// The name of its class in Python.
const char* classOf(const Error& error) {
    if (dynamic_cast<const MapError*>(&error) != nullptr) {
        return "MapError";
    }
    switch (error.status()) {
        case QV_JSON_DEPTH:
        case QV_LIMIT_PATHS:
        case QV_LIMIT_DISK:
        case QV_LIMIT_MEMORY:
        case QV_NOMEM:
            return "LimitReached";
        case JMAP_PARSE:
        case JMAP_INCOMPLETE:
            return "NotJson";
        default:
            break;
    }
    const auto code = static_cast<uint32_t>(error.status());
    const bool ofJson = code >= static_cast<uint32_t>(QV_JSON_VALUE) && code <= 0x85FFC9FFu;
    return ofJson ? "NotJson" : isOfFiles(error.status()) ? "FileError" : "Error";
}

void raise(const Error& error) {
    const Place& place = error.place();
    const nb::object type = nb::module_::import_("qvejmap._errors").attr(classOf(error));
    const nb::object made =
        type(textOf(error.what()), fileNameOf(place.file), place.line, place.column, place.offset,
             error.status(), textOf(error.excerpt()), textOf(place.path));
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
