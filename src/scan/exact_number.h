// Whether a number of the document survives in a double.
//
// The test is exact: the shortest text that reads back to the nearest double, as a decimal value,
// is the number.  So 0.1 is kept, and 9007199254740993 is not; nor is what is too large or becomes
// 0.  The double 2^60 is shortest as 1152921504606847000, so 1152921504606846976 is not kept
// either: whoever prints the double gets other digits.
//
// Tested by tests/scan/exact_number_test.cpp
#pragma once

#include "qvehost.h"

#include "core/short_bytes.h"

#include <cstdint>
#include <string_view>

namespace jmap {

// So many significant digits are always kept, in numbers from 10^-307 to 10^308.  Such a decimal is
// at least 10^-15 of itself away from the next one of 15 digits, and the decimals that a double is
// nearest to lie within 2^-52 of it, which is less: so no other decimal of 15 digits or fewer has
// the same double.
inline constexpr int kAlwaysKeptDigits = 15;

// Whether a number of JSON grammar is not kept.
//   smh  reads what is far from 1, and needs many digits; null: all that is kept
[[nodiscard]] bool losesDigits(QVStringServiceh smh, std::string_view number) noexcept;

// Whether that needs a look at every digit.  Of the characters of a number only 'e' and 'E' have
// bit 6, and, a sign in front apart, only '.' and those lack bit 4.
[[nodiscard]] inline bool mayLoseDigits(std::string_view number) noexcept {
    constexpr uint64_t kExponentBits = 0x4040404040404040;
    constexpr uint64_t kDigitBits = 0x1010101010101010;
    constexpr std::size_t kLeastTrouble = 5;  // 1e309
    const std::size_t sign = !number.empty() && number[0] == '-' ? 1 : 0;
    const char* const at = number.data() + sign;
    const std::size_t n = number.size() - sign;
    if (n < 8) {
        return n >= kLeastTrouble && ((loadBytes<uint32_t>(at) | loadBytes<uint32_t>(at + n - 4)) &
                                      static_cast<uint32_t>(kExponentBits)) != 0;
    }
    if (n > 24) {
        return true;
    }
    const auto first = loadBytes<uint64_t>(at);
    const auto last = loadBytes<uint64_t>(at + n - 8);
    const auto middle = n > 16 ? loadBytes<uint64_t>(at + 8) : last;
    if (((first | middle | last) & kExponentBits) != 0) {
        return true;
    }
    const bool hasPoint = ((first & middle & last) & kDigitBits) != kDigitBits;
    return n > kAlwaysKeptDigits + (hasPoint ? 1U : 0U);
}

}  // namespace jmap
