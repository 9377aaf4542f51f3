// See markup.h.
#include "tools/cli/pictures/markup.h"

#include "client/escape.h"
#include "client/text.h"

namespace qvej::cli {

namespace {

constexpr std::string_view kEllipsis = "…";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// U+FFFE or U+FFFF.
bool isNoCharacter(std::string_view three) {
    return three.starts_with("\xEF\xBF") && (three[2] == '\xBE' || three[2] == '\xBF');
}

}  // namespace

std::string markup(std::string_view text) {
    const std::string safe = shown(text);
    std::string result;
    result.reserve(safe.size());
    for (std::size_t i = 0; i < safe.size(); ++i) {
        switch (safe[i]) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            case '\'':
                result += "&#39;";
                break;
            default:
                if (isNoCharacter(std::string_view(safe).substr(i, 3))) {
                    result += kReplacement;
                    i += 2;
                } else {
                    result += safe[i];
                }
        }
    }
    return result;
}

std::string shortened(std::string_view text, std::size_t most) {
    const std::string_view start = firstCharacters(text, most);
    return std::string(start) + (start.size() < text.size() ? std::string(kEllipsis) : "");
}

std::string shortMarkup(std::string_view text, std::size_t most) {
    return markup(shortened(text, most));
}

}  // namespace qvej::cli
