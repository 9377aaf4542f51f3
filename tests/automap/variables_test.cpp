// The value columns of a table.
#include "automap/variables.h"

#include "tests/automap/hand_document.h"

namespace jmap::test {
namespace {

TEST(Variables, TakeEveryPathOfTheObjectAndSayWhy) {
    HandDocument doc;
    doc.p.debugMapGen = true;
    PATHINFO* head = doc.addPath("/root/o/a");
    PATHINFO* other = doc.addPath("/root/o/q/b", head);
    PATHINFO* fake = doc.addPath("/root/o/FAKE", head, VAR_FAKEVARIABLE);
    PATHINFO* text = doc.addPath("/root/o/c", head, VAR_CHAR);
    text->pathMaxValLen = 40000;
    DSINFO ds{};
    ASSERT_QV_OK(doVariables(&doc.p, &ds, head));
    ASSERT_EQ(ds.varcount, 2u);
    EXPECT_EQ(ds.vhead->type, VAR_DOUBLE);
    EXPECT_EQ(ds.vtail->type, VAR_CHAR);
    EXPECT_EQ(ds.vtail->length, 40000u);
    EXPECT_EQ(slashes(view(ds.vtail->path, ds.vtail->pathLen)), "/root/o/c");
    EXPECT_TRUE(head->processed && fake->processed && text->processed && !other->processed);
    const Names expected = {
        "doVariables search     [/root/o/a]",    "doVariables considered [/root/o/a]",
        "doVariables chose      [/root/o/a]",    "doVariables considered [/root/o/q/b]",
        "doVariables considered [/root/o/FAKE]", "doVariables chose fake [/root/o/FAKE]",
        "doVariables considered [/root/o/c]",    "doVariables chose      [/root/o/c]"};
    EXPECT_EQ(doc.host.notes, expected);
}

}  // namespace
}  // namespace jmap::test
