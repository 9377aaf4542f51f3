// The module "qvejson" as a host loads it: its parsers, their limits, encodings and memory.
#include "tests/host/host_fixture.h"
#include "tests/json/event_log.h"

#include <gtest/gtest.h>

namespace jmap::test {
namespace {

using qvhost::test::destroy;

// The module and what it makes, ended in order.
struct JsonModule {
    explicit JsonModule(uint64_t maxDepth = 0)
        : host(nullptr, nullptr, maxDepth), json(reinterpret_cast<QVJSON*>(host.load(U"qvejson"))) {
        parms.textCei = parms.callbackCei = U_UTF8_CE;
        parms.flags = JSN_PARSER_FLAGS;
        parms.callbacks = &log.cb;
        parms.desc = "a parser";
        parms.descLen = 8;
    }
    ~JsonModule() { (void)destroy(json); }
    JSNParserh parser() { return json->createParser(json, &parms); }

    // Parses in a parser of its own; gives the status.
    QVStatus parse(std::string_view text) {
        JSNParserh made = parser();
        const auto length = static_cast<QVStrSize>(text.size());
        const QVStatus status = made->parse(made, text.data(), length, 1);
        EXPECT_EQ(QV_OK, destroy(made));
        return status;
    }

    qvhost::test::RunningHost host;
    QVJSON* json;
    EventLog log;
    JSNParserParms parms = {};
};

TEST(JsonModule, TakesTheDepthLimitFromItsHost) {
    JsonModule limited(2);
    EXPECT_EQ(QV_OK, limited.parse("[[]]"));
    EXPECT_EQ(QV_JSON_DEPTH, limited.parse("[[[]]]"));
    EXPECT_EQ(QV_EOF, JsonModule().parse(std::string(100000, '[')));
}

TEST(JsonModule, ListsItsParsersWithTheHost) {
    JsonModule module;
    JSNParserh parser = module.parser();
    EXPECT_EQ("module qvejson;parser a parser;", module.host.leftovers());
    EXPECT_EQ(QV_OK, destroy(parser));
    EXPECT_EQ("module qvejson;", module.host.leftovers());
}

TEST(JsonModule, RefusesParametersThatItCannotServe) {
    JsonModule module;
    EXPECT_EQ(nullptr, module.json->createParser(module.json, nullptr));
    JSNParserParms wrong[] = {module.parms, module.parms, module.parms};
    wrong[0].callbackCei = U_L_UCS4_CE;
    wrong[1].textCei = wrong[1].callbackCei = U_L_UCS4_CE;
    wrong[2].callbacks = nullptr;
    for (const JSNParserParms& parms : wrong) {
        EXPECT_EQ(nullptr, module.json->createParser(module.json, &parms));
    }
}

// In a code page every byte above ASCII is text, and escapes become its bytes.
TEST(JsonModule, DecodesEscapesIntoTheCodePage) {
    JsonModule module;
    QVNLSh nls = module.host.handle->nls;
    module.parms.textCei = module.parms.callbackCei = nls->encodingId(nls, "windows-1252", 12);
    EXPECT_EQ(QV_JSON_UNMAPPABLE, module.parse(R"(["\u20ac","\u65e5"])"));
    EXPECT_EQ("[ \"<80>\" ", module.log.events);
    const struct {
        std::string_view text;
        std::string_view result;
    } cases[] = {
        {"[\"\x80\xE9\xFF\xC3\"]", "QV_OK 1:9 [ \"<80><E9><FF><C3>\" ] "},
        {R"({"\u00fc":"\u0041\u0000\u20ac"})", R"(QV_OK 1:32 { name "<FC>" "A<00><80>" } )"},
        {"[\"\x1F\"]", "QV_JSON_CONTROL 1:3 [ "},
        {R"(["ab\ud83d\ude00"])", "QV_JSON_UNMAPPABLE 1:5 [ "},
        {"[\xA0]", "QV_JSON_VALUE 1:2 [ "},
        {"\xEF\xBB\xBF[]", "QV_JSON_BOM 1:1 "},
    };
    for (const auto& c : cases) {
        for (const std::size_t size : {0, 1, 3}) {
            const ParseOptions options = {.encoding = module.parms.textCei};
            EXPECT_EQ(c.result, show(parseIn(c.text, size, options))) << "buffers of " << size;
        }
    }
}

// With a pool for its memory a parser survives its end: the status is there, and stays.
TEST(JsonModule, TellsThatMemoryEnded) {
    JsonModule module;
    module.parms.pool = module.host.pool();
    const std::string deep = std::string(1000, '[') + "\"\\n" + std::string(5000, 'x') + "\"";
    const auto length = static_cast<QVStrSize>(deep.size());
    for (const uint64_t failing : {1, 2, 3, 4}) {  // the containers once, the text twice, none
        JSNParserh parser = module.parser();
        qvPortableFailAllocation(module.host.handle, failing, 0);
        const QVStatus expected = failing == 4 ? QV_EOF : QV_NOMEM;
        EXPECT_EQ(expected, parser->parse(parser, deep.data(), length, 0)) << failing;
        qvPortableFailAllocation(module.host.handle, 0, 0);
        EXPECT_EQ(expected, parser->parse(parser, "", 0, 1));
        EXPECT_EQ(QV_OK, destroy(parser));
    }
    EXPECT_EQ(QV_OK, destroy(module.parms.pool));
}

}  // namespace
}  // namespace jmap::test
