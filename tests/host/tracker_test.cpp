#include "host/byte_hash.h"
#include "tests/host/host_fixture.h"

#include <set>

namespace qvhost::test {
namespace {

TEST(Tracker, FindsByRawBytesAndLength) {
    const RunningHost host;
    // Alike but for length, a zero byte, case, or nothing at all; then many.
    std::vector<std::string> keys = {"", "a", "A", std::string("a\0", 2), "ab", "\xFF"};
    for (int i = 0; i < 100000; ++i) {
        keys.push_back("\2root\2orders\2item" + std::to_string(i));
    }
    QVTrackerh tracker = host.tracker();
    for (std::string& key : keys) {
        EXPECT_EQ(tracker->find(tracker, key.data(), lengthOf(key)), nullptr);
        ASSERT_QV_OK(tracker->insert(tracker, key.data(), lengthOf(key), &keys));
        ASSERT_QV_OK(tracker->insert(tracker, key.data(), lengthOf(key), &key));  // replaces
    }
    for (std::string& key : keys) {
        ASSERT_EQ(tracker->find(tracker, std::string(key).data(), lengthOf(key)), &key);
    }
    EXPECT_EQ(tracker->find(tracker, "a", -1), nullptr);
    EXPECT_QV(QV_BADPARMS, tracker->insert(tracker, "a", -1, &keys));
    EXPECT_GT(host.counts().bytesInUse, keys.size() * 24);
    EXPECT_QV_OK(destroy(tracker));
    EXPECT_EQ(host.counts().bytesInUse, 0U);
}

TEST(ByteHash, TellsShortTextsOfDifferentLengthsApart) {
    const ByteHash hash(0x0123456789ABCDEF);  // fixed, so that nothing here is left to chance
    std::set<std::size_t> hashes;
    for (std::size_t n = 0; n <= 40; ++n) {
        std::string text(n, '\0');
        EXPECT_TRUE(hashes.insert(hash(text)).second) << n;
        for (std::size_t bit = 0; bit < n * 8; ++bit) {
            text[bit / 8] = static_cast<char>(1 << bit % 8);
            EXPECT_TRUE(hashes.insert(hash(text)).second) << n << " " << bit;
            text[bit / 8] = 0;
        }
    }
}

}  // namespace
}  // namespace qvhost::test
