// The text around a place, to be shown: a line of it, and a line with a caret under the place.
//
// Tested by tests/client/excerpt_test.cpp
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qvej {

// Bytes of `text` before a line and a column, from 1 as in Place, the column in bytes.  At most the
// size of `text`.
std::size_t offsetOf(std::string_view text, int64_t line, int64_t column);

// The two lines for the place after `at` bytes of `text` (UTF-8).  `cut`: something stood before
// the text.  Empty when there is nothing to see, or when the place is not in the text.
std::string excerptOf(std::string_view text, std::size_t at, bool cut = false);

}  // namespace qvej
