// Names that are chosen so that a hash without a seed puts them all into one place.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace jmap::test {

// Distinct names of letters and digits whose FNV-1a hashes, folded to 32 bits, end in the same 11
// bits: in a table of up to 2048 places they are one chain.
inline std::vector<std::string> chosenNames(std::size_t count) {
    constexpr uint32_t kEnd = 0x7FF;
    const auto fnv = [](std::string_view text) {
        uint64_t h = 0xCBF29CE484222325u;
        for (const char c : text) {
            h = (h ^ static_cast<uint8_t>(c)) * 0x100000001B3u;
        }
        return static_cast<uint32_t>(h ^ h >> 32);
    };
    std::vector<std::string> names;
    for (uint64_t i = 0; names.size() < count; ++i) {
        std::string name = "N" + std::to_string(i);
        if ((fnv(name) & kEnd) == 0) {
            names.push_back(std::move(name));
        }
    }
    return names;
}

}  // namespace jmap::test
