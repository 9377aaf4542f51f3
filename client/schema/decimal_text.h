// Numbers as a document writes them, taken as decimals.
//
// Tested by tests/client/decimal_text_test.cpp
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qvej {

// 128 bits, signed: gcc and clang have it.
__extension__ using Int128 = __int128;

// What a number of JSON needs, however it is written: 120, 1.2e2 and 120.00 need the same.
struct DecimalNeed {
    int64_t whole = 0;     // digits before the point, 0 of a number below 1
    int64_t fraction = 0;  // digits after it, without trailing zeros
    int significant = 0;   // digits from the first to the last that is not 0; 0 of zero
    bool plain = true;     // neither point nor exponent
    bool minusZero = false;
};

// Of a number of JSON.
[[nodiscard]] DecimalNeed needOf(std::string_view number);

// A number of JSON without point and exponent; nothing when it is another, -0, or 64 bits have no
// room for it.
[[nodiscard]] std::optional<int64_t> wholeNumber(std::string_view number);

// A number of JSON times 10 to the power of `scale`, which must be whole and have at most 38
// digits.
[[nodiscard]] Int128 unscaled(std::string_view number, int scale);

}  // namespace qvej
