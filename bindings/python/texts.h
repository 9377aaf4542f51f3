// Texts of the C++ face as texts of Python, and bytes.
#pragma once

#include <nanobind/nanobind.h>

#include <string>
#include <string_view>

namespace qvej::python {

// UTF-8.
[[nodiscard]] inline nanobind::object textOf(std::string_view text) {
    const auto size = static_cast<Py_ssize_t>(text.size());
    return nanobind::steal(PyUnicode_DecodeUTF8(text.data(), size, "replace"));
}

// Any bytes, as os.fsdecode has them.
[[nodiscard]] inline nanobind::object fileNameOf(std::string_view name) {
    const auto size = static_cast<Py_ssize_t>(name.size());
    return nanobind::steal(PyUnicode_DecodeFSDefaultAndSize(name.data(), size));
}

[[nodiscard]] inline std::string stringOf(const nanobind::bytes& bytes) {
    return {bytes.c_str(), bytes.size()};
}

}  // namespace qvej::python
