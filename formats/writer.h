// Buffered output: to a descriptor, or to one of many files.
#pragma once

#include "formats/short_text.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace qvej {

// Where the bytes of a Writer go.
class Target {
   public:
    Target() = default;
    virtual ~Target() = default;
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

    // Takes all of it.  Throws qvej::Error.
    virtual void write(const char* text, std::size_t size) = 0;
    // Is it a terminal?
    [[nodiscard]] virtual bool terminal() const { return false; }

    // Bytes of memory that it takes, and gives back with `release`: all that was written is passed
    // on then.
    [[nodiscard]] virtual std::size_t held() const { return 0; }
    virtual void release() {}
};

class Writer {
   public:
    // `most`: bytes that are buffered; the buffer grows up to that, and beyond only for more in one
    // piece of `room`.
    explicit Writer(std::unique_ptr<Target> target, std::size_t most = kMost)
        : target_(std::move(target)), most_(most) {}

    // All of these throw qvej::Error when the bytes cannot be written.
    void append(const char* text, std::size_t size) {
        if (size > capacity_ - used_) {
            appendSlowly(text, size);
            return;
        }
        if (size != 0) {  // an empty text may have no address
            std::memcpy(buffer_.get() + used_, text, size);
            used_ += size;
        }
    }
    void append(std::string_view text) { append(text.data(), text.size()); }
    void put(char c) { append(&c, 1); }

    // Room for `size` bytes, and for copyText; `advance` says how far it was used.
    char* room(std::size_t size) {
        if (capacity_ - used_ < size + kCopySlack) {
            makeRoom(size + kCopySlack);
        }
        return buffer_.get() + used_;
    }
    void advance(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.get()); }

    // Passes on what is buffered.  To be called at the end: the destructor does not.
    void flush();

    // Likewise, and gives all memory back.  To be called at the end of a file.
    void release();

    // Bytes of memory that the buffer and the target take.
    [[nodiscard]] std::size_t held() const { return capacity_ + target_->held(); }

    [[nodiscard]] bool terminal() const { return target_->terminal(); }

    // Of a writer to memory: what has been written since the last call.
    struct Text {
        std::unique_ptr<char[]> bytes;
        std::size_t size;
    };
    [[nodiscard]] Text take();

   private:
    static constexpr std::size_t kMost = std::size_t{1} << 18;
    static constexpr std::size_t kLeast = 256;

    void appendSlowly(const char* text, std::size_t size);
    void makeRoom(std::size_t size);

    std::unique_ptr<Target> target_;
    std::size_t most_;
    std::unique_ptr<char[]> buffer_;
    std::size_t capacity_ = 0;
    std::size_t used_ = 0;
};

// Standard output.
Writer standardOutput();

// Memory: all stays in the buffer until it is taken.
Writer memoryWriter();

// Writes to a descriptor, all of it.  False with errno.
bool writeAll(int descriptor, const char* text, std::size_t size);

}  // namespace qvej
