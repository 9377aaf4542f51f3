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
        ASSERT_QV_OK(tracker->insert(tracker, key.data(), lengthOf(key), &key));
    }
    for (std::string& key : keys) {
        const std::string sameBytes = key;
        ASSERT_EQ(tracker->find(tracker, sameBytes.data(), lengthOf(key)), &key);
    }
    EXPECT_QV_OK(tracker->insert(tracker, "ab", 2, &keys[0]));
    EXPECT_EQ(tracker->find(tracker, "ab", 2), &keys[0]) << "the later value replaces";
    EXPECT_EQ(tracker->find(tracker, "a", -1), nullptr);
    EXPECT_QV(QV_BADPARMS, tracker->insert(tracker, "a", -1, &keys[0]));
    EXPECT_GT(host.counts().bytesInUse, keys.size() * 24);
    EXPECT_QV_OK(destroy(tracker));
    EXPECT_EQ(host.counts().bytesInUse, 0U);
    EXPECT_EQ(host.handle->createTracker(host.handle, 2, 1, U"x", 1), nullptr) << "unknown kind";
}

TEST(ByteHash, DependsOnEveryByteItsPlaceAndTheSeed) {
    for (std::size_t length = 1; length <= 70; ++length) {
        std::string text(length, 'x');
        std::set<std::size_t> hashes = {ByteHash(0xFEDC'BA98)(text), ByteHash(0x1234'5678)(text)};
        for (char& byte : text) {
            byte = 'y';
            hashes.insert(ByteHash(0x1234'5678)(text));
            byte = 'x';
        }
        EXPECT_EQ(hashes.size(), length + 2) << length;
    }
    EXPECT_NE(ByteHash()("key"), ByteHash()("key")) << "two tables draw two seeds";
}

}  // namespace
}  // namespace qvhost::test
