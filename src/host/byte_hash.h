// A hash of byte strings.
//
// Words of the text are multiplied into 128 bits and both halves folded together, 16 bytes a step.
// Keys come from documents, so each table draws a random seed: the author of a document cannot
// choose keys that collide.
//
// Tested by tests/host/tracker_test.cpp
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace qvhost {

class ByteHash {
   public:
    using is_avalanching = void;  // the table takes the hash as it is

    ByteHash();  // draws a seed
    explicit ByteHash(uint64_t seed) noexcept : seed_(seed) {}

    [[nodiscard]] std::size_t operator()(std::string_view text) const noexcept {
        const char* at = text.data();
        std::size_t left = text.size();
        // Both factors depend on the seed, so that no text can force one of them to 0.
        const uint64_t first = seed_ ^ kFirst;
        uint64_t state = seed_;
        for (; left > 16; at += 16, left -= 16) {
            state = fold(word(at) ^ first, word(at + 8) ^ state);
        }
        // The last 1 to 16 bytes as two words that may overlap.
        uint64_t low = 0;
        uint64_t high = 0;
        if (left >= 8) {
            low = word(at);
            high = word(at + left - 8);
        } else if (left >= 4) {
            low = half(at);
            high = half(at + left - 4);
        } else if (left > 0) {
            low = uint64_t{byte(at[0])} << 16 | uint64_t{byte(at[left / 2])} << 8 |
                  byte(at[left - 1]);
        }
        // The length comes last: before, a byte of the text could undo it.
        return fold(fold(low ^ first, high ^ state), kSecond ^ text.size());
    }

   private:
    static constexpr uint64_t kFirst = 0xA0761D6478BD642F;  // odd, half of their bits set
    static constexpr uint64_t kSecond = 0xE7037ED1A0B428DB;

    static unsigned char byte(char c) noexcept { return static_cast<unsigned char>(c); }
    static uint64_t word(const char* at) noexcept {
        uint64_t value;
        std::memcpy(&value, at, sizeof value);
        return value;
    }
    static uint64_t half(const char* at) noexcept {
        uint32_t value;
        std::memcpy(&value, at, sizeof value);
        return value;
    }
    static uint64_t fold(uint64_t a, uint64_t b) noexcept {
        __extension__ using Wide = unsigned __int128;
        const Wide product = static_cast<Wide>(a) * b;
        return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
    }

    uint64_t seed_;
};

}  // namespace qvhost
