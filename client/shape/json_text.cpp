// See json_text.h.
#include "client/shape/json_text.h"

namespace qvej {
namespace {

bool needsEscape(char c) {
    return c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20;
}

void appendEscape(std::string& out, char c) {
    static constexpr std::string_view kMeanings = "\"\\\b\f\n\r\t";
    static constexpr std::string_view kLetters = "\"\\bfnrt";
    static constexpr char kDigits[] = "0123456789abcdef";
    out += '\\';
    const std::size_t known = kMeanings.find(c);
    if (known != kMeanings.npos) {
        out += kLetters[known];
        return;
    }
    const auto byte = static_cast<unsigned char>(c);
    out.append("u00").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
}

}  // namespace

// A comma, unless the text begins or a container or a member has just begun.
void JsonText::separate() {
    if (!text_.empty() && text_.back() != '[' && text_.back() != '{' && text_.back() != ':') {
        text_ += ',';
    }
}

void JsonText::open(bool array) {
    if (!full()) {
        separate();
        text_ += array ? '[' : '{';
    }
}

void JsonText::close(bool array) {
    if (!full()) {
        text_ += array ? ']' : '}';
    }
}

void JsonText::name(std::string_view name) {
    if (!full()) {
        separate();
        quoted(name);
        text_ += ':';
    }
}

void JsonText::string(std::string_view value) {
    if (!full()) {
        separate();
        quoted(value);
    }
}

void JsonText::word(std::string_view word) {
    if (!full()) {
        separate();
        text_ += word.substr(0, kLongestText);
    }
}

void JsonText::quoted(std::string_view text) {
    text_ += '"';
    std::size_t begin = 0;  // of what is not yet appended
    for (std::size_t at = 0; at < text.size() && !full(); ++at) {
        if (needsEscape(text[at])) {
            text_.append(text, begin, at - begin);
            appendEscape(text_, text[at]);
            begin = at + 1;
        }
    }
    text_.append(text, begin, full() ? 0 : kLongestText).append(1, '"');
}

}  // namespace qvej
