// The columns of an open table.
#include "reader/row_layout.h"

#include "tests/reader/open_table.h"

namespace jmap::test {
namespace {

TEST(RowLayout, PutsColumnsBackToBackAsTheMapSaysAndShowsThem) {
    ScanOptions options;
    options.debug = ",READINIT,";
    const Scan scan("{}", options);
    HandMap hand;
    hand.table("Tab", "/root/t");
    hand.column("o", VAR_ORDINAL, "/root/t", 0);
    VARINFO& c = hand.column("c", VAR_CHAR, "/root/t/c", 5);
    HandMap::informat(c);
    std::memset(c.label, 'L', sizeof c.label);
    c.labelLen = 300;  // more than there is room for
    c.truncation = true;
    c.currentLength = 9;
    c.informatNoError = true;
    hand.column("d", VAR_DOUBLE, nullptr, 77).retain = true;
    hand.column("long", VAR_CHAR, "/root/l", 32768);
    hand.column("longer", VAR_CHAR, "/root/l", UINT64_MAX);
    hand.column("f", VAR_FAKEVARIABLE, nullptr, 1);
    const OpenTable table(scan, &hand.map, "tab");
    ASSERT_QV_OK(table.status);
    const std::string none = " informat [NULL 0 0] format [NULL 0 0]";
    const std::string pad(32, ' ');
    const std::vector<std::string> expected = {
        "readinit found ds [Tab]",
        " ",
        "rctx var o                    NUMERIC    length   8 offset   0" + none,
        "rctx var c                    CHARACTER  length   5 offset   8 informat [INF 4 1] format "
        "[FMT 10 2]",
        "rctx var d                    NUMERIC    length   8 offset  13" + none,
        "rctx var long                 CHARACTER  length 32767 offset  21" + none,
        "rctx var longer               CHARACTER  length 32767 offset 32788" + none,
        "rctx var f                    CHARACTER  length   1 offset 65555" + none,
        " ",
        "rp   var o                    ORDINAL    /root/t " + pad + " length   8 offset   0 RETAIN",
        "rp   var c                    CHAR       /root/t/c" + pad + "length   5 offset   8",
        "rp   var d                    DOUBLE             " + pad + " length   8 offset  13 RETAIN",
        "rp   var long                 CHAR       /root/l " + pad + " length 32767 offset  21",
        "rp   var longer               CHAR       /root/l " + pad + " length 32767 offset 32788",
        "rp   var f                    UNKNOWN            " + pad + " length   1 offset 65555",
        " ",
        "tablePath /root/t " + pad,
        " "};
    EXPECT_EQ(scan.host().notes, expected);
    EXPECT_EQ(table.rctx->obsbufLen, 65556);
    EXPECT_EQ(table.rp()->obsbuf, table.rctx->obsbuf);
    EXPECT_FALSE(table.rp()->ordinalsOnly);
    const VARIABLEINFO& info = table.rctx->varinfo[1];
    EXPECT_EQ(view(info.label, info.labelLen), std::string(256, 'L'));
    EXPECT_TRUE(info.informatNoError != 0 && info.truncation != 0);
    EXPECT_EQ(info.currentLength, 9);
}

TEST(RowLayout, NoretainWinsOverEverything) {
    const Scan scan("{}");
    const struct {
        VARTYPE type;
        bool retain, noretain;
        uint64_t flags;
        bool expected;
    } cases[] = {
        {VAR_DOUBLE, false, false, 0, false}, {VAR_DOUBLE, false, false, 1, true},
        {VAR_DOUBLE, false, false, 2, false}, {VAR_DOUBLE, true, false, 0, true},
        {VAR_DOUBLE, true, true, 0, false},   {VAR_DOUBLE, false, true, 1, false},
        {VAR_ORDINAL, false, false, 0, true}, {VAR_ORDINAL, false, true, 1, false},
    };
    for (const auto& c : cases) {
        HandMap hand;
        hand.table("t");
        VARINFO& column = hand.column("x", c.type, "/root/x");
        column.retain = c.retain;
        column.noretain = c.noretain;
        const OpenTable table(scan, &hand.map, "t", c.flags);
        ASSERT_QV_OK(table.status);
        EXPECT_EQ(table.rp()->varinfo[0].retain, c.expected) << c.type << c.retain << c.noretain;
    }
}

}  // namespace
}  // namespace jmap::test
