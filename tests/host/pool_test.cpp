#include "tests/host/host_fixture.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace qvhost::test {
namespace {

constexpr QVStrSize kKiB = 1024;
constexpr QVStrSize kMiB = 1024 * kKiB;

// Sizes around every change of the way a piece is kept.
constexpr QVStrSize kSizes[] = {0,     1,     8,       9,       24,      32,     33,
                                64,    65,    1015,    1016,    1017,    1281,   65527,
                                65528, 65536, 1048576, 4194304, 4194305, 9000000};

void fill(void* mem, QVStrSize size, unsigned char with) {
    std::memset(mem, with, static_cast<std::size_t>(size));
}

// Does nothing but `with` stand from `begin` to `end`?
bool isFilled(const void* mem, QVStrSize begin, QVStrSize end, unsigned char with) {
    const auto* bytes = static_cast<const unsigned char*>(mem) + begin;
    return end <= begin ||
           (*bytes == with &&
            std::memcmp(bytes, bytes + 1, static_cast<std::size_t>(end - begin - 1)) == 0);
}

class PoolTest : public testing::Test {
   protected:
    void* get(QVStrSize size, uint32_t flags = 0) { return pool_->allocate(pool_, size, flags); }
    void* resize(void* mem, QVStrSize size, uint32_t flags = 0) {
        return pool_->reallocate(pool_, mem, size, flags);
    }
    void release(void* mem) { EXPECT_QV_OK(pool_->release(pool_, mem)); }

    RunningHost host_;
    QVPoolh pool_ = host_.pool();
};

TEST_F(PoolTest, KeepsContentsThroughALongRandomLife) {
    std::vector<std::pair<void*, QVStrSize>> pieces(200);  // filled with their places in here
    std::mt19937 random(7);
    uint64_t calls = 0;
    for (int step = 0; step < 30000; ++step) {
        const std::size_t i = random() % pieces.size();
        auto& [mem, size] = pieces[i];
        const auto with = static_cast<unsigned char>(i);
        ASSERT_TRUE(isFilled(mem, 0, size, with)) << step;
        if (mem != nullptr && random() % 2 == 0) {
            release(std::exchange(mem, nullptr));
            size = 0;
            continue;
        }
        const QVStrSize old = size;
        size = step < std::ssize(kSizes) ? kSizes[step] : random() % (1L << random() % 19);
        mem = resize(mem, size);
        ++calls;
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(mem) % 16, 0U) << size;
        ASSERT_TRUE(isFilled(mem, 0, std::min(size, old), with)) << step;
        fill(mem, size, with);
    }
    EXPECT_LE(host_.counts().bytesInUse, static_cast<uint64_t>(256 * kMiB)) << "pieces are reused";
    EXPECT_EQ(host_.counts().allocations, calls);
    EXPECT_QV_OK(destroy(pool_));
    EXPECT_EQ(host_.counts().allocations, calls) << "counted for ever";
    EXPECT_EQ(host_.counts().bytesInUse, 0U);
}

TEST_F(PoolTest, ReusesReleasedPiecesAndClearsWhatIsAskedFor) {
    for (const QVStrSize from : kSizes) {
        void* const first = get(from);
        fill(first, from, 0xAA);
        release(first);
        const uint64_t held = host_.counts().bytesInUse;
        void* const second = get(from, QV_ZERO);
        EXPECT_TRUE(isFilled(second, 0, from, 0)) << from;
        EXPECT_TRUE(from > 4 * kMiB || (first == second && held == host_.counts().bytesInUse))
            << from;
        release(second);
        for (const QVStrSize to : kSizes) {
            void* mem = get(from);
            fill(mem, from, 0xAA);
            mem = resize(mem, to, QV_ZERO);
            EXPECT_TRUE(isFilled(mem, 0, std::min(from, to), 0xAA)) << from << " to " << to;
            EXPECT_TRUE(isFilled(mem, from, to, 0)) << from << " to " << to;
            release(mem);
        }
    }
    void* mem = get(24);
    fill(mem, 24, 0xAA);
    mem = resize(resize(mem, 4), 24, QV_ZERO);
    EXPECT_TRUE(isFilled(mem, 4, 24, 0)) << "what shrinking gave up is not remembered";
    EXPECT_TRUE(isFilled(resize(nullptr, 24, QV_ZERO), 0, 24, 0));
    // A large piece only for a similar size, wherever it stands in its list.
    void* const big = get(1000 * kKiB);
    void* const small = get(600 * kKiB);
    release(big);
    release(small);
    EXPECT_NE(get(700 * kKiB), big);
    EXPECT_EQ(get(999 * kKiB), big);
    EXPECT_EQ(get(590 * kKiB), small);
    void* const huge[] = {get(5 * kMiB), get(5 * kMiB), get(5 * kMiB)};
    for (const int i : {1, 0, 2}) {
        release(huge[i]);
    }
}

// The regions of an ended pool serve the next one with whatever they hold.
TEST_F(PoolTest, ClearsMemoryThatAnEndedPoolHasUsed) {
    for (const bool clean : {false, true}) {
        QVPoolh pool = host_.pool();
        ASSERT_NE(pool, nullptr);
        for (int i = 0; i < 16; ++i) {
            for (const QVStrSize size : {QVStrSize{48}, QVStrSize{200}, kMiB}) {
                void* const mem = pool->allocate(pool, size, clean ? QV_ZERO : 0);
                ASSERT_TRUE(!clean || isFilled(mem, 0, size, 0)) << size;
                fill(mem, size, 0xAA);
            }
        }
        EXPECT_QV_OK(pool->generic.destroy(&pool->generic));
    }
}

TEST_F(PoolTest, RefusesAbsurdRequestsAndStaysUsable) {
    void* const mem = get(100);
    for (const QVStrSize size : {-1L, INT64_MIN, INT64_MAX, 1L << 47}) {
        EXPECT_EQ(get(size), nullptr);
        EXPECT_EQ(resize(mem, size), nullptr);
        EXPECT_EQ(host_.pool(U"x", size), nullptr);
    }
    const QVPoolParms unknownKind = {2, 0, QV_NO_NUMA};
    EXPECT_EQ(host_.handle->createPool(host_.handle, &unknownKind, U"x", 1), nullptr);
    EXPECT_EQ(host_.handle->createPool(host_.handle, nullptr, U"x", 1), nullptr);
    EXPECT_EQ(host_.counts().allocations, 1U);
    EXPECT_QV(QV_BADPARMS, pool_->release(pool_, nullptr));
    release(mem);
}

TEST_F(PoolTest, HoldsLittleMoreThanWasAskedFor) {
    EXPECT_EQ(host_.counts().bytesInUse, 0U) << "an empty pool holds nothing";
    ASSERT_NE(get(100), nullptr);
    EXPECT_LE(host_.counts().bytesInUse, 64U * kKiB);
    constexpr uint64_t kBlocks = 300;
    for (uint64_t i = 0; i < kBlocks; ++i) {
        ASSERT_TRUE(get(kMiB) != nullptr && get(48) != nullptr);
    }
    const uint64_t held = host_.counts().bytesInUse;
    EXPECT_TRUE(held >= kBlocks * kMiB && held <= kBlocks * kMiB / 20 * 21) << held;
    EXPECT_QV_OK(destroy(pool_));
    EXPECT_EQ(host_.counts().bytesPeak, held);

    pool_ = host_.pool(U"reserved", 10 * kMiB);
    auto* const first = static_cast<char*>(get(4 * kMiB));
    EXPECT_LT(static_cast<char*>(get(4 * kMiB)) - first, 5 * kMiB) << "in one stretch";
}

TEST_F(PoolTest, FailsTheRequestThatATestNames) {
    const struct {
        uint64_t n;
        bool always;
        const char* outcome;  // of pool, allocate, reallocate, tracker, pool, allocate
    } cases[] = {{0, false, "++++++"}, {1, false, "-+++++"}, {2, false, "+-++++"},
                 {3, false, "++-+++"}, {4, false, "+++-++"}, {6, false, "+++++-"},
                 {7, false, "++++++"}, {1, true, "------"},  {4, true, "+++---"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.n << (c.always ? " and all later" : ""));
        void* const mem = get(10);
        fill(mem, 10, 0xAA);
        qvPortableFailAllocation(host_.handle, c.n, c.always);
        std::string outcome;
        for (const void* got :
             std::initializer_list<const void*>{host_.pool(), get(10), resize(mem, kMiB),
                                                host_.tracker(), host_.pool(), get(10)}) {
            outcome += got == nullptr ? '-' : '+';
        }
        EXPECT_EQ(outcome, c.outcome);
        EXPECT_TRUE(outcome[2] == '+' || isFilled(mem, 0, 10, 0xAA)) << "the piece stays";
        qvPortableFailAllocation(host_.handle, 0, false);
        EXPECT_NE(get(10), nullptr);
    }
}

#if defined(__SANITIZE_ADDRESS__)
TEST_F(PoolTest, ShowsOverrunsAndUseAfterReleaseToTheAddressSanitizer) {
    for (const QVStrSize size : {5L, 56L, 64 * kKiB, 5 * kMiB}) {
        auto* const mem = static_cast<volatile char*>(get(size));
        EXPECT_DEATH(mem[size] = 1, "use-after-poison");
    }
    auto* const mem = static_cast<volatile char*>(get(40));
    release(const_cast<char*>(mem));
    EXPECT_DEATH(mem[0] = 1, "use-after-poison");
}
#endif

}  // namespace
}  // namespace qvhost::test
