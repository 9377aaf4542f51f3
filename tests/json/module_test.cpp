// The module "qvejson" as a host loads it: its parsers, their limits, encodings and memory.
#include "tests/host/host_fixture.h"
#include "tests/json/event_log.h"

#include <gtest/gtest.h>

namespace jmap::test {
namespace {

using qvhost::test::destroy;

struct JsonModule {
    explicit JsonModule(uint64_t maxDepth = 0) : host(nullptr, nullptr, maxDepth) {
        parms.textCei = parms.callbackCei = U_UTF8_CE;
        parms.flags = JSN_PARSER_FLAGS;
        parms.callbacks = &log.cb;
        parms.desc = "a parser";
        parms.descLen = 8;
    }
    JSNParserh parser() { return json->createParser(json, &parms); }
    QVStatus parse(std::string_view text) {
        JSNParserh made = parser();
        return made->parse(made, text.data(), static_cast<QVStrSize>(text.size()), 1);
    }

    EventLog log;
    qvhost::test::RunningHost host;
    QVJSON* json = host.load<QVJSON>(U"qvejson");
    JSNParserParms parms = {};
};

TEST(JsonModule, TakesTheDepthLimitFromItsHost) {
    JsonModule limited(2);
    EXPECT_EQ(QV_OK, limited.parse("[[]]"));
    EXPECT_EQ(QV_JSON_DEPTH, limited.parse("[[[]]]"));
    EXPECT_EQ(QV_EOF, JsonModule().parse(std::string(100000, '[')));
}

TEST(JsonModule, ListsItsParsersWithTheHostAndRefusesParametersThatItCannotServe) {
    JsonModule module;
    JSNParserh parser = module.parser();
    EXPECT_EQ("module qvejson;parser a parser;", module.host.leftovers());
    EXPECT_EQ(QV_OK, destroy(parser));
    module.parms.callbackCei = U_L_UCS4_CE;
    EXPECT_EQ(nullptr, module.parser());
    module.parms.textCei = U_L_UCS4_CE;
    EXPECT_EQ(nullptr, module.parser());
    module.parms.textCei = module.parms.callbackCei = U_UTF8_CE;
    module.parms.callbacks = nullptr;
    EXPECT_EQ(nullptr, module.parser());
    EXPECT_EQ("module qvejson;", module.host.leftovers());
}

// In a code page every byte above ASCII is text, and escapes become its bytes.
TEST(JsonModule, DecodesEscapesIntoTheCodePage) {
    const JsonModule module;
    const ParseOptions options = {.encoding = module.host.encoding("windows-1252")};
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"[\"\x80\xE9\xFF\xC3\"]", "QV_OK 1:9 [ \"<80><E9><FF><C3>\" ] "},
        {R"({"\u00fc":"\u0041\u0000\u20ac"})", R"(QV_OK 1:32 { name "<FC>" "A<00><80>" } )"},
        {"[\"\x1F\"]", "QV_JSON_CONTROL 1:3 [ "},
        {R"(["ab\ud83d\ude00"])", "QV_JSON_UNMAPPABLE 1:5 [ "},
        {R"(["\u20ac","\u65e5"])", "QV_JSON_UNMAPPABLE 1:12 [ \"<80>\" "},
        {"[\xA0]", "QV_JSON_VALUE 1:2 [ "},
        {"\xEF\xBB\xBF[]", "QV_JSON_BOM 1:1 "},
    };
    for (const auto& [text, result] : cases) {
        for (const std::size_t size : {0, 1, 3}) {
            EXPECT_EQ(result, parseIn(text, size, options)) << "buffers of " << size;
        }
    }
}

// With a pool for its memory a parser survives its end: the status is there, and stays.
TEST(JsonModule, TellsThatMemoryEnded) {
    JsonModule module;
    module.parms.pool = module.host.pool();
    const std::string deep = std::string(1000, '[') + "\"\\n" + std::string(5000, 'x') + "\"";
    const auto length = static_cast<QVStrSize>(deep.size());
    for (const uint64_t failing : {1, 2, 3, 4, 5, 6}) {  // containers thrice, text twice, none
        JSNParserh parser = module.parser();
        qvPortableFailAllocation(module.host.handle, failing, 0);
        const QVStatus expected = failing == 6 ? QV_EOF : QV_NOMEM;
        EXPECT_EQ(expected, parser->parse(parser, deep.data(), length, 0)) << failing;
        qvPortableFailAllocation(module.host.handle, 0, 0);
        EXPECT_EQ(expected, parser->parse(parser, "", 0, 1));
        EXPECT_EQ(QV_OK, destroy(parser));
    }
    EXPECT_EQ(QV_OK, destroy(module.parms.pool));
}

}  // namespace
}  // namespace jmap::test
