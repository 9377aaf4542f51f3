// Looking at and copying texts of every length, against what a loop over the bytes does.
#include "formats/short_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

namespace {

using qvej::anyByte;
using qvej::copyText;
using qvej::kCopySlack;
namespace short_text = qvej::short_text;

constexpr std::size_t kLongest = 70;

TEST(ShortText, FindsAByteWhereverItIsAndReadsNothingBeside) {
    const auto isComma = [](short_text::Bytes b) -> short_text::Marks { return b == ','; };
    for (std::size_t size = 0; size <= kLongest; ++size) {
        const std::unique_ptr<char[]> text(new char[size]);  // its ends are watched by sanitizers
        std::fill_n(text.get(), size, '\xFF');
        EXPECT_FALSE(anyByte({text.get(), size}, isComma)) << size;
        for (std::size_t at = 0; at < size; ++at) {
            text[at] = ',';
            EXPECT_TRUE(anyByte({text.get(), size}, isComma)) << size << " " << at;
            text[at] = '\xFF';
        }
    }
}

TEST(ShortText, CopiesTheTextAndNoMoreThanTheSlack) {
    const std::string alphabet =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+-*/:.;";
    for (std::size_t size = 0; size <= alphabet.size(); ++size) {
        const std::unique_ptr<char[]> from(new char[size]);
        std::copy_n(alphabet.data(), size, from.get());
        const std::unique_ptr<char[]> to(new char[size + kCopySlack]);
        EXPECT_EQ(copyText(to.get(), {from.get(), size}), to.get() + size);
        EXPECT_EQ(std::string_view(to.get(), size), alphabet.substr(0, size));
    }
}

}  // namespace
