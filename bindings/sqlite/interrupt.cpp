// See interrupt.h.
#include "bindings/sqlite/interrupt.h"

#include <chrono>
#include <utility>

namespace qvej::sqlite {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kLookAgain{20};

thread_local sqlite3* workedFor = nullptr;
thread_local Clock::time_point nextLook;

}  // namespace

Interruptible::Interruptible(sqlite3* connection) : before_(std::exchange(workedFor, connection)) {}

Interruptible::~Interruptible() {
    workedFor = before_;
}

bool isInterrupted() {
    if (workedFor == nullptr || Clock::now() < nextLook) {
        return false;
    }
    nextLook = Clock::now() + kLookAgain;
    return sqlite3_exec(workedFor, "SELECT 1", nullptr, nullptr, nullptr) == SQLITE_INTERRUPT;
}

}  // namespace qvej::sqlite
