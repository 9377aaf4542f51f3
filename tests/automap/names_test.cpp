// Names of tables.
#include "automap/names.h"

#include "testkit/open_document.h"

namespace jmap::test {
namespace {

std::string tableName(const std::string& json) {
    const std::string map = Scan(json).map();
    return map.substr(0, map.find(' '));
}

TEST(Names, AreMadeOfTheObjectAndTheOneAroundItFittedIntoThirtyBytes) {
    constexpr const char* kCases[][2] = {{R"({"x":1})", "root"},
                                         {R"({"a":{"x":1}})", "a"},
                                         {R"({"":{"x":1}})", ""},
                                         {R"({"a":{"b":{"x":1}}})", "a_b"},
                                         {R"({"":{"b":{"x":1}}})", "_b"},
                                         {R"({"a":{"":{"x":1}}})", "a_"},
                                         {R"({"a":{"b":{"c":{"x":1}}}})", "b_c"},
                                         {R"({"a b":{"x":1}})", "a_b"}};
    for (const auto& [json, name] : kCases) {
        EXPECT_EQ(tableName(json), name) << json;
    }
    EXPECT_EQ(tableName("{\"" + std::string(40, 'n') + R"(":{"x":1}})"), std::string(32, 'n'));
    constexpr size_t kFitted[][4] = {
        // lengths given, lengths left
        {14, 15, 14, 15}, {15, 14, 15, 14}, {15, 15, 14, 15}, {28, 28, 1, 28},   {28, 29, 28, 1},
        {10, 30, 10, 19}, {40, 5, 24, 5},   {29, 29, 14, 15}, {100, 29, 14, 15}, {29, 100, 14, 15}};
    for (const auto& [a, b, leftA, leftB] : kFitted) {
        EXPECT_EQ(tableName("{\"" + std::string(a, 'A') + "\":{\"" + std::string(b, 'B') +
                            R"(":{"x":1}}})"),
                  std::string(leftA, 'A') + "_" + std::string(leftB, 'B'));
    }
}

TEST(Names, TablesOfOneNameAreNumbered) {
    // The tables of objects behind each other, with a name of their own around each.
    const auto tableNames = [](const Names& objects) {
        HandDocument doc;
        Names names;
        for (const std::string& object : objects) {
            std::string path = internalPath("/root/" + object + "/x");
            PATHINFO info{};
            info.path = path.data();
            info.pathLen = lengthOf(path);
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
