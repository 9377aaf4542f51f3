// Names to paths, character by character.
//
// Tested by tests/host/io_test.cpp
#include "host/io/file_name.h"

#include "host/nls/utf8_char.h"

namespace qvhost {

std::optional<std::string> pathOf(std::u32string_view name) {
    std::string path;
    for (const char32_t character : name) {
        if (character >= 0xDC80 && character <= 0xDCFF) {
            path.push_back(static_cast<char>(character & 0xFF));
            continue;
        }
        char bytes[4];
        const int length = character == 0 ? 0 : utf8Encode(character, bytes);
        if (length == 0) {
            return std::nullopt;
        }
        path.append(bytes, static_cast<std::size_t>(length));
    }
    return path;
}

}  // namespace qvhost
