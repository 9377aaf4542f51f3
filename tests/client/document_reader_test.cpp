// Documents from memory, files and functions: what goes wrong has the same place however the bytes
// come.
#include "client/input/document_reader.h"

#include "client/input/rereadable_file.h"
#include "tests/client/in_encoding.h"
#include "tests/testkit/random_document.h"
#include "tests/testkit/scratch_folder.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <sys/stat.h>
#include <thread>

namespace {

using jmap::test::inEncoding;
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

// The place and status of the mistake of a text, or "".
std::string mistakeOf(qvej::Engine& engine, ByteSource source, const TextOptions& options = {}) {
    try {
        qvej::DocumentReader reader(std::move(source), options);
        qvej::Document document(engine, reader.documentOptions());
        reader.read(document);
    } catch (const qvej::Error& error) {
        return error.file() + ":" + std::to_string(error.line()) + ":" +
               std::to_string(error.column()) + " +" + std::to_string(error.offset()) + " " +
               qvStatusName(error.status());
    }
    return "";
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
    const TextOptions shiftJis = {.encoding = "Shift_JIS"};
    const struct {
        std::string bytes;
        TextOptions options;
        std::string place;
    } cases[] = {
        {"{\n\"a\" 1}", any, "2:5 +6 QV_JSON_COLON"},
        {"\xEF\xBB\xBF[x", any, "1:2 +4 QV_JSON_LITERAL"},
        {"[1,\n", any, "2:1 +4 JMAP_INCOMPLETE"},
        {"", any, "1:1 +0 JMAP_INCOMPLETE"},
        {" \n \"text\" \n", any, "2:2 +3 JMAP_INCOMPLETE"},
        {" 12 ", any, "1:2 +1 JMAP_INCOMPLETE"},
        {"true\n\n", any, "1:1 +0 JMAP_INCOMPLETE"},
        {"[\"\\ud834x\"]", any, "1:3 +2 QV_JSON_SURROGATE"},
        {"{}\n[}", lines, "2:2 +4 QV_JSON_VALUE"},
        {"{\"\xE9\":\n\"\xE9\",}", latin, "2:5 +10 QV_JSON_NAME"},
        {inEncoding("\uFEFF[\"日𝄞\",\n\"𝄞\", y]", "UTF-16LE"), any, "2:7 +30 QV_JSON_LITERAL"},
        {inEncoding(" \"日\"", "UTF-32BE"), any, "1:2 +4 JMAP_INCOMPLETE"},
        {"[\"\x93\xFA\xFF\"]", shiftJis, "1:5 +4 QV_JSON_UTF8"},
        {gzipped("[\n1 2]"), any, "2:3 +4 QV_JSON_ARRAY_NEXT"},
    };
    qvej::Engine engine;
    for (const auto& c : cases) {
        for (std::size_t size = 1; size <= c.bytes.size() + 1; ++size) {
            EXPECT_EQ(mistakeOf(engine, inPieces(c.bytes, size), c.options), "pieces:" + c.place)
                << "pieces of " << size;
        }
    }
}

TEST(DocumentReader, TroubleOfTheSourceIsPassedOn) {
    qvej::Engine engine;
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
std::string placeAfter(const std::string& before, const std::string& encoding, std::size_t unit) {
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
                EXPECT_EQ(mistakeOf(engine, inPieces(bytes, size, "m"), options), mistake) << size;
            }
        }
    }
    EXPECT_GT(mistakes, 100);
}

// All bytes of a walk, or only its first pieces.
std::string bytesOf(ByteSource source, int pieces = -1) {
    std::string bytes;
    for (std::string_view piece = source.next(); !piece.empty(); piece = source.next()) {
        bytes += piece;
        if (--pieces == 0) {
            break;
        }
    }
    return bytes;
}

TEST(RereadableFile, EachWalkHasAllBytes) {
    const jmap::test::ScratchFolder scratch;
    const std::string folder = scratch.path;
    std::filesystem::create_directory(folder + "/copies");
    std::string text;
    for (int i = 0; text.size() < (5u << 20); ++i) {
        text += std::to_string(i) + ",";
    }
    scratch.write("text", text);
    ::setenv("TMPDIR", (folder + "/copies").c_str(), 1);
    ASSERT_EQ(::mkfifo((folder + "/pipe").c_str(), 0600), 0);
    for (const char* name : {"/text", "/pipe"}) {
        std::thread writer([&] {
            if (std::string_view(name) == "/pipe") {
                scratch.write("pipe", text);
            }
        });
        qvej::RereadableFile file(folder + name);
        const std::string begin = bytesOf(file.walk(), 2);
        EXPECT_EQ(begin, text.substr(0, begin.size())) << name;
        EXPECT_LT(begin.size(), text.size());
        EXPECT_EQ(bytesOf(file.walk()), text) << name;  // copied bytes, then further ones
        EXPECT_EQ(bytesOf(file.walk()), text) << name;
        EXPECT_TRUE(std::filesystem::is_empty(folder + "/copies"));
        EXPECT_EQ(file.walk().name(), folder + name);
        writer.join();
    }
    ::unsetenv("TMPDIR");
}

}  // namespace
