// One character of UTF-8 at a time, to and from code points.
//
// Only what Unicode calls well formed passes: no overlong forms, no surrogates, nothing above
// U+10FFFF.
//
// Tested by tests/host/nls_test.cpp
#pragma once

#include <cstdint>

namespace qvhost {

struct Utf8Char {
    char32_t character;  // meaningless when the sequence is not valid
    int length;          // bytes, 1 to 4; of an invalid one its maximal subpart: the longest
                         // beginning of a valid sequence, at least one byte
    bool valid;
};

// The sequence that begins at `at` and may not pass `end` (`at` < `end`).
[[nodiscard]] inline Utf8Char utf8Decode(const char* at, const char* end) noexcept {
    const auto byteAt = [at](int i) { return static_cast<uint8_t>(at[i]); };
    const uint8_t lead = byteAt(0);
    if (lead < 0x80) {
        return {lead, 1, true};
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return {0, 1, false};
    }
    const int length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    // The second byte alone rules out overlong forms, surrogates and what lies above U+10FFFF.
    uint8_t low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    uint8_t high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    char32_t character = lead & (0xFFu >> (length + 1));
    for (int i = 1; i < length; ++i) {
        if (at + i == end || byteAt(i) < low || byteAt(i) > high) {
            return {0, i, false};
        }
        character = character << 6 | (byteAt(i) & 0x3Fu);
        low = 0x80;
        high = 0xBF;
    }
    return {character, length, true};
}

// Writes the sequence of `character` to `out` (room for 4 bytes) and returns its length, 0 when it
// is not a Unicode scalar value.
[[nodiscard]] inline int utf8Encode(char32_t character, char* out) noexcept {
    const auto put = [out](int i, char32_t byte) { out[i] = static_cast<char>(byte); };
    const auto trail = [character](int shift) { return 0x80 | (character >> shift & 0x3F); };
    if (character < 0x80) {
        put(0, character);
        return 1;
    }
    if (character < 0x800) {
        put(0, 0xC0 | character >> 6);
        put(1, trail(0));
        return 2;
    }
    if (character < 0x10000) {
        if (character >= 0xD800 && character <= 0xDFFF) {
            return 0;
        }
        put(0, 0xE0 | character >> 12);
        put(1, trail(6));
        put(2, trail(0));
        return 3;
    }
    if (character > 0x10FFFF) {
        return 0;
    }
    put(0, 0xF0 | character >> 18);
    put(1, trail(12));
    put(2, trail(6));
    put(3, trail(0));
    return 4;
}

}  // namespace qvhost
