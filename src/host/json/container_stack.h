// The stack of open containers of a parser.
//
// It throws std::bad_alloc and is then as it was before.
//
// Tested by tests/json/parser_test.cpp and tests/json/module_test.cpp
#pragma once

#include "host/json/growing_bytes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qvhost {

// What a value stands in.
enum class Container : uint8_t { NONE, ARRAY, OBJECT };

// Which containers are open, a byte each.  Below the outermost stands NONE, so that the innermost
// can always be asked for.
class ContainerStack {
   public:
    // At most `most` may be open at once.
    ContainerStack(QVPoolh pool, uint64_t most) : most_(most), many_(pool) { reach(kFew); }
    ContainerStack(const ContainerStack&) = delete;
    ContainerStack& operator=(const ContainerStack&) = delete;

    // Before the first one: another limit.
    void limit(uint64_t most) {
        most_ = most;
        reach(kFew);
    }

    [[nodiscard]] Container innermost() const { return static_cast<Container>(*top_); }

    // False, and nothing has happened: as many are open as may be.
    bool push(Container container) {
        if (top_ == last_ && !makeRoom()) [[unlikely]] {
            return false;
        }
        *++top_ = static_cast<uint8_t>(container);
        return true;
    }
    void pop() { --top_; }  // innermost() is not NONE

   private:
    static constexpr std::size_t kFew = 64;

    // Room for as many again; false when there are as many as may be.
    [[gnu::noinline]] bool makeRoom() {
        const auto size = static_cast<std::size_t>(top_ - bottom_) + 1;
        if (size > most_) {
            return false;
        }
        if (bottom_ == few_) {
            bottom_ = many_.extend(2 * size);
            std::memcpy(bottom_, few_, size);
        } else {
            bottom_ = many_.extend(size) - size;
        }
        top_ = bottom_ + size - 1;
        reach(2 * size);
        return true;
    }
    // There are `size` bytes from `bottom_` on.
    void reach(std::size_t size) { last_ = bottom_ + std::min<uint64_t>(size - 1, most_); }

    uint64_t most_;
    GrowingBytes many_;  // empty as long as few_ will do
    uint8_t few_[kFew] = {static_cast<uint8_t>(Container::NONE)};
    uint8_t* bottom_ = few_;
    uint8_t* top_ = few_;
    uint8_t* last_ = nullptr;  // where `top_` may get to
};

}  // namespace qvhost
