// The catalogue of formats, and the formats that columns open.
//
// Tested by tests/host/fmt_test.cpp
#pragma once

#include "qvehost.h"

#include <string_view>

namespace qvhost {

// As QVFMT's operations of these names.  The format is listed in the host's registry.
[[nodiscard]] QVStatus openFormat(QVHndlp host, bool numeric, std::string_view name, uint64_t width,
                                  uint64_t decimals, QVFormath* format);
[[nodiscard]] QVStatus formatAt(QVStrSize index, QVFMTEntry* entry) noexcept;

}  // namespace qvhost
