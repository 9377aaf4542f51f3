// The nesting stack and the lengths of labels by depth.
#include "scan/nesting.h"

#include "testkit/open_document.h"

namespace jmap::test {
namespace {

QVStatus pushLabel(JMAP_PRIVATE* p, std::string_view name) {
    return newLabel(p, name);
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
    for (const uint64_t n : {1, 2, 2}) {  // entry, which is kept from then on; the two arrays
        const LEVEL* top = p->lhead;
        doc.host.failAllocation(n);
        EXPECT_QV(QV_NOMEM, pushLabel(p, "y"));
        EXPECT_EQ(top, p->lhead);
        EXPECT_EQ(120, p->labelMaxesSize);
        EXPECT_EQ(n > 1 ? 120 : 119, p->labelCount) << "counted before the arrays grow";
        p->labelCount = 119;
    }
}

}  // namespace
}  // namespace jmap::test
