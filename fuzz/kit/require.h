// What a property does when it does not hold: it says so and ends the program, which is what the
// fuzzer and the replay take for a finding.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace jmap::fuzz {

inline void show(const char* what, std::string_view text) {
    constexpr std::size_t kMost = 4000;
    std::fprintf(stderr, "---- %s, %zu bytes\n", what, text.size());
    for (const char c : text.substr(0, kMost)) {
        const bool plain = c == '\n' || (c >= 0x20 && c < 0x7F);
        std::fprintf(stderr, plain ? "%c" : "<%02X>", static_cast<unsigned char>(c));
    }
    std::fputc('\n', stderr);
}

inline void require(bool holds, const char* what) {
    if (!holds) [[unlikely]] {
        std::fprintf(stderr, "PROPERTY: %s\n", what);
        std::abort();
    }
}

inline void requireEqual(std::string_view expected, std::string_view actual, const char* what) {
    if (expected != actual) [[unlikely]] {
        const auto end = std::min(expected.size(), actual.size());
        std::size_t at = 0;
        while (at < end && expected[at] == actual[at]) {
            ++at;
        }
        const std::size_t from = at - std::min<std::size_t>(at, 200);
        std::fprintf(stderr, "differ from byte %zu on; shown from byte %zu on\n", at, from);
        show("expected", expected.substr(from));
        show("actual", actual.substr(from));
        require(false, what);
    }
}

}  // namespace jmap::fuzz
