// Opening and ending a document; its options and debug keywords.
#include "testkit/open_document.h"

namespace jmap::test {
namespace {

// The keyword of each switch, in the order of the switches.
const std::string kWords[] = {"MAP",         "MAPGEN",  "MAPVAL",   "LEVEL",     "PATH",
                              "COMPRESSION", "READ",    "READINIT", "READRESET", "MEMORY",
                              "INSERTPATH",  "USERMAP", "RLMEM",    "ALLDATA"};
constexpr size_t kFirst = offsetof(JMAP_PRIVATE, debugMap);
static_assert(offsetof(JMAP_PRIVATE, debugAllData) == kFirst + std::size(kWords) - 1);

// The switches that keywords set, or those that they leave `off`.
std::string switches(FakeHost& host, const std::string& keywords, bool off = false) {
    Document document(host);
    EXPECT_QV_OK(document.init(keywords));
    std::string names;
    for (size_t i = 0; i < std::size(kWords); ++i) {
        const bool on = reinterpret_cast<const char*>(document.p())[kFirst + i] != 0;
        names += on != off ? " " + kWords[i] : "";
    }
    return names;
}

TEST(Keywords, SetAndClearSwitchesAndCountOnlyBetweenCommas) {
    LoadedHost host;
    for (const std::string& word : kWords) {
        const std::string expected = word == "READ" ? " READ READINIT" : " " + word;
        EXPECT_EQ(switches(host, "," + word + ","), expected);
        EXPECT_EQ(switches(host, ",-" + word + ",ALL,", true), expected);
    }
    constexpr const char* kCases[][2] = {
        {",LEVEL,-PARSE,", ""}, {",READ,-READINIT,", " READ"},   {",-READ,READINIT,", ""},
        {"MAP,", ""},           {",UNKNOWN,MEMORY,", " MEMORY"}, {",-ALL,", ""},
        {",MAP", ""},           {",Map,pAth,", " MAP PATH"},     {",PARSE,", " LEVEL"},
    };
    for (const auto& [keywords, expected] : kCases) {
        EXPECT_EQ(switches(host, keywords), expected) << keywords;
    }
}

TEST(JsonInit, RefusesBadOptionsBeforeAnythingIsMade) {
    LoadedHost host;
    const auto refuses = [&](auto option, int value) {
        Document document(host);
        document.parms.*option = value;
        EXPECT_TRUE(document.init() == QV_BADPARMS && document.doc == nullptr);
    };
    using Parms = QVEJMAPJsonInitParms;
    refuses(&Parms::inCEI, 0);
    refuses(&Parms::inCEI, -1);
    refuses(&Parms::alldataNameLen, 41);
    for (const auto length :
         {&Parms::alldataNameLen, &Parms::debugStringLen, &Parms::descLen, &Parms::tempNameLen}) {
        refuses(length, -1);
    }
    refuses(&Parms::alldataNameLen, 1);  // texts that are not there
    refuses(&Parms::tempNameLen, 1);
    Parms noKeywords{};
    noKeywords.inCEI = U_UTF8_CE;
    noKeywords.debugStringLen = 1;
    EXPECT_QV(QV_BADPARMS, host.engine()->JsonInit(nullptr, &noKeywords, nullptr, nullptr));
    EXPECT_QV(QV_BADPARMS, host.engine()->JsonInit(nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(joined(host.calls), "");
}

TEST(JsonInit, TakesTheOptions) {
    LoadedHost host;
    Document document(host);
    QVEJMAPJsonInitParms& parms = document.parms;
    std::fill_n(parms.desc, sizeof parms.desc, 'd');
    parms.descLen = 25;
    parms.rlmemSize = 3u << 29;
    parms.memLeave = 2;
    std::string alldata(40, 'A');
    parms.alldataName = alldata.data();
    parms.alldataNameLen = 40;
    ASSERT_QV_OK(document.init(",rlmem,parse,\xC3\xA4,"));
    alldata[0] = 'x';  // it was copied
    EXPECT_EQ(view(document.p()->alldataName, document.p()->alldataNameLen), std::string(40, 'A'));
    EXPECT_EQ(document.debug, ",RLMEM,PARSE,\xC3\xA4,");
    EXPECT_EQ(joined(host.notes), "rlmemSize     1.5G, rlmemMin  1.863e-09G, Parsing of " +
                                      std::string(20, 'd') + " begins");
}

TEST(JsonInit, MakesThingsThatTermEndsInOrder) {
    LoadedHost host;
    {
        Document document(host);
        ASSERT_QV_OK(document.init());
        JMAP_PRIVATE* p = document.p();
        QVHndlp global = host.handle();
        p->qvioeh = reinterpret_cast<QVIOEh>(global->loadExtension(global, U"qvioe", 5, nullptr));
        host.watch(&p->parser->generic, "parser");
        host.watch(&p->tosess->generic, "transcoder");
        host.watch(&p->smh->generic, "strings");
        host.calls.clear();
    }
    EXPECT_EQ(joined(host.calls),
              "destroy parser, destroy qvioe, destroy transcoder, "
              "destroy strings, destroy pool qvejmap context");
    EXPECT_EQ(host.left(), "");
}

TEST(JsonInit, GoesAsFarAsItCanWithoutAService) {
    LoadedHost host;
    QVNLSh nls = host.handle()->nls;
    nls->newTranscoder = [](QVNLSh, QVCEI, QVCEI, QVJnlh) -> QVTranscoderh { return nullptr; };
    Document document(host);
    EXPECT_QV_OK(document.init());
    EXPECT_QV(QV_NOMEM, document.feed(R"({"a":"x"})", true));  // names of ALLDATA's columns
    nls->newStringService = [](QVNLSh, QVCEI, QVJnlh, QVStringServiceh*) { return QV_UNSUPPORTED; };
    char names[] = "AB";
    Document wordless(host);
    wordless.parms.alldataName = names;
    wordless.parms.alldataNameLen = 1;
    EXPECT_QV(QV_UNSUPPORTED, wordless.init(",map,"));
    EXPECT_FALSE(wordless.p()->debugMap);
    EXPECT_EQ(host.engine()->MemberExist(wordless.doc, nullptr, 1, &names[0]), 0);
    EXPECT_EQ(host.engine()->MemberExist(wordless.doc, nullptr, 1, &names[1]), 1);
    reinterpret_cast<JMAP_S*>(host.engine())->jsonh->createParser =
        [](QVJSONh, const JSNParserParms*) -> JSNParserh { return nullptr; };
    Document unparsed(host);
    EXPECT_QV(QV_UNSUPPORTED, unparsed.init());
    EXPECT_QV(QV_NOMEM, unparsed.feed("{}", true));
}

}  // namespace
}  // namespace jmap::test
