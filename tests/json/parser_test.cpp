// The push parser: what it accepts, each mistake with its place, and that no cut of the document
// into buffers changes anything.
#include "tests/host/host_fixture.h"
#include "tests/json/event_log.h"

#include <gtest/gtest.h>

#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace jmap::test {
namespace {

using namespace std::string_literals;
using qvhost::ScanKernel;

constexpr ScanKernel kKernels[] = {ScanKernel::BEST, ScanKernel::SSE2, ScanKernel::PORTABLE};

// Parses the document whole, cut at every place, in buffers of 1, 2, 3, 7 and 65 bytes, by every
// kernel: all must agree.  Returns what they say.
std::string parseEveryWay(std::string_view text, ParseOptions options = {}) {
    const std::string whole = parseIn(text, 0, options);
    for (const ScanKernel kernel : kKernels) {
        options.kernel = kernel;
        SCOPED_TRACE(static_cast<int>(kernel));
        for (const std::size_t size : {0, 1, 2, 3, 7, 65}) {
            EXPECT_EQ(whole, parseIn(text, size, options)) << "buffers of " << size;
        }
        for (std::size_t at = 0; at <= text.size(); ++at) {
            EXPECT_EQ(whole, parseParts(text, at, text.npos, options)) << "cut at " << at;
        }
    }
    return whole;
}

struct Document {
    const char* name;
    std::string_view text;
    std::string_view result;  // status, line:column, events
};

constexpr Document kDocuments[] = {
    {"empty containers", "[{},[ ]] ", "QV_OK 1:10 [ { } [ ] ] "},
    {"white space everywhere", "\r\n{\t\"a\" : [ 1 , 2 ] ,\n \"b\":{ } } \n",
     R"(QV_OK 4:1 { name "a" [ int 1 int 2 ] name "b" { } } )"},
    {"nesting, words", R"([[[true]],{"a":[{},false,null]}])",
     R"(QV_OK 1:33 [ [ [ true ] ] { name "a" [ { } false null ] } ] )"},
    {"duplicate and empty names", R"({"":"","":2})", R"(QV_OK 1:13 { name "" "" name "" int 2 } )"},
    {"integers", "[0,-0,-12,900719925474099312345]",
     "QV_OK 1:33 [ int 0 int -0 int -12 int 900719925474099312345 ] "},
    {"reals", "[0.5,1e5,1E+5,2e-07,0e0,12345678901234.5,-0.12345678901234567]",
     "QV_OK 1:63 [ real 0.5 real 1e5 real 1E+5 real 2e-07 real 0e0 "
     "real 12345678901234.5 real -0.12345678901234567 ] "},
    {"top-level number", " 12 ", "QV_OK 1:5 int 12 "},
    {"top-level number at the end", "-1.5e3", "QV_OK 1:7 real -1.5e3 "},
    {"short escapes", R"(["\"\\\/\b\f\n\r\t"])", R"(QV_OK 1:21 [ ""\/<08><0C><0A><0D><09>" ] )"},
    {"escaped code points", R"({"\u0000\u0002":"\u0041\u00e9\u20AC\uD83D\uDE00"})",
     "QV_OK 1:50 { name \"<00><02>\" \"A<C3><A9><E2><82><AC><F0><9F><98><80>\" } "},
    {"UTF-8 of every length, delete is no control",
     "[\"\x7F\xC2\x80\xED\x9F\xBF\xF4\x8F\xBF\xBF\"]",
     "QV_OK 1:15 [ \"<7F><C2><80><ED><9F><BF><F4><8F><BF><BF>\" ] "},

    {"byte outside ASCII where a value is due", "[\xC3\xA9]", "QV_JSON_VALUE 1:2 [ "},
    {"trailing comma in an object", "{\"a\":1,}", "QV_JSON_NAME 1:8 { name \"a\" int 1 "},
    {"no colon", "{\"a\" 1}", "QV_JSON_COLON 1:6 { name \"a\" "},
    {"no comma in an object", R"({"":1 "b":2})", R"(QV_JSON_OBJECT_NEXT 1:7 { name "" int 1 )"},
    {"no comma in an array", "[1 2]", "QV_JSON_ARRAY_NEXT 1:4 [ int 1 "},
    {"word that goes wrong inside", "{\"a\":falsy}", "QV_JSON_LITERAL 1:10 { name \"a\" "},
    {"leading zero after the sign", "[-00.5]", "QV_JSON_LEADING_ZERO 1:4 [ "},
    {"sign alone", "[-]", "QV_JSON_DIGIT 1:3 [ "},
    {"last control character in a name", "{\"\x1F\":1}", "QV_JSON_CONTROL 1:3 { "},
    {"unknown escape", R"(["ab\x"])", "QV_JSON_ESCAPE 1:6 [ "},
    {"no hexadecimal digit", R"(["\u12g4"])", "QV_JSON_HEX 1:7 [ "},
    {"high surrogate before another escape", R"(["\uDBFF\n"])", "QV_JSON_SURROGATE 1:3 [ "},
    {"high surrogate before a character", R"(["\ud800\u0041"])", "QV_JSON_SURROGATE 1:3 [ "},
    {"low surrogate alone", R"(["x\udc00"])", "QV_JSON_SURROGATE 1:4 [ "},
    {"overlong sequence", "[\"ab\xE0\x9F\xBF\"]", "QV_JSON_UTF8 1:5 [ "},
    {"byte that begins nothing", "[\"\xC3\xA9\xFF\"]", "QV_JSON_UTF8 1:5 [ "},
    {"sequence cut by the quote, after an escape", "[\"\\n\xE2\x82\"]", "QV_JSON_UTF8 1:5 [ "},
    {"second value", "{} {}", "QV_JSON_TRAILING 1:4 { } "},
    {"comment after the document", "[]\n// end", "QV_JSON_TRAILING 2:1 [ ] "},
    {"byte order mark", "\xEF\xBB\xBF{}", "QV_JSON_BOM 1:1 "},
    {"half a byte order mark", "\xEF\xBB{}", "QV_JSON_VALUE 1:1 "},
    {"byte order mark after a blank", " \xEF\xBB\xBF{}", "QV_JSON_BOM 1:2 "},
    {"comment before the document", "// x\n{}", "QV_JSON_COMMENT 1:1 "},
    {"comment before a name", "{ /* x */ \"a\":1}", "QV_JSON_COMMENT 1:3 { "},
    {"comment after a value", "[1,\n 2 // x\n]", "QV_JSON_COMMENT 2:4 [ int 1 int 2 "},
    {"carriage returns end no line", "[1,\r\n\r 2,\n\n  ?]", "QV_JSON_VALUE 4:3 [ int 1 int 2 "},

    {"open object", "{\"a\":{\n\"b\"", R"(QV_EOF 2:4 { name "a" { name "b" )"},
    {"open surrogate pair", "[\"\\ud83d", "QV_EOF 1:9 [ "},
    {"open sequence", "[\"\xE2\x82", "QV_EOF 1:5 [ "},
    {"half a byte order mark at the end", "\xEF\xBB", "QV_EOF 1:3 "},
};

// One value a line: the elements of one array.
constexpr Document kLines[] = {
    {"nothing", "", "QV_OK 1:1 [ ] "},
    {"blank lines", " \n\r\n\t", "QV_OK 3:2 [ ] "},
    {"values of every kind", "{\"a\": [1]}\n12\n[ ]\n\"x\"\nnull\n-1",
     R"(QV_OK 6:3 [ { name "a" [ int 1 ] } int 12 [ ] "x" null int -1 ] )"},
    {"blank lines and white space around", "\n 1 \r\n\n\n\t[2]\t\n\n",
     "QV_OK 7:1 [ int 1 [ int 2 ] ] "},
    {"two values in a line", "[1]\n[2] [3]", "QV_JSON_LINE_REST 2:5 [ [ int 1 ] [ int 2 ] "},
    {"comma after a value", "1,\n2", "QV_JSON_LINE_REST 1:2 [ int 1 "},
    {"bracket after a value", "{}]", "QV_JSON_LINE_REST 1:3 [ { } "},
    {"bracket alone", "1\n]", "QV_JSON_VALUE 2:1 [ int 1 "},
    {"member over the line end", "{\"a\":\n1}", "QV_JSON_LINE_END 1:6 [ { name \"a\" "},
    {"name over it", "{\"a\"\n:1}", "QV_JSON_LINE_END 1:5 [ { name \"a\" "},
    {"object over it", "{ \n", "QV_JSON_LINE_END 1:3 [ { "},
    {"array over it", "1\n[2\n,3]", "QV_JSON_LINE_END 2:3 [ int 1 [ int 2 "},
    {"element over it", "[1,\r\n2]", "QV_JSON_LINE_END 1:5 [ [ int 1 "},
    {"string over it", "[\"x\n\"]", "QV_JSON_CONTROL 1:4 [ [ "},
    {"text ends in a value", "1\n[2", "QV_EOF 2:3 [ int 1 [ "},
    {"text ends in a word", "nul", "QV_EOF 1:4 [ "},
    {"byte order mark", "\xEF\xBB\xBF{}", "QV_JSON_BOM 1:1 [ "},
    {"byte order mark in a later line", "1\n\xEF\xBB\xBF{}", "QV_JSON_BOM 2:1 [ int 1 "},
};

// Values in any lines: likewise.
constexpr Document kSequence[] = {
    {"nothing", "\n", "QV_OK 2:1 [ ] "},
    {"values with nothing between", R"({"a":[1]}[2]"x""y"true{}1"z"null)",
     R"(QV_OK 1:33 [ { name "a" [ int 1 ] } [ int 2 ] "x" "y" true { } int 1 "z" null ] )"},
    {"values of several lines", "{\n\"a\":\n1\n}\n[\n]\n2 3\n",
     R"(QV_OK 8:1 [ { name "a" int 1 } [ ] int 2 int 3 ] )"},
    {"comma after a value", "1,\n2", "QV_JSON_VALUE 1:2 [ int 1 "},
    {"bracket after a value", "{}\n]", "QV_JSON_VALUE 2:1 [ { } "},
    {"word that goes on", "truex", "QV_JSON_LITERAL 1:5 [ true "},
    {"text ends in a value", "1\n[2", "QV_EOF 2:3 [ int 1 [ "},
    {"byte order mark later", "{}\xEF\xBB\xBF{}", "QV_JSON_BOM 1:3 [ { } "},
};

TEST(Parser, TellsTheEventsOrTheMistakeAndItsPlaceHoweverTheDocumentIsCut) {
    const struct {
        std::span<const Document> documents;
        ParseOptions options;
    } kinds[] = {{kDocuments, {}}, {kLines, {.lines = true}}, {kSequence, {.sequence = true}}};
    for (const auto& [documents, options] : kinds) {
        for (const Document& c : documents) {
            SCOPED_TRACE(c.name);
            EXPECT_EQ(c.result, parseEveryWay(c.text, options));
        }
    }
}

// Strings, blanks and numbers of all lengths around the widths that are scanned at once, by every
// kernel.  Buffers of one byte leave nothing to scan.
TEST(Parser, CutsChangeNothingAtAnyLength) {
    std::mt19937 random(2);
    for (const char* filler : {"a", "\xC3\xA9", "\xE6\x97\xA5", "\\n", "\\u65e5"}) {
        std::string text;
        for (std::size_t length = 0; length < 132; ++length, text += filler) {
            std::string blanks(length, ' ');
            for (std::size_t i = 0; length % 3 != 0 && i < length; ++i) {
                blanks[i] = " \t\r\n"[random() % 4];
            }
            std::string document = "{\"" + text + "\":" + blanks + "[";
            for (std::size_t i = 0; i < 8; ++i) {  // one at each place in a word
                document += std::string((14 - text.size() % 8) % 8, ' ') + "\"" + text + "\",";
            }
            for (std::size_t i = 0; i < 8; ++i) {  // names and values end near and far
                document += "{\"" + std::string(random() % 64, 'n') + "\":\"" + text + "\"},";
            }
            for (const char* after : {",", "e5,", "E-7 ,", "\n,"}) {
                document += std::string(1 + random() % 40, '1');
                document += (random() % 4 == 0 ? "" : "." + std::string(1 + random() % 40, '2'));
                document += after;
            }
            document += blanks + "1]" + blanks + "}";
            const std::string whole = parseIn(document, 1);
            ASSERT_TRUE(whole.starts_with("QV_OK")) << document;
            for (const ScanKernel kernel : kKernels) {
                for (const std::size_t size : {0, 13, 64}) {
                    ASSERT_EQ(whole, parseIn(document, size, {.kernel = kernel})) << document;
                }
            }
        }
    }
}

// Every byte alone among letters, and strings in which neighbours differ, so that no carry between
// them goes unseen; in UTF-8, and in a code page, whose bytes above ASCII are text.
TEST(Parser, EveryKernelKnowsTheBytesThatStopText) {
    constexpr std::string_view kParts[] = {"\\\"", "\\\\", " ",    "!",        "#",
                                           "[",    "]",    "\x7F", "\xC2\x80", "x"};
    const qvhost::test::RunningHost host;
    std::mt19937 random(1);
    for (std::size_t round = 0; round < 4096; ++round) {
        std::string text(130, 'x');
        text[round * 7 % 130] = static_cast<char>(round);
        for (std::size_t at = 0; round >= 1024 && at < text.size();) {
            const std::string_view part = kParts[random() % std::size(kParts)];
            text.replace(at, part.size(), part);
            at += part.size();
        }
        const std::string document = "[\"" + text + "\"]";
        for (const QVCEI encoding : {QVCEI{U_UTF8_CE}, host.encoding("latin1")}) {
            const std::string whole = parseIn(document, 1, {.encoding = encoding});
            for (const ScanKernel kernel : kKernels) {
                ASSERT_EQ(whole, parseIn(document, 0, {.kernel = kernel, .encoding = encoding}));
            }
        }
    }
}

// A failing callback ends the parse after its token, whichever event it is; until then the parser
// tells where that one began.
TEST(Parser, PassesTheStatusOfACallbackOnAndTellsWhereItsEventBegan) {
    constexpr std::string_view kText = "{\"a\\n\":\n [-1, 12.5,\"\\u0041\",\"x\"\n,true,null,{}]}";
    const std::vector<std::string> begins =
        split("1:1|1:2|2:2|2:3|2:7|2:12|2:21|3:2|3:7|3:12|3:13|3:14|3:15");
    const std::vector<std::string> ends =
        split("1:2|1:7|2:3|2:5|2:11|2:20|2:24|3:6|3:11|3:13|3:14|3:15|3:16");
    constexpr int64_t kLineBegins[] = {0, 8, 32};
    std::string places;
    for (uint64_t n = 1; n <= begins.size(); ++n) {
        SCOPED_TRACE(n);
        const ParseOptions options = {.failAt = n, .failStatus = QV_TRUNCATED};
        const std::string told = parseEveryWay(kText, options);
        EXPECT_EQ(0U, told.find("QV_TRUNCATED " + ends[n - 1] + " ")) << told;
        places += begins[n - 1] + " ";
        for (std::size_t size = 1; size <= kText.size(); ++size) {
            LoggedParser parser(options);
            for (std::size_t at = 0; parser.feed(std::string(kText.substr(at, size))) == QV_EOF;) {
                at += size;
            }
            const JSNParserh table = parser.log.parser;
            EXPECT_EQ(parser.log.places, places) << size;
            EXPECT_EQ(std::to_string(table->line(table)) + ":" +
                          std::to_string(table->eventColumn(table)),
                      begins[n - 1])
                << size;
            const int64_t before = kLineBegins[table->line(table) - 1] - 1;
            EXPECT_EQ(table->eventOffset(table), before + table->eventColumn(table)) << size;
            EXPECT_EQ(table->offset(table), before + table->column(table)) << size;
        }
    }
    // Also when its status is that of an open document, the parse is over.
    LoggedParser over({.failAt = 2, .failStatus = QV_EOF});
    EXPECT_EQ(QV_EOF, over.feed("[1,"));
    EXPECT_EQ(QV_EOF, over.feed("2]", true));
    EXPECT_EQ("QV_EOF 1:3 [ int 1 ", over.result());
    // So does the start of the array around lines.
    for (const char* text : {"", "1"}) {
        EXPECT_EQ("QV_TRUNCATED 1:1 [ ",
                  parseEveryWay(text, {.failAt = 1, .failStatus = QV_TRUNCATED, .lines = true}));
    }
}

// The answer to each buffer ("." ends the document), and what the parser tells at the end.
TEST(Parser, AnswersBufferByBuffer) {
    const struct {
        std::vector<std::string_view> buffers;
        std::string expected;
        bool lines = false;
    } cases[] = {
        {{"", "{", "}", "", " \n\t", "."}, "QV_EOF QV_EOF QV_OK QV_OK QV_OK QV_OK QV_OK 2:2 { } "},
        {{"{}", "\n 1"}, "QV_OK QV_JSON_TRAILING QV_JSON_TRAILING 2:2 { } "},
        {{"12", "34", ".", "."}, "QV_EOF QV_EOF QV_OK QV_OK QV_OK 1:5 int 1234 "},
        {{{nullptr, 3}, {nullptr, 0}, "[]"}, "QV_BADPARMS QV_EOF QV_OK QV_OK 1:3 [ ] "},
        {{"[,", "[]", "."}, "QV_JSON_VALUE QV_JSON_VALUE QV_JSON_VALUE QV_JSON_VALUE 1:2 [ "},
        // Until the text ends, more lines may follow; when it has ended, none.
        {{"1\n", "2", ".", "3"}, "QV_EOF QV_EOF QV_OK QV_OK QV_OK 2:2 [ int 1 int 2 ] ", true},
    };
    for (const auto& [buffers, expected, lines] : cases) {
        LoggedParser parser({.lines = lines});
        std::string answers;
        for (const std::string_view buffer : buffers) {
            const bool done = buffer.data() != nullptr && buffer == ".";
            answers += qvStatusName(parser.feed(done ? "" : buffer, done)) + " "s;
        }
        EXPECT_EQ(expected, answers + parser.result());
    }
}

// A caller that converts a text tells in which columns its tokens begin.  It is asked while it has
// the buffer.
TEST(Parser, AsksForColumnsByOffset) {
    constexpr std::string_view kText = "[12,\n \"a\\n\",[true]]";
    struct Buffer {
        int64_t begin, end;
        bool asked = true;  // for nothing else
    };
    for (std::size_t cut = 0; cut <= kText.size(); ++cut) {
        LoggedParser parser;
        Buffer buffer = {0, static_cast<int64_t>(cut)};
        const JSNTextRules rules = {.lines = 0,
                                    .columnOf =
                                        [](void* arg, int64_t offset) {
                                            auto& b = *static_cast<Buffer*>(arg);
                                            b.asked &= offset >= b.begin && offset < b.end;
                                            return offset * 10;
                                        },
                                    .arg = &buffer,
                                    .sequence = 0,
                                    .maxDepth = 0};
        parser.log.parser->setRules(parser.log.parser, &rules);
        (void)parser.feed(kText.substr(0, cut));
        buffer = {buffer.end, kText.size(), buffer.asked};
        ASSERT_EQ(QV_OK, parser.feed(kText.substr(cut), true));
        EXPECT_EQ("1:0 1:10 2:60 2:120 2:130 2:170 2:180 ", parser.log.places) << cut;
        EXPECT_TRUE(buffer.asked) << cut;
    }
}

TEST(Parser, LimitsTheDepthOnlyWhenAsked) {
    // The host's limit, or that of the text, which counts when there are both.
    const auto limits = {&ParseOptions::maxDepth, &ParseOptions::rulesDepth};
    for (const auto limit : limits) {
        ParseOptions options = {.maxDepth = 2};
        options.*limit = 3;
        EXPECT_EQ("QV_OK 1:15 [ [ ] { name \"a\" [ ] } ] ",
                  parseEveryWay(R"([[],{"a":[]} ])", options));
        EXPECT_EQ("QV_JSON_DEPTH 1:8 [ { name \"a\" [ ", parseEveryWay(R"([{"a":[[]]}])", options));
        EXPECT_EQ("QV_JSON_DEPTH 1:4 [ [ [ ", parseEveryWay("[[[{", options));
        for (const std::size_t most : {1, 63, 64, 65, 128, 1000}) {
            options.*limit = most;
            const std::string whole = std::string(most, '[') + std::string(most, ']');
            EXPECT_TRUE(parseIn(whole, 0, options).starts_with("QV_OK")) << most;
            EXPECT_TRUE(parseIn("[" + whole + "]", 0, options)
                            .starts_with("QV_JSON_DEPTH 1:" + std::to_string(most + 1) + " "))
                << most;
        }
    }
}

// A container ends at each depth on the way down, so that no bound of the stack goes unseen.
TEST(Parser, TakesNestingNumbersAndStringsWithoutALimit) {
    std::string text;
    std::string closers;
    for (std::size_t i = 0; i < 200'000; ++i) {
        text += i % 3 == 0 ? "{\"\":[],\"\":" : "[{},";
        closers += i % 3 == 1 ? "}" : "]";  // the 200,000th is the second of its three
    }
    text += "0" + closers;
    const std::string whole = parseIn(text, 0);
    EXPECT_TRUE(whole.starts_with("QV_OK ") && whole == parseIn(text, 4096));
    text[text.size() - 2] ^= ']' ^ '}';
    EXPECT_TRUE(parseIn(text, 0).starts_with("QV_JSON_ARRAY_NEXT "));
    const std::string digits(300'000, '7');
    const std::string words(500'000, 'w');
    for (const std::size_t size : {0, 100, 65536}) {
        EXPECT_TRUE(parseIn("{\"" + words + "\":[1e" + digits + ",\"\\t" + words + "\"]}", size)
                        .ends_with(" { name \"" + words + "\" [ real 1e" + digits + " \"<09>" +
                                   words + "\" ] } "))
            << size;
    }
}

TEST(Parser, OnlyReadsTheBufferAndHandsPlainStringsOverWithoutACopy) {
    static const std::string text = R"({"a\n":["b\u0041",-1.5,"plain"]})";
    const std::string copy(text.data(), text.size());
    LoggedParser parser;
    parser.log.cb.string = [](JSNParseCB* c, const JSNChar* token, QVStrSize, int32_t) {
        const auto* at = reinterpret_cast<const char*>(token);
        const bool inside = at >= text.data() && at < text.data() + text.size();
        return EventLog::of(c).add(inside ? "in the buffer " : "copy ");
    };
    EXPECT_EQ(QV_OK, parser.feed(text, true));
    EXPECT_EQ(copy, text);
    EXPECT_EQ("{ copy [ copy real -1.5 in the buffer ] } ", parser.log.events);
}

}  // namespace
}  // namespace jmap::test
