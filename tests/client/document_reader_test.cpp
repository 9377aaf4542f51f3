// Documents from memory, files and functions: what goes wrong has the same place however the bytes
// come.
#include "client/input/document_reader.h"

#include "tests/testkit/random_document.h"
#include "tests/testkit/scratch_folder.h"

#include <gtest/gtest.h>
#include <unicode/ucnv.h>
#include <zlib.h>

#include <algorithm>
#include <optional>
#include <random>

namespace {

using namespace std::string_literals;
using qvej::ByteSource;
using qvej::TextOptions;

// Bytes that come in pieces of `size`.
ByteSource inPieces(std::string_view bytes, std::size_t size, std::string name = "pieces") {
    return ByteSource::pulled(
        [bytes, size]() mutable {
            const std::string_view piece = bytes.substr(0, size);
            bytes.remove_prefix(piece.size());
            return piece;
        },
        std::move(name));
}

std::string shown(const qvej::Error& error) {
    return error.file() + ":" + std::to_string(error.line()) + ":" +
           std::to_string(error.column()) + " +" + std::to_string(error.offset()) + " " +
           qvStatusName(error.status()) + ": " + error.what() + "\n" + error.excerpt();
}

// The mistake of a text, or "".
std::string mistakeOf(qvej::Engine& engine, ByteSource source, const TextOptions& options = {}) {
    try {
        qvej::DocumentReader reader(std::move(source), options);
        qvej::Document document(engine, reader.documentOptions());
        reader.read(document);
    } catch (const qvej::Error& error) {
        return shown(error);
    }
    return "";
}

// A mistake without its excerpt, which ends with the piece.
std::string placeOf(const std::string& mistake) {
    return mistake.substr(0, mistake.find('\n'));
}

std::string inEncoding(const std::string& utf8, const char* encoding) {
    std::string text(utf8.size() * 4 + 16, '\0');
    UErrorCode status = U_ZERO_ERROR;
    const int32_t size =
        ucnv_convert(encoding, "UTF-8", text.data(), static_cast<int32_t>(text.size()), utf8.data(),
                     static_cast<int32_t>(utf8.size()), &status);
    EXPECT_TRUE(U_SUCCESS(status)) << encoding;
    text.resize(static_cast<std::size_t>(size));
    return text;
}

std::string gzipped(const std::string& text) {
    z_stream stream = {};
    EXPECT_EQ(Z_OK, deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY));
    std::string packed(text.size() + 100, '\0');
    std::string in = text;
    stream.next_in = reinterpret_cast<Bytef*>(in.data());
    stream.avail_in = static_cast<uInt>(in.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(Z_STREAM_END, deflate(&stream, Z_FINISH));
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

TEST(DocumentReader, PlacesAMistakeTheSameInEverySplit) {
    const TextOptions any;
    const TextOptions lines = {.lines = true};
    const TextOptions latin = {.encoding = "ISO-8859-1"};
    const struct {
        std::string bytes;
        TextOptions options;
        std::string mistake;
    } cases[] = {
        {"{\n\"a\" 1}", any,
         "2:5 +6 QV_JSON_COLON: ':' was expected after the member name\n    \"a\" 1}\n        ^\n"},
        {"\xEF\xBB\xBF[x", any,
         "1:2 +4 QV_JSON_LITERAL: not a JSON word: only true, false and null stand unquoted\n"
         "    [x\n     ^\n"},
        {"[1,\n", any,
         "2:1 +4 JMAP_INCOMPLETE: the document ends before a complete object or array\n"
         "    [1,\n       ^\n"},
        {"", any, "1:1 +0 JMAP_INCOMPLETE: the document ends before a complete object or array\n"},
        {" \n \"text\" \n", any,
         "2:2 +3 JMAP_INCOMPLETE: a document must be an object or an array\n"
         "     \"text\" \n     ^\n"},
        {" 12 ", any,
         "1:2 +1 JMAP_INCOMPLETE: a document must be an object or an array\n     12 \n     ^\n"},
        {"true\n\n", any,
         "1:1 +0 JMAP_INCOMPLETE: a document must be an object or an array\n    true\n    ^\n"},
        {"[\"\\ud834x\"]", any,
         "1:3 +2 QV_JSON_SURROGATE: a surrogate escape without its other half\n"
         "    [\"\\ud834x\"]\n      ^\n"},
        {"{}\n[}", lines, "2:2 +4 QV_JSON_VALUE: a value was expected\n    [}\n     ^\n"},
        {"{\"\xE9\":\n\"\xE9\",}", latin,
         "2:5 +10 QV_JSON_NAME: a member name in double quotes was expected\n"
         "    \"é\",}\n        ^\n"},
        {inEncoding("\uFEFF[\"日𝄞\",\n\"𝄞\", y]", "UTF-16LE"), any,
         "2:7 +30 QV_JSON_LITERAL: not a JSON word: only true, false and null stand unquoted\n"
         "    \"𝄞\", y]\n         ^\n"},
        {inEncoding(" \"日\"", "UTF-32BE"), any,
         "1:2 +4 JMAP_INCOMPLETE: a document must be an object or an array\n     \"日\"\n     ^\n"},
        {"[\"\x93\xFA\xFF\"]",
         {.encoding = "Shift_JIS"},
         "1:5 +4 QV_JSON_UTF8: the text is not valid Shift_JIS\n    [\"日\n        ^\n"},
        {gzipped("[\n1 2]"), any,
         "2:3 +4 QV_JSON_ARRAY_NEXT: ',' or ']' was expected after the element\n"
         "    1 2]\n      ^\n"},
    };
    qvej::Engine engine;
    for (const auto& c : cases) {
        EXPECT_EQ(mistakeOf(engine, ByteSource::memory(c.bytes, "pieces"), c.options),
                  "pieces:" + c.mistake);
        for (std::size_t size = 1; size <= c.bytes.size(); ++size) {
            EXPECT_EQ(placeOf(mistakeOf(engine, inPieces(c.bytes, size), c.options)),
                      placeOf("pieces:" + c.mistake))
                << "pieces of " << size;
        }
    }
}

TEST(DocumentReader, TheNameTellsLinesAndTheBytesTheRest) {
    qvej::Engine engine;
    const std::string two = "{}\n{}";
    for (const char* name : {"a.jsonl", "dir/a.ndjson", "a.jsonl.gz", "a.ndjson.zst"}) {
        EXPECT_EQ(mistakeOf(engine, ByteSource::memory(two, name)), "") << name;
        const qvej::DocumentReader reader(ByteSource::memory(two, name), {});
        EXPECT_TRUE(reader.linesByName());
        const qvej::DocumentReader asked(ByteSource::memory(two, name), {.lines = true});
        EXPECT_FALSE(asked.linesByName());
    }
    EXPECT_NE(mistakeOf(engine, ByteSource::memory(two, "a.json")), "");

    const jmap::test::ScratchFolder folder;
    const std::string file = folder.write("packed", gzipped(inEncoding("[1]", "UTF-16BE")));
    EXPECT_EQ(mistakeOf(engine, ByteSource::file(file)), "");
    const std::string absent = folder.path / "absent";
    EXPECT_EQ(mistakeOf(engine, ByteSource::file(file), {.encoding = "none"}),
              ":0:0 +-1 QV_BADPARMS: no encoding is named 'none'\n");
    try {
        (void)ByteSource::file(absent);
        FAIL();
    } catch (const qvej::Error& error) {
        EXPECT_EQ(shown(error), absent + ":0:0 +-1 QV_IO_OPEN: No such file or directory\n");
    }

    const std::string utf16 = inEncoding("[1]", "UTF-16LE");
    const qvej::DocumentReader other(ByteSource::memory(utf16), {.encoding = "UTF-8"});
    ASSERT_NE(other.otherEncoding(), nullptr);
    EXPECT_EQ(*other.otherEncoding(), "UTF-16LE");
}

TEST(DocumentReader, TroubleWithTheSourceIsPassedOnAndHasItsName) {
    qvej::Engine engine;
    std::string packed = gzipped("[" + std::string(5000, ' '));
    packed.resize(packed.size() - 9);
    EXPECT_EQ(mistakeOf(engine, inPieces(packed, 7)),
              "pieces:0:0 +-1 QV_IO_DAMAGED: the gzip data end too soon\n");
    int calls = 0;
    const auto pull = [&]() -> std::string_view {
        if (++calls == 6) {
            throw std::logic_error("of the caller");
        }
        return "[";
    };
    EXPECT_THROW((void)mistakeOf(engine, ByteSource::pulled(pull, "mine")), std::logic_error);
}

// How many bytes of a UTF-8 text, given as a whole, the parser finds before the mistake.
std::optional<std::size_t> mistakeInUtf8(qvej::Engine& engine, const std::string& text) {
    try {
        qvej::Document document(engine);
        document.feed(text);
        document.finish();
    } catch (const qvej::Error& error) {
        return static_cast<std::size_t>(error.offset());
    }
    return std::nullopt;
}

// A document with a mistake, nearly always.
std::string brokenDocument(unsigned seed) {
    constexpr const char* kPieces[] = {"",  ",", "\"", "\n", "]",  "}",   "x",       "{", "\n\n",
                                       "~", "[", ":",  "\\", "1e", "tru", "\\ud834", " ", "\"~\""};
    std::mt19937 random(seed);
    std::string text = jmap::test::RandomDocument(seed, {"a", "~\\n", "b\\u00e9"})
                           .text(1 + static_cast<int>(seed % 6));
    for (std::size_t at = text.find(','); at != std::string::npos; at = text.find(',', at + 2)) {
        text.insert(at, random() % 3 == 0 ? "\n" : " ");
    }
    text.replace(random() % text.size(), random() % 3, kPieces[random() % std::size(kPieces)]);
    text.resize(random() % 4 == 0 ? random() % text.size() : text.size());
    for (std::size_t at = text.find('~'); at != std::string::npos; at = text.find('~')) {
        text.replace(at, 1, "é");
    }
    return text;
}

// "LINE:COLUMN +OFFSET" of what follows `before` in an encoding; a column counts `unit` bytes.
std::string placeAfter(const std::string& before, const char* encoding, std::size_t unit) {
    const std::string inLine = before.substr(before.rfind('\n') + 1);
    return std::to_string(std::count(before.begin(), before.end(), '\n') + 1) + ":" +
           std::to_string(inEncoding(inLine, encoding).size() / unit + 1) + " +" +
           std::to_string(inEncoding(before, encoding).size()) + " ";
}

TEST(DocumentReader, PlacesEveryMistakeAsTheParserDoesInAnyEncodingAndSplit) {
    const std::pair<const char*, std::size_t> encodings[] = {
        {"UTF-8", 1}, {"ISO-8859-1", 1}, {"UTF-16LE", 2}, {"UTF-16BE", 2}};
    std::mt19937 random(7);
    qvej::Engine engine;
    int mistakes = 0;
    for (unsigned seed = 0; seed < 150; ++seed) {
        const std::string text = brokenDocument(seed);
        const std::optional<std::size_t> at = mistakeInUtf8(engine, text);
        mistakes += at ? 1 : 0;
        for (const auto& [encoding, unit] : encodings) {
            SCOPED_TRACE(encoding + (": " + text));
            const std::string bytes = inEncoding(text, encoding);
            const TextOptions options = {.encoding = encoding};
            const std::string mistake = mistakeOf(engine, ByteSource::memory(bytes, "m"), options);
            EXPECT_EQ(mistake.substr(0, mistake.find_first_of("QJ")),
                      at ? "m:" + placeAfter(text.substr(0, *at), encoding, unit) : "");
            for (const std::size_t size : {1 + random() % 3, 1 + random() % 30}) {
                EXPECT_EQ(placeOf(mistakeOf(engine, inPieces(bytes, size, "m"), options)),
                          placeOf(mistake))
                    << size;
            }
        }
    }
    EXPECT_GT(mistakes, 100);
}

}  // namespace
