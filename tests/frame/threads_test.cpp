// Two documents on two threads at once: on one engine, and on an engine each.  For ThreadSanitizer
// (scripts/test tsan); without it, for what differs.
#include "tests/frame/operations.h"
#include "tests/host/host_fixture.h"

#include <filesystem>
#include <thread>

namespace jmap::test {
namespace {

constexpr Keeping kKeepings[] = {
    {.name = "in memory", .rows = 200},
    {.name = "deflated, in a file", .compress = true, .spill = true, .rows = 200},
    {.name = "in a file, with notes", .spill = true, .debug = ",ALL,"},
};

// What all operations give.
std::string outOf(UserJMAP_S* engine, QVJnlh jnl, const Keeping& keeping) {
    Stage stage(engine, jnl, keeping, std::filesystem::temp_directory_path().string() + "/");
    return play(stage).out;
}

TEST(Threads, TwoDocumentsAtOnceAreIndependent) {
    qvhost::test::RunningHost running;
    QVHndlp host = running.handle;
    ASSERT_QV_OK(qvPortableRegister(host, "qvejmap", qvejmap));
    const auto load = [&] { return running.load<UserJMAP_S>(U"qvejmap"); };
    UserJMAP_S* const shared = load();
    std::string expected[std::size(kKeepings)];
    for (size_t i = 0; i < std::size(kKeepings); ++i) {
        expected[i] = outOf(shared, host->jnl, kKeepings[i]);
        ASSERT_GT(expected[i].size(), 100U) << expected[i];
    }
    for (const bool own : {false, true}) {
        SCOPED_TRACE(own ? "an engine each" : "one engine");
        const auto work = [&](size_t first, int* differed) {
            UserJMAP_S* const engine = own ? load() : shared;  // loading too is for any thread
            for (size_t turn = 0; turn < 6; ++turn) {
                const size_t i = (first + turn) % std::size(kKeepings);
                *differed += outOf(engine, host->jnl, kKeepings[i]) == expected[i] ? 0 : 1;
            }
            if (own) {
                EXPECT_QV_OK(qvhost::test::destroy(engine));
            }
        };
        int differed[2] = {};
        std::thread first(work, 0, &differed[0]), second(work, 1, &differed[1]);
        first.join();
        second.join();
        EXPECT_EQ(differed[0] + differed[1], 0);
    }
    EXPECT_QV_OK(qvhost::test::destroy(shared));
}

}  // namespace
}  // namespace jmap::test
