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
    } kCases[] = {
        {"\x02root\x02"
         "a",
         1,
         {1, 7}},
        {"\x02root\x02"
         "a",
         3,
         {3, 7}},
        {"\x02root\x02"
         "a",
         2,
         {2, 7}},
        {"\x02root\x02"
         "a",
         4,
         {0, 0}},
        {"\x02root\x02"
         "b",
         2,
         {3, 13}},
        {"\x02root\x02"
         "c",
         1,
         {0, 0}},
    };
    HandDocument doc;
    PATHWATCH* watches[std::size(kCases)] = {};
    for (std::size_t i = 0; i < std::size(kCases); ++i) {
        watches[i] = watchFor(&doc.p, kCases[i].path, kCases[i].number);
        ASSERT_NE(nullptr, watches[i]);
    }
    ASSERT_QV_OK(doc.document.feed(
        "[{\"a\":1,\"b\":{}},\n {\"a\":\"x\",\"b\":1},\n {\"a\":3,\"b\":2}]", true));
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
