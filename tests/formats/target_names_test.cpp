// Names that must change do, those that need not stay, and no two are the same.
#include "formats/target_names.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using Names = std::vector<std::string>;

const Names kViews = {"a_joined"};

TEST(TargetNames, ChangeWhereTheTargetDemandsIt) {
    const std::string nul("a\0b", 3);
    const struct {
        const char* name;
        Names names;
        qvej::NameRules rules;
        Names expected;
    } kCases[] = {
        {"no rules", {"a", "A", "a b", "ä"}, {}, {"a", "A", "a b", "ä"}},
        {"twice", {"a", "a", "a"}, {}, {"a", "a~2", "a~3"}},
        {"case of ASCII",
         {"a", "A", "ä", "Ä"},
         {.same = qvej::NameRules::ASCII},
         {"a", "A~2", "ä", "Ä"}},
        {"any case",
         {"a", "A", "ä", "Ä"},
         {.same = qvej::NameRules::UNICODE},
         {"a", "A~2", "ä", "Ä~2"}},
        {"a later name stays", {"a", "a", "a~2"}, {}, {"a", "a~3", "a~2"}},
        {"a later name stays although an earlier is cut to it",
         {"abcd", "abc"},
         {.longest = 3},
         {"a~2", "abc"}},
        {"bytes, whole characters", {"aäöü"}, {.longest = 4}, {"aä"}},
        {"units of UTF-16",
         {"a🂡b", "äöü"},
         {.longest = 3, .unit = qvej::NameRules::UTF16},
         {"a🂡", "äöü"}},
        {"a pair does not fit in part",
         {"ab🂡"},
         {.longest = 3, .unit = qvej::NameRules::UTF16},
         {"ab"}},
        {"a number within the length", {"abc", "abc"}, {.longest = 3}, {"abc", "a~2"}},
        {"forbidden", {"a/b", "a_b", "a:b"}, {.forbidden = "/:"}, {"a_b~2", "a_b", "a_b~3"}},
        {"U+0000", {nul}, {.forbidden = qvej::kNul}, {"a_b"}},
        {"no UTF-8", {"a\xff", "\xc3"}, {}, {"a_", "_"}},
        {"empty", {"", "_"}, {}, {"_~2", "_"}},
        {"empty may be", {"", ""}, {.mayBeEmpty = true}, {"", "~2"}},
        {"start", {"SQLite_x", "sqlit"}, {.forbiddenStart = "sqlite_"}, {"_SQLite_x", "sqlit"}},
        {"taken", {"a_joined", "b"}, {.taken = kViews}, {"a_joined~2", "b"}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const qvej::FittedNames fitted = qvej::fittedNames(c.names, c.rules);
        EXPECT_EQ(fitted.names, c.expected);
        std::vector<std::size_t> changed;
        for (std::size_t i = 0; i < c.names.size(); ++i) {
            if (c.names[i] != c.expected[i]) {
                changed.push_back(i);
            }
        }
        EXPECT_EQ(fitted.changed, changed);
    }
}

// As many equal names as a hostile document may have: their number grows, the time not with its
// square.
TEST(TargetNames, ManyEqualNamesAllDiffer) {
    const Names names(5000, std::string(100, 'x'));
    const qvej::FittedNames fitted = qvej::fittedNames(names, {.longest = 63});
    EXPECT_EQ(std::set<std::string>(fitted.names.begin(), fitted.names.end()).size(), names.size());
    for (const std::string& name : fitted.names) {
        ASSERT_LE(name.size(), 63U);
    }
}

}  // namespace
