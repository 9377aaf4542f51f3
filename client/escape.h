// Texts made safe: control characters as JSON escapes, always valid UTF-8.
//
// Control characters are U+0000 to U+001F, U+007F and U+0080 to U+009F: all that a terminal may act
// on.  Bytes that are no UTF-8 become U+FFFD, one for each broken sequence.
//
// Tested by tests/client/excerpt_test.cpp and tests/tool/golden/tables.t
#pragma once

#include <unicode/utf8.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace qvej {

// What to escape, besides bytes that are no UTF-8.
enum Escape : unsigned {
    CONTROLS = 1,   // as \n, \t, \u001b ...
    BACKSLASH = 2,  // as two
    QUOTE = 4,      // as \"
    JSON_STRING = CONTROLS | BACKSLASH | QUOTE,
};

namespace escape_detail {

enum ByteClass : uint8_t { PLAIN = 0, HIGH = 8 };  // else a bit of Escape

constexpr std::array<uint8_t, 256> byteClasses() {
    std::array<uint8_t, 256> classes{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        classes[byte] = byte < 0x20 || byte == 0x7F ? uint8_t{CONTROLS}
                        : byte == '\\'              ? uint8_t{BACKSLASH}
                        : byte == '"'               ? uint8_t{QUOTE}
                        : byte >= 0x80              ? uint8_t{HIGH}
                                                    : uint8_t{PLAIN};
    }
    return classes;
}
inline constexpr std::array<uint8_t, 256> kByteClass = byteClasses();

// The character at `at`, which moves past it; negative for a broken sequence.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // inside the macro
inline int32_t nextCharacter(const char* text, int64_t& at, int64_t size) {
    int32_t character = 0;
    U8_NEXT(text, at, size, character);
    return character;
}
#pragma GCC diagnostic pop

// The escape of an ASCII character or a C1 control, at most 6 bytes.
std::string_view escapeOf(unsigned character, std::array<char, 6>& room);

}  // namespace escape_detail

// Appends `text` to `out`, which has append(const char*, size_t).  `what`: bits of Escape.
template <class Out>
void appendEscaped(Out& out, std::string_view text, unsigned what) {
    using namespace escape_detail;
    const unsigned stops = what | HIGH;
    const auto size = static_cast<int64_t>(text.size());
    int64_t start = 0;  // of what is not yet appended
    int64_t at = 0;
    std::array<char, 6> room;
    const auto passTo = [&](int64_t end) {
        out.append(text.data() + start, static_cast<std::size_t>(end - start));
    };
    while (at < size) {
        const auto byte = static_cast<uint8_t>(text[at]);
        if ((kByteClass[byte] & stops) == 0) {
            ++at;
            continue;
        }
        const int64_t first = at;
        int32_t character = byte;
        if (byte >= 0x80) {
            character = nextCharacter(text.data(), at, size);
            const bool broken = character < 0;
            const bool control = character < 0xA0 && (what & CONTROLS) != 0;
            if (!broken && !control) {
                continue;
            }
        } else {
            ++at;
        }
        passTo(first);
        const std::string_view escape = character < 0
                                            ? std::string_view("\xEF\xBF\xBD")
                                            : escapeOf(static_cast<unsigned>(character), room);
        out.append(escape.data(), escape.size());
        start = at;
    }
    passTo(size);
}

// The text with its control characters escaped: for messages.
std::string shown(std::string_view text);

// With backslashes escaped too, so that the way back is unambiguous: for listings.
std::string escaped(std::string_view text);

// Columns that the text takes on a terminal.
std::size_t displayWidth(std::string_view text);

}  // namespace qvej
