// A text that can only be read, before memory that nobody may touch: a write to it, or a read
// behind it, ends the test.
#pragma once

#include <gtest/gtest.h>

#include <string_view>
#include <sys/mman.h>

namespace jmap::test {

class ReadOnlyText {
   public:
    explicit ReadOnlyText(std::string_view text) : size_(text.size()) {
        text.copy(pages_ + kPage - size_, size_);
        EXPECT_EQ(mprotect(pages_, kPage, PROT_READ), 0);
        EXPECT_EQ(mprotect(pages_ + kPage, kPage, PROT_NONE), 0);
    }
    ~ReadOnlyText() { munmap(pages_, 2 * kPage); }
    ReadOnlyText(const ReadOnlyText&) = delete;
    [[nodiscard]] std::string_view view() const { return {pages_ + kPage - size_, size_}; }

   private:
    static constexpr std::size_t kPage = 4096;
    std::size_t size_;
    char* pages_ = static_cast<char*>(
        mmap(nullptr, 2 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
};

}  // namespace jmap::test
