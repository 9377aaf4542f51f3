// Where in the text something is wrong, and what the text looks like there.
//
// Lines and columns are 1-based, lines end with a line feed, columns count bytes: as the parser
// counts them.
//
// Tested by tests/tool/text_test.cpp
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

struct Place {
    int64_t line;
    int64_t column;
};

// Follows a text that passes by in pieces and remembers the last of it.
class TextTrail {
   public:
    // The next piece is about to be used; it must live until `passed`, or as long as this object
    // when it is the last.
    void take(std::string_view piece) { piece_ = piece; }
    // The piece has been used without a mistake.
    void passed();

    // The place behind all that was taken.
    [[nodiscard]] Place end() const;

    // Two lines: the text around the place, and a caret under it.  Empty when the text is no longer
    // known.  `toUtf8` turns bytes of the text to UTF-8.
    using Decoder = std::function<std::string(std::string_view)>;
    [[nodiscard]] std::string excerpt(Place place, const Decoder& toUtf8) const;

   private:
    std::string_view piece_;  // the piece in use
    std::string before_;      // what came directly before it, at most kKept bytes
    int64_t offset_ = 0;      // of piece_ in the whole text
    int64_t lines_ = 0;       // line feeds before piece_
    int64_t lineStart_ = 0;   // where the line that piece_ begins in starts, in the whole text
};
