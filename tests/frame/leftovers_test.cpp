// Failures of memory: what each leaves.
#include "testkit/open_document.h"

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
    EXPECT_EQ(host.left(),
              "pool qvejmap read pool, pool qvejmap read pool, pool qvejson writer, "
              "writer, parser");
}

}  // namespace
}  // namespace jmap::test
