// Patterns for paths of a document: /root/orders/*, /root/**/id, /root/"a name with blanks".
//
// "*" stands for one name, "**" for any number of them, none included.  An array adds no name to a
// path.  "\" takes the meaning from "/", "*" and "\" in a name; a name with blanks or quotes is
// written as a JSON string.
//
// Tested by tests/client/path_pattern_test.cpp
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// A mistake in a text of one line.
struct PatternMistake {
    std::string what;    // a sentence without a subject
    std::size_t at = 0;  // the byte where it stands
};

class PathPattern {
   public:
    struct Piece {
        enum Kind { NAME, ANY_NAME, ANY_PATH };
        Kind kind;
        std::string name = {};  // of a NAME

        bool operator==(const Piece&) const = default;
    };

    PathPattern() = default;
    explicit PathPattern(std::vector<Piece> pieces) : pieces_(std::move(pieces)) {}

    // The pattern at the beginning of `text`, up to a blank or its end; `text` goes on after it.
    // Throws PatternMistake.
    static PathPattern readFrom(std::string_view& text);

    // The whole text.  Throws PatternMistake.
    static PathPattern parse(std::string_view text);

    [[nodiscard]] const std::vector<Piece>& pieces() const { return pieces_; }

    // Does it match the root and nothing else?
    [[nodiscard]] bool isRoot() const;

    // As `parse` reads it.
    [[nodiscard]] std::string text() const;

    bool operator==(const PathPattern&) const = default;

   private:
    std::vector<Piece> pieces_;
};

// The word at the beginning of `text`: a JSON string, or what stands before the next blank.  `text`
// goes on after it.  Throws PatternMistake for a broken string.
std::string readWord(std::string_view& text);

// A word that readWord reads as `name`.
std::string writtenWord(std::string_view name);

// Passes over blanks and tabs.
void skipBlanks(std::string_view& text);

}  // namespace qvej
