// The nesting stack and the lengths of labels by depth.
#include "scan/nesting.h"

#include "scan_fixture.h"

namespace jmap::test {
namespace {

QVStatus pushLabel(JMAP_PRIVATE* p, std::string_view name) {
    return newLevel(p, WHAT_LABEL, name.data(), lengthOf(name));
}

TEST(Nesting, KeepsAndNotesTheLengthsOfLabelsByDepth) {
    const Context context;
    JMAP_PRIVATE* p = context.p;
    ASSERT_QV_OK(newLevel(p, WHAT_OBJECT, nullptr, 0));
    ASSERT_QV_OK(pushLabel(p, "abc"));
    ASSERT_QV_OK(pushLabel(p, "de"));
    EXPECT_EQ("de", view(peekLevel(p)->name, peekLevel(p)->nameLen));
    EXPECT_EQ(p->lhead->next->prev, p->lhead);
    EXPECT_EQ(1, p->labelCount);
    ASSERT_QV_OK(freeLevel(p, popLevel(p)));
    EXPECT_EQ(nullptr, p->lhead->prev);
    ASSERT_QV_OK(freeLevel(p, popLevel(p)));
    p->debugAllData = true;
    ASSERT_QV_OK(pushLabel(p, "f"));
    const std::vector<std::string> notes = {
        "newLevel labelCount  1 p->labelMaxes[0]  3 p->labelCurLens[1]  3 nameLen 1 "
        "p->labelCountMax  1",
        "newLevel labelCount  1 p->labelMaxes[0]  3 p->labelCurLens[1]  1 nameLen 1 "
        "p->labelCountMax  1"};
    EXPECT_EQ(notes, context.host.notes);
    EXPECT_EQ(0, p->labelCount);
    EXPECT_EQ(1, p->labelCountMax);
    EXPECT_EQ(1, p->labelCurLens[0]) << "the last label";
    EXPECT_EQ(3, p->labelMaxes[0]) << "the longest label";
    EXPECT_EQ(2, p->labelCurLens[1]) << "not cleared when its label is popped";
    EXPECT_EQ("/root/f", slashes(view(p->path.str, p->path.len)));
    const LEVEL* bottom = p->ltail;
    EXPECT_EQ(WHAT_OBJECT, bottom->what);
    ASSERT_QV_OK(freeLevel(p, popLevel(p)));
    ASSERT_QV_OK(freeLevel(p, popLevel(p)));
    EXPECT_EQ(nullptr, popLevel(p)) << "the stack is empty";
    EXPECT_EQ(-1, p->labelCount);
    EXPECT_EQ(bottom, p->ltail) << "kept when the stack becomes empty";
}

TEST(Nesting, TheThirtyFirstLabelDoublesTheArraysAndKeepsASpareEntry) {
    Context context;
    JMAP_PRIVATE* p = context.p;
    for (int size = 30; size <= 120; size *= 2) {
        SCOPED_TRACE(size);
        const QVStrSize bytes = (size + 1) * static_cast<QVStrSize>(sizeof(int32_t));
        char* pieces[] = {poolBytes(p->cpool, bytes), poolBytes(p->cpool, bytes)};
        for (char* piece : pieces) {  // what the arrays get next is not zero
            std::memset(piece, 0x55, static_cast<std::size_t>(bytes));
            ASSERT_QV_OK(poolFree(p->cpool, piece));
        }
        while (p->labelCount + 1 < size) {
            const auto length = static_cast<std::size_t>(p->labelCount + 2);
            ASSERT_QV_OK(pushLabel(p, std::string(length, 'x')));
        }
        EXPECT_EQ(size, p->labelMaxesSize);
        EXPECT_EQ(0, p->labelCurLens[size]);
        EXPECT_EQ(0, p->labelMaxes[size]);
        EXPECT_EQ(size, p->labelCurLens[size - 1]);
        EXPECT_EQ(30, p->labelMaxes[29]);
    }
    for (const uint64_t n : {1, 2, 3}) {  // entry, first array, second array
        const LEVEL* top = p->lhead;
        context.host.failAllocation(n);
        EXPECT_QV(QV_NOMEM, pushLabel(p, "y"));
        EXPECT_EQ(top, p->lhead);
        EXPECT_EQ(120, p->labelMaxesSize);
        EXPECT_EQ(n > 1 ? 120 : 119, p->labelCount) << "counted before the arrays grow";
        p->labelCount = 119;
    }
}

TEST(Nesting, AByteStringGrowsWhenNoByteWouldStayFree) {
    Context context;
    VARSTR v = {nullptr, 0, 0};
    context.host.failAllocation(1);
    EXPECT_QV(QV_NOMEM, jmapVarstrCheck(context.p, &v, 0));
    for (const auto& [need, alloc] : {std::pair{0, 1024}, {23, 1024}, {24, 1054}}) {
        EXPECT_QV_OK(jmapVarstrCheck(context.p, &v, need));
        EXPECT_EQ(alloc, v.alloc) << need;
        v.len = 1000;
    }
}

}  // namespace
}  // namespace jmap::test
