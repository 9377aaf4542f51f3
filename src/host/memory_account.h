// Counts the memory of a host's pools and trackers, and makes allocations fail when a test asks.
//
// All threads of a host share one account, so it is touched only when memory comes from or goes
// back to the system, not for each piece.
//
// Tested by tests/host/pool_test.cpp
#pragma once

#include <atomic>
#include <cstdint>

namespace qvhost {

class MemoryAccount {
   public:
    // ---- Bytes held from the system ----

    void take(uint64_t bytes) noexcept {
        const uint64_t now = held_.fetch_add(bytes, std::memory_order_relaxed) + bytes;
        uint64_t peak = peak_.load(std::memory_order_relaxed);
        while (now > peak && !peak_.compare_exchange_weak(peak, now, std::memory_order_relaxed)) {
        }
    }
    void giveBack(uint64_t bytes) noexcept { held_.fetch_sub(bytes, std::memory_order_relaxed); }
    [[nodiscard]] uint64_t held() const noexcept { return held_.load(std::memory_order_relaxed); }
    [[nodiscard]] uint64_t peak() const noexcept { return peak_.load(std::memory_order_relaxed); }

    // ---- Calls of pools that have ended; live pools count their own ----

    void addCalls(uint64_t calls) noexcept { calls_.fetch_add(calls, std::memory_order_relaxed); }
    [[nodiscard]] uint64_t calls() const noexcept { return calls_.load(std::memory_order_relaxed); }

    // ---- Planned failures ----

    // The n-th request from now on fails (1: the next), with `always` all later ones too.  0: none.
    void plan(uint64_t n, bool always) noexcept {
        always_.store(always, std::memory_order_relaxed);
        countdown_.store(n, std::memory_order_relaxed);
    }
    // True when the request that is being made has to fail.
    [[nodiscard]] bool fails() noexcept {
        return countdown_.load(std::memory_order_relaxed) != 0 && countsDown();
    }

   private:
    bool countsDown() noexcept {
        uint64_t left = countdown_.load(std::memory_order_relaxed);
        for (;;) {
            if (left == 0) {
                return false;
            }
            const uint64_t next =
                left == 1 && always_.load(std::memory_order_relaxed) ? 1 : left - 1;
            if (countdown_.compare_exchange_weak(left, next, std::memory_order_relaxed)) {
                return left == 1;
            }
        }
    }

    std::atomic<uint64_t> held_{0};
    std::atomic<uint64_t> peak_{0};
    std::atomic<uint64_t> calls_{0};
    std::atomic<uint64_t> countdown_{0};  // 0: nothing is planned
    std::atomic<bool> always_{false};
};

}  // namespace qvhost
