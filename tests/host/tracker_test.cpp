#include "tests/host/host_fixture.h"

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

}  // namespace
}  // namespace qvhost::test
