// See exact_number.h.
//
// A number is digits * 10^scale, the nearest double to it is bits * 2^exponent.  The shortest text
// of the double is the number if and only if
//   - no decimal of fewer digits rounds to the double.  The decimals that round to it are an
//     interval around the number, so it is enough to test the nearest shorter decimal on each side;
//   - no decimal of as many digits is nearer to the double.  Of two that are equally near, the even
//     one is the text.
// All these are comparisons of whole numbers.
#include "exact_number.h"

#include "core/text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace jmap {
namespace {

constexpr uint64_t kTenTo15 = 1'000'000'000'000'000;
constexpr uint64_t kTenTo17 = 100 * kTenTo15;
constexpr int64_t kLowestPlace = -324;      // a number whose first digit is below it becomes 0
constexpr int64_t kHighestPlace = 308;      // one whose first digit is above it: infinite
constexpr int64_t kLowestSafePlace = -308;  // above it all doubles have 53 bits
constexpr int kFractionBits = 52;
constexpr uint64_t kHiddenBit = uint64_t{1} << kFractionBits;
constexpr int64_t kExponentBias = 1075;  // of the lowest bit

// ---- The number ---------------------------------------------------------------------------------

// The magnitude of a number: digits * 10^scale.
struct DECIMAL {
    uint64_t digits;  // the last one is not 0; 0: the number is 0
    int64_t scale;
    bool many;  // there are more digits than 64 bits hold; `digits` has no meaning then
};

bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

// The value of eight digits; false when they are not all digits.
bool takeEight(const char* at, uint64_t& value) noexcept {
    uint64_t word = loadBytes<uint64_t>(at);
    if (std::endian::native != std::endian::little ||
        ((word | (word + 0x0606060606060606)) & 0xF0F0F0F0F0F0F0F0) != 0x3030303030303030) {
        return false;
    }
    word &= 0x0F0F0F0F0F0F0F0F;  // joined to pairs, then to fours, then to all eight
    word = (word * 10 + (word >> 8)) & 0x00FF00FF00FF00FF;
    word = (word * 100 + (word >> 16)) & 0x0000FFFF0000FFFF;
    word = (word * 10000 + (word >> 32)) & 0x00000000FFFFFFFF;
    value = value * 100'000'000 + word;
    return true;
}

const char* takeDigits(const char* at, const char* end, uint64_t& value) noexcept {
    for (; at != end && isDigit(*at); ++at) {
        value = value * 10 + static_cast<uint64_t>(*at - '0');
    }
    return at;
}

// Reads the common form: no exponent, and no more digits than 64 bits hold.  False for other forms.
bool takeShort(std::string_view text, DECIMAL& number) noexcept {
    constexpr std::size_t kLongest = 20;  // 19 digits and a point
    if (text.size() > kLongest) {
        return false;
    }
    const char* const end = text.data() + text.size();
    const char* at = takeDigits(text.data(), end, number.digits);
    if (at != end && *at == '.') {
        ++at;
        number.scale = at - end;
        while (end - at >= 8 && takeEight(at, number.digits)) {
            at += 8;
        }
        at = takeDigits(at, end, number.digits);
    } else if (text.size() == kLongest) {
        return false;
    }
    while (number.digits != 0 && number.digits % 10 == 0) {
        number.digits /= 10;
        ++number.scale;
    }
    return at == end;
}

// The exponent after its 'e'.  It is clamped, to bounds that no number of digits can outweigh.
int64_t exponentOf(std::string_view text) noexcept {
    constexpr int64_t kBound = int64_t{1} << 58;
    int64_t exponent = 0;
    for (const char c : text) {
        if (isDigit(c)) {
            exponent = std::min(exponent * 10 + (c - '0'), kBound);
        }
    }
    return text.starts_with('-') ? -exponent : exponent;
}

// Reads any form.
DECIMAL takeAny(std::string_view text) noexcept {
    constexpr int64_t kWordDigits = 19;  // so many fit into 64 bits
    DECIMAL number = {0, 0, false};
    int64_t significant = 0;  // digits from the first to the last that is not 0
    int64_t zeros = 0;        // after the last of them
    bool fraction = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '.') {
            fraction = true;
            continue;
        }
        if (!isDigit(c)) {
            number.scale += exponentOf({text.data() + i + 1, text.size() - i - 1});
            break;
        }
        number.scale -= fraction ? 1 : 0;
        if (c == '0') {
            zeros += significant == 0 ? 0 : 1;
            continue;
        }
        significant += zeros + 1;
        for (; zeros > 0 && significant <= kWordDigits; --zeros) {
            number.digits *= 10;
        }
        number.digits = number.digits * 10 + static_cast<uint64_t>(c - '0');
        zeros = 0;
    }
    number.scale += zeros;
    number.many = significant > kWordDigits;
    return number;
}

DECIMAL takeApart(std::string_view text) noexcept {
    text.remove_prefix(text.starts_with('-') ? 1 : 0);
    DECIMAL number = {0, 0, false};
    return takeShort(text, number) ? number : takeAny(text);
}

// The power of ten of the first digit.
int64_t placeOf(const DECIMAL& number) noexcept {
    int64_t place = number.scale - 1;
    for (uint64_t left = number.digits; left != 0; left /= 10) {
        ++place;
    }
    return place;
}

// ---- In 64 bits ---------------------------------------------------------------------------------

// Powers of ten that a double holds exactly, and the powers of five in them.
struct TENS {
    static constexpr int64_t kMost = 22;
    double ten[kMost + 1] = {1.0};
    uint64_t five[kMost + 1] = {1};
    constexpr TENS() {
        for (int64_t i = 1; i <= kMost; ++i) {
            ten[i] = ten[i - 1] * 10.0;
            five[i] = five[i - 1] * 5;
        }
    }
};
constexpr TENS kTens;

enum VERDICT { KEPT, LOST, UNSURE };

// For 16 or 17 digits and a scale from -22 to 0.
//
// Everything is multiplied by the same power of two and by 5^-scale and becomes a whole number.
// Then two neighbouring doubles differ by `ulp`, which is 5^-scale times at most 2^4.  One in the
// last digit is `unit`, which is at most 2^53 * 5^22 / 10^15 < 2^55.  The number and the double do
// not fit in 64 bits, but their difference, a few `ulp`, is right modulo 2^64.
VERDICT judge(const DECIMAL& number) noexcept {
    const int64_t q = -number.scale;
    // This rounds twice, so it may miss the nearest double, by at most two steps.
    const double near = static_cast<double>(number.digits) / kTens.ten[q];
    const auto image = std::bit_cast<uint64_t>(near);
    uint64_t bits = (image & (kHiddenBit - 1)) | kHiddenBit;
    const int64_t shift = kExponentBias - static_cast<int64_t>(image >> kFractionBits) - q;
    const int64_t left = std::max<int64_t>(shift, 0);
    const int64_t right = std::max<int64_t>(-shift, 0);
    const auto unit = static_cast<int64_t>(uint64_t{1} << left);
    const auto ulp = static_cast<int64_t>(kTens.five[q] << right);
    auto above = static_cast<int64_t>((number.digits << left) -
                                      ((bits * kTens.five[q]) << right));  // number - double
    for (int step = 0; step < 2; ++step) {
        const int64_t towards = (2 * above > ulp ? 1 : 0) - (2 * above < -ulp ? 1 : 0);
        bits += static_cast<uint64_t>(towards);
        above -= towards * ulp;
    }
    // Left to the slow path: halfway between two doubles, or at a power of two, where the
    // neighbours are not equally near.
    if (2 * std::abs(above) >= ulp || bits <= kHiddenBit || bits >= 2 * kHiddenBit) {
        return UNSURE;
    }
    const int64_t reach = ulp + (bits % 2 == 0 ? 1 : 0);  // a half rounds to the even one
    const auto lastDigit = static_cast<int64_t>(number.digits % 10);
    const int64_t shorterBelow = above - lastDigit * unit;
    const int64_t shorterAbove = shorterBelow + 10 * unit;
    const bool shorter = (-2 * shorterBelow < reach) | (2 * shorterAbove < reach);
    const bool nearest = 2 * std::abs(above) < unit + (lastDigit % 2 == 0 ? 1 : 0);
    return (shorter | !nearest) ? LOST : KEPT;
}

// ---- With as many bits as needed ----------------------------------------------------------------

// A whole number below 2^1024.  The largest in use is about 2^850: a double's 53 bits and two more,
// times 5^340.
struct WHOLE {
    std::array<uint64_t, 16> words;  // the lowest first
};

void multiply(WHOLE& number, uint64_t factor) noexcept {
    __extension__ using Wide = unsigned __int128;
    Wide carry = 0;
    for (uint64_t& word : number.words) {
        carry += static_cast<Wide>(word) * factor;
        word = static_cast<uint64_t>(carry);
        carry >>= 64;
    }
}

// value * 5^fives * 2^twos; a negative exponent counts as 0.
WHOLE wholeOf(uint64_t value, int64_t fives, int64_t twos) noexcept {
    WHOLE number = {{value}};
    for (; fives > 0; fives -= TENS::kMost) {
        multiply(number, kTens.five[std::min(fives, TENS::kMost)]);
    }
    for (; twos > 0; twos -= 63) {
        multiply(number, uint64_t{1} << std::min<int64_t>(twos, 63));
    }
    return number;
}

// Below, at or above 0 as a * 10^scale is below, at or above b * 2^exponent.
int compare(uint64_t a, int64_t scale, uint64_t b, int64_t exponent) noexcept {
    const WHOLE left = wholeOf(a, scale, scale - exponent);
    const WHOLE right = wholeOf(b, -scale, exponent - scale);
    for (std::size_t i = left.words.size(); i-- > 0;) {
        if (left.words[i] != right.words[i]) {
            return left.words[i] < right.words[i] ? -1 : 1;
        }
    }
    return 0;
}

// A finite double above 0: bits * 2^exponent.
struct BINARY {
    uint64_t bits;
    int64_t exponent;
    bool closeBelow;  // a power of two: the next one below is half as far as the next one above
};

BINARY binaryOf(double value) noexcept {
    const auto image = std::bit_cast<uint64_t>(value);
    const uint64_t fraction = image & (kHiddenBit - 1);
    const auto exponent = static_cast<int64_t>(image >> kFractionBits);
    return exponent == 0 ? BINARY{fraction, 1 - kExponentBias, false}
                         : BINARY{fraction | kHiddenBit, exponent - kExponentBias,
                                  fraction == 0 && exponent > 1};
}

// Whether digits * 10^scale rounds to the double.
bool roundsTo(const BINARY& to, uint64_t digits, int64_t scale) noexcept {
    const int least = to.bits % 2 == 0 ? 0 : 1;  // a half rounds to the even one
    return compare(4 * digits, scale, 4 * to.bits - (to.closeBelow ? 1 : 2), to.exponent) >=
               least &&
           compare(4 * digits, scale, 4 * to.bits + 2, to.exponent) <= -least;
}

// For up to 17 digits, and any scale that leaves the double finite and above 0.
bool losesSlowly(const DECIMAL& number, double nearest) noexcept {
    const BINARY to = binaryOf(nearest);
    const uint64_t digits = number.digits;
    const uint64_t below = digits - digits % 10;
    // A single digit has no shorter decimal.
    if (digits >= 10 &&
        (roundsTo(to, below, number.scale) || roundsTo(to, below + 10, number.scale))) {
        return true;
    }
    // At a power of two, the nearer one may be out of the interval.
    const int least = digits % 2 == 0 ? 0 : 1;
    return (compare(2 * digits + 1, number.scale, 2 * to.bits, to.exponent) < least &&
            roundsTo(to, digits + 1, number.scale)) ||
           (compare(2 * digits - 1, number.scale, 2 * to.bits, to.exponent) > -least &&
            roundsTo(to, digits - 1, number.scale));
}

}  // namespace

bool losesDigits(QVStringServiceh smh, std::string_view text) noexcept {
    const DECIMAL number = takeApart(text);
    if (number.many || number.digits >= kTenTo17) {
        return true;
    }
    if (number.digits == 0) {
        return false;
    }
    const bool few = number.digits < kTenTo15;
    if (!few && number.scale <= 0 && number.scale >= -TENS::kMost) {
        const VERDICT verdict = judge(number);
        if (verdict != UNSURE) {
            return verdict == LOST;
        }
    }
    const int64_t place = placeOf(number);
    if (few && place > kLowestSafePlace && place < kHighestPlace) {
        return false;
    }
    if (place < kLowestPlace || place > kHighestPlace) {
        return true;
    }
    double value = 0.0;
    QVStrSize used = 0;
    if (smh == nullptr || smh->toDouble(smh, text.data(), lengthOf(text), &value, &used) != QV_OK) {
        return false;
    }
    value = std::fabs(value);
    return value == 0.0 || std::isinf(value) || losesSlowly(number, value);
}

}  // namespace jmap
