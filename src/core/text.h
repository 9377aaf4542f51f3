// Counted strings as views.
//
// Records and boundary signatures keep a text as a pair of pointer and length; bodies work on
// views.
//
// Tested by tests/core/helpers_test.cpp
#pragma once

#include "qvtypes.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <string_view>

namespace jmap {

// A counted string of the engine as a view.  The text is borrowed; a null text has length 0.
[[nodiscard]] constexpr std::string_view view(const char* text, QVStrSize textLen) noexcept {
    assert(textLen >= 0);
    return {text, static_cast<std::size_t>(textLen)};
}

// The length of a view as the engine keeps lengths.
[[nodiscard]] constexpr QVStrSize lengthOf(std::string_view text) noexcept {
    return static_cast<QVStrSize>(text.size());
}

// The first `count` bytes of a text, and the rest after them.  Of a shorter text: all, and nothing.
// (std::string_view::substr is not used: it may throw, and the engine imports nothing that throws.)
[[nodiscard]] constexpr std::string_view firstOf(std::string_view text,
                                                 std::size_t count) noexcept {
    return {text.data(), std::min(count, text.size())};
}
[[nodiscard]] constexpr std::string_view after(std::string_view text, std::size_t count) noexcept {
    const std::size_t skipped = std::min(count, text.size());
    return {text.data() + skipped, text.size() - skipped};
}

}  // namespace jmap
