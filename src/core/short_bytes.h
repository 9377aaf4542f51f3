// Copies and compares texts that are mostly short, without a function call.  Nothing outside the
// texts is read or written.
//
// Tested by tests/core/helpers_test.cpp
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace jmap {

// As many bytes as T has, from any address to any other.
template <class T>
[[nodiscard]] inline T loadBytes(const char* from) noexcept {
    T word;
    std::memcpy(&word, from, sizeof word);
    return word;
}
template <class T>
inline void copyBytes(char* to, const char* from) noexcept {
    const T word = loadBytes<T>(from);
    std::memcpy(to, &word, sizeof word);
}

struct SIXTEEN {
    uint64_t low, high;
};

// Copies the first bytes and the last bytes, which may overlap: two moves cover many lengths.
inline void copyShort(char* to, std::string_view text) noexcept {
    const char* from = text.data();
    const std::size_t n = text.size();
    const auto bothEnds = [=]<class T>(T) {
        const T last = loadBytes<T>(from + n - sizeof(T));
        copyBytes<T>(to, from);
        std::memcpy(to + n - sizeof(T), &last, sizeof last);
    };
    if (n > 32) {
        std::memcpy(to, from, n);
    } else if (n >= 16) {
        bothEnds(SIXTEEN{});
    } else if (n >= 8) {
        bothEnds(uint64_t{});
    } else if (n >= 4) {
        bothEnds(uint32_t{});
    } else if (n > 0) {
        to[0] = from[0];
        to[n / 2] = from[n / 2];
        to[n - 1] = from[n - 1];
    }
}

[[nodiscard]] inline bool equalShort(std::string_view a, std::string_view b) noexcept {
    const std::size_t n = a.size();
    if (n != b.size()) {
        return false;
    }
    const char* x = a.data();
    const char* y = b.data();
    const auto bothEnds = [=]<class T>(T) {
        return loadBytes<T>(x) == loadBytes<T>(y) &&
               loadBytes<T>(x + n - sizeof(T)) == loadBytes<T>(y + n - sizeof(T));
    };
    if (n > 16) {
        for (std::size_t i = 8; i < n - 8; i += 8) {
            if (loadBytes<uint64_t>(x + i) != loadBytes<uint64_t>(y + i)) {
                return false;
            }
        }
    }
    if (n >= 8) {
        return bothEnds(uint64_t{});
    }
    if (n >= 4) {
        return bothEnds(uint32_t{});
    }
    return n == 0 || (x[0] == y[0] && x[n / 2] == y[n / 2] && x[n - 1] == y[n - 1]);
}

}  // namespace jmap
