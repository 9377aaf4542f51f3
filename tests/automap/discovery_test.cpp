// From documents to maps.
#include "automap/discovery.h"

#include "tests/automap/hand_document.h"

#include <set>

namespace jmap::test {
namespace {

TEST(Discovery, GivesATableForEachGroupOfPaths) {
    const struct {
        const char* name;
        const char* json;
        const char* map;
        uint64_t ordinals = UINT64_MAX;
    } cases[] = {
        {"one object", R"({"a":1,"b":"xy","c":true,"d":null,"e":""})",
         "root /root (ordinal_root:O, a:D1, b:C2, c:D4, d:D4, e:C1)\n"},
        {"nested", R"({"a":[{"b":1,"c":{"d":2}},{"b":"text"}]})",
         "a /root/a (ordinal_root:O, ordinal_a:O, b:C4)\n"
         "a_c /root/a/c (ordinal_root:O, ordinal_a:O, ordinal_c:O, d:D1)\n"},
        {"scalars in an array", R"({"t":[1,22]})",
         "t /root/t (ordinal_root:O, ordinal_t:O, t1:D1, t2:D2)\n"},
        {"empty document", "{}", "root  (ordinal_root:O)\n"},
        {"same name twice", R"({"x":{"o":{"p":{"v":1}}},"y":{"o":{"p":{"v":1}}}})",
         "o_p /root/x/o/p (ordinal_p:O, v:D1)\no_p2 /root/y/o/p (ordinal_p:O, v:D1)\n", 1},
        {"empty name", R"({"":1})", "  (root:D1)\n"},
        {"separator in a name", R"({"a\u0002b":1,"c":2})",
         "a /root/a (ordinal_root:O, ordinal_a:O, b:D1)\n"},
        {"placeholder", R"({"a":{"b":1},"e":{}})", "a /root/a (b:D1)\ne - ()\n", 0},
        {"placeholder, ordinal", R"({"e":{}})", "e /root (ordinal_e:O)\n", 1},
    };
    for (const auto& c : cases) {
        ScanOptions options;
        options.ordinals = c.ordinals;
        EXPECT_EQ(Scan(c.json, options).map(), c.map) << c.name;
    }
}

// Each allocation fails once.  The map holds whole tables only; one that failed is left out without
// a word, but keeps its number when it already has one.
TEST(Discovery, DropsTheTableThatFailsAndGoesOn) {
    std::set<std::string> seen;
    uint64_t total = 1;
    for (uint64_t n = 0; n <= total; ++n) {  // 0: none fails
        SCOPED_TRACE(n);
        HandDocument doc;
        int32_t labelMax = 5;
        doc.p.labelMaxes = &labelMax;
        for (const char* path : {"/root/t/a", "/root/T/b", "/T/c"}) {
            doc.addPath(path);
        }
        doc.addPath("/root/taken/a")->processed = true;  // starts no table
        const uint64_t before = doc.host.requests();
        doc.host.failAllocation(n);
        const QVStatus rc = doMapping(&doc.p);
        total = n == 0 ? doc.host.requests() - before : total;
        std::string names;
        for (const DSINFO& ds : each(doc.p.automap == nullptr ? nullptr : doc.p.automap->dshead)) {
            EXPECT_NE(ds.tablePath, nullptr);
            EXPECT_GE(ds.varcount, 2u);
            names += std::string(ds.name, static_cast<size_t>(ds.nameLen)) + " ";
        }
        const bool whole = names == "t T2 T3 ";  // then it is ALLDATA that fails
        EXPECT_QV(n > 0 && (whole || names.empty()) ? QV_NOMEM : QV_OK, rc);
        seen.insert(names);
    }
    EXPECT_EQ(seen, (std::set<std::string>{"", "T T2 ", "T2 T3 ", "t T2 ", "t T3 ", "t T2 T3 "}));
}

TEST(Discovery, DoDatasetReportsWhatFailed) {
    HandDocument doc;
    MAP map{};
    PATHINFO* path = doc.addPath("t");  // no separator: an empty table path
    doc.host.failAllocation(1);
    EXPECT_QV(QV_NOMEM, doDataset(&doc.p, &map, path));
    EXPECT_EQ(map.dshead, nullptr);
    EXPECT_QV_OK(doDataset(&doc.p, &map, path));
    ASSERT_NE(map.dshead, nullptr);
    EXPECT_NE(map.dshead->tablePath, nullptr);
    EXPECT_EQ(map.dshead->tablePathLen, 0);
}

}  // namespace
}  // namespace jmap::test
