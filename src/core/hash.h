// A hash of a text, for hash tables inside the engine, and a checksum of many bytes.
//
// Tested by tests/core/helpers_test.cpp, tests/automap/column_names_test.cpp and
// tests/automap/map_index_test.cpp
#pragma once

#include "short_bytes.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace jmap {

// Multiplies into 128 bits and folds both halves together.
[[nodiscard]] constexpr uint64_t foldedProduct(uint64_t a, uint64_t b) noexcept {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

// Each is odd and has half of its bits set.
inline constexpr uint64_t kHashFirst = 0xA0761D6478BD642F;
inline constexpr uint64_t kHashSecond = 0xE7037ED1A0B428DB;

// A hash that folds 16 bytes a step into a product, as wyhash does (Wang Yi,
// github.com/wangyi-fudan/wyhash).  The hash depends on a seed that the author of a document does
// not know (see newHashSeed): else chosen names would all fall into one bucket of a table.  The
// hash differs from run to run, so no order of results may depend on it.
[[nodiscard]] inline uint64_t wideHashOf(uint64_t seed, std::string_view text) noexcept {
    const char* at = text.data();
    std::size_t left = text.size();
    // Both factors depend on the seed, so that no text can make one of them 0.
    const uint64_t first = seed ^ kHashFirst;
    uint64_t state = seed;
    for (; left > 16; at += 16, left -= 16) {
        state = foldedProduct(loadBytes<uint64_t>(at) ^ first, loadBytes<uint64_t>(at + 8) ^ state);
    }
    // The last 1 to 16 bytes as two words that may overlap.
    uint64_t low = 0;
    uint64_t high = 0;
    if (left >= 8) {
        low = loadBytes<uint64_t>(at);
        high = loadBytes<uint64_t>(at + left - 8);
    } else if (left >= 4) {
        low = loadBytes<uint32_t>(at);
        high = loadBytes<uint32_t>(at + left - 4);
    } else if (left > 0) {
        const auto byte = [at](std::size_t i) { return uint64_t{static_cast<uint8_t>(at[i])}; };
        low = byte(0) << 16 | byte(left / 2) << 8 | byte(left - 1);
    }
    // The length is mixed in last; earlier, a byte of the text could cancel it.
    return foldedProduct(foldedProduct(low ^ first, high ^ state), kHashSecond ^ text.size());
}

// The same in 32 bits.
[[nodiscard]] inline uint32_t hashOf(uint64_t seed, std::string_view text) noexcept {
    const uint64_t hash = wideHashOf(seed, text);
    return static_cast<uint32_t>(hash ^ hash >> 32);
}

// A seed for the tables of one document.
//   of  some memory of the document
// The engine may import no source of random bits, and a host has no such service.  But the system
// places the stack, the memory of the pools and the code of each process at random addresses.
// Together they have more random bits than a document can try out.  On a system that does not do so
// chosen names can make a map slow, but never wrong.
[[nodiscard]] inline uint64_t newHashSeed(const void* of) noexcept {
    static constexpr char kHere = 0;
    const auto address = [](const void* memory) { return reinterpret_cast<uintptr_t>(memory); };
    const uint64_t stack = address(&of);
    return foldedProduct(foldedProduct(address(of) ^ kHashFirst, stack ^ kHashSecond) ^ kHashFirst,
                         address(&kHere) ^ kHashSecond);
}

// A checksum, to find out whether a disk or another program has changed the bytes.  A change within
// one word always changes the sum.  It gives no protection against forgery: other bytes with the
// same sum are easy to compute.  It takes four words a step, which do not depend on each other.
[[nodiscard]] inline uint64_t checksumOf(std::string_view bytes) noexcept {
    constexpr uint64_t kFirst = 0x9E3779B185EBCA87u, kSecond = 0xC2B2AE3D27D4EB4Fu;
    constexpr std::size_t kLanes = 4, kWord = sizeof(uint64_t);
    uint64_t lanes[kLanes] = {kFirst, kSecond, bytes.size(), 0};
    const auto take = [&lanes](std::size_t lane, const char* word, std::size_t size) {
        uint64_t bits = 0;
        std::memcpy(&bits, word, size);
        lanes[lane] = std::rotl(lanes[lane] + bits * kSecond, 31) * kFirst;
    };
    const char* at = bytes.data();
    const char* const end = at + bytes.size();
    for (; end - at >= static_cast<std::ptrdiff_t>(kLanes * kWord); at += kLanes * kWord) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            take(lane, at + lane * kWord, kWord);
        }
    }
    for (std::size_t lane = 0; at < end; ++lane) {
        const std::size_t size = std::min(kWord, static_cast<std::size_t>(end - at));
        take(lane, at, size);
        at += size;
    }
    uint64_t sum = 0;
    for (const uint64_t lane : lanes) {
        sum = std::rotl(sum ^ lane, 27) * kSecond;
    }
    return sum ^ sum >> 32;
}

}  // namespace jmap
