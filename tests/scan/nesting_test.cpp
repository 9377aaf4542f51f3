// The nesting stack and the lengths of labels by depth.
#include "scan/nesting.h"

#include "scan_fixture.h"

namespace jmap::test {
namespace {

QVStatus pushLabel(JMAP_PRIVATE* p, std::string_view name) {
    return newLevel(p, WHAT_LABEL, name.data(), lengthOf(name));
}

TEST(Nesting, KeepsTheLengthsOfLabelsByDepth) {
    HandDocument doc;
    JMAP_PRIVATE* p = &doc.p;
    ASSERT_QV_OK(newLevel(p, WHAT_OBJECT, nullptr, 0));
    ASSERT_QV_OK(pushLabel(p, "abc"));
    ASSERT_QV_OK(pushLabel(p, "de"));
    EXPECT_EQ("de", view(peekLevel(p)->name, peekLevel(p)->nameLen));
    EXPECT_TRUE(p->labelCount == 1 && p->lhead->next->prev == p->lhead);
    ASSERT_QV_OK(freeLevel(p, popLevel(p)));
    EXPECT_EQ(nullptr, p->lhead->prev);
    ASSERT_QV_OK(freeLevel(p, popLevel(p)));
    p->debugAllData = true;
    ASSERT_QV_OK(pushLabel(p, "f"));
    EXPECT_EQ(
        "newLevel labelCount  1 p->labelMaxes[0]  3 p->labelCurLens[1]  1 nameLen 1 "
        "p->labelCountMax  1",
        doc.host.notes.back());
    EXPECT_EQ(2, p->labelCurLens[1]) << "not cleared when its label is popped";
    EXPECT_EQ("/root/f", slashes(view(p->path.str, p->path.len)));
    ASSERT_QV_OK(freeLevel(p, popLevel(p)));
    ASSERT_QV_OK(freeLevel(p, popLevel(p)));
    EXPECT_TRUE(popLevel(p) == nullptr && p->labelCount == -1);
}

TEST(Nesting, TheThirtyFirstLabelDoublesTheArraysAndKeepsASpareEntry) {
    HandDocument doc;
    JMAP_PRIVATE* p = &doc.p;
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
        EXPECT_TRUE(p->labelCurLens[size] == 0 && p->labelMaxes[size] == 0);
        EXPECT_TRUE(p->labelCurLens[size - 1] == size && p->labelMaxes[29] == 30);
    }
    for (const uint64_t n : {1, 2, 3}) {  // entry, first array, second array
        const LEVEL* top = p->lhead;
        doc.host.failAllocation(n);
        EXPECT_QV(QV_NOMEM, pushLabel(p, "y"));
        EXPECT_EQ(top, p->lhead);
        EXPECT_EQ(120, p->labelMaxesSize);
        EXPECT_EQ(n > 1 ? 120 : 119, p->labelCount) << "counted before the arrays grow";
        p->labelCount = 119;
    }
}

TEST(Nesting, AByteStringGrowsWhenNoByteWouldStayFree) {
    HandDocument doc;
    VARSTR v = {nullptr, 0, 0};
    doc.host.failAllocation(1);
    EXPECT_QV(QV_NOMEM, jmapVarstrCheck(&doc.p, &v, 0));
    for (const auto& [need, alloc] : {std::pair{0, 1024}, {23, 1024}, {24, 1054}}) {
        EXPECT_QV_OK(jmapVarstrCheck(&doc.p, &v, need));
        EXPECT_EQ(alloc, v.alloc) << need;
        v.len = 1000;
    }
}

}  // namespace
}  // namespace jmap::test
