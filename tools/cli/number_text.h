// Numbers as text.
//
// Tested by tests/tool/text_test.cpp
#pragma once

#include <string_view>

// What stands for infinity in a format.
struct InfinityWords {
    std::string_view positive;
    std::string_view negative;
};

constexpr std::size_t kNumberChars = 32;  // longest number

// Writes the shortest text that reads back to `number` (not a NaN) at `at`, and returns its end.
// Whole numbers below 2^63 are written plainly, without point or exponent; beyond, the shortest
// form has an exponent.
char* writeNumber(char* at, double number, const InfinityWords& infinity);
