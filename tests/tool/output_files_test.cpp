// What replaces files, or does not.
#include "tools/cli/output_files.h"

#include "tests/tool/workplace.h"
#include "tools/cli/failure.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace jmap::test {
namespace {

TEST(OutputFiles, ReplacesEveryFileOrNone) {
    for (const bool inTheWay : {false, true}) {
        SCOPED_TRACE(inTheWay);
        const Workplace place;
        (void)place.run("mkdir out; echo old > out/a; echo old > out/b");
        {
            OutputFiles files(place.path() + "/out", false, {"a", "new", "b"}, true);
            for (std::size_t i = 0; i < 3; ++i) {
                files.write(i, "fresh\n", 6);
            }
            if (inTheWay) {
                (void)place.run("rm out/b; mkdir out/b");
                EXPECT_THROW(files.commit(), Failure);
            } else {
                files.commit();
            }
        }
        EXPECT_EQ(place.run("cd out; ls -A; cat a").out,
                  inTheWay ? "a\nb\nold\n" : "a\nb\nnew\nfresh\n");
    }
}

}  // namespace
}  // namespace jmap::test
