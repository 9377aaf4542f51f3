// What the two catalogues have in common: rows that begin with a name, found in any case.
//
// Tested by tests/host/fmt_test.cpp
#pragma once

#include "qvehost.h"

#include "host/fmt/scanner.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace qvhost {

constexpr char kPatternBegin = '%';

// The row of that name, or null.
template <class Row, std::size_t N>
[[nodiscard]] const Row* findRow(const Row (&rows)[N], std::string_view name) noexcept {
    const auto* found = std::ranges::find_if(rows, [name](const Row& row) {
        return std::ranges::equal(name, std::string_view(row.name), {}, toLower);
    });
    return found == rows + N ? nullptr : found;
}

template <class Row, std::size_t N>
[[nodiscard]] QVStatus rowAt(const Row (&rows)[N], QVStrSize index, QVFMTEntry* entry) noexcept {
    if (index < 0 || index >= static_cast<QVStrSize>(N)) {
        return QV_EOF;
    }
    const Row& row = rows[index];
    *entry = {row.name, row.purpose, static_cast<QVBoolean>(row.numeric() ? 1 : 0)};
    return QV_OK;
}

}  // namespace qvhost
