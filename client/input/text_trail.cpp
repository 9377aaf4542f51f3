// See place.h.
#include "client/input/place.h"

#include "client/escape.h"

#include <algorithm>
#include <cstring>

namespace qvej {
namespace {

constexpr std::size_t kKept = 256;    // bytes remembered of what has passed
constexpr int64_t kShownBefore = 60;  // bytes shown before and behind the place
constexpr int64_t kShownBehind = 24;

constexpr std::string_view kIndent = "    ";
constexpr std::string_view kCut = "...";
constexpr std::string_view kWhite = " \t\r\n";

int64_t countLines(std::string_view text) {
    return std::count(text.begin(), text.end(), '\n');
}

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

// The lines for position `at` of `line`, which is cut on its left when `cutLeft`.
std::string drawExcerpt(std::string_view line, std::size_t at, bool cutLeft) {
    const std::size_t first =
        at > kShownBefore ? atCharacter(line, at - static_cast<std::size_t>(kShownBefore)) : 0;
    const std::size_t last =
        atCharacter(line, std::min(line.size(), at + static_cast<std::size_t>(kShownBehind)));
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

void TextTrail::passed() {
    if (piece_.empty()) {
        return;
    }
    // Not rfind(), which goes byte by byte.
    const void* feed = ::memrchr(piece_.data(), '\n', piece_.size());
    if (feed != nullptr) {
        lines_ += countLines(piece_);
        lineStart_ = offset_ + (static_cast<const char*>(feed) - piece_.data()) + 1;
    }
    offset_ += static_cast<int64_t>(piece_.size());
    before_.append(piece_.substr(piece_.size() - std::min(piece_.size(), kKept)));
    before_.erase(0, before_.size() - std::min(before_.size(), kKept));
    piece_ = {};
}

Place TextTrail::end() const {
    TextTrail all = *this;
    all.passed();
    return {all.lines_ + 1, all.offset_ - all.lineStart_ + 1};
}

std::optional<int64_t> TextTrail::startOfLine(int64_t line, std::string_view known) const {
    const int64_t base = offset_ - static_cast<int64_t>(before_.size());  // of `known`
    const int64_t linesBefore = countLines(before_);
    const int64_t firstLine = lines_ + 1 - linesBefore;  // the line that `known` begins in
    if (line < firstLine || (line == firstLine && linesBefore != 0 && base != 0)) {
        return std::nullopt;  // passed too long ago
    }
    int64_t start = linesBefore == 0 ? lineStart_ - base : 0;
    for (int64_t at = firstLine; at < line; ++at) {
        const auto from = static_cast<std::size_t>(std::max<int64_t>(start, 0));
        const std::size_t feed = known.find('\n', from);
        if (feed == std::string::npos) {
            return std::nullopt;
        }
        start = static_cast<int64_t>(feed) + 1;
    }
    return start;
}

std::optional<int64_t> TextTrail::offsetOf(Place place) const {
    const std::optional<int64_t> start = startOfLine(place.line, known());
    if (!start) {
        return std::nullopt;
    }
    return offset_ - static_cast<int64_t>(before_.size()) + *start + place.column - 1;
}

std::string TextTrail::excerpt(Place place) const {
    const std::string text = known();
    const std::string_view all = text;
    const std::optional<int64_t> lineStart = startOfLine(place.line, all);
    if (!lineStart) {
        return {};
    }
    int64_t start = *lineStart;
    const int64_t base = offset_ - static_cast<int64_t>(before_.size());
    const auto size = static_cast<int64_t>(all.size());
    int64_t at = start + place.column - 1;
    if (at < 0 || at > size) {
        return {};
    }
    // At the end of the input nothing follows; show what came last rather than an empty line.
    if (at == size && all.find_last_not_of(kWhite) != std::string_view::npos) {
        const std::size_t last = all.find_last_not_of(kWhite);
        if (static_cast<int64_t>(last) < start) {
            at = static_cast<int64_t>(last) + 1;
            const std::size_t feed = all.rfind('\n', last);
            start = feed != std::string_view::npos ? static_cast<int64_t>(feed) + 1
                                                   : std::min<int64_t>(0, lineStart_ - base);
        }
    }
    if (all.find_first_not_of(kWhite) == std::string_view::npos) {
        return {};  // nothing to see
    }
    const int64_t from = std::max<int64_t>(start, 0);
    std::string_view line = all.substr(static_cast<std::size_t>(from));
    line = line.substr(0, line.find('\n', static_cast<std::size_t>(at - from)));
    if (line.ends_with('\r') && static_cast<int64_t>(line.size()) > at - from) {
        line.remove_suffix(1);
    }
    return drawExcerpt(line, static_cast<std::size_t>(at - from), start < 0);
}

}  // namespace qvej
