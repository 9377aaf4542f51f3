// The catalogue of informats, and the informats that columns open.
//
// Tested by tests/host/fmt_test.cpp
#pragma once

#include "qvehost.h"

#include <string_view>

namespace qvhost {

// As QVFMT's operations of these names.  The informat is listed in the host's registry.
[[nodiscard]] QVStatus openInformat(QVHndlp host, bool numeric, std::string_view name,
                                    uint64_t width, uint64_t decimals, QVInformath* informat);
[[nodiscard]] QVStatus informatAt(QVStrSize index, QVFMTEntry* entry) noexcept;

}  // namespace qvhost
