// Encodings, transcoders, string services and the small services of the NLS table.
#include "host/nls/code_page.h"
#include "tests/host/host_fixture.h"

#include <unicode/ucnv.h>

#include <algorithm>

namespace qvhost::test {
namespace {

using namespace std::string_literals;

constexpr QVCEI kUcs4 = U_L_UCS4_CE;
constexpr QVCEI kUtf8 = U_UTF8_CE;

class NlsTest : public testing::Test {
   protected:
    RunningHost host_;
    QVNLSh nls_ = host_.handle->nls;
};

TEST_F(NlsTest, OneEncodingHasOneIdUnderAllItsNamesInAnyCase) {
    const QVCEI latin1 = host_.encoding("ISO-8859-1");
    EXPECT_GT(latin1, 1000);
    for (const char* name : {"latin1", "iso_8859-1:1987", "iso-8859-1"}) {
        EXPECT_EQ(host_.encoding(name), latin1) << name;
    }
    EXPECT_NE(host_.encoding("ISO-8859-15"), latin1);
    EXPECT_EQ(host_.encoding("Utf_8"), kUtf8);
    // Several bytes; not ASCII; ASCII's controls in other places; a name with an option.
    for (const std::string& none :
         {""s, " "s, "no such thing"s, "\0"s, std::string(100, 'x'), "UTF-16"s, "UTF-7"s,
          "GB18030"s, "ibm-37"s, "ibm-437"s, "windows-1252,swaplfnl"s}) {
        EXPECT_EQ(host_.encoding(none), 0) << none;
    }
}

// ICU itself is the judge of every byte of every page that it can offer.
TEST_F(NlsTest, EveryPageIsReadAsIcuReadsIt) {
    int pages = 0;
    for (int32_t i = 0; const char* name = ucnv_getAvailableName(i); ++i) {
        SCOPED_TRACE(name);
        const CodePage* page = codePage(host_.encoding(name));
        pages += page != nullptr ? 1 : 0;
        for (unsigned value = 0; page != nullptr && value < 256; ++value) {
            const char byte = static_cast<char>(value);
            char16_t icu[4] = {};
            char back[4] = {};
            UErrorCode error = U_ZERO_ERROR;
            // ICU substitutes where nothing is assigned; the way back then gives another byte.
            ucnv_convert("UTF-16LE", name, reinterpret_cast<char*>(icu), 8, &byte, 1, &error);
            ucnv_convert(name, "UTF-16LE", back, 4, reinterpret_cast<char*>(icu), 2, &error);
            const auto character = page->character(static_cast<uint8_t>(value));
            EXPECT_EQ(character.value_or(0xFFFD), icu[0]) << value;
            if (character && back[0] != '\x1A') {
                EXPECT_EQ(page->byte(*character), static_cast<uint8_t>(back[0])) << value;
            }
        }
    }
    EXPECT_GE(pages, 50);
}

// The bytes of host characters, which is how a transcoder sees them.
std::string raw(std::u32string_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(QVChar)};
}

TEST_F(NlsTest, TranscodersConvertBothWaysAndNeverSubstitute) {
    const QVCEI cp1252 = host_.encoding("cp1252");
    const QVCEI greek = host_.encoding("ISO-8859-7");
    const std::string wide =
        raw({U"\0\x7F\x80\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF", 10});
    const std::string utf8 =
        "\0\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF\xF0\x90\x80\x80"
        "\xF4\x8F\xBF\xBF"s;
    const struct {
        const char* name;
        QVCEI from, to;
        std::string in;
        QVStrSize room;  // in units of `to`
        QVStatus status;
        std::string out;
    } cases[] = {
        {"nothing", kUcs4, kUtf8, "", 0, QV_OK, ""},
        {"to UTF-8, exact room", kUcs4, kUtf8, wide, 26, QV_OK, utf8},
        {"one unit short", kUcs4, kUtf8, wide, 25, QV_TRUNCATED, ""},
        {"from UTF-8, exact room", kUtf8, kUcs4, utf8, 10, QV_OK, wide},
        {"one character short", kUtf8, kUcs4, utf8, 9, QV_TRUNCATED, ""},
        {"not UTF-8", kUtf8, kUcs4, "\x80", 9, QV_UNMAPPABLE, ""},
        {"surrogate", kUcs4, kUtf8, raw({U"\xD800", 1}), 9, QV_UNMAPPABLE, ""},
        {"last surrogate", kUcs4, kUcs4, raw({U"\xDFFF", 1}), 9, QV_UNMAPPABLE, ""},
        {"past the last", kUcs4, kUcs4, raw({U"\x110000", 1}), 9, QV_UNMAPPABLE, ""},
        {"to a page", kUcs4, cp1252, raw(U"a\u20AC\u00E9"), 3, QV_OK, "a\x80\xE9"},
        {"not in the page", kUcs4, cp1252, raw(U"a\u03B1"), 9, QV_UNMAPPABLE, ""},
        {"unassigned byte", greek, kUcs4, "\xD2", 9, QV_UNMAPPABLE, ""},
        {"no way out", kUcs4, greek, raw(U"\uFFFD"), 9, QV_UNMAPPABLE, ""},
        {"between pages", cp1252, greek, "a\x80", 2, QV_OK, "a\xA4"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        QVTranscoderh t = nls_->newTranscoder(nls_, c.from, c.to, nullptr);
        const auto units = [](QVCEI cei, QVStrSize size) { return cei == kUcs4 ? size / 4 : size; };
        std::string out(static_cast<std::size_t>(c.to == kUcs4 ? c.room * 4 : c.room), '?');
        QVStrSize length = -1;
        EXPECT_QV(c.status, t->convert(t, c.in.data(), units(c.from, lengthOf(c.in)), out.data(),
                                       c.room, &length));
        EXPECT_EQ(length, c.status == QV_OK ? units(c.to, lengthOf(c.out)) : -1);
        EXPECT_EQ(out.substr(0, c.out.size()), c.out);
    }
}

TEST_F(NlsTest, StringServicesSearchAndCompareBytesOfADocumentEncoding) {
    QVStringServiceh s = nullptr;
    for (const QVCEI unknown : {0, -1, 999}) {
        EXPECT_EQ(nls_->newTranscoder(nls_, unknown, kUtf8, nullptr), nullptr);
        EXPECT_EQ(nls_->newTranscoder(nls_, kUcs4, unknown, nullptr), nullptr);
        EXPECT_QV(QV_UNSUPPORTED, nls_->newStringService(nls_, unknown, nullptr, &s));
    }
    EXPECT_QV(QV_UNSUPPORTED, nls_->newStringService(nls_, kUcs4, nullptr, &s));
    EXPECT_EQ(s, nullptr);
    EXPECT_NE(nls_->newTranscoder(nls_, kUcs4, kUtf8, nullptr), nullptr);
    ASSERT_QV_OK(nls_->newStringService(nls_, host_.encoding("latin1"), nullptr, &s));
    EXPECT_EQ(host_.leftovers(), "transcoder UTF-32 to UTF-8;strings ISO-8859-1;");
    const struct {
        std::string a, b;
        QVStrSize at;
    } cases[] = {{",MAP,PATH,", ",PATH,", 4},
                 {",MAP,PATH,", ",MAP,", 0},
                 {",MAP", ",MAP,", -1},
                 {"aab", "ab", 1},
                 {"", "a", -1},
                 {"a", "", 0},
                 {"aXb", "x", -1},
                 {"a\0b"s, "b", 2},
                 {"a\0b"s, "a\0c"s, -1},
                 {"abc", "abc", 0}};
    for (const auto& [a, b, at] : cases) {
        SCOPED_TRACE(a + " " + b);
        EXPECT_EQ(s->index(s, a.data(), lengthOf(a), b.data(), lengthOf(b), 0), at);
        EXPECT_EQ(s->equal(s, a.data(), lengthOf(a), b.data(), lengthOf(b), 0), a == b ? 1 : 0);
    }
}

TEST_F(NlsTest, UpperCasesTheAsciiLettersOnlyAndFormatsIntoTheRoomThereIs) {
    std::string text = "`az{@AZ[\xE1\0a"s;
    nls_->upper8(nls_, text.data(), lengthOf(text));
    EXPECT_EQ(text, "`AZ{@AZ[\xE1\0A"s);
    for (QVStrSize room = 0; room <= 7; ++room) {
        std::u32string out(7, U'?');
        QVStrSize length = -1;
        EXPECT_QV(room >= 6 ? QV_OK : QV_TRUNCATED,
                  nls_->format(nls_, out.data(), room, &length, U"%.*hs%ld", 2, "abc", -42L));
        EXPECT_EQ(length, std::clamp<QVStrSize>(room - 1, 0, 5));
        const auto made = static_cast<std::size_t>(length);
        EXPECT_EQ(out.substr(0, made + 1), U"ab-42"s.substr(0, made) + (room == 0 ? U'?' : U'\0'));
    }
}

}  // namespace
}  // namespace qvhost::test
