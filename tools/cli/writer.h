// Buffered output to a descriptor: standard output or a file.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

class Writer {
   public:
    // Borrows the descriptor.  `name` is for messages.
    Writer(int descriptor, std::string name)
        : descriptor_(descriptor), name_(std::move(name)), buffer_(new char[kSize]) {}

    // All of these throw a Failure when the bytes cannot be written.
    void append(const char* text, std::size_t size) {
        if (size > kSize - used_) {
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

    // Room for at least kRoom bytes; `advance` says how far it was used.
    static constexpr std::size_t kRoom = 64;
    char* room() {
        if (kSize - used_ < kRoom) {
            flush();
        }
        return buffer_.get() + used_;
    }
    void advance(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.get()); }

    // Passes on what is buffered.  To be called at the end: the destructor does not.
    void flush();

    // Is it a terminal?
    [[nodiscard]] bool terminal() const;

   private:
    static constexpr std::size_t kSize = std::size_t{1} << 18;

    void appendSlowly(const char* text, std::size_t size);
    void write(const char* text, std::size_t size) const;

    int descriptor_;
    std::string name_;
    std::unique_ptr<char[]> buffer_;
    std::size_t used_ = 0;
};

// Standard output.
Writer standardOutput();

// Prints "qvejmap: LINE" on standard error, made safe, and `excerpt` as it is.
void tell(std::string_view line, std::string_view excerpt = {});

// Prints a line on standard error, made safe, without the program's name.
void tellPlain(std::string_view line);
