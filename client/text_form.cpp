// See text_form.h.
#include "client/text_form.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace qvej {
namespace {

constexpr std::string_view kSpace = " \t\r\n";
constexpr std::string_view kNotInWord = " \t\r\n,:[]{}\"";

constexpr std::array<bool, 256> table(std::string_view bytes) {
    std::array<bool, 256> in{};
    for (const char byte : bytes) {
        in[static_cast<uint8_t>(byte)] = true;
    }
    return in;
}
constexpr std::array<bool, 256> kInString = table("\"\\\n");
constexpr std::array<bool, 256> kInContainer = table("\"[]{}");

// The first of the bytes from `at` on, or the end of the text.
std::size_t find(std::string_view text, std::size_t at, const std::array<bool, 256>& bytes) {
    while (at < text.size() && !bytes[static_cast<uint8_t>(text[at])]) {
        ++at;
    }
    return at;
}

// Where the string ends whose quote is at `at`; npos: not here, or not in its line.
std::size_t endOfString(std::string_view text, std::size_t at) {
    for (at = find(text, at + 1, kInString); at < text.size(); at = find(text, at, kInString)) {
        if (text[at] != '\\') {
            return text[at] == '"' ? at + 1 : text.npos;
        }
        at += 2;
    }
    return text.npos;
}

// The same of the object or array whose bracket is at `at`.
std::size_t endOfContainer(std::string_view text, std::size_t at) {
    std::size_t depth = 0;
    while ((at = find(text, at, kInContainer)) < text.size()) {
        if (text[at] == '"') {
            at = endOfString(text, at);
            continue;
        }
        depth += text[at] == '[' || text[at] == '{' ? 1 : std::size_t{0} - 1;
        ++at;
        if (depth == 0) {
            return at;
        }
    }
    return text.npos;
}

// The same of a number or a word.  The last one may go on after `text`.
std::size_t endOfWord(std::string_view text, std::size_t at) {
    const std::size_t end = std::min(text.find_first_of(kNotInWord, at), text.size());
    const std::string_view word = text.substr(at, end - at);
    const bool number = word.find_first_not_of("0123456789+-.eE") == word.npos &&
                        (word[0] == '-' || (word[0] >= '0' && word[0] <= '9'));
    return number || word == "true" || word == "false" || word == "null" ? end : text.npos;
}

// Where the value at `at` ends; npos: there is none, or it does not end.
std::size_t endOfValue(std::string_view text, std::size_t at) {
    switch (text[at]) {
        case '{':
        case '[':
            return endOfContainer(text, at);
        case '"':
            return endOfString(text, at);
        default:
            return kNotInWord.find(text[at]) == text.npos ? endOfWord(text, at) : text.npos;
    }
}

// A value, or the beginning of one.
struct Value {
    std::size_t begin, end;  // end npos: it does not end

    [[nodiscard]] bool ends() const { return end != std::string_view::npos; }
};

// The value that follows at `at`; its begin is npos when there is none.
Value nextValue(std::string_view text, std::size_t at) {
    const std::size_t begin = text.find_first_not_of(kSpace, at);
    if (begin == text.npos) {
        return {begin, begin};
    }
    const std::size_t end = endOfValue(text, begin);
    const bool begins = end != text.npos || text[begin] == '{' || text[begin] == '[';
    return {begins ? begin : text.npos, end};
}

bool hasLineEnd(std::string_view text, std::size_t begin, std::size_t end) {
    return text.substr(begin, end - begin).find('\n') != text.npos;
}

}  // namespace

TextForm textFormOf(std::string_view start) {
    Value value = nextValue(start, 0);
    Value next = value.ends() ? nextValue(start, value.end) : Value{start.npos, start.npos};
    if (next.begin == start.npos) {
        return TextForm::DOCUMENT;
    }
    for (;;) {
        if (hasLineEnd(start, value.begin, value.end)) {
            return TextForm::SEQUENCE;
        }
        if (next.begin == start.npos) {
            return TextForm::LINES;
        }
        if (!hasLineEnd(start, value.end, next.begin)) {
            return TextForm::SEQUENCE;
        }
        if (!next.ends()) {
            return TextForm::LINES;
        }
        value = next;
        next = nextValue(start, value.end);
    }
}

}  // namespace qvej
