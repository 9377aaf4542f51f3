// Each operation with each of its requests failing: for memory, for a module, for a file.
//
// A fault is injected into one operation; what comes before and after it works.  An operation that
// fails says so and nothing is asked of it again.  One that does not must have done all it should,
// or the totals tell of the loss; then all that follows must be as without the fault.  In any case
// what was given is a beginning of what should be given, everything can be ended, and a fresh
// document works on the same host.
#include "host/io/io_module.h"
#include "host/io/syscalls.h"
#include "testkit/open_document.h"
#include "tests/frame/operations.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <set>
#include <span>

namespace jmap::test {
namespace {

using qvhost::posixSyscalls;
using qvhost::Syscalls;

// ---- Files ----------------------------------------------------------------------------------

// The n-th call of a kind gets an answer of ours: an errno, 0 for none of the bytes, 1 for one.
struct FilePlan {
    const char* call = "";
    int error = 0;
    int bytes = 0;
    uint64_t nth = 0;  // counted down; 0: done
    std::map<std::string, uint64_t> calls;
};
FilePlan files;

bool fails(const char* call) {
    ++files.calls[call];
    return std::string_view(call) == files.call && files.nth != 0 && --files.nth == 0;
}

// Stands in for a call that does what it should or fails.
template <auto Call, const auto& kName>
constexpr auto kPlain = [](auto... args) {
    if (!fails(kName)) {
        return (posixSyscalls().*Call)(args...);
    }
    errno = files.error;
    return -1;
};

// Stands in for one that moves bytes.
template <auto Call, const auto& kName>
constexpr auto kTransfer = [](int fd, auto bytes, std::size_t count, off_t at) -> ssize_t {
    if (fails(kName)) {
        if (files.error != 0) {
            errno = files.error;
            return -1;
        }
        count = std::min<std::size_t>(count, static_cast<unsigned>(files.bytes));
    }
    return count == 0 ? 0 : (posixSyscalls().*Call)(fd, bytes, count, at);
};

constexpr char kOpen[] = "open", kWrite[] = "write", kRead[] = "read", kClose[] = "close",
               kDuplicate[] = "duplicate";
int closeFaulty(int fd) {
    const bool fail = fails(kClose);
    (void)posixSyscalls().close(fd);  // the descriptor is gone either way
    errno = files.error;
    return fail ? -1 : 0;
}
const Syscalls& faultyCalls() {
    static const Syscalls kCalls = [] {
        Syscalls calls = posixSyscalls();
        calls.open = kPlain<&Syscalls::open, kOpen>;
        calls.duplicate = kPlain<&Syscalls::duplicate, kDuplicate>;
        calls.pwrite = kTransfer<&Syscalls::pwrite, kWrite>;
        calls.pread = kTransfer<&Syscalls::pread, kRead>;
        calls.close = closeFaulty;
        return calls;
    }();
    return kCalls;
}

// ---- Kinds of fault -------------------------------------------------------------------------

struct Kind {
    std::string name;
    std::function<uint64_t(FakeHost&)> asked;        // requests that could fail, so far
    std::function<void(FakeHost&, uint64_t n)> arm;  // the n-th from now on; 0: none any more
    std::set<QVStatus> told;                         // what may come of it
    bool harmless = false;                           // it must not show at all
};

Kind fileKind(const char* call, const char* what, int error, int bytes,
              const std::set<QVStatus>& told) {
    return {std::string(call) + ", " + what, [call](FakeHost&) { return files.calls[call]; },
            [=](FakeHost&, uint64_t n) {
                files = {call, error, bytes, n, files.calls};
            },
            told, told.empty()};
}

// Kept: a fault in a callback comes as JMAP_PARSE, with the status in ERRORINFO.
const std::vector<Kind>& kinds() {
    const std::set<QVStatus> memory = {QV_NOMEM, JMAP_PARSE, JMAP_MAP_NOMEM};
    const auto requests = [](FakeHost& host) { return host.requests(); };
    const auto loads = [](FakeHost& host) { return host.loads(); };
    static const std::vector<Kind> kAll = {
        {"memory, once", requests, [](auto& host, uint64_t n) { host.failAllocation(n); }, memory},
        {"memory, from then on", requests,
         [](auto& host, uint64_t n) { host.failAllocation(n, true); }, memory},
        {"module, once", loads, [](auto& host, uint64_t n) { host.failLoad(n); }, memory},
        {"module, from then on", loads, [](auto& host, uint64_t n) { host.failLoad(n, true); },
         memory},
        fileKind(kOpen, "EINTR", EINTR, 0, {}),
        fileKind(kOpen, "ENOSPC", ENOSPC, 0, {QV_IO_FULL, JMAP_PARSE}),
        fileKind(kOpen, "EIO", EIO, 0, {QV_IO_OPEN, JMAP_PARSE}),
        fileKind(kWrite, "EINTR", EINTR, 0, {}),
        fileKind(kWrite, "one byte", 0, 1, {}),
        fileKind(kWrite, "no byte", 0, 0, {QV_IO_WRITE, JMAP_PARSE}),
        fileKind(kWrite, "ENOSPC", ENOSPC, 0, {QV_IO_FULL, JMAP_PARSE}),
        fileKind(kWrite, "EIO", EIO, 0, {QV_IO_WRITE, JMAP_PARSE}),
        fileKind(kRead, "EINTR", EINTR, 0, {}),
        fileKind(kRead, "one byte", 0, 1, {}),
        fileKind(kRead, "the end", 0, 0, {QV_IO_SHORT}),
        fileKind(kRead, "EIO", EIO, 0, {QV_IO_READ}),
        fileKind(kDuplicate, "EMFILE", EMFILE, 0, {}),
        fileKind(kClose, "EIO", EIO, 0, {}),
        fileKind(kClose, "EINTR", EINTR, 0, {}),
    };
    return kAll;
}

// ---- The sweep ------------------------------------------------------------------------------

struct Tally {
    uint64_t injected = 0;
    uint64_t refused = 0;  // the operation failed
    uint64_t told = 0;     // the totals tell
    uint64_t borne = 0;    // nothing is missing
};

struct Played {
    std::string out;
    size_t failed = SIZE_MAX;  // the operation
    QVStatus status = QV_OK;
    bool told = false;
};

// Plays all operations; `kind` fails in one of them for the n-th time.
Played play(LoadedHost& host, const Keeping& keeping, const std::string& file,
            const Kind* kind = nullptr, size_t at = SIZE_MAX, uint64_t n = 0,
            std::vector<uint64_t>* asked = nullptr) {
    Stage stage(host.engine(), host.journal(), keeping, file);
    Played played;
    for (size_t i = 0; i < operations().size(); ++i) {
        const uint64_t before = kind == nullptr ? 0 : kind->asked(host);
        if (i == at) {
            kind->arm(host, n);
        }
        const QVStatus rc = operations()[i].run(stage);
        if (i == at) {
            kind->arm(host, 0);
        }
        if (asked != nullptr) {
            asked->push_back(kind->asked(host) - before);
        }
        played.told = stage.lossTold();
        if (rc != QV_OK || played.told) {
            played.failed = i;
            played.status = rc;
            break;
        }
    }
    EXPECT_QV_OK(stage.end());
    played.out = stage.out;
    return played;
}

class Sweep {
   public:
    explicit Sweep(const Keeping& keeping) : keeping_(keeping) {
        LoadedHost clean;
        substituteFiles(clean);
        const Played played = play(clean, keeping_, folder_);
        EXPECT_EQ(played.failed, SIZE_MAX) << qvStatusName(played.status);
        expected_ = played.out;
    }

    // Every fault of a kind in every operation, or every `step`-th; what came of them by operation.
    void run(const Kind& kind, uint64_t step, std::map<std::string, Tally>& tallies) {
        LoadedHost host;
        substituteFiles(host);
        std::vector<uint64_t> asked;
        (void)play(host, keeping_, folder_, &kind, SIZE_MAX, 0, &asked);
        for (size_t at = 0; at < asked.size(); ++at) {
            for (uint64_t n = 1; n <= asked[at]; n += n < 8 ? 1 : step) {
                SCOPED_TRACE(kind.name + " " + std::to_string(n) + " in " + operations()[at].name +
                             ", " + keeping_.name);
                inject(kind, at, n, tallies[operations()[at].name + (", " + kind.name)]);
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }

   private:
    static void substituteFiles(FakeHost& host) {
        files = {};
        host.substitute("qvioe", [](QVHndlp, QVJnlh) { return createIo(faultyCalls()); });
    }

    void inject(const Kind& kind, size_t at, uint64_t n, Tally& tally) {
        LoadedHost host;
        substituteFiles(host);
        const Played played = play(host, keeping_, folder_, &kind, at, n);
        ++tally.injected;
        if (played.told) {
            ++tally.told;
            EXPECT_FALSE(kind.harmless);
        } else if (played.failed == SIZE_MAX) {
            ++tally.borne;
            EXPECT_TRUE(played.out == expected_) << "something is missing, and nobody was told";
        } else {
            ++tally.refused;
            EXPECT_EQ(played.failed, at)
                << "a later operation fails: " << operations()[played.failed].name;
            EXPECT_TRUE(kind.told.contains(played.status)) << qvStatusName(played.status);
        }
        EXPECT_TRUE(expected_.starts_with(played.out)) << "not a beginning of what should be given";
        if (isLong() || (n % 5 == 1 && keeping_.rows < 10)) {
            EXPECT_TRUE(play(host, keeping_, folder_).out == expected_) << "a fresh document";
        }
    }

    const Keeping keeping_;
    const std::string folder_ = std::filesystem::temp_directory_path().string() + "/";
    std::string expected_;
};

void print(const std::string& title, const std::map<std::string, Tally>& tallies) {
    Tally sum;
    std::printf("%-52s injected refused    told   borne\n", title.c_str());
    const auto line = [](const std::string& name, const Tally& t) {
        std::printf("    %-48s %8lu %7lu %7lu %7lu\n", name.c_str(), t.injected, t.refused, t.told,
                    t.borne);
    };
    for (const auto& [name, t] : tallies) {
        line(name, t);
        sum = {sum.injected + t.injected, sum.refused + t.refused, sum.told + t.told,
               sum.borne + t.borne};
    }
    line("all", sum);
}

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

TEST(FaultSweep, OfMemoryAndModulesInEachOperation) {
    std::map<std::string, Tally> byOperation;
    for (const Keeping& keeping : std::span(kSmall).first(isLong() ? std::size(kSmall) : 2)) {
        Sweep sweep(keeping);
        for (const Kind& kind : std::span(kinds()).first(4)) {
            sweep.run(kind, isLong() ? 1 : 7, byOperation);
        }
    }
    print("memory and modules", byOperation);
    for (const char* asks :
         {"JsonInit, memory, once", "JsonInput, memory, from then on",
          "JsonInput, the last, module, once", "GetAlldataInfo, memory, once",
          "GetAutoMapBuf, memory, once", "MapInit, memory, once", "MapInput, memory, once",
          "GetUserMap, memory, once", "ReadInit, memory, once", "Read, memory, once",
          "jmapReadTable, memory, once", "jmapRecordsOpen, memory, once",
          "jmapPassOpen, memory, once", "jmapPassNext, memory, from then on"}) {
        EXPECT_GT(byOperation[asks].injected, 0u) << asks;
    }
}

TEST(FaultSweep, OfFilesInEachOperation) {
    std::map<std::string, Tally> byOperation;
    for (const Keeping& keeping : std::span(kInFiles).first(isLong() ? std::size(kInFiles) : 2)) {
        Sweep sweep(keeping);
        for (const Kind& kind : std::span(kinds()).subspan(4)) {
            sweep.run(kind, 1, byOperation);
        }
    }
    print("files", byOperation);
    for (const char* asks :
         {"JsonInput, open, EIO", "JsonInput, write, ENOSPC", "JsonInput, the last, write, EIO",
          "Read, read, EIO", "jmapPassNext, read, the end", "Term, close, EIO"}) {
        EXPECT_GT(byOperation[asks].injected, 0u) << asks;
    }
}

// Loading the engine: its pool, itself, the modules it stands on.
TEST(FaultSweep, OfTheEntryPoint) {
    for (const bool module : {false, true}) {
        uint64_t n = 0;
        for (bool loaded = false; !loaded && n < 20;) {
            FakeHost host;
            // The first load is that of the engine itself.
            module ? host.failLoad(++n + 1) : host.failAllocation(++n);
            QVExtensionh ext =
                host.handle()->loadExtension(host.handle(), U"qvejmap", 7, host.journal());
            loaded = ext != nullptr;
            if (loaded) {
                EXPECT_QV_OK(ext->generic.destroy(&ext->generic));
            }
            host.failLoad(0);
            host.failAllocation(0);
            EXPECT_NE(host.engine(), nullptr) << "once more, without a fault";
        }
        EXPECT_EQ(n - 1, module ? 3 : 2);
    }
}

}  // namespace
}  // namespace jmap::test
