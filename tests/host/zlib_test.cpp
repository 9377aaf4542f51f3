#include "tests/host/host_fixture.h"

namespace qvhost::test {
namespace {

// What deflate or inflate says at the end; `out` gives the room and is cut to what was made.
int run(int (*step)(QVZStream*, int), QVZStream& stream, std::string in, std::string& out) {
    stream.next_in = reinterpret_cast<uint8_t*>(in.data());
    stream.avail_in = static_cast<uint32_t>(in.size());
    stream.next_out = reinterpret_cast<uint8_t*>(out.data());
    stream.avail_out = static_cast<uint32_t>(out.size());
    const int result = step(&stream, QVZ_FINISH);
    out.resize(stream.total_out);
    return result;
}

TEST(Zlib, WritesAndReadsRawDeflateWithZlibsOwnResults) {
    const RunningHost host;
    auto* z = host.load<QVZLIB>(U"qvezlib");
    const std::string text(100000, 'a');
    QVZStream writing{};
    ASSERT_EQ(z->deflateInit2(&writing, -1, 8, -15, 8, 0), 0);
    std::string whole(z->deflateBound(&writing, text.size()), '\0');
    EXPECT_EQ(run(z->deflate, writing, text, whole), QVZ_STREAM_END);
    EXPECT_EQ(z->deflateEnd(&writing), 0);
    const struct {
        std::string in, out;
        int result;
    } cases[] = {{{"K\4\0", 3}, "a", QVZ_STREAM_END},
                 {whole, text, QVZ_STREAM_END},
                 {whole, text.substr(1), -5},  // too little room
                 {"K", "", -5},                // cut off
                 {"\x07\xFF\xFF", "", -3}};
    for (const auto& c : cases) {
        QVZStream reading{};
        ASSERT_EQ(z->inflateInit2(&reading, -15), 0);
        std::string out(c.out.size(), '\0');
        EXPECT_EQ(run(z->inflate, reading, c.in, out), c.result);
        EXPECT_EQ(z->inflateEnd(&reading), 0);
        EXPECT_TRUE(out == c.out);
    }
    EXPECT_EQ(z->deflateInit2(&writing, 99, 8, -15, 8, 0), -2);
    EXPECT_EQ(z->inflateInit2(&writing, 99), -2);
}

}  // namespace
}  // namespace qvhost::test
