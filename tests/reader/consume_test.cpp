// What a value that is not as expected does to a row.
#include "reader/consume.h"

#include "tests/reader/open_table.h"

namespace jmap::test {
namespace {

TEST(Consume, AnotherFailureOfTheConversionEndsTheCallUnlessItIsAWord) {
    HandMap hand;
    hand.table("t", "/root");
    hand.column("x", VAR_DOUBLE, "/root/x");
    hand.column("c", VAR_CHAR, "/root/x", 4);
    const Scan scan(R"([{"x":5},{"x":true},{"x":6}])");
    scan.p()->smh->toDouble = [](QVStringServiceh, const char*, QVStrSize, double*, QVStrSize*) {
        return QV_INTERNAL;
    };
    OpenTable table(scan, &hand.map, "t");
    EXPECT_EQ(table.rows(), "1|true\n");
}

TEST(Consume, AnInformattedColumnKeepsTheRawText) {
    HandMap hand;
    hand.table("t", "/root");
    HandMap::informat(hand.column("x", VAR_DOUBLE, "/root/x"));
    const Scan scan(R"([{"x":"2001-01-01"},{"x":""},{"x":"twenty-one characters"},{"x":"next"}])");
    OpenTable table(scan, &hand.map, "t");
    const VARIABLEINFO& info = table.rctx->varinfo[0];
    for (const char* text : {"2001-01-01", "", "next"}) {  // the long one finds no memory
        ASSERT_QV_OK(table.read());
        EXPECT_EQ(view(info.rawdata, info.rawdataLen), text);
        EXPECT_EQ(info.rawdataAlloc, std::string_view(text) == "next" ? 8 : 20);
        scan.host().failAllocation(*text == '\0' ? 1 : 0);
    }
}

}  // namespace
}  // namespace jmap::test
