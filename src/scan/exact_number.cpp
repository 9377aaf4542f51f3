// See exact_number.h.
#include "exact_number.h"

#include "core/text.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace jmap {
namespace {

constexpr uint64_t kTwoTo53 = uint64_t{1} << 53;
constexpr int64_t kKeptDigits = 17;
constexpr int64_t kWordDigits = 19;       // fit into 64 bits
constexpr std::size_t kTameLength = 300;  // no number of such a length is infinite or 0 by itself

// A number taken apart.
struct DIGITS {
    int64_t significant;  // from the first to the last digit that is not 0
    int64_t zeros;        // digits 0 behind the last of them
    uint64_t value;       // of the significant ones, when they are kWordDigits or fewer
    bool whole;           // neither point nor exponent
    bool exponent;
};

DIGITS takeApart(std::string_view number) noexcept {
    DIGITS found = {0, 0, 0, true, false};
    for (const char c : number) {
        if (c == 'e' || c == 'E') {
            found.whole = false;
            found.exponent = true;
            break;
        }
        if (c == '.') {
            found.whole = false;
        } else if (c == '0') {
            found.zeros += found.significant == 0 ? 0 : 1;
        } else if (c != '-') {
            found.significant += found.zeros + 1;
            if (found.significant <= kWordDigits) {
                for (; found.zeros > 0; --found.zeros) {
                    found.value *= 10;
                }
                found.value = found.value * 10 + static_cast<uint64_t>(c - '0');
            }
            found.zeros = 0;
        }
    }
    return found;
}

// Whether value * 10^zeros, a whole number greater than 0, has at most 53 bits between its first
// and its last 1.
bool isDouble(uint64_t value, int64_t zeros) noexcept {
    value >>= std::countr_zero(value);
    for (; zeros > 0 && value < kTwoTo53; --zeros) {
        value *= 5;
    }
    return value < kTwoTo53;
}

bool losesMagnitude(QVStringServiceh smh, std::string_view number) noexcept {
    double value = 0.0;
    QVStrSize used = 0;
    if (smh == nullptr ||
        smh->toDouble(smh, number.data(), lengthOf(number), &value, &used) != QV_OK) {
        return false;
    }
    constexpr double kMost = std::numeric_limits<double>::max();
    return value == 0.0 || value > kMost || value < -kMost;
}

}  // namespace

bool losesDigits(QVStringServiceh smh, std::string_view number) noexcept {
    const DIGITS digits = takeApart(number);
    if (digits.significant == 0) {
        return false;
    }
    if (digits.whole) {
        return digits.significant > kWordDigits || !isDouble(digits.value, digits.zeros);
    }
    return digits.significant > kKeptDigits ||
           ((digits.exponent || number.size() > kTameLength) && losesMagnitude(smh, number));
}

}  // namespace jmap
