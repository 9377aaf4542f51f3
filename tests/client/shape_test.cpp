// The text of rules, their mistakes with places.
#include "client/shape/shape.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using qvej::Shape;

TEST(Shape, ReadsWhatItWrites) {
    const struct {
        const char* line;
        const char* written;
    } kCases[] = {
        {"rows /root/data", "rows /root/data"},
        {"  rows\t/root as key ", "rows /root"},
        {R"(rows /root/"a b" as "the key" except x "y z" "as" \)",
         R"(rows /root/"a b" as "the key" except x "y z" "as" \)"},
        {"rows /root as as except except", "rows /root as as except except"},
        {"inline /root/**/geo", "inline /root/**/geo"},
        {"text /root/*", "text /root/*"},
        {"drop /root/**", "drop /root/**"},
        {"keep /root/a", "keep /root/a"},
        {"only /root/a/b", "only /root/a/b"},
        {"empty drop", "empty drop"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.line);
        Shape shape;
        shape.addRule(c.line);
        EXPECT_EQ(shape.rules()[0].text(), c.written);
        shape.addRule(c.written);
        EXPECT_EQ(shape.rules()[1], shape.rules()[0]);
    }
}

TEST(Shape, TellsMistakesWithTheirPlaces) {
    const struct {
        const char* line;
        int64_t column;
    } kCases[] = {
        {"", 1},
        {" row /root", 2},
        {"rows", 5},
        {"rows /root/a*b", 15},
        {"rows /root/a b", 14},
        {"rows /root/a as", 16},
        {"rows /root/a as value", 17},
        {"rows /root/a except", 20},
        {"rows /root/a except b as c", 23},
        {R"(rows /root/a as "b)", 19},
        {"inline /root/a as b", 16},
        {"drop /root", 6},
        {"only /*", 6},
        {"empty", 6},
        {"empty drops", 7},
        {"empty drop /root", 12},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.line);
        Shape shape;
        try {
            shape.addText(std::string("\xEF\xBB\xBF# one\r\n\n  \nempty drop\r\n") +
                              (*c.line == 0 ? "x" : c.line),
                          "rules");
            ADD_FAILURE() << shape.rules().back().text();
        } catch (const qvej::Error& error) {
            EXPECT_EQ(error.file(), "rules");
            EXPECT_EQ(error.line(), 5);
            EXPECT_EQ(error.column(), c.column) << error.what();
            EXPECT_EQ(shape.rules().size(), 1u);
        }
    }
}

}  // namespace
