// Texts in any encoding on their way to UTF-8, and the columns they had.
#include "client/input/recoder.h"

#include "tests/client/in_encoding.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace std::string_literals;
using jmap::test::inEncoding;
using Invalid = qvej::Recoder::Invalid;

struct Recoded {
    std::string text;
    std::vector<int64_t> columns;  // of each character
    bool broken = false;
    int64_t endColumn = 0;
};

// The text converted in pieces of `size` bytes.
Recoded recode(std::string_view text, const std::string& encoding, Invalid invalid,
               std::size_t size) {
    qvej::Recoder recoder(encoding, text.substr(0, 4), invalid);
    Recoded result;
    for (bool ended = false; !ended && !recoder.broken();) {
        std::string_view piece = text.substr(0, size);
        text.remove_prefix(piece.size());
        ended = piece.empty();
        do {
            for (const char byte : recoder.convert(piece)) {
                if ((static_cast<uint8_t>(byte) & 0xC0) != 0x80) {
                    const auto at = static_cast<int64_t>(result.text.size());
                    result.columns.push_back(recoder.columnOf(at));
                }
                result.text += byte;
            }
        } while (!piece.empty() && !recoder.broken());
    }
    result.broken = recoder.broken();
    result.endColumn = recoder.columnOf(static_cast<int64_t>(result.text.size()));
    return result;
}

// The columns that a text of some lines has: per line, and per character.
TEST(Recoder, ConvertsAndKnowsColumnsHoweverTheTextIsCut) {
    const struct {
        const char* encoding;
        std::string text;
        std::vector<int64_t> columns;  // of each character
    } cases[] = {
        {"UTF-8", "aé\n日𝄞b", {1, 2, 4, 1, 4, 8}},
        {"ISO-8859-1", "aé\né\nb", {1, 2, 3, 1, 2, 1}},
        {"windows-1252", "€b", {1, 2}},
        {"ibm-037", "aéb", {1, 2, 3}},
        {"Shift_JIS", "日\n日本b", {1, 3, 1, 3, 5}},
        {"GB18030", "日𝄞é\nb", {1, 3, 7, 9, 1}},
        {"EUC-JP", "日b", {1, 3}},
        {"UTF-16LE", "aé日\n𝄞b", {1, 2, 3, 4, 1, 3}},
        {"UTF-16BE", "\uFEFFaé\n𝄞b", {1, 2, 3, 1, 3}},
        {"UTF-16", "a𝄞b", {1, 2, 4}},
        {"UTF-32LE", "\uFEFF𝄞b\nc", {1, 2, 3, 1}},
        {"UTF-32", "𝄞b", {1, 2}},
        {"CESU-8", "a𝄞b", {1, 2, 8}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.encoding);
        const bool marked = c.text.starts_with("\uFEFF");
        const std::string plain = c.text.substr(marked ? 3 : 0);
        const std::string text = inEncoding(c.text, c.encoding);
        for (std::size_t size = 1; size <= text.size(); ++size) {
            SCOPED_TRACE(size);
            const Recoded recoded = recode(text, c.encoding, Invalid::STOPS, size);
            EXPECT_FALSE(recoded.broken);
            EXPECT_EQ(recoded.text, plain);
            EXPECT_EQ(recoded.columns, c.columns);
        }
    }
}

TEST(Recoder, StopsAtWhatIsWrongOrReplacesIt) {
    const struct {
        const char* encoding;
        std::string text;
        std::string before;
        int64_t column;
        std::string replaced;
    } cases[] = {
        {"UTF-8", "a\xFF\xC3\xA9", "a", 2, "a\uFFFDé"},
        {"UTF-8", "é\n\xE6\x97x", "é\n", 1, "é\n\uFFFDx"},
        {"UTF-8", "é\xE6\x97", "é", 3, "é\uFFFD"},
        {"UTF-8", "\xED\xA0\x80", "", 1, "\uFFFD\uFFFD\uFFFD"},
        {"US-ASCII", "ab\xE9", "ab", 3, "ab\uFFFD"},
        {"Shift_JIS", "\x93\xFA\xFF\xFF", "日", 3, "日\uFFFD\uFFFD"},
        {"Shift_JIS", "a\x93", "a", 2, "a\uFFFD"},
        {"UTF-16LE", "a\0\0\xD8\x62\0"s, "a", 2, "a\uFFFDb"},
        {"UTF-16LE", "a\0\0\xDC"s, "a", 2, "a\uFFFD"},
        {"UTF-16LE", "a\0b"s, "a", 2, "a\uFFFD"},
        {"UTF-32BE", "\0\0\0a\0\x11\0\0"s, "a", 2, "a\uFFFD"},
        {"ISO-8859-3", "a\xA5 b", "a", 2, "a\uFFFD b"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.encoding + testing::PrintToString(c.text));
        for (std::size_t size = 1; size <= c.text.size(); ++size) {
            SCOPED_TRACE(size);
            const Recoded stopped = recode(c.text, c.encoding, Invalid::STOPS, size);
            EXPECT_TRUE(stopped.broken);
            EXPECT_EQ(stopped.text, c.before);
            EXPECT_EQ(stopped.endColumn, c.column);
            const Recoded replaced = recode(c.text, c.encoding, Invalid::IS_REPLACED, size);
            EXPECT_FALSE(replaced.broken);
            EXPECT_EQ(replaced.text, c.replaced);
        }
    }
}

}  // namespace
