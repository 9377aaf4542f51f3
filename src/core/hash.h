// A hash of a text, for tables inside the engine.
//
// Tested by tests/automap/map_index_test.cpp and tests/automap/lengths_test.cpp
#pragma once

#include <cstdint>
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

}  // namespace jmap
