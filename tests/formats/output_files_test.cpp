// What replaces files, or does not.
#include "formats/output_files.h"

#include "client/error.h"
#include "tests/tool/workplace.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace jmap::test {
namespace {

using qvej::OutputFiles;

// A directory that was missing appears at once, or with what another program put into it meanwhile.
TEST(OutputFiles, AppearWithTheirDirectory) {
    for (const std::string meanwhile : {"", "other", "b"}) {
        SCOPED_TRACE(meanwhile);
        const Workplace place;
        {
            OutputFiles files(place.path() + "/made/out", true, {"a", "b"}, false);
            files.write(0, "fresh\n", 6);
            EXPECT_EQ(place.run("ls -A made/out").out, "");
            if (!meanwhile.empty()) {
                (void)place.run("echo old > made/out/" + meanwhile);
            }
            if (meanwhile == "b") {
                EXPECT_THROW((void)files.commit(), qvej::Error);
            } else {
                EXPECT_EQ(files.commit().size(), 0u);
            }
        }
        EXPECT_EQ(place.run("cd made; ls -A . out").out,
                  ".:\nout\n\nout:\n" + std::string(meanwhile == "b"  ? "b\n"
                                                    : meanwhile == "" ? "a\nb\n"
                                                                      : "a\nb\nother\n"));
    }
}

}  // namespace
}  // namespace jmap::test
