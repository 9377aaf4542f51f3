// The memory of a parser: text that grows, and the stack of open containers.
//
// Both throw std::bad_alloc and are then as they were before.
//
// Tested by tests/json/parser_test.cpp and tests/json/module_test.cpp
#pragma once

#include "qvehost.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace qvhost {

// Bytes in one piece that grow by doubling; from a pool, or from the system when there is none.
class GrowingBytes {
   public:
    explicit GrowingBytes(QVPoolh pool) : pool_(pool) {}
    ~GrowingBytes() { release(); }
    GrowingBytes(const GrowingBytes&) = delete;
    GrowingBytes& operator=(const GrowingBytes&) = delete;

    // Never null, also before the first byte: a null text would be taken for none.
    [[nodiscard]] const uint8_t* data() const { return bytes_ != nullptr ? bytes_ : &kNothing; }
    [[nodiscard]] std::size_t size() const { return size_; }

    void clear() { size_ = 0; }
    void shrink(std::size_t size) { size_ = size; }  // size <= size()

    // The place after the last byte, with room for `extra` more.
    uint8_t* room(std::size_t extra) {
        if (capacity_ - size_ < extra) {
            grow(extra);
        }
        return bytes_ + size_;
    }
    void append(const void* bytes, std::size_t count) {
        uint8_t* place = room(count);
        if (count != 0) {
            std::memcpy(place, bytes, count);
        }
        size_ += count;
    }
    void append(uint8_t byte) {
        *room(1) = byte;
        ++size_;
    }
    // Appends `count` bytes that the caller sets, from the place returned on.
    uint8_t* extend(std::size_t count) {
        uint8_t* place = room(count);
        size_ += count;
        return place;
    }

   private:
    void grow(std::size_t extra) {
        std::size_t capacity = capacity_ < kFirst ? kFirst : capacity_ * 2;
        if (capacity - size_ < extra) {
            capacity = size_ + extra;
        }
        void* bytes = pool_ == nullptr
                          ? std::realloc(bytes_, capacity)
                          : pool_->reallocate(pool_, bytes_, static_cast<QVStrSize>(capacity), 0);
        if (bytes == nullptr) {
            throw std::bad_alloc();
        }
        bytes_ = static_cast<uint8_t*>(bytes);
        capacity_ = capacity;
    }
    void release() {
        if (pool_ == nullptr) {
            std::free(bytes_);
        } else if (bytes_ != nullptr) {
            (void)pool_->release(pool_, bytes_);  // the pool takes it at its end anyway
        }
    }

    static constexpr std::size_t kFirst = 256;
    static constexpr uint8_t kNothing = 0;

    QVPoolh pool_;
    uint8_t* bytes_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

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
