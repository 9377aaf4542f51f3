// The memory of a parser: text that grows, and the stack of open containers.
//
// Both throw std::bad_alloc and are then as they were before.
//
// Tested by tests/json/parser_test.cpp and module_test.cpp
#pragma once

#include "qvehost.h"

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

    // The place behind the last byte, with room for `extra` more.
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

// Which containers are open, one bit each: 1 for an object.  The innermost 64 stand in one word.
class ContainerStack {
   public:
    explicit ContainerStack(QVPoolh pool) : outer_(pool) {}

    [[nodiscard]] uint64_t depth() const { return depth_; }
    [[nodiscard]] bool inObject() const { return (inner_ & 1) != 0; }  // depth() > 0

    void push(bool object) {
        if (depth_ % 64 == 0 && depth_ != 0) {
            outer_.append(&inner_, sizeof inner_);
        }
        inner_ = inner_ << 1 | static_cast<uint64_t>(object);
        ++depth_;
    }
    void pop() {  // depth() > 0
        --depth_;
        inner_ >>= 1;
        if (depth_ % 64 == 0 && depth_ != 0) {
            outer_.shrink(outer_.size() - sizeof inner_);
            std::memcpy(&inner_, outer_.data() + outer_.size(), sizeof inner_);
        }
    }

   private:
    GrowingBytes outer_;
    uint64_t inner_ = 0;
    uint64_t depth_ = 0;
};

}  // namespace qvhost
