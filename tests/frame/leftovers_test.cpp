// Failures of memory: what each leaves behind, and that none does harm.
#include "testkit/open_document.h"
#include "tests/frame/operations.h"

#include <regex>

namespace jmap::test {
namespace {

constexpr const char* kJson =
    R"({"name":"x","tags":[1,"two"],"rows":[{"id":1,"sub":{"v":true}},{"id":2,"none":{}}]})";

TEST(Leftovers, OfAJsonInitThatFails) {
    const std::string pool = "pool qvejmap context", services = pool + ", transcoder, strings";
    const std::string all = services + ", parser";
    // Document pool, handle, context, name of the cache file, block, longest labels, label lengths,
    // name of ALLDATA.
    const std::string left[] = {"", pool, pool, services, all, all, all, all};
    for (size_t n = 0; n < std::size(left); ++n) {
        SCOPED_TRACE(n);
        LoadedHost host;
        host.failAllocation(n + 1);
        const Scan scan(host, kJson);
        EXPECT_TRUE(scan.initStatus == QV_NOMEM && scan.doc() == nullptr);
        EXPECT_EQ(host.left(), left[n]);
    }
}

TEST(Leftovers, OfADocumentAfterTerm) {
    char name[] = "rows", *buf = nullptr;
    QVStrSize bufLen = 0;
    QVEJMAPReadContexth rctx = nullptr;
    LoadedHost host;
    UserJMAP_S* engine = host.engine();
    EXPECT_QV(JMAP_PARSE, Scan(host, R"({"a":1,})").status);
    EXPECT_QV(JMAP_INCOMPLETE, Scan(host, R"({"a":1)").status);
    EXPECT_EQ(host.left(), "");
    {
        const Scan scan(host, kJson);  // a table is left open, another one cannot be opened
        EXPECT_QV_OK(engine->ReadInit(scan.doc(), scan.automap(), name, 4, nullptr, &rctx));
        host.failAllocation(5);
        EXPECT_QV(QV_NOMEM, engine->ReadInit(scan.doc(), scan.automap(), name, 4, nullptr, &rctx));
    }
    EXPECT_EQ(host.left(), "pool qvejmap read pool, pool qvejmap read pool");
    {
        const Scan scan(host, kJson);
        JMAPRecordCursorh cursor = nullptr;
        for (const uint64_t n : {1, 2, 3}) {  // pool, cursor, block: the pool is ended
            host.failAllocation(n);
            EXPECT_TRUE(jmapRecordsOpen(scan.doc(), &cursor) == QV_NOMEM && cursor == nullptr);
        }
        EXPECT_QV_OK(engine->GetAutoMapBuf(scan.doc(), &buf, &bufLen, nullptr));
        QVEJMAPMapContexth ctx = nullptr;
        EXPECT_QV_OK(engine->MapInit(scan.doc(), nullptr, &ctx, nullptr));
    }
    EXPECT_EQ(host.left(), "pool qvejmap read pool, pool qvejmap read pool, writer, parser");
}

constexpr const char* kMap =
    R"({"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[{"NAME":"n","PATH":"/p"}]}]})";

// What comes of the document and of each operation, as text.
std::string runEverything(FakeHost& host, ScanOptions options) {
    host.setAvailable(0);
    options.cacheFile = scratchFile("cache");
    const Scan scan(host, kJson, options);
    std::string all = std::string(qvStatusName(scan.initStatus)) + " " + qvStatusName(scan.status);
    if (scan.initStatus != QV_OK || scan.status != QV_OK) {
        return all;
    }
    int32_t* info = nullptr;
    all += qvStatusName(scan.engine()->GetAlldataInfo(scan.doc(), &info)) + scan.mapDocument();
    QVMemPtr map = nullptr;
    all += qvStatusName(scan.readMap(kMap, options.split));
    all += qvStatusName(scan.engine()->GetUserMap(scan.doc(), &map, nullptr, nullptr));
    for (const char* table : {"root", "rows", "tags", "sub", "ALLDATA"}) {
        all += scan.rows(table);
    }
    return all + scan.records();
}

// Makes each request for memory fail (or each seventh), alone or with all that follow; what comes
// after goes on all the same.
void sweep(const ScanOptions& options) {
    SCOPED_TRACE(options.debug + (options.compress ? " compressed" : ""));
    // What may come of a failure; a scan that fails in a callback gives JMAP_PARSE.
    static const std::regex kOther("(QV|JMAP)_(?!OK|NOMEM|UNSUPPORTED|PARSE|NOTABLE)");
    LoadedHost clean;
    const uint64_t before = clean.requests();
    const std::string expected = runEverything(clean, options);
    const uint64_t requests = clean.requests() - before;
    uint64_t injected = 0, differed = 0;
    for (uint64_t n = 2; n < 2 * requests + 2; n += isLong() ? 1 : 7) {
        SCOPED_TRACE(std::to_string(n / 2) + (n % 2 == 0 ? "" : " and all that follow"));
        LoadedHost host;
        host.failAllocation(n / 2, n % 2 != 0);
        const std::string found = runEverything(host, options);
        EXPECT_FALSE(std::regex_search(found, kOther)) << found;
        ++injected;
        differed += found != expected ? 1 : 0;
        host.failAllocation(0);
        EXPECT_EQ(runEverything(host, options), expected) << "a fresh document";
    }
    EXPECT_TRUE(requests > 50 && 2 * differed > injected) << "hardly a failure was seen";
}

TEST(FaultSweep, NoFailureDoesHarm) {
    sweep({.split = 11});
    sweep({.compress = true, .memLeave = 1, .split = 11});
    sweep({.debug = ",ALL,", .compress = true, .split = 11});
}

}  // namespace
}  // namespace jmap::test
