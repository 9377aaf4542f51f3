// See excerpt.h.
#include "client/excerpt.h"

#include "client/escape.h"

#include <algorithm>

namespace qvej {
namespace {

constexpr std::size_t kShownBefore = 60;  // bytes shown before and after the place
constexpr std::size_t kShownAfter = 24;

constexpr std::string_view kIndent = "    ";
constexpr std::string_view kCut = "...";
constexpr std::string_view kWhite = " \t\r\n";

// Moves a position off the inside of a UTF-8 sequence.
std::size_t atCharacter(std::string_view text, std::size_t at) {
    while (at < text.size() && (static_cast<uint8_t>(text[at]) & 0xC0) == 0x80) {
        ++at;
    }
    return at;
}

std::string withoutTabs(std::string text) {
    std::replace(text.begin(), text.end(), '\t', ' ');
    return text;
}

// Where the line begins that position `at` is in.
std::size_t startOfLine(std::string_view text, std::size_t at) {
    const std::size_t feed = at == 0 ? std::string_view::npos : text.rfind('\n', at - 1);
    return feed == std::string_view::npos ? 0 : feed + 1;
}

// The lines for position `at` of `line`, which is cut on its left when `cutLeft`.
std::string drawExcerpt(std::string_view line, std::size_t at, bool cutLeft) {
    const std::size_t first = at > kShownBefore ? atCharacter(line, at - kShownBefore) : 0;
    const std::size_t last = atCharacter(line, std::min(line.size(), at + kShownAfter));
    std::string before(kIndent);
    if (first > 0 || cutLeft) {
        before += kCut;
    }
    before += shown(withoutTabs(std::string(line.substr(first, at - first))));
    std::string text = before + shown(withoutTabs(std::string(line.substr(at, last - at))));
    if (last < line.size()) {
        text += kCut;
    }
    return text + "\n" + std::string(displayWidth(before), ' ') + "^\n";
}

}  // namespace

std::size_t offsetOf(std::string_view text, int64_t line, int64_t column) {
    std::size_t start = 0;
    for (; line > 1; --line) {
        const std::size_t feed = text.find('\n', start);
        if (feed == std::string_view::npos) {
            return text.size();
        }
        start = feed + 1;
    }
    return std::min(text.size(),
                    start + static_cast<std::size_t>(std::max<int64_t>(column, 1)) - 1);
}

std::string excerptOf(std::string_view text, std::size_t at, bool cut) {
    const std::size_t last = text.find_last_not_of(kWhite);
    if (at > text.size() || last == std::string_view::npos) {
        return {};
    }
    std::size_t start = startOfLine(text, at);
    if (at == text.size() && last < start) {
        // Nothing follows: show what came last rather than an empty line.
        at = last + 1;
        start = startOfLine(text, at);
    }
    std::string_view line = text.substr(start);
    line = line.substr(0, line.find('\n', at - start));
    if (line.ends_with('\r') && line.size() > at - start) {
        line.remove_suffix(1);
    }
    return drawExcerpt(line, at - start, cut && start == 0);
}

}  // namespace qvej
