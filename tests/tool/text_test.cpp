// The small parts of the tool that make text.
#include "tools/cli/maps/separator_watch.h"
#include "tools/cli/options/option_values.h"

#include <gtest/gtest.h>

namespace {

using qvej::cli::parseSize;
using qvej::cli::SeparatorWatch;

TEST(ToolText, SizesTakeSuffixesOf1024) {
    const std::pair<const char*, std::optional<uint64_t>> cases[] = {
        {"0", 0},
        {"64K", 65536},
        {"3m", 3u << 20},
        {"2G", uint64_t{2} << 30},
        {"1T", uint64_t{1} << 40},
        {"17179869183G", uint64_t{17179869183} << 30},
        {"17179869184G", std::nullopt},
        {"18446744073709551615", UINT64_MAX},
    };
    for (const auto& [text, size] : cases) {
        EXPECT_EQ(parseSize(text), size) << text;
    }
    for (const char* text : {"18446744073709551616", "", "K", "-1", "1.5G", "1KB", " 1"}) {
        EXPECT_EQ(parseSize(text), std::nullopt) << text;
    }
}

TEST(ToolText, TheSeparatorIsSeenInEverySplit) {
    for (const auto& [text, spelt] : {std::pair(std::string("[\"\\u0002\"]"), true),
                                      std::pair(std::string("[\"\\u0003 u000u00\"]"), false)}) {
        for (std::size_t a = 0; a <= text.size(); ++a) {
            for (std::size_t b = a; b <= text.size(); ++b) {
                SeparatorWatch watch;
                watch.take(text.substr(0, a));
                watch.take(text.substr(a, b - a));
                watch.take(text.substr(b));
                EXPECT_EQ(watch.found(), spelt) << a << " " << b;
            }
        }
    }
}

}  // namespace
