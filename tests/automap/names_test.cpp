// Names of tables, and the rules that all names follow.
#include "automap/names.h"

#include "tests/automap/hand_document.h"

namespace jmap::test {
namespace {

TEST(Names, AreMadeOfTheObjectAndTheOneAroundItFittedIntoThirtyBytes) {
    std::vector<std::pair<std::string, std::string>> cases = {
        {"/root/a", "root"},
        {"/root/a/x", "a"},
        {"/root/a/b/x", "a_b"},
        {"/root//x", ""},
        {"x", ""},
        {"/root", ""},
        {"a/b/x", "b"},
        {"a/b/c/x", "b_c"},
        {"/root//b/x", "_b"},
        {"/root/a//x", "a_"},
        {"/root/a/b/c/x", "b_c"},
        {"/root/" + std::string(40, 'n') + "/x", std::string(32, 'n')},
    };
    constexpr size_t kFitted[][4] = {
        // lengths given, lengths left
        {14, 15, 14, 15}, {15, 14, 15, 14}, {15, 15, 14, 15}, {28, 28, 1, 28},   {28, 29, 28, 1},
        {10, 30, 10, 19}, {40, 5, 24, 5},   {29, 29, 14, 15}, {100, 29, 14, 15}, {29, 100, 14, 15}};
    for (const auto& [a, b, leftA, leftB] : kFitted) {
        cases.emplace_back("/root/" + std::string(a, 'A') + "/" + std::string(b, 'B') + "/x",
                           std::string(leftA, 'A') + "_" + std::string(leftB, 'B'));
    }
    HandDocument doc;
    for (const auto& [given, expected] : cases) {
        char out[kNameMax];
        const QVStrSize len = candidateDsName(&doc.p, internalPath(given), out);
        EXPECT_EQ(view(out, len), expected) << given;
    }
}

TEST(Names, EveryOtherByteBecomesAnUnderscore) {
    const std::pair<std::string, std::string> cases[] = {
        {"2019", "_019"}, {"a-b c", "a_b_c"}, {"\xC3\xA9x", "__x"}, {"_9", "_9"},
        {"", ""},         {"Az09_", "Az09_"}, {"@[`{/:", "______"}};
    for (const auto& [given, expected] : cases) {
        std::string name(given);
        validateName(name.data(), lengthOf(name));
        EXPECT_EQ(name, expected);
    }
}

// Names tables after the objects in this order.
Names tableNames(const Names& objects) {
    HandDocument doc;
    Names names;
    for (const std::string& object : objects) {
        DSINFO ds{};
        EXPECT_QV_OK(uniqueDsName(&doc.p, &ds, doc.addPath("/root/" + object + "/x")));
        names.emplace_back(ds.name, static_cast<size_t>(ds.nameLen));
    }
    return names;
}

TEST(Names, TablesOfOneNameAreNumbered) {
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
