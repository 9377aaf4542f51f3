// See path_pattern.h.
#include "client/shape/path_pattern.h"

#include "client/escape.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <charconv>

namespace qvej {
namespace {

constexpr std::string_view kRoot = "root";

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// Reads from a text and knows how far it is: the place of a mistake is counted from the beginning.
class Reader {
   public:
    explicit Reader(std::string_view text) : text_(text) {}

    [[nodiscard]] bool atEnd() const { return at_ == text_.size(); }
    [[nodiscard]] bool sees(char c) const { return !atEnd() && text_[at_] == c; }
    [[nodiscard]] bool atWordEnd() const { return atEnd() || isBlank(text_[at_]); }
    [[nodiscard]] std::size_t at() const { return at_; }
    [[nodiscard]] std::string_view rest() const { return text_.substr(at_); }
    char next() { return text_[at_++]; }

    bool takes(char c) {
        if (!sees(c)) {
            return false;
        }
        ++at_;
        return true;
    }

    [[noreturn]] void fail(std::string what) const { throw PatternMistake{std::move(what), at_}; }

    // A JSON string; its first quote is next.
    std::string string() {
        std::string name;
        next();
        while (!takes('"')) {
            if (atEnd()) {
                fail("the string has no end");
            }
            if (static_cast<unsigned char>(text_[at_]) < 0x20) {
                fail("a control character must be escaped");
            }
            if (takes('\\')) {
                escape(name);
            } else {
                name += next();
            }
        }
        return name;
    }

   private:
    void escape(std::string& name) {
        static constexpr std::string_view kLetters = "\"\\/bfnrt";
        static constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
        const std::size_t letter = atEnd() ? kLetters.npos : kLetters.find(text_[at_]);
        if (letter != kLetters.npos) {
            name += kMeanings[letter];
            ++at_;
        } else if (takes('u')) {
            appendCharacter(name, character());
        } else {
            fail("this is no escape of a JSON string");
        }
    }

    // After "\u": a character, which may take two escapes.
    uint32_t character() {
        const uint32_t first = unit();
        if (!U16_IS_SURROGATE(first)) {
            return first;
        }
        const bool paired = U16_IS_SURROGATE_LEAD(first) && takes('\\') && takes('u');
        const uint32_t second = paired ? unit() : 0;
        if (!U16_IS_TRAIL(second)) {
            fail("this is half a surrogate pair");
        }
        return U16_GET_SUPPLEMENTARY(first, second);
    }

    // Four hexadecimal digits.
    uint32_t unit() {
        uint32_t value = 0;
        const char* first = text_.data() + at_;
        const char* last = first + std::min<std::size_t>(4, text_.size() - at_);
        if (std::from_chars(first, last, value, 16).ptr != first + 4) {
            fail("\\u takes four hexadecimal digits");
        }
        at_ += 4;
        return value;
    }

    static void appendCharacter(std::string& name, uint32_t character) {
        uint8_t bytes[U8_MAX_LENGTH];
        int32_t size = 0;
        U8_APPEND_UNSAFE(bytes, size, character);
        name.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

PathPattern::Piece pieceOf(Reader& reader) {
    using Piece = PathPattern::Piece;
    if (reader.sees('"')) {
        return {Piece::NAME, reader.string()};
    }
    const std::size_t begin = reader.at();
    std::string name;
    std::size_t stars = 0;
    while (!reader.atWordEnd() && !reader.sees('/')) {
        if (reader.sees('"')) {
            reader.fail("a name with a quote is written as a JSON string");
        }
        stars += reader.sees('*') ? 1 : 0;
        if (reader.takes('\\') && !reader.sees('/') && !reader.sees('*') && !reader.sees('\\')) {
            reader.fail("\"\\\" stands before \"/\", \"*\" or \"\\\" only");
        }
        name += reader.next();
    }
    if (stars == 0) {
        if (name.empty()) {
            reader.fail("a name was expected (an empty one is \"\")");
        }
        return {Piece::NAME, name};
    }
    if (reader.at() - begin != stars || stars > 2) {
        reader.fail("\"*\" and \"**\" stand for whole names; \\* is the character");
    }
    return {stars == 1 ? Piece::ANY_NAME : Piece::ANY_PATH};
}

std::string writtenPiece(const PathPattern::Piece& piece) {
    switch (piece.kind) {
        case PathPattern::Piece::ANY_NAME:
            return "*";
        case PathPattern::Piece::ANY_PATH:
            return "**";
        default:
            break;
    }
    const std::string word = writtenWord(piece.name);
    if (word.starts_with('"')) {
        return word;
    }
    std::string escapedName;
    for (const char c : piece.name) {
        if (c == '/' || c == '*' || c == '\\') {
            escapedName += '\\';
        }
        escapedName += c;
    }
    return escapedName;
}

}  // namespace

PathPattern PathPattern::readFrom(std::string_view& text) {
    Reader reader(text);
    PathPattern pattern;
    if (!reader.sees('/')) {
        reader.fail("a path begins with \"/\", as in /root/orders");
    }
    while (reader.takes('/')) {
        pattern.pieces_.push_back(pieceOf(reader));
    }
    if (!reader.atWordEnd()) {
        reader.fail("\"/\" or a blank was expected after the string");
    }
    const Piece& first = pattern.pieces_.front();
    if (first.kind == Piece::NAME && first.name != kRoot) {
        throw PatternMistake{"a path begins with /root (or with * or **)", 0};
    }
    text = reader.rest();
    return pattern;
}

PathPattern PathPattern::parse(std::string_view text) {
    const std::size_t size = text.size();
    PathPattern pattern = readFrom(text);
    if (!text.empty()) {
        throw PatternMistake{"a name with blanks is written as a JSON string, as in /root/\"a b\"",
                             size - text.size()};
    }
    return pattern;
}

bool PathPattern::isRoot() const {
    return pieces_.size() == 1 && pieces_[0].kind != Piece::ANY_PATH;
}

std::string PathPattern::text() const {
    std::string text;
    for (const Piece& piece : pieces_) {
        text += "/" + writtenPiece(piece);
    }
    return text;
}

std::string readWord(std::string_view& text) {
    Reader reader(text);
    std::string word;
    if (reader.sees('"')) {
        word = reader.string();
        if (!reader.atWordEnd()) {
            reader.fail("a blank was expected after the string");
        }
    } else {
        while (!reader.atWordEnd()) {
            word += reader.next();
        }
    }
    text = reader.rest();
    return word;
}

std::string writtenWord(std::string_view name) {
    const bool plain = !name.empty() && std::none_of(name.begin(), name.end(), [](char c) {
        return isBlank(c) || c == '"' || static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
    });
    if (plain) {
        return std::string(name);
    }
    std::string word = "\"";
    appendEscaped(word, name, JSON_STRING);
    return word + "\"";
}

void skipBlanks(std::string_view& text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
}

}  // namespace qvej
