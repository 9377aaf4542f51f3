// Documents and the rules that a person would give them; the bounds of memory.
#include "client/shape/shape_finder.h"

#include "client/engine.h"
#include "client/shape/likeness.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

using qvej::FinderOptions;
using qvej::FoundShape;

class ShapeFinder : public ::testing::Test {
   protected:
    FoundShape find(std::string_view text, const FinderOptions& options = {},
                    std::size_t piece = std::string::npos) {
        qvej::ShapeFinder finder(engine_.host(), qvej::TextForm::DOCUMENT, options);
        while (!text.empty() && finder.feed(text.substr(0, piece))) {
            text.remove_prefix(std::min(piece, text.size()));
        }
        paths_ = finder.paths();
        return finder.finish();
    }

    qvej::Engine engine_;
    std::size_t paths_ = 0;
};

// The rules, one a line.
std::string rulesOf(const FoundShape& found) {
    std::string text;
    for (const qvej::FoundRule& one : found.rules) {
        text += one.rule.text() + "\n";
    }
    return text;
}

// `one(i)` for each i, with commas.
std::string list(int count, const std::function<std::string(int)>& one) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += (i == 0 ? "" : ",") + one(i);
    }
    return text;
}

// A name that looks like a word: "na", "nb", ... "nba", ...
std::string word(int i) {
    std::string name = "n";
    for (; i >= 26; i /= 26) {
        name += static_cast<char>('a' + i % 26);
    }
    return name + static_cast<char>('a' + i);
}

std::string quoted(int i) {
    return "\"" + word(i) + "\"";
}

// An array of objects, each with the member `name` whose value `one` gives.
std::string objects(int count, const std::function<std::string(int)>& one) {
    return "[" + list(count, [&](int i) { return "{" + one(i) + "}"; }) + "]";
}

TEST_F(ShapeFinder, FindsWhatAPersonWouldDraw) {
    const struct {
        const char* what;
        std::string text;
        const char* rules;
    } kCases[] = {
        {"projects by number", R"({"1":{"a":1,"b":[1,2]},"2":{"a":2}})", "rows /root\n"},
        {"columns with odd names", R"([{"@id":1,"First name":"x","\u00e9":"y"}])", ""},
        {"numbers that most have",
         R"([{"n":{"1":"a"}},{"n":{"1":"a","2":"b"}},{"n":{"1":"a"}},)"
         R"({"n":{"1":"a"}},{"n":{"1":"a","2":"b"}}])",
         "rows /root/n\n"},
        {"many names with records",
         "{\"p\":{" + list(6, [](int i) { return quoted(i) + R"(:{"id":1,"at":"x"})"; }) + "}}",
         "rows /root/p\n"},
        {"one long number", R"({"names":{"337100890":"x"}})", "rows /root/names\n"},
        {"one name that is a word", R"({"names":{"PLEYEL":[{}]}})", ""},
        {"currencies: few of many in each",
         objects(40,
                 [](int i) { return "\"c\":{" + quoted(i % 25) + R"(:{"name":"x","sign":"y"}})"; }),
         "rows /root/c\n"},
        {"languages: scalars",
         objects(40, [](int i) { return "\"l\":{" + quoted(i % 25) + ":\"x\"}"; }),
         "rows /root/l\n"},
        {"browsers, each with its versions",
         objects(5,
                 [](int) {
                     return "\"s\":{" +
                            list(8,
                                 [](int b) {
                                     return quoted(b) + ":{" +
                                            list(12,
                                                 [&](int v) {
                                                     return "\"" + std::to_string(v + 20 * b) +
                                                            ".0\":\"y\"";
                                                 }) +
                                            "}";
                                 }) +
                            "}";
                 }),
         "rows /root/s\nrows /root/s/*\n"},
        {"fixed names among names that are data",
         objects(12,
                 [](int i) {
                     return R"("f":{"about":{"url":"u","of":[1,2,3,4,5]},)" + quoted(i) +
                            R"(:{"x":1,"y":2}})";
                 }),
         "rows /root/f except about\nrows /root/f/about/of\n"},
        {"the same, below a rule for all names",
         "{" +
             list(20,
                  [](int i) {
                      return quoted(i) + R"(:{"about":{"u":[1]},)" + quoted(i + 1) +
                             R"(:{"about":{"u":[1,2,3,4,5]},)" + quoted(i + 2) +
                             R"(:{"about":{"u":[1]}}}})";
                  }) +
             "}",
         "rows /root\nrows /root/* except about\nrows /root/*/* except about\n"
         "rows /root/*/*/about/u\nkeep /root/*/about\n"},
        {"a fixed name is `rows`",
         objects(12, [](int i) { return R"("f":{"rows":{"u":[]},)" + quoted(i) + R"(:{"x":1}})"; }),
         "rows /root/f\nempty drop\n"},
        {"sections of their own depths",
         "{\"meta\":{\"v\":[{}]}," +
             list(7,
                  [](int i) {
                      const std::string about = R"({"about":{"l":[{}]}})";
                      return quoted(i) + ":{" + quoted(i + 10) + ":" +
                             (i % 2 == 0 ? about : "{" + quoted(i + 20) + ":" + about + "}") + "}";
                  }) +
             "}",
         "rows /root except meta\nrows /root/*\nrows /root/*/* except about\nkeep /root/meta\n"},
        {"the key is taken", R"({"1":{"key":1,"v":2},"2":{"key":1,"name":2}})",
         "rows /root as id\n"},
        {"lists by number", R"({"10":[1,2,3],"11":[4]})", "rows /root\nrows /root/*\n"},
        {"tags", R"([{"t":["a"]},{"t":["b","c"]},{"t":[]}])", "rows /root/t\nempty drop\n"},
        {"a long list", R"({"v":[1,2,3,4,5]})", "rows /root/v\n"},
        {"pairs and triples", R"([{"at":[1,2]},{"at":[3,4],"c":[1,2,3]}])", ""},
        {"lines of points", R"({"c":[[[1,2],[3,4]],[[5,6]]]})", ""},
        {"arrays in arrays", R"({"c":[[1,2],[3]]})", "rows /root/c\n"},
        {"objects and others in an array", R"({"c":[{"a":1},2]})", "rows /root/c\n"},
        {"a record of records", R"([{"id":1,"geo":{"x":1,"y":{"a":2}}}])",
         "inline /root/geo\ninline /root/geo/y\n"},
        {"an object that is rare", R"([{"a":1},{"a":1},{"a":1,"o":{"x":1}}])", ""},
        {"an object with a list", R"([{"o":{"x":1,"l":[{"y":1}]}}])", ""},
        {"an inlined name is taken", R"([{"o":{"x":1},"o_x":2}])", ""},
        {"a list of objects", R"([{"o":[{"x":1},{"x":2}]}])", ""},
        {"least and most", R"([{"min":{"x":1,"y":1,"l":[]},"max":{"x":1,"y":1,"l":[]}}])",
         "empty drop\n"},
        {"settings of many kinds",
         "{" +
             list(40,
                  [](int i) {
                      return quoted(i) + (i % 3 == 0   ? ":1"
                                          : i % 3 == 1 ? ":\"x\""
                                                       : ":{\"" + word(i) + "\":[{}]}");
                  }) +
             "}",
         ""},
        {"settings that are texts",
         "{" + list(40, [](int i) { return quoted(i) + ":\"x\""; }) + "}", ""},
        {"sections of texts",
         "{" +
             list(8,
                  [](int i) {
                      return quoted(i) + ":{" +
                             list(18,
                                  [&](int k) {
                                      return quoted(20 * i + k) + (k % 2 == 0 ? ":1" : ":\"x\"");
                                  }) +
                             "}";
                  }) +
             "}",
         ""},
        {"events with parts of their own",
         objects(20,
                 [](int i) {
                     return "\"p\":{\"kind\":\"k\"," + quoted(i % 8) + ":" +
                            (i % 4 == 0   ? "1"
                             : i % 4 == 1 ? "\"x\""
                             : i % 4 == 2 ? "[{}]"
                                          : "{\"" + word(i) + "\":1,\"l\":[{}]}") +
                            "}";
                 }),
         ""},
        {"names with signs",
         R"({"a b":{"x/*\\\"y":{"1":[1],"2":[1,2]}},"":[1,2,3,4,5],"**":[[1],[2,3]]})",
         "rows /root/\"a b\"/\"x/*\\\\\\\"y\"\nrows /root/\"a b\"/\"x/*\\\\\\\"y\"/*\n"
         "rows /root/\"\"\nrows /root/\\*\\*\n"},
        {"a list of scalars is all", "[1,2,3,4,5]", "rows /root\n"},
        {"a table is all", R"([{"a":1,"b":null},{"a":2,"b":"x"}])", ""},
        {"what stands before a mistake", R"({"v":[1,2,3,4,5],"w":[1,)", "rows /root/v\n"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        const FoundShape found = find(c.text);
        EXPECT_EQ(rulesOf(found), c.rules) << c.text;
        qvej::Shape again;  // what is printed is what was found
        again.addText(found.text(), "found");
        EXPECT_EQ(again.rules(), found.shape().rules());
        EXPECT_EQ(found.text(), find(c.text, {}, 7).text());
    }
}

TEST_F(ShapeFinder, SaysWhy) {
    const struct {
        std::string text;
        const char* reason;
    } kCases[] = {
        {R"({"1":{"a":[]},"2":{}})", "2 names in 1 object, such as \"1\", with objects"},
        {R"({"1\u0001 and \u4e00 a name of far more than forty characters":1,"2":1})",
         "2 names in 1 object, such as \"1\\u0001 and \u4e00 a name of far more than forty c...\", "
         "with "
         "scalars"},
        {R"([{"t":[1]},{"t":[1,2]}])", "2 arrays of up to 2 numbers"},
        {R"({"o":{"x":1}})", R"(one object of 1 scalar, such as "x", in 1 of 1 object)"},
        {R"({"o":[[]]})", ""},
        {R"([{"o":{}},{"o":[]}])", "2 members are empty containers, such as /root/o"},
    };
    for (const auto& c : kCases) {
        const FoundShape found = find(c.text);
        EXPECT_EQ(found.rules.empty() ? "" : found.rules[0].reason, c.reason) << c.text;
        EXPECT_TRUE(found.whole);
    }
    EXPECT_FALSE(find("{\"a\":").whole);
    EXPECT_FALSE(find("{\"a\":1}}").whole);
}

TEST_F(ShapeFinder, ThresholdsMove) {
    const std::string texts = "{" + list(9, [](int i) { return quoted(i) + ":\"x\""; }) + "}";
    const std::string records =
        "{" + list(3, [](int i) { return quoted(i) + R"(:{"id":1,"at":[{}]})"; }) + "}";
    const struct {
        std::size_t FinderOptions::*option;
        std::size_t value;
        std::string text;
        const char* rules;
    } kCases[] = {
        {&FinderOptions::keyNames, 3, texts, "rows /root\n"},
        {&FinderOptions::keyNames, 4, texts, ""},
        {&FinderOptions::keyContainers, 3, records, "rows /root\n"},
        {&FinderOptions::keyContainers, 4, records, ""},
        {&FinderOptions::fixedLength, 1, R"({"a":[1,2]})", "rows /root/a\n"},
        {&FinderOptions::inlineColumns, 1, R"({"a":{"x":1,"y":2},"b":{"x":1}})",
         "inline /root/b\n"},
    };
    for (const auto& c : kCases) {
        FinderOptions options;
        options.*c.option = c.value;
        EXPECT_EQ(rulesOf(find(c.text, options)), c.rules) << c.text;
    }
}

// Names of one object, names of all objects, a deep path, and all at once.
TEST_F(ShapeFinder, HoldsNoMorePathsThanItMay) {
    FinderOptions options;
    options.mostNames = 50;
    options.mostPaths = 300;
    const auto wide = [](int names, const std::string& value) {
        return "{" + list(names, [&](int i) { return quoted(i) + ":" + value; }) + "}";
    };
    std::string deep = "1";
    for (int i = 0; i < 5000; ++i) {
        deep = "{\"" + word(i) + "\":" + deep + "}";
    }
    const struct {
        std::string text;
        std::string rules;
    } kCases[] = {
        {wide(400, R"({"a":1,"b":{"c":[1,2,3,4,5]}})"), "rows /root\nrows /root/*/b/c\n"},
        {wide(40, wide(45, wide(20, R"({"a":1,"b":{"c":[1,2,3,4,5]}})"))),
         "rows /root\nrows /root/*\nrows /root/*/*\nrows /root/*/*/*/b/c\n"},
        {wide(3, deep), ""},
        {"[" + list(400, [](int i) { return "{" + quoted(i) + ":{" + quoted(i) + ":[1,2,3]}}"; }) +
             "]",
         ""},
    };
    for (const auto& c : kCases) {
        const FoundShape found = find(c.text, options);
        EXPECT_LE(paths_, options.mostPaths);
        EXPECT_TRUE(found.whole);
        if (!c.rules.empty()) {
            EXPECT_EQ(rulesOf(found), c.rules);
        }
    }
    EXPECT_EQ(find(kCases[0].text, options).rules[0].reason,
              "400 names in 1 object, such as \"na\", with objects");
}

TEST(Likeness, NamesThatAreNoWords) {
    for (const char* name : {"1", "1.5", "2024-02-29", "3a61-"}) {
        EXPECT_TRUE(qvej::looksLikeData(name)) << name;
    }
    for (const char* name : {"", "a", "_id", "@type", "$ref", "First name", "\xC3\xA9", "v1.5"}) {
        EXPECT_FALSE(qvej::looksLikeData(name)) << name;
    }
}

}  // namespace
