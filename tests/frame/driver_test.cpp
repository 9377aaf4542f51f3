// Feeding a document: what each answer of the parser leads to, and what the last buffer does.
#include "testkit/open_document.h"

namespace jmap::test {
namespace {

constexpr const char* kHalf = R"({"\u0002":"x")";  // a name that the hashes are made for

// What an answer of the parser leads to: whether the hashes live on, are released, or the map was
// made; the status; and ERRORINFO of an error.
std::string outcome(bool done, QVStatus parserAnswers, QVStatus vrc = QV_OK) {
    LoadedHost host;
    Document document(host);
    EXPECT_QV_OK(document.init());
    EXPECT_QV_OK(document.feed(kHalf, false));
    static QVStatus answer;
    answer = parserAnswers;
    JMAP_PRIVATE* p = document.p();
    p->parser->parse = [](JSNParserh, const void*, QVStrSize, QVBoolean) { return answer; };
    p->parser->line = [](JSNParserh) { return int64_t{7}; };
    p->parser->column = [](JSNParserh) { return int64_t{40}; };
    p->vrc = vrc;
    p->badstringLen = static_cast<QVStrSize>(std::string_view("token").copy(p->badstring, 5));
    p->lineminus = 3;
    const char* status = qvStatusName(document.feed("", done));
    EXPECT_EQ(p->hash == nullptr, p->hash2 == nullptr);
    std::string all = p->hash != nullptr      ? "goes on "
                      : p->automap != nullptr ? "mapped "
                                              : "ended ";
    const ERRORINFO& e = document.doc->e;
    all += status;
    return e.rc == QV_OK
               ? all
               : all + ": " + qvStatusName(e.rc) + " at " + std::to_string(e.line) + ":" +
                     std::to_string(e.col) + " " + std::string(view(e.badstring, e.badstringLen));
}

TEST(JsonInput, TreatsEachAnswerOfTheParserAtEachPlace) {
    constexpr QVStatus kMistake = QV_JSON_VALUE, kReason = JMAP_NOTABLE;  // of a callback
    EXPECT_EQ(outcome(false, QV_OK), "ended QV_OK");
    EXPECT_EQ(outcome(false, QV_EOF, kReason), "goes on QV_OK");
    EXPECT_EQ(outcome(false, QV_NEEDMORE), "goes on QV_OK");
    EXPECT_EQ(outcome(true, QV_OK, kReason), "mapped QV_OK");
    EXPECT_EQ(outcome(true, QV_NEEDMORE), "mapped QV_OK");
    EXPECT_EQ(outcome(true, QV_EOF, kReason), "ended JMAP_INCOMPLETE");
    for (const bool done : {false, true}) {
        EXPECT_EQ(outcome(done, kMistake), "ended JMAP_PARSE: QV_JSON_VALUE at 7:40 token");
        EXPECT_EQ(outcome(done, kMistake, kReason),
                  "ended JMAP_NOTABLE: QV_JSON_VALUE at 7:36 token");  // back by token and mark
    }
}

TEST(JsonInput, AFailureWhileFinishingKeepsItsOddEffects) {
    for (const bool always : {false, true}) {
        SCOPED_TRACE(always ? "no map: the trackers are never ended" : "no block: no status tells");
        LoadedHost host;
        {
            Document document(host);
            ASSERT_QV_OK(document.init());
            ASSERT_QV_OK(document.feed(kHalf, false));
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
