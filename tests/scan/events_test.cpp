// Events that make no record.  The records are seen in the tool.
#include "scan/events.h"

#include "scan/nesting.h"
#include "testkit/open_document.h"

namespace jmap::test {
namespace {

TEST(Events, RefuseAScalarDocumentAndAnEndThatDoesNotFit) {
    for (const char* json : {"5", "\"x\"", "true", "null"}) {
        const Scan scan(json);
        EXPECT_QV(JMAP_INCOMPLETE, scan.status) << json;
        EXPECT_EQ(JMAP_INCOMPLETE, scan.doc()->e.rc) << json;
    }
    HandDocument doc;
    JSNParseCB* cb = &doc.p.parseCB;
    EXPECT_QV(JMAP_PARSE, cb->objectEnd(cb)) << "nothing is open";
    ASSERT_QV_OK(cb->arrayStart(cb));
    EXPECT_QV(JMAP_PARSE, cb->objectEnd(cb));
    ASSERT_QV_OK(cb->objectStart(cb));
    EXPECT_QV(JMAP_PARSE, cb->arrayEnd(cb));
    EXPECT_EQ(WHAT_OBJECT, peekLevel(&doc.p)->what) << "the stack is as it was";
}

// A name that is known is not pushed at once.
TEST(Events, PushANameThatIsFollowedByNoScalar) {
    constexpr JSNChar kName[] = {'a'};
    const auto name = [&](JSNParseCB* cb) { return cb->string(cb, kName, 1, JSN_MEMBERNAME); };
    const auto startOfASecond = [&](JSNParseCB* cb) {
        ASSERT_QV_OK(cb->arrayStart(cb));
        for (int i = 0; i < 2; ++i) {
            ASSERT_QV_OK(cb->objectStart(cb));
            ASSERT_QV_OK(name(cb));
            ASSERT_QV_OK(cb->number(cb, "1", 1, JSN_REAL));
            ASSERT_QV_OK(cb->objectEnd(cb));
        }
        ASSERT_QV_OK(cb->objectStart(cb));
        ASSERT_QV_OK(name(cb));
    };
    HandDocument doc;
    JSNParseCB* cb = &doc.p.parseCB;
    startOfASecond(cb);
    EXPECT_QV(JMAP_PARSE, cb->objectEnd(cb)) << "a name without a value";
    EXPECT_EQ(WHAT_LABEL, peekLevel(&doc.p)->what);
    EXPECT_EQ(0, doc.p.labelCount);

    HandDocument twice;
    cb = &twice.p.parseCB;
    startOfASecond(cb);
    ASSERT_QV_OK(name(cb));
    EXPECT_EQ(1, twice.p.labelCount) << "two names";
    ASSERT_QV_OK(cb->nullx(cb));
    EXPECT_EQ(0, twice.p.labelCount);
    EXPECT_EQ(WHAT_LABEL, peekLevel(&twice.p)->what);
}

}  // namespace
}  // namespace jmap::test
