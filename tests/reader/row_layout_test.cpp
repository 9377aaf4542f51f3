// The columns of an open table.
#include "reader/row_layout.h"

#include "tests/reader/open_table.h"

namespace jmap::test {
namespace {

TEST(RowLayout, PutsColumnsBackToBackAsTheMapSaysAndShowsThem) {
    const Scan scan("{}", {.debug = ",READINIT,"});
    HandMap hand;
    hand.table("Tab", "/root/t");
    hand.column("o", VAR_ORDINAL, "/root/t", 0);
    VARINFO& c = hand.column("c", VAR_CHAR, "/root/t/c", 5);
    HandMap::informat(c);
    std::string label(300, 'L');  // more than there is room for
    c.label = label.data();
    c.labelLen = lengthOf(label);
    c.truncation = c.informatNoError = true;
    c.currentLength = 9;
    hand.column("d", VAR_DOUBLE, nullptr, 77).retain = true;
    hand.column("long", VAR_CHAR, "/root/l", 32768);
    hand.column("f", VAR_FAKEVARIABLE, nullptr, 1);
    hand.column("n", VAR_ORDINAL, "/root").noretain = true;
    const OpenTable table(scan, &hand.map, "tab");
    ASSERT_QV_OK(table.status);
    const std::string none = " informat [NULL 0 0] format [NULL 0 0]";
    const std::string pad(32, ' ');
    const Names expected = {
        "readinit found ds [Tab]",
        " ",
        "rctx var o                    NUMERIC    length   8 offset   0" + none,
        "rctx var c                    CHARACTER  length   5 offset   8 informat [INF 4 1] format "
        "[FMT 10 2]",
        "rctx var d                    NUMERIC    length   8 offset  13" + none,
        "rctx var long                 CHARACTER  length 32767 offset  21" + none,
        "rctx var f                    CHARACTER  length   1 offset 32788" + none,
        "rctx var n                    NUMERIC    length   8 offset 32789" + none,
        " ",
        "rp   var o                    ORDINAL    /root/t " + pad + " length   8 offset   0 RETAIN",
        "rp   var c                    CHAR       /root/t/c" + pad + "length   5 offset   8",
        "rp   var d                    DOUBLE             " + pad + " length   8 offset  13 RETAIN",
        "rp   var long                 CHAR       /root/l " + pad + " length 32767 offset  21",
        "rp   var f                    UNKNOWN            " + pad + " length   1 offset 32788",
        "rp   var n                    ORDINAL    /root   " + pad + " length   8 offset 32789",
        " ",
        "tablePath /root/t " + pad,
        " "};
    EXPECT_EQ(scan.host().notes, expected);
    EXPECT_EQ(table.rctx->obsbufLen, 32797);
    const VARIABLEINFO& info = table.rctx->varinfo[1];
    EXPECT_EQ(view(info.label, info.labelLen), std::string(256, 'L'));
    EXPECT_TRUE(info.informatNoError != 0 && info.truncation != 0 && info.currentLength == 9);
}

}  // namespace
}  // namespace jmap::test
