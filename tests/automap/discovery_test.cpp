// From documents to maps: tables, their ordinal and value columns, ALLDATA.
#include "automap/discovery.h"

#include "testkit/open_document.h"

#include <algorithm>
#include <set>

namespace jmap::test {
namespace {

TEST(Discovery, GivesATableForEachGroupOfPaths) {
    std::string deep = R"({"x":1})";
    std::string deepColumns = " (ordinal_root:O, ordinal_a:O";
    for (const char* end : {"1:O", "2:O", "3:O", "4:O", "5:O", "6:O", "7:O", "8:O", "9:O", "::O"}) {
        deep = R"({"a":)" + deep + "}";
        deepColumns += std::string(", ordinal_a") + end;
    }
    const std::string n40(40, 'n');
    const std::string cut(24, 'n');
    const struct {
        const char* name;
        std::string json, map;
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
        {"the nameless level has no ordinal", R"({"":{"x":1}})",
         " /root/ (ordinal_root:O, x:D1)\n"},
        {"but is counted", R"({"":{"x":1}})", " /root/ (x:D1)\n", 1},
        {"ordinals are names", R"({"a-b":{"x":1}})", "a_b /root/a-b (ordinal_a_b:O, x:D1)\n", 1},
        // Equal ordinals get one more character, counted over the table; behind 9 comes ":".
        {"case tells ordinals apart", R"({"a":{"A":{"x":1}}})",
         "a_A /root/a/A (ordinal_root:O, ordinal_a:O, ordinal_A:O, x:D1)\n"},
        {"an ordinal that gets two", R"({"a":{"a1":{"a":{"x":1}}}})",
         "a1_a /root/a/a1/a (ordinal_root:O, ordinal_a:O, ordinal_a1:O, ordinal_a12:O, x:D1)\n"},
        {"long ordinals", "{\"" + n40 + "\":{\"" + n40 + R"(":{"x":1}}})",
         std::string(14, 'n') + "_" + std::string(15, 'n') + " /root/" + n40 + "/" + n40 +
             " (ordinal_root:O, ordinal_" + cut + ":O, ordinal_" + cut + "1:O, x:D1)\n"},
        {"many ordinals", R"({"a":)" + deep + "}",
         "a_a /root/a/a/a/a/a/a/a/a/a/a/a" + deepColumns + ", x:D1)\n"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Scan(c.json, {.ordinals = c.ordinals}).map(), c.map) << c.name;
    }
}

TEST(Discovery, LaysAlldataOutByTheLongestLabelsAndValue) {
    constexpr const char* kCases[][3] = {
        {R"({"ccc":"wxyz","a":{"bb":1}})", "all of it",
         "all of it - (P:D0, P1:C3, P2:C2, V:D4, Value:C4)\n"},
        {R"({"a":1})", "", "ALLDATA - (P:D0, P1:C1, V:D1, Value:C1)\n"},
        {"{}", "ALLDATA", "ALLDATA - (P:D0, P1:C0, V:D3, Value:C3)\n"},
    };
    for (const auto& [json, name, expected] : kCases) {
        EXPECT_EQ(Scan(json, {.alldata = name}).alldata(), expected) << json;
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
        ASSERT_QV_OK(
            doc.document.feed(R"({"t-":{"a":1},"T+":{"b":1},"t!":{"c":1},"taken":{"d":1})", false));
        doc.p.pathInfoTail->processed = true;  // starts no table
        doc.p.ordinalCount = 1;
        const uint64_t before = doc.host.requests();
        doc.host.failAllocation(n);
        const QVStatus rc = doMapping(&doc.p);
        total = n == 0 ? doc.host.requests() - before : total;
        std::string names;
        for (const DSINFO& ds : each(doc.p.automap == nullptr ? nullptr : doc.p.automap->dshead)) {
            EXPECT_TRUE(ds.tablePath != nullptr && ds.varcount == 2);
            names += std::string(view(ds.name, ds.nameLen)) + " ";
        }
        const bool whole = names == "t_ T_2 t_3 ";  // then it is ALLDATA that fails
        EXPECT_QV(n > 0 && (whole || names.empty()) ? QV_NOMEM : QV_OK, rc);
        const auto made = static_cast<uint64_t>(std::count(names.begin(), names.end(), ' '));
        EXPECT_EQ(made + doc.p.droppedTables, doc.p.automap == nullptr ? 0 : 3) << names;
        seen.insert(names);
    }
    EXPECT_EQ(seen, (std::set<std::string>{"", "T_ t_2 ", "T_2 t_3 ", "t_ t_2 ", "t_ T_2 ",
                                           "t_ t_3 ", "t_ T_2 t_3 "}));
}

}  // namespace
}  // namespace jmap::test
