// See escape.h.
#include "client/escape.h"

#include <unicode/uchar.h>

namespace qvej {

namespace escape_detail {

std::string_view escapeOf(unsigned character, std::array<char, 6>& room) {
    static constexpr char kDigits[] = "0123456789abcdef";
    switch (character) {
        case '"':
            return "\\\"";
        case '\\':
            return "\\\\";
        case '\b':
            return "\\b";
        case '\f':
            return "\\f";
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            room = {'\\', 'u', '0', '0', kDigits[character >> 4], kDigits[character & 15]};
            return {room.data(), room.size()};
    }
}

}  // namespace escape_detail

std::string shown(std::string_view text) {
    std::string out;
    appendEscaped(out, text, CONTROLS);
    return out;
}

std::string escaped(std::string_view text) {
    std::string out;
    appendEscaped(out, text, CONTROLS | BACKSLASH);
    return out;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    const auto size = static_cast<int64_t>(text.size());
    for (int64_t at = 0; at < size;) {
        int32_t character = escape_detail::nextCharacter(text.data(), at, size);
        if (character < 0) {
            character = 0xFFFD;
        }
        const int kind = u_charType(character);
        const int eastAsian = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
        if (kind == U_NON_SPACING_MARK || kind == U_ENCLOSING_MARK || kind == U_FORMAT_CHAR) {
            continue;
        }
        width += eastAsian == U_EA_WIDE || eastAsian == U_EA_FULLWIDTH ? 2 : 1;
    }
    return width;
}

}  // namespace qvej
