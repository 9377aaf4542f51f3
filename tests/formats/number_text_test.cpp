// Numbers as text, at the edges of the two forms.
#include "formats/number_text.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

std::string textOf(double number) {
    char room[qvej::kNumberChars];
    return {room, qvej::writeNumber(room, number, {"much", "little"})};
}

TEST(NumberText, WholeNumbersAreWrittenPlainlyAsLongAsThatIsShort) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr struct {
        double number;
        const char* text;
    } kCases[] = {
        {0, "0"},
        {-0.0, "-0"},
        {100000, "100000"},
        {9223372036854774784.0, "9223372036854774784"},
        {18446744073709551616.0, "18446744073709551616"},
        {1e19, "1e+19"},
        {-9223372036854774784.0, "-9223372036854774784"},
        {0.1, "0.1"},
        {-1.7976931348623157e308, "-1.7976931348623157e+308"},
        {5e-324, "5e-324"},
        {kInfinity, "much"},
        {-kInfinity, "little"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(textOf(c.number), c.text);
    }
}

TEST(NumberText, CountsThatComeAgainHaveTheirOwnText) {
    qvej::CountText texts;
    for (const uint64_t count : {uint64_t{0}, uint64_t{0}, uint64_t{7}, uint64_t{7}, uint64_t{12},
                                 uint64_t{0}, UINT64_MAX, UINT64_MAX}) {
        char room[qvej::kNumberChars] = {};  // gcc 12 does not see that to_chars writes it
        EXPECT_EQ(std::string(room, texts.write(room, count)), std::to_string(count));
    }
}

}  // namespace
