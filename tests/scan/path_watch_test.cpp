// Places of chosen values.
#include "scan/path_watch.h"

#include "testkit/open_document.h"

namespace jmap::test {
namespace {

TEST(PathWatch, FindsTheValuesThatAreWatchedFor) {
    const struct {
        const char* path;
        int64_t number;
        PLACE expected;
    } kCases[] = {{"/root/a", 1, {1, 7}},
                  {"/root/a", 3, {3, 7}},
                  {"/root/a", 2, {2, 7}},
                  {"/root/a", 4, {0, 0}},
                  {"/root/b", 2, {3, 13}},
                  {"/root/c", 1, {0, 0}},
                  // A member named as the placeholder of an empty object is.
                  {"/root/b/FAKE", 1, {3, 27}},
                  {"/root/b/FAKE", 2, {3, 49}}};
    HandDocument doc;
    doc.host.failAllocation(1);
    EXPECT_EQ(nullptr, watchFor(&doc.p, "p", 1));
    PATHWATCH* watches[std::size(kCases)] = {};
    for (std::size_t i = 0; i < std::size(kCases); ++i) {
        watches[i] = watchFor(&doc.p, internalPath(kCases[i].path), kCases[i].number);
        ASSERT_NE(nullptr, watches[i]);
    }
    ASSERT_QV_OK(
        doc.document.feed("[{\"a\":1,\"b\":{}},\n {\"a\":\"x\",\"b\":1},\n {\"a\":3,\"b\":2,"
                          "\"b\":{\"FAKE\":5},\"b\":{},\"b\":{\"FAKE\":6}}]",
                          true));
    for (std::size_t i = 0; i < std::size(kCases); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(kCases[i].expected.line, watches[i]->place.line);
        EXPECT_EQ(kCases[i].expected.column, watches[i]->place.column);
    }
    for (const uint64_t failing : {1, 2}) {
        doc.host.failAllocation(failing);
        EXPECT_EQ(nullptr, watchFor(&doc.p, "p", 1));
    }
}

}  // namespace
}  // namespace jmap::test
