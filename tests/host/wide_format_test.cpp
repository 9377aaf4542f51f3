#include "host/wide_format.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <string>

namespace qvhost {
namespace {

template <auto Format>
auto formatted(const char32_t* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    auto text = Format(fmt, static_cast<QVStrSize>(std::u32string_view(fmt).size()), args);
    va_end(args);
    return text;
}
constexpr auto* bytes = &formatted<&formatUtf8>;
constexpr auto* characters = &formatted<&formatUtf32>;

TEST(WideFormat, PrintsAsPrintfDoesAndSurvivesWrongArguments) {
    const char* const noBytes = nullptr;
    const QVChar* const noCharacters = nullptr;
    const std::pair<std::string, std::string> cases[] = {
        {bytes(U"100%% of %.*hs", 5, "ab\0cd"), std::string("100% of ab\0cd", 13)},
        {bytes(U"[%5hs|%-6.*hs|%*hs]", "abc", 3, "abcdef", -5, "abc"), "[  abc|abc   |abc  ]"},
        {bytes(U"[%4hs]", "\xC3\xA9"), "[  \xC3\xA9]"},             // counts bytes
        {bytes(U"[%-3s]", U"\U0001F600"), "[\xF0\x9F\x98\x80  ]"},  // counts characters
        {bytes(U"[%.2s%s]", U"a\u00E9c", U"\xD800"), "[a\xC3\xA9\xEF\xBF\xBD]"},
        {bytes(U"[%.*hs]", 2, "\xE9\xFF"), "[\xE9\xFF]"},  // any bytes pass
        {bytes(U"[%.*hs%hs%4s]", 9, noBytes, noBytes, noCharacters), "[    ]"},
        {bytes(U"[%.*hs%.*s]", -1, "not terminated?", INT_MIN, U"nor this"), "[]"},
        {bytes(U"[%8.3d|%-4ld|%.0d|%2d]", -7, 5L, 0, 123), "[    -007|5   ||123]"},
        {bytes(U"%d %ld %lld", INT_MIN, 0L, LLONG_MIN), "-2147483648 0 -9223372036854775808"},
        {bytes(U"[%4.2g|%-9.10g|%.0g]", 99.95, 999999.5, 12.5), "[1e+02|999999.5 |1e+01]"},
        {bytes(U"%g %g %g", 999999.5, 0.0001, 0.00001), "1e+06 0.0001 1e-05"},
        {bytes(U"%g %g %g %.*g", -0.0, -HUGE_VAL, std::nan(""), -1, 1.5), "-0 -inf nan 1.5"},
        {bytes(U"%d %x %d", 1, 2, 3), "1 %x %d"},  // types are unknown from there on
        {bytes(U"%d %-5.", 1), "1 %-5."}};
    for (const auto& [actual, expected] : cases) {
        EXPECT_EQ(actual, expected);
    }
    EXPECT_EQ(bytes(U"%*d", INT_MIN, 1).size(), 65535U);
    EXPECT_EQ(bytes(U"%99999999999d", 1).size(), 65535U);
    EXPECT_EQ(bytes(U"%.99999g", 5e-324).size(), 757U) << "all the digits there are";
    EXPECT_EQ(characters(U"%hs%ld", "\xC3\xA9\xF0\x9F\x98\x80", 2L), U"\u00E9\U0001F6002");
    EXPECT_EQ(characters(U"[%2hs]", "\xE9"), U"[ \u00E9]") << "not UTF-8: the byte's own number";
}

}  // namespace
}  // namespace qvhost
