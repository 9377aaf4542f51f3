// Texts to numbers: one pass over the text checks its syntax and collects the digits.  Most cells
// are then done with one exact operation of the processor; the others go through std::from_chars.
//
// Tested by tests/host/number_test.cpp
#include "host/nls/number.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <limits>

namespace qvhost {
namespace {

static_assert(FLT_EVAL_METHOD == 0,
              "doubles must be calculated as doubles for the exact shortcuts");

// A number taken apart: (-1)^negative * whole.fraction * 10^exponent.
struct Parts {
    bool negative = false;
    std::string_view whole;
    std::string_view fraction;
    int64_t exponent = 0;   // kept within +-kExponentMax
    uint64_t mantissa = 0;  // the digits of `whole` and `fraction` as one integer, modulo 2^64
};

constexpr int64_t kExponentMax = 1'000'000'000'000'000'000;  // beyond any length of a text
constexpr std::size_t kExactDigits = 19;                     // any so many digits fit in 64 bits

constexpr bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

// Steps over digits and returns them; their values go to `each`.
template <class Each>
std::string_view takeDigits(const char*& at, const char* end, Each each) noexcept {
    const char* const begin = at;
    for (; at != end && isDigit(*at); ++at) {
        each(static_cast<unsigned>(*at - '0'));
    }
    return {begin, static_cast<std::size_t>(at - begin)};
}

bool takeExponent(const char*& at, const char* end, Parts& parts) noexcept {
    ++at;
    const bool negative = at != end && *at == '-';
    if (at != end && (*at == '-' || *at == '+')) {
        ++at;
    }
    int64_t exponent = 0;
    const auto digits = takeDigits(at, end, [&exponent](unsigned digit) {
        exponent = exponent < kExponentMax / 10 ? exponent * 10 + digit : kExponentMax;
    });
    parts.exponent = negative ? -exponent : exponent;
    return !digits.empty();
}

// False when the text is not a number.
bool takeApart(std::string_view text, Parts& parts) noexcept {
    const char* at = text.data();
    const char* const end = at + text.size();
    parts.negative = at != end && *at == '-';
    at += parts.negative ? 1 : 0;
    uint64_t mantissa = 0;
    const auto collect = [&mantissa](unsigned digit) { mantissa = mantissa * 10 + digit; };

    parts.whole = takeDigits(at, end, collect);
    if (parts.whole.empty() || (parts.whole.size() > 1 && parts.whole.front() == '0')) {
        return false;
    }
    if (at != end && *at == '.') {
        ++at;
        parts.fraction = takeDigits(at, end, collect);
        if (parts.fraction.empty()) {
            return false;
        }
    }
    parts.mantissa = mantissa;
    if (at != end && (*at == 'e' || *at == 'E') && !takeExponent(at, end, parts)) {
        return false;
    }
    return at == end;
}

// Powers of ten that a double holds exactly.
constexpr std::array<double, 23> kPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                            1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                            1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr uint64_t kExactMax = uint64_t{1} << DBL_MANT_DIG;

// One operation on exact operands rounds once, hence correctly.  None where that does not apply.
std::optional<double> exactShortcut(const Parts& parts) noexcept {
    if (parts.whole.size() + parts.fraction.size() > kExactDigits) {
        return std::nullopt;
    }
    const int64_t scale = parts.exponent - static_cast<int64_t>(parts.fraction.size());
    const auto mantissa = static_cast<double>(parts.mantissa);
    if (scale == 0) {
        return mantissa;
    }
    constexpr auto kScaleMax = static_cast<int64_t>(kPowers.size()) - 1;
    if (parts.mantissa > kExactMax || scale < -kScaleMax || scale > kScaleMax) {
        return std::nullopt;
    }
    return scale < 0 ? mantissa / kPowers[static_cast<std::size_t>(-scale)]
                     : mantissa * kPowers[static_cast<std::size_t>(scale)];
}

// A number of any length in a form of bounded length that rounds to the same double.  768 digits
// and one that says whether any other digit but 0 follows decide every case.
class ShortForm {
   public:
    explicit ShortForm(const Parts& parts) noexcept
        : exponent_(parts.exponent + static_cast<int64_t>(parts.whole.size())) {
        add(parts.whole);
        add(parts.fraction);
        if (more_) {
            text_[length_++] = '1';
        }
    }

    // The number is 0.d1d2d3... * 10^exponent(), and d1 is not 0 unless the number is.
    [[nodiscard]] bool isZero() const noexcept { return length_ == 0; }
    [[nodiscard]] int64_t exponent() const noexcept { return exponent_; }

    // Sets the value, or leaves it when it is out of range; for exponents of a few digits.
    void convert(double& value) noexcept {
        std::size_t length = length_;
        text_[length++] = 'e';
        const auto exponent = exponent_ - static_cast<int64_t>(length_);
        char* const end =
            std::to_chars(text_.data() + length, text_.data() + text_.size(), exponent).ptr;
        std::from_chars(text_.data(), end, value);
    }

   private:
    static constexpr std::size_t kDigits = 780;

    void add(std::string_view digits) noexcept {
        if (length_ == 0) {
            const auto zeros = std::min(digits.find_first_not_of('0'), digits.size());
            exponent_ -= static_cast<int64_t>(zeros);
            digits.remove_prefix(zeros);
        }
        const auto kept = std::min(digits.size(), kDigits - length_);
        length_ += digits.copy(text_.data() + length_, kept);
        more_ = more_ || digits.find_first_not_of('0', kept) != std::string_view::npos;
    }

    std::array<char, kDigits + 24> text_;
    std::size_t length_ = 0;  // digits so far
    int64_t exponent_;
    bool more_ = false;  // a digit other than 0 was left out
};

// The magnitude of any number, whatever its length and exponent.
double convertAny(const Parts& parts) noexcept {
    constexpr int64_t kBeyond = 400;  // no double but 0 and infinity has such an exponent
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    ShortForm form(parts);
    if (form.isZero() || form.exponent() < -kBeyond) {
        return 0.0;
    }
    if (form.exponent() > kBeyond) {
        return kInfinity;
    }
    // Out of range leaves `value` as it was.
    double value = form.exponent() > 0 ? kInfinity : 0.0;
    form.convert(value);
    return value;
}

// std::from_chars cuts large exponents, so that it gets only texts too short to make up for one;
// nor does it tell too large from too small.
double convert(std::string_view text, const Parts& parts) noexcept {
    constexpr std::size_t kTameLength = 1000;
    if (text.size() <= kTameLength) {
        double value = 0.0;
        if (std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc()) {
            return std::fabs(value);
        }
    }
    return convertAny(parts);
}

}  // namespace

std::optional<double> textToDouble(std::string_view text) noexcept {
    Parts parts;
    if (!takeApart(text, parts)) {
        return std::nullopt;
    }
    const std::optional<double> exact = exactShortcut(parts);
    const double magnitude = exact ? *exact : convert(text, parts);
    return parts.negative ? -magnitude : magnitude;
}

std::optional<int64_t> textToInteger(std::string_view text) noexcept {
    Parts parts;
    if (!takeApart(text, parts) || parts.whole.size() + (parts.negative ? 1 : 0) != text.size()) {
        return std::nullopt;
    }
    int64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() ? std::optional(value) : std::nullopt;
}

}  // namespace qvhost
