// A hash of a text, for tables inside the engine, and a checksum of many bytes.
//
// Tested by tests/automap/map_index_test.cpp, tests/automap/lengths_test.cpp and
// tests/core/helpers_test.cpp
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace jmap {

// FNV-1a, folded.
[[nodiscard]] constexpr uint32_t hashOf(std::string_view text) noexcept {
    uint64_t h = 0xCBF29CE484222325u;
    for (const char c : text) {
        h = (h ^ static_cast<uint8_t>(c)) * 0x100000001B3u;
    }
    return static_cast<uint32_t>(h ^ h >> 32);
}

// Tells whether bytes are still what they were: a disk, or another program, may have changed them.
// It does not withstand somebody who computes.  A change within one word is noticed for certain.
// Four words at a time, so that none waits for the one before.
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
