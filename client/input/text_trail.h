// Where in the text something is wrong, and what the text looks like there.
//
// Lines and columns are 1-based, lines end with a line feed, columns count bytes: as the parser
// counts them.
//
// Tested by tests/tool/text_test.cpp
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qvej {

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

    // How many bytes of the text stand before the place; none: it passed too long ago.
    [[nodiscard]] std::optional<int64_t> offsetOf(Place place) const;

    // Two lines: the text (UTF-8) around the place, and a caret under it.  Empty when the text is
    // no longer known.
    [[nodiscard]] std::string excerpt(Place place) const;

   private:
    [[nodiscard]] std::string known() const { return before_ + std::string(piece_); }
    // Where the line of a place starts, behind the first byte that is known; negative: before it.
    [[nodiscard]] std::optional<int64_t> startOfLine(int64_t line, std::string_view known) const;

    std::string_view piece_;  // the piece in use
    std::string before_;      // what came directly before it, at most kKept bytes
    int64_t offset_ = 0;      // of piece_ in the whole text
    int64_t lines_ = 0;       // line feeds before piece_
    int64_t lineStart_ = 0;   // where the line that piece_ begins in starts, in the whole text
};

}  // namespace qvej
