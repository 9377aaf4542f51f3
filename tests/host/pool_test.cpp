#include "tests/host/host_fixture.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace qvhost::test {
namespace {

constexpr QVStrSize kKiB = 1024;
constexpr QVStrSize kMiB = 1024 * kKiB;

// Sizes around every change of the way a piece is kept.
constexpr QVStrSize kSizes[] = {0,     8,     9,       16,      24,      32,
                                33,    64,    65,      1016,    1017,    65527,
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

struct PoolTest : testing::Test {
    void* get(QVStrSize size) { return pool->allocate(pool, size, 0); }
    void* resize(void* mem, QVStrSize size, uint32_t flags = 0) {
        return pool->reallocate(pool, mem, size, flags);
    }
    void release(void* mem) { EXPECT_QV_OK(pool->release(pool, mem)); }

    RunningHost host;
    QVPoolh pool = host.pool();
};

// The second pool is served from regions that the first one has filled.
TEST_F(PoolTest, KeepsContentsAndClearsWhatIsAskedForThroughLongRandomLives) {
    std::mt19937 random(7);
    uint64_t calls = 0;
    for (int life = 0; life < 2; ++life, pool = host.pool()) {
        std::vector<std::pair<void*, QVStrSize>> pieces(200);  // filled with their places in here
        for (int step = 0; step < 20000; ++step) {
            const std::size_t i = random() % pieces.size();
            auto& [mem, size] = pieces[i];
            const auto with = static_cast<unsigned char>(i + 1);
            ASSERT_TRUE(isFilled(mem, 0, size, with)) << step;
            if (mem != nullptr && random() % 2 == 0) {
                release(std::exchange(mem, nullptr));
                size = 0;
                continue;
            }
            const QVStrSize old = size;
            const uint32_t flags = random() % 2 == 0 ? QV_ZERO : 0;
            size = random() % 32 == 0 ? kSizes[random() % std::size(kSizes)]
                                      : random() % (1L << random() % 19);
            mem = resize(mem, size, flags);
            ++calls;
            ASSERT_TRUE(reinterpret_cast<std::uintptr_t>(mem) % 16 == 0 &&
                        isFilled(mem, 0, std::min(size, old), with) &&
                        (flags == 0 || isFilled(mem, old, size, 0)))
                << old << " to " << size;
            fill(mem, size, with);
        }
        EXPECT_LE(host.counts().bytesInUse, static_cast<uint64_t>(256 * kMiB)) << "reused";
        EXPECT_QV_OK(destroy(pool));
        EXPECT_EQ(host.counts().allocations, calls) << "counted for ever";
        EXPECT_TRUE(host.counts().bytesInUse == 0 && host.counts().bytesPeak > 20 * kMiB);
    }
}

TEST_F(PoolTest, LeavesLittleRoomAfterWhatGrowsByLittle) {
    void* mem = get(100);
    for (QVStrSize size = 1000; size < kMiB; size += 1000) {
        mem = resize(mem, size);
        (void)get(16);  // so that it cannot grow in its place
    }
    EXPECT_LE(host.counts().bytesInUse, static_cast<uint64_t>(16 * kMiB));
    release(mem);
}

// The system moves them, and each has neighbours.
TEST_F(PoolTest, ResizesHugePiecesInAnyOrder) {
    std::mt19937 random(3);
    std::vector<std::pair<void*, QVStrSize>> pieces(5);
    for (int step = 0; step < 100; ++step) {
        const std::size_t i = random() % pieces.size();
        auto& [mem, size] = pieces[i];
        const auto with = static_cast<unsigned char>(i + 1);
        const QVStrSize old = size;
        size = step % 10 == 9 ? 0 : 5 * kMiB + random() % (12 * kMiB);
        if (size == 0 && mem != nullptr) {
            release(std::exchange(mem, nullptr));
        } else {
            mem = resize(mem, size, QV_ZERO);
            ASSERT_TRUE(isFilled(mem, 0, std::min(size, old), with) && isFilled(mem, old, size, 0))
                << old << " to " << size;
            fill(mem, size, with);
        }
        QVStrSize sum = 0;
        for (const auto& piece : pieces) {
            sum += piece.second;
        }
        // A piece may stand in one of up to twice its length.
        EXPECT_GE(host.counts().bytesInUse, static_cast<uint64_t>(sum)) << step;
        EXPECT_LE(host.counts().bytesInUse, static_cast<uint64_t>(2 * sum + kMiB)) << step;
    }
    EXPECT_QV_OK(destroy(pool));
    EXPECT_EQ(host.counts().bytesInUse, 0U);
}

TEST_F(PoolTest, RefusesAbsurdRequestsAndStaysUsable) {
    void* const mem = get(100);
    for (const QVStrSize size : {-1L, INT64_MIN, INT64_MAX, 1L << 47}) {
        EXPECT_TRUE(!get(size) && !resize(mem, size) && !host.pool(U"x", size)) << size;
    }
    EXPECT_EQ(host.handle->createPool(host.handle, nullptr, U"x", 1), nullptr);
    EXPECT_EQ(host.counts().allocations, 1U);
    EXPECT_QV(QV_BADPARMS, pool->release(pool, nullptr));
    release(mem);
}

TEST_F(PoolTest, FailsTheRequestThatATestNames) {
    for (const std::string expected :
         {"+++++", "-++++", "+-+++", "++-++", "+++-+", "++++-", "+++--", "++---", "-----"}) {
        qvPortableFailAllocation(host.handle, 0, false);
        void* const mem = get(10);
        fill(mem, 10, 0xAA);
        const bool always = expected.find("--") != expected.npos;
        qvPortableFailAllocation(host.handle, expected.find('-') + 1, always);
        std::string outcome;
        for (const void* one : {static_cast<void*>(host.pool()), get(10), resize(mem, kMiB),
                                static_cast<void*>(host.tracker()), get(10)}) {
            outcome += one == nullptr ? '-' : '+';
        }
        EXPECT_EQ(outcome, expected);
        EXPECT_TRUE(outcome[2] == '+' || isFilled(mem, 0, 10, 0xAA)) << "the piece stays";
    }
}

}  // namespace
}  // namespace qvhost::test
