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

}  // namespace
}  // namespace jmap::test
