// One document, many ways: the size of the buffers, compression, spilling and re-reading change
// nothing that can be seen.
#include "fuzz/kit/table_rows.h"
#include "testkit/testkit.h"

namespace jmap::test {
namespace {

using Lines = std::vector<std::string>;

Lines documents() {
    std::string big = R"({"rows":[{})";  // more than two blocks of records
    for (int i = 0; i < 9000; ++i) {
        big += ",\n{\"id\":" + std::to_string(i) + R"(,"name":")" +
               std::string(static_cast<size_t>(i % 90), 'x') + R"(\u00e9\n","tags":[1,)" +
               std::to_string(i % 3) + "]}";
    }
    Lines all = {
        "{}",
        " [ ] ",
        R"([""])",
        R"({"i":-12,"r":1.5e-3,"s":"","t":true,"f":false,"n":null,"x":1,"X":2,"x":3})",
        R"({"a":{"b":[{"c":1},{"c":2,"d":[{"e":"x"}]}]},"A":{"":4},"f":[[1,2],[3]]})",
        R"({"q\"uote":"\\\/\b\f\n\r\t\u0041\ud83d\ude00\u0000\u0002","ä":"€😀"})",
        "{\"" + std::string(300, 'l') + "\":{\"v\":1}}",
        big + "]}",
    };
    for (const char* file : {"apache_builds.json", "github_events.json",
                             "google_maps_api_response.json", "twitter_timeline.json"}) {
        if (auto text = sharedFile(file)) {
            all.push_back(std::move(*text));
        } else {
            std::printf("%s is not there, left out\n", file);
        }
    }
    return all;
}

// What a document looks like from outside, its tables read twice.
Lines picture(const Scan& scan) {
    EXPECT_QV_OK(scan.status);
    Lines all = scan.blocks();
    all.insert(all.end(), {scan.map(), scan.rows("ALLDATA")});
    JMAPTableh table = nullptr;
    while (jmapNextTable(scan.automap(), &table) == QV_OK) {
        QVEJMAPReadContexth rctx = nullptr;
        EXPECT_QV_OK(jmapReadTable(scan.doc(), table, nullptr, &rctx));
        for (int pass = 0; pass < 2; ++pass) {
            while (scan.engine()->Read(rctx) == QV_OK) {
                all.emplace_back(rctx->obsbuf, static_cast<size_t>(rctx->obsbufLen));
            }
            EXPECT_QV_OK(scan.engine()->ReadReset(rctx));
        }
        EXPECT_QV_OK(scan.engine()->ReadTerm(rctx));
    }
    return all;
}

TEST(Equality, BuffersCompressionSpillingAndReadingAgainChangeNothing) {
    const ScanOptions kWays[] = {{.split = 1},
                                 {.split = 7},
                                 {.compress = true},
                                 {.memLeave = 1},
                                 {.compress = true, .memLeave = 1, .split = 65536}};
    for (const std::string& document : documents()) {
        SCOPED_TRACE(document.substr(0, 60));
        const std::string copy(document.data(), document.size());
        const Scan plain(document);
        const Lines expected = picture(plain);
        fuzz::requireSameRows(plain.doc(), fuzz::tablesOf(plain.doc(), plain.p()->automap));
        for (ScanOptions way : kWays) {
            SCOPED_TRACE("split " + std::to_string(way.split) + ", floor " +
                         std::to_string(way.memLeave) + (way.compress ? ", compressed" : ""));
            FakeHost host;
            host.setAvailable(0);
            way.cacheFile = scratchFile("cache");
            const Scan scan(host, document, way);
            EXPECT_TRUE(picture(scan) == expected);
            if (way.compress && way.memLeave != 0) {  // rows outlive their blocks
                fuzz::requireSameRows(scan.doc(), fuzz::tablesOf(scan.doc(), scan.p()->automap));
            }
            EXPECT_TRUE(scan.p()->tfp == nullptr && document == copy) << "only read";
            // Spilling is told once: with the first of many blocks, at the latest with the last.
            ASSERT_EQ(scan.cachingCalls.size(), way.memLeave);
            EXPECT_TRUE(way.memLeave == 0 || way.split == 0 || plain.p()->chead->next == nullptr ||
                        scan.cachingCalls[0] < scan.inputCalls);
        }
    }
}

}  // namespace
}  // namespace jmap::test
