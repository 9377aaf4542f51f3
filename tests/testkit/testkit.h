// The test kit: a host that watches the engine, and texts for everything a test wants to look at.
//
//     const Scan scan(R"({"a":[{"b":1},{"b":2}]})");
//     EXPECT_EQ(scan.rows("a"), "1|1|1\n1|2|2\n");
#pragma once

#include "qvejmap.h"
#include "qvejmapx.h"
#include "qvportable.h"

#include "core/context.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Shows a status by name.
#define EXPECT_QV(expected, actual) \
    EXPECT_STREQ(qvStatusName(expected), qvStatusName(actual)) << "status " << (actual)
#define EXPECT_QV_OK(actual) EXPECT_QV(QV_OK, actual)
#define ASSERT_QV_OK(actual) ASSERT_STREQ(qvStatusName(QV_OK), qvStatusName(actual))

namespace jmap::test {

// A host between the engine and the portable host: it passes everything on, writes down what was
// asked for, and fails or answers differently where a test says so.  It is the global host for its
// lifetime and stops the portable host at its end.
class FakeHost {
   public:
    FakeHost();
    ~FakeHost();
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

    // The engine's table, loaded on first use through `loadExtension`.
    UserJMAP_S* engine();
    QVHndlp handle() { return &handle_; }   // what qvGlobalHandle() gives
    QVJnlh journal() { return &journal_; }  // a journal that collects into `notes`

    // Notes in order, formatted.  Formats in order, as the engine wrote them.
    std::vector<std::string> notes;
    std::vector<std::string> formats;
    // What was asked for and what was ended, in order: "load qvejson" and "destroy qvejson", "pool
    // NAME" and "destroy pool NAME", "tracker NAME" and "destroy tracker NAME".
    std::vector<std::string> calls;
    // Notes the end of `object` as "destroy LABEL" as well.
    void watch(QVGeneric* object, const std::string& label);

    // `entry` answers for the module of that name; null: the module is missing.
    void substitute(const std::string& name, QVEntry entry);
    // From now on: what qvmrlmem answers; none: the truth.
    void setAvailable(std::optional<uint64_t> bytes) { available_ = bytes; }
    // The n-th allocation, reallocation, pool or tracker creation from now on fails; 0: none.
    void failAllocation(uint64_t n, bool always = false);
    // The n-th creation of a tracker or insertion into one from now on fails; 0: none.
    void failTracker(uint64_t n, bool always = false);
    // Creations of trackers and insertions asked for so far.
    [[nodiscard]] uint64_t trackerRequests() const { return trackerRequests_; }
    // The n-th load of a module from now on gives null; 0: none.
    void failLoad(uint64_t n, bool always = false);
    // Loads asked for so far.
    [[nodiscard]] uint64_t loads() const { return loads_; }
    // Allocations and reallocations, pools and trackers that succeeded so far: of a run that asks
    // for as many as this grew, each of the first to the last can be made to fail.
    uint64_t requests();
    // What is alive now, oldest first: "pool qvejmap", "module qvezlib", ...
    std::vector<std::string> leftovers();

   private:
    // What the engine sees; the slots find the way back.
    struct Handle : QVHndl {
        FakeHost* owner;
    };
    struct Journal : QVJnl {
        FakeHost* owner;
    };
    static FakeHost* of(QVHndlp host) { return static_cast<Handle*>(host)->owner; }
    static QVExtensionh load(QVHndlp host, const QVChar* name, QVStrSize nameLen, QVJnlh jnl);
    static QVTrackerh createTracker(QVHndlp host, int32_t kind, int32_t types, const QVChar* name,
                                    QVStrSize len);
    static QVStatus insert(QVTrackerh tracker, const char* key, QVStrSize keyLen, QVMemPtr value);
    bool trackerFails();
    template <class Object>
    Object* made(const std::string& label, Object* object);

    QVHndlp real_ = nullptr;
    Handle handle_{};
    Journal journal_{};
    UserJMAP_S* engine_ = nullptr;
    std::optional<uint64_t> available_;
    std::map<std::string, std::string> substitutes_;  // name -> registered name; "": missing
    uint64_t created_ = 0;                            // pools and trackers
    uint64_t loads_ = 0;
    uint64_t trackerRequests_ = 0;
    uint64_t failingTracker_ = 0;   // counted as `trackerRequests_`; 0: none
    bool failingTrackers_ = false;  // and all that follow
    uint64_t failingLoad_ = 0;      // counted as `loads_`; 0: none
    bool failingLoads_ = false;     // and all that follow
};

struct ScanOptions {
    std::string debug{};  // keywords with their commas
    std::string desc = "test";
    bool compress = false;
    uint64_t ordinals = UINT64_MAX;
    std::string alldata = "ALLDATA";
    std::string cacheFile{};  // path; needed when blocks spill
    uint64_t memLeave = 0;
    std::size_t split = 0;  // bytes of each buffer; 0: one buffer
    QVCEI encoding = U_UTF8_CE;
};

// One scanned document.  Term at the end.
class Scan {
   public:
    // With a host of its own, or on one that outlives it.
    explicit Scan(std::string_view json, const ScanOptions& options = {});
    Scan(FakeHost& host, std::string_view json, const ScanOptions& options = {});
    ~Scan();

    QVStatus initStatus = QV_OK;    // of JsonInit
    QVStatus status = QV_OK;        // of the last JsonInput that was made
    std::vector<int> cachingCalls;  // those of JsonInput that set it, counted from 1
    int inputCalls = 0;             // of JsonInput

    [[nodiscard]] FakeHost& host() const { return *host_; }
    [[nodiscard]] UserJMAP_S* engine() const { return host_->engine(); }
    [[nodiscard]] QVEJMAPJsonContexth doc() const { return doc_; }
    [[nodiscard]] JMAP_PRIVATE* p() const { return contextOf(doc_); }
    [[nodiscard]] QVMemPtr automap() const { return p()->automap; }

    // One line a table, ALLDATA the last: name, table path, columns as name:O, name:D<length> or
    // name:C<length>.
    [[nodiscard]] std::string map() const;
    // One line a row, "|" between the cells, "~" for missing, trailing blanks dropped; a line
    // "status <name>" when ReadInit or Read fails.  `table` is opened by name.
    [[nodiscard]] std::string rows(std::string_view table, uint64_t flags = 0) const;
    // The rows of an open table up to QV_EOF.
    static std::string rowsOf(UserJMAP_S* engine, QVEJMAPReadContexth rctx);
    // The bytes of the records, uncompressed, block by block.
    [[nodiscard]] std::vector<std::string> blocks() const;
    // Parses a user map, in buffers of `split` bytes (0: one buffer).  The status of the first call
    // that fails, and what it says in ERRORINFO.
    QVStatus readMap(std::string_view map, std::size_t split = 0, ERRORINFO* e = nullptr) const;

   private:
    void run(std::string_view json, const ScanOptions& options);
    std::unique_ptr<FakeHost> ownHost_;
    FakeHost* host_;
    QVEJMAPJsonContexth doc_ = nullptr;
};

// The text with every 0x02 shown as "/".
std::string slashes(std::string_view path);

// A file of ../shared/data, or none when it is not there (the test then skips, saying so).
std::optional<std::string> sharedFile(const std::string& name);

// A path for a file of this test that does not exist yet, in a folder that is removed at exit.
std::string scratchFile(const std::string& name);

}  // namespace jmap::test
