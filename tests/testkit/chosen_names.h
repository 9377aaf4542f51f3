// Names that are chosen so that a hash without a seed puts them all into one place.
#pragma once

#include "core/hash.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
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

// Distinct names of printable characters whose texts after `before`, at most 32 bytes, have one
// `checksumOf`: it takes every fourth word into the same sum, so one word can undo another.
inline std::vector<std::string> namesOfOneChecksum(std::string_view before, std::size_t count) {
    constexpr std::size_t kTurn = 32;
    constexpr uint64_t kFirst = 0x9E3779B185EBCA87u, kSecond = 0xC2B2AE3D27D4EB4Fu;
    uint64_t inverse = kSecond;  // of kSecond modulo 2^64, by Newton's steps
    for (int i = 0; i < 6; ++i) {
        inverse *= 2 - kSecond * inverse;
    }
    const auto printable = [](char c) { return c >= ' ' && c <= '}' && c != '"' && c != '\\'; };
    std::string text(before);
    text.resize(3 * kTurn, '-');
    std::vector<std::string> names;
    const auto wordAt = [&text](std::size_t at) { return loadBytes<uint64_t>(&text[at]); };
    const uint64_t begun = std::rotl(kFirst + wordAt(0) * kSecond, 31) * kFirst;
    const auto afterSecond = [&] {
        return std::rotl(begun + wordAt(kTurn) * kSecond, 31) * kFirst;
    };
    const uint64_t wanted = afterSecond() + wordAt(2 * kTurn) * kSecond;
    for (uint64_t i = 0; names.size() < count; ++i) {
        for (std::size_t digit = 0; digit < 8; ++digit) {
            text[kTurn + digit] = static_cast<char>('0' + (i >> 4 * digit & 15));
        }
        const uint64_t undoing = (wanted - afterSecond()) * inverse;
        std::memcpy(&text[2 * kTurn], &undoing, sizeof undoing);
        if (std::all_of(&text[2 * kTurn], &text[2 * kTurn] + sizeof undoing, printable)) {
            names.push_back(text.substr(before.size()));
        }
    }
    return names;
}

}  // namespace jmap::test
