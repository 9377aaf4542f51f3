// Which numbers a double keeps.
#include "scan/exact_number.h"

#include "testkit/open_document.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <random>

namespace jmap::test {
namespace {

// A number as its digits, without zeros at both ends, and the power of ten of the last: "12e-3".
std::string decimalOf(std::string_view number) {
    std::string digits;
    int64_t scale = 0;
    bool fraction = false;
    const std::size_t e = std::min(number.find_first_of("eE"), number.size());
    for (const char c : number.substr(0, e)) {
        fraction = fraction || c == '.';
        if (c >= '0' && c <= '9') {
            digits += c;
            scale -= fraction ? 1 : 0;
        }
    }
    if (e != number.size()) {
        scale += std::strtoll(std::string(number.substr(e + 1)).c_str(), nullptr, 10);
    }
    digits.erase(0, digits.find_first_not_of('0'));
    const std::size_t kept = digits.find_last_not_of('0') + 1;
    scale += static_cast<int64_t>(digits.size() - kept);
    return kept == 0 ? "0" : digits.substr(0, kept) + "e" + std::to_string(scale);
}

// By the definition: the shortest text of the nearest double is another number.
bool isLost(const std::string& number) {
    const double value = std::strtod(number.c_str(), nullptr);
    char text[64];
    char* const end = std::to_chars(text, std::end(text), value, std::chars_format::scientific).ptr;
    return std::isinf(value) || decimalOf({text, end}) != decimalOf(number);
}

class ExactNumber : public testing::Test {
   protected:
    // What the engine finds, and whether the quick look agrees.
    bool loses(const std::string& number) {
        const bool lost = losesDigits(doc_.p.smh, number);
        EXPECT_TRUE(!lost || mayLoseDigits(number)) << number;
        return lost;
    }
    // Both signs, some other spellings.
    void check(const std::string& number) {
        const bool lost = isLost(number);
        EXPECT_EQ(loses(number), lost) << number;
        EXPECT_EQ(loses("-" + number), lost) << number;
        const std::size_t e = std::min(number.find_first_of("eE"), number.size());
        const bool point = number.find('.') < e;
        const std::string padded = number.substr(0, e) + (point ? "00000000" : ".000");
        EXPECT_EQ(loses(padded + number.substr(e)), lost) << padded;
        if (e == number.size()) {
            EXPECT_EQ(loses(number + "e0"), lost) << number;
            EXPECT_EQ(loses(padded + "E+00"), lost) << padded;
        }
    }

   private:
    HandDocument doc_;
};

// What a double's digits are is known; those around it are the numbers that are hard to tell.
TEST_F(ExactNumber, AgreesWithTheDefinitionOnRandomNumbers) {
    std::mt19937_64 random(11);
    char text[64];
    for (int i = 0; i < 15000 && !HasFailure(); ++i) {
        uint64_t image = random() >> 1;
        if (i % 3 != 0) {  // of usual size, some near a power of two
            image =
                (uint64_t{1000} + random() % 60) << 52 | (random() >> 12 >> (i % 4 == 0 ? 49 : 0));
        } else if (i % 2 == 0) {  // of few bits
            image >>= random() % 62;
        }
        const auto value = std::bit_cast<double>(image);
        if (!std::isfinite(value)) {
            continue;
        }
        const int digits = 15 + static_cast<int>(random() % 4);
        char* end =
            std::to_chars(text, std::end(text), value, std::chars_format::scientific, digits - 1)
                .ptr;
        std::string number(text, end);
        const std::size_t last = number.find('e') - 1;
        number[last] = static_cast<char>('0' + (number[last] - '0' + random() % 3) % 10);
        check(number);
        const uint64_t whole = random() >> random() % 20;
        check(std::to_string(whole));
        const std::string shown = std::to_string(whole);
        const std::size_t point = 1 + random() % shown.size();
        if (point < shown.size()) {
            check(shown.substr(0, point) + "." + shown.substr(point));
        }
        check("0.0" + shown);
    }
}

}  // namespace
}  // namespace jmap::test
