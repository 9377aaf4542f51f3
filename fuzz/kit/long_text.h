// Documents that fill blocks, from inputs that do not.
#pragma once

#include <string>
#include <string_view>

namespace jmap::fuzz {

inline constexpr std::size_t kLongRun = 32'000;  // a longer text is cut in its record
inline constexpr int kMostRuns = 80;             // two blocks and a half

// The text with each 0x01, which no JSON document holds, replaced by a long run of letters.
inline std::string withLongTexts(std::string_view text) {
    std::string out;
    int runs = 0;
    for (const char c : text) {
        if (c == '\x01' && runs < kMostRuns) {
            out.append(kLongRun, static_cast<char>('a' + runs++ % 26));
        } else {
            out += c;
        }
    }
    return out;
}

}  // namespace jmap::fuzz
