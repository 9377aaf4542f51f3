// Whether a double keeps a number of the document.
//
// It does when the shortest text that reads back to the nearest double has the same decimal value
// as the number.  So 0.1 is kept, and 9007199254740993 is not.  A number that becomes infinite or 0
// is not kept either.  Nor is 1152921504606846976, although it is a double exactly, 2^60: a program
// that prints this double prints 1152921504606847000.
//
// Tested by tests/scan/exact_number_test.cpp and tests/tool/golden/tables.t
#pragma once

#include "qvehost.h"

#include "core/short_bytes.h"

#include <cstdint>
#include <string_view>

namespace jmap {

// A double keeps every number of up to 15 digits from 10^-307 to 10^308.  Two such decimals differ
// by at least 10^-15 of their value.  All decimals that round to one double lie within 2^-52 of its
// value, which is less.  So no two decimals of 15 digits or fewer have the same double.
inline constexpr int kAlwaysKeptDigits = 15;

// Whether a number of JSON grammar is not kept.
//   smh  converts numbers that need the slow path; null: such numbers count as kept
[[nodiscard]] bool losesDigits(QVStringServiceh smh, std::string_view number) noexcept;

// Whether losesDigits() may be true; a cheap test for the many numbers that are short.  Of the
// characters of a number only 'e' and 'E' have bit 6.  Without a leading sign only these two and
// '.' lack bit 4.
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
