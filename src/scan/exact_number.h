// Whether a number of the document survives in a double.
//
// A double keeps every whole number up to 2^53, some beyond, and 17 significant digits at most;
// what is too large becomes infinite, what is too small 0.
//
// Tested by tests/tool/golden/tables.t
#pragma once

#include "qvehost.h"

#include "core/short_bytes.h"

#include <cstdint>
#include <string_view>

namespace jmap {

// Whether a number of JSON grammar loses something: a whole number, written without point and
// exponent, other than the double next to it; more than 17 digits from the first to the last that
// is not 0; a magnitude that becomes infinite or, with a digit other than 0, 0.  Whole numbers of
// more than 19 such digits count as lost, even 2^64.
//   smh  converts what has an exponent or is very long; null: magnitudes are taken to be kept
[[nodiscard]] bool losesDigits(QVStringServiceh smh, std::string_view number) noexcept;

// Whether that needs a look at every digit.  Of the characters of a number only 'e' and 'E' have
// bit 6, and, a sign in front apart, only '.' and those lack bit 4.
[[nodiscard]] inline bool mayLoseDigits(std::string_view number) noexcept {
    constexpr uint64_t kExponentBits = 0x4040404040404040;
    constexpr uint64_t kDigitBits = 0x1010101010101010;
    constexpr std::size_t kLeastTrouble = 5;  // 1e309
    constexpr std::size_t kKeptWhole = 15;
    constexpr std::size_t kKeptDigits = 17;
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
    return n > (hasPoint ? kKeptDigits + 1 : kKeptWhole);
}

}  // namespace jmap
