// Numbers of JSON as decimals.
#include "client/schema/decimal_text.h"

#include <gtest/gtest.h>

#include <random>

namespace {

// "2.3/4": digits before and after the point, significant ones; "p" plain, "-" minus zero.
std::string dump(std::string_view number) {
    const qvej::DecimalNeed need = qvej::needOf(number);
    return std::to_string(need.whole) + "." + std::to_string(need.fraction) + "/" +
           std::to_string(need.significant) + (need.plain ? "p" : "") + (need.minusZero ? "-" : "");
}

std::string text(qvej::Int128 value) {
    std::string digits;
    const bool negative = value < 0;
    for (; value != 0; value /= 10) {
        const int digit = static_cast<int>(value % 10);
        digits.insert(digits.begin(), static_cast<char>('0' + (digit < 0 ? -digit : digit)));
    }
    return (negative ? "-" : "") + (digits.empty() ? "0" : digits);
}

TEST(DecimalText, TellsWhatANumberNeeds) {
    constexpr struct {
        const char *number, *need;
        int scale;
        const char* unscaled;
    } kCases[] = {
        {"0", "0.0/0p", 2, "0"},
        {"-0", "0.0/0p-", 0, "0"},
        {"-0.00", "0.0/0-", 0, "0"},
        {"0e99", "0.0/0", 0, "0"},
        {"0e-99", "0.0/0", 1, "0"},
        {"7", "1.0/1p", 0, "7"},
        {"-7", "1.0/1p", 3, "-7000"},
        {"120", "3.0/2p", 1, "1200"},
        {"120.00", "3.0/2", 0, "120"},
        {"1.2e2", "3.0/2", 0, "120"},
        {"1.2E+2", "3.0/2", 1, "1200"},
        {"12e-1", "1.1/2", 1, "12"},
        {"0.05", "0.2/1", 2, "5"},
        {"0.050", "0.2/1", 4, "500"},
        {"5e-2", "0.2/1", 2, "5"},
        {"1.05", "1.2/3", 2, "105"},
        {"-100.001", "3.3/6", 3, "-100001"},
        {"1e37", "38.0/1", 0, "10000000000000000000000000000000000000"},
        {"99999999999999999999999999999999999999", "38.0/38p", 0,
         "99999999999999999999999999999999999999"},
        {"-0.00000000000000000000000000000000000001", "0.38/1", 38, "-1"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(dump(c.number), c.need) << c.number;
        EXPECT_EQ(text(qvej::unscaled(c.number, c.scale)), c.unscaled) << c.number;
    }
    EXPECT_EQ(dump("1e99999999999999999999"), "1000000001.0/1");
    EXPECT_EQ(dump("1e-99999999999999999999"), "0.1000000000/1");
}

TEST(DecimalText, WholeNumbersAreThoseThatReadBackAsTheyStand) {
    constexpr struct {
        const char* number;
        bool whole;
    } kCases[] = {
        {"0", true},
        {"-1", true},
        {"9223372036854775807", true},
        {"-9223372036854775808", true},
        {"9223372036854775808", false},
        {"-9223372036854775809", false},
        {"-0", false},
        {"1.0", false},
        {"1e0", false},
    };
    for (const auto& c : kCases) {
        const std::optional<int64_t> whole = qvej::wholeNumber(c.number);
        EXPECT_EQ(whole.has_value(), c.whole) << c.number;
        if (whole) {
            EXPECT_EQ(std::to_string(*whole), c.number);
        }
    }
}

// The same digits with the point at any place, by an exponent, need the same and give the same.
TEST(DecimalText, AnExponentOnlyMovesThePoint) {
    std::mt19937 make(7);
    for (int round = 0; round < 2000; ++round) {
        std::string digits;
        const int count = 1 + static_cast<int>(make() % 18);
        for (int i = 0; i < count; ++i) {
            digits += static_cast<char>('0' + make() % 10);
        }
        digits[0] = digits[0] == '0' ? '1' : digits[0];
        const int point =
            static_cast<int>(make() % static_cast<unsigned>(count));  // digits after it
        const std::size_t at = digits.size() - static_cast<std::size_t>(point);
        const std::string plain =
            point == 0 ? digits : digits.substr(0, at) + "." + digits.substr(at);
        const std::string moved = digits + "e-" + std::to_string(point);
        EXPECT_EQ(text(qvej::unscaled(plain, 20)), text(qvej::unscaled(moved, 20))) << plain;
        EXPECT_EQ(text(qvej::unscaled(plain, point)), digits) << plain;
        EXPECT_EQ(qvej::needOf(plain).whole, qvej::needOf(moved).whole) << plain;
        EXPECT_EQ(qvej::needOf(plain).fraction, qvej::needOf(moved).fraction) << plain;
    }
}

}  // namespace
