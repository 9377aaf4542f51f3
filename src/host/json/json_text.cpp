// Escaping goes from one byte that needs it to the next; what lies between is copied in one piece.
//
// Tested by tests/host/writer_test.cpp
#include "host/json/json_text.h"

#include "host/json/growing_bytes.h"
#include "host/nls/code_page.h"
#include "host/nls/utf8_char.h"

namespace qvhost {
namespace {

constexpr std::string_view kNoText = "\\ufffd";

void appendEscape(GrowingBytes& out, char c) {
    constexpr std::string_view kHex = "0123456789abcdef";
    constexpr std::string_view kBytes = "\"\\\b\t\n\f\r";
    constexpr std::string_view kLetters = "\"\\btnfr";
    const auto at = kBytes.find(c);
    if (at != std::string_view::npos) {
        out.append('\\');
        out.append(kLetters.substr(at, 1));
        return;
    }
    out.append("\\u00");
    out.append(kHex.substr(static_cast<std::size_t>(c) >> 4, 1));
    out.append(kHex.substr(static_cast<std::size_t>(c) & 15, 1));
}

// The character at `at`, which is not ASCII: how many bytes it has, and whether it is text.
Utf8Char measure(const char* at, const char* end, const CodePage* page) {
    return page == nullptr ? utf8Decode(at, end)
                           : Utf8Char{0, 1, page->character(static_cast<uint8_t>(*at)).has_value()};
}

}  // namespace

void appendJsonString(GrowingBytes& out, std::string_view text, const CodePage* page) {
    out.append('"');
    const char* at = text.data();
    const char* const end = at + text.size();
    const char* begin = at;  // of what is not written yet
    while (at != end) {
        const auto byte = static_cast<uint8_t>(*at);
        if (byte >= 0x80) {
            const Utf8Char character = measure(at, end, page);
            if (!character.valid) {
                out.append({begin, at});
                out.append(kNoText);
                begin = at + character.length;
            }
            at += character.length;
            continue;
        }
        if (byte < 0x20 || byte == '"' || byte == '\\') {
            out.append({begin, at});
            appendEscape(out, *at);
            begin = at + 1;
        }
        ++at;
    }
    out.append({begin, end});
    out.append('"');
}

}  // namespace qvhost
