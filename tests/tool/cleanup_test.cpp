// The cache file has a name only for moments, too short to hit from outside with a signal.
#include "tools/cli/cleanup.h"

#include "tests/tool/workplace.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace jmap::test {
namespace {

TEST(ToolCleanup, ASignalRemovesWhatIsNamed) {
    const Workplace place;
    ASSERT_EQ(place
                  .run("mkdir -p made/twice; touch cache; for i in $(seq 0 12); do : > p-$i; done; "
                       ": > q-0")
                  .exitCode,
              0);
    EXPECT_EXIT(
        {
            cleanup::install();
            cleanup::setCacheFile(place.path() + "/cache");
            cleanup::Output first;
            cleanup::Output second;
            first.set(place.path() + "/p-", place.path() + "/made/twice", 2);
            first.setCount(12);
            second.set(place.path() + "/q-", place.path(), 0);
            second.setCount(1);
            (void)::raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
    EXPECT_EQ(place.run("ls").out, "orders.json\np-12\ntmp\n");
}

}  // namespace
}  // namespace jmap::test
