// Texts to numbers: the syntax, the rounding, and the ends of the range.
#include "host/nls/number.h"

#include "tests/host/host_fixture.h"

#include <bit>
#include <cmath>
#include <cstdlib>
#include <random>

namespace qvhost::test {
namespace {

using namespace std::string_literals;

// The standard library is the judge.
void expectAsStandard(const std::string& text) {
    const auto value = textToDouble(text);
    const double expected = std::strtod(text.c_str(), nullptr);
    // Bits, so that -0.0 is not 0.0.
    EXPECT_TRUE(value && std::bit_cast<uint64_t>(*value) == std::bit_cast<uint64_t>(expected))
        << text.substr(0, 60) << " (" << text.size() << " bytes) gave " << value.value_or(NAN);
}

TEST(TextToNumber, TakesJsonNumbersAndNothingElse) {
    for (const std::string& text :
         split("0|-0|-7|10|0.5|-0.0|1.25|1e5|1E+5|1e-5|1e007|12.50e-03")) {
        expectAsStandard(text);
    }
    for (const std::string& text :
         split("|-|+1|--1|01|-01|00|.5|-.5|1.|1.e5|1e|1e+|e5|1e5.|1.5.2|1 |"
               " 1|1,5|0x10|inf|nan|1f|- 1|1\0"s)) {
        EXPECT_FALSE(textToDouble(text) || textToInteger(text)) << text;
    }
    for (const int64_t value : {int64_t{0}, int64_t{-120}, INT64_MAX, INT64_MIN}) {
        EXPECT_EQ(textToInteger(std::to_string(value)), value);
    }
    for (const char* text : {"1.0", "1e2", "9223372036854775808", "-9223372036854775809"}) {
        EXPECT_FALSE(textToInteger(text)) << text;
    }
}

TEST(TextToNumber, RoundsToTheNearestUpToInfinityAndDownToZero) {
    // Ties, which go to even; what one operation on exact numbers can do, and what it cannot; the
    // ends of the range.
    for (const char* text :
         {"9007199254740993", "9007199254740993.0000000000000000001", "9999999999999999999", "1e22",
          "99999999999999999999", "9007199254740993e1", "1e23", "1e-22", "1e-23", "-1e309",
          "3e-324", "2.2250738585072011e-308", "1.7976931348623158e308", "1.7976931348623159e308",
          "-2e-324", "1e99999999999999999999999", "-1e-99999999999999999999999"}) {
        expectAsStandard(text);
    }
    // "&" stands for a long row of zeros: digits and exponents that take each other back, then half
    // a unit above 1, without and with one more digit far to the right, and just below.
    const std::string halfAbove1 = "1.0000000000000001110223024625156540423631668090820312";
    for (std::string text :
         split("1&|0.&1|-0.&e99999999999999999999999|1&e-700000|-0.&25e700001|"
               "1&.5e-700000|1&e-699691|1&e-699692|9007199254740993&1.0e-700001|" +
               halfAbove1 + "5&|" + halfAbove1 + "5&1|" + halfAbove1 + "4&9")) {
        expectAsStandard(text.replace(text.find('&'), 1, 700000, '0'));
    }
    std::mt19937_64 random(20240601);
    for (int i = 0; i < 20000 && !testing::Test::HasFailure(); ++i) {
        const int exponent = static_cast<int>(random() % (i % 2 == 0 ? 60 : 700)) - 30;
        expectAsStandard(std::to_string(random() >> random() % 64) + "." +
                         std::to_string(random() % 1000) + "e" + std::to_string(-exponent));
    }
}

}  // namespace
}  // namespace qvhost::test
