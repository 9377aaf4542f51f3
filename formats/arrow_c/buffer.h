// Bytes of a column that grows, aligned as readers of Arrow like it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace qvej {

class Buffer {
   public:
    static constexpr std::size_t kAlignment = 64;

    Buffer() = default;
    Buffer(Buffer&& other) noexcept
        : bytes_(std::move(other.bytes_)),
          size_(std::exchange(other.size_, 0)),
          capacity_(std::exchange(other.capacity_, 0)) {}
    Buffer& operator=(Buffer&& other) noexcept {
        bytes_ = std::move(other.bytes_);
        size_ = std::exchange(other.size_, 0);
        capacity_ = std::exchange(other.capacity_, 0);
        return *this;
    }

    // Never null: some readers take null for a buffer that is not there.
    [[nodiscard]] const void* data() const { return bytes_ ? bytes_.get() : kNothing; }
    [[nodiscard]] std::byte* bytes() { return bytes_.get(); }
    [[nodiscard]] std::size_t size() const { return size_; }

    void append(const void* bytes, std::size_t count) {
        makeRoom(count);
        if (count != 0) {
            std::memcpy(bytes_.get() + size_, bytes, count);
        }
        size_ += count;
    }
    // Where `count` bytes can be written that are appended by `use`, or fewer of them.
    [[nodiscard]] std::byte* room(std::size_t count) {
        makeRoom(count);
        return bytes_.get() + size_;
    }
    void use(std::size_t count) { size_ += count; }

    template <class Value>
    void append(const Value& value) {
        append(&value, sizeof value);
    }

    // What has been appended, in no more memory than it needs.  This one keeps its memory, for what
    // comes next.
    [[nodiscard]] Buffer take() {
        Buffer taken;
        taken.reserve(size_);
        taken.append(data(), size_);
        size_ = 0;
        return taken;
    }

   private:
    struct Free {
        void operator()(std::byte* bytes) const {
            ::operator delete[](bytes, std::align_val_t{kAlignment});
        }
    };
    // Doubles.  Throws std::bad_alloc.
    void makeRoom(std::size_t count) {
        if (capacity_ - size_ >= count) {
            return;
        }
        std::size_t capacity = capacity_ == 0 ? kAlignment : capacity_;
        while (capacity - size_ < count) {
            capacity *= 2;
        }
        reserve(capacity);
    }
    void reserve(std::size_t capacity) {
        std::unique_ptr<std::byte[], Free> bytes(new (std::align_val_t{kAlignment})
                                                     std::byte[capacity]);
        if (size_ != 0) {
            std::memcpy(bytes.get(), bytes_.get(), size_);
        }
        bytes_ = std::move(bytes);
        capacity_ = capacity;
    }

    alignas(kAlignment) static constexpr std::byte kNothing[kAlignment] = {};

    std::unique_ptr<std::byte[], Free> bytes_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace qvej
