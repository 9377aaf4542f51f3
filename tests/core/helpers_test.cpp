// The small helpers of the engine's core.
#include "core/arena.h"
#include "core/hash.h"
#include "core/pool.h"
#include "core/short_bytes.h"
#include "core/text.h"
#include "testkit/open_document.h"

#include <set>

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

TEST(Arena, CutsAlignedPiecesAndLeavesItsPieceInUseForALargeOne) {
    FakeHost host;
    QVPoolh pool = newPool(U"helpers");
    ARENA arena = {};
    host.failAllocation(1);
    EXPECT_EQ(arenaBytes(&arena, pool, 8), nullptr);
    char* first = arenaBytes(&arena, pool, 3);
    EXPECT_NE(arenaBytes(&arena, pool, 100000), nullptr);
    EXPECT_EQ(arenaBytes(&arena, pool, 8), first + 8);
    EXPECT_EQ(arenaBytes(&arena, pool, 1), first + 16);
    EXPECT_QV_OK(destroyHandle(pool));
}

TEST(ShortBytes, CopiesAndComparesJustTheText) {
    for (std::size_t n = 0; n <= 70; ++n) {
        SCOPED_TRACE(n);
        std::string text(n, '\0');
        std::generate(text.begin(), text.end(), [c = 'A']() mutable { return c++; });
        const std::vector<char> from(text.begin(), text.end());  // with nothing around it
        std::string to(n + 2, '.');
        copyShort(to.data() + 1, {from.data(), n});
        EXPECT_EQ(to, "." + text + ".");
        EXPECT_TRUE(equalShort(text, {from.data(), n}) && !equalShort(text, text + "A"));
        for (std::size_t i = 0; i < n; ++i) {
            std::vector<char> other = from;
            other[i] ^= 1;
            EXPECT_FALSE(equalShort(text, {other.data(), n})) << i;
        }
    }
}

TEST(Hash, DependsOnEachBitOnTheLengthAndOnTheSeed) {
    constexpr uint64_t kSeed =
        0x0123456789ABCDEF;  // a fixed one, so that nothing here is left to chance
    std::set<uint32_t> hashes;
    for (std::size_t n = 0; n <= 40; ++n) {
        std::vector<char> bytes(n);  // with nothing around it
        const std::string_view text(bytes.data(), n);
        EXPECT_TRUE(hashes.insert(hashOf(kSeed, text)).second) << n;
        for (std::size_t bit = 0; bit < n * 8; ++bit) {
            bytes[bit / 8] = static_cast<char>(1 << bit % 8);
            EXPECT_TRUE(hashes.insert(hashOf(kSeed, text)).second) << n << " " << bit;
            bytes[bit / 8] = 0;
        }
    }
    for (uint64_t bit = 0; bit < 64; ++bit) {
        EXPECT_TRUE(hashes.insert(hashOf(kSeed ^ uint64_t{1} << bit, "name")).second) << bit;
    }
}

TEST(Hash, HasASeedOfItsOwnInEachDocument) {
    HandDocument a, b;
    EXPECT_NE(a.p.hashSeed, b.p.hashSeed);
}

TEST(Checksum, IsAnotherForAnyBitThatChangesAndForAnyLength) {
    const std::vector<char> zeros(200, '\0');
    std::set<uint64_t> sums;
    for (std::size_t n = 0; n <= 100; ++n) {
        EXPECT_TRUE(sums.insert(checksumOf({zeros.data(), n})).second) << n;
    }
    std::vector<char> bytes(77);  // two turns of four words, a word, a rest
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        bytes[bit / 8] = static_cast<char>(1 << bit % 8);
        EXPECT_TRUE(sums.insert(checksumOf({bytes.data(), bytes.size()})).second) << bit;
        bytes[bit / 8] = 0;
    }
    bytes[0] = bytes[32] = 1;  // the same change twice, in one lane
    EXPECT_TRUE(sums.insert(checksumOf({bytes.data(), bytes.size()})).second);
    bytes[7] = bytes[39] = '\x80';
    EXPECT_TRUE(sums.insert(checksumOf({bytes.data(), bytes.size()})).second);
    std::swap(bytes[0], bytes[8]);
    std::swap(bytes[32], bytes[40]);
    EXPECT_TRUE(sums.insert(checksumOf({bytes.data(), bytes.size()})).second) << "order counts";
}

static_assert(firstOf("abc", 2) == "ab" && firstOf("abc", 4) == "abc");
static_assert(after("abc", 2) == "c" && after("abc", 4).empty());

}  // namespace
}  // namespace jmap::test
