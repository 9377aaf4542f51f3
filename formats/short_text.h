// Texts of a few bytes, looked at and copied without a loop over their bytes.
//
// Cells are short: most have fewer than 16 bytes, and neither a search nor memcpy pays for those.
//
// Tested by tests/formats/short_text_test.cpp
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace qvej {

inline constexpr std::size_t kCopySlack = 32;  // bytes after a text that copyText may write over

namespace short_text {

using Bytes = uint8_t __attribute__((vector_size(16)));
using Marks = decltype(Bytes() == Bytes());  // of each byte: not 0 for yes
using Words = uint64_t __attribute__((vector_size(16)));

template <class Value>
Value load(const char* at) {
    Value value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

inline void copy(char* to, const char* from, std::size_t size) {
    std::memcpy(to, from, size);
}

// All bytes of a text of less than 16, some of them more than once, and blanks.
inline Bytes loadShort(const char* text, std::size_t size) {
    constexpr uint64_t kBlanks = 0x2020202020202020;
    Words words = {kBlanks, kBlanks};
    if (size >= 8) {
        words = Words{load<uint64_t>(text), load<uint64_t>(text + size - 8)};
    } else if (size >= 4) {
        words = Words{load<uint32_t>(text), load<uint32_t>(text + size - 4)};
        words |= Words{kBlanks << 32, kBlanks << 32};
    } else if (size != 0) {
        const auto byte = [&](std::size_t i) { return uint64_t{static_cast<uint8_t>(text[i])}; };
        words[0] = kBlanks << 24 | byte(0) << 16 | byte(size / 2) << 8 | byte(size - 1);
    }
    return reinterpret_cast<Bytes>(words);  // of vectors: the same bits
}

// Is there a yes?
inline bool any(Marks marks) {
    const auto words = reinterpret_cast<Words>(marks);
    return (words[0] | words[1]) != 0;
}

}  // namespace short_text

// Does `care` say yes of any byte?  It takes Bytes and gives Marks; of a blank it must say no.
template <class Care>
bool anyByte(std::string_view text, Care care) {
    using namespace short_text;
    if (text.size() < sizeof(Bytes)) {
        return any(care(loadShort(text.data(), text.size())));
    }
    const char* const last = text.data() + text.size() - sizeof(Bytes);
    for (const char* at = text.data(); at < last; at += sizeof(Bytes)) {
        if (any(care(load<Bytes>(at)))) {
            return true;
        }
    }
    return any(care(load<Bytes>(last)));
}

// Copies a text to `to`, with room for kCopySlack bytes more, and returns its end there.
inline char* copyText(char* to, std::string_view text) {
    using short_text::copy;
    const char* from = text.data();
    const std::size_t size = text.size();
    if (size > 32) {
        copy(to, from, size);
    } else if (size >= 16) {
        copy(to, from, 16);
        copy(to + size - 16, from + size - 16, 16);
    } else if (size >= 8) {
        copy(to, from, 8);
        copy(to + size - 8, from + size - 8, 8);
    } else if (size >= 4) {
        copy(to, from, 4);
        copy(to + size - 4, from + size - 4, 4);
    } else if (size != 0) {
        to[0] = from[0];
        to[size / 2] = from[size / 2];
        to[size - 1] = from[size - 1];
    }
    return to + size;
}

}  // namespace qvej
