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

struct NlsTest : testing::Test {
    RunningHost host;
    QVNLSh nls = host.handle->nls;
};

TEST_F(NlsTest, OneEncodingHasOneIdUnderAllItsNamesInAnyCase) {
    const QVCEI latin1 = host.encoding("ISO-8859-1");
    EXPECT_TRUE(latin1 > 1000 && host.encoding("iso_8859-1:1987") == latin1);
    EXPECT_NE(host.encoding("ISO-8859-15"), latin1);
    EXPECT_EQ(host.encoding("Utf_8"), kUtf8);
    // Several bytes; not ASCII; ASCII's controls in other places; a name with an option.
    for (std::string none : split("|no such|UTF-16|GB18030|ibm-37|ibm-437|windows-1252,swaplfnl")) {
        EXPECT_EQ(host.encoding(none), 0) << none;
    }
    EXPECT_EQ(host.encoding(std::string(100, 'x')), 0);
}

// ICU itself is the judge of every byte of every page that it can offer.
TEST_F(NlsTest, EveryPageIsReadAsIcuReadsIt) {
    int pages = 0;
    for (int32_t i = 0; const char* name = ucnv_getAvailableName(i); ++i) {
        const CodePage* page = codePage(host.encoding(name));
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
            EXPECT_EQ(character.value_or(0xFFFD), icu[0]) << name << " " << value;
            if (character) {  // its own byte where there is no way back
                const char expected = back[0] == '\x1A' ? byte : back[0];
                EXPECT_EQ(page->byte(*character), static_cast<uint8_t>(expected)) << name << value;
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
    const QVCEI cp1252 = host.encoding("cp1252");
    const QVCEI greek = host.encoding("ISO-8859-7");
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
        {"to UTF-8, exact room", kUcs4, kUtf8, wide, 26, QV_OK, utf8},
        {"one unit short", kUcs4, kUtf8, wide, 25, QV_TRUNCATED, ""},
        {"from UTF-8, exact room", kUtf8, kUcs4, utf8, 10, QV_OK, wide},
        {"one character short", kUtf8, kUcs4, utf8, 9, QV_TRUNCATED, ""},
        {"not UTF-8", kUtf8, kUcs4, "\x80", 9, QV_UNMAPPABLE, ""},
        {"surrogate", kUcs4, kUcs4, raw({U"\xDFFF", 1}), 9, QV_UNMAPPABLE, ""},
        {"past the last", kUcs4, kUcs4, raw({U"\x110000", 1}), 9, QV_UNMAPPABLE, ""},
        {"not in the page", kUcs4, cp1252, raw(U"a\u03B1"), 9, QV_UNMAPPABLE, ""},
        {"unassigned byte", greek, kUcs4, "\xD2", 9, QV_UNMAPPABLE, ""},
        {"between pages", cp1252, greek, "a\x80", 2, QV_OK, "a\xA4"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        QVTranscoderh t = nls->newTranscoder(nls, c.from, c.to, nullptr);
        const auto unit = [](QVCEI cei) { return cei == kUcs4 ? 4 : 1; };
        std::string out(static_cast<std::size_t>(c.room * unit(c.to)), '?');
        QVStrSize length = -1;
        EXPECT_QV(c.status, t->convert(t, c.in.data(), lengthOf(c.in) / unit(c.from), out.data(),
                                       c.room, &length));
        EXPECT_EQ(length, c.status == QV_OK ? c.room : -1);
        EXPECT_EQ(out.substr(0, c.out.size()), c.out);
    }
}

TEST_F(NlsTest, StringServicesSearchAndCompareBytesOfADocumentEncoding) {
    QVStringServiceh s = nullptr;
    EXPECT_TRUE(nls->newTranscoder(nls, 999, kUtf8, nullptr) == nullptr &&
                nls->newTranscoder(nls, kUcs4, 999, nullptr) == nullptr &&
                nls->newTranscoder(nls, kUcs4, kUtf8, nullptr) != nullptr);
    EXPECT_QV(QV_UNSUPPORTED, nls->newStringService(nls, kUcs4, nullptr, &s));
    ASSERT_QV_OK(nls->newStringService(nls, host.encoding("latin1"), nullptr, &s));
    EXPECT_EQ(host.leftovers(), "transcoder UTF-32 to UTF-8;strings ISO-8859-1;");
    EXPECT_EQ(s->index(s, ",MAP,PATH,", 10, ",PATH,", 6, 0), 4);
    EXPECT_EQ(s->index(s, ",MAP", 4, ",MAP,", 5, 0), -1);
    EXPECT_TRUE(s->equal(s, "a\0b", 3, "a\0b", 3, 0) && !s->equal(s, "a\0b", 3, "a\0c", 3, 0));
    QVStrSize used = -1;
    double real = 5;  // Kept: a text that is no number stores 0.
    EXPECT_TRUE(s->toDouble(s, "2.5,", 3, &real, &used) == QV_OK && real == 2.5 && used == 3);
    EXPECT_TRUE(s->toDouble(s, "2.5,", 4, &real, &used) == QV_NOTNUM && real == 0 && used == 0);
}

TEST_F(NlsTest, UpperCasesTheAsciiLettersOnlyAndFormatsIntoTheRoomThereIs) {
    std::string text = "`az{@AZ[\xE1\0a"s;
    nls->upper8(nls, text.data(), lengthOf(text));
    EXPECT_EQ(text, "`AZ{@AZ[\xE1\0A"s);
    for (QVStrSize room = 0; room <= 7; ++room) {
        std::u32string out(7, U'?');
        QVStrSize length = -1;
        EXPECT_QV(room >= 6 ? QV_OK : QV_TRUNCATED,
                  nls->format(nls, out.data(), room, &length, U"%.*hs%ld", 2, "abc", -42L));
        EXPECT_EQ(length, std::clamp<QVStrSize>(room - 1, 0, 5));
        const auto made = static_cast<std::size_t>(length);
        EXPECT_EQ(out.substr(0, made + 1), U"ab-42"s.substr(0, made) + (room == 0 ? U'?' : U'\0'));
    }
}

}  // namespace
}  // namespace qvhost::test
