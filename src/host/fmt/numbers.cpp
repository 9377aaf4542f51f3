// Texts are brought into the form of a JSON number, for which the host has an exact conversion.
//
// Tested by tests/host/fmt_test.cpp
#include "host/fmt/numbers.h"

#include "host/fmt/scanner.h"
#include "host/nls/number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace qvhost {
namespace {

constexpr double kExactMax = 9007199254740992.0;  // 2^53

template <class Number, class... Form>
void append(std::string& out, Number number, Form... form) {
    std::array<char, 512> text;  // 309 digits, a point, kDecimalsMax + 2 decimals
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number, form...).ptr;
    out.append(text.data(), end);
}

// The digits before the point.  False when commas stand where they should not.
bool takeWhole(Scanner& scanner, bool grouped, std::string& digits) {
    const std::string_view first = scanner.takeDigits();
    digits += first;
    if (!grouped || scanner.next() != ',') {
        return true;
    }
    bool strict = !first.empty() && first.size() <= 3;
    while (scanner.take(',')) {
        const std::string_view group = scanner.takeDigits();
        strict = strict && group.size() == 3;
        digits += group;
    }
    return strict;
}

// An exponent if there is one; far beyond any length of a text it is cut.
bool takeExponent(Scanner& scanner, int64_t& exponent) noexcept {
    constexpr int64_t kExponentMax = 1'000'000'000'000'000;
    if (!scanner.take('e') && !scanner.take('E')) {
        return true;
    }
    const bool negative = scanner.take('-');
    if (!negative) {
        scanner.take('+');
    }
    const std::string_view digits = scanner.takeDigits();
    for (const char digit : digits) {
        exponent = std::min(exponent * 10 + (digit - '0'), kExponentMax);
    }
    exponent = negative ? -exponent : exponent;
    return !digits.empty();
}

// A word that stands for the number, such as "inf", when it has no digits.
bool appendWord(double value, std::string& out) {
    if (std::isfinite(value)) {
        return false;
    }
    out += std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
    return true;
}

}  // namespace

std::optional<double> readNumber(std::string_view text, const NumberForm& form,
                                 std::string& scratch) {
    if (form.pointMoved == 0 && form.decimals == 0) {
        if (const auto plain = textToDouble(text)) {
            return plain;
        }
    }
    Scanner scanner(text);
    scratch.assign(scanner.take('-') ? "-" : "");
    if (scratch.empty()) {
        scanner.take('+');
    }
    const std::size_t begin = scratch.size();
    if (!takeWhole(scanner, form.grouped, scratch)) {
        return std::nullopt;
    }
    std::size_t digits = scratch.size() - begin;
    // JSON wants one digit before the point, and none superfluous.
    const auto zeros = std::min(scratch.find_first_not_of('0', begin), scratch.size()) - begin;
    scratch.replace(begin, zeros, zeros == digits ? "0" : "");
    const bool point = scanner.take('.');
    if (point) {
        const std::string_view fraction = scanner.takeDigits();
        digits += fraction.size();
        scratch.append(fraction.empty() ? "" : ".").append(fraction);
    }
    int64_t exponent = 0;
    if (digits == 0 || !takeExponent(scanner, exponent) || !scanner.atEnd()) {
        return std::nullopt;
    }
    exponent += form.pointMoved - (point ? 0 : static_cast<int64_t>(form.decimals));
    scratch += 'e';
    append(scratch, exponent);
    return textToDouble(scratch);
}

QVStatus readHex(std::string_view text, double& value) noexcept {
    const bool negative = text.starts_with('-');
    text.remove_prefix(negative ? 1 : 0);
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
    }
    uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data(), end, number, 16);
    if (at != end || error == std::errc::invalid_argument) {
        return QV_FMT_VALUE;
    }
    if (error != std::errc() || number > static_cast<uint64_t>(kExactMax)) {
        return QV_FMT_RANGE;
    }
    value = negative ? -static_cast<double>(number) : static_cast<double>(number);
    return QV_OK;
}

QVStatus appendHex(double value, std::string& out) {
    if (!(std::fabs(value) <= kExactMax)) {
        return QV_FMT_RANGE;
    }
    if (std::trunc(value) != value) {
        return QV_FMT_VALUE;
    }
    append(out, static_cast<int64_t>(value), 16);
    return QV_OK;
}

void appendPlain(double value, std::string& out) {
    constexpr double kTwoTo63 = 9223372036854775808.0;
    if (appendWord(value, out)) {
        return;
    }
    const bool zeroSign = value == 0 && std::signbit(value);
    if (std::fabs(value) < kTwoTo63 && std::trunc(value) == value && !zeroSign) {
        append(out, static_cast<int64_t>(value));
    } else {
        append(out, value);
    }
}

void appendFixed(double value, uint64_t decimals, std::string& out) {
    if (!appendWord(value, out)) {
        append(out, value, std::chars_format::fixed, static_cast<int>(decimals));
    }
}

void appendGrouped(double value, uint64_t decimals, std::string& out) {
    const std::size_t begin = out.size();
    appendFixed(value, decimals, out);
    const std::size_t first = std::min(out.find_first_of("0123456789", begin), out.size());
    std::size_t at = std::min(out.find('.', first), out.size());
    while (at > first + 3) {
        at -= 3;
        out.insert(at, 1, ',');
    }
}

void appendPercent(double value, uint64_t decimals, std::string& out) {
    const std::size_t begin = out.size();
    appendFixed(value, decimals + 2, out);
    const std::size_t point = out.find('.', begin);
    if (point != std::string::npos) {
        out.erase(point, 1);
        if (decimals > 0) {
            out.insert(point + 2, 1, '.');
        }
        const std::size_t first = out.find_first_of("0123456789", begin);
        const std::size_t last = point + 1;  // the digit that must stay
        out.erase(first, std::min(out.find_first_not_of('0', first), last) - first);
    }
    out += '%';
}

}  // namespace qvhost
