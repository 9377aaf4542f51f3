// See text_file.h.
#include "client/input/text_file.h"

#include "client/input/byte_source.h"

#include <string_view>

namespace qvej {

std::string textOfFile(const std::string& file) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    ByteSource source = ByteSource::file(file);
    std::string text;
    for (std::string_view piece = source.next(); !piece.empty(); piece = source.next()) {
        text += piece;
    }
    return text.starts_with(kByteOrderMark) ? text.substr(kByteOrderMark.size()) : text;
}

}  // namespace qvej
