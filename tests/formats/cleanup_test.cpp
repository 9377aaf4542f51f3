// What is named is removed, whenever the signal comes: a folder made in a folder, two outputs, a
// thread that makes files.
#include "formats/cleanup.h"

#include "tests/tool/workplace.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <thread>
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
            cleanup::Output first("out");
            cleanup::Output second("list");
            first.set(place.path() + "/p-", nullptr, place.path() + "/made/twice", 2);
            first.setCount(12);
            second.set(place.path() + "/staged/", &names, place.path(), 0);
            second.setCount(names.size());
            (void)::raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
    EXPECT_EQ(place.run("ls").out, "orders.json\np-12\ntmp\n");
}

// What the main thread does at a signal, and what is left of p-0 to p-999 then.
struct Case {
    const char* name;
    void (*act)();
    bool stays;
};

void touch(const char* file) {
    (void)::close(::open(file, O_CREAT | O_WRONLY, 0666));
}

// A signal while signals are held back, and one more after each pause of so many milliseconds.
void signalAndTouch(std::initializer_list<int> pauses) {
    const cleanup::Hold hold;
    (void)::raise(SIGTERM);
    touch("p-0");
    for (const int pause : pauses) {
        std::this_thread::sleep_for(std::chrono::milliseconds(pause));
        (void)::raise(SIGTERM);
    }
}

constexpr Case kCases[] = {
    {"another thread makes files",
     [] {
         std::atomic<int> made = 0;
         std::thread maker([&] {
             sigset_t all;
             sigfillset(&all);
             (void)::pthread_sigmask(SIG_SETMASK, &all, nullptr);
             for (;; made = made + 1) {
                 const cleanup::Hold hold;
                 touch(("p-" + std::to_string(made % 1000)).c_str());
             }
         });
         while (made < 500) {
         }
         (void)::raise(SIGTERM);
     },
     false},
    {"while it is held back", [] { signalAndTouch({}); }, false},
    {"again at once", [] { signalAndTouch({0}); }, false},  // as timeout(1) does
    {"again, later", [] { signalAndTouch({250}); }, true},
};

TEST(ToolCleanup, ASignalStopsWhatMakesFiles) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const Workplace place;
        EXPECT_EXIT(
            {
                ASSERT_EQ(::chdir(place.path().c_str()), 0);
                cleanup::install();
                cleanup::Output output("out");
                output.set("p-", nullptr, "", 0);
                output.setCount(1000);
                c.act();
            },
            testing::KilledBySignal(SIGTERM),
            c.stays ? "interrupted twice: p-. may still be there"
                    : "interrupted: out is as it was");
        EXPECT_EQ(place.run("ls p-*").exitCode == 0, c.stays);
    }
}

TEST(ToolCleanup, SaysWhatIsComplete) {
    EXPECT_EXIT(
        {
            cleanup::install();
            cleanup::Output output("out");
            const cleanup::Hold hold;
            (void)::raise(SIGTERM);
            output.setState(cleanup::Output::COMPLETE);
        },
        testing::KilledBySignal(SIGTERM), "interrupted: out is complete");
}

}  // namespace
}  // namespace jmap::test
