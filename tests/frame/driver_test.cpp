// Feeding a document: what each answer of the parser leads to, and what the last buffer does.
#include "frame/open_document.h"

namespace jmap::test {
namespace {

constexpr QVStatus kMistake = QV_JSON_VALUE, kReason = JMAP_NOTAVAIL;  // `kReason` of a callback

// What an answer of the parser leads to: the status; whether the hashes live on, are released, or
// the map was made; and ERRORINFO of an error.
std::string outcome(bool done, QVStatus parserAnswers, QVStatus vrc = QV_OK) {
    LoadedHost host;
    Document document(host);
    document.parms.descLen = 1;
    EXPECT_QV_OK(document.init(",LEVEL,"));
    EXPECT_QV_OK(document.feed(R"({"a":"x")", false));
    static QVStatus answer;
    answer = parserAnswers;
    JMAP_PRIVATE* p = document.p();
    p->parser->parse = [](JSNParserh, const void*, QVStrSize, QVBoolean) { return answer; };
    p->parser->line = [](JSNParserh) { return int64_t{7}; };
    p->parser->column = [](JSNParserh) { return int64_t{40}; };
    p->vrc = vrc;
    p->badstringLen = static_cast<QVStrSize>(std::string_view("token").copy(p->badstring, 5));
    p->lineminus = 3;

    std::string all = qvStatusName(document.feed("", done));
    const ERRORINFO& e = document.doc->e;
    EXPECT_EQ(p->hash == nullptr, p->hash2 == nullptr);
    EXPECT_EQ(host.notes.back().ends_with(" ends"), p->automap != nullptr);
    EXPECT_EQ(host.notes.back().ends_with(" ends with ERROR"), e.rc != QV_OK);
    all += p->hash != nullptr ? ", goes on" : p->automap != nullptr ? ", mapped" : ", ended";
    return e.rc == QV_OK
               ? all
               : all + ": " + qvStatusName(e.rc) + " at " + std::to_string(e.line) + ":" +
                     std::to_string(e.col) + " " + std::string(view(e.badstring, e.badstringLen));
}

TEST(JsonInput, TreatsEachAnswerOfTheParserAtEachPlace) {
    EXPECT_EQ(outcome(false, QV_OK), "QV_OK, ended");
    EXPECT_EQ(outcome(false, QV_EOF, kReason), "QV_OK, goes on");
    EXPECT_EQ(outcome(false, QV_NEEDMORE), "QV_OK, goes on");
    EXPECT_EQ(outcome(true, QV_OK, kReason), "QV_OK, mapped");
    EXPECT_EQ(outcome(true, QV_NEEDMORE), "QV_OK, mapped");
    EXPECT_EQ(outcome(true, QV_EOF, kReason), "JMAP_INCOMPLETE, ended");
    for (const bool done : {false, true}) {
        EXPECT_EQ(outcome(done, kMistake), "JMAP_PARSE, ended: QV_JSON_VALUE at 7:40 token");
        EXPECT_EQ(outcome(done, kMistake, kReason),
                  "JMAP_NOTAVAIL, ended: QV_JSON_VALUE at 7:36 token");  // back by token and mark
    }
}

TEST(JsonInput, ReportsWhereADocumentIsWrong) {
    const auto report = [](const char* json) {
        const Scan scan(json);
        const ERRORINFO& e = scan.doc()->e;
        return qvStatusName(scan.status) + (" " + std::to_string(e.line)) + ":" +
               std::to_string(e.col) + " " + qvStatusName(e.rc);
    };
    EXPECT_EQ(report("42"), "JMAP_INCOMPLETE 1:2 JMAP_INCOMPLETE");
    EXPECT_EQ(report("{\"a\":[1,"), "JMAP_INCOMPLETE 0:0 QV_OK");
    EXPECT_EQ(report("{\n\"a\":}"), "JMAP_PARSE 2:5 QV_JSON_VALUE");
    EXPECT_EQ(report("{} x"), "JMAP_PARSE 1:4 QV_JSON_TRAILING");
    EXPECT_EQ(report("{} \n"), "QV_OK 0:0 QV_OK");
}

TEST(JsonInput, AFailureWhileFinishingKeepsItsOddEffects) {
    for (const bool always : {false, true}) {
        SCOPED_TRACE(always ? "no map: the trackers are never ended" : "no block: nobody is told");
        LoadedHost host;
        {
            Document document(host);
            ASSERT_QV_OK(document.init());
            ASSERT_QV_OK(document.feed(R"({"a":"x")", false));
            host.failAllocation(1, always);
            EXPECT_QV(always ? QV_NOMEM : QV_OK, document.feed("}", true));
            host.failAllocation(0);
            QVMemPtr map = nullptr;
            EXPECT_QV_OK(host.engine()->GetAutoMap(document.doc, &map));
            EXPECT_EQ(map == nullptr, always);
            JMAPTotals totals{};
            jmapTotals(document.doc, &totals);
            EXPECT_TRUE(totals.blocks == 0 && totals.unstoredBytes > 0);
        }
        EXPECT_EQ(host.left(),
                  always ? "tracker pathinfo tracker, tracker pathinfo sub tracker" : "");
    }
}

}  // namespace
}  // namespace jmap::test
