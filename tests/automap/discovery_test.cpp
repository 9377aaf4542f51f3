// From documents to maps: tables, their ordinal and value columns, ALLDATA.
#include "automap/discovery.h"

#include "testkit/open_document.h"

#include <algorithm>
#include <set>

namespace jmap::test {
namespace {

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
            EXPECT_TRUE(ds.tableNode != nullptr && ds.varcount == 2);
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
