// Keeps the last bytes of a text that comes in pieces, to show a mistake in it.
//
// Tested by tests/client/excerpt_test.cpp
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qvej {

class TextTrail {
   public:
    // The next piece is about to be used; it must live until `passed`, or as long as this object
    // when it is the last.
    void take(std::string_view piece) { piece_ = piece; }
    // The piece has been used without a mistake.
    void passed();

    // The excerpt (excerpt.h) for the place after `offset` bytes of the text, which is UTF-8.
    // Empty when it passed too long ago.
    [[nodiscard]] std::string excerpt(int64_t offset) const;

   private:
    std::string_view piece_;  // the piece in use
    std::string before_;      // what came directly before it, at most kKept bytes
    int64_t offset_ = 0;      // of piece_ in the whole text
};

}  // namespace qvej
