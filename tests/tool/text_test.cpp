// The small parts of the tool that make text.
#include "client/input/place.h"
#include "tools/cli/maps/separator_watch.h"
#include "tools/cli/options/option_values.h"

#include <gtest/gtest.h>

namespace {

using qvej::cli::parseSize;
using qvej::cli::SeparatorWatch;

TEST(ToolText, SizesTakeSuffixesOf1024) {
    const std::pair<const char*, std::optional<uint64_t>> cases[] = {
        {"0", 0},
        {"64K", 65536},
        {"3m", 3u << 20},
        {"2G", uint64_t{2} << 30},
        {"1T", uint64_t{1} << 40},
        {"17179869183G", uint64_t{17179869183} << 30},
        {"17179869184G", std::nullopt},
        {"18446744073709551615", UINT64_MAX},
    };
    for (const auto& [text, size] : cases) {
        EXPECT_EQ(parseSize(text), size) << text;
    }
    for (const char* text : {"18446744073709551616", "", "K", "-1", "1.5G", "1KB", " 1"}) {
        EXPECT_EQ(parseSize(text), std::nullopt) << text;
    }
}

// The excerpt for a place in a text that passed in pieces of `pieceSize` bytes, the last in use.
std::string excerptOf(std::string_view text, qvej::Place place, std::size_t pieceSize) {
    qvej::TextTrail trail;
    for (; text.size() > pieceSize; text.remove_prefix(pieceSize)) {
        trail.take(text.substr(0, pieceSize));
        trail.passed();
    }
    trail.take(text);
    return trail.excerpt(place);
}

TEST(ToolText, ExcerptsShowThePlaceHoweverTheTextCame) {
    const std::string longLine = "[" + std::string(200, 'x') + "!" + std::string(600, 'y');
    const struct {
        std::string text;
        qvej::Place place;
        std::string excerpt;
    } cases[] = {
        {"{\n\"a\" 1\n}", {2, 5}, "    \"a\" 1\n        ^\n"},
        {"{\r\n\t\"a\" 1\r\n}", {2, 6}, "     \"a\" 1\n         ^\n"},
        {"[1,2", {1, 5}, "    [1,2\n        ^\n"},
        {"[1,\n 2\n\n", {4, 1}, "     2\n      ^\n"},
        {"\"日本\":x", {1, 10}, "    \"日本\":x\n           ^\n"},
        {longLine,
         {1, 202},
         "    ..." + std::string(60, 'x') + "!" + std::string(23, 'y') + "...\n" +
             std::string(67, ' ') + "^\n"},
        {" \n\n", {3, 1}, ""},
    };
    for (const auto& c : cases) {
        for (const std::size_t pieceSize : {c.text.size(), std::size_t{1}, std::size_t{3}}) {
            SCOPED_TRACE(c.text + " " + std::to_string(pieceSize));
            // In small pieces a place far back has passed too long ago to be known.
            const bool known = c.text.size() < 300 || pieceSize == c.text.size();
            EXPECT_EQ(excerptOf(c.text, c.place, pieceSize), known ? c.excerpt : "");
        }
    }
}

TEST(ToolText, TheSeparatorIsSeenInEverySplit) {
    for (const auto& [text, spelt] : {std::pair(std::string("[\"\\u0002\"]"), true),
                                      std::pair(std::string("[\"\\u0003 u000u00\"]"), false)}) {
        for (std::size_t a = 0; a <= text.size(); ++a) {
            for (std::size_t b = a; b <= text.size(); ++b) {
                SeparatorWatch watch;
                watch.take(text.substr(0, a));
                watch.take(text.substr(a, b - a));
                watch.take(text.substr(b));
                EXPECT_EQ(watch.found(), spelt) << a << " " << b;
            }
        }
    }
}

}  // namespace
