// The small helpers of the engine's core.
#include "core/pool.h"
#include "core/text.h"
#include "testkit/testkit.h"

namespace jmap::test {
namespace {

TEST(Pool, GivesZeroedRecordsAndCopiesAndNullWhenMemoryIsShort) {
    FakeHost host;
    QVPoolh pool = newPool(U"helpers");
    char* dirty = poolBytes(pool, 64);  // so that a piece that is not cleared shows
    std::memset(dirty, 'x', 64);
    EXPECT_TRUE(poolFree(pool, dirty) == QV_OK && poolFree(pool, nullptr) == QV_OK);
    const auto* bytes = reinterpret_cast<const char*>(poolNew<int64_t>(pool, 8));
    EXPECT_EQ(std::string(bytes, 64), std::string(64, '\0'));
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
