// Texts to numbers, by the syntax of JSON.
//
//     number   = [ "-" ] ( "0" | digit1-9 *digit ) [ "." 1*digit ] [ exponent ]
//     exponent = ( "e" | "E" ) [ "+" | "-" ] 1*digit
//     integer  = a number without fraction and exponent
//
// The whole text must be one number: no blanks, no "+", no leading zeros, no bare point.  All bytes
// of a number are ASCII, so one conversion serves every document encoding.
//
// Tested by tests/host/number_test.cpp
#pragma once

#include "qvtypes.h"

#include <optional>
#include <string_view>

namespace qvhost {

// The double nearest to the number (ties to even), however long the text is.  Above the greatest
// double by more than rounding: infinity; below the least: 0; both with the number's sign.  None
// when the text is not a number.
[[nodiscard]] std::optional<double> textToDouble(std::string_view text) noexcept;

// None when the text is not an integer or the integer does not fit in 64 bits.
[[nodiscard]] std::optional<int64_t> textToInteger(std::string_view text) noexcept;

}  // namespace qvhost
