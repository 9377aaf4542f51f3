// The small parts of the tool that make text.
#include "tools/cli/escape.h"
#include "tools/cli/file_names.h"
#include "tools/cli/number_text.h"
#include "tools/cli/option_values.h"
#include "tools/cli/place.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace std::string_literals;

TEST(ToolText, NumbersAreShortestAndReadBack) {
    const std::pair<double, const char*> cases[] = {
        {0, "0"},
        {-0.0, "-0"},
        {9007199254740993.0, "9007199254740992"},
        {9223372036854774784.0, "9223372036854774784"},
        {9223372036854775808.0, "9223372036854775808"},
        {-9223372036854775808.0, "-9223372036854775808"},
        {1.0 / 3, "0.3333333333333333"},
        {-1.7976931348623157e308, "-1.7976931348623157e+308"},
        {std::numeric_limits<double>::infinity(), "plus"},
        {-std::numeric_limits<double>::infinity(), "minus"}};
    for (const auto& [number, expected] : cases) {
        char text[kNumberChars];
        EXPECT_EQ(std::string(text, writeNumber(text, number, {"plus", "minus"})), expected);
    }
}

TEST(ToolText, EscapesControlsAndBrokenUtf8) {
    const struct {
        std::string text;
        std::string asMessage;
        std::string asJson;
    } cases[] = {
        {"", "", ""},
        {"a\"b\\c", "a\"b\\c", R"(a\"b\\c)"},
        {"\b\f\n\r\t\x01\x1f\x7f\0 "s, R"(\b\f\n\r\t\u0001\u001f\u007f\u0000 )",
         R"(\b\f\n\r\t\u0001\u001f\u007f\u0000 )"},
        {"\xC2\x80\xC2\x9F\xC2\xA0", "\\u0080\\u009f\xC2\xA0", "\\u0080\\u009f\xC2\xA0"},
        {"é日🂡", "é日🂡", "é日🂡"},
        {"\xFFx\xE6\x97", "\uFFFDx\uFFFD", "\uFFFDx\uFFFD"},
        {"\xED\xA0\x80!", "\uFFFD\uFFFD\uFFFD!", "\uFFFD\uFFFD\uFFFD!"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(shown(c.text), c.asMessage);
        std::string json;
        appendEscaped(json, c.text, JSON_STRING);
        EXPECT_EQ(json, c.asJson);
    }
}

TEST(ToolText, FileNamesNeverActAsPathsAndDifferWhereCaseDoesNotCount) {
    const std::vector<std::string> names = {"o2", "O2", "o2", "",    "_",   "..",
                                            ".h", "é",  "/",  "a~2", "x y", "a.b-c_d"};
    const std::vector<std::string> files = {"o2.csv",  "O2~2.csv",  "o2~3.csv",  "_.csv",
                                            "_~2.csv", "%2E..csv",  "%2Eh.csv",  "%C3%A9.csv",
                                            "%2F.csv", "a%7E2.csv", "x%20y.csv", "a.b-c_d.csv"};
    EXPECT_EQ(uniqueFileNames(names, "csv"), files);
}

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
std::string excerptOf(std::string_view text, Place place, std::size_t pieceSize) {
    TextTrail trail;
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
        Place place;
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

TEST(ToolText, ATrailCountsLinesAndBytes) {
    TextTrail trail;
    for (const char* piece : {"", "ab\ncd", "ef", "\n", "\n\nxyz"}) {
        trail.take(piece);
        trail.passed();
    }
    EXPECT_EQ(trail.end().line, 5);
    EXPECT_EQ(trail.end().column, 4);
}

}  // namespace
