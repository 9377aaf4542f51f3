// Numbers as text.
//
// Tested by tests/formats/number_text_test.cpp and tests/tool/golden/formats.t
#pragma once

#include "formats/short_text.h"

#include <charconv>
#include <cstdint>
#include <string_view>

namespace qvej {

// What stands for infinity in a format.
struct InfinityWords {
    std::string_view positive;
    std::string_view negative;
};

constexpr std::size_t kNumberChars = 32;  // longest number

// Writes the shortest text that reads back to `number` (not a NaN) at `at`, and returns its end.
// Whole numbers below 2^63 are written plainly, without point or exponent; all others in the
// shorter of the two forms.
char* writeNumber(char* at, double number, const InfinityWords& infinity);

// The counts of one column, as text.  Many rows in turn have the count of one parent row.
class CountText {
   public:
    // Writes the count at `at`, with room for kNumberChars, and returns its end.
    char* write(char* at, uint64_t count) {
        if (count == count_ && size_ != 0) {
            std::memcpy(at, text_, sizeof text_);
            return at + size_;
        }
        char* const end = std::to_chars(at, at + sizeof text_, count).ptr;
        count_ = count;
        size_ = static_cast<std::size_t>(end - at);
        std::memcpy(text_, at, size_);
        return end;
    }

   private:
    uint64_t count_ = 0;
    std::size_t size_ = 0;
    char text_[kNumberChars] = {};
};

}  // namespace qvej
