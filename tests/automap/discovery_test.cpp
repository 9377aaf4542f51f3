// From documents to maps: tables, their ordinal and value columns, ALLDATA.
#include "automap/discovery.h"

#include "automap/path_parts.h"
#include "testkit/open_document.h"

#include <algorithm>
#include <set>

namespace jmap::test {
namespace {

// Each allocation fails once.  The map holds whole tables only; one that failed is left out without
// a word, but keeps its number when it already has one.
TEST(Discovery, DropsTheTableThatFailsAndGoesOn) {
    std::set<std::string> seen;
    // Columns are cut from larger pieces: so much is left of one.
    for (const QVStrSize left : {16384, 0, 160}) {
        uint64_t total = 1;
        for (uint64_t n = 0; n <= total; ++n) {  // 0: none fails
            SCOPED_TRACE(n);
            HandDocument doc;
            ASSERT_QV_OK(doc.document.feed(
                R"({"t-":{"a":1},"T+":{"b":1},"t!":{"c":1},"taken":{"d":1})", false));
            doc.p.pathInfoTail->processed = true;  // starts no table
            doc.p.ordinalCount = 1;
            doc.p.pathArena.left = std::min(doc.p.pathArena.left, left);
            const uint64_t before = doc.host.requests();
            doc.host.failAllocation(n);
            const QVStatus rc = doMapping(&doc.p);
            total = n == 0 ? doc.host.requests() - before : total;
            std::string names;
            for (const DSINFO& ds :
                 each(doc.p.automap == nullptr ? nullptr : doc.p.automap->dshead)) {
                EXPECT_TRUE(ds.tableNode != nullptr && ds.varcount == 2);
                names += std::string(view(ds.name, ds.nameLen)) + " ";
            }
            const bool whole = names == "t_ T_2 t_3 ";  // then it is ALLDATA that fails
            EXPECT_QV(n > 0 && (whole || names.empty()) ? QV_NOMEM : QV_OK, rc);
            const auto made = static_cast<uint64_t>(std::count(names.begin(), names.end(), ' '));
            EXPECT_EQ(made + doc.p.droppedTables, doc.p.automap == nullptr ? 0 : 3) << names;
            seen.insert(names);
        }
    }
    EXPECT_EQ(seen, (std::set<std::string>{"", "T_ t_2 ", "T_2 t_3 ", "t_ t_2 ", "t_ T_2 ",
                                           "t_ t_3 ", "t_ T_2 t_3 "}));
}

// Ordinals of one table from the list of its members' names, outermost first.
std::vector<std::string> ordinalsOf(const std::vector<std::string>& members) {
    HandDocument doc;
    doc.p.ordinalCount = UINT64_MAX;
    std::string json = "1";
    for (auto member = members.rbegin(); member != members.rend(); ++member) {
        json = "{\"" + *member + "\":" + json + "}";
    }
    EXPECT_QV_OK(doc.document.feed(json, false));
    EXPECT_QV_OK(doMapping(&doc.p));
    std::vector<std::string> names;
    for (const VARINFO& column : each(doc.p.automap->dshead->vhead)) {
        names.emplace_back(nameOf(column));
    }
    return names;
}

// Many ordinals are renamed by look-ups, few by comparing all pairs, which is what it must come to.
TEST(Discovery, RenamesManyEqualOrdinalsAsByPairs) {
    for (const std::size_t depth : {20, 31, 32, 33, 200, 700}) {
        SCOPED_TRACE(depth);
        std::vector<std::string> members;
        std::vector<std::string> expected = {"ordinal_root"};
        for (std::size_t i = 0; i < depth; ++i) {  // some become what others are
            members.push_back(i % 7 == 3   ? "a"
                              : i % 5 == 1 ? "A"
                                           : "a" + std::to_string(i * i % 23));
            expected.push_back("ordinal_" + members.back());
        }
        members.push_back("value");
        uint8_t next = '1';
        for (std::size_t i = 0; i < expected.size(); ++i) {
            for (std::size_t j = i + 1; j < expected.size(); ++j) {
                if (expected[j] == expected[i]) {
                    expected[j] += static_cast<char>(next++);
                }
            }
        }
        expected.emplace_back("value");
        EXPECT_EQ(ordinalsOf(members), expected);
    }
}

}  // namespace
}  // namespace jmap::test
