// The columns of an open table.
#include "reader/row_layout.h"

#include "tests/reader/open_table.h"

namespace jmap::test {
namespace {

TEST(RowLayout, PutsColumnsBackToBackAndCutsWhatIsTooLong) {
    const Scan scan("{}");
    HandMap hand;
    hand.table("Tab", "/root/t");
    hand.column("o", VAR_ORDINAL, "/root/t", 0);
    VARINFO& c = hand.column("c", VAR_CHAR, "/root/t/c", 5);
    HandMap::informat(c);
    std::string label(300, 'L');  // more than there is room for
    c.user->label = label.data();
    c.user->labelLen = lengthOf(label);
    c.truncation = c.user->informatNoError = true;
    c.user->currentLength = 9;
    hand.column("d", VAR_DOUBLE, nullptr, 77);
    hand.column("long", VAR_CHAR, "/root/l", 32768);
    hand.column("f", VAR_FAKEVARIABLE, nullptr, 1);
    hand.column("n", VAR_ORDINAL, "/root");
    const OpenTable table(scan, &hand.map, "tab");
    ASSERT_QV_OK(table.status);
    std::string offsets;
    for (QVStrSize i = 0; i < table.rctx->varCount; ++i) {
        offsets += std::to_string(table.rctx->varinfo[i].offset) + " ";
    }
    EXPECT_EQ(offsets, "0 8 13 21 32788 32789 ");
    EXPECT_EQ(table.rctx->obsbufLen, 32797);
    const VARIABLEINFO& info = table.rctx->varinfo[1];
    EXPECT_EQ(view(info.label, info.labelLen), std::string(256, 'L'));
    EXPECT_TRUE(info.informatNoError != 0 && info.truncation != 0 && info.currentLength == 9);
}

}  // namespace
}  // namespace jmap::test
