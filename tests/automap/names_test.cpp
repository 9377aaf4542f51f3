// Names of tables.
#include "automap/names.h"

#include "scan/path_tree.h"
#include "testkit/open_document.h"

namespace jmap::test {
namespace {

TEST(Names, TablesOfOneNameAreNumbered) {
    // The tables of objects one after the other, each below a name of its own.
    const auto tableNames = [](const Names& objects) {
        HandDocument doc;
        Names names;
        for (const std::string& object : objects) {
            doc.p.pathAt = branchOf(memberNode(&doc.p, object));
            PATHINFO info{};
            info.node = memberNode(&doc.p, "x");
            doc.p.pathAt = &doc.p.pathRoot;
            DSINFO ds{};
            EXPECT_QV_OK(uniqueDsName(&doc.p, &ds, &info));
            names.emplace_back(view(ds.name, ds.nameLen));
        }
        (void)destroyHandle(doc.p.dsNameHash);
        return names;
    };
    const std::pair<Names, Names> cases[] = {
        {{"orders", "Orders", "ORDERS"}, {"orders", "Orders2", "ORDERS3"}},
        {{"a", "a2", "a"}, {"a", "a2", "a2"}},  // a numbered name is not remembered
        {{"", "", "1", "2"}, {"", "2", "_", "_2"}},
    };
    for (const auto& [objects, expected] : cases) {
        EXPECT_EQ(tableNames(objects), expected);
    }
    const Names full = tableNames(Names(100, std::string(32, 'n')));
    EXPECT_EQ(full[98], std::string(32, 'n') + "99");
    EXPECT_EQ(full[99], std::string(31, 'n') + "100");
    const Names tiny = tableNames(Names(1000, "b"));
    EXPECT_EQ(tiny[98] + " " + tiny[99] + " " + tiny[999], "b99 100 1000");  // no room for the name
}

}  // namespace
}  // namespace jmap::test
