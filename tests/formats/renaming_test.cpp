// A file system without the flags of renameat2, on which each call fails in turn: what a user has
// is where it was, or the failure says where.
#include "formats/renaming.h"

#include "client/error.h"
#include "formats/output_files.h"
#include "tests/tool/workplace.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace jmap::test {
namespace {

// Which calls fail, counted from 1: renames, links and removals of files together.
struct Faults {
    int calls = 0;
    int first = 0;
    bool later = false;  // and all later ones
};
Faults faults;

bool fails() {
    ++faults.calls;
    const bool now = faults.calls == faults.first || (faults.later && faults.calls > faults.first);
    errno = EACCES;
    return faults.first != 0 && now;
}

class Renaming : public testing::Test {
   protected:
    Renaming() {
        qvej::fileCalls = {
            [](const char* from, const char* to, unsigned flags) {
                if (flags != 0) {
                    errno = EINVAL;
                    return -1;
                }
                return fails() ? -1 : std::rename(from, to);
            },
            [](const char* from, const char* to) { return fails() ? -1 : ::link(from, to); },
            [](const char* path) { return fails() ? -1 : ::unlink(path); }};
    }
    ~Renaming() override { qvej::fileCalls = before_; }

    // Runs `act` in a new folder with every fault, alone and with all later calls, until none is
    // met.  `look` gets what was thrown or returned.
    template <class Act, class Look>
    void sweep(const Act& act, const Look& look) {
        for (const bool later : {false, true}) {
            bool met = true;
            for (int first = 1; met; ++first) {
                SCOPED_TRACE("call " + std::to_string(first) + (later ? " and all later" : ""));
                const Workplace place;
                (void)place.run("mkdir out; echo old > out/b; echo fresh > out/a");
                faults = {};
                std::string said;
                try {
                    faults = {0, first, later};
                    said = act(place.path() + "/out/");
                } catch (const qvej::Error& error) {
                    said = std::string("failed: ") + error.what();
                }
                met = faults.calls >= first;
                faults = {};
                look(place, said);
            }
        }
    }

   private:
    qvej::FileCalls before_ = qvej::fileCalls;
};

// The file with that text is `name`, or one that `said` names.
void expectThere(const std::string& text, const Workplace& place, const std::string& name,
                 const std::string& said) {
    const std::string at = place.run("cd out; grep -lx " + text + " * .q* 2> /dev/null").out;
    ASSERT_FALSE(at.empty()) << "lost";
    const std::string file = at.substr(0, at.size() - 1);
    EXPECT_TRUE(file == name ||
                said.find("is now " + place.path() + "/out/" + file) != std::string::npos)
        << file << ": " << said;
}

TEST_F(Renaming, ExchangesOrKeepsBoth) {
    std::set<std::string> outcomes;
    sweep(
        [](const std::string& folder) {
            qvej::exchangeNames(folder + "a", folder + "b");
            return std::string();
        },
        [&](const Workplace& place, const std::string& said) {
            expectThere("old", place, said.empty() ? "a" : "b", said);
            outcomes.insert(place.run("cd out; ls; cat a b").out);
        });
    EXPECT_EQ(outcomes,
              (std::set<std::string>{"a\na-aside\nfresh\n",    // the first step could not be undone
                                     "a-aside\nb\nfresh\n",    // the second likewise
                                     "a\nb\nfresh\nold\n",     // undone
                                     "a\nb\nold\nfresh\n"}));  // done
}

TEST_F(Renaming, GivesANewNameOrNone) {
    sweep(
        [](const std::string& folder) {
            qvej::renameToNew(folder + "a", folder + "c");
            return std::string();
        },
        [](const Workplace& place, const std::string& said) {
            const bool both = said.find("the new file is there already") != std::string::npos;
            EXPECT_EQ(place.run("cd out; ls").out, said.empty() ? "b\nc\n"
                                                   : both       ? "a\nb\nc\n"
                                                                : "a\nb\n");
        });
}

// Files of a folder and a list beside it: one of them replaces another, one of an earlier run goes.
TEST_F(Renaming, OutputFilesLoseNothing) {
    bool told = false;
    sweep(
        [](const std::string& folder) {
            qvej::OutputFiles files(folder, false, {"b", "c", "d"}, true);
            struct stat found = {};
            EXPECT_EQ(::stat((folder + "a").c_str(), &found), 0);
            files.removeEarlier({{"a", qvej::stateOf(found)}}, {});
            files.write(0, "newer\n", 6);
            qvej::OutputFiles list = qvej::OutputFiles::single(folder + "../list", true);
            std::string said;
            for (const std::string& remark : files.commit(&list)) {
                said += remark;
            }
            return said;
        },
        [&](const Workplace& place, const std::string& said) {
            if (said.starts_with("failed")) {
                expectThere("old", place, "b", said);
                expectThere("fresh", place, "a", said);
                EXPECT_TRUE(said.find("new") != std::string::npos ||
                            place.run("ls list").exitCode != 0)
                    << said;
            } else {
                EXPECT_EQ(place.run("cat out/b list; ls out/a").out, "newer\n");
                EXPECT_EQ(place.run("ls -A . out | grep '^[.]q'").exitCode == 0, !said.empty());
                told = told || said.find(": Permission denied") != std::string::npos;
            }
        });
    EXPECT_TRUE(told);
}

}  // namespace
}  // namespace jmap::test
