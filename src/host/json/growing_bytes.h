// Bytes in one piece that grow: the text of a token, or of a document that is written.
//
// They throw std::bad_alloc and are then as they were before.
//
// Tested by tests/json/module_test.cpp and tests/host/writer_test.cpp
#pragma once

#include "qvehost.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

namespace qvhost {

// From a pool, or from the system when there is none.  They grow by doubling, and when they are
// long by a quarter: room that is idle counts as held, and neither a pool nor the system copies a
// huge piece to make it longer.
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

    [[nodiscard]] uint8_t* begin() { return bytes_; }  // null before the first room

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
    void append(std::string_view text) { append(text.data(), text.size()); }
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
        const std::size_t more = capacity_ < kLong ? capacity_ : capacity_ / 4;
        std::size_t capacity = std::max(kFirst, capacity_ + more);
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
    static constexpr std::size_t kLong = std::size_t{8} << 20;
    static constexpr uint8_t kNothing = 0;

    QVPoolh pool_;
    uint8_t* bytes_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace qvhost
