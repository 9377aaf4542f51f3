// The text around a place, of a text that is whole or passes by in pieces.
#include "client/excerpt.h"

#include "client/input/text_trail.h"

#include <gtest/gtest.h>

namespace {

// The excerpt for a place in a text that passed in pieces of `pieceSize` bytes, the last in use.
std::string inPieces(std::string_view text, std::size_t at, std::size_t pieceSize) {
    qvej::TextTrail trail;
    for (; text.size() > pieceSize; text.remove_prefix(pieceSize)) {
        trail.take(text.substr(0, pieceSize));
        trail.passed();
    }
    trail.take(text);
    return trail.excerpt(static_cast<int64_t>(at));
}

TEST(Excerpt, ShowsThePlaceHoweverTheTextCame) {
    const std::string longLine = "[" + std::string(200, 'x') + "!" + std::string(600, 'y');
    const struct {
        std::string text;
        int64_t line, column;
        std::string excerpt;
    } cases[] = {
        {"{\n\"a\" 1\n}", 2, 5, "    \"a\" 1\n        ^\n"},
        {"{\r\n\t\"a\" 1\r\n}", 2, 6, "     \"a\" 1\n         ^\n"},
        {"[1,2", 1, 5, "    [1,2\n        ^\n"},
        {"[1,\n 2\n\n", 4, 1, "     2\n      ^\n"},
        {"\"日本\":x", 1, 10, "    \"日本\":x\n           ^\n"},
        {longLine, 1, 202,
         "    ..." + std::string(60, 'x') + "!" + std::string(23, 'y') + "...\n" +
             std::string(67, ' ') + "^\n"},
        {" \n\n", 3, 1, ""},
        {"[\n", 1, 1, "    [\n    ^\n"},
    };
    for (const auto& c : cases) {
        const std::size_t at = qvej::offsetOf(c.text, c.line, c.column);
        EXPECT_EQ(qvej::excerptOf(c.text, at), c.excerpt) << c.text;
        for (const std::size_t pieceSize : {c.text.size(), std::size_t{1}, std::size_t{3}}) {
            SCOPED_TRACE(c.text + " " + std::to_string(pieceSize));
            // In small pieces a place far back has passed too long ago to be known.
            const bool known = c.text.size() < 300 || pieceSize == c.text.size();
            EXPECT_EQ(inPieces(c.text, at, pieceSize), known ? c.excerpt : "");
        }
    }
}

TEST(Excerpt, APlaceOutsideOfTheTextIsItsEndOrNothing) {
    EXPECT_EQ(qvej::offsetOf("ab\ncd", 2, 9), 5U);
    EXPECT_EQ(qvej::offsetOf("ab\ncd", 3, 1), 5U);
    EXPECT_EQ(qvej::offsetOf("ab\ncd", 2, 0), 3U);
    EXPECT_EQ(qvej::excerptOf("ab", 3), "");
}

}  // namespace
