// Counts as text.  Numbers are seen in the tool.
#include "formats/number_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(NumberText, CountsThatComeAgainHaveTheirOwnText) {
    qvej::CountText texts;
    for (const uint64_t count : {uint64_t{0}, uint64_t{0}, uint64_t{7}, uint64_t{7}, uint64_t{12},
                                 uint64_t{0}, UINT64_MAX, UINT64_MAX}) {
        char room[qvej::kNumberChars] = {};  // gcc 12 does not see that to_chars writes it
        EXPECT_EQ(std::string(room, texts.write(room, count)), std::to_string(count));
    }
}

}  // namespace
