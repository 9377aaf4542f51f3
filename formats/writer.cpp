// See writer.h.
#include "formats/writer.h"

#include "client/error.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <unistd.h>
#include <utility>

namespace qvej {

namespace {

class StandardOutput final : public Target {
   public:
    void write(const char* text, std::size_t size) override {
        if (!writeAll(STDOUT_FILENO, text, size)) {
            throw fileError(QV_IO_WRITE, "<stdout>");
        }
    }
    [[nodiscard]] bool terminal() const override { return ::isatty(STDOUT_FILENO) == 1; }
};

class Nowhere final : public Target {
   public:
    void write(const char* /*text*/, std::size_t /*size*/) override {}
};

}  // namespace

bool writeAll(int descriptor, const char* text, std::size_t size) {
    while (size != 0) {
        const ssize_t written = ::write(descriptor, text, size);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        text += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

void Writer::flush() {
    const std::size_t size = used_;
    used_ = 0;
    if (size != 0) {
        target_->write(buffer_.get(), size);
    }
}

void Writer::release() {
    flush();
    buffer_.reset();
    capacity_ = 0;
    target_->release();
}

// Room for `size` bytes: by passing on what is there when it gets too much, and by growing.
void Writer::makeRoom(std::size_t size) {
    if (used_ + size > most_) {
        flush();
    }
    std::size_t capacity = std::max(capacity_, kLeast);
    while (capacity < used_ + size) {
        capacity *= 2;
    }
    if (capacity != capacity_) {
        std::unique_ptr<char[]> grown(new char[capacity]);
        std::copy_n(buffer_.get(), used_, grown.get());
        buffer_ = std::move(grown);
        capacity_ = capacity;
    }
}

void Writer::appendSlowly(const char* text, std::size_t size) {
    if (size >= most_) {
        flush();
        target_->write(text, size);
        return;
    }
    makeRoom(size);
    append(text, size);
}

Writer::Text Writer::take() {
    capacity_ = 0;
    return {std::move(buffer_), std::exchange(used_, 0)};
}

Writer memoryWriter() {
    return Writer(std::make_unique<Nowhere>(), SIZE_MAX / 2);
}

Writer standardOutput() {
    return Writer(std::make_unique<StandardOutput>());
}

}  // namespace qvej
