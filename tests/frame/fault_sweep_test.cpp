// Each operation with each of its requests failing: for memory, for a module, for a file.
//
// A fault is injected into one operation; what comes before and after it works.  An operation that
// fails says so and nothing is asked of it again.  One that does not must have done all it should,
// or the totals tell of the loss; then all that follows must be as without the fault.  In any case
// what was given is a beginning of what should be given, everything can be ended, and a fresh
// document works on the same host.
#include "host/io/io_module.h"
#include "testkit/open_document.h"
#include "tests/frame/operations.h"
#include "tests/host/faulty_calls.h"

#include <filesystem>
#include <set>
#include <span>

namespace jmap::test {
namespace {

using qvhost::test::S;

// ---- Kinds of fault -------------------------------------------------------------------------

struct Kind {
    std::string name;
    std::function<uint64_t(FakeHost&)> asked;        // requests that could fail, so far
    std::function<void(FakeHost&, uint64_t n)> arm;  // the n-th from now on; 0: none any more
    std::set<QVStatus> told;                         // what may come of it
    bool harmless = false;                           // it must not show at all
};

// The n-th call gets this answer.
template <auto Call>
Kind fileKind(const char* name, int answer, const std::set<QVStatus>& told) {
    return {name, [](FakeHost&) { return qvhost::test::callsMade<Call>; },
            [answer](FakeHost&, uint64_t n) {
                std::vector<int>& answers = qvhost::test::answers<Call>;
                answers.assign(n, qvhost::test::kAsTheSystem);
                if (n != 0) {
                    answers.back() = answer;
                }
            },
            told, told.empty()};
}

// Kept: a fault in a callback comes as JMAP_PARSE, with the status in ERRORINFO.
const std::vector<Kind>& kinds() {
    const std::set<QVStatus> memory = {QV_NOMEM, JMAP_PARSE, JMAP_MAP_NOMEM};
    const auto requests = [](FakeHost& host) { return host.requests(); };
    const auto loads = [](FakeHost& host) { return host.loads(); };
    const auto trackers = [](FakeHost& host) { return host.trackerRequests(); };
    static const std::vector<Kind> kAll = {
        {"memory, once", requests, [](auto& host, uint64_t n) { host.failAllocation(n); }, memory},
        {"memory, from then on", requests,
         [](auto& host, uint64_t n) { host.failAllocation(n, true); }, memory},
        {"module, once", loads, [](auto& host, uint64_t n) { host.failLoad(n); }, memory},
        {"module, from then on", loads, [](auto& host, uint64_t n) { host.failLoad(n, true); },
         memory},
        {"tracker, once", trackers, [](auto& host, uint64_t n) { host.failTracker(n); }, memory},
        {"tracker, from then on", trackers,
         [](auto& host, uint64_t n) { host.failTracker(n, true); }, memory},
        fileKind<&S::open>("open, EINTR", -EINTR, {}),
        fileKind<&S::open>("open, ENOSPC", -ENOSPC, {QV_IO_FULL, JMAP_PARSE}),
        fileKind<&S::open>("open, EIO", -EIO, {QV_IO_OPEN, JMAP_PARSE}),
        fileKind<&S::pwrite>("write, EINTR", -EINTR, {}),
        fileKind<&S::pwrite>("write, one byte", 1, {}),
        fileKind<&S::pwrite>("write, no byte", 0, {QV_IO_WRITE, JMAP_PARSE}),
        fileKind<&S::pwrite>("write, ENOSPC", -ENOSPC, {QV_IO_FULL, JMAP_PARSE}),
        fileKind<&S::pwrite>("write, EIO", -EIO, {QV_IO_WRITE, JMAP_PARSE}),
        fileKind<&S::pread>("read, EINTR", -EINTR, {}),
        fileKind<&S::pread>("read, one byte", 1, {}),
        fileKind<&S::pread>("read, the end", 0, {QV_IO_SHORT}),
        fileKind<&S::pread>("read, EIO", -EIO, {QV_IO_READ}),
        fileKind<&S::duplicate>("duplicate, EMFILE", -EMFILE, {}),
        fileKind<&S::close>("close, EIO", -EIO, {}),
        fileKind<&S::close>("close, EINTR", -EINTR, {}),
    };
    return kAll;
}

// ---- The sweep ------------------------------------------------------------------------------

// Plays all operations; `kind` fails in one of them for the n-th time.
Played playOn(LoadedHost& host, const Keeping& keeping, const Kind* kind = nullptr,
              size_t at = SIZE_MAX, uint64_t n = 0, std::vector<uint64_t>* asked = nullptr) {
    Stage stage(host.engine(), host.journal(), keeping,
                std::filesystem::temp_directory_path().string() + "/");
    return play(stage, [&](size_t i, bool begins) {
        if (i == at) {
            kind->arm(host, begins ? n : 0);
        }
        if (asked != nullptr) {
            asked->resize(i + 1);
            asked->back() = kind->asked(host) - asked->back();
        }
    });
}

class Sweep {
   public:
    explicit Sweep(const Keeping& keeping) : keeping_(keeping) {
        LoadedHost clean;
        substituteFiles(clean);
        const Played played = playOn(clean, keeping_);
        EXPECT_EQ(played.failed, SIZE_MAX) << qvStatusName(played.status);
        expected_ = played.out;
    }

    // Every fault of a kind in every operation, or every `step`-th.
    void run(const Kind& kind, uint64_t step, Tally& tally) {
        LoadedHost host;
        substituteFiles(host);
        std::vector<uint64_t> asked;
        (void)playOn(host, keeping_, &kind, SIZE_MAX, 0, &asked);
        for (size_t at = 0; at < asked.size(); ++at) {
            for (uint64_t n = 1; n <= asked[at]; n += n < 8 ? 1 : step) {
                SCOPED_TRACE(kind.name + " " + std::to_string(n) + " in " + operations()[at].name +
                             ", " + keeping_.name);
                tally.add(operations()[at].name + (", " + kind.name), inject(kind, at, n));
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }

   private:
    static void substituteFiles(FakeHost& host) {
        host.substitute("qvioe",
                        [](QVHndlp, QVJnlh) { return createIo(qvhost::test::kFaultyCalls); });
    }

    Played inject(const Kind& kind, size_t at, uint64_t n) {
        LoadedHost host;
        substituteFiles(host);
        Played played = playOn(host, keeping_, &kind, at, n);
        if (played.told) {
            EXPECT_FALSE(kind.harmless);
        } else if (played.failed == SIZE_MAX) {
            EXPECT_TRUE(played.out == expected_) << "something is missing, and nothing tells of it";
        } else {
            EXPECT_EQ(played.failed, at)
                << "a later operation fails: " << operations()[played.failed].name;
            EXPECT_TRUE(kind.told.contains(played.status)) << qvStatusName(played.status);
        }
        EXPECT_TRUE(expected_.starts_with(played.out)) << "not a beginning of what should be given";
        EXPECT_EQ(joined(host.leftovers()).find("qvejmap pass"), std::string::npos);
        if (isLong() || (n % 5 == 1 && keeping_.rows < 10)) {
            EXPECT_TRUE(playOn(host, keeping_).out == expected_) << "a fresh document";
        }
        return played;
    }

    const Keeping keeping_;
    std::string expected_;
};

constexpr Keeping kSmall[] = {
    {"in memory"},
    {.name = "deflated, in a file", .compress = true, .spill = true},
    {.name = "deflated", .compress = true},
    {.name = "in a file", .spill = true},
    {.name = "in memory, with notes", .debug = ",ALL,"},
};
constexpr Keeping kInFiles[] = {
    {.name = "blocks in a file", .spill = true, .rows = 700},
    {.name = "one block in a file", .spill = true},
    {.name = "deflated blocks in a file", .compress = true, .spill = true, .rows = 700},
};

TEST(FaultSweep, OfMemoryModulesAndTrackersInEachOperation) {
    Tally injected;
    for (const Keeping& keeping : std::span(kSmall).first(isLong() ? std::size(kSmall) : 2)) {
        Sweep sweep(keeping);
        for (const Kind& kind : std::span(kinds()).first(6)) {
            sweep.run(kind, isLong() ? 1 : 7, injected);
        }
    }
    for (const char* asks :
         {"JsonInit, memory, once", "JsonInput, memory, from then on",
          "JsonInput, the last, module, once", "JsonInput, the last, tracker, once",
          "GetAlldataInfo, memory, once", "GetAutoMapBuf, memory, once", "MapInit, memory, once",
          "MapInput, memory, once", "GetUserMap, memory, once", "ReadInit, memory, once",
          "Read, memory, once", "jmapReadTable, memory, once", "jmapRecordsOpen, memory, once",
          "jmapNewTable, jmapNewColumn, memory, once", "jmapPassOpen, memory, once",
          "jmapPassNext, memory, from then on"}) {
        EXPECT_TRUE(injected.has(asks)) << asks;
    }
    injected.print();
}

TEST(FaultSweep, OfFilesInEachOperation) {
    Tally injected;
    for (const Keeping& keeping : std::span(kInFiles).first(isLong() ? std::size(kInFiles) : 2)) {
        Sweep sweep(keeping);
        for (const Kind& kind : std::span(kinds()).subspan(6)) {
            sweep.run(kind, 1, injected);
        }
    }
    for (const char* asks :
         {"JsonInput, open, EIO", "JsonInput, write, ENOSPC", "JsonInput, the last, write, EIO",
          "Read, read, EIO", "jmapPassNext, read, the end", "Term, close, EIO"}) {
        EXPECT_TRUE(injected.has(asks)) << asks;
    }
    injected.print();
}

// Documents whose scan asks for trackers: objects of many members, whose second half comes in the
// other order; paths of the same text from different members; tables of one name.
std::vector<std::string> documentsWithTrackers() {
    const auto members = [](int count, bool reversed) {
        std::string object;
        for (int i = 0; i < count; ++i) {
            object += (i == 0 ? "\"m" : ",\"m") + std::to_string(reversed ? count - 1 - i : i) +
                      "\":" + std::to_string(i);
        }
        return "{" + object + "}";
    };
    const auto twoObjects = [&](int count) {
        std::string text;
        for (const bool reversed : {false, true}) {
            text += (text.empty() ? "[{\"a\":" : ",{\"a\":") + members(count, reversed) +
                    ",\"b\":" + members(count, reversed) + "}";
        }
        return text + "]";
    };
    return {
        twoObjects(20), twoObjects(70),
        R"({"x\u0002y":{"p":1,"q":1},"x":{"y":{"q":2,"r":{}}},"t":[1],"u":[{"t":{"t1":5}},{}]})",
        R"({"a":{"t":[{"v":1}]},"T":{"a_t":{"v":1}},"b":{"t":[{"v":2}]},"A_t":{"v":3}})"};
}

// Which creation or insertion fails: any one alone, or all from it on.
TEST(FaultSweep, OfEachTrackerInAScan) {
    for (const std::string& json : documentsWithTrackers()) {
        LoadedHost clean;
        const Scan expected(clean, json);
        EXPECT_GT(clean.trackerRequests(), 3U) << json;
        for (const bool always : {false, true}) {
            for (uint64_t n = 1; n <= clean.trackerRequests(); ++n) {
                SCOPED_TRACE(std::to_string(n) + (always ? " and on in " : " in ") + json);
                LoadedHost host;
                host.failTracker(n, always);
                const Scan scan(host, json);
                host.failTracker(0);
                ASSERT_QV_OK(scan.status);
                JMAPTotals totals = {};
                jmapTotals(scan.doc(), &totals);
                if (totals.lostLookups + totals.droppedTables == 0) {
                    ASSERT_EQ(scan.map(), expected.map()) << "and nothing tells of it";
                }
                ASSERT_EQ(scan.blocks(), expected.blocks());
            }
        }
    }
}

}  // namespace
}  // namespace jmap::test
