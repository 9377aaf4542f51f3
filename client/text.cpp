// See text.h.
#include "client/text.h"

#include "client/error.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace qvej {
namespace {

constexpr char kSeparator = '\x02';
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool isContinuation(char c) {
    return (static_cast<uint8_t>(c) & 0xC0) == 0x80;
}

// Length of the sequence that a UTF-8 lead byte announces; 1 for any other byte.
std::size_t sequenceLength(char c) {
    const auto lead = static_cast<uint8_t>(c);
    return lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
}

std::string utf8Of(char32_t c) {
    std::string text;
    const auto tail = [&](int shift) {
        text.push_back(static_cast<char>(0x80 | ((c >> shift) & 0x3F)));
    };
    if (c < 0x80) {
        text.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        text.push_back(static_cast<char>(0xC0 | (c >> 6)));
        tail(0);
    } else if (c < 0x10000) {
        text.push_back(static_cast<char>(0xE0 | (c >> 12)));
        tail(6);
        tail(0);
    } else {
        text.push_back(static_cast<char>(0xF0 | (c >> 18)));
        tail(12);
        tail(6);
        tail(0);
    }
    return text;
}

std::string_view withoutBlanks(std::string_view text) {
    static constexpr char kBlanks[] = "                ";
    constexpr std::size_t kStep = sizeof kBlanks - 1;
    while (text.size() >= kStep &&
           std::memcmp(text.data() + text.size() - kStep, kBlanks, kStep) == 0) {
        text.remove_suffix(kStep);
    }
    while (!text.empty() && text.back() == ' ') {
        text.remove_suffix(1);
    }
    return text;
}

}  // namespace

TextCodec::TextCodec(QVHndlp host, QVCEI encoding) {
    if (encoding == U_UTF8_CE) {
        return;
    }
    const QVTranscoderh transcoder =
        host->nls->newTranscoder(host->nls, encoding, U_L_UCS4_CE, host->jnl);
    if (transcoder == nullptr) {
        throw Error(QV_UNSUPPORTED);
    }
    utf8OfByte_.reserve(256);
    for (int byte = 0; byte < 256; ++byte) {
        const char in = static_cast<char>(byte);
        QVChar out[2] = {};
        QVStrSize outLen = 0;
        const QVStatus status = transcoder->convert(transcoder, &in, 1, out, 2, &outLen);
        utf8OfByte_.push_back(status == QV_OK && outLen == 1 ? utf8Of(out[0])
                                                             : std::string(kReplacement));
    }
    check(transcoder->generic.destroy(&transcoder->generic));
}

std::string_view TextCodec::decode(std::string_view text, std::string& scratch) const {
    if (isUtf8()) {
        return text;
    }
    scratch.clear();
    for (const char c : text) {
        scratch += utf8OfByte_[static_cast<uint8_t>(c)];
    }
    return scratch;
}

std::string TextCodec::decoded(std::string_view text) const {
    std::string scratch;
    return std::string(decode(text, scratch));
}

std::string TextCodec::encoded(std::string_view utf8) const {
    if (isUtf8()) {
        return std::string(utf8);
    }
    std::string text;
    while (!utf8.empty()) {
        const std::string_view character = utf8.substr(0, sequenceLength(utf8.front()));
        const auto found = std::find(utf8OfByte_.begin(), utf8OfByte_.end(), character);
        if (found == utf8OfByte_.end() || character == kReplacement) {
            throw Error(QV_UNMAPPABLE);
        }
        text.push_back(static_cast<char>(found - utf8OfByte_.begin()));
        utf8.remove_prefix(character.size());
    }
    return text;
}

std::string_view withoutUnfinished(std::string_view text) {
    std::size_t tail = 0;  // continuation bytes at the end
    while (tail < text.size() && tail < 4 && isContinuation(text[text.size() - 1 - tail])) {
        ++tail;
    }
    if (tail == text.size() || tail == 4) {
        return text;  // not the end of a cut sequence
    }
    const std::size_t announced = sequenceLength(text[text.size() - 1 - tail]);
    return announced > tail + 1 ? text.substr(0, text.size() - 1 - tail) : text;
}

std::string_view withoutPadding(std::string_view cell, bool utf8) {
    std::string_view text = withoutBlanks(cell);
    if (utf8 && !text.empty() && static_cast<uint8_t>(text.back()) >= 0x80) {
        text = withoutBlanks(withoutUnfinished(text));
    }
    return text;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!isContinuation(text[i]) && count-- == 0) {
            return text.substr(0, i);
        }
    }
    return text;
}

std::string withSlashes(std::string_view path) {
    std::string text(path);
    std::replace(text.begin(), text.end(), kSeparator, '/');
    return text;
}

std::u32string toHostCharacters(std::string_view utf8) {
    std::u32string text;
    while (!utf8.empty()) {
        const std::size_t length = sequenceLength(utf8.front());
        if (isContinuation(utf8.front()) || length > utf8.size()) {
            throw Error(QV_UNMAPPABLE);
        }
        char32_t c = static_cast<uint8_t>(utf8.front());
        c = length == 1 ? c : c & (0xFFu >> (length + 1));
        for (const char next : utf8.substr(1, length - 1)) {
            if (!isContinuation(next)) {
                throw Error(QV_UNMAPPABLE);
            }
            c = (c << 6) | (static_cast<uint8_t>(next) & 0x3Fu);
        }
        // The way back must give the same bytes: no overlong forms, surrogates or too large values.
        if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF) || utf8Of(c) != utf8.substr(0, length)) {
            throw Error(QV_UNMAPPABLE);
        }
        text.push_back(c);
        utf8.remove_prefix(length);
    }
    return text;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    const auto upper = [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char x, char y) { return upper(x) == upper(y); });
}

std::string lowerCased(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return lower;
}

std::string withCommas(uint64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3;) {
        at -= 3;
        text.insert(at, 1, ',');
    }
    return text;
}

}  // namespace qvej
