// What a text is: one document, or a sequence of values.
//
// Tested by tests/client/text_form_test.cpp
#pragma once

#include <cstdint>
#include <string_view>

namespace qvej {

enum class TextForm : uint8_t {
    DOCUMENT,  // one value
    LINES,     // JSON Lines: each value in a line of its own
    SEQUENCE   // values with any white space between them, or none
};

// By the beginning of a text, in UTF-8: a sequence is known by its second value, so the first one
// must end within `start`.  It is LINES while every value stands in a line of its own.  Values are
// not checked but for where they end; what comes after a mistake does not count.
[[nodiscard]] TextForm textFormOf(std::string_view start);

}  // namespace qvej
