// The small helpers of the engine's core.
#include "core/list.h"
#include "core/pool.h"
#include "core/text.h"
#include "testkit/testkit.h"

namespace jmap::test {
namespace {

struct NODE {
    NODE* next;
    NODE* down;
    char name;
};

TEST(List, AppendsAndWalksListsAndGroups) {
    NODE nodes[3] = {{nullptr, &nodes[2], 'a'}, {nullptr, nullptr, 'b'}, {nullptr, nullptr, 'c'}};
    NODE *head = nullptr, *tail = nullptr;
    std::string walked;
    for (NODE& node : nodes) {
        append(head, tail, &node);
    }
    for (const NODE& node : each(head)) {
        walked += node.name;
    }
    for (const NODE& node : eachDown(head)) {
        walked += node.name;
    }
    EXPECT_EQ(walked, "abcac");
}

TEST(Pool, GivesZeroedRecordsAndCopiesAndNullWhenMemoryIsShort) {
    FakeHost host;
    QVPoolh pool = newPool(U"helpers");
    char* dirty = poolBytes(pool, 8 * sizeof(NODE));  // so that a piece that is not cleared shows
    std::memset(dirty, 'x', 8 * sizeof(NODE));
    EXPECT_TRUE(poolFree(pool, dirty) == QV_OK && poolFree(pool, nullptr) == QV_OK);
    const auto* bytes = reinterpret_cast<const char*>(poolNew<NODE>(pool, 8));
    EXPECT_EQ(std::string(bytes, 8 * sizeof(NODE)), std::string(8 * sizeof(NODE), '\0'));
    EXPECT_TRUE(view(poolCopy(pool, "text"), 4) == "text" && poolCopy(pool, {}) != nullptr);
    host.failAllocation(1, true);
    EXPECT_TRUE(poolCopy(pool, "text") == nullptr && newPool(U"another") == nullptr);
    EXPECT_TRUE(destroyHandle(pool) == QV_OK && pool == nullptr && destroyHandle(pool) == QV_OK);
    EXPECT_EQ(host.calls.back(), "destroy pool helpers");
}

static_assert(firstOf("abc", 2) == "ab" && firstOf("abc", 4) == "abc");
static_assert(behind("abc", 2) == "c" && behind("abc", 4).empty());

}  // namespace
}  // namespace jmap::test
