// See decimal_text.h.
#include "client/schema/decimal_text.h"

#include <algorithm>
#include <charconv>

namespace qvej {
namespace {

constexpr int64_t kMostExponent = 1'000'000'000;  // more does not fit any type either

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// A number taken apart: its digits, and where the point stands.
struct Parts {
    bool negative = false;
    std::string_view digits;  // with the point, if there is one
    int64_t exponent = 0;
    bool plain = true;
};

Parts partsOf(std::string_view number) {
    Parts parts;
    if (!number.empty() && number.front() == '-') {
        parts.negative = true;
        number.remove_prefix(1);
    }
    const std::size_t e = number.find_first_of("eE");
    parts.digits = number.substr(0, e);
    parts.plain = e == std::string_view::npos && number.find('.') == std::string_view::npos;
    if (e != std::string_view::npos) {
        std::string_view exponent = number.substr(e + 1);
        exponent.remove_prefix(!exponent.empty() && exponent.front() == '+' ? 1 : 0);
        const auto [end, trouble] =
            std::from_chars(exponent.data(), exponent.data() + exponent.size(), parts.exponent);
        if (trouble != std::errc()) {
            parts.exponent = exponent.starts_with('-') ? -kMostExponent : kMostExponent;
        }
        parts.exponent = std::clamp(parts.exponent, -kMostExponent, kMostExponent);
    }
    return parts;
}

}  // namespace

DecimalNeed needOf(std::string_view number) {
    const Parts parts = partsOf(number);
    DecimalNeed need;
    need.plain = parts.plain;
    // Digits are numbered from the point to the left, the one before it 0.
    const std::size_t point = std::min(parts.digits.find('.'), parts.digits.size());
    int64_t place = static_cast<int64_t>(point) - 1 + parts.exponent;
    bool found = false;
    int64_t first = 0;
    int64_t last = 0;
    for (const char c : parts.digits) {
        if (!isDigit(c)) {
            continue;
        }
        if (c != '0') {
            first = found ? first : place;
            last = place;
            found = true;
        }
        --place;
    }
    if (!found) {
        need.minusZero = parts.negative;
        return need;
    }
    need.whole = std::max<int64_t>(first + 1, 0);
    need.fraction = std::max<int64_t>(-last, 0);
    need.significant = static_cast<int>(std::min<int64_t>(first - last + 1, 1'000'000));
    return need;
}

std::optional<int64_t> wholeNumber(std::string_view number) {
    int64_t whole = 0;
    const char* const end = number.data() + number.size();
    const auto [last, trouble] = std::from_chars(number.data(), end, whole);
    if (last != end || trouble != std::errc() || (whole == 0 && number.front() == '-')) {
        return std::nullopt;
    }
    return whole;
}

Int128 unscaled(std::string_view number, int scale) {
    const Parts parts = partsOf(number);
    const std::size_t point = std::min(parts.digits.find('.'), parts.digits.size());
    int64_t place = static_cast<int64_t>(point) - 1 + parts.exponent;
    Int128 value = 0;
    for (const char c : parts.digits) {
        if (isDigit(c) && place-- >= -scale) {
            value = value * 10 + (c - '0');
        }
    }
    for (; value != 0 && place >= -scale; --place) {
        value *= 10;
    }
    return parts.negative ? -value : value;
}

}  // namespace qvej
