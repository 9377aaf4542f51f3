// Patterns for paths: their texts, their mistakes, and which paths they match.
#include "client/shape/path_pattern.h"

#include "client/shape/path_matcher.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using qvej::PathMatcher;
using qvej::PathPattern;

TEST(PathPattern, ReadsWhatItWritesAndTellsMistakes) {
    const struct {
        const char* text;
        const char* written;  // null: a mistake
        std::size_t at;       // of the mistake
        bool root;
    } kCases[] = {
        {"/root", "/root", 0, true},
        {"/*", "/*", 0, true},
        {"/**", "/**", 0, false},
        {"/root/a b", nullptr, 7, false},
        {R"(/root/"a b"/*/**/x)", R"(/root/"a b"/*/**/x)", 0, false},
        {R"(/root/"a\"\\\/\u00e9\ud83d\ude00")", R"(/root/"a\"\\/é😀")", 0, false},
        {R"(/root/a\/b\*\\c)", R"(/root/a\/b\*\\c)", 0, false},
        {R"(/root/"*"/"a/b")", R"(/root/\*/a\/b)", 0, false},
        {R"(/root/"")", R"(/root/"")", 0, false},
        {"root/a", nullptr, 0, false},
        {"", nullptr, 0, false},
        {"/data/a", nullptr, 0, false},
        {"/root/", nullptr, 6, false},
        {"/root//a", nullptr, 6, false},
        {"/root/a*", nullptr, 8, false},
        {"/root/***", nullptr, 9, false},
        {R"(/root/a\b)", nullptr, 8, false},
        {R"(/root/a"b")", nullptr, 7, false},
        {R"(/root/"a)", nullptr, 8, false},
        {R"(/root/"a"b)", nullptr, 9, false},
        {R"(/root/"\x")", nullptr, 8, false},
        {R"(/root/"\u12")", nullptr, 9, false},
        {R"(/root/"\ud83d")", nullptr, 13, false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        try {
            const PathPattern pattern = PathPattern::parse(c.text);
            ASSERT_NE(c.written, nullptr);
            EXPECT_EQ(pattern.text(), c.written);
            EXPECT_EQ(PathPattern::parse(c.written), pattern);
            EXPECT_EQ(pattern.isRoot(), c.root);
        } catch (const qvej::PatternMistake& mistake) {
            EXPECT_EQ(c.written, nullptr) << mistake.what;
            EXPECT_EQ(mistake.at, c.at) << mistake.what;
        }
    }
}

// The patterns, as letters of their place in the list, that match a path, then those that may match
// below it.
std::string follow(PathMatcher& matcher, const std::vector<std::string>& names) {
    const PathMatcher::Node* node = matcher.root();
    for (const std::string& name : names) {
        node = matcher.child(node, name);
    }
    std::string found;
    for (const uint32_t pattern : node->matched) {
        found += static_cast<char>('a' + pattern);
    }
    found += "|";
    for (const uint32_t pattern : node->below) {
        found += static_cast<char>('a' + pattern);
    }
    return found;
}

TEST(PathMatcher, FollowsManyPatternsAtOnce) {
    PathMatcher matcher({PathPattern::parse("/root"), PathPattern::parse("/root/x"),
                         PathPattern::parse("/root/*/y"), PathPattern::parse("/root/**/y"),
                         PathPattern::parse("/**"), PathPattern::parse("/root/x/**/x/y")});
    const struct {
        std::vector<std::string> names;
        const char* expected;
    } kCases[] = {
        {{}, "ae|bcdef"},
        {{"x"}, "be|cdef"},
        {{"y"}, "de|cde"},
        {{"z"}, "e|cde"},
        {{"x", "y"}, "cde|def"},
        {{"x", "x", "y"}, "def|def"},
        {{"x", "q", "r", "x", "y"}, "def|def"},
        {{"x", "q", "x", "x", "y"}, "def|def"},
        {{"z", "x", "y"}, "de|de"},
        {{"z", "root"}, "e|de"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(follow(matcher, c.names), c.expected) << ::testing::PrintToString(c.names);
        EXPECT_EQ(follow(matcher, c.names), c.expected) << "a second time";
    }
}

}  // namespace
