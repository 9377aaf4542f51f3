// See number_text.h.
#include "formats/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace qvej {

namespace {
constexpr double kTwoTo63 = 9223372036854775808.0;
}

char* writeNumber(char* at, double number, const InfinityWords& infinity) {
    char* const end = at + kNumberChars;
    if (number > -kTwoTo63 && number < kTwoTo63) {
        const auto whole = static_cast<int64_t>(number);
        if (static_cast<double>(whole) == number && (whole != 0 || !std::signbit(number))) {
            return std::to_chars(at, end, whole).ptr;
        }
    } else if (std::isinf(number)) {
        const std::string_view word = number > 0 ? infinity.positive : infinity.negative;
        return std::copy(word.begin(), word.end(), at);
    }
    return std::to_chars(at, end, number).ptr;
}

}  // namespace qvej
