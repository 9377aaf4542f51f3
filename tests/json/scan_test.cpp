// The scanning kernels against a plain search.
#include "host/json/scan_portable.h"
#include "host/json/scan_sse2.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace qvhost {
namespace {

// What stops the text of a string, said once more and plainly.
bool stopsText(uint8_t byte, bool utf8) {
    return byte < 0x20 || byte == '"' || byte == '\\' || (utf8 && byte >= 0x80);
}

// Bytes that end where their memory ends.
struct Bytes : std::vector<uint8_t> {
    explicit Bytes(const std::string& text) : vector(text.begin(), text.end()) {}
    [[nodiscard]] const uint8_t* from() const { return data(); }
    [[nodiscard]] const uint8_t* to() const { return data() + size(); }
    [[nodiscard]] const uint8_t* stop(const uint8_t* p, bool utf8) const {
        return std::find_if(p, to(), [utf8](uint8_t byte) { return stopsText(byte, utf8); });
    }
};

template <class Kernel>
class ScanTest : public testing::Test {};

#if defined(__SSE2__)
using Kernels = testing::Types<ScanPortable, ScanSse2>;
#else
using Kernels = testing::Types<ScanPortable>;
#endif
TYPED_TEST_SUITE(ScanTest, Kernels, );

template <class Kernel, bool kUtf8>
void expectStops(const std::string& block) {
    const Bytes bytes(block);
    uint64_t stops = 0;
    for (std::size_t i = 0; i < 64; ++i) {
        stops |= uint64_t{stopsText(bytes[i], kUtf8)} << i;
    }
    ASSERT_EQ(stops, Kernel::template textStops<kUtf8>(bytes.from()));
    ASSERT_EQ(bytes.stop(bytes.from(), kUtf8),
              (Kernel::template text<kUtf8>(bytes.from(), bytes.to())));
}

// Every byte alone among letters, and blocks in which neighbours differ, so that no carry between
// them goes unseen.
TYPED_TEST(ScanTest, KnowsEveryByteThatStopsText) {
    std::mt19937 random(1);
    const std::string special = "\"\\\x1F\x20\x21\x23\x5B\x5D\x7F\x80\xA2\xDC\xFF\1";
    for (std::size_t round = 0; round < 4096; ++round) {
        std::string block(64, 'x');
        block[round * 7 % 64] = static_cast<char>(round);
        for (std::size_t i = 0; round >= 1024 && i < 64; ++i) {
            block[i] = random() % 2 == 0 ? special[random() % special.size()]
                                         : static_cast<char>(random());
        }
        expectStops<TypeParam, true>(block);
        expectStops<TypeParam, false>(block);
    }
}

TYPED_TEST(ScanTest, FindsTheEndsOfDecimals) {
    for (const char behind : {',', 'e', '/', ':', '\x00', '\xB5'}) {
        for (std::size_t round = 0; round < 36 * 37; ++round) {
            const std::string whole = "012345678901234567890123456789012345";
            const std::size_t before = round / 37;
            const std::string fraction = round % 37 == 0 ? "" : "." + whole.substr(37 - round % 37);
            const Bytes bytes(whole.substr(0, before) + fraction + behind);
            for (const uint8_t* end : {bytes.to(), bytes.to() - 1}) {
                const DecimalRun run = TypeParam::decimal(bytes.from(), end);
                ASSERT_EQ(before, static_cast<std::size_t>(run.point - bytes.from()));
                ASSERT_EQ(bytes.to() - 1, run.end);
            }
        }
    }
}

TYPED_TEST(ScanTest, CountsTheLinesOfWhiteSpace) {
    std::mt19937 random(2);
    for (int round = 0; round < 3000; ++round) {
        std::string blanks(random() % 70, ' ');
        for (char& c : blanks) {
            c = " \t\r\n"[random() % 4];
        }
        const std::string behind[] = {"", "x\n", "\x0B\n              "};
        const Bytes bytes(blanks + behind[round % 3]);
        LineEnds lines;
        ASSERT_EQ(bytes.from() + blanks.size(), TypeParam::space(bytes.from(), bytes.to(), lines));
        ASSERT_EQ(std::count(blanks.begin(), blanks.end(), '\n'), lines.count);
        const std::size_t last = blanks.rfind('\n');
        ASSERT_EQ(last == std::string::npos ? nullptr : bytes.from() + last, lines.last);
    }
}

}  // namespace
}  // namespace qvhost
