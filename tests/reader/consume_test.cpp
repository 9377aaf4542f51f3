// Where rows begin and end, and what single values do to a row.
#include "reader/consume.h"

#include "tests/reader/open_table.h"

namespace jmap::test {
namespace {

TEST(Consume, ValuesReachEveryColumnOfThePathAsNumberAndAsText) {
    HandMap hand;
    hand.table("t", "/root");
    hand.column("x", VAR_DOUBLE, "/root/x");
    hand.column("c", VAR_CHAR, "/root/x", 3);
    hand.column("o", VAR_ORDINAL, "/root/x");  // counts markers
    hand.column("y", VAR_CHAR, "/root/y", 1);
    hand.column("f", VAR_FAKEVARIABLE, "/root/x", 4);
    hand.column("placeholder", VAR_DOUBLE, "/root/x/FAKE");
    const struct {
        const char *json, *cells;
        bool bad = false;
    } cases[] = {
        {"-1.5e2", "-150|-1."},
        {R"("12")", "12|12"},
        {"1e999", "inf|1e9"},
        {"true", "1|tru"},
        {R"("true")", "1|tru"},
        {"false", "0|fal"},
        {"null", "~|"},
        {R"("null")", "~|nul"},
        {R"("True")", "0|Tru", true},
        {R"(" 1")", "0| 1", true},
        {R"("")", "0|", true},
        {"{}", nullptr},
    };
    FakeHost host;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.json);
        const Scan scan(host, std::string(R"({"x":)") + c.json + R"(,"X":7})");
        OpenTable table(scan, &hand.map, "t");
        const std::string row = c.cells == nullptr ? "" : c.cells + std::string("|~|||~\n");
        EXPECT_EQ(table.rows(), row);
        EXPECT_EQ(table.rctx->varinfo[0].badNumData != 0, c.bad);
    }
}

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

TEST(Consume, OrdinalsAloneMakeRowsAndCountMarkersOnly) {
    HandMap hand;
    hand.table("t", "/root");
    hand.column("a", VAR_ORDINAL, "/root");
    hand.column("b", VAR_ORDINAL, "/root");
    hand.column("v", VAR_ORDINAL, "/root/v");
    const Scan scan(R"([{"v":1},{"v":2}])");
    EXPECT_EQ(OpenTable(scan, &hand.map, "t").rows(), "1|1|~\n2|2|~\n");
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
