// What is named is removed, whenever the signal comes: a folder made in a folder, two outputs.
#include "formats/cleanup.h"

#include "tests/tool/workplace.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace jmap::test {
namespace {

namespace cleanup = qvej::cleanup;

TEST(ToolCleanup, ASignalRemovesWhatIsNamed) {
    const Workplace place;
    ASSERT_EQ(place
                  .run("mkdir -p made/twice staged; for i in $(seq 0 12); do : > p-$i; done; "
                       ": > staged/x.csv; : > staged/longer.csv")
                  .exitCode,
              0);
    const std::vector<std::string> names = {"longer.csv", "x.csv", "not made"};
    EXPECT_EXIT(
        {
            cleanup::install();
            cleanup::Output first;
            cleanup::Output second;
            first.set(place.path() + "/p-", nullptr, place.path() + "/made/twice", 2);
            first.setCount(12);
            second.set(place.path() + "/staged/", &names, place.path(), 0);
            second.setCount(names.size());
            (void)::raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
    EXPECT_EQ(place.run("ls").out, "orders.json\np-12\ntmp\n");
}

}  // namespace
}  // namespace jmap::test
