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

void expectAsStandard(const std::string& text) {
    const auto value = textToDouble(text);
    const double expected = std::strtod(text.c_str(), nullptr);
    // Bits, so that -0.0 is not 0.0.
    EXPECT_TRUE(value && std::bit_cast<uint64_t>(*value) == std::bit_cast<uint64_t>(expected))
        << text.substr(0, 60) << " (" << text.size() << " bytes) gave " << value.value_or(NAN);
}

TEST(TextToNumber, TakesJsonNumbersAndNothingElse) {
    for (const char* text : {"0", "-0", "7", "-7", "10", "0.5", "-0.0", "1.25", "1e5", "1E+5",
                             "1e-5", "0e0", "1e007", "12.50e-03"}) {
        expectAsStandard(text);
    }
    for (const std::string& text :
         {""s,    "-"s,    "+1"s,  "--1"s, "01"s, "-01"s,  "00"s,    ".5"s, "-.5"s,
          "1."s,  "1.e5"s, "1e"s,  "1e+"s, "e5"s, "1e5."s, "1.5.2"s, "1 "s, " 1"s,
          "1,5"s, "0x10"s, "inf"s, "nan"s, "1f"s, "- 1"s,  "1\0"s}) {
        EXPECT_FALSE(textToDouble(text).has_value()) << text;
        EXPECT_FALSE(textToInteger(text).has_value()) << text;
    }
    for (const int64_t value : {int64_t{0}, int64_t{7}, int64_t{-120}, INT64_MAX, INT64_MIN}) {
        EXPECT_EQ(textToInteger(std::to_string(value)), value);
    }
    for (const char* text : {"1.0", "1e2", "9223372036854775808", "-9223372036854775809"}) {
        EXPECT_FALSE(textToInteger(text).has_value()) << text;
    }
}

// The standard library is the judge.
TEST(TextToNumber, RoundsToTheNearestUpToInfinityAndDownToZero) {
    const auto zeros = [](std::size_t count) { return std::string(count, '0'); };
    const std::string halfAbove1 = "1.0000000000000001110223024625156540423631668090820312";
    const std::string huge = "e99999999999999999999999";
    for (const std::string& text :
         {// Ties go to even; what one operation on exact numbers can do, and what it cannot.
          "9007199254740993"s, "9007199254740993.0000000000000000001"s, "9223372036854775807"s,
          "9999999999999999999"s, "99999999999999999999"s, "9007199254740993e1"s, "1e22"s, "1e23"s,
          "1e-22"s, "1e-23"s,
          // The ends of the range.
          "2.2250738585072011e-308"s, "1.7976931348623158e308"s, "1.7976931348623159e308"s,
          "-1e309"s, "1" + huge, "1" + zeros(400), "3e-324"s, "-2e-324"s, "-1e-" + huge.substr(1),
          "0." + zeros(400) + "1", "-0.000" + huge,
          // Long texts whose digits and exponent take each other back.
          "1" + zeros(100000) + "e-100000", "-0." + zeros(700000) + "25e700001",
          "1" + zeros(2000) + ".5e-2000", "1" + zeros(400) + "e-91", "1" + zeros(400) + "e-92",
          // Half a unit above 1, then with one more digit far behind, then just below.
          halfAbove1 + "5" + zeros(5000), halfAbove1 + "5" + zeros(5000) + "1",
          halfAbove1 + "4" + std::string(5000, '9'),
          "9007199254740993" + zeros(2000) + "1.0e-2001"}) {
        expectAsStandard(text);
    }
    std::mt19937_64 random(20240601);
    for (int i = 0; i < 20000 && !testing::Test::HasFailure(); ++i) {
        char text[64];
        const uint64_t digits = random() >> random() % 64;
        const int exponent = static_cast<int>(random() % (i % 2 == 0 ? 60 : 700)) - 30;
        std::snprintf(text, sizeof text, "%lu.%lue%d", digits, random() % 1000, -exponent);
        expectAsStandard(text);
    }
}

TEST(StringServiceNumbers, FailureStoresZeroAndUsesNothing) {
    const RunningHost host;
    QVStringServiceh s = nullptr;
    ASSERT_QV_OK(host.handle->nls->newStringService(host.handle->nls, U_UTF8_CE, nullptr, &s));
    QVStrSize used = -1;
    double real = 5;
    int64_t whole = 5;
    EXPECT_TRUE(s->toDouble(s, "2.5,", 3, &real, &used) == QV_OK && real == 2.5 && used == 3);
    EXPECT_TRUE(s->toDouble(s, "2.5,", 4, &real, &used) == QV_NOTNUM && real == 0 && used == 0);
    EXPECT_TRUE(s->toInteger(s, "-34", 3, &whole, &used) == QV_OK && whole == -34 && used == 3);
    EXPECT_TRUE(s->toInteger(s, "3.4", 3, &whole, &used) == QV_NOTNUM && whole == 0 && used == 0);
}

}  // namespace
}  // namespace qvhost::test
