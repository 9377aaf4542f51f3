// The scanning kernels against a plain search.
#include "host/json/scan_avx2.h"
#include "host/json/scan_portable.h"
#include "host/json/scan_sse2.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
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
};

template <class Kernel>
class ScanTest : public testing::Test {
   protected:
    void SetUp() override {
        if constexpr (requires { Kernel::offered(); }) {
            if (!Kernel::offered()) {
                GTEST_SKIP() << "this machine cannot run the kernel";
            }
        }
    }
};

#if defined(__SSE2__)
using Kernels = testing::Types<ScanPortable, ScanSse2, ScanAvx2>;
#else
using Kernels = testing::Types<ScanPortable>;
#endif
TYPED_TEST_SUITE(ScanTest, Kernels, );

template <class Kernel, bool kUtf8>
void expectStops(const std::string& block) {
    const Bytes bytes(block);
    const Bytes twice(block + block);
    uint64_t stops = 0;
    for (std::size_t i = 0; i < 64; ++i) {
        stops |= uint64_t{stopsText(bytes[i], kUtf8)} << i;
    }
    uint64_t found[2];
    Kernel::template textStops<kUtf8>(twice.from(), 2, found);
    ASSERT_EQ(stops, found[0]);
    ASSERT_EQ(stops, found[1]);
    ASSERT_EQ(stops == 0 ? bytes.to() : bytes.from() + std::countr_zero(stops),
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
            for (const std::size_t more : {1, 40}) {
                const Bytes bytes(whole.substr(0, before) + fraction + behind +
                                  std::string(more - 1, 'x'));
                const uint8_t* stop = bytes.to() - more;
                for (const uint8_t* end : {bytes.to(), stop}) {
                    const DecimalRun run = TypeParam::decimal(bytes.from(), end);
                    ASSERT_EQ(before, static_cast<std::size_t>(run.point - bytes.from()));
                    ASSERT_EQ(stop, run.end);
                }
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
        const std::size_t behindLast = blanks.rfind('\n') + 1;  // 0: there is none
        ASSERT_EQ(behindLast == 0 ? nullptr : bytes.from() + behindLast - 1, lines.last);
    }
}

}  // namespace
}  // namespace qvhost
